#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "model/components.h"
#include "model/detached_parts.h"
#include "model/element_expressions.h"

/// Statements in few words. Every function makes parts that the statement they are put into owns.
namespace QB::Test {

using namespace Component::SQL;

/// Owns a statement with all that hangs on it.
struct DestroyStatement {
    void operator()(SQLSelectStmtComponent* statement) const {
        destroyUnownedClauses(statement);
        delete statement;
    }
};
using Statement = std::unique_ptr<SQLSelectStmtComponent, DestroyStatement>;

inline Statement newStatement() {
    return Statement(new SQLSelectStmtComponent);
}

// ---- sources --------------------------------------------------------------------------------

inline SourceNode* sourceNode(SQLAbstractSourceComponent* value, const std::string& alias = {}) {
    auto* node = new SourceNode;
    node->value = value;
    value->alias = alias;
    return node;
}

inline SourceNode* table(const std::string& name, const std::string& alias = {},
                         std::vector<std::string> path = {}) {
    auto* source = new SQLIdentifierSourceComponent;
    source->name = name;
    source->path = std::move(path);
    return sourceNode(source, alias);
}

inline SourceNode* freeSource(const std::string& text, const std::string& alias = {}) {
    auto* source = new SQLAnyExpressionSourceComponent;
    source->expression = text;
    return sourceNode(source, alias);
}

inline SourceNode* subquery(Statement statement, const std::string& alias = {}) {
    auto* source = new SQLSubquerySourceComponent;
    source->subquery = statement.release();
    return sourceNode(source, alias);
}

inline SourceNode* bracket(SourceNode* content, const std::string& alias = {}) {
    SourceNode* node = sourceNode(new SQLBracketedSourceNodeComponent, alias);
    node->left = content;
    return node;
}

inline SourceNode* join(SourceNode* left, SQLJoinType type, SourceNode* right,
                        SQLAbstractConditionComponent* condition = nullptr) {
    auto* component = new SQLJoinSourceNodeComponent;
    component->joinType = type;
    component->condition = condition;
    SourceNode* node = sourceNode(component);
    node->left = left;
    node->right = right;
    return node;
}

inline SQLJoinSourceNodeComponent* joinOf(SourceNode* node) {
    return static_cast<SQLJoinSourceNodeComponent*>(node->value);
}

// ---- columns --------------------------------------------------------------------------------

inline SQLAnyExpressionColumnComponent* expression(const std::string& text,
                                                   const std::string& alias = {}) {
    auto* column = new SQLAnyExpressionColumnComponent;
    column->expression = text;
    column->alias = alias;
    return column;
}

/// The field of a source; an empty name is the wildcard.
inline SQLFieldColumnComponent* field(const SourceNode* of, const std::string& name,
                                      const std::string& alias = {}) {
    auto* column = new SQLFieldColumnComponent;
    column->fieldName = name;
    column->isAsterisk = name.empty();
    column->alias = alias;
    if (!of) return column;
    column->source = of->value;
    if (const auto* source = dynamic_cast<const SQLIdentifierSourceComponent*>(of->value)) {
        column->parentPath = source->path;
        column->parentPath.push_back(source->name);
    }
    return column;
}

inline SQLFieldColumnComponent* aggregate(const std::string& function,
                                          SQLFieldColumnComponent* column) {
    column->aggregateFunction = function;
    return column;
}

inline SQLFieldColumnComponent* referenceTo(SQLAbstractColumnComponent* referenced) {
    SQLFieldColumnComponent* column = field(nullptr, referenced->alias);
    column->referencedColumn = referenced;
    return column;
}

template <typename Column>
Column* directed(Column* column, OrderDirection direction) {
    auto* extra = new SQLAbstractColumnComponent::ExtraDataOrderDirection;
    extra->direction = direction;
    column->extraData = extra;
    return column;
}

// ---- conditions -----------------------------------------------------------------------------

inline SQLConditionValueComponent* value(std::vector<SQLAbstractColumnComponent*> items) {
    auto* condition = new SQLConditionValueComponent;
    condition->values = std::move(items);
    return condition;
}

inline SQLCompareConditionComponent* compare(SQLAbstractColumnComponent* left, CompareOp op,
                                             std::vector<SQLAbstractColumnComponent*> right = {}) {
    auto* condition = new SQLCompareConditionComponent;
    condition->leftValue = value({left});
    condition->compareOp = op;
    condition->rightValue = value(std::move(right));
    return condition;
}

inline SQLBracketedConditionComponent* bracketed(SQLAbstractConditionComponent* inner) {
    auto* condition = new SQLBracketedConditionComponent;
    condition->inner = inner;
    return condition;
}

template <typename Condition>
Condition* negated(Condition* condition) {
    condition->negated = true;
    return condition;
}

/// Links @p conditions, from the first to the last, by @p gate; gives the first.
inline SQLAbstractConditionComponent* chain(
    SQLLogicGate gate, const std::vector<SQLAbstractConditionComponent*>& conditions) {
    for (std::size_t i = 1; i < conditions.size(); ++i) {
        conditions[i]->logicGate = gate;
        conditions[i - 1]->next = conditions[i];
    }
    return conditions.front();
}

}  // namespace QB::Test
