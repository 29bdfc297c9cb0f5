#include <gtest/gtest.h>

#include "layouts/row_dump.h"
#include "layouts/source_tree_layout.h"
#include "tree_notation.h"

namespace QB::Test {

using namespace Component::SQL;

namespace {

/// @p text by this name and not by its address, in the output of a failed test.
struct Case {
    const char* tree;
    int first;
    int last;
    const char* treeAfter;
    const char* rows;  ///< of an insertion the new ones, else all of them
};

void PrintTo(const Case& c, std::ostream* out) {
    *out << c.tree << " " << c.first << ".." << c.last << " to " << c.treeAfter;
}

Items select(const TreeUnderEdit& edit, const Case& c) {
    return edit.rows(static_cast<std::size_t>(c.first), static_cast<std::size_t>(c.last));
}

}  // namespace

// ---- flattening -------------------------------------------------------------------------------

TEST(SourceTreeRows, ReadAsTheTextDoes) {
    const TreeUnderEdit edit("L(I(a,b),[R(c,[_])])");
    EXPECT_EQ(dumpRows(edit.layout),
              "0: level 0 table \"a\"\n"
              "1: level 0 join INNER JOIN\n"
              "2: level 0 table \"b\"\n"
              "3: level 0 join LEFT JOIN\n"
              "4: level 0 bracket\n"
              "5: level 1 table \"c\"\n"
              "6: level 1 join RIGHT JOIN\n"
              "7: level 1 bracket\n"
              "8: level 2 placeholder tail\n"
              "9: level 1 close of 7 tail\n"
              "10: level 0 close of 4 tail\n");
}

TEST(SourceTreeRows, AnEmptyListAndAMissingSideArePlaceholders) {
    EXPECT_EQ(TreeUnderEdit("_").words(), "_");
    EXPECT_EQ(TreeUnderEdit("I(_,a)").words(), "_ I a");
}

TEST(SourceTreeRows, ARebuildReadsTheTreeAgain) {
    TreeUnderEdit edit("I(a,b)");
    const SourceTreeLayout& layout = edit.layout;
    dynamic_cast<SQLIdentifierSourceComponent*>(edit.row(0)->component)->name = "x";
    edit.layout.rebuildItems();
    edit.layout.updateItemFlags();
    EXPECT_EQ(edit.words(), "x I b");
    expectInStep(layout, edit.root());
}

TEST(SourceTreeRows, AJoinTreeDeeperThanTheStackIsFlattenedAndEdited) {
    constexpr int depth = 100000;
    SourceNode* root = makeNode(makeTable("t")).release();
    for (int i = 0; i < depth; ++i)
        root = makeJoin(SQLJoinTypeInner, root, makeNode(makeTable("t")).release()).release();
    TreeUnderEdit edit(root);
    ASSERT_EQ(edit.layout.items().size(), 2u * depth + 1);
    edit.layout.insertItem(makeTable("new"), 1);
    EXPECT_EQ(wordOf(edit.row(2)->component), "new");
    edit.layout.removeItem_internal(edit.row(0));
    EXPECT_EQ(wordOf(edit.row(0)->component), "new");
    const Items group = edit.rows(2, depth);
    EXPECT_TRUE(edit.layout.canGroupItemsByBracket(group));
    edit.layout.groupItemsByBracket(group, 0);
    edit.layout.ungroupItemsByBracket({edit.row(2)});
    EXPECT_EQ(edit.layout.items().size(), 2u * depth + 1);
}

TEST(SourceTreeRows, CommasThatLeanRightWithoutEndAreRotated) {
    constexpr int depth = 100000;
    SourceNode* root = makeNode(makeTable("t")).release();
    for (int i = 0; i < depth; ++i)
        root = makeJoin(SQLJoinTypeComma, makeNode(makeTable("t")).release(), root).release();
    TreeUnderEdit edit(root);
    edit.layout.groupItemsByBracket(edit.rows(0, depth), 0);
    EXPECT_EQ(edit.words(edit.rows(0, 1)), "[ t");
    EXPECT_EQ(edit.layout.items().size(), 2u * depth + 3);
}

// ---- inserting --------------------------------------------------------------------------------

class Insertion : public testing::TestWithParam<Case> {};

TEST_P(Insertion, SplicesTheNewSourceWhereItsRowStands) {
    TreeUnderEdit edit(GetParam().tree);
    const Items added = edit.layout.insertItem(makeTable("n"), GetParam().first);
    edit.layout.updateItemFlags();
    EXPECT_EQ(edit.tree(), GetParam().treeAfter);
    EXPECT_EQ(edit.words(added), GetParam().rows);
    expectInStep(edit.layout, edit.root());
}

INSTANTIATE_TEST_SUITE_P(
    SourceTree, Insertion,
    testing::Values(Case{"_", 0, 0, "n", "n"}, Case{"_", -1, 0, "n", "n"},
                    // A run of joins: before the join above, first in the group, at the end.
                    Case{"L(I(a,b),c)", 0, 0, "L(I(C(n,a),b),c)", "n C"},
                    Case{"L(I(a,b),c)", 1, 0, "L(I(J(a,n),b),c)", "J n"},
                    Case{"L(I(a,b),c)", 2, 0, "L(I(J(a,n),b),c)", "J n"},
                    Case{"L(I(a,b),c)", 3, 0, "L(J(I(a,b),n),c)", "J n"},
                    Case{"L(I(a,b),c)", 4, 0, "L(J(I(a,b),n),c)", "J n"},
                    Case{"L(I(a,b),c)", 5, 0, "J(L(I(a,b),c),n)", "J n"},
                    Case{"L(I(a,b),c)", 99, 0, "J(L(I(a,b),c),n)", "J n"},
                    Case{"L(I(a,b),c)", -1, 0, "J(L(I(a,b),c),n)", "J n"},
                    // Brackets: before, at the start, inside, at the end, behind.
                    Case{"L([I(a,b)],c)", 0, 0, "L(C(n,[I(a,b)]),c)", "n C"},
                    Case{"L([I(a,b)],c)", 1, 0, "L([I(C(n,a),b)],c)", "n C"},
                    Case{"L([I(a,b)],c)", 3, 0, "L([I(J(a,n),b)],c)", "J n"},
                    Case{"L([I(a,b)],c)", 4, 0, "L([J(I(a,b),n)],c)", "J n"},
                    Case{"L([I(a,b)],c)", 6, 0, "L(J([I(a,b)],n),c)", "J n"},
                    Case{"I(a,[[b]])", 5, 0, "I(a,[[J(b,n)]])", "J n"},
                    Case{"I(a,[[b]])", 6, 0, "I(a,[J([b],n)])", "J n"},
                    // Empty brackets are filled from inside and from their close row.
                    Case{"I(a,[_])", 3, 0, "I(a,[n])", "n"},
                    Case{"I(a,[_])", 4, 0, "I(a,[n])", "n"}, Case{"I(a,_)", -1, 0, "I(a,n)", "n"},
                    // Other shapes than runs that lean to the left.
                    Case{"C(a,L(b,c))", 3, 0, "C(a,L(J(b,n),c))", "J n"},
                    Case{"C(a,L(b,c))", 1, 0, "C(J(a,n),L(b,c))", "J n"},
                    Case{"C(a,L(b,c))", 5, 0, "J(C(a,L(b,c)),n)", "J n"},
                    Case{"C(a,[C(b,L(c,d))])", 8, 0, "C(a,[J(C(b,L(c,d)),n)])", "J n"}));

TEST(SourceTreeInsertion, AddingAppendsToTheGroupOfTheRow) {
    const auto addedAt = [](const char* tree, int index) {
        TreeUnderEdit edit(tree);
        edit.layout.addItem(makeTable("n"), index);
        edit.layout.updateItemFlags();
        expectInStep(edit.layout, edit.root());
        return edit.tree();
    };
    EXPECT_EQ(addedAt("L([I(a,b)],c)", 1), "L([J(I(a,b),n)],c)");
    EXPECT_EQ(addedAt("L([I(a,b)],c)", 3), "L([J(I(a,b),n)],c)");
    EXPECT_EQ(addedAt("L([I(a,b)],c)", 0), "J(L([I(a,b)],c),n)");
    EXPECT_EQ(addedAt("L([I(a,b)],c)", 4), "J(L([I(a,b)],c),n)");
    EXPECT_EQ(addedAt("L([I(a,b)],c)", -1), "J(L([I(a,b)],c),n)");
    EXPECT_EQ(addedAt("I([_],c)", 1), "I([n],c)");
    EXPECT_EQ(addedAt("_", 0), "n");
}

TEST(SourceTreeInsertion, ABracketBringsItsThreeRows) {
    TreeUnderEdit edit("a");
    const Items added = edit.layout.insertItem(new SQLBracketedSourceNodeComponent, -1);
    edit.layout.updateItemFlags();
    EXPECT_EQ(edit.words(added), "J [ _ ]");
    EXPECT_EQ(edit.tree(), "J(a,[_])");
    expectInStep(edit.layout, edit.root());
}

TEST(SourceTreeInsertion, WhatIsNoSourceStaysWithTheCaller) {
    TreeUnderEdit edit("a");
    SQLAnyExpressionColumnComponent column;
    SQLJoinSourceNodeComponent join;
    EXPECT_TRUE(edit.layout.insertItem(&column, 0).empty());
    EXPECT_TRUE(edit.layout.insertItem(&join, 0).empty());
    EXPECT_TRUE(edit.layout.addItem(nullptr, 0).empty());
    EXPECT_EQ(edit.tree(), "a");
}

// ---- removing ---------------------------------------------------------------------------------

class Removal : public testing::TestWithParam<Case> {};

TEST_P(Removal, TakesTheOperandAndTheJoinThatBoundIt) {
    TreeUnderEdit edit(GetParam().tree);
    edit.layout.removeItem_internal(edit.row(static_cast<std::size_t>(GetParam().first)));
    edit.layout.updateItemFlags();
    EXPECT_EQ(edit.tree(), GetParam().treeAfter);
    EXPECT_EQ(edit.words(), GetParam().rows);
    expectInStep(edit.layout, edit.root());
}

INSTANTIATE_TEST_SUITE_P(
    SourceTree, Removal,
    testing::Values(
        Case{"a", 0, 0, "_", "_"}, Case{"_", 0, 0, "_", "_"},
        Case{"L(I(a,b),c)", 0, 0, "L(b,c)", "b L c"}, Case{"L(I(a,b),c)", 2, 0, "L(a,c)", "a L c"},
        Case{"L(I(a,b),c)", 4, 0, "I(a,b)", "a I b"},
        // A join row stands for the source on its right.
        Case{"L(I(a,b),c)", 1, 0, "L(a,c)", "a L c"}, Case{"L(I(a,b),c)", 3, 0, "I(a,b)", "a I b"},
        Case{"I(a,[b])", 1, 0, "a", "a"}, Case{"I(a,_)", 1, 0, "a", "a"},
        // A close row stands for its bracket.
        Case{"L([I(a,b)],c)", 4, 0, "c", "c"}, Case{"L([I(a,b)],c)", 0, 0, "c", "c"},
        Case{"[I(a,b)]", 4, 0, "_", "_"}, Case{"I([a],b)", 1, 0, "I([_],b)", "[ _ ] I b"},
        // Literally the row before says "right operand"; the tree says otherwise.
        Case{"C(a,L(b,c))", 4, 0, "C(a,b)", "a C b"}, Case{"C(a,L(b,c))", 2, 0, "C(a,c)", "a C c"},
        Case{"C(I(a,b),L(c,d))", 4, 0, "C(I(a,b),d)", "a I b C d"}));

TEST(SourceTreeRemoval, HandsOverTheJoinWithItsCondition) {
    TreeUnderEdit edit("I(a,b)");
    auto* join = dynamic_cast<SQLJoinSourceNodeComponent*>(edit.row(1)->component);
    join->condition = new SQLCompareConditionComponent;
    const auto* removed = dynamic_cast<SQLIdentifierSourceComponent*>(edit.row(2)->component);
    edit.layout.removeItem_internal(edit.row(2));
    edit.layout.updateItemFlags();
    DetachedParts parts = edit.layout.takeDetachedParts();
    EXPECT_EQ(parts.size(), 1u);
    parts.freeUnreferenced({removed});
    EXPECT_EQ(parts.size(), 1u) << "the source is not among the detached parts";
    parts.freeUnreferenced({});
    EXPECT_TRUE(parts.isEmpty());
    EXPECT_TRUE(edit.layout.takeDetachedParts().isEmpty());
}

// ---- replacing --------------------------------------------------------------------------------

TEST(SourceTreeReplacement, ChangesTheComponentAndKeepsTheRow) {
    TreeUnderEdit edit("I(a,b)");
    Item* row = edit.row(2);
    const std::unique_ptr<Component::AbstractQueryComponent> old(row->component);
    edit.layout.replaceItemComponent(row, makeTable("x"), false);
    EXPECT_TRUE(edit.layout.takeDetachedParts().isEmpty());
    edit.layout.replaceItemComponent(row, makeTable("y"), true);
    edit.layout.replaceItemComponent(row, row->component, true);
    EXPECT_EQ(edit.layout.takeDetachedParts().size(), 1u);
    EXPECT_EQ(edit.row(2), row);
    EXPECT_EQ(edit.tree(), "I(a,y)");
    expectInStep(edit.layout, edit.root());
}

TEST(SourceTreeReplacement, IsRefusedWhereTheRowsWouldNotFit) {
    TreeUnderEdit edit("I(a,[_])");
    SQLJoinSourceNodeComponent join;
    SQLBracketedSourceNodeComponent bracket;
    SQLIdentifierSourceComponent table;
    Item foreign;
    edit.layout.replaceItemComponent(edit.row(0), &join, true);
    edit.layout.replaceItemComponent(edit.row(0), &bracket, true);
    edit.layout.replaceItemComponent(edit.row(1), &table, true);
    edit.layout.replaceItemComponent(edit.row(2), &table, true);
    edit.layout.replaceItemComponent(edit.row(3), &table, true);
    edit.layout.replaceItemComponent(edit.row(4), &bracket, true);
    edit.layout.replaceItemComponent(edit.row(0), nullptr, true);
    edit.layout.replaceItemComponent(&foreign, &table, true);
    EXPECT_EQ(edit.tree(), "I(a,[_])");
    expectInStep(edit.layout, edit.root());
}

// ---- brackets ---------------------------------------------------------------------------------

class Grouping : public testing::TestWithParam<Case> {};

TEST_P(Grouping, PutsTheSelectedOperandsIntoABracket) {
    TreeUnderEdit edit(GetParam().tree);
    const Items rows = select(edit, GetParam());
    EXPECT_TRUE(edit.layout.canGroupItemsByBracket(rows));
    EXPECT_EQ(edit.tree(), GetParam().tree) << "the question changed the tree";
    edit.layout.groupItemsByBracket(rows, 0);
    edit.layout.updateItemFlags();
    EXPECT_EQ(edit.tree(), GetParam().treeAfter);
    EXPECT_EQ(edit.words(), GetParam().rows);
    expectInStep(edit.layout, edit.root());
}

INSTANTIATE_TEST_SUITE_P(
    SourceTree, Grouping,
    testing::Values(
        Case{"L(I(a,b),c)", 2, 4, "I(a,[L(b,c)])", "a I [ b L c ]"},
        Case{"L(I(a,b),c)", 0, 2, "L([I(a,b)],c)", "[ a I b ] L c"},
        Case{"L(I(a,b),c)", 0, 4, "[L(I(a,b),c)]", "[ a I b L c ]"},
        Case{"L(I(a,b),c)", 2, 2, "L(I(a,[b]),c)", "a I [ b ] L c"},
        Case{"R(L(I(a,b),c),d)", 2, 4, "R(I(a,[L(b,c)]),d)", "a I [ b L c ] R d"},
        Case{"R(L(I(a,b),c),d)", 2, 6, "I(a,[R(L(b,c),d)])", "a I [ b L c R d ]"},
        Case{"R(L(I(a,b),c),d)", 4, 6, "L(I(a,b),[R(c,d)])", "a I b L [ c R d ]"},
        // Brackets count as one operand; one of their rows alone stands for all of them.
        Case{"[a]", 0, 0, "[[a]]", "[ [ a ] ]"},
        Case{"I(a,[b])", 4, 4, "I(a,[[b]])", "a I [ [ b ] ]"},
        Case{"L(I(a,[b]),c)", 2, 6, "I(a,[L([b],c)])", "a I [ [ b ] L c ]"},
        Case{"[L(I(a,b),c)]", 3, 5, "[I(a,[L(b,c)])]", "[ a I [ b L c ] ]"},
        // Subtrees that lean to the right stay as they are.
        Case{"I(a,L(b,c))", 2, 4, "I(a,[L(b,c)])", "a I [ b L c ]"},
        Case{"C(a,C(b,c))", 2, 4, "C(a,[C(b,c)])", "a C [ b C c ]"},
        Case{"C(a,C(I(b,c),d))", 4, 6, "C(a,I(b,[C(c,d)]))", "a C b I [ c C d ]"},
        // Commas in the way are rotated.
        Case{"C(a,I(b,c))", 0, 2, "I([C(a,b)],c)", "[ a C b ] I c"},
        Case{"C(a,C(I(b,c),d))", 0, 4, "C([I(C(a,b),c)],d)", "[ a C b I c ] C d"},
        Case{"L(C(a,I(b,c)),d)", 4, 6, "I(C(a,b),[L(c,d)])", "a C b I [ c L d ]"}));

class RefusedGrouping : public testing::TestWithParam<Case> {};

TEST_P(RefusedGrouping, ChangesNothing) {
    TreeUnderEdit edit(GetParam().tree);
    const Items rows = select(edit, GetParam());
    EXPECT_FALSE(edit.layout.canGroupItemsByBracket(rows));
    edit.layout.groupItemsByBracket(rows, 0);
    edit.layout.updateItemFlags();
    EXPECT_EQ(edit.tree(), GetParam().tree);
    expectInStep(edit.layout, edit.root());
}

INSTANTIATE_TEST_SUITE_P(SourceTree, RefusedGrouping,
                         testing::Values(Case{"_", 0, 0, "", ""}, Case{"I(a,b)", 1, 2, "", ""},
                                         Case{"I(a,b)", 0, 1, "", ""}, Case{"I(a,b)", 1, 1, "", ""},
                                         Case{"I(a,[b])", 0, 2, "", ""},
                                         Case{"I(a,[b])", 0, 3, "", ""},
                                         Case{"I(_,b)", 0, 2, "", ""}, Case{"I(a,_)", 0, 2, "", ""},
                                         // From one bracket into the next, though levels agree.
                                         Case{"X([X(a,b)],[X(c,d)])", 3, 7, "", ""},
                                         // The text binds b and c before a.
                                         Case{"I(a,L(b,c))", 0, 2, "", ""},
                                         Case{"R(I(a,L(b,c)),d)", 4, 6, "", ""}));

TEST(SourceTreeGrouping, RefusesRowsThatAreNotOneRun) {
    TreeUnderEdit edit("L(I(a,b),c)");
    Item foreign;
    EXPECT_FALSE(edit.layout.canGroupItemsByBracket({}));
    EXPECT_FALSE(edit.layout.canGroupItemsByBracket({edit.row(0), edit.row(2)}));
    EXPECT_FALSE(edit.layout.canGroupItemsByBracket({edit.row(0), edit.row(0), edit.row(2)}));
    EXPECT_FALSE(edit.layout.canGroupItemsByBracket({edit.row(0), &foreign}));
    EXPECT_TRUE(edit.layout.canGroupItemsByBracket({edit.row(2), edit.row(0), edit.row(1)}));
}

class Ungrouping : public testing::TestWithParam<Case> {};

TEST_P(Ungrouping, LeavesTheContentInThePlaceOfTheBracket) {
    TreeUnderEdit edit(GetParam().tree);
    const Items rows = select(edit, GetParam());
    EXPECT_TRUE(edit.layout.canUngroupItemsByBracket(rows));
    edit.layout.ungroupItemsByBracket(rows);
    edit.layout.updateItemFlags();
    EXPECT_EQ(edit.tree(), GetParam().treeAfter);
    EXPECT_EQ(edit.words(), GetParam().rows);
    EXPECT_EQ(edit.layout.takeDetachedParts().size(), 1u);
    expectInStep(edit.layout, edit.root());
}

INSTANTIATE_TEST_SUITE_P(
    SourceTree, Ungrouping,
    testing::Values(Case{"[a]", 0, 0, "a", "a"}, Case{"[[a]]", 0, 0, "[a]", "[ a ]"},
                    Case{"[[_]]", 0, 4, "[_]", "[ _ ]"}, Case{"I(a,[b])", 4, 4, "I(a,b)", "a I b"},
                    Case{"I([L(a,b)],c)", 0, 4, "I(L(a,b),c)", "a L b I c"},
                    // A run that leans to the right leans to the left again.
                    Case{"I(a,[L(b,c)])", 2, 6, "L(I(a,b),c)", "a I b L c"},
                    Case{"I(a,[R(L(b,c),d)])", 2, 2, "R(L(I(a,b),c),d)", "a I b L c R d"},
                    Case{"C(a,[L(b,[c])])", 2, 2, "L(C(a,b),[c])", "a C b L [ c ]"}));

TEST(SourceTreeUngrouping, IsRefusedForAnEmptyBracketAndForAnythingElse) {
    TreeUnderEdit edit("I(I([_],a),[b])");  // [ _ ] I a I [ b ]
    const std::vector<Items> refused = {{},
                                        {edit.row(0)},
                                        {edit.row(2)},
                                        edit.rows(0, 2),
                                        {edit.row(1)},
                                        {edit.row(3)},
                                        {edit.row(4)},
                                        edit.rows(6, 7),
                                        edit.rows(4, 8)};
    for (const Items& rows : refused) {
        EXPECT_FALSE(edit.layout.canUngroupItemsByBracket(rows)) << edit.words(rows);
        edit.layout.ungroupItemsByBracket(rows);
    }
    EXPECT_EQ(edit.tree(), "I(I([_],a),[b])");
}

TEST(SourceTreeRows, MoveOnlyByRemovingAndAdding) {
    TreeUnderEdit edit("I(a,b)");
    edit.layout.moveItem(edit.row(0), 3);
    EXPECT_EQ(edit.words(), "a I b");
    EXPECT_EQ(edit.layout.moveUpOffset(edit.row(0)), -1);
    EXPECT_EQ(edit.layout.moveDownOffset(edit.row(0)), 2);
}

}  // namespace QB::Test
