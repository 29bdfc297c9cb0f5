#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include "canvas/base/canvas_style.h"
#include "canvas/base/image_resource_provider_linux.h"
#include "canvas/controls/button.h"
#include "canvas/controls/check_box.h"
#include "canvas/controls/splitter.h"
#include "platform/lumo/lumo_diagram.h"
#include "platform/lumo/lumo_paint.h"
#include "support/application.h"
#include "support/host_callbacks.h"
#include "support/pixels.h"
#include "support/plain_control.h"

namespace QB::DiagramLumo {
namespace {

/// Controls on a canvas that counts what goes through to it.
class Controls : public testing::Test {
protected:
    Controls() : control(&context, {400, 300}), diagram(&context) {
        QB::Test::needApplication();
        LumoImageResourceProvider::setCurrent(&images);
        diagram.setRect({0, 0, 400, 300});
        context.setActiveDiagram(&control, &diagram);
        for (const auto type : {LumoMouseDown, LumoMouseUp, LumoMouseDoubleClick})
            diagram.registerEventResponder(type, [this](LumoEvent) {
                ++passedOn;
                return true;
            });
    }

    template <typename T>
    T* add(T* object, const LumoRect& rect) {
        object->setRect(rect);
        diagram.addChild(object);
        diagram.layout();
        return object;
    }

    QImage picture(double scale) {
        QImage image(QSize(400, 300) * scale, QImage::Format_RGB32);
        QPainter painter(&image);
        painter.scale(scale, scale);
        const LumoColor canvas = themePalette().canvas;
        painter.fillRect(0, 0, 400, 300, QColor(canvas.red, canvas.green, canvas.blue));
        LumoPaintConfig config(&painter);
        diagram.paint(&config, diagram.getBoundingRect());
        return image;
    }

    LumoColor meanAt(double scale, double x, double y) {
        const QColor mean = QB::Test::meanAt(picture(scale), {x * scale, y * scale});
        return {mean.red(), mean.green(), mean.blue(), 1};
    }

    static int distance(const LumoColor& a, const LumoColor& b) {
        return std::max(
            {std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue)});
    }

    QB::Test::HostCallbacks host;
    QBLumoImageResourceProvider_LINUX images;
    LumoContext context;
    QB::Test::PlainControl control;
    LumoDiagram diagram;
    int passedOn = 0;
};

TEST_F(Controls, AButtonTakesTheSizeOfItsImageAndKeepsItsClicks) {
    auto* const button = add(new QBLumoButton, {50, 50, 3, 3});
    button->setImage("no such image");
    EXPECT_EQ(button->getRect(), LumoRect(0, 0, 0, 0));
    button->setImage("ResID_BtnSubqueryEdit");
    EXPECT_EQ(button->getRect(), LumoRect(0, 0, 16, 16));
    button->setRect({100, 100, 16, 16});
    int clicks = 0;
    button->setClickHandler([&](QBLumoButton* clicked) {
        EXPECT_EQ(clicked, button);
        ++clicks;
    });
    control.click({108, 108});
    EXPECT_EQ(clicks, 1);
    control.dispatcher()->mouseDoubleClick({108, 108}, LumoButtonLeft);
    control.release({108, 108});
    EXPECT_EQ(clicks, 2);
    EXPECT_EQ(passedOn, 0) << "neither a click nor a double click of what lies below";

    control.press({108, 108});
    control.move({140, 108});
    control.release({140, 108});
    control.click({108, 108}, LumoButtonRight);
    EXPECT_EQ(clicks, 2) << "released outside, or by another button";
    EXPECT_EQ(passedOn, 2);
}

TEST_F(Controls, ACheckBoxTellsOnlyOfChangesByTheUser) {
    auto* const box = add(new QBLumoCheckBox, {100, 100, 20, 20});
    int changes = 0;
    box->setChangeHandler([&](QBLumoCheckBox*) { ++changes; });
    box->setChecked(true);
    box->setCheckedByUser(true);
    EXPECT_EQ(changes, 0);
    control.click({110, 110});
    EXPECT_FALSE(box->isChecked());
    EXPECT_EQ(changes, 1);
    control.press({110, 110});
    control.move({10, 10});
    control.release({10, 10});
    control.click({110, 110}, LumoButtonRight);
    EXPECT_EQ(changes, 1);
}

TEST_F(Controls, ACheckMarkIsSeenInBothThemesAsTheyAreNow) {
    auto* const box = add(new QBLumoCheckBox, {100, 100, 20, 20});  // the box itself from 103 on
    control.move({300, 200}, 0);
    for (const bool dark : {false, true, false})
        for (const double scale : {1.0, 2.0}) {
            host.isDark = dark;
            box->setChecked(false);
            const LumoColor empty = meanAt(scale, 106, 106);
            const LumoColor emptyMark = meanAt(scale, 108.5, 113);
            EXPECT_LE(distance(empty, emptyMark), 24);
            box->setChecked(true);
            EXPECT_LE(distance(meanAt(scale, 106, 106), Style::symbolAccent), 24);
            EXPECT_GT(distance(empty, Style::symbolAccent), 100);
            const LumoColor mark = meanAt(scale, 108.5, 113);
            EXPECT_GT(distance(mark, Style::symbolAccent), 40) << dark << ' ' << scale;
            EXPECT_LT(distance(mark, themePalette().canvas),
                      distance(Style::symbolAccent, themePalette().canvas));
        }
}

struct SplitCase {
    LumoSize size;
    bool vertical;
    double ratio;
    LumoRect handle, first, second;
};

TEST_F(Controls, ASplitterSharesItsLengthAndItsPanesFillTheOther) {
    const SplitCase cases[] = {
        {{210, 50}, false, 0.5, {100, 0, 10, 50}, {0, 0, 100, 50}, {110, 0, 100, 50}},
        {{205, 50}, false, 0.25, {48, 0, 10, 50}, {0, 0, 48, 50}, {59, 0, 146, 50}},
        {{50, 210}, true, 1.0, {0, 200, 50, 10}, {0, 0, 50, 200}, {0, 210, 50, 0}},
        {{50, 210}, true, 0.0, {0, 0, 50, 10}, {0, 0, 50, 0}, {0, 10, 50, 200}},
        {{0, 50}, false, 0.5, {0, 0, 10, 50}, {0, 0, 0, 50}, {0, 0, 0, 50}},
        {{10, 50}, false, 0.5, {0, 0, 10, 50}, {0, 0, 0, 50}, {10, 0, 0, 50}},
    };
    for (const SplitCase& expected : cases) {
        QBLumoSplitter splitter(expected.vertical);
        splitter.setRect({20, 20, 300, 280});
        splitter.layout();
        splitter.setRect({{20, 20}, expected.size});
        splitter.layout();
        splitter.setRatio(expected.ratio);
        splitter.layout();
        EXPECT_EQ(splitter.getHandleRect(), expected.handle);
        EXPECT_EQ(splitter.getFirstPane()->getRect(), expected.first);
        EXPECT_EQ(splitter.getSecondPane()->getRect(), expected.second);
    }
    EXPECT_EQ((SplitterGeometry{{0, 50}, false, 0.5}.ratioAt({-5, 0})), 0.0);
    EXPECT_EQ((SplitterGeometry{{10, 50}, false, 0.5}.ratioAt({0, 0})), 0.0);
}

TEST_F(Controls, ASplitterFollowsItsHandleAlone) {
    for (const bool vertical : {false, true}) {
        auto* const splitter = add(new QBLumoSplitter(vertical), {100, 100, 110, 110});
        const auto at = [&](int along) {
            return vertical ? LumoPoint{150, 100 + along} : LumoPoint{100 + along, 150};
        };
        control.drag(at(20), at(40));
        control.release(at(40));
        EXPECT_DOUBLE_EQ(splitter->ratio(), 0.5) << "not in the handle";
        for (const auto& [to, ratio] : {std::pair(25, 0.25), {300, 1.0}, {-40, 0.0}, {60, 0.6}}) {
            const LumoRect handle = splitter->getHandleRect();
            control.drag(at((vertical ? handle.origin.y : handle.origin.x) + 5), at(to));
            control.release(at(to));
            EXPECT_DOUBLE_EQ(splitter->ratio(), ratio);
            diagram.layout();
        }
        control.drag(at(20), at(40));
        control.release(at(40));
        EXPECT_DOUBLE_EQ(splitter->ratio(), 0.6) << "the drag has ended";
        control.move(at(10), 0);
        EXPECT_EQ(control.cursor, LumoCursorDefault);
        control.move(at(64), 0);
        EXPECT_EQ(control.cursor, vertical ? LumoCursorResizeVertical : LumoCursorResizeHorizontal);
        diagram.clearChildren();
    }
}

}  // namespace
}  // namespace QB::DiagramLumo
