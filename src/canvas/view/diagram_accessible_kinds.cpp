// Items, rows, edit buttons and links as assistive technology sees them.

#include <algorithm>

#include "canvas/base/context.h"
#include "canvas/controls/button.h"
#include "canvas/controls/list_view.h"
#include "canvas/controls/scroll_view.h"
#include "canvas/diagram/diagram.h"
#include "canvas/diagram/focus_place.h"
#include "canvas/items/item.h"
#include "canvas/items/text_based_item_body.h"
#include "canvas/links/join_link.h"
#include "canvas/view/diagram_accessible_names.h"
#include "canvas/view/diagram_accessible_parts.h"
#include "canvas/view/lumo_ui_view.h"
#include "platform/lumo/lumo_control.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"

namespace QB::DiagramLumo {

namespace {

QBLumoBaseItemBody* bodyOf(QBLumoObject* owner) {
    const auto* const item = dynamic_cast<const QBLumoItem*>(owner);
    return item ? item->getBody() : nullptr;
}

QBLumoTextBasedItemBody* textBodyOf(QBLumoObject* owner) {
    auto* const body = dynamic_cast<QBLumoTextBasedItemBody*>(bodyOf(owner));
    return body && body->hasEditButton() ? body : nullptr;
}

/// The part of the field list that can be seen if nothing covers it, in the diagram's space.
LumoRect shownListOf(const QBLumoBaseItemBody* body) {
    const QBLumoScrollView* const scroll = body->scrollView();
    if (!scroll->getVisible()) return {};
    return scroll->translateRect(scroll->getBoundingRect(), nullptr);
}

void takeSelectable(QAccessible::State* state, const QBLumoObject* object) {
    state->selectable = true;
    state->multiSelectable = true;
    state->extSelectable = true;
    state->selected = object->getSelected();
    state->focusable = true;
}

}  // namespace

// ---- items ----

QBLumoBaseItemBody* AccessibleItem::body() const {
    return bodyOf(owner());
}

bool AccessibleItem::isValid() const {
    return dynamic_cast<QBLumoItem*>(owner());
}

LumoRect AccessibleItem::rectInDiagram() const {
    const QBLumoBaseItemBody* const shown = body();
    return shown ? shown->translateRect(shown->getBoundingRect(), nullptr) : owner()->getRect();
}

QString AccessibleItem::name() const {
    return accessibleNameOf(static_cast<const QBLumoItem*>(owner()));
}

QString AccessibleItem::description() const {
    const auto* const text = dynamic_cast<const QBLumoTextBasedItemBody*>(body());
    return text ? QString::fromStdString(text->getText()) : QString();
}

QAccessible::State AccessibleItem::state() const {
    QAccessible::State state = AccessiblePart::state();
    if (state.invalid) return state;
    takeSelectable(&state, owner());
    state.focused = hasFocus();
    state.invisible = !owner()->getVisible();
    state.movable = true;
    state.sizeable = true;
    return state;
}

/// The edit button stands before the rows.
int AccessibleItem::firstRow() const {
    return textBodyOf(owner()) ? 1 : 0;
}

int AccessibleItem::childCount() const {
    return body() ? firstRow() + int(body()->listView()->rows().size()) : 0;
}

QAccessibleInterface* AccessibleItem::child(int index) const {
    if (index < 0 || index >= childCount()) return nullptr;
    const int row = index - firstRow();
    return tree()->interfaceOf({place().serial, row < 0 ? DiagramAccessible::editButton : row});
}

int AccessibleItem::indexOfChild(const QAccessibleInterface* child) const {
    const auto* const part = dynamic_cast<const AccessiblePart*>(child);
    if (!part || !part->isValid() || part->place().serial != place().serial) return -1;
    if (part->place().part == DiagramAccessible::editButton) return 0;
    return part->place().part == DiagramAccessible::whole ? -1 : part->place().part + firstRow();
}

QAccessibleInterface* AccessibleItem::childAt(int x, int y) const {
    if (!body()) return nullptr;
    const LumoPoint point = tree()->inDiagram(x, y);
    if (const QBLumoTextBasedItemBody* const text = textBodyOf(owner())) {
        const QBLumoButton* const button = text->editButton();
        if (lumoPointInRect(point, button->translateRect(button->getBoundingRect(), nullptr)))
            return child(0);
    }
    const QBLumoListView* const list = body()->listView();
    const LumoPoint inList = list->translatePoint({0, 0}, nullptr);
    if (!lumoPointInRect(point, shownListOf(body())) || point.y < inList.y ||
        point.x >= inList.x + lumoWidth(list->getRect()))
        return nullptr;
    return child(firstRow() + (point.y - inList.y) / list->getRowHeight());
}

QStringList AccessibleItem::actionNames() const {
    return {selectAction(), selectTooAction(), pressAction(), setFocusAction(), showMenuAction()};
}

QString AccessibleItem::localizedActionName(const QString& name) const {
    if (name == pressAction()) return Tolk::localize(Tolk::TextCanvasActionOpen);
    return AccessiblePart::localizedActionName(name);
}

void AccessibleItem::doAction(const QString& name) {
    if (!isValid() || doCommonAction(name) || name != pressAction() || !body()) return;
    if (QBLumoContext* const context = tree()->diagram()->lumoContext())
        context->itemBodyDoubleClicked(body());
}

// ---- links ----

QBLumoJoinLink* AccessibleLink::link() const {
    return dynamic_cast<QBLumoJoinLink*>(owner());
}

bool AccessibleLink::isValid() const {
    return link();
}

LumoRect AccessibleLink::rectInDiagram() const {
    return symbolPlace(link());
}

QString AccessibleLink::name() const {
    return accessibleNameOf(link());
}

QAccessible::State AccessibleLink::state() const {
    QAccessible::State state = AccessiblePart::state();
    if (state.invalid) return state;
    takeSelectable(&state, owner());
    state.focused = hasFocus();
    state.invisible = !link()->isShown();
    return state;
}

QStringList AccessibleLink::actionNames() const {
    return {pressAction(), selectAction(), selectTooAction(), setFocusAction(), showMenuAction()};
}

QString AccessibleLink::localizedActionName(const QString& name) const {
    if (name == pressAction()) return Tolk::localize(Tolk::TextCanvasActionEditJoin);
    return AccessiblePart::localizedActionName(name);
}

void AccessibleLink::doAction(const QString& name) {
    if (!isValid() || doCommonAction(name) || name != pressAction()) return;
    if (QBLumoContext* const context = tree()->diagram()->lumoContext())
        context->joinLinkDoubleClicked(link(), true);
}

// ---- rows ----

QBLumoBaseItemBody* AccessibleRow::body() const {
    return bodyOf(owner());
}

bool AccessibleRow::isValid() const {
    return body() && size_t(place().part) < body()->listView()->rows().size();
}

const std::string* AccessibleRow::field() const {
    const QBLumoListView::Row& row = body()->listView()->getRowData(size_t(place().part));
    const auto name = row.find("FieldName");
    return name == row.end() ? nullptr : &name->second.toString();
}

QString AccessibleRow::name() const {
    return field() ? QString::fromStdString(*field()) : QStringLiteral("*");
}

QString AccessibleRow::description() const {
    return field() ? QString() : Tolk::localize(Tolk::TextCanvasAllFields);
}

/// Cut to what of it shows, if anything does.
LumoRect AccessibleRow::rectInDiagram() const {
    const QBLumoListView* const list = body()->listView();
    const LumoRect whole = list->translateRect(list->rowRect(size_t(place().part)), nullptr);
    const LumoRect shown = lumoIntersectedRect(whole, shownListOf(body()));
    return lumoHeight(shown) > 0 ? shown : whole;
}

bool AccessibleRow::isTicked() const {
    return field() ? body()->isFieldSelected(*field()) : body()->isWildcardSelected();
}

QAccessible::State AccessibleRow::state() const {
    QAccessible::State state = AccessiblePart::state();
    if (state.invalid) return state;
    state.checkable = true;
    state.checked = isTicked();
    state.focusable = true;
    state.focused = hasFocus();
    if (!lumoIntersectsRect(rectInDiagram(), shownListOf(body()))) state.offscreen = true;
    return state;
}

QStringList AccessibleRow::actionNames() const {
    QStringList names{toggleAction()};
    if (field()) names << drawLinkAction();
    return names << setFocusAction() << showMenuAction();
}

void AccessibleRow::doAction(const QString& name) {
    if (!isValid()) return;
    if (name == toggleAction())
        body()->tickRowByUser(size_t(place().part), !isTicked());
    else if (name == drawLinkAction() && field())
        drawLink();
    else if (name == setFocusAction() || name == showMenuAction())
        doCommonAction(name);
}

void AccessibleRow::drawLink() const {
    QBLumoDiagram* const diagram = tree()->diagram();
    const bool ends = diagram->isLinkDragActive();
    takeFocus();
    if (ends) diagram->updateLinkDragTarget(static_cast<QBLumoItem*>(owner()), *field());
    pressKey(ends ? LumoKeyReturn : LumoKeyL);
}

// ---- edit buttons ----

QBLumoTextBasedItemBody* AccessibleEditButton::body() const {
    return textBodyOf(owner());
}

bool AccessibleEditButton::isValid() const {
    return body();
}

LumoRect AccessibleEditButton::rectInDiagram() const {
    const QBLumoButton* const button = body()->editButton();
    return button->translateRect(button->getBoundingRect(), nullptr);
}

QString AccessibleEditButton::name() const {
    return Tolk::localize(Tolk::TextCanvasEditText);
}

QStringList AccessibleEditButton::actionNames() const {
    return {pressAction()};
}

void AccessibleEditButton::doAction(const QString& name) {
    if (isValid() && name == pressAction()) body()->editButton()->click();
}

}  // namespace QB::DiagramLumo
