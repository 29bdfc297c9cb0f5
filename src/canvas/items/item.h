#pragma once

#include <functional>
#include <string>

#include "canvas/base/object.h"

namespace QB::DiagramLumo {

class QBLumoBaseItemBody;
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
    void fireFieldSelection(const std::string& field, bool selected);

    /// Moves or resizes with the pointer at @p point (item space), as the press decided. With
    /// @p keepShape along one axis, or with the start's ratio.
    void dragToPoint(LumoPoint point, bool keepShape);
    /// Ends the gesture; with @p restore everything as it was before it.
    void endDrag(bool restore);
    bool isMoving() const { return m_moving; }
    bool isResizing() const { return m_resizing; }
    /// True once the user has resized the item: its size then no longer follows the fields.
    bool isSizedByUser() const { return m_sizedByUser; }
    void setSizedByUser(bool sized) { m_sizedByUser = sized; }

    LumoRect customDirtyRect() const override;
    void paint(LumoPaintConfig* config, LumoRect rect) override;
    bool shouldTriggerMouseDown(LumoEvent event) override;

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
    QBLumoBaseItemBody* m_body = nullptr;            // owned as a child
    QBLumoItemJoinLinkAdaptor* m_adaptor = nullptr;  // owned as a child of the item
    LumoRect m_dragStartRect;
    LumoPoint m_dragStartPoint;
    int32_t m_hoverEdges = 0;
    bool m_moving = false;
    bool m_resizing = false;
    bool m_sizedByUser = false;
    std::function<void(QBLumoItem*, std::string, bool)> m_fieldSelection;
};

}  // namespace QB::DiagramLumo
