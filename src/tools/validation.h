#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "model/components.h"

/// Finds the components of the current layer that name what is not there, repairs references to
/// removed components, and reports the rest. Never removes a component; the text does not depend on
/// validity.
///
/// Each function runs in one modification of its element. It is announced if a reference was
/// repaired, or a column names a path that no source has and @p known, what the caller has from the
/// check before, does not hold that column for that reason; without @p known such a column is
/// announced each time. So a panel that hands in its map is not set off by its own check again.
/// A map's keys are compared, never dereferenced: what they name may be gone when they are used.
/// Thread: main.
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

/// The values in the chain in @p root; @p element is the clause that it belongs to, ElementSource
/// for the condition of a join.
InvalidConditions invalidateConditionComponents(
    Component::SQL::SQLAbstractConditionComponent** root, int element, QBEngine* engine,
    void* sender, const InvalidConditions* known = nullptr);

/// The columns of the SELECT list; empty for another element than that.
InvalidColumns invalidateRefComponents_selectColumn(int element, QBEngine* engine, void* sender,
                                                    const InvalidColumns* known = nullptr);

/// The columns of GROUP BY or ORDER BY; empty for another element than these two.
InvalidColumns invalidateRefComponents_column(int element, QBEngine* engine, void* sender,
                                              const InvalidColumns* known = nullptr);

/// The sources of the FROM clause.
InvalidSources invalidateSourceComponents(QBEngine* engine, void* sender);

}  // namespace QB::Tools::Validation

namespace QB::Tools {

/// @p statement with @p path, and every statement of a subquery source with an alias below it, at
/// any depth, with the path of aliases that leads there.
std::map<Component::AbstractTopLevelQueryComponent*, std::vector<std::string>>
collectSourceFieldLists(Component::AbstractTopLevelQueryComponent* statement,
                        const std::vector<std::string>& path);

}  // namespace QB::Tools
