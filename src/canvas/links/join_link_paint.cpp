#include <algorithm>
#include <cmath>

#include "canvas/base/canvas_style.h"
#include "canvas/links/join_link.h"
#include "platform/lumo/lumo_diagram.h"

/// How a link looks. Painting only paints: routes stand since layout.
namespace QB::DiagramLumo {
namespace {

constexpr double lineWidth = 2.0;
constexpr double selectionHalo = 2.0;
constexpr int wavesMargin = 8;  // what the widest wave needs beyond the box of a short route

LumoColor withAlpha(LumoColor color, double alpha) {
    color.alpha = alpha;
    return color;
}

LumoDoublePoint toDouble(LumoPoint point) {
    return {double(point.x), double(point.y)};
}

/// The way from the end of a stub to the symbol.
struct Leg {
    LumoDoublePoint from;
    LumoDoublePoint to;
    bool isThere = false;  // the symbol may be nearer than it is large
};

Leg legTo(LumoPoint stub, LumoPoint middle) {
    const LumoDoublePoint from = toDouble(stub);
    const LumoDoublePoint to = toDouble(middle);
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    if (length <= symbolReach) return {from, from, false};
    const double part = (length - symbolReach) / length;
    return {from, {from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part}, true};
}

/// The smallest rectangle around @p rect turned about (0, 0) and moved to @p middle.
LumoRect turnedBox(const LumoDoubleRect& rect, double angle, LumoPoint middle) {
    QTransform turn;
    turn.translate(middle.x, middle.y);
    turn.rotate(angle);
    const QRectF source(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
    const QRect box = turn.mapRect(source).toAlignedRect();
    return {box.x(), box.y(), box.width(), box.height()};
}

}  // namespace

/// Whatever changes route or label asks for it: every paint and every hit wants the boxes of all
/// links.
void QBLumoJoinLink::measureBoxes() {
    m_routeBox = m_primary.isEmpty() ? LumoRect() : routeBox(m_primary);
    m_labelBox = LumoRect();
    if (m_primary.isEmpty() || m_joinType != 0 || m_label.empty()) return;
    const JoinSymbol painted = symbol();
    m_labelBox = turnedBox(joinLabelRect(painted), painted.paintAngle(), painted.middle);
}

LumoRect QBLumoJoinLink::customDirtyRect() const {
    if (m_primary.isEmpty()) return {};
    const int margin = m_promptRunning ? wavesMargin : 0;
    const LumoRect box = lumoInflateRect(m_routeBox, margin, margin);
    return m_labelBox == LumoRect() ? box : lumoUnionRect(box, m_labelBox);
}

void QBLumoJoinLink::paint(LumoPaintConfig* config, LumoRect rect) {
    if (!getVisible()) return;
    if (!m_primary.isEmpty()) {
        LumoPainter painter(config, this);
        if (m_promptRunning) paintPromptBack(&painter);
        const JoinSymbol painted = symbol();
        if (getSelected()) {
            paintHaloLine(&painter, Style::accentHalf, selectionHalo);
            paint_drawJoinImageSelection(&painter, painted);
        }
        paintLine(&painter);
        paint_drawJoinImage(&painter, painted);
        if (m_promptRunning) paintPromptFront(&painter);
    }
    QBLumoObject::paint(config, rect);
}

JoinSymbol QBLumoJoinLink::symbol() const {
    const LumoDiagram* const canvas = diagram();
    return {m_primary.middle(), m_primary.angle(), m_joinType, m_label,
            canvas ? canvas->getBackgroundColor() : LumoColor()};
}

/// Flat segments without a path: a path with round caps costs three times as much. Only the stubs
/// are rounded, so that they meet the segments without a notch; each is a path of its own, since
/// one of both would be filled line by line from the one to the other.
void QBLumoJoinLink::paintLine(LumoPainter* painter) const {
    const LumoPoint middle = m_primary.middle();
    painter->setColor(Style::linkGrey);
    painter->setLineWidth(lineWidth);
    painter->setLineCap(LumoCapFlat);
    for (const LumoPoint stub : {m_primary.startStub(), m_primary.endStub()}) {
        const Leg leg = legTo(stub, middle);
        if (leg.isThere) painter->addLine(leg.from.x, leg.from.y, leg.to.x, leg.to.y);
    }
    painter->stroke();
    painter->setLineJoin(LumoJoinBevel);
    painter->setLineCap(LumoCapRound);
    const LumoPoint start = m_primary.start;
    const LumoPoint end = m_primary.end;
    painter->addLine(start.x, start.y, m_primary.startStub().x, start.y);
    painter->stroke();
    painter->addLine(m_primary.endStub().x, end.y, end.x, end.y);
    painter->stroke();
}

/// With a pen of 2 * @p h + 2: what a symbol's halo of the same h goes on with.
void QBLumoJoinLink::paintHaloLine(LumoPainter* painter, const LumoColor& color, double h) const {
    painter->setColor(color);
    painter->setLineJoin(LumoJoinRound);
    painter->setLineCap(LumoCapRound);
    painter->setLineWidth(2 * h + 2);
    painter->addPath(wholeLine());
    painter->stroke();
}

/// From end to end, as if there were no symbol.
QPainterPath QBLumoJoinLink::wholeLine() const {
    QPainterPath line;
    line.moveTo(m_primary.start.x, m_primary.start.y);
    line.lineTo(m_primary.startStub().x, m_primary.start.y);
    line.lineTo(m_primary.endStub().x, m_primary.end.y);
    line.lineTo(m_primary.end.x, m_primary.end.y);
    return line;
}

double QBLumoJoinLink::promptProgress() const {
    return m_promptAnimation.elapsed() / m_promptAnimation.duration();
}

void QBLumoJoinLink::paintPromptBack(LumoPainter* painter) const {
    for (const PromptWave& wave : promptWaves(promptProgress())) {
        paintHaloLine(painter, withAlpha(Style::promptTeal, wave.alpha), wave.h);
        paint_drawJoinImageHalo(painter, symbol(), wave.h);
    }
}

/// The link in one colour: as one path, for what covers itself would flash twice as strongly.
void QBLumoJoinLink::paintPromptFront(LumoPainter* painter) const {
    const double alpha = promptFlashAlpha(promptProgress());
    if (!(alpha > 0)) return;
    const JoinSymbol painted = symbol();
    QTransform turn;
    turn.translate(painted.middle.x, painted.middle.y);
    turn.rotate(painted.paintAngle());

    QPainterPathStroker stroker;
    stroker.setWidth(lineWidth);
    QPainterPath shape = stroker.createStroke(wholeLine());
    shape.addPath(turn.map(joinSymbolPath(m_joinType)));
    painter->setColor(withAlpha(Style::promptFlash, alpha));
    painter->addPath(shape);
    painter->fill();
}

}  // namespace QB::DiagramLumo
