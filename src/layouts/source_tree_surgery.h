#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "layouts/slotted_layout.h"
#include "model/components.h"

/// Cuts and splices in a join tree, without rows: what they do to the order of the text is what the
/// rows show.
///
/// A slot is the address of an owning pointer of the tree, never null; *slot may be null. An
/// operand is a leaf or a bracket; the joins between the operands of one bracket, or of the top
/// level, are a group. Walks are loops: any depth of tree.
namespace QB::SourceTree {

using Component::SQL::SourceNode;
using Component::SQL::SQLAbstractSourceComponent;
using Slot = SourceNode**;

bool isJoin(const SQLAbstractSourceComponent* component);
bool isBracket(const SQLAbstractSourceComponent* component);
bool isComma(const SQLAbstractSourceComponent* component);
/// A table, free text or a subquery.
bool isLeaf(const SQLAbstractSourceComponent* component);

/// The slots from the root down to a node, both included.
using Path = std::vector<Slot>;

/// The way from @p root to the node that holds @p value, which is compared by address only; empty
/// if none does, and for null.
Path pathToValue(Slot root, const SQLAbstractSourceComponent* value);

/// The slot of the group (the root, or the content of a bracket) that holds the node at @p depth of
/// @p path.
Slot groupOf(const Path& path, std::size_t depth);

using QBComponentsListLayout_Private::PlaceKind;
/// What one row shows: a leaf, a join, an end of a bracket, or an empty slot. A close has no slot.
using Place = QBComponentsListLayout_Private::Place<Slot, SQLAbstractSourceComponent>;

/// The tree below @p root in text order. Values of no known class are left out.
std::vector<Place> flatten(Slot root);

enum class Side { Left, Right };

/// Puts a new join into @p target, with the subtree that is there and @p operand below it, the
/// operand at @p side. Left of a subtree the join is a comma, right of it a custom join.
/// Returns the join's component. Every other slot stays valid.
SQLAbstractSourceComponent* joinWith(Slot target, std::unique_ptr<SourceNode> operand, Side side);

/// J(X, K(L(Y, Z), ...)) becomes K(L(J(X, Y), Z), ...): the same order of operands and joins,
/// leaning to the left. The right side of the join in @p slot is a join.
void leanLeft(Slot slot);

/// Takes the operand in @p slot out, together with the join right above it, if there is one: the
/// join's slot then holds its other side. Otherwise @p slot is left null.
/// Returns the join node with the operand below it, or the operand alone.
[[nodiscard]] std::unique_ptr<SourceNode> takeOperand(Slot root, Slot slot);

/// True if a bracket fits around the operands from the one in @p first to the one in @p last, of
/// one group: that is, unless one end lies inside the right side of a join whose other operands are
/// partly outside. Only commas may be in the way; the text does not show where they stand in the
/// tree.
bool canWrap(Slot root, Slot first, Slot last);

/// Puts a new bracket around those operands and returns its component. canWrap must be true.
SQLAbstractSourceComponent* wrap(Slot root, Slot first, Slot last);

/// Puts the content of the bracket in @p slot in its place, so that a chain of joins leans to the
/// left again; commas in it that would stand before the condition of a join around it rise above
/// that join (see sinkJoinsBelowCommas). Returns the bracket node without its content.
[[nodiscard]] std::unique_ptr<SourceNode> takeBracketAway(Slot root, Slot slot);

/// Gives the group in @p group (the root, or the content of a bracket) the shape that its text is
/// read in: operands that a join other than a comma binds to their neighbours, in trees of their
/// own without commas, and commas above them that lean to the left. The text keeps its order; a
/// join with a comma below it now binds the nearest of what it held on either side, and its
/// condition stands in front of the comma.
/// Returns true if a node moved. Every slot but @p group may hold something else then.
bool sinkJoinsBelowCommas(Slot group);

/// The join under which two sources stand next to each other.
struct Meeting {
    Slot join;
    bool isInOrder;  ///< the first one stands left
    bool isMoved;    ///< nodes moved: all other slots may hold something else
};

/// Makes two sources meet at a join that may compare them: no comma stands between them and none
/// behind that join, within brackets apart. Where their join is such a one, a comma itself
/// included, nothing moves. Otherwise the group of its sources is put in order (see
/// sinkJoinsBelowCommas), and what the right one is joined to goes behind what the left one is
/// joined to. The join found keeps its kind.
/// None if one of the two is not in the tree, or both are the same.
std::optional<Meeting> bringTogether(Slot root, const SQLAbstractSourceComponent* first,
                                     const SQLAbstractSourceComponent* second);

}  // namespace QB::SourceTree
