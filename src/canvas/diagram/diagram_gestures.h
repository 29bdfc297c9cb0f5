#pragma once

#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "canvas/diagram/diagram.h"

class LumoPainter;
class LumoTimer;

namespace QB::DiagramLumo {

/// What the mouse does on the canvas itself: rubber band, scrolling at the edges, panning, and the
/// lock that keeps a wheel gesture with the canvas.
class QBLumoDiagram::Gestures {
public:
    explicit Gestures(QBLumoDiagram* diagram);
    ~Gestures();

    // ---- wheel ----

    bool isWheelLocked() const { return m_wheelLocked; }
    void lockWheel(LumoControl* control);

    // ---- every drag over the diagram ----

    void dragged(const LumoEvent& event);
    void dropped(const LumoEvent& event);
    void stopAutoScroll();

    // ---- rubber band ----

    bool isBandActive() const { return m_band.has_value(); }
    void dragBand(const LumoEvent& event);
    void endBand();
    /// The selection becomes what it was before.
    void cancelBand();

    /// @p object leaves.
    void forget(LumoObject* object);
    void paint(LumoPainter* painter) const;

private:
    struct Band {
        LumoPoint start;
        LumoPoint end;
        int32_t keys = 0;
        std::set<LumoObject*> snapshot;  // not owned: the selection when the band began
    };

    void followEdge(const LumoEvent& event);
    void pan(const LumoEvent& event);
    void scrollAtEdge(LumoControl* control);
    void carryGesture();
    void extendBand(LumoPoint end);
    void invalidateBand();
    std::set<LumoObject*> bandHits() const;

    QBLumoDiagram* const m_diagram;  // not owned: the owner
    bool m_wheelLocked = false;
    std::unique_ptr<LumoTimer> m_wheelTimer;  // made by the first wheel
    LumoPoint m_mousePoint{-1, -1};           // of the last drag event
    LumoControlPoint m_pointer;               // the same in the control, where it stays
    std::optional<LumoPoint> m_dragAnchor;    // start of a pan or an auto-scroll
    LumoPoint m_autoScrollStep;
    std::unique_ptr<LumoTimer> m_autoScrollTimer;  // while at the edge
    std::optional<Band> m_band;
};

}  // namespace QB::DiagramLumo
