#pragma once

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "canvas/base/animation.h"
#include "platform/lumo/lumo_diagram.h"

class LumoControl;
class LumoTimer;

namespace QB::DiagramLumo {

class QBLumoContext;
class QBLumoItem;
class QBLumoJoinLink;
class QBLumoObject;

/// The canvas of the query: items and links as children, selection, rubber band, scrolling at the
/// edges, panning, moves by key, deletion, the line that follows a drag from field to field, and
/// the search for a free place. Tells what the user does through QBLumoContext; knows no query.
class QBLumoDiagram : public LumoDiagram {
public:
    /// Neither is owned; @p control may be null in tests without a view.
    QBLumoDiagram(LumoContext* context, LumoControl* control);
    ~QBLumoDiagram() override;

    QBLumoAnimationTimer* getAnimationTimer() const { return m_animationTimer.get(); }
    QBLumoContext* lumoContext() const;
    /// A RelationMode. What a change hides is deselected.
    int getRelationMode() const { return m_relationMode; }
    void setRelationMode(int mode);

    // ---- selection ----

    void selectObject(LumoObject* object, bool keepOthers);
    void deselectObject(LumoObject* object);
    void clearSelection();
    void selectAll();
    bool isSelected(LumoObject* object) const;
    std::vector<QBLumoItem*> selectedItems() const;  // in the order of children
    std::vector<QBLumoJoinLink*> selectedJoinLinks() const;
    std::vector<QBLumoItem*> items() const;
    std::vector<QBLumoJoinLink*> joinLinks() const;

    /// Tells of it, then destroys what is selected and was not destroyed meanwhile. Nothing during
    /// a link drag.
    void deleteSelection();
    /// Before children leave: they leave selection, gestures and links.
    void finalizeWillRemoveObject(const std::set<LumoObject*>& objects);

    // ---- presses: what items, rows and links tell of the mouse ----

    void handleItemPressed(QBLumoItem* item, LumoEvent event);
    /// @p fieldName "" for the wildcard.
    void handleItemFieldPressed(QBLumoObject* body, const std::string& fieldName, LumoEvent event);
    void handleJoinLinkPressed(QBLumoJoinLink* link, LumoEvent event);
    void handleBodyReleased(QBLumoItem* item, LumoEvent event);

    // ---- moving and placing ----

    /// @p point in the space of @p item.
    void dragItem(QBLumoItem* item, LumoPoint point);
    /// The item's own gesture has ended; with @p restore the whole group goes back.
    void endItemDrag(bool restore);
    void moveSelectedItems(int dx, int dy);
    /// Puts @p object at the first free place of the top row, widening the canvas as needed.
    void autoLayoutChild(QBLumoObject* object);
    /// Arranges the selected items, or all if none or one is selected, by the automatic layout.
    /// Returns the rectangles that items had, for a history; what did not move is not in it.
    std::vector<std::pair<QBLumoItem*, LumoRect>> autoLayout();

    // ---- links drawn from field to field ----

    void beginLinkDrag(QBLumoItem* item, const std::string& field, LumoPoint point);
    void updateLinkDragTarget(QBLumoItem* item, const std::string& field);
    void endLinkDrag();
    void cancelLinkDrag();
    bool isLinkDragActive() const;

    // ---- keyboard: the object that the focus ring stands around, and its field ----

    LumoObject* focusedObject() const;
    /// -1 for the object itself, 0 for the wildcard, 1... for fields.
    int focusedRow() const;
    void setFocusedObject(LumoObject* object, int row = -1);
    /// The next or previous item, then links, in reading order; false at the end.
    bool focusNext(bool forward);

    // ---- overrides ----

    using LumoDiagram::addChild;
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

private:
    class Gestures;                     // band, auto-scroll, pan, link drag: diagram_gestures.h
    std::set<LumoObject*> m_selection;  // not owned: children
    bool m_shiftHeld = false;
    bool m_diagramHasChildren = false;
    std::unique_ptr<QBLumoAnimationTimer> m_animationTimer;
    int32_t m_relationMode = 1;
    std::unique_ptr<Gestures> m_gestures;
};

}  // namespace QB::DiagramLumo
