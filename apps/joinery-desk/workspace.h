#pragma once

#include <memory>

#include "engine/engine_linux.h"
#include "hostkit/host_session.h"

namespace QB::Desk {

/// An open database with the engine that holds the query on it. The builder is told of the engine
/// before connect() and looks at another one, or is gone, when the workspace goes. Main thread.
class Workspace {
public:
    explicit Workspace(HostKit::Database database)
        : m_database(std::move(database)), m_engine(std::make_unique<QBEngine_LINUX>()) {}
    ~Workspace();
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    /// Starts the fetching of objects; who wants to see it has the engine already.
    void connect() { m_session = std::make_unique<HostKit::HostSession>(m_database, engine()); }

    const HostKit::Database& database() const { return m_database; }
    QBEngine_LINUX* engine() const { return m_engine.get(); }
    HostKit::HostSession* session() const { return m_session.get(); }

    /// The schema where names without one are looked for.
    QString defaultSchema() const { return QString::fromStdString(m_database.defaultSchema()); }
    /// Null while it is not known.
    QBIdentifierCandidate* defaultSchemaCandidate() const;

private:
    HostKit::Database m_database;
    std::unique_ptr<QBEngine_LINUX> m_engine;
    std::unique_ptr<HostKit::HostSession> m_session;
};

}  // namespace QB::Desk
