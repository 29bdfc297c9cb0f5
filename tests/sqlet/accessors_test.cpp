#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "platform/sqlet/sqlet.h"
#include "tests/sqlet/accessor_dump.h"

namespace {

enum Dialect { MySQL = 1, PostgreSQL, Oracle, SQLite, SQLServer };

QB::ParserHandle parsed(int dialect, const char* text) {
    return QB::ParserHandle(sqlet_create(dialect, text, 1));
}

/// The dump of a text that keeps all promises.
std::string dumpOf(SqletParser* parser, const std::string& text) {
    const sqlet_test::AccessorDump dump(parser, text);
    EXPECT_EQ(dump.fault(), "") << text;
    return dump.dump();
}

TEST(Accessors, ShowAWholeStatement) {
    const char* const text =
        "SELECT DISTINCT a.x AS \"Y\", \"d\".*, max(b.z)\n"
        "FROM (s.t AS a JOIN b USING (id, \"K\")) LEFT JOIN (SELECT 1) d ON a.i = d.i\n"
        "WHERE a IN (1, b.c) AND (x = 1 OR NOT (y > 2 AND z)) OR NOT w IS NOT NULL\n"
        "GROUP BY a.x HAVING count(*) NOT BETWEEN 3 AND 4 ORDER BY \"Y\" DESC, 2\n"
        "OFFSET 5 ROWS FETCH NEXT 3 ROWS ONLY";
    EXPECT_EQ(
        dumpOf(parsed(PostgreSQL, text).get(), text),
        R"(parts columns[16+27] from[49+69] where[125+67] group[202+3] having[213+28] order[251+11] limit[263+36] statement[0+299]
select distinct
columns
 column <a.x> parent0=a name=x alias=Y
 column <"d".*> parent0=d name=*
 column <max(b.z)> parent0=b name=z aggregate=max of=b.z
from
 table <s.t> parent=s name=t alias=a parens=1
 join INNER JOIN parens=1
  on
   using <id, "K">
    item <id>
    item <"K">
 table <b> name=b parens=1
 join LEFT JOIN
  on
   =
    value <a.i> parent1=a name=i
    value <d.i> parent1=d name=i
 source <(SELECT 1)> alias=d
where
 IN
  value <a> name=a
  list <1, b.c>
   column <1>
   column <b.c> parent0=b name=c
 AND
 = parens=1
  value <x> name=x parens=1
  value <1> parens=1
 OR parens=1
 > parens=2
  value <y> name=y parens=2
  value <2> parens=2
 AND parens=2 negated=2
 value <z> name=z parens=2
 OR
 IS NOT negated=1
  value <w> name=w
  value <NULL>
group by
 column <a.x> parent0=a name=x
having
 NOT BETWEEN
  value <count(*)>
  value <3>
  AND
  value <4>
order by
 column <"Y"> name=Y written="Y" desc=1
 column <2>
limit count=3 offset=5 fetch=NEXT option=ONLY
)");
}

TEST(Accessors, GiveStretchesOfTheTextThatWasPassed) {
    const std::string text = "\xEF\xBB\xBF /* a */ SELECT 1 -- one\n FROM t /* b */ ; -- end\n";
    const QB::ParserHandle parser = parsed(SQLite, text.c_str());
    SqletSelect* select = sqlet_select(parser.get());
    ASSERT_NE(select, nullptr);
    EXPECT_EQ(sqlet_select_start(select), text.c_str() + text.find("SELECT"));
    EXPECT_EQ(std::string(sqlet_select_start(select),
                          static_cast<std::size_t>(sqlet_select_length(select))),
              "SELECT 1 -- one\n FROM t");
}

TEST(Accessors, GiveEachTextOnceAndKeepIt) {
    const char* const text = "SELECT COUNT(o.id) AS n FROM s.orders o JOIN t ON o.id = t.id";
    const QB::ParserHandle parser = parsed(Oracle, text);
    SqletColumn* column = sqlet_select_column_at(sqlet_select(parser.get()), 0);
    const char* name = sqlet_select_column_name(column);
    const char* alias = sqlet_select_column_alias(column);
    dumpOf(parser.get(), text);
    EXPECT_EQ(sqlet_select_column_name(column), name);
    EXPECT_EQ(sqlet_select_column_alias(column), alias);
    EXPECT_STREQ(name, "ID");
    EXPECT_STREQ(alias, "N");
}

TEST(Accessors, OutliveTheTextThatWasPassed) {
    auto text = std::make_unique<std::string>("SELECT alpha FROM beta");
    const QB::ParserHandle parser = parsed(SQLite, text->c_str());
    text->assign(text->size(), '#');
    text.reset();
    SqletSelect* select = sqlet_select(parser.get());
    EXPECT_STREQ(sqlet_select_column_name(sqlet_select_column_at(select, 0)), "alpha");
    EXPECT_STREQ(sqlet_select_tab_complex(sqlet_select_tab(select)), "beta");
}

struct JoinCase {
    int dialect;
    const char* join;
    const char* shown;
};

TEST(Accessors, GiveJoinWordsInUpperCaseWithSingleBlanks) {
    const JoinCase cases[] = {
        {SQLite, ",", ","},
        {SQLite, "join", "INNER JOIN"},
        {SQLite, "natural\n  left /* c */ outer join", "NATURAL LEFT OUTER JOIN"},
        {MySQL, "straight_join", "STRAIGHT_JOIN"},
        {SQLServer, "inner  hash join", "INNER HASH JOIN"},
        {Oracle, "partition by ( a,\"B c\" ) right join", "PARTITION BY ( a,\"B c\" ) RIGHT JOIN"},
    };
    for (const JoinCase& test : cases) {
        const bool needsCondition = std::strchr(test.join, ',') == test.join ||
                                    std::strstr(test.join, "natural") == test.join;
        const std::string text = "SELECT 1 FROM t " + std::string(test.join) + " u" +
                                 (needsCondition ? "" : " ON x = y");
        const QB::ParserHandle parser = parsed(test.dialect, text.c_str());
        SqletTable* join = sqlet_select_tab(sqlet_select(parser.get()));
        EXPECT_STREQ(sqlet_select_tab_join_op(join), test.shown)
            << text << sqlet_last_error_msg(parser.get());
    }
}

TEST(Accessors, WalkAChainOfManyTermsWithoutRecursion) {
    std::string text = "SELECT 1 FROM t WHERE a.x = 1";
    const int terms = 100000;
    for (int i = 1; i < terms; ++i)
        text += i % 3 ? " AND b IS NULL" : " OR c.y";
    const QB::ParserHandle parser = parsed(SQLite, text.c_str());
    int links = 0;
    SqletExpr* expr = sqlet_select_where_expr(sqlet_select(parser.get()));
    for (; sqlet_expr_left(expr); expr = sqlet_expr_left(expr))
        ++links;
    EXPECT_EQ(links, terms);  // one AND or OR fewer than terms, and the comparison at the left
    dumpOf(parser.get(), text);
}

TEST(Accessors, ShowNothingOfWhatIsNoSelect) {
    const struct {
        const char* text;
        int kind;
    } cases[] = {{"", SQLET_STATEMENT_NONE},
                 {"-- only a comment", SQLET_STATEMENT_NONE},
                 {"UPDATE t SET a = 1", SQLET_STATEMENT_OTHER},
                 {"EXPLAIN SELECT 1", SQLET_STATEMENT_OTHER}};
    for (const auto& test : cases) {
        const QB::ParserHandle parser = parsed(SQLite, test.text);
        EXPECT_EQ(dumpOf(parser.get(), test.text),
                  "no SELECT, kind " + std::to_string(test.kind) + "\n")
            << test.text;
    }
}

TEST(Accessors, TakeADialectThatDoesNotExist) {
    for (const int dialect : {-1, 0, 6, 99}) {
        const QB::ParserHandle parser = parsed(dialect, "SELECT 1");
        EXPECT_EQ(sqlet_number_of_error(parser.get()), 1);
        dumpOf(parser.get(), "");  // nothing was read
    }
    EXPECT_EQ(sqlet_number_of_error(parsed(SQLite, nullptr).get()), 1);
}

}  // namespace
