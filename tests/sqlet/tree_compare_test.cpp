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
