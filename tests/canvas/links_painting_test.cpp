#include <gtest/gtest.h>

#include <QPainter>
#include <QtTest>

#include "canvas/base/canvas_style.h"
#include "canvas/item_scene.h"
#include "canvas/link_scene.h"
#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_picture_cache.h"
#include "platform/lumo/lumo_view.h"
#include "support/host_callbacks.h"
#include "support/pixels.h"

namespace QB::DiagramLumo {
namespace {

QColor toQt(const LumoColor& color) {
    return {color.red, color.green, color.blue};
}

QImage canvasImage(QSize size, double scale) {
    QImage image(size * scale, QImage::Format_RGB32);
    image.fill(toQt(themePalette().canvas));
    return image;
}

bool isNear(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) <= 24 && std::abs(a.green() - b.green()) <= 24 &&
           std::abs(a.blue() - b.blue()) <= 24;
}

/// In the space of a symbol: the middle of each circle's outer part, the lens, the canvas.
struct SymbolCase {
    int type;
    const char* colors;  // of left, lens, right: (A)ccent, (B)ackground, (T)ext, (W)hite, - any
};
const SymbolCase symbols[] = {{0, "TWT"}, {2, "BAB"}, {3, "AAB"},
                              {4, "BAA"}, {5, "A-A"}, {6, "AAA"}};

TEST(JoinSymbol, FillsThePartThatTheJoinKeepsInEachThemeScaleAndAngle) {
    dropJoinSymbolPictures();  // of views in other tests
    QB::Test::needApplication();
    QB::Test::HostCallbacks host;
    LumoPictureCache cache;
    for (const bool isDark : {false, true}) {
        host.isDark = isDark;
        const std::map<char, QColor> colors{{'A', toQt(Style::symbolAccent)},
                                            {'B', QColor(200, 220, 140)},
                                            {'C', toQt(themePalette().canvas)},
                                            {'T', toQt(themePalette().text)},
                                            {'W', Qt::white}};
        for (const double scale : {1.0, 2.0})
            for (const double angle : {0.0, 30.0, 90.0, -180.0, -120.0})
                for (LumoPictureCache* const road :
                     {&cache, static_cast<LumoPictureCache*>(nullptr)})
                    for (const SymbolCase& c : symbols) {
                        QImage image = canvasImage({80, 60}, scale);
                        QPainter qtPainter(&image);
                        qtPainter.scale(scale, scale);
                        // A pixel lies in the middle.
                        qtPainter.translate(0.5 / scale, 0.5 / scale);
                        LumoPaintConfig config(&qtPainter, road);
                        const JoinSymbol symbol{{40, 30}, angle, c.type, "", {200, 220, 140, 1}};
                        {
                            LumoPainter painter(&config, nullptr);
                            paint_drawJoinImage(&painter, symbol);
                        }
                        QTransform turn;
                        turn.scale(scale, scale).translate(40, 30).rotate(angle);
                        const auto check = [&](QPointF place, char color) {
                            if (color == '-') return;
                            const QColor seen = QB::Test::meanAt(image, turn.map(place));
                            EXPECT_TRUE(isNear(seen, colors.at(color)))
                                << "type " << c.type << " dark " << isDark << " scale " << scale
                                << " angle " << angle << " picture " << (road != nullptr) << " at "
                                << place.x() << ": " << seen.name().toStdString();
                        };
                        check({-15, 0}, c.colors[0]);
                        check({0, 0}, c.colors[1]);
                        check({15, 0}, c.colors[2]);
                        check({0, 22}, 'C');
                        check({0, -22}, 'C');
                    }
    }
    EXPECT_EQ(joinSymbolPictureCount(), 24) << "of a type, theme and scale: one";
    dropJoinSymbolPictures();
    EXPECT_EQ(joinSymbolPictureCount(), 0);
}

QImage painted(LumoObject* object, const LinkScene& scene) {
    const LumoSize size = scene.diagram.getRect().size;
    QImage image = canvasImage({size.width, size.height}, 1);
    QPainter qtPainter(&image);
    LumoPaintConfig config(&qtPainter);
    object->paint(&config, object->getBoundingRect());
    return image;
}

/// Where @p image differs from an empty canvas.
QRect touchedPart(const QImage& image) {
    const QRgb empty = toQt(themePalette().canvas).rgb();
    QRect touched;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixel(x, y) != empty) touched |= QRect(x, y, 1, 1);
    return touched;
}

QRect dirtyPart(const LumoObject* object, const LinkScene& scene) {
    const LumoRect rect = object->translateRect(object->customDirtyRect(), &scene.diagram);
    return {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
}

TEST(JoinLink, PaintsOnlyInsideOfWhatItMakesDirty) {
    LinkScene scene;
    const LumoPoint places[] = {{900, 400}, {420, 620}, {400, 800}, {400, 404}, {660, 380}};
    for (const LumoPoint& place : places) {
        auto* const a = scene.dock({400, 400, 200, 50});
        auto* const b = scene.dock({place, {200, 50}});
        for (int type : {0, 2, 5, 6}) {
            QBLumoJoinLink* const link = scene.link(a, b, type);
            link->setLabel("ON a.customer_number = b.number AND a.day BETWEEN b.first AND b.last");
            link->setSelected(type != 2);
            for (const double seconds : {0.0, 0.0, 0.85, 0.75, 1.0}) {
                scene.diagram.getAnimationTimer()->step(seconds);
                const QRect touched = touchedPart(painted(link, scene));
                EXPECT_GT(touched.width() * touched.height(), 100);
                EXPECT_TRUE(dirtyPart(link, scene).contains(touched))
                    << "type " << type << " to " << place.x << ' ' << place.y << " after "
                    << seconds;
                if (!(seconds > 0)) link->playPromptAnimation();
            }
            scene.diagram.removeChild(link);
            delete link;
        }
    }
}

TEST(JoinLink, ShinesThroughWhatLiesBetweenItsEndsButNotThroughATitlesText) {
    for (const LumoPoint place : {LumoPoint{640, 40}, LumoPoint{640, 340}}) {
        ItemScene scene;
        QBLumoItem* const a = scene.table("a", {40, 40})->item();
        QBLumoItem* const between = scene.table("between", {340, 40}, numberedFields(9))->item();
        QBLumoItem* const b = scene.table("b", place)->item();
        auto* const link = new QBLumoJoinLink;
        scene.diagram.addChild(link, 0);
        link->setTableAdaptors(a->getAdaptor(), b->getAdaptor());
        const QImage whole = scene.picture(1);
        link->setVisible(false);
        const QImage without = scene.picture(1);
        /// How many pixels of the rectangle, in the space of the item's body, the link changes.
        const auto changed = [&](const QBLumoItem* item, const LumoRect& rect) {
            const LumoPoint origin = item->getBody()->translatePoint(rect.origin, &scene.diagram);
            int count = 0;
            for (int y = origin.y; y < origin.y + rect.size.height; ++y)
                for (int x = origin.x; x < origin.x + rect.size.width; ++x)
                    count += whole.pixel(x, y) != without.pixel(x, y);
            return count;
        };
        const int column = changed(between, {150, 1, 1, 230});
        EXPECT_TRUE(column >= 2 && column <= 5) << column;
        EXPECT_EQ(changed(between, between->getBody()->titleTextPlace()), 0);
        EXPECT_EQ(changed(a, {10, 1, 180, 220}) + changed(b, {10, 1, 180, 220}), 0);
    }
}

// ---- clicks, at the window ----

struct ClickCase {
    const char* what;
    /// p presses, q with Ctrl, R the right button; r releases; m moves away; 1, 3 and 9 wait for as
    /// many hundred milliseconds, 1 for 150; x closes the popup; o goes off the link.
    const char* script;
    int fired;
    bool opensPopup = false;
};

class LinkClick : public testing::TestWithParam<ClickCase> {
protected:
    LinkClick() {
        view.init();
        view.resize(800, 600);
        scene.context.setActiveDiagram(view.getControl(), &scene.diagram);
        popup.setWindowFlags(Qt::Popup);
        popup.setGeometry(600, 400, 50, 50);
        scene.context.setJoinLinkDoubleClicked([this](QBLumoJoinLink* clicked, bool byUser) {
            EXPECT_TRUE(byUser && clicked == link);
            ++fired;
            if (GetParam().opensPopup) popup.show();
        });
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
        place = view.viewport()->mapTo(&view, toControl(link->midPoint()));
    }

    QPoint toControl(LumoPoint point) {
        const LumoControlPoint at =
            view.getControl()->diagramSpaceToControlSpace(scene.inDiagram(link, point));
        return {at.x, at.y};
    }

    void mouse(QEvent::Type type, Qt::MouseButton button, Qt::KeyboardModifiers modifiers = {}) {
        if (type == QEvent::MouseButtonPress) held = button;
        if (type == QEvent::MouseButtonRelease) held = Qt::NoButton;
        qt_handleMouseEvent(view.windowHandle(), place, view.mapToGlobal(place), held, button, type,
                            modifiers, ++time);
        QCoreApplication::processEvents();
    }

    void wait(int milliseconds) {
        QTest::qWait(milliseconds);
        time += milliseconds;
    }

    void play(char step) {
        if (step == 'p') mouse(QEvent::MouseButtonPress, Qt::LeftButton);
        if (step == 'q') mouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::ControlModifier);
        if (step == 'R') mouse(QEvent::MouseButtonPress, Qt::RightButton);
        if (step == 'r') mouse(QEvent::MouseButtonRelease, held);
        if (step == 'x') popup.close();
        if (step == 'o') place += QPoint(0, 20);
        if (step == 'm') {
            place += QPoint(30, 0);
            mouse(QEvent::MouseMove, Qt::NoButton);
        }
        if (step >= '1' && step <= '9') wait(step == '1' ? 150 : (step - '0') * 100);
    }

    LinkScene scene;
    QBLumoJoinLink* link =
        scene.link(scene.dock({50, 100, 150, 100}), scene.dock({500, 100, 150, 100}));
    LumoUIScrollView view{&scene.context};
    QWidget popup;
    QPoint place;
    Qt::MouseButton held = Qt::NoButton;
    int time = 10000;
    int fired = 0;
};

TEST_P(LinkClick, OpensTheEditorAsOftenAsTheUserMeantIt) {
    for (const QPoint step : {QPoint(0, -90), QPoint(0, 90)}) {
        place += step;
        mouse(QEvent::MouseMove, Qt::NoButton);
    }
    EXPECT_EQ(view.viewport()->cursor().shape(), Qt::PointingHandCursor);
    for (const char* step = GetParam().script; *step; ++step)
        play(*step);
    wait(260);
    EXPECT_EQ(fired, GetParam().fired);
    const std::string script = GetParam().script;
    if (script.find('m') == std::string::npos) {
        EXPECT_EQ(link->getSelected(), script.find('o') == std::string::npos);
    }
    popup.close();
}

INSTANTIATE_TEST_SUITE_P(
    Gestures, LinkClick,
    testing::Values(ClickCase{"click", "pr", 1}, ClickCase{"click_with_popup", "pr", 1, true},
                    ClickCase{"double_click", "prpr", 1},
                    ClickCase{"double_click_with_popup", "prpr", 1, true},
                    ClickCase{"double_click_150", "pr1pr", 1},
                    ClickCase{"double_click_150_with_popup", "pr1pr", 1, true},
                    ClickCase{"double_click_300", "pr3pr", 1},
                    ClickCase{"double_click_300_with_popup", "pr3pr", 1, true},
                    ClickCase{"two_clicks", "pr9pr", 2},
                    ClickCase{"click_after_a_double_click_with_popup", "prpr9xpr", 2, true},
                    ClickCase{"ctrl_click", "qr", 0}, ClickCase{"right_click", "Rr", 0},
                    ClickCase{"right_double_click", "RrRr", 0}, ClickCase{"drag", "pmmr", 0},
                    ClickCase{"beside", "opr", 0}),
    [](const auto& c) { return c.param.what; });

TEST(JoinLink, MayBeDestroyedByItsOwnClickOrBeforeIt) {
    for (const bool before : {false, true}) {
        LinkScene scene;
        QBLumoJoinLink* const link =
            scene.link(scene.dock({50, 100, 150, 100}), scene.dock({500, 100, 150, 100}));
        int fired = 0;
        const auto destroy = [&] {
            scene.diagram.removeChild(link);
            delete link;
        };
        scene.context.setJoinLinkDoubleClicked([&](QBLumoJoinLink*, bool) {
            ++fired;
            destroy();
        });
        LumoEvent event;
        event.keys = LumoButtonLeft;
        event.point = link->midPoint();
        link->triggerEventResponder(LumoMouseDown, event);
        link->triggerEventResponder(LumoMouseUp, event);
        if (before) destroy();
        QTest::qWait(260);
        EXPECT_EQ(fired, before ? 0 : 1);
    }
}

}  // namespace
}  // namespace QB::DiagramLumo
