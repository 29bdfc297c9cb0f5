#include "canvas/diagram/diagram.h"

#include "canvas/base/context.h"
#include "canvas/diagram/diagram_gestures.h"
#include "canvas/diagram/diagram_keyboard.h"
#include "canvas/diagram/diagram_link_drag.h"
#include "canvas/diagram/diagram_walk.h"
#include "canvas/items/item.h"
#include "canvas/links/covered_lines.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

namespace {

/// Descendants before the object itself.
void tellRemoved(LumoObject* object) {
    const std::vector<LumoObject*> children = object->getChildren();
    for (LumoObject* child : children)
        tellRemoved(child);
    if (auto* const own = dynamic_cast<QBLumoObject*>(object)) own->removedFromDiagram();
}

}  // namespace

QBLumoDiagram::QBLumoDiagram(LumoContext* context, LumoControl* control)
    : LumoDiagram(context)
    , m_animationTimer(std::make_unique<QBLumoAnimationTimer>(control, this))
    , m_gestures(std::make_unique<Gestures>(this))
    , m_linkDrag(std::make_unique<LinkDrag>(this))
    , m_keyboard(std::make_unique<Keyboard>(this)) {
    setRect({0, 0, 3000, 1600});
    registerResponders();
}

QBLumoDiagram::~QBLumoDiagram() {
    // Children first: what they have running refers to the timers of this object.
    m_isDying = true;
    clearChildren();
}

void QBLumoDiagram::registerResponders() {
    const auto answer = [this](bool (QBLumoDiagram::*responder)(LumoEvent)) {
        return [this, responder](LumoEvent event) {
            return (this->*responder)(event);
        };
    };
    registerEventResponder(LumoMouseDown, answer(&QBLumoDiagram::responderMouseDown));
    registerEventResponder(LumoMouseWheel, answer(&QBLumoDiagram::responderMouseWheel));
    registerEventResponder(LumoMouseDragging, answer(&QBLumoDiagram::responderMouseDragging));
    registerEventResponder(LumoMouseDrop, answer(&QBLumoDiagram::responderMouseDrop));
    registerEventResponder(LumoMouseMove, answer(&QBLumoDiagram::responderMouseMove));
}

QBLumoContext* QBLumoDiagram::lumoContext() const {
    return dynamic_cast<QBLumoContext*>(getContext());
}

LumoControl* QBLumoDiagram::control() const {
    return getContext() ? getContext()->getControlWithDiagram(this) : nullptr;
}

void QBLumoDiagram::setRelationMode(int mode) {
    if (mode != TableRelation && mode != FieldRelation) return;
    m_relationMode = mode;
    deselectHidden();
    setRequireToVerifyLayout(true, true);
    // Adaptors show or hide without being told.
    dropPictures();
    layout();
    repaint();
}

void QBLumoDiagram::deselectHidden() {
    for (QBLumoJoinLink* link : joinLinks()) {
        if (link->isVisibleInRelationMode(m_relationMode)) continue;
        deselectObject(link);
        if (focusedObject() == link) setFocusedObject(nullptr);
    }
}

// ---- children ----

std::vector<QBLumoItem*> QBLumoDiagram::items() const {
    return findChildren<QBLumoItem>(false);
}

std::vector<QBLumoJoinLink*> QBLumoDiagram::joinLinks() const {
    return findChildren<QBLumoJoinLink>(false);
}

void QBLumoDiagram::addChild(LumoObject* child) {
    LumoDiagram::addChild(child);
    tellEmptiness();
}

void QBLumoDiagram::addChild(LumoObject* child, int index) {
    LumoDiagram::addChild(child, index);
    tellEmptiness();
}

void QBLumoDiagram::removeChild(LumoObject* child) {
    if (!child || child->getParent() != this) return;
    finalizeWillRemoveObject({child});
    LumoDiagram::removeChild(child);
    tellEmptiness();
}

void QBLumoDiagram::removeChild(unsigned long index) {
    if (index < getChildren().size()) removeChild(getChildren()[index]);
}

void QBLumoDiagram::clearChildren() {
    finalizeWillRemoveObject({getChildren().begin(), getChildren().end()});
    LumoDiagram::clearChildren();
    tellEmptiness();
}

void QBLumoDiagram::finalizeWillRemoveObject(const std::set<LumoObject*>& objects) {
    // In the order of children, which is the same from run to run.
    const std::vector<LumoObject*> children = getChildren();
    for (LumoObject* child : children)
        if (objects.count(child)) forgetChild(child);
    for (LumoObject* object : objects)
        if (object->getParent() != this) tellRemoved(object);
}

void QBLumoDiagram::childDies(LumoObject* child) {
    LumoDiagram::childDies(child);
    forgetChild(child);
}

void QBLumoDiagram::forgetChild(LumoObject* object) {
    m_childLeaves.fire(object);
    for (Walk* walk : m_walks)
        walk->forget(object);
    if (m_selection.erase(object)) object->setSelected(false);
    if (m_draggedItem == object) m_draggedItem = nullptr;
    const auto started = [&](const auto& entry) {
        return entry.first == object;
    };
    m_dragStart.erase(std::remove_if(m_dragStart.begin(), m_dragStart.end(), started),
                      m_dragStart.end());
    if (m_pressed == object) m_pressed = nullptr;
    m_gestures->forget(object);
    m_linkDrag->forget(object);
    m_keyboard->forget(object);
    tellRemoved(object);
}

void QBLumoDiagram::requireLayoutMarked() {
    LumoDiagram::requireLayoutMarked();
    tellEmptiness();
}

void QBLumoDiagram::tellEmptiness() {
    const bool hasChildren = !getChildren().empty();
    if (m_isDying || hasChildren == m_diagramHasChildren) return;
    m_diagramHasChildren = hasChildren;
    if (QBLumoContext* const context = lumoContext())
        context->diagramEmptinessChanged(!hasChildren);
}

// ---- painting ----

void QBLumoDiagram::paint(LumoPaintConfig* config, LumoRect rect) {
    LumoDiagram::paint(config, rect);
    LumoPainter painter(config, this);
    painter.save();
    paintCoveredLines(&painter, this, rect);
    painter.restore();
    painter.save();
    m_gestures->paint(&painter);
    painter.restore();
    painter.save();
    m_linkDrag->paint(&painter);
    painter.restore();
}

// ---- the mouse on the empty canvas ----

bool QBLumoDiagram::responderMouseDown(LumoEvent event) {
    m_pressed = nullptr;
    m_keyboard->pressed(nullptr);
    if (event.containsOnlyEventKeys({LumoButtonLeft})) {
        clearSelection();
        return false;
    }
    if (event.containsOnlyEventKeys({LumoButtonRight}))
        askForMenu(nullptr, nullptr, event, event.point);
    return true;
}

bool QBLumoDiagram::responderMouseWheel(LumoEvent event) {
    m_gestures->lockWheel(event.control);
    return true;
}

bool QBLumoDiagram::responderMouseDragging(LumoEvent event) {
    if (!event.containsEventKey(LumoButtonLeft)) return true;
    m_gestures->dragBand(event);
    return false;
}

bool QBLumoDiagram::responderMouseDrop(LumoEvent) {
    if (!m_gestures->isBandActive()) return true;
    m_gestures->endBand();
    return false;
}

bool QBLumoDiagram::responderMouseMove(LumoEvent) {
    if (getContext()) getContext()->notifyCursorChange(this, LumoCursorDefault);
    return true;
}

void QBLumoDiagram::customMouseWheel(LumoEvent, bool& deliver) {
    deliver = !isWheelLocked();
}

bool QBLumoDiagram::isWheelLocked() const {
    return m_gestures->isWheelLocked();
}

void QBLumoDiagram::customMouseDragging(LumoEvent event, bool&) {
    m_shiftHeld = event.containsEventKey(LumoKeyShift);
    m_gestures->dragged(event);
}

void QBLumoDiagram::customMouseDrop(LumoEvent event, bool&) {
    m_gestures->dropped(event);
    m_draggedItem = nullptr;
    m_dragStart.clear();
}

void QBLumoDiagram::customKeyDown(LumoEvent event, bool& stop) {
    m_shiftHeld = event.containsEventKey(LumoKeyShift);
    if (m_keyboard->keyDown(event)) stop = true;
}

// ---- links drawn from field to field ----

void QBLumoDiagram::beginLinkDrag(QBLumoItem* item, const std::string& field, LumoPoint point) {
    // One that was begun by keys gives way to the mouse.
    m_keyboard->endLink(false);
    m_linkDrag->begin(item, field, point);
}

void QBLumoDiagram::updateLinkDragTarget(QBLumoItem* item, const std::string& field) {
    m_linkDrag->setTarget(item, field);
}

void QBLumoDiagram::endLinkDrag() {
    m_linkDrag->end(true);
}

void QBLumoDiagram::cancelLinkDrag() {
    m_keyboard->endLink(false);
    m_linkDrag->end(false);
}

bool QBLumoDiagram::isLinkDragActive() const {
    return m_linkDrag->isActive();
}

// ---- keyboard ----

LumoObject* QBLumoDiagram::focusedObject() const {
    return m_keyboard->focused();
}

int QBLumoDiagram::focusedRow() const {
    return m_keyboard->row();
}

void QBLumoDiagram::setFocusedObject(LumoObject* object, int row) {
    m_keyboard->setFocus(object, row);
}

bool QBLumoDiagram::focusNext(bool forward) {
    return m_keyboard->focusNext(forward);
}

bool QBLumoDiagram::isFocusRingShown() const {
    return m_keyboard->isRingShown();
}

bool QBLumoDiagram::isResizingByKeys() const {
    return m_keyboard->isResizing();
}

}  // namespace QB::DiagramLumo
