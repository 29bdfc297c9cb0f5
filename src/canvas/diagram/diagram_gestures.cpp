#include "canvas/diagram/diagram_gestures.h"

#include "canvas/base/canvas_style.h"
#include "canvas/diagram/diagram_link_drag.h"
#include "canvas/diagram/placement.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"
#include "platform/lumo/lumo_context.h"
#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_paint.h"
#include "platform/lumo/lumo_timer.h"

namespace QB::DiagramLumo {

namespace {

constexpr int wheelLockMilliseconds = 500;
constexpr int scrollMilliseconds = 33;
constexpr int edgeWidth = 15;  // where the pointer makes the canvas scroll

bool isLargerThan(const LumoRect& diagram, const LumoRect& shown) {
    return diagram.size.width > shown.size.width || diagram.size.height > shown.size.height;
}

/// What a band makes of the selection that it found. Control wins over Shift, Shift over Alt.
std::set<LumoObject*> bandSelection(const std::set<LumoObject*>& snapshot,
                                    const std::set<LumoObject*>& hits, int32_t keys) {
    if (keys == LumoButtonLeft) return hits;
    std::set<LumoObject*> result;
    if (!(keys & (LumoKeyControl | LumoKeyShift | LumoKeyAlt))) return result;
    result = snapshot;
    for (LumoObject* hit : hits) {
        const bool add = keys & LumoKeyControl ? !snapshot.count(hit) : (keys & LumoKeyShift) != 0;
        if (add)
            result.insert(hit);
        else
            result.erase(hit);
    }
    return result;
}

}  // namespace

QBLumoDiagram::Gestures::Gestures(QBLumoDiagram* diagram) : m_diagram(diagram) {}
QBLumoDiagram::Gestures::~Gestures() = default;

// ---- wheel ----

void QBLumoDiagram::Gestures::lockWheel(LumoControl* control) {
    if (!m_wheelTimer) {
        m_wheelTimer.reset(lumoCreateTimer());
        m_wheelTimer->setTimerOwner(control);
        m_wheelTimer->setTimerFunc([this](LumoTimer*) { m_wheelLocked = false; });
    }
    m_wheelLocked = true;
    m_wheelTimer->stop();
    m_wheelTimer->startOnce(wheelLockMilliseconds);
}

// ---- every drag over the diagram ----

void QBLumoDiagram::Gestures::dragged(const LumoEvent& event) {
    m_mousePoint = event.point;
    if (!event.control) return;
    m_pointer = event.control->diagramSpaceToControlSpace(event.point);
    if (event.containsEventKey(LumoButtonLeft)) followEdge(event);
    if (event.containsOnlyEventKeys({LumoButtonMiddle})) pan(event);
}

void QBLumoDiagram::Gestures::dropped(const LumoEvent& event) {
    stopAutoScroll();
    // Else the next pan would jump from where this one began.
    m_dragAnchor.reset();
    if (event.control && event.containsOnlyEventKeys({LumoButtonMiddle}))
        m_diagram->getContext()->notifyCursorChange(event.control, LumoCursorDefault);
}

void QBLumoDiagram::Gestures::stopAutoScroll() {
    if (!m_autoScrollTimer) return;
    m_autoScrollTimer.reset();
    m_dragAnchor.reset();
}

void QBLumoDiagram::Gestures::followEdge(const LumoEvent& event) {
    const LumoRect shown = event.getControlDisplayRect();
    const LumoRect inner = lumoInflateRect(shown, -edgeWidth, -edgeWidth);
    if (!isLargerThan(m_diagram->getRect(), shown) || lumoPointInRect(event.point, inner)) {
        stopAutoScroll();
        return;
    }
    m_autoScrollStep = DiagramLumo::autoScrollStep(event.point, inner);
    if (m_autoScrollTimer) return;
    LumoControl* const control = event.control;
    m_autoScrollTimer.reset(lumoCreateTimer());
    m_autoScrollTimer->setTimerFunc([this, control](LumoTimer*) { scrollAtEdge(control); });
    m_autoScrollTimer->start(scrollMilliseconds, control);
    m_dragAnchor = event.point;
}

void QBLumoDiagram::Gestures::pan(const LumoEvent& event) {
    LumoContext* const context = m_diagram->getContext();
    if (!m_dragAnchor) {
        context->notifyCursorChange(event.control, LumoCursorOpenHand);
        m_dragAnchor = event.point;
        return;
    }
    context->notifyCursorChange(event.control, LumoCursorClosedHand);
    context->notifyDiagramMove(m_diagram, event.control, event.point - *m_dragAnchor);
}

void QBLumoDiagram::Gestures::scrollAtEdge(LumoControl* control) {
    // The view may have gone, or shows another diagram.
    if (m_diagram->control() != control) {
        stopAutoScroll();
        return;
    }
    const LumoControlPoint before = control->getScrollOrigin();
    const LumoPoint under = control->controlSpaceToDiagramSpace(m_pointer);
    m_diagram->getContext()->notifyDiagramMove(m_diagram, control, LumoPoint() - m_autoScrollStep);
    if (control->getScrollOrigin() == before) return;
    // What really came under the pointer: the edge of the canvas may have cut the step.
    const LumoPoint change = control->controlSpaceToDiagramSpace(m_pointer) - under;
    m_mousePoint += change;
    if (m_dragAnchor) *m_dragAnchor += change;
    carryGesture();
    m_diagram->setRequireToVerifyLayout(true);
    m_diagram->repaint();
}

void QBLumoDiagram::Gestures::carryGesture() {
    if (m_diagram->m_linkDrag->isActive()) m_diagram->m_linkDrag->moveEnd(m_mousePoint);
    if (m_band) extendBand(m_mousePoint);
    if (QBLumoItem* const item = m_diagram->m_draggedItem)
        m_diagram->dragItem(item, m_diagram->translatePoint(m_mousePoint, item));
}

// ---- rubber band ----

void QBLumoDiagram::Gestures::dragBand(const LumoEvent& event) {
    if (!m_band) m_band = Band{event.point, event.point, 0, m_diagram->m_selection};
    m_band->keys = event.keys;
    extendBand(event.point);
}

void QBLumoDiagram::Gestures::extendBand(LumoPoint end) {
    invalidateBand();
    m_band->end = end;
    invalidateBand();
    m_diagram->setSelection(bandSelection(m_band->snapshot, bandHits(), m_band->keys));
}

void QBLumoDiagram::Gestures::endBand() {
    invalidateBand();
    m_band.reset();
}

void QBLumoDiagram::Gestures::cancelBand() {
    if (!m_band) return;
    const std::set<LumoObject*> snapshot = m_band->snapshot;
    endBand();
    m_diagram->setSelection(snapshot);
}

std::set<LumoObject*> QBLumoDiagram::Gestures::bandHits() const {
    const LumoRect band = rubberBandRect(m_band->start, m_band->end);
    std::set<LumoObject*> hits;
    if (band.size.width == 0 || band.size.height == 0) return hits;
    for (QBLumoItem* item : m_diagram->items()) {
        const QBLumoBaseItemBody* const body = item->getBody();
        if (!body || !item->getVisible()) continue;
        if (lumoIntersectsRect(body->translateRect(body->getBoundingRect(), m_diagram), band))
            hits.insert(item);
    }
    for (QBLumoJoinLink* link : m_diagram->joinLinks())
        if (link->isShown() &&
            lumoPointInRect(link->translatePoint(link->midPoint(), m_diagram), band))
            hits.insert(link);
    return hits;
}

void QBLumoDiagram::Gestures::invalidateBand() {
    m_diagram->addDirtyRect(lumoInflateRect(rubberBandRect(m_band->start, m_band->end), 2, 2));
    m_diagram->flushDirtyRect();
}

void QBLumoDiagram::Gestures::forget(LumoObject* object) {
    if (m_band) m_band->snapshot.erase(object);
}

void QBLumoDiagram::Gestures::paint(LumoPainter* painter) const {
    if (!m_band) return;
    const LumoPoint start = m_band->start;
    const LumoPoint end = m_band->end;
    painter->setLineWidth(1.0);
    painter->setLineJoin(LumoJoinBevel);
    painter->addRect(std::min(start.x, end.x) - 0.5, std::min(start.y, end.y) - 0.5,
                     std::abs(end.x - start.x), std::abs(end.y - start.y));
    painter->setColor(Style::hover);
    painter->fillPreserve();
    painter->setColor(Style::accentStrong);
    painter->stroke();
}

}  // namespace QB::DiagramLumo
