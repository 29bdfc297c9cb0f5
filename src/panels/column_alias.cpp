#include "panels/column_alias.h"

#include <memory>
#include <utility>
#include <vector>

#include "model/detached_parts.h"
#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "tools/validation_scope.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

using Column = SQLAbstractColumnComponent;
using Field = SQLFieldColumnComponent;
using Columns = std::vector<Column*>;

/// Calls @p change(slot, field) for each of @p columns that refers to @p target.
template <typename Change>
void forReferences(Columns& columns, const Column* target, const Change& change) {
    for (Column*& column : columns) {
        auto* const field = dynamic_cast<Field*>(column);
        if (field && field->referencedColumn == target) change(column, *field);
    }
}

void keepName(Field& reference, const std::string& alias) {
    reference.referencedColumn = nullptr;
    reference.fieldName = alias;
}

/// False if the two aggregates would have to stand in one another, which no text can say.
bool nameField(Field& reference, const Field& target) {
    if (!reference.aggregateFunction.empty() && !target.aggregateFunction.empty()) return false;
    reference.source = target.source;
    reference.parentPath = target.parentPath;
    reference.referencedColumn = target.referencedColumn;
    reference.isAsterisk = target.isAsterisk;
    reference.fieldName = target.fieldName;
    if (reference.aggregateFunction.empty()) reference.aggregateFunction = target.aggregateFunction;
    return true;
}

/// A column with the text of @p target in the place of @p reference.
std::unique_ptr<Column> writtenOut(Field& reference,
                                   const SQLAnyExpressionColumnComponent& target) {
    auto column = std::make_unique<SQLAnyExpressionColumnComponent>();
    const std::string& function = reference.aggregateFunction;
    column->expression =
        function.empty() ? target.expression : function + "(" + target.expression + ")";
    column->alias = reference.alias;
    column->extraData = std::exchange(reference.extraData, nullptr);
    return column;
}

void writeOut(Columns& columns, const Column* target, DetachedParts& removed) {
    forReferences(columns, target, [&](Column*& slot, Field& reference) {
        if (const auto* field = ifKind<Field>(target)) {
            if (!nameField(reference, *field)) keepName(reference, target->alias);
        } else if (const auto* text = ifKind<SQLAnyExpressionColumnComponent>(target)) {
            Column* const column = writtenOut(reference, *text).release();
            removed.add(std::unique_ptr<AbstractQueryComponent>(std::exchange(slot, column)));
        }
    });
}

}  // namespace

void setColumnAlias(Column* column, const std::string& alias, QBEngine* engine) {
    SQLSelectStmtComponent* const statement = Tools::Validation::currentStatement(engine);
    if (!statement) return;
    DetachedParts removed;
    forReferences(statement->selectColumnExpr->columns, column,
                  [&](Column*&, Field& reference) { keepName(reference, column->alias); });
    for (ELEMSQLColumnExpr* list : {statement->groupByExpr, statement->orderByExpr}) {
        if (alias.empty()) writeOut(list->columns, column, removed);
        forReferences(list->columns, column,
                      [&](Column*&, Field& reference) { reference.fieldName = alias; });
    }
    column->alias = alias;
    engine->retire(std::move(removed));
}

}  // namespace QB
