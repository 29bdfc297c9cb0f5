#pragma once

#include <map>

#include "layouts/components_list_layout_impl.h"
#include "model/components.h"

namespace QB::QBComponentsListLayout_Private {

/// Rows over a chain of conditions (WHERE, HAVING, the ON of a join): a row for each link in text
/// order, the chain inside a bracket one level deeper, between the bracket's two rows. Any length
/// and depth.
///
/// Every row has a slot: the address of the pointer through which its link is reached (the head of
/// the chain, the next of another link, the inner of a bracket). The slot of a close row is where a
/// new last link of its bracket goes. A row's slot is right until the next edit.
template <>
class QBComponentsListLayoutImpl<Component::SQL::SQLAbstractConditionComponent**>
    : public BasicQBComponentsListLayoutImpl {
public:
    using Condition = Component::SQL::SQLAbstractConditionComponent;
    using Slot = Condition**;

    /// @p root is not owned and outlives the layout; null gives no rows, and edits do nothing.
    explicit QBComponentsListLayoutImpl(Slot root);
    ~QBComponentsListLayoutImpl() override;

    /// Any selection of whole conditions, adjacent or not. A bracket row stands for its bracket.
    bool canGroupItemsByBracket(const Items& rows) const override;
    /// Moves the selected links, in row order, into a new bracket before row @p index; -1: before
    /// the first of @p rows. The bracket is bound by AND.
    void groupItemsByBracket(const Items& rows, int index) override;
    /// One bracket row, or the run from an open row to its close row, of a bracket with content.
    bool canUngroupItemsByBracket(const Items& rows) const override;
    /// The first inner link takes over how the bracket was bound, and a lone one its negation.
    void ungroupItemsByBracket(const Items& rows) override;
    void rebuildItems() override;
    Items addItem(Component::AbstractQueryComponent* component, int index) override;
    /// @p component is one link: no next. A bracket may bring content.
    Items insertItem(Component::AbstractQueryComponent* component, int index) override;
    /// A close row moves its bracket. A bracket does not go into itself.
    void moveItem(Item* item, unsigned long target) override;
    /// Removes one link, a bracket with its content.
    void removeItem_internal(Item* item) override;
    /// The new link takes over the rest of the chain. A bracket is replaced only when it is empty
    /// or by a bracket, whose content then shows.
    void replaceItemComponent(Item* item, Component::AbstractQueryComponent* component,
                              bool deleteOld) override;
    int moveUpOffset(Item* item) const override;
    int moveDownOffset(Item* item) const override;

    /// Null for a row that is not here.
    Slot slotOf(Item* item) const;

private:
    const Slot m_root;  // not owned: a field of an element, a join or a bracket
    std::map<Item*, Slot> m_slots;
};

using ConditionListLayout =
    QBComponentsListLayoutImpl<Component::SQL::SQLAbstractConditionComponent**>;

}  // namespace QB::QBComponentsListLayout_Private
