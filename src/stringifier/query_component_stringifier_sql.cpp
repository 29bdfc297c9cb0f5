#include "stringifier/query_component_stringifier_sql.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "model/kind_of.h"
#include "model/names.h"
#include "model/tree_walks.h"
#include "platform/sqlet/words.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

/// @p keyword if the element is one of those that write it.
std::string_view keywordOf(bool isExpectedElement, std::string_view keyword) {
    if (isExpectedElement) return keyword;
    std::perror("Inconsistent Top Level Element");
    return {};
}

std::string_view directionText(const SQLAbstractColumnComponent* column) {
    using ExtraData = SQLAbstractColumnComponent::ExtraDataOrderDirection;
    const auto* extra = column ? ifKind<ExtraData>(column->extraData) : nullptr;
    if (!extra) return {};
    if (extra->direction == OrderDirectionAscending) return " ASC";
    if (extra->direction == OrderDirectionDescending) return " DESC";
    return {};
}

bool isNaturalWithoutCondition(SQLJoinType type) {
    return type == SQLJoinTypeLeft || type == SQLJoinTypeRight || type == SQLJoinTypeFullOuter;
}

bool isListed(const SQLJoinSourceNodeComponent* join) {
    return join->joinType >= SQLJoinTypeComma && join->joinType <= SQLJoinTypeFullOuter;
}

/// The table of a field that was written with an alias which has gone since; else null.
const SQLIdentifierSourceComponent* tableByAnotherName(const SQLFieldColumnComponent* field) {
    const auto* table = ifKind<SQLIdentifierSourceComponent>(field->source);
    if (!table || field->parentPath.empty()) return nullptr;
    const std::string& name = field->parentPath.back();
    return equalWithoutCase(name, table->name) ? nullptr : table;
}

/// A join of the user's own words that has none yet stands for the neutral one: with nothing
/// between them the second source would read as the alias of the first.
bool isWrittenAsComma(const SQLJoinSourceNodeComponent* join) {
    return join->joinType == SQLJoinTypeComma || (!isListed(join) && join->joinText.empty());
}

void appendJoinKeyword(StringifiedNode& node, const SQLJoinSourceNodeComponent* join) {
    if (isWrittenAsComma(join)) return node.append(",");
    if (!isListed(join)) return node.append(join->joinText);
    if (isNaturalWithoutCondition(join->joinType) && !join->hasCondition()) node.append("NATURAL ");
    node.appendCopy(joinTypeText(join->joinType));
}

/// The column list of USING, which is kept as one free text.
std::string_view usingColumns(const SQLAbstractConditionComponent* condition) {
    const auto* value = ifKind<SQLConditionValueComponent>(condition);
    if (!value) return {};
    const auto* columns = ifKind<SQLAnyExpressionColumnComponent>(value->firstValue());
    return columns ? std::string_view(columns->expression) : std::string_view();
}

// The two ways of knowing a component's class.
struct Exactly {
    template <typename Kind>
    static const Kind* test(const AbstractQueryComponent* component) {
        return ifExactly<Kind>(component);
    }
};
struct Derived {
    template <typename Kind>
    static const Kind* test(const AbstractQueryComponent* component) {
        return dynamic_cast<const Kind*>(component);
    }
};

/// The qualifiers of @p path from @p first on.
void appendPath(StringifiedNode& node, const std::vector<std::string>& path, std::size_t first) {
    for (std::size_t i = first; i < path.size(); ++i) {
        node.appendName(path[i]);
        node.append(".");
    }
}

/// For all that stands in no source tree; made once, since it goes into every call.
const QBQueryComponentStringifier::SourceChildCallback noSourceChild;

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

std::string_view QBQueryComponentStringifier_SQL::sourceAliasSeparator() const {
    return " AS ";
}

bool QBQueryComponentStringifier_SQL::keepsTableSchema() const {
    return false;
}

bool QBQueryComponentStringifier_SQL::readsNestedJoin(const SQLJoinSourceNodeComponent*) const {
    return true;
}

// ---- dispatch -------------------------------------------------------------------------------

template <typename Test>
bool QBQueryComponentStringifier_SQL::dispatch(const AbstractQueryComponent* component, int level,
                                               const SourceChildCallback& sourceChild,
                                               StringifiedNode& node) {
    const auto mark = [&](StringifiedNode text) {
        node = std::move(text);
        node.component = component;
        return true;
    };
    // Those that come by the thousand first.
    if (const auto* c = Test::template test<SQLConditionValueComponent>(component))
        return mark(stringifyComponent_SQLConditionValueComponent(c, level, -1));
    if (const auto* c = Test::template test<SQLAnyExpressionColumnComponent>(component))
        return mark(stringifyComponent_SQLAnyExpressionColumnComponent(c, level));
    if (const auto* c = Test::template test<SQLFieldColumnComponent>(component))
        return mark(stringifyComponent_SQLFieldColumnComponent(c, level));
    if (const auto* c = Test::template test<SQLCompareConditionComponent>(component))
        return mark(stringifyComponent_SQLCompareConditionComponent(c, level));
    if (const auto* c = Test::template test<SQLBracketedConditionComponent>(component))
        return mark(stringifyComponent_SQLBracketedConditionComponent(c, level));
    if (const auto* c = Test::template test<SQLIdentifierSourceComponent>(component))
        return mark(stringifyComponent_SQLIdentifierSourceComponent(c, level));
    if (const auto* c = Test::template test<SQLJoinSourceNodeComponent>(component))
        return mark(stringifyComponent_SQLJoinSourceNodeComponent(c, level, sourceChild));
    if (const auto* c = Test::template test<SQLSubquerySourceComponent>(component))
        return mark(stringifyComponent_SQLSubquerySourceComponent(c, level));
    if (const auto* c = Test::template test<SQLBracketedSourceNodeComponent>(component))
        return mark(stringifyComponent_SQLBracketedSourceNodeComponent(c, level, sourceChild));
    if (const auto* c = Test::template test<SQLAnyExpressionSourceComponent>(component))
        return mark(stringifyComponent_SQLAnyExpressionSourceComponent(c, level));
    if (const auto* c = Test::template test<SQLSelectStmtComponent>(component))
        return mark(stringifyComponent_SQLSelectStmtComponent(c, level));
    return false;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent(
    const AbstractQueryComponent* component, int level, const SourceChildCallback& sourceChild) {
    StringifiedNode node;
    if (!component) return node;
    if (!dispatch<Exactly>(component, level, sourceChild, node))
        dispatch<Derived>(component, level, sourceChild, node);
    return node;
}

QBQueryComponentStringifier_SQL& QBQueryComponentStringifier_SQL::sql(
    QBQueryComponentStringifier& stringifier) {
    return static_cast<QBQueryComponentStringifier_SQL&>(stringifier);
}

void QBQueryComponentStringifier_SQL::appendDeferred(StringifiedNode& node,
                                                     const AbstractQueryComponent* component,
                                                     int level) {
    if (!component) return;
    const auto operation = [](QBQueryComponentStringifier& self, const void* object, int l) {
        return self.stringifyComponent(static_cast<const AbstractQueryComponent*>(object), l,
                                       noSourceChild);
    };
    node.appendDeferred(operation, component, level);
}

// ---- statement and clauses ------------------------------------------------------------------

template <auto clauseOperation, auto element, TopLevelQueryComponentElementEnum which>
StringifiedNode QBQueryComponentStringifier_SQL::clauseOf(QBQueryComponentStringifier& stringifier,
                                                          const void* statement, int level) {
    const auto* s = static_cast<const SQLSelectStmtComponent*>(statement);
    return (sql(stringifier).*clauseOperation)(s->*element, level, which);
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLSelectStmtComponent(
    const SQLSelectStmtComponent* s, int level) {
    using Self = QBQueryComponentStringifier_SQL;
    using Statement = SQLSelectStmtComponent;
    // The first and the last child write nothing: they open and close the statement's entry on the
    // schema stack when the text arrives there.
    const auto open = [](QBQueryComponentStringifier& self, const void* object, int) {
        const auto* sources = static_cast<const Statement*>(object)->sourceExpr;
        sql(self).m_multipleSchemaStack.push_back(Tools::checkMultipleSchemaInvolved(sources));
        return StringifiedNode();
    };
    const auto limit = [](QBQueryComponentStringifier& self, const void* object, int l) {
        const auto* statement = static_cast<const Statement*>(object);
        return sql(self).stringifyExpr_ELEMSQLLimitExpr(statement, statement->limitExpr, l,
                                                        ElementLimit);
    };
    const auto close = [](QBQueryComponentStringifier& self, const void*, int) {
        sql(self).m_multipleSchemaStack.pop_back();
        return StringifiedNode();
    };
    constexpr auto columnClause = &Self::stringifyExpr_ELEMSQLColumnExpr;
    constexpr auto conditionClause = &Self::stringifyExpr_ELEMSQLConditionExpr;
    const StringifiedPiece::Operation operations[] = {
        open,
        clauseOf<&Self::stringifyExpr_ELEMSQLSelectColumnExpr, &Statement::selectColumnExpr,
                 ElementSelectColumn>,
        clauseOf<&Self::stringifyExpr_ELEMSQLSourceExpr, &Statement::sourceExpr, ElementSource>,
        clauseOf<conditionClause, &Statement::whereExpr, ElementWhere>,
        clauseOf<columnClause, &Statement::groupByExpr, ElementGroupBy>,
        clauseOf<conditionClause, &Statement::havingExpr, ElementHaving>,
        clauseOf<columnClause, &Statement::orderByExpr, ElementOrderBy>,
        limit,
        close,
    };
    StringifiedNode node = newNode();
    for (const StringifiedPiece::Operation operation : operations)
        node.appendDeferred(operation, s, level);
    return node;
}

void QBQueryComponentStringifier_SQL::appendColumnList(
    StringifiedNode& node, const std::vector<SQLAbstractColumnComponent*>& columns, int level,
    bool withDirection) {
    bool isFirst = true;
    for (const SQLAbstractColumnComponent* column : columns) {
        node.appendLine(isFirst ? "" : ", ", level);
        isFirst = false;
        appendDeferred(node, column, level);
        if (withDirection && column && column->extraData) node.append(directionText(column));
    }
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyExpr_ELEMSQLSelectColumnExpr(
    const ELEMSQLSelectColumnExpr* element, int level, TopLevelQueryComponentElementEnum which) {
    StringifiedNode node = newNode();
    if (element->columns.empty()) {
        node.appendLine("SELECT", level + 1);
        node.append("*");
        return node;
    }
    node.setText(keywordOf(which == ElementSelectColumn, "SELECT"));
    if (!element->selectOption.empty()) {
        node.append(" ");
        node.append(element->selectOption);
    }
    appendColumnList(node, element->columns, level + 1, false);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyExpr_ELEMSQLColumnExpr(
    const ELEMSQLColumnExpr* element, int level, TopLevelQueryComponentElementEnum which) {
    StringifiedNode node = newNode();
    if (element->columns.empty()) return node;
    const bool isGroupBy = which == ElementGroupBy;
    node.appendLine({}, level);
    node.append(
        keywordOf(isGroupBy || which == ElementOrderBy, isGroupBy ? "GROUP BY" : "ORDER BY"));
    appendColumnList(node, element->columns, level + 1, true);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyExpr_ELEMSQLSourceExpr(
    const ELEMSQLSourceExpr* element, int level, TopLevelQueryComponentElementEnum which) {
    StringifiedNode node = newNode();
    if (!element->root || !element->root->value) return node;
    node.appendLine({}, level);
    node.appendLine(keywordOf(which == ElementSource, "FROM"), level + 1);
    node.append(walkSources(element->root, level + 1));
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyExpr_ELEMSQLConditionExpr(
    const ELEMSQLConditionExpr* element, int level, TopLevelQueryComponentElementEnum which) {
    StringifiedNode node = newNode();
    if (!element->root) return node;
    const bool isWhere = which == ElementWhere;
    node.appendLine({}, level);
    node.append(keywordOf(isWhere || which == ElementHaving, isWhere ? "WHERE" : "HAVING"));
    StringifiedNode condition = stringifyComponent(element->root, level + 1, {});
    if (condition.isEmpty()) return node;
    node.appendLine({}, level + 1);
    node.append(std::move(condition));
    return node;
}

// ---- sources --------------------------------------------------------------------------------

StringifiedNode QBQueryComponentStringifier_SQL::deferredSources(const SourceNode* tree,
                                                                 int level) {
    const auto operation = [](QBQueryComponentStringifier& self, const void* object, int l) {
        return sql(self).walkSources(static_cast<const SourceNode*>(object), l);
    };
    StringifiedNode node = newNode();
    if (tree) node.appendDeferred(operation, tree, level);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::walkSources(const SourceNode* node, int level) {
    const auto sourceChild = [this, node](int side, int childLevel) -> StringifiedNode {
        const bool isLeft = side == 0 || side == 2;
        if (!isLeft && side != 1) return {};
        if (!isLeft && needsBrackets(node))
            return inBrackets(deferredSources(node->right, childLevel + 1), childLevel);
        return deferredSources(isLeft ? node->left : node->right, childLevel);
    };
    return stringifyComponent(node->value, level, sourceChild);
}

/// A condition could belong to another join without them, or to none: a JOIN b JOIN c ON x ON y.
bool QBQueryComponentStringifier_SQL::needsBrackets(const SourceNode* node) const {
    const auto* join = ifKind<SQLJoinSourceNodeComponent>(node->value);
    if (!join || isWrittenAsComma(join) || !node->right) return false;
    const auto* nested = ifKind<SQLJoinSourceNodeComponent>(node->right->value);
    return nested && !readsNestedJoin(nested);
}

StringifiedNode QBQueryComponentStringifier_SQL::inBrackets(StringifiedNode content, int level) {
    StringifiedNode node = newNode();
    node.appendLine("(", level + 1);
    node.append(std::move(content));
    node.appendLine({}, level);
    node.append(")");
    return node;
}

void QBQueryComponentStringifier_SQL::appendSourceAlias(StringifiedNode& node,
                                                        const std::string& alias) const {
    if (alias.empty()) return;
    node.append(sourceAliasSeparator());
    node.appendName(alias);
}

bool QBQueryComponentStringifier_SQL::mayDropSchema(const std::string& schema) const {
    if (schema != currentSchema()) return false;
    if (m_multipleSchemaStack.empty()) return parameter(partLeavesOutSchemaKey) != nullptr;
    return !m_multipleSchemaStack.back();
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLIdentifierSourceComponent(
    const SQLIdentifierSourceComponent* source, int) {
    StringifiedNode node = newNode();
    const bool isBare =
        !keepsTableSchema() && source->path.size() == 1 && mayDropSchema(source->path.front());
    if (!isBare) appendPath(node, source->path, 0);
    node.appendName(source->name);
    appendSourceAlias(node, source->alias);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLAnyExpressionSourceComponent(
    const SQLAnyExpressionSourceComponent* source, int) {
    StringifiedNode node = newNode();
    node.append(source->expression);
    appendSourceAlias(node, source->alias);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLSubquerySourceComponent(
    const SQLSubquerySourceComponent* source, int level) {
    StringifiedNode node = newNode();
    node.appendLine("(", level + 1);
    appendDeferred(node, source->subquery, level + 1);
    node.appendLine({}, level);
    node.append(")");
    appendSourceAlias(node, source->alias);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLBracketedSourceNodeComponent(
    const SQLBracketedSourceNodeComponent* source, int level,
    const SourceChildCallback& sourceChild) {
    StringifiedNode node = inBrackets(sourceSide(sourceChild, 2, level + 1), level);
    appendSourceAlias(node, source->alias);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLJoinSourceNodeComponent(
    const SQLJoinSourceNodeComponent* join, int level, const SourceChildCallback& sourceChild) {
    // The rest waits as three pieces while the left side, which may be long, is written.
    using Self = QBQueryComponentStringifier_SQL;
    StringifiedNode node = newNode();
    node.append(sourceSide(sourceChild, 0, level));
    node.appendDeferred(joinPart<&Self::joinOperator>, join, level);
    node.append(sourceSide(sourceChild, 1, level));
    if (!isWrittenAsComma(join) && join->needsCondition() && join->hasCondition())
        node.appendDeferred(joinPart<&Self::joinCondition>, join, level);
    return node;
}

template <auto operation>
StringifiedNode QBQueryComponentStringifier_SQL::joinPart(QBQueryComponentStringifier& stringifier,
                                                          const void* join, int level) {
    return (sql(stringifier).*operation)(static_cast<const SQLJoinSourceNodeComponent*>(join),
                                         level);
}

StringifiedNode QBQueryComponentStringifier_SQL::joinOperator(
    const SQLJoinSourceNodeComponent* join, int level) {
    StringifiedNode node = newNode();
    if (!isWrittenAsComma(join)) node.appendLine({}, level);
    appendJoinKeyword(node, join);
    node.appendLine({}, level);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::joinCondition(
    const SQLJoinSourceNodeComponent* join, int level) {
    StringifiedNode node = newNode();
    node.appendLine({}, level);
    if (join->isUsing) {
        node.append("USING (");
        node.append(usingColumns(join->condition));
        node.append(")");
        return node;
    }
    node.appendLine("ON ", level + 1);
    appendDeferred(node, join->condition, level + 1);
    return node;
}

// ---- columns --------------------------------------------------------------------------------

void QBQueryComponentStringifier_SQL::appendColumnAlias(StringifiedNode& node,
                                                        const std::string& alias) const {
    if (alias.empty()) return;
    node.append(" AS ");
    node.appendName(alias);
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLAnyExpressionColumnComponent(
    const SQLAnyExpressionColumnComponent* column, int) {
    StringifiedNode node = newNode();
    node.setText(column->expression);
    appendColumnAlias(node, column->alias);
    return node;
}

StringifiedNode QBQueryComponentStringifier_SQL::stringifyComponent_SQLFieldColumnComponent(
    const SQLFieldColumnComponent* column, int) {
    StringifiedNode node = newNode();
    const bool isAggregate = !column->aggregateFunction.empty();
    if (isAggregate) {
        node.appendName(column->aggregateFunction);
        node.append("(");
    }
    appendField(node, column);
    if (isAggregate) node.append(")");
    // A plain wildcard stands for several columns and bears no alias; COUNT(*) is one column.
    if (isAggregate || !column->isAsterisk) appendColumnAlias(node, column->alias);
    return node;
}

void QBQueryComponentStringifier_SQL::appendField(StringifiedNode& node,
                                                  const SQLFieldColumnComponent* column) const {
    if (column->referencedColumn)
        return appendAliasReference(node, column->referencedColumn->alias);
    appendQualifiers(node, column);
    if (column->isAsterisk) return node.append("*");
    node.appendName(column->fieldName);
}

void QBQueryComponentStringifier_SQL::appendQualifiers(
    StringifiedNode& node, const SQLFieldColumnComponent* column) const {
    if (column->source && !column->source->alias.empty()) {
        appendAliasReference(node, column->source->alias);
        return node.append(".");
    }
    if (const auto* table = tableByAnotherName(column)) {
        const bool isSchemaDropped = table->path.size() == 1 && mayDropSchema(table->path.front());
        appendPath(node, table->path, isSchemaDropped ? 1 : 0);
        node.appendName(table->name);
        return node.append(".");
    }
    const std::vector<std::string>& path = column->parentPath;
    const bool isSchemaDropped = path.size() >= 2 && mayDropSchema(path.front());
    appendPath(node, path, isSchemaDropped ? 1 : 0);
}

void QBQueryComponentStringifier_SQL::appendAliasReference(StringifiedNode& node,
                                                           const std::string& alias) const {
    const bool isReadAsName = sqlet_reads_as_name(databaseInfo().databaseType, alias.data(),
                                                  static_cast<int>(alias.size()));
    if (isReadAsName || alias.empty()) return node.append(alias);
    node.appendName(alias);
}

}  // namespace QB
