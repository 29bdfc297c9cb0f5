#include <sqlite3.h>
#include <QApplication>
#include <QFile>
#include <QListWidget>
#include <QTabWidget>

#include "desk/desk_fixture.h"
#include "support/qt_animations.h"
#include "support/window_events.h"

using QB::Test::DeskFixture;
using QB::Test::WindowEvents;

namespace {

QString fileText(const QString& name) {
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// One line for each row, its values separated by " | ".
QStringList rowsOfSqlite(const QString& file, const QString& sql) {
    QStringList rows;
    sqlite3* database = nullptr;
    sqlite3_open_v2(file.toUtf8(), &database, SQLITE_OPEN_READONLY, nullptr);
    const auto addRow = [](void* out, int count, char** values, char**) {
        QStringList cells;
        for (int i = 0; i < count; ++i)
            cells << QString::fromUtf8(values[i]);
        static_cast<QStringList*>(out)->append(cells.join(" | "));
        return 0;
    };
    sqlite3_exec(database, sql.toUtf8(), addRow, &rows, nullptr);
    sqlite3_close(database);
    return rows;
}

}  // namespace

/// A user composes a large query on the sample database: with the mouse, and with the keys alone.
/// All goes through the windows, a step a line; a step waits until what it is for is there:
///
///     tree rental              double click in the object tree
///     clause FROM              click a tab
///     click 1 joinLabel        click a part of a row: of the list in the popup, or in the tab
///     menu 1 Remove            the right mouse button on a row, and an entry of the menu
///     choose BETWEEN           click an entry of the open menu
///     pick payment.amount      click an item of the chooser
///     kind LEFT JOIN           click a kind of join
///     on highLineEdit          click something in the popup, or else in the window
///     button Build             click the button of that text
///     page 1                   click a tab of the popup
///     type bike_id             type letters
///     outside                  click beside the popup
///     layer 0                  click a layer in the path
///     keys Ctrl+Tab Return     press keys
///     find rental              type into the chooser, and Return when the first match shows
///     settled                  see that the filter of the tree has done its work
///     reads FROM rental        see that in the preview
class TourTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() { QB::Test::outliveAnimations(); }

    void init() {
        m_desk = std::make_unique<DeskFixture>();
        m_desk->window->resize(1280, 1500);
        m_desk->window->openSample();
        QTRY_VERIFY(m_desk->window->isDatabaseShown());
        m_desk->window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_desk->window.get()));
    }
    void cleanup() { m_desk.reset(); }

    void theMouseComposesAQueryThatRuns() {
        QVERIFY(run("mouse.tour"));
        compareWithSqlite();
    }

    void theKeysAloneComposeTheSameQuery() {
        QVERIFY(run("keys.tour"));
        compareWithSqlite();
    }

private:
    void compareWithSqlite() {
        const QString golden = fileText(JOINERY_TEST_DATA "/tour.sql");
        QTRY_COMPARE(text(), golden.trimmed());
        const QStringList wanted = rowsOfSqlite(m_desk->folder.filePath("sample.sqlite"), golden);
        QVERIFY(wanted.size() > 1);
        QTRY_COMPARE(m_desk->model()->rowCount(), wanted.size());
        QTRY_VERIFY(!m_desk->grid()->isRunning());
        for (int row = 0; row < wanted.size(); ++row) {
            QStringList cells;
            for (int column = 0; column < m_desk->model()->columnCount(); ++column)
                cells << m_desk->cell(row, column);
            QCOMPARE(cells.join(" | "), wanted[row]);
        }
    }

    QString text() const {
        auto* preview = m_desk->window->builder()->queryPreviewPanel();
        return preview->findChild<QPlainTextEdit*>()->toPlainText().trimmed();
    }

    // ---- the steps ------------------------------------------------------------------------------

    bool run(const QString& file) {
        const QStringList lines =
            fileText(JOINERY_TEST_DATA "/" + file).split('\n', Qt::SkipEmptyParts);
        for (const QString& line : lines) {
            if (line.startsWith('#')) continue;
            const QString word = line.section(' ', 0, 0);
            const QString rest = line.section(' ', 1);
            if (!QTest::qWaitFor([&] { return runOne(word, rest); }, patience)) {
                qWarning("cannot do: %s\n%s\n%s", qPrintable(line), qPrintable(text()),
                         qPrintable(shown()));
                return false;
            }
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QCoreApplication::processEvents();
        }
        return true;
    }

    bool runOne(const QString& word, const QString& rest) {
        if (word == "tree") return openInTree(rest);
        if (word == "clause") return clickClause(rest);
        if (word == "click") return clickPart(rest);
        if (word == "menu") return openMenu(rest.section(' ', 0, 0).toInt(), rest.section(' ', 1));
        if (word == "choose") return chooseEntry(rest);
        if (word == "pick") return WindowEvents::pick(rest);
        if (word == "kind") return clickKind(rest);
        if (word == "on") return WindowEvents::clickOn(front()->findChild<QWidget*>(rest));
        if (word == "button") return clickButton(rest);
        if (word == "page") return WindowEvents::clickTab(rest.toInt());
        if (word == "type") return WindowEvents::typeInto(m_desk->window.get(), rest);
        if (word == "outside") return clickOutside();
        if (word == "layer") return clickLayer(rest.toInt());
        if (word == "keys") return pressKeys(rest);
        if (word == "find") return findChoice(rest);
        if (word == "settled") return m_desk->window->objectTree()->isSettled();
        return word == "reads" && m_desk->preview().contains(rest);
    }

    /// The topmost popup, or else the window.
    QWidget* front() const {
        QWidget* const popup = QApplication::activePopupWidget();
        return popup ? popup : m_desk->window.get();
    }
    QTabWidget* clauses() const {
        return m_desk->window->builder()->findChild<QTabWidget*>("tabWidget");
    }
    QTableView* list() const {
        QWidget* const popup = QApplication::activePopupWidget();
        return (popup ? popup : clauses()->currentWidget())->findChild<QTableView*>();
    }

    bool openInTree(const QString& name) {
        QTreeWidgetItem* const row = m_desk->row(name);
        if (row) m_desk->doubleClick(row);
        return row;
    }
    bool clickClause(const QString& name) {
        QTabBar* const bar = clauses()->tabBar();
        for (int i = 0; i < bar->count(); ++i)
            if (bar->tabText(i) == name) WindowEvents::clickAt(bar, bar->tabRect(i).center());
        return bar->tabText(bar->currentIndex()) == name;
    }
    /// "2 aliasLabel": in the row 2. In a tab without a list all is in the row 0.
    QWidget* part(const QString& place) const {
        const QTableView* rows = list();
        QWidget* const area = rows ? rows->viewport() : front();
        const auto found = area->findChildren<QWidget*>(place.section(' ', 1));
        const int row = place.section(' ', 0, 0).toInt();
        for (QWidget* widget : found) {
            const QPoint centre = widget->mapTo(area, widget->rect().center());
            const bool isThere = !rows || rows->rowAt(centre.y()) == row;
            if (isThere && widget->isVisible()) return widget;
        }
        return nullptr;
    }
    /// Clicks where the part stays: a new row is laid out while events are processed.
    bool clickPart(const QString& place) const {
        const auto centre = [&] {
            const QWidget* found = part(place);
            return found ? found->mapTo(found->window(), found->rect().center()) : QPoint();
        };
        const QPoint earlier = centre();
        QTest::qWait(1);
        return centre() == earlier && WindowEvents::clickOn(part(place));
    }
    bool openMenu(int row, const QString& entry) {
        QTableView* const rows = list();
        if (!rows || row >= rows->model()->rowCount()) return false;
        const QPoint place(3, rows->visualRect(rows->model()->index(row, 0)).center().y());
        return WindowEvents::clickAt(rows->viewport(), place, Qt::RightButton) &&
               WindowEvents::choose(entry);
    }
    bool chooseEntry(const QString& entry) {
        return qobject_cast<QMenu*>(front()) && WindowEvents::choose(entry);
    }
    bool clickKind(const QString& title) {
        auto* const kinds = front()->findChild<QListWidget*>();
        const auto found =
            kinds ? kinds->findItems(title, Qt::MatchExactly) : QList<QListWidgetItem*>();
        return !found.isEmpty() &&
               WindowEvents::clickAt(kinds->viewport(),
                                     kinds->visualItemRect(found.first()).center());
    }
    bool clickButton(const QString& text) {
        const auto buttons = front()->findChildren<QAbstractButton*>();
        for (QAbstractButton* button : buttons)
            if (button->text() == text) return WindowEvents::clickOn(button);
        return false;
    }
    bool clickOutside() {
        WindowEvents::clickAt(m_desk->window.get(), QPoint(2, 2));
        return true;
    }
    bool clickLayer(int layer) {
        auto* const path = m_desk->window->builder()->findChild<QWidget*>("navigationBar");
        const auto buttons = path->findChildren<QAbstractButton*>();
        return layer < buttons.size() && WindowEvents::clickOn(buttons[layer]);
    }
    bool pressKeys(const QString& keys) {
        const QStringList all = keys.split(' ', Qt::SkipEmptyParts);
        for (const QString& key : all) {
            WindowEvents::pressIn(m_desk->window.get(), key);
            QCoreApplication::processEvents();
            WindowEvents::releaseIn(m_desk->window.get(), key);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QCoreApplication::processEvents();
        }
        return true;
    }
    bool findChoice(const QString& name) {
        auto* const tree = front()->findChild<QTreeWidget*>();
        if (front()->isWindow() && front() == m_desk->window.get()) return false;
        if (!tree || !tree->isVisible() || !WindowEvents::choice(tree, name)) return false;
        WindowEvents::typeInto(m_desk->window.get(), name);
        QCoreApplication::processEvents();
        return pressKeys("Return");
    }

    /// Where the user is, for one who looks for a fault.
    QString shown() const {
        QWidget* const focus = QApplication::focusWidget();
        QString all = QString("front %1, focus %2 %3\n")
                          .arg(front()->metaObject()->className(),
                               focus ? focus->metaObject()->className() : "nowhere",
                               focus ? focus->objectName() : QString());
        const QTableView* rows = list();
        for (int row = 0; rows && row < rows->model()->rowCount(); ++row) {
            const QModelIndex index = rows->model()->index(row, 0);
            all += QString("  %1 %2%3\n")
                       .arg(row)
                       .arg(index == rows->currentIndex() ? "> " : "",
                            index.data(Qt::AccessibleTextRole).toString());
        }
        return all;
    }

    static constexpr int patience = 5000;
    std::unique_ptr<DeskFixture> m_desk;
};

QTEST_MAIN(TourTest)
#include "tour_test.moc"
