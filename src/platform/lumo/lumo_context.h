#pragma once

#include <functional>
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
/// Ownership: owns neither; a control and a diagram that go take themselves out.
class LumoContext {
public:
    LumoContext();
    virtual ~LumoContext();
    LumoContext(const LumoContext&) = delete;
    LumoContext& operator=(const LumoContext&) = delete;

    void addControl(LumoControl* control);
    void removeControl(LumoControl* control);
    void addDiagram(LumoDiagram* diagram);
    void removeDiagram(LumoDiagram* diagram);
    /// Shows @p diagram, or nothing for null, in @p control.
    void setActiveDiagram(LumoControl* control, LumoDiagram* diagram);
    LumoDiagram* getActiveDiagram(const LumoControl* control) const;
    /// The control that shows @p diagram, or null.
    LumoControl* getControlWithDiagram(const LumoDiagram* diagram) const;

    LumoRect translateRectToControlSpace(const LumoRect& rect, const LumoObject* object,
                                         const LumoControl* control) const;
    LumoPoint translatePointToControlSpace(LumoPoint point, const LumoObject* object,
                                           const LumoControl* control) const;

    /// Collects @p rect (diagram space) for the control that shows @p diagram.
    virtual void setDirtyRect(LumoDiagram* diagram, const LumoRect& rect);
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

    /// Forgets @p object everywhere: called by its destructor and when it leaves the tree.
    void forgetObject(LumoObject* object);

private:
    std::vector<LumoControl*> m_controls;  // not owned
    std::vector<LumoDiagram*> m_diagrams;  // not owned
    std::map<const LumoControl*, LumoDiagram*> m_active;
};
