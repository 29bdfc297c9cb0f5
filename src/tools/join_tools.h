#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/engine.h"
#include "layouts/components_list_layout.h"
#include "model/components.h"

/// How links between sources change the join tree of the current layer, and what of it a link sees.
///
/// Operations that take an engine and a sender make one modification of the FROM clause each, with
/// one notification when something changed; what they take out is retired. Not inside another
/// modification block.
/// Thread: main.
namespace QB::Tools::SQL {

/// The names of the two fields that a link compares.
using FieldPair = std::pair<std::string, std::string>;

/// Joins two sources of the current FROM clause, named sources or subqueries, and appends the
/// condition that their fields are equal.
///
/// The comma between the groups that hold them becomes an INNER JOIN. Where other groups stand in
/// between, the right one moves next to the left one; in a clause that a text gives, nothing else
/// changes places. Between sources that are joined already only the condition is new, on the
/// innermost join that holds both. A join of another kind keeps its kind: a condition on a cross
/// join is kept, but not written, one on a NATURAL join replaces what that compares, or stands
/// where none can; the user is told (showError). No source and no condition is lost, and each
/// condition sees its sources. A join with a USING list takes one more name when both names are
/// equal. Otherwise nothing happens, and the user is told (showError): USING has no room for a
/// comparison, and written out it would no longer merge its columns, which other clauses may name
/// bare. With both names empty the groups are joined without condition; with one empty name that
/// side of the condition stays to be filled in. Nothing happens for a source that is null, of
/// another kind, not in this FROM clause, or linked with itself.
void makeJoinLinkIfNecessary(QBEngine* engine, void* sender,
                             Component::SQL::SQLAbstractSourceComponent* sourceA,
                             const std::string& fieldA,
                             Component::SQL::SQLAbstractSourceComponent* sourceB,
                             const std::string& fieldB);

/// The same with several conditions in one modification, as for the pairs of a composite key; none
/// joins the groups without condition.
void makeJoinLinkIfNecessary(QBEngine* engine, void* sender,
                             Component::SQL::SQLAbstractSourceComponent* sourceA,
                             Component::SQL::SQLAbstractSourceComponent* sourceB,
                             const std::vector<FieldPair>& fields);

/// Removes links: of each join listed the compare conditions that come with it, or if the first one
/// is null all that binds the two sides, so that the join becomes a comma. What is not in the
/// clause, or no link in the chain of its join, is skipped. Sources stay. A join that loses its
/// last condition keeps its kind, and the user is told if its text says NATURAL now (showError);
/// brackets that lose all they hold go, too.
///
/// Then conditions that no longer see their sources are removed: from the joins behind each one
/// listed, up to the next comma, and from those before one that became a comma itself.
void removeJoins(
    QBEngine* engine, void* sender,
    const std::vector<std::pair<Component::SQL::SQLJoinSourceNodeComponent*,
                                Component::SQL::SQLCompareConditionComponent*>>& joins);

/// Columns of USING, by their places in the list, and the joins that they belong to.
using UsingColumns =
    std::map<const Component::SQL::SQLJoinSourceNodeComponent*, std::set<std::size_t>>;
/// Takes columns out of USING lists, in one modification. Joins are found by their address.
void removeUsingColumns(QBEngine* engine, void* sender, const UsingColumns& columns);

/// The fields that the condition of the join in @p joinNode begins its operands with, each with the
/// source below the join that it belongs to: by its reference, or without one by its qualifiers,
/// which are an alias, or name and path of a source without alias. Fields without such a source are
/// left out; @p result is replaced.
void findParentItemComponentOfJoinConditionFieldComponent(
    const Component::SQL::SourceNode* joinNode,
    std::map<Component::SQL::SQLFieldColumnComponent*, Component::SQL::SQLAbstractSourceComponent*>&
        result);

/// Which of @p items stand left and which right of a join in its group, for placing the ends of a
/// link. Items of other groups are left out; the lists are replaced.
void checkItemComponentsSideOnJoinComponent(
    Component::SQL::SourceNode* root, Component::SQL::SourceNode* joinNode,
    const std::vector<Component::SQL::SQLAbstractSourceComponent*>& items,
    std::vector<Component::SQL::SQLAbstractSourceComponent*>& left,
    std::vector<Component::SQL::SQLAbstractSourceComponent*>& right);

/// The named sources and subqueries that the condition of the join in @p row may name: those below
/// the join, brackets in between included, but none before the nearest comma on its left; first its
/// left side from the right to the left, then its right side. Free-text sources do not count.
/// For another row: those of its group, from the nearest comma on its left to the next join.
/// Null for a null or empty layout, for one of no join tree and for a row that is not there.
/// Ownership: the caller owns the list.
std::vector<Component::SQL::SQLAbstractSourceComponent*>* joinConditionRelatedSources(
    QBComponentsListLayout* layout, int row);

}  // namespace QB::Tools::SQL

namespace QB::Tools::Validation {

/// The conditions in the chain of the join in @p row, in text order and at any depth of brackets,
/// that name a source which the join cannot see (see joinConditionRelatedSources), in whatever
/// place of theirs. Each is a link of the chain or of a bracket in it. Empty if there is no such
/// row, or it holds no join.
/// Thread: main.
std::vector<Component::SQL::SQLAbstractConditionComponent*> invalidateJoinConditions(
    QBComponentsListLayout* layout, unsigned long row, QBEngine* engine);

}  // namespace QB::Tools::Validation
