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

enum Shown { Rows, Order, Labels, Refused };

struct Fault {
    Shown how;
    const char* original;
    const char* faulty;
};

const std::vector<Fault> faultsAnywhere = {
    {Rows, "SELECT id FROM a WHERE n > 1 AND y < 12", "SELECT id FROM a WHERE n > 1"},
    {Rows, "SELECT id FROM a WHERE n > 1 AND y < 12", "SELECT id FROM a WHERE n > 1 OR y < 12"},
    {Rows, "SELECT id FROM a WHERE (n = 3 OR y = 5) AND total = 5",
     "SELECT id FROM a WHERE n = 3 OR y = 5 AND total = 5"},
    {Rows, "SELECT g.n FROM a AS g JOIN b AS o ON g.id = o.id",
     "SELECT o.n FROM a AS g JOIN b AS o ON g.id = o.id"},
    {Rows, "SELECT o.n FROM a AS o JOIN o AS a ON o.id = a.id",
     "SELECT a.n FROM a AS o JOIN o AS a ON o.id = a.id"},
    {Rows, "SELECT a.id, b.id FROM a LEFT JOIN b ON a.id = b.id",
     "SELECT a.id, b.id FROM a INNER JOIN b ON a.id = b.id"},
    {Rows, "SELECT a.id, b.id FROM a LEFT JOIN b ON a.id = b.id",
     "SELECT a.id, b.id FROM a RIGHT JOIN b ON a.id = b.id"},
    {Rows, "SELECT a.id FROM a NATURAL JOIN b", "SELECT a.id FROM a CROSS JOIN b"},
    {Rows, "SELECT b.id FROM a NATURAL JOIN b", "SELECT b.id FROM a NATURAL JOIN other.b"},
    {Rows, "SELECT a.n FROM a JOIN b USING (id, n)", "SELECT a.n FROM a JOIN b USING (id)"},
    {Rows, "SELECT a.id FROM a LEFT JOIN (b JOIN o ON b.id = o.id) ON a.id = b.id",
     "SELECT a.id FROM a LEFT JOIN b ON a.id = b.id JOIN o ON b.id = o.id"},
    {Rows, "SELECT DISTINCT id FROM a", "SELECT id FROM a"},
    {Order, "SELECT id FROM b ORDER BY y, id", "SELECT id FROM b ORDER BY total, id"},
    {Order, "SELECT id, n AS y FROM b ORDER BY n, id", "SELECT id, n AS y FROM b ORDER BY b.y, id"},
    {Order, "SELECT id, y FROM b ORDER BY y, id", "SELECT id, y FROM b ORDER BY 1, 2"},
    {Order, "SELECT id FROM b ORDER BY id DESC", "SELECT id FROM b ORDER BY id"},
    {Rows, "SELECT id FROM o ORDER BY id LIMIT 2 OFFSET 1",
     "SELECT id FROM o ORDER BY id LIMIT 2 OFFSET 2"},
    {Rows, "SELECT id FROM o ORDER BY id LIMIT 2", "SELECT id FROM o ORDER BY id"},
    {Labels, "SELECT n AS y FROM a", "SELECT n FROM a"},
    {Rows, "SELECT n FROM other.a", "SELECT n FROM a"},
    {Rows, "SELECT n FROM (SELECT 1 AS n) AS x", "SELECT n FROM shade"},
    {Rows, "SELECT id FROM a WHERE y BETWEEN 10 AND 15",
     "SELECT id FROM a WHERE y BETWEEN 10 AND 10"},
    {Rows, "SELECT id FROM a WHERE n NOT IN (1, 2)", "SELECT id FROM a WHERE n IN (1, 2)"},
    {Rows, "SELECT id FROM a WHERE name LIKE 'A!%' ESCAPE '!'",
     "SELECT id FROM a WHERE name LIKE 'A!%'"},
    {Rows, "SELECT id FROM b WHERE name = 'first line\n    second line'",
     "SELECT id FROM b WHERE name = 'first line\nsecond line'"},
    {Rows, "SELECT COUNT(DISTINCT id) FROM a", "SELECT COUNT(id) FROM a"},
    {Rows, "SELECT COUNT(n) FROM a", "SELECT COUNT(*) FROM a"},
    {Rows, "SELECT COUNT(*) FROM a GROUP BY id, n", "SELECT COUNT(*) FROM a GROUP BY id"},
    {Rows, "SELECT id FROM a GROUP BY id HAVING COUNT(*) > 1", "SELECT id FROM a GROUP BY id"},
    {Refused, "SELECT id FROM a", "SELECT id FROM order"},
};

const std::vector<Fault> faultsOfSQLite = {
    {Order, "SELECT id FROM a ORDER BY n NULLS LAST, id", "SELECT id FROM a ORDER BY n, id"},
    {Rows, "SELECT id FROM a WHERE 'one' = \"name\"", "SELECT id FROM a WHERE 'one' = 'name'"},
    {Rows, "SELECT id FROM odd WHERE true", "SELECT id FROM odd WHERE \"true\" = 1"},
    {Rows, "SELECT \"SUM(n)\" FROM (SELECT SUM(n) FROM a)",
     "SELECT \"SUM(n)\" FROM (SELECT SUM(n) AS x FROM a)"},
    {Rows, "SELECT id FROM a WHERE id IN (SELECT id FROM b)",
     "SELECT id FROM a WHERE id IN ((SELECT id FROM b))"},
    {Rows, "SELECT a.id FROM a LEFT JOIN b", "SELECT a.id FROM a NATURAL LEFT JOIN b"},
    {Rows, "SELECT n FROM shade", "SELECT n FROM main.shade"},
};

const std::vector<Fault> faultsOfPostgreSQL = {
    {Order, "SELECT id FROM a ORDER BY n DESC NULLS LAST, id",
     "SELECT id FROM a ORDER BY n DESC, id"},
    {Order, "SELECT id, y AS \"Y\" FROM b ORDER BY \"Y\", id",
     "SELECT id, y AS \"Y\" FROM b ORDER BY b.\"Y\", id"},
    {Rows, "SELECT \"O\".id FROM a AS \"O\", b AS o", "SELECT O.id FROM a AS \"O\", b AS o"},
    {Rows, "SELECT n FROM \"A\"", "SELECT n FROM A"},
    {Rows, "SELECT \"user\" FROM odd", "SELECT user FROM odd"},
    {Rows, "SELECT n ISNULL AS x FROM a", "SELECT n AS x FROM a"},
    {Refused, "SELECT id FROM ONLY a", "SELECT id FROM ONLY AS a"},
    {Rows, "SELECT n FROM shade", "SELECT n FROM public.shade"},
};

const std::vector<Fault> faultsOfMariaDB = {
    {Rows, "SELECT id FROM a WHERE \"name\" = 'name'", "SELECT id FROM a WHERE `name` = 'name'"},
    {Rows, "SELECT O.id FROM a AS O, b AS o", "SELECT o.id FROM a AS O, b AS o"},
    {Rows, "SELECT a.id FROM a CROSS JOIN b ON a.id = b.id", "SELECT a.id FROM a CROSS JOIN b"},
    {Rows, "SELECT id, COUNT(*) FROM a GROUP BY id WITH ROLLUP",
     "SELECT id, COUNT(*) FROM a GROUP BY id"},
    {Rows, "SELECT id FROM a /*! WHERE n = 1 */", "SELECT id FROM a"},
    {Rows, "SELECT 5--3", "SELECT 5"},
};

const std::vector<Fault>& faultsOf(DatabaseType family) {
    if (family == DatabaseTypeSQLite) return faultsOfSQLite;
    return family == DatabaseTypePostgreSQL ? faultsOfPostgreSQL : faultsOfMariaDB;
}

class Oracle : public OnTables {
protected:
    void expectSeen(const Fault& fault) {
        SCOPED_TRACE(fault.faulty);
        const Answer original = session->ask(fault.original);
        ASSERT_FALSE(original.isRefused) << original.message;
        EXPECT_TRUE(differenceBetween(original, session->ask(fault.original)).isNone());
        const Answer faulty = session->ask(fault.faulty);
        const Difference difference = differenceBetween(original, faulty);
        EXPECT_EQ(difference.isRefused, fault.how == Refused) << describe(faulty);
        EXPECT_EQ(difference.inRows, fault.how == Rows) << describe(faulty);
        EXPECT_EQ(difference.inOrder, fault.how == Order) << describe(faulty);
        const bool inLabels = fault.how == Labels;
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
