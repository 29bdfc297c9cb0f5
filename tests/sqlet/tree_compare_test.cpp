// Which two statements count as the same: the check behind every accepted text. The statements are
// given in pairs, so that a fault of the conversion or the generator is seen here as one of the
// "different" rows.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/sqlet/sqlet.h"

namespace {

constexpr int mysql = 1;
constexpr int pg = 2;
constexpr int oracle = 3;
constexpr int sqlite = 4;
constexpr int mssql = 5;

struct HandleDeleter {
    void operator()(SqletParser* parser) const { sqlet_free(parser); }
};
using Handle = std::unique_ptr<SqletParser, HandleDeleter>;

Handle parsed(int dialect, const std::string& text) {
    Handle handle(sqlet_create(dialect, text.c_str(), 1));
    EXPECT_EQ(sqlet_last_stmt_type(handle.get()), SQLET_STATEMENT_SELECT)
        << dialect << ": " << text << "\n"
        << sqlet_last_error_msg(handle.get());
    return handle;
}

int difference(int dialect, const std::string& original, const std::string& rebuilt,
               const char* schema = "s") {
    return sqlet_first_difference(parsed(dialect, original).get(), parsed(dialect, rebuilt).get(),
                                  schema);
}

struct Pair {
    int dialect;
    const char* original;
    const char* rebuilt;
};

}  // namespace

TEST(TreeCompare, TakesForEqualWhatTheServerReadsAlike) {
    const Pair pairs[] = {
        // names
        {pg, "SELECT Id, t.\"No\" FROM Orders t", R"(SELECT "id", t."No" FROM s.orders AS t)"},
        {oracle, "select id from orders o where O.id = 1",
         R"(SELECT "ID" FROM "ORDERS" O WHERE O.ID = 1)"},
        {mysql, "SELECT O.id AS 'x' FROM orders o",
         "SELECT `o`.`id` AS `x` FROM `s`.`orders` AS `o`"},
        {mssql, "SELECT [a]]b] FROM t", "SELECT \"a]b\" FROM s.t"},
        // qualifiers
        {pg, "SELECT g.n, s.g.n FROM g", R"(SELECT "s"."g"."n", "g"."n" FROM "g")"},
        {pg, "SELECT o.id FROM other.o, a", "SELECT other.o.id FROM other.o, s.a"},
        {pg, "SELECT a FROM (SELECT g.n FROM g) x", "SELECT a FROM (SELECT s.g.n FROM s.g) AS x"},
        {pg, "SELECT x.n FROM g WHERE outer_one.n = 1", "SELECT x.n FROM g WHERE outer_one.n = 1"},
        {mssql, "SELECT t.a FROM t", "SELECT [s].[t].[a] FROM [s].[t]"},
        // words that may be left out, and forms of one thing
        {mysql, "SELECT DISTINCTROW a b FROM t", "SELECT DISTINCT a AS b FROM t"},
        {oracle, "SELECT UNIQUE a FROM t", "SELECT DISTINCT a FROM t"},
        {pg, "SELECT ALL a FROM t ORDER BY a, b DESC NULLS FIRST",
         "SELECT a FROM t ORDER BY a ASC, b DESC"},
        {sqlite, "SELECT a FROM t ORDER BY a NULLS FIRST", "SELECT a FROM t ORDER BY a ASC"},
        {pg, "SELECT a FROM t WHERE a != 1 AND b ISNULL AND c NOTNULL",
         "SELECT a FROM t WHERE a <> 1 AND b IS NULL AND c IS NOT NULL"},
        {sqlite, "SELECT a FROM t WHERE a NOT NULL", "SELECT a FROM t WHERE a IS NOT NULL"},
        {mssql, "SELECT x = a + 1 FROM t", "SELECT a + 1 AS x FROM t"},
        {oracle, "SELECT a FROM t HAVING COUNT(*) > 1 GROUP BY a",
         "SELECT a FROM t GROUP BY a HAVING COUNT(*) > 1"},
        {pg, "( (SELECT a FROM t) );", "SELECT a FROM t"},
        {pg, "SELECT a /* why */ FROM t -- end", "SELECT a FROM t"},
        // joins
        {mysql, "SELECT 1 FROM a JOIN b LEFT OUTER JOIN c ON x",
         "SELECT 1 FROM a INNER JOIN b LEFT JOIN c ON x"},
        {mysql, "SELECT 1 FROM a CROSS JOIN b ON x", "SELECT 1 FROM a INNER JOIN b ON x"},
        {sqlite, "SELECT 1 FROM a, b ON x = y", "SELECT 1 FROM a JOIN b ON x = y"},
        {sqlite, "SELECT 1 FROM a NATURAL CROSS JOIN b", "SELECT 1 FROM a NATURAL JOIN b"},
        {sqlite, "SELECT 1 FROM a LEFT JOIN b AS c, d", "SELECT 1 FROM a LEFT JOIN b AS c ON 1, d"},
        {pg, "SELECT 1 FROM a JOIN b JOIN c ON x ON y",
         "SELECT 1 FROM a INNER JOIN (b INNER JOIN c ON x) ON y"},
        {pg, "SELECT 1 FROM ((a) AS x), ((SELECT 1) y)", "SELECT 1 FROM a AS x, (SELECT 1) AS y"},
        {pg, "SELECT 1 FROM (a JOIN b ON x) j", "SELECT 1 FROM (a INNER JOIN b ON x) AS j"},
        {mssql, "SELECT 1 FROM a cross apply f(a.x) b", "SELECT 1 FROM a CROSS APPLY f(a.x) AS b"},
        {oracle, "SELECT 1 FROM a PARTITION BY (a.x) RIGHT JOIN b ON y",
         "SELECT 1 FROM a PARTITION BY (A.X) RIGHT JOIN b ON y"},
        // limits
        {mysql, "SELECT 1 LIMIT 5, 10", "SELECT 1 LIMIT 10 OFFSET 5"},
        {pg, "SELECT 1 OFFSET 5 ROWS FETCH FIRST 10 ROWS ONLY", "SELECT 1 LIMIT (10) OFFSET 5"},
        {pg, "SELECT 1 LIMIT ALL OFFSET 0", "SELECT 1"},
        {pg, "SELECT 1 FETCH FIRST ROW ONLY", "SELECT 1 LIMIT 1"},
        {mysql, "SELECT 1 LIMIT 3, 18446744073709551615",
         "SELECT 1 LIMIT 3, 18446744073709551615/* all */"},
        {sqlite, "SELECT 1 LIMIT -1 OFFSET 2", "SELECT 1 LIMIT -7 OFFSET 0x2"},
        {mssql, "SELECT TOP (10) a FROM t",
         "SELECT a FROM t ORDER BY 1 OFFSET 0 ROWS FETCH NEXT 10 ROWS ONLY"},
        {mssql, "SELECT a FROM t ORDER BY 1 OFFSET 0 ROWS FETCH NEXT 3 ROWS ONLY",
         "SELECT a FROM t ORDER BY 1 ASC OFFSET 0 ROWS FETCH NEXT 3 ROWS ONLY"},
    };
    for (const auto& [dialect, original, rebuilt] : pairs) {
        EXPECT_EQ(difference(dialect, original, rebuilt), -1) << original << "\n" << rebuilt;
        EXPECT_EQ(difference(dialect, rebuilt, original), -1) << rebuilt << "\n" << original;
    }
}

TEST(TreeCompare, FindsTheFirstPlaceWhereTheMeaningChanges) {
    struct Different : Pair {
        const char* from;  ///< what the original says from the difference on, up to its end
    };
    const Different pairs[] = {
        // names and qualifiers
        {{pg, "SELECT \"O\".id FROM a AS \"O\", b AS o", "SELECT O.id FROM a AS \"O\", b AS o"},
         "\"O\".id FROM a AS \"O\", b AS o"},
        {{pg, "SELECT x AS \"Y\" ORDER BY \"Y\"", "SELECT x AS \"Y\" ORDER BY Y"}, "\"Y\""},
        {{pg, "SELECT x AS \"2\" ORDER BY \"2\"", "SELECT x AS \"2\" ORDER BY 2"}, "\"2\""},
        {{pg, "SELECT user", "SELECT \"user\""}, "user"},
        {{oracle, "SELECT s.NEXTVAL FROM d", "SELECT s.\"NEXTVAL\" FROM d"}, "NEXTVAL FROM d"},
        {{sqlite, "SELECT 'x'", "SELECT \"x\""}, "'x'"},
        {{mysql, "SELECT \"x\"", "SELECT `x`"}, "\"x\""},
        {{pg, "SELECT s.a.x FROM s.a, other.a", "SELECT a.x FROM s.a, other.a"},
         "s.a.x FROM s.a, other.a"},
        {{pg, "SELECT o.id FROM other.o, a", "SELECT s.o.id FROM other.o, a"},
         "o.id FROM other.o, a"},
        {{pg, "SELECT 1 FROM other.o", "SELECT 1 FROM o"}, "other.o"},
        {{pg, "SELECT a.x FROM a, b", "SELECT x FROM a, b"}, "a.x FROM a, b"},
        {{pg, "SELECT a.x FROM a, b", "SELECT b.x FROM a, b"}, "a.x FROM a, b"},
        {{mysql, "SELECT A.x FROM t AS a, t AS A", "SELECT a.x FROM t AS a, t AS A"},
         "A.x FROM t AS a, t AS A"},
        {{pg, "SELECT a x FROM t", "SELECT a FROM t"}, "x FROM t"},
        {{pg, "SELECT 1 FROM t x", "SELECT 1 FROM t"}, "x"},
        {{pg, "SELECT 1 FROM t x", "SELECT 1 FROM t X1"}, "x"},
        // what must not be lost
        {{pg, "SELECT DISTINCT a FROM t", "SELECT a FROM t"}, "DISTINCT a FROM t"},
        {{pg, "SELECT a FROM t ORDER BY a DESC", "SELECT a FROM t ORDER BY a"}, "DESC"},
        {{pg, "SELECT a FROM t ORDER BY a DESC NULLS LAST", "SELECT a FROM t ORDER BY a DESC"},
         "a DESC NULLS LAST"},
        {{pg, "SELECT a FROM t ORDER BY a", "SELECT a FROM t"}, "ORDER BY a"},
        {{pg, "SELECT a FROM t WHERE a LIKE 'x!%' ESCAPE '!'",
          "SELECT a FROM t WHERE a LIKE 'x!%'"},
         "a LIKE 'x!%' ESCAPE '!'"},
        {{pg, "SELECT a FROM t WHERE NOT a = 1", "SELECT a FROM t WHERE a = 1"}, "NOT a = 1"},
        {{pg, "SELECT count(DISTINCT a) FROM t", "SELECT count(a) FROM t"},
         "count(DISTINCT a) FROM t"},
        {{mysql, "SELECT COUNT (a) FROM t", "SELECT COUNT(a) FROM t"}, "COUNT (a) FROM t"},
        {{mysql, "SELECT a FROM t GROUP BY a WITH ROLLUP", "SELECT a FROM t GROUP BY a"},
         "a WITH ROLLUP"},
        {{pg, "SELECT 1 FROM ONLY t", "SELECT 1 FROM t"}, "ONLY t"},
        {{pg, "SELECT 'a\n b'", "SELECT 'a\nb'"}, "'a\n b'"},
        {{pg, "SELECT 1 FROM (SELECT a, b FROM t) x", "SELECT 1 FROM (SELECT a FROM t) x"},
         ", b FROM t) x"},
        // brackets and order
        {{pg, "SELECT 1 WHERE (a = 1 OR b = 2) AND c = 3",
          "SELECT 1 WHERE a = 1 OR b = 2 AND c = 3"},
         "(a = 1 OR b = 2) AND c = 3"},
        {{pg, "SELECT 1 WHERE a = 1 OR b = 2", "SELECT 1 WHERE a = 1 AND b = 2"}, "OR b = 2"},
        {{pg, "SELECT 1 WHERE NOT (a OR b)", "SELECT 1 WHERE (NOT a OR b)"}, "NOT (a OR b)"},
        {{sqlite, "SELECT 1 WHERE a IN ((SELECT b))", "SELECT 1 WHERE a IN (SELECT b)"},
         "(SELECT b))"},
        {{mysql, "SELECT 1 FROM (a, b) LEFT JOIN c ON x", "SELECT 1 FROM a, b LEFT JOIN c ON x"},
         "(a, b) LEFT JOIN c ON x"},
        {{pg, "SELECT a - (b - c)", "SELECT a - b - c"}, "(b - c)"},
        {{pg, "SELECT a, b", "SELECT b, a"}, "a, b"},
        // joins and limits
        {{pg, "SELECT 1 FROM a LEFT JOIN b ON x", "SELECT 1 FROM a JOIN b ON x"},
         "LEFT JOIN b ON x"},
        {{mysql, "SELECT 1 FROM a NATURAL JOIN b", "SELECT 1 FROM a JOIN b"}, "NATURAL JOIN b"},
        {{sqlite, "SELECT 1 FROM a LEFT JOIN b", "SELECT 1 FROM a NATURAL LEFT JOIN b"},
         "LEFT JOIN b"},
        {{pg, "SELECT 1 FROM a JOIN b ON x", "SELECT 1 FROM a JOIN b USING (x)"}, "ON x"},
        {{pg, "SELECT 1 FROM a JOIN b USING (\"Id\")", "SELECT 1 FROM a JOIN b USING (Id)"},
         "\"Id\")"},
        {{mysql, "SELECT 1 LIMIT 5, 10", "SELECT 1 LIMIT 5"}, "LIMIT 5, 10"},
        {{mysql, "SELECT 1 LIMIT 10", "SELECT 1 LIMIT 5"}, "LIMIT 10"},
        {{oracle, "SELECT 1 FROM t FETCH FIRST 5 PERCENT ROWS ONLY",
          "SELECT 1 FROM t FETCH FIRST 5 ROWS ONLY"},
         "FETCH FIRST 5 PERCENT ROWS ONLY"},
        {{mssql, "SELECT TOP 10 a FROM t ORDER BY 1 DESC",
          "SELECT a FROM t ORDER BY 1 OFFSET 0 ROWS FETCH NEXT 10 ROWS ONLY"},
         "ORDER BY 1 DESC"},
    };
    for (const Different& pair : pairs) {
        const std::string original = pair.original;
        const int found = difference(pair.dialect, pair.original, pair.rebuilt);
        ASSERT_GE(found, 0) << original << "\n" << pair.rebuilt;
        EXPECT_EQ(original.substr(static_cast<std::size_t>(found)), pair.from) << pair.rebuilt;
        EXPECT_GE(difference(pair.dialect, pair.rebuilt, pair.original), 0) << original;
    }
}

/// In SQLite a name may be put in quotes, since such a column exists; but what stands in quotes may
/// be a string.
TEST(TreeCompare, WhatMayBeAStringKeepsItsQuotes) {
    const char* const bare = "SELECT a FROM t WHERE b = c OR b IN (c)";
    const char* const quoted = R"(SELECT a FROM t WHERE b = "c" OR b IN ("c"))";
    EXPECT_EQ(difference(sqlite, bare, quoted), -1);
    EXPECT_EQ(difference(sqlite, quoted, bare), 26);
    EXPECT_EQ(
        difference(sqlite, "SELECT \"a\" FROM t WHERE \"b\" = 1", "SELECT a FROM t WHERE b = 1"),
        -1);
}

TEST(TreeCompare, HandlesThatCannotBeShownDifferFromEverything) {
    const Handle select = parsed(mysql, "SELECT 1");
    const Handle same = parsed(pg, "SELECT 1");
    const Handle broken(sqlet_create(mysql, "SELECT 1 FROM", 1));
    EXPECT_EQ(sqlet_first_difference(nullptr, select.get(), nullptr), 0);
    EXPECT_EQ(sqlet_first_difference(select.get(), nullptr, nullptr), 0);
    EXPECT_EQ(sqlet_first_difference(broken.get(), broken.get(), nullptr), 0);
    EXPECT_EQ(sqlet_first_difference(select.get(), broken.get(), nullptr), 0);
    EXPECT_EQ(sqlet_first_difference(select.get(), same.get(), nullptr), 0);
    EXPECT_EQ(sqlet_first_difference(select.get(), select.get(), nullptr), -1);
    // Without a default schema only SQL Server knows where a bare table lies.
    EXPECT_EQ(difference(mssql, "SELECT 1 FROM t", "SELECT 1 FROM dbo.t", nullptr), -1);
    EXPECT_GE(difference(pg, "SELECT 1 FROM t", "SELECT 1 FROM s.t", ""), 0);
}
