#include "canvas/diagram/focus_place.h"

#include "canvas/controls/list_view.h"
#include "canvas/controls/scroll_view.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"

namespace QB::DiagramLumo {

namespace {

constexpr int linkRingReach = 24;  // from the middle of a link: around its symbol, however turned

LumoRect rowPlace(const QBLumoDiagram* diagram, const QBLumoBaseItemBody* body, int row) {
    const QBLumoListView* const list = body->listView();
    const int height = list->getRowHeight();
    const LumoRect place =
        list->translateRect({0, row * height, lumoWidth(list->getRect()), height}, diagram);
    // A row that is scrolled out has its place at the edge of the list.
    LumoRect shown =
        body->scrollView()->translateRect(body->scrollView()->getBoundingRect(), diagram);
    if (lumoIntersectsRect(place, shown)) return place;
    shown.size.height = std::min(height, shown.size.height);
    if (lumoMinY(place) > lumoMinY(shown))
        shown.origin.y += lumoHeight(body->scrollView()->getRect()) - shown.size.height;
    return shown;
}

LumoRect itemPlace(const QBLumoDiagram* diagram, const QBLumoItem* item) {
    const QBLumoBaseItemBody* const body = item->getBody();
    if (!body) return item->getRect();
    if (diagram->focusedRow() >= 0) return rowPlace(diagram, body, diagram->focusedRow());
    return body->translateRect(body->getBoundingRect(), diagram);
}

}  // namespace

LumoRect focusPlace(const QBLumoDiagram* diagram) {
    LumoObject* const focused = diagram->focusedObject();
    if (const auto* const item = dynamic_cast<QBLumoItem*>(focused))
        return itemPlace(diagram, item);
    if (const auto* const link = dynamic_cast<QBLumoJoinLink*>(focused)) return symbolPlace(link);
    return {};
}

LumoRect symbolPlace(const QBLumoJoinLink* link) {
    const LumoPoint middle = link->translatePoint(link->midPoint(), nullptr);
    return lumoInflateRect({middle, {0, 0}}, linkRingReach, linkRingReach);
}

}  // namespace QB::DiagramLumo
