#pragma once

#include <memory>

#include "hostkit/database.h"

namespace QB {
class QBEngine_LINUX;
}

namespace QB::HostKit {

/// Binds an open database to an engine: candidates and foreign keys come from the database, the
/// engine knows family, version and current schema, and the root's children are being fetched.
///
/// Errors of a fetch go to reportError (hostkit/threads.h); the node stays as it was.
/// The session, the engine and the database may go in any order while fetches run: what a fetch
/// needs is shared, and after the session has gone fetches find nothing.
/// Thread: main. Needs installCallbacks().
class QB_EXPORT HostSession {
public:
    /// @param engine not owned; only used in here and in the functions below.
    HostSession(const Database& database, QBEngine_LINUX* engine);
    ~HostSession();
    HostSession(const HostSession&) = delete;
    HostSession& operator=(const HostSession&) = delete;

    const Database& database() const { return m_database; }

    /// Fetches the schemas again; the engine must still be there. Returns at once.
    void reloadCandidates();

private:
    struct Shared;
    Database m_database;
    QBEngine_LINUX* m_engine;  // not owned: the host keeps it alive while it calls reloadCandidates
    std::shared_ptr<Shared> m_shared;
};

}  // namespace QB::HostKit
