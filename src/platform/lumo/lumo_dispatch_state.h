#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <QObject>

#include "platform/lumo/lumo_context.h"
#include "platform/lumo/lumo_dispatch.h"
#include "platform/lumo/lumo_object.h"

using LumoObjects = std::vector<LumoObject*>;
using LumoHitTest = bool (LumoObject::*)(LumoEvent);

inline constexpr int32_t lumoAllButtons = LumoButtonLeft | LumoButtonRight | LumoButtonMiddle;

bool lumoContains(const LumoObjects& objects, const LumoObject* object);

/// The gesture, the hover, and the deliveries that run.
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
    LumoObjects hits(LumoHitTest test, LumoControlPoint point, int32_t keys) const;
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
    void setTaker(bool consumed, LumoObject* consumer);
    void deliverDragging(LumoControlPoint point, int32_t keys);
    void deliverDrop(LumoObjects objects, int32_t keys);
    void drag(LumoControlPoint point, int32_t keys);
    void dragOver(int32_t keys);
    void hover();
    void refresh();
    void updateOver(LumoObjects* over, const LumoObjects& now, LumoEventResponderType enter,
                    LumoEventResponderType leave, int32_t keys);
    void callAlone(LumoEventResponderType type, LumoObject* object, int32_t keys);
    void leaveEach(const LiveList& list, LumoEventResponderType leave);
    void leaveAll(LumoObjects* over, LumoEventResponderType leave, int32_t keys);
    void endGesture(bool cancelled);
    void takeOut(LumoObject* object, bool dying);
    void endSoon();
    void endOrphanedGesture();
    void emitRightClick();

    LumoControl* control;  // not owned; null once the dispatcher has gone

    LumoObjects grab;  // not owned, as all objects below: forget() takes them out
    LumoObjects over;  // got Enter, and no Leave yet
    LumoObjects draggedOver;
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

/// LumoObjects to deliver to. What is forgotten meanwhile becomes null.
class LumoDispatcher::State::LiveList {
public:
    LiveList(State* state, LumoObjects objects, bool ofGesture = false)
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
    void set(LumoObjects objects) { m_objects = std::move(objects); }
    LumoObjects alive() const {
        LumoObjects objects = m_objects;
        objects.erase(std::remove(objects.begin(), objects.end(), nullptr), objects.end());
        return objects;
    }
    void dropWithin(const LumoObject* ancestor);
    void dropAll() { std::fill(m_objects.begin(), m_objects.end(), nullptr); }

private:
    State* const m_state;
    LiveList* const m_outer;
    const bool m_ofGesture;
    LumoObjects m_objects;
};

/// One raw event: lays out before it, and afterwards sets the cursor that was proposed first.
class LumoDispatcher::State::Delivery {
public:
    explicit Delivery(State* state);
    ~Delivery();
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    void propose(int code);
    /// What lies under the pointer is asked again at the end.
    void canvasMoved() { m_canvasMoved = true; }

private:
    State* const m_state;
    Delivery* const m_outer;
    int m_cursor = LumoCursorDefault;
    bool m_proposed = false;
    bool m_canvasMoved = false;
};
