#include <gtest/gtest.h>

#include <QScreen>

#include "canvas/controls/scroll_view.h"
#include "canvas/diagram/canvas_dump.h"
#include "canvas/items/field_list.h"
#include "canvas_monkey/monkey.h"
#include "support/long_runs.h"

namespace QB::DiagramLumo {
namespace {

/// What holds after every step, and at rest.
class Oracles {
public:
    Oracles(MonkeyDesk* desk, Monkey* monkey) : m_desk(*desk), m_monkey(*monkey) {}

    QStringList afterStep(bool laysOut) {
        // Qt brings a press that closed a popup again after its release: the next move tells.
        if (isGrabLost()) m_monkey.nudge();
        m_faults = m_desk.probes.takeFaults() + diagram()->takeFaults();
        m_desk.probes.watch(diagram());
        checkReferences();
        checkGesture();
        if (laysOut) checkDump();
        return m_faults;
    }
    /// Dearer: what is painted, and that nothing more is.
    QStringList whenQuiet() {
        m_faults.clear();
        if (!diagram()->getAnimationTimer()->isTicking() && !dispatcher()->isDragging()) {
            checkIdle();
            checkPixels();
        }
        return m_faults;
    }
    /// After the monkey let go of everything.
    QStringList atRest() {
        m_faults.clear();
        diagram()->getAnimationTimer()->step(10);
        if (!QTest::qWaitFor([] { return LumoTimer::repeatingCount() == 0; }))
            m_faults << "a timer runs for ever";
        if (dispatcher()->isGrabbing()) m_faults << "a grab at rest";
        m_desk.probes.checkHover(dispatcher(), true);
        checkIdle();
        return m_faults + m_desk.probes.takeFaults();
    }

private:
    WatchedDiagram* diagram() const { return m_desk.diagram.get(); }
    LumoDispatcher* dispatcher() const { return m_desk.view->getControl()->dispatcher(); }
    void require(bool holds, const char* fault) {
        if (!holds) m_faults << fault;
    }

    bool isGrabLost() const {
        return dispatcher()->isGrabbing() && !m_monkey.holdsButton() &&
               !QApplication::activePopupWidget();
    }

    void checkReferences() {
        m_desk.probes.checkGhosts(diagram(), dispatcher());
        m_desk.probes.checkHover(dispatcher(), false);
        const auto children = m_desk.children();
        for (LumoObject* child : children)
            require(child->getSelected() == diagram()->isSelected(child), "two selections");
        const auto isChild = [&](const LumoObject* object) {
            return !object || std::count(children.begin(), children.end(), object) == 1;
        };
        require(isChild(diagram()->focusedObject()), "the focus is elsewhere");
        require(isChild(diagram()->draggedItem()), "what is dragged is elsewhere");
        m_faults += m_desk.probes.takeFaults();
    }

    void checkGesture() {
        const bool dragging = dispatcher()->isDragging();
        require(dragging || !diagram()->isDragged(), "a drag without a Drop");
        require(dragging || !diagram()->draggedItem(), "an item is dragged without a drag");
        require(!isGrabLost(), "a grab without a button");
        const bool keys = diagram()->focusedObject() != nullptr;
        require(dragging || keys || !diagram()->isLinkDragActive(), "a link without a gesture");
        for (const QBLumoItem* item : diagram()->items()) {
            require(dragging || !(item->isMoving() || item->isResizing()), "moves without a drag");
            require(dragging || !item->getBody()->scrollView()->isVerticalScrollDisabled(),
                    "a list is locked without a drag");
        }
        using Scroller = QBLumoBaseItemBody::ScrollViewExtraActionReceiver;
        for (const Scroller* scroller : diagram()->findChildren<Scroller>(true))
            require(dragging || !scroller->isScrolling(), "a list scrolls without a drag");
        const int allowed = diagram()->getAnimationTimer()->isTicking() + (dragging ? 2 : 0);
        require(LumoTimer::repeatingCount() <= allowed, "a timer without a gesture");
    }

    void checkDump() {
        diagram()->layout();
        const std::string before = dumpCanvas(diagram());
        require(dumpCanvas(diagram()) == before, "two dumps differ");
        diagram()->setRequireToVerifyLayout(true, true);
        diagram()->layout();
        const std::string after = dumpCanvas(diagram());
        if (before != after)
            m_faults << QString("laid out anew it differs:\n%1").arg(difference(before, after));
    }
    static QString difference(const std::string& before, const std::string& after) {
        const QStringList a = QString::fromStdString(before).split('\n');
        const QStringList b = QString::fromStdString(after).split('\n');
        int i = 0;
        while (i < a.size() && i < b.size() && a[i] == b[i])
            ++i;
        return a.mid(std::max(0, i - 1), 3).join('\n') + "\n->\n" +
               b.mid(std::max(0, i - 1), 3).join('\n');
    }

    /// A timer that fires once may come in between: asked again then.
    void checkIdle() {
        for (int tries = 0; tries < 3; ++tries) {
            MonkeyDesk::settle();
            const int passes = m_desk.view->paintPasses();
            MonkeyDesk::settle();
            if (m_desk.view->paintPasses() == passes) return;
        }
        m_faults << "it paints while nothing happens";
    }

    QImage onScreen() const {
        const QWidget* const viewport = m_desk.view->viewport();
        const QRect part(viewport->mapTo(&m_desk.window, QPoint()), viewport->size());
        QScreen* const screen = m_desk.window.windowHandle()->screen();
        return screen
            ->grabWindow(m_desk.window.winId(), part.x(), part.y(), part.width(), part.height())
            .toImage();
    }
    /// What was painted piece by piece is what a full paint without old pictures shows.
    void checkPixels() {
        if (!m_desk.window.isVisible() || QApplication::activePopupWidget()) return;
        const QImage before = onScreen();
        diagram()->dropPictures();
        m_desk.view->viewport()->update();
        MonkeyDesk::settle();
        const QImage after = onScreen();
        if (before == after || before.size() != after.size()) return;
        const QRect differs = difference(before, after);
        if (differs.isEmpty()) return;
        if (const char* const folder = std::getenv("JOINERY_MONKEY_PICTURES")) {
            before.save(QString(folder) + "/before.png");
            after.save(QString(folder) + "/after.png");
        }
        m_faults << QString("painted anew it differs at %1,%2 %3x%4")
                        .arg(differs.x())
                        .arg(differs.y())
                        .arg(differs.width())
                        .arg(differs.height());
    }

    /// Edges that a clip cuts are smoothed a little differently.
    static QRect difference(const QImage& a, const QImage& b) {
        constexpr int tolerance = 64;
        const auto isFar = [](QRgb x, QRgb y) {
            return std::abs(qRed(x) - qRed(y)) > tolerance ||
                   std::abs(qGreen(x) - qGreen(y)) > tolerance ||
                   std::abs(qBlue(x) - qBlue(y)) > tolerance;
        };
        constexpr int mostCut = 12;
        int count = 0;
        QRect differs;
        for (int y = 0; y < a.height(); ++y)
            for (int x = 0; x < a.width(); ++x)
                if (isFar(a.pixel(x, y), b.pixel(x, y))) {
                    differs |= QRect(x, y, 1, 1);
                    ++count;
                }
        return count > mostCut ? differs : QRect();
    }

    MonkeyDesk& m_desk;
    Monkey& m_monkey;
    QStringList m_faults;
};

/// JOINERY_MONKEY_SEED runs another seed alone, JOINERY_MONKEY_STEPS another number of steps.
int setting(const char* name, int usual) {
    const char* const text = std::getenv(name);
    return text ? std::atoi(text) : usual;
}

QStringList runSeed(int seed, int steps, QString* story) {
    constexpr int lookEvery = 5;
    constexpr int restEvery = 100;
    MonkeyDesk desk(seed);
    Monkey monkey(&desk);
    Oracles oracles(&desk, &monkey);
    for (int step = 1; step <= steps; ++step) {
        monkey.act();
        MonkeyDesk::settle();
        // A layout of everything paints what was missed: by turns.
        const bool looks = step / restEvery % 2 == 1;
        QStringList faults = oracles.afterStep(!looks);
        if (faults.isEmpty() && looks && step % lookEvery == 0) faults = oracles.whenQuiet();
        if (faults.isEmpty() && step % restEvery == 0) {
            monkey.rest();
            MonkeyDesk::settle();
            faults = oracles.atRest();
        }
        if (faults.isEmpty()) continue;
        *story = QString("seed %1, step %2: %3").arg(seed).arg(step).arg(monkey.story());
        return faults;
    }
    return {};
}

TEST(CanvasMonkey, nothing_that_it_does_leaves_anything_behind) {
    const int first = setting("JOINERY_MONKEY_SEED", 1);
    const bool alone = std::getenv("JOINERY_MONKEY_SEED") != nullptr;
    const int seeds = alone ? 1 : QB::Test::repetitions(3);
    const int steps = setting("JOINERY_MONKEY_STEPS", QB::Test::isLongRun() ? 20000 : 2000);
    for (int seed = first; seed < first + seeds; ++seed) {
        QString story;
        const QStringList faults = runSeed(seed, steps, &story);
        ASSERT_TRUE(faults.isEmpty()) << qPrintable(faults.join("\n")) << "\n" << qPrintable(story);
    }
}

}  // namespace
}  // namespace QB::DiagramLumo

/// The application ends before what Qt keeps in static variables, which a static one would outlive.
int main(int count, char** arguments) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&count, arguments);
    const QApplication application(count, arguments);
    return RUN_ALL_TESTS();
}
