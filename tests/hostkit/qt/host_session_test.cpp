#include "hostkit/host_session.h"

#include <QtTest>
#include <QtWidgets>
#include <memory>

#include "../sqlite_file.h"
#include "engine/engine_linux.h"
#include "hostkit/schema_reader.h"
#include "hostkit/statement_runner.h"
#include "hostkit/threads.h"
#include "model/callbacks.h"

using namespace QB;
using namespace QB::HostKit;
using QB::Test::SqliteFile;

namespace {

QStringList childNames(const QBEngine& engine, const QBIdentifierCandidate* node) {
    QStringList names;
    for (const auto& child : engine.childrenSnapshot(node))
        names << QString::fromStdString(child.name);
    return names;
}

void request(QBEngine& engine, const std::vector<std::string>& path) {
    engine.addRefreshIdentifierCandidateChildrenRequest(path, true);
    engine.refreshRequestedIdentifierCandidateChildren(true);
}

const std::string shopScript =
    "CREATE TABLE customer (id INTEGER PRIMARY KEY, name);"
    "CREATE TABLE orders (id INTEGER PRIMARY KEY, customer REFERENCES customer)";

}  // namespace

class HostSessionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        installCallbacks();
        m_errors.clear();
        setErrorHandler([this](const std::string& text) { m_errors.push_back(text); });
    }

    void theEngineLearnsTheDatabaseAndWhatAReloadFinds() {
        SqliteFile file(shopScript);
        QBEngine_LINUX engine;
        HostSession session(file.open(), &engine);
        QCOMPARE(engine.databaseType(), DatabaseTypeSQLite);
        QCOMPARE(engine.databaseVersion(), sqlite3_libversion_number());
        QCOMPARE(engine.currentSchema(), std::string("main"));
        QTRY_COMPARE(childNames(engine, nullptr), QStringList({"main"}));
        request(engine, {"main", "orders"});
        auto* const schema = engine.findChildCandidate(nullptr, "main");
        QTRY_COMPARE(childNames(engine, schema), QStringList({"customer", "orders"}));
        auto* const orders = engine.findChildCandidate(schema, "orders");
        QTRY_COMPARE(childNames(engine, orders), QStringList({"id", "customer"}));
        const QBForeignKeys keys =
            engine.triggerForeignKeySearcher({"main", "orders"}, {{"main", "customer"}});
        QCOMPARE(keys.size(), std::size_t(1));
        QCOMPARE(keys.begin()->first.field, std::string("customer"));
        const auto one =
            engine.triggerForeignKeyConstraintSearcher({"main", "customer"}, {{"main", "orders"}});
        QCOMPARE(one.size(), std::size_t(1));
        QCOMPARE(one[0].size(), std::size_t(1));
        QCOMPARE(one[0][0].second.field, std::string("id"));

        file.execute("ALTER TABLE orders ADD COLUMN total; CREATE TABLE town (id)");
        session.reloadCandidates();
        QTRY_COMPARE(childNames(engine, schema), QStringList({"customer", "orders", "town"}));
        QTRY_COMPARE(childNames(engine, orders), QStringList({"id", "customer", "total"}));
        QVERIFY(m_errors.empty());
    }

    void anotherSessionShowsOnlyItsOwnObjects() {
        const SqliteFile first(shopScript);
        const SqliteFile second("CREATE TABLE other (x)");
        QBEngine_LINUX engine;
        auto session = std::make_unique<HostSession>(first.open(), &engine);
        request(engine, {"main"});
        QTRY_VERIFY(engine.findChildCandidate(nullptr, "main"));
        auto* const oldSchema = engine.findChildCandidate(nullptr, "main");
        QTRY_COMPARE(childNames(engine, oldSchema).size(), 2);
        session = std::make_unique<HostSession>(second.open(), &engine);
        QTRY_VERIFY(engine.findChildCandidate(nullptr, "main") != oldSchema &&
                    engine.findChildCandidate(nullptr, "main"));
        request(engine, {"main"});
        QTRY_COMPARE(childNames(engine, engine.findChildCandidate(nullptr, "main")),
                     QStringList({"other"}));
    }

    void anErrorIsReportedAndTheTreeStays() {
        SqliteFile file(shopScript);
        QBEngine_LINUX engine;
        const HostSession session(file.open(), &engine);
        QTRY_COMPARE(childNames(engine, nullptr), QStringList({"main"}));
        file.execute("CREATE TABLE more (x); BEGIN EXCLUSIVE");
        request(engine, {"main"});
        QTRY_VERIFY(!m_errors.empty());
        QVERIFY2(QString::fromStdString(m_errors[0]).contains("database is locked"),
                 m_errors[0].c_str());
        QCOMPARE(childNames(engine, nullptr), QStringList({"main"}));
        file.execute("COMMIT");
        request(engine, {"main"});
        auto* const schema = engine.findChildCandidate(nullptr, "main");
        QTRY_COMPARE(childNames(engine, schema).size(), 3);
    }

    void sessionEngineAndDatabaseMayGoInAnyOrderWhileFetchesRun() {
        std::string script = "BEGIN;";
        for (int i = 0; i < 300; ++i)
            script += "CREATE TABLE t" + std::to_string(i) + " (a, b, c);";
        const SqliteFile file(script + "COMMIT;");
        for (int order = 0; order < 24; ++order) {
            auto database = std::make_unique<Database>(file.open());
            auto engine = std::make_unique<QBEngine_LINUX>();
            auto session = std::make_unique<HostSession>(*database, engine.get());
            request(*engine, {"main"});
            request(*engine, {"main", "t7"});
            if (order % 4 == 1) QTRY_VERIFY(engine->findChildCandidate(nullptr, "main"));
            if (order % 4 == 2) QTest::qWait(0);
            if (order % 3 == 0) engine.reset();
            if (order % 3 == 1) database->close();
            session.reset();
            if (order % 2 == 0) database.reset();
            engine.reset();
        }
        QVERIFY2(m_errors.empty(), m_errors.empty() ? "" : m_errors[0].c_str());
    }

    void openingInTheBackgroundComesBackOnThisThread() {
        const SqliteFile file(shopScript);
        Database opened;
        QString error;
        Database::openInBackground(file.settings(), [&](const Database& database, const QString&) {
            QCOMPARE(QThread::currentThread(), qApp->thread());
            opened = database;
        });
        QTRY_VERIFY(opened.isOpen());
        Database::openInBackground(ConnectionSettings::sqliteFile("/nowhere.db"),
                                   [&](const Database& database, const QString& text) {
                                       QVERIFY(!database.isOpen());
                                       error = text;
                                   });
        QTRY_COMPARE(error, QStringLiteral("There is no file /nowhere.db."));
    }

    void theDefaultErrorBoxDoesNotBlockAndTakesFurtherErrors() {
        setErrorHandler(nullptr);
        reportError("first <b>error</b>");
        reportError("second");
        reportError("second");
        const auto boxes = QApplication::topLevelWidgets();
        QMessageBox* box = nullptr;
        for (QWidget* const widget : boxes)
            if (auto* const found = qobject_cast<QMessageBox*>(widget)) box = found;
        QVERIFY(box && box->isVisible() && !box->isModal());
        QCOMPARE(box->text(), QStringLiteral("first <b>error</b>\nsecond"));
        QTest::mouseClick(box->button(QMessageBox::Close), Qt::LeftButton);
        QTRY_VERIFY(!QApplication::activeModalWidget());
    }

    void theThemeFollowsThePaletteUntilItIsSet() {
        const QPalette light = QApplication::palette();
        QVERIFY(!Callback::isDarkTheme());
        QApplication::setPalette(QPalette(QColor(40, 40, 40)));
        QVERIFY(Callback::isDarkTheme());
        setDarkTheme(false);
        QVERIFY(!Callback::isDarkTheme());
        followPaletteTheme();
        QVERIFY(Callback::isDarkTheme());
        QApplication::setPalette(light);
    }

    /// Runs last: what it leaves running is ended by the application's end.
    void theApplicationMayEndWhileAStatementRuns() {
        static const SqliteFile file;
        auto* const runner = new StatementRunner(file.open(), qApp);
        QSignalSpy columns(runner, &StatementRunner::columnsReady);
        runner->run(
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
            "SELECT count(*) FROM n");
        QTRY_COMPARE(columns.count(), 1);
    }

private:
    std::vector<std::string> m_errors;
};

QTEST_MAIN(HostSessionTest)
#include "host_session_test.moc"
