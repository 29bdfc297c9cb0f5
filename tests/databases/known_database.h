#pragma once

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <functional>
#include <string>
#include <vector>

#include "engine/identifier_candidate.h"
#include "live/live_server.h"

namespace QB::Test {

/// The folders of JOINERY_DATABASES that have a script for this server.
QStringList databasesFor(const LiveServer& server);

/// One of them, loaded on the server for the life of the object, and what the server's own
/// catalogue says of its keys. None of the code under test has a hand in this.
class KnownDatabase {
public:
    KnownDatabase(const LiveServer& server, LiveConnection& connection, const QString& name);
    ~KnownDatabase();
    KnownDatabase(const KnownDatabase&) = delete;
    KnownDatabase& operator=(const KnownDatabase&) = delete;

    std::vector<QBIdentifierObjectPath> tables;  ///< in byte order
    std::vector<QBForeignKeyConstraint> keys;    ///< in byte order

    /// Of SQLite: where it lies.
    QString file() const { return m_folder.filePath(QStringLiteral("known.db")); }

    /// What the server says against a statement; empty if it would run it.
    QString refusal(const std::string& sql) const;

private:
    void load(const QByteArray& script);
    std::vector<std::vector<std::string>> rows(const char* sql) const;
    void readKeys(const char* sql);

    const LiveServer& m_server;
    LiveConnection& m_connection;
    const QString m_name;  ///< on the server, and of the connection
    const QTemporaryDir m_folder;
};

}  // namespace QB::Test
