#pragma once

#include "model/components.h"
#include "model/detached_parts.h"
#include "model/element_expressions.h"

namespace QB::Test {

using namespace Component::SQL;

/// SELECT a.f AS x, 1+1 FROM (a JOIN b ON a.f = b.g) WHERE NOT (...) GROUP BY ... ORDER BY ...
/// with the parts by name, so that a test can put a fault into each.
struct Sample {
    SQLSelectStmtComponent statement;
    SQLFieldColumnComponent* field = new SQLFieldColumnComponent;
    SQLAnyExpressionColumnComponent* expression = new SQLAnyExpressionColumnComponent;
    SQLIdentifierSourceComponent* a = new SQLIdentifierSourceComponent;
    SQLIdentifierSourceComponent* b = new SQLIdentifierSourceComponent;
    SQLJoinSourceNodeComponent* join = new SQLJoinSourceNodeComponent;
    SQLCompareConditionComponent* compare = new SQLCompareConditionComponent;
    SQLConditionValueComponent* value = new SQLConditionValueComponent;
    SQLBracketedConditionComponent* bracket = new SQLBracketedConditionComponent;
    SQLFieldColumnComponent* ordered = new SQLFieldColumnComponent;
    SQLAbstractColumnComponent::ExtraDataOrderDirection* direction =
        new SQLAbstractColumnComponent::ExtraDataOrderDirection;

    Sample() {
        field->fieldName = "f";
        field->alias = "x";
        field->source = a;
        field->parentPath = {"s", "a"};
        expression->expression = "1+1";
        statement.selectColumnExpr->columns = {field, expression};
        a->name = "a";
        b->name = "b";
        join->joinType = SQLJoinTypeInner;
        join->condition = compare;
        compare->leftValue = value;
        SourceNode* root = statement.sourceExpr->root = new SourceNode;
        root->value = join;
        root->left = leaf(a);
        root->right = leaf(b);
        statement.whereExpr->root = bracket;
        bracket->inner = new SQLConditionValueComponent;
        ordered->fieldName = "x";
        ordered->referencedColumn = field;
        ordered->extraData = direction;
        statement.orderByExpr->columns = {ordered};
    }
    ~Sample() { destroyUnownedClauses(&statement); }

    static SourceNode* leaf(SQLAbstractSourceComponent* source) {
        auto* node = new SourceNode;
        node->value = source;
        return node;
    }
};

}  // namespace QB::Test
