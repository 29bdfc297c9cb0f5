#include "canvas/view/diagram_accessible_parts.h"

#include <algorithm>

#include <QKeySequence>

#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"
#include "canvas/view/lumo_ui_view.h"
#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_dispatch.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"

namespace QB::DiagramLumo {

// ---- the view ----

AccessibleDiagramView::AccessibleDiagramView(QBLumoUIView* view)
    : QAccessibleWidget(view, QAccessible::LayeredPane) {}

/// Null while the view is being destroyed: it is no QBLumoUIView any more then.
DiagramAccessible* AccessibleDiagramView::tree() const {
    const auto* const view = qobject_cast<QBLumoUIView*>(object());
    return view ? view->accessible() : nullptr;
}

QString AccessibleDiagramView::text(QAccessible::Text kind) const {
    const QString own = QAccessibleWidget::text(kind);
    return kind == QAccessible::Name && own.isEmpty() ? Tolk::localize(Tolk::TextCanvasDiagram)
                                                      : own;
}

QAccessible::State AccessibleDiagramView::state() const {
    QAccessible::State state = QAccessibleWidget::state();
    state.multiSelectable = true;
    state.extSelectable = true;
    return state;
}

std::vector<QAccessibleInterface*> AccessibleDiagramView::widgets() const {
    std::vector<QAccessibleInterface*> result;
    const auto* const view = qobject_cast<QBLumoUIView*>(object());
    for (int i = 0; i < QAccessibleWidget::childCount(); ++i) {
        QAccessibleInterface* const widget = QAccessibleWidget::child(i);
        // The viewport counts only for what lies on it: the canvas is this interface.
        const bool isBareViewport =
            view && widget->object() == view->viewport() && widget->childCount() == 0;
        if (!isBareViewport) result.push_back(widget);
    }
    return result;
}

int AccessibleDiagramView::childCount() const {
    const int objects = tree() ? int(tree()->shownObjects().size()) : 0;
    return objects + int(widgets().size());
}

QAccessibleInterface* AccessibleDiagramView::child(int index) const {
    if (!tree() || index < 0) return nullptr;
    const auto& objects = tree()->shownObjects();
    if (size_t(index) < objects.size())
        return tree()->interfaceOf({objects[size_t(index)]->serial(), DiagramAccessible::whole});
    const std::vector<QAccessibleInterface*> others = widgets();
    const size_t rest = size_t(index) - objects.size();
    return rest < others.size() ? others[rest] : nullptr;
}

int AccessibleDiagramView::indexOfChild(const QAccessibleInterface* child) const {
    if (!tree()) return -1;
    if (const auto* const part = dynamic_cast<const AccessiblePart*>(child)) {
        const bool isOurs = part->place().part == DiagramAccessible::whole;
        return isOurs ? tree()->indexOfShown(tree()->find(part->place().serial)) : -1;
    }
    const std::vector<QAccessibleInterface*> others = widgets();
    const auto found = std::find(others.begin(), others.end(), child);
    const int objects = int(tree()->shownObjects().size());
    return found == others.end() ? -1 : objects + int(found - others.begin());
}

QAccessibleInterface* AccessibleDiagramView::childAt(int x, int y) const {
    const auto* const view = qobject_cast<QBLumoUIView*>(object());
    const QBLumoDiagram* const diagram = tree() ? tree()->diagram() : nullptr;
    if (!diagram) return nullptr;
    if (!view->viewport()->rect().contains(view->viewport()->mapFromGlobal({x, y}))) {
        for (QAccessibleInterface* widget : widgets())
            if (widget->rect().contains(x, y)) return widget;
        return nullptr;
    }
    if (const QWidget* over = view->viewport()->childAt(view->viewport()->mapFromGlobal({x, y})))
        return QAccessible::queryAccessibleInterface(const_cast<QWidget*>(over));
    const LumoPoint point = tree()->inDiagram(x, y);
    const auto& children = diagram->getChildren();
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        const auto* const object = dynamic_cast<const QBLumoObject*>(*child);
        if (!object) continue;
        const int at = tree()->indexOfShown(object);
        if (at < 0) continue;
        auto* const part = static_cast<AccessiblePart*>(this->child(at));
        if (lumoPointInRect(point, part->rectInDiagram())) return part;
    }
    return nullptr;
}

QAccessibleInterface* AccessibleDiagramView::focusChild() const {
    if (tree() && widget()->hasFocus())
        if (QAccessibleInterface* const focused = tree()->focusedInterface()) return focused;
    return QAccessibleWidget::focusChild();
}

// ---- what all parts share ----

AccessiblePart::AccessiblePart(DiagramAccessible* tree, const DiagramAccessible::Place& place)
    : m_tree(tree), m_place(place) {}

AccessiblePart::~AccessiblePart() {
    m_tree->interfaceDied(m_place);
}

QBLumoObject* AccessiblePart::owner() const {
    return m_tree->find(m_place.serial);
}

bool AccessiblePart::isValid() const {
    return owner() != nullptr;
}

QWindow* AccessiblePart::window() const {
    return m_tree->view()->window()->windowHandle();
}

void* AccessiblePart::interface_cast(QAccessible::InterfaceType type) {
    if (type != QAccessible::ActionInterface) return nullptr;
    return static_cast<QAccessibleActionInterface*>(this);
}

QAccessibleInterface* AccessiblePart::parent() const {
    if (m_place.part == DiagramAccessible::whole) return m_tree->root();
    return m_tree->interfaceOf({m_place.serial, DiagramAccessible::whole});
}

QAccessibleInterface* AccessiblePart::child(int) const {
    return nullptr;
}

int AccessiblePart::childCount() const {
    return 0;
}

int AccessiblePart::indexOfChild(const QAccessibleInterface*) const {
    return -1;
}

QAccessibleInterface* AccessiblePart::childAt(int, int) const {
    return nullptr;
}

QString AccessiblePart::description() const {
    return {};
}

QString AccessiblePart::text(QAccessible::Text kind) const {
    if (!isValid()) return {};
    if (kind == QAccessible::Name) return name();
    return kind == QAccessible::Description ? description() : QString();
}

QRect AccessiblePart::rect() const {
    return isValid() ? m_tree->onScreen(rectInDiagram()) : QRect();
}

QAccessible::State AccessiblePart::state() const {
    QAccessible::State state;
    if (!isValid()) {
        state.invalid = true;
        return state;
    }
    const LumoRect shown = m_tree->view()->getControl()->getDisplayRect();
    state.offscreen = !m_tree->view()->isVisible() || !lumoIntersectsRect(rectInDiagram(), shown);
    return state;
}

bool AccessiblePart::hasFocus() const {
    const QBLumoDiagram* const diagram = m_tree->diagram();
    const int row = m_place.part == DiagramAccessible::whole ? -1 : m_place.part;
    return diagram && m_tree->view()->hasFocus() && owner() &&
           diagram->focusedObject() == owner() && diagram->focusedRow() == row;
}

// ---- actions ----

const QString& AccessiblePart::selectAction() {
    static const QString name = QStringLiteral("Select");
    return name;
}

const QString& AccessiblePart::selectTooAction() {
    static const QString name = QStringLiteral("SelectToo");
    return name;
}

const QString& AccessiblePart::drawLinkAction() {
    static const QString name = QStringLiteral("DrawLink");
    return name;
}

QString AccessiblePart::localizedActionName(const QString& name) const {
    if (name == selectAction()) return Tolk::localize(Tolk::TextCanvasActionSelect);
    if (name == selectTooAction()) return Tolk::localize(Tolk::TextCanvasActionSelectToo);
    if (name == drawLinkAction()) return Tolk::localize(Tolk::TextCanvasActionDrawLink);
    return QAccessibleActionInterface::localizedActionName(name);
}

/// The keys of the diagram's keyboard while this has the focus.
QStringList AccessiblePart::keyBindingsForAction(const QString& name) const {
    const auto key = [](int code) {
        return QStringList(QKeySequence(code).toString(QKeySequence::NativeText));
    };
    if (name == selectAction() || name == toggleAction()) return key(Qt::Key_Space);
    if (name == selectTooAction()) return key(Qt::CTRL + Qt::Key_Space);
    if (name == drawLinkAction()) return key(Qt::Key_L);
    if (name == showMenuAction()) return key(Qt::Key_Menu);
    if (name != pressAction()) return {};
    return key(m_place.part == DiagramAccessible::editButton ? Qt::Key_E : Qt::Key_Return);
}

void AccessiblePart::takeFocus() const {
    const int row = m_place.part == DiagramAccessible::whole ? -1 : m_place.part;
    m_tree->view()->setFocus(Qt::OtherFocusReason);
    m_tree->diagram()->setFocusedObject(owner(), row);
}

void AccessiblePart::pressKey(int32_t keyCode) const {
    m_tree->view()->getControl()->dispatcher()->keyDown(keyCode, 0);
}

bool AccessiblePart::doCommonAction(const QString& name) const {
    QBLumoDiagram* const diagram = m_tree->diagram();
    if (name == selectAction()) {
        diagram->selectObject(owner(), false);
    } else if (name == selectTooAction()) {
        diagram->isSelected(owner()) ? diagram->deselectObject(owner())
                                     : diagram->selectObject(owner(), true);
    } else if (name == QAccessibleActionInterface::setFocusAction()) {
        takeFocus();
    } else if (name == QAccessibleActionInterface::showMenuAction()) {
        takeFocus();
        pressKey(LumoKeyMenu);
    } else {
        return false;
    }
    return true;
}

}  // namespace QB::DiagramLumo
