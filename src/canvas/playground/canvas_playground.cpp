#include "canvas/playground/canvas_playground.h"

#include <QVBoxLayout>

#include "canvas/base/canvas_style.h"
#include "canvas/base/context.h"
#include "canvas/base/image_resource_provider_linux.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "canvas/playground/demo_diagram.h"
#include "canvas/view/canvas_commands.h"
#include "canvas/view/lumo_ui_view.h"
#include "platform/lumo/lumo_control.h"

namespace QB {

using namespace DiagramLumo;

namespace {

constexpr int mostObjects = 10000;
constexpr int innerJoin = 2;

}  // namespace

/// Destroyed in the reverse order: view, diagram, context, images.
struct QBCanvasPlayground::State {
    QBLumoImageResourceProvider_LINUX images;
    QBLumoContext context;
    std::unique_ptr<QBLumoDiagram> diagram;
    QBLumoUIView* view = nullptr;          // owned by the playground as a child
    QBCanvasCommands* commands = nullptr;  // owned by the view
};

QBCanvasPlayground::QBCanvasPlayground(int items, int links, QWidget* parent)
    : QWidget(parent), m_state(std::make_unique<State>()) {
    State* const state = m_state.get();
    if (!LumoImageResourceProvider::current())
        LumoImageResourceProvider::setCurrent(&state->images);
    state->view = QBLumoUIView::create(&state->context, this);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(state->view);
    setFocusProxy(state->view);

    LumoControl* const control = state->view->getControl();
    state->diagram = std::make_unique<QBLumoDiagram>(&state->context, control);
    state->diagram->setBackgroundColor(themePalette().canvas);
    fillDemoDiagram(state->diagram.get(), qBound(0, items, mostObjects),
                    qBound(0, links, mostObjects));
    state->context.setActiveDiagram(control, state->diagram.get());
    state->commands = new QBCanvasCommands(state->view);

    const auto tell = [this](const std::string& text) {
        Q_EMIT messageChanged(QString::fromStdString(text));
    };
    state->context.setFieldLinkDrawn([state, tell](QBLumoItem* left, const std::string& leftField,
                                                   QBLumoItem* right,
                                                   const std::string& rightField) {
        addDemoLink(state->diagram.get(), left, leftField, right, rightField, innerJoin)
            ->playPromptAnimation();
        tell(left->getBody()->titleText() + "." + leftField + " = " +
             right->getBody()->titleText() + "." + rightField);
    });
    // A click on a link shows the next kind of join.
    state->context.setJoinLinkDoubleClicked([](QBLumoJoinLink* link, bool) {
        const int next = link->getJoinType() % 6 + 1;
        link->setJoinType(next == 1 ? innerJoin : next);
    });
    state->context.setItemSelectionChanged([tell](QBLumoItem* item, bool selected) {
        if (selected && item->getBody()) tell(item->getBody()->titleText());
    });
}

QBCanvasPlayground::~QBCanvasPlayground() {
    delete m_state->view;
}

QBCanvasCommands* QBCanvasPlayground::commands() const {
    return m_state->commands;
}

void QBCanvasPlayground::setShowsFieldRelations(bool fields) {
    m_state->diagram->setRelationMode(fields ? FieldRelation : TableRelation);
}

bool QBCanvasPlayground::showsFieldRelations() const {
    return m_state->diagram->getRelationMode() == FieldRelation;
}

}  // namespace QB
