#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine/candidate_tree.h"
#include "engine/modification_check.h"
#include "engine/refresh_count.h"
#include "engine/retired_parts.h"
#include "model/components.h"

namespace QB {

/// What outlives an engine while tasks that it started still run: they capture this core by
/// shared_ptr, and touch the engine itself only inside runIfAlive with the engine's id: on the main
/// thread, or for a few instructions that wait for nothing.
///
/// Order of locks: identifierTreeMutex, then queryComponentAccessMutex; the others are innermost
/// and held for a few instructions.
class QBEngineCore {
public:
    /// A node to fetch: its names below the root, and whether to fetch it though it has children.
    using RefreshRequest = std::pair<std::vector<std::string>, bool>;

    QBEngineCore() = default;
    ~QBEngineCore();
    QBEngineCore(const QBEngineCore&) = delete;
    QBEngineCore& operator=(const QBEngineCore&) = delete;

    /// How a worker reads a statement that it was handed earlier: runs @p read under
    /// queryComponentAccessMutex if the component with @p componentId still exists, else nothing.
    /// True if @p read ran. Statements, and all that edits detach from them, are destroyed only
    /// under this mutex, so the whole statement stays for the length of @p read.
    ///
    ///     const auto core = engine->core();                                     // main thread
    ///     auto* statement = engine->topLevelQueryComponent(0);
    ///     const long id = statement->id();
    ///     ... on the worker:  core->withLiveComponent(id, [&] {
    ///         text = generate(core->addressNow(statement, id));
    ///     });
    ///
    /// @p read must not wait for the main thread. Do not call this from inside a runIfAlive with a
    /// component's id: the one who destroys that component holds the mutex and waits for the block.
    /// Thread: any, also after the engine is gone.
    bool withLiveComponent(long componentId, const std::function<void()>& read);
    /// Where the statement or derived table with that id is now, of which an address was kept: an
    /// undo puts another object with the same id into its place. For use in @p read above; null if
    /// it is none of that class.
    template <typename Layer>
    Layer* addressNow(Layer* kept, long componentId) const {
        const auto found = m_replaced.find(componentId);
        return found == m_replaced.end() ? kept : dynamic_cast<Layer*>(found->second);
    }
    /// Notes where the statements and derived tables are after a restore, which has given all of
    /// them other addresses. The caller holds queryComponentAccessMutex.
    void noteReplaced(const std::vector<Component::AbstractQueryComponent*>& layers);

    void setUpdater(const QBCandidateChildrenUpdater& updater);
    /// A copy, so that no lock is held while it runs.
    QBCandidateChildrenUpdater updater() const;
    void setSearcher(const QBForeignKeySearcher& searcher);
    QBForeignKeySearcher searcher() const;
    void setConstraintSearcher(const QBForeignKeyConstraintSearcher& searcher);
    QBForeignKeyConstraintSearcher constraintSearcher() const;
    /// The foreign keys between @p object and @p others, each once, in the byte order of their
    /// first pairs; the pairs of a key in the order that the host gives. Without a searcher that
    /// tells keys apart, the pairs of the other searcher between the same two tables count as one
    /// key as long as no field occurs twice in it, in byte order.
    /// Asks the host's function on this thread, with no lock held; what that throws goes through.
    std::vector<QBForeignKeyConstraint> foreignKeys(
        const QBIdentifierObjectPath& object, const std::set<QBIdentifierObjectPath>& others) const;

    void addRequest(RefreshRequest request);
    /// All waiting requests; the queue is empty afterwards.
    std::vector<RefreshRequest> takeRequests();

    /// Guards the statements: held for a block, a conversion or a text generation, never while a
    /// notification is sent or a thread waits.
    std::recursive_mutex queryComponentAccessMutex;
    /// Held for one request of a refresh with its server queries, so that two tasks do not fill a
    /// node twice. Readers of candidates never take it. Recursive, since on a thread that is main
    /// at the same time the notifications of one refresh may set off another.
    std::recursive_mutex identifierTreeMutex;

    CandidateTree candidates;
    RetiredParts retired;
    ModificationCheck modificationCheck;  ///< guarded by queryComponentAccessMutex
    RefreshCount runningRefreshes;
    /// Parses that were asked for and not delivered.
    std::atomic<int> runningParseCount{0};
    std::atomic<unsigned long> userModificationCount{0};  ///< see QBEngine

private:
    mutable std::mutex m_callbackMutex;
    QBCandidateChildrenUpdater m_updater;
    QBForeignKeySearcher m_searcher;
    QBForeignKeyConstraintSearcher m_constraintSearcher;
    std::mutex m_requestMutex;
    std::vector<RefreshRequest> m_requests;
    /// Of the last restore, by id; guarded by queryComponentAccessMutex. What it replaced is freed
    /// when it has been announced, so an id in here that is alive is alive at that address.
    std::unordered_map<long, Component::AbstractQueryComponent*> m_replaced;  // not owned
};

}  // namespace QB
