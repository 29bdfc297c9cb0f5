#include "conditions/condition_values.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "parser/query_parser.h"
#include "stringifier/query_component_stringifier.h"

namespace QB::ConditionValues {

using namespace Component;
using namespace Component::SQL;

namespace {

using Expression = SQLAnyExpressionColumnComponent;

constexpr int listModeFirst = 0;
constexpr int listModeComma = 1;
constexpr int listModeRange = 2;

bool isBlank(const std::string& text) {
    return text.find_first_not_of(" \t\r\n\f\v") == std::string::npos;
}

// ---- reading ----------------------------------------------------------------------------------

std::string textOf(const AbstractQueryComponent* component, int listMode,
                   const RowDatabase& database) {
    const auto stringifier = QBQueryComponentStringifier::createStringifier(database.info);
    if (!stringifier || !component) return {};
    stringifier->setCurrentSchema(database.schema);
    stringifier->setParameter(conditionValueListModeKey, QBVariant(listMode));
    stringifier->setParameter(partLeavesOutSchemaKey, QBVariant(1));
    return stringifier->stringifyQuery(component);
}

const SQLAbstractColumnComponent* itemOf(const SQLConditionValueComponent* value,
                                         std::size_t index) {
    return index < value->values.size() ? value->values[index] : nullptr;
}

/// The items as a list mode writes them, without NOT and without what is chained to the value.
std::string itemsText(const SQLConditionValueComponent* value, int listMode,
                      const RowDatabase& database) {
    const std::size_t count = listMode == listModeComma ? value->values.size() : 1;
    std::string text;
    for (std::size_t i = 0; i < std::min(count, value->values.size()); ++i) {
        if (i > 0) text += ',';
        text += itemText(value->values[i], database);
    }
    return text;
}

/// The second form of a range: the upper bound is the next link of the value's chain.
const SQLAbstractConditionComponent* chainedBound(const SQLConditionValueComponent* value) {
    const bool isChain =
        value->values.size() < 2 && value->next && value->next->logicGate == SQLLogicGateAnd;
    return isChain ? value->next : nullptr;
}

// ---- what a text is read as -------------------------------------------------------------------

/// The statement that @p text is, by the rules of the server; null if it is none.
OwnedStatement parsed(const std::string& text, const RowDatabase& database) {
    if (!hasStatementModel(database.info.databaseType)) return nullptr;
    OwnedStatement statement(new SQLSelectStmtComponent);
    std::string message;
    // Without a schema: a qualifier stays what was typed.
    QBQueryParser::parse_SQL(statement.get(), text, database.info.databaseType, std::string(),
                             nullptr, &message, nullptr);
    return message.empty() ? std::move(statement) : nullptr;
}

/// True if nothing but the WHERE clause of "SELECT 1 WHERE ..." holds something.
bool hasOnlyWhere(const SQLSelectStmtComponent& statement) {
    return statement.selectColumnExpr->columns.size() == 1 && !statement.sourceExpr->root &&
           statement.groupByExpr->columns.empty() && !statement.havingExpr->root &&
           statement.orderByExpr->columns.empty() && statement.limitExpr->offset == -1 &&
           statement.limitExpr->rowCount == -1;
}

const SQLCompareConditionComponent* plainCompare(const SQLAbstractConditionComponent* condition,
                                                 CompareOp op) {
    const auto* compare = ifKind<SQLCompareConditionComponent>(condition);
    return compare && !compare->negated && compare->compareOp == op ? compare : nullptr;
}

bool isOne(const SQLAbstractConditionComponent* operand, const RowDatabase& database) {
    return operand && operandText(operand, listModeComma, database) == "1";
}

/// True if @p text in its place is read as one operand, and what follows it is not drawn in.
bool isRead(const std::string& text, Place place, const RowDatabase& database) {
    const std::string start = place == Place::Right ? "1 = " : "";
    const std::string end = place == Place::Left ? " = 1" : "";
    const OwnedStatement statement =
        parsed("SELECT 1 WHERE " + start + text + end + " AND 2 = 2", database);
    if (!statement || !hasOnlyWhere(*statement)) return false;
    const SQLAbstractConditionComponent* const first = statement->whereExpr->root;
    const SQLAbstractConditionComponent* const second = first ? first->next : nullptr;
    if (!second || second->next || second->logicGate != SQLLogicGateAnd) return false;
    if (!plainCompare(second, CompareOpEqual)) return false;
    if (place == Place::Condition) return true;
    const auto* compare = plainCompare(first, CompareOpEqual);
    return compare &&
           isOne(place == Place::Left ? compare->rightValue : compare->leftValue, database);
}

/// The only thing in the WHERE clause: a comparison by IN.
SQLConditionValueComponent* listIn(const SQLSelectStmtComponent& statement) {
    const auto* compare = plainCompare(statement.whereExpr->root, CompareOpIn);
    if (!compare || compare->next || !hasOnlyWhere(statement)) return nullptr;
    auto* list = dynamic_cast<SQLConditionValueComponent*>(compare->rightValue);
    return list && !list->next && !list->negated ? list : nullptr;
}

bool isNothing(const SQLAbstractColumnComponent* item) {
    const auto* expression = ifKind<Expression>(item);
    return expression && expression->expression.empty();
}

Columns takeItems(SQLConditionValueComponent* list) {
    Columns items;
    for (SQLAbstractColumnComponent* item : std::exchange(list->values, {}))
        items.emplace_back(item);
    const bool isEmpty = items.size() == 1 && isNothing(items.front().get());
    const bool hasGaps = std::count(items.begin(), items.end(), nullptr) > 0;
    if (isEmpty || hasGaps) items.clear();
    return items;
}

bool isCalled(const SQLAbstractSourceComponent* source, const std::string& name) {
    if (!source->alias.empty()) return source->alias == name;
    const auto* table = ifKind<SQLIdentifierSourceComponent>(source);
    return table && table->name == name;
}

/// Binds a field that was read without a FROM clause to the source that its qualifier names.
void bindField(SQLFieldColumnComponent& field, const Sources& sources,
               const RowDatabase& database) {
    std::vector<std::string>& path = field.parentPath;
    if (path.size() != 1) return;
    const auto found = std::find_if(sources.begin(), sources.end(), [&path](const auto* source) {
        return isCalled(source, path.front());
    });
    if (found == sources.end()) {
        if (!database.schema.empty()) path.insert(path.begin(), database.schema);
        return;
    }
    field.source = *found;
    const auto* table = ifKind<SQLIdentifierSourceComponent>(*found);
    if (table && table->alias.empty())
        path.insert(path.begin(), table->path.begin(), table->path.end());
}

std::unique_ptr<SQLAbstractColumnComponent> makeExpression(const std::string& text) {
    auto expression = std::make_unique<Expression>();
    expression->expression = text;
    return expression;
}

// ---- strings ----------------------------------------------------------------------------------

/// What is between the quotes of @p text, if that is a single string.
std::optional<std::string> stringContent(const std::string& text) {
    if (text.size() < 2 || text.front() != '\'' || text.back() != '\'') return {};
    std::string content = text.substr(1, text.size() - 2);
    if (insideQuotes(content) != content) return {};
    return content;
}

/// Digits with at most one point and a sign before them. 2020-01 is none: it would be a difference.
bool isNumber(const std::string& text) {
    const std::size_t start = text.find_first_of("+-") == 0 ? 1 : 0;
    const bool hasDigit = text.find_first_of("0123456789") != std::string::npos;
    const bool isPlain = text.find_first_not_of("0123456789.", start) == std::string::npos;
    return hasDigit && isPlain && std::count(text.begin(), text.end(), '.') < 2;
}

/// Whether @p item says the same between the quotes of a pattern.
bool fitsPattern(const SQLAbstractColumnComponent* item) {
    const auto* expression = ifKind<Expression>(item);
    if (!expression) return false;
    const std::string& text = expression->expression;
    return isBlank(text) || isNumber(text) || !stringContent(text).value_or("").empty();
}

/// Moves a string between the quotes of its own and those that the operator writes.
void adaptQuotes(SQLAbstractColumnComponent* item, bool isPattern) {
    auto* expression = dynamic_cast<Expression*>(item);
    if (!expression || isBlank(expression->expression)) return;
    std::string& text = expression->expression;
    if (isPattern) {
        text = stringContent(text).value_or(text);
    } else if (!isNumber(text)) {
        text = '\'' + insideQuotes(text) + '\'';
    }
}

/// True if an empty item stands before those that are no pattern.
bool holdsBack(const SQLConditionValueComponent* value) {
    return value->values.size() > 1 && isNothing(value->values.front());
}

/// A field or an expression waits behind an empty pattern for an operator that can write it.
void adaptPattern(SQLConditionValueComponent* right, bool isPattern, DetachedParts& removed) {
    std::vector<SQLAbstractColumnComponent*>& items = right->values;
    if (isPattern && (!fitsPattern(items.front()) || holdsBack(right))) {
        items.insert(items.begin(), makeExpression({}).release());
    } else if (!isPattern && holdsBack(right)) {
        removed.add(std::unique_ptr<AbstractQueryComponent>(items.front()));
        items.erase(items.begin());
    } else {
        adaptQuotes(items.front(), isPattern);
    }
}

/// Both bounds of a chain as items of its first value, whose own gate and NOT stay.
void unchain(SQLConditionValueComponent* value, DetachedParts& removed) {
    auto* upper = dynamic_cast<SQLConditionValueComponent*>(value->next);
    const bool isPlain = chainedBound(value) && value->values.size() == 1 && upper &&
                         !upper->negated && !upper->next && upper->values.size() == 1;
    if (!isPlain) return;
    value->values.push_back(upper->values.front());
    upper->values.clear();
    removed.add(std::unique_ptr<AbstractQueryComponent>(std::exchange(value->next, nullptr)));
}

}  // namespace

std::string itemText(const SQLAbstractColumnComponent* item, const RowDatabase& database) {
    return textOf(item, listModeComma, database);
}

std::string operandText(const SQLAbstractConditionComponent* operand, int listMode,
                        const RowDatabase& database) {
    const auto* value = ifKind<SQLConditionValueComponent>(operand);
    const bool writesChain = listMode == listModeRange && value && chainedBound(value);
    if (!value || !value->next || writesChain) return textOf(operand, listMode, database);
    // The rest of the chain is not part of the operand.
    if (listMode == listModeRange) {
        const Range range = rangeOf(value, database);
        return range.low + " AND " + range.high;
    }
    return (value->negated ? "NOT " : "") + itemsText(value, listMode, database);
}

std::string valueText(const SQLConditionValueComponent* value, const RowDatabase& database) {
    return itemsText(value, listModeComma, database);
}

Range rangeOf(const SQLAbstractConditionComponent* right, const RowDatabase& database) {
    const auto* value = ifKind<SQLConditionValueComponent>(right);
    if (!value) return {textOf(right, listModeFirst, database), {}};
    const SQLAbstractConditionComponent* const upper = chainedBound(value);
    const std::string high =
        upper ? operandText(upper, listModeFirst, database) : itemText(itemOf(value, 1), database);
    return {itemText(itemOf(value, 0), database), high};
}

std::string asOnePiece(const std::string& text, Place place, const RowDatabase& database) {
    if (isBlank(text)) return text;
    // The line break ends a comment that would swallow the bracket.
    const std::string forms[] = {text, '(' + text + ')', '(' + text + "\n)"};
    for (const std::string& form : forms) {
        if (isRead(form, place, database)) return form;
    }
    return text;
}

std::string insideQuotes(const std::string& text) {
    std::string escaped;
    std::size_t quotes = 0;
    const auto endRun = [&] {
        if (quotes % 2 == 1) escaped += '\'';
        quotes = 0;
    };
    for (const char c : text) {
        if (c != '\'') endRun();
        if (c == '\'') ++quotes;
        escaped += c;
    }
    endRun();
    return escaped;
}

Columns readList(const std::string& text, const Sources& sources, const RowDatabase& database) {
    Columns items;
    if (!isBlank(text)) {
        // The line break ends a comment that would swallow the bracket.
        const OwnedStatement statement =
            parsed("SELECT 1 WHERE dummy IN (" + text + "\n)", database);
        SQLConditionValueComponent* const list = statement ? listIn(*statement) : nullptr;
        if (list) items = takeItems(list);
    }
    for (const auto& item : items) {
        auto* field = dynamic_cast<SQLFieldColumnComponent*>(item.get());
        if (field) bindField(*field, sources, database);
    }
    if (items.empty()) items.push_back(makeExpression(isBlank(text) ? std::string() : text));
    return items;
}

void setItem(SQLConditionValueComponent* value, std::size_t index,
             std::unique_ptr<SQLAbstractColumnComponent> item, DetachedParts& removed) {
    while (value->values.size() <= index)
        value->values.push_back(makeExpression({}).release());
    SQLAbstractColumnComponent*& slot = value->values[index];
    std::unique_ptr<AbstractQueryComponent> old(std::exchange(slot, item.release()));
    if (old) removed.add(std::move(old));
}

void setRange(SQLConditionValueComponent* value, const Range& range, const RowDatabase& database,
              DetachedParts& removed) {
    const Range old = rangeOf(value, database);
    if (range.low != old.low || value->values.empty()) {
        setItem(value, 0, makeExpression(asOnePiece(range.low, Place::Right, database)), removed);
    }
    if (range.high == old.high && (chainedBound(value) || value->values.size() > 1)) return;
    std::unique_ptr<AbstractQueryComponent> chained(std::exchange(value->next, nullptr));
    if (chained) removed.add(std::move(chained));
    setItem(value, 1, makeExpression(asOnePiece(range.high, Place::Right, database)), removed);
}

void setPattern(SQLConditionValueComponent* value, std::unique_ptr<SQLAbstractColumnComponent> item,
                DetachedParts& removed) {
    if (holdsBack(value)) setList(value, {}, removed);
    setItem(value, 0, std::move(item), removed);
}

void setList(SQLConditionValueComponent* value, Columns items, DetachedParts& removed) {
    for (SQLAbstractColumnComponent* old : std::exchange(value->values, {}))
        removed.add(std::unique_ptr<AbstractQueryComponent>(old));
    for (auto& item : items)
        value->values.push_back(item.release());
}

void adaptOperand(SQLConditionValueComponent* right, ConditionOperand from, ConditionOperand to,
                  DetachedParts& removed) {
    if (from == ConditionOperand::Range && to != ConditionOperand::Range) unchain(right, removed);
    const bool wasPattern = from == ConditionOperand::Pattern;
    const bool isPattern = to == ConditionOperand::Pattern;
    if (wasPattern != isPattern && !right->values.empty()) adaptPattern(right, isPattern, removed);
}

}  // namespace QB::ConditionValues
