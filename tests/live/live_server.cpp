#include "live/live_server.h"

#include <QCoreApplication>
#include <QVariant>

namespace QB::Test {
namespace {

/// QtSql finds its drivers through the application object.
class Application : public testing::Environment {
public:
    void SetUp() override {
        if (!qApp) m_application = std::make_unique<QCoreApplication>(m_argc, m_argv);
    }
    void TearDown() override { m_application.reset(); }

private:
    int m_argc = 1;
    char m_name[5] = "live";
    char* m_argv[2] = {m_name, nullptr};
    std::unique_ptr<QCoreApplication> m_application;
};

[[maybe_unused]] const auto* const application = testing::AddGlobalTestEnvironment(new Application);

}  // namespace

LiveConnection::LiveConnection(const LiveServer& server)
    : m_name(QStringLiteral("live %1").arg(server.name)) {
    QSqlDatabase database = QSqlDatabase::addDatabase(server.driver, m_name);
    const QString socket = server.variable ? qEnvironmentVariable(server.variable) : QString();
    if (server.family == DatabaseTypePostgreSQL) {
        database.setHostName(socket);
    } else if (server.family == DatabaseTypeMariaDB) {
        database.setConnectOptions(QStringLiteral("UNIX_SOCKET=") + socket);
    }
    database.setUserName(QStringLiteral("joinery"));
    database.setDatabaseName(server.variable ? QStringLiteral("joinery")
                                             : QStringLiteral(":memory:"));
    if (!database.open()) m_error = database.lastError().text();
}

LiveConnection::~LiveConnection() {
    QSqlDatabase::removeDatabase(m_name);
}

QString LiveConnection::value(const QString& sql) {
    QSqlQuery query(database());
    if (!query.exec(sql)) {
        m_error = query.lastError().text();
        return QString();
    }
    return query.next() ? query.value(0).toString() : QString();
}

QStringList LiveConnection::column(const QString& sql) {
    QStringList values;
    QSqlQuery query(database());
    EXPECT_TRUE(query.exec(sql)) << query.lastError().text().toStdString();
    while (query.next())
        values.append(query.value(0).toString());
    return values;
}

bool LiveConnection::run(const QString& sql) {
    QSqlQuery query(database());
    const bool ok = query.exec(sql);
    if (!ok) m_error = query.lastError().text();
    return ok;
}

void OnServer::SetUp() {
    if (GetParam().variable && !qEnvironmentVariableIsSet(GetParam().variable)) {
        GTEST_SKIP() << "run through with_servers.sh, which starts " << GetParam().name;
    }
    m_connection = std::make_unique<LiveConnection>(GetParam());
    ASSERT_TRUE(m_connection->database().isOpen()) << m_connection->error().toStdString();
}

}  // namespace QB::Test
