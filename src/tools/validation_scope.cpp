#include "tools/validation_scope.h"

#include <algorithm>
#include <utility>

#include "engine/engine_core.h"
#include "model/detached_parts.h"
#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "model/names.h"
#include "model/tree_walks.h"
#include "tools/identifier_tools.h"

namespace QB::Tools::Validation {

using namespace Component;
using namespace Component::SQL;

namespace {

using Source = SQLAbstractSourceComponent;
using Names = std::vector<std::string>;

/// A field can name a leaf, or a bracket by its alias.
bool canBeNamed(const Source* source) {
    if (ifKind<SQLJoinSourceNodeComponent>(source)) return false;
    return !source->alias.empty() || !ifKind<SQLBracketedSourceNodeComponent>(source);
}

template <typename Visit>
void visitSources(const SQLSelectStmtComponent* statement, const Visit& visit) {
    visitSourceNodes(statement->sourceExpr->root, [&visit](const SourceNode* node) {
        if (canBeNamed(node->value)) visit(node->value);
    });
}

Names pathOf(const SQLIdentifierSourceComponent* source) {
    Names path = source->path;
    path.push_back(source->name);
    return path;
}

/// The alias, or else the path of a table.
Names nameOf(const Source* source) {
    if (!source->alias.empty()) return {source->alias};
    const auto* named = ifKind<SQLIdentifierSourceComponent>(source);
    return named ? pathOf(named) : Names();
}

/// True if @p inner is the right side of a join of a kind that the model does not know. CROSS APPLY
/// and its kin are such; of the others we cannot tell.
bool maySeeAround(const AbstractTopLevelQueryComponent* inner,
                  const SQLSelectStmtComponent* outer) {
    bool isFound = false;
    visitSourceNodes(outer->sourceExpr->root, [&](const SourceNode* node) {
        const auto* join = ifKind<SQLJoinSourceNodeComponent>(node->value);
        if (!join || join->joinType != SQLJoinTypeCustom || !node->right) return;
        const auto* derived = ifKind<SQLSubquerySourceComponent>(node->right->value);
        isFound = isFound || (derived && derived->subquery == inner);
    });
    return isFound;
}

}  // namespace

bool isUnnamedSubquery(const SQLAbstractSourceComponent* source) {
    return source->alias.empty() && ifKind<SQLSubquerySourceComponent>(source);
}

SQLSelectStmtComponent* currentStatement(const QBEngine* engine) {
    if (!engine) return nullptr;
    return dynamic_cast<SQLSelectStmtComponent*>(engine->currentTopLevelQueryComponent());
}

std::vector<const SQLSelectStmtComponent*> currentLayers(const QBEngine* engine) {
    std::vector<const SQLSelectStmtComponent*> layers;
    for (int layer = 0; layer <= engine->currentTopLevelQueryComponentLayer(); ++layer)
        layers.push_back(
            dynamic_cast<const SQLSelectStmtComponent*>(engine->topLevelQueryComponent(layer)));
    return layers;
}

ValidationScope::ValidationScope(QBEngine* engine, const Layers& layers) : m_engine(engine) {
    addOwnSources(layers.back());
    for (std::size_t layer = layers.size() - 1; layer > 0; --layer)
        addNamesAround(layers[layer - 1], layers[layer]);
}

void ValidationScope::addOwnSources(const Statement* statement) {
    visitSources(statement, [this](const Source* source) {
        m_sources.insert(source);
        const auto* named = ifKind<SQLIdentifierSourceComponent>(source);
        if (named) m_byPath.emplace(pathOf(named), source);
        if (!source->alias.empty()) m_byPath.emplace(Names{source->alias}, source);
    });
}

/// What @p inner sees of the statement around it.
void ValidationScope::addNamesAround(const Statement* statement, const Statement* inner) {
    if (!statement || !maySeeAround(inner, statement)) return;
    visitSources(statement, [this](const Source* source) { addOutsideNames(source); });
}

/// By what names a subquery calls a source outside: those of its text, and with the schema that the
/// parser puts before the name of a table that it does not find.
void ValidationScope::addOutsideNames(const Source* source) {
    const auto* named = ifKind<SQLIdentifierSourceComponent>(source);
    const bool hasAlias = !source->alias.empty();
    if (!named && !hasAlias) return;
    const std::string& name = hasAlias ? source->alias : named->name;
    m_byPath.emplace(Names{name}, source);
    m_byPath.emplace(Names{m_engine->currentSchema(), name}, source);
    if (!hasAlias) m_byPath.emplace(pathOf(named), source);
}

const Source* ValidationScope::sourceOf(const Field* field) const {
    if (field->source || field->parentPath.empty()) return field->source;
    const auto found = m_byPath.find(field->parentPath);
    return found == m_byPath.end() ? nullptr : found->second;
}

std::optional<InvalidReason> ValidationScope::findFault(const Field* field,
                                                        const Source* source) const {
    if (field->source && m_sources.count(source) == 0) return InvalidSource;
    if (!source && !field->parentPath.empty()) return InvalidPath;
    if (source && isUnnamedSubquery(source)) return InvalidColumnOfUnnamed;
    return {};
}

void ValidationScope::keepName(Field* field) {
    const Names name = nameOfRetired(field->source);
    std::vector<std::string>& path = field->parentPath;
    if (name.empty()) return;
    const bool isAlias = name.size() == 1;
    const bool isByAnotherName = !path.empty() && !equalWithoutCase(path.back(), name.back());
    if (isAlias || isByAnotherName) path = name;
}

/// Empty for an address that is not kept, which must not be read.
ValidationScope::Names ValidationScope::nameOfRetired(const Source* source) {
    if (!m_retiredNames) {
        m_retiredNames.emplace();
        const auto note = [this](const AbstractQueryComponent* component) {
            const auto* gone = dynamic_cast<const Source*>(component);
            if (gone) m_retiredNames->emplace(gone, nameOf(gone));
        };
        m_engine->core()->retired.visit([&note](const DetachedParts& parts) {
            parts.visitParts([&note](const SourceNode* tree, const AbstractQueryComponent* single) {
                tree ? visitOwnedComponents(tree, note) : visitOwnedComponents(single, note);
            });
        });
    }
    const auto found = m_retiredNames->find(source);
    return found == m_retiredNames->end() ? Names() : found->second;
}

const QBIdentifierCandidate* ValidationScope::tableOf(const Source* source) {
    const auto [table, isNew] = m_tables.try_emplace(source, nullptr);
    if (isNew) {
        using Identifier::findTargetIdentifierCandidate;
        table->second = findTargetIdentifierCandidate(source, m_engine, false).candidate;
    }
    return table->second;
}

FieldLookup::FieldLookup(const QBEngine* engine)
    : m_engine(engine), m_hasCase(namesHaveCase(engine->databaseType())) {}

void FieldLookup::run() {
    constexpr std::size_t atOnce = 1000;
    for (auto& [table, missing] : m_missing) {
        for (std::size_t first = 0; !missing.empty(); first += atOnce) {
            auto fields = m_engine->childrenSnapshot(table, first, atOnce);
            for (QBIdentifierCandidateSnapshot& field : fields)
                missing.erase(foldedName(std::move(field.name), m_hasCase));
            if (fields.size() < atOnce) break;
        }
    }
}

bool FieldLookup::isMissing(Table table, const std::string& name) const {
    const auto names = m_missing.find(table);
    return names != m_missing.end() && names->second.count(foldedName(name, m_hasCase)) > 0;
}

}  // namespace QB::Tools::Validation
