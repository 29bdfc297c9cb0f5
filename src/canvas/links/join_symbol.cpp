#include "canvas/links/join_symbol.h"

#include <cmath>
#include <map>
#include <tuple>

#include <QImage>
#include <QPainter>

#include "canvas/base/canvas_style.h"
#include "canvas/links/link_geometry.h"

namespace QB::DiagramLumo {
namespace {

enum SymbolType : int { Custom = 0, Inner = 2, Left = 3, Right = 4, Cross = 5, FullOuter = 6 };

constexpr double discAway = 8.5;
constexpr double discRadius = 12.5;
constexpr double outlineRadius = 11.0;
constexpr double crossAway = 11.0;
constexpr double crossRadius = 10.0;
constexpr double symbolWidth = 42.0;
constexpr double selectionHalo = 2.0;
constexpr int labelFontSize = 8;  // the items' less 3

QPainterPath circle(double x, double radius) {
    QPainterPath path;
    path.addEllipse(QPointF(x, 0), radius, radius);
    return path;
}

QPainterPath twoCircles(double away, double radius) {
    QPainterPath path = circle(-away, radius);
    path.addPath(circle(away, radius));
    path.setFillRule(Qt::WindingFill);
    return path;
}

const QPainterPath& lens() {
    static const QPainterPath path =
        circle(-discAway, discRadius).intersected(circle(discAway, discRadius));
    return path;
}

/// The part of the circles that the join keeps.
const QPainterPath& keptPart(int joinType) {
    static const QPainterPath left = circle(-discAway, discRadius);
    static const QPainterPath right = circle(discAway, discRadius);
    if (joinType == Left) return left;
    if (joinType == Right) return right;
    return joinType == FullOuter ? joinSymbolPath(FullOuter) : lens();
}

LumoColor discBackground(const LumoColor& background) {
    return background.alpha > 0 ? background : themePalette().canvas;
}

void fillPath(LumoPainter* painter, const QPainterPath& path, const LumoColor& color) {
    painter->setColor(color);
    painter->addPath(path);
    painter->fill();
}

void drawCircles(LumoPainter* painter, int joinType, const LumoColor& background) {
    fillPath(painter, joinSymbolPath(joinType), background);
    fillPath(painter, keptPart(joinType), Style::symbolAccent);
    static const QPainterPath outline = twoCircles(discAway, outlineRadius);
    painter->setColor(themePalette().text);
    painter->setLineWidth(2.0);
    painter->addPath(outline);
    painter->stroke();
}

void drawCross(LumoPainter* painter) {
    fillPath(painter, joinSymbolPath(Cross), Style::symbolAccent);
    const double x = std::trunc(Style::crossVectorX * symbolWidth);
    const double y = std::trunc(Style::crossVectorY * symbolWidth);
    painter->setColor(themePalette().text);
    painter->setLineWidth(1.0);
    painter->setLineCap(LumoCapRound);
    for (const double from : {-y, y})
        for (const double to : {-y, y})
            painter->addLine(-x + 0.5, from + 0.5, x + 0.5, to + 0.5);
    painter->stroke();
}

/// The mark of a join in the user's own words.
void drawPencil(LumoPainter* painter) {
    painter->save();
    painter->rotate(45);
    QPainterPath shape;
    shape.addPolygon(QPolygonF({{-3, -12.5}, {3, -12.5}, {3, 7.5}, {0, 12.5}, {-3, 7.5}}));
    shape.closeSubpath();
    fillPath(painter, shape, {255, 255, 255, 1});
    painter->setColor({0, 0, 0, 1});
    painter->setLineWidth(1.5);
    painter->addPath(shape);
    painter->addLine(-3, 6.5, 3, 6.5);
    painter->addLine(-3, -8.5, 3, -8.5);
    painter->stroke();
    painter->restore();
}

/// Around (0, 0), not turned, without text.
void drawSymbol(LumoPainter* painter, int joinType, const LumoColor& background) {
    paint_drawJoinImageEraseBg(painter, joinType, background);
    if (joinType == Cross) return drawCross(painter);
    if (joinType != Custom) return drawCircles(painter, joinType, background);
    fillPath(painter, joinSymbolPath(Custom), themePalette().text);
    drawPencil(painter);
}

void strokeOutline(LumoPainter* painter, int joinType, double h) {
    painter->setLineCap(LumoCapFlat);
    painter->setLineWidth(2 * h + 2);
    painter->addPath(joinSymbolPath(joinType));
    painter->stroke();
}

void drawSelection(LumoPainter* painter, int joinType) {
    painter->setColor(Style::accentHalf);
    strokeOutline(painter, joinType, selectionHalo);
}

// ---- shared pictures ----

enum class Shared { Symbol, Selection };

constexpr double pictureLeft = -25;
constexpr double pictureTop = -17;
constexpr double pictureWidth = 50;
constexpr double pictureHeight = 34;
/// Pixels of a picture for one of the screen: it is drawn turned, and must not blur.
constexpr double pictureFineness = 2;
constexpr size_t maxPictures = 64;

using PictureKey = std::tuple<Shared, int, bool, int, int, int, int, int>;

std::map<PictureKey, QImage>& pictures() {
    static std::map<PictureKey, QImage> all;
    return all;
}

QImage makePicture(Shared part, int joinType, const LumoColor& background, double scale) {
    const double fineness = scale * pictureFineness;
    QImage image(int(std::ceil(pictureWidth * fineness)), int(std::ceil(pictureHeight * fineness)),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter qtPainter(&image);
    qtPainter.scale(image.width() / pictureWidth, image.height() / pictureHeight);
    qtPainter.translate(-pictureLeft, -pictureTop);
    LumoPaintConfig config(&qtPainter);
    LumoPainter painter(&config, nullptr);
    if (part == Shared::Symbol)
        drawSymbol(&painter, joinType, background);
    else
        drawSelection(&painter, joinType);
    return image;
}

const QImage& sharedPicture(Shared part, int joinType, const LumoColor& background, double scale) {
    const PictureKey key(part, joinType, isDarkTheme(), background.red, background.green,
                         background.blue, int(std::lround(background.alpha * 255)),
                         int(std::lround(scale * 1000)));
    auto& all = pictures();
    const auto found = all.find(key);
    if (found != all.end()) return found->second;
    if (all.size() >= maxPictures) all.clear();  // many zooms: only the last one is in use
    return all.emplace(key, makePicture(part, joinType, background, scale)).first->second;
}

/// False in a pass without a picture cache: then the caller draws vectors.
bool drawShared(LumoPainter* painter, Shared part, int joinType, const LumoColor& background) {
    const LumoPaintConfig* const config = painter->config();
    if (!config->pictureCache()) return false;
    painter->drawImage(sharedPicture(part, joinType, background, config->scale()), 1.0,
                       {pictureLeft, pictureTop, pictureWidth, pictureHeight});
    return true;
}

LumoFont labelFont() {
    return {Style::itemFont.family, labelFontSize};
}

void drawLabel(LumoPainter* painter, const JoinSymbol& symbol) {
    const LumoDoubleRect rect = joinLabelRect(symbol);
    if (!(rect.size.width > 0)) return;
    painter->setColor(isDarkTheme() ? LumoColor{255, 255, 255, 1} : Style::labelAccent);
    painter->drawText(symbol.label, labelFont(), LumoAlignLeft, rect);
}

void turnInto(LumoPainter* painter, const JoinSymbol& symbol) {
    painter->translate(symbol.middle.x, symbol.middle.y);
    painter->rotate(symbol.paintAngle());
}

}  // namespace

double JoinSymbol::paintAngle() const {
    return joinType == Custom ? uprightAngle(angle) : angle;
}

void paint_drawJoinImage(LumoPainter* painter, const JoinSymbol& symbol) {
    painter->save();
    turnInto(painter, symbol);
    const LumoColor background = discBackground(symbol.background);
    if (!drawShared(painter, Shared::Symbol, symbol.joinType, background))
        drawSymbol(painter, symbol.joinType, background);
    drawLabel(painter, symbol);
    painter->restore();
}

void paint_drawJoinImageEraseBg(LumoPainter* painter, int joinType, const LumoColor& background) {
    if (joinType == FullOuter) fillPath(painter, joinSymbolPath(FullOuter), background);
}

void paint_drawJoinImageSelection(LumoPainter* painter, const JoinSymbol& symbol) {
    painter->save();
    turnInto(painter, symbol);
    if (!drawShared(painter, Shared::Selection, symbol.joinType, {}))
        drawSelection(painter, symbol.joinType);
    painter->restore();
}

void paint_drawJoinImageHalo(LumoPainter* painter, const JoinSymbol& symbol, double h) {
    painter->save();
    turnInto(painter, symbol);
    strokeOutline(painter, symbol.joinType, h);
    painter->restore();
}

const QPainterPath& joinSymbolPath(int joinType) {
    static const QPainterPath discs = twoCircles(discAway, discRadius);
    static const QPainterPath cross = twoCircles(crossAway, crossRadius);
    return joinType == Cross ? cross : discs;
}

LumoDoubleRect joinLabelRect(const JoinSymbol& symbol) {
    if (symbol.joinType != Custom || symbol.label.empty()) return {};
    const LumoDoubleSize size = lumoLayoutHelper().measureText(symbol.label, labelFont());
    return {-size.width / 2, size.height / 2 + discRadius, size.width, size.height};
}

void dropJoinSymbolPictures() {
    pictures().clear();
}

int joinSymbolPictureCount() {
    return int(pictures().size());
}

}  // namespace QB::DiagramLumo
