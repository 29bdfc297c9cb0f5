#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "layouts/components_list_layout_impl.h"
#include "layouts/components_list_layout_item.h"
#include "model/vocabulary.h"

namespace QB {

class QBEngine;

/// The flat rows of one clause, and every structural edit that a list of rows can ask for.
///
/// A panel installs an implementation at each full refresh. Between refreshes rows and model stay
/// in step through the operations here; a change from elsewhere makes the rows invalid, and the
/// panel installs a new implementation. No row survives that.
///
/// Each editing operation runs in one modification block on the engine's current layer, which ends
/// with one notification that carries @p sender, and hands what it removed to the engine to be
/// retired. None may be called inside another block: tools that need this call the implementation.
/// Thread: main thread. Without an implementation there are no rows; without it or an engine
/// edits do nothing.
class QBComponentsListLayout {
public:
    using Item = QBComponentsListLayoutItem;
    using Items = std::vector<Item*>;
    using Impl = QBComponentsListLayout_Private::BasicQBComponentsListLayoutImpl;

    QBComponentsListLayout();
    explicit QBComponentsListLayout(std::unique_ptr<Impl> impl);
    virtual ~QBComponentsListLayout();
    QBComponentsListLayout(const QBComponentsListLayout&) = delete;
    QBComponentsListLayout& operator=(const QBComponentsListLayout&) = delete;

    /// Destroys the earlier implementation with its rows. The new one has its rows built.
    void setImplementation(std::unique_ptr<Impl> impl);
    Impl* implementation() const { return m_impl.get(); }  ///< null before the first one is set

    const Items& items() const;
    /// The row count if @p item is not here.
    std::size_t indexOfItem(const Item* item) const;
    bool canGroupItemsByBracket(const Items& rows) const;
    bool canUngroupItemsByBracket(const Items& rows) const;
    /// Added to a row's index these give the target of moveItem, to be clamped to [0, row count].
    int moveUpOffset(Item* item) const;
    int moveDownOffset(Item* item) const;

    void groupItemsByBracket(QBEngine* engine, TopLevelQueryComponentElementEnum element,
                             void* sender, const Items& rows, int index);
    void ungroupItemsByBracket(QBEngine* engine, TopLevelQueryComponentElementEnum element,
                               void* sender, const Items& rows);
    /// Appends to the group that holds row @p index; -1 means the end. Returns the new rows in row
    /// order, a new join included.
    /// Ownership: @p component passes to the model, unless the result is empty: then nothing was
    /// added (no statement, or the component does not belong here) and the caller keeps it.
    Items addItem(QBEngine* engine, TopLevelQueryComponentElementEnum element, void* sender,
                  Component::AbstractQueryComponent* component, int index);
    /// Inserts before row @p index; -1 means the end. Result and ownership as addItem.
    Items insertItem(QBEngine* engine, TopLevelQueryComponentElementEnum element, void* sender,
                     Component::AbstractQueryComponent* component, int index);
    /// Rows that are not here, or that went with an earlier one of @p rows, are skipped.
    void removeItems(QBEngine* engine, TopLevelQueryComponentElementEnum element, void* sender,
                     Items rows);
    void moveItem(QBEngine* engine, TopLevelQueryComponentElementEnum element, void* sender,
                  Item* item, unsigned long target);
    /// With @p deleteOld the row's component is retired, otherwise it passes to the caller.
    void replaceItemComponent(QBEngine* engine, TopLevelQueryComponentElementEnum element,
                              void* sender, Item* item,
                              Component::AbstractQueryComponent* component, bool deleteOld);

private:
    /// Runs @p change on the implementation inside a block and retires what it detached.
    void edit(QBEngine* engine, TopLevelQueryComponentElementEnum element, void* sender,
              const std::function<void(Impl&)>& change);

    std::unique_ptr<Impl> m_impl;
};

}  // namespace QB
