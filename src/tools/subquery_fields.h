#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "model/components.h"

namespace QB::Tools {

/// The names of the columns that @p subquery yields, without duplicates and in order; the fields of
/// tables that its wildcards need are fetched first. Returns at once.
///
/// @p done is called on the main thread, once, with the subquery, which may be gone by then and is
/// not to be looked into without asking, and the names. It is not called when the engine goes
/// before. Expression columns yield no name.
/// Errors of a fetch leave the names out that it should have brought.
/// Thread: main; the work runs on the dispatched thread and reads the model under the query mutex.
void obtainAndFetchSubqueryFieldList(
    QBEngine* engine, const Component::SQL::SQLSubquerySourceComponent* subquery,
    std::function<void(const Component::SQL::SQLSubquerySourceComponent*,
                       const std::vector<std::string>&)>
        done);

/// The names that are known now, without any fetch, each once: of every column its alias or its
/// field; for wildcards the fields of the tables. Empty for a null or empty subquery.
/// Thread: may read the statement.
std::vector<std::string> knownSubqueryFields(
    QBEngine* engine, const Component::SQL::SQLSubquerySourceComponent* subquery);

}  // namespace QB::Tools
