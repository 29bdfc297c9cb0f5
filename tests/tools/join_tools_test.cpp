#include "tools/join_tools.h"

#include <gtest/gtest.h>

#include "join_fixture.h"
#include "model/dump.h"
#include "parser/query_parser.h"
#include "tools/join_lack.h"

namespace QB::Test {

using namespace Component::SQL;

namespace {

struct Case {
    const char* tree;
    const char* steps;  ///< see JoinFixture::run
    const char* treeAfter;
    const char* conditionsAfter;  ///< of the joins in text order; those of one join with "&"
};

class JoinTools : public JoinFixture {
protected:
    static std::string words(const std::vector<Source*>& sources) {
        std::string text;
        for (const Source* source : sources)
            text += wordOf(source);
        return text;
    }
};

}  // namespace

TEST_F(JoinTools, LinkAndUnlink) {
    const Case cases[] = {
        // one comma between the two
        {"C(a,b)", "a-b", "I(a,b)", "a=b"},
        {"C(a,b)", "b-a", "I(a,b)", "a=b"},
        {"C(I(a,b),c)", "a-c", "I(I(a,b),c)", "- a=c"},
        {"C(C(a,b),c)", "b-c", "I(C(a,b),c)", "- b=c"},
        {"C(L(a,b),R(c,d))", "b-d", "I(L(a,b),[R(c,d)])", "- b=d -"},
        // what is joined to one comes next to what is joined to the other
        {"C(C(a,b),c)", "a-c", "C(I(a,c),b)", "a=c -"},
        {"C(a,C(b,c))", "a-c", "C(I(a,c),b)", "a=c -"},
        {"C(a,C(b,c))", "b-c", "C(a,I(b,c))", "- b=c"},
        {"C(C(a,b),C(c,d))", "b-d", "C(C(a,I(b,d)),c)", "- b=d -"},
        {"C(C(I(a,b),c),d)", "b-d", "C(I(I(a,b),d),c)", "- b=d -"},
        {"C(C(I(a,I(c,d)),b),e)", "c-d", "C(C(I(a,I(c,d)),b),e)", "- c=d - -"},
        {"J(C(a,b),c)", "a-b", "J(I(a,b),c)", "a=b -"},
        {"C(J(C(a,b),c),d)", "a-d", "C(I(a,d),J(b,c))", "a=d - -"},
        {"J(C(a,b),c)", "a-c", "I(a,[J(b,c)])", "a=c -"},
        {"C(a,L(C(b,c),d))", "a-d", "C(I(a,[L(c,d)]),b)", "a=d - -"},
        {"I(a,C(b,c))", "a-b", "C(I(a,b),c)", "a=b -"},
        {"L(J(C(a,b),C(c,d)),e)", "d-e", "C(C(a,J(b,c)),L(d,e))", "- - - d=e"},
        // joined already: the shape stays
        {"J(a,b)", "a-b b-a", "J(a,b)", "a=b&a=b"},
        {"I(C(n,a),b)", "a-b", "I(C(n,a),b)", "- a=b"},
        {"X(a,F(b,c))", "a-c", "X(a,F(b,c))", "- -"},
        {"L(R(a,b),c)", "b-a c-a", "L(R(a,b),c)", "a=b a=c"},
        // brackets hold what they hold
        {"C(a,[C(b,c)])", "a-c", "I(a,[C(b,c)])", "a=c -"},
        {"C(a,[C(b,c)])", "b-c", "C(a,[I(b,c)])", "- b=c"},
        {"C(C([C(b,c)],a),[[d]])", "c-d", "C(I([C(b,c)],[[d]]),a)", "- c=d -"},
        {"I(a,[C(b,C(c,d))])", "b-d a-c", "I(a,[C(I(b,d),c)])", "a=c b=d -"},
        // a comma instead of a join: what lost sight of its source goes, too
        {"C(a,b)", "a-b ~I", "C(a,b)", "-"},
        {"I(I(a,b),c)", "a-b b-c ~I", "C(a,I(b,c))", "- b=c"},
        {"I(L(I(a,b),c),d)", "a-b a-c c-d ~I", "C(a,I(L(b,c),d))", "- - c=d"},
        {"I(a,L(b,c))", "b-c a-c ~L", "C(I(a,b),c)", "- -"},
        {"I(a,L(b,c))", "b-c a-b ~L", "C(I(a,b),c)", "a=b -"},
        {"R(I(a,[C(b,c)]),d)", "a-b b-d c-d ~I", "C(a,R([C(b,c)],d))", "- - b=d&c=d"},
        {"I([I(L(a,b),c)],d)", "a-b a-c a-d ~L", "I([C(a,I(b,c))],d)", "- - a=d"},
        {"C(I(L(a,b),c),R(d,e))", "a-b a-c d-e ~L", "C(C(a,I(b,c)),R(d,e))", "- - - d=e"},
        {"X(a,F(b,c))", "~X", "C(a,F(b,c))", "- -"},
        // one comparison less: the join stays what it is
        {"L(a,b)", "a-b a-b ~L0", "L(a,b)", "a=b"},
        {"L(I(a,b),c)", "a-b b-c ~I0", "L(I(a,b),c)", "- b=c"},
        // and drawn again
        {"C(C(a,b),c)", "a-b b-c ~I a-b", "I(a,[I(b,c)])", "a=b b=c"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.tree << " " << c.steps);
        setTree(c.tree);
        run(c.steps);
        EXPECT_EQ(tree(), c.treeAfter);
        EXPECT_EQ(conditions(), c.conditionsAfter);
    }
}

TEST_F(JoinTools, WriteTheConditionThatWasDrawn) {
    setTree("C(a,b)");
    link("b", "a", {{"", ""}});
    EXPECT_EQ(tree() + conditions(), "I(a,b)-");
    setTree("J(a,b)");
    find<Join>("J")->joinText.clear();  // as a row comes in: the text shows a comma
    run("a-b");
    EXPECT_EQ(tree() + conditions(), "I(a,b)a=b");
    setTree("C(a,b)");
    find<SQLIdentifierSourceComponent>("a")->path = {"db", "shop"};
    auto* derived = new SQLSubquerySourceComponent;
    derived->alias = "b";
    derived->subquery = new SQLSelectStmtComponent;
    delete std::exchange((*root())->right->value, derived);
    find<Join>("C")->joinText = ",";
    link("b", "a", {{"y", "x"}, {"", ""}, {"", "x"}});
    const std::string dump = dumpStatement(statement());
    const std::string field = "            field \"x\" path=[\"db\", \"shop\", \"a\"] source=1\n";
    const std::string expected =
        "    join INNER JOIN\n      on\n        and compare op=0\n          value\n" + field +
        "          value\n            field \"y\" source=2\n        and compare op=0\n          "
        "value\n" +
        field + "          value\n      table";
    EXPECT_NE(dump.find(expected), std::string::npos) << dump;
}

/// USING has no room for a comparison, and merges its columns.
TEST_F(JoinTools, AddToTheListOfUsingOrRefuse) {
    struct Line {
        const char* list;
        std::vector<Tools::SQL::FieldPair> fields;
        const char* listAfter;
        int notifications;
        std::size_t errors;
    };
    const Line lines[] = {
        {"x", {{"y", "y"}, {"", ""}, {"z", "z"}}, "x, \"y\", \"z\"", 1, 0},
        {"id, \"x\", `q``r`",
         {{"x", "x"}, {"ID", "ID"}, {"q`r", "q`r"}},
         "id, \"x\", `q``r`",
         0,
         0},
        {"\"X, y\"", {{"x", "x"}, {"y", "y"}}, "\"X, y\", \"x\", \"y\"", 1, 0},
        {"x", {{"x", "x"}, {"y", "z"}}, "x", 0, 1},
        {"x", {{"x", ""}}, "x", 0, 1},
        {"x", {}, "x", 0, 0},
    };
    for (const Line& line : lines) {
        SCOPED_TRACE(line.list);
        setTree("L(a,b)");
        m_host.errors.clear();
        auto* names = new SQLAnyExpressionColumnComponent;
        names->expression = line.list;
        auto* value = new SQLConditionValueComponent;
        value->values.push_back(names);
        find<Join>("L")->condition = value;
        find<Join>("L")->isUsing = true;
        link("b", "a", line.fields);
        EXPECT_EQ(conditions(), line.listAfter);
        EXPECT_EQ(m_notifications, line.notifications);
        EXPECT_EQ(m_host.errors.size(), line.errors);
    }
    run("~L a-b");
    EXPECT_EQ(conditions(), "a=b") << "a comma has forgotten USING";
    setTree("L(a,b)");
    find<Join>("L")->isUsing = true;
    run("a-b");
    EXPECT_EQ(conditions(), "\"x\"") << "no list yet";
}

/// What the text does not show is said, and not lost.
TEST_F(JoinTools, KeepTheConditionOfACrossJoinAndTellOfIt) {
    setTree("X(a,b)");
    run("a-b");
    EXPECT_EQ(tree() + conditions(), "X(a,b)-");
    EXPECT_EQ(m_host.errors.size(), 1U);
    find<Join>("X")->joinType = SQLJoinTypeInner;
    EXPECT_EQ(conditions(), "a=b");
    for (const char* const natural : {"L", "J"}) {
        setTree(natural + std::string("(a,b)"));
        find<Join>(natural)->joinText = "Natural Join";
        m_host.errors.clear();
        run("a-b a-b");
        EXPECT_EQ(conditions(), "a=b&a=b");
        EXPECT_EQ(m_host.errors.size(), 1U) << natural;
    }
}

TEST_F(JoinTools, TellWhenAJoinComesToCompareColumnsThatNobodyWrote) {
    struct Line {
        const char* tree;
        const char* steps;
        DatabaseType family;
        const char* told;
    };
    const Line lines[] = {
        {"L(a,b)", "a-b ~L0", DatabaseTypeMySQL, "NATURAL LEFT JOIN"},
        {"L(a,b)", "a-b ~L0", DatabaseTypeSQLServer, ""},  // which refuses it
        {"L(a,b)", "a-b a-b ~L0", DatabaseTypeMySQL, ""},
        {"L(a,b)", "a-b ~L", DatabaseTypeMySQL, ""},
        {"I(a,b)", "a-b ~I0", DatabaseTypeMySQL, ""},
        {"R(I(a,b),c)", "a-b a-c ~I", DatabaseTypeOracle, "NATURAL RIGHT JOIN"},
        {"F(L(I(a,b),c),d)", "a-b a-c a-d ~I", DatabaseTypeSQLite,
         "NATURAL LEFT JOIN, NATURAL FULL OUTER JOIN"},
    };
    for (const Line& line : lines) {
        SCOPED_TRACE(testing::Message() << line.tree << " " << line.steps);
        m_host.errors.clear();
        m_engine->setDatabaseInfo(line.family, 1);
        setTree(line.tree);
        run(line.steps);
        const std::string told = m_host.errors.empty() ? "" : m_host.errors.back();
        EXPECT_EQ(told.empty(), !*line.told);
        EXPECT_NE(told.find(line.told), std::string::npos) << told;
    }
}

TEST_F(JoinTools, KnowWhichJoinLacksACondition) {
    using Tools::SQL::JoinLack;
    using Tools::SQL::lackOf;
    struct Line {
        const char* joins;
        std::vector<DatabaseType> families;
        JoinLack lack;
    };
    constexpr auto mySql = DatabaseTypeMySQL, sqlite = DatabaseTypeSQLite;
    constexpr auto postgres = DatabaseTypePostgreSQL, server = DatabaseTypeSQLServer;
    const Line lines[] = {
        {"JCX", {mySql, postgres, server}, JoinLack::None},
        {"I", {mySql, sqlite, DatabaseTypeMariaDB}, JoinLack::Cross},
        {"I", {postgres, server, DatabaseTypeOracle}, JoinLack::Condition},
        {"LRF", {mySql, sqlite, postgres, DatabaseTypeOracle}, JoinLack::Natural},
        {"LRF", {server}, JoinLack::Condition},
    };
    for (const Line& line : lines)
        for (const DatabaseType family : line.families)
            for (const char* word = line.joins; *word; ++word) {
                setTree(std::string(1, *word) + "(a,b)");
                Join* const join = find<Join>(std::string(1, *word));
                SCOPED_TRACE(testing::Message() << *word << family);
                EXPECT_EQ(lackOf(join, family), line.lack);
                if (line.lack == JoinLack::Natural) {
                    join->joinText = "natural left JOIN";
                    EXPECT_EQ(lackOf(join, family), JoinLack::None) << "it was read so";
                }
                run("a-b");
                EXPECT_EQ(lackOf(join, family), JoinLack::None);
            }
    setTree("I(a,b)");
    find<Join>("I")->isUsing = true;
    EXPECT_EQ(lackOf(find<Join>("I"), mySql), JoinLack::Condition);
}

TEST_F(JoinTools, DoNothingWithoutTwoSourcesOfTheClause) {
    setTree("C(a,[b])");
    SQLIdentifierSourceComponent foreign;
    for (Source* other : {find("a"), find("["), find("C"), static_cast<Source*>(&foreign),
                          static_cast<Source*>(nullptr)}) {
        Tools::SQL::makeJoinLinkIfNecessary(m_engine.get(), this, find("a"), "x", other, "x");
        Tools::SQL::makeJoinLinkIfNecessary(m_engine.get(), this, other, "x", find("a"), "x");
    }
    SQLJoinSourceNodeComponent join;
    Tools::SQL::removeJoins(m_engine.get(), this, {{&join, nullptr}, {nullptr, nullptr}});
    run("~C");
    EXPECT_EQ(tree(), "C(a,[b])");
    EXPECT_EQ(m_notifications, 0);
    delete std::exchange(*root(), nullptr);
    Tools::SQL::makeJoinLinkIfNecessary(m_engine.get(), this, &foreign, "x", &join, "x");
}

/// A bracket that loses all of its conditions goes with them, others stay; BETWEEN, lists and
/// comparisons of comparisons are looked through.
TEST_F(JoinTools, FindEveryConditionThatNamesWhatIsOutOfSight) {
    ASSERT_TRUE(QBQueryParser::parseStatement(
                    statement(),
                    "SELECT * FROM a INNER JOIN b ON a.x = b.x INNER JOIN c ON b.x = c.x "
                    "AND (a.x = c.x OR (c.y IN (1, a.y))) AND (b.y = 1 OR c.x BETWEEN 1 AND a.x) "
                    "AND c.z AND a.z AND (c.x = b.x) = (c.y = b.y)",
                    DatabaseTypePostgreSQL, "")
                    .isAccepted());
    run("~I");
    EXPECT_EQ(m_engine->buildQuery(),
              "SELECT\n\t*\nFROM\n\t\"a\",\n\t\"b\"\n\tINNER JOIN\n\t\"c\"\n\tON \n"
              "\t\t\"b\".\"x\" = \"c\".\"x\" AND\n\t\t(\n\t\t\t\"b\".\"y\" = 1\n\t\t) AND\n"
              "\t\t\"c\".\"z\" AND\n\t\t(c.x = b.x) = (c.y = b.y)");
}

TEST_F(JoinTools, TellTheEndsOfALinkAndTheirSides) {
    struct Line {
        const char* tree;
        const char* join;
        const char* items;
        const char* left;
        const char* right;
    };
    const Line lines[] = {
        {"L(I(a,b),c)", "L", "abc", "ab", "c"},
        {"L(I(a,b),c)", "I", "abc", "a", "bc"},  // c joins later
        {"L(a,I(b,c))", "I", "cba", "b", "c"},   // a stands in front of the group
        {"L(a,I(b,c))", "L", "abc", "a", "bc"},
        {"C(L(a,b),R(c,d))", "R", "abcd", "c", "d"},
        {"C(L(a,b),R(c,d))", "L", "abcd", "a", "b"},
        {"L(C(a,b),c)", "L", "abc", "b", "c"},
        {"L([C(a,b)],c)", "L", "abc", "ab", "c"},
        {"R([L(a,b)],c)", "L", "abc", "a", "b"},
        {"L(I(C(a,b),d),c)", "L", "abcd", "bd", "c"},
        {"L(I(a,C(b,d)),c)", "L", "abcd", "abd", "c"},
    };
    for (const Line& line : lines) {
        SCOPED_TRACE(testing::Message() << line.tree << " " << line.join);
        setTree(line.tree);
        std::vector<Source*> items = {nullptr};
        for (const char* item = line.items; *item; ++item)
            items.push_back(find(std::string(1, *item)));
        std::vector<Source*> left(1);
        std::vector<Source*> right(1);
        SourceNode* node = *SourceTree::pathToValue(root(), find(line.join)).back();
        Tools::SQL::checkItemComponentsSideOnJoinComponent(*root(), node, items, left, right);
        EXPECT_EQ(words(left), line.left);
        EXPECT_EQ(words(right), line.right);
    }
}

/// Rows that are no join, and layouts that have no such row.
TEST_F(JoinTools, AnswerForAnyRow) {
    setTree("L(C(a,b),[C(I(c,d),e)])");  // rows: a C b L [ c I d C e ]
    QBComponentsListLayout layout;
    const auto related = [&layout, this](int row) -> std::string {
        EXPECT_TRUE(Tools::Validation::invalidateJoinConditions(
                        &layout, static_cast<unsigned long>(row), m_engine.get())
                        .empty());
        const std::unique_ptr<std::vector<Source*>> sources(
            Tools::SQL::joinConditionRelatedSources(&layout, row));
        return sources ? words(*sources) : "-";
    };
    EXPECT_EQ(related(0), "-");
    layout.setImplementation(std::make_unique<SourceTreeLayout>(root()));
    layout.implementation()->rebuildItems();
    std::string all;
    for (int row = -1; row < 12; ++row)
        all += related(row) + " ";
    EXPECT_EQ(all, "- a b b bcde bcde c cd dc e e edcb - ");
    EXPECT_EQ(Tools::SQL::joinConditionRelatedSources(nullptr, 0), nullptr);
    EXPECT_TRUE(Tools::Validation::invalidateJoinConditions(nullptr, 0, nullptr).empty());
}

TEST_F(JoinTools, WorkOnATreeThatIsDeeperThanTheStack) {
    constexpr int depth = 100000;
    for (const bool leansLeft : {true, false}) {
        setTree("a");
        for (int i = 0; i < depth; ++i) {
            const SQLJoinType type = i % 2 ? SQLJoinTypeComma : SQLJoinTypeInner;
            SourceNode* leaf = makeNode(makeTable(i == depth - 1 ? "z" : "t")).release();
            *root() =
                makeJoin(type, leansLeft ? *root() : leaf, leansLeft ? leaf : *root()).release();
        }
        run("a-z a-t ~I");
        std::vector<Source*> left;
        std::vector<Source*> right;
        Tools::SQL::checkItemComponentsSideOnJoinComponent(
            *root(), *SourceTree::pathToValue(root(), find("I")).back(), {find("z")}, left, right);
        EXPECT_EQ(SourceTree::flatten(root()).size(), 2u * depth + (leansLeft ? 1 : 3));
    }
}

}  // namespace QB::Test
