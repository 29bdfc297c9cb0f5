#include <gtest/gtest.h>

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

TEST(Accessors, TakeADialectThatDoesNotExist) {
    for (const int dialect : {-1, 0, 6, 99}) {
        const QB::ParserHandle parser = parsed(dialect, "SELECT 1");
        EXPECT_EQ(sqlet_number_of_error(parser.get()), 1);
        dumpOf(parser.get(), "");  // nothing was read
    }
    EXPECT_EQ(sqlet_number_of_error(parsed(SQLite, nullptr).get()), 1);
}

}  // namespace
