#pragma once

#include <set>

#include "model/components.h"

namespace QB::Tools::SQL {

/// The ids of the joins whose written condition names a source that the server does not see from
/// there: one before a comma, behind the join, or outside of its brackets. SQLite looks past
/// commas.
/// Linear. Null has none.
/// Thread: may read the statement.
std::set<long> joinsOutOfSight(const Component::SQL::SQLSelectStmtComponent* statement,
                               DatabaseType type);

}  // namespace QB::Tools::SQL
