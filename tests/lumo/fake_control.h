#pragma once

#include <vector>

#include "platform/lumo/lumo_context.h"
#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_diagram.h"
#include "platform/lumo/lumo_dispatch.h"

namespace Lumo::Test {

/// A control without a widget: takes what the context hands on.
class FakeControl : public LumoControl {
public:
    using LumoControl::LumoControl;

    LumoControlPoint getScrollOrigin() const override { return origin; }
    void setScrollOrigin(LumoControlPoint at) override { origin = at; }
    LumoRect getDisplayRect() const override { return {0, 0, 1000, 1000}; }
    double getZoom() const override { return zoom; }
    void setZoom(double to, LumoControlPoint) override { zoom = to; }
    void zoomIn() override {}
    void zoomOut() override {}
    void zoomReset() override {}
    void scrollToVisible(const LumoRect&, bool) override {}
    void diagramChanged() override { ++changes; }
    void updateRegion(const LumoRect& rect) override { updated.push_back(rect); }
    void layoutWanted() override { ++layoutsWanted; }
    void cursorChanged(int code) override { cursor = code; }
    void rightClicked(const LumoMessageRightClickParam& param, LumoPoint) override {
        rightClicks.push_back(param.block());
    }

    /// What was updated since the last call.
    std::vector<LumoRect> takeUpdated() { return std::exchange(updated, {}); }

    LumoControlPoint origin;
    double zoom = 1;
    int changes = 0;
    int layoutsWanted = 0;
    int cursor = 0;
    std::vector<std::shared_ptr<void>> rightClicks;
    std::vector<LumoRect> updated;
};

/// A canvas of 1000 x 1000 in a control that shows all of it.
struct Scene {
    LumoContext context;
    FakeControl control{&context};
    LumoDiagram diagram{&context};

    Scene() {
        diagram.setRect({0, 0, 1000, 1000});
        context.setActiveDiagram(&control, &diagram);
    }

    /// Settles what was asked for, and returns what that made dirty.
    std::vector<LumoRect> settle() {
        diagram.layout();
        diagram.flushDirtyRect();
        return control.takeUpdated();
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
