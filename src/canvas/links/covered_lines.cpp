#include "canvas/links/covered_lines.h"

#include <vector>

#include "canvas/base/canvas_style.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/items/item_geometry.h"
#include "canvas/links/join_link.h"
#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {
namespace {

constexpr double lineWidth = 1.0;  // wider takes four times the time
/// Weaker than the line where it lies free.
constexpr double lightStrength = 0.45;
constexpr double darkStrength = 0.35;

constexpr int textMargin = 4;  // left and right of a title's text

struct Cover {
    const QBLumoItem* item;  // not owned
    LumoRect body;           // in the diagram's space
};

/// What may matter in @p rect: of very many children few do.
struct Scene {
    std::vector<Cover> covers;
    std::vector<const QBLumoJoinLink*> links;

    Scene(const QBLumoDiagram* diagram, const LumoRect& rect) {
        for (const LumoObject* child : diagram->getChildren()) {
            if (!lumoIntersectsRect(child->getRect(), rect)) continue;
            if (const auto* const item = dynamic_cast<const QBLumoItem*>(child))
                addCover(item);
            else if (const auto* const link = dynamic_cast<const QBLumoJoinLink*>(child))
                links.push_back(link);
        }
    }

private:
    void addCover(const QBLumoItem* item) {
        const LumoRect rect = item->getRect();
        if (item->getBody())
            covers.push_back({item, lumoMovedRect(bodyRectOf(rect.size), rect.origin)});
    }
};

/// The body but for the text of its title, which a line would strike out.
std::vector<LumoRect> clearParts(const Cover& cover) {
    const LumoRect& body = cover.body;
    const LumoRect text = lumoInflateRect(
        lumoMovedRect(cover.item->getBody()->titleTextPlace(), body.origin), textMargin, 0);
    const int32_t top = lumoMinY(text);
    const int32_t bottom = lumoMaxY(text);
    const int32_t height = lumoHeight(text);
    return {{lumoMinX(body), lumoMinY(body), lumoWidth(body), top - lumoMinY(body)},
            {lumoMinX(body), top, lumoMinX(text) - lumoMinX(body), height},
            {lumoMaxX(text), top, lumoMaxX(body) - lumoMaxX(text), height},
            {lumoMinX(body), bottom, lumoWidth(body), lumoMaxY(body) - bottom}};
}

using Line = std::vector<LumoPoint>;

void addPartsIn(LumoPainter* painter, const Line& line, const LumoRect& rect) {
    for (size_t i = 1; i < line.size(); ++i)
        if (const auto part = partInside(line[i - 1], line[i], rect))
            painter->addLine(part->first.x, part->first.y, part->second.x, part->second.y);
}

bool meets(const Line& line, const LumoRect& rect) {
    for (size_t i = 1; i < line.size(); ++i)
        if (partInside(line[i - 1], line[i], rect)) return true;
    return false;
}

}  // namespace

void paintCoveredLines(LumoPainter* painter, const QBLumoDiagram* diagram, const LumoRect& rect) {
    const Scene scene(diagram, rect);
    if (scene.covers.empty()) return;
    LumoColor color = themePalette().text;
    color.alpha = isDarkTheme() ? darkStrength : lightStrength;
    painter->setLineWidth(lineWidth);
    for (const QBLumoJoinLink* link : scene.links) {
        const LumoPoint origin = link->getRect().origin;
        const LumoRect box = lumoMovedRect(link->customDirtyRect(), origin);
        if (!link->isShown() || !lumoIntersectsRect(box, rect)) continue;
        const Line line = link->shownRoute().movedBy(origin).corners();
        for (const Cover& cover : scene.covers) {
            if (!lumoIntersectsRect(cover.body, box) || !meets(line, cover.body)) continue;
            for (const LumoRect& clear : clearParts(cover))
                addPartsIn(painter, line, clear);
        }
        painter->setColor(link->getSelected() ? Style::accentHalf : color);
        painter->stroke();
    }
}

}  // namespace QB::DiagramLumo
