#pragma once

#include "layouts/slotted_layout.h"
#include "model/components.h"

namespace QB::QBComponentsListLayout_Private {

/// Rows over the join tree of a FROM clause: operands with their joins between them, as the text
/// reads; the content of a bracket one level deeper. Any shape and depth of tree.
///
/// Every row but a close row has a slot: the address of the pointer in the tree through which its
/// node is reached (a child field or the root), never null itself. A row's slot is right until the
/// next edit.
///
/// Errors: an edit throws std::out_of_range, before it changes anything, if the tree is not what
/// the rows show.
template <>
class QBComponentsListLayoutImpl<Component::SQL::SourceNode**>
    : public SlottedLayout<Component::SQL::SourceNode**> {
public:
    using Slot = Component::SQL::SourceNode**;

    /// @p root is not owned and outlives the layout; null gives no rows, and edits do nothing.
    /// There are no rows before rebuildItems.
    explicit QBComponentsListLayoutImpl(Slot root);
    ~QBComponentsListLayoutImpl() override;

    bool canGroupItemsByBracket(const Items& rows) const override;
    /// Wraps adjacent operands. Where commas hold them apart in the tree these are rotated first,
    /// which the text does not show. The index is not used.
    void groupItemsByBracket(const Items& rows, int index) override;
    bool canUngroupItemsByBracket(const Items& rows) const override;
    void ungroupItemsByBracket(const Items& rows) override;
    void rebuildItems() override;
    Items addItem(Component::AbstractQueryComponent* component, int index) override;
    /// The new source comes with a join to its neighbour: a comma if it stands first in its group,
    /// otherwise a custom join without text, which the caller sets. An index inside a run of
    /// operands means before the join above it. A join component is no source and is refused.
    Items insertItem(Component::AbstractQueryComponent* component, int index) override;
    /// Does nothing: sources are moved only by removing and adding.
    void moveItem(Item* item, unsigned long target) override;
    /// Removes an operand and the join that bound it. A join row stands for the source on its
    /// right, a close row for its bracket.
    void removeItem_internal(Item* item) override;
    /// A join is replaced only by a join, a bracket by a bracket, another source by such a one.
    void replaceItemComponent(Item* item, Component::AbstractQueryComponent* component,
                              bool deleteOld) override;

    /// Whether @p rows can be put into a bracket: whole operands of one group, adjacent, and not
    /// across a join that binds tighter. A single bracket row is widened to its bracket, backwards
    /// when it is the open row.
    virtual bool obtainGroupItemsByBracket(Items& rows) const;
    /// Whether @p rows are one bracket with content, from its open to its close row, and without an
    /// alias, which would be lost to the fields that name it. A single bracket row is widened to
    /// its bracket, in row order.
    virtual bool obtainUngroupItemsByBracket(Items& rows) const;

    /// The slot of the whole tree.
    Slot root() const { return m_root; }

private:
    struct Gap;

    Gap gapAt(int index) const;
    std::size_t snapToJoin(int index) const;
    Items insertIntoGap(const Gap& gap, Component::SQL::SQLAbstractSourceComponent* source);
    bool isWholeOperands(Span span) const;
    /// The row whose slot holds the operand that starts or ends in @p item.
    static Item* operandRow(Item* item) { return isClose(item) ? item->partnerItem : item; }
    void noteSlots();

    const Slot m_root;  // not owned: a field of an element expression
};

using SourceTreeLayout = QBComponentsListLayoutImpl<Component::SQL::SourceNode**>;

}  // namespace QB::QBComponentsListLayout_Private
