#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include "platform/lumo/lumo_label.h"
#include "platform/lumo/lumo_paint.h"
#include "platform/lumo/lumo_scroll_bar.h"
#include "platform/lumo/lumo_virtual_scroll_view.h"
#include "scene.h"
#include "support/application.h"
#include "support/pixels.h"

namespace Lumo::Test {
namespace {

constexpr LumoColor red{200, 0, 0, 1};

/// Fills its rectangle and counts what it gets.
class Block : public LumoObject {
public:
    Block() {
        registerEventResponder(LumoMouseDown, [this](const LumoEvent&) { return ++presses > 0; });
        registerEventResponder(LumoMouseWheel, [this](const LumoEvent&) { return ++wheels > 0; });
    }
    void paint(LumoPaintConfig* config, LumoRect) override {
        LumoPainter painter(config, this);
        painter.setColor(red);
        painter.addRect(LumoDoubleRect(getBoundingRect()));
        painter.fill();
    }

    int presses = 0;
    int wheels = 0;
};

class Delegate : public LumoVirtualScrollViewDelegate {
public:
    void scrollViewContentOffsetChanged(LumoVirtualScrollView*) override { ++changes; }
    bool scrollViewShouldScroll(LumoVirtualScrollView*, bool vertical) override {
        return vertical && allowed;
    }
    bool allowed = true;
    int changes = 0;
};

/// A view of 100 x 200 at (50, 50) of the canvas, on a block that tells what came through, with
/// content of 100 x 1000.
class ScrollView : public testing::Test {
protected:
    ScrollView() {
        QB::Test::needApplication();
        view->setEnableVerticalScrollBar(true, false);
        view->setContentWidth(100);
        view->setContentHeight(1000);
        scene.diagram.layout();
        content = added(view->contentObject(), new Block, {0, 0, 100, 1000});
    }

    bool wheel(int notches) {
        return scene.control.dispatcher()->mouseWheel({60, 60}, {0, notches * lumoWheelNotch}, 0);
    }
    QImage rendered(int scale) {
        QImage image(QSize(300, 300) * scale, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.scale(scale, scale);
        scene.diagram.layout();
        LumoPaintConfig config(&painter);
        scene.diagram.paint(&config, {0, 0, 300, 300});
        return image;
    }

    Scene scene;
    Block* const below = added(&scene.diagram, new Block, {0, 0, 300, 300});
    LumoVirtualScrollView* const view =
        added(&scene.diagram, new LumoVirtualScrollView, {50, 50, 100, 200});
    Block* content = nullptr;
};

TEST_F(ScrollView, KeepsItsOffsetWithinTheContent) {
    view->setContentOffsetY(5000);
    EXPECT_EQ(view->getContentOffsetY(), 800);
    EXPECT_EQ(content->getRect().origin, (LumoPoint{0, -800}));
    view->setContentHeight(900);
    EXPECT_EQ(view->getContentOffsetY(), 700);
    view->setRect({50, 50, 100, 500});
    scene.diagram.layout();
    EXPECT_EQ(view->getContentOffsetY(), 400);
    view->setContentOffsetY(-1);
    EXPECT_EQ(content->getRect().origin, (LumoPoint{0, 0}));
}

TEST_F(ScrollView, GivesRoomToPaddingAndBars) {
    view->setScrollPadding({10, 20, 1, 2});
    EXPECT_EQ(view->getContentRect(), LumoRect(1, 10, 97, 170));
    view->setEnableVerticalScrollBar(true, true);
    EXPECT_EQ(view->getContentRect(), LumoRect(1, 10, 89, 170));
    // Content of the full width needs a bar only because the other one took its room.
    view->setContentWidth(97);
    view->setEnableHorizontalScrollBar(true, true);
    EXPECT_EQ(view->getContentRect(), LumoRect(1, 10, 89, 162));
    view->setContentHeight(100);
    EXPECT_EQ(view->getContentRect(), LumoRect(1, 10, 97, 170));
    view->setAlwaysShowScrollBar(true);
    EXPECT_EQ(view->getContentRect(), LumoRect(1, 10, 89, 162));
    scene.diagram.layout();
    EXPECT_EQ(view->contentObject()->getRect(), view->getContentRect());
    view->setRect({0, 0, 5, 5});
    EXPECT_EQ(view->getContentRect().size, (LumoSize{0, 0}));
}

TEST_F(ScrollView, ScrollsByTheWheelOrLetsItGoOn) {
    const struct {
        const char* what;
        bool jumpOut, allowed, enabled;
        long contentHeight, offset;
        int notches;
        long offsetAfter;
        bool reachesBelow;
    } cases[] = {{"a fifth of the view", true, true, true, 1000, 0, 1, 40, false},
                 {"back", true, true, true, 1000, 100, -2, 20, false},
                 {"up to the end", true, true, true, 1000, 790, 1, 800, false},
                 {"jumps out at the end", true, true, true, 1000, 800, 1, 800, true},
                 {"stays at the end", false, true, true, 1000, 800, 1, 800, false},
                 {"stays at the start", false, true, true, 1000, 0, -1, 0, false},
                 {"refused", false, false, true, 1000, 0, 1, 0, true},
                 {"without a bar", false, true, false, 1000, 0, 1, 0, true},
                 {"all shows", false, true, true, 150, 0, 1, 0, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Delegate delegate;
        view->setScrollViewDelegate(&delegate);
        view->setAutoJumpOut(c.jumpOut);
        view->setEnableVerticalScrollBar(c.enabled, false);
        view->setContentHeight(c.contentHeight);
        view->setContentOffsetY(c.offset);
        delegate.allowed = c.allowed;
        delegate.changes = 0;
        below->wheels = 0;
        EXPECT_EQ(wheel(c.notches), !c.reachesBelow);
        EXPECT_EQ(view->getContentOffsetY(), c.offsetAfter);
        EXPECT_EQ(below->wheels, c.reachesBelow ? 1 : 0);
        EXPECT_EQ(delegate.changes, c.offsetAfter != c.offset ? 1 : 0);
    }
    view->setScrollViewDelegate(nullptr);
}

TEST_F(ScrollView, IsScrolledByItsBar) {
    // The bar is at x = 142 to 150 of the canvas, its thumb 40 long.
    scene.drag({146, 60}, {146, 100});
    EXPECT_EQ(view->getContentOffsetY(), 200);
    scene.drag({146, 100}, {400, 1000});  // wherever the pointer is
    EXPECT_EQ(view->getContentOffsetY(), 800);
    scene.click({146, 60});
    EXPECT_EQ(view->getContentOffsetY(), 800 - 180);
    view->registerEventResponder(LumoMouseDoubleClick, [](const LumoEvent&) {
        ADD_FAILURE() << "of the view, not of its bar";
        return false;
    });
    scene.control.dispatcher()->mouseDoubleClick({146, 60}, LumoButtonLeft);
    scene.control.dispatcher()->mouseRelease({146, 60}, LumoButtonLeft);
    EXPECT_EQ(view->getContentOffsetY(), 800 - 360);
    scene.drag({146, 60}, {146, 240});  // from the groove nothing is dragged
    EXPECT_EQ(view->getContentOffsetY(), 800 - 540);
    Delegate delegate;
    delegate.allowed = false;
    view->setScrollViewDelegate(&delegate);
    scene.click({146, 240});
    EXPECT_EQ(view->getContentOffsetY(), 800 - 540);
    EXPECT_EQ(content->presses + below->presses, 0);
    // A right click is for what the view lies on, not for the row below the bar.
    scene.control.dispatcher()->mousePress({146, 60}, LumoButtonRight);
    EXPECT_EQ(content->presses, 0);
    EXPECT_EQ(below->presses, 1);
}

TEST_F(ScrollView, ShowsAndHitsItsContentOnlyWithinItself) {
    view->setScrollPadding({31, 0, 0, 0});
    view->setContentOffsetY(100);
    scene.settle();
    scene.click({60, 60});  // in the padding
    EXPECT_EQ(content->presses, 0);
    scene.click({60, 90});
    EXPECT_EQ(content->presses, 1);
    below->setVisible(false);
    for (const int scale : {1, 2}) {
        const QImage image = rendered(scale);
        const auto seen = [&](int x, int y) {
            return QB::Test::meanAt(image, QPoint(x, y) * scale).name().toStdString();
        };
        EXPECT_EQ(seen(60, 78), "#ffffff") << "above the view's content";
        EXPECT_EQ(seen(60, 84), "#c80000");
        EXPECT_EQ(seen(60, 247), "#c80000");
        EXPECT_EQ(seen(60, 253), "#ffffff");
    }
}

TEST_F(ScrollView, DirtiesNoMoreThanShows) {
    scene.settle();
    content->invalidate();
    EXPECT_EQ(scene.settle(), (std::vector<LumoRect>{{50, 50, 100, 200}}));
    LumoObject* const row = addObject(content, {0, 500, 100, 20});
    scene.settle();
    row->setSelected(true);
    EXPECT_TRUE(scene.settle().empty());
}

}  // namespace
}  // namespace Lumo::Test
