// Which joins foreign keys propose on well-known schemas: each pair of tables with a key between
// them in both orders of adding, and all tables of a database one after the other. What is expected
// comes from the server's catalogue by queries of the test's own. The window does it with SQLite.
#include <gtest/gtest.h>

#include <map>
#include <memory>

#include "expected_joins.h"
#include "hostkit/quoting.h"
#include "known_database.h"
#include "support/from_clause.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"
#include "tools/foreign_key_joins.h"

namespace QB::Test {

using namespace Component::SQL;

namespace {

std::string joined(const Texts& texts) {
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : " AND ") + text;
    return all;
}

/// A user who drags tables of one database into a query.
class User {
public:
    User(const LiveServer& server, const KnownDatabase& database) : m_engine(server.family) {
        Callback::formatIdentifier = HostKit::formatIdentifier;
        m_engine->registerForeignKeyConstraintSearcher(
            [&keys = database.keys](const Table& object, const std::set<Table>& others) {
                return keysBetween(keys, object, others);
            });
    }

    /// One after the other, each of them with what it proposes.
    void start(const std::vector<Table>& tables) {
        emptyFromClause(m_engine.get());
        for (const Table& table : tables)
            add(table, "");
    }

    /// The same with "film, film f" as tables and aliases.
    void start(const KnownDatabase& database, const char* tables) {
        emptyFromClause(m_engine.get());
        for (const QString& text : QString(tables).split(", ")) {
            for (const Table& table : database.tables) {
                const QString name = QString::fromStdString(table.object);
                if (text == name) add(table, "");
                const QString alias = text.section(' ', -1);
                if (text == name + ' ' + alias) add(table, alias.toStdString());
            }
        }
    }

    std::vector<Texts> joins() const { return joinTexts(select()->sourceExpr->root); }
    std::string text() const { return m_engine->buildQuery(); }

    std::size_t countTables() const {
        std::size_t count = 0;
        Tools::visitSourceNodes(select()->sourceExpr->root, [&count](const SourceNode* node) {
            if (dynamic_cast<const SQLIdentifierSourceComponent*>(node->value)) ++count;
        });
        return count;
    }

    static std::vector<Key> keysBetween(const std::vector<Key>& keys, const Table& object,
                                        const std::set<Table>& others) {
        std::vector<Key> found;
        for (const Key& key : keys) {
            const bool isOwn = referring(key) == object && others.count(referred(key));
            const bool isOthers = referred(key) == object && others.count(referring(key));
            if (isOwn || isOthers) found.push_back(key);
        }
        return found;
    }

private:
    SQLSelectStmtComponent* select() const {
        return static_cast<SQLSelectStmtComponent*>(m_engine->topLevelQueryComponent(0));
    }

    void add(const Table& table, const std::string& alias) {
        auto* const added = addTable(m_engine.get(), {table.schema}, table.object, alias);
        Tools::SQL::makeJoinLinkByForeignKeyIfNecessary(m_engine.get(), this, added);
        m_host.finishWorkers();
    }

    HostCallbacks m_host;
    OwnedEngine<> m_engine;
};

class ProposedJoins : public OnServer {
protected:
    void SetUp() override {
        OnServer::SetUp();
        if (databasesFor(GetParam()).isEmpty() && !IsSkipped())
            GTEST_SKIP() << "no databases in " << JOINERY_DATABASES;
        if (GetParam().family == DatabaseTypeMariaDB)
            server().run("SET GLOBAL optimizer_search_depth = 1");  // or it plans for hours
    }
};

/// All, or those with keys where there are more than every server can join.
std::vector<Table> tablesOfOneQuery(const KnownDatabase& database, const KeysByPair& pairs) {
    if (database.tables.size() <= 60) return database.tables;
    std::set<Table> tables;
    for (const auto& [pair, keys] : pairs)
        tables.insert({pair.first, pair.second});
    return {tables.begin(), tables.end()};
}

void expectJoin(const KnownDatabase& database, User& user, const Table& left, const Table& right,
                const std::vector<Key>& keys) {
    user.start({left, right});
    const bool isSelf = left == right;
    ASSERT_EQ(user.joins().size(), 1U);
    EXPECT_EQ(user.joins()[0], isSelf ? Texts() : comparisonsOf(keys[0], left)) << user.text();
    EXPECT_EQ(isSelf ? QString() : database.refusal(user.text()), "") << user.text();
}

/// All that is compared: a join may bring several tables together.
std::multiset<std::string> comparisons(const std::vector<Texts>& joins) {
    std::multiset<std::string> all;
    for (const Texts& join : joins)
        all.merge(comparisonSet(join));
    return all;
}

std::multiset<std::string> expectedComparisons(const KeysByPair& pairs) {
    std::multiset<std::string> all;
    for (const std::multiset<std::string>& join : expectedJoins(pairs))
        all.insert(join.begin(), join.end());
    return all;
}

}  // namespace

TEST_P(ProposedJoins, AreThoseOfTheKeysOnKnownSchemas) {
    std::size_t pairCount = 0;
    for (const QString& name : databasesFor(GetParam())) {
        SCOPED_TRACE(name.toStdString());
        const KnownDatabase database(GetParam(), server(), name);
        const KeysByPair pairs = keysByPair(database.keys);
        if (pairs.empty()) continue;
        User user(GetParam(), database);
        for (const auto& [tables, keys] : pairs) {
            expectJoin(database, user, tables.second, tables.first, keys);
            expectJoin(database, user, tables.first, tables.second, keys);
        }
        const std::vector<Table> tables = tablesOfOneQuery(database, pairs);
        user.start(tables);
        EXPECT_EQ(user.countTables(), tables.size());
        EXPECT_EQ(comparisons(user.joins()), expectedComparisons(pairs));
        EXPECT_EQ(database.refusal(user.text()), "") << user.text();
        pairCount += pairs.size();
    }
    std::cout << GetParam().name << ": " << pairCount << " pairs of tables with keys\n";
    EXPECT_GE(pairCount, 100);
}

TEST_P(ProposedJoins, AreThoseThatAPersonHasChecked) {
    const struct {
        LiveServer server;
        const char* database;
        const char* tables;  ///< with aliases, in the order of adding
        const char* joins;   ///< in text order
    } cases[] = {
        {liveSQLite, "sakila", "film, language", "film.language_id = language.language_id"},
        {liveSQLite, "sakila", "language, film", "language.language_id = film.language_id"},
        {liveSQLite, "sakila", "film, language l, language o",
         "film.language_id = l.language_id; film.original_language_id = o.language_id"},
        {liveSQLite, "sakila", "language l, language o, film",
         "l.language_id = film.language_id; film.original_language_id = o.language_id"},
        {liveSQLite, "sakila", "store, staff", "store.store_id = staff.store_id"},
        {liveSQLite, "sakila", "staff, store", "staff.store_id = store.store_id"},
        {liveSQLite, "sakila", "staff, actor", ""},
        {liveSQLite, "sakila", "actor a, film_actor, film, film_actor o, actor b",
         "a.actor_id = film_actor.actor_id; film_actor.film_id = film.film_id; "
         "a.actor_id = o.actor_id AND film.film_id = o.film_id; "
         "film_actor.actor_id = b.actor_id AND o.actor_id = b.actor_id"},
        {liveSQLite, "chinook", "Employee, Employee boss", ""},
        {liveSQLite, "chinook", "Employee, Customer, Employee boss",
         "Employee.EmployeeId = Customer.SupportRepId; Customer.SupportRepId = boss.EmployeeId"},
        {liveSQLite, "northwind", "Orders, Order Details, Products, Customers",
         "Orders.OrderID = Order Details.OrderID; Order Details.ProductID = Products.ProductID; "
         "Orders.CustomerID = Customers.CustomerID"},
        {liveSQLite, "spider_hospital_1", "Room, Block, On_Call",
         "Room.BlockFloor = Block.BlockFloor AND Room.BlockCode = Block.BlockCode; "
         "Block.BlockFloor = On_Call.BlockFloor AND Block.BlockCode = On_Call.BlockCode"},
        {livePostgreSQL, "adventureworks", "specialofferproduct, salesorderdetail",
         "specialofferproduct.specialofferid = salesorderdetail.specialofferid AND "
         "specialofferproduct.productid = salesorderdetail.productid"},
        {livePostgreSQL, "adventureworks", "address bill, salesorderheader, address ship",
         "bill.addressid = salesorderheader.billtoaddressid; "
         "salesorderheader.shiptoaddressid = ship.addressid"},
        {livePostgreSQL, "sakila", "film, language l, language o",
         "film.language_id = l.language_id; film.original_language_id = o.language_id"},
        {liveMariaDB, "spider_cre_Doc_Control_Systems", "Circulation_History, Draft_Copies",
         "Circulation_History.document_id = Draft_Copies.document_id AND "
         "Circulation_History.draft_number = Draft_Copies.draft_number AND "
         "Circulation_History.copy_number = Draft_Copies.copy_number"},
        {liveMariaDB, "spider_voter_2", "VOTING_RECORD, STUDENT a, STUDENT b, STUDENT c",
         "VOTING_RECORD.Class_President_Vote = a.StuID; VOTING_RECORD.Class_Senator_Vote = "
         "b.StuID; VOTING_RECORD.President_Vote = c.StuID"},
    };
    std::map<std::string, std::unique_ptr<KnownDatabase>> loaded;
    for (const auto& example : cases) {
        if (example.server.family != GetParam().family) continue;
        auto& database = loaded[example.database];
        if (!database)
            database = std::make_unique<KnownDatabase>(GetParam(), server(), example.database);
        User user(GetParam(), *database);
        user.start(*database, example.tables);
        std::string joins;
        for (const Texts& join : user.joins())
            joins += (joins.empty() ? "" : "; ") + joined(join);
        EXPECT_EQ(joins, example.joins) << example.tables;
        EXPECT_EQ(database->refusal(user.text()), "") << user.text();
    }
}

INSTANTIATE_TEST_SUITE_P(, ProposedJoins, testing::Values(livePostgreSQL, liveMariaDB, liveSQLite),
                         serverName);

}  // namespace QB::Test
