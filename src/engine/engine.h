#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/identifier_candidate.h"
#include "model/components.h"
#include "model/element_expressions.h"
#include "model/export.h"
#include "model/variant.h"
#include "model/vocabulary.h"

namespace QB {

class DetachedParts;
class QBEngineCore;
struct RestoredStatement;

/// The parameters of a notification; the pointer that carries them may be null.
using QBNotificationParameters = std::map<std::string, QBVariant>;

/// The one object that holds a query under edit: server family and version, schema, the stack of
/// statement layers, the tree of identifier candidates, and who listens.
///
/// Nothing changes a statement but a block given to modifyInTopLevelQueryComponentElement.
/// Notifications are delivered on the main thread with no lock held.
///
/// Layers: entry 0 is the root, whose statement the engine makes; every later one is the statement
/// of a SQLSubquerySourceComponent in the layer before it and stays owned by that source. The
/// current layer is the last.
///
/// Errors: broken protocol is thrown as a pointer, `throw new std::runtime_error(text)`, to be
/// caught as `std::runtime_error*` and deleted.
/// Ownership: the destructor leaves the root statement in existence, since a worker may be reading
/// it; whoever wants it gone takes topLevelQueryComponent(0) first and destroys it afterwards.
/// Thread: main, except where an operation says any.
class QB_EXPORT QBEngine {
public:
    using Listener = std::function<void(const std::string&, const QBNotificationParameters*)>;
    using ChildrenFetcher = std::function<void(const std::vector<std::vector<std::string>>& paths)>;

    /// The host callbacks are set before. No layer exists yet.
    QBEngine();

    /// Receives every notification after the listeners of its name.
    virtual void notified(std::string name, const QBNotificationParameters* params) = 0;
    /// Calls the listeners of @p name in order of registration, then notified(). Stops when one of
    /// them destroys the engine. Listeners may register and unregister while they run: one that was
    /// unregistered is not called any more, a new one waits for the next notification.
    /// Errors: an empty listener throws std::bad_function_call.
    virtual void notifyChange(const std::string& name, const QBNotificationParameters* params);
    virtual ~QBEngine();
    QBEngine(const QBEngine&) = delete;
    QBEngine& operator=(const QBEngine&) = delete;

    /// The engine's id in the liveness registry. Any thread that knows the engine to exist.
    long id() const { return m_id; }

    /// @name Server
    /// @{

    /// Does nothing if both are unchanged; else starts with a new root statement and announces it.
    /// Close subquery layers first with resetUi().
    void setDatabaseInfo(DatabaseType type, int version);
    QBDatabaseInfo databaseInfo() const;
    DatabaseType databaseType() const;
    int databaseVersion() const;
    std::string currentSchema() const;
    /// Announces a schema that differs.
    void setCurrentSchema(const std::string& schema);
    /// Destroys the root statement, under queryComponentAccessMutex, and pushes a new empty one.
    void dbInfoChanged();

    /// @}
    /// @name Layers
    /// @{

    /// A new statement, null for a family without statement model. The caller owns it.
    Component::AbstractTopLevelQueryComponent* createTopLevelQueryComponentForCurrentDatabase()
        const;
    std::string generateTopLevelQueryComponentRootLayerName() const;
    /// The index of the last layer; -1 before the first setDatabaseInfo.
    int currentTopLevelQueryComponentLayer() const;
    /// Null if there is no layer, or the family has no statement model.
    Component::AbstractTopLevelQueryComponent* currentTopLevelQueryComponent() const;
    /// @p layer is a valid index; it is not checked.
    Component::AbstractTopLevelQueryComponent* topLevelQueryComponent(int layer) const;
    /// @p layer is a valid index; it is not checked.
    std::string topLevelQueryComponentLayerName(int layer) const;
    /// @p statement stays owned by its subquery source.
    void pushNewLayerTopLevelQueryComponent(Component::AbstractTopLevelQueryComponent* statement,
                                            const std::string& name);
    /// The statement of the popped layer keeps all edits: it is part of its parent's tree.
    /// Errors: throws a pointer, "popCurrentLayerTopLevelQueryComponent: You cannot pop the root
    /// layer", with one layer or none.
    void popCurrentLayerTopLevelQueryComponent();
    /// Pops down to the root layer and tells the widgets to reset; the root statement stays.
    void resetUi();

    /// @}
    /// @name Statements
    /// @{

    /// The one way to change a statement: runs @p block with an element under
    /// queryComponentAccessMutex and, if it returns true, announces the change afterwards, with no
    /// lock held.
    ///
    /// T is a pointer to the class of the element, or ELEMAbstractTopLevelQueryExpr* or void* for
    /// code that works the same on several. An element of another class, or none (no statement, no
    /// such layer), prints "Inconsistent component requested"; the block does not run.
    /// The block must not wait for the main thread, must not throw and must not start another
    /// modification. What it detaches goes to retire().
    /// @p sender is handed to listeners, who compare it by address; it is never looked into.
    /// Errors: throws a pointer, "No modification block", if @p block is empty.
    /// Thread: any; in practice main. The notification is posted to the main thread.
    template <typename T>
    void modifyInTopLevelQueryComponentElement(TopLevelQueryComponentElementEnum element, int layer,
                                               std::function<bool(T)> block, void* sender) {
        UntypedBlock untyped;
        if (block) {
            untyped = [&block](ELEMAbstractTopLevelQueryExpr* expression) {
                T typed = dynamic_cast<T>(expression);
                if (!typed) return BlockOutcome::Inconsistent;
                return block(typed) ? BlockOutcome::Changed : BlockOutcome::Unchanged;
            };
        }
        runModification(element, layer, untyped, sender);
    }

    /// Null for a layer outside the stack and for one without statement.
    ELEMAbstractTopLevelQueryExpr* modify_obtainElement(TopLevelQueryComponentElementEnum element,
                                                        int layer) const;
    /// Posts "TopLevelQueryComponentElementModifiedNotification" to the main thread. Any thread.
    void modify_notify(TopLevelQueryComponentElementEnum element, int layer, void* sender);

    /// Parks what the running block took out of the statement: listeners and workers may still
    /// point at it. Freed after the block's notification was delivered, once no column of the
    /// statement and no layer refers to it; the rest goes with the engine and its tasks.
    /// Thread: inside a modification block.
    void retire(DetachedParts&& parts);

    /// The root statement with all below it, see model/statement_record.h; empty without one.
    /// Takes queryComponentAccessMutex.
    std::string recordQuery() const;
    /// The ids of the subquery sources that lead to the current layer, the outermost first.
    std::vector<long> layerPath() const;
    /// Puts what @p record holds into the root statement, and opens the layers of @p layerPath as
    /// far as they are there. Announces it: the layers, if other ones are open than before, and all
    /// elements of the current layer with @p sender. What stood there is retired.
    /// Waits for no parse: one that is running replaces its statement when it ends.
    /// Errors: false for a record that cannot be read or is one of another root statement than the
    /// present one; nothing changes. Thread: main, outside any block.
    bool restoreQuery(const std::string& record, const std::vector<long>& layerPath, void* sender);

    /// While one exists, the modifications on this thread follow from others that were announced
    /// before: references are repaired, proposals made, nothing is done that a user has asked for.
    /// Their notifications carry "followsUp": true if nothing else has been done since.
    class QB_EXPORT FollowUp {
    public:
        /// From whatever was announced last.
        explicit FollowUp(QBEngine* engine);
        /// From what was the last when userModificationCount() told @p count.
        FollowUp(QBEngine* engine, unsigned long count);
        ~FollowUp();
        FollowUp(const FollowUp&) = delete;
        FollowUp& operator=(const FollowUp&) = delete;

    private:
        friend class QBEngine;
        static const FollowUp* innermostFor(const QBEngineCore* core);

        const std::shared_ptr<QBEngineCore> m_core;
        const bool m_isNext;      ///< nothing else has been done since
        FollowUp* const m_outer;  // not owned: further down the stack of this thread
    };

    /// How many modifications have been made that follow from no other one. Thread: any.
    unsigned long userModificationCount() const;

    /// The text of the root statement, whatever layer is current; empty without statement or
    /// generator. Takes no lock: another thread than main locks queryComponentAccessMutex() first.
    std::string buildQuery() const;

    /// Parses @p text on a dispatched thread, under queryComponentAccessMutex, for the statement of
    /// the layer that is current by then. Returns at once. Then, on the main thread and in this
    /// order: the content of the statement is replaced, by nothing if the text cannot be read;
    /// @p completion (may be empty) is called with whether the text was read and where in it the
    /// statement stands, location -1 if none was found;
    /// "TopLevelQueryComponentElementModifiedNotification" is sent with the engine as sender; after
    /// a failure "ParsingQueryUnsupportedNotification". Afterwards the fields of the tables are
    /// fetched (see refreshRequestedIdentifierCandidateChildren, with its errors).
    /// What the statement held is kept until the notification was delivered.
    /// If the engine goes before the end, nothing more is called. Parses are not merged.
    void parseQuery(const std::string& text, std::function<void(bool, QBRange)> completion);

    /// True from parseQuery until @p completion of the last parse was called. Any thread.
    bool isParsingQuery() const;

    /// Guards the statements; recursive. Held only for a block, a conversion or a text generation.
    /// Any thread that knows the engine to exist; others go through core().
    std::recursive_mutex& queryComponentAccessMutex();

    /// @}
    /// @name Listeners
    /// @{

    /// Copies @p listener and returns a token for unregisterNotifyChangeListener. The listener
    /// stays until it is unregistered.
    long registerNotifyChangeListener(const std::string& name, const Listener& listener);
    /// Without effect if the token is not there.
    void unregisterNotifyChangeListener(const std::string& name, long token);

    /// @}
    /// @name Identifier candidates
    /// @{

    /// Replaces the function that fills a node's children (null: the root's) through the accessor.
    /// It runs on the thread of the refresh, may query the server, and must not wait for the main
    /// thread. It may throw: the node then keeps what it has, and the exception leaves the task
    /// (see refreshRequestedIdentifierCandidateChildren). Any thread.
    void registerIdentifierCandidateChildrenUpdater(const QBCandidateChildrenUpdater& updater);
    /// Replaces the function that finds the foreign keys between an object and others; referencing
    /// field first. Any thread.
    void registerForeignKeySearcher(const QBForeignKeySearcher& searcher);
    /// Replaces the function that finds the same keys one by one; where it is set it is asked
    /// instead of the other one. Any thread.
    void registerForeignKeyConstraintSearcher(const QBForeignKeyConstraintSearcher& searcher);
    /// Calls the updater, if one is set, on this thread.
    void triggerIdentifierCandidateChildrenUpdater(IQBIdentifierCandidateAccessor* accessor,
                                                   QBIdentifierCandidate* node) const;
    /// What the searcher finds; nothing if none is set. A worker calls core()->searcher() instead.
    QBForeignKeys triggerForeignKeySearcher(const QBIdentifierObjectPath& object,
                                            const std::set<QBIdentifierObjectPath>& others) const;
    /// The keys one by one, in the order of their first pairs; see QBEngineCore::foreignKeys.
    std::vector<QBForeignKeyConstraint> triggerForeignKeyConstraintSearcher(
        const QBIdentifierObjectPath& object, const std::set<QBIdentifierObjectPath>& others) const;

    /// Requests wait until refreshRequestedIdentifierCandidateChildren. @p force fetches a node
    /// that already has children. Any thread.
    void addRefreshRootIdentifierCandidateChildrenRequest(bool force);
    void addRefreshIdentifierCandidateChildrenRequest(const std::vector<std::string>& path,
                                                      bool force);
    /// Null stands for the root.
    void addRefreshIdentifierCandidateChildrenRequest(QBIdentifierCandidate* candidate, bool force);
    /// Works the waiting requests off, on a dispatched thread if @p async, else here. Each fetch is
    /// framed by the Begun and Ended notifications on the main thread, for which the task waits.
    ///
    /// Errors: with no updater, throws a pointer, "identCand: Updater not set"; that, and whatever
    /// an updater throws, leaves the task after the Ended notification: to the caller if not
    /// @p async, else to the host's dispatched thread, whose function has to catch it. All locks
    /// are free by then and the requests left over are dropped.
    /// Not @p async on the main thread only if the host runs main-thread closures at once there and
    /// no other refresh is running; what its notifications set off may refresh again.
    void refreshRequestedIdentifierCandidateChildren(bool async);
    /// For a worker that needs the children of some nodes before it goes on: a function that it
    /// takes along, and that fetches those nodes at once, on the calling thread, unless they have
    /// children. The requests that wait are left to who made them.
    /// Notifications, threads and errors are those of a refresh that is not async. The function
    /// may be kept and called as long as one likes: when the engine is gone it does nothing.
    ChildrenFetcher identifierCandidateChildrenFetcher();
    /// A hint for a wait indicator: may be false for a while during a refresh, and stay true after
    /// one that had nothing to fetch. Any thread.
    bool isRefreshingIdentifierCandidateChildren() const;
    /// {schema, name} of every named table of the current statement, in text order, repeated as
    /// often as it stands there. Any thread; takes queryComponentAccessMutex.
    std::vector<std::vector<std::string>> findAllIdentifierRefreshPathInCurrentQueryLevel() const;

    /// The root: no parent, no name. As long as the engine.
    QBIdentifierCandidate* identifierCandidateRootNode() const;

    /// How to read candidates. Null stands for the root. All take a short lock, under which nobody
    /// ever waits; none needs a refresh to have ended. Any thread.

    /// The children of @p node in order; none of an unknown node. Linear. Who must not block reads
    /// a part at a time: at most @p count from the index @p first on.
    std::vector<QBIdentifierCandidateSnapshot> childrenSnapshot(
        const QBIdentifierCandidate* node, std::size_t first = 0,
        std::size_t count = std::string::npos) const;
    /// One node; a record with a null candidate for an unknown one. The root's candidate is the
    /// root node.
    QBIdentifierCandidateSnapshot candidateSnapshot(const QBIdentifierCandidate* node) const;
    /// The names from below the root down to @p node; empty for the root and for an unknown node.
    std::vector<std::string> candidatePath(const QBIdentifierCandidate* node) const;
    /// The first child of exactly that name, or else the first that the server takes for it (see
    /// model/names.h), or null; without a copy of all the others.
    QBIdentifierCandidate* findChildCandidate(const QBIdentifierCandidate* node,
                                              const std::string& name) const;
    /// True if @p node is the root or hangs below it. Any address may be asked for, such as one
    /// that a drop brought: it is looked up among the known ones and never read unseen.
    bool isCandidateInTree(const QBIdentifierCandidate* node) const;

    /// @}

    /// What tasks capture instead of the engine (engine/engine_core.h): the mutexes, the
    /// candidates, and withLiveComponent to read a statement that may be gone. Any thread that
    /// knows the engine to exist.
    std::shared_ptr<QBEngineCore> core() const { return m_core; }

protected:
    /// Retires the id, and waits while another thread is in a closure that uses the engine. The
    /// destructor of a derived class calls it first, since notified() is that class's.
    void endLife();

private:
    enum class BlockOutcome { Inconsistent, Unchanged, Changed };
    using UntypedBlock = std::function<BlockOutcome(ELEMAbstractTopLevelQueryExpr*)>;
    using Statement = Component::AbstractTopLevelQueryComponent;
    struct Layer {
        Statement* statement;  // not owned: see the class
        std::string name;
        bool hasRootName;  ///< its name is made when asked for, in the language of that moment
    };
    struct ListenerEntry;

    void runModification(TopLevelQueryComponentElementEnum element, int layer,
                         const UntypedBlock& block, void* sender);
    void checkStatements(TopLevelQueryComponentElementEnum element, int layer) const;
    void postModified(TopLevelQueryComponentElementEnum element, int layer, void* sender,
                      std::function<void()> delivered);
    std::vector<Layer> layersOn(const Layer& root, const std::vector<long>& path) const;
    std::string nameOfLayer(const Component::SQL::SQLSubquerySourceComponent& subquery,
                            int place) const;
    unsigned long putInPlace(Component::SQL::SQLSelectStmtComponent& root,
                             RestoredStatement restored, const std::vector<long>& layerPath,
                             bool* areOtherLayers);
    std::vector<long> layerIds() const;
    void sweepRetired(unsigned long modification);
    static QBNotificationParameters modifiedParameters(
        const std::set<TopLevelQueryComponentElementEnum>& elements, int layer, void* sender);

    class Parse;
    struct ParseResult;
    unsigned long takeOver(const ParseResult& result);
    void deliver(const ParseResult& result, Parse& parse);

    void replaceRootStatement();
    std::vector<Statement*> layerStatements() const;
    Statement* findStatement(int layer) const;

    const long m_id;
    const std::shared_ptr<QBEngineCore> m_core;

    /// Guards the three below, for a few instructions: workers read them too.
    mutable std::mutex m_stateMutex;
    QBDatabaseInfo m_databaseInfo;
    std::string m_currentSchema;
    std::vector<Layer> m_layers;

    /// What layers were called when they were opened, by the ids of their statements.
    std::map<long, std::string> m_layerNames;
    std::map<std::string, std::vector<std::shared_ptr<ListenerEntry>>> m_listeners;
};

}  // namespace QB
