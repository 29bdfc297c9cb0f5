#include "tools/selection_tools.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <unordered_set>
#include <vector>

#include "model/detached_parts.h"
#include "model/kind_of.h"
#include "model/names.h"
#include "model/tree_walks.h"
#include "tools/bare_names.h"
#include "tools/identifier_tools.h"
#include "tools/subquery_fields.h"
#include "tools/validation_scope.h"

namespace QB::Tools::SQL {

using namespace Component;
using namespace Component::SQL;

namespace {

using Columns = std::vector<SQLAbstractColumnComponent*>;
using Names = std::vector<std::string>;

/// The qualifiers of the columns of a table; empty for a source that columns name by its alias
/// alone.
Names qualifiersOf(const SQLAbstractSourceComponent* source) {
    const auto* table = dynamic_cast<const SQLIdentifierSourceComponent*>(source);
    if (!table) return {};
    Names path = table->path;
    path.push_back(table->name);
    return path;
}

std::unique_ptr<SQLFieldColumnComponent> makeColumn(SQLAbstractSourceComponent* source,
                                                    const Names& path,
                                                    const std::string& fieldName) {
    auto column = std::make_unique<SQLFieldColumnComponent>();
    column->source = source;
    column->parentPath = path;
    column->fieldName = fieldName;
    column->isAsterisk = fieldName.empty();
    return column;
}

/// Which columns are of a source, and how one is made for it.
class SourceColumns {
public:
    SourceColumns(QBEngine* engine, SQLAbstractSourceComponent* source)
        : m_source(source)
        , m_path(qualifiersOf(source))
        , m_haveCase(namesHaveCase(engine->databaseType()))
        , m_bareNames(engine, Validation::currentStatement(engine)) {}

    bool owns(const SQLFieldColumnComponent& column) const {
        if (column.source) return column.source == m_source;
        return !m_path.empty() && column.parentPath == m_path;
    }

    /// True for what a tick of that field stands for: the field as it is, in no aggregate.
    bool isTick(const SQLFieldColumnComponent& column, const std::string& fieldName) const {
        if (!isSameName(column.fieldName, fieldName, m_haveCase)) return false;
        if (isBareName(column)) return m_bareNames.ownerOf(column.fieldName) == m_source;
        return column.aggregateFunction.empty() && owns(column);
    }
    std::string keyOf(const std::string& name) const { return foldedName(name, m_haveCase); }

    std::unique_ptr<SQLFieldColumnComponent> make(const std::string& fieldName) const {
        return makeColumn(m_source, m_path, fieldName);
    }

private:
    SQLAbstractSourceComponent* m_source;  // not owned
    Names m_path;
    bool m_haveCase;
    BareNames m_bareNames;
};

bool isInCurrentStatement(const QBEngine* engine, const SQLAbstractSourceComponent* source) {
    const auto* statement =
        dynamic_cast<const SQLSelectStmtComponent*>(engine->currentTopLevelQueryComponent());
    bool isFound = false;
    const auto compare = [&](const SourceNode* node) {
        isFound = isFound || node->value == source;
    };
    if (statement) visitSourceNodes(statement->sourceExpr->root, compare);
    return isFound;
}

/// @p change gets the SELECT list and returns whether it changed it.
void modifySelectList(QBEngine* engine, void* sender, SQLAbstractSourceComponent* source,
                      const std::function<bool(Columns&, const SourceColumns&)>& change) {
    if (!engine || !source) return;
    const auto block = [&](ELEMSQLSelectColumnExpr* element) {
        if (!isInCurrentStatement(engine, source)) return false;
        return change(element->columns, SourceColumns(engine, source));
    };
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLSelectColumnExpr*>(
        ElementSelectColumn, engine->currentTopLevelQueryComponentLayer(), block, sender);
}

bool removeColumns(QBEngine* engine, Columns& columns,
                   const std::function<bool(const SQLFieldColumnComponent&)>& isGoing) {
    DetachedParts parts;
    const auto take = [&](SQLAbstractColumnComponent* column) {
        const auto* field = ifKind<SQLFieldColumnComponent>(column);
        if (!field || !isGoing(*field)) return false;
        parts.add(std::unique_ptr<AbstractQueryComponent>(column));
        return true;
    };
    columns.erase(std::remove_if(columns.begin(), columns.end(), take), columns.end());
    const bool hasChanged = !parts.isEmpty();
    engine->retire(std::move(parts));
    return hasChanged;
}

/// The source as a derived table that reads from something; else null.
const SQLSubquerySourceComponent* asSubqueryWithSources(const SQLAbstractSourceComponent* source) {
    const auto* derived = dynamic_cast<const SQLSubquerySourceComponent*>(source);
    if (!derived) return nullptr;
    const auto* statement = dynamic_cast<const SQLSelectStmtComponent*>(derived->subquery);
    return statement && statement->sourceExpr->root ? derived : nullptr;
}

/// Nothing, not even the wildcard, for a source of which nothing can be known.
Names selectableNames(QBEngine* engine, const SQLAbstractSourceComponent* source,
                      bool includeWildcard) {
    Names names(includeWildcard ? 1 : 0);
    const auto table = Identifier::findTargetIdentifierCandidate(source, engine, true);
    if (table.candidate) {
        for (QBIdentifierCandidateSnapshot& field : engine->childrenSnapshot(table.candidate))
            names.push_back(std::move(field.name));
        return names;
    }
    const auto* derived = asSubqueryWithSources(source);
    if (!derived) return {};
    const Names fields = knownSubqueryFields(engine, derived);
    names.insert(names.end(), fields.begin(), fields.end());
    return names;
}

bool addMissing(Columns& columns, const SourceColumns& ofSource, const Names& names) {
    std::unordered_set<std::string> present(columns.size() + names.size());
    for (const SQLAbstractColumnComponent* column : columns) {
        const auto* field = ifKind<SQLFieldColumnComponent>(column);
        if (field && ofSource.owns(*field)) present.insert(ofSource.keyOf(field->fieldName));
    }
    const std::size_t earlier = columns.size();
    for (const std::string& name : names) {
        const bool isMissing = present.insert(ofSource.keyOf(name)).second;
        if (isMissing) columns.push_back(ofSource.make(name).release());
    }
    return columns.size() > earlier;
}

}  // namespace

void changeItemComponentAllSelection(QBEngine* engine, void* sender,
                                     SQLAbstractSourceComponent* source, bool includeWildcard,
                                     bool select) {
    modifySelectList(engine, sender, source, [&](Columns& columns, const SourceColumns& ofSource) {
        if (select)
            return addMissing(columns, ofSource, selectableNames(engine, source, includeWildcard));
        return removeColumns(engine, columns, [&](const SQLFieldColumnComponent& column) {
            return (includeWildcard || !column.isAsterisk) && ofSource.owns(column);
        });
    });
}

void changeItemComponentFieldSelection(QBEngine* engine, void* sender,
                                       SQLAbstractSourceComponent* source,
                                       const std::string& fieldName, bool select) {
    modifySelectList(engine, sender, source, [&](Columns& columns, const SourceColumns& ofSource) {
        if (select) {
            columns.push_back(ofSource.make(fieldName).release());
            return true;
        }
        return removeColumns(engine, columns, [&](const SQLFieldColumnComponent& column) {
            return ofSource.isTick(column, fieldName);
        });
    });
}

SelectedFields selectedFields(QBEngine* engine, const SQLSelectStmtComponent* statement) {
    SelectedFields selected;
    if (!engine || !statement) return selected;
    const BareNames bareNames(engine, statement);
    std::map<Names, std::vector<const SQLAbstractSourceComponent*>> byPath;
    std::unordered_set<const SQLAbstractSourceComponent*> sources;
    visitSourceNodes(statement->sourceExpr->root, [&](const SourceNode* node) {
        sources.insert(node->value);
        Names path = qualifiersOf(node->value);
        if (!path.empty()) byPath[std::move(path)].push_back(node->value);
    });
    for (const SQLAbstractColumnComponent* column : statement->selectColumnExpr->columns) {
        const auto* field = ifKind<SQLFieldColumnComponent>(column);
        if (!field || !field->aggregateFunction.empty()) continue;
        if (const auto* owner = isBareName(*field) ? bareNames.ownerOf(field->fieldName) : nullptr)
            selected[owner].push_back(field->fieldName);
        if (sources.count(field->source) > 0) selected[field->source].push_back(field->fieldName);
        if (field->source) continue;
        const auto named = byPath.find(field->parentPath);
        if (named == byPath.end()) continue;
        for (const SQLAbstractSourceComponent* source : named->second)
            selected[source].push_back(field->fieldName);
    }
    return selected;
}

std::unique_ptr<SQLFieldColumnComponent> makeFieldColumn(SQLAbstractSourceComponent* source,
                                                         const std::string& fieldName) {
    return makeColumn(source, qualifiersOf(source), fieldName);
}

}  // namespace QB::Tools::SQL
