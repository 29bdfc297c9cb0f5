#include "hostkit/statement_runner.h"

#include <QSignalSpy>
#include <QtTest>

#include "../sqlite_file.h"
#include "hostkit/threads.h"

using namespace QB::HostKit;
using QB::Test::SqliteFile;

namespace {

const QString endlessRows = QStringLiteral(
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
    "SELECT i FROM n");
const QString endlessWithoutRows = QStringLiteral(
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT count(*) FROM n");

StatementOptions uncapped() {
    StatementOptions options;
    options.rowCap = 0;
    return options;
}

/// Keeps what a runner said, in order.
struct Listener {
    explicit Listener(const StatementRunner& runner) {
        QObject::connect(&runner, &StatementRunner::columnsReady, &context,
                         [this](const QStringList& names) {
                             said << "columns";
                             columns = names;
                         });
        QObject::connect(&runner, &StatementRunner::rowsReady, &context,
                         [this](const QVector<QVariantList>& batch) {
                             if (said.last() != "rows") said << "rows";
                             rows += batch;
                             ++batches;
                         });
        QObject::connect(&runner, &StatementRunner::finished, &context,
                         [this](const StatementSummary& s) {
                             said << "finished";
                             summary = s;
                         });
        QObject::connect(&runner, &StatementRunner::failed, &context,
                         [this](const QString& text, int at) {
                             said << "failed";
                             message = text;
                             position = at;
                         });
        QObject::connect(&runner, &StatementRunner::cancelled, &context,
                         [this] { said << "cancelled"; });
    }

    bool isOver() const {
        return said.contains("finished") || said.contains("failed") || said.contains("cancelled");
    }

    QObject context;
    QStringList said;
    QStringList columns;
    QVector<QVariantList> rows;
    int batches = 0;
    StatementSummary summary;
    QString message;
    int position = -2;
};

}  // namespace

class StatementRunnerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { installCallbacks(); }

    void valuesKeepTheirKind() {
        const SqliteFile file;
        StatementRunner runner(file.open());
        Listener listener(runner);
        runner.run(
            "SELECT NULL AS n, '' AS empty, 'ä😀' AS \"a \"\"b\"\"\", 9007199254740993 AS big,"
            " 0.5 AS half, x'' AS noBytes, x'00ff' AS bytes, ':x ?' AS big");
        QVERIFY(runner.isRunning());
        QVERIFY2(listener.said.isEmpty(), "nothing is said from within run()");
        QTRY_VERIFY(listener.isOver());
        QCOMPARE(listener.message, QString());
        QCOMPARE(listener.said, QStringList({"columns", "rows", "finished"}));
        QCOMPARE(listener.columns,
                 QStringList({"n", "empty", "a \"b\"", "big", "half", "noBytes", "bytes", "big"}));
        QCOMPARE(listener.rows.size(), 1);
        const QVariantList row = listener.rows[0];
        QVERIFY(row[0].isNull());
        QVERIFY(!row[1].isNull());
        QCOMPARE(row[1].toString(), QString());
        QCOMPARE(row[2].toString(), QStringLiteral("ä😀"));
        QCOMPARE(row[3].toLongLong(), Q_INT64_C(9007199254740993));
        QCOMPARE(row[4].toDouble(), 0.5);
        QVERIFY(!row[5].isNull());
        QCOMPARE(row[5].type(), QVariant::ByteArray);
        QCOMPARE(row[6].toByteArray(), QByteArray("\0\xff", 2));
        QVERIFY(!runner.isRunning());
    }

    void theCapEndsFetchingAndSaysThatThereWasMore() {
        const SqliteFile file;
        StatementRunner runner(file.open());
        Listener listener(runner);
        StatementOptions options;
        options.rowCap = 2500;
        runner.run(endlessRows, options);
        QTRY_VERIFY(listener.isOver());
        QCOMPARE(listener.rows.size(), 2500);
        QCOMPARE(listener.summary.rows, qint64(2500));
        QVERIFY(listener.summary.capped);

        Listener exact(runner);
        options.rowCap = 2;
        runner.run("SELECT 1 UNION ALL SELECT 2", options);
        QTRY_VERIFY(exact.isOver());
        QCOMPARE(exact.summary.rows, qint64(2));
        QVERIFY(!exact.summary.capped);
    }

    void cancelEndsAStatementThatRunsOrHasNotBegun() {
        const SqliteFile file;
        StatementRunner runner(file.open());
        for (int i = 0; i < 50; ++i) {
            Listener listener(runner);
            runner.run(i % 10 ? endlessWithoutRows : endlessRows, uncapped());
            if (i < 20) QTRY_VERIFY(listener.said.contains("columns"));
            runner.cancel();
            QTRY_VERIFY(listener.isOver());
            QCOMPARE(listener.said.last(), QStringLiteral("cancelled"));
        }
    }

    void theTimeoutEndsTheStatementWithAMessage() {
        const SqliteFile file;
        StatementRunner runner(file.open());
        Listener listener(runner);
        StatementOptions options;
        options.timeoutMs = 30;
        runner.run(endlessWithoutRows, options);
        QTRY_VERIFY(listener.isOver());
        QCOMPARE(listener.message, QStringLiteral("The statement was stopped after 30 ms."));
        QCOMPARE(listener.position, -1);
    }

    void rowsArriveInOrderUntilASecondRunSilencesTheFirst() {
        const SqliteFile file;
        StatementRunner runner(file.open());
        Listener listener(runner);
        runner.run(endlessRows, uncapped());
        QTRY_VERIFY(listener.rows.size() > 20000);
        QVERIFY(listener.batches > 10);
        for (int i = 0; i < listener.rows.size(); ++i)
            if (listener.rows[i][0].toInt() != i + 1) QFAIL("a row is missing or out of order");
        Listener second(runner);
        runner.run("SELECT 'second' AS word");
        QTRY_VERIFY(second.isOver());
        QCOMPARE(second.said, QStringList({"columns", "rows", "finished"}));
        QCOMPARE(second.rows, QVector<QVariantList>{{"second"}});
    }

    void anErrorIsTheServersWithItsPlaceAndTheRowsBeforeIt() {
        const SqliteFile file(
            "CREATE TABLE t (a); INSERT INTO t VALUES ('1'), ('{}'), ('no json')");
        ConnectionSettings settings = file.settings();
        settings.readOnly = true;
        Database database;
        QCOMPARE(database.open(settings), QString());
        const struct {
            const char* sql;
            const char* message;
            int position;
            int rows;
        } cases[] = {
            {"SELECT 'ä😀' FORM t", "near \"t\": syntax error", 18, 0},
            {"SELECT 1 FROM nowhere", "no such table: nowhere", -1, 0},
            {"INSERT INTO t VALUES (1)", "attempt to write a readonly database", -1, 0},
            {"SELECT json_type(a) FROM t", "malformed JSON", -1, 2},
        };
        StatementRunner runner(database);
        for (const auto& wanted : cases) {
            Listener listener(runner);
            runner.run(QString::fromUtf8(wanted.sql));
            QTRY_VERIFY(listener.isOver());
            QCOMPARE(listener.said.last(), QStringLiteral("failed"));
            QCOMPARE(listener.message, QString::fromUtf8(wanted.message));
            QCOMPARE(listener.position, wanted.position);
            QCOMPARE(listener.rows.size(), wanted.rows);
        }
        for (const char* const nothing : {"", "  -- only a comment"}) {
            Listener empty(runner);
            runner.run(nothing);
            QTRY_VERIFY(empty.isOver());
            QVERIFY(!empty.message.isEmpty());
        }
    }

    void aStatementWithoutRowsFinishesWithoutColumns() {
        const SqliteFile file("CREATE TABLE t (a)");
        StatementRunner runner(file.open());
        Listener listener(runner);
        runner.run("INSERT INTO t VALUES (1), (2)");
        QTRY_VERIFY(listener.isOver());
        QCOMPARE(listener.said, QStringList({"columns", "finished"}));
        QVERIFY(listener.columns.isEmpty());
        QCOMPARE(listener.summary.rowsAffected, qint64(2));
    }

    void aTransactionThatIsLeftOpenIsRolledBackAndReported() {
        const SqliteFile file("CREATE TABLE t (a)");
        StatementRunner runner(file.open());
        Listener listener(runner);
        runner.run("BEGIN EXCLUSIVE");
        QTRY_VERIFY(listener.isOver());
        QCOMPARE(listener.said.last(), QStringLiteral("failed"));
        QVERIFY(file.open().isOpen());  // throws while the file is locked
    }

    void aLockIsWaitedForAndTheWaitCanBeCancelled() {
        SqliteFile file("CREATE TABLE t (a)");
        ConnectionSettings settings = file.settings();
        settings.busyTimeoutMs = 600000;
        Database database;
        QCOMPARE(database.open(settings), QString());
        StatementRunner runner(database);
        file.execute("BEGIN EXCLUSIVE");
        for (int i = 0; i < 3; ++i) {  // while it opens its connection, and before
            Listener waiting(runner);
            runner.run("INSERT INTO t VALUES (1)");
            if (i) QTest::qWait(0);
            runner.cancel();
            QTRY_VERIFY(waiting.isOver());
            QCOMPARE(waiting.said, QStringList({"cancelled"}));
        }
        Listener patient(runner);
        runner.run("INSERT INTO t VALUES (2)");
        file.execute("COMMIT");
        QTRY_VERIFY(patient.isOver());
        QCOMPARE(patient.said.last(), QStringLiteral("finished"));
        file.execute("BEGIN EXCLUSIVE");
        Listener statement(runner);
        runner.run("INSERT INTO t VALUES (3)");
        QTest::qWait(0);
        runner.cancel();
        QTRY_VERIFY(statement.isOver());
        QCOMPARE(statement.said.last(), QStringLiteral("cancelled"));
    }

    void aRunnerCanGoWhileItsStatementRuns() {
        const SqliteFile file;
        const Database database = file.open();
        for (const QString& sql : {endlessRows, endlessWithoutRows}) {
            for (int i = 0; i < 20; ++i) {
                auto runner = std::make_unique<StatementRunner>(database);
                Listener listener(*runner);
                runner->run(sql, uncapped());
                if (i % 2) QTRY_VERIFY(listener.said.contains("columns"));
            }
        }
    }

    void aSlotMayDestroyTheRunnerOrStartTheNextRun() {
        const SqliteFile file;
        const Database database = file.open();
        auto* const runner = new StatementRunner(database);
        bool isGone = false;
        connect(runner, &QObject::destroyed, this, [&isGone] { isGone = true; });
        connect(runner, &StatementRunner::rowsReady, this, [runner] { delete runner; });
        runner->run(endlessRows, uncapped());
        QTRY_VERIFY(isGone);

        StatementRunner chain(database);
        int runs = 0;
        connect(&chain, &StatementRunner::columnsReady, this, [&chain, &runs] {
            if (++runs < 5) chain.run("SELECT 5");
        });
        QSignalSpy finished(&chain, &StatementRunner::finished);
        chain.run(endlessRows, uncapped());
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(runs, 5);
    }

    void closingTheDatabaseFailsStatementsAndClosesIdleConnections() {
        const SqliteFile file;
        Database database = file.open();
        // Connections of earlier tests may still be closing.
        const QStringList before = QSqlDatabase::connectionNames();
        const auto opened = [&before] {
            QStringList names = QSqlDatabase::connectionNames();
            for (const QString& name : before)
                names.removeAll(name);
            return names.size();
        };
        StatementRunner runner(database);
        Listener listener(runner);
        runner.run(endlessWithoutRows);
        QTRY_VERIFY(listener.said.contains("columns"));
        QVERIFY(opened() > 0);
        database.close();
        QTRY_VERIFY(listener.isOver());
        QCOMPARE(listener.message, QStringLiteral("The database is closed."));
        QTRY_COMPARE(opened(), 0);
        Listener late(runner);
        runner.run("SELECT 1");
        QTRY_VERIFY(late.isOver());
        QCOMPARE(late.message, QStringLiteral("The database is closed."));
    }
};

QTEST_MAIN(StatementRunnerTest)
#include "statement_runner_test.moc"
