#include "hostkit/host_session.h"

#include <mutex>

#include "engine/engine_linux.h"
#include "hostkit/schema_reader.h"
#include "hostkit/threads.h"

namespace QB::HostKit {

/// What the engine's functions hold on to. The session empties it when it goes, so that an engine
/// that lives on does not keep the database open.
struct HostSession::Shared {
    explicit Shared(const Database& openDatabase) : database(openDatabase) {}

    Database current() {
        const std::lock_guard lock(mutex);
        return database;
    }

    void end() {
        Database last;
        const std::lock_guard lock(mutex);
        std::swap(last, database);
    }

    /// True once: what another session left in the tree is not ours to keep.
    bool takeFirstFill() {
        const std::lock_guard lock(mutex);
        return std::exchange(isFirstFill, false);
    }

    void fill(IQBIdentifierCandidateAccessor* accessor, QBIdentifierCandidate* node) {
        const Database open = current();
        if (!open.isOpen()) return;
        if (!node && takeFirstFill()) accessor->clearChildren(nullptr);
        const QString error = SchemaReader(open).fillChildren(accessor, node);
        // A database that was closed meanwhile is no error to tell the user.
        if (!error.isEmpty() && open.isOpen()) reportError(error.toStdString());
    }

    /// @p find is one of the reader's two forms of the search.
    template <typename Find>
    auto search(Find find, const QBIdentifierObjectPath& object,
                const std::set<QBIdentifierObjectPath>& others) {
        const Database open = current();
        QString error;
        auto keys = (SchemaReader(open).*find)(object, others, &error);
        if (!error.isEmpty() && open.isOpen()) reportError(error.toStdString());
        return keys;
    }

    std::mutex mutex;
    Database database;        // guarded by mutex
    bool isFirstFill = true;  // guarded by mutex
};

namespace {

/// Asks for every node below @p node that was fetched before.
void requestFetchedBelow(QBEngine& engine, const QBIdentifierCandidate* node) {
    for (const QBIdentifierCandidateSnapshot& child : engine.childrenSnapshot(node)) {
        if (!child.hasChildren) continue;
        engine.addRefreshIdentifierCandidateChildrenRequest(child.candidate, true);
        requestFetchedBelow(engine, child.candidate);
    }
}

}  // namespace

HostSession::HostSession(const Database& database, QBEngine_LINUX* engine)
    : m_database(database), m_engine(engine), m_shared(std::make_shared<Shared>(database)) {
    engine->registerIdentifierCandidateChildrenUpdater(
        [shared = m_shared](IQBIdentifierCandidateAccessor* accessor, QBIdentifierCandidate* node) {
            shared->fill(accessor, node);
        });
    engine->registerForeignKeySearcher(
        [shared = m_shared](const QBIdentifierObjectPath& object,
                            const std::set<QBIdentifierObjectPath>& others) {
            return shared->search(&SchemaReader::findForeignKeys, object, others);
        });
    engine->registerForeignKeyConstraintSearcher(
        [shared = m_shared](const QBIdentifierObjectPath& object,
                            const std::set<QBIdentifierObjectPath>& others) {
            return shared->search(&SchemaReader::findForeignKeyConstraints, object, others);
        });
    const QBDatabaseInfo info = database.info();
    engine->setDatabaseInfo(info.databaseType, info.databaseVersion);
    engine->setCurrentSchema(database.defaultSchema());
    engine->addRefreshRootIdentifierCandidateChildrenRequest(true);
    engine->refreshRequestedIdentifierCandidateChildren(true);
}

HostSession::~HostSession() {
    m_shared->end();
}

void HostSession::reloadCandidates() {
    m_engine->addRefreshRootIdentifierCandidateChildrenRequest(true);
    requestFetchedBelow(*m_engine, nullptr);
    m_engine->refreshRequestedIdentifierCandidateChildren(true);
}

}  // namespace QB::HostKit
