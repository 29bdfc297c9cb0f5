#include "popups/column_choice.h"

#include <utility>

#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "model/tree_walks.h"
#include "tools/validation_scope.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;
using Tools::Validation::currentStatement;

namespace {

using Field = SQLFieldColumnComponent;

SQLAbstractColumnComponent* findSelectColumn(const SQLSelectStmtComponent& statement, long id) {
    for (SQLAbstractColumnComponent* column : statement.selectColumnExpr->columns) {
        if (column && column->id() == id) return column;
    }
    return nullptr;
}

/// A field column anywhere in the statement.
const Field* findField(const SQLSelectStmtComponent& statement, long id) {
    const Field* found = nullptr;
    Tools::visitOwnedComponents(&statement, [&](const AbstractQueryComponent* component) {
        if (component->id() == id) found = ifKind<Field>(component);
    });
    return found;
}

/// How columns call a source. What has an alias is called by that alone, by the server as well.
std::vector<std::string> qualifiersFor(const SQLAbstractSourceComponent& source) {
    if (!source.alias.empty()) return {source.alias};
    const auto* table = ifKind<SQLIdentifierSourceComponent>(&source);
    if (!table) return {};
    std::vector<std::string> names = table->path;
    names.push_back(table->name);
    return names;
}

void copyField(const Field& from, Field& to) {
    to.source = from.source;
    to.parentPath = from.parentPath;
    to.referencedColumn = from.referencedColumn;
    to.isAsterisk = from.isAsterisk;
    to.fieldName = from.fieldName;
}

void setField(Field& column, SQLAbstractSourceComponent* source, const std::string& name) {
    column.source = source;
    column.parentPath = source ? qualifiersFor(*source) : std::vector<std::string>();
    column.referencedColumn = nullptr;
    column.isAsterisk = name.empty();
    column.fieldName = name;
}

bool fillFromSource(Field& column, const QBChosenColumn& chosen, const QBEngine* engine) {
    const bool isStar = chosen.kind == QBChosenColumn::Star;
    const bool isAllOfAll = isStar && chosen.sourceId == -1;
    SQLAbstractSourceComponent* source =
        isAllOfAll ? nullptr : sourceInCurrentLayer(engine, chosen.sourceId);
    if (!isAllOfAll && !source) return false;
    if (!isStar && chosen.fieldName.empty()) return false;
    setField(column, source, isStar ? std::string() : chosen.fieldName);
    column.aggregateFunction = chosen.aggregateFunction;
    return true;
}

/// Without an alias there is nothing by which the column could be referred to: then the same field
/// is meant.
bool fillFromSelectColumn(Field& column, const QBChosenColumn& chosen,
                          const SQLSelectStmtComponent& statement) {
    SQLAbstractColumnComponent* const target = findSelectColumn(statement, chosen.selectColumnId);
    if (!target || target == &column) return false;
    if (target->alias.empty()) {
        const auto* field = ifKind<Field>(target);
        if (!field) return false;
        copyField(*field, column);
        column.aggregateFunction =
            chosen.aggregateFunction.empty() ? field->aggregateFunction : chosen.aggregateFunction;
        return true;
    }
    setField(column, nullptr, target->alias);
    column.referencedColumn = target;
    column.aggregateFunction = chosen.aggregateFunction;
    return true;
}

bool fillFromEdited(Field& column, const QBChosenColumn& chosen,
                    const SQLSelectStmtComponent& statement) {
    if (column.id() != chosen.editedColumnId) {
        const Field* const edited = findField(statement, chosen.editedColumnId);
        if (!edited) return false;
        copyField(*edited, column);
    }
    column.aggregateFunction = chosen.aggregateFunction;
    return true;
}

bool fillField(Field& column, const QBChosenColumn& chosen, const QBEngine* engine) {
    const SQLSelectStmtComponent* const statement = currentStatement(engine);
    if (!statement) return false;
    if (chosen.keepsField()) return fillFromEdited(column, chosen, *statement);
    if (chosen.kind == QBChosenColumn::SelectColumn)
        return fillFromSelectColumn(column, chosen, *statement);
    return fillFromSource(column, chosen, engine);
}

void repoint(const std::vector<SQLAbstractColumnComponent*>& columns,
             const SQLAbstractColumnComponent* old, SQLAbstractColumnComponent* replacement) {
    for (SQLAbstractColumnComponent* column : columns) {
        auto* field = dynamic_cast<Field*>(column);
        if (field && field != replacement && field->referencedColumn == old)
            field->referencedColumn = replacement;
    }
}

/// A plain wildcard stands for several columns and is written without its alias.
bool canBeReferredTo(const SQLAbstractColumnComponent* column) {
    const auto* field = ifKind<Field>(column);
    const bool isWildcard = field && field->isAsterisk && field->aggregateFunction.empty();
    return !isWildcard && !column->alias.empty();
}

}  // namespace

SQLAbstractSourceComponent* sourceInCurrentLayer(const QBEngine* engine, long id) {
    const SQLSelectStmtComponent* const statement = currentStatement(engine);
    SQLAbstractSourceComponent* found = nullptr;
    if (!statement) return found;
    Tools::visitSourceNodes(statement->sourceExpr->root, [&](const SourceNode* node) {
        if (node->value->id() == id) found = node->value;
    });
    return found;
}

bool fillColumn(SQLAbstractColumnComponent* column, const QBChosenColumn& chosen,
                const QBEngine* engine) {
    if (chosen.kind == QBChosenColumn::Expression) {
        auto* expression = dynamic_cast<SQLAnyExpressionColumnComponent*>(column);
        if (expression) expression->expression = chosen.expression;
        return expression != nullptr;
    }
    auto* const field = dynamic_cast<Field*>(column);
    return field && chosen.isField() && fillField(*field, chosen, engine);
}

std::unique_ptr<SQLAbstractColumnComponent> makeColumn(const QBChosenColumn& chosen,
                                                       const QBEngine* engine) {
    std::unique_ptr<SQLAbstractColumnComponent> column;
    if (chosen.isField()) column = std::make_unique<Field>();
    if (chosen.kind == QBChosenColumn::Expression)
        column = std::make_unique<SQLAnyExpressionColumnComponent>();
    return column && fillColumn(column.get(), chosen, engine) ? std::move(column) : nullptr;
}

void takeOverColumn(SQLAbstractColumnComponent* old, SQLAbstractColumnComponent* replacement,
                    const QBEngine* engine) {
    if (!old || !replacement || old == replacement) return;
    replacement->alias = old->alias;
    delete std::exchange(replacement->extraData, std::exchange(old->extraData, nullptr));
    const SQLSelectStmtComponent* const statement = currentStatement(engine);
    if (!statement || !canBeReferredTo(replacement)) return;
    repoint(statement->selectColumnExpr->columns, old, replacement);
    repoint(statement->groupByExpr->columns, old, replacement);
    repoint(statement->orderByExpr->columns, old, replacement);
}

}  // namespace QB
