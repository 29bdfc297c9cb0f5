#include "platform/lumo/lumo_dispatch.h"

#include <utility>

#include <QGuiApplication>
#include <QStyleHints>

#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_diagram.h"
#include "platform/lumo/lumo_dispatch_state.h"
#include "platform/lumo/lumo_hit_walk.h"

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
        // A drag goes on to where it is dropped.
        if (state.dragging && point != state.pointer) state.move(point, keys);
        state.pointer = point;
        state.keys = keys & ~lumoAllButtons;
        state.held = stillHeld & lumoAllButtons;
        if ((state.held & state.button) == 0) state.release();
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
        state.release();
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
    return lumoContains(m_state->dragging ? m_state->draggedOver : m_state->over, object);
}

bool LumoDispatcher::isPressed(const LumoObject* object) const {
    return lumoContains(m_state->grab, object);
}

int LumoDispatcher::startDistance() {
    return QGuiApplication::styleHints()->startDragDistance();
}

std::vector<LumoObject*> LumoDispatcher::hitList(LumoDiagram* diagram, LumoPoint point) {
    LumoHitWalk walk([](LumoObject* object, LumoPoint local) { return object->ptInRect(local); },
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
