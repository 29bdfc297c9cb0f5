#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "apps/joinery-desk/command_line.h"
#include "apps/joinery-desk/query_file.h"
#include "hostkit/sqlite_file.h"

using namespace QB::Desk;

/// The program as a process: what a script or a user at a terminal sees of it.
class ProgramTest : public QObject {
    Q_OBJECT

    struct Run {
        int code;
        QString errors;
        QString output;
    };

    Run run(QStringList arguments) {
        arguments += {"--settings", m_folder.filePath("settings.ini")};
        QProcess program;
        program.start(JOINERY_DESK, arguments);
        if (!program.waitForFinished(60000)) return {-1, "does not end", QString()};
        return {program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -2,
                QString::fromUtf8(program.readAllStandardError()),
                QString::fromUtf8(program.readAllStandardOutput())};
    }

    QString picture() const { return m_folder.filePath("picture.png"); }

    QTemporaryDir m_folder;

private Q_SLOTS:
    void init() { QFile::remove(picture()); }

    void aPictureIsTakenWhenAllIsThere() {
        const QStringList script = {"--sample", "--add",        "CUSTOMER",     "--run",
                                    "--size",   "800x600",      "--theme",      "light",
                                    "--add",    "main.station", "--screenshot", picture()};
        const Run once = run(script);
        QVERIFY2(once.code == ExitOk, qPrintable(once.errors));
        const QImage light(picture());
        QCOMPARE(light.size(), QSize(800, 600));
        QVERIFY(light.pixelColor(2, 2).lightness() > 180);
        const Run twice = run(script + QStringList{"--theme", "dark", "--scale", "2"});
        QVERIFY2(twice.code == ExitOk, qPrintable(twice.errors));
        const QImage dark(picture());
        QCOMPARE(dark.size(), QSize(1600, 1200));
        QVERIFY(dark.pixelColor(2, 2).lightness() < 80);
    }

    void whatFailsIsToldAndHasItsExitCode_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("told");
        const QStringList take = {"--screenshot", picture()};
        QTest::newRow("usage") << QStringList{"--size", "big"} << int(ExitUsage) << "--size";
        QTest::newRow("missing file")
            << QStringList{m_folder.filePath("none.db")} + take << int(ExitNoDatabase) << "none.db";
        QTest::newRow("unknown table")
            << QStringList{"--sample", "--add", "nope"} + take << int(ExitNoTable) << "nope";
        const QString wrong = m_folder.filePath("wrong.sql");
        QFile file(wrong);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("SELECT id\nFROM (") > 0);
        QTest::newRow("text that is refused")
            << QStringList{"--sample", wrong} + take << int(ExitNoText) << "line 2";
        QTest::newRow("no text") << QStringList{"--sample", "--sql", m_folder.filePath("none")} +
                                        take
                                 << int(ExitNoText) << "none";
        QTest::newRow("a query that is none")
            << QStringList{m_folder.filePath("x.joinery")} + take << int(ExitNoText) << "x.joinery";
        QTest::newRow("two texts")
            << QStringList{"a.sql", "--sql", "b.sql"} << int(ExitUsage) << "Only one";
        QTest::newRow("nothing to run")
            << QStringList{"--sample", "--run"} + take << int(ExitQueryFailed) << "joinery-desk:";
        QTest::newRow("no folder for the picture")
            << QStringList{"--sample", "--screenshot", m_folder.filePath("no/x.png")}
            << int(ExitNoImage) << "x.png";
        QTest::newRow("no folder for the picture of the canvas")
            << QStringList{"--canvas-demo", "--screenshot", m_folder.filePath("no/y.png")}
            << int(ExitNoImage) << "y.png";
        QTest::newRow("a database for the canvas")
            << QStringList{"--canvas-demo", "--sample"} << int(ExitUsage) << "--canvas-demo";
    }
    void whatFailsIsToldAndHasItsExitCode() {
        QFETCH(QStringList, arguments);
        QFETCH(int, code);
        QFETCH(QString, told);
        const Run result = run(arguments);
        QVERIFY2(result.code == code, qPrintable(result.errors));
        QVERIFY2(result.errors.contains(told), qPrintable(result.errors));
        // A failure is worth a picture, too: the error stands in it.
        QCOMPARE(QFileInfo::exists(picture()), arguments.contains(picture()));
    }

    void aTextAndASavedQueryAreOpenedAndRun() {
        const QB::Test::SqliteFile file("CREATE TABLE only (x)");
        const QDir folder = QFileInfo(file.path()).dir();
        QFile text(folder.filePath("text.SQL"));
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("SELECT x FROM only o") > 0);
        text.close();
        const QStringList rest = {"--run", "--screenshot", picture()};
        const Run typed = run(QStringList{file.path(), text.fileName()} + rest);
        QVERIFY2(typed.code == ExitOk, qPrintable(typed.errors));

        const QString path = folder.filePath("query.joinery");
        QueryDocument query;
        query.family = QB::DatabaseTypeSQLite;
        query.schema = "main";
        query.database = file.path();
        query.sql = "SELECT x FROM only";
        QCOMPARE(writeQueryFile(path, query), QString());
        QFile written(path);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QVERIFY(!written.readAll().contains(folder.path().toUtf8()));  // both can be moved
        const Run named = run(QStringList{path} + rest);
        QVERIFY2(named.code == ExitOk, qPrintable(named.errors));
        // The database that is asked for comes first, and has no such table.
        QCOMPARE(run(QStringList{"--sample", path} + rest).code, int(ExitQueryFailed));
    }

    void aQueryWithoutEndMeetsItsDeadline() {
        const QB::Test::SqliteFile file(
            "CREATE VIEW silent AS WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n)"
            " SELECT count(*) AS number FROM n");
        const Run result = run({file.path(), "--add", "silent", "--run", "--deadline", "2",
                                "--screenshot", picture()});
        QVERIFY2(result.code == ExitDeadline, qPrintable(result.errors));
    }

    void helpTellsEveryExitCodeAndNeedsNoDatabase() {
        const Run help = run({"--help"});
        QCOMPARE(help.code, int(ExitOk));
        for (const char* word : {"--add", "--screenshot", "6 ", "--sql", "7 "})
            QVERIFY2(help.output.contains(word), word);
    }
};

QTEST_MAIN(ProgramTest)
#include "program_test.moc"
