// What a history needs of QBEngine: the whole query as a record, and back.

#include <algorithm>
#include <utility>

#include "engine/engine.h"
#include "engine/engine_core.h"
#include "engine/main_thread_call.h"
#include "model/detached_parts.h"
#include "model/notification_names.h"
#include "model/statement_record.h"
#include "model/tree_walks.h"
#include "platform/tolk/tolk.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

using Subquery = SQLSubquerySourceComponent;

/// Calls @p visit with each derived table of the statement, and its place among the sources.
template <typename Visit>
void visitSubqueries(const AbstractTopLevelQueryComponent* statement, const Visit& visit) {
    const auto* select = dynamic_cast<const SQLSelectStmtComponent*>(statement);
    if (!select) return;
    int place = 0;
    Tools::visitSourceNodes(select->sourceExpr->root, [&](const SourceNode* node) {
        if (!node->left && !node->right) ++place;
        if (const auto* subquery = dynamic_cast<const Subquery*>(node->value))
            visit(*subquery, place);
    });
}

/// The statements and derived tables among what @p statement owns.
std::vector<AbstractQueryComponent*> layersIn(const SQLSelectStmtComponent& statement) {
    std::vector<AbstractQueryComponent*> found;
    Tools::visitOwnedComponents(&statement, [&found](const AbstractQueryComponent* component) {
        if (dynamic_cast<const Subquery*>(component) ||
            dynamic_cast<const AbstractTopLevelQueryComponent*>(component))
            found.push_back(const_cast<AbstractQueryComponent*>(component));
    });
    return found;
}

constexpr auto allElements = {ElementSelectColumn, ElementSource,  ElementWhere, ElementGroupBy,
                              ElementHaving,       ElementOrderBy, ElementLimit};

}  // namespace

std::string QBEngine::recordQuery() const {
    const std::lock_guard lock(m_core->queryComponentAccessMutex);
    const auto* root = dynamic_cast<const SQLSelectStmtComponent*>(findStatement(0));
    return root ? recordStatement(*root) : std::string();
}

std::vector<long> QBEngine::layerPath() const {
    const std::vector<Statement*> statements = layerStatements();
    std::vector<long> path;
    for (std::size_t i = 1; i < statements.size() && path.size() == i - 1; ++i)
        visitSubqueries(statements[i - 1], [&](const Subquery& subquery, int) {
            if (subquery.subquery == statements[i]) path.push_back(subquery.id());
        });
    return path;
}

/// The stack with @p root below the subqueries of @p path, as far as they are there.
std::vector<QBEngine::Layer> QBEngine::layersOn(const Layer& root,
                                                const std::vector<long>& path) const {
    std::vector<Layer> layers = {root};
    for (const long id : path) {
        const Layer below = layers.back();
        visitSubqueries(below.statement, [&](const Subquery& subquery, int place) {
            if (subquery.id() == id && subquery.subquery)
                layers.push_back({subquery.subquery, nameOfLayer(subquery, place), false});
        });
        if (layers.back().statement == below.statement) break;
    }
    return layers;
}

/// As the one who opens it would name it, but for what it was called when it was open.
std::string QBEngine::nameOfLayer(const Subquery& subquery, int place) const {
    const auto known = m_layerNames.find(subquery.subquery->id());
    if (known != m_layerNames.end()) return known->second;
    if (!subquery.alias.empty()) return subquery.alias;
    return '(' + Tolk::localizeWithArgs(Tolk::TextNumberedSubquery, place).toStdString() + ')';
}

bool QBEngine::restoreQuery(const std::string& record, const std::vector<long>& layerPath,
                            void* sender) {
    RestoredStatement restored = restoreStatement(record);
    auto* const root = dynamic_cast<SQLSelectStmtComponent*>(findStatement(0));
    if (!root || !restored.statement || restored.statement->id() != root->id()) return false;

    const long id = m_id;
    bool areOtherLayers = false;
    const RetiredParts::Number modification =
        putInPlace(*root, std::move(restored), layerPath, &areOtherLayers);
    if (areOtherLayers) notifyChange(Notification::topLevelQueryComponentLayerChanged, nullptr);
    if (!isAlive(id)) return true;
    const QBNotificationParameters modified =
        modifiedParameters(allElements, currentTopLevelQueryComponentLayer(), sender);
    notifyChange(Notification::topLevelQueryComponentElementModified, &modified);
    if (isAlive(id)) sweepRetired(modification);
    return true;
}

/// At one stroke, as takeOver() does: statement and layers are never at odds.
unsigned long QBEngine::putInPlace(SQLSelectStmtComponent& root, RestoredStatement restored,
                                   const std::vector<long>& layerPath, bool* areOtherLayers) {
    const std::lock_guard lock(m_core->queryComponentAccessMutex);
    RetiredParts::Modification modification(m_core->retired);
    swapElements(root, *restored.statement);
    std::vector<Layer> layers;
    {
        const std::lock_guard state(m_stateMutex);
        layers.push_back(m_layers.front());
    }
    layers = layersOn(layers.front(), layerPath);
    const std::vector<long> former = layerIds();
    {
        const std::lock_guard state(m_stateMutex);
        m_layers.swap(layers);
    }
    *areOtherLayers = layerIds() != former;
    m_core->noteReplaced(layersIn(root));

    DetachedParts parts = std::move(restored.detached);
    parts.add(std::unique_ptr<AbstractQueryComponent>(restored.statement.release()));
    m_core->retired.add(std::move(parts));
    checkStatements(ElementSource, currentTopLevelQueryComponentLayer());
    return modification.announce();
}

std::vector<long> QBEngine::layerIds() const {
    std::vector<long> ids;
    for (const Statement* statement : layerStatements())
        ids.push_back(statement ? statement->id() : 0);
    return ids;
}

// ---- what follows -------------------------------------------------------------------------------

namespace {

thread_local QBEngine::FollowUp* innermostFollowUp = nullptr;

}  // namespace

QBEngine::FollowUp::FollowUp(QBEngine* engine)
    : FollowUp(engine, engine->userModificationCount()) {}

QBEngine::FollowUp::FollowUp(QBEngine* engine, unsigned long count)
    : m_core(engine->m_core)
    , m_isNext(engine->userModificationCount() == count)
    , m_outer(std::exchange(innermostFollowUp, this)) {}

QBEngine::FollowUp::~FollowUp() {
    innermostFollowUp = m_outer;
}

const QBEngine::FollowUp* QBEngine::FollowUp::innermostFor(const QBEngineCore* core) {
    const FollowUp* followUp = innermostFollowUp;
    while (followUp && followUp->m_core.get() != core)
        followUp = followUp->m_outer;
    return followUp;
}

unsigned long QBEngine::userModificationCount() const {
    return m_core->userModificationCount;
}

}  // namespace QB
