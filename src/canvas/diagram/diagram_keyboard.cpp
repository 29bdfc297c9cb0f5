#include "canvas/diagram/diagram_keyboard.h"

#include <algorithm>

#include "canvas/base/context.h"
#include "canvas/controls/button.h"
#include "canvas/controls/list_view.h"
#include "canvas/diagram/diagram_gestures.h"
#include "canvas/diagram/diagram_link_drag.h"
#include "canvas/diagram/focus_place.h"
#include "canvas/diagram/placement.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/items/text_based_item_body.h"
#include "canvas/links/join_link.h"
#include "platform/lumo/lumo_control.h"

namespace QB::DiagramLumo {

namespace {

constexpr int arrowStep = 3;
constexpr LumoPoint menuOffset{20, 15};  // in the title, or the row

LumoPoint arrowDirection(int keyCode) {
    switch (keyCode) {
        case LumoKeyLeft:
            return {-1, 0};
        case LumoKeyRight:
            return {1, 0};
        case LumoKeyUp:
            return {0, -1};
        default:
            return {0, 1};
    }
}

}  // namespace

// ---- what a key means ----

bool QBLumoDiagram::Keyboard::keyDown(const LumoEvent& event) {
    bool found = false;
    const bool taken = callForMode(event, &found);
    if (found) return taken;
    static const std::vector<Binding> anywhere = {
        {LumoKeyLeft, anyKeys, &Keyboard::moveItems},
        {LumoKeyRight, anyKeys, &Keyboard::moveItems},
        {LumoKeyUp, anyKeys, &Keyboard::moveItems},
        {LumoKeyDown, anyKeys, &Keyboard::moveItems},
        {LumoKeyDelete, anyKeys, &Keyboard::deleteSelected},
        {LumoKeyZero, LumoKeyControl, &Keyboard::zoom},
        {LumoKeyZeroPad, LumoKeyControl, &Keyboard::zoom},
        {LumoKeyPlus, LumoKeyControl, &Keyboard::zoom},
        {LumoKeyEqual, LumoKeyControl, &Keyboard::zoom},
        {LumoKeyPlusPad, LumoKeyControl, &Keyboard::zoom},
        {LumoKeyMinus, LumoKeyControl, &Keyboard::zoom},
        {LumoKeyMinusPad, LumoKeyControl, &Keyboard::zoom},
        {LumoKeyTab, 0, &Keyboard::leaveForward},
        {LumoKeyBackTab, 0, &Keyboard::leaveBackward},
        {LumoKeyBackTab, LumoKeyShift, &Keyboard::leaveBackward},
        {LumoKeySpace, 0, &Keyboard::select},
        {LumoKeySpace, LumoKeyControl, &Keyboard::toggleSelected},
        {LumoKeyA, LumoKeyControl, &Keyboard::selectAll},
        {LumoKeyReturn, 0, &Keyboard::open},
        {LumoKeyReturn, LumoKeyControl, &Keyboard::enterRows},
        {LumoKeyF, 0, &Keyboard::enterRows},
        {LumoKeyE, 0, &Keyboard::editText},
        {LumoKeyF2, 0, &Keyboard::askForAlias},
        {LumoKeyMenu, anyKeys, &Keyboard::askForMenu},
        {LumoKeyR, 0, &Keyboard::beginResize},
        {LumoKeyEscape, anyKeys, &Keyboard::giveUp},
    };
    return call(anywhere, event, &found);
}

bool QBLumoDiagram::Keyboard::callForMode(const LumoEvent& event, bool* found) {
    if (isLinking()) return callWhileLinking(event, found);
    if (m_resize) {
        const bool taken = callWhileResizing(event, found);
        if (*found) return taken;
        // Any other key keeps the size and does what it does.
        endResize();
    }
    // Escape gives up what the mouse has begun first.
    const bool mouseDrags = m_diagram->m_gestures->isBandActive() || m_diagram->isLinkDragActive();
    return m_row >= 0 && !mouseDrags && callAmongRows(event, found);
}

bool QBLumoDiagram::Keyboard::call(const std::vector<Binding>& bindings, const LumoEvent& event,
                                   bool* found) {
    for (const Binding& binding : bindings) {
        if (binding.keyCode != event.keyCode) continue;
        if (binding.keys != anyKeys && binding.keys != event.keys) continue;
        *found = true;
        return (this->*binding.action)(event);
    }
    return false;
}

bool QBLumoDiagram::Keyboard::swallow(const LumoEvent&) {
    return true;
}

// ---- focus ----

QBLumoItem* QBLumoDiagram::Keyboard::focusedItem() const {
    return dynamic_cast<QBLumoItem*>(m_focused);
}

int QBLumoDiagram::Keyboard::rowCount(const QBLumoItem* item) {
    return item && item->getBody() ? int(item->getBody()->listView()->rows().size()) : 0;
}

const std::string* QBLumoDiagram::Keyboard::fieldAt(const QBLumoItem* item, int row) {
    if (row < 0 || row >= rowCount(item)) return nullptr;
    const QBLumoListView::Row& data = item->getBody()->listView()->getRowData(size_t(row));
    const auto field = data.find("FieldName");
    return field == data.end() ? nullptr : &field->second.toString();
}

void QBLumoDiagram::Keyboard::setFocus(LumoObject* object, int row) {
    auto* const item = dynamic_cast<QBLumoItem*>(object);
    const bool ours = object && object->getParent() == m_diagram &&
                      (item || dynamic_cast<QBLumoJoinLink*>(object));
    if (!ours) return place(nullptr, -1, false);
    const int shownRow = row < rowCount(item) ? std::max(row, -1) : -1;
    if (shownRow >= 0) item->getBody()->scrollToRow(size_t(shownRow));
    place(object, shownRow, true);
    if (LumoControl* const control = m_diagram->control()) {
        m_diagram->layout();
        control->scrollToVisible(focusPlace(m_diagram), false);
    }
}

void QBLumoDiagram::Keyboard::place(LumoObject* object, int row, bool showRing) {
    m_lastPlace.reset();
    const bool moved = m_focused != object || m_row != row;
    if (!moved && m_ringShown == showRing) return;
    if (m_resize && m_resize->item != object) endResize();
    invalidateRing();
    m_focused = object;
    m_row = row;
    m_ringShown = showRing;
    invalidateRing();
    if (moved) m_diagram->m_focusChanged.fire(object, row);
}

void QBLumoDiagram::Keyboard::invalidateRing() const {
    if (!m_focused) return;
    m_diagram->addDirtyRect(lumoInflateRect(focusPlace(m_diagram), focusRingReach, focusRingReach));
    m_diagram->flushDirtyRect();
}

/// Items, then links; null stands where the object was that had the focus and went.
std::vector<QBLumoDiagram::Keyboard::Place> QBLumoDiagram::Keyboard::readingPlaces() const {
    std::vector<Place> places;
    const auto append = [&](const std::vector<Place>& found) {
        std::vector<LumoRect> rects;
        for (const Place& entry : found)
            rects.push_back(entry.second);
        for (const size_t index : readingOrder(rects))
            places.push_back(found[index]);
    };
    std::vector<Place> items;
    for (QBLumoItem* item : m_diagram->items())
        if (item->getVisible()) items.emplace_back(item, item->getRect());
    if (m_lastPlace && !m_focused) items.emplace_back(nullptr, *m_lastPlace);
    append(items);
    std::vector<Place> links;
    for (QBLumoJoinLink* link : m_diagram->joinLinks())
        if (link->isShown())
            links.emplace_back(link,
                               LumoRect(link->translatePoint(link->midPoint(), m_diagram), {}));
    append(links);
    return places;
}

bool QBLumoDiagram::Keyboard::focusNext(bool forward) {
    std::vector<Place> places = readingPlaces();
    if (!forward) std::reverse(places.begin(), places.end());
    const auto here = std::find_if(places.begin(), places.end(),
                                   [this](const Place& entry) { return entry.first == m_focused; });
    const auto next = here == places.end() ? places.begin() : here + 1;
    if (next == places.end()) return false;
    setFocus(next->first, -1);
    return true;
}

bool QBLumoDiagram::Keyboard::leaveForward(const LumoEvent&) {
    return focusNext(true);
}

bool QBLumoDiagram::Keyboard::leaveBackward(const LumoEvent&) {
    return focusNext(false);
}

void QBLumoDiagram::Keyboard::pressed(LumoObject* object) {
    endLink(false);
    endResize();
    place(object, -1, false);
}

void QBLumoDiagram::Keyboard::forget(LumoObject* object) {
    if (m_resize && m_resize->item == object) m_resize.reset();
    if (m_linkItem == object) m_linkItem = nullptr;
    if (m_focused != object) return;
    place(nullptr, -1, false);
    m_lastPlace = object->getRect();
}

LumoPoint QBLumoDiagram::Keyboard::focusPoint() const {
    const LumoRect rect = focusPlace(m_diagram);
    return {rect.origin.x + rect.size.width / 2, rect.origin.y + rect.size.height / 2};
}

// ---- anywhere ----

bool QBLumoDiagram::Keyboard::moveItems(const LumoEvent& event) {
    if (m_diagram->selectedItems().empty())
        return event.keyCode == LumoKeyDown && m_row < 0 && enterRows(event);
    const LumoPoint direction = arrowDirection(event.keyCode);
    m_diagram->moveSelectedItems(direction.x * arrowStep, direction.y * arrowStep);
    return true;
}

bool QBLumoDiagram::Keyboard::deleteSelected(const LumoEvent&) {
    if (m_diagram->m_selection.empty()) return false;
    m_diagram->deleteSelection();
    return true;
}

bool QBLumoDiagram::Keyboard::zoom(const LumoEvent& event) {
    if (!event.control) return false;
    switch (event.keyCode) {
        case LumoKeyZero:
        case LumoKeyZeroPad:
            event.control->zoomReset();
            break;
        case LumoKeyMinus:
        case LumoKeyMinusPad:
            event.control->zoomOut();
            break;
        default:
            event.control->zoomIn();
    }
    return true;
}

bool QBLumoDiagram::Keyboard::select(const LumoEvent&) {
    if (!m_focused) return false;
    m_diagram->setSelection({m_focused});
    return true;
}

bool QBLumoDiagram::Keyboard::toggleSelected(const LumoEvent&) {
    if (!m_focused) return false;
    if (m_diagram->isSelected(m_focused))
        m_diagram->deselectObject(m_focused);
    else
        m_diagram->selectObject(m_focused, true);
    return true;
}

bool QBLumoDiagram::Keyboard::selectAll(const LumoEvent&) {
    m_diagram->selectAll();
    return true;
}

bool QBLumoDiagram::Keyboard::open(const LumoEvent&) {
    QBLumoContext* const context = m_diagram->lumoContext();
    if (!context || !m_focused) return false;
    if (auto* const link = dynamic_cast<QBLumoJoinLink*>(m_focused))
        context->joinLinkDoubleClicked(link, true);
    else if (QBLumoBaseItemBody* const body = focusedItem()->getBody())
        context->itemBodyDoubleClicked(body);
    return true;
}

bool QBLumoDiagram::Keyboard::editText(const LumoEvent&) {
    const QBLumoItem* const item = focusedItem();
    const auto* const body =
        item ? dynamic_cast<QBLumoTextBasedItemBody*>(item->getBody()) : nullptr;
    if (!body || !body->hasEditButton()) return false;
    body->editButton()->click();
    return true;
}

bool QBLumoDiagram::Keyboard::askForAlias(const LumoEvent&) {
    QBLumoItem* item = focusedItem();
    const std::vector<QBLumoItem*> selected = m_diagram->selectedItems();
    if (!item && selected.size() == 1) item = selected.front();
    if (!item || !m_diagram->lumoContext()) return false;
    m_diagram->lumoContext()->itemAliasWanted(item);
    return true;
}

bool QBLumoDiagram::Keyboard::askForMenu(const LumoEvent& event) {
    LumoEvent press = event;
    press.keys = LumoButtonRight;
    const LumoPoint point = focusPlace(m_diagram).origin + menuOffset;
    m_diagram->m_pressed = nullptr;
    if (QBLumoItem* const item = focusedItem()) {
        const std::string* const field = fieldAt(item, m_row);
        const std::string name = field ? *field : std::string();
        const bool inRows = m_row >= 0;
        press.point = m_diagram->translatePoint(point, item);
        m_diagram->pressItem(item, press, [&](LumoPoint at) {
            m_diagram->askForMenu(item, inRows ? &name : nullptr, press, at);
        });
    } else if (auto* const link = dynamic_cast<QBLumoJoinLink*>(m_focused)) {
        press.point = link->midPoint();
        m_diagram->pressLink(link, press);
    } else {
        const LumoRect shown = event.getControlDisplayRect();
        press.point = shown.origin + LumoPoint{shown.size.width / 2, shown.size.height / 2};
        m_diagram->askForMenu(nullptr, nullptr, press, press.point);
    }
    return true;
}

/// What the mouse has begun, then the selection.
bool QBLumoDiagram::Keyboard::giveUp(const LumoEvent&) {
    if (m_diagram->m_gestures->isBandActive()) {
        m_diagram->m_gestures->cancelBand();
        return true;
    }
    if (m_diagram->isLinkDragActive()) {
        m_diagram->cancelLinkDrag();
        return true;
    }
    if (m_diagram->m_selection.empty()) return false;
    m_diagram->clearSelection();
    return true;
}

}  // namespace QB::DiagramLumo
