#include "platform/lumo/lumo_dispatch_state.h"

#include <cstdlib>

#include <QTimer>

#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_diagram.h"
#include "platform/lumo/lumo_hit_walk.h"

bool lumoContains(const LumoObjects& objects, const LumoObject* object) {
    return std::find(objects.begin(), objects.end(), object) != objects.end();
}

namespace {

/// Whether @p object is @p ancestor or lies in it.
bool isWithin(const LumoObject* object, const LumoObject* ancestor) {
    while (object && object != ancestor)
        object = object->getParent();
    return object != nullptr;
}

/// Takes what lies within @p ancestor out of @p objects.
LumoObjects takeWithin(LumoObjects* objects, const LumoObject* ancestor) {
    const auto gone = std::stable_partition(
        objects->begin(), objects->end(),
        [ancestor](const LumoObject* object) { return !isWithin(object, ancestor); });
    LumoObjects taken(gone, objects->end());
    objects->erase(gone, objects->end());
    return taken;
}

}  // namespace

// ---- a delivery ----

void LumoDispatcher::State::LiveList::dropWithin(const LumoObject* ancestor) {
    for (LumoObject*& object : m_objects)
        if (object && isWithin(object, ancestor)) object = nullptr;
}

LumoDispatcher::State::Delivery::Delivery(State* state) : m_state(state), m_outer(state->delivery) {
    m_state->delivery = this;
    m_state->endOrphanedGesture();
    if (LumoDiagram* const diagram = m_state->diagram()) diagram->layout();
}

LumoDispatcher::State::Delivery::~Delivery() {
    if (m_canvasMoved) m_state->refresh();
    m_state->delivery = m_outer;
    if (m_proposed && m_state->control) m_state->control->cursorChanged(m_cursor);
}

void LumoDispatcher::State::Delivery::propose(int code) {
    if (m_cursor == LumoCursorDefault) m_cursor = code;
    m_proposed = true;
}

void LumoDispatcher::State::run(const std::function<void(State&)>& event) {
    const std::shared_ptr<State> kept = shared_from_this();
    {
        const Delivery running(this);
        event(*this);
    }
    emitRightClick();
}

/// Last of all: the host's menu may run an event loop and destroy everything.
void LumoDispatcher::State::emitRightClick() {
    if (!rightClick || button != 0 || delivery || !control) return;
    const RightClick emitted = *std::exchange(rightClick, std::nullopt);
    control->rightClicked(emitted.param, emitted.point);
}

// ---- who is called, and with what ----

LumoDiagram* LumoDispatcher::State::diagram() const {
    const LumoContext* const context = control ? control->getContext() : nullptr;
    return context ? context->getActiveDiagram(control) : nullptr;
}

LumoObjects LumoDispatcher::State::hits(LumoHitTest test, LumoControlPoint point,
                                        int32_t eventKeys) const {
    LumoDiagram* const root = diagram();
    if (!root) return {};
    const auto eventAt = [this, eventKeys](LumoPoint local) {
        LumoEvent event;
        event.control = control;
        event.keys = eventKeys;
        event.point = local;
        return event;
    };
    LumoHitWalk walk(
        [=](LumoObject* object, LumoPoint local) { return (object->*test)(eventAt(local)); },
        [=](LumoObject* object, LumoPoint local) {
            return object->shouldForwardEventToNeighbors(eventAt(local));
        });
    return walk.walk(root, control->controlSpaceToDiagramSpace(point));
}

LumoEvent LumoDispatcher::State::eventFor(const LumoObject* object, LumoControlPoint point,
                                          int32_t eventKeys) const {
    LumoEvent event;
    event.control = control;
    event.keys = eventKeys;
    const LumoObject* root = object;
    while (root->getParent())
        root = root->getParent();
    event.point = root->translatePoint(control->controlSpaceToDiagramSpace(point), object);
    return event;
}

/// Returns whether one of @p list consumed the event, and which: null if it died of it.
bool LumoDispatcher::State::respond(LumoEventResponderType type, const LiveList& list,
                                    LumoControlPoint point, int32_t eventKeys,
                                    LumoObject** consumer) const {
    for (size_t i = 0; i < list.size(); ++i) {
        LumoObject* const object = list.at(i);
        if (!object || object->triggerEventResponder(type, eventFor(object, point, eventKeys)))
            continue;
        if (consumer) *consumer = list.at(i);
        return true;
    }
    return false;
}

/// Calls @p hook(object, event, &stop) down the list. Returns whether one stopped it.
template <typename Hook>
bool LumoDispatcher::State::callHooks(const LiveList& list, LumoControlPoint point,
                                      int32_t eventKeys, Hook hook) const {
    bool stop = false;
    for (size_t i = 0; i < list.size() && !stop; ++i)
        if (LumoObject* const object = list.at(i))
            hook(object, eventFor(object, point, eventKeys), &stop);
    return stop;
}

// ---- hover ----

void LumoDispatcher::State::callAlone(LumoEventResponderType type, LumoObject* object,
                                      int32_t eventKeys) {
    if (object->getHighlightable() && (type == LumoMouseEnter || type == LumoMouseLeave))
        object->setHighlighted(type == LumoMouseEnter);
    object->triggerEventResponder(type, eventFor(object, pointer, eventKeys));
}

void LumoDispatcher::State::leaveAll(LumoObjects* entered, LumoEventResponderType leave,
                                     int32_t eventKeys) {
    updateOver(entered, {}, LumoMouseEnter, leave, eventKeys);
}

/// Leave to what is in @p entered and not in @p now, then Enter to what is in @p now alone.
void LumoDispatcher::State::updateOver(LumoObjects* entered, const LumoObjects& now,
                                       LumoEventResponderType enter, LumoEventResponderType leave,
                                       int32_t eventKeys) {
    const bool ofGesture = entered == &draggedOver;
    LiveList before(this, *entered, ofGesture);
    LiveList after(this, now, ofGesture);
    for (size_t i = 0; i < before.size(); ++i) {
        LumoObject* const object = before.at(i);
        const auto place = std::find(entered->begin(), entered->end(), object);
        if (!object || lumoContains(now, object) || place == entered->end()) continue;
        entered->erase(place);
        callAlone(leave, object, eventKeys);
    }
    for (size_t i = 0; i < after.size(); ++i) {
        LumoObject* const object = after.at(i);
        if (!object || lumoContains(*entered, object)) continue;
        entered->push_back(object);
        callAlone(enter, object, eventKeys);
    }
}

void LumoDispatcher::State::hover() {
    const LumoObjects now = hits(&LumoObject::shouldTriggerMouseMove, pointer, keys);
    LiveList list(this, now);
    updateOver(&over, now, LumoMouseEnter, LumoMouseLeave, keys);
    respond(LumoMouseMove, list, pointer, keys);
}

void LumoDispatcher::State::dragOver(int32_t eventKeys) {
    const LumoObjects now = hits(&LumoObject::shouldTriggerMouseMove, pointer, eventKeys);
    LiveList list(this, now, true);
    updateOver(&draggedOver, now, LumoDragEnter, LumoDragLeave, eventKeys);
    respond(LumoDragOver, list, pointer, eventKeys);
}

void LumoDispatcher::State::refresh() {
    if (dragging) return dragOver(keys | button);
    if (button == 0 && held == 0 && pointerKnown) hover();
}

// ---- a gesture: press, drag, release ----

void LumoDispatcher::State::press(LumoControlPoint point, int32_t eventKeys, bool doubleClick) {
    const int32_t down = eventKeys & lumoAllButtons;
    const int32_t pressed = down & ~held;
    held = down;
    if ((down & button) != 0 && pressed != 0) return;  // a second button
    endGesture(true);                                  // else its release was lost
    const int32_t starting = pressed != 0 ? pressed : down;
    keys = eventKeys & ~lumoAllButtons;
    if (!pointerKnown || pointer != point) {
        pointer = point;
        pointerKnown = true;
        hover();
    }
    beginGesture(point, starting & -starting, doubleClick);  // of several the left one
}

void LumoDispatcher::State::beginGesture(LumoControlPoint point, int32_t withButton,
                                         bool doubleClick) {
    button = withButton;
    pressedAt = point;
    rightClick.reset();
    const int32_t eventKeys = keys | button;
    grab = hits(&LumoObject::shouldTriggerMouseDown, point, eventKeys);
    LiveList down(this, grab, true);
    LiveList twice(this, {}, true);
    if (doubleClick) twice.set(hits(&LumoObject::shouldTriggerMouseDoubleClick, point, eventKeys));
    LumoObject* consumer = nullptr;
    const bool consumed = respond(LumoMouseDoubleClick, twice, point, eventKeys, &consumer) ||
                          respond(LumoMouseDown, down, point, eventKeys, &consumer);
    setTaker(consumed, consumer);
}

/// Whose gesture it is, from what consumed the last of its events.
void LumoDispatcher::State::setTaker(bool consumed, LumoObject* consumer) {
    if (button == 0) return;
    taker = consumer;
    if (consumed && !consumer) endGesture(true);  // it has gone of what it did
}

void LumoDispatcher::State::move(LumoControlPoint point, int32_t eventKeys) {
    held = eventKeys & lumoAllButtons;
    keys = eventKeys & ~lumoAllButtons;
    pointer = point;
    pointerKnown = true;
    if (button != 0 && (held & button) == 0) endGesture(true);  // its release was lost
    if (button != 0) return drag(point, keys | button);
    // Of what a cancelled gesture still holds down nobody hears.
    if (held == 0) hover();
}

void LumoDispatcher::State::leave() {
    if (button != 0) return;
    pointerKnown = false;
    leaveAll(&over, LumoMouseLeave, keys);
}

void LumoDispatcher::State::drag(LumoControlPoint point, int32_t eventKeys) {
    if (!dragging) {
        const int way = std::abs(point.x - pressedAt.x) + std::abs(point.y - pressedAt.y);
        if (way < startDistance()) return;
        dragging = true;
        deliverDragging(pressedAt, eventKeys);
    }
    if (dragging) deliverDragging(point, eventKeys);
    if (dragging) dragOver(eventKeys);
}

void LumoDispatcher::State::deliverDragging(LumoControlPoint point, int32_t eventKeys) {
    LiveList list(this, grab, true);
    LumoObject* consumer = nullptr;
    const bool consumed = respond(LumoMouseDragging, list, point, eventKeys, &consumer);
    setTaker(consumed, consumer);
    callHooks(list, point, eventKeys, [](LumoObject* object, const LumoEvent& event, bool* stop) {
        object->customMouseDragging(event, *stop);
    });
}

void LumoDispatcher::State::deliverDrop(LumoObjects objects, int32_t eventKeys) {
    LiveList list(this, std::move(objects));
    respond(LumoMouseDrop, list, pointer, eventKeys);
    callHooks(list, pointer, eventKeys, [](LumoObject* object, const LumoEvent& event, bool* stop) {
        object->customMouseDrop(event, *stop);
    });
}

void LumoDispatcher::State::release() {
    if (button == 0) return;
    const int32_t eventKeys = keys | button;
    LumoObjects asked;
    for (LumoObject* object : grab)
        if (object->shouldTriggerMouseUp(eventFor(object, pointer, eventKeys)))
            asked.push_back(object);
    LiveList list(this, std::move(asked), true);
    respond(LumoMouseUp, list, pointer, eventKeys);
    endGesture(false);
}

/// Nothing if there is no gesture. The state is of no gesture before anybody is called.
void LumoDispatcher::State::endGesture(bool cancelled) {
    if (button == 0) return;
    const int32_t eventKeys = keys | button;
    const bool dropped = dragging;
    const LumoObjects objects = std::move(grab);
    grab.clear();
    dragging = false;
    orphaned = false;
    taker = nullptr;
    button = 0;
    if (cancelled) rightClick.reset();
    for (LiveList* list = lists; list; list = list->outer())
        if (list->ofGesture()) list->dropAll();

    // A cancelled drag has left its target when it drops: nothing comes of it.
    LiveList live(this, objects);
    if (cancelled) leaveAll(&draggedOver, LumoDragLeave, eventKeys);
    if (dropped) deliverDrop(live.alive(), eventKeys);
    if (!cancelled) leaveAll(&draggedOver, LumoDragLeave, eventKeys);
}

// ---- wheel and keys ----

bool LumoDispatcher::State::wheel(LumoControlPoint point, LumoPoint pixels, int32_t eventKeys) {
    LumoDiagram* const root = diagram();
    if (!root) return false;
    LiveList list(this, hits(&LumoObject::shouldTriggerMouseMove, point, eventKeys));
    const auto wheelEvent = [&](const LumoObject* object) {
        LumoEvent event = eventFor(object, point, eventKeys);
        event.wheel = pixels;
        return event;
    };
    bool toItems = true;
    root->customMouseWheel(wheelEvent(root), toItems);
    for (size_t i = 0; i < list.size(); ++i) {
        LumoObject* const object = list.at(i);
        if (!object || (!toItems && object != root)) continue;
        if (object->triggerEventResponder(LumoMouseWheel, wheelEvent(object))) continue;
        delivery->canvasMoved();  // a part of it
        return true;
    }
    return false;
}

bool LumoDispatcher::State::keyDown(int32_t keyCode, int32_t eventKeys) {
    LumoObjects asked = grab;
    LumoDiagram* const root = diagram();
    if (root && !lumoContains(asked, root)) asked.push_back(root);
    LiveList list(this, std::move(asked));
    const auto press = [keyCode](LumoObject* object, LumoEvent event, bool* stop) {
        event.keyCode = keyCode;
        object->customKeyDown(event, *stop);
    };
    const bool taken = callHooks(list, pointer, (eventKeys & ~lumoAllButtons) | button, press);
    if (keyCode != LumoKeyEscape || button == 0) return taken;
    endGesture(true);
    return true;
}

// ---- objects that go ----

void LumoDispatcher::State::takeOut(LumoObject* object, bool dying) {
    const bool ownsGesture = taker && isWithin(taker, object);
    LiveList grabbed(this, takeWithin(&grab, object));
    LiveList target(this, takeWithin(&draggedOver, object));
    LiveList hovered(this, takeWithin(&over, object));
    for (LiveList* list = grabbed.outer(); list; list = list->outer())
        list->dropWithin(object);
    if (ownsGesture) taker = nullptr;
    if (dying) {
        // Others are not called in the middle of a destructor: they may be part of what goes.
        if (ownsGesture && button != 0) endSoon();
        return;
    }
    leaveEach(target, LumoDragLeave);
    if (dragging) deliverDrop(grabbed.alive(), keys | button);
    leaveEach(hovered, LumoMouseLeave);
    if (ownsGesture) endGesture(true);
}

void LumoDispatcher::State::leaveEach(const LiveList& list, LumoEventResponderType leaving) {
    for (size_t i = 0; i < list.size(); ++i)
        if (list.at(i)) callAlone(leaving, list.at(i), keys | button);
}

void LumoDispatcher::State::endSoon() {
    orphaned = true;
    QTimer::singleShot(0, &timerContext, [this] {
        const std::shared_ptr<State> kept = shared_from_this();
        endOrphanedGesture();
    });
}

void LumoDispatcher::State::endOrphanedGesture() {
    if (orphaned) endGesture(true);
    orphaned = false;
}
