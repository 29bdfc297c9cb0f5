#pragma once

#include <functional>
#include <string>

#include "canvas/base/object.h"
#include "canvas/items/item_geometry.h"

namespace QB::DiagramLumo {

class QBLumoBaseItemBody;
class QBLumoDiagram;
class QBLumoItemJoinLinkAdaptor;

/// One source of the query on the canvas: a frame that can be moved, resized and selected, around a
/// body that shows what the source is.
class QBLumoItem : public QBLumoObject {
public:
    QBLumoItem();
    ~QBLumoItem() override;

    /// Takes ownership; a former body is destroyed. The item takes the body's size plus its inset.
    void setBody(QBLumoBaseItemBody* body);
    QBLumoBaseItemBody* getBody() const { return m_body; }
    QBLumoItemJoinLinkAdaptor* getAdaptor() const { return m_adaptor; }
    /// The user ticked (true) or unticked a field; "" is the wildcard.
    void setFieldSelectionHandler(std::function<void(QBLumoItem*, std::string, bool)> handler);
    /// The handler may destroy the item.
    void fireFieldSelection(const std::string& field, bool selected);

    /// Moves or resizes with the pointer at @p point (item space), as the first call of a gesture
    /// decides: at an edge of the body a resize, in its title a move, elsewhere nothing until the
    /// gesture ends. With @p keepShape along one axis, or with the start's ratio.
    void dragToPoint(LumoPoint point, bool keepShape);
    /// Ends the gesture; with @p restore everything is as it was before it.
    void endDrag(bool restore);
    bool isMoving() const { return m_gesture == Gesture::Moving; }
    bool isResizing() const { return m_gesture == Gesture::Resizing; }
    /// True once the user has resized the item: its size then no longer follows the fields.
    bool isSizedByUser() const { return m_sizedByUser; }
    void setSizedByUser(bool sized) { m_sizedByUser = sized; }
    /// Gives the body @p height, no more than the canvas has room for below the item, unless the
    /// user chose the size.
    void fitBodyHeight(int height);
    /// Tells items apart that a layout cannot: those of one key take its entries in this order, as
    /// the order of painting changes with every click. 0 until the owner gives another.
    long order() const { return m_order; }
    void setOrder(long order) { m_order = order; }

    /// Marks its adaptors, and by them its links.
    void setRect(const LumoRect& rect) override;
    void paint(LumoPaintConfig* config, LumoRect rect) override;
    /// On the body and on the edges around it, not in the rest of the inset.
    bool shouldTriggerMouseDown(LumoEvent event) override;
    /// There it covers what lies below.
    bool shouldForwardEventToNeighbors(LumoEvent event) override;

    virtual bool responderMouseDragging(LumoEvent event);
    virtual bool responderMouseDrop(LumoEvent event);
    virtual bool responderMouseEnter(LumoEvent event);
    virtual bool responderMouseLeave(LumoEvent event);
    virtual bool responderMouseMove(LumoEvent event);

protected:
    void customLayout() override;
    void selectionChanged() override;
    void customKeyDown(LumoEvent event, bool& stop) override;

private:
    enum class Gesture { None, Moving, Resizing, Dead };

    bool responderEdgeDown(const LumoEvent& event);
    bool responderEdgeUp(const LumoEvent& event);
    void beginDrag(LumoPoint point, LumoPoint inCanvas);
    void takeDraggedRect(const LumoRect& rect);
    LumoRect bodyRect() const;
    bool isHitAt(LumoPoint point) const;
    LumoSize minimumSize() const;
    void showCursor(int code) const;
    QBLumoDiagram* lumoDiagram() const;

    QBLumoBaseItemBody* m_body = nullptr;            // owned as a child
    QBLumoItemJoinLinkAdaptor* m_adaptor = nullptr;  // owned as a child of the item
    LumoRect m_dragStartRect;
    LumoPoint m_dragStartPoint;  // in the diagram's space
    int32_t m_hoverEdges = 0;    // during a resize those that it moves
    Gesture m_gesture = Gesture::None;
    long m_order = 0;
    bool m_sizedByUser = false;
    bool m_sizedBeforeDrag = false;
    std::function<void(QBLumoItem*, std::string, bool)> m_fieldSelection;
};

}  // namespace QB::DiagramLumo
