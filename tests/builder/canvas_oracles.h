#pragma once

#include <QScreen>

#include "builder/canvas_probes.h"
#include "builder/monkey_desk.h"
#include "canvas/controls/scroll_view.h"
#include "canvas/items/field_list.h"
#include "platform/lumo/lumo_timer.h"

namespace QB::Test {

/// What the canvas must not leave behind: references to what has died, gestures without a button,
/// layouts and pictures that are not those of a canvas laid out and painted anew.
class CanvasOracles {
public:
    /// @p probes outlives the desk.
    CanvasOracles(MonkeyDesk& desk, Probes& probes) : m_desk(desk), m_probes(probes) {}

    /// After an event: no button is held.
    QString afterStep() {
        // Qt brings a press that closed a popup again after its release: the next move tells.
        if (isGrabLost()) nudge();
        m_faults = m_probes.takeFaults();
        m_probes.watch(diagram());
        checkReferences();
        checkGesture();
        return m_faults.join("; ");
    }
    /// Dearer, with nothing under way.
    QString whenQuiet() {
        m_faults.clear();
        if (m_desk.window.isVisible() && !MonkeyDesk::isPopupOpen()) checkPixels();
        return m_faults.join("; ");
    }
    QString atRest() {
        m_faults.clear();
        diagram()->getAnimationTimer()->step(10);
        if (!QTest::qWaitFor([] { return LumoTimer::repeatingCount() == 0; }))
            m_faults << "a timer runs for ever";
        nudge();  // what a popup kept from the view ends
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(view()->viewport(), &leave);
        m_probes.checkHover(dispatcher(), true);
        m_faults += m_probes.takeFaults();
        checkDump();
        checkIdle();
        return m_faults.join("; ");
    }

private:
    QBLumoDiagram* diagram() const { return m_desk.places().diagram(); }
    QBLumoUIView* view() const { return m_desk.places().view(); }
    LumoDispatcher* dispatcher() const { return view()->getControl()->dispatcher(); }
    void require(bool holds, const char* fault) {
        if (!holds) m_faults << fault;
    }

    bool isGrabLost() const { return dispatcher()->isGrabbing() && !MonkeyDesk::isPopupOpen(); }
    void nudge() {
        const QWidget* const viewport = view()->viewport();
        const QPoint middle = viewport->mapTo(&m_desk.window, viewport->rect().center());
        QTest::mouseMove(m_desk.window.windowHandle(), middle + QPoint(m_nudges++ % 2, 0));
        m_desk.settle();
    }

    void checkReferences() {
        m_probes.checkGhosts(diagram(), dispatcher());
        m_probes.checkHover(dispatcher(), false);
        const auto children = diagram()->getChildren();
        for (LumoObject* child : children)
            require(child->getSelected() == diagram()->isSelected(child), "two selections");
        const auto isChild = [&](const LumoObject* object) {
            return !object || std::count(children.begin(), children.end(), object) == 1;
        };
        require(isChild(diagram()->focusedObject()), "the focus is elsewhere");
        m_faults += m_probes.takeFaults();
    }

    void checkGesture() {
        require(!dispatcher()->isDragging(), "a drag without a button");
        require(!diagram()->draggedItem(), "an item is dragged without a button");
        require(!isGrabLost(), "a grab without a button");
        require(LumoTimer::repeatingCount() <= diagram()->getAnimationTimer()->isTicking(),
                "a timer without a gesture");
        const bool keys = diagram()->focusedObject() != nullptr;
        require(keys || !diagram()->isLinkDragActive(), "a link without a gesture");
        for (const QBLumoItem* item : diagram()->items()) {
            require(!item->isMoving() && (keys || !item->isResizing()), "moves without a drag");
            require(!item->getBody()->scrollView()->isVerticalScrollDisabled(),
                    "a list is locked without a drag");
        }
        using Scroller = QBLumoBaseItemBody::ScrollViewExtraActionReceiver;
        for (const Scroller* scroller : diagram()->findChildren<Scroller>(true))
            require(!scroller->isScrolling(), "a list scrolls without a drag");
    }

    void checkDump() {
        diagram()->layout();
        const std::string before = dumpCanvas(diagram());
        diagram()->setRequireToVerifyLayout(true, true);
        diagram()->layout();
        const std::string after = dumpCanvas(diagram());
        if (before != after)
            m_faults << QString("laid out anew it differs:\n%1->\n%2")
                            .arg(QString::fromStdString(before), QString::fromStdString(after));
    }

    /// A timer that fires once may come in between: asked again then.
    void checkIdle() {
        for (int tries = 0; tries < 5; ++tries) {
            m_desk.settle();
            const int passes = view()->paintPasses();
            m_desk.settle();
            if (view()->paintPasses() == passes) return;
        }
        m_faults << "it paints while nothing happens";
    }

    /// Empty where the platform cannot tell.
    QImage onScreen() const {
        const QWidget* const viewport = view()->viewport();
        const QRect part(viewport->mapTo(&m_desk.window, QPoint()), viewport->size());
        return m_desk.window.windowHandle()
            ->screen()
            ->grabWindow(m_desk.window.winId(), part.x(), part.y(), part.width(), part.height())
            .toImage();
    }
    /// What was painted piece by piece is what a full paint without old pictures shows.
    void checkPixels() {
        if (diagram()->getAnimationTimer()->isTicking()) return;
        const QImage before = onScreen();
        diagram()->dropPictures();
        view()->viewport()->update();
        m_desk.settle();
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
        constexpr int tolerance = 64, mostCut = 12;
        const auto isFar = [](QRgb x, QRgb y) {
            return std::abs(qRed(x) - qRed(y)) > tolerance ||
                   std::abs(qGreen(x) - qGreen(y)) > tolerance ||
                   std::abs(qBlue(x) - qBlue(y)) > tolerance;
        };
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
    Probes& m_probes;
    QStringList m_faults;
    int m_nudges = 0;
};

}  // namespace QB::Test
