#include "hostkit/database.h"

#include "hostkit/connection_pool.h"
#include "hostkit/threads.h"
#include "platform/tolk/tolk.h"

namespace QB::HostKit {
namespace {

QString cannotOpenText(const ConnectionSettings& settings, const QString& message) {
    const QString text = Tolk::localizeWithArgs(Tolk::TextCannotOpenDatabase,
                                                settings.displayName().toUtf8().constData(),
                                                message.toUtf8().constData());
    return settings.password.scrub(text);
}

}  // namespace

Database::Database() = default;
Database::~Database() = default;
Database::Database(const Database&) = default;
Database& Database::operator=(const Database&) = default;

QString Database::open(const ConnectionSettings& settings) {
    close();
    const DriverDescription* const description = findDriverDescription(settings.family);
    if (!description) return missingDescriptionText(settings.family);
    const QString problem = description->checkSettings(settings);
    if (!problem.isEmpty()) return settings.password.scrub(problem);
    const auto connections = std::make_shared<ConnectionPool>(settings, *description);
    const QString error = connections->probe();
    if (!error.isEmpty()) return cannotOpenText(settings, error);
    m_connections = connections;
    return QString();
}

void Database::openInBackground(
    const ConnectionSettings& settings,
    std::function<void(const Database& database, const QString& error)> done) {
    postToWorker([settings, done = std::move(done)] {
        Database database;
        const QString error = database.open(settings);
        postToMainThread([done, database, error] { done(database, error); });
    });
}

void Database::close() {
    if (m_connections) m_connections->close();
    m_connections.reset();
}

bool Database::isOpen() const {
    return m_connections && !m_connections->isClosed();
}

ConnectionSettings Database::settings() const {
    return m_connections ? m_connections->settings() : ConnectionSettings();
}

QBDatabaseInfo Database::info() const {
    if (!m_connections) return QBDatabaseInfo();
    return {m_connections->description().family, m_connections->version()};
}

std::string Database::defaultSchema() const {
    return m_connections ? m_connections->description().defaultSchema : std::string();
}

}  // namespace QB::HostKit
