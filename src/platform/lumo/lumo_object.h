#pragma once

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "platform/lumo/lumo_types.h"

class LumoContext;
class LumoDiagram;
class LumoDispatcher;
class LumoPaintConfig;

/// A node of the tree that is drawn: a rectangle in the space of its parent, children above it, a
/// few flags, responders and hooks for events, and a mark that its layout must be verified.
///
/// Ownership: children are owned; the destructor destroys them, last one first, each without a
/// parent by then. An object that is destroyed leaves its parent and every list of the dispatcher
/// by itself; `removeChild` and then `delete` is cheaper, since it knows what to paint anew.
///
/// Order: the last child lies on top and is hit first.
///
/// Thread: the one of the screen.
class LumoObject {
public:
    LumoObject();
    virtual ~LumoObject();
    LumoObject(const LumoObject&) = delete;
    LumoObject& operator=(const LumoObject&) = delete;

    // ---- tree ----

    LumoObject* getParent() const { return m_parent; }
    const std::vector<LumoObject*>& getChildren() const { return m_children; }
    /// Takes ownership of @p child, out of the parent that it may have, and puts it on top, or at
    /// @p index counted from the bottom. Marks the layout of both.
    virtual void addChild(LumoObject* child);
    virtual void addChild(LumoObject* child, int index);
    /// Gives @p child back to the caller. Nothing happens if it is no child. First it gets the Drop
    /// and Leave that it waits for; marks the layout of this object. By index: calls the other.
    virtual void removeChild(LumoObject* child);
    virtual void removeChild(unsigned long index);
    /// Destroys all children, last one first, as removeChild and delete would.
    virtual void clearChildren();
    virtual void bringChildToFront(LumoObject* child);

    /// The nearest ancestor that is a T, or null.
    template <typename T>
    T* findParent() const {
        for (LumoObject* ancestor = m_parent; ancestor; ancestor = ancestor->m_parent)
            if (auto* const found = dynamic_cast<T*>(ancestor)) return found;
        return nullptr;
    }
    /// The children that are a T, bottom first; with @p recursive their descendants too, each
    /// parent before its children.
    template <typename T>
    std::vector<T*> findChildren(bool recursive) const {
        std::vector<T*> found;
        collectChildren(recursive, &found);
        return found;
    }
    /// The diagram that this object lies in or is, or null.
    LumoDiagram* diagram() const;

    // ---- flags ----

    /// What is not visible is not painted, hit or laid out, nor are its descendants.
    /// An override whose answer changes marks the layout and invalidates, as setVisible does.
    virtual bool getVisible() const;
    virtual void setVisible(bool visible);
    virtual bool getSelectable() const;
    virtual void setSelectable(bool selectable);
    virtual bool getSelected() const;
    virtual void setSelected(bool selected);
    /// Lit by the mouse over it: set by Enter and Leave if the object is highlightable.
    virtual bool getHighlighted() const;
    virtual void setHighlighted(bool highlighted);
    virtual bool getHighlightable() const;
    virtual void setHighlightable(bool highlightable);
    virtual LumoColor getBackgroundColor() const;
    virtual void setBackgroundColor(const LumoColor& color);
    /// Kept by the dispatcher.
    bool isMouseOver() const;
    bool isMousePressed() const;

    // ---- geometry ----

    virtual LumoRect getRect() const;
    /// An equal rectangle changes nothing and marks nothing; another marks the layout and makes the
    /// old and the new place dirty (customDirtyRect before and after).
    virtual void setRect(const LumoRect& rect);
    /// The rectangle at (0, 0): this object's own space.
    virtual LumoRect getBoundingRect() const;
    /// The rectangle that the content takes, in own space: the bounding one unless overridden.
    virtual LumoRect getContentRect() const;
    virtual bool ptInRect(LumoPoint point) const;  // point in own space

    /// From own space into that of @p other, any object of the same tree; null for the root's.
    LumoPoint translatePoint(LumoPoint point, const LumoObject* other) const;
    LumoRect translateRect(const LumoRect& rect, const LumoObject* other) const;

    // ---- layout ----

    /// Marks this object (true), with @p recursive all descendants too. The next pass lays it out,
    /// and the control is told that one is wanted.
    virtual void setRequireToVerifyLayout(bool require);
    virtual void setRequireToVerifyLayout(bool require, bool recursive);
    virtual bool requireLayout() const;
    /// One pass over the marked objects of this subtree: customLayout of a parent before its
    /// children, these bottom first, those of a higher layoutOrder later; repeated while marks
    /// appear, at most four rounds. What is not visible keeps its marks.
    virtual void layout();
    /// Gives the object the size that its content needs; by default nothing.
    virtual void autoResize();

    // ---- dirty regions and painting ----

    /// What this object paints, in own space, with what sticks out: the part of the screen that an
    /// invalidate makes dirty, and what culling asks.
    virtual LumoRect customDirtyRect() const;
    /// Makes this object dirty. Paints nothing now.
    virtual void invalidate();
    /// Makes @p rect, in own space, dirty: the part of it that no ancestor hides or clips. Drops
    /// the pictures that show it.
    virtual void addDirtyRect(const LumoRect& rect);
    /// Hands collected dirty regions to the widget, which paints later.
    virtual void flushDirtyRect();
    /// invalidate and flushDirtyRect.
    virtual void repaint();
    /// Paints background-first what belongs to this object and then, as this base does, its visible
    /// children that meet @p rect (own space).
    virtual void paint(LumoPaintConfig* config, LumoRect rect);
    /// True paints this subtree through a picture that is kept while nothing in it is invalidated.
    void setCachedAsPicture(bool cached);
    bool isCachedAsPicture() const { return m_cachedAsPicture; }
    /// Of an object with a picture: names what it looks like. Another number after each invalidate
    /// in its subtree, never one that any object had before; a move keeps it.
    uint64_t pictureSerial() const { return m_pictureSerial; }
    /// Makes the pictures of this object and of all below it stale, without making them dirty.
    void dropPictures();
    /// True if children show, and are hit, only within the bounding rectangle.
    virtual bool clipsChildren() const;

    // ---- events: see LumoDispatcher for order and phases ----

    // Asked with a point in own space before the object is hit by that kind of event; by default
    // whether the point lies in the bounding rectangle. Move stands for all that lies under the
    // pointer: Enter, Leave, wheel and what is dragged over. Up is asked of objects that hold the
    // press, wherever the pointer is, and is true by default.
    virtual bool shouldTriggerMouseDown(LumoEvent event);
    virtual bool shouldTriggerMouseMove(LumoEvent event);
    virtual bool shouldTriggerMouseUp(LumoEvent event);
    virtual bool shouldTriggerMouseDoubleClick(LumoEvent event);
    /// Asked of an object that an event hits: false keeps the event from the siblings below it, as
    /// if it covered them; parents still get it.
    virtual bool shouldForwardEventToNeighbors(LumoEvent event);
    /// Adds to the functions of a type, which are called in the order of adding until one returns
    /// false.
    void registerEventResponder(LumoEventResponderType type, LumoEventResponder responder);
    /// True if all let the event go on.
    bool triggerEventResponder(LumoEventResponderType type, const LumoEvent& event);

protected:
    friend class LumoDiagram;
    friend class LumoDispatcher;

    /// Called whenever this object is marked, also if it was already.
    virtual void requireLayoutMarked();
    /// Places children; the rectangle of this object is final unless the hook sets it, which marks
    /// it again only if it has children and another size.
    virtual void customLayout();
    /// 0, or 1 to be laid out after all siblings of 0, with what they hold: for what docks at them.
    virtual int layoutOrder() const;
    virtual void selectionChanged();
    virtual void highlightChanged();
    /// @p child is destroyed without having been removed; its derived parts are gone already. Not
    /// called of children that go with this object, nor of those that are removed.
    virtual void childDies(LumoObject* child);

    // Called after the responders, whatever these answered, down the same list until stop is set.
    // Of the wheel, customMouseWheel of the diagram is asked first: false in @p deliver keeps the
    // event from the items.
    virtual void customMouseWheel(LumoEvent event, bool& deliver);
    virtual void customMouseDragging(LumoEvent event, bool& stop);
    virtual void customMouseDrop(LumoEvent event, bool& stop);
    virtual void customKeyDown(LumoEvent event, bool& stop);

    /// Paints the visible children that meet @p rect.
    void paintChildren(LumoPaintConfig* config, const LumoRect& rect);

private:
    template <typename T>
    void collectChildren(bool recursive, std::vector<T*>* found) const {
        for (LumoObject* child : m_children) {
            if (auto* const match = dynamic_cast<T*>(child)) found->push_back(match);
            if (recursive) child->collectChildren(true, found);
        }
    }

    virtual const LumoDiagram* asDiagram() const;
    const LumoObject* root() const;
    LumoPoint originInRoot() const;
    LumoContext* context() const;
    LumoDispatcher* dispatcher() const;
    bool hasChild(const LumoObject* child) const;
    bool detach(LumoObject* child);
    void unlink(LumoObject* child);
    void leaveParent();
    void forgetInGestures(LumoObject* object, bool dying) const;
    void markDescendants(bool require);
    void tellAncestorsOfMark();
    void layoutRound();
    void layoutChildren(int order);
    void dirtyPlace();
    void renewPicture();
    static void addDirtyUpwards(LumoObject* object, LumoRect rect);
    void paintChild(LumoObject* child, LumoPaintConfig* config, const LumoRect& rect) const;

    LumoObject* m_parent = nullptr;       // not owned: it owns this object
    std::vector<LumoObject*> m_children;  // owned
    LumoRect m_rect;
    LumoColor m_background;
    bool m_visible = true;
    bool m_selectable = false;
    bool m_selected = false;
    bool m_highlightable = false;
    bool m_highlighted = false;
    bool m_cachedAsPicture = false;
    bool m_layoutMarked = false;
    bool m_descendantMarked = false;
    bool m_inCustomLayout = false;
    bool* m_goneFlag =
        nullptr;  // not owned: of the responder call that runs, set by the destructor
    uint64_t m_pictureSerial = 0;
    std::vector<std::pair<LumoEventResponderType, LumoEventResponder>> m_responders;
};
