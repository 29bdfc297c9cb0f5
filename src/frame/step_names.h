#pragma once

#include <QString>
#include <cstddef>
#include <set>

#include "model/components.h"

namespace QB {

/// As much of a query as tells what kind of change was made to it.
struct QueryOutline {
    long sources = 0;           ///< tables, subqueries and expressions in all FROM clauses
    long conditionedJoins = 0;  ///< joins with a condition
    std::size_t joins = 0;      ///< one number for the joins, with what they are made of
    long selected = 0;          ///< columns of all SELECT lists
};

/// Of the whole query. Cost: linear.
QueryOutline outlineOf(const Component::AbstractTopLevelQueryComponent* root);

/// What a step is called that has changed @p elements, in the user's language.
QString stepName(const QueryOutline& before, const QueryOutline& after,
                 const std::set<TopLevelQueryComponentElementEnum>& elements);

}  // namespace QB
