#include "canvas/drawer/diagram_drawer_linux.h"

#include <QPointer>

#include "canvas/base/context.h"
#include "canvas/base/image_resource_provider_linux.h"
#include "canvas/diagram/diagram.h"
#include "canvas/drawer/diagram_hint_widget.h"
#include "canvas/drawer/diagram_menus.h"
#include "canvas/drawer/diagram_save_load_handler.h"
#include "canvas/view/canvas_commands.h"
#include "canvas/view/lumo_ui_view.h"
#include "widgets/overlap_layout.h"

namespace QB {

using namespace DiagramLumo;

namespace {

/// Images serve all diagrams of the process.
void provideImages() {
    static QBLumoImageResourceProvider_LINUX images;
    if (!LumoImageResourceProvider::current()) LumoImageResourceProvider::setCurrent(&images);
}

}  // namespace

struct QBLumoDiagramDrawer_LINUX::State {
    /// Qt may paint an opaque viewport over what lies on it after both have moved.
    void showHint(bool isShown) {
        if (!hint || !view) return;
        view->viewport()->setAttribute(Qt::WA_OpaquePaintEvent, !isShown);
        hint->setVisible(isShown);
    }

    QBLumoContext context;
    QPointer<QWidget> widget;  // owned by its parent, if it has one
    QPointer<QBLumoUIView> view;
    QPointer<QBDiagramHintWidget> hint;
    QPointer<QBCanvasCommands> commands;
    std::unique_ptr<Menus> menus;
};

QBLumoDiagramDrawer_LINUX::QBLumoDiagramDrawer_LINUX() : m_state(std::make_unique<State>()) {}

QBLumoDiagramDrawer_LINUX::~QBLumoDiagramDrawer_LINUX() {
    // Whoever is told of its end, and asks, finds no view rather than half of one.
    m_state->view = nullptr;
    delete m_state->widget;
    destroyDiagram();
}

QBLumoContext* QBLumoDiagramDrawer_LINUX::getContext() const {
    return &m_state->context;
}

LumoControl* QBLumoDiagramDrawer_LINUX::getControl() const {
    return m_state->view ? m_state->view->getControl() : nullptr;
}

QBLumoUIView* QBLumoDiagramDrawer_LINUX::getView() const {
    return m_state->view;
}

QBCanvasCommands* QBLumoDiagramDrawer_LINUX::commands() const {
    return m_state->commands;
}

QBDiagramHintWidget* QBLumoDiagramDrawer_LINUX::hintWidget() const {
    return m_state->hint;
}

void QBLumoDiagramDrawer_LINUX::setupDiagram(QWidget** outWidget, const Callbacks& callbacks) {
    provideImages();
    auto* const widget = new QWidget;
    m_state->widget = widget;
    auto* const layout = new QBOverlapLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    QBLumoUIView* const view = QBLumoUIView::create(&m_state->context, widget);
    layout->addWidget(view);
    auto* const hint = new QBDiagramHintWidget(widget);
    layout->addWidget(hint);
    hint->raise();
    widget->setFocusProxy(view);
    m_state->view = view;
    m_state->hint = hint;
    m_state->commands = new QBCanvasCommands(view);

    Callbacks own = callbacks;
    own.diagramEmptyChanged = [this](bool empty) {
        m_state->showHint(empty);
    };
    m_state->showHint(true);
    setupDiagram(own);
    m_state->menus = std::make_unique<Menus>(this);
    QObject::connect(
        view, &LumoUIScrollView::signalRightClickMenu, view,
        [menus = m_state->menus.get()](LumoUIScrollView*, const LumoUIRightClickParam& param) {
            menus->show(param);
        });
    *outWidget = widget;
}

}  // namespace QB
