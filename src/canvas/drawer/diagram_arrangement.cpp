#include "canvas/drawer/diagram_arrangement.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include <QScopedValueRollback>

#include "canvas/diagram/diagram.h"
#include "canvas/diagram/placement.h"
#include "canvas/drawer/diagram_drawer.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"
#include "platform/lumo/lumo_control.h"

namespace QB {

using namespace DiagramLumo;

namespace {

int32_t rounded(double value) {
    return int32_t(std::lround(value));
}

LumoPoint scrollOriginOf(const LumoControl* control) {
    const LumoControlPoint origin = control->getScrollOrigin();
    return {rounded(origin.x / control->getZoom()), rounded(origin.y / control->getZoom())};
}

void scrollTo(LumoControl* control, LumoPoint origin) {
    const double zoom = control->getZoom();
    control->setScrollOrigin({rounded(origin.x * zoom), rounded(origin.y * zoom)});
}

/// Those lie above all others, the last one topmost.
void putInOrder(QBLumoDiagram* diagram, const std::vector<QBLumoItem*>& ordered) {
    const std::vector<QBLumoItem*> items = diagram->items();
    if (ordered.size() <= items.size() &&
        std::equal(ordered.rbegin(), ordered.rend(), items.rbegin()))
        return;
    for (QBLumoItem* item : ordered)
        diagram->bringChildToFront(item);
}

}  // namespace

DiagramArrangement QBLumoDiagramDrawer::arrangement() const {
    DiagramArrangement result;
    if (!m_diagram) return result;
    std::unordered_map<const QBLumoItem*, long> ids;
    for (const auto& [source, entry] : m_items)
        ids[entry.item] = entry.id;
    result.canvas = m_diagram->getRect().size;
    if (getControl()) result.scrollOrigin = scrollOriginOf(getControl());
    for (QBLumoItem* item : m_diagram->items()) {
        const auto id = ids.find(item);
        if (id == ids.end()) continue;
        result.entries.push_back(
            {id->second, item->getRect(), item->isSizedByUser(), m_diagram->isSelected(item)});
    }
    return result;
}

void QBLumoDiagramDrawer::setArrangement(const DiagramArrangement& arrangement) {
    if (!m_diagram) return;
    const QScopedValueRollback<bool> muted(m_isFocusMuted, true);
    std::unordered_map<long, QBLumoItem*> items;
    for (const auto& [source, entry] : m_items)
        items[entry.id] = entry.item;
    std::vector<QBLumoItem*> placed;
    for (const DiagramArrangement::Entry& entry : arrangement.entries) {
        const auto found = items.find(entry.componentId);
        if (found == items.end()) continue;
        placed.push_back(found->second);
        placeItem(found->second, entry);
        items.erase(found);
    }
    LumoRect left;
    for (const auto& [id, item] : items)
        left = lumoUnionRect(left, item->getRect());
    const bool isSized = arrangement.canvas != LumoSize();
    const LumoSize canvas = isSized ? arrangement.canvas : m_diagram->getRect().size;
    m_diagram->setRect({{0, 0}, grownToHold(canvas, left)});
    putInOrder(m_diagram.get(), placed);
    if (getControl()) scrollTo(getControl(), arrangement.scrollOrigin);
    m_diagram->repaint();
}

void QBLumoDiagramDrawer::placeItem(QBLumoItem* item, const DiagramArrangement::Entry& entry) {
    item->setSizedByUser(entry.isSizedByUser);
    item->setRect(entry.rect);
    if (entry.isSelected)
        m_diagram->selectObject(item, true);
    else
        m_diagram->deselectObject(item);
}

void QBLumoDiagramDrawer::arrangeAll() {
    if (!m_diagram) return;
    // The automatic layout takes what is selected, where several are.
    const QScopedValueRollback<bool> muted(m_isFocusMuted, true);
    const std::vector<QBLumoItem*> items = m_diagram->selectedItems();
    const std::vector<QBLumoJoinLink*> links = m_diagram->selectedJoinLinks();
    m_diagram->clearSelection();
    m_diagram->autoLayout();
    for (QBLumoItem* item : items)
        m_diagram->selectObject(item, true);
    for (QBLumoJoinLink* link : links)
        m_diagram->selectObject(link, true);
}

}  // namespace QB
