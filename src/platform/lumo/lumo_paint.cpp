#include "platform/lumo/lumo_paint.h"

#include <algorithm>
#include <cmath>

#include <QPaintEngine>
#include <QPainter>
#include <QVarLengthArray>

#include "platform/lumo/lumo_object.h"
#include "platform/lumo/lumo_paint_device.h"
#include "platform/lumo/lumo_text.h"

namespace {

constexpr QPainter::RenderHints smooth =
    QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform;

uint64_t nextPassId() {
    static uint64_t last = 0;  // painting happens on one thread
    return ++last;
}

bool hasPixels(const QPainter& painter) {
    return painter.paintEngine()->type() == QPaintEngine::Raster;
}

bool isEvenScale(const QTransform& transform) {
    return transform.type() <= QTransform::TxScale && transform.m11() > 0 &&
           qFuzzyCompare(transform.m11(), transform.m22());
}

/// The noise of a transform must not decide between two pixels.
double wholePixel(double place) {
    constexpr double noise = 1e-6;
    return std::floor(place + 0.5 + noise);
}

QPointF wholePixels(QPointF point) {
    return {wholePixel(point.x()), wholePixel(point.y())};
}

/// Each edge is rounded for itself, so that what lies side by side meets.
QRectF wholePixels(const QRectF& rect) {
    const QPointF from = wholePixels(rect.topLeft());
    const QPointF to = wholePixels(rect.bottomRight());
    return {from, QPointF(std::max(to.x(), from.x() + 1), std::max(to.y(), from.y() + 1))};
}

QRectF qtRect(const LumoDoubleRect& rect) {
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

QColor qtColor(const LumoColor& color) {
    const auto part = [](int value) {
        return std::clamp(value, 0, 255);
    };
    QColor result(part(color.red), part(color.green), part(color.blue));
    result.setAlphaF(std::clamp(color.alpha, 0.0, 1.0));
    return result;
}

/// How far the arc runs clockwise, in (0, 360].
double arcSweep(double startDegrees, double endDegrees) {
    const double sweep = endDegrees - startDegrees;
    if (sweep >= 360) return 360;
    return sweep < 0 ? sweep - 360 * std::floor(sweep / 360) : sweep;
}

}  // namespace

LumoPaintConfig::LumoPaintConfig(QPainter* painter, LumoPictureCache* cache, const LumoObject* top)
    : m_painter(painter)
    , m_cache(cache)
    , m_top(top)
    , m_root(painter->deviceTransform())
    , m_world(painter->worldTransform())
    , m_scale(std::sqrt(std::abs(m_root.determinant())))
    , m_onPixelGrid(hasPixels(*painter) && isEvenScale(m_root))
    , m_passId(nextPassId()) {}

QPointF LumoPaintConfig::deviceOrigin(const LumoObject* object) const {
    const LumoObject* const parent = object && object != m_top ? object->getParent() : nullptr;
    if (!parent) return m_root.map(QPointF(0, 0));
    const LumoPoint at = object->getRect().origin;
    const QPointF step(m_root.m11() * at.x + m_root.m21() * at.y,
                       m_root.m12() * at.x + m_root.m22() * at.y);
    const QPointF exact = deviceOrigin(parent) + step;
    return m_onPixelGrid && object->isCachedAsPicture() ? wholePixels(exact) : exact;
}

QTransform LumoPaintConfig::worldTransform(const LumoObject* object) const {
    if (!object) return m_world;
    bool invertible = false;
    const QTransform toDiagram = m_root.inverted(&invertible);
    if (!invertible) return m_world;
    const QPointF origin = toDiagram.map(deviceOrigin(object));
    return QTransform::fromTranslate(origin.x(), origin.y()) * m_world;
}

LumoPainter::LumoPainter(LumoPaintConfig* config, const LumoObject* object)
    : m_config(config), m_object(object) {}

LumoPainter::~LumoPainter() {
    if (!m_begun) return;
    for (size_t depth = 0; depth <= m_saved.size(); ++depth)
        m_config->qtPainter()->restore();
}

QPainter* LumoPainter::begin() {
    QPainter* const painter = m_config->qtPainter();
    if (m_begun) return painter;
    m_begun = true;
    painter->save();
    painter->setWorldTransform(m_config->worldTransform(m_object));
    if ((painter->renderHints() & smooth) != smooth) painter->setRenderHints(smooth);
    return painter;
}

// ---- pen ----

void LumoPainter::setColor(const LumoColor& color) {
    m_pen.color = color;
}

void LumoPainter::setLineWidth(double width) {
    m_pen.width = width;
}

void LumoPainter::setLineCap(int cap) {
    m_pen.cap = cap;
}

void LumoPainter::setLineJoin(int join) {
    m_pen.join = join;
}

void LumoPainter::setLineDash(const std::vector<double>& dash) {
    m_pen.dash = dash;
}

QPen LumoPainter::qtPen() const {
    QPen pen(qtColor(m_pen.color), m_pen.width, Qt::SolidLine,
             m_pen.cap == LumoCapRound ? Qt::RoundCap : Qt::FlatCap,
             m_pen.join == LumoJoinRound   ? Qt::RoundJoin
             : m_pen.join == LumoJoinBevel ? Qt::BevelJoin
                                           : Qt::MiterJoin);
    double length = 0;
    QVector<qreal> pattern;
    for (const double part : m_pen.dash) {
        pattern.push_back(std::max(part, 0.0) / m_pen.width);
        length += pattern.back();
    }
    if (pattern.size() % 2 != 0) pattern += pattern;
    if (length > 0 && std::isfinite(length)) pen.setDashPattern(pattern);
    return pen;
}

// ---- path ----

QPainterPath& LumoPainter::path() {
    if (m_rectangle) m_path.addRect(*m_rectangle);
    m_rectangle.reset();
    return m_path;
}

void LumoPainter::moveTo(double x, double y) {
    path().moveTo(x, y);
}

void LumoPainter::lineTo(double x, double y) {
    // A path that stands nowhere begins here, not at the origin.
    if (path().isEmpty() && m_path.elementCount() == 0) m_path.moveTo(x, y);
    m_path.lineTo(x, y);
}

void LumoPainter::addLine(double x0, double y0, double x1, double y1) {
    moveTo(x0, y0);
    lineTo(x1, y1);
}

void LumoPainter::addRect(double x, double y, double w, double h) {
    const QRectF rect(x, y, w, h);
    if (!m_rectangle && m_path.elementCount() == 0)
        m_rectangle = rect;
    else
        path().addRect(rect);
}

void LumoPainter::addRect(const LumoDoubleRect& rect) {
    addRect(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}

void LumoPainter::addArc(double cx, double cy, double r, double startDegrees, double endDegrees) {
    const QRectF box(cx - r, cy - r, 2 * r, 2 * r);
    path().arcMoveTo(box, -startDegrees);
    const double sweep = arcSweep(startDegrees, endDegrees);
    m_path.arcTo(box, -startDegrees, -sweep);
    if (sweep >= 360) m_path.closeSubpath();
}

void LumoPainter::arcTo(double cx, double cy, double r, double startDegrees, double endDegrees) {
    if (path().elementCount() == 0) return addArc(cx, cy, r, startDegrees, endDegrees);
    m_path.arcTo(QRectF(cx - r, cy - r, 2 * r, 2 * r), -startDegrees,
                 -arcSweep(startDegrees, endDegrees));
}

void LumoPainter::addRoundedRect(const LumoDoubleRect& rect, double radius) {
    path().addRoundedRect(qtRect(rect), radius, radius);
}

void LumoPainter::addPath(const QPainterPath& added) {
    path().addPath(added);
}

void LumoPainter::closePath() {
    path().closeSubpath();
}

void LumoPainter::clearPath() {
    m_rectangle.reset();
    if (m_path.elementCount() != 0) m_path = QPainterPath();
}

// ---- drawing ----

void LumoPainter::fill() {
    fillPreserve();
    clearPath();
}

void LumoPainter::fillPreserve() {
    if (m_rectangle) return fillRectangle(*m_rectangle);
    if (m_path.elementCount() == 0) return;
    m_path.setFillRule(Qt::WindingFill);
    begin()->fillPath(m_path, qtColor(m_pen.color));
}

void LumoPainter::fillRectangle(const QRectF& rect) {
    if (rect.isEmpty()) return;
    QPainter* const painter = begin();
    const QTransform device = painter->deviceTransform();
    if (!hasPixels(*painter) || device.type() > QTransform::TxScale)
        return painter->fillRect(rect, qtColor(m_pen.color));
    // By its corners: mapRect would find the far edge through the width, with other noise.
    const QRectF onDevice = QRectF(device.map(rect.topLeft()), device.map(rect.bottomRight()));
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->fillRect(device.inverted().mapRect(wholePixels(onDevice.normalized())),
                      qtColor(m_pen.color));
    painter->setRenderHint(QPainter::Antialiasing, true);
}

/// Round ends of a pen as thin as this look like square ones, which need no path.
bool LumoPainter::endsAreThin() const {
    constexpr double thin = 2.0;  // pixels of the device
    return m_pen.width * m_config->scale() <= thin;
}

bool LumoPainter::pathIsSegments() const {
    if (m_pen.cap == LumoCapRound && !endsAreThin()) return false;
    if (m_path.elementCount() % 2 != 0) return false;
    for (int i = 0; i < m_path.elementCount(); ++i) {
        const QPainterPath::ElementType wanted =
            i % 2 == 0 ? QPainterPath::MoveToElement : QPainterPath::LineToElement;
        if (m_path.elementAt(i).type != wanted) return false;
    }
    return true;
}

void LumoPainter::strokeSegments() {
    QPainter* const painter = begin();
    QPen pen = qtPen();
    if (m_pen.cap == LumoCapRound) pen.setCapStyle(Qt::SquareCap);
    painter->setPen(pen);
    QVarLengthArray<QLineF, 4> lines;
    for (int i = 0; i < m_path.elementCount(); i += 2)
        lines.append(QLineF(m_path.elementAt(i), m_path.elementAt(i + 1)));
    painter->drawLines(lines.constData(), lines.size());
}

void LumoPainter::stroke() {
    if (path().elementCount() == 0) return;
    if (pathIsSegments())
        strokeSegments();
    else
        begin()->strokePath(m_path, qtPen());
    clearPath();
}

void LumoPainter::drawLine(double x0, double y0, double x1, double y1) {
    QPainter* const painter = begin();
    QPen pen = qtPen();
    pen.setCapStyle(Qt::FlatCap);
    painter->setPen(pen);
    painter->drawLine(QLineF(x0, y0, x1, y1));
}

void LumoPainter::clip() {
    QPainter* const painter = begin();
    if (m_rectangle)
        painter->setClipRect(*m_rectangle, Qt::IntersectClip);
    else
        painter->setClipPath(m_path, Qt::IntersectClip);
    clearPath();
}

void LumoPainter::drawText(const std::string& text, const LumoFont& font, int align,
                           const LumoDoubleRect& rect, LumoDrawTextResult* result) {
    const double room = (align & LumoAlignElide) != 0 ? rect.size.width : -1;
    const LumoTextLine& line = lumoTextLine(text, font, room);
    if (result) result->size = {line.width, line.height};
    if (line.text.isEmpty() || m_pen.color.alpha <= 0) return;
    const double slack = rect.size.width - line.width;
    const double x = rect.origin.x + ((align & LumoAlignCenter) != 0  ? slack / 2
                                      : (align & LumoAlignRight) != 0 ? slack
                                                                      : 0);
    const double y = rect.origin.y + (rect.size.height - line.height) / 2;
    QPainter* const painter = begin();
    painter->setPen(qtColor(m_pen.color));
    lumoDrawTextLine(painter, QPointF(x, y), line);
}

void LumoPainter::drawImage(const LumoImage& image, double alpha, const LumoDoubleRect& rect) {
    drawImage(image.image(m_config->scale()), alpha, rect);
}

void LumoPainter::drawImage(const QImage& image, double alpha, const LumoDoubleRect& rect) {
    if (image.isNull() || alpha <= 0) return;
    QPainter* const painter = begin();
    const double opacity = painter->opacity();
    painter->setOpacity(opacity * alpha);
    painter->drawImage(qtRect(rect), image);
    painter->setOpacity(opacity);
}

void LumoPainter::drawPicture(const LumoPicture& picture, LumoDoublePoint point, double alpha) {
    const LumoDoubleSize size = picture.size();
    drawPictureInRect(picture, alpha,
                      lumoMakeDoubleRect(point.x, point.y, size.width, size.height));
}

void LumoPainter::drawPictureInRect(const LumoPicture& picture, double alpha,
                                    const LumoDoubleRect& rect) {
    if (alpha <= 0 || rect.size.width <= 0 || rect.size.height <= 0) return;
    if (alpha >= 1) return lumoReplayPicture(begin(), picture, qtRect(rect));
    LumoPaintSurface surface(*begin(), qtRect(rect));
    lumoReplayPicture(surface.painter(), picture, qtRect(rect));
    surface.drawOn(begin(), alpha);
}

void LumoPainter::composePictures(const LumoPicture& destination, const LumoPicture& source,
                                  int mode, const LumoDoubleRect& rect) {
    const QRectF area = qtRect(rect);
    LumoPaintSurface below(*begin(), area);
    LumoPaintSurface above(*begin(), area);
    lumoReplayPicture(below.painter(), destination, area);
    lumoReplayPicture(above.painter(), source, area);
    below.compose(above, mode == LumoComposeInside ? QPainter::CompositionMode_SourceIn
                                                   : lumoCompositionMode(mode));
    below.drawOn(begin(), 1);
}

void LumoPainter::composePaintActions(const LumoPicture::Action& first,
                                      const LumoPicture::Action& second, int mode,
                                      const LumoDoubleRect& rect) {
    const QRectF area = qtRect(rect);
    LumoPaintSurface below(*begin(), area);
    LumoPaintSurface above(*begin(), area);
    lumoRunAction(below.painter(), first, area.topLeft());
    lumoRunAction(above.painter(), second, area.topLeft());
    below.compose(above, mode == LumoComposeInside ? QPainter::CompositionMode_DestinationIn
                                                   : lumoCompositionMode(mode));
    below.drawOn(begin(), 1);
}

// ---- state ----

void LumoPainter::save() {
    begin()->save();
    m_saved.push_back(m_pen);
}

void LumoPainter::restore() {
    if (m_saved.empty()) return;
    m_config->qtPainter()->restore();
    m_pen = std::move(m_saved.back());
    m_saved.pop_back();
}

void LumoPainter::translate(double dx, double dy) {
    begin()->translate(dx, dy);
}

void LumoPainter::rotate(double degrees) {
    begin()->rotate(degrees);
}

void LumoPainter::scale(double factor) {
    begin()->scale(factor, factor);
}

LumoPainter* lumoCreatePainter(LumoPaintConfig* config) {
    return new LumoPainter(config, nullptr);
}

LumoPainter* lumoCreatePainterWithObject(LumoPaintConfig* config, const LumoObject* object) {
    return new LumoPainter(config, object);
}

void lumoDestroyPainter(LumoPainter* painter) {
    delete painter;
}
