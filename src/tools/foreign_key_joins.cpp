#include "tools/foreign_key_joins.h"

#include <algorithm>
#include <set>
#include <utility>

#include "engine/engine_core.h"
#include "engine/main_thread_call.h"
#include "model/callbacks.h"
#include "model/tree_walks.h"

namespace QB::Tools::SQL {

using namespace Component;
using namespace Component::SQL;

namespace {

using Source = SQLIdentifierSourceComponent;
using Done = std::function<void(const std::vector<ForeignKeyJoin>&)>;

/// A source for another time or thread, when it may be gone and its address taken.
struct SourceReference {
    Source* source;  // not owned: used only while a tree holds a source of this address and id
    long id;
};

QBIdentifierObjectPath tableOf(const Source& source) {
    return {source.path.back(), source.name};
}

QBIdentifierObjectPath tableOf(const QBIdentifierFieldPath& field) {
    return {field.schema, field.object};
}

/// What the worker takes along. It reads the statement that was current at the call, as the user
/// may have gone to another layer since, and never the engine.
struct Search {
    std::shared_ptr<QBEngineCore> core;
    long engineId;
    const AbstractTopLevelQueryComponent* statement;  // not owned: read while statementId lives
    long statementId;
    SourceReference source;
    QBIdentifierObjectPath table;
};

/// The sources of the other tables, in text order.
using Partners = std::map<QBIdentifierObjectPath, std::vector<SourceReference>>;

Partners readPartners(const Search& search) {
    Partners partners;
    search.core->withLiveComponent(search.statementId, [&] {
        const auto* select = dynamic_cast<const SQLSelectStmtComponent*>(
            search.core->addressNow(search.statement, search.statementId));
        if (!select) return;
        visitSourceNodes(select->sourceExpr->root, [&](const SourceNode* node) {
            auto* other = dynamic_cast<Source*>(node->value);
            if (!other || other->path.empty() || tableOf(*other) == search.table) return;
            partners[tableOf(*other)].push_back({other, other->id()});
        });
    });
    return partners;
}

/// A key as the searched table sees it.
struct OwnKey {
    std::vector<FieldPair> fields;  ///< its own, the other table's
    bool refersToOther;
};

/// The keys between the searched table and another one.
struct KeysWithTable {
    QBIdentifierObjectPath other;
    std::vector<OwnKey> keys;
};

OwnKey ownKey(const QBForeignKeyConstraint& key, bool refersToOther) {
    OwnKey own{{}, refersToOther};
    for (const auto& [referring, referred] : key) {
        own.fields.emplace_back(referring.field, referred.field);
        if (!refersToOther) std::swap(own.fields.back().first, own.fields.back().second);
    }
    return own;
}

/// The other tables come in the order of their first keys.
std::vector<KeysWithTable> sortedByTable(const std::vector<QBForeignKeyConstraint>& keys,
                                         const QBIdentifierObjectPath& table) {
    std::vector<KeysWithTable> tables;
    std::map<QBIdentifierObjectPath, std::size_t> indexes;
    for (const QBForeignKeyConstraint& key : keys) {
        const auto& [referring, referred] = key.front();
        const bool refersToOther = tableOf(referring) == table;
        if (!refersToOther && !(tableOf(referred) == table)) continue;  // not what was asked for
        const QBIdentifierObjectPath other = tableOf(refersToOther ? referred : referring);
        const auto index = indexes.try_emplace(other, tables.size()).first->second;
        if (index == tables.size()) tables.push_back({other, {}});
        tables[index].keys.push_back(ownKey(key, refersToOther));
    }
    return tables;
}

std::vector<ForeignKeyJoin> findJoins(const Search& search) {
    const Partners partners = readPartners(search);
    std::set<QBIdentifierObjectPath> others;
    for (const auto& [table, sources] : partners)
        others.insert(table);
    std::vector<ForeignKeyJoin> joins;
    if (others.empty()) return joins;
    const auto keys = search.core->foreignKeys(search.table, others);
    for (const KeysWithTable& table : sortedByTable(keys, search.table)) {
        const auto sources = partners.find(table.other);
        if (sources == partners.end()) continue;
        for (const SourceReference& foreign : sources->second)
            for (const OwnKey& key : table.keys)
                joins.push_back({search.source.source, search.source.id, foreign.source, foreign.id,
                                 key.fields, key.refersToOther});
    }
    return joins;
}

void answer(const Search& search, Done done, std::vector<ForeignKeyJoin> joins) {
    postToMainThread(search.engineId,
                     [done = std::move(done), joins = std::move(joins)] { done(joins); });
}

/// Thread: dispatched.
void run(const Search& search, Done done) {
    if (!isAlive(search.engineId)) return;
    std::vector<ForeignKeyJoin> joins;
    try {
        joins = findJoins(search);
    } catch (...) {
        answer(search, std::move(done), {});  // or who waits for the answer would wait for ever
        throw;
    }
    answer(search, std::move(done), std::move(joins));
}

const SourceNode* currentSourceTree(const QBEngine* engine) {
    const auto* select =
        dynamic_cast<const SQLSelectStmtComponent*>(engine->currentTopLevelQueryComponent());
    return select ? select->sourceExpr->root : nullptr;
}

/// Does not touch what @p join points at unless it stands in the tree.
bool holdsBothSources(const SourceNode* tree, const ForeignKeyJoin& join) {
    bool hasSource = false;
    bool hasForeign = false;
    visitSourceNodes(tree, [&](const SourceNode* node) {
        if (node->value == join.source) hasSource = node->value->id() == join.sourceId;
        if (node->value == join.foreign) hasForeign = node->value->id() == join.foreignId;
    });
    return hasSource && hasForeign;
}

/// Null if @p operand is no single field.
const SQLFieldColumnComponent* fieldIn(const SQLAbstractConditionComponent* operand) {
    const auto* value = dynamic_cast<const SQLConditionValueComponent*>(operand);
    return value ? dynamic_cast<const SQLFieldColumnComponent*>(value->firstValue()) : nullptr;
}

/// A condition of a join that two fields are equal.
struct Comparison {
    const SQLFieldColumnComponent* left;   // not owned
    const SQLFieldColumnComponent* right;  // not owned
};

/// Each of them twice, the second time the other way round.
std::vector<Comparison> comparisonsIn(const SourceNode* tree) {
    std::vector<Comparison> comparisons;
    const auto addCompare = [&comparisons](const AbstractQueryComponent* component) {
        const auto* compare = dynamic_cast<const SQLCompareConditionComponent*>(component);
        if (!compare || compare->compareOp != CompareOpEqual) return;
        const auto* left = fieldIn(compare->leftValue);
        const auto* right = fieldIn(compare->rightValue);
        if (!left || !right) return;
        comparisons.push_back({left, right});
        comparisons.push_back({right, left});
    };
    visitSourceNodes(tree, [&](const SourceNode* node) {
        if (dynamic_cast<const SQLJoinSourceNodeComponent*>(node->value))
            visitOwnedComponents(node->value, addCompare);
    });
    return comparisons;
}

bool areCompared(const std::vector<Comparison>& comparisons, const ForeignKeyJoin& join) {
    return std::any_of(comparisons.begin(), comparisons.end(), [&](const Comparison& each) {
        return each.left->source == join.source && each.right->source == join.foreign;
    });
}

bool isMadeAlready(const std::vector<Comparison>& comparisons, const ForeignKeyJoin& join) {
    const auto isCompared = [&](const FieldPair& pair) {
        return std::any_of(comparisons.begin(), comparisons.end(), [&](const Comparison& each) {
            return each.left->source == join.source && each.left->fieldName == pair.first &&
                   each.right->source == join.foreign && each.right->fieldName == pair.second;
        });
    };
    return std::all_of(join.fields.begin(), join.fields.end(), isCompared);
}

bool areOfOneTable(const SQLAbstractSourceComponent* a, const Source* b) {
    const auto* source = dynamic_cast<const Source*>(a);
    return source && source->path == b->path && source->name == b->name;
}

/// Whether the fields that refer are bound to another source of the table that they refer to. They
/// name one row of it, so a second link would make both sources the same.
bool isTaken(const std::vector<Comparison>& comparisons, const ForeignKeyJoin& join) {
    const Source* const referring = join.isOfSource ? join.source : join.foreign;
    const Source* const referred = join.isOfSource ? join.foreign : join.source;
    const auto isBound = [&](const FieldPair& pair) {
        const std::string& field = join.isOfSource ? pair.first : pair.second;
        return std::any_of(comparisons.begin(), comparisons.end(), [&](const Comparison& each) {
            return each.left->source == referring && each.left->fieldName == field &&
                   each.right->source != referred && areOfOneTable(each.right->source, referred);
        });
    };
    return std::all_of(join.fields.begin(), join.fields.end(), isBound);
}

using JoinIterator = std::vector<ForeignKeyJoin>::const_iterator;

/// Links two sources by one of the keys between them, unless they are linked: the user has drawn
/// one meanwhile, or the other table was added at the same time and has found this one.
void propose(QBEngine* engine, void* sender, JoinIterator first, JoinIterator last) {
    const SourceNode* const tree = currentSourceTree(engine);
    const std::vector<Comparison> comparisons = comparisonsIn(tree);
    if (!holdsBothSources(tree, *first) || areCompared(comparisons, *first)) return;
    const auto free = std::find_if(
        first, last, [&](const ForeignKeyJoin& join) { return !isTaken(comparisons, join); });
    makeJoinLinksByForeignKeys(engine, sender, {free == last ? *first : *free});
}

void proposeAll(QBEngine* engine, void* sender, const std::vector<ForeignKeyJoin>& joins) {
    const long engineId = engine->id();
    for (auto first = joins.begin(); first != joins.end();) {
        if (!isAlive(engineId)) return;  // a listener to the link before has ended it
        const auto last = std::find_if(first, joins.end(), [&](const ForeignKeyJoin& join) {
            return join.foreign != first->foreign;
        });
        propose(engine, sender, first, last);
        first = last;
    }
}

}  // namespace

void findForeignKeyJoins(QBEngine* engine, SQLIdentifierSourceComponent* source, Done done) {
    if (!engine || !source || source->path.empty() || !done) return;
    const AbstractTopLevelQueryComponent* const statement = engine->currentTopLevelQueryComponent();
    if (!statement) return;
    const Search search{engine->core(),  engine->id(),           statement,
                        statement->id(), {source, source->id()}, tableOf(*source)};
    Callback::runOperationOnDispatchedThread(
        [search, done = std::move(done)] { run(search, done); });
}

void makeJoinLinksByForeignKeys(QBEngine* engine, void* sender,
                                const std::vector<ForeignKeyJoin>& joins) {
    if (!engine) return;
    const long engineId = engine->id();
    for (const ForeignKeyJoin& join : joins) {
        if (!isAlive(engineId)) return;  // a listener to the link before has ended it
        const SourceNode* const tree = currentSourceTree(engine);
        if (!holdsBothSources(tree, join) || isMadeAlready(comparisonsIn(tree), join)) continue;
        makeJoinLinkIfNecessary(engine, sender, join.source, join.foreign, join.fields);
    }
}

void makeJoinLinkByForeignKeyIfNecessary(QBEngine* engine, void* sender,
                                         SQLIdentifierSourceComponent* source) {
    if (!engine) return;
    const unsigned long count = engine->userModificationCount();
    findForeignKeyJoins(engine, source, [=](const std::vector<ForeignKeyJoin>& joins) {
        const QBEngine::FollowUp followUp(engine, count);  // of the table that was added
        proposeAll(engine, sender, joins);
    });
}

}  // namespace QB::Tools::SQL
