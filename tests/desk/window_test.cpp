#include <QClipboard>
#include <QMenuBar>
#include <QUrl>

#include "apps/joinery-desk/workspace.h"
#include "desk/desk_fixture.h"
#include "model/callbacks.h"

using QB::Test::answerNextBox;
using QB::Test::DeskFixture;
using QB::Test::sendDrop;
using QB::Test::SqliteFile;

namespace {

const char* const cities =
    "CREATE TABLE city (id INTEGER PRIMARY KEY, name TEXT, note TEXT);"
    "INSERT INTO city VALUES (1, 'Köln', NULL), (2, 'Paris', 'NULL'), (3, 'Łódź', '');"
    "CREATE TABLE country (code TEXT);"
    "INSERT INTO country VALUES ('DE'), ('FR');";

const char* const endless =
    "CREATE VIEW silent AS WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
    "SELECT count(*) AS number FROM n;"
    "CREATE VIEW stream AS WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
    "SELECT i FROM n;";

}  // namespace

class WindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_desk = std::make_unique<DeskFixture>(); }
    void cleanup() { m_desk.reset(); }

    // ---- the road from the tree to the rows -------------------------------------------------

    void aDoubleClickAddsATableAndBuildAndRunShowsItsRows() {
        DeskFixture& desk = *m_desk;
        QVERIFY(desk.start(cities));
        QCOMPARE(desk.schema()->text(0), QString("main"));
        QVERIFY(desk.schema()->isExpanded());
        QCOMPARE(desk.schema()->childCount(), 2);

        desk.doubleClick(desk.row("city"));
        QTRY_COMPARE(desk.preview(), QString("SELECT * FROM city"));
        QVERIFY(!desk.grid()->isVisible());
        desk.buildAndRun();
        QTRY_COMPARE(desk.model()->rowCount(), 3);
        QTRY_VERIFY(!desk.grid()->isRunning() && desk.grid()->isVisible());
        QCOMPARE(desk.cell(0, 1), QString("Köln"));
        QVERIFY2(desk.status().startsWith("3 rows in "), qPrintable(desk.status()));

        // NULL, the text "NULL" and the empty text are three things.
        const auto style = [&](int row) {
            return desk.model()->index(row, 2).data(Qt::FontRole).value<QFont>().italic();
        };
        QCOMPARE(desk.cell(0, 2), QString("NULL"));
        QCOMPARE(desk.cell(1, 2), QString("NULL"));
        QVERIFY(style(0) && !style(1) && !style(2));
        QCOMPARE(desk.cell(2, 2), QString());
    }

    void buildPutsTheTextOnTheClipboard() {
        DeskFixture& desk = *m_desk;
        QVERIFY(desk.start(cities, "city"));
        QTest::mouseClick(desk.button(QDialogButtonBox::Ok), Qt::LeftButton);
        QCOMPARE(QApplication::clipboard()->text().simplified(), QString("SELECT * FROM city"));
        QCOMPARE(desk.model()->columnCount(), 0);
        QVERIFY(!desk.button(QDialogButtonBox::Cancel)->isVisible());
    }

    void namesOfAnyKindComeBackAsTheServerReadsThem_data() {
        QTest::addColumn<QString>("name");
        for (const char* name : {"say \"hi\"", "two words", "Übergrößen-Straße", "🚲 ride", "select",
                                 "it's", "a.b", "[x]", "50%", " ", "-- no comment"})
            QTest::newRow(name) << QString(name);
    }
    void namesOfAnyKindComeBackAsTheServerReadsThem() {
        QFETCH(QString, name);
        DeskFixture& desk = *m_desk;
        const QString quoted = '"' + QString(name).replace('"', "\"\"") + '"';
        QVERIFY(desk.start(QString("CREATE TABLE %1 (%1 TEXT); INSERT INTO %1 VALUES ('here')")
                               .replace("%1", quoted)
                               .toStdString()));
        QCOMPARE(desk.schema()->child(0)->text(0), name);
        desk.doubleClick(desk.schema()->child(0));
        QTRY_VERIFY2(desk.preview().contains("FROM"), qPrintable(desk.preview()));
        desk.buildAndRun();
        QTRY_COMPARE(desk.model()->rowCount(), 1);
        QCOMPARE(desk.cell(0, 0), QString("here"));
        QCOMPARE(desk.model()->headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(), name);
    }

    // ---- queries that do not end well -------------------------------------------------------

    void rowsShowWhileTheQueryRunsAndEscapeStopsIt() {
        DeskFixture& desk = *m_desk;
        QVERIFY(desk.start(endless, "stream"));
        desk.grid()->setRowLimit(0);
        desk.buildAndRun();
        QTRY_VERIFY(desk.model()->rowCount() > 1000);
        QVERIFY(desk.grid()->isRunning());
        QVERIFY2(desk.status().startsWith("Running: "), qPrintable(desk.status()));
        desk.press(Qt::Key_Escape);
        QTRY_VERIFY(!desk.grid()->isRunning());
        QVERIFY2(desk.status().startsWith("Cancelled after "), qPrintable(desk.status()));
        QVERIFY(desk.model()->rowCount() > 1000);
    }

    void theStopButtonStopsAQueryThatGivesNoRow() {
        DeskFixture& desk = *m_desk;
        QVERIFY(desk.start(endless, "silent"));
        auto* stop = desk.window->findChild<QPushButton*>("cancelButton");
        QVERIFY(!stop->isVisible());
        desk.buildAndRun();
        QTRY_COMPARE(desk.model()->columnCount(), 1);
        QVERIFY(stop->isVisible());
        QTest::mouseClick(stop, Qt::LeftButton);
        QTRY_VERIFY(!desk.grid()->isRunning());
        QVERIFY(!stop->isVisible());
        QCOMPARE(desk.grid()->messageBar()->text(), QString());
    }

    void theRowLimitIsTold() {
        DeskFixture& desk = *m_desk;
        QVERIFY(desk.start(endless, "stream"));
        desk.grid()->setRowLimit(100);
        desk.buildAndRun();
        QTRY_VERIFY2(desk.status().startsWith("The first 100 rows in "), qPrintable(desk.status()));
        QCOMPARE(desk.model()->rowCount(), 100);
    }

    void anErrorOfTheServerStandsAboveTheRows() {
        DeskFixture& desk = *m_desk;
        QVERIFY(desk.start(cities, "country"));
        desk.database->execute("DROP TABLE country");
        desk.buildAndRun();
        QTRY_VERIFY2(desk.grid()->messageBar()->text().contains("no such table: country"),
                     qPrintable(desk.grid()->messageBar()->text()));
        auto* text = desk.grid()->messageBar()->findChild<QLabel*>("messageText");
        QVERIFY(text->isVisible() && (text->textInteractionFlags() & Qt::TextSelectableByMouse));
        QVERIFY(!QApplication::activeModalWidget());
        desk.database->execute("CREATE TABLE country (code TEXT)");
        desk.buildAndRun();
        QTRY_COMPARE(desk.status().section(' ', 0, 1), QString("0 rows"));
        QCOMPARE(desk.grid()->messageBar()->text(), QString());
    }

    // ---- files ------------------------------------------------------------------------------

    void aFileThatCannotBeOpenedIsToldAndWhatWasOpenStays_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("told");
        const auto row = [](const char* kind, const char* told) {
            QTest::newRow(kind) << QString(kind) << QString(told);
        };
        row("missing", "There is no file");
        row("folder", "is a folder");
        row("text", "file is not a database");
        row("locked", "database is locked");
    }
    void aFileThatCannotBeOpenedIsToldAndWhatWasOpenStays() {
        QFETCH(QString, kind);
        QFETCH(QString, told);
        DeskFixture& desk = *m_desk;
        const SqliteFile good(cities, "good.db");
        SqliteFile locked(cities, "locked.db");
        locked.execute("BEGIN EXCLUSIVE");
        QFile text(desk.folder.filePath("text"));
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write(QByteArray(4096, 'x')) > 0);
        text.close();
        const QMap<QString, QString> paths = {{"missing", desk.folder.filePath("missing.db")},
                                              {"folder", desk.folder.path()},
                                              {"text", text.fileName()},
                                              {"locked", locked.path()}};
        QVERIFY(!desk.button(QDialogButtonBox::Yes)->isEnabled());
        QVERIFY(!desk.button(QDialogButtonBox::Ok)->isEnabled());
        QVERIFY(desk.openAndAdd(good.path(), "city"));
        QVERIFY(desk.button(QDialogButtonBox::Ok)->isEnabled());
        desk.buildAndRun();
        QTRY_COMPARE(desk.model()->rowCount(), 3);

        const QSignalSpy failed(desk.window.get(), &QB::Desk::MainWindow::openFailed);
        desk.window->openFile(paths[kind]);
        QTRY_COMPARE_WITH_TIMEOUT(failed.count(), 1, 20000);
        QVERIFY2(desk.window->messageBar()->text().contains(told),
                 qPrintable(desk.window->messageBar()->text()));
        QVERIFY(desk.window->messageBar()->isVisible());
        QVERIFY(!QApplication::activeModalWidget());
        QVERIFY(desk.window->windowTitle().startsWith("good.db"));
        QCOMPARE(desk.preview(), QString("SELECT * FROM city"));
        QCOMPARE(desk.model()->rowCount(), 3);
        QCOMPARE(desk.settings.value("recentFiles").toStringList(), QStringList(good.path()));
        QVERIFY(!QFileInfo::exists(paths["missing"]));
    }

    void aFileDroppedOnTheWindowIsOpenedAndOtherDropsAreNot() {
        DeskFixture& desk = *m_desk;
        const SqliteFile file(cities);
        QMimeData text;
        text.setText("SELECT 1");
        sendDrop(desk.window.get(), text);
        QVERIFY(!desk.window->isOpening());
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(file.path())});
        sendDrop(desk.window.get(), data);
        QTRY_VERIFY(desk.window->isDatabaseShown());
        QVERIFY(desk.row("city"));
    }

    void theLastOfSeveralOpeningsCountsAndStartsWithAnEmptyQueryAndNoRows() {
        DeskFixture& desk = *m_desk;
        const SqliteFile first(cities, "first.db");
        const SqliteFile second("CREATE TABLE only (x)", "second.db");
        QVERIFY(desk.openAndAdd(first.path(), "city"));
        desk.buildAndRun();
        QTRY_COMPARE(desk.model()->rowCount(), 3);
        const QSignalSpy opened(desk.window.get(), &QB::Desk::MainWindow::databaseOpened);
        int boxes = 0;
        answerNextBox(QMessageBox::Discard, &boxes);
        desk.window->openFile(first.path());
        QVERIFY(desk.open(second.path()));
        QCOMPARE(opened.count(), 1);
        QVERIFY(desk.window->windowTitle().startsWith("second.db"));
        QVERIFY(desk.row("only") && !desk.row("city") && desk.model()->rowCount() == 0);
        QTRY_VERIFY2(!desk.preview().contains("city"), qPrintable(desk.preview()));
        QCOMPARE(desk.settings.value("recentFiles").toStringList(),
                 QStringList({second.path(), first.path()}));
    }

    void aChangedQueryIsOnlyGivenUpWhenTheUserSaysSo() {
        DeskFixture& desk = *m_desk;
        QVERIFY(desk.start(cities, "city"));
        int boxes = 0;
        answerNextBox(QMessageBox::Cancel, &boxes);
        QVERIFY(!desk.window->close());
        answerNextBox(QMessageBox::Cancel, &boxes);
        desk.press(Qt::Key_N, Qt::ControlModifier);
        QTRY_COMPARE(boxes, 2);
        QCOMPARE(desk.preview(), QString("SELECT * FROM city"));
        answerNextBox(QMessageBox::Discard, &boxes);
        desk.press(Qt::Key_N, Qt::ControlModifier);
        QTRY_VERIFY(!desk.preview().contains("city"));
        QVERIFY(desk.window->close());
        QCOMPARE(boxes, 3);
    }

    // ---- the end, looks, state --------------------------------------------------------------

    void theWindowGoesWhileWorkRuns() {
        const SqliteFile file(std::string(cities) + endless);
        {
            DeskFixture opening;
            opening.window->openFile(file.path());
        }
        {
            DeskFixture loading;
            loading.window->openFile(file.path());
            QTRY_VERIFY(!loading.window->isOpening());
        }
        DeskFixture& desk = *m_desk;
        QVERIFY(desk.openAndAdd(file.path(), "silent"));
        desk.buildAndRun();
        QTRY_COMPARE(desk.model()->columnCount(), 1);
        desk.doubleClick(desk.row("city"));
        desk.window->builder()->queryPreviewPanel()->updatePreviewQuery();
        desk.window.reset();
        QCoreApplication::processEvents();
    }

    void themeAndLanguageChangeAtOnceAndAreRemembered() {
        DeskFixture& desk = *m_desk;
        const auto trigger = [&](const QString& text) {
            const auto actions = desk.window->findChildren<QAction*>();
            for (QAction* action : actions)
                if (action->text() == text) return action->trigger();
            QFAIL(qPrintable("no action " + text));
        };
        trigger("&Dark");
        QVERIFY(QB::Callback::isDarkTheme());
        QVERIFY(desk.window->palette().color(QPalette::Window).lightness() < 80);
        QTRY_VERIFY(!desk.button(QDialogButtonBox::Cancel)->isVisible());
        trigger("&Light");
        QVERIFY(!QB::Callback::isDarkTheme());
        QVERIFY(desk.window->palette().color(QPalette::Window).lightness() > 180);
        trigger("Deutsch");
        QTRY_COMPARE(desk.window->menuBar()->actions().first()->text(), QString("&Datei"));
        QCOMPARE(desk.status(), QString("Noch keine Abfrage ausgeführt"));
        QVERIFY(desk.button(QDialogButtonBox::Yes)->text().startsWith("Erstellen"));
        desk.grid()->setRowLimit(1000);
        desk.window->resize(900, 700);
        desk.window->close();
        desk.window = std::make_unique<QB::Desk::MainWindow>(&desk.settings, QString());
        QTRY_COMPARE(desk.window->menuBar()->actions().first()->text(), QString("&Datei"));
        QCOMPARE(desk.window->size(), QSize(900, 700));
        QCOMPARE(desk.grid()->rowLimit(), 1000);
        desk.window->setLanguage("en");
    }

    void theSampleIsWrittenOnceAndMadeAnewWhenItsVersionDiffers() {
        DeskFixture& desk = *m_desk;
        const QString path = desk.folder.filePath("sample.sqlite");
        desk.window->openSample();
        QTRY_VERIFY(desk.window->isDatabaseShown());
        QVERIFY(desk.row("rental") && desk.row("station_turnover"));
        const QDateTime written = QFileInfo(path).lastModified();
        desk.window->openSample();
        QCOMPARE(QFileInfo(path).lastModified(), written);
        {
            const QScopedPointer<sqlite3, SqliteCloser> other(SqliteCloser::open(path));
            QCOMPARE(sqlite3_exec(other.data(), "PRAGMA user_version = 0; DROP VIEW open_rental",
                                  nullptr, nullptr, nullptr),
                     SQLITE_OK);
        }
        desk.window->openSample();
        QTRY_VERIFY(!desk.window->isOpening() && desk.window->isDatabaseShown());
        QVERIFY(desk.row("open_rental"));
        QCOMPARE(QDir(desk.folder.path()).entryList({"sample*"}), QStringList("sample.sqlite"));
    }

private:
    struct SqliteCloser {
        static sqlite3* open(const QString& path) {
            sqlite3* handle = nullptr;
            sqlite3_open(path.toUtf8().constData(), &handle);
            sqlite3_busy_timeout(handle, 10000);  // the window may be reading
            return handle;
        }
        static void cleanup(sqlite3* handle) { sqlite3_close(handle); }
    };

    std::unique_ptr<DeskFixture> m_desk;
};

QTEST_MAIN(WindowTest)
#include "window_test.moc"
