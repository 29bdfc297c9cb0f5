#include "panels/column_alias.h"

#include <memory>
#include <utility>
#include <vector>

#include "model/detached_parts.h"
#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "platform/sqlet/lexer.h"
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

/// Whether ORDER BY may read @p text as the place of a column, or refuse it as a constant: a number
/// alone, in any brackets and with any sign.
bool isReadAsPlace(const std::string& text, DatabaseType family) {
    const sqlet::TokenList list = sqlet::lex(text, family);
    int numbers = 0;
    for (const sqlet::Token& token : list.tokens) {
        using sqlet::TokenKind;
        const std::string word = text.substr(token.offset, token.length);
        const bool isSign =
            token.kind == TokenKind::Operator && word.find_first_not_of("+-") == word.npos;
        const bool isBracket =
            token.kind == TokenKind::LeftParen || token.kind == TokenKind::RightParen;
        if (token.kind == TokenKind::Number)
            ++numbers;
        else if (token.kind == TokenKind::End)
            break;
        else if (!isSign && !isBracket)
            return false;
    }
    return numbers == 1;
}

/// As if the column had gone: @p reference keeps its name, and a check finds that it has lost what
/// it referred to.
void loseReference(Field& reference, const std::string& alias, DetachedParts& removed) {
    auto gone = std::make_unique<SQLAnyExpressionColumnComponent>();
    gone->alias = alias;
    reference.referencedColumn = gone.get();
    reference.fieldName = alias;
    removed.add(std::move(gone));
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

void writeOut(Columns& columns, const Column* target, DatabaseType family, DetachedParts& removed) {
    forReferences(columns, target, [&](Column*& slot, Field& reference) {
        if (const auto* field = ifKind<Field>(target)) {
            if (!nameField(reference, *field)) keepName(reference, target->alias);
        } else if (const auto* text = ifKind<SQLAnyExpressionColumnComponent>(target)) {
            if (reference.aggregateFunction.empty() && isReadAsPlace(text->expression, family))
                return loseReference(reference, target->alias, removed);
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
        if (alias.empty()) writeOut(list->columns, column, engine->databaseType(), removed);
        forReferences(list->columns, column,
                      [&](Column*&, Field& reference) { reference.fieldName = alias; });
    }
    column->alias = alias;
    engine->retire(std::move(removed));
}

}  // namespace QB
