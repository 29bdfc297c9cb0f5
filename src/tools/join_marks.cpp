#include "tools/join_marks.h"

#include <algorithm>
#include <unordered_map>

#include "model/detached_parts.h"
#include "model/element_expressions.h"
#include "tools/join_sight.h"

namespace QB::Tools::SQL {

using namespace Component;
using namespace Component::SQL;

namespace {

/// For each row the first row of the brackets around it.
std::vector<std::size_t> bracketStarts(const std::vector<SourceTree::Place>& places) {
    std::vector<std::size_t> starts;
    std::vector<std::size_t> open = {0};
    for (std::size_t row = 0; row < places.size(); ++row) {
        if (places[row].kind == SourceTree::PlaceKind::Close) open.pop_back();
        starts.push_back(open.back());
        if (places[row].kind == SourceTree::PlaceKind::Open) open.push_back(row);
    }
    return starts;
}

}  // namespace

std::set<long> joinsOutOfSight(const SQLSelectStmtComponent* statement, DatabaseType type) {
    std::set<long> marked;
    if (!statement) return marked;
    const JoinSight sight(&statement->sourceExpr->root);
    const auto& places = sight.places();
    const std::vector<std::size_t> starts = bracketStarts(places);
    std::unordered_map<const AbstractQueryComponent*, std::size_t> rows;
    for (std::size_t row = 0; row < places.size(); ++row)
        rows.emplace(places[row].component, row);

    for (std::size_t row = 0; row < places.size(); ++row) {
        const SQLJoinSourceNodeComponent* const join = sight.joinAt(row);
        if (!join || !join->condition || !join->needsCondition()) continue;
        JoinSight::Span seen = sight.rowsInSight(row);
        if (type == DatabaseTypeSQLite) seen.first = starts[row];
        DetachedParts::References named;
        collectReferences(join->condition, named);
        const bool isBlind = std::any_of(named.begin(), named.end(), [&](const auto* component) {
            const auto found = rows.find(component);
            return found != rows.end() && (found->second < seen.first || found->second > seen.last);
        });
        if (isBlind) marked.insert(join->id());
    }
    return marked;
}

}  // namespace QB::Tools::SQL
