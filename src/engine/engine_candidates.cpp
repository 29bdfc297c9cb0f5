// The identifier candidates of QBEngine: what is asked of the core, and the refresh.

#include "engine/candidate_refresh.h"
#include "engine/engine.h"
#include "engine/engine_core.h"
#include "model/callbacks.h"
#include "model/tree_walks.h"

namespace QB {

using namespace Component::SQL;

namespace {

/// Tells of a node in the name of @p engine, which is alive when this is called.
CandidateRefresh::Notify notifierOf(QBEngine* engine) {
    return [engine](const std::string& name, QBIdentifierCandidate* ident) {
        const QBNotificationParameters params = {{"ident", static_cast<void*>(ident)}};
        engine->notifyChange(name, &params);
    };
}

}  // namespace

void QBEngine::registerIdentifierCandidateChildrenUpdater(
    const QBCandidateChildrenUpdater& updater) {
    m_core->setUpdater(updater);
}

void QBEngine::registerForeignKeySearcher(const QBForeignKeySearcher& searcher) {
    m_core->setSearcher(searcher);
}

void QBEngine::registerForeignKeyConstraintSearcher(
    const QBForeignKeyConstraintSearcher& searcher) {
    m_core->setConstraintSearcher(searcher);
}

void QBEngine::triggerIdentifierCandidateChildrenUpdater(IQBIdentifierCandidateAccessor* accessor,
                                                         QBIdentifierCandidate* node) const {
    if (const QBCandidateChildrenUpdater updater = m_core->updater()) updater(accessor, node);
}

QBForeignKeys QBEngine::triggerForeignKeySearcher(
    const QBIdentifierObjectPath& object, const std::set<QBIdentifierObjectPath>& others) const {
    const QBForeignKeySearcher searcher = m_core->searcher();
    return searcher ? searcher(object, others) : QBForeignKeys();
}

std::vector<QBForeignKeyConstraint> QBEngine::triggerForeignKeyConstraintSearcher(
    const QBIdentifierObjectPath& object, const std::set<QBIdentifierObjectPath>& others) const {
    return m_core->foreignKeys(object, others);
}

void QBEngine::addRefreshRootIdentifierCandidateChildrenRequest(bool force) {
    m_core->addRequest({{}, force});
}

void QBEngine::addRefreshIdentifierCandidateChildrenRequest(const std::vector<std::string>& path,
                                                            bool force) {
    m_core->addRequest({path, force});
}

void QBEngine::addRefreshIdentifierCandidateChildrenRequest(QBIdentifierCandidate* candidate,
                                                            bool force) {
    m_core->addRequest({candidatePath(candidate), force});
}

void QBEngine::refreshRequestedIdentifierCandidateChildren(bool async) {
    const CandidateRefresh refresh(m_core, m_id, m_core->takeRequests(), notifierOf(this));
    if (!async) return refresh.run();
    Callback::runOperationOnDispatchedThread([refresh] { refresh.run(); });
}

QBEngine::ChildrenFetcher QBEngine::identifierCandidateChildrenFetcher() {
    return [core = m_core, id = m_id, notify = notifierOf(this)](const auto& paths) {
        std::vector<QBEngineCore::RefreshRequest> requests;
        for (const std::vector<std::string>& path : paths)
            requests.emplace_back(path, false);
        CandidateRefresh(core, id, std::move(requests), notify).run();
    };
}

bool QBEngine::isRefreshingIdentifierCandidateChildren() const {
    return m_core->runningRefreshes.isAboveZero();
}

std::vector<std::vector<std::string>> QBEngine::findAllIdentifierRefreshPathInCurrentQueryLevel()
    const {
    const std::lock_guard lock(m_core->queryComponentAccessMutex);
    const auto* statement =
        dynamic_cast<const SQLSelectStmtComponent*>(currentTopLevelQueryComponent());
    if (!statement) return {};
    const std::string schema = currentSchema();
    std::vector<std::vector<std::string>> paths;
    Tools::visitSourceNodes(statement->sourceExpr->root, [&](const SourceNode* node) {
        const auto* table = dynamic_cast<const SQLIdentifierSourceComponent*>(node->value);
        if (table)
            paths.push_back({table->path.empty() ? schema : table->path.back(), table->name});
    });
    return paths;
}

QBIdentifierCandidate* QBEngine::identifierCandidateRootNode() const {
    return m_core->candidates.root();
}

std::vector<QBIdentifierCandidateSnapshot> QBEngine::childrenSnapshot(
    const QBIdentifierCandidate* node, std::size_t first, std::size_t count) const {
    return m_core->candidates.childrenSnapshot(node, first, count);
}

QBIdentifierCandidateSnapshot QBEngine::candidateSnapshot(const QBIdentifierCandidate* node) const {
    return m_core->candidates.snapshot(node);
}

std::vector<std::string> QBEngine::candidatePath(const QBIdentifierCandidate* node) const {
    return m_core->candidates.path(node);
}

QBIdentifierCandidate* QBEngine::findChildCandidate(const QBIdentifierCandidate* node,
                                                    const std::string& name) const {
    return m_core->candidates.findChild(node, name);
}

bool QBEngine::isCandidateInTree(const QBIdentifierCandidate* node) const {
    return m_core->candidates.contains(node);
}

}  // namespace QB
