#pragma once

#include <vector>

#include "platform/lumo/lumo_context.h"
#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_dispatch.h"

namespace QB::Test {

/// A control without a widget: shows a part of the diagram, and keeps what the
/// canvas tells it. Events go in through its dispatcher, in the space of the diagram.
class PlainControl : public LumoControl {
public:
    PlainControl(LumoContext* context, LumoSize size) : LumoControl(context), m_size(size) {}

    LumoControlPoint getScrollOrigin() const override { return origin; }
    void setScrollOrigin(LumoControlPoint at) override { origin = at; }
    LumoRect getDisplayRect() const override { return {{origin.x, origin.y}, m_size}; }
    double getZoom() const override { return zoom; }
    void setZoom(double to, LumoControlPoint) override { zoom = to; }
    void zoomIn() override {}
    void zoomOut() override {}
    void zoomReset() override {}
    void scrollToVisible(const LumoRect&, bool) override {}
    void diagramChanged() override { ++changes; }
    void layoutWanted() override { ++layoutsWanted; }
    void updateRegion(const LumoRect& rect) override { dirty.push_back(rect); }
    void cursorChanged(int code) override { cursor = code; }
    void rightClicked(const LumoMessageRightClickParam& param, LumoPoint at) override {
        rightClicks.push_back(param.block());
        menuPlace = at;
    }

    void press(LumoPoint at, int32_t keys = LumoButtonLeft) {
        dispatcher()->mousePress(inControl(at), keys);
    }
    void move(LumoPoint at, int32_t keys = LumoButtonLeft) {
        dispatcher()->mouseMove(inControl(at), keys);
    }
    void release(LumoPoint at, int32_t keys = LumoButtonLeft) {
        dispatcher()->mouseRelease(inControl(at), keys);
    }
    void click(LumoPoint at, int32_t keys = LumoButtonLeft) {
        press(at, keys);
        release(at, keys);
    }
    /// Pressed, moved in two steps, not released.
    void drag(LumoPoint from, LumoPoint to, int32_t keys = LumoButtonLeft) {
        press(from, keys);
        move({(from.x + to.x) / 2, (from.y + to.y) / 2}, keys);
        move(to, keys);
    }

    LumoControlPoint origin;
    double zoom = 1;
    int changes = 0;
    int layoutsWanted = 0;
    int cursor = 0;
    std::vector<LumoRect> dirty;
    std::vector<std::shared_ptr<void>> rightClicks;
    LumoPoint menuPlace;  // of the last one

private:
    LumoControlPoint inControl(LumoPoint at) const { return diagramSpaceToControlSpace(at); }

    LumoSize m_size;
};

}  // namespace QB::Test
