#include "canvas/base/margin_constraint.h"

#include <algorithm>

#include "platform/lumo/lumo_object.h"

namespace QB::DiagramLumo {

LumoPadding capturedMargins(const LumoRect& child, LumoSize size, int32_t mask) {
    LumoPadding margins;
    if (mask & MarginLeft) margins.left = lumoMinX(child);
    if (mask & MarginRight) margins.right = size.width - lumoMaxX(child);
    if (mask & MarginTop) margins.top = lumoMinY(child);
    if (mask & MarginBottom) margins.bottom = size.height - lumoMaxY(child);
    return margins;
}

LumoRect appliedMargins(const LumoRect& child, LumoSize size, const LumoPadding& margins,
                        int32_t mask, bool* squeezed) {
    LumoRect rect = child;
    if (mask & MarginRight) {
        if (mask & MarginLeft) {
            rect.origin.x = margins.left;
            rect.size.width = size.width - margins.left - margins.right;
        } else {
            rect.origin.x = size.width - rect.size.width - margins.right;
        }
    }
    if (mask & MarginBottom) {
        if (mask & MarginTop) {
            rect.origin.y = margins.top;
            rect.size.height = size.height - margins.top - margins.bottom;
        } else {
            rect.origin.y = size.height - rect.size.height - margins.bottom;
        }
    }
    *squeezed = rect.size.width < 0 || rect.size.height < 0;
    rect.size = {std::max(rect.size.width, 0), std::max(rect.size.height, 0)};
    return rect;
}

QBLumoObjectMarginConstraintAddOn::~QBLumoObjectMarginConstraintAddOn() = default;

int32_t QBLumoObjectMarginConstraintAddOn::getMarginConstraint() const {
    return m_mask;
}

void QBLumoObjectMarginConstraintAddOn::setMarginConstraint(int32_t mask) {
    m_mask = mask;
}

void QBLumoObjectMarginConstraintAddOn::captureMargins(const LumoObject* parent) {
    for (LumoObject* child : parent->getChildren()) {
        auto* const addOn = dynamic_cast<QBLumoObjectMarginConstraintAddOn*>(child);
        if (!addOn || addOn->m_margins || addOn->getMarginConstraint() == 0) continue;
        addOn->m_margins = std::make_unique<LumoPadding>(capturedMargins(
            child->getRect(), parent->getBoundingRect().size, addOn->getMarginConstraint()));
    }
}

void QBLumoObjectMarginConstraintAddOn::applyMargins(const LumoObject* parent) {
    // A child's rectangle may make its listeners change the list of children.
    const std::vector<LumoObject*> children = parent->getChildren();
    for (LumoObject* child : children) {
        auto* const addOn = dynamic_cast<QBLumoObjectMarginConstraintAddOn*>(child);
        if (!addOn || !addOn->m_margins || addOn->getMarginConstraint() == 0) continue;
        bool squeezed = false;
        const LumoRect rect =
            appliedMargins(child->getRect(), parent->getBoundingRect().size, *addOn->m_margins,
                           addOn->getMarginConstraint(), &squeezed);
        if (!squeezed) addOn->m_margins.reset();
        child->setRect(rect);
    }
}

}  // namespace QB::DiagramLumo
