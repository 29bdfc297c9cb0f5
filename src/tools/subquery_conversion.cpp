#include "tools/subquery_conversion.h"

#include <utility>

#include "layouts/source_tree_surgery.h"
#include "model/element_expressions.h"
#include "parser/query_parser.h"
#include "platform/tolk/tolk.h"
#include "stringifier/query_component_stringifier.h"
#include "tools/using_list.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

bool isBlank(const std::string& text) {
    return QString::fromStdString(text).trimmed().isEmpty();
}

std::string withoutOuterBrackets(const std::string& text) {
    const bool isBracketed = text.size() > 1 && text.front() == '(' && text.back() == ')';
    return isBracketed ? text.substr(1, text.size() - 2) : text;
}

/// Null if the text is no statement; @p error then says why.
OwnedStatement parse(const std::string& text, const TextLanguage& language,
                     QString* error = nullptr) {
    OwnedStatement statement(new SQLSelectStmtComponent);
    const QBParseOutcome outcome = QBQueryParser::parseStatement(
        statement.get(), text, language.info.databaseType, language.schema);
    if (outcome.isAccepted()) return statement;
    if (error) *error = QString::fromStdString(outcome.message);
    return nullptr;
}

/// The FROM clause that @p text is; null if it is none, or goes on behind one.
SourceNode* onlyClause(const SQLSelectStmtComponent* statement) {
    if (!statement) return nullptr;
    const auto* limit = statement->limitExpr;
    const bool goesOn = statement->whereExpr->root || !statement->groupByExpr->columns.empty() ||
                        statement->havingExpr->root || !statement->orderByExpr->columns.empty() ||
                        limit->rowCount >= 0 || limit->offset >= 0;
    return goesOn ? nullptr : statement->sourceExpr->root;
}

bool isLeafNode(const SourceNode* node) {
    return node && SourceTree::isLeaf(node->value);
}

}  // namespace

SubqueryReading readSubquery(const std::string& text, const TextLanguage& language) {
    SubqueryReading reading;
    if (isBlank(text)) {
        // It would be read as a statement without anything in it.
        reading.error = Tolk::localize(Tolk::TextSourceTextMissing);
        return reading;
    }
    reading.statement = parse(withoutOuterBrackets(text), language, &reading.error);
    if (reading.statement) return reading;
    const OwnedStatement around = parse("SELECT * FROM " + text, language);
    SourceNode* const clause = onlyClause(around.get());
    auto* source = clause ? dynamic_cast<SQLSubquerySourceComponent*>(clause->value) : nullptr;
    auto* statement = source ? dynamic_cast<SQLSelectStmtComponent*>(source->subquery) : nullptr;
    if (!statement) return reading;
    source->subquery = nullptr;
    reading.statement.reset(statement);
    reading.alias = source->alias;
    reading.error.clear();
    return reading;
}

std::string subqueryText(const AbstractTopLevelQueryComponent* statement,
                         const TextLanguage& language) {
    const auto stringifier = QBQueryComponentStringifier::createStringifier(language.info);
    if (!stringifier) return {};
    stringifier->setCurrentSchema(language.schema);
    return stringifier->stringifyQuery(statement);
}

UsingReading readUsingList(const std::string& text, const TextLanguage& language) {
    if (isBlank(text)) return {};
    const OwnedStatement around =
        parse("SELECT * FROM a INNER JOIN b USING (" + withoutOuterBrackets(text) + ")", language);
    SourceNode* const clause = onlyClause(around.get());
    auto* join = clause ? dynamic_cast<SQLJoinSourceNodeComponent*>(clause->value) : nullptr;
    const bool isList = join && join->isUsing && join->condition && isLeafNode(clause->left) &&
                        isLeafNode(clause->right);
    if (!isList) return {nullptr, Tolk::localizeWithArgs(Tolk::TextNoColumnList, text.c_str())};
    return {std::unique_ptr<SQLAbstractConditionComponent>(std::exchange(join->condition, nullptr)),
            {}};
}

std::string usingListText(const SQLJoinSourceNodeComponent* join) {
    if (!join->condition || !Tools::SQL::canBeUsingList(join)) return {};
    const auto* value = static_cast<const SQLConditionValueComponent*>(join->condition);
    const auto* columns = dynamic_cast<const SQLAnyExpressionColumnComponent*>(value->firstValue());
    return columns ? columns->expression : std::string();
}

}  // namespace QB
