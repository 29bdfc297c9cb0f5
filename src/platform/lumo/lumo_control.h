#pragma once

#include <memory>

#include "platform/lumo/lumo_types.h"

class LumoContext;
class LumoDispatcher;
class LumoMessageRightClickParam;

/// What shows a diagram: the part of it that the user sees, zoomed, and the road of events into it.
/// LumoUIScrollView has one; tests may have their own.
///
/// Spaces: control = diagram * zoom - scroll origin.
class LumoControl {
public:
    explicit LumoControl(LumoContext* context);
    virtual ~LumoControl();
    LumoControl(const LumoControl&) = delete;
    LumoControl& operator=(const LumoControl&) = delete;

    /// Null after the context has gone.
    LumoContext* getContext() const { return m_context; }
    LumoDispatcher* dispatcher() const { return m_dispatcher.get(); }

    /// Control pixels that the canvas is scrolled by, after zoom.
    virtual LumoControlPoint getScrollOrigin() const = 0;
    /// Clamped to the canvas. Before the control was first shown the origin is kept and taken then.
    virtual void setScrollOrigin(LumoControlPoint origin) = 0;
    /// The part of the diagram that shows, in the diagram's space, not larger than the diagram.
    virtual LumoRect getDisplayRect() const = 0;
    virtual double getZoom() const = 0;
    /// From 0.25 to 4; @p fixed (control space) keeps its place of the diagram.
    virtual void setZoom(double zoom, LumoControlPoint fixed) = 0;
    virtual void zoomIn() = 0;
    virtual void zoomOut() = 0;
    virtual void zoomReset() = 0;
    /// Scrolls as little as needed; with @p centre the middle of @p rect comes to the middle.
    virtual void scrollToVisible(const LumoRect& rect, bool centre) = 0;

    /// The pixel of the diagram that @p point lies on, and the first point of the control on a
    /// pixel of the diagram: there and back is the same from zoom 1 upwards.
    LumoPoint controlSpaceToDiagramSpace(LumoControlPoint point) const;
    LumoControlPoint diagramSpaceToControlSpace(LumoPoint point) const;

    // What the context hands on.
    virtual void diagramChanged() = 0;                           // another diagram, or its size
    virtual void updateRegion(const LumoRect& diagramRect) = 0;  // asynchronous
    /// Marks or dirty rectangles have appeared: lay out and flush the diagram before the next
    /// paint, once for however many calls. Called often, also while that runs.
    virtual void layoutWanted();
    virtual void cursorChanged(int code) = 0;
    virtual void rightClicked(const LumoMessageRightClickParam& param, LumoPoint point) = 0;

private:
    friend class LumoContext;
    LumoContext* m_context;  // not owned
    std::unique_ptr<LumoDispatcher> m_dispatcher;
};
