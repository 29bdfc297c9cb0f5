#include "canvas/view/canvas_extent.h"

#include "canvas/diagram/diagram.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"

namespace QB::DiagramLumo {

LumoRect contentExtent(const QBLumoDiagram* diagram) {
    LumoRect extent;
    for (const QBLumoItem* item : diagram->items())
        if (item->getVisible()) extent = lumoUnionRect(extent, item->getRect());
    for (const QBLumoJoinLink* link : diagram->joinLinks())
        if (link->isShown())
            extent = lumoUnionRect(extent, link->translateRect(link->customDirtyRect(), diagram));
    return extent;
}

}  // namespace QB::DiagramLumo
