#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <set>

#include "hostkit/driver_description.h"

namespace QB::HostKit {

/// Stops the work of one statement, from any thread, once and for all: a stop that comes before the
/// statement has begun is not lost.
class StopToken {
public:
    /// @param onStop called by stop(), on its thread, with no lock held; may be empty.
    explicit StopToken(std::function<void()> onStop = nullptr) : m_onStop(std::move(onStop)) {}

    void stop();
    bool isStopped() const { return m_isStopped.load(); }

private:
    friend class StatementScope;
    void arm(const QVariant& handle, void (*cancel)(const QVariant&));
    void disarm();

    const std::function<void()> m_onStop;
    std::atomic<bool> m_isStopped{false};
    std::mutex m_mutex;
    QVariant m_handle;                            // guarded by m_mutex; valid while armed
    void (*m_cancel)(const QVariant&) = nullptr;  // guarded by m_mutex; null: not armed
};

/// What a connection looks at while it works. Only the connection's thread touches it.
struct ConnectionWatch {
    const StopToken* token = nullptr;  // not owned: set for the length of a StatementScope
    int busyTimeoutMs = 0;
    std::chrono::steady_clock::time_point busySince;

    bool isStopped() const { return token && token->isStopped(); }
};

class ConnectionPool;

/// The connection of one thread to one database; made, used and destroyed on that thread.
class ThreadConnection {
public:
    explicit ThreadConnection(const ConnectionPool& pool);
    ~ThreadConnection();
    ThreadConnection(const ThreadConnection&) = delete;
    ThreadConnection& operator=(const ThreadConnection&) = delete;

    /// @param token stops the opening; may be null.
    /// Returns: empty, or the text for the user.
    QString open(const ConnectionPool& pool, const StopToken* token);

    QSqlDatabase database() const { return QSqlDatabase::database(m_name, false); }
    QVariant handle() const;
    const DriverDescription& description() const { return m_description; }

private:
    friend class StatementScope;
    const DriverDescription& m_description;
    const QString m_name;
    ConnectionWatch m_watch;
};

/// What all handles of an open database share. Thread: any.
class ConnectionPool : public std::enable_shared_from_this<ConnectionPool> {
public:
    ConnectionPool(const ConnectionSettings& settings, const DriverDescription& description);
    ~ConnectionPool();

    const ConnectionSettings& settings() const { return m_settings; }
    const DriverDescription& description() const { return m_description; }

    /// The server's, as QBDatabaseInfo counts it; known after probe(), which comes first of all.
    int version() const { return m_version; }

    /// Connects on the calling thread and lets go again, to see whether it works, and asks for the
    /// version. Returns: empty, or the text for the user.
    QString probe();

    /// Cancels what runs; every thread closes its connection when it next idles.
    void close();
    bool isClosed() const;

    /// Cancels what runs.
    void stopStatements();

    /// The server's message of an error, without the password; never empty.
    QString messageOf(const QSqlError& error) const;

private:
    friend class StatementScope;
    void enter(const std::shared_ptr<StopToken>& token);
    void leave(const std::shared_ptr<StopToken>& token);
    ThreadConnection* connection(const StopToken& token, QString* error);
    QString askVersion(const ThreadConnection& connection);

    const ConnectionSettings m_settings;
    const DriverDescription& m_description;
    int m_version = 0;
    mutable std::mutex m_mutex;
    bool m_isClosed = false;                        // guarded by m_mutex
    std::set<std::shared_ptr<StopToken>> m_tokens;  // guarded by m_mutex: of running statements
};

/// The calling thread's connection for one piece of work, which the token stops, even while the
/// connection is still being opened.
class StatementScope {
public:
    /// @param pool outlives the scope.
    StatementScope(ConnectionPool& pool, std::shared_ptr<StopToken> token);
    ~StatementScope();
    StatementScope(const StatementScope&) = delete;
    StatementScope& operator=(const StatementScope&) = delete;

    /// Null on an error. Stays valid as long as the scope.
    ThreadConnection* connection() const { return m_connection; }
    /// Why there is no connection, for the user.
    const QString& error() const { return m_error; }

private:
    ConnectionPool& m_pool;
    const std::shared_ptr<StopToken> m_token;
    QString m_error;
    ThreadConnection* m_connection = nullptr;  // not owned: the thread's
};

/// Closes the calling thread's connections to databases that have been closed, or all of them.
void closeDeadThreadConnections();
void closeAllThreadConnections();

/// Cancels what runs on any database of the process.
void stopAllStatements();

}  // namespace QB::HostKit
