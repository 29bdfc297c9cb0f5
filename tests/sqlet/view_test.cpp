#include "platform/sqlet/view.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "platform/sqlet/parser.h"
#include "tests/sqlet/accessor_dump.h"

namespace {

enum Dialect { MySQL = 1, PostgreSQL, Oracle, SQLite, SQLServer };

std::string dumpOf(int dialect, const std::string& text, const char* schema) {
    const QB::ParserHandle parser(sqlet_create_in_schema(dialect, text.c_str(), schema));
    const sqlet_test::AccessorDump dump(parser.get(), text);
    EXPECT_EQ(dump.fault(), "") << dump.dump();
    return dump.dump();
}

/// Whether @p wanted is a line of @p dump, whatever its indent.
bool hasLine(const std::string& dump, const std::string& wanted) {
    std::size_t start = 0;
    while (start < dump.size()) {
        const std::size_t end = dump.find('\n', start);
        const std::size_t first = dump.find_first_not_of(' ', start);
        if (dump.compare(first, end - first, wanted) == 0) return true;
        start = end + 1;
    }
    return false;
}

struct ViewCase {
    int dialect;
    const char* text;
    /// Lines of the dump, one below the other.
    const char* lines;
    /// Of bare table names; null: not known.
    const char* schema = nullptr;
};

const ViewCase cases[] = {
    // Aliases that can be decoded, and others.
    {Oracle, "SELECT a \xC3\xA9, b AS \"\xC3\xA9\" FROM t \xC3\xA9, (SELECT 1 FROM t) d\xC3\xA9",
     "column <a \xC3\xA9>\n"
     "column <b> name=B written=b alias=\xC3\xA9\n"
     "source <t \xC3\xA9>\n"
     "source <(SELECT 1 FROM t) d\xC3\xA9>"},
    {MySQL, "SELECT a 'it''s', b AS 'it\\'s' FROM t",
     "column <a> name=a alias=it's\n"
     "column <b AS 'it\\'s'>"},
    {SQLServer, "SELECT a = \"b\", 'x' = 1, \"\xFF\" = c FROM t",
     "column <\"b\"> name=b written=\"b\" alias=a\n"
     "column <1> alias=x\n"
     "column <\"\xFF\" = c>"},
    {Oracle, "SELECT 1 FROM (t) \xC3\xA9",
     "error 2 [18+2]: line 1, column 19: '\xC3\xA9' cannot be shown"},
    {Oracle, "SELECT o.id Key FROM orders o WHERE o.Id = o.\"Id\"",
     "column <o.id> parent0=O name=ID written=id alias=KEY\n"
     "table <orders> name=ORDERS alias=O\n"
     "value <o.Id> parent1=O name=ID\n"
     "value <o.\"Id\"> parent1=O name=Id"},
    {Oracle, "SELECT \xC3\xA9t, \"\xC3\xA9\" FROM a.\xC3\xA9t WHERE \xC3\xA9t.x = 1",
     "column <\xC3\xA9t>\n"
     "column <\"\xC3\xA9\"> name=\xC3\xA9 written=\"\xC3\xA9\"\n"
     "source <a.\xC3\xA9t>\n"
     "value <\xC3\xA9t.x>"},
    {PostgreSQL, "SELECT U&\"d\\0061t\", \"*\" FROM a.U&\"x\"",
     "column <U&\"d\\0061t\">\n"
     "column <\"*\"> name=* written=\"*\"\n"
     "source <a.U&\"x\">"},
    // Words that are values as long as they stand bare.
    {PostgreSQL, "SELECT user, t.user FROM t ORDER BY current_date",
     "column <user>\n"
     "column <t.user> parent0=t name=user\n"
     "column <current_date>"},
    // How many qualifiers there is room for.
    {SQLServer, "SELECT a.b.c.d, a.b.c.d.e FROM a.b.c, q.a.b.c, x.q.a.b.c WHERE b.c.d = a.b.c.d",
     "column <a.b.c.d>\n"
     "column <a.b.c.d.e>\n"
     "table <a.b.c> parent0=a parent=b name=c\n"
     "table <q.a.b.c> parent1=q parent0=a parent=b name=c\n"
     "source <x.q.a.b.c>\n"
     "value <a.b.c.d>"},
    {SQLServer, "SELECT a.b.c.d FROM a.b.c WHERE b.c.d = a.b.c.d",
     "column <a.b.c.d> parent0=a parent1=b parent2=c name=d\n"
     "value <b.c.d> parent1=b parent2=c name=d\n"
     "value <a.b.c.d>"},
    // "x" of SQLite is a string where no column bears that name.
    {SQLite,
     "SELECT \"a\" FROM t WHERE \"b\" = \"c\" AND \"d\" IN (\"e\", t.\"f\", [g]) AND \"h\" BETWEEN "
     "\"i\" AND t.\"j\" AND \"k\" GROUP BY \"l\" ORDER BY \"m\"",
     "column <\"a\"> name=a written=\"a\"\n"
     "value <\"b\"> name=b\n"
     "value <\"c\">\n"
     "value <\"d\"> name=d\n"
     "column <\"e\">\n"
     "column <t.\"f\"> parent0=t name=f written=\"f\"\n"
     "column <[g]> name=g written=[g]\n"
     "value <\"h\"> name=h\n"
     "value <\"i\">\n"
     "value <t.\"j\"> parent1=t name=j\n"
     "value <\"k\">\n"
     "column <\"l\"> name=l written=\"l\"\n"
     "column <\"m\"> name=m written=\"m\""},
    {SQLServer, "SELECT 1 FROM t WHERE \"b\" = \"c\"", "value <\"c\"> name=c"},
    // One schema: the generator drops what it puts in front.
    {PostgreSQL, "SELECT g.n FROM f() g WHERE g.n = o.n AND t.x = 1",
     "column <g.n> parent0=g name=n\n"
     "value <g.n> parent1=g name=n\n"
     "value <o.n> parent1=o name=n"},
    // Several: it would keep it.
    {PostgreSQL, "SELECT 1 FROM a, (SELECT 1 FROM other.o) d WHERE q.n = 2",
     "value <q.n> parent1=q name=n"},
    // Behind the condition a source is as good as unknown.
    {SQLite, "SELECT 1 FROM x.a JOIN b ON a.i = c.i JOIN y.c ON c.i = b.i",
     "value <a.i> parent1=a name=i\n"
     "value <c.i>\n"
     "value <c.i> parent1=c name=i"},
    {SQLite, "SELECT 1 FROM a JOIN b ON a.i = c.i JOIN c", "value <c.i> parent1=c name=i"},
    // Two sources of one name.
    {PostgreSQL, "SELECT t.a, x.t.a FROM x.t, y.t WHERE t.b = x.t.b",
     "column <t.a>\n"
     "column <x.t.a> parent0=x parent1=t name=a\n"
     "value <t.b>\n"
     "value <x.t.b> parent1=x parent2=t name=b"},
    {MySQL, "SELECT x.t.a FROM x.t, t", "column <x.t.a>"},
    {SQLite, "SELECT o.a FROM t AS O, u AS o WHERE O.a = 1",
     "column <o.a>\n"
     "value <O.a>"},
    {PostgreSQL, "SELECT o.a FROM t AS \"O\", u AS o WHERE \"O\".a = 1",
     "column <o.a> parent0=o name=a\n"
     "value <\"O\".a> parent1=O name=a"},
    // Another case finds the source; the accessors give the source's spelling.
    {SQLite, "SELECT ORD.id, ORD.* FROM Ord WHERE ord.id IN (oRD.x)",
     "column <ORD.id> parent0=Ord name=id\n"
     "column <ORD.*> parent0=Ord name=*\n"
     "value <ord.id> parent1=Ord name=id\n"
     "column <oRD.x> parent0=Ord name=x"},
    // With a schema in front: only for a source that bears the name, for the schema may be dropped.
    {SQLite, "SELECT main.Ord.id, main.ORD.id, main.x.id FROM Ord, t x WHERE main.y.id = 1",
     "column <main.Ord.id> parent0=main parent1=Ord name=id\n"
     "column <main.ORD.id>\n"
     "column <main.x.id>\n"
     "value <main.y.id>"},
    {SQLServer, "SELECT 1 FROM t AS A JOIN u b ON a.x = B.x",
     "value <a.x> parent1=A name=x\n"
     "value <B.x> parent1=b name=x"},
    // The asterisk of SQLite takes one qualifier only.
    {SQLite, "SELECT t.* FROM main.t", "column <t.*>"},
    // A column takes at most three names in front.
    {SQLServer, "SELECT t.a, t.* FROM db.dbo.t WHERE t.a = 1",
     "column <t.a>\n"
     "column <t.*>\n"
     "value <t.a> parent1=t name=a"},
    // Attributes of a column.
    {Oracle, "SELECT o.addr.city, s.o.city FROM s.o, addr",
     "column <o.addr.city>\n"
     "column <s.o.city> parent0=S parent1=O name=CITY written=city"},
    // Tables of the system.
    {Oracle, "SELECT 1 FROM dual, v$session s, x.t", "source <dual>\nsource <v$session> alias=S"},
    {SQLServer, "SELECT 1 FROM SysObjects o, #t, dbo.sysusers",
     "source <SysObjects> alias=o\n"
     "source <#t>\n"
     "table <dbo.sysusers> parent=dbo name=sysusers"},
    // Schemas that are known.
    {PostgreSQL, "SELECT 1 FROM public.a, pg_class, b WHERE q.n = 2",
     "table <pg_class> name=pg_class\n"
     "value <q.n> parent1=q name=n",
     "public"},
    {PostgreSQL, "SELECT 1 FROM public.a, pg_class WHERE q.n = 2",
     "source <pg_class>\n"
     "value <q.n> parent1=q name=n",
     "other"},
    {SQLServer, "SELECT 1 FROM dbo.a, b WHERE q.n = 2", "value <q.n> parent1=q name=n", ""},
    {SQLServer, "SELECT 1 FROM sales.a, b WHERE q.n = 2", "value <q.n>", ""},
    {SQLite, "SELECT t.* FROM main.t", "column <t.*>", "aux"},
    {SQLite, "SELECT t.* FROM main.t", "column <t.*>", ""},
};

/// What the construct table does not show of it.
TEST(View, ShowsWhatCanBeRebuiltAndKeepsTheRestAsText) {
    for (const ViewCase& view : cases) {
        const std::string dump = dumpOf(view.dialect, view.text, view.schema);
        std::istringstream wanted(view.lines);
        for (std::string line; std::getline(wanted, line);)
            EXPECT_TRUE(hasLine(dump, line))
                << "no line " << line << "\nfor " << view.text << "\nin\n"
                << dump;
    }
}

TEST(View, RefusesTheFirstTokenThatNothingShows) {
    // The grammar marks what is structure: take one mark away, as a clause without an accessor
    // would.
    SqletParser* parser = sqlet_create(SQLite, "SELECT a FROM t WHERE b", 1);
    ASSERT_NE(sqlet_select(parser), nullptr);
    parser->coverage[2] = sqlet::Coverage::Nothing;
    sqlet::settleView(*parser, *parser->select);
    EXPECT_EQ(parser->error.kind, SQLET_ERROR_UNSUPPORTED);
    EXPECT_EQ(parser->error.offset, 9U);
    EXPECT_EQ(parser->error.length, 4U);
    EXPECT_EQ(parser->error.message, "line 1, column 10: 'FROM' cannot be shown");
    sqlet_free(parser);
}

}  // namespace
