#include "canvas/controls/splitter.h"

#include <algorithm>

#include "platform/lumo/lumo_context.h"
#include "platform/lumo/lumo_diagram.h"
#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

namespace {

/// What the two panes share; never negative.
int room(const SplitterGeometry& geometry) {
    const int length = geometry.vertical ? geometry.size.height : geometry.size.width;
    return std::max(0, length - SplitterGeometry::thickness);
}

/// A point by its places along the line of the handle and across it.
LumoDoublePoint pointAt(bool vertical, double along, double across) {
    return vertical ? LumoDoublePoint{along, across} : LumoDoublePoint{across, along};
}

}  // namespace

LumoRect SplitterGeometry::handle() const {
    const int place = firstLength();
    return vertical ? LumoRect(0, place, size.width, thickness)
                    : LumoRect(place, 0, thickness, size.height);
}

int32_t SplitterGeometry::firstLength() const {
    return int(room(*this) * ratio);
}

int32_t SplitterGeometry::secondLength() const {
    return int(room(*this) * (1.0 - ratio));
}

double SplitterGeometry::ratioAt(LumoPoint point) const {
    const int length = room(*this);
    if (length == 0) return 0.0;
    return std::clamp(double(vertical ? point.y : point.x) / length, 0.0, 1.0);
}

QBLumoSplitter::QBLumoSplitter(bool vertical)
    : m_first(new QBLumoObject), m_second(new QBLumoObject), m_vertical(vertical) {
    m_first->setMarginConstraint(vertical ? MarginAll & ~MarginBottom : MarginAll & ~MarginRight);
    m_second->setMarginConstraint(vertical ? MarginAll & ~MarginTop : MarginAll & ~MarginLeft);
    addChild(m_first);
    addChild(m_second);
    registerEventResponder(LumoMouseDragging,
                           [this](LumoEvent event) { return responderMouseDragging(event); });
    registerEventResponder(LumoMouseDrop,
                           [this](LumoEvent event) { return responderMouseDrop(event); });
    registerEventResponder(LumoMouseMove,
                           [this](LumoEvent event) { return responderMouseMove(event); });
}

void QBLumoSplitter::setLineDash(std::vector<double> dash) {
    m_lineDash = std::move(dash);
    invalidate();
}

void QBLumoSplitter::setLineColor(const LumoColor& color) {
    m_lineColor = color;
    invalidate();
}

void QBLumoSplitter::setRatio(double ratio) {
    m_ratio = std::clamp(ratio, 0.0, 1.0);
    setRequireToVerifyLayout(true);
    repaint();
}

SplitterGeometry QBLumoSplitter::geometry() const {
    return {getRect().size, m_vertical, m_ratio};
}

LumoRect QBLumoSplitter::getHandleRect() const {
    return geometry().handle();
}

void QBLumoSplitter::customLayout() {
    const SplitterGeometry now = geometry();
    LumoRect first = m_first->getRect();
    LumoRect second = m_second->getRect();
    if (m_vertical) {
        first.origin.y = 0;
        first.size.height = now.firstLength();
        second.size.height = now.secondLength();
        second.origin.y = now.size.height - now.secondLength();
    } else {
        first.origin.x = 0;
        first.size.width = now.firstLength();
        second.size.width = now.secondLength();
        second.origin.x = now.size.width - now.secondLength();
    }
    m_first->setRect(first);
    m_second->setRect(second);
    QBLumoObject::customLayout();
}

void QBLumoSplitter::paintHandle(LumoPainter* painter) const {
    const SplitterGeometry now = geometry();
    const LumoRect handle = now.handle();
    const double across = (m_vertical ? handle.origin.y : handle.origin.x) + 5;
    const int length = m_vertical ? now.size.width : now.size.height;
    const int middle = length / 2;
    const auto go = [&](auto step, double along, double beside) {
        const LumoDoublePoint to = pointAt(m_vertical, along, across + beside);
        (painter->*step)(to.x, to.y);
    };
    painter->setLineWidth(1.0);
    painter->setColor(m_lineColor);
    painter->setLineDash(m_lineDash);
    go(&LumoPainter::moveTo, 0, 0);
    go(&LumoPainter::lineTo, middle - 5, 0);
    go(&LumoPainter::moveTo, middle + 5, 0);
    go(&LumoPainter::lineTo, length, 0);
    painter->stroke();

    painter->setLineDash({});
    for (const int sign : {-1, 1}) {
        go(&LumoPainter::moveTo, middle, sign * 5);
        go(&LumoPainter::lineTo, middle - 3, sign);
        go(&LumoPainter::lineTo, middle + 3, sign);
        painter->closePath();
    }
    // The triangles of panes side by side are outlines, those of panes one above the other full.
    if (m_vertical)
        painter->fill();
    else
        painter->stroke();
}

void QBLumoSplitter::paint(LumoPaintConfig* config, LumoRect rect) {
    {
        LumoPainter painter(config, this);
        paintHandle(&painter);
    }
    QBLumoObject::paint(config, rect);
}

bool QBLumoSplitter::responderMouseDragging(LumoEvent event) {
    const LumoPoint point = event.getMousePoint();
    if (!m_dragging && !lumoPointInRect(point, getHandleRect())) return true;
    m_dragging = true;
    setRatio(geometry().ratioAt(point));
    return false;
}

bool QBLumoSplitter::responderMouseDrop(LumoEvent) {
    const bool wasDragging = m_dragging;
    m_dragging = false;
    return !wasDragging;
}

bool QBLumoSplitter::responderMouseMove(LumoEvent event) {
    LumoDiagram* const shown = diagram();
    if (!shown || !shown->getContext()) return true;
    const bool inHandle = lumoPointInRect(event.getMousePoint(), getHandleRect());
    const int code = m_vertical ? LumoCursorResizeVertical : LumoCursorResizeHorizontal;
    shown->getContext()->notifyCursorChange(shown, inHandle ? code : LumoCursorDefault);
    return !inHandle;
}

}  // namespace QB::DiagramLumo
