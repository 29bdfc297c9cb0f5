#include "platform/lumo/lumo_control.h"

#include <cmath>

#include "platform/lumo/lumo_context.h"
#include "platform/lumo/lumo_dispatch.h"

namespace {
/// Of a quotient or product that is a whole number.
constexpr double noise = 1e-6;
}  // namespace

LumoControl::LumoControl(LumoContext* context)
    : m_context(nullptr), m_dispatcher(std::make_unique<LumoDispatcher>(this)) {
    if (context) context->addControl(this);
}

LumoControl::~LumoControl() {
    if (m_context) m_context->removeControl(this);
}

LumoPoint LumoControl::controlSpaceToDiagramSpace(LumoControlPoint point) const {
    const LumoControlPoint origin = getScrollOrigin();
    const double zoom = getZoom();
    return {int32_t(std::floor((double(point.x) + origin.x) / zoom + noise)),
            int32_t(std::floor((double(point.y) + origin.y) / zoom + noise))};
}

LumoControlPoint LumoControl::diagramSpaceToControlSpace(LumoPoint point) const {
    const LumoControlPoint origin = getScrollOrigin();
    const double zoom = getZoom();
    return {int32_t(std::ceil(point.x * zoom - origin.x - noise)),
            int32_t(std::ceil(point.y * zoom - origin.y - noise))};
}

void LumoControl::layoutWanted() {}
