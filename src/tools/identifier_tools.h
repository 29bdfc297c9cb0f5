#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "model/components.h"
#include "model/element_expressions.h"

namespace QB {
class CandidateTree;
}

namespace QB::Tools::Identifier {

/// What a component names among the server's objects.
struct CandidateResult {
    QBIdentifierCandidate* candidate =
        nullptr;                    // not owned; null: nothing fits, or not fetched yet
    std::vector<std::string> path;  ///< the names looked for or walked, outermost first
};

/// The candidate that a source or a column names; empty for other components and for null.
///
/// A named source: its path and name are looked up from the root; without a path, under the current
/// schema; a path of several names that leads nowhere is tried again with its last name alone, the
/// schema. The result's path is the source's own path and name.
///
/// A field column: the table that its source names, or without a source what its qualifiers name,
/// and in that the field. With @p stopAtSource the table itself is the result, or the deepest node
/// that was found if only the first few qualifiers are known; such a node has no field for the
/// column. A wildcard has no candidate of its own.
/// Thread: any that may read @p component.
CandidateResult findTargetIdentifierCandidate(const Component::AbstractQueryComponent* component,
                                              QBEngine* engine, bool stopAtSource);

/// The names that lead from the root to a table: its qualifiers, outermost first, or where it has
/// none the current schema, and its own name.
std::vector<std::string> tablePath(std::vector<std::string> qualifiers, const std::string& name,
                                   const std::string& currentSchema);

/// Where the table of that path may stand among the candidates, the likelier place first: there,
/// or, where the server's tree begins with schemas, under the last of several qualifiers alone.
std::vector<std::vector<std::string>> tablePlaces(const std::vector<std::string>& path);

/// The candidate at the first of the places of that path which is known to its end; null if none.
/// Thread: any.
QBIdentifierCandidate* findTableCandidate(const CandidateTree& candidates,
                                          const std::vector<std::string>& path);

/// A source that names @p candidate, with the names above it as its path, up to the root or a node
/// of the type IdentifierTypeQuery. Null for the root and for a candidate that the engine does not
/// know.
[[nodiscard]] std::unique_ptr<Component::SQL::SQLIdentifierSourceComponent> makeIdentifierComponent(
    QBEngine* engine, const QBIdentifierCandidate* candidate);

/// Appends a source to the FROM clause of a layer, after a comma, in one modification with one
/// notification. Joins with conditions come later. Not inside another modification block.
/// @p layer counts from 0, the root; -1 is the current one.
/// Ownership: passes to the statement. If there is no statement, or @p component is null or no
/// source (a join), nothing is added, it is destroyed and the result is null.
Component::SQL::SQLAbstractSourceComponent* addSourceComponentToExpression(
    QBEngine* engine, void* sender,
    std::unique_ptr<Component::SQL::SQLAbstractSourceComponent> component, int layer = -1);

/// Makes the source that names @p candidate and appends it. Null if nothing was added.
Component::SQL::SQLIdentifierSourceComponent* addIdentifierComponentToExpression(
    QBEngine* engine, void* sender, const QBIdentifierCandidate* candidate);

}  // namespace QB::Tools::Identifier

namespace QB::Tools {

/// The named sources of the FROM clause with exactly this path and name, in text order; unless
/// @p ignoreAlias, only those with this alias. Looks through joins and brackets, not into
/// subqueries. None for a null @p element.
/// Thread: the caller may read the statement.
std::vector<Component::SQL::SQLIdentifierSourceComponent*> findTargetIdentifierSourceNodes(
    const ELEMSQLSourceExpr* element, const std::vector<std::string>& path, const std::string& name,
    const std::string& alias, bool ignoreAlias);

}  // namespace QB::Tools
