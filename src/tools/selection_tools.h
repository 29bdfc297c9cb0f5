#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "model/components.h"

/// Ticks: which fields of a source stand in the SELECT list of the current layer. One modification
/// each, with a notification when something changed. Columns that go are retired: a sorted or
/// grouped column may still refer to them.
///
/// A column is one of a source if it refers to it; or if it refers to none, and its qualifiers are
/// the path and the name of the source. So two aliases of one table are told apart. A field is
/// ticked by such a column, unless that is in an aggregate, and by its bare name, where only this
/// source has it (see BareNames).
/// A source that is null, or does not stand in the FROM clause of the current layer, changes
/// nothing; its address is compared before it is looked into.
/// Thread: main; not inside another modification block.
namespace QB::Tools::SQL {

/// With @p select appends a column for each field of @p source that is not there yet, the wildcard
/// first if @p includeWildcard. The fields are those of its candidate, or the names that a subquery
/// with a FROM clause yields as far as they are known (knownSubqueryFields); of another source none
/// are known and nothing happens.
/// Otherwise removes all field columns of @p source, those in aggregates, too, and its wildcard
/// only if @p includeWildcard. Cost: linear in the fields and in the columns.
void changeItemComponentAllSelection(QBEngine* engine, void* sender,
                                     Component::SQL::SQLAbstractSourceComponent* source,
                                     bool includeWildcard, bool select);

/// With @p select appends a column for the field, or for the wildcard if @p fieldName is empty,
/// even if it is there already. Otherwise removes all columns that tick that field.
void changeItemComponentFieldSelection(QBEngine* engine, void* sender,
                                       Component::SQL::SQLAbstractSourceComponent* source,
                                       const std::string& fieldName, bool select);

/// For each source of the FROM clause the names of its fields in the SELECT list, "" for its
/// wildcard, as they are written, in the order of the list and as often as they stand there; none
/// for a source without any. Empty for a null @p engine or @p statement. Thread: may read the
/// statement. Cost: linear.
using SelectedFields =
    std::map<const Component::SQL::SQLAbstractSourceComponent*, std::vector<std::string>>;
SelectedFields selectedFields(QBEngine* engine,
                              const Component::SQL::SQLSelectStmtComponent* statement);

/// A column that names a field of @p source, or with an empty name all of them: with a reference to
/// the source and, where it is a table, its path and name as qualifiers.
[[nodiscard]] std::unique_ptr<Component::SQL::SQLFieldColumnComponent> makeFieldColumn(
    Component::SQL::SQLAbstractSourceComponent* source, const std::string& fieldName);

}  // namespace QB::Tools::SQL
