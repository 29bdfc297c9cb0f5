// How trees become components, also trees that the parser library as it is never gives.

#include <gtest/gtest.h>
#include <pthread.h>

#include <functional>
#include <memory>
#include <stdexcept>

#include "fake_sqlet.h"
#include "model/detached_parts.h"
#include "model/dump.h"
#include "model/element_expressions.h"
#include "model/statement_text.h"
#include "parser/query_parser.h"

using namespace QB;
using namespace QB::Component::SQL;

namespace {

using Elements = std::set<TopLevelQueryComponentElementEnum>;
using Verdict = QBParseOutcome::Verdict;

class ConversionTest : public ::testing::Test {
protected:
    ConversionTest() {
        // The gate is not what is tested here: any text will do, and the double finds it equal.
        installStatementText([](const Component::AbstractQueryComponent*, QBDatabaseInfo,
                                const std::string&,
                                const QuoteName&) { return std::string("rebuilt"); });
    }
    ~ConversionTest() override {
        installStatementText(nullptr);
        EXPECT_EQ(sqlet.openHandles, 0);
    }

    /// The model of @p select without its first line, or the message.
    std::string dump(const SqletSelect& select, DatabaseType type = DatabaseTypePostgreSQL,
                     const std::string& schema = "public") {
        SqletParser answer;
        answer.select = select;
        sqlet.answers["text"] = answer;
        return dumpOf("text", type, schema);
    }

    static std::string dumpOf(const std::string& text, DatabaseType type,
                              const std::string& schema) {
        const OwnedStatement statement(new SQLSelectStmtComponent);
        const QBParseOutcome outcome =
            QBQueryParser::parseStatement(statement.get(), text, type, schema);
        if (!outcome.isAccepted()) return outcome.message;
        std::string dumped = dumpStatement(statement.get());
        const std::string start = "statement\n  select\n";
        if (dumped.compare(0, start.size(), start) == 0) dumped.erase(0, start.size());
        return dumped;
    }

    std::string dumpFrom(SqletTable* table, DatabaseType type = DatabaseTypePostgreSQL,
                         const std::string& schema = "public") {
        SqletSelect select;
        select.table = table;
        return dump(select, type, schema);
    }

    std::string dumpWhere(SqletExpr* where) {
        SqletSelect select;
        select.where = where;
        return dump(select);
    }

    SqletTable* table(const char* name, const char* alias = nullptr, unsigned parens = 0) {
        SqletTable node;
        node.name = name;
        node.alias = alias;
        node.parens = parens;
        return sqlet.make(node);
    }
    SqletTable* complexTable(const char* text, const char* alias = nullptr) {
        SqletTable node;
        node.complex = text;
        node.alias = alias;
        return sqlet.make(node);
    }
    SqletTable* join(SqletTable* left, const char* op, SqletTable* right, unsigned parens = 0) {
        SqletTable node;
        node.left = left;
        node.op = op;
        node.right = right;
        node.parens = parens;
        node.complex = "as written";
        return sqlet.make(node);
    }
    SqletExpr* text(const char* complex, unsigned parens = 0) {
        SqletExpr node;
        node.complex = complex;
        node.parens = parens;
        return sqlet.make(node);
    }
    SqletExpr* op(SqletExpr* left, const char* words, SqletExpr* right, unsigned parens = 0) {
        SqletExpr node;
        node.left = left;
        node.op = words;
        node.right = right;
        node.parens = parens;
        node.complex = "as written";
        return sqlet.make(node);
    }
    SqletColumn* column(const char* name, const char* parent = nullptr,
                        const char* alias = nullptr) {
        SqletColumn node;
        node.name = node.formattedName = name;
        node.parents[0] = parent;
        node.alias = alias;
        return sqlet.make(node);
    }
    SqletExpr* field(const char* name, const char* parent) {
        SqletExpr node;
        node.name = name;
        node.parents[0] = parent;
        return sqlet.make(node);
    }

    FakeSqlet sqlet;
};

}  // namespace

// ---- sources ----------------------------------------------------------------------------------

TEST_F(ConversionTest, ATableWithoutSchemaLiesInTheCurrentOneAndInDboOnSqlServer) {
    EXPECT_EQ(dumpFrom(table("t")), "  from\n    table \"t\" path=[\"public\"]\n");
    EXPECT_EQ(dumpFrom(table("t"), DatabaseTypePostgreSQL, ""), "  from\n    table \"t\"\n");
    EXPECT_EQ(dumpFrom(table("t"), DatabaseTypeSQLServer, ""),
              "  from\n    table \"t\" path=[\"dbo\"]\n");
    SqletTable long4;
    long4.parents[0] = "server";
    long4.parents[2] = "schema";  // the one between is absent
    long4.name = "t";
    EXPECT_EQ(dumpFrom(&long4), "  from\n    table \"t\" path=[\"server\", \"schema\"]\n");
}

TEST_F(ConversionTest, SidesThatCannotBeReadBecomePlaceholdersAndAWrapperVanishes) {
    const std::string empty = "    join INNER JOIN text=\"INNER JOIN\"\n      table \"\"\n";
    EXPECT_EQ(dumpFrom(join(complexTable(""), "INNER JOIN", nullptr)),
              "  from\n" + empty + "      table \"\"\n");
    // The right side claims to stand outside of brackets that its join is in.
    EXPECT_EQ(dumpFrom(join(table("a", nullptr, 1), "INNER JOIN", table("b"), 1)),
              "  from\n    bracket\n      join INNER JOIN text=\"INNER JOIN\"\n"
              "        table \"a\" path=[\"public\"]\n        table \"\"\n");
    EXPECT_EQ(dumpFrom(join(table("a"), nullptr, nullptr)),
              "  from\n    table \"a\" path=[\"public\"]\n");
    EXPECT_EQ(dumpFrom(join(complexTable(""), nullptr, nullptr)),
              "  from\n    source expression \"as written\"\n");
    EXPECT_EQ(dumpFrom(complexTable("")), "");
}

TEST_F(ConversionTest, BracketsAroundAJoinBearItsAliasOutermost) {
    SqletTable* const both = join(table("a", nullptr, 2), ",", table("b", nullptr, 2), 2);
    both->alias = "j";
    EXPECT_EQ(dumpFrom(both),
              "  from\n    bracket as=\"j\"\n      bracket\n        join , text=\",\"\n"
              "          table \"a\" path=[\"public\"]\n          table \"b\" path=[\"public\"]\n");
}

TEST_F(ConversionTest, JoinWordsGiveTheKindAndKeepTheirText) {
    const struct {
        const char* words;
        SQLJoinType type;
    } cases[] = {{",", SQLJoinTypeComma},
                 {"inner join", SQLJoinTypeInner},
                 {"LEFT OUTER JOIN", SQLJoinTypeLeft},
                 {"NATURAL LEFT JOIN", SQLJoinTypeLeft},
                 {"natural right join", SQLJoinTypeRight},
                 {"NATURAL  LEFT JOIN", SQLJoinTypeCustom},
                 {"NATURAL JOIN", SQLJoinTypeCustom},
                 {"JOIN", SQLJoinTypeCustom},
                 {"CROSS JOIN", SQLJoinTypeCross},
                 {"OUTER JOIN", SQLJoinTypeFullOuter},
                 {"FULL JOIN", SQLJoinTypeFullOuter},
                 {"STRAIGHT_JOIN", SQLJoinTypeCustom}};
    for (const auto& [words, type] : cases) {
        const std::string expected =
            "  from\n    join " + joinTypeText(type) + " text=\"" + words + "\"\n";
        EXPECT_EQ(dumpFrom(join(table("a"), words, table("b"))).substr(0, expected.size()),
                  expected);
    }
}

TEST_F(ConversionTest, AnOnConditionSeesTheSourcesBeforeItAndUsingIsOneText) {
    SqletTable* const first = join(table("a", "x"), "INNER JOIN", table("b"));
    first->on = op(field("id", "x"), "=", field("id", "c"));
    SqletTable* const second = join(first, "LEFT JOIN", table("c"));
    SqletExpr columns;
    columns.usingItems = {"id", "\"No\""};
    second->on = &columns;
    EXPECT_EQ(
        dumpFrom(second),
        "  from\n    join LEFT JOIN text=\"LEFT JOIN\" using\n      on\n        value\n"
        "          expression \"id, \\\"No\\\"\"\n"
        "      join INNER JOIN text=\"INNER JOIN\"\n        on\n"
        "          compare op=0\n            value\n"
        "              field \"id\" path=[\"x\"] source=1\n            value\n"
        "              field \"id\" path=[\"public\", \"c\"]\n"
        "        table \"a\" path=[\"public\"] as=\"x\"\n        table \"b\" path=[\"public\"]\n"
        "      table \"c\" path=[\"public\"]\n");
}

TEST_F(ConversionTest, OnlyBracketsAroundOneSoundSelectAreASubquery) {
    SqletParser broken;
    broken.errors = 1;
    SqletParser several;
    several.isMultiple = 1;
    SqletParser sound;
    sound.select.table = table("inner");
    SqletParser dedentedSound = sound;
    sqlet.answers = {{"broken", broken},
                     {"several", several},
                     {"\n  one\n  'a\n  b' two\n", sound},
                     {"one\n'a\n  b' two", dedentedSound}};
    EXPECT_EQ(dumpFrom(complexTable("(broken)", "x")),
              "  from\n    source expression \"(broken)\" as=\"x\"\n");
    EXPECT_EQ(dumpFrom(complexTable("(several)")), "  from\n    source expression \"(several)\"\n");
    EXPECT_EQ(dumpFrom(complexTable("f(x)")), "  from\n    source expression \"f(x)\"\n");
    EXPECT_EQ(dumpFrom(complexTable("()")), "  from\n    source expression \"()\"\n");
    EXPECT_EQ(dumpFrom(complexTable("(\n  one\n  'a\n  b' two\n)", "x")),
              "  from\n    subquery as=\"x\"\n      statement\n        select\n        from\n"
              "          table \"inner\" path=[\"public\"]\n");
    EXPECT_EQ(sqlet.parsed[sqlet.parsed.size() - 2], "one\n'a\n  b' two");
}

// ---- columns ----------------------------------------------------------------------------------

TEST_F(ConversionTest, ColumnsFindTheirSourceAndTakeItsOwnPath) {
    SqletSelect select;
    SqletTable* const other = table("o");
    other->parents[2] = "other";
    select.table = join(other, ",", table("b", "x"));
    SqletColumn* const quotedStar = column("*");
    quotedStar->formattedName = "\"*\"";
    SqletColumn* const call = column("n");
    call->aggregate = "max";
    SqletColumn* const countStar = sqlet.make(SqletColumn());
    countStar->aggregate = "count";
    countStar->parameter = "*";
    SqletColumn* const countTwo = sqlet.make(SqletColumn());
    countTwo->aggregate = "count";
    countTwo->parameter = "a, b";
    countTwo->complex = "count(a, b)";
    select.columns = {column("id", "o"), column("id", "x"), column("id", "who"),
                      column("*", "x"),  quotedStar,        call,
                      countStar,         countTwo,          nullptr};
    const std::string columns =
        "    field \"id\" path=[\"other\", \"o\"] source=1\n"
        "    field \"id\" path=[\"x\"] source=2\n    field \"id\" path=[\"who\"]\n"
        "    field * path=[\"x\"] source=2\n    field \"*\"\n    field \"n\" aggregate=\"max\"\n"
        "    field * aggregate=\"count\"\n    expression \"count(a, b)\"\n";
    EXPECT_EQ(dump(select), columns + dumpFrom(select.table));
}

TEST_F(ConversionTest, AnUnqualifiedNameThatIsAnAliasOfTheListRefersToIt) {
    SqletSelect select;
    SqletColumn* const sum = sqlet.make(SqletColumn());
    sum->complex = "a + b";
    sum->alias = "n";
    select.columns = {sum};
    SqletColumn* const inText = sqlet.make(SqletColumn());
    inText->complex = "n DESC NULLS LAST";
    inText->isDescending = -1;
    SqletColumn* const descending = column("n");
    descending->isDescending = 1;
    select.groupBy = {column("n")};
    select.orderBy = {descending, column("n", "t"), inText, nullptr};
    EXPECT_EQ(dump(select),
              "    expression \"a + b\" as=\"n\"\n  group by\n"
              "    field \"n\" column=1 direction=0\n  order by\n"
              "    field \"n\" column=1 direction=2\n    field \"n\" path=[\"t\"] direction=1\n"
              "    expression \"n DESC NULLS LAST\" direction=0\n");
}

TEST_F(ConversionTest, LimitsAreReadAsNumbersOrNotAtAll) {
    const struct {
        const char* fetch;
        const char* offset;
        const char* count;
        const char* expected;
    } cases[] = {{nullptr, "5", "10", "  limit offset=5 rows=10 option=\"ONLY\"\n"},
                 {"next", "5", "10", "  limit offset=5 rows=10 option=\"ONLY\"\n"},
                 {"first", "5", "10", "  limit rows=10 option=\"ONLY\"\n"},
                 {nullptr, "five", "0", "  limit rows=0 option=\"ONLY\"\n"},
                 {nullptr, nullptr, "99999999999", ""},
                 {nullptr, "0", "1.5", "  limit offset=0 option=\"ONLY\"\n"}};
    for (const auto& [fetch, offset, count, expected] : cases) {
        SqletSelect select;
        select.fetchOption = fetch;
        select.offset = offset;
        select.count = count;
        EXPECT_EQ(dump(select), expected);
    }
    SqletSelect select;
    select.count = "7";
    select.isPercent = 1;
    select.returnOption = "WITH TIES";
    select.isDistinct = 1;
    EXPECT_EQ(dump(select),
              "statement\n  select option=\"DISTINCT\"\n"
              "  limit rows=7 percent option=\"WITH TIES\"\n");
}

// ---- conditions -------------------------------------------------------------------------------

TEST_F(ConversionTest, ConditionsOfEveryShape) {
    SqletColumn* const second = sqlet.make(SqletColumn());
    second->complex = "2";
    SqletColumn* const first = sqlet.make(SqletColumn());
    first->complex = "1";
    first->next = second;
    SqletExpr* const list = sqlet.make(SqletExpr());
    list->list = first;
    SqletExpr* const negated = op(text("a", 2), "=", text("b", 2), 2);
    negated->negatedAt = 3;
    SqletExpr* const negatedFirst = text("a");
    negatedFirst->negatedAt = 1;
    SqletExpr* const negatedOutside = op(text("a", 2), "=", text("b", 2), 2);
    negatedOutside->negatedAt = 1;
    SqletExpr* const negatedBetween = op(text("a", 2), "=", text("b", 2), 2);
    negatedBetween->negatedAt = 2;
    const auto value = [](const std::string& indent, const std::string& start,
                          const std::string& what) {
        return indent + start + "value\n" + indent + "  expression \"" + what + "\"\n";
    };
    const std::string inner = value("          ", "", "a") + value("          ", "", "b");
    const struct {
        SqletExpr* where;
        std::string expected;
    } cases[] = {
        {op(text("a"), "IS", text("null")),
         "    compare op=14\n" + value("      ", "", "a") + value("      ", "", "null")},
        {op(text("a"), "is not", text("NULL")),
         "    compare op=15\n" + value("      ", "", "a") + value("      ", "", "NULL")},
        {op(text("a"), "IS NOT NULL", nullptr),
         "    compare op=15\n" + value("      ", "", "a") + "      (null)\n"},
        {op(text("a"), "IS", text("TRUE")), value("    ", "", "as written")},
        {op(text("a"), "!=", text("b")),
         "    compare op=1\n" + value("      ", "", "a") + value("      ", "", "b")},
        {op(text("a"), "NOT BETWEEN", op(text("1"), "AND", text("2"))),
         "    compare op=19\n" + value("      ", "", "a") + value("      ", "and ", "1") +
             value("      ", "and ", "2")},
        {op(text("a"), "IN", list), "    compare op=20\n" + value("      ", "", "a") +
                                        "      value\n        expression \"1\"\n"
                                        "        expression \"2\"\n"},
        {op(text("a"), "REGEXP", text("b")), value("    ", "", "as written")},
        {text("free"), value("    ", "", "free")},
        {field("n", "t"), "    value\n      field \"n\" path=[\"public\", \"t\"]\n"},
        // The bracket is a link of its own, and the chain goes on behind it.
        {op(op(text("a", 1), "or", text("b", 1), 1), "AND", text("c")),
         "    and bracket\n" + value("      ", "or ", "a") + value("      ", "or ", "b") +
             value("    ", "and ", "c")},
        {op(op(text("a"), "AND", text("b")), "OR", op(text("c"), "AND", text("d"))),
         value("    ", "or ", "a") + value("    ", "and ", "b") + value("    ", "or ", "c") +
             value("    ", "and ", "d")},
        // A right side that cannot be read is left out.
        {op(op(text("a"), "AND", nullptr), "OR", text("c")),
         value("    ", "or ", "a") + value("    ", "or ", "c")},
        {op(negatedFirst, "AND", text("c")),
         "    and not value\n      expression \"a\"\n" + value("    ", "and ", "c")},
        {negated, "    bracket\n      bracket\n        not compare op=0\n" + inner},
        {negatedBetween, "    bracket\n      not bracket\n        compare op=0\n" + inner},
        {negatedOutside, "    not bracket\n      bracket\n        compare op=0\n" + inner},
    };
    for (const auto& [where, expected] : cases)
        EXPECT_EQ(dumpWhere(where), "  where\n" + expected);
    // A side that claims to be outside of the brackets that it is in.
    EXPECT_EQ(dumpWhere(op(text("a", 1), "=", text("b"), 1)),
              "  where\n    bracket\n      compare op=0\n" + value("        ", "", "a") +
                  "        (null)\n");
}

TEST_F(ConversionTest, AChainWithoutAFirstLinkIsThrown) {
    for (SqletExpr* const left : {static_cast<SqletExpr*>(nullptr), op(nullptr, "OR", text("b"))}) {
        try {
            dumpWhere(op(left, "AND", text("c")));
            FAIL();
        } catch (std::runtime_error* error) {
            const std::unique_ptr<std::runtime_error> owner(error);
            EXPECT_STREQ(error->what(), "currNode1 not exist unexpectedly");
        }
    }
}

TEST_F(ConversionTest, LongChainsAndJoinsFitOnASmallStack) {
    constexpr int length = 100000;
    SqletSelect select;
    select.where = text("first");
    select.table = table("first");
    for (int i = 0; i < length; ++i) {
        select.where = op(select.where, "AND", text("next"));
        select.table = join(select.table, ",", table("next"));
    }
    const std::function<void()> convert = [&] {
        SqletParser answer;
        answer.select = select;
        sqlet.answers["text"] = answer;
        const OwnedStatement statement(new SQLSelectStmtComponent);
        QBQueryParser::parseStatement(statement.get(), "text", DatabaseTypeMySQL, "");
        int links = 0;
        for (const auto* link = statement->whereExpr->root; link; link = link->next)
            ++links;
        EXPECT_EQ(links, length + 1);
        int joins = 0;
        for (const SourceNode* node = statement->sourceExpr->root; node->left; node = node->left)
            ++joins;
        EXPECT_EQ(joins, length);
    };
    pthread_attr_t small;
    pthread_attr_init(&small);
    pthread_attr_setstacksize(&small, 512 * 1024);
    pthread_t thread;
    const auto run = [](void* work) -> void* {
        (*static_cast<const std::function<void()>*>(work))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &small, run, const_cast<std::function<void()>*>(&convert)),
              0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&small);
}

// ---- the steps of a parse ---------------------------------------------------------------------

TEST_F(ConversionTest, EveryFailureEmptiesTheStatementAndSaysWhy) {
    SqletParser broken;
    broken.errors = 1;
    broken.message = "line 1";
    broken.kind = SQLET_ERROR_UNSUPPORTED;
    SqletParser several;
    several.isMultiple = 1;
    SqletParser other;
    other.type = SQLET_STATEMENT_OTHER;
    SqletParser changedMeaning;
    changedMeaning.select.length = 4;
    changedMeaning.firstDifference = 3;
    sqlet.answers = {
        {"broken", broken}, {"several", several}, {"other", other}, {"changed", changedMeaning}};
    const struct {
        std::string text;
        Verdict verdict;
        const char* message;
        QBRange statement;
        QBRange error;
    } cases[] = {
        {"broken", Verdict::Unsupported, "The query cannot be read:\n\nline 1", {-1, 0}, {3, 4}},
        {"several",
         Verdict::SeveralStatements,
         "Several statements in one text are not supported.",
         {-1, 0},
         {5, 6}},
        {"other", Verdict::NotSelect, "Only SELECT statements are supported.", {-1, 0}, {5, 6}},
        {std::string("a\0b", 3),
         Verdict::SyntaxError,
         "The query cannot be read:\n\nline 1, column 3: the text contains a NUL character",
         {-1, 0},
         {1, 1}},
        {"changed",
         Verdict::CannotBeRepresented,
         "The query cannot be represented:\n\nline 1, column 3: from here on the text built from "
         "it would not mean the same",
         {0, 4},
         {3, 1}}};
    for (const auto& [text, verdict, message, statement, error] : cases) {
        const OwnedStatement filled(new SQLSelectStmtComponent);
        filled->limitExpr->rowCount = 5;
        const QBParseOutcome outcome =
            QBQueryParser::parseStatement(filled.get(), text, DatabaseTypeMySQL, "");
        EXPECT_EQ(outcome.verdict, verdict) << text;
        EXPECT_EQ(outcome.message, message);
        EXPECT_EQ(outcome.statement, statement) << text;
        EXPECT_EQ(outcome.error, error) << text;
        EXPECT_EQ(dumpStatement(filled.get()), "statement\n  select\n");
    }
}

TEST_F(ConversionTest, ParseTellsWhatItReplacedAndWhereTheStatementStands) {
    const Elements announced = {ElementSelectColumn, ElementSource, ElementWhere,
                                ElementGroupBy,      ElementHaving, ElementLimit};
    SqletParser answer;
    answer.select.length = 6;
    sqlet.answers["SELECT"] = answer;
    for (const bool hasStatement : {true, false}) {
        for (const char* const text : {"SELECT", "", "UPDATE"}) {
            const OwnedStatement statement(hasStatement ? new SQLSelectStmtComponent : nullptr);
            sqlet.calls.clear();
            sqlet.parsed.clear();
            Elements changed;
            std::string message;
            QBRange range{-1, 0};
            QBQueryParser::parse(statement.get(), text, DatabaseTypeMariaDB, "s", &changed,
                                 &message, &range);
            EXPECT_EQ(changed, announced);
            EXPECT_EQ(message.empty(), std::string(text) != "UPDATE");
            EXPECT_EQ(range, std::string(text) == "SELECT" ? (QBRange{0, 6}) : (QBRange{-1, 0}));
            EXPECT_EQ(sqlet.calls, std::string(text) == "SELECT" ? "parts select " : "");
            EXPECT_EQ(sqlet.parsed.empty(), *text == '\0');
            QBQueryParser::parse(statement.get(), text, DatabaseTypeMariaDB, "s", nullptr, nullptr,
                                 nullptr);
        }
    }
}

TEST_F(ConversionTest, AFamilyWithoutStatementModelIsLeftAloneOrRefused) {
    Elements changed;
    SQLSelectStmtComponent statement;
    statement.limitExpr->rowCount = 5;
    for (const auto type : {DatabaseTypeNone, DatabaseTypeReserved, DatabaseTypeMongoDB})
        QBQueryParser::parse(&statement, "", type, "", &changed, nullptr, nullptr);
    EXPECT_TRUE(changed.empty());
    EXPECT_EQ(statement.limitExpr->rowCount, 5);
    EXPECT_THROW(QBQueryParser::parse_SQL(&statement, "", DatabaseTypeReserved, "", nullptr,
                                          nullptr, nullptr),
                 std::runtime_error);
}

TEST_F(ConversionTest, WithoutATextGeneratorNothingIsAccepted) {
    installStatementText(nullptr);
    EXPECT_EQ(dump(SqletSelect()),
              "The query cannot be represented: no text generator is "
              "installed to check it with.");
}
