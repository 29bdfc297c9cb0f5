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
