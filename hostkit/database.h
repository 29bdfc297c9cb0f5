#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "hostkit/connection_settings.h"

namespace QB::HostKit {

class ConnectionPool;

/// An open database: a handle that is cheap to copy, all copies of which are the same database.
///
/// Connections: each thread that works with the database has its own, opened when it is first
/// needed, closed on that thread after close() or when the thread ends; no connection is ever
/// touched from two threads (but for cancelling). What is said to one of them alone (ATTACH, CREATE
/// TEMP TABLE) the others do not know: attach through ConnectionSettings.
/// The database stays open while anyone holds a handle, a session or a running statement.
/// Thread: any.
class QB_EXPORT Database {
public:
    Database();
    ~Database();
    Database(const Database&);
    Database& operator=(const Database&);

    /// Connects, proves by a first read that there is a database, and asks for the version.
    /// What was open before is closed first, and stays closed on an error. A missing file is an
    /// error, never created; an empty file is an empty database.
    /// Blocks for as long as the server takes (a lock: up to busyTimeoutMs): on the main thread
    /// rather use openInBackground.
    /// Returns: empty on success, otherwise the text for the user with the server's message.
    [[nodiscard]] QString open(const ConnectionSettings& settings);

    /// Opens on a worker and calls @p done on the main thread; on an error the handle is not open
    /// and the text says why. Needs installCallbacks().
    static void openInBackground(
        const ConnectionSettings& settings,
        std::function<void(const Database& database, const QString& error)> done);

    /// Cancels what runs and lets go of the connections, for all copies.
    void close();

    bool isOpen() const;

    /// The settings of open(); default ones when not open.
    ConnectionSettings settings() const;

    /// Family and version of the server, ready for QBEngine::setDatabaseInfo.
    QBDatabaseInfo info() const;

    /// Where a name without schema is looked for: "main" for SQLite.
    std::string defaultSchema() const;

    /// The connections, for the kit's own classes; null when not open.
    const std::shared_ptr<ConnectionPool>& connections() const { return m_connections; }

private:
    std::shared_ptr<ConnectionPool> m_connections;
};

}  // namespace QB::HostKit
