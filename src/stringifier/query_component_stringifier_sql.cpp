#include "stringifier/query_component_stringifier_sql.h"

#include <cstdio>
#include <utility>

#include "model/tree_walks.h"
#include "platform/sqlet/words.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

/// @p keyword if the element is one of those that write it.
std::string keywordOf(bool isExpectedElement, const char* keyword) {
    if (isExpectedElement) return keyword;
    std::perror("Inconsistent Top Level Element");
    return {};
}

std::string directionText(const SQLAbstractColumnComponent* column) {
    using ExtraData = SQLAbstractColumnComponent::ExtraDataOrderDirection;
    const auto* extra = column ? dynamic_cast<const ExtraData*>(column->extraData) : nullptr;
    if (!extra) return {};
    if (extra->direction == OrderDirectionAscending) return " ASC";
    if (extra->direction == OrderDirectionDescending) return " DESC";
    return {};
}

bool isNaturalWithoutCondition(SQLJoinType type) {
    return type == SQLJoinTypeLeft || type == SQLJoinTypeRight || type == SQLJoinTypeFullOuter;
}

std::string joinKeyword(const SQLJoinSourceNodeComponent* join) {
    const bool isListed =
        join->joinType >= SQLJoinTypeComma && join->joinType <= SQLJoinTypeFullOuter;
    if (!isListed) return join->joinText;
    const bool isNatural = isNaturalWithoutCondition(join->joinType) && !join->hasCondition();
    return (isNatural ? "NATURAL " : "") + joinTypeText(join->joinType);
}

/// The column list of USING, which is kept as one free text.
std::string usingColumns(const SQLAbstractConditionComponent* condition) {
    const auto* value = dynamic_cast<const SQLConditionValueComponent*>(condition);
    if (!value) return {};
    const auto* columns = dynamic_cast<const SQLAnyExpressionColumnComponent*>(value->firstValue());
    return columns ? columns->expression : std::string();
}

/// @p node as the text of @p component. Null and unknown classes never get here: they have no
/// range.
StringifiedNode marked(StringifiedNode node, const AbstractQueryComponent* component) {
    node.component = component;
    return node;
}

StringifiedNode sourceSide(const QBQueryComponentStringifier::SourceChildCallback& sourceChild,
                           int side, int level) {
    return sourceChild ? sourceChild(side, level) : StringifiedNode();
}

}  // namespace

QBQueryComponentStringifier_SQL::QBQueryComponentStringifier_SQL(QBDatabaseInfo info)
    : QBQueryComponentStringifier(info) {}

QBQueryComponentStringifier_SQL::~QBQueryComponentStringifier_SQL() = default;

void QBQueryComponentStringifier_SQL::resetRun() {
    m_multipleSchemaStack.clear();
}

std::string QBQueryComponentStringifier_SQL::sourceAliasSeparator() const {
    return " AS ";
}

bool QBQueryComponentStringifier_SQL::keepsTableSchema() const {
    return false;
}

// ---- dispatch -------------------------------------------------------------------------------

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent(
    const AbstractQueryComponent* component, int level, SourceChildCallback sourceChild) {
    // By base class first: a failed cast is dear, and conditions and columns come by the thousand.
    if (const auto* c = dynamic_cast<const SQLAbstractConditionComponent*>(component))
        return stringifyAnyCondition(c, level);
    if (const auto* c = dynamic_cast<const SQLAbstractColumnComponent*>(component))
        return stringifyAnyColumn(c, level);
    if (const auto* c = dynamic_cast<const SQLAbstractSourceComponent*>(component))
        return stringifyAnySource(c, level, std::move(sourceChild));
    if (const auto* c = dynamic_cast<const SQLSelectStmtComponent*>(component))
        return marked(stringifyComponent_SQLSelectStmtComponent(c, level), c);
    return {};
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyAnyCondition(
    const SQLAbstractConditionComponent* condition, int level) {
    if (const auto* c = dynamic_cast<const SQLConditionValueComponent*>(condition))
        return marked(stringifyComponent_SQLConditionValueComponent(c, level, -1), c);
    if (const auto* c = dynamic_cast<const SQLCompareConditionComponent*>(condition))
        return marked(stringifyComponent_SQLCompareConditionComponent(c, level), c);
    if (const auto* c = dynamic_cast<const SQLBracketedConditionComponent*>(condition))
        return marked(stringifyComponent_SQLBracketedConditionComponent(c, level), c);
    return {};
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyAnyColumn(
    const SQLAbstractColumnComponent* column, int level) {
    if (const auto* c = dynamic_cast<const SQLFieldColumnComponent*>(column))
        return marked(stringifyComponent_SQLFieldColumnComponent(c, level), c);
    if (const auto* c = dynamic_cast<const SQLAnyExpressionColumnComponent*>(column))
        return marked(stringifyComponent_SQLAnyExpressionColumnComponent(c, level), c);
    return {};
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyAnySource(
    const SQLAbstractSourceComponent* source, int level, SourceChildCallback side) {
    if (const auto* c = dynamic_cast<const SQLIdentifierSourceComponent*>(source))
        return marked(stringifyComponent_SQLIdentifierSourceComponent(c, level), c);
    if (const auto* c = dynamic_cast<const SQLJoinSourceNodeComponent*>(source))
        return marked(stringifyComponent_SQLJoinSourceNodeComponent(c, level, std::move(side)), c);
    if (const auto* c = dynamic_cast<const SQLSubquerySourceComponent*>(source))
        return marked(stringifyComponent_SQLSubquerySourceComponent(c, level), c);
    if (const auto* c = dynamic_cast<const SQLBracketedSourceNodeComponent*>(source))
        return marked(stringifyComponent_SQLBracketedSourceNodeComponent(c, level, std::move(side)),
                      c);
    if (const auto* c = dynamic_cast<const SQLAnyExpressionSourceComponent*>(source))
        return marked(stringifyComponent_SQLAnyExpressionSourceComponent(c, level), c);
    return {};
}

StringifiedNode QBQueryComponentStringifier_SQL::deferComponent(
    const AbstractQueryComponent* component, int level) {
    if (!component) return {};
    return StringifiedNode::deferred(
        [this, component, level] { return stringifyComponent(component, level, {}); });
}

// ---- statement and clauses ------------------------------------------------------------------

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLSelectStmtComponent(
    const SQLSelectStmtComponent* s, int level) {
    // The first and the last child write nothing: they open and close the statement's entry on the
    // schema stack when the text arrives there.
    StringifiedNode node;
    node.appendDeferred([this, s] {
        m_multipleSchemaStack.push_back(Tools::checkMultipleSchemaInvolved(s->sourceExpr));
        return StringifiedNode();
    });
    const auto clause = [&](auto operation, const auto* element,
                            TopLevelQueryComponentElementEnum which) {
        node.appendDeferred([=] { return (this->*operation)(element, level, which); });
    };
    using Self = QBQueryComponentStringifier_SQL;
    clause(&Self::stringifyExpr_ELEMSQLSelectColumnExpr, s->selectColumnExpr, ElementSelectColumn);
    clause(&Self::stringifyExpr_ELEMSQLSourceExpr, s->sourceExpr, ElementSource);
    clause(&Self::stringifyExpr_ELEMSQLConditionExpr, s->whereExpr, ElementWhere);
    clause(&Self::stringifyExpr_ELEMSQLColumnExpr, s->groupByExpr, ElementGroupBy);
    clause(&Self::stringifyExpr_ELEMSQLConditionExpr, s->havingExpr, ElementHaving);
    clause(&Self::stringifyExpr_ELEMSQLColumnExpr, s->orderByExpr, ElementOrderBy);
    node.appendDeferred(
        [=] { return stringifyExpr_ELEMSQLLimitExpr(s, s->limitExpr, level, ElementLimit); });
    node.appendDeferred([this] {
        m_multipleSchemaStack.pop_back();
        return StringifiedNode();
    });
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::columnList(
    const std::vector<SQLAbstractColumnComponent*>& columns, int level, bool withDirection) {
    StringifiedNode list;
    list.children.reserve(columns.size() * (withDirection ? 3 : 2));
    for (const SQLAbstractColumnComponent* column : columns) {
        if (!list.isEmpty()) list.append(", " + newlineIndent(level));
        list.append(deferComponent(column, level));
        if (withDirection) list.append(directionText(column));
    }
    return list;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyExpr_ELEMSQLSelectColumnExpr(
    const ELEMSQLSelectColumnExpr* element, int level, TopLevelQueryComponentElementEnum which) {
    StringifiedNode node;
    if (element->columns.empty()) {
        node.setText("SELECT" + newlineIndent(level + 1) + "*");
        return node;
    }
    node.setText(keywordOf(which == ElementSelectColumn, "SELECT"));
    if (!element->selectOption.empty()) node.append(" " + element->selectOption);
    node.append(newlineIndent(level + 1));
    node.append(columnList(element->columns, level + 1, false));
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyExpr_ELEMSQLColumnExpr(
    const ELEMSQLColumnExpr* element, int level, TopLevelQueryComponentElementEnum which) {
    StringifiedNode node;
    if (element->columns.empty()) return node;
    const bool isGroupBy = which == ElementGroupBy;
    node.append(newlineIndent(level));
    node.append(
        keywordOf(isGroupBy || which == ElementOrderBy, isGroupBy ? "GROUP BY" : "ORDER BY"));
    node.append(newlineIndent(level + 1));
    node.append(columnList(element->columns, level + 1, true));
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyExpr_ELEMSQLSourceExpr(
    const ELEMSQLSourceExpr* element, int level, TopLevelQueryComponentElementEnum which) {
    StringifiedNode node;
    if (!element->root || !element->root->value) return node;
    node.append(newlineIndent(level));
    node.append(keywordOf(which == ElementSource, "FROM"));
    node.append(newlineIndent(level + 1));
    node.append(walkSources(element->root, level + 1));
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyExpr_ELEMSQLConditionExpr(
    const ELEMSQLConditionExpr* element, int level, TopLevelQueryComponentElementEnum which) {
    StringifiedNode node;
    if (!element->root) return node;
    const bool isWhere = which == ElementWhere;
    node.append(newlineIndent(level));
    node.append(keywordOf(isWhere || which == ElementHaving, isWhere ? "WHERE" : "HAVING"));
    StringifiedNode condition = stringifyComponent(element->root, level + 1, {});
    if (condition.isEmpty()) return node;
    node.append(newlineIndent(level + 1));
    node.append(std::move(condition));
    return node;
}

// ---- sources --------------------------------------------------------------------------------

StringifiedNode QBQueryComponentStringifier_SQL::walkSources(const SourceNode* node, int level) {
    if (!node) return {};
    const auto sourceChild = [this, node](int side, int childLevel) -> StringifiedNode {
        const bool isLeft = side == 0 || side == 2;
        if (!isLeft && side != 1) return {};
        const SourceNode* child = isLeft ? node->left : node->right;
        return StringifiedNode::deferred(
            [this, child, childLevel] { return walkSources(child, childLevel); });
    };
    return stringifyComponent(node->value, level, sourceChild);
}

void QBQueryComponentStringifier_SQL::appendSourceAlias(StringifiedNode& node,
                                                        const std::string& alias) const {
    if (!alias.empty()) node.append(sourceAliasSeparator() + quoted(alias));
}

bool QBQueryComponentStringifier_SQL::mayDropSchema(const std::string& schema) const {
    return !m_multipleSchemaStack.empty() && !m_multipleSchemaStack.back() &&
           schema == currentSchema();
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLIdentifierSourceComponent(
    const SQLIdentifierSourceComponent* source, int) {
    StringifiedNode node;
    const bool isBare =
        !keepsTableSchema() && source->path.size() == 1 && mayDropSchema(source->path.front());
    if (!isBare) {
        for (const std::string& qualifier : source->path)
            node.append(quoted(qualifier) + ".");
    }
    node.append(quoted(source->name));
    appendSourceAlias(node, source->alias);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLAnyExpressionSourceComponent(
    const SQLAnyExpressionSourceComponent* source, int) {
    StringifiedNode node;
    node.append(source->expression);
    appendSourceAlias(node, source->alias);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLSubquerySourceComponent(
    const SQLSubquerySourceComponent* source, int level) {
    StringifiedNode node("(" + newlineIndent(level + 1));
    node.append(deferComponent(source->subquery, level + 1));
    node.append(newlineIndent(level) + ")");
    appendSourceAlias(node, source->alias);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLBracketedSourceNodeComponent(
    const SQLBracketedSourceNodeComponent* source, int level, SourceChildCallback sourceChild) {
    StringifiedNode node("(" + newlineIndent(level + 1));
    node.append(sourceSide(sourceChild, 2, level + 1));
    node.append(newlineIndent(level) + ")");
    appendSourceAlias(node, source->alias);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLJoinSourceNodeComponent(
    const SQLJoinSourceNodeComponent* join, int level, SourceChildCallback sourceChild) {
    // The rest waits as one deferred node while the left side, which may be long, is written.
    StringifiedNode node;
    node.append(sourceSide(sourceChild, 0, level));
    node.appendDeferred([this, join, level, sourceChild] {
        return stringifyJoinRest(join, level, sourceSide(sourceChild, 1, level));
    });
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyJoinRest(
    const SQLJoinSourceNodeComponent* join, int level, StringifiedNode rightSide) {
    const std::string newline = newlineIndent(level);
    const bool isComma = join->joinType == SQLJoinTypeComma;
    StringifiedNode node((isComma ? "" : newline) + joinKeyword(join) + newline);
    node.append(std::move(rightSide));
    if (!join->needsCondition() || !join->hasCondition()) return node;
    if (join->isUsing) {
        node.append(newline + "USING (" + usingColumns(join->condition) + ")");
        return node;
    }
    node.append(newline + "ON " + newlineIndent(level + 1));
    node.append(deferComponent(join->condition, level + 1));
    return node;
}

// ---- columns --------------------------------------------------------------------------------

void QBQueryComponentStringifier_SQL::appendColumnAlias(StringifiedNode& node,
                                                        const std::string& alias) const {
    if (!alias.empty()) node.append(" AS " + quoted(alias));
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLAnyExpressionColumnComponent(
    const SQLAnyExpressionColumnComponent* column, int) {
    StringifiedNode node(column->expression);
    appendColumnAlias(node, column->alias);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLFieldColumnComponent(
    const SQLFieldColumnComponent* column, int) {
    StringifiedNode node;
    const bool isAggregate = !column->aggregateFunction.empty();
    if (isAggregate) node.append(quoted(column->aggregateFunction) + "(");
    node.append(fieldText(column));
    if (isAggregate) node.append(")");
    // A plain wildcard stands for several columns and bears no alias; COUNT(*) is one column.
    if (isAggregate || !column->isAsterisk) appendColumnAlias(node, column->alias);
    return node;
}

std::string QBQueryComponentStringifier_SQL::fieldText(
    const SQLFieldColumnComponent* column) const {
    if (column->referencedColumn) return aliasReference(column->referencedColumn->alias);
    return qualifiersOf(column) + (column->isAsterisk ? "*" : quoted(column->fieldName));
}

std::string QBQueryComponentStringifier_SQL::qualifiersOf(
    const SQLFieldColumnComponent* column) const {
    if (column->source && !column->source->alias.empty())
        return aliasReference(column->source->alias) + ".";
    const std::vector<std::string>& path = column->parentPath;
    const bool isSchemaDropped = path.size() >= 2 && mayDropSchema(path.front());
    std::string text;
    for (std::size_t i = isSchemaDropped ? 1 : 0; i < path.size(); ++i)
        text += quoted(path[i]) + ".";
    return text;
}

std::string QBQueryComponentStringifier_SQL::aliasReference(const std::string& alias) const {
    const bool isReadAsName = sqlet_reads_as_name(databaseInfo().databaseType, alias.data(),
                                                  static_cast<int>(alias.size()));
    return isReadAsName || alias.empty() ? alias : quoted(alias);
}

}  // namespace QB
