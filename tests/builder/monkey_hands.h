#pragma once

#include <QDrag>
#include <QScrollBar>
#include <QToolButton>
#include <QWheelEvent>
#include <optional>

#include "builder/monkey_desk.h"
#include "support/dice.h"

namespace QB::Test {

/// What a monkey can lay its hands on: places that it picks, and the events that it sends there.
class MonkeyHands {
public:
    QString story() const { return m_story.mid(m_story.size() - 20).join("\n    "); }

protected:
    MonkeyHands(MonkeyDesk& desk, int seed) : m_desk(desk), m_dice(seed) {
        QObject::connect(&m_pump, &QTimer::timeout, [this] { carryDrag(); });
        if (QGuiApplication::platformName() == "minimal") m_pump.start(1);  // else none waits
    }
    virtual ~MonkeyHands() = default;

    /// While a drag hangs over its target.
    virtual void duringDrag() = 0;

    void note(const QString& what) { m_story.last() += ", " + what; }
    void note(const QPoint& point) { note(QString("%1 %2").arg(point.x()).arg(point.y())); }

    // ---- mouse and keys -----------------------------------------------------------------------

    void click(QWidget* widget, const QPoint& point, Qt::MouseButton button = Qt::LeftButton) {
        const QWidget* const child = widget->childAt(point);
        // Qt runs an event loop of its own in the menu of a scroll bar.
        if (qobject_cast<const QScrollBar*>(child)) button = Qt::LeftButton;
        note(QString("%1 of %2 %3 (%4)")
                 .arg(button)
                 .arg(widget->metaObject()->className(), widget->objectName(),
                      child ? child->objectName() : QString()));
        note(point);
        MonkeyDesk::clickAt(widget, point, button, anyModifiers());
    }
    Qt::KeyboardModifiers anyModifiers() {
        static const std::vector<Qt::KeyboardModifiers> some = {
            Qt::ControlModifier, Qt::ControlModifier, Qt::ShiftModifier, Qt::AltModifier,
            Qt::ShiftModifier | Qt::ControlModifier};
        return m_dice.isOneIn(6) ? m_dice.pickFrom(some) : Qt::NoModifier;
    }
    QPoint pointIn(const QWidget* widget) {
        return QPoint(m_dice.pick(std::max(1, widget->width())),
                      m_dice.pick(std::max(1, widget->height())));
    }
    Qt::MouseButton anyButton() { return m_dice.isOneIn(6) ? Qt::RightButton : Qt::LeftButton; }
    QWindow* handle() const { return m_desk.window.windowHandle(); }
    void press(const char* keys) { m_desk.press(keys); }

    /// In the window. What is dragged may be Qt's own drag, whose loop ends with it.
    void drag(QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = {}) {
        note(from);
        note(to);
        m_dropAt = to;
        QTest::mouseMove(handle(), from);
        QTest::mousePress(handle(), Qt::LeftButton, modifiers, from);
        for (int step = 1; step <= 4 && m_dropAt; ++step)
            QTest::mouseMove(handle(), from + (to - from) * step / 4);
        if (std::exchange(m_dropAt, std::nullopt))
            QTest::mouseRelease(handle(), Qt::LeftButton, modifiers, to);
    }
    /// Called while Qt's own drag waits for its end.
    void carryDrag() {
        auto* const waiting = m_desk.window.findChild<QDrag*>();
        if (!waiting || waiting == std::exchange(m_carried, waiting)) return;
        // A text that scrolls may begin one by itself.
        const QPoint to = std::exchange(m_dropAt, std::nullopt).value_or(QPoint(1, 1));
        QTest::mouseMove(handle(), to - QPoint(5, 5));
        QTest::mouseMove(handle(), to);
        duringDrag();
        if (m_dice.isOneIn(10)) QTest::keyClick(handle(), Qt::Key_Escape);
        QTest::mouseRelease(handle(), Qt::LeftButton, {}, to);
    }

    /// Several buttons may be held.
    void send(QEvent::Type type, QPoint at, Qt::MouseButton button = Qt::NoButton) {
        if (type == QEvent::MouseButtonPress) m_held |= button;
        if (type == QEvent::MouseButtonRelease) m_held &= ~Qt::MouseButtons(button);
        qt_handleMouseEvent(handle(), at, m_desk.window.mapToGlobal(at), m_held, button, type, {},
                            m_time += 40);
        QCoreApplication::processEvents();
    }

    void wheel(QPoint point, Qt::KeyboardModifiers modifiers) {
        const int notches = m_dice.isOneIn(2) ? 1 + m_dice.pick(3) : -1 - m_dice.pick(3);
        note(point);
        const QPoint angle(m_dice.isOneIn(4) ? 40 * notches : 0, 120 * notches);
        QWheelEvent event(point, m_desk.window.mapToGlobal(point), QPoint(), angle, m_held,
                          modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(handle(), &event);
    }

    // ---- the panels ---------------------------------------------------------------------------

    bool hasRows() const { return m_desk.listPanel && m_desk.listPanel->rowCount() > 0; }
    int anyRow() {
        const int row = m_dice.pick(m_desk.listPanel->rowCount());
        m_desk.view()->scrollTo(m_desk.view()->model()->index(row, 0));
        return row;
    }

    // ---- the canvas ---------------------------------------------------------------------------

    DiagramPlaces places() const { return m_desk.places(); }
    QPoint inWindow(QPoint inView) const {
        return places().view()->viewport()->mapTo(&m_desk.window, inView);
    }
    /// In sight; null if there is none.
    QBLumoItem* anyItem() {
        const auto items = places().diagram()->items();
        if (items.empty()) return nullptr;
        QBLumoItem* const item = m_dice.pickFrom(items);
        places().view()->getControl()->scrollToVisible(item->getRect(), false);
        places().diagram()->layout();
        note(DiagramPlaces::titleOf(item));
        return item;
    }
    /// A row of its list, in sight; past the end if it has none.
    size_t anyRowOf(QBLumoItem* item) {
        const size_t count = item ? item->getBody()->listView()->rows().size() : 0;
        if (count == 0) return 1;
        const auto row = size_t(m_dice.pick(int(count)));
        item->getBody()->scrollToRow(row);
        places().diagram()->layout();
        note(QString("row %1").arg(row));
        return row;
    }
    QBLumoJoinLink* anyLink() {
        std::vector<QBLumoJoinLink*> shown;
        for (QBLumoJoinLink* link : places().diagram()->joinLinks())
            if (link->isShown()) shown.push_back(link);
        if (shown.empty()) return nullptr;
        QBLumoJoinLink* const link = m_dice.pickFrom(shown);
        const LumoPoint middle = link->translatePoint(link->midPoint(), places().diagram());
        places().view()->getControl()->scrollToVisible({middle, {1, 1}}, false);
        places().diagram()->layout();
        return link;
    }
    /// In the view: on an item, a row, a box, a link, or nothing.
    QPoint canvasPoint() {
        QBLumoItem* const item = m_dice.isOneIn(4) ? nullptr : anyItem();
        if (!item) return pointIn(places().view()->viewport());
        switch (m_dice.pick(5)) {
            case 0:
                return places().titlePlace(item);
            case 1:
                return places().linkPlace(anyLink());
            case 2:
                return places().boxPlace(item, anyRowOf(item));
            case 3:
                return places().rowPlace(item, anyRowOf(item));
            default:
                return places().middleOf(item->getBoundingRect(), item);
        }
    }
    bool clickView(QPoint point, Qt::MouseButton button = Qt::LeftButton) {
        if (!places().view()->viewport()->rect().contains(point)) return false;
        click(places().view()->viewport(), point, button);
        m_desk.settle();
        return true;
    }
    void doubleClickView(QPoint point) {
        if (point.isNull()) return;
        if (clickView(point)) QTest::mouseDClick(handle(), Qt::LeftButton, {}, inWindow(point));
        m_desk.settle();
    }
    QPoint nearby(QPoint inView) {
        return inWindow(inView) + QPoint(m_dice.pick(400) - 200, m_dice.pick(400) - 200);
    }
    /// Null if there is none.
    QBLumoItem* anySubquery() {
        std::vector<QBLumoItem*> all;
        for (QBLumoItem* item : places().diagram()->items()) {
            const auto* const body = dynamic_cast<QBLumoTextBasedItemBody*>(item->getBody());
            if (body && body->hasEditButton()) all.push_back(item);
        }
        if (all.empty()) return nullptr;
        QBLumoItem* const item = m_dice.pickFrom(all);
        places().view()->getControl()->scrollToVisible(item->getRect(), false);
        places().diagram()->layout();
        note(DiagramPlaces::titleOf(item));
        return item;
    }

    // ---- menus and the object tree ------------------------------------------------------------

    /// Of the open menu, and of what opens from it.
    void chooseAny() {
        for (int depth = 0; depth < 2; ++depth) {
            auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            QList<QAction*> entries;
            if (menu)
                for (QAction* entry : menu->actions())
                    if (entry->isEnabled() && !entry->isSeparator()) entries << entry;
            if (entries.isEmpty()) return;
            QAction* const entry = entries[m_dice.pick(entries.size())];
            const bool hasMore = entry->menu() != nullptr;
            note(entry->text());
            MonkeyDesk::clickAt(menu, menu->actionGeometry(entry).center());
            m_desk.settle();
            if (!hasMore) return;
            awaitMenuAfter(menu);
        }
    }
    bool chooseEntry(const QString& text) {
        const QWidget* const menu = QApplication::activePopupWidget();
        if (!MonkeyDesk::choose(text)) return false;
        note(text);
        m_desk.settle();
        awaitMenuAfter(menu);
        return true;
    }
    /// One that opens from @p menu does so after a moment.
    static void awaitMenuAfter(const QWidget* menu) {
        if (QApplication::activePopupWidget() == menu)
            static_cast<void>(QTest::qWaitFor(
                [menu] { return QApplication::activePopupWidget() != menu; }, 1000));
    }
    /// Of a table or view, in sight.
    QTreeWidgetItem* anyTable() {
        QTreeWidget* const tree = m_desk.tree();
        if (tree->topLevelItemCount() == 0) return nullptr;
        QTreeWidgetItem* const schema =
            tree->topLevelItem(m_dice.isOneIn(4) ? tree->topLevelItemCount() - 1 : 0);
        schema->setExpanded(true);
        m_desk.settle();
        if (schema->childCount() == 0) return nullptr;
        QTreeWidgetItem* const table = schema->child(m_dice.pick(schema->childCount()));
        tree->scrollToItem(table);
        note(table->text(0));
        return table;
    }
    void showTree() {
        m_desk.rest();
        if (!m_desk.tree()->isVisible())
            MonkeyDesk::clickOn(m_desk.builder->findChild<QToolButton*>("objectTreeButton"));
        m_desk.settle();
    }
    QPoint placeOf(const QTreeWidgetItem* row) const {
        const QTreeWidget* const tree = m_desk.tree();
        return tree->viewport()->mapTo(&m_desk.window, tree->visualItemRect(row).center());
    }

    MonkeyDesk& m_desk;
    Dice m_dice;
    QStringList m_story;

private:
    QTimer m_pump;
    Qt::MouseButtons m_held;
    int m_time = 1000000;
    QPointer<QDrag> m_carried;
    std::optional<QPoint> m_dropAt;  // of the drag that goes on
};

}  // namespace QB::Test
