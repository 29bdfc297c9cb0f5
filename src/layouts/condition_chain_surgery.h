#pragma once

#include <memory>
#include <vector>

#include "layouts/slotted_layout.h"
#include "model/components.h"

/// Cuts and splices in a chain of conditions, without rows.
///
/// A slot is the address of an owning pointer: the head of the chain, the next of a link, the inner
/// of a bracket. It is never null, *slot may be. Walks are loops: any length and depth.
namespace QB::ConditionChain {

using Component::SQL::SQLAbstractConditionComponent;
using Component::SQL::SQLBracketedConditionComponent;
using Slot = SQLAbstractConditionComponent**;
using Link = std::unique_ptr<SQLAbstractConditionComponent>;
using Place = QBComponentsListLayout_Private::Place<Slot, SQLAbstractConditionComponent>;

/// Null if @p component is no bracket around conditions.
SQLBracketedConditionComponent* asBracket(Component::AbstractQueryComponent* component);

/// The chain in @p head in text order, the content of brackets included. The slot of a close place
/// is where a new last link of its bracket goes.
std::vector<Place> flatten(Slot head);

/// Takes the link in @p slot out; the rest of the chain moves up to @p slot. *slot is not null.
[[nodiscard]] Link takeLink(Slot slot);

/// Puts @p link, which has no next, before what stands in @p slot.
void insertLink(Slot slot, Link link);

/// As above, in the chain that begins in @p head. A link that comes to stand behind another one
/// without a gate, as the first of a text has none, takes that of the link which is now first,
/// where it means nothing, or else AND: the text must not run two conditions together.
void insertAndBindLink(Slot head, Slot slot, Link link);

/// Puts the content of the bracket in @p slot in its place and returns the empty bracket. The first
/// inner link takes over the bracket's gate and, before its own one, its NOT: the text loses its
/// two brackets and nothing else. The bracket is not empty.
[[nodiscard]] Link takeBracketAway(Slot slot);

}  // namespace QB::ConditionChain
