#pragma once

#include <string>

#include "engine/engine.h"
#include "model/components.h"

namespace QB {

/// Gives @p column of the current layer's SELECT list another alias, or none, and keeps the
/// meaning of the columns that refer to it.
///
/// Those of GROUP BY and ORDER BY follow; without an alias there is nothing to refer to, and they
/// name what the column names. A number alone would be read there as the place of a column: then
/// they keep the name that was written, and have lost their reference. In the SELECT list itself no
/// server knows an alias: there they keep the name as it was written. Thread: inside a modification
/// block of the current layer. Cost: linear in the columns.
void setColumnAlias(Component::SQL::SQLAbstractColumnComponent* column, const std::string& alias,
                    QBEngine* engine);

}  // namespace QB
