#pragma once

#include <map>
#include <string>
#include <vector>

#include "model/components.h"

namespace QB::Tools {

/// Where the lists of fields of a diagram come from: @p statement with @p path, and the statement
/// of every derived table with an alias below it, at any depth, with @p path and the aliases that
/// lead there. What stands below a derived table without alias is left out. Empty for a null
/// @p statement.
/// Thread: main.
std::map<Component::AbstractTopLevelQueryComponent*, std::vector<std::string>>
collectSourceFieldLists(Component::AbstractTopLevelQueryComponent* statement,
                        const std::vector<std::string>& path);

}  // namespace QB::Tools
