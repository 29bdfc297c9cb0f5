#include "tools/subquery_fields.h"

#include <algorithm>
#include <optional>

#include "model/detached_parts.h"
#include "tools/shop_fixture.h"

namespace QB::Test {

using namespace Component::SQL;

namespace {

struct Case {
    const char* subquery;
    const char* knownBefore;
    const char* names;                 ///< after the fetch
    const char* fetched;               ///< nodes
    const char* knownAfter = nullptr;  ///< null: the names
};

const Case cases[] = {
    {"SELECT id, total AS t, id + 1 AS e, 5, max(*), id FROM orders", "id t e", "id t", "",
     "id t e"},
    {"SELECT * FROM orders", "", "id total", "root shop orders"},
    {"SELECT orders.*, price AS id, x FROM items, orders", "id x", "id x total",
     "root shop orders"},
    {"SELECT o.*, * FROM items i, orders o, items j", "", "price id total",
     "root shop items orders"},
    {"SELECT * FROM shop.orders, archive.years, nowhere.t, empty", "", "id total year",
     "root shop orders archive years empty"},
    {"SELECT archive.years.*, gone.* FROM items, archive.years", "", "year",
     "root archive years shop"},
    {"SELECT * FROM catalogue.shop.orders", "", "id total", "root shop orders"},
    {"SELECT x.* FROM items, (orders CROSS JOIN archive.years) AS x", "", "id total year",
     "root shop orders archive years"},
    {"SELECT a.*, c FROM (SELECT id, b.* FROM (SELECT * FROM archive.years) AS b, orders) AS a",
     "c id", "c id year", "root archive years"},
    {"SELECT * FROM (SELECT x FROM orders) AS a, items, (SELECT x, y FROM orders) AS b", "x y",
     "price id x y", "root shop items"},
};

class SubqueryFields : public ShopTest {
protected:
    const SQLSubquerySourceComponent* openSubquery(const std::string& text) {
        open("SELECT 1 FROM (" + text + ") AS s");
        return dynamic_cast<const SQLSubquerySourceComponent*>(source(0));
    }

    static std::string joined(const Names& names) {
        std::string text;
        for (const std::string& name : names)
            text += (text.empty() ? "" : " ") + name;
        return text;
    }

    std::string known(const SQLSubquerySourceComponent* subquery) {
        return joined(Tools::knownSubqueryFields(engine.get(), subquery));
    }

    void start(const SQLSubquerySourceComponent* subquery) {
        delivered.clear();
        Tools::obtainAndFetchSubqueryFieldList(
            engine.get(), subquery, [this, subquery](const auto* given, const Names& names) {
                EXPECT_EQ(given, subquery);
                delivered.push_back(joined(names));
            });
    }

    std::string obtain(const SQLSubquerySourceComponent* subquery) {
        fetched.clear();
        start(subquery);
        workOff();
        return delivered.size() == 1 ? delivered.front() : "not once";
    }

    Names delivered;
};

class EachSubquery : public SubqueryFields, public testing::WithParamInterface<Case> {};

}  // namespace

TEST_P(EachSubquery, YieldsItsNamesAfterTheFetchOfWhatIsMissingAndTheSameAgainWithoutAny) {
    const Case& each = GetParam();
    const auto* subquery = openSubquery(each.subquery);
    EXPECT_EQ(known(subquery), each.knownBefore);
    EXPECT_EQ(obtain(subquery), each.names);
    EXPECT_EQ(fetched, each.fetched);
    const std::string tried = fetched.find("empty") == std::string::npos ? "" : "empty";
    EXPECT_EQ(obtain(subquery), each.names);
    EXPECT_EQ(fetched, tried) << "a node without children counts as not fetched";
    EXPECT_EQ(known(subquery), each.knownAfter ? each.knownAfter : each.names);
}
INSTANTIATE_TEST_SUITE_P(SubqueryFields, EachSubquery, testing::ValuesIn(cases));

TEST_F(SubqueryFields, AFetchThatThrowsLeavesTheTaskAfterTheOtherNamesWereDelivered) {
    const auto* subquery = openSubquery(
        "SELECT t, o.*, b.*, years.* FROM orders o, broken b, "
        "(SELECT * FROM archive.years) AS years");
    start(subquery);
    EXPECT_THROW(workOff(), std::string);
    EXPECT_EQ(delivered, Names{"t id total"});
    EXPECT_TRUE(engine->core()->identifierTreeMutex.try_lock());
    engine->core()->identifierTreeMutex.unlock();
    EXPECT_EQ(obtain(openSubquery("SELECT * FROM archive.years")), "year");
}

TEST_F(SubqueryFields, DoneIsCalledForASubqueryThatIsNullOrEmptyOrGoneButNotWithoutTheEngine) {
    EXPECT_EQ(obtain(nullptr), "");
    const SQLSubquerySourceComponent withoutStatement;
    EXPECT_EQ(obtain(&withoutStatement), "");
    EXPECT_EQ(known(&withoutStatement) + known(nullptr), "");
    const auto* subquery = openSubquery("SELECT * FROM orders");
    start(subquery);
    destroyUnownedClauses(root());
    delete std::exchange(root()->sourceExpr->root, nullptr);
    workOff();
    EXPECT_EQ(delivered, Names{""});
    start(openSubquery("SELECT * FROM orders"));
    engine.destroy();
    workOff();
    EXPECT_TRUE(delivered.empty());
    EXPECT_EQ(fetched, "");
}

TEST_F(SubqueryFields, SubqueriesNestByTheThousandAndACountThatIsStuckHoldsThemUpOnce) {
    const auto* subquery = openSubquery("SELECT id, total AS t FROM orders");
    for (int depth = 0; depth < 5000; ++depth) {
        auto* outer = new SQLSubquerySourceComponent;
        auto* statement = new SQLSelectStmtComponent;
        auto* wildcard = new SQLFieldColumnComponent;
        wildcard->isAsterisk = true;
        statement->selectColumnExpr->columns = {wildcard};
        outer->subquery = statement;
        statement->sourceExpr->root = std::exchange(root()->sourceExpr->root, new SourceNode);
        root()->sourceExpr->root->value = outer;
        subquery = outer;
    }
    EXPECT_EQ(known(subquery), "id t");
    engine->core()->runningRefreshes.add(1);
    EXPECT_EQ(obtain(subquery), "id t");  // else it would take minutes
}

}  // namespace QB::Test
