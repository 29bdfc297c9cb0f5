#pragma once

#include <optional>
#include <vector>

#include "layouts/slotted_layout.h"
#include "model/components.h"

namespace QB::QBComponentsListLayout_Private {

/// Rows over a chain of conditions (WHERE, HAVING, the ON of a join): a row for each link in text
/// order, the chain inside a bracket one level deeper, between the bracket's two rows. Any length
/// and depth.
///
/// Every row has a slot: the address of the pointer through which its link is reached (the head of
/// the chain, the next of another link, the inner of a bracket). The slot of a close row is where a
/// new last link of its bracket goes. A row's slot is right until the next edit.
///
/// A moved or grouped link keeps the records of its rows.
/// Errors: an edit throws std::out_of_range, before it changes anything, if the chain is not what
/// the rows show.
template <>
class QBComponentsListLayoutImpl<Component::SQL::SQLAbstractConditionComponent**>
    : public SlottedLayout<Component::SQL::SQLAbstractConditionComponent**> {
public:
    using Condition = Component::SQL::SQLAbstractConditionComponent;
    using Slot = Condition**;

    /// @p root is not owned and outlives the layout; null gives no rows, and edits do nothing.
    explicit QBComponentsListLayoutImpl(Slot root);
    ~QBComponentsListLayoutImpl() override;

    /// Any selection of whole conditions, adjacent or not. A bracket row alone stands for its
    /// bracket; among several rows a bracket comes with all of its rows.
    bool canGroupItemsByBracket(const Items& rows) const override;
    /// Moves the selected links, in row order, into a new bracket before row @p index, or before
    /// the next row that is not selected; -1 means the first selected row. The bracket is bound by
    /// AND; the links keep their gates, of which the first one is without meaning from then on.
    void groupItemsByBracket(const Items& rows, int index) override;
    /// One bracket row, or the run from an open row to its close row, of a bracket with content.
    bool canUngroupItemsByBracket(const Items& rows) const override;
    /// The text loses the two brackets and nothing else: the first inner link takes over the gate
    /// of the bracket, and its NOT (NOT before a negated link is no NOT).
    void ungroupItemsByBracket(const Items& rows) override;
    void rebuildItems() override;
    Items addItem(Component::AbstractQueryComponent* component, int index) override;
    /// @p component is one link: no next, and not here yet. A bracket may bring content.
    Items insertItem(Component::AbstractQueryComponent* component, int index) override;
    /// A close row moves its bracket. A bracket does not go into itself.
    void moveItem(Item* item, unsigned long target) override;
    /// Removes one link, a bracket with its content.
    void removeItem_internal(Item* item) override;
    void removeItems_internal(const Items& rows) override;
    /// The new link, which has no next, takes over the rest of the chain; the old one has none
    /// then, and may be a part of the new one. A bracket with content is replaced only by a
    /// bracket. Rows of a bracket's content come and go with it.
    void replaceItemComponent(Item* item, Component::AbstractQueryComponent* component,
                              bool deleteOld) override;
    int moveUpOffset(Item* item) const override;
    int moveDownOffset(Item* item) const override;

private:
    struct Piece;
    struct Gap;
    using Spans = std::vector<Span>;

    Condition* looseLink(Component::AbstractQueryComponent* component) const;
    Gap gapAt(std::size_t position) const;
    Slot headOfGroup(std::size_t position, int level) const;
    static Piece makePiece(Condition* link);
    static Piece bracketAround(std::vector<Piece> pieces);
    Items insertPiece(std::size_t position, Piece piece);
    std::vector<Piece> takeOut(const Spans& spans);
    void fillEmptyGroups();
    Spans spansOf(const Items& rows) const;
    std::optional<Spans> groupedSpans(const Items& rows) const;
    std::optional<Span> ungroupedSpan(const Items& rows) const;
    const Item* rowOutside(const Spans& spans, std::size_t index) const;
    std::size_t distanceToPartner(Item* item) const;
    void noteSlots();

    const Slot m_root;  // not owned: a field of an element, a join or a bracket
};

using ConditionListLayout =
    QBComponentsListLayoutImpl<Component::SQL::SQLAbstractConditionComponent**>;

}  // namespace QB::QBComponentsListLayout_Private
