#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "layouts/components_list_layout_item.h"
#include "model/detached_parts.h"

namespace QB::QBComponentsListLayout_Private {

/// Rows over one structure of the model, and the edits that change both together.
///
/// An edit changes the model and the rows in place and never rebuilds: the record of every row that
/// the edit does not concern survives. A row that is not in the layout is ignored.
/// Ownership: owns its rows, never the model. What an edit takes out of the model is collected
/// until takeDetachedParts; parts that nobody takes are freed with the implementation.
/// Thread: main thread; edits run inside a modification block of the engine, and each edit, or run
/// of edits, ends with updateItemFlags.
class BasicQBComponentsListLayoutImpl {
public:
    using Item = QBComponentsListLayoutItem;
    using Items = std::vector<Item*>;

    BasicQBComponentsListLayoutImpl() = default;
    BasicQBComponentsListLayoutImpl(const BasicQBComponentsListLayoutImpl&) = delete;
    BasicQBComponentsListLayoutImpl& operator=(const BasicQBComponentsListLayoutImpl&) = delete;

    virtual ~BasicQBComponentsListLayoutImpl();
    /// Sets isGroupTail on all rows and frees the records of removed rows, which until here keep
    /// their addresses from being given to new ones.
    virtual void updateItemFlags();
    virtual bool canGroupItemsByBracket(const Items& rows) const = 0;
    /// Puts @p rows into a new bracket; nothing happens if they cannot be grouped. @p index is
    /// where the bracket goes, for forms that can choose.
    virtual void groupItemsByBracket(const Items& rows, int index) = 0;
    virtual bool canUngroupItemsByBracket(const Items& rows) const = 0;
    /// Takes a bracket away and leaves its content; nothing happens if @p rows are no such bracket.
    virtual void ungroupItemsByBracket(const Items& rows) = 0;
    /// Builds the rows from the model. The flags are set by updateItemFlags.
    virtual void rebuildItems() = 0;
    /// Appends @p component to the group that holds row @p index; an index outside the rows means
    /// the end. Result and ownership as insertItem.
    virtual Items addItem(Component::AbstractQueryComponent* component, int index) = 0;
    /// Inserts @p component before row @p index; a negative index or one past the rows means the
    /// end. Returns the new rows in row order, joins and brackets included.
    /// Ownership: @p component passes to the model, unless the result is empty: then it does not
    /// fit into this structure, nothing changed and the caller keeps it.
    virtual Items insertItem(Component::AbstractQueryComponent* component, int index) = 0;
    /// Moves a row before row @p target; the row count means the end.
    virtual void moveItem(Item* item, unsigned long target) = 0;
    virtual void removeItem_internal(Item* item) = 0;
    /// Puts @p component in the place of the row's component, which is detached if @p deleteOld and
    /// otherwise passes to the caller. Nothing happens where the new one does not fit the row.
    virtual void replaceItemComponent(Item* item, Component::AbstractQueryComponent* component,
                                      bool deleteOld) = 0;
    /// How far before its own position a row goes when it is moved up or down by one place: added
    /// to the row's position it gives the target of moveItem.
    virtual int moveUpOffset(Item* item) const;
    virtual int moveDownOffset(Item* item) const;
    /// As removeItem_internal for each row in turn. Rows that went with an earlier one are skipped.
    virtual void removeItems_internal(const Items& rows);

    const Items& items() const { return m_items; }
    /// The position of @p item, or the row count if it is not here. Compares addresses only.
    std::size_t indexOfItem(const Item* item) const;
    bool contains(const Item* item) const { return indexOfItem(item) < m_items.size(); }
    /// Those of @p rows that are here, each once, in row order. Compares addresses only.
    Items heldRows(const Items& rows) const;

    /// Hands over what edits took out of the model since the last call.
    [[nodiscard]] DetachedParts takeDetachedParts();

protected:
    using Rows = std::vector<std::unique_ptr<Item>>;

    /// Rows from first to last, both included.
    struct Span {
        std::size_t first;
        std::size_t last;
    };

    static bool isClose(const Item* item) { return !item->component && item->partnerItem; }

    /// The bracket that the row at @p index opens or closes, otherwise that row alone.
    Span spanOf(std::size_t index) const;
    /// The rows of @p rows if they are distinct, adjacent and all here; none otherwise.
    std::optional<Span> adjacentSpan(const Items& rows) const;
    /// The position at which the group that holds row @p index ends; @p index itself if it is
    /// outside the rows.
    int groupEnd(int index) const;

    Item* insertRow(std::size_t position, std::unique_ptr<Item> row);
    void insertRows(std::size_t position, Rows rows);
    /// Takes rows out; their records stay until updateItemFlags.
    void eraseRows(Span span);
    /// Keeps the records of rows that were taken out until updateItemFlags.
    void discardRows(Rows rows);
    void clearRows();
    Items itemsOf(Span span) const;

    Items m_items;             // each owned
    DetachedParts m_detached;  ///< what edits took out of the model and nobody fetched yet

private:
    Rows m_removedItems;
};

/// The implementation for one kind of structure, named by the type of its root.
template <typename Root>
class QBComponentsListLayoutImpl;

}  // namespace QB::QBComponentsListLayout_Private
