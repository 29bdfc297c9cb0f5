#include "tools/subquery_fields.h"

#include <QScopeGuard>
#include <chrono>
#include <exception>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "engine/engine_core.h"
#include "engine/main_thread_call.h"
#include "model/callbacks.h"
#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "model/tree_walks.h"
#include "tools/identifier_tools.h"

namespace QB::Tools {

using namespace Component::SQL;

namespace {

using Names = std::vector<std::string>;

struct NamesHash {
    std::size_t operator()(const Names& names) const {
        std::size_t hash = names.size();
        for (const std::string& name : names)
            hash = hash * 31 + std::hash<std::string>()(name);
        return hash;
    }
};

/// A list in the order of adding, with each item once.
template <typename T, typename Hash = std::hash<T>>
class UniqueList {
public:
    void add(const T& item) {
        if (m_present.insert(item).second) m_items.push_back(item);
    }
    void clear() {
        m_items.clear();
        m_present.clear();
    }
    const std::vector<T>& items() const { return m_items; }

private:
    std::vector<T> m_items;
    std::unordered_set<T, Hash> m_present;
};

/// Read only while it is known to live: under the query mutex, after its id was asked for.
struct SubqueryReference {
    const SQLSubquerySourceComponent* component;  // not owned
    long id;
};

/// What the SELECT list of one statement yields.
struct Yield {
    Names names;                          ///< may repeat themselves
    UniqueList<Names, NamesHash> tables;  ///< whose fields wildcards stand for, by tablePath
    std::vector<SubqueryReference> subqueries;
};

enum class ExpressionColumns { Skipped, ByAlias };

/// Reads one SELECT list. The caller may read the statement for as long as this exists.
class SelectListReader {
public:
    SelectListReader(const SQLSelectStmtComponent& statement, const std::string& currentSchema,
                     ExpressionColumns expressions)
        : m_statement(statement), m_currentSchema(currentSchema), m_expressions(expressions) {}

    Yield read() {
        for (const SQLAbstractColumnComponent* column : m_statement.selectColumnExpr->columns)
            addColumn(column);
        for (const UniqueList<Names, NamesHash>* tables : {&m_sourceTables, &m_namedTables})
            for (const Names& path : tables->items())
                m_yield.tables.add(path);
        for (const SQLSubquerySourceComponent* subquery : m_subqueries.items())
            m_yield.subqueries.push_back({subquery, subquery->id()});
        return std::move(m_yield);
    }

private:
    void addColumn(const SQLAbstractColumnComponent* column) {
        const auto* field = ifKind<SQLFieldColumnComponent>(column);
        if (!field) return addExpression(column);
        const bool isWildcard = field->isAsterisk && field->aggregateFunction.empty();
        if (isWildcard) return addWildcard(*field);
        addName(field->alias.empty() ? field->fieldName : field->alias);
    }

    void addExpression(const SQLAbstractColumnComponent* column) {
        if (column && m_expressions == ExpressionColumns::ByAlias) addName(column->alias);
    }

    void addName(const std::string& name) {
        if (!name.empty()) m_yield.names.push_back(name);
    }

    void addWildcard(const SQLFieldColumnComponent& column) {
        if (column.source) return addSourcesIn(nodeOf(column.source));
        if (!column.parentPath.empty()) return addNamedTable(column.parentPath);
        m_sourceTables.clear();
        m_subqueries.clear();
        addSourcesIn(m_statement.sourceExpr->root);
    }

    /// Compares addresses: @p source may be gone. Null if it is not in the FROM clause.
    const SourceNode* nodeOf(const SQLAbstractSourceComponent* source) {
        if (m_nodes.empty()) {
            visitSourceNodes(m_statement.sourceExpr->root,
                             [this](const SourceNode* node) { m_nodes[node->value] = node; });
        }
        const auto found = m_nodes.find(source);
        return found == m_nodes.end() ? nullptr : found->second;
    }

    void addSourcesIn(const SourceNode* tree) {
        visitSourceNodes(tree, [this](const SourceNode* node) {
            if (const auto* derived = dynamic_cast<const SQLSubquerySourceComponent*>(node->value))
                m_subqueries.add(derived);
            const auto* table = dynamic_cast<const SQLIdentifierSourceComponent*>(node->value);
            const bool isPlaceholder = table && table->name.empty();
            if (table && !isPlaceholder)
                m_sourceTables.add(
                    Identifier::tablePath(table->path, table->name, m_currentSchema));
        });
    }

    void addNamedTable(Names qualifiers) {
        const std::string name = std::move(qualifiers.back());
        qualifiers.pop_back();
        m_namedTables.add(Identifier::tablePath(std::move(qualifiers), name, m_currentSchema));
    }

    const SQLSelectStmtComponent& m_statement;
    const std::string& m_currentSchema;
    const ExpressionColumns m_expressions;
    std::unordered_map<const SQLAbstractSourceComponent*, const SourceNode*> m_nodes;
    Yield m_yield;
    UniqueList<Names, NamesHash> m_sourceTables;
    UniqueList<Names, NamesHash> m_namedTables;  ///< that wildcards qualify by names alone
    UniqueList<const SQLSubquerySourceComponent*> m_subqueries;
};

/// Nothing for a subquery without a statement of this kind. The caller may read it.
Yield readSelectList(const SQLSubquerySourceComponent& subquery, const std::string& currentSchema,
                     ExpressionColumns expressions) {
    const auto* statement = dynamic_cast<const SQLSelectStmtComponent*>(subquery.subquery);
    return statement ? SelectListReader(*statement, currentSchema, expressions).read() : Yield();
}

/// The names found so far, and the subqueries that are still to be looked into. Depth first, by a
/// stack of its own: subqueries may nest by the thousand.
class FieldCollection {
public:
    FieldCollection(const CandidateTree& candidates, SubqueryReference root)
        : m_candidates(candidates), m_pending({root}) {}

    bool isComplete() const { return m_pending.empty(); }

    SubqueryReference takeNext() {
        const SubqueryReference next = m_pending.back();
        m_pending.pop_back();
        return next;
    }

    void add(const Yield& yield) {
        for (const std::string& name : yield.names)
            m_names.add(name);
        for (const Names& path : yield.tables.items())
            addFieldsOf(path);
        m_pending.insert(m_pending.end(), yield.subqueries.rbegin(), yield.subqueries.rend());
    }

    const Names& names() const { return m_names.items(); }

private:
    void addFieldsOf(const Names& path) {
        const auto* table = Identifier::findTableCandidate(m_candidates, path);
        if (!table) return;
        for (const QBIdentifierCandidateSnapshot& field : m_candidates.childrenSnapshot(table))
            m_names.add(field.name);
    }

    const CandidateTree& m_candidates;
    std::vector<SubqueryReference> m_pending;
    UniqueList<std::string> m_names;
};

using Done = std::function<void(const SQLSubquerySourceComponent*, const Names&)>;

/// One call of obtainAndFetchSubqueryFieldList. Made on the main thread, run on another.
class FieldListTask {
public:
    FieldListTask(QBEngine* engine, const SQLSubquerySourceComponent* subquery, Done done)
        : m_engineId(engine->id())
        , m_core(engine->core())
        , m_currentSchema(engine->currentSchema())
        , m_fetchChildren(engine->identifierCandidateChildrenFetcher())
        , m_subquery(subquery)
        , m_done(std::move(done))
        , m_fields(m_core->candidates, {subquery, subquery ? subquery->id() : 0}) {}
    FieldListTask(const FieldListTask&) = delete;
    FieldListTask& operator=(const FieldListTask&) = delete;

    void run() {
        const auto deliverAlways = qScopeGuard([this] { deliver(); });
        m_patienceEnd = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
        while (!m_fields.isComplete() && isAlive(m_engineId))
            lookInto(m_fields.takeNext());
        if (m_error) std::rethrow_exception(m_error);
    }

private:
    void lookInto(SubqueryReference subquery) {
        m_core->runningRefreshes.waitUntilNoneRuns(m_patienceEnd);
        Yield yield;
        m_core->withLiveComponent(subquery.id, [&] {
            const auto* component = m_core->addressNow(subquery.component, subquery.id);
            yield = readSelectList(*component, m_currentSchema, ExpressionColumns::Skipped);
        });
        fetchMissing(yield.tables.items());
        m_fields.add(yield);
    }

    void fetchMissing(const std::vector<Names>& tables) {
        std::vector<Names> missing;
        for (const Names& path : tables) {
            const auto* table = Identifier::findTableCandidate(m_core->candidates, path);
            if (table && m_core->candidates.hasChildren(table)) continue;
            const std::vector<Names> places = Identifier::tablePlaces(path);
            missing.insert(missing.end(), places.begin(), places.end());
        }
        if (missing.empty() || m_error) return;
        try {
            m_fetchChildren(missing);
        } catch (...) {
            m_error = std::current_exception();  // it leaves the task when all is delivered
        }
    }

    void deliver() {
        postToMainThread(m_engineId, [done = std::move(m_done), subquery = m_subquery,
                                      names = m_fields.names()] {
            if (done) done(subquery, names);
        });
    }

    const long m_engineId;
    const std::shared_ptr<QBEngineCore> m_core;
    const std::string m_currentSchema;
    const QBEngine::ChildrenFetcher m_fetchChildren;
    const SQLSubquerySourceComponent* const m_subquery;  // not owned: handed on, never read
    Done m_done;
    FieldCollection m_fields;
    RefreshCount::Deadline m_patienceEnd;
    std::exception_ptr m_error;  ///< of the first fetch that failed, after which none is tried
};

}  // namespace

void obtainAndFetchSubqueryFieldList(QBEngine* engine, const SQLSubquerySourceComponent* subquery,
                                     Done done) {
    if (!engine) return;
    const auto task = std::make_shared<FieldListTask>(engine, subquery, std::move(done));
    Callback::runOperationOnDispatchedThread([task] { task->run(); });
}

Names knownSubqueryFields(QBEngine* engine, const SQLSubquerySourceComponent* subquery) {
    if (!engine || !subquery) return {};
    const std::shared_ptr<QBEngineCore> core = engine->core();
    const std::string schema = engine->currentSchema();
    FieldCollection fields(core->candidates, {subquery, subquery->id()});
    while (!fields.isComplete())
        fields.add(
            readSelectList(*fields.takeNext().component, schema, ExpressionColumns::ByAlias));
    return fields.names();
}

}  // namespace QB::Tools
