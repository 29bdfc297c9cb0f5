#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "layouts/components_list_layout_item.h"

/// Rows against what they must be, for the forms whose rows have slots.
namespace QB::Test {

using Item = QBComponentsListLayoutItem;
using Items = std::vector<Item*>;

/// A row as it must be, worked out from the model by plain recursion.
struct ExpectedRow {
    const Component::AbstractQueryComponent* component;
    int level;
    const void* slot;
    long partner;  ///< row number of the open row of a close row, else -1
};
using ExpectedRows = std::vector<ExpectedRow>;

/// "" if the row is what it must be, else what differs.
template <typename Layout>
std::string rowFault(const Layout& layout, const ExpectedRows& expected, std::size_t i) {
    Item* row = layout.items()[i];
    const ExpectedRow& wanted = expected[i];
    const bool isClose = wanted.partner >= 0;
    const Item* open = isClose ? layout.items()[static_cast<std::size_t>(wanted.partner)] : nullptr;
    const bool isTail = i + 1 == expected.size() || expected[i + 1].level < wanted.level;
    if (row->component != wanted.component) return "component";
    if (row->level != wanted.level) return "level";
    if (layout.slotOf(row) != wanted.slot) return "slot";
    if (row->isPlaceholder != (!wanted.component && !isClose)) return "placeholder";
    if (row->partnerItem != open) return "partner";
    return row->isGroupTail == isTail ? "" : "tail";
}

/// Fails unless every row, level, partner, slot and flag is as @p expected.
template <typename Layout>
void expectRows(const Layout& layout, const ExpectedRows& expected, const std::string& model) {
    ASSERT_EQ(layout.items().size(), expected.size()) << model;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_EQ(rowFault(layout, expected, i), "") << model << " row " << i;
    }
}

/// What each row reads as; a placeholder is "_". @p wordOf gives the word for a component.
template <typename WordOf>
std::vector<std::string> wordsOf(const Items& items, const WordOf& wordOf) {
    std::vector<std::string> words;
    for (const Item* item : items) {
        words.push_back(item->isPlaceholder ? "_"
                        : item->partnerItem ? "]"
                                            : wordOf(item->component));
    }
    return words;
}

}  // namespace QB::Test
