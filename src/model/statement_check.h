#pragma once

#include <string>
#include <vector>

#include "model/components.h"

namespace QB {

/// What is broken in a statement: empty if it is whole. Each fault is a line that names the
/// component and what is wrong with it.
///
/// Whole means: every node and component once; joins with both children, brackets and leaves with
/// what belongs to them; every source and referenced column of a field among those of its own
/// statement, or of a statement around it; every one of @p layers, the statements that are open,
/// the root or a subquery of the layer before.
/// For debugging and tests. Any size and depth; linear.
/// Thread: the caller may read the statement.
std::string findStatementFaults(
    const Component::AbstractTopLevelQueryComponent* root,
    const std::vector<const Component::AbstractTopLevelQueryComponent*>& layers = {});

}  // namespace QB
