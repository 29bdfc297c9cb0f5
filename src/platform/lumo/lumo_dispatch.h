#pragma once

#include <memory>
#include <vector>

#include "platform/lumo/lumo_types.h"

class LumoControl;
class LumoDiagram;
class LumoMessageRightClickParam;
class LumoObject;

/// Turns raw mouse and key events of one control into what the objects of its diagram get.
///
/// Hit list: every visible object under the point, topmost first, children before parents, then
/// what lies below, as far as nobody covers it (LumoObject::shouldForwardEventToNeighbors). Points
/// are local to the receiver. What does not paint at a point (customDirtyRect) is not hit there,
/// nor are its descendants.
/// Phases: the responders down the list until one returns false; then the custom hooks down the
/// same list until one stops it. Consuming by a responder does not keep the hooks from it.
/// Wheel: the diagram's customMouseWheel is asked first whether the items get it at all.
/// Grab: a press keeps the hit objects whose shouldTriggerMouseDown passed; Dragging, Up and Drop
/// go to them, wherever the pointer is. Enter, Over and Leave of a drag come from what lies under
/// the pointer. A release gives Up, then Drop. A gesture knows the button that began it: others
/// pressed meanwhile are neither delivered nor seen in the keys.
/// Hover: Enter and Leave go to each object alone, nobody can consume them. From press to release
/// the hover stands still; after the release it is asked again.
/// Drag: begins when the pointer is startDistance() away; the first Dragging carries the point of
/// the press. Every drag ends with exactly one Drop and every Enter with one Leave, also by
/// cancel() and when the object goes.
/// Double click: what no responder takes is delivered as a press.
///
/// The dispatcher copes with objects, the diagram and itself being destroyed by what it calls.
class LumoDispatcher {
public:
    explicit LumoDispatcher(LumoControl* control);
    ~LumoDispatcher();
    LumoDispatcher(const LumoDispatcher&) = delete;
    LumoDispatcher& operator=(const LumoDispatcher&) = delete;

    // Raw events. @p keys holds modifiers and buttons as LumoEventKey bits; of a release with the
    // released button. Points in control space.
    void mousePress(LumoControlPoint point, int32_t keys);
    /// Without the button of the gesture its release was lost: the gesture is cancelled.
    void mouseMove(LumoControlPoint point, int32_t keys);
    /// @p stillHeld: the buttons among @p keys that stay pressed.
    void mouseRelease(LumoControlPoint point, int32_t keys, int32_t stillHeld = 0);
    void mouseDoubleClick(LumoControlPoint point, int32_t keys);
    /// @p pixels to scroll, positive shows more below. True if an object of the diagram took it.
    bool mouseWheel(LumoControlPoint point, LumoPoint pixels, int32_t keys);
    void mouseLeave();
    /// True if an object took it. Objects of the grab are asked first, then the diagram. Escape
    /// then cancels the gesture.
    bool keyDown(int32_t keyCode, int32_t keys);
    /// A right click by keyboard: pressed and released at @p point, while the pointer is elsewhere.
    void contextClick(LumoControlPoint point);

    /// Ends the gesture as if released outside of everything: a Drop if it dragged, Leaves. No Up.
    void cancel();
    /// Asks again what lies under the still pointer, after the canvas moved below it.
    void pointerStaysWhileCanvasMoves();
    /// @p object and its descendants leave the tree or die: they get their Drop and Leave if they
    /// only leave, and are never called again. If the gesture was theirs it ends for the others
    /// too: at once, or, if @p object dies, from the event loop.
    void forget(LumoObject* object, bool dying);

    bool isGrabbing() const;
    bool isDragging() const;
    /// Under the pointer, or, while something is dragged, under what is dragged.
    bool isOver(const LumoObject* object) const;
    bool isPressed(const LumoObject* object) const;
    /// QStyleHints::startDragDistance.
    static int startDistance();

    /// The objects whose ptInRect holds @p point (diagram space), in the order of delivery.
    static std::vector<LumoObject*> hitList(LumoDiagram* diagram, LumoPoint point);

    // Of the delivery that runs; used by the context.
    void proposeCursor(int code);
    void setRightClick(const LumoMessageRightClickParam& param, LumoPoint point);

private:
    struct State;
    const std::shared_ptr<State> m_state;  // shared with deliveries that run
};
