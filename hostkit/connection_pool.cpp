#include "hostkit/connection_pool.h"

#include <QScopedValueRollback>
#include <QSqlDriver>
#include <algorithm>
#include <vector>

#include "hostkit/worker_pool.h"
#include "platform/tolk/tolk.h"

namespace QB::HostKit {
namespace {

struct PoolRegistry {
    std::mutex mutex;
    std::set<ConnectionPool*> pools;  // each enters and leaves by itself
};

/// Never destroyed: pools with static lifetime leave it at exit.
PoolRegistry& poolRegistry() {
    static auto* const registry = new PoolRegistry;
    return *registry;
}

struct OwnConnection {
    std::weak_ptr<ConnectionPool> pool;
    std::unique_ptr<ThreadConnection> connection;

    bool isDead() const {
        const auto alive = pool.lock();
        return !alive || alive->isClosed();
    }
};

/// The calling thread's connections; a thread that ends closes them.
std::vector<OwnConnection>& ownConnections() {
    thread_local std::vector<OwnConnection> connections;
    return connections;
}

QString newConnectionName() {
    static std::atomic<quint64> counter{0};
    return QStringLiteral("joinery-%1").arg(counter.fetch_add(1));
}

}  // namespace

void StopToken::stop() {
    m_isStopped.store(true);
    {
        const std::lock_guard lock(m_mutex);
        if (m_cancel) m_cancel(m_handle);
    }
    if (m_onStop) m_onStop();
}

void StopToken::arm(const QVariant& handle, void (*cancel)(const QVariant&)) {
    const std::lock_guard lock(m_mutex);
    m_handle = handle;
    m_cancel = cancel;
}

void StopToken::disarm() {
    const std::lock_guard lock(m_mutex);
    m_cancel = nullptr;
    m_handle.clear();
}

ThreadConnection::ThreadConnection(const ConnectionPool& pool)
    : m_description(pool.description()), m_name(newConnectionName()) {
    m_watch.busyTimeoutMs = pool.settings().busyTimeoutMs;
}

ThreadConnection::~ThreadConnection() {
    if (!QSqlDatabase::contains(m_name)) return;
    database().close();
    QSqlDatabase::removeDatabase(m_name);
}

QString ThreadConnection::open(const ConnectionPool& pool, const StopToken* token) {
    const QScopedValueRollback<const StopToken*> watched(m_watch.token, token);
    const ConnectionSettings& settings = pool.settings();
    QSqlDatabase connection =
        QSqlDatabase::addDatabase(QString::fromLatin1(m_description.qtDriver), m_name);
    m_description.configure(connection, settings);
    if (!connection.open()) return pool.messageOf(connection.lastError());
    if (m_description.attachWatch) m_description.attachWatch(handle(), &m_watch);
    return settings.password.scrub(m_description.prepareConnection(connection, settings));
}

QVariant ThreadConnection::handle() const {
    return database().driver()->handle();
}

ConnectionPool::ConnectionPool(const ConnectionSettings& settings,
                               const DriverDescription& description)
    : m_settings(settings), m_description(description) {
    const std::lock_guard lock(poolRegistry().mutex);
    poolRegistry().pools.insert(this);
}

ConnectionPool::~ConnectionPool() {
    {
        const std::lock_guard lock(poolRegistry().mutex);
        poolRegistry().pools.erase(this);
    }
    WorkerPool::instance().tidyIdleThreads();
}

ThreadConnection* ConnectionPool::connection(const StopToken& token, QString* error) {
    closeDeadThreadConnections();
    if (isClosed()) {
        *error = Tolk::localize(Tolk::TextDatabaseClosed);
        return nullptr;
    }
    for (const OwnConnection& own : ownConnections())
        if (own.pool.lock().get() == this) return own.connection.get();
    auto fresh = std::make_unique<ThreadConnection>(*this);
    *error = fresh->open(*this, &token);
    if (!error->isEmpty()) return nullptr;
    ownConnections().push_back({weak_from_this(), std::move(fresh)});
    return ownConnections().back().connection.get();
}

QString ConnectionPool::probe() {
    const auto token = std::make_shared<StopToken>();
    enter(token);
    ThreadConnection connection(*this);
    QString error = connection.open(*this, token.get());
    if (error.isEmpty()) error = askVersion(connection);
    leave(token);
    return error;
}

QString ConnectionPool::askVersion(const ThreadConnection& connection) {
    QSqlQuery query(connection.database());
    if (!query.exec(QString::fromLatin1(m_description.versionSql)) || !query.next())
        return messageOf(query.lastError());
    m_version = m_description.parseVersion(query.value(0).toString());
    return QString();
}

void ConnectionPool::close() {
    {
        const std::lock_guard lock(m_mutex);
        m_isClosed = true;
    }
    stopStatements();
    closeDeadThreadConnections();
    WorkerPool::instance().tidyIdleThreads();
}

bool ConnectionPool::isClosed() const {
    const std::lock_guard lock(m_mutex);
    return m_isClosed;
}

void ConnectionPool::stopStatements() {
    std::set<std::shared_ptr<StopToken>> tokens;
    {
        const std::lock_guard lock(m_mutex);
        tokens = m_tokens;
    }
    for (const auto& token : tokens)
        token->stop();
}

QString ConnectionPool::messageOf(const QSqlError& error) const {
    QString message = error.databaseText().trimmed();
    if (message.isEmpty()) message = error.driverText().trimmed();
    if (message.isEmpty()) message = Tolk::localize(Tolk::TextUnknownServerError);
    return m_settings.password.scrub(message);
}

void ConnectionPool::enter(const std::shared_ptr<StopToken>& token) {
    bool isLate = false;
    {
        const std::lock_guard lock(m_mutex);
        m_tokens.insert(token);
        isLate = m_isClosed;
    }
    // Whoever closed the database has not seen this token.
    if (isLate) token->stop();
}

void ConnectionPool::leave(const std::shared_ptr<StopToken>& token) {
    const std::lock_guard lock(m_mutex);
    m_tokens.erase(token);
}

StatementScope::StatementScope(ConnectionPool& pool, std::shared_ptr<StopToken> token)
    : m_pool(pool), m_token(std::move(token)) {
    pool.enter(m_token);
    m_connection = pool.connection(*m_token, &m_error);
    if (!m_connection) return;
    m_connection->m_watch.token = m_token.get();
    m_token->arm(m_connection->handle(), m_connection->description().cancel);
}

StatementScope::~StatementScope() {
    m_pool.leave(m_token);
    m_token->disarm();
    if (m_connection) m_connection->m_watch.token = nullptr;
}

void closeDeadThreadConnections() {
    auto& own = ownConnections();
    own.erase(std::remove_if(own.begin(), own.end(),
                             [](const OwnConnection& entry) { return entry.isDead(); }),
              own.end());
}

void closeAllThreadConnections() {
    ownConnections().clear();
}

void stopAllStatements() {
    const std::lock_guard lock(poolRegistry().mutex);
    for (ConnectionPool* pool : poolRegistry().pools)
        pool->stopStatements();
}

}  // namespace QB::HostKit
