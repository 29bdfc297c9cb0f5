#include "layouts/components_list_layout_impl.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace QB::QBComponentsListLayout_Private {

BasicQBComponentsListLayoutImpl::~BasicQBComponentsListLayoutImpl() {
    for (Item* item : m_items)
        delete item;
}

void BasicQBComponentsListLayoutImpl::updateItemFlags() {
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        m_items[i]->isGroupTail =
            i + 1 == m_items.size() || m_items[i + 1]->level < m_items[i]->level;
    }
    m_removedItems.clear();
}

int BasicQBComponentsListLayoutImpl::moveUpOffset(Item*) const {
    return -1;
}

// The target of a move is a position to insert before, hence the asymmetry.
int BasicQBComponentsListLayoutImpl::moveDownOffset(Item*) const {
    return 2;
}

void BasicQBComponentsListLayoutImpl::removeItems_internal(const Items& rows) {
    for (Item* row : rows)
        removeItem_internal(row);
}

std::size_t BasicQBComponentsListLayoutImpl::indexOfItem(const Item* item) const {
    const auto found = std::find(m_items.begin(), m_items.end(), item);
    return static_cast<std::size_t>(std::distance(m_items.begin(), found));
}

BasicQBComponentsListLayoutImpl::Items BasicQBComponentsListLayoutImpl::heldRows(
    const Items& rows) const {
    const std::set<const Item*> wanted(rows.begin(), rows.end());
    Items held;
    std::copy_if(m_items.begin(), m_items.end(), std::back_inserter(held),
                 [&wanted](const Item* item) { return wanted.count(item) > 0; });
    return held;
}

DetachedParts BasicQBComponentsListLayoutImpl::takeDetachedParts() {
    return std::exchange(m_detached, DetachedParts());
}

BasicQBComponentsListLayoutImpl::Span BasicQBComponentsListLayoutImpl::spanOf(
    std::size_t index) const {
    Item* item = m_items.at(index);
    if (isClose(item)) return {indexOfItem(item->partnerItem), index};
    const auto closesItem = [item](const Item* other) {
        return other->partnerItem == item;
    };
    const auto close = std::find_if(m_items.begin(), m_items.end(), closesItem);
    if (close == m_items.end()) return {index, index};
    return {index, static_cast<std::size_t>(std::distance(m_items.begin(), close))};
}

std::optional<BasicQBComponentsListLayoutImpl::Span> BasicQBComponentsListLayoutImpl::adjacentSpan(
    const Items& rows) const {
    const std::set<const Item*> wanted(rows.begin(), rows.end());
    const auto isWanted = [&wanted](const Item* item) {
        return wanted.count(item) > 0;
    };
    const auto first = std::find_if(m_items.begin(), m_items.end(), isWanted);
    const auto end = std::find_if_not(first, m_items.end(), isWanted);
    const auto count = static_cast<std::size_t>(std::distance(first, end));
    if (count == 0 || count != rows.size()) return std::nullopt;
    const auto index = static_cast<std::size_t>(std::distance(m_items.begin(), first));
    return Span{index, index + count - 1};
}

int BasicQBComponentsListLayoutImpl::groupEnd(int index) const {
    const int count = static_cast<int>(m_items.size());
    if (index < 0 || index >= count) return index;
    const auto row = std::next(m_items.begin(), index);
    const auto isOutside = [&row](const Item* item) {
        return item->level < (*row)->level;
    };
    const auto end = std::find_if(std::next(row), m_items.end(), isOutside);
    return static_cast<int>(std::distance(m_items.begin(), end));
}

BasicQBComponentsListLayoutImpl::Item* BasicQBComponentsListLayoutImpl::insertRow(
    std::size_t position, std::unique_ptr<Item> row) {
    m_items.insert(std::next(m_items.begin(), static_cast<std::ptrdiff_t>(position)), row.get());
    return row.release();
}

void BasicQBComponentsListLayoutImpl::insertRows(std::size_t position, Rows rows) {
    m_items.insert(std::next(m_items.begin(), static_cast<std::ptrdiff_t>(position)), rows.size(),
                   nullptr);
    for (std::unique_ptr<Item>& row : rows)
        m_items[position++] = row.release();
}

void BasicQBComponentsListLayoutImpl::eraseRows(Span span) {
    const auto first = std::next(m_items.begin(), static_cast<std::ptrdiff_t>(span.first));
    const auto end = std::next(m_items.begin(), static_cast<std::ptrdiff_t>(span.last) + 1);
    std::for_each(first, end, [this](Item* item) { m_removedItems.emplace_back(item); });
    m_items.erase(first, end);
}

void BasicQBComponentsListLayoutImpl::discardRows(Rows rows) {
    std::move(rows.begin(), rows.end(), std::back_inserter(m_removedItems));
}

void BasicQBComponentsListLayoutImpl::clearRows() {
    if (!m_items.empty()) eraseRows({0, m_items.size() - 1});
}

BasicQBComponentsListLayoutImpl::Items BasicQBComponentsListLayoutImpl::itemsOf(Span span) const {
    return Items(std::next(m_items.begin(), static_cast<std::ptrdiff_t>(span.first)),
                 std::next(m_items.begin(), static_cast<std::ptrdiff_t>(span.last) + 1));
}

}  // namespace QB::QBComponentsListLayout_Private
