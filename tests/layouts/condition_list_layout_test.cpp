#include "layouts/condition_list_layout.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "condition_notation.h"
#include "layouts/row_dump.h"

namespace QB::Test {

/// What the random runs leave open.
TEST(ConditionEdits, TakeAnIndexOutOfRangeForTheEnd) {
    for (const int index : {-1, 4, 99}) {
        ChainUnderEdit edit("a&[b]");
        edit.layout.insertItem(makeValue("n"), index);
        EXPECT_EQ(edit.chain(), "a&[b]&n");
    }
    ChainUnderEdit edit("a&b|c");
    edit.layout.moveItem(edit.row(0), 99);
    EXPECT_EQ(edit.chain(), "&b|c&a");
}

TEST(ConditionEdits, ABracketMovesByOnePlaceAsABlock) {
    ChainUnderEdit edit("a&[b&c]&d");
    const int up[] = {-1, -1, -1, -1, -4, -1};
    const int down[] = {2, 5, 2, 2, 2, 2};
    for (std::size_t i = 0; i < edit.layout.items().size(); ++i) {
        EXPECT_EQ(edit.layout.moveUpOffset(edit.row(i)), up[i]) << i;
        EXPECT_EQ(edit.layout.moveDownOffset(edit.row(i)), down[i]) << i;
    }
    Item foreign;
    foreign.partnerItem = edit.row(1);
    EXPECT_EQ(edit.layout.moveUpOffset(&foreign), -1);
    EXPECT_EQ(edit.layout.moveDownOffset(nullptr), 2);
}

TEST(ConditionEdits, ReplaceKeepsTheRowAndTheRestOfTheChain) {
    ChainUnderEdit edit("a|b&[]&[c]");
    const auto replace = [&edit](std::size_t index, Condition* link, bool deleteOld) {
        Item* row = edit.row(index);
        edit.layout.replaceItemComponent(row, link, deleteOld);
        EXPECT_EQ(edit.row(index), row);
        return edit.chain();
    };
    auto* old = dynamic_cast<Condition*>(edit.row(1)->component);
    auto* compare = makeCompare(old);
    EXPECT_EQ(replace(1, compare, false), "a|b=&[]&[c]");
    EXPECT_EQ(old->next, nullptr);
    compare->leftValue = nullptr;
    EXPECT_EQ(replace(1, old, true), "a|b&[]&[c]");
    EXPECT_EQ(replace(0, makeBracket(makeValue("x")), true), "[x]|b&[]&[c]");
    EXPECT_EQ(replace(7, makeBracket(nullptr), true), "[x]|b&[][]");
    EXPECT_EQ(replace(4, makeValue("y"), true), "[x]|by[]");
    EXPECT_EQ(edit.layout.takeDetachedParts().size(), 4u);
    // What does not fit: a chain, a link that is here, a source, what loses a bracket's content.
    const std::unique_ptr<Condition> chain(chainOf("p&q"));
    const std::unique_ptr<Condition> value(makeValue("v"));
    SQLIdentifierSourceComponent table;
    for (Component::AbstractQueryComponent* other :
         {static_cast<Component::AbstractQueryComponent*>(chain.get()), edit.row(3)->component,
          static_cast<Component::AbstractQueryComponent*>(&table)}) {
        edit.layout.replaceItemComponent(edit.row(3), other, true);
        EXPECT_TRUE(edit.layout.insertItem(other, 0).empty());
    }
    EXPECT_EQ(replace(0, value.get(), true), "[x]|by[]");
}

TEST(ConditionEdits, WithoutAChainOrOnAChangedOneNothingIsCut) {
    ConditionListLayout rootless(nullptr);
    rootless.rebuildItems();
    Item foreign;
    const std::unique_ptr<Condition> value(makeValue("n"));
    EXPECT_TRUE(rootless.addItem(value.get(), 0).empty());
    EXPECT_FALSE(rootless.canGroupItemsByBracket({&foreign}));
    rootless.groupItemsByBracket({&foreign}, 0);
    rootless.moveItem(&foreign, 0);
    rootless.removeItem_internal(&foreign);
    rootless.replaceItemComponent(&foreign, value.get(), true);
    EXPECT_TRUE(rootless.items().empty());

    ChainUnderEdit edit("a&b");
    const std::unique_ptr<Condition> gone(std::exchange(edit.root(), chainOf("d")));
    EXPECT_THROW(edit.layout.insertItem(value.get(), 0), std::out_of_range);
    EXPECT_THROW(edit.layout.moveItem(edit.row(0), 2), std::out_of_range);
    EXPECT_THROW(edit.layout.removeItem_internal(edit.row(1)), std::out_of_range);
    EXPECT_THROW(edit.layout.groupItemsByBracket({edit.row(1)}, 0), std::out_of_range);
    EXPECT_EQ(writeChain(edit.root()) + writeChain(gone.get()), "da&b");
}

TEST(ConditionEdits, WorkOnAChainThatIsLongerAndDeeperThanTheStack) {
    const int count = 100'000;
    Condition* deep = nullptr;
    for (int i = 0; i < count; ++i) {
        deep = makeBracket(deep);
        deep->next = makeValue("v");
    }
    for (int i = 0; i < count; ++i) {
        Condition* link = makeValue("w");
        link->next = std::exchange(deep, link);
    }
    ChainUnderEdit edit(deep);
    ASSERT_EQ(edit.layout.items().size(), std::size_t{4 * count + 1});
    EXPECT_EQ(edit.row(2 * count)->level, count);
    edit.layout.insertItem(makeValue("n"), 2 * count);
    edit.layout.groupItemsByBracket({edit.row(count)}, 0);
    edit.layout.ungroupItemsByBracket({edit.row(0)});
    edit.layout.moveItem(edit.row(1), edit.layout.items().size());
    EXPECT_EQ(edit.layout.items().size(), std::size_t{4 * count + 1});
    edit.layout.removeItems_internal(edit.layout.items());
    EXPECT_EQ(edit.chain(), "");
}

}  // namespace QB::Test
