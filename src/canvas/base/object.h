#pragma once

#include "canvas/base/margin_constraint.h"
#include "engine/event_trigger.h"
#include "platform/lumo/lumo_object.h"

namespace QB::DiagramLumo {

/// Base of the objects of the diagram: paints its background, tells when its rectangle changes,
/// keeps the margins of its children.
class QBLumoObject : public LumoObject, public QBLumoObjectMarginConstraintAddOn {
public:
    QBLumoObject();
    ~QBLumoObject() override;

    /// Grows with each object made: a stable order, and what tells an object from a later one at
    /// its address.
    uint64_t serial() const { return m_serial; }

    /// Fired with this object and the rectangle that it had.
    QBEventTrigger<QBLumoObject*, LumoRect>* rectChanged() { return &m_rectChanged; }

    using LumoObject::addChild;
    void setRect(const LumoRect& rect) override;
    void paint(LumoPaintConfig* config, LumoRect rect) override;

    /// Called when this object or an ancestor is about to leave the diagram, children first.
    virtual void removedFromDiagram();

protected:
    void customLayout() override;

private:
    const uint64_t m_serial;
    QBEventTrigger<QBLumoObject*, LumoRect> m_rectChanged;
};

}  // namespace QB::DiagramLumo
