#include <sqlite3.h>
#include <QAbstractScrollArea>
#include <QAccessible>
#include <QApplication>
#include <QDrag>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPainter>
#include <QRegularExpression>
#include <QTabWidget>
#include <QUndoStack>

#include "canvas/view/canvas_commands.h"
#include "desk/desk_fixture.h"
#include "frame/query_history.h"
#include "support/qt_animations.h"
#include "support/window_events.h"

using QB::Desk::MainWindow;
using QB::Test::DeskFixture;
using QB::Test::WindowEvents;

/// Of Qt, in a header that is not installed.
class QWindowSystemInterface {
public:
    static void handleScreenGeometryChange(QScreen* screen, const QRect& all, const QRect& free);
};

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

/// A user composes a query on the sample database, on the diagram and in the clauses, runs it, and
/// goes back and forth through the history and through a file: with the mouse, and with the keys
/// alone. All goes through the windows, a step a line; a step waits until what it is for is there.
/// The platform is "minimal", since "offscreen" lets no drag begin.
///
///     drop rental 40 40        drag from the object tree to a place on the diagram
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
///
/// On the diagram, where "rental" is the title of an item, "rental.id" a row, "link payment" the
/// link that ends at payment:
///
///     right rental, double rental    click there with the right button, or twice
///     tick rental.id           click its box
///     pull t.a u.b             drag from there to there
///     submenu WHERE            click an entry that opens a menu
///     bar &File                open a menu of the window
///     focus rental.id          press Tab, or Down for a row, until the keys mean that
///     back rental              the same with Shift+Tab
///     every Ctrl+Z, every 0    undo all: by that key, or by that entry of the Edit menu
///     file query               answer the next file dialog
///     reopen                   see a new window, the one before having been closed
///     station NAME             see that the text is the one of that name in grand.golden, and for
///                              the second time that the diagram is as it was there
///     rows                     see that the rows are those that SQLite gives for the text
///
/// With JOINERY_TOUR_PICTURES=FOLDER each station leaves a picture, "picture NAME" too; dark with
/// JOINERY_TOUR_THEME=dark.
class TourTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() { QB::Test::outliveAnimations(); }

    void init() {
        m_desk = std::make_unique<DeskFixture>();
        m_desk->window->resize(1280, 1500);
        m_desk->window->openSample();
        QVERIFY(arrive());
    }
    void cleanup() {
        m_desk.reset();
        m_dumps.clear();
    }

    void theMouseGoesOnTheGrandTour() { QVERIFY(run("grand_mouse.tour")); }
    void theKeysAloneGoOnTheGrandTour() { QVERIFY(run("grand_keys.tour")); }

private:
    bool arrive() {
        MainWindow* const window = m_desk->window.get();
        if (qgetenv("JOINERY_TOUR_THEME") == "dark") window->setTheme(QB::Desk::Theme::Dark);
        if (!QTest::qWaitFor([window] { return window->isDatabaseShown(); })) return false;
        window->activateWindow();
        return QTest::qWaitForWindowActive(window);
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
            activate();
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

    /// What a window manager does when a popup or a dialog has closed.
    void activate() const {
        const bool isInFront = m_desk->window->isVisible() && !QApplication::activeModalWidget() &&
                               front() == m_desk->window.get();
        if (!isInFront || m_desk->window->isActiveWindow()) return;
        m_desk->window->activateWindow();
        QCoreApplication::processEvents();
    }

    bool runOne(const QString& word, const QString& rest) {
        if (word == "drop") return dropFromTree(rest.split(' '));
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
        if (word == "reads") return m_desk->preview().contains(rest);
        return runOnDiagram(word, rest) || runOnWindow(word, rest);
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

    /// The drag has an event loop of its own, in which its end must arrive.
    bool dropFromTree(const QStringList& what) {
        QTreeWidgetItem* const row = m_desk->row(what[0]);
        if (!row) return false;
        QWindow* const handle = m_desk->window->windowHandle();
        const QPoint from =
            m_desk->tree()->viewport()->mapTo(m_desk->window.get(), m_desk->centre(row));
        const QPoint to = inWindow({what[1].toInt(), what[2].toInt()});
        QTimer hand;
        connect(&hand, &QTimer::timeout, handle, [&] {
            if (!m_desk->tree()->findChild<QDrag*>()) return;
            hand.stop();
            QTest::mouseMove(handle, to - QPoint(20, 20));
            QTest::mouseMove(handle, to);
            QTest::mouseRelease(handle, Qt::LeftButton, {}, to);
        });
        hand.start(1);
        QTest::mousePress(handle, Qt::LeftButton, {}, from);
        QTest::mouseMove(handle, from + QPoint(15, 2));
        QTest::mouseMove(handle, from + QPoint(30, 5));
        return !hand.isActive();
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
    bool chooseEntry(const QString& entry) const {
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
    bool pressKeys(const QString& keys) const {
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

    // ---- the diagram ----------------------------------------------------------------------------

    bool runOnDiagram(const QString& word, const QString& rest) {
        if (word == "right") return clickAtCanvas(placeOf(rest), Qt::RightButton);
        if (word == "double") return doubleClick(placeOf(rest));
        if (word == "tick") return clickAtCanvas(boxOf(rest));
        if (word == "pull")
            return drag(placeOf(rest.section(' ', 0, 0)), placeOf(rest.section(' ', 1)));
        if (word == "submenu") return openSubmenu(rest);
        if (word == "back") return moveFocus(rest, "Shift+Tab");
        return word == "focus" && moveFocus(rest, rest.contains('.') ? "Down" : "Tab");
    }

    QAbstractScrollArea* view() const {
        auto* const panel = m_desk->window->builder()->findChild<QWidget*>("diagramPanel");
        return panel->findChild<QAbstractScrollArea*>();
    }
    /// What assistive technology finds under that name.
    QAccessibleInterface* find(const QString& name) const {
        QAccessibleInterface* const all = QAccessible::queryAccessibleInterface(view());
        for (int i = 0; i < all->childCount(); ++i) {
            QAccessibleInterface* const child = all->child(i);
            if (child->role() == QAccessible::Button) {
                const QString link = child->text(QAccessible::Name);
                if (name == "link " + link.section(' ', -1)) return child;
            } else if (child->text(QAccessible::Name) == name.section('.', 0, 0)) {
                return name.contains('.') ? findChild(child, name.section('.', 1)) : child;
            }
        }
        return nullptr;
    }
    static QAccessibleInterface* findChild(const QAccessibleInterface* item, const QString& name) {
        for (int i = 0; i < item->childCount(); ++i)
            if (item->child(i)->text(QAccessible::Name) == name) return item->child(i);
        return nullptr;
    }
    /// In the view; empty for what does not show.
    QRect rectOf(const QString& name) const {
        const QAccessibleInterface* const found = find(name);
        if (!found || found->state().offscreen) return {};
        const QRect rect = found->rect();
        return {view()->viewport()->mapFromGlobal(rect.topLeft()), rect.size()};
    }
    /// The middle; of an item that of its title.
    QPoint placeOf(const QString& name) const {
        const QRect rect = rectOf(name);
        const bool isItem = !name.contains('.') && !name.startsWith("link ");
        return isItem && !rect.isEmpty() ? QPoint(rect.center().x(), rect.top() + 8)
                                         : rect.center();
    }
    QPoint boxOf(const QString& name) const {
        const QRect rect = rectOf(name);
        return rect.isEmpty() ? QPoint()
                              : QPoint(rect.left() + rect.height() * 3 / 4, rect.center().y());
    }
    bool clickAtCanvas(QPoint point, Qt::MouseButton button = Qt::LeftButton) const {
        return view()->viewport()->rect().contains(point) && !point.isNull() &&
               WindowEvents::clickAt(view()->viewport(), point, button);
    }
    bool doubleClick(QPoint point) const {
        if (!clickAtCanvas(point)) return false;
        QTest::mouseDClick(m_desk->window->windowHandle(), Qt::LeftButton, {}, inWindow(point));
        return true;
    }
    QPoint inWindow(QPoint point) const {
        return view()->viewport()->mapTo(m_desk->window.get(), point);
    }
    bool drag(QPoint from, QPoint to) const {
        if (from.isNull() || to.isNull()) return false;
        QWindow* const window = m_desk->window->windowHandle();
        QTest::mouseMove(window, inWindow(from));
        QTest::mousePress(window, Qt::LeftButton, {}, inWindow(from));
        for (const int step : {1, 2, 3, 4})
            QTest::mouseMove(window, inWindow(from + (to - from) * step / 4));
        QTest::mouseRelease(window, Qt::LeftButton, {}, inWindow(to));
        return true;
    }
    bool openSubmenu(const QString& entry) const {
        QWidget* const menu = QApplication::activePopupWidget();
        return chooseEntry(entry) &&
               QTest::qWaitFor([menu] { return QApplication::activePopupWidget() != menu; });
    }
    bool moveFocus(const QString& name, const QString& key) const {
        for (int tries = 0; tries < 40; ++tries) {
            const QAccessibleInterface* const wanted = find(name);
            if (wanted && wanted->state().focused) return true;
            pressKeys(key);
        }
        return false;
    }

    // ---- the window -----------------------------------------------------------------------------

    bool runOnWindow(const QString& word, const QString& rest) {
        if (word == "bar") return openMenuOfBar(rest);
        if (word == "every") return goToTheEnd(rest);
        if (word == "file") return answerFileDialog(m_desk->folder.filePath(rest)), true;
        if (word == "reopen") return reopen();
        if (word == "picture") return takePicture(rest), true;
        if (word == "rows") return isResultOfSqlite();
        return word == "station" && stopAt(rest);
    }

    bool openMenuOfBar(const QString& title) const {
        QMenuBar* const bar = m_desk->window->menuBar();
        const auto menus = bar->actions();
        for (QAction* menu : menus)
            if (menu->text() == title)
                return WindowEvents::clickAt(bar, bar->actionGeometry(menu).center());
        return false;
    }
    bool goToTheEnd(const QString& way) const {
        const QB::QBQueryHistory* const history = m_desk->window->builder()->history();
        const QUndoStack* const steps = history->undoStack();
        const bool isBack = way == "0" || way == "Ctrl+Z";
        while (isBack ? steps->canUndo() : steps->canRedo()) {
            const int before = steps->index();
            if (history->isBusy()) return false;
            way.size() > 1 ? pressKeys(way) : chooseInEditMenu(way.toInt());
            if (steps->index() == before) return false;
        }
        return true;
    }
    bool chooseInEditMenu(int index) const {
        if (!openMenuOfBar("&Edit")) return false;
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        return menu && WindowEvents::choose(menu->actions().at(index)->text());
    }
    void answerFileDialog(const QString& file) {
        auto* const answer = new QTimer(m_desk->window.get());
        connect(answer, &QTimer::timeout, answer, [answer, file] {
            auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (!dialog) return;
            dialog->activateWindow();
            if (!dialog->isActiveWindow()) return;
            answer->stop();
            answer->deleteLater();
            dialog->findChild<QLineEdit*>()->setCompleter(nullptr);  // it comes when it likes
            WindowEvents::typeInto(dialog, file);
            WindowEvents::pressIn(dialog, "Return");
        });
        answer->start(10);
    }
    bool reopen() {
        if (m_desk->window->isVisible()) return false;
        m_desk->window = std::make_unique<MainWindow>(&m_desk->settings,
                                                      m_desk->folder.filePath("sample.sqlite"));
        m_desk->window->setLanguage("en");
        m_desk->window->show();
        m_desk->window->openLast();
        return arrive();
    }

    bool stopAt(const QString& name) {
        static const QStringList golden =
            fileText(JOINERY_TEST_DATA "/grand.golden").split('\n', Qt::SkipEmptyParts);
        const QString wanted = golden.value(golden.indexOf("# " + name) + 1);
        if (m_desk->preview() != wanted) return false;
        takePicture(name);
        // The ring of the keyboard is no part of a query.
        static const QRegularExpression focus(" focused( in row \\d+)?( without ring)?");
        const QString dump = m_desk->window->builder()->canvasCommands()->dump().remove(focus);
        if (!m_dumps.contains(name)) m_dumps[name] = dump;
        return m_dumps[name] == dump;
    }
    bool isResultOfSqlite() const {
        const QStringList wanted =
            rowsOfSqlite(m_desk->folder.filePath("sample.sqlite"), m_desk->preview());
        QStringList shown;
        for (int row = 0; row < m_desk->model()->rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < m_desk->model()->columnCount(); ++column)
                cells << m_desk->cell(row, column);
            shown << cells.join(" | ");
        }
        return !m_desk->grid()->isRunning() && wanted.size() > 1 && shown == wanted;
    }
    /// The window with what is open over it.
    void takePicture(const QString& name) const {
        const QString folder = qEnvironmentVariable("JOINERY_TOUR_PICTURES");
        if (folder.isEmpty()) return;
        QPixmap picture = m_desk->window->grab();
        if (QWidget* const popup = QApplication::activePopupWidget()) {
            QPainter painter(&picture);
            painter.drawPixmap(popup->pos() - m_desk->window->pos(), popup->grab());
        }
        picture.save(folder + '/' + QTest::currentTestFunction() + '-' + name + ".png");
    }

    /// Where the user is, for one who looks for a fault.
    QString shown() const {
        QWidget* const focus = QApplication::focusWidget();
        QString all = QString("front %1, focus %2 %3\n")
                          .arg(front()->metaObject()->className(),
                               focus ? focus->metaObject()->className() : "nowhere",
                               focus ? focus->objectName() : QString());
        const QAccessibleInterface* const canvas = QAccessible::queryAccessibleInterface(view());
        if (const QAccessibleInterface* const focused = canvas->focusChild())
            all += "on the diagram " + focused->text(QAccessible::Name) + '\n';
        all += m_desk->window->builder()->canvasCommands()->dump();
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
    QMap<QString, QString> m_dumps;  // of the diagram, at the stations
};

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "minimal:enable_fonts");
    const QApplication application(argc, argv);
    const QRect screen(0, 0, 1920, 1600);  // it would have 240 x 320
    QWindowSystemInterface::handleScreenGeometryChange(application.primaryScreen(), screen, screen);
    TourTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tour_test.moc"
