#include "layouts/condition_list_layout.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "condition_notation.h"
#include "layouts/row_dump.h"

namespace QB::Test {

namespace {

enum class Edit { Insert, Add, AddBracket, Remove, Move, Group, Ungroup };

struct Case {
    Edit edit;
    const char* chain;
    std::vector<std::size_t> rows;
    int index;               ///< to insert at, to move before
    const char* chainAfter;  ///< null: refused, and the chain stays
};

void apply(ChainUnderEdit& edit, const Case& c) {
    ConditionListLayout& layout = edit.layout;
    const Items rows = rowsAt(layout, c.rows);
    if (c.edit == Edit::Insert) layout.insertItem(makeValue("n"), c.index);
    if (c.edit == Edit::Add) layout.addItem(makeValue("n"), c.index);
    if (c.edit == Edit::AddBracket) layout.addItem(makeBracket(nullptr), c.index);
    if (c.edit == Edit::Remove) layout.removeItems_internal(rows);
    if (c.edit == Edit::Move) layout.moveItem(rows[0], static_cast<unsigned long>(c.index));
    if (c.edit == Edit::Group) {
        EXPECT_EQ(layout.canGroupItemsByBracket(rows), c.chainAfter != nullptr) << c.chain;
        layout.groupItemsByBracket(rows, c.index);
    }
    if (c.edit == Edit::Ungroup) {
        EXPECT_EQ(layout.canUngroupItemsByBracket(rows), c.chainAfter != nullptr) << c.chain;
        layout.ungroupItemsByBracket(rows);
    }
}

}  // namespace

TEST(ConditionEdits, LeaveTheChainThatTheUserAskedFor) {
    const Case cases[] = {
        {Edit::Insert, "", {}, 0, "n"},
        {Edit::Insert, "a&b", {}, 7, "a&b&n"},
        {Edit::Insert, "a&[]|b", {}, 3, "a&[n]|b"},
        {Edit::Insert, "a&[b]", {}, 3, "a&[b&n]"},
        {Edit::Insert, "a&[b]", {}, -1, "a&[b]&n"},
        {Edit::Add, "a&[b&c]|d", {}, 2, "a&[b&c&n]|d"},
        {Edit::Add, "a&[]|d", {}, 2, "a&[n]|d"},
        {Edit::AddBracket, "[]", {}, 1, "[[]]"},
        {Edit::Remove, "a&[b]", {2}, 0, "a&[]"},
        {Edit::Remove, "a&[b|c]&d", {4}, 0, "a&d"},
        {Edit::Remove, "a&[b|c]&d", {2, 1, 3, 4, 5}, 0, "a"},
        {Edit::Move, "a&b|c", {0}, 99, "&b|c&a"},
        {Edit::Move, "a|b", {0}, 2, "|b|a"},
        {Edit::Insert, "[a]", {}, 1, "[n&a]"},
        {Edit::Move, "[a]&[]", {1}, 4, "[]&[a]"},
        {Edit::Move, "a&[b]&c", {1}, 3, "a&[b]&c"},
        {Edit::Move, "a&[b]&c", {3}, 1, "a&[b]&c"},
        {Edit::Move, "a&[b]&c", {3}, 0, "&[b]&a&c"},
        {Edit::Group, "a|b&c", {1, 2}, -1, "a&[|b&c]"},
        {Edit::Group, "a&b&c", {0, 2}, 2, "&b&[a&c]"},
        {Edit::Group, "[a&b]|c", {1, 4}, -1, "[&[a|c]&b]"},
        {Edit::Group, "a&[b]", {3}, -1, "a&[&[b]]"},
        {Edit::Group, "a&[b]|c", {1, 2, 3, 4}, 0, "&[&[b]|c]&a"},
        {Edit::Group, "a&[b]", {0, 1}, -1, nullptr},
        {Edit::Group, "a&[]", {2}, -1, nullptr},
        {Edit::Ungroup, "a|[&b&c]&d", {1, 2, 3, 4}, 0, "a|b&c&d"},
        {Edit::Ungroup, "a&![!b]", {3}, 0, "a&b"},
        {Edit::Ungroup, "a&![b|c]", {1}, 0, "a&!b|c"},
        {Edit::Ungroup, "[]", {0}, 0, nullptr},
        {Edit::Ungroup, "[a]&b", {0, 1, 2, 3}, 0, nullptr},
    };
    for (const Case& c : cases) {
        ChainUnderEdit edit(c.chain);
        apply(edit, c);
        EXPECT_EQ(edit.chain(), c.chainAfter ? c.chainAfter : c.chain)
            << c.chain << " edit " << static_cast<int>(c.edit);
    }
}

TEST(ConditionRows, ReadAsTheTextDoes) {
    ChainUnderEdit edit("a|![b=&[]]");
    auto* compare = dynamic_cast<SQLCompareConditionComponent*>(edit.row(2)->component);
    compare->compareOp = CompareOpBetween;
    compare->rightValue = makeValue("1");
    compare->rightValue->next = makeValue("2");
    EXPECT_EQ(dumpRows(edit.layout),
              "0: level 0 value (expression \"a\")\n"
              "1: level 0 or not bracket\n"
              "2: level 1 compare op=18 (expression \"b\") (expression \"1\") (expression \"2\")\n"
              "3: level 1 and bracket\n"
              "4: level 2 placeholder tail\n"
              "5: level 1 close of 3 tail\n"
              "6: level 0 close of 1 tail\n");
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
