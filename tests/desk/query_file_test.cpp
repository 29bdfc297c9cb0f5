#include <sys/resource.h>
#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QProcess>
#include <QToolButton>
#include <QUndoStack>
#include <QUrl>
#include <csignal>

#include "apps/joinery-desk/query_file.h"
#include "apps/joinery-desk/sql_editor.h"
#include "apps/joinery-desk/sql_tab.h"
#include "apps/joinery-desk/window_states.h"
#include "apps/joinery-desk/workspace.h"
#include "canvas/view/canvas_commands.h"
#include "desk/desk_fixture.h"
#include "tools/empty_lists.h"

using QB::Desk::Journal;
using QB::Desk::MainWindow;
using QB::Test::answerNextBox;
using QB::Test::DeskFixture;
using QB::Test::sendDrop;
using QB::Test::SqliteFile;

/// Saved queries, work that no file has, and what the window remembers of a database.
class QueryFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_desk = std::make_unique<DeskFixture>();
        QVERIFY(
            m_desk->start("CREATE TABLE city (id INTEGER PRIMARY KEY, name TEXT);"
                          "CREATE TABLE country (code TEXT)",
                          "country"));
    }
    void cleanup() { m_desk.reset(); }

    // ---- files ------------------------------------------------------------------------------

    void aDamagedFileIsToldWithItsReasonAndChangesNothing_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("told");
        const auto row = [](const char* name, const QByteArray& content, const char* told) {
            QTest::newRow(name) << content << QString(told);
        };
        const auto with = [](const char* key, const QJsonValue& value) {
            QJsonObject object = wholeQuery();
            object[QLatin1String(key)] = value;
            return QJsonDocument(object).toJson();
        };
        const QByteArray whole = QJsonDocument(wholeQuery()).toJson();
        row("empty", "", "line 1");
        row("no JSON", "SELECT 1", "line 1");
        row("truncated", whole.left(whole.size() - 20), "damaged in line");
        row("no UTF-8", QByteArray(whole).replace("city", "c\xfcty"), "is not UTF-8: in line");
        row("a list", "[]", "\"format\" is missing");
        row("another format", with("format", "picture"), "something else");
        row("newer", with("version", 2), "A newer version");
        row("no format of that number", with("version", 0.5), "no format 0.5");
        row("other family", with("family", "PostgreSQL"), "a query for PostgreSQL");
        row("no text", with("sql", QJsonValue::Undefined), "\"sql\" is missing");
        row("layouts of a wrong type", with("layouts", "[]"), "\"layouts\" is of a wrong type");
        row("nested preferences", with("preferences", QJsonObject{{"a", QJsonObject()}}),
            "\"preferences\" is of a wrong type");
    }
    void aDamagedFileIsToldWithItsReasonAndChangesNothing() {
        QFETCH(QByteArray, content);
        QFETCH(QString, told);
        const QString text = editor()->text();
        verifyRefused(m_desk->write("query.joinery", content), told);
        QCOMPARE(editor()->text(), text);
        QVERIFY(m_desk->settings.value("recentQueries").toStringList().isEmpty());
    }

    void aFileOf100MBAndAFolderAreNotReadAtAll() {
        QFile huge(m_desk->folder.filePath("huge.joinery"));
        QVERIFY(huge.open(QIODevice::WriteOnly) && huge.resize(100 * 1024 * 1024));
        verifyRefused(huge.fileName(), "too large");
        verifyRefused(m_desk->folder.path(), "is a folder");
        verifyRefused("/nowhere/x.joinery", "There is no file");
    }

    void onAFullDiskTheOldFileStays() {
        const QString path = m_desk->write("query.joinery", "old");
        rlimit whole;
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &whole), 0);
        const auto former = std::signal(SIGXFSZ, SIG_IGN);
        const rlimit small = {100, whole.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
        const QString error = QB::Desk::writeQueryFile(path, QB::Desk::QueryDocument());
        setrlimit(RLIMIT_FSIZE, &whole);
        std::signal(SIGXFSZ, former);
        QVERIFY2(error.contains("cannot be written"), qPrintable(error));
        QCOMPARE(QFileInfo(path).size(), 3);
    }

    void aSavedQueryComesBackWithItsTextLayoutsAndPreferences() {
        const QString typed = "SELECT name /* kept */ FROM city";
        m_desk->press(Qt::Key_T, Qt::ControlModifier);
        editor()->selectAll();
        QTest::keyClicks(editor(), typed);
        m_desk->press(Qt::Key_Return, Qt::ControlModifier);
        QTRY_COMPARE(m_desk->preview(), QString("SELECT name FROM city"));
        builder()->loadGlobalPreferences({{"RelationMode", "2"}});
        const QString layouts = builder()->obtainDiagramLayoutJsonString();
        QVERIFY(m_desk->window->isWorkUnsaved());
        const QString path = saveAs("query");
        QVERIFY(!m_desk->window->isWorkUnsaved());
        QVERIFY(m_desk->window->windowTitle().startsWith("query.joinery[*]"));

        // On another database, to which the file's own is preferred, and with another query.
        const SqliteFile other("CREATE TABLE only (x)", "other.db");
        QVERIFY(m_desk->openAndAdd(other.path(), "only"));
        builder()->loadGlobalPreferences({{"RelationMode", "1"}});
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path)});
        int boxes = 0;
        answerNextBox(QMessageBox::Discard, &boxes);
        const QSignalSpy opened(m_desk->window.get(), &MainWindow::queryOpened);
        sendDrop(m_desk->window.get(), data);
        QTRY_COMPARE(opened.count(), 1);
        QCOMPARE(boxes, 1);
        QTRY_COMPARE(m_desk->preview(), QString("SELECT name FROM city"));
        QCOMPARE(editor()->text(), typed);
        QTRY_COMPARE(m_desk->window->sqlTab()->state(), QB::Desk::SqlTab::State::Held);
        QCOMPARE(builder()->obtainGlobalPreferences()["RelationMode"].toString(), QString("2"));
        QCOMPARE(builder()->obtainDiagramLayoutJsonString(), layouts);
        QVERIFY(!m_desk->window->isWorkUnsaved() && !builder()->undoStack()->canUndo());
        QVERIFY(m_desk->window->windowTitle().startsWith("query.joinery[*] – "));
    }

    void aQueryThatNoParserReadsIsSavedAndItsTextComesBack() {
        QJsonObject object = wholeQuery();
        object["sql"] = "SELECT name FROM city WHERE";
        object["text"] = "-- typed";
        const QString path = m_desk->write("query.joinery", QJsonDocument(object).toJson());
        verifyRefused(path, "in the SQL tab");
        QCOMPARE(m_desk->window->messageBar()->text().count("cannot be read"), 1);
        QTRY_COMPARE(m_desk->window->sqlTab()->state(), QB::Desk::SqlTab::State::Refused);
        QCOMPARE(editor()->text(), QString("SELECT name FROM city WHERE;\n\n-- typed"));
        QVERIFY(m_desk->window->isWorkUnsaved());  // the builder's, which nobody has saved
    }

    void unsavedWorkIsAskedAboutWhenAnotherQueryComes() {
        QJsonObject object = wholeQuery();
        object["schema"] = "elsewhere";
        const QString path = m_desk->write("q.joinery", QJsonDocument(object).toJson());
        int boxes = 0;
        answerNextBox(QMessageBox::Cancel, &boxes);
        m_desk->window->openAnyFile(path);
        QTRY_COMPARE(boxes, 1);
        QCOMPARE(m_desk->preview(), QString("SELECT * FROM country"));
        builder()->undoStack()->undo();
        m_desk->window->openAnyFile(path);
        QTRY_COMPARE(m_desk->preview(), QString("SELECT name FROM city"));
        QCOMPARE(boxes, 1);
        for (const char* missing : {"gone.db", "elsewhere"})
            QVERIFY(m_desk->window->messageBar()->text().contains(missing));
        QTRY_VERIFY(m_desk->window->builder()->canvasCommands()->dump().contains("\"name\""));
    }

    // ---- the journal ------------------------------------------------------------------------

    void aProgramThatIsKilledLeavesAJournalThatIsOfferedAndRestored() {
        QTemporaryDir folder;
        const QString journals = folder.filePath("journals");
        QProcess program;
        program.start(JOINERY_DESK, {"--settings", folder.filePath("settings.ini"), "--sample",
                                     "--add", "station"});
        QTRY_COMPARE_WITH_TIMEOUT(leftIn(journals).size(), 1, 20000);
        {
            // Whose program lives, that is not offered.
            MainWindow second(&m_desk->settings, folder.filePath("x"));
            second.offerLeftJournals();
            QVERIFY(!bar(second)->isAsking());
        }
        program.kill();
        QVERIFY(program.waitForFinished());
        QFile damaged(journals + "/damaged.joinery");
        QVERIFY(damaged.open(QIODevice::WriteOnly) && damaged.write("{") == 1);
        damaged.close();
        const QString lock = QDir(journals).entryList({"*.lock"}).value(0);
        QVERIFY(QFile::copy(journals + '/' + lock, journals + "/nothing.joinery.lock"));

        m_desk->window = std::make_unique<MainWindow>(&m_desk->settings, folder.filePath("x"));
        m_desk->window->setLanguage("en");
        m_desk->window->show();
        m_desk->window->offerLeftJournals();
        QVERIFY(m_desk->window->messageBar()->text().contains("damaged.joinery.damaged"));
        QVERIFY(bar(*m_desk->window)->isAsking());
        {
            MainWindow second(&m_desk->settings, folder.filePath("x"));
            second.offerLeftJournals();
            QVERIFY(!bar(second)->isAsking());
        }
        auto* restore = bar(*m_desk->window)->findChild<QPushButton*>("messageAnswer");
        QTest::mouseClick(restore, Qt::LeftButton);
        QTRY_COMPARE(m_desk->preview(), QString("SELECT * FROM station"));
        const auto* engine = m_desk->window->workspace()->engine();
        QTRY_COMPARE(QB::Tools::SQL::selectListSizes(engine), std::vector<int>{0});
        QVERIFY(m_desk->window->isWorkUnsaved() && !bar(*m_desk->window)->isAsking());
        QCOMPARE(leftIn(journals).size(), 1);
        m_desk->window.reset();
        QCOMPARE(leftIn(journals), QStringList());
        QCOMPARE(QDir(journals).entryList(QDir::Files), QStringList("damaged.joinery.damaged"));
    }

    void theJournalGoesWhenAllIsSaved() {
        const QString journals = m_desk->folder.filePath("journals");
        QTRY_COMPARE_WITH_TIMEOUT(leftIn(journals).size(), 1, 3 * Journal::delayMs);
        builder()->undoStack()->undo();
        QTRY_COMPARE(leftIn(journals).size(), 0);
        m_desk->press(Qt::Key_T, Qt::ControlModifier);
        QTest::keyClicks(editor(), "typed only");
        QTRY_COMPARE_WITH_TIMEOUT(leftIn(journals).size(), 1, 3 * Journal::delayMs);
        QB::Desk::QueryDocument kept;
        QCOMPARE(QB::Desk::readQueryFile(journals + '/' + leftIn(journals)[0], kept), QString());
        QVERIFY(kept.text.value_or("").contains("typed only"));
        saveAs("all");
        QTRY_COMPARE(leftIn(journals).size(), 0);
    }

    // ---- the window -------------------------------------------------------------------------

    void eachDatabaseHasItsWindow() {
        const SqliteFile other("CREATE TABLE only (x)", "other.db");
        const QSize mine(800, 600);
        const QSize others(800, 570);
        builder()->undoStack()->undo();
        m_desk->window->resize(mine);
        QVERIFY(m_desk->open(other.path()));
        QCOMPARE(m_desk->window->size(), mine);  // nothing is known of this one
        m_desk->window->resize(others);
        builder()->canvasCommands()->zoomIn();
        builder()->loadGlobalPreferences({{"RelationMode", "2"}});
        QVERIFY(m_desk->open(m_desk->database->path()));
        QCOMPARE(m_desk->window->size(), mine);
        QCOMPARE(builder()->canvasCommands()->zoom(), 1.0);
        QCOMPARE(builder()->obtainGlobalPreferences()["RelationMode"].toString(), QString("1"));
        QVERIFY(m_desk->open(other.path()));
        m_desk->window->close();
        m_desk->window = std::make_unique<MainWindow>(&m_desk->settings, QString());
        QCOMPARE(m_desk->window->size(), others);
        QCOMPARE(builder()->canvasCommands()->zoom(), 1.1);

        QB::Desk::WindowStates states(&m_desk->settings);
        for (int i = 0; i < QB::Desk::WindowStates::limit; ++i)
            states.store(QString::number(i), {"{}", {}, {}, 1});
        QVERIFY(!states.find(other.path()) && states.find("0"));
    }

    void theHistoryIsReachedByKeysFromEverywhereAndNamedInTheMenu() {
        const auto actions = m_desk->window->findChildren<QAction*>();
        const auto undo = std::find_if(actions.begin(), actions.end(), [](const QAction* action) {
            return action->shortcut() == QKeySequence::Undo;
        });
        QVERIFY2((*undo)->text().startsWith("&Undo "), qPrintable((*undo)->text()));
        auto* filter = m_desk->window->findChild<QLineEdit*>("filterLineEdit");
        for (QWidget* focus : {static_cast<QWidget*>(m_desk->tree()), static_cast<QWidget*>(filter),
                               static_cast<QWidget*>(editor())}) {
            if (focus == editor()) m_desk->press(Qt::Key_T, Qt::ControlModifier);
            focus->setFocus();
            m_desk->press(Qt::Key_Z, Qt::ControlModifier);
            QTRY_VERIFY(!m_desk->preview().contains("country"));
            m_desk->press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
            QTRY_COMPARE(m_desk->preview(), QString("SELECT * FROM country"));
        }
        // A field's own typing comes first. Its clear button comes and goes by an animation that
        // belongs to nobody: it stays behind when the window goes before it has ended.
        filter->setFocus();
        QTest::keyClicks(filter, "ci");
        QTRY_COMPARE(filter->findChild<QToolButton*>()->property("opacity"), QVariant(1.0));
        m_desk->press(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(filter->text(), QString());
        QTRY_COMPARE(filter->findChild<QToolButton*>()->property("opacity"), QVariant(0.0));
        QCOMPARE(m_desk->preview(), QString("SELECT * FROM country"));
    }

private:
    static QJsonObject wholeQuery() {
        return {{"format", "joinery-query"}, {"version", 1},
                {"family", "SQLite"},        {"schema", "main"},
                {"database", "gone.db"},     {"sql", "SELECT name FROM city"},
                {"layouts", QJsonArray()},   {"preferences", QJsonObject{{"RelationMode", "1"}}}};
    }
    static QStringList leftIn(const QString& folder) {
        return QDir(folder).entryList({"*.joinery"}, QDir::Files);
    }
    static QB::Desk::MessageBar* bar(const MainWindow& window) {
        return window.findChild<QB::Desk::MessageBar*>("recoveryBar");
    }
    QB::QBQueryBuilderWidget* builder() const { return m_desk->window->builder(); }
    QB::Desk::SqlEditor* editor() const { return m_desk->window->sqlTab()->editor(); }
    void verifyRefused(const QString& path, const QString& told) const {
        const QSignalSpy failed(m_desk->window.get(), &MainWindow::queryFailed);
        m_desk->window->openQueryFile(path);
        QTRY_COMPARE(failed.count(), 1);
        const QString message = m_desk->window->messageBar()->text();
        QVERIFY2(message.contains(told) && message.contains(path), qPrintable(message));
        QCOMPARE(m_desk->preview(), QString("SELECT * FROM country"));
    }
    /// By Ctrl+S and the dialog; without a suffix.
    QString saveAs(const QString& name) const {
        QTimer answer;
        connect(&answer, &QTimer::timeout, &answer, [&] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (!dialog) return;
            answer.stop();
            dialog->findChild<QLineEdit*>()->setText(m_desk->folder.filePath(name));
            QTest::keyClick(dialog->findChild<QLineEdit*>(), Qt::Key_Return);
        });
        answer.start(10);
        m_desk->press(Qt::Key_S, Qt::ControlModifier);
        return m_desk->folder.filePath(name + ".joinery");
    }

    std::unique_ptr<DeskFixture> m_desk;
};

QTEST_MAIN(QueryFileTest)
#include "query_file_test.moc"
