#include <QApplication>
#include <QClipboard>
#include <QMenuBar>
#include <QTabWidget>
#include <QUndoStack>
#include <QUrl>
#include <condition_variable>
#include <mutex>

#include "apps/joinery-desk/long_lines.h"
#include "apps/joinery-desk/sql_editor.h"
#include "apps/joinery-desk/sql_file.h"
#include "apps/joinery-desk/sql_tab.h"
#include "apps/joinery-desk/workspace.h"
#include "desk/desk_fixture.h"
#include "model/components.h"

using QB::Desk::SqlTab;
using QB::Test::answerNextBox;
using QB::Test::DeskFixture;
using QB::Test::sendDrop;
using QB::Test::SqliteFile;

namespace {

const char* const cities =
    "CREATE TABLE city (id INTEGER PRIMARY KEY, name TEXT);"
    "INSERT INTO city VALUES (1, 'Köln'), (2, 'Paris');"
    "CREATE TABLE country (code TEXT);";

/// The library's parser behind a gate: checks wait while it is held, and all are counted. The
/// builder can be made to refuse what was accepted.
class GatedParser {
public:
    QB::Desk::QueryParsing parsing() {
        auto parsing = QB::Desk::libraryParsing();
        parsing.check = [this, real = parsing.check](const QB::Desk::SqlCheckRequest& request) {
            {
                std::unique_lock lock(m_mutex);
                m_texts.append(QString::fromStdString(request.text));
                m_opened.wait(lock, [this] { return !m_isHeld; });
            }
            return real(request);
        };
        parsing.load = [this, real = parsing.load](QB::QBEngine_LINUX* engine,
                                                   const std::string& text, auto done) {
            real(engine, isLoadRefused ? "SELECT ((" : text, done);
        };
        return parsing;
    }

    void hold() { setHeld(true); }
    void release() { setHeld(false); }
    QStringList texts() {
        const std::lock_guard lock(m_mutex);
        return m_texts;
    }

    bool isLoadRefused = false;

private:
    void setHeld(bool isHeld) {
        const std::lock_guard lock(m_mutex);
        m_isHeld = isHeld;
        m_opened.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_opened;
    bool m_isHeld = false;
    QStringList m_texts;
};

}  // namespace

/// The SQL tab of the real window, by mouse, keys and files.
class SqlTabTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_parser = std::make_unique<GatedParser>();
        m_desk = std::make_unique<DeskFixture>(m_parser->parsing());
        QVERIFY(m_desk->start(cities, "country"));
        m_desk->press(Qt::Key_T, Qt::ControlModifier);
        QTRY_COMPARE(tab()->state(), SqlTab::State::Held);
        QCOMPARE(editor()->text().simplified(), QString("SELECT * FROM country"));
    }
    void cleanup() {
        m_parser->release();
        m_desk.reset();
    }

    // ---- typing and applying ----------------------------------------------------------------

    void keysAloneTypeATextApplyItTakeAllBackAndRunIt() {
        QVERIFY(editor()->hasFocus());
        type("SELECT name FROM city");
        QTRY_COMPARE(tab()->state(), SqlTab::State::Acceptable);
        QCOMPARE(m_desk->preview(), QString("SELECT * FROM country"));
        m_desk->press(Qt::Key_Return, Qt::ControlModifier);
        QTRY_COMPARE(m_desk->preview(), QString("SELECT name FROM city"));
        QCOMPARE(tab()->state(), SqlTab::State::Held);
        QCOMPARE(editor()->text(), QString("SELECT name FROM city"));
        QCOMPARE(m_desk->model()->columnCount(), 0);

        // First what was typed, then what was done with it; and forth again.
        while (editor()->document()->isUndoAvailable())
            m_desk->press(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(m_desk->preview(), QString("SELECT name FROM city"));
        m_desk->press(Qt::Key_Z, Qt::ControlModifier);
        QTRY_COMPARE(m_desk->preview(), QString("SELECT * FROM country"));
        const auto again = Qt::ControlModifier | Qt::ShiftModifier;
        while (editor()->document()->isRedoAvailable())
            m_desk->press(Qt::Key_Z, again);
        QCOMPARE(m_desk->preview(), QString("SELECT * FROM country"));
        m_desk->press(Qt::Key_Z, again);
        QTRY_COMPARE(m_desk->preview(), QString("SELECT name FROM city"));

        // From the text on to the first button, and back.
        m_desk->press(Qt::Key_Tab, Qt::ControlModifier);
        QVERIFY(!editor()->hasFocus() && tab()->isAncestorOf(QApplication::focusWidget()));
        m_desk->press(Qt::Key_Backtab, Qt::ShiftModifier);
        QVERIFY(editor()->hasFocus());
        m_desk->press(Qt::Key_F5);
        QTRY_COMPARE(m_desk->model()->rowCount(), 2);
        QCOMPARE(m_desk->cell(0, 0), QString("Köln"));
    }

    void whatWasNeverAppliedIsAppliedBeforeItRuns() {
        type("SELECT name FROM city");
        QCOMPARE(tab()->state(), SqlTab::State::Checking);
        m_desk->press(Qt::Key_F5);
        QTRY_COMPARE(m_desk->model()->rowCount(), 2);
        // Taking back what was applied before does not make a later text an old one.
        type("SELECT id, name, id AS x FROM city");
        m_desk->window->builder()->undoStack()->undo();
        QTRY_COMPARE(m_desk->preview(), QString("SELECT * FROM country"));
        m_desk->press(Qt::Key_F5);
        QTRY_COMPARE(m_desk->model()->columnCount(), 3);
        type("SELECT name FORM city");
        m_desk->model()->reset({});
        m_desk->buildAndRun();
        QTRY_COMPARE(tab()->state(), SqlTab::State::Refused);
        QTRY_VERIFY(editor()->hasFocus());
        QVERIFY(!m_desk->grid()->isRunning());
        QCOMPARE(m_desk->model()->columnCount(), 0);
        // Who applies by the button goes on typing.
        type("SELECT name FROM city");
        QTRY_COMPARE(tab()->state(), SqlTab::State::Acceptable);
        QTest::mouseClick(button("sqlApply"), Qt::LeftButton);
        QTRY_VERIFY(tab()->state() == SqlTab::State::Held && editor()->hasFocus());
    }

    void aRefusedTextIsUnderlinedWhereItIsWrongAndChangesNothing_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("wrong");
        QTest::addColumn<QString>("place");
        const auto row = [](const char* name, const char* text, const char* wrong,
                            const char* place) {
            QTest::newRow(name) << QString(text) << QString(wrong) << QString(place);
        };
        row("a line below", "SELECT id\nFORM\ncity x y", "city", "3:1");
        row("behind wide characters", "SELECT 'Köln 🚲' AS a, 🚲 AS b\nFROM city )", ")", "2:11");
        row("at the end", "SELECT id FROM city WHERE", "E", "1:26");
        row("second statement", "SELECT 1 FROM city; SELECT 2", "SELECT", "1:21");
        row("no query", "UPDATE city SET id = 1", "UPDATE", "1:1");
    }
    void aRefusedTextIsUnderlinedWhereItIsWrongAndChangesNothing() {
        QFETCH(QString, text);
        QFETCH(QString, wrong);
        QFETCH(QString, place);
        paste(text);
        QTRY_COMPARE(tab()->state(), SqlTab::State::Refused);
        QVERIFY(!tab()->message().isEmpty() && !button("sqlApply")->isEnabled());
        m_desk->press(Qt::Key_Return, Qt::ControlModifier);
        QTest::mouseClick(button("sqlApply"), Qt::LeftButton);
        QCOMPARE(editor()->text(), text);
        const QB::TextSpan span = editor()->errorSpan();
        QCOMPARE(text.mid(span.start, span.length), wrong);
        QVERIFY(button("sqlGoToError")->isVisible());
        m_desk->press(Qt::Key_F8);
        const auto cursor = editor()->cursorPlace();
        QCOMPARE(QString("%1:%2").arg(cursor.line).arg(cursor.column), place);
        m_desk->window->builder()->queryPreviewPanel()->setNeedsUpdateQuery(true);
        QTRY_VERIFY(!m_desk->window->builder()->queryPreviewPanel()->needsUpdateQuery());
        QTRY_COMPARE(m_desk->preview(), QString("SELECT * FROM country"));
        paste("SELECT id FROM city");
        QTRY_COMPARE(tab()->state(), SqlTab::State::Acceptable);
        QCOMPARE(editor()->errorSpan().length, 0);
    }

    void anAnswerAboutAnOlderTextIsDropped() {
        QList<SqlTab::State> states;
        connect(tab(), &SqlTab::changed, this, [&] { states.append(tab()->state()); });
        m_parser->hold();
        const int before = m_parser->texts().size();
        paste("SELECT ((");
        QTRY_COMPARE(m_parser->texts().size(), before + 1);
        paste("SELECT 1 FROM");
        QTRY_VERIFY(tab()->state() == SqlTab::State::Checking);
        paste("SELECT id FROM city");
        m_parser->release();
        QTRY_COMPARE(tab()->state(), SqlTab::State::Acceptable);
        QVERIFY(!states.contains(SqlTab::State::Refused));
        QCOMPARE(m_parser->texts().last(), QString("SELECT id FROM city"));
    }

    void theWindowGoesWhileATextIsChecked() {
        m_parser->hold();
        const int before = m_parser->texts().size();
        paste("SELECT id FROM city");
        QTRY_COMPARE(m_parser->texts().size(), before + 1);
        m_desk.reset();
        m_parser->release();
        m_desk = std::make_unique<DeskFixture>(m_parser->parsing());
        QVERIFY(m_desk->start(cities));
    }

    void aTextThatTheBuilderDoesNotTakeAfterAllLeavesTheQuery() {
        m_parser->isLoadRefused = true;
        type("SELECT name FROM city");
        m_desk->press(Qt::Key_Return, Qt::ControlModifier);
        QTRY_VERIFY2(tab()->message().contains("as it was"), qPrintable(tab()->message()));
        const std::string now = m_desk->window->workspace()->engine()->buildQuery();
        QCOMPARE(QString::fromStdString(now).simplified(), QString("SELECT * FROM country"));
    }

    void aSubqueryLayerIsNamedAndOnlyItIsReplaced() {
        paste("SELECT s.id FROM (SELECT id FROM city) AS s");
        m_desk->press(Qt::Key_Return, Qt::ControlModifier);
        QTRY_VERIFY(m_desk->preview().contains("FROM ("));
        QTRY_COMPARE(tab()->state(), SqlTab::State::Held);
        auto* engine = m_desk->window->workspace()->engine();
        using namespace QB::Component::SQL;
        auto* root = dynamic_cast<SQLSelectStmtComponent*>(engine->topLevelQueryComponent(0));
        auto* source = dynamic_cast<SQLSubquerySourceComponent*>(root->sourceExpr->root->value);
        QVERIFY(source);
        engine->pushNewLayerTopLevelQueryComponent(source->subquery, "Subquery s");
        click("sqlLoad");
        QTRY_COMPARE(editor()->text().simplified(), QString("SELECT id FROM city"));
        QVERIFY2(tab()->title().contains("Subquery s"), qPrintable(tab()->title()));
        paste("SELECT id FROM city WHERE name = 'Paris'");
        m_desk->press(Qt::Key_Return, Qt::ControlModifier);
        QTRY_VERIFY2(m_desk->preview().contains("'Paris' ) AS s"), qPrintable(m_desk->preview()));
        QCOMPARE(engine->currentTopLevelQueryComponentLayer(), 1);
    }

    void aTextGoesToTheLayerThatItIsFor() {
        const QString path =
            m_desk->write("whole.sql", "SELECT s.id FROM (SELECT id FROM city) AS s");
        open("whole.sql");
        auto* engine = m_desk->window->workspace()->engine();
        const auto enter = [engine] {
            using namespace QB::Component::SQL;
            auto* root = dynamic_cast<SQLSelectStmtComponent*>(engine->topLevelQueryComponent(0));
            auto* source = dynamic_cast<SQLSubquerySourceComponent*>(root->sourceExpr->root->value);
            engine->pushNewLayerTopLevelQueryComponent(source->subquery, "Subquery s");
        };
        enter();
        QCOMPARE(tab()->state(), SqlTab::State::Held);
        QVERIFY2(!tab()->title().contains("Subquery"), qPrintable(tab()->title()));
        editor()->moveCursor(QTextCursor::End);
        QTest::keyClicks(editor(), " LIMIT 1");
        m_desk->press(Qt::Key_Return, Qt::ControlModifier);
        QTRY_VERIFY2(m_desk->preview().endsWith("LIMIT 1"), qPrintable(m_desk->preview()));
        QCOMPARE(engine->currentTopLevelQueryComponentLayer(), 0);

        // The subquery's text is not the file's, and what is in it is not all of the query.
        enter();
        click("sqlLoad");
        QTRY_COMPARE(editor()->text().simplified(), QString("SELECT id FROM city"));
        QCOMPARE(tab()->filePath(), QString());
        QTest::keyClicks(editor(), " ");
        m_desk->press(Qt::Key_Return, Qt::ControlModifier);
        QTRY_COMPARE(tab()->state(), SqlTab::State::Held);
        QVERIFY(!tab()->holdsQuery());
        engine->popCurrentLayerTopLevelQueryComponent();
        paste("SELECT 2 FROM city");
        m_desk->press(Qt::Key_Return, Qt::ControlModifier);
        QTRY_VERIFY2(tab()->message().contains("closed"), qPrintable(tab()->message()));
        QVERIFY2(m_desk->preview().endsWith("LIMIT 1"), qPrintable(m_desk->preview()));
        m_desk->press(Qt::Key_Return, Qt::ControlModifier);
        QTRY_COMPARE(m_desk->preview(), QString("SELECT 2 FROM city"));
        QVERIFY(read(path).startsWith("SELECT s.id"));
    }

    // ---- the text and the builder -----------------------------------------------------------

    void theTextFollowsTheBuilderUntilSomebodyTypes() {
        m_desk->doubleClick(m_desk->row("city"));
        QTRY_COMPARE(editor()->text().simplified(), QString("SELECT * FROM country, city"));
        QVERIFY(!tab()->hasUnsavedText());
        type("SELECT 1 FROM city");
        m_desk->doubleClick(m_desk->row("city"));
        QTRY_VERIFY(m_desk->preview().count("city") > 1);
        QCOMPARE(editor()->text(), QString("SELECT 1 FROM city"));
        click("sqlLoad");
        QTRY_VERIFY(editor()->text().count("city") > 1);
        editor()->setFocus();
        m_desk->press(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(editor()->text(), QString("SELECT 1 FROM city"));
        QVERIFY(tab()->hasUnsavedText());
    }

    void tabIndentsAndBacktabTakesItBack() {
        paste("SELECT\nid\nFROM city");
        editor()->selectAll();
        m_desk->press(Qt::Key_Tab);
        QCOMPARE(editor()->text(), QString("    SELECT\n    id\n    FROM city"));
        m_desk->press(Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(editor()->text(), QString("SELECT\nid\nFROM city"));
    }

    void noCharacterChangesOnItsWayThroughTheEditor() {
        const QString text = QString("SELECT 'a%1b\tc%2d 🚲' FROM city")
                                 .arg(QChar(QChar::Nbsp))
                                 .arg(QChar(QChar::LineSeparator));
        paste(text);
        QCOMPARE(editor()->text(), text);
        QTRY_VERIFY(m_parser->texts().contains(text));
    }

    void aLargePasteGoesInBitByBitAndIsTakenBackAtOnce() {
        type("SELECT 1");
        QString text = "SELECT id FROM city WHERE id IN (0";
        for (int i = 1; i < 20000; ++i)
            text += QString(",\n%1").arg(i);
        text += ")";
        paste(text);
        QVERIFY(editor()->isInserting());
        QTest::keyClicks(editor(), "x");
        QTRY_VERIFY(!editor()->isInserting());
        QCOMPARE(editor()->text(), text);
        QTRY_COMPARE(tab()->state(), SqlTab::State::Acceptable);
        m_desk->press(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(editor()->text(), QString("SELECT 1"));
        paste(text);
        m_desk->press(Qt::Key_Return, Qt::ControlModifier);
        QTRY_VERIFY(m_desk->preview().contains("19999"));
    }

    void overlongLinesAreBrokenOnlyWhereThatMeansNothing() {
        using QB::Desk::withBrokenLines;
        const QString list = QString("1, 'a, b' , \"c, d\", ").repeated(1000);
        const QString text = "SELECT " + list + "0 /* a, b */ -- x, y";
        const QString broken = withBrokenLines(text, QB::DatabaseTypeSQLite);
        QVERIFY(broken.count('\n') > 50);
        QCOMPARE(QString(broken).remove('\n'), text);
        for (const QString& line : broken.split('\n')) {
            QVERIFY(line.size() < 300);
            QCOMPARE(line.count('\'') % 2 + line.count('"') % 2, 0);
        }
        QVERIFY(broken.endsWith("0 /* a, b */ -- x, y"));
        const QString literal = "SELECT '" + QString("a, ").repeated(5000) + "'";
        QCOMPARE(withBrokenLines(literal, QB::DatabaseTypeSQLite), literal);
        paste(text + "\nFROM city");
        QTRY_VERIFY2(tab()->message().contains("long lines"), qPrintable(tab()->message()));
    }

    // ---- files ------------------------------------------------------------------------------

    void aFileIsAppliedIfItIsAcceptedAndKeepsItsForm_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("plain") << QByteArray("SELECT name\nFROM city\n");
        QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbfSELECT name FROM city");
        QTest::newRow("carriage returns") << QByteArray("SELECT name\r\nFROM city\r\n");
    }
    void aFileIsAppliedIfItIsAcceptedAndKeepsItsForm() {
        QFETCH(QByteArray, content);
        const QString path = m_desk->write("query.sql", content);
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path)});
        sendDrop(editor()->viewport(), data);
        QVERIFY(!editor()->text().contains("query.sql"));
        sendDrop(m_desk->window.get(), data);
        QTRY_COMPARE(m_desk->preview(), QString("SELECT name FROM city"));
        QTRY_COMPARE(tab()->state(), SqlTab::State::Held);
        QVERIFY(tab()->title().contains("query.sql") && !tab()->hasUnsavedText());
        QCOMPARE(m_desk->settings.value("recentTexts").toStringList(), QStringList(path));

        editor()->moveCursor(QTextCursor::End);
        QTest::keyClicks(editor(), " ");
        QVERIFY(tab()->title().endsWith('*'));
        m_desk->press(Qt::Key_S, Qt::ControlModifier);
        QVERIFY(!tab()->title().endsWith('*'));
        QCOMPARE(read(path), content + ' ');
    }

    void aCarriageReturnInsideAStringStaysOne() {
        m_desk->write("query.sql", "SELECT 'a\r\nb' AS x FROM city WHERE id = 1\r\n");
        open("query.sql");
        QCOMPARE(tab()->state(), SqlTab::State::Held);
        m_desk->press(Qt::Key_F5);
        QTRY_COMPARE(m_desk->model()->rowCount(), 1);
        QCOMPARE(m_desk->model()->value(0, 0).toString(), QString("a\r\nb"));
    }

    void aFileThatIsRefusedShowsItsErrorAndLeavesTheQuery_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("told");
        QTest::newRow("wrong") << QByteArray("SELECT\r\n(FROM city\r\n") << "line 2";
        QTest::newRow("two statements") << QByteArray("SELECT 1; SELECT 2") << "Several";
        QTest::newRow("empty") << QByteArray() << "Type or paste";
    }
    void aFileThatIsRefusedShowsItsErrorAndLeavesTheQuery() {
        QFETCH(QByteArray, content);
        m_desk->write("query.sql", content);
        open("query.sql");
        QCOMPARE(editor()->text(), QString(content).remove('\r'));
        QFETCH(QString, told);
        QVERIFY2(tab()->message().contains(told), qPrintable(tab()->message()));
        QCOMPARE(m_desk->preview(), QString("SELECT * FROM country"));
    }

    void aFileThatCannotBeReadIsToldAndTheTextStays() {
        const QString kept = editor()->text();
        const QSignalSpy failed(tab(), &SqlTab::fileFailed);
        m_desk->window->openAnyFile(m_desk->write("no.sql", "SELECT 1\n, 'K\xf6ln'"));
        QTRY_COMPARE(failed.count(), 1);
        QVERIFY(m_desk->window->messageBar()->text().contains("line 2"));
        QCOMPARE(editor()->text(), kept);
    }

    void whatIsTypedWhileAFileIsReadStays() {
        m_desk->write("query.sql", "SELECT name FROM city");
        const QSignalSpy failed(tab(), &SqlTab::fileFailed);
        m_desk->window->openAnyFile(m_desk->folder.filePath("query.sql"));
        type("SELECT 1");
        QTRY_COMPARE(failed.count(), 1);
        QCOMPARE(editor()->text(), QString("SELECT 1"));
        QVERIFY(tab()->filePath().isEmpty());
    }

    void textOfMixedLineEndsIsTold() {
        m_desk->write("query.sql", "SELECT name\r\nFROM city\n");
        open("query.sql");
        QTRY_VERIFY2(tab()->message().contains("end alike"), qPrintable(tab()->message()));
        QTRY_COMPARE(m_desk->preview(), QString("SELECT name FROM city"));
    }

    void whatHappensToTheDiagramOfAnSqlFileIsUnsavedWork() {
        m_desk->write("query.sql", "SELECT name FROM city");
        open("query.sql");
        QVERIFY(!m_desk->window->isWorkUnsaved());
        m_desk->window->builder()->obtainDiagramTabs()->setCurrentIndex(0);
        for (QWidget* widget : m_desk->window->findChildren<QWidget*>())
            if (widget->inherits("QB::DiagramLumo::QBLumoUIView")) widget->setFocus();
        m_desk->press(Qt::Key_A, Qt::ControlModifier);
        m_desk->press(Qt::Key_Right);
        QVERIFY(m_desk->window->isWorkUnsaved());
        m_desk->press(Qt::Key_Z, Qt::ControlModifier);
        QVERIFY(!m_desk->window->isWorkUnsaved());
    }

    void typedTextIsNeverLostWithoutAQuestion() {
        const QString path = m_desk->write("query.sql", "SELECT name FROM city");
        open("query.sql");
        QCOMPARE(tab()->state(), SqlTab::State::Held);
        editor()->moveCursor(QTextCursor::End);
        QTest::keyClicks(editor(), " LIMIT 1");
        int boxes = 0;
        answerNextBox(QMessageBox::Cancel, &boxes);
        m_desk->window->openTextFile(path);
        QCOMPARE(boxes, 1);
        answerNextBox(QMessageBox::Cancel, &boxes);
        m_desk->press(Qt::Key_N, Qt::ControlModifier);
        QTRY_COMPARE(boxes, 2);
        answerNextBox(QMessageBox::Cancel, &boxes);
        QVERIFY(!m_desk->window->close());
        QCOMPARE(editor()->text(), QString("SELECT name FROM city LIMIT 1"));
        QCOMPARE(read(path), QByteArray("SELECT name FROM city"));

        // Another database leaves the text alone, and reads it anew. The query that goes is the one
        // in the file.
        const SqliteFile other("CREATE TABLE city (name)", "other.db");
        QVERIFY(m_desk->open(other.path()));
        QCOMPARE(boxes, 3);
        QCOMPARE(editor()->text(), QString("SELECT name FROM city LIMIT 1"));
        QTRY_COMPARE(tab()->state(), SqlTab::State::Acceptable);
        answerNextBox(QMessageBox::Save, &boxes);
        QVERIFY(m_desk->window->close());
        QCOMPARE(boxes, 4);
        QCOMPARE(read(path), QByteArray("SELECT name FROM city LIMIT 1"));
    }

    void aFileThatSomebodyElseHasWrittenIsNotWrittenOver() {
        const QString path = m_desk->write("query.sql", "SELECT name FROM city");
        open("query.sql");
        QCOMPARE(tab()->state(), SqlTab::State::Held);
        QTest::keyClicks(editor(), " ");
        m_desk->write("query.sql", "theirs");
        QFile theirs(path);
        QVERIFY(theirs.open(QIODevice::ReadWrite) &&
                theirs.setFileTime(QDateTime::fromSecsSinceEpoch(1),
                                   QFileDevice::FileModificationTime));
        theirs.close();
        int boxes = 0;
        answerNextBox(QMessageBox::Cancel, &boxes);
        m_desk->press(Qt::Key_S, Qt::ControlModifier);
        QTRY_COMPARE(boxes, 1);
        QCOMPARE(read(path), QByteArray("theirs"));
        QVERIFY(tab()->hasUnsavedText());
    }

private:
    SqlTab* tab() const { return m_desk->window->sqlTab(); }
    QB::Desk::SqlEditor* editor() const { return tab()->editor(); }
    QAbstractButton* button(const char* name) const {
        return tab()->findChild<QAbstractButton*>(name);
    }
    void click(const char* name) const {
        QTRY_VERIFY(button(name)->isEnabled());
        QTest::mouseClick(button(name), Qt::LeftButton);
    }
    void type(const QString& text) const {
        editor()->selectAll();
        QTest::keyClicks(editor(), text);
    }
    void paste(const QString& text) const {
        editor()->selectAll();
        QApplication::clipboard()->setText(text);
        QTest::keyClick(editor(), Qt::Key_V, Qt::ControlModifier);
    }
    QByteArray read(const QString& path) const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// Opens a file that can be read, and waits until its text was applied or refused.
    void open(const QString& name) const {
        QSignalSpy settled(tab(), &SqlTab::fileSettled);
        m_desk->window->openAnyFile(m_desk->folder.filePath(name));
        QVERIFY(settled.wait());
    }

    std::unique_ptr<GatedParser> m_parser;  // outlives the window, whose workers use it
    std::unique_ptr<DeskFixture> m_desk;
};

QTEST_MAIN(SqlTabTest)
#include "sql_tab_test.moc"
