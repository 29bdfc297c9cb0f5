#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/joinery-sql/script/session.h"
#include "model/components.h"

/// Parts of a statement read from text, as they would be read behind the sources and the SELECT
/// list of the current one, to which their fields then refer.
/// Errors: each throws a Refusal with the parser's reason, and for a text that holds more than is
/// asked for.
namespace QB::Cli {

using Column = Component::SQL::SQLAbstractColumnComponent;
using Condition = Component::SQL::SQLAbstractConditionComponent;

/// What stands between commas in SELECT, GROUP BY or ORDER BY.
std::vector<std::unique_ptr<Column>> readColumns(const Session& session,
                                                 TopLevelQueryComponentElementEnum element,
                                                 const std::string& text);

/// The links of a chain, apart from each other; @p element other than ElementHaving stands for
/// WHERE and for the condition of a join.
std::vector<std::unique_ptr<Condition>> readConditions(const Session& session,
                                                       TopLevelQueryComponentElementEnum element,
                                                       const std::string& text);

/// One source: a table, subquery or free text.
std::unique_ptr<Component::SQL::SQLAbstractSourceComponent> readSource(const Session& session,
                                                                       const std::string& text);

}  // namespace QB::Cli
