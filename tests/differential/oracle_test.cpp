// The comparison is itself put to the test: faults that a parser or generator could make, written
// by hand, must show in what the servers answer. A fault that does not show here means that the
// schema is too tame.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "differential/session_fixture.h"

using namespace QB;
using namespace QB::Test;

namespace {

enum class Shows { AsRows, AsOrder, AsLabels, AsRefusal };

struct Fault {
    const char* name;
    Shows how;
    const char* original;
    const char* faulty;
};

const std::vector<Fault> faultsAnywhere = {
    {"a condition is dropped", Shows::AsRows, "SELECT id FROM a WHERE n > 1 AND y < 12",
     "SELECT id FROM a WHERE n > 1"},
    {"AND becomes OR", Shows::AsRows, "SELECT id FROM a WHERE n > 1 AND y < 12",
     "SELECT id FROM a WHERE n > 1 OR y < 12"},
    {"a bracket is lost", Shows::AsRows, "SELECT id FROM a WHERE (n = 3 OR y = 5) AND total = 5",
     "SELECT id FROM a WHERE n = 3 OR y = 5 AND total = 5"},
    {"an alias binds to the other source", Shows::AsRows,
     "SELECT g.n FROM a AS g JOIN b AS o ON g.id = o.id",
     "SELECT o.n FROM a AS g JOIN b AS o ON g.id = o.id"},
    {"an alias is lost, and its table hidden by another", Shows::AsRows,
     "SELECT o.n FROM a AS o JOIN o AS a ON o.id = a.id",
     "SELECT a.n FROM a AS o JOIN o AS a ON o.id = a.id"},
    {"LEFT JOIN becomes INNER JOIN", Shows::AsRows,
     "SELECT a.id, b.id FROM a LEFT JOIN b ON a.id = b.id",
     "SELECT a.id, b.id FROM a INNER JOIN b ON a.id = b.id"},
    {"LEFT JOIN becomes RIGHT JOIN", Shows::AsRows,
     "SELECT a.id, b.id FROM a LEFT JOIN b ON a.id = b.id",
     "SELECT a.id, b.id FROM a RIGHT JOIN b ON a.id = b.id"},
    {"NATURAL is lost", Shows::AsRows, "SELECT a.id FROM a NATURAL JOIN b",
     "SELECT a.id FROM a CROSS JOIN b"},
    {"NATURAL joins the table of the other schema", Shows::AsRows,
     "SELECT b.id FROM a NATURAL JOIN b", "SELECT b.id FROM a NATURAL JOIN other.b"},
    {"USING loses an item", Shows::AsRows, "SELECT a.n FROM a JOIN b USING (id, n)",
     "SELECT a.n FROM a JOIN b USING (id)"},
    {"join brackets are lost", Shows::AsRows,
     "SELECT a.id FROM a LEFT JOIN (b JOIN o ON b.id = o.id) ON a.id = b.id",
     "SELECT a.id FROM a LEFT JOIN b ON a.id = b.id JOIN o ON b.id = o.id"},
    {"DISTINCT is dropped", Shows::AsRows, "SELECT DISTINCT id FROM a", "SELECT id FROM a"},
    {"ORDER BY takes another column", Shows::AsOrder, "SELECT id FROM b ORDER BY y, id",
     "SELECT id FROM b ORDER BY total, id"},
    {"an alias in ORDER BY becomes the column of that name", Shows::AsOrder,
     "SELECT id, n AS y FROM b ORDER BY n, id", "SELECT id, n AS y FROM b ORDER BY b.y, id"},
    {"an alias in ORDER BY becomes an ordinal", Shows::AsOrder,
     "SELECT id, y FROM b ORDER BY y, id", "SELECT id, y FROM b ORDER BY 1, 2"},
    {"DESC is lost", Shows::AsOrder, "SELECT id FROM b ORDER BY id DESC",
     "SELECT id FROM b ORDER BY id"},
    {"the offset changes", Shows::AsRows, "SELECT id FROM o ORDER BY id LIMIT 2 OFFSET 1",
     "SELECT id FROM o ORDER BY id LIMIT 2 OFFSET 2"},
    {"the limit is lost", Shows::AsRows, "SELECT id FROM o ORDER BY id LIMIT 2",
     "SELECT id FROM o ORDER BY id"},
    {"a column alias is lost", Shows::AsLabels, "SELECT n AS y FROM a", "SELECT n FROM a"},
    {"the schema prefix is dropped", Shows::AsRows, "SELECT n FROM other.a", "SELECT n FROM a"},
    {"the temporary table takes the place of the real one", Shows::AsRows,
     "SELECT n FROM (SELECT 1 AS n) AS x", "SELECT n FROM shade"},
    {"BETWEEN takes one bound twice", Shows::AsRows, "SELECT id FROM a WHERE y BETWEEN 10 AND 15",
     "SELECT id FROM a WHERE y BETWEEN 10 AND 10"},
    {"NOT is lost", Shows::AsRows, "SELECT id FROM a WHERE n NOT IN (1, 2)",
     "SELECT id FROM a WHERE n IN (1, 2)"},
    {"ESCAPE is lost", Shows::AsRows, "SELECT id FROM a WHERE name LIKE 'A!%' ESCAPE '!'",
     "SELECT id FROM a WHERE name LIKE 'A!%'"},
    {"a literal of several lines is dedented", Shows::AsRows,
     "SELECT id FROM b WHERE name = 'first line\n    second line'",
     "SELECT id FROM b WHERE name = 'first line\nsecond line'"},
    {"COUNT loses its DISTINCT", Shows::AsRows, "SELECT COUNT(DISTINCT id) FROM a",
     "SELECT COUNT(id) FROM a"},
    {"COUNT of a column counts rows", Shows::AsRows, "SELECT COUNT(n) FROM a",
     "SELECT COUNT(*) FROM a"},
    {"a GROUP BY column is lost", Shows::AsRows, "SELECT COUNT(*) FROM a GROUP BY id, n",
     "SELECT COUNT(*) FROM a GROUP BY id"},
    {"HAVING is lost", Shows::AsRows, "SELECT id FROM a GROUP BY id HAVING COUNT(*) > 1",
     "SELECT id FROM a GROUP BY id"},
    {"a name becomes a reserved word", Shows::AsRefusal, "SELECT id FROM a",
     "SELECT id FROM order"},
};

const std::vector<Fault> faultsOfSQLite = {
    {"NULLS LAST is lost", Shows::AsOrder, "SELECT id FROM a ORDER BY n NULLS LAST, id",
     "SELECT id FROM a ORDER BY n, id"},
    {"a name becomes a string", Shows::AsRows, "SELECT id FROM a WHERE 'one' = \"name\"",
     "SELECT id FROM a WHERE 'one' = 'name'"},
    {"a constant becomes a column", Shows::AsRows, "SELECT id FROM odd WHERE true",
     "SELECT id FROM odd WHERE \"true\" = 1"},
    {"a derived table's label becomes a string", Shows::AsRows,
     "SELECT \"SUM(n)\" FROM (SELECT SUM(n) FROM a)",
     "SELECT \"SUM(n)\" FROM (SELECT SUM(n) AS x FROM a)"},
    {"a subquery in IN becomes a scalar", Shows::AsRows,
     "SELECT id FROM a WHERE id IN (SELECT id FROM b)",
     "SELECT id FROM a WHERE id IN ((SELECT id FROM b))"},
    {"LEFT JOIN without a condition becomes natural", Shows::AsRows,
     "SELECT a.id FROM a LEFT JOIN b", "SELECT a.id FROM a NATURAL LEFT JOIN b"},
    {"main is read instead of temp", Shows::AsRows, "SELECT n FROM shade",
     "SELECT n FROM main.shade"},
};

const std::vector<Fault> faultsOfPostgreSQL = {
    {"NULLS LAST is lost", Shows::AsOrder, "SELECT id FROM a ORDER BY n DESC NULLS LAST, id",
     "SELECT id FROM a ORDER BY n DESC, id"},
    {"a quoted name is folded", Shows::AsOrder, "SELECT id, y AS \"Y\" FROM b ORDER BY \"Y\", id",
     "SELECT id, y AS \"Y\" FROM b ORDER BY b.\"Y\", id"},
    {"an alias in capitals binds to one in small letters", Shows::AsRows,
     "SELECT \"O\".id FROM a AS \"O\", b AS o", "SELECT O.id FROM a AS \"O\", b AS o"},
    {"a table in capitals is read in small letters", Shows::AsRows, "SELECT n FROM \"A\"",
     "SELECT n FROM A"},
    {"a column becomes a constant", Shows::AsRows, "SELECT \"user\" FROM odd",
     "SELECT user FROM odd"},
    {"a word becomes an alias", Shows::AsRows, "SELECT n ISNULL AS x FROM a",
     "SELECT n AS x FROM a"},
    {"ONLY is an alias", Shows::AsRefusal, "SELECT id FROM ONLY a", "SELECT id FROM ONLY AS a"},
    {"public is read instead of the temporary table", Shows::AsRows, "SELECT n FROM shade",
     "SELECT n FROM public.shade"},
};

const std::vector<Fault> faultsOfMariaDB = {
    {"a string becomes a name", Shows::AsRows, "SELECT id FROM a WHERE \"name\" = 'name'",
     "SELECT id FROM a WHERE `name` = 'name'"},
    {"an alias in capitals binds to one in small letters", Shows::AsRows,
     "SELECT O.id FROM a AS O, b AS o", "SELECT o.id FROM a AS O, b AS o"},
    {"CROSS JOIN loses its condition", Shows::AsRows,
     "SELECT a.id FROM a CROSS JOIN b ON a.id = b.id", "SELECT a.id FROM a CROSS JOIN b"},
    {"WITH ROLLUP is lost", Shows::AsRows, "SELECT id, COUNT(*) FROM a GROUP BY id WITH ROLLUP",
     "SELECT id, COUNT(*) FROM a GROUP BY id"},
    {"code in a comment is dropped", Shows::AsRows, "SELECT id FROM a /*! WHERE n = 1 */",
     "SELECT id FROM a"},
    {"a minus becomes a comment", Shows::AsRows, "SELECT 5--3", "SELECT 5"},
};

const std::vector<Fault>& faultsOf(DatabaseType family) {
    if (family == DatabaseTypeSQLite) return faultsOfSQLite;
    return family == DatabaseTypePostgreSQL ? faultsOfPostgreSQL : faultsOfMariaDB;
}

class Oracle : public OnTables {
protected:
    void expectSeen(const Fault& fault) {
        SCOPED_TRACE(fault.name);
        const Answer original = session->ask(fault.original);
        ASSERT_FALSE(original.isRefused) << original.message;
        EXPECT_TRUE(differenceBetween(original, session->ask(fault.original)).isNone());
        const Answer faulty = session->ask(fault.faulty);
        const Difference difference = differenceBetween(original, faulty);
        EXPECT_EQ(difference.isRefused, fault.how == Shows::AsRefusal) << describe(faulty);
        EXPECT_EQ(difference.inRows, fault.how == Shows::AsRows) << describe(faulty);
        EXPECT_EQ(difference.inOrder, fault.how == Shows::AsOrder) << describe(faulty);
        const bool inLabels = fault.how == Shows::AsLabels;
        EXPECT_TRUE(difference.inLabels || !inLabels) << describe(faulty);
    }
};

TEST_P(Oracle, SeesEveryFault) {
    for (const Fault& fault : faultsAnywhere)
        expectSeen(fault);
    for (const Fault& fault : faultsOf(GetParam().family))
        expectSeen(fault);
}

TEST_P(Oracle, TellsWhatAStatementLeavesToChance) {
    enum class Chance { None, InOrder, InRows };
    const std::vector<std::pair<const char*, Chance>> cases = {
        {"SELECT id, n FROM a ORDER BY id, n", Chance::None},
        {"SELECT id, n, y FROM a ORDER BY 1, 2, 3 LIMIT 2 OFFSET 1", Chance::None},
        {"SELECT COUNT(*) FROM a", Chance::None},
        {"SELECT id, n FROM a", Chance::InOrder},
        {"SELECT id, n, y FROM b ORDER BY id", Chance::InOrder},
        {"SELECT id FROM o LIMIT 1", Chance::InRows},
    };
    std::vector<LocatedStatement> statements;
    for (const auto& [sql, chance] : cases)
        statements.push_back({sql, mainSchema(GetParam().family)});
    const std::vector<Difference> differences = session->chances(statements);
    for (std::size_t i = 0; i < cases.size(); ++i) {
        EXPECT_EQ(differences[i].inRows, cases[i].second == Chance::InRows) << cases[i].first;
        EXPECT_EQ(differences[i].inOrder, cases[i].second == Chance::InOrder) << cases[i].first;
    }
}

INSTANTIATE_TEST_SUITE_P(Live, Oracle, testing::Values(livePostgreSQL, liveMariaDB, liveSQLite),
                         serverName);

}  // namespace
