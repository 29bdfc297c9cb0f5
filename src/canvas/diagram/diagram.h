#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "canvas/base/animation.h"
#include "canvas/base/context.h"
#include "engine/event_trigger.h"
#include "platform/lumo/lumo_diagram.h"

class LumoControl;

namespace QB::DiagramLumo {

class QBLumoItem;
class QBLumoJoinLink;
class QBLumoObject;

/// The canvas of the query: items and links as children, selection, rubber band, scrolling at the
/// edges, panning, moves by key, deletion, the line that follows a drag from field to field, and
/// the search for a free place. Tells what the user does through QBLumoContext; knows no query.
///
/// Functions of the context may destroy any object of the diagram, but not the diagram.
///
/// Keys: docs/canvas-keys.md has the table. Tab leads through items and links in reading order and
/// leaves the canvas at its ends; the keys mean other things among the rows of an item, while a
/// link is drawn and while an item is resized.
class QBLumoDiagram : public LumoDiagram {
public:
    /// Neither is owned; @p control may be null in tests without a view.
    QBLumoDiagram(LumoContext* context, LumoControl* control);
    ~QBLumoDiagram() override;

    QBLumoAnimationTimer* getAnimationTimer() const { return m_animationTimer.get(); }
    /// Null if the context is another kind.
    QBLumoContext* lumoContext() const;
    /// A RelationMode. What a change hides is deselected; another number is ignored.
    int getRelationMode() const { return m_relationMode; }
    void setRelationMode(int mode);

    // ---- selection ----

    /// Without @p keepOthers all are deselected first, @p object too. Nothing if it is no child.
    void selectObject(LumoObject* object, bool keepOthers);
    void deselectObject(LumoObject* object);
    void clearSelection();
    /// All items, and the links that show.
    void selectAll();
    bool isSelected(LumoObject* object) const;
    std::vector<QBLumoItem*> selectedItems() const;  // in the order of children
    std::vector<QBLumoJoinLink*> selectedJoinLinks() const;
    std::vector<QBLumoItem*> items() const;
    std::vector<QBLumoJoinLink*> joinLinks() const;

    /// Tells of it, then destroys what was told of, is still selected and was not destroyed
    /// meanwhile. Nothing during a link drag.
    void deleteSelection();
    /// Before children leave: they leave selection, gestures and links.
    void finalizeWillRemoveObject(const std::set<LumoObject*>& objects);

    // ---- presses: what items, rows and links tell of the mouse ----

    // The point of an event is in the space of the first argument. Within one gesture the
    // selection changes once: a row's press after its item's raises it and asks for the menu only.

    void handleItemPressed(QBLumoItem* item, LumoEvent event);
    /// @p fieldName "" for the wildcard.
    void handleItemFieldPressed(QBLumoObject* body, const std::string& fieldName, LumoEvent event);
    void handleJoinLinkPressed(QBLumoJoinLink* link, LumoEvent event);
    /// A click without a move leaves only @p item selected.
    void handleBodyReleased(QBLumoItem* item, LumoEvent event);

    // ---- moving and placing ----

    /// The rectangles that items had.
    using FormerPlaces = std::vector<std::pair<QBLumoItem*, LumoRect>>;

    /// Shift of the gesture that goes on: moves then keep to one axis.
    void setShiftHeld(bool held) { m_shiftHeld = held; }
    /// Moves or resizes @p item as its press decided; the other selected items move along, the
    /// whole group stops at the edge. @p point in the space of @p item.
    void dragItem(QBLumoItem* item, LumoPoint point);
    /// The item's own gesture has ended; with @p restore the whole group goes back.
    void endItemDrag(bool restore);
    QBLumoItem* draggedItem() const { return m_draggedItem; }
    void moveSelectedItems(int dx, int dy);
    /// Puts @p object at the first free place of the top row, widening the canvas as needed.
    void autoLayoutChild(QBLumoObject* object);
    /// Arranges the selected items, or all if none or one is selected, by the automatic layout; the
    /// canvas grows to hold them. Returns the rectangles that items had, for a history; what did
    /// not move is not in it.
    FormerPlaces autoLayout();

    // ---- links drawn from field to field ----

    /// The first call of a drag keeps source and start, each one moves the end to @p point (own
    /// space).
    void beginLinkDrag(QBLumoItem* item, const std::string& field, LumoPoint point);
    void updateLinkDragTarget(QBLumoItem* item, const std::string& field);
    /// Tells of the link if there is a target in another item.
    void endLinkDrag();
    void cancelLinkDrag();
    bool isLinkDragActive() const;

    // ---- keyboard: the object that the focus ring stands around, and its field ----

    LumoObject* focusedObject() const;
    /// -1 for the object itself, 0 for the wildcard, 1... for fields.
    int focusedRow() const;
    /// An item, a link or null; scrolls it into sight and shows the ring. A row that the item does
    /// not have is -1.
    void setFocusedObject(LumoObject* object, int row = -1);
    /// The next or previous item, then links, in reading order; false at the end, where the focus
    /// stays.
    bool focusNext(bool forward);
    /// False while the focus only follows the mouse.
    bool isFocusRingShown() const;
    bool isResizingByKeys() const;
    /// Fired after the focus went to another object or row.
    QBEventTrigger<LumoObject*, int>* focusChanged() { return &m_focusChanged; }
    /// Fired before a child leaves or dies, while it is whole and in its place.
    QBEventTrigger<LumoObject*>* childLeaves() { return &m_childLeaves; }

    /// True for 500 ms after a wheel over the canvas itself: items do not get wheels then.
    bool isWheelLocked() const;

    // ---- overrides ----

    void addChild(LumoObject* child) override;
    void addChild(LumoObject* child, int index) override;
    void removeChild(LumoObject* child) override;
    void removeChild(unsigned long index) override;
    void clearChildren() override;
    void paint(LumoPaintConfig* config, LumoRect rect) override;

    virtual bool responderMouseDown(LumoEvent event);
    virtual bool responderMouseWheel(LumoEvent event);
    virtual bool responderMouseDragging(LumoEvent event);
    virtual bool responderMouseDrop(LumoEvent event);
    virtual bool responderMouseMove(LumoEvent event);

protected:
    void customMouseWheel(LumoEvent event, bool& deliver) override;
    void customMouseDragging(LumoEvent event, bool& stop) override;
    void customMouseDrop(LumoEvent event, bool& stop) override;
    void customKeyDown(LumoEvent event, bool& stop) override;
    void requireLayoutMarked() override;
    void childDies(LumoObject* child) override;

private:
    class Gestures;  // band, auto-scroll, pan, wheel lock: diagram_gestures.h
    class LinkDrag;  // diagram_link_drag.h
    class Keyboard;  // diagram_keyboard.h
    class Walk;      // diagram_walk.h

    LumoControl* control() const;
    void registerResponders();
    void tellEmptiness();
    void deselectHidden();
    void forgetChild(LumoObject* object);
    /// Selects exactly @p wanted, telling of real changes only.
    void setSelection(const std::set<LumoObject*>& wanted);
    /// What a press does to the selection.
    void selectPressed(LumoObject* object, const LumoEvent& event, bool keepIfSelected);
    void pressItem(QBLumoItem* item, const LumoEvent& event,
                   const std::function<void(LumoPoint)>& menu);
    void pressLink(QBLumoJoinLink* link, const LumoEvent& event);
    static void raise(LumoObject* object);
    /// @p fieldName null for none. @p point in own space.
    void askForMenu(LumoObject* clicked, const std::string* fieldName, const LumoEvent& event,
                    LumoPoint point);
    void destroySelected(const std::vector<LumoObject*>& told);
    void rememberDragStart(QBLumoItem* item);
    void dragGroup(QBLumoItem* item, const LumoRect& before);
    void followCorner(const QBLumoItem* resized);
    static void putItem(QBLumoItem* item, const LumoRect& rect);
    static void shiftItem(QBLumoItem* item, LumoPoint delta);
    /// Tells of the end of a gesture that found the items in @p former, if one is elsewhere now: as
    /// @p how, or as resized.
    void tellArranged(const FormerPlaces& former, QBLumoContext::Arrangement how);

    std::set<LumoObject*> m_selection;  // not owned: children
    bool m_shiftHeld = false;
    bool m_diagramHasChildren = false;
    bool m_isDying = false;
    std::unique_ptr<QBLumoAnimationTimer> m_animationTimer;
    int32_t m_relationMode = 1;
    QBLumoItem* m_draggedItem = nullptr;  // not owned: a child
    FormerPlaces m_dragStart;
    LumoObject* m_pressed = nullptr;  // not owned: its press has changed the selection already
    QBEventTrigger<LumoObject*, int> m_focusChanged;
    QBEventTrigger<LumoObject*> m_childLeaves;
    std::vector<Walk*> m_walks;  // not owned: on the stack
    std::unique_ptr<Gestures> m_gestures;
    std::unique_ptr<LinkDrag> m_linkDrag;
    std::unique_ptr<Keyboard> m_keyboard;
};

}  // namespace QB::DiagramLumo
