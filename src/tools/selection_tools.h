#pragma once

#include <string>

#include "engine/engine.h"
#include "model/components.h"

/// Ticks: which fields of a source stand in the SELECT list of the current layer. One modification
/// each, with a notification when something changed. Columns that go are retired.
/// Thread: main.
namespace QB::Tools::SQL {

/// With @p select appends a column for each field of @p source that is not there yet, the wildcard
/// first if @p includeWildcard. The fields are those of its candidate, or the names that a subquery
/// yields as far as they are known; of another source none are known and nothing happens.
/// Otherwise removes all field columns of @p source, its wildcard only if @p includeWildcard.
/// Cost: linear in the fields and in the columns.
void changeItemComponentAllSelection(QBEngine* engine, void* sender,
                                     Component::SQL::SQLAbstractSourceComponent* source,
                                     bool includeWildcard, bool select);

/// With @p select appends a column for the field, or for the wildcard if @p fieldName is empty,
/// even if it is there already. Otherwise removes all columns of that field.
void changeItemComponentFieldSelection(QBEngine* engine, void* sender,
                                       Component::SQL::SQLAbstractSourceComponent* source,
                                       const std::string& fieldName, bool select);

}  // namespace QB::Tools::SQL
