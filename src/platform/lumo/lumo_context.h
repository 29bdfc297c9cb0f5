#pragma once

#include <map>
#include <memory>
#include <vector>

#include "platform/lumo/lumo_types.h"

class LumoControl;
class LumoDiagram;
class LumoObject;

/// What a right click tells the host of the canvas. @p block is what the library allocated for it;
/// it is shared, so that no receiver, one or many see and free it right.
class LumoMessageRightClickParam {
public:
    LumoMessageRightClickParam(const LumoEvent& event, std::shared_ptr<void> block)
        : m_event(event), m_block(std::move(block)) {}
    const LumoEvent& event() const { return m_event; }
    const std::shared_ptr<void>& block() const { return m_block; }

private:
    LumoEvent m_event;
    std::shared_ptr<void> m_block;
};

/// Links diagrams and the controls that show them, and carries what a diagram wants of its control.
/// Ownership: owns neither; a control and a diagram that go take themselves out, and the context
/// may go before them.
class LumoContext {
public:
    LumoContext();
    virtual ~LumoContext();
    LumoContext(const LumoContext&) = delete;
    LumoContext& operator=(const LumoContext&) = delete;

    /// Done by their constructors and destructors.
    void addControl(LumoControl* control);
    void removeControl(LumoControl* control);
    void addDiagram(LumoDiagram* diagram);
    void removeDiagram(LumoDiagram* diagram);
    /// Shows @p diagram, or nothing for null, in @p control. The gesture that runs there ends; a
    /// control that showed the diagram before shows nothing.
    void setActiveDiagram(LumoControl* control, LumoDiagram* diagram);
    LumoDiagram* getActiveDiagram(const LumoControl* control) const;
    /// The control that shows @p diagram, or null.
    LumoControl* getControlWithDiagram(const LumoDiagram* diagram) const;

    /// From the space of @p object, null for the diagram's, into that of @p control.
    LumoRect translateRectToControlSpace(const LumoRect& rect, const LumoObject* object,
                                         const LumoControl* control) const;
    LumoPoint translatePointToControlSpace(LumoPoint point, const LumoObject* object,
                                           const LumoControl* control) const;

    /// Collects @p rect (diagram space) for the control that shows @p diagram, and tells it that a
    /// layout is wanted. Nothing is kept for a diagram that is not shown.
    virtual void setDirtyRect(LumoDiagram* diagram, const LumoRect& rect);
    /// Something in @p diagram wants a layout.
    virtual void notifyLayoutRequired(LumoDiagram* diagram);
    /// Hands what was collected to the control's widget.
    virtual void notifyDirtyRect(LumoDiagram* diagram);
    /// Moves the shown part: the canvas follows the pointer by @p delta (diagram space), as far as
    /// its edges allow.
    virtual void notifyDiagramMove(LumoDiagram* diagram, LumoControl* control, LumoPoint delta);
    virtual void notifyDiagramSizeChanged(LumoDiagram* diagram);
    /// Proposes a cursor. Within the delivery of one event the first code that is not 0 wins.
    virtual void notifyCursorChange(LumoDiagram* diagram, int code);
    virtual void notifyCursorChange(LumoControl* control, int code);
    /// One a gesture: a later param of the same gesture takes the place of an earlier one; the
    /// control emits it after the button is released. @p point in diagram space.
    virtual void notifyRightClickMenu(const LumoMessageRightClickParam& param, LumoPoint point);

    /// Forgets @p object and what it holds in the gestures of @p diagram: called while it still has
    /// its parent, by its destructor (@p dying) and before it leaves the tree.
    void forgetObject(LumoDiagram* diagram, LumoObject* object, bool dying);

private:
    void clearActive(LumoControl* control);

    std::vector<LumoControl*> m_controls;  // not owned
    std::vector<LumoDiagram*> m_diagrams;  // not owned
    std::map<const LumoControl*, LumoDiagram*> m_active;
    std::map<const LumoDiagram*, std::vector<LumoRect>> m_dirty;  // of diagrams that are shown
};
