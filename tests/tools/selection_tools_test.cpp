#include "tools/selection_tools.h"

#include <QString>

#include "model/notification_names.h"
#include "tools/shop_fixture.h"

namespace QB::Test {

using namespace Component::SQL;

namespace {

struct Case {
    const char* columns;  ///< before
    const char* from;
    std::size_t source;    ///< its place in the FROM clause
    const char* action;    ///< + or -, and a field, "*", or "all" without or with the wildcard
    const char* expected;  ///< columns; null: nothing changes and nobody is told
};

const Case cases[] = {
    {"1", "orders", 0, "+all*", "1, orders.*, orders.id, orders.total"},
    {"orders.*, orders.id, orders.total", "orders", 0, "+all*", nullptr},
    {"id, orders.total AS t", "orders", 0, "+all", "id, orders.total AS t, orders.id"},
    {"shop.orders.total", "shop.orders", 0, "+all", "orders.total, orders.id"},
    {"1", "orders x, orders y", 1, "+all", "1, y.id, y.total"},
    {"x.id, y.id, x.total, y.*", "orders x, orders y", 1, "-all", "x.id, x.total, y.*"},
    {"o.id, max(*), o.*, o.id + 1, i.id", "orders o, items i", 0, "-all",
     "max(*), o.*, o.id + 1, i.id"},
    {"max(o.id), *, o.*, i.*", "orders o, items i", 0, "-all*", "*, i.*"},
    {"i.id, i.*", "orders o, items i", 0, "-all*", nullptr},
    {"shop.orders.id, 1", "shop.orders", 0, "-all", "1"},
    {"o.id", "orders o", 0, "+id", "o.id, o.id"},
    {"o.id", "orders o", 0, "+*", "o.id, o.*"},
    {"o.id, o.total, o.id, i.id", "orders o, items i", 0, "-id", "o.total, i.id"},
    {"o.id, o.*, o.*", "orders o", 0, "-*", "o.id"},
    {"x.id, y.id", "orders x, orders y", 0, "-id", "y.id"},
    {"o.id", "orders o", 0, "-total", nullptr},
    // Bare names are of the one source that has them.
    {"total, id, \"ID\"", "orders", 0, "-id", "total, ID"},
    {"total, price, id", "orders, items", 0, "-total", "price, id"},
    {"total, price, id", "orders, items", 1, "-price", "total, id"},
    {"total, price, id", "orders, items", 1, "-id", nullptr},
    {"price", "orders, empty, items", 2, "-price", nullptr},
    {"x", "missing", 0, "-x", "*"},
    {"total", "(SELECT total FROM orders) AS s, items", 0, "-total", "*"},
    {"max(o.id), o.id AS x, max(total)", "orders o", 0, "-id", "max(o.id), max(total)"},
    // Tables of which less is known.
    {"1", "empty", 0, "+all*", "1, empty.*"},
    {"1", "empty", 0, "+all", nullptr},
    {"1", "missing", 0, "+all*", nullptr},
    {"1", "generate_series(1, 3) AS g", 0, "+all*", nullptr},
    {"1", "generate_series(1, 3) AS g", 0, "+g", "1, g.g"},
    // Subqueries.
    {"s.t", "(SELECT id, total AS t, 1 + 1 AS two, 5 FROM orders) AS s", 0, "+all*",
     "s.t, s.*, s.id, s.two"},
    {"1", "(SELECT * FROM orders) AS s", 0, "+all", "1, s.id, s.total"},
    {"1", "(SELECT 1 AS one) AS s", 0, "+all*", nullptr},
    {"s.id, s.x, s.*", "orders o, (SELECT id FROM items) AS s", 1, "-all", "s.*"},
    {"1", "(SELECT id FROM items)", 0, "+*", "1, *"},
};

class SelectionTools : public ShopTest {
protected:
    SelectionTools() {
        for (const char* table : {"orders", "items", "empty"})
            fetch({"shop", table});
        engine->registerNotifyChangeListener(
            Notification::topLevelQueryComponentElementModified,
            [this](const std::string&, const QBNotificationParameters* params) {
                EXPECT_EQ(params->at("sender").toPointer(), this);
                ++notices;
            });
    }

    void act(const std::string& action, SQLAbstractSourceComponent* source) {
        using namespace Tools::SQL;
        const bool select = action.front() == '+';
        const std::string field = action.substr(1);
        if (field.substr(0, 3) == "all") {
            changeItemComponentAllSelection(engine.get(), this, source, field == "all*", select);
        } else {
            changeItemComponentFieldSelection(engine.get(), this, source, field == "*" ? "" : field,
                                              select);
        }
    }

    /// The generated SELECT list in one line.
    std::string columns() const {
        const QString text = QString::fromStdString(engine->buildQuery()).simplified();
        return text.mid(7, text.indexOf(" FROM ") - 7).toStdString();
    }

    int notices = 0;
};

}  // namespace

TEST_F(SelectionTools, TicksChangeTheColumnsOfTheirSourceAlone) {
    for (const Case& each : cases) {
        const std::string text = std::string("SELECT ") + each.columns + " FROM " + each.from;
        SCOPED_TRACE(text + " " + each.action);
        open(text);
        const std::string before = columns();
        notices = 0;
        act(each.action, source(each.source));
        EXPECT_EQ(columns(), each.expected ? each.expected : before);
        EXPECT_EQ(notices, each.expected ? 1 : 0);
    }
}

TEST_F(SelectionTools, AColumnThatGoesStaysInMemoryWhileTheOrderRefersToIt) {
    open("SELECT orders.id AS nr, orders.total FROM orders ORDER BY nr");
    act("-all", source(0));
    EXPECT_EQ(engine->core()->retired.size(), 1U) << "one is referred to";
    EXPECT_NE(engine->buildQuery().find("nr"), std::string::npos);
}

TEST_F(SelectionTools, ASourceThatIsNullOrOfAnotherLayerOrGoneChangesNothing) {
    open("SELECT id FROM orders, (SELECT items.id FROM items) AS s");
    auto* const outer = source(0);
    auto* const inner = dynamic_cast<SQLSubquerySourceComponent*>(source(1))->subquery;
    engine->pushNewLayerTopLevelQueryComponent(inner, "s");
    SQLAbstractSourceComponent* const noSource = nullptr;
    auto* const gone = new SQLIdentifierSourceComponent;
    delete gone;
    for (const char* action : {"+all*", "-all*", "+id", "-id"})
        for (auto* wrong : {outer, static_cast<SQLAbstractSourceComponent*>(gone), noSource})
            act(action, wrong);
    EXPECT_EQ(notices, 0);
    using namespace Tools::SQL;
    changeItemComponentAllSelection(nullptr, this, outer, true, true);
    OwnedEngine<> withoutStatement(DatabaseTypeMongoDB);
    changeItemComponentFieldSelection(withoutStatement.get(), this, outer, "id", true);
    engine->popCurrentLayerTopLevelQueryComponent();
    act("+total", outer);
    EXPECT_EQ(notices, 1);
}

}  // namespace QB::Test
