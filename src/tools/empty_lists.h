#pragma once

#include <vector>

#include "engine/engine.h"
#include "model/export.h"

/// A statement in which no column was chosen has the text "SELECT *", and that is read as a chosen
/// wildcard. Both mean the same, but to the next tick: it begins the one list, and adds to the
/// other. Who keeps a query as its text keeps the sizes of the lists beside it.
namespace QB::Tools::SQL {

/// How many columns each SELECT list of the query has: that of the root statement first, then those
/// of the subqueries in the FROM clauses, in an order that the text decides. Thread: main.
QB_EXPORT std::vector<int> selectListSizes(const QBEngine* engine);

/// Empties the lists that were empty when selectListSizes() told @p sizes; the query has been read
/// from its text since. Changes nothing if there are other statements or columns than those, or if
/// the text would change. Announced as a change of SELECT and FROM of the root: a derived table has
/// other fields now. Thread: main, outside any block.
QB_EXPORT void emptySelectLists(QBEngine* engine, const std::vector<int>& sizes, void* sender);

}  // namespace QB::Tools::SQL
