#pragma once

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>
#include <vector>

#include "layouts/components_list_layout_impl.h"
#include "model/components.h"

namespace QB::QBComponentsListLayout_Private {

/// Rows over a plain vector: one row an element, all at level 0, a placeholder for an empty vector.
/// T is an owning pointer of the model. Brackets do not exist here.
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
        if (!element) return {};
        if (m_root->empty()) clearRows();
        const std::size_t count = m_root->size();
        const std::size_t position =
            index < 0 ? count : std::min(static_cast<std::size_t>(index), count);
        m_root->insert(at(*m_root, position), element);
        auto row = std::make_unique<Item>();
        row->component = component;
        return {insertRow(position, std::move(row))};
    }

    void moveItem(Item* item, unsigned long target) override {
        const std::size_t from = indexOfItem(item);
        if (from == m_items.size() || find(item) == m_root->end()) return;
        const std::size_t to = std::min<std::size_t>(target, m_items.size());
        rotateBefore(*m_root, from, to);
        rotateBefore(m_items, from, to);
    }

    void removeItem_internal(Item* item) override {
        const std::size_t index = indexOfItem(item);
        if (index == m_items.size() || item->isPlaceholder) return;
        const T element = elementFromComponent(item->component);
        const auto isRemoved = [&](const T& other) {
            return elementsEqual(other, element);
        };
        m_root->erase(std::remove_if(m_root->begin(), m_root->end(), isRemoved), m_root->end());
        m_detached.add(std::unique_ptr<Component::AbstractQueryComponent>(item->component));
        eraseRows({index, index});
        if (m_items.empty()) appendPlaceholder();
    }

    void replaceItemComponent(Item* item, Component::AbstractQueryComponent* component,
                              bool deleteOld) override {
        const T element = elementFromComponent(component);
        if (!element || !contains(item) || item->isPlaceholder) return;
        const auto place = find(item);
        if (place == m_root->end() || elementsEqual(*place, element)) return;
        std::unique_ptr<Component::AbstractQueryComponent> old(componentFromElement(*place));
        *place = element;
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

    typename std::vector<T>::iterator find(const Item* item) const {
        const T element = elementFromComponent(item->component);
        return std::find_if(m_root->begin(), m_root->end(),
                            [&](const T& other) { return elementsEqual(other, element); });
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
