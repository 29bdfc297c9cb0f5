#include "canvas/items/item_look.h"

#include <algorithm>
#include <cmath>

#include "canvas/base/canvas_style.h"
#include "platform/lumo/lumo_object.h"
#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

namespace {

const std::string unknownTitle = "<?>";
const std::string ellipsis = "\u2026";

double widthOf(const std::string& text) {
    return text.empty() ? 0.0 : lumoLayoutHelper().measureText(text, Style::itemFont).width;
}

/// A line inside of the edges of a rectangle.
struct FrameLine {
    LumoDoubleRect rect;  // its middle
    double width;
};

/// A line along the inside of @p outer, in the space of @p object, that covers whole pixels of the
/// device: on fractions of pixels it would be blurred at zooms that are no whole numbers.
FrameLine frameLine(const LumoPaintConfig* config, const LumoObject* object,
                    const LumoRect& outer) {
    const bool grid = config->onPixelGrid();
    const double scale = grid ? config->scale() : 1.0;
    const double width = grid ? std::max(1.0, std::floor(scale)) : 1.0;
    const QPointF origin = config->deviceOrigin(object);
    const auto place = [&](double edge, double start, double inwards) {
        if (!grid) return edge + inwards;
        return (std::round(start + edge * scale) + inwards - start) / scale;
    };
    const double left = place(lumoMinX(outer), origin.x(), width / 2);
    const double right = place(lumoMaxX(outer), origin.x(), -width / 2);
    const double top = place(lumoMinY(outer), origin.y(), width / 2);
    const double bottom = place(lumoMaxY(outer), origin.y(), -width / 2);
    return {{left, top, right - left, bottom - top}, width / scale};
}

/// The strip: rounded above; below too if the body is hardly higher than it.
void addStrip(LumoPainter* painter, const LumoDoubleRect& body) {
    constexpr double radius = Style::cornerRadius;
    if (body.size.height < Style::titleHeight + radius) {
        painter->addRoundedRect(body, radius);
        return;
    }
    const double left = body.origin.x;
    const double top = body.origin.y;
    const double right = left + body.size.width;
    painter->moveTo(left, Style::titleHeight);
    painter->lineTo(left, top + radius);
    painter->arcTo(left + radius, top + radius, radius, 180, 270);
    painter->arcTo(right - radius, top + radius, radius, 270, 360);
    painter->lineTo(right, Style::titleHeight);
    painter->closePath();
}

}  // namespace

ItemColors itemColors(bool selected) {
    const ThemePalette& palette = themePalette();
    const bool dark = isDarkTheme();
    const LumoColor plainTitle = dark ? LumoColor{70, 74, 78, 1} : LumoColor{229, 233, 237, 1};
    const LumoColor accentTitle = dark ? LumoColor{29, 99, 143, 1} : LumoColor{168, 216, 244, 1};
    const LumoColor accentBorder = dark ? Style::symbolAccent : Style::labelAccent;
    const LumoColor plainBorder = dark ? LumoColor{130, 134, 138, 1} : LumoColor{140, 146, 152, 1};
    return {selected ? accentTitle : plainTitle, palette.itemBackground,
            selected ? accentBorder : plainBorder, palette.titleText};
}

std::string TitleText::whole() const {
    if (isUnknown()) return unknownTitle;
    if (name.empty()) return alias;
    return alias.empty() ? name : name + " (" + alias + ")";
}

std::vector<std::string> TitleText::fitted(double width) const {
    if (name.empty() || alias.empty()) {
        const std::string only = lineStart(whole(), width);
        return {lumoLayoutHelper().elide(only, Style::itemFont, width)};
    }
    const std::string first = lineStart(name, width);
    const std::string second = lineStart(alias, width);
    const double brackets = widthOf(" ()");
    const double least = std::min(widthOf(first), widthOf(ellipsis));
    const double forAlias = std::max(0.0, std::min(widthOf(second), width - brackets - least));
    const double forName = std::max(0.0, width - brackets - forAlias);
    return {lumoLayoutHelper().elide(first, Style::itemFont, forName), " (",
            lumoLayoutHelper().elide(second, Style::itemFont, forAlias), ")"};
}

bool TitleText::isElided(double width) const {
    std::string shown;
    for (const std::string& part : fitted(width))
        shown += part;
    return shown != whole();
}

std::string lineStart(const std::string& text, double width) {
    constexpr size_t bytesAtPixel = 2;  // a letter is wider than 3 pixels and has at most 4 bytes
    const size_t enough = size_t(std::max(width, 0.0)) * bytesAtPixel + 64;
    if (text.size() <= enough) return text;
    size_t end = enough;
    while (end > 0 && (text[end] & 0xC0) == 0x80)  // inside of a character
        --end;
    return text.substr(0, end) + ellipsis;
}

void paintItemFrame(LumoPainter* painter, const LumoObject* body, const ItemColors& colors,
                    const std::vector<double>& dash) {
    const LumoSize size = body->getRect().size;
    const FrameLine border = frameLine(painter->config(), body, body->getBoundingRect());
    painter->setColor(colors.body);
    painter->addRoundedRect(border.rect, Style::cornerRadius);
    painter->fill();
    painter->setColor(colors.title);
    addStrip(painter, border.rect);
    painter->fill();

    painter->setColor(colors.border);
    painter->setLineWidth(border.width);
    painter->setLineDash(dash);
    painter->addRoundedRect(border.rect, Style::cornerRadius);
    painter->stroke();
    if (colors.title == colors.body || size.height <= Style::titleHeight) return;
    const FrameLine strip =
        frameLine(painter->config(), body,
                  {0, Style::titleHeight, size.width, size.height - Style::titleHeight});
    painter->drawLine(border.rect.origin.x, strip.rect.origin.y,
                      border.rect.origin.x + border.rect.size.width, strip.rect.origin.y);
}

void paintItemTitle(LumoPainter* painter, const TitleText& title, const LumoRect& area,
                    const LumoColor& color) {
    LumoColor ink = color;
    if (title.isUnknown()) ink.alpha /= 2;
    painter->setColor(ink);
    double x = lumoMinX(area);
    for (const std::string& part : title.fitted(lumoWidth(area))) {
        const double width = widthOf(part);
        painter->drawText(part, Style::itemFont, LumoAlignLeft,
                          {x, double(lumoMinY(area)), width, double(lumoHeight(area))});
        x += width;
    }
}

}  // namespace QB::DiagramLumo
