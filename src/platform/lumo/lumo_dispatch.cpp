#include "platform/lumo/lumo_dispatch.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <optional>
#include <utility>

#include <QGuiApplication>
#include <QObject>
#include <QStyleHints>
#include <QTimer>

#include "platform/lumo/lumo_context.h"
#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_diagram.h"

namespace {

using Objects = std::vector<LumoObject*>;
using HitTest = bool (LumoObject::*)(LumoEvent);

constexpr int32_t allButtons = LumoButtonLeft | LumoButtonRight | LumoButtonMiddle;

bool contains(const Objects& objects, const LumoObject* object) {
    return std::find(objects.begin(), objects.end(), object) != objects.end();
}

/// Whether @p object is @p ancestor or lies in it.
bool isWithin(const LumoObject* object, const LumoObject* ancestor) {
    while (object && object != ancestor)
        object = object->getParent();
    return object != nullptr;
}

/// Takes what lies within @p ancestor out of @p objects.
Objects takeWithin(Objects* objects, const LumoObject* ancestor) {
    const auto gone = std::stable_partition(
        objects->begin(), objects->end(),
        [ancestor](const LumoObject* object) { return !isWithin(object, ancestor); });
    Objects taken(gone, objects->end());
    objects->erase(gone, objects->end());
    return taken;
}

/// Walks the tree at a point: visible objects, topmost first, children before parents. Where an
/// object does not paint, nothing of it is hit: what a scroll view clips cannot be clicked.
class HitWalk {
public:
    using Asked = std::function<bool(LumoObject*, LumoPoint)>;

    HitWalk(Asked hit, Asked forwards) : m_hit(std::move(hit)), m_forwards(std::move(forwards)) {}

    Objects walk(LumoObject* root, LumoPoint point) {
        visit(root, point);
        return std::move(m_found);
    }

private:
    /// False keeps the event from the siblings below @p object.
    bool visit(LumoObject* object, LumoPoint point) {
        if (!object->getVisible() || !lumoPointInRect(point, object->customDirtyRect()))
            return true;
        if (!object->clipsChildren() || object->ptInRect(point)) visitChildren(object, point);
        if (!m_hit(object, point)) return true;
        m_found.push_back(object);
        return m_forwards(object, point);
    }

    void visitChildren(LumoObject* object, LumoPoint point) {
        const Objects& children = object->getChildren();
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            if (!visit(*child, point - (*child)->getRect().origin)) return;
    }

    Asked m_hit;
    Asked m_forwards;
    Objects m_found;
};

}  // namespace

struct LumoDispatcher::State : std::enable_shared_from_this<State> {
    explicit State(LumoControl* owner) : control(owner) {}

    class LiveList;
    class Delivery;
    struct RightClick {
        LumoMessageRightClickParam param;
        LumoPoint point;
    };

    void run(const std::function<void(State&)>& event);
    LumoDiagram* diagram() const;
    Objects hits(HitTest test, LumoControlPoint point, int32_t keys) const;
    LumoEvent eventFor(const LumoObject* object, LumoControlPoint point, int32_t keys) const;
    bool respond(LumoEventResponderType type, const LiveList& list, LumoControlPoint point,
                 int32_t keys, LumoObject** consumer = nullptr) const;
    template <typename Hook>
    bool callHooks(const LiveList& list, LumoControlPoint point, int32_t keys, Hook hook) const;

    void press(LumoControlPoint point, int32_t keys, bool doubleClick);
    void beginGesture(LumoControlPoint point, int32_t withButton, bool doubleClick);
    void release();
    void move(LumoControlPoint point, int32_t keys);
    void leave();
    bool wheel(LumoControlPoint point, LumoPoint pixels, int32_t keys);
    bool keyDown(int32_t keyCode, int32_t keys);
    void deliverDragging(LumoControlPoint point, int32_t keys);
    void deliverDrop(Objects objects, int32_t keys);
    void drag(LumoControlPoint point, int32_t keys);
    void dragOver(int32_t keys);
    void hover();
    void refresh();
    void updateOver(Objects* over, const Objects& now, LumoEventResponderType enter,
                    LumoEventResponderType leave, int32_t keys);
    void callAlone(LumoEventResponderType type, LumoObject* object, int32_t keys);
    void leaveEach(const LiveList& list, LumoEventResponderType leave);
    void leaveAll(Objects* over, LumoEventResponderType leave, int32_t keys);
    void endGesture(bool cancelled);
    void takeOut(LumoObject* object, bool dying);
    void endSoon();
    void endOrphanedGesture();
    void emitRightClick();

    LumoControl* control;  // not owned; null once the dispatcher has gone

    Objects grab;  // not owned, as all objects below: forget() takes them out
    Objects over;  // got Enter, and no Leave yet
    Objects draggedOver;
    LumoObject* taker = nullptr;  // consumed the press or the last Dragging
    int32_t button = 0;           // of the gesture; 0 when there is none
    int32_t held = 0;             // buttons that are down
    int32_t keys = 0;             // modifiers of the last event
    bool dragging = false;
    bool orphaned = false;  // whose gesture it was has died
    bool pointerKnown = false;
    LumoControlPoint pressedAt;
    LumoControlPoint pointer;
    std::optional<RightClick> rightClick;

    LiveList* lists = nullptr;     // of deliveries that run, innermost first
    Delivery* delivery = nullptr;  // innermost
    QObject timerContext;          // ends the timer of endOrphanedGesture with the state
};

/// Objects to deliver to. What is forgotten meanwhile becomes null.
class LumoDispatcher::State::LiveList {
public:
    LiveList(State* state, Objects objects, bool ofGesture = false)
        : m_state(state)
        , m_outer(state->lists)
        , m_ofGesture(ofGesture)
        , m_objects(std::move(objects)) {
        state->lists = this;
    }
    ~LiveList() { m_state->lists = m_outer; }
    LiveList(const LiveList&) = delete;
    LiveList& operator=(const LiveList&) = delete;

    size_t size() const { return m_objects.size(); }
    LumoObject* at(size_t index) const { return m_objects[index]; }
    LiveList* outer() const { return m_outer; }
    bool ofGesture() const { return m_ofGesture; }
    void set(Objects objects) { m_objects = std::move(objects); }
    Objects alive() const {
        Objects objects = m_objects;
        objects.erase(std::remove(objects.begin(), objects.end(), nullptr), objects.end());
        return objects;
    }
    void dropWithin(const LumoObject* ancestor) {
        for (LumoObject*& object : m_objects)
            if (object && isWithin(object, ancestor)) object = nullptr;
    }
    void dropAll() { std::fill(m_objects.begin(), m_objects.end(), nullptr); }

private:
    State* const m_state;
    LiveList* const m_outer;
    const bool m_ofGesture;
    Objects m_objects;
};

/// One raw event: lays out before it, and afterwards sets the cursor that was proposed first.
class LumoDispatcher::State::Delivery {
public:
    explicit Delivery(State* state) : m_state(state), m_outer(state->delivery) {
        m_state->delivery = this;
        m_state->endOrphanedGesture();
        LumoDiagram* const diagram = m_state->diagram();
        if (diagram) diagram->layout();
    }
    ~Delivery() {
        if (m_canvasMoved) m_state->refresh();
        m_state->delivery = m_outer;
        if (m_proposed && m_state->control) m_state->control->cursorChanged(m_cursor);
    }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    void propose(int code) {
        if (m_cursor == LumoCursorDefault) m_cursor = code;
        m_proposed = true;
    }
    void canvasMoved() { m_canvasMoved = true; }

private:
    State* const m_state;
    Delivery* const m_outer;
    int m_cursor = LumoCursorDefault;
    bool m_proposed = false;
    bool m_canvasMoved = false;
};

// ---- who is called, and with what ----

LumoDiagram* LumoDispatcher::State::diagram() const {
    const LumoContext* const context = control ? control->getContext() : nullptr;
    return context ? context->getActiveDiagram(control) : nullptr;
}

Objects LumoDispatcher::State::hits(HitTest test, LumoControlPoint point, int32_t eventKeys) const {
    LumoDiagram* const root = diagram();
    if (!root) return {};
    const auto eventAt = [this, eventKeys](LumoPoint local) {
        LumoEvent event;
        event.control = control;
        event.keys = eventKeys;
        event.point = local;
        return event;
    };
    HitWalk walk(
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

void LumoDispatcher::State::leaveAll(Objects* entered, LumoEventResponderType leave,
                                     int32_t eventKeys) {
    updateOver(entered, {}, LumoMouseEnter, leave, eventKeys);
}

/// Leave to what is in @p entered and not in @p now, then Enter to what is in @p now alone.
void LumoDispatcher::State::updateOver(Objects* entered, const Objects& now,
                                       LumoEventResponderType enter, LumoEventResponderType leave,
                                       int32_t eventKeys) {
    LiveList before(this, *entered);
    LiveList after(this, now);
    for (size_t i = 0; i < before.size(); ++i) {
        LumoObject* const object = before.at(i);
        const auto place = std::find(entered->begin(), entered->end(), object);
        if (!object || contains(now, object) || place == entered->end()) continue;
        entered->erase(place);
        callAlone(leave, object, eventKeys);
    }
    for (size_t i = 0; i < after.size(); ++i) {
        LumoObject* const object = after.at(i);
        if (!object || contains(*entered, object)) continue;
        entered->push_back(object);
        callAlone(enter, object, eventKeys);
    }
}

void LumoDispatcher::State::hover() {
    const Objects now = hits(&LumoObject::shouldTriggerMouseMove, pointer, keys);
    LiveList list(this, now);
    updateOver(&over, now, LumoMouseEnter, LumoMouseLeave, keys);
    respond(LumoMouseMove, list, pointer, keys);
}

void LumoDispatcher::State::dragOver(int32_t eventKeys) {
    const Objects now = hits(&LumoObject::shouldTriggerMouseMove, pointer, eventKeys);
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
    const int32_t down = eventKeys & allButtons;
    const int32_t pressed = down & ~held;
    held = down;
    if ((down & button) != 0 && pressed != 0) return;  // a second button
    endGesture(true);                                  // else its release was lost
    const int32_t starting = pressed != 0 ? pressed : down;
    keys = eventKeys & ~allButtons;
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
    if (!respond(LumoMouseDoubleClick, twice, point, eventKeys, &consumer))
        respond(LumoMouseDown, down, point, eventKeys, &consumer);
    if (button != 0) taker = consumer;
}

void LumoDispatcher::State::move(LumoControlPoint point, int32_t eventKeys) {
    held = eventKeys & allButtons;
    keys = eventKeys & ~allButtons;
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
    respond(LumoMouseDragging, list, point, eventKeys, &consumer);
    if (dragging) taker = consumer;
    callHooks(list, point, eventKeys, [](LumoObject* object, const LumoEvent& event, bool* stop) {
        object->customMouseDragging(event, *stop);
    });
}

void LumoDispatcher::State::deliverDrop(Objects objects, int32_t eventKeys) {
    LiveList list(this, std::move(objects));
    respond(LumoMouseDrop, list, pointer, eventKeys);
    callHooks(list, pointer, eventKeys, [](LumoObject* object, const LumoEvent& event, bool* stop) {
        object->customMouseDrop(event, *stop);
    });
}

void LumoDispatcher::State::release() {
    const int32_t eventKeys = keys | button;
    Objects asked;
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
    const Objects objects = std::move(grab);
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
    Objects asked = grab;
    LumoDiagram* const root = diagram();
    if (root && !contains(asked, root)) asked.push_back(root);
    LiveList list(this, std::move(asked));
    const auto press = [keyCode](LumoObject* object, LumoEvent event, bool* stop) {
        event.keyCode = keyCode;
        object->customKeyDown(event, *stop);
    };
    const bool taken = callHooks(list, pointer, (eventKeys & ~allButtons) | button, press);
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

/// Last of all: the host's menu may run an event loop and destroy everything.
void LumoDispatcher::State::emitRightClick() {
    if (!rightClick || button != 0 || delivery || !control) return;
    const RightClick emitted = *std::exchange(rightClick, std::nullopt);
    control->rightClicked(emitted.param, emitted.point);
}

// ---- raw events ----

LumoDispatcher::LumoDispatcher(LumoControl* control) : m_state(std::make_shared<State>(control)) {}

LumoDispatcher::~LumoDispatcher() {
    m_state->control = nullptr;
    m_state->grab.clear();
    m_state->over.clear();
    m_state->draggedOver.clear();
    m_state->dragging = false;
    m_state->button = 0;
    for (State::LiveList* list = m_state->lists; list; list = list->outer())
        list->dropAll();
}

void LumoDispatcher::State::run(const std::function<void(State&)>& event) {
    const std::shared_ptr<State> kept = shared_from_this();
    {
        const Delivery running(this);
        event(*this);
    }
    emitRightClick();
}

void LumoDispatcher::mousePress(LumoControlPoint point, int32_t keys) {
    m_state->run([=](State& state) { state.press(point, keys, false); });
}

void LumoDispatcher::mouseDoubleClick(LumoControlPoint point, int32_t keys) {
    m_state->run([=](State& state) { state.press(point, keys, true); });
}

void LumoDispatcher::mouseMove(LumoControlPoint point, int32_t keys) {
    m_state->run([=](State& state) { state.move(point, keys); });
}

void LumoDispatcher::mouseRelease(LumoControlPoint point, int32_t keys, int32_t stillHeld) {
    m_state->run([=](State& state) {
        state.held = stillHeld & allButtons;
        if (state.button == 0 || (state.held & state.button) != 0) return state.refresh();
        state.keys = keys & ~allButtons;
        if (state.dragging && point != state.pointer) state.move(point, keys);
        state.pointer = point;
        if (state.button != 0) state.release();
        state.refresh();
    });
}

bool LumoDispatcher::mouseWheel(LumoControlPoint point, LumoPoint pixels, int32_t keys) {
    bool taken = false;
    m_state->run([=, &taken](State& state) { taken = state.wheel(point, pixels, keys); });
    return taken;
}

void LumoDispatcher::mouseLeave() {
    if (m_state->button != 0) return;
    m_state->run([](State& state) { state.leave(); });
}

bool LumoDispatcher::keyDown(int32_t keyCode, int32_t keys) {
    bool taken = false;
    m_state->run([=, &taken](State& state) { taken = state.keyDown(keyCode, keys); });
    return taken;
}

void LumoDispatcher::contextClick(LumoControlPoint point) {
    m_state->run([point](State& state) {
        state.endGesture(true);
        state.keys = 0;
        const LumoControlPoint pointer = std::exchange(state.pointer, point);
        state.beginGesture(point, LumoButtonRight, false);
        if (state.button != 0) state.release();
        state.pointer = pointer;
    });
}

void LumoDispatcher::cancel() {
    m_state->run([](State& state) {
        state.endGesture(true);
        state.leave();
    });
}

void LumoDispatcher::pointerStaysWhileCanvasMoves() {
    if (m_state->delivery) return m_state->delivery->canvasMoved();
    m_state->run([](State& state) { state.refresh(); });
}

void LumoDispatcher::forget(LumoObject* object, bool dying) {
    m_state->takeOut(object, dying);
}

bool LumoDispatcher::isGrabbing() const {
    return m_state->button != 0;
}

bool LumoDispatcher::isDragging() const {
    return m_state->dragging;
}

bool LumoDispatcher::isOver(const LumoObject* object) const {
    return contains(m_state->dragging ? m_state->draggedOver : m_state->over, object);
}

bool LumoDispatcher::isPressed(const LumoObject* object) const {
    return contains(m_state->grab, object);
}

int LumoDispatcher::startDistance() {
    return QGuiApplication::styleHints()->startDragDistance();
}

std::vector<LumoObject*> LumoDispatcher::hitList(LumoDiagram* diagram, LumoPoint point) {
    HitWalk walk([](LumoObject* object, LumoPoint local) { return object->ptInRect(local); },
                 [](LumoObject*, LumoPoint) { return true; });
    return walk.walk(diagram, point);
}

void LumoDispatcher::proposeCursor(int code) {
    if (m_state->delivery) return m_state->delivery->propose(code);
    if (m_state->control) m_state->control->cursorChanged(code);
}

void LumoDispatcher::setRightClick(const LumoMessageRightClickParam& param, LumoPoint point) {
    m_state->rightClick.emplace(State::RightClick{param, point});
    m_state->emitRightClick();
}
