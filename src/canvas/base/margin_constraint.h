#pragma once

#include <memory>
#include <vector>

#include "platform/lumo/lumo_types.h"

class LumoObject;

namespace QB::DiagramLumo {

enum MarginConstraint : int32_t {
    MarginLeft = 1,
    MarginRight = 2,
    MarginTop = 4,
    MarginBottom = 8,
    MarginAll = 15,
};

/// The distances of @p child to the edges of a parent of @p size, for the sides in @p mask; the
/// others are 0.
LumoPadding capturedMargins(const LumoRect& child, LumoSize size, int32_t mask);
/// Where @p child goes in a parent of @p size so that @p margins hold on the sides in @p mask.
/// Width and height that would be negative are 0, and @p squeezed tells so.
LumoRect appliedMargins(const LumoRect& child, LumoSize size, const LumoPadding& margins,
                        int32_t mask, bool* squeezed);

/// What a canvas object adds to keep its distances to the edges of its parent when that is resized.
/// Size the parent before adding children with a mask: a capture at 0x0 keeps negative margins.
class QBLumoObjectMarginConstraintAddOn {
public:
    QBLumoObjectMarginConstraintAddOn() = default;
    virtual ~QBLumoObjectMarginConstraintAddOn();
    QBLumoObjectMarginConstraintAddOn(const QBLumoObjectMarginConstraintAddOn&) = delete;
    QBLumoObjectMarginConstraintAddOn& operator=(const QBLumoObjectMarginConstraintAddOn&) = delete;

    virtual int32_t getMarginConstraint() const;
    virtual void setMarginConstraint(int32_t mask);

    /// Before @p parent is resized: keeps the margins of the children that have none kept yet.
    static void captureMargins(const LumoObject* parent);
    /// After its layout: moves those children. Margins of a squeezed child are kept until it has
    /// room again.
    static void applyMargins(const LumoObject* parent);

private:
    int32_t m_mask = 0;
    std::unique_ptr<LumoPadding> m_margins;
};

}  // namespace QB::DiagramLumo
