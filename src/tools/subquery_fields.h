#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "model/components.h"

/// The names of the columns that a subquery yields, each once: first its named columns in order
/// (the alias, or else the field), then for its wildcards the fields of the tables in the order of
/// the FROM clause, then the names of inner subqueries, which are found in the same way. A wildcard
/// that a source qualifies stands for that source, or for what is in the bracket; one whose source
/// has left the FROM clause stands for nothing. COUNT(*) is no wildcard.
namespace QB::Tools {

/// Looks the names up, and fetches the fields of those tables that have none yet. Returns at once.
///
/// @p done (may be empty) is called on the main thread, once, with the subquery, which may be gone
/// by then and is not to be looked into without asking, and the names: none if it is null, gone or
/// empty. It is not called when the engine goes before. Expression columns yield no name.
///
/// Errors: a fetch that throws leaves out the names that it should have brought, and those of all
/// fetches after it. What it threw leaves the task after @p done was posted, to the host's
/// dispatched thread, as that of QBEngine::refreshRequestedIdentifierCandidateChildren.
/// Thread: main. The work runs on the dispatched thread. It first waits for a refresh that is under
/// way, at most 100 ms in all, and holds the query mutex only to read one SELECT list at a time.
/// Cost: linear; any depth of subqueries.
void obtainAndFetchSubqueryFieldList(
    QBEngine* engine, const Component::SQL::SQLSubquerySourceComponent* subquery,
    std::function<void(const Component::SQL::SQLSubquerySourceComponent*,
                       const std::vector<std::string>&)>
        done);

/// The names that are known now, without any fetch; here expression columns count that have an
/// alias. Empty for a null or empty subquery.
/// Thread: may read the statement.
std::vector<std::string> knownSubqueryFields(
    QBEngine* engine, const Component::SQL::SQLSubquerySourceComponent* subquery);

}  // namespace QB::Tools
