#include <algorithm>
#include <map>

#include "canvas/diagram/auto_layout.h"
#include "canvas/diagram/diagram.h"
#include "canvas/diagram/diagram_gestures.h"
#include "canvas/diagram/diagram_link_drag.h"
#include "canvas/diagram/placement.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"

namespace QB::DiagramLumo {

namespace {

LumoRect unionOf(const std::vector<QBLumoItem*>& items) {
    LumoRect all;
    for (const QBLumoItem* item : items)
        all = lumoUnionRect(all, item->getRect());
    return all;
}

/// The links among @p items as the automatic layout wants them.
LayoutGraph graphOf(const std::vector<QBLumoItem*>& items,
                    const std::vector<QBLumoJoinLink*>& links) {
    LayoutGraph graph;
    std::map<const QBLumoItem*, int> index;
    for (const QBLumoItem* item : items) {
        index[item] = int(graph.boxes.size());
        graph.boxes.push_back(item->getRect().size);
    }
    for (const QBLumoJoinLink* link : links)
        for (const auto& [left, right] : link->allAdaptorPairs()) {
            const auto from = index.find(left->findParent<QBLumoItem>());
            const auto to = index.find(right->findParent<QBLumoItem>());
            if (from != index.end() && to != index.end())
                graph.edges.push_back({from->second, to->second});
        }
    return graph;
}

}  // namespace

// ---- drags ----

void QBLumoDiagram::dragItem(QBLumoItem* item, LumoPoint point) {
    if (!item || item->getParent() != this) return;
    rememberDragStart(item);
    const LumoRect before = item->getRect();
    item->dragToPoint(point, m_shiftHeld);
    if (isSelected(item)) dragGroup(item, before);
    flushDirtyRect();
}

void QBLumoDiagram::rememberDragStart(QBLumoItem* item) {
    if (m_draggedItem == item && !m_dragStart.empty()) return;
    m_draggedItem = item;
    m_dragStart = {{item, item->getRect()}};
    if (!isSelected(item)) return;
    for (QBLumoItem* other : selectedItems())
        if (other != item) m_dragStart.emplace_back(other, other->getRect());
}

void QBLumoDiagram::dragGroup(QBLumoItem* item, const LumoRect& before) {
    if (item->isResizing()) return followCorner(item);
    LumoPoint delta = item->getRect().origin - before.origin;
    const std::vector<QBLumoItem*> group = selectedItems();
    if (item->getRect() != before) putItem(item, before);
    LumoRect all;
    for (const QBLumoItem* member : group)
        all = lumoUnionRect(all, member->translateRect(member->getContentRect(), this));
    delta = clampedGroupDelta(all, delta, getBoundingRect());
    if (delta == LumoPoint()) return;
    for (QBLumoItem* member : group)
        shiftItem(member, delta);
}

/// The others go with the corner of the item that is resized, as far as the canvas reaches.
void QBLumoDiagram::followCorner(const QBLumoItem* resized) {
    LumoRect others;
    LumoPoint delta;
    for (const auto& [item, start] : m_dragStart) {
        if (item == resized)
            delta = item->getRect().origin - start.origin;
        else
            others = lumoUnionRect(others, start);
    }
    delta = clampedGroupDelta(others, delta, getBoundingRect());
    for (const auto& [item, start] : m_dragStart)
        if (item != resized) putItem(item, {start.origin + delta, start.size});
}

void QBLumoDiagram::putItem(QBLumoItem* item, const LumoRect& rect) {
    item->setRect(rect);
}

void QBLumoDiagram::shiftItem(QBLumoItem* item, LumoPoint delta) {
    putItem(item, {item->getRect().origin + delta, item->getRect().size});
}

void QBLumoDiagram::endItemDrag(bool restore) {
    m_draggedItem = nullptr;
    const auto start = std::exchange(m_dragStart, {});
    if (!restore) return tellArranged(start, QBLumoContext::Arrangement::Moved);
    m_gestures->stopAutoScroll();
    for (const auto& [item, rect] : start)
        putItem(item, rect);
    flushDirtyRect();
}

void QBLumoDiagram::moveSelectedItems(int dx, int dy) {
    if (isLinkDragActive()) return;
    FormerPlaces former;
    for (QBLumoItem* item : selectedItems()) {
        former.emplace_back(item, item->getRect());
        shiftItem(item, {dx, dy});
    }
    invalidate();
    tellArranged(former, QBLumoContext::Arrangement::MovedByKey);
}

void QBLumoDiagram::tellArranged(const FormerPlaces& former, QBLumoContext::Arrangement how) {
    bool isAnyElsewhere = false;
    for (const auto& [item, rect] : former) {
        isAnyElsewhere = isAnyElsewhere || item->getRect() != rect;
        if (item->getRect().size != rect.size) how = QBLumoContext::Arrangement::Resized;
    }
    if (isAnyElsewhere && lumoContext()) lumoContext()->itemsArranged(how);
}

// ---- places ----

void QBLumoDiagram::autoLayoutChild(QBLumoObject* object) {
    if (!object || object->getParent() != this) return;
    std::vector<LumoRect> others;
    for (const QBLumoItem* item : items())
        if (item != object) others.push_back(item->getRect());
    const Placement place = findPlace(object->getRect().size, getRect().size, others);
    setRect({getRect().origin, place.diagram});
    object->setRect(place.rect);
}

QBLumoDiagram::FormerPlaces QBLumoDiagram::autoLayout() {
    std::vector<QBLumoItem*> arranged = selectedItems();
    if (arranged.size() < 2) arranged = items();
    std::vector<LumoRect> others;
    for (QBLumoItem* item : items())
        if (std::find(arranged.begin(), arranged.end(), item) == arranged.end())
            others.push_back(item->getRect());
    const LayoutGraph graph = graphOf(arranged, joinLinks());
    const std::vector<LumoPoint> origins =
        others.empty() ? layoutInLayers(graph)
                       : layoutBeside(graph, unionOf(arranged).origin, others);

    FormerPlaces moved;
    for (size_t i = 0; i < arranged.size(); ++i) {
        const LumoRect old = arranged[i]->getRect();
        if (old.origin == origins[i]) continue;
        moved.emplace_back(arranged[i], old);
        putItem(arranged[i], {origins[i], old.size});
    }
    setRect({getRect().origin, grownToHold(getRect().size, unionOf(arranged))});
    repaint();
    return moved;
}

}  // namespace QB::DiagramLumo
