#pragma once

#include <gtest/gtest.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <memory>
#include <ostream>
#include <string>

#include "model/vocabulary.h"

namespace QB::Test {

/// A server that a live test talks to; see with_servers.sh for how it comes to run.
struct LiveServer {
    const char* name;  ///< as in the names of the tests
    DatabaseType family;
    const char* driver;    ///< of QtSql
    const char* variable;  ///< environment variable with the socket; null needs no server
};

inline const LiveServer livePostgreSQL{"PostgreSQL", DatabaseTypePostgreSQL, "QPSQL",
                                       "JOINERY_LIVE_POSTGRESQL"};
inline const LiveServer liveMariaDB{"MariaDB", DatabaseTypeMariaDB, "QMYSQL",
                                    "JOINERY_LIVE_MARIADB"};
inline const LiveServer liveSQLite{"SQLite", DatabaseTypeSQLite, "QSQLITE", nullptr};

inline void PrintTo(const LiveServer& server, std::ostream* out) {
    *out << server.name;
}

/// A connection for the life of the object. Thread: the one that made it.
class LiveConnection {
public:
    explicit LiveConnection(const LiveServer& server);
    ~LiveConnection();
    LiveConnection(const LiveConnection&) = delete;
    LiveConnection& operator=(const LiveConnection&) = delete;

    QSqlDatabase database() const { return QSqlDatabase::database(m_name); }

    /// The first column of the first row as text; a null string if the server refuses the statement
    /// or has no row for it. error() then says why.
    QString value(const QString& sql);

    /// The first column of all rows. A refusal is a failure of the test.
    QStringList column(const QString& sql);

    bool run(const QString& sql);
    const QString& error() const { return m_error; }

private:
    QString m_name;
    QString m_error;
};

/// Names the instances of a test after their servers.
inline std::string serverName(const testing::TestParamInfo<LiveServer>& instance) {
    return instance.param.name;
}

/// Tests that run on several servers.
class OnServer : public testing::TestWithParam<LiveServer> {
protected:
    void SetUp() override;

    int family() const { return GetParam().family; }
    LiveConnection& server() { return *m_connection; }

private:
    std::unique_ptr<LiveConnection> m_connection;
};

}  // namespace QB::Test
