#include "model/components.h"

#include <stdexcept>
#include <utility>

#include "model/element_expressions.h"
#include "model/liveness.h"

namespace QB::Component {

AbstractQueryComponent::AbstractQueryComponent() : m_id(issueId()) {}
AbstractQueryComponent::~AbstractQueryComponent() {
    retireId(m_id);
}
AbstractTopLevelQueryComponent::~AbstractTopLevelQueryComponent() = default;

}  // namespace QB::Component

namespace QB::Component::SQL {
namespace {

void detach(SQLAbstractConditionComponent*& slot,
            std::vector<SQLAbstractConditionComponent*>& pending) {
    if (slot) pending.push_back(std::exchange(slot, nullptr));
}

/// Takes every condition that @p condition owns away from it.
void detachOwned(SQLAbstractConditionComponent* condition,
                 std::vector<SQLAbstractConditionComponent*>& pending) {
    detach(condition->next, pending);
    if (auto* compare = dynamic_cast<SQLCompareConditionComponent*>(condition)) {
        detach(compare->leftValue, pending);
        detach(compare->rightValue, pending);
    } else if (auto* bracket = dynamic_cast<SQLBracketedConditionComponent*>(condition)) {
        detach(bracket->inner, pending);
    }
}

/// Destroys a condition with all that hangs on it, by a loop: chains and nested brackets may be
/// longer than the stack is deep.
void destroyConditions(SQLAbstractConditionComponent*& slot) {
    std::vector<SQLAbstractConditionComponent*> pending;
    detach(slot, pending);
    while (!pending.empty()) {
        SQLAbstractConditionComponent* condition = pending.back();
        pending.pop_back();
        detachOwned(condition, pending);
        delete condition;
    }
}

}  // namespace

SQLSelectStmtComponent::SQLSelectStmtComponent()
    : selectColumnExpr(new ELEMSQLSelectColumnExpr)
    , sourceExpr(new ELEMSQLSourceExpr)
    , whereExpr(new ELEMSQLConditionExpr)
    , groupByExpr(new ELEMSQLColumnExpr)
    , havingExpr(new ELEMSQLConditionExpr)
    , orderByExpr(new ELEMSQLColumnExpr)
    , limitExpr(new ELEMSQLLimitExpr) {}

SQLSelectStmtComponent::~SQLSelectStmtComponent() {
    delete selectColumnExpr;
    delete sourceExpr;
    delete whereExpr;
    delete groupByExpr;
    delete havingExpr;
    delete orderByExpr;
    delete limitExpr;
}

ELEMAbstractTopLevelQueryExpr* SQLSelectStmtComponent::element(
    TopLevelQueryComponentElementEnum which) {
    switch (which) {
        case ElementSelectColumn:
            return selectColumnExpr;
        case ElementSource:
            return sourceExpr;
        case ElementWhere:
            return whereExpr;
        case ElementGroupBy:
            return groupByExpr;
        case ElementHaving:
            return havingExpr;
        case ElementOrderBy:
            return orderByExpr;
        case ElementLimit:
            return limitExpr;
    }
    throw std::runtime_error("Unexpected TopLevelQueryComponentElement");
}

SQLAbstractSourceComponent::~SQLAbstractSourceComponent() = default;
SQLIdentifierSourceComponent::~SQLIdentifierSourceComponent() = default;
SQLAnyExpressionSourceComponent::~SQLAnyExpressionSourceComponent() = default;
SQLBracketedSourceNodeComponent::~SQLBracketedSourceNodeComponent() = default;
SQLSubquerySourceComponent::~SQLSubquerySourceComponent() {
    delete subquery;
}
SQLJoinSourceNodeComponent::~SQLJoinSourceNodeComponent() {
    destroyConditions(condition);
}

SQLAbstractColumnComponent::ExtraDataBase::~ExtraDataBase() = default;
SQLAbstractColumnComponent::ExtraDataOrderDirection::~ExtraDataOrderDirection() = default;
SQLAbstractColumnComponent::~SQLAbstractColumnComponent() {
    delete extraData;
}
SQLFieldColumnComponent::~SQLFieldColumnComponent() = default;
SQLAnyExpressionColumnComponent::~SQLAnyExpressionColumnComponent() = default;

SQLAbstractConditionComponent::~SQLAbstractConditionComponent() {
    destroyConditions(next);
}

SQLConditionValueComponent::~SQLConditionValueComponent() {
    for (SQLAbstractColumnComponent* value : values)
        delete value;
}

SQLAbstractColumnComponent* SQLConditionValueComponent::firstValue() const {
    return values.empty() ? nullptr : values.front();
}

SQLAbstractColumnComponent*& SQLConditionValueComponent::firstValueRef() {
    if (values.empty()) values.push_back(nullptr);
    return values.front();
}

SQLCompareConditionComponent::~SQLCompareConditionComponent() {
    destroyConditions(leftValue);
    destroyConditions(rightValue);
}

SQLBracketedConditionComponent::~SQLBracketedConditionComponent() {
    destroyConditions(inner);
}

}  // namespace QB::Component::SQL
