// How trees become components that the parser library as it is never gives; the construct table has
// the others.

#include <gtest/gtest.h>

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

    FakeSqlet sqlet;
};

}  // namespace

// ---- sources ----------------------------------------------------------------------------------

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

TEST_F(ConversionTest, ConditionsThatAreBrokenKeepWhatCanBeRead) {
    const std::string first = "    value\n      expression \"";
    const struct {
        SqletExpr* where;
        std::string expected;
    } cases[] = {
        {op(text("a"), "IS", text("TRUE")), first + "as written\"\n"},
        {op(text("a"), "REGEXP", text("b")), first + "as written\"\n"},
        // A right side that cannot be read is left out, and the chain goes on behind it.
        {op(op(text("a"), "AND", nullptr), "OR", text("c")),
         "    or value\n      expression \"a\"\n    or value\n      expression \"c\"\n"},
        // A side that claims to be outside of the brackets that it is in.
        {op(text("a", 1), "=", text("b"), 1),
         "    bracket\n      compare op=0\n        value\n          expression \"a\"\n"
         "        (null)\n"},
    };
    for (const auto& [where, expected] : cases)
        EXPECT_EQ(dumpWhere(where), "  where\n" + expected);
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

// ---- the steps of a parse ---------------------------------------------------------------------

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
