#include "canvas/items/item.h"

#include <algorithm>

#include "canvas/base/canvas_style.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/base_item_body.h"
#include "canvas/links/join_link_adaptor.h"
#include "platform/lumo/lumo_context.h"
#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

namespace {

constexpr double ringWidth = 8.0;
constexpr int adaptorHeight = 6;
constexpr int adaptorReach = 3;  // of an adaptor, past both edges of the body

bool isLeftDrag(const LumoEvent& event) {
    return event.containsEventKey(LumoButtonLeft) && !event.containsEventKey(LumoButtonRight) &&
           !event.containsEventKey(LumoButtonMiddle);
}

}  // namespace

QBLumoItem::QBLumoItem() : m_adaptor(new QBLumoItemJoinLinkAdaptor) {
    addChild(m_adaptor);
    setSelectable(true);
    setCachedAsPicture(true);
    registerEventResponder(LumoMouseDragging,
                           [this](LumoEvent event) { return responderMouseDragging(event); });
    registerEventResponder(LumoMouseDrop,
                           [this](LumoEvent event) { return responderMouseDrop(event); });
    registerEventResponder(LumoMouseEnter,
                           [this](LumoEvent event) { return responderMouseEnter(event); });
    registerEventResponder(LumoMouseLeave,
                           [this](LumoEvent event) { return responderMouseLeave(event); });
    registerEventResponder(LumoMouseMove,
                           [this](LumoEvent event) { return responderMouseMove(event); });
    registerEventResponder(LumoMouseDown,
                           [this](LumoEvent event) { return responderEdgeDown(event); });
    registerEventResponder(LumoMouseUp, [this](LumoEvent event) { return responderEdgeUp(event); });
}

QBLumoItem::~QBLumoItem() = default;

// ---- the body ----

void QBLumoItem::setBody(QBLumoBaseItemBody* body) {
    if (m_body == body) return;
    if (m_body) {
        // Links at its fields dissolve before it goes.
        if (QBLumoDiagram* const diagram = lumoDiagram())
            diagram->finalizeWillRemoveObject({m_body});
        removeChild(m_body);
        delete m_body;
    }
    m_body = body;
    if (!body) return;
    const LumoSize size = body->getRect().size;
    addChild(body);
    bringChildToFront(m_adaptor);
    setRect(LumoRect(getRect().origin, itemSizeFor(size)));
    setRequireToVerifyLayout(true);
}

LumoRect QBLumoItem::bodyRect() const {
    return bodyRectOf(getRect().size);
}

LumoSize QBLumoItem::minimumSize() const {
    return itemSizeFor(m_body ? m_body->minimumSize() : LumoSize());
}

void QBLumoItem::customLayout() {
    QBLumoObject::customLayout();
    const LumoRect body = bodyRect();
    if (m_body) m_body->setRect(body);
    m_adaptor->setRect({lumoMinX(body) - adaptorReach,
                        lumoMinY(body) + Style::titleHeight / 2 - adaptorHeight / 2,
                        lumoWidth(body) + 2 * adaptorReach, adaptorHeight});
}

void QBLumoItem::fitBodyHeight(int height) {
    if (m_sizedByUser || m_gesture == Gesture::Resizing) return;
    LumoRect rect = getRect();
    int wanted = itemSizeFor({0, height}).height;
    if (const LumoObject* const canvas = getParent()) {
        const int room = lumoHeight(canvas->getRect()) - lumoMinY(rect);
        wanted = std::min(wanted, std::max(room, lumoHeight(rect)));
    }
    rect.size.height = wanted;
    m_dragStartRect.size.height = wanted;  // of a move that goes on
    setRect(rect);
}

void QBLumoItem::setFieldSelectionHandler(
    std::function<void(QBLumoItem*, std::string, bool)> handler) {
    m_fieldSelection = std::move(handler);
}

void QBLumoItem::fireFieldSelection(const std::string& field, bool selected) {
    const auto handler = m_fieldSelection;
    if (handler) handler(this, field, selected);
}

// ---- moving and resizing ----

void QBLumoItem::beginDrag(LumoPoint point, LumoPoint inCanvas) {
    m_dragStartRect = getRect();
    m_dragStartPoint = inCanvas;
    m_sizedBeforeDrag = m_sizedByUser;
    m_hoverEdges = hoverEdgesAt(bodyRect(), point);
    LumoRect title = bodyRect();
    title.size.height = std::min(title.size.height, Style::titleHeight);
    if (m_hoverEdges != 0)
        m_gesture = Gesture::Resizing;
    else
        m_gesture = lumoPointInRect(point, title) ? Gesture::Moving : Gesture::Dead;
}

void QBLumoItem::dragToPoint(LumoPoint point, bool keepShape) {
    const LumoObject* const canvas = getParent();
    if (!canvas) return;
    // In the space of the canvas: the item's own moves along with the drag.
    const LumoPoint inCanvas = translatePoint(point, canvas);
    if (m_gesture == Gesture::None) beginDrag(point, inCanvas);
    if (m_gesture == Gesture::Dead) return;
    const ItemDrag drag{m_dragStartRect, m_dragStartPoint, isResizing() ? m_hoverEdges : 0,
                        keepShape,       minimumSize(),    canvas->getBoundingRect()};
    const LumoRect rect = draggedRect(drag, inCanvas);
    if (rect == getRect()) return;
    if (isResizing()) m_sizedByUser = true;
    takeDraggedRect(rect);
}

void QBLumoItem::endDrag(bool restore) {
    const bool dragged = isMoving() || isResizing();
    m_gesture = Gesture::None;
    if (!dragged || !restore) return;
    m_sizedByUser = m_sizedBeforeDrag;
    takeDraggedRect(m_dragStartRect);
}

void QBLumoItem::setRect(const LumoRect& rect) {
    if (rect == getRect()) return;
    QBLumoObject::setRect(rect);
    // Links dock elsewhere now. What a move leaves in its place is not laid out.
    m_adaptor->setRequireToVerifyLayout(true);
    if (m_body) m_body->markAdaptors();
}

void QBLumoItem::takeDraggedRect(const LumoRect& rect) {
    setRect(rect);
    layout();
    flushDirtyRect();
}

// ---- events ----

bool QBLumoItem::isHitAt(LumoPoint point) const {
    return lumoPointInRect(point, bodyRect()) || hoverEdgesAt(bodyRect(), point) != 0;
}

bool QBLumoItem::shouldTriggerMouseDown(LumoEvent event) {
    return isHitAt(event.point);
}

bool QBLumoItem::shouldForwardEventToNeighbors(LumoEvent event) {
    return !isHitAt(event.point);
}

/// The body has no part in a press beside it.
bool QBLumoItem::responderEdgeDown(const LumoEvent& event) {
    QBLumoDiagram* const diagram = lumoDiagram();
    const bool ours =
        event.containsEventKey(LumoButtonLeft) || event.containsEventKey(LumoButtonRight);
    if (!diagram || !ours || lumoPointInRect(event.point, bodyRect())) return true;
    diagram->handleItemPressed(this, event);
    return false;
}

bool QBLumoItem::responderEdgeUp(const LumoEvent& event) {
    QBLumoDiagram* const diagram = lumoDiagram();
    if (!diagram || diagram->isLinkDragActive()) return true;
    diagram->handleBodyReleased(this, event);
    return false;
}

bool QBLumoItem::responderMouseDragging(LumoEvent event) {
    if (!isLeftDrag(event)) return true;
    const bool shift = event.containsEventKey(LumoKeyShift);
    if (QBLumoDiagram* const diagram = lumoDiagram()) {
        diagram->setShiftHeld(shift);
        diagram->dragItem(this, event.point);
    } else {
        dragToPoint(event.point, shift);
    }
    return false;
}

bool QBLumoItem::responderMouseDrop(LumoEvent) {
    if (m_gesture == Gesture::None) return true;
    endDrag(false);
    showCursor(LumoCursorDefault);
    if (QBLumoDiagram* const diagram = lumoDiagram()) diagram->endItemDrag(false);
    return false;
}

bool QBLumoItem::responderMouseEnter(LumoEvent) {
    return true;
}

bool QBLumoItem::responderMouseLeave(LumoEvent) {
    m_hoverEdges = isResizing() ? m_hoverEdges : 0;
    showCursor(LumoCursorDefault);
    return true;
}

bool QBLumoItem::responderMouseMove(LumoEvent event) {
    if (m_gesture != Gesture::None) return false;
    m_hoverEdges = hoverEdgesAt(bodyRect(), event.point);
    if (!isHitAt(event.point)) return true;
    showCursor(cursorForEdges(m_hoverEdges));
    return false;
}

void QBLumoItem::customKeyDown(LumoEvent event, bool& stop) {
    if (event.keyCode != LumoKeyEscape || !(isMoving() || isResizing())) {
        QBLumoObject::customKeyDown(event, stop);
        return;
    }
    stop = true;
    if (QBLumoDiagram* const diagram = lumoDiagram()) diagram->endItemDrag(true);
    endDrag(true);
    showCursor(LumoCursorDefault);
}

void QBLumoItem::showCursor(int code) const {
    LumoDiagram* const canvas = diagram();
    if (canvas) canvas->getContext()->notifyCursorChange(canvas, code);
}

QBLumoDiagram* QBLumoItem::lumoDiagram() const {
    return dynamic_cast<QBLumoDiagram*>(diagram());
}

// ---- look ----

void QBLumoItem::selectionChanged() {
    QBLumoObject::selectionChanged();
    invalidate();
}

void QBLumoItem::paint(LumoPaintConfig* config, LumoRect rect) {
    if (getSelected()) {
        LumoPainter painter(config, this);
        painter.setColor(Style::accentHalf);
        painter.setLineWidth(ringWidth);
        painter.addRoundedRect(LumoDoubleRect(bodyRect()), Style::cornerRadius);
        painter.stroke();
    }
    QBLumoObject::paint(config, rect);
}

}  // namespace QB::DiagramLumo
