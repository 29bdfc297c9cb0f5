#pragma once

#include <set>

#include "layouts/condition_chain_surgery.h"
#include "model/components.h"
#include "model/detached_parts.h"

/// What edits of joins have in common. Thread: inside a modification block of the FROM clause.
namespace QB::Tools::SQL {

/// Takes @p doomed out of the chain in @p head, at any depth of brackets, and brackets that lose
/// all they hold with them, which no server reads. Each link is a part of its own.
[[nodiscard]] DetachedParts takeConditions(
    ConditionChain::Slot head,
    const std::set<const Component::SQL::SQLAbstractConditionComponent*>& doomed);

/// Makes a comma of @p join and takes its condition. The tree may need another shape afterwards
/// (see SourceTree::sinkJoinsBelowCommas), and joins around may no longer see their sources.
[[nodiscard]] DetachedParts unbind(Component::SQL::SQLJoinSourceNodeComponent* join);

}  // namespace QB::Tools::SQL
