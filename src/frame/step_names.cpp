#include "frame/step_names.h"

#include <functional>

#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "model/tree_walks.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

/// Independent of the order in which the joins are met.
std::size_t numberOf(const SQLJoinSourceNodeComponent& join) {
    std::size_t parts = 0;
    Tools::visitOwnedComponents(join.condition, [&parts](const AbstractQueryComponent* part) {
        parts += std::hash<long>()(part->id()) | 1U;
    });
    const std::size_t kind = static_cast<std::size_t>(join.joinType) * 2 + (join.isUsing ? 1 : 0);
    return (std::hash<long>()(join.id()) + kind) * 31 + std::hash<std::string>()(join.joinText) +
           parts;
}

void addTo(QueryOutline& outline, const AbstractQueryComponent* component) {
    if (const auto* statement = ifKind<SQLSelectStmtComponent>(component)) {
        outline.selected += static_cast<long>(statement->selectColumnExpr->columns.size());
    } else if (const auto* join = ifKind<SQLJoinSourceNodeComponent>(component)) {
        outline.conditionedJoins += join->hasCondition() ? 1 : 0;
        outline.joins += numberOf(*join);
    } else if (ifKind<SQLIdentifierSourceComponent>(component) ||
               ifKind<SQLSubquerySourceComponent>(component) ||
               ifKind<SQLAnyExpressionSourceComponent>(component)) {
        ++outline.sources;
    }
}

Tolk::TextId nameOfFromChange(const QueryOutline& before, const QueryOutline& after) {
    if (after.sources > before.sources) return Tolk::TextStepAddTable;
    if (after.sources < before.sources) return Tolk::TextStepRemoveTable;
    if (after.conditionedJoins > before.conditionedJoins) return Tolk::TextStepJoin;
    if (after.joins != before.joins) return Tolk::TextStepChangeJoin;
    return Tolk::TextStepChangeFrom;
}

Tolk::TextId nameOfSelectChange(const QueryOutline& before, const QueryOutline& after) {
    if (after.selected > before.selected) return Tolk::TextStepSelectField;
    if (after.selected < before.selected) return Tolk::TextStepDeselectField;
    return Tolk::TextStepChangeSelect;
}

Tolk::TextId nameOfChange(TopLevelQueryComponentElementEnum element, const QueryOutline& before,
                          const QueryOutline& after) {
    switch (element) {
        case ElementSelectColumn:
            return nameOfSelectChange(before, after);
        case ElementSource:
            return nameOfFromChange(before, after);
        case ElementWhere:
            return Tolk::TextStepChangeWhere;
        case ElementGroupBy:
            return Tolk::TextStepChangeGroupBy;
        case ElementHaving:
            return Tolk::TextStepChangeHaving;
        case ElementOrderBy:
            return Tolk::TextStepChangeOrderBy;
        case ElementLimit:
            return Tolk::TextStepChangeLimit;
    }
    return Tolk::TextStepChangeQuery;
}

}  // namespace

QueryOutline outlineOf(const AbstractTopLevelQueryComponent* root) {
    QueryOutline outline;
    Tools::visitOwnedComponents(
        root, [&outline](const AbstractQueryComponent* component) { addTo(outline, component); });
    return outline;
}

QString stepName(const QueryOutline& before, const QueryOutline& after,
                 const std::set<TopLevelQueryComponentElementEnum>& elements) {
    const bool isOne = elements.size() == 1;
    return Tolk::localize(isOne ? nameOfChange(*elements.begin(), before, after)
                                : Tolk::TextStepChangeQuery);
}

}  // namespace QB
