#pragma once

#include <map>

#include "engine/engine.h"
#include "model/components.h"

/// Finds the components of the current layer that name what is not there, repairs references to
/// removed components, and reports the rest. Never removes a component; the text does not depend on
/// validity.
///
/// Each function but the one for sources runs in one modification of its element. It is announced
/// if a reference was repaired, or if a column names a path that no source has and @p known, what
/// the caller has from the check before, does not hold it for that reason, or for the source that
/// it lost in that check; without @p known such a column is announced each time. So a panel that
/// hands in its map is not set off by its own check again. Where the host runs main-thread closures
/// at once the panel has no new map yet while the announcement runs: it must not check then.
/// A map's keys are compared, never dereferenced: what they name may be gone when they are used.
///
/// Names are compared exactly, but for those of tables and fields where the server knows no case. A
/// table that the candidates do not have passes with all of its fields; one whose fields are not
/// fetched has none: who checks does it again when fields came. The result is empty without engine
/// or statement, and for an element of another kind. Thread: main; not inside another modification
/// block.
namespace QB::Tools::Validation {

/// Why a component is marked. The numbers are part of the contract with the panels.
enum InvalidReason : int {
    InvalidReferencedColumn = 0,  ///< the column it referred to is no longer in the SELECT list
    InvalidSource = 1,            ///< its source is no longer in the FROM clause
    InvalidPath = 2,              ///< no source has the path that it names
    InvalidField = 3,             ///< the source has no such field
    InvalidColumnOfUnnamed = 4,   ///< its source is a subquery without alias
    InvalidUnnamedSubquery = 5,   ///< a subquery without alias
    InvalidMissingValue = 6,      ///< no value, an empty list or an empty expression
};

/// By the slot that holds the value, so that both sides of a comparison can be told apart.
using InvalidConditions = std::map<Component::SQL::SQLAbstractConditionComponent**, int>;
using InvalidColumns = std::map<Component::SQL::SQLAbstractColumnComponent*, int>;
using InvalidSources = std::map<Component::SQL::SQLAbstractSourceComponent*, int>;

/// The values in the chain in @p root, at any depth of brackets, each with its first fault, unknown
/// fields after all others;
/// @p element is the clause of the current layer that it belongs to, ElementSource for the
/// condition of a join. Both bounds of a BETWEEN are its right side. A condition where a value is
/// expected, which no panel can show, counts as a missing value; what is in it is checked as well.
/// Shape: @p root is a slot that exists, *root may be null.
InvalidConditions invalidateConditionComponents(
    Component::SQL::SQLAbstractConditionComponent** root, int element, QBEngine* engine,
    void* sender, const InvalidConditions* known = nullptr);

/// The columns of the SELECT list; empty for another element than that.
InvalidColumns invalidateRefComponents_selectColumn(int element, QBEngine* engine, void* sender,
                                                    const InvalidColumns* known = nullptr);

/// The columns of GROUP BY or ORDER BY; empty for another element than these two. Of a column that
/// refers to one of the SELECT list only that is tested.
InvalidColumns invalidateRefComponents_column(int element, QBEngine* engine, void* sender,
                                              const InvalidColumns* known = nullptr);

/// The derived tables of the FROM clause that have no alias. Changes nothing.
InvalidSources invalidateSourceComponents(QBEngine* engine, void* sender);

/// The joins of the FROM clause whose condition a server does not take, or takes for another than
/// the one meant: InvalidSource if it names a source out of the join's sight, InvalidMissingValue
/// if it lacks (see SQL::lackOf) or is not finished, else the first fault in it. Changes nothing.
InvalidSources invalidateJoins(QBEngine* engine);

/// Whether a statement of the query but that of the current layer has anything that the checks
/// above would mark there. Fields count as known: those of a layer that is not shown may not have
/// been fetched. Changes nothing.
bool hasFaultsInOtherLayers(QBEngine* engine);

}  // namespace QB::Tools::Validation
