#include <gtest/gtest.h>

#include <cmath>

#include <QAction>
#include <QImage>
#include <QMenu>
#include <QPainter>
#include <QPinchGesture>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <QWindow>
#include <QtTest>

#include "platform/lumo/lumo_context.h"
#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_diagram.h"
#include "platform/lumo/lumo_dispatch.h"
#include "platform/lumo/lumo_paint.h"
#include "platform/lumo/lumo_view.h"
#include "support/application.h"

namespace Lumo::Test {
namespace {

constexpr LumoColor white{255, 255, 255, 1};
constexpr LumoColor red{200, 0, 0, 1};

/// Fills itself, and counts what it is told.
class Box : public LumoObject {
public:
    Box() {
        for (int type = LumoMouseDown; type <= LumoDragLeave; ++type)
            registerEventResponder(LumoEventResponderType(type),
                                   [this, type](const LumoEvent& event) {
                                       ++told[type];
                                       last[type] = event;
                                       if (react) react(type);
                                       return type == LumoMouseMove;
                                   });
    }
    void paint(LumoPaintConfig* config, LumoRect) override {
        ++paints;
        LumoPainter painter(config, this);
        painter.setColor(red);
        painter.addRect(LumoDoubleRect(getBoundingRect()));
        painter.fill();
    }
    bool shouldForwardEventToNeighbors(LumoEvent) override { return false; }

    std::map<int, int> told;
    std::function<void(int)> react;
    std::map<int, LumoEvent> last;
    int paints = 0;
};

class Canvas : public LumoDiagram {
public:
    using LumoDiagram::LumoDiagram;
    std::vector<int> keys;
    bool takesKeys = false;

protected:
    void customKeyDown(LumoEvent event, bool& stop) override {
        if (event.keyCode != 0) keys.push_back(event.keyCode);
        stop = takesKeys;
    }
};

class View : public LumoUIScrollView {
public:
    using LumoUIScrollView::LumoUIScrollView;
    QString tip;

protected:
    QString toolTipAt(LumoPoint) const override { return tip; }
};

/// A window with a view of 400 x 300 on a canvas of 3000 x 1600 with a box at (100, 100).
class LumoView : public testing::Test {
protected:
    static void SetUpTestSuite() { QB::Test::needApplication(); }

    LumoView() {
        diagram->setBackgroundColor(white);
        diagram->setRect({0, 0, 3000, 1600});
        diagram->addChild(box);
        box->setRect({100, 100, 80, 60});
        context->setActiveDiagram(control(), diagram.get());
        view->init();
        auto* const layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(view);
        window.resize(400, 300);
    }
    void show() {
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        view->setFocus();
        settle();
    }
    /// Until nothing is left to lay out or paint.
    static void settle() {
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
    }

    LumoControl* control() const { return view->getControl(); }
    QWindow* native() { return window.windowHandle(); }
    /// Where a point of the viewport lies in the window.
    QPoint inWindow(QPoint point) const { return view->viewport()->mapTo(&window, point); }
    QPoint onDiagram(LumoPoint point) const {
        const LumoControlPoint at = control()->diagramSpaceToControlSpace(point);
        return inWindow({at.x, at.y});
    }
    void wheel(QPoint at, QPoint angle, Qt::KeyboardModifiers keys = {}, QPoint pixels = {}) {
        QWheelEvent event(at, view->viewport()->mapToGlobal(at), pixels, angle, Qt::NoButton, keys,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view->viewport(), &event);
    }
    void drag(QPoint from, QPoint to) {
        QTest::mousePress(native(), Qt::LeftButton, {}, from);
        QTest::mouseMove(native(), to);
    }
    LumoControlPoint origin() const { return control()->getScrollOrigin(); }

    std::unique_ptr<LumoContext> context = std::make_unique<LumoContext>();
    std::unique_ptr<Canvas> diagram = std::make_unique<Canvas>(context.get());
    Box* box = new Box;  // the diagram's
    QWidget window;
    View* view = new View(context.get(), &window);
};

// ---- where the view stands ----

TEST_F(LumoView, KeepsThePlaceUnderThePointerAtEveryStepOfTheZoom) {
    show();
    for (const QPoint pointer : {QPoint(37, 211), QPoint(300, 150)}) {
        view->zoomReset();
        control()->setScrollOrigin({1201, 703});
        const LumoDoublePoint place{double(1201 + pointer.x()), double(703 + pointer.y())};
        // In to the end, out to the end, in again, and with a fine wheel.
        for (const int angle : {120, -120, 120, -15, 15}) {
            for (int step = 0; step < 40; ++step) {
                wheel(pointer, {0, angle}, Qt::ControlModifier);
                const double zoom = control()->getZoom();
                ASSERT_NEAR(place.x * zoom - origin().x, pointer.x(), 1) << zoom;
                ASSERT_NEAR(place.y * zoom - origin().y, pointer.y(), 1) << zoom;
            }
        }
    }
}

TEST_F(LumoView, ZoomsInPowersOfTheStepWithinItsBoundsAndFits) {
    show();
    view->zoomIn();
    EXPECT_DOUBLE_EQ(control()->getZoom(), 1.1);
    view->zoomOut();
    EXPECT_DOUBLE_EQ(control()->getZoom(), 1);
    for (int step = 0; step < 40; ++step)
        view->zoomOut();
    EXPECT_DOUBLE_EQ(control()->getZoom(), 0.25);
    for (int step = 0; step < 15; ++step)
        view->zoomIn();
    EXPECT_DOUBLE_EQ(control()->getZoom(), 1) << "back on the powers";
    wheel({50, 50}, {120, 0}, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(control()->getZoom(), 1) << "sideways";
    view->zoomIn();
    wheel({50, 50}, {0, 40}, Qt::ControlModifier);
    wheel({50, 50}, {120, 0}, Qt::ControlModifier);
    EXPECT_NEAR(control()->getZoom(), std::pow(1.1, 4. / 3), 1e-9) << "a third of a notch";
    box->setRect({1000, 200, 1200, 400});
    view->fitToView();
    EXPECT_NEAR(control()->getZoom(), view->viewport()->width() / 1240., 0.001);
    EXPECT_TRUE(lumoContainsRect(control()->getDisplayRect(), box->getRect()));
    QNativeGestureEvent pinch(Qt::ZoomNativeGesture, nullptr, QPointF(100, 100), QPointF(100, 100),
                              QPointF(100, 100), 0.5, 0, 0);
    const double before = control()->getZoom();
    QCoreApplication::sendEvent(view->viewport(), &pinch);
    EXPECT_DOUBLE_EQ(control()->getZoom(), before * 1.5);
}

TEST_F(LumoView, ScrollsAsLittleAsNeededToShowARectangle) {
    show();
    const QSize size = view->viewport()->size();
    control()->scrollToVisible({1000, 100, 50, 50}, false);
    EXPECT_EQ(origin(), LumoControlPoint({1050 - size.width(), 0}));
    control()->scrollToVisible({1000, 100, 50, 50}, true);
    EXPECT_EQ(origin(), LumoControlPoint({1025 - size.width() / 2, 0}));
    control()->scrollToVisible({800, 700, 5000, 10}, false);
    EXPECT_EQ(origin().x, 1025 - size.width() / 2) << "covers the view already";
}

// ---- wheel ----

TEST_F(LumoView, GivesAWheelToTheObjectsAndThenToTheBars) {
    show();
    const QPoint onBox(110, 110);
    wheel(onBox, {0, -120});
    EXPECT_EQ(box->told[LumoMouseWheel], 1);
    EXPECT_EQ(box->last[LumoMouseWheel].wheel, LumoPoint({0, lumoWheelNotch}));
    EXPECT_EQ(origin(), LumoControlPoint());
    const QPoint onCanvas(20, 20);
    wheel(onCanvas, {0, -120});
    EXPECT_EQ(origin(), LumoControlPoint({0, lumoWheelNotch}));
    wheel(onCanvas, {0, -120}, Qt::ShiftModifier);
    EXPECT_EQ(origin(), LumoControlPoint({lumoWheelNotch, lumoWheelNotch}));
    wheel(onCanvas, {120, 120}, {}, {7, -3});
    EXPECT_EQ(origin(), LumoControlPoint({lumoWheelNotch - 7, lumoWheelNotch + 3}));
    for (int part = 0; part < 24; ++part)
        wheel(onCanvas, {0, -5});
    EXPECT_EQ(origin().y, 2 * lumoWheelNotch + 3) << "less than a pixel each";
}

// ---- mouse ----

TEST_F(LumoView, EndsGestureAndHoverWhenItLosesTheFocusOrHides) {
    show();
    QMenu popup;
    popup.addAction("x");
    const std::vector<std::function<void()>> losses = {
        [&] { view->clearFocus(); },
        [&] {
            popup.popup(window.mapToGlobal({0, 0}));
        },
        [&] { view->hide(); },
        [&] { QTest::keyClick(native(), Qt::Key_Escape); },
        [&] {
            QEvent deactivated(QEvent::WindowDeactivate);
            QCoreApplication::sendEvent(&window, &deactivated);
        },
    };
    for (const auto& lose : losses) {
        view->show();
        view->setFocus();
        box->told.clear();
        drag(onDiagram({110, 110}), onDiagram({150, 110}));
        EXPECT_TRUE(control()->dispatcher()->isDragging());
        lose();
        QTest::mouseRelease(native(), Qt::LeftButton, {}, onDiagram({300, 250}));
        QTest::mouseMove(native(), onDiagram({301, 250}));
        popup.close();
        settle();
        EXPECT_EQ(box->told[LumoMouseDrop], 1);
        EXPECT_EQ(box->told[LumoMouseUp], 0);
        EXPECT_EQ(box->told[LumoMouseEnter], 1);
        EXPECT_EQ(box->told[LumoMouseLeave], 1);
    }
}

TEST_F(LumoView, TellsARightClickAfterTheReleaseAndByKey) {
    show();
    QSignalSpy clicked(view, &LumoUIScrollView::signalRightClickMenu);
    box->react = [this](int type) {
        if (type != LumoMouseDown) return;
        const LumoMessageRightClickParam param(box->last[type], std::make_shared<int>(5));
        context->notifyRightClickMenu(param, {110, 120});
    };
    const QPoint at = onDiagram({110, 120});
    QTest::mousePress(native(), Qt::RightButton, {}, at);
    EXPECT_EQ(clicked.count(), 0);
    QTest::mouseRelease(native(), Qt::RightButton, {}, at);
    EXPECT_EQ(clicked.count(), 1);
    QTest::mouseDClick(native(), Qt::RightButton, {}, at);
    EXPECT_EQ(clicked.count(), 3) << "two clicks in a row";
    const auto param = clicked.last().at(1).value<LumoUIRightClickParam>();
    EXPECT_EQ(*std::static_pointer_cast<int>(param.block()), 5);
    EXPECT_EQ(param.point(), window.mapToGlobal(at));

    box->setRect({0, 0, 3000, 1600});
    QTest::keyClick(native(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(clicked.count(), 4);
    QContextMenuEvent menu(QContextMenuEvent::Keyboard, {5, 5});
    QCoreApplication::sendEvent(view, &menu);
    QTest::keyClick(native(), Qt::Key_Menu);
    EXPECT_EQ(clicked.count(), 5) << "the key and the event that the system made of it are one";
}

TEST_F(LumoView, OutlivesWhatItsEventsDestroy) {
    show();
    box->react = [this](int type) {
        if (type == LumoMouseDragging) diagram.reset();
    };
    drag(onDiagram({110, 110}), onDiagram({150, 110}));
    QTest::mouseRelease(native(), Qt::LeftButton, {}, {20, 20});
    settle();
    EXPECT_EQ(view->diagram(), nullptr);
    EXPECT_EQ(view->horizontalScrollBar()->maximum(), 0);
    context.reset();
    QTest::mouseMove(native(), {30, 30});
    QTest::keyClick(native(), Qt::Key_Left);
    view->zoomIn();
    view->fitToView();
    view->viewport()->repaint();
    wheel({20, 20}, {0, 120});
}

// ---- keys, cursor, tool tip ----

TEST_F(LumoView, TakesItsKeysBeforeTheShortcutsOfTheHost) {
    show();
    const std::vector<QKeySequence> ours = {Qt::Key_Delete,          Qt::Key_Left,
                                            Qt::Key_Escape,          Qt::CTRL + Qt::Key_0,
                                            Qt::CTRL + Qt::Key_Plus, Qt::CTRL + Qt::Key_Minus,
                                            Qt::CTRL + Qt::Key_9,    Qt::Key_F2};
    const std::vector<QKeySequence> theirs = {
        Qt::CTRL + Qt::Key_L,   Qt::CTRL + Qt::Key_E, Qt::CTRL + Qt::Key_PageUp,
        Qt::ALT + Qt::Key_Left, Qt::Key_F5,           Qt::CTRL + Qt::SHIFT + Qt::Key_A,
        Qt::SHIFT + Qt::Key_F2};
    QString triggered;
    for (const auto& list : {ours, theirs})
        for (const QKeySequence& keys : list) {
            auto* const action = new QAction(&window);
            action->setShortcut(keys);
            window.addAction(action);
            QObject::connect(action, &QAction::triggered,
                             [&triggered, keys] { triggered += keys.toString() + " "; });
        }
    for (const QKeySequence& keys : ours)
        QTest::keySequence(native(), keys);
    EXPECT_EQ(triggered, "");
    for (const QKeySequence& keys : theirs)
        QTest::keySequence(native(), keys);
    EXPECT_EQ(triggered, "Ctrl+L Ctrl+E Ctrl+PgUp Alt+Left F5 Ctrl+Shift+A Shift+F2 ");
    const std::vector<int> told = {LumoKeyDelete, LumoKeyLeft,  LumoKeyEscape, LumoKeyZero,
                                   LumoKeyPlus,   LumoKeyMinus, LumoKeyF2};
    EXPECT_EQ(diagram->keys, told);
}

TEST_F(LumoView, ZoomsAndScrollsByTheKeysThatTheDiagramLeaves) {
    show();
    QTest::keyClick(native(), Qt::Key_Right);
    EXPECT_GT(origin().x, 0);
    QTest::keyClick(native(), Qt::Key_Plus, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_DOUBLE_EQ(control()->getZoom(), 1.1);
    QTest::keyClick(native(), Qt::Key_9, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(control()->getZoom(), 1);
    diagram->takesKeys = true;
    const LumoControlPoint before = origin();
    QTest::keyClick(native(), Qt::Key_Right);
    QTest::keyClick(native(), Qt::Key_Tab);
    EXPECT_EQ(origin(), before);
    EXPECT_EQ(diagram->keys.back(), LumoKeyTab);
    EXPECT_TRUE(view->hasFocus());
}

// ---- painting ----

TEST_F(LumoView, PaintsWhatBecameDirtyOnceAndNothingWhenIdle) {
    Box* const far = new Box;
    far->setRect({300, 200, 40, 40});
    diagram->addChild(far);
    show();
    const int passes = view->paintPasses();
    settle();
    QTest::mouseMove(native(), onDiagram({20, 20}));
    QTest::mouseMove(native(), onDiagram({30, 20}));
    settle();
    EXPECT_EQ(view->paintPasses(), passes);

    const int farPaints = far->paints;
    box->setRect({110, 100, 80, 60});  // marks and dirties, nobody flushes
    box->invalidate();
    box->repaint();
    settle();
    EXPECT_EQ(view->paintPasses(), passes + 1);
    EXPECT_EQ(view->objectsInLastPass(), 1);
    EXPECT_EQ(far->paints, farPaints);
    control()->setScrollOrigin({0, 3});
    settle();
    EXPECT_EQ(far->paints, farPaints) << "moved as it was";
    EXPECT_EQ(view->paintPasses(), passes + 2);
}

TEST_F(LumoView, PaintsTheSameInPartsAsWhole) {
    show();
    for (const double zoom : {1., 0.83, 2.5}) {
        control()->setZoom(zoom, {150, 120});
        for (int step = 0; step < 6; ++step) {
            box->setRect({100 + 7 * step, 100 + 5 * step, 80, 60});
            control()->setScrollOrigin({origin().x + 3, origin().y + 2});
            settle();
        }
        const QImage inParts = window.screen()->grabWindow(window.winId()).toImage();
        EXPECT_EQ(inParts.convertToFormat(QImage::Format_RGB32),
                  window.grab().toImage().convertToFormat(QImage::Format_RGB32))
            << zoom;
    }
}

}  // namespace
}  // namespace Lumo::Test
