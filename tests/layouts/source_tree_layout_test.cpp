#include "layouts/source_tree_layout.h"

#include <gtest/gtest.h>

#include "layouts/row_dump.h"
#include "support/tree_notation.h"

namespace QB::Test {

using namespace Component::SQL;

namespace {

enum class Edit { Insert, Add, Remove, Group, Ungroup };

struct Case {
    Edit edit;
    const char* tree;
    int first;
    int last;
    const char* treeAfter;  ///< null: refused, and the tree stays
};

void apply(TreeUnderEdit& edit, const Case& c) {
    SourceTreeLayout& layout = edit.layout;
    if (c.edit == Edit::Insert) layout.insertItem(makeTable("n"), c.first);
    if (c.edit == Edit::Add) layout.addItem(makeTable("n"), c.first);
    if (c.edit < Edit::Remove) return;
    const Items rows = edit.rows(static_cast<std::size_t>(c.first),
                                 static_cast<std::size_t>(std::max(c.first, c.last)));
    if (c.edit == Edit::Remove) return layout.removeItem_internal(rows.front());
    const bool isGrouping = c.edit == Edit::Group;
    EXPECT_EQ(
        isGrouping ? layout.canGroupItemsByBracket(rows) : layout.canUngroupItemsByBracket(rows),
        c.treeAfter != nullptr);
    EXPECT_EQ(edit.tree(), c.tree) << "the question changed the tree";
    isGrouping ? layout.groupItemsByBracket(rows, 0) : layout.ungroupItemsByBracket(rows);
}

}  // namespace

/// What the random runs leave open: which join binds what.
TEST(SourceTreeEdits, LeaveTheTreeThatTheirTextMeans) {
    const Case cases[] = {
        {Edit::Insert, "_", -1, 0, "n"},
        {Edit::Insert, "L(I(a,b),c)", 0, 0, "L(I(C(n,a),b),c)"},
        {Edit::Insert, "L(I(a,b),c)", 2, 0, "L(I(J(a,n),b),c)"},
        {Edit::Insert, "L(I(a,b),c)", 3, 0, "L(J(I(a,b),n),c)"},
        {Edit::Insert, "L(I(a,b),c)", 99, 0, "J(L(I(a,b),c),n)"},
        {Edit::Insert, "L([I(a,b)],c)", 1, 0, "L([I(C(n,a),b)],c)"},
        {Edit::Insert, "L([I(a,b)],c)", 4, 0, "L([J(I(a,b),n)],c)"},
        {Edit::Insert, "I(a,[[b]])", 6, 0, "I(a,[J([b],n)])"},
        {Edit::Insert, "I(a,[_])", 4, 0, "I(a,[n])"},  // by its close row
        {Edit::Insert, "I(a,_)", -1, 0, "I(a,n)"},
        {Edit::Insert, "C(a,L(b,c))", 3, 0, "C(a,L(J(b,n),c))"},
        {Edit::Insert, "C(a,L(b,c))", 5, 0, "J(C(a,L(b,c)),n)"},
        {Edit::Add, "L([I(a,b)],c)", 1, 0, "L([J(I(a,b),n)],c)"},
        {Edit::Add, "L([I(a,b)],c)", 4, 0, "J(L([I(a,b)],c),n)"},
        {Edit::Add, "I([_],c)", 1, 0, "I([n],c)"},
        {Edit::Remove, "L(I(a,b),c)", 0, 0, "L(b,c)"},
        {Edit::Remove, "L(I(a,b),c)", 1, 0, "L(a,c)"},  // a join stands for its right source
        {Edit::Remove, "L([I(a,b)],c)", 4, 0, "c"},     // a close row for its bracket
        {Edit::Remove, "I([a],b)", 1, 0, "I([_],b)"},
        {Edit::Remove, "C(I(a,b),L(c,d))", 4, 0, "C(I(a,b),d)"},
        {Edit::Group, "R(L(I(a,b),c),d)", 2, 4, "R(I(a,[L(b,c)]),d)"},
        {Edit::Group, "R(L(I(a,b),c),d)", 2, 6, "I(a,[R(L(b,c),d)])"},
        {Edit::Group, "L(I(a,b),c)", 2, 2, "L(I(a,[b]),c)"},
        {Edit::Group, "I(a,[b])", 4, 4, "I(a,[[b]])"},  // one row of a bracket means all of it
        {Edit::Group, "I(a,L(b,c))", 2, 4, "I(a,[L(b,c)])"},
        {Edit::Group, "C(a,C(I(b,c),d))", 4, 6, "C(a,I(b,[C(c,d)]))"},
        {Edit::Group, "C(a,C(I(b,c),d))", 0, 4, "C([I(C(a,b),c)],d)"},  // commas are rotated
        {Edit::Group, "L(C(a,I(b,c)),d)", 4, 6, "I(C(a,b),[L(c,d)])"},
        {Edit::Group, "_", 0, 0, nullptr},
        {Edit::Group, "I(a,b)", 1, 1, nullptr},
        {Edit::Group, "X([X(a,b)],[X(c,d)])", 3, 7, nullptr},  // from one bracket into the next
        {Edit::Group, "I(a,L(b,c))", 0, 2, nullptr},           // the text binds b and c first
        {Edit::Ungroup, "[[_]]", 0, 4, "[_]"},
        {Edit::Ungroup, "I(a,[b])", 4, 4, "I(a,b)"},
        {Edit::Ungroup, "I(a,[R(L(b,c),d)])", 2, 2, "R(L(I(a,b),c),d)"},
        {Edit::Ungroup, "C(a,[L(b,[c])])", 2, 2, "L(C(a,b),[c])"},
        {Edit::Ungroup, "I([_],a)", 0, 2, nullptr},
        {Edit::Ungroup, "I(a,[b])", 1, 1, nullptr},
        {Edit::Ungroup, "I(a,[b])", 2, 3, nullptr},
        {Edit::Ungroup, "I(a,[b])", 0, 4, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.tree << " " << c.first << ".." << c.last);
        TreeUnderEdit edit(c.tree);
        apply(edit, c);
        edit.layout.updateItemFlags();
        EXPECT_EQ(edit.tree(), c.treeAfter ? c.treeAfter : c.tree);
        expectInStep(edit.layout, edit.root());
        edit.layout.rebuildItems();
        edit.layout.updateItemFlags();
        expectInStep(edit.layout, edit.root());
    }
}

TEST(SourceTreeEdits, AreRefusedWhereTheRowsWouldNotFit) {
    TreeUnderEdit edit("I(a,[_])");
    SQLAnyExpressionColumnComponent column;
    SQLJoinSourceNodeComponent join;
    SQLBracketedSourceNodeComponent bracket;
    SQLIdentifierSourceComponent table;
    Item foreign;
    EXPECT_TRUE(edit.layout.insertItem(&column, 0).empty());
    EXPECT_TRUE(edit.layout.insertItem(&join, 0).empty());
    EXPECT_TRUE(edit.layout.addItem(nullptr, 0).empty());
    edit.layout.replaceItemComponent(edit.row(0), &join, true);
    edit.layout.replaceItemComponent(edit.row(1), &table, true);
    edit.layout.replaceItemComponent(edit.row(2), &table, true);
    edit.layout.replaceItemComponent(edit.row(3), &table, true);
    edit.layout.replaceItemComponent(edit.row(4), &bracket, true);
    edit.layout.replaceItemComponent(edit.row(0), nullptr, true);
    edit.layout.replaceItemComponent(&foreign, &table, true);
    const std::vector<Items> notOneRun = {
        {}, {edit.row(0), edit.row(2)}, {edit.row(0), edit.row(0)}, {&foreign}};
    for (const Items& rows : notOneRun) {
        EXPECT_FALSE(edit.layout.canGroupItemsByBracket(rows));
        EXPECT_FALSE(edit.layout.canUngroupItemsByBracket(rows));
    }
    EXPECT_EQ(edit.tree(), "I(a,[_])");
    expectInStep(edit.layout, edit.root());
}

TEST(SourceTreeEdits, DetachTheJoinOfARemovedSourceAndWhatIsReplaced) {
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

    const auto* removed = dynamic_cast<SQLIdentifierSourceComponent*>(row->component);
    edit.layout.removeItem_internal(row);
    DetachedParts parts = edit.layout.takeDetachedParts();
    parts.freeUnreferenced({removed});
    EXPECT_EQ(parts.size(), 1u) << "the source is not among the detached parts";
    parts.freeUnreferenced({});
    EXPECT_TRUE(parts.isEmpty());
}

TEST(SourceTreeEdits, WorkOnATreeThatIsDeeperThanTheStack) {
    constexpr int depth = 100000;
    for (const bool isLeftDeep : {true, false}) {
        SourceNode* root = makeNode(makeTable("t")).release();
        for (int i = 0; i < depth; ++i) {
            SourceNode* leaf = makeNode(makeTable("t")).release();
            root = makeJoin(SQLJoinTypeComma, isLeftDeep ? root : leaf, isLeftDeep ? leaf : root)
                       .release();
        }
        TreeUnderEdit edit(root);
        ASSERT_EQ(edit.layout.items().size(), 2u * depth + 1);
        edit.layout.insertItem(makeTable("new"), 1);
        edit.layout.removeItem_internal(edit.row(0));
        EXPECT_EQ(wordOf(edit.row(0)->component), "new");
        edit.layout.groupItemsByBracket(edit.rows(0, depth), 0);
        EXPECT_EQ(edit.words(edit.rows(0, 1)), "[ new");
        edit.layout.ungroupItemsByBracket({edit.row(0)});
        EXPECT_EQ(edit.layout.items().size(), 2u * depth + 1);
    }
}

}  // namespace QB::Test
