#include "canvas/base/object.h"

#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

namespace {

uint64_t nextSerial() {
    static uint64_t last = 0;
    return ++last;
}

}  // namespace

QBLumoObject::QBLumoObject() : m_serial(nextSerial()) {}
QBLumoObject::~QBLumoObject() = default;

void QBLumoObject::setRect(const LumoRect& rect) {
    const LumoRect before = getRect();
    if (before == rect) return;
    if (before.size != rect.size) captureMargins(this);
    LumoObject::setRect(rect);
    m_rectChanged.fire(this, before);
}

void QBLumoObject::customLayout() {
    LumoObject::customLayout();
    applyMargins(this);
}

void QBLumoObject::paint(LumoPaintConfig* config, LumoRect rect) {
    const LumoColor color = getBackgroundColor();
    if (color.alpha > 0.0) {
        LumoPainter painter(config, this);
        painter.setColor(color);
        painter.addRect(LumoDoubleRect(getBoundingRect()));
        painter.fill();
    }
    LumoObject::paint(config, rect);
}

void QBLumoObject::removedFromDiagram() {}

}  // namespace QB::DiagramLumo
