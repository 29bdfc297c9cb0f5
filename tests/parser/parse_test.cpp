// Text to components with the real parser library: what every part of a statement becomes.

#include <gtest/gtest.h>

#include "model/dump.h"
#include "model/element_expressions.h"
#include "support/round_trip.h"

using namespace QB;
using namespace QB::Test;
using namespace QB::Component::SQL;

namespace {

/// The model of an accepted text without its first line; else the message.
std::string modelOf(const std::string& text, DatabaseType family, const std::string& schema = "s") {
    const OwnedStatement statement(new SQLSelectStmtComponent);
    const QBParseOutcome outcome =
        QBQueryParser::parseStatement(statement.get(), text, family, schema);
    if (!outcome.isAccepted()) return outcome.message;
    const std::string dump = dumpStatement(statement.get());
    return dump.substr(dump.find('\n') + 1);
}

std::string bytes(const char* text, std::size_t length) {
    return {text, length};
}

}  // namespace

TEST(Parse, GivesEachConstructItsComponents) {
    const struct {
        DatabaseType family;
        const char* text;
        const char* model;
    } cases[] = {
        {DatabaseTypeMySQL, "SELECT 1 FROM a, b",
         "  select\n    expression \"1\"\n  from\n    join , text=\",\"\n"
         "      table \"a\" path=[\"s\"]\n      table \"b\" path=[\"s\"]\n"},
        {DatabaseTypeSQLite, "SELECT 1 FROM a NATURAL LEFT JOIN b",
         "  select\n    expression \"1\"\n  from\n    join LEFT JOIN text=\"NATURAL LEFT JOIN\"\n"
         "      table \"a\" path=[\"s\"]\n      table \"b\" path=[\"s\"]\n"},
        {DatabaseTypePostgreSQL, "SELECT COUNT(*), sum(A), count(a, b)",
         "  select\n    field * aggregate=\"count\"\n    field \"a\" aggregate=\"sum\"\n"
         "    expression \"count(a, b)\"\n"},
        {DatabaseTypeMariaDB, "SELECT a + 1 AS x ORDER BY x",
         "  select\n    expression \"a + 1\" as=\"x\"\n  order by\n"
         "    field \"x\" column=1 direction=1\n"},
        {DatabaseTypeOracle, "select 1 from t where (a = 1 or b = 2) and c = 3",
         "  select\n    expression \"1\"\n  from\n    table \"T\" path=[\"s\"]\n  where\n"
         "    and bracket\n      or compare op=0\n        value\n          field \"A\"\n"
         "        value\n          expression \"1\"\n      or compare op=0\n        value\n"
         "          field \"B\"\n        value\n          expression \"2\"\n"
         "    and compare op=0\n      value\n        field \"C\"\n      value\n"
         "        expression \"3\"\n"},
        {DatabaseTypeSQLServer, "SELECT 1 WHERE a IN (1, 2) AND NOT b BETWEEN 1 AND 2",
         "  select\n    expression \"1\"\n  where\n    and compare op=20\n      value\n"
         "        field \"a\"\n      value\n        expression \"1\"\n        expression \"2\"\n"
         "    and not compare op=18\n      value\n        field \"b\"\n      and value\n"
         "        expression \"1\"\n      and value\n        expression \"2\"\n"},
        // The statement inside is at the left margin; the string in it is untouched.
        {DatabaseTypeSQLite, "SELECT 1 FROM (\n  SELECT a +\n    b, 'x\n  y'\n) d WHERE d.a = 1",
         "  select\n    expression \"1\"\n  from\n    subquery as=\"d\"\n      statement\n"
         "        select\n          expression \"a +\\n  b\"\n"
         "          expression \"'x\\n  y'\"\n  where\n    compare op=0\n      value\n"
         "        field \"a\" path=[\"d\"] source=1\n      value\n        expression \"1\"\n"},
        {DatabaseTypePostgreSQL, "SELECT 1 FROM (SELECT 1 UNION SELECT 2) AS u",
         "  select\n    expression \"1\"\n  from\n"
         "    source expression \"(SELECT 1 UNION SELECT 2)\" as=\"u\"\n"},
        {DatabaseTypePostgreSQL, "SELECT DISTINCT o.id FROM other.o, t ORDER BY id DESC NULLS LAST",
         "  select option=\"DISTINCT\"\n    field \"id\" path=[\"other\", \"o\"] source=1\n"
         "  from\n    join , text=\",\"\n      table \"o\" path=[\"other\"]\n"
         "      table \"t\" path=[\"s\"]\n  order by\n"
         "    expression \"id DESC NULLS LAST\" direction=0\n"},
    };
    for (const auto& [family, text, model] : cases)
        EXPECT_EQ(modelOf(text, family), model) << text;
    EXPECT_EQ(modelOf("SELECT 1 FROM t", DatabaseTypeSQLServer, ""),
              "  select\n    expression \"1\"\n  from\n    table \"t\" path=[\"dbo\"]\n");
    EXPECT_EQ(modelOf("SELECT 1 FROM t", DatabaseTypePostgreSQL, ""),
              "  select\n    expression \"1\"\n  from\n    table \"t\"\n");
    // Without a current schema an unknown qualifier stays alone.
    EXPECT_NE(modelOf("SELECT 1 WHERE g.n = 1", DatabaseTypePostgreSQL, "").find("path=[\"g\"]"),
              std::string::npos);
}

TEST(Parse, TellsWhereTheStatementStandsAndWhereAnErrorIs) {
    using Verdict = QBParseOutcome::Verdict;
    const struct {
        std::string text;
        Verdict verdict;
        QBRange statement;
        QBRange error;
        const char* reason;
    } cases[] = {
        {"", Verdict::Accepted, {-1, 0}, {-1, 0}, ""},
        {"  SELECT 1 ;  ", Verdict::Accepted, {2, 8}, {-1, 0}, ""},
        {"\xEF\xBB\xBFSELECT 1", Verdict::Accepted, {3, 8}, {-1, 0}, ""},
        {"SELECT 1;\nSELECT 2", Verdict::SeveralStatements, {-1, 0}, {10, 6}, "Several statements"},
        {"UPDATE t SET a = 1", Verdict::NotSelect, {-1, 0}, {0, 6}, "Only SELECT"},
        {"-- nothing", Verdict::NotSelect, {-1, 0}, {10, 0}, "Only SELECT"},
        {"SELECT 1\nFROM", Verdict::SyntaxError, {-1, 0}, {13, 0}, "line 2, column 5"},
        {"SELECT 1 UNION SELECT 2", Verdict::Unsupported, {-1, 0}, {9, 5}, "UNION"},
        {bytes("SELECT 1\n\0 FROM t", 17),
         Verdict::SyntaxError,
         {-1, 0},
         {9, 1},
         "line 2, column 1"},
        {"SELECT 1 WHERE " + std::string(300, '(') + "a" + std::string(300, ')'),
         Verdict::TooLarge,
         {-1, 0},
         {215, 1},
         "200"}};
    for (const auto& [text, verdict, statement, error, reason] : cases) {
        const OwnedStatement filled(new SQLSelectStmtComponent);
        filled->limitExpr->rowCount = 5;
        const QBParseOutcome outcome =
            QBQueryParser::parseStatement(filled.get(), text, DatabaseTypePostgreSQL, "s");
        const bool isEmpty = dumpStatement(filled.get()) == "statement\n  select\n";
        EXPECT_EQ(isEmpty, statement.location < 0) << text;
        EXPECT_EQ(outcome.verdict, verdict) << text << "\n" << outcome.message;
        EXPECT_EQ(outcome.statement, statement) << text;
        EXPECT_EQ(outcome.error, error) << text;
        EXPECT_NE(outcome.message.find(reason), std::string::npos) << outcome.message;
        EXPECT_EQ(outcome.message.empty(), verdict == Verdict::Accepted);
    }
}
