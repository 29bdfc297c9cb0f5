#include "tools/identifier_tools.h"

#include <algorithm>
#include <utility>

#include "engine/engine_core.h"
#include "layouts/source_tree_layout.h"
#include "model/tree_walks.h"

namespace QB::Tools::Identifier {

using namespace Component;
using namespace Component::SQL;
using QBComponentsListLayout_Private::SourceTreeLayout;

namespace {

using Names = std::vector<std::string>;

struct WalkResult {
    QBIdentifierCandidate* deepest = nullptr;  ///< null if not even the first name is known
    bool isComplete = false;                   ///< all names were found
};

WalkResult walk(const CandidateTree& candidates, const Names& names) {
    WalkResult result;
    for (const std::string& name : names) {
        QBIdentifierCandidate* child = candidates.findChild(result.deepest, name);
        if (!child) return result;
        result.deepest = child;
    }
    result.isComplete = !names.empty();
    return result;
}

/// The names above a candidate, outermost first. A stored query is no name space and neither is the
/// root, which bears the same type: the names begin below the innermost of them.
Names qualifiersOf(const QBEngine* engine, const QBIdentifierCandidateSnapshot& candidate) {
    Names names;
    auto node = engine->candidateSnapshot(candidate.parent);
    for (; node.parent && node.type != IdentifierTypeQuery;
         node = engine->candidateSnapshot(node.parent))
        names.push_back(std::move(node.name));
    std::reverse(names.begin(), names.end());
    return names;
}

CandidateResult candidateOfSource(const SQLAbstractSourceComponent* component, QBEngine* engine) {
    const auto* source = dynamic_cast<const SQLIdentifierSourceComponent*>(component);
    if (!source) return {};
    CandidateResult result;
    result.path = source->path;
    result.path.push_back(source->name);
    result.candidate = findTableCandidate(
        engine->core()->candidates, tablePath(source->path, source->name, engine->currentSchema()));
    return result;
}

CandidateResult candidateOfQualifiers(const Names& qualifiers, QBEngine* engine,
                                      bool stopAtSource) {
    const WalkResult found = walk(engine->core()->candidates, qualifiers);
    // A field is looked for in no node but the one that all qualifiers lead to.
    return {stopAtSource || found.isComplete ? found.deepest : nullptr, qualifiers};
}

CandidateResult candidateOfField(const SQLFieldColumnComponent* column, QBEngine* engine,
                                 bool stopAtSource) {
    const CandidateResult table =
        column->source ? candidateOfSource(column->source, engine)
                       : candidateOfQualifiers(column->parentPath, engine, stopAtSource);
    if (stopAtSource) return table;
    if (column->isAsterisk) return {};
    if (!table.candidate) return table;
    CandidateResult field;
    field.path = engine->candidatePath(table.candidate);
    field.path.push_back(column->fieldName);
    field.candidate = engine->findChildCandidate(table.candidate, column->fieldName);
    return field;
}

}  // namespace

CandidateResult findTargetIdentifierCandidate(const AbstractQueryComponent* component,
                                              QBEngine* engine, bool stopAtSource) {
    if (!component || !engine) return {};
    if (const auto* source = dynamic_cast<const SQLAbstractSourceComponent*>(component)) {
        return candidateOfSource(source, engine);
    }
    const auto* column = dynamic_cast<const SQLFieldColumnComponent*>(component);
    return column ? candidateOfField(column, engine, stopAtSource) : CandidateResult();
}

Names tablePath(Names qualifiers, const std::string& name, const std::string& currentSchema) {
    if (qualifiers.empty()) qualifiers.push_back(currentSchema);
    qualifiers.push_back(name);
    return qualifiers;
}

std::vector<Names> tablePlaces(const Names& path) {
    if (path.size() < 3) return {path};
    return {path, Names(path.end() - 2, path.end())};
}

QBIdentifierCandidate* findTableCandidate(const CandidateTree& candidates, const Names& path) {
    for (const Names& place : tablePlaces(path)) {
        const WalkResult result = walk(candidates, place);
        if (result.isComplete) return result.deepest;
    }
    return nullptr;
}

std::unique_ptr<SQLIdentifierSourceComponent> makeIdentifierComponent(
    QBEngine* engine, const QBIdentifierCandidate* candidate) {
    if (!engine || !candidate) return nullptr;
    const QBIdentifierCandidateSnapshot named = engine->candidateSnapshot(candidate);
    const bool isBelowRoot = named.parent != nullptr;
    if (!isBelowRoot) return nullptr;
    auto component = std::make_unique<SQLIdentifierSourceComponent>();
    component->name = named.name;
    component->path = qualifiersOf(engine, named);
    return component;
}

SQLAbstractSourceComponent* addSourceComponentToExpression(
    QBEngine* engine, void* sender, std::unique_ptr<SQLAbstractSourceComponent> component,
    int layer) {
    if (!engine) return nullptr;
    SQLAbstractSourceComponent* added = nullptr;
    const auto append = [&](ELEMSQLSourceExpr* element) {
        SourceTreeLayout layout(&element->root);
        layout.rebuildItems();
        const int last = static_cast<int>(layout.items().size()) - 1;
        const auto rows = layout.addItem(component.get(), last);
        if (rows.empty()) return false;
        added = component.release();
        // The first source of a clause comes without a join.
        auto* join = dynamic_cast<SQLJoinSourceNodeComponent*>(rows.front()->component);
        if (join) join->joinType = SQLJoinTypeComma;
        layout.updateItemFlags();
        engine->retire(layout.takeDetachedParts());
        return true;
    };
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
        ElementSource, layer < 0 ? engine->currentTopLevelQueryComponentLayer() : layer, append,
        sender);
    return added;
}

SQLIdentifierSourceComponent* addIdentifierComponentToExpression(
    QBEngine* engine, void* sender, const QBIdentifierCandidate* candidate) {
    auto component = makeIdentifierComponent(engine, candidate);
    SQLIdentifierSourceComponent* source = component.get();
    return addSourceComponentToExpression(engine, sender, std::move(component)) ? source : nullptr;
}

}  // namespace QB::Tools::Identifier

namespace QB::Tools {

using namespace Component::SQL;

std::vector<SQLIdentifierSourceComponent*> findTargetIdentifierSourceNodes(
    const ELEMSQLSourceExpr* element, const std::vector<std::string>& path, const std::string& name,
    const std::string& alias, bool ignoreAlias) {
    std::vector<SQLIdentifierSourceComponent*> found;
    if (!element) return found;
    visitSourceNodes(element->root, [&](const SourceNode* node) {
        auto* source = dynamic_cast<SQLIdentifierSourceComponent*>(node->value);
        if (!source || source->path != path || source->name != name) return;
        if (ignoreAlias || source->alias == alias) found.push_back(source);
    });
    return found;
}

}  // namespace QB::Tools
