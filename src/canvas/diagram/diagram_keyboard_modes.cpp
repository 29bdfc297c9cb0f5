// What keys do among the rows of an item, while a link is drawn, and while an item is resized.

#include <algorithm>
#include <utility>

#include "canvas/controls/list_view.h"
#include "canvas/controls/scroll_view.h"
#include "canvas/controls/splitter.h"
#include "canvas/diagram/diagram_keyboard.h"
#include "canvas/diagram/diagram_link_drag.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/items/item_geometry.h"

namespace QB::DiagramLumo {

namespace {

constexpr int resizeStep = 10;
constexpr int smallResizeStep = 1;  // with Shift
constexpr double splitterStep = 0.05;

int rowsOnPage(const QBLumoBaseItemBody* body) {
    const int height = lumoHeight(body->scrollView()->getRect());
    return std::max(height / body->listView()->getRowHeight() - 1, 1);
}

/// The row to which a key leads from @p row, in [@p first, @p last].
int rowAfterKey(int keyCode, int row, int first, int last, int page) {
    switch (keyCode) {
        case LumoKeyUp:
            row -= 1;
            break;
        case LumoKeyDown:
            row += 1;
            break;
        case LumoKeyPageUp:
            row -= page;
            break;
        case LumoKeyPageDown:
            row += page;
            break;
        case LumoKeyHome:
            row = first;
            break;
        default:
            row = last;
    }
    return std::clamp(row, first, last);
}

}  // namespace

// ---- among rows ----

bool QBLumoDiagram::Keyboard::callAmongRows(const LumoEvent& event, bool* found) {
    static const std::vector<Binding> bindings = {
        {LumoKeyUp, anyKeys, &Keyboard::walkRows},
        {LumoKeyDown, anyKeys, &Keyboard::walkRows},
        {LumoKeyHome, anyKeys, &Keyboard::walkRows},
        {LumoKeyEnd, anyKeys, &Keyboard::walkRows},
        {LumoKeyPageUp, anyKeys, &Keyboard::walkRows},
        {LumoKeyPageDown, anyKeys, &Keyboard::walkRows},
        {LumoKeyLeft, anyKeys, &Keyboard::swallow},
        {LumoKeyRight, anyKeys, &Keyboard::swallow},
        {LumoKeySpace, 0, &Keyboard::tickRow},
        {LumoKeyReturn, 0, &Keyboard::tickRow},
        {LumoKeyL, 0, &Keyboard::beginLink},
        {LumoKeyEscape, anyKeys, &Keyboard::leaveRows},
    };
    return call(bindings, event, found);
}

bool QBLumoDiagram::Keyboard::enterRows(const LumoEvent&) {
    QBLumoItem* const item = focusedItem();
    if (rowCount(item) == 0) return false;
    setFocus(item, 0);
    return true;
}

bool QBLumoDiagram::Keyboard::leaveRows(const LumoEvent&) {
    setFocus(m_focused, -1);
    return true;
}

bool QBLumoDiagram::Keyboard::walkRows(const LumoEvent& event) {
    QBLumoItem* const item = focusedItem();
    const int last = rowCount(item) - 1;
    if (last < 0) return leaveRows(event);  // the fields went meanwhile
    setFocus(item, rowAfterKey(event.keyCode, m_row, 0, last, rowsOnPage(item->getBody())));
    return true;
}

bool QBLumoDiagram::Keyboard::tickRow(const LumoEvent&) {
    QBLumoItem* const item = focusedItem();
    if (m_row >= rowCount(item)) return false;
    QBLumoBaseItemBody* const body = item->getBody();
    const std::string* const field = fieldAt(item, m_row);
    const bool ticked = field ? body->isFieldSelected(*field) : body->isWildcardSelected();
    body->tickRowByUser(size_t(m_row), !ticked);
    return true;
}

// ---- a link ----

bool QBLumoDiagram::Keyboard::callWhileLinking(const LumoEvent& event, bool* found) {
    static const std::vector<Binding> bindings = {
        {LumoKeyTab, anyKeys, &Keyboard::nextTarget},
        {LumoKeyBackTab, anyKeys, &Keyboard::nextTarget},
        {LumoKeyRight, anyKeys, &Keyboard::nextTarget},
        {LumoKeyLeft, anyKeys, &Keyboard::nextTarget},
        {LumoKeyUp, anyKeys, &Keyboard::walkTargetRows},
        {LumoKeyDown, anyKeys, &Keyboard::walkTargetRows},
        {LumoKeyHome, anyKeys, &Keyboard::walkTargetRows},
        {LumoKeyEnd, anyKeys, &Keyboard::walkTargetRows},
        {LumoKeyPageUp, anyKeys, &Keyboard::walkTargetRows},
        {LumoKeyPageDown, anyKeys, &Keyboard::walkTargetRows},
        {LumoKeyReturn, anyKeys, &Keyboard::drawLink},
        {LumoKeyEscape, anyKeys, &Keyboard::giveUpLink},
        {LumoKeySpace, anyKeys, &Keyboard::swallow},
        {LumoKeyF2, anyKeys, &Keyboard::swallow},
        {LumoKeyMenu, anyKeys, &Keyboard::swallow},
        {LumoKeyL, anyKeys, &Keyboard::swallow},
        {LumoKeyR, anyKeys, &Keyboard::swallow},
        {LumoKeyE, anyKeys, &Keyboard::swallow},
        {LumoKeyF, anyKeys, &Keyboard::swallow},
    };
    return call(bindings, event, found);
}

bool QBLumoDiagram::Keyboard::isLinking() const {
    return m_linkItem && m_diagram->isLinkDragActive();
}

bool QBLumoDiagram::Keyboard::beginLink(const LumoEvent&) {
    QBLumoItem* const item = focusedItem();
    const std::string* const field = fieldAt(item, m_row);
    if (!field) return false;
    m_linkItem = item;
    m_linkRow = m_row;
    m_diagram->m_linkDrag->begin(item, *field, focusPoint());
    return true;
}

/// The item after the one with the focus that has fields, at the field of the same name if it has
/// one: that is what is joined most.
bool QBLumoDiagram::Keyboard::nextTarget(const LumoEvent& event) {
    const bool forward = event.keyCode == LumoKeyTab || event.keyCode == LumoKeyRight;
    std::vector<QBLumoItem*> targets;
    for (const Place& entry : readingPlaces())
        if (auto* const item = dynamic_cast<QBLumoItem*>(entry.first))
            if (item == m_focused || (item != m_linkItem && rowCount(item) > 1))
                targets.push_back(item);
    if (!forward) std::reverse(targets.begin(), targets.end());
    const auto here = std::find(targets.begin(), targets.end(), m_focused);
    if (here == targets.end()) return true;
    std::rotate(targets.begin(), here, targets.end());
    if (targets.size() < 2) return true;
    QBLumoItem* const target = targets[1];
    setFocus(target, std::max(rowOfField(target, m_diagram->m_linkDrag->sourceField()), 1));
    followFocus();
    return true;
}

int QBLumoDiagram::Keyboard::rowOfField(const QBLumoItem* item, const std::string& name) {
    for (int row = 0; row < rowCount(item); ++row) {
        const std::string* const field = fieldAt(item, row);
        if (field && *field == name) return row;
    }
    return -1;
}

bool QBLumoDiagram::Keyboard::walkTargetRows(const LumoEvent& event) {
    QBLumoItem* const item = focusedItem();
    const int last = rowCount(item) - 1;
    if (last < 1) return true;
    setFocus(item, rowAfterKey(event.keyCode, m_row, 1, last, rowsOnPage(item->getBody())));
    followFocus();
    return true;
}

void QBLumoDiagram::Keyboard::followFocus() {
    QBLumoItem* const item = focusedItem();
    const std::string* const field = fieldAt(item, m_row);
    m_diagram->m_linkDrag->moveEnd(focusPoint());
    m_diagram->m_linkDrag->setTarget(field ? item : nullptr, field ? *field : std::string());
}

bool QBLumoDiagram::Keyboard::drawLink(const LumoEvent&) {
    endLink(true);
    return true;
}

bool QBLumoDiagram::Keyboard::giveUpLink(const LumoEvent&) {
    QBLumoItem* const item = m_linkItem;
    endLink(false);
    setFocus(item, m_linkRow);
    return true;
}

void QBLumoDiagram::Keyboard::endLink(bool tell) {
    const bool linking = isLinking();
    m_linkItem = nullptr;
    if (linking) m_diagram->m_linkDrag->end(tell);
}

// ---- a resize ----

bool QBLumoDiagram::Keyboard::callWhileResizing(const LumoEvent& event, bool* found) {
    static const std::vector<Binding> bindings = {
        {LumoKeyLeft, LumoKeyControl, &Keyboard::moveSplitter},
        {LumoKeyRight, LumoKeyControl, &Keyboard::moveSplitter},
        {LumoKeyUp, LumoKeyControl, &Keyboard::moveSplitter},
        {LumoKeyDown, LumoKeyControl, &Keyboard::moveSplitter},
        {LumoKeyLeft, anyKeys, &Keyboard::resizeBy},
        {LumoKeyRight, anyKeys, &Keyboard::resizeBy},
        {LumoKeyUp, anyKeys, &Keyboard::resizeBy},
        {LumoKeyDown, anyKeys, &Keyboard::resizeBy},
        {LumoKeyReturn, anyKeys, &Keyboard::keepSize},
        {LumoKeyEscape, anyKeys, &Keyboard::restoreSize},
    };
    return call(bindings, event, found);
}

QBLumoSplitter* QBLumoDiagram::Keyboard::splitterOf(const QBLumoItem* item) {
    const auto splitters = item->findChildren<QBLumoSplitter>(true);
    return splitters.empty() ? nullptr : splitters.front();
}

bool QBLumoDiagram::Keyboard::beginResize(const LumoEvent&) {
    QBLumoItem* const item = focusedItem();
    if (!item || !item->getBody()) return false;
    if (m_row >= 0) setFocus(item, -1);
    const QBLumoSplitter* const splitter = splitterOf(item);
    m_resize =
        Resize{item, item->getRect(), item->isSizedByUser(), splitter ? splitter->ratio() : 0.0};
    invalidateRing();
    return true;
}

bool QBLumoDiagram::Keyboard::resizeBy(const LumoEvent& event) {
    QBLumoItem* const item = m_resize->item;
    const bool horizontal = event.keyCode == LumoKeyLeft || event.keyCode == LumoKeyRight;
    const bool grows = event.keyCode == LumoKeyRight || event.keyCode == LumoKeyDown;
    const int length = event.containsEventKey(LumoKeyShift) ? smallResizeStep : resizeStep;
    ItemDrag drag;
    drag.start = item->getRect();
    // From its middle: what leads out of the canvas would be cut.
    drag.startPoint =
        drag.start.origin + LumoPoint{drag.start.size.width / 2, drag.start.size.height / 2};
    drag.edges = horizontal ? EdgeRight : EdgeBottom;
    drag.minimum = itemSizeFor(item->getBody()->minimumSize());
    drag.bounds = m_diagram->getBoundingRect();
    const int step = grows ? length : -length;
    const LumoPoint way = horizontal ? LumoPoint{step, 0} : LumoPoint{0, step};
    const LumoRect rect = draggedRect(drag, drag.startPoint + way);
    if (rect == item->getRect()) return true;
    item->setSizedByUser(true);
    invalidateRing();
    putItem(item, rect);
    m_diagram->layout();
    invalidateRing();
    return true;
}

bool QBLumoDiagram::Keyboard::moveSplitter(const LumoEvent& event) {
    QBLumoSplitter* const splitter = splitterOf(m_resize->item);
    if (!splitter) return true;
    const bool grows = event.keyCode == LumoKeyRight || event.keyCode == LumoKeyDown;
    const double ratio = splitter->ratio() + (grows ? splitterStep : -splitterStep);
    splitter->setRatio(std::clamp(ratio, 0.0, 1.0));
    return true;
}

void QBLumoDiagram::Keyboard::endResize() {
    if (!m_resize) return;
    const Resize ended = *std::exchange(m_resize, std::nullopt);
    invalidateRing();
    m_diagram->tellArranged({{ended.item, ended.start}}, QBLumoContext::Arrangement::Resized);
}

bool QBLumoDiagram::Keyboard::keepSize(const LumoEvent&) {
    endResize();
    return true;
}

bool QBLumoDiagram::Keyboard::restoreSize(const LumoEvent&) {
    const Resize before = *std::exchange(m_resize, std::nullopt);
    invalidateRing();
    before.item->setSizedByUser(before.sizedByUser);
    putItem(before.item, before.start);
    if (QBLumoSplitter* const splitter = splitterOf(before.item))
        splitter->setRatio(before.splitterRatio);
    m_diagram->layout();
    invalidateRing();
    return true;
}

}  // namespace QB::DiagramLumo
