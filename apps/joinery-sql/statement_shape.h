#pragma once

#include "model/components.h"

/// How much of a statement became components, and how much stayed free text.
namespace QB::Cli {

/// False if a source of the FROM clause is free text. Does not look into subqueries.
bool hasOnlyComponentsInFrom(const Component::SQL::SQLSelectStmtComponent* statement);

/// False if a link of the WHERE chain, or of a chain in brackets there, is free text as a whole.
/// Operands of comparisons may be free text.
bool hasOnlyComponentsInWhere(const Component::SQL::SQLSelectStmtComponent* statement);

}  // namespace QB::Cli
