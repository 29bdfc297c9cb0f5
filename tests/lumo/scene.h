#pragma once

#include <utility>

#include "platform/lumo/lumo_diagram.h"
#include "support/plain_control.h"

namespace Lumo::Test {

/// A canvas of 1000 x 1000 in a control that shows all of it.
struct Scene {
    LumoContext context;
    QB::Test::PlainControl control{&context, {1000, 1000}};
    LumoDiagram diagram{&context};

    Scene() {
        diagram.setRect({0, 0, 1000, 1000});
        context.setActiveDiagram(&control, &diagram);
    }

    /// Settles what was asked for, and returns what that made dirty.
    std::vector<LumoRect> settle() {
        diagram.layout();
        diagram.flushDirtyRect();
        return std::exchange(control.dirty, {});
    }
    void click(LumoControlPoint at) {
        control.dispatcher()->mousePress(at, LumoButtonLeft);
        control.dispatcher()->mouseRelease(at, LumoButtonLeft);
    }
    void drag(LumoControlPoint from, LumoControlPoint to) {
        control.dispatcher()->mousePress(from, LumoButtonLeft);
        control.dispatcher()->mouseMove(to, LumoButtonLeft);
        control.dispatcher()->mouseRelease(to, LumoButtonLeft);
    }
};

template <typename T>
T* added(LumoObject* parent, T* child, const LumoRect& rect) {
    child->setRect(rect);
    parent->addChild(child);
    return child;
}
inline LumoObject* addObject(LumoObject* parent, const LumoRect& rect) {
    return added(parent, new LumoObject, rect);
}

}  // namespace Lumo::Test
