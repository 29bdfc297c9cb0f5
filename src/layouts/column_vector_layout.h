#pragma once

#include <algorithm>
#include <iterator>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "layouts/components_list_layout_impl.h"
#include "model/components.h"

namespace QB::QBComponentsListLayout_Private {

/// Rows over a plain vector: one row an element, all at level 0, a placeholder for an empty vector.
/// T is an owning pointer of the model. Brackets do not exist here.
/// A row whose element is no longer in the vector can be removed; other edits of it do nothing.
template <typename T>
class QBComponentVectorListLayoutImpl : public BasicQBComponentsListLayoutImpl {
public:
    /// @p root is not owned and outlives the layout.
    explicit QBComponentVectorListLayoutImpl(std::vector<T>* root) : m_root(root) {}

    bool canGroupItemsByBracket(const Items&) const override { return false; }
    void groupItemsByBracket(const Items&, int) override {}
    bool canUngroupItemsByBracket(const Items&) const override { return false; }
    void ungroupItemsByBracket(const Items&) override {}

    void rebuildItems() override {
        clearRows();
        for (const T& element : *m_root)
            appendRow(element);
        if (m_root->empty()) appendPlaceholder();
    }

    /// Appends, whatever the index.
    Items addItem(Component::AbstractQueryComponent* component, int) override {
        return insertItem(component, -1);
    }

    Items insertItem(Component::AbstractQueryComponent* component, int index) override {
        const T element = elementFromComponent(component);
        if (!element || m_items.empty() || find(element) != m_root->end()) return {};
        if (m_items.front()->isPlaceholder) clearRows();
        const std::size_t count = std::min(m_root->size(), m_items.size());
        const std::size_t position =
            index < 0 ? count : std::min(static_cast<std::size_t>(index), count);
        m_root->insert(at(*m_root, position), element);
        auto row = std::make_unique<Item>();
        row->component = component;
        return {insertRow(position, std::move(row))};
    }

    void moveItem(Item* item, unsigned long target) override {
        const std::size_t from = indexOfItem(item);
        if (from == m_items.size() || item->isPlaceholder) return;
        const auto place = find(elementFromComponent(item->component));
        if (place == m_root->end()) return;
        const auto position = static_cast<std::size_t>(std::distance(m_root->begin(), place));
        rotateBefore(*m_root, position, std::min<std::size_t>(target, m_root->size()));
        rotateBefore(m_items, from, std::min<std::size_t>(target, m_items.size()));
    }

    void removeItem_internal(Item* item) override { removeItems_internal({item}); }

    /// In one pass, since all columns of a list can be selected.
    void removeItems_internal(const Items& rows) override {
        std::set<const Component::AbstractQueryComponent*> removed;
        for (const Item* row : heldRows(rows)) {
            if (!row->isPlaceholder) removed.insert(row->component);
        }
        if (removed.empty()) return;
        const auto firstRow = std::stable_partition(
            m_items.begin(), m_items.end(),
            [&](const Item* row) { return removed.count(row->component) == 0; });
        eraseRows({static_cast<std::size_t>(std::distance(m_items.begin(), firstRow)),
                   m_items.size() - 1});
        const auto firstElement = std::stable_partition(
            m_root->begin(), m_root->end(),
            [&](const T& element) { return removed.count(componentFromElement(element)) == 0; });
        for (auto element = firstElement; element != m_root->end(); ++element)
            m_detached.add(owned(*element));
        m_root->erase(firstElement, m_root->end());
        if (m_items.empty()) appendPlaceholder();
    }

    void replaceItemComponent(Item* item, Component::AbstractQueryComponent* component,
                              bool deleteOld) override {
        const T element = elementFromComponent(component);
        if (!element || !contains(item) || item->isPlaceholder) return;
        const auto place = find(elementFromComponent(item->component));
        if (place == m_root->end() || find(element) != m_root->end()) return;
        auto old = owned(std::exchange(*place, element));
        item->component = component;
        if (deleteOld) return m_detached.add(std::move(old));
        static_cast<void>(old.release());  // passes to the caller
    }

    virtual bool elementsEqual(T a, T b) const = 0;
    /// Null if the component is no element of this vector.
    virtual T elementFromComponent(Component::AbstractQueryComponent* component) const = 0;
    virtual Component::AbstractQueryComponent* componentFromElement(T element) const = 0;

private:
    template <typename List>
    static typename List::iterator at(List& list, std::size_t position) {
        return std::next(list.begin(), static_cast<std::ptrdiff_t>(position));
    }

    /// Moves the element at @p from to before @p to; those between make room by one place.
    template <typename List>
    static void rotateBefore(List& list, std::size_t from, std::size_t to) {
        if (to > from) {
            std::rotate(at(list, from), at(list, from + 1), at(list, to));
        } else {
            std::rotate(at(list, to), at(list, from), at(list, from + 1));
        }
    }

    typename std::vector<T>::iterator find(T element) const {
        return std::find_if(m_root->begin(), m_root->end(),
                            [&](const T& other) { return elementsEqual(other, element); });
    }

    std::unique_ptr<Component::AbstractQueryComponent> owned(T element) const {
        return std::unique_ptr<Component::AbstractQueryComponent>(componentFromElement(element));
    }

    void appendRow(T element) {
        auto row = std::make_unique<Item>();
        row->component = componentFromElement(element);
        insertRow(m_items.size(), std::move(row));
    }

    void appendPlaceholder() {
        auto row = std::make_unique<Item>();
        row->isPlaceholder = true;
        insertRow(m_items.size(), std::move(row));
    }

    std::vector<T>* const m_root;  // not owned: a field of an element expression
};

/// The columns of SELECT, GROUP BY or ORDER BY.
template <>
class QBComponentsListLayoutImpl<std::vector<Component::SQL::SQLAbstractColumnComponent*>*>
    : public QBComponentVectorListLayoutImpl<Component::SQL::SQLAbstractColumnComponent*> {
public:
    using Column = Component::SQL::SQLAbstractColumnComponent;
    using QBComponentVectorListLayoutImpl::QBComponentVectorListLayoutImpl;
    ~QBComponentsListLayoutImpl() override;

    bool elementsEqual(Column* a, Column* b) const override;
    Column* elementFromComponent(Component::AbstractQueryComponent* component) const override;
    Component::AbstractQueryComponent* componentFromElement(Column* element) const override;
};

using ColumnVectorLayout =
    QBComponentsListLayoutImpl<std::vector<Component::SQL::SQLAbstractColumnComponent*>*>;

}  // namespace QB::QBComponentsListLayout_Private
