#include <gtest/gtest.h>

#include <functional>

#include "layouts/column_vector_layout.h"
#include "layouts/components_list_layout.h"
#include "model/notification_names.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"
#include "support/tree_notation.h"

namespace QB::Test {

using namespace Component;
using namespace Component::SQL;
using QBComponentsListLayout_Private::BasicQBComponentsListLayoutImpl;
using QBComponentsListLayout_Private::ColumnVectorLayout;

namespace {

SQLFieldColumnComponent* makeColumn(const std::string& name) {
    auto* column = new SQLFieldColumnComponent;
    column->fieldName = name;
    return column;
}

/// Columns named by letters, with their rows.
struct Columns {
    explicit Columns(const std::string& names) {
        for (const char name : names)
            columns.push_back(makeColumn(std::string(1, name)));
        layout.rebuildItems();
    }
    ~Columns() {
        for (auto* column : columns)
            delete column;
    }
    Item* row(std::size_t index) const { return layout.items().at(index); }
    /// The names in the vector, after a check that the rows say the same. "_" for no column.
    std::string names() {
        layout.updateItemFlags();
        ExpectedRows expected;
        std::string text = columns.empty() ? "_" : "";
        for (const auto* column : columns) {
            text += dynamic_cast<const SQLFieldColumnComponent*>(column)->fieldName;
            expected.push_back({column, 0, nullptr, -1});
        }
        if (columns.empty()) expected.push_back({nullptr, 0, nullptr, -1});
        struct Rows {  // which have no slots
            const Items& items() const { return all; }
            static const void* slotOf(const Item*) { return nullptr; }
            const Items& all;
        };
        expectRows(Rows{layout.items()}, expected, text);
        return text;
    }

    std::vector<SQLAbstractColumnComponent*> columns;
    ColumnVectorLayout layout{&columns};
};

}  // namespace

TEST(ColumnRows, FollowTheVectorThroughEveryEdit) {
    for (const auto& [before, index, after] : {std::tuple("", 7, "n"),
                                               {"abc", 0, "nabc"},
                                               {"abc", 2, "abnc"},
                                               {"abc", -1, "abcn"},
                                               {"abc", 99, "abcn"}}) {
        Columns columns(before);
        EXPECT_EQ(columns.layout.insertItem(makeColumn("n"), index).size(), 1u);
        EXPECT_EQ(columns.names(), after);
    }
    for (const auto& [from, target, after] : {std::tuple(0u, 1ul, "abcd"),
                                              {0u, 2ul, "bacd"},
                                              {1u, 99ul, "acdb"},
                                              {3u, 0ul, "dabc"},
                                              {2u, 1ul, "acbd"}}) {
        Columns columns("abcd");
        columns.layout.moveItem(columns.row(from), target);
        EXPECT_EQ(columns.names(), after);
    }
    Columns columns("ab");
    SQLIdentifierSourceComponent source;
    Item foreign;
    EXPECT_TRUE(columns.layout.insertItem(&source, 0).empty());
    Item* row = columns.row(1);
    const std::unique_ptr<AbstractQueryComponent> old(row->component);
    columns.layout.replaceItemComponent(row, makeColumn("x"), false);
    columns.layout.replaceItemComponent(row, makeColumn("y"), true);
    columns.layout.replaceItemComponent(row, row->component, true);
    columns.layout.replaceItemComponent(row, nullptr, true);
    EXPECT_EQ(columns.names(), "ay");
    EXPECT_EQ(columns.row(1), row);
    EXPECT_EQ(columns.layout.takeDetachedParts().size(), 1u);
    columns.layout.removeItem_internal(&foreign);
    for (const char* left : {"y", "_", "_"}) {
        columns.layout.removeItem_internal(columns.row(0));
        EXPECT_EQ(columns.names(), left);
    }
    EXPECT_EQ(columns.layout.takeDetachedParts().size(), 2u);
}

// ---- the facade -------------------------------------------------------------------------------

namespace {

class Facade : public testing::Test {
protected:
    Facade() {
        m_engine->registerNotifyChangeListener(
            Notification::topLevelQueryComponentElementModified,
            [this](const std::string&, const QBNotificationParameters* params) {
                m_senders.push_back(params->at("sender").toPointer());
                if (m_onModified) m_onModified();
            });
    }

    void open(const char* tree) {
        m_engine->setDatabaseInfo(DatabaseTypeSQLite, 1);
        m_statement =
            dynamic_cast<SQLSelectStmtComponent*>(m_engine->currentTopLevelQueryComponent());
        m_statement->sourceExpr->root = readTree(tree);
        install(std::make_unique<SourceTreeLayout>(&m_statement->sourceExpr->root));
    }

    void install(std::unique_ptr<BasicQBComponentsListLayoutImpl> impl) {
        impl->rebuildItems();
        impl->updateItemFlags();
        m_layout.setImplementation(std::move(impl));
    }

    std::string tree() const {
        expectInStep(dynamic_cast<SourceTreeLayout&>(*m_layout.implementation()),
                     &m_statement->sourceExpr->root);
        return writeTree(m_statement->sourceExpr->root);
    }
    Item* row(std::size_t index) const { return m_layout.items().at(index); }
    std::size_t notifications() const { return m_senders.size(); }

    HostCallbacks m_callbacks;
    OwnedEngine<> m_engine;
    std::vector<void*> m_senders;
    std::function<void()> m_onModified;
    SQLSelectStmtComponent* m_statement = nullptr;
    QBComponentsListLayout m_layout;
    int m_sender = 0;
};

}  // namespace

TEST_F(Facade, EachEditIsOneModificationOfItsSender) {
    open("a");
    EXPECT_EQ(m_layout.addItem(m_engine.get(), ElementSource, &m_sender, makeTable("b"), 0).size(),
              2u);
    m_layout.insertItem(m_engine.get(), ElementSource, &m_sender, makeTable("c"), 0);
    EXPECT_EQ(tree(), "J(C(c,a),b)");
    m_layout.groupItemsByBracket(m_engine.get(), ElementSource, &m_sender, {row(0), row(1), row(2)},
                                 0);
    EXPECT_EQ(tree(), "J([C(c,a)],b)");
    m_layout.ungroupItemsByBracket(m_engine.get(), ElementSource, &m_sender, {row(0)});
    m_layout.replaceItemComponent(m_engine.get(), ElementSource, &m_sender, row(0), makeTable("d"),
                                  true);
    m_layout.removeItems(m_engine.get(), ElementSource, &m_sender, {row(4)});
    EXPECT_EQ(tree(), "C(d,a)");
    EXPECT_EQ(m_senders, std::vector<void*>(6, &m_sender));
}

TEST_F(Facade, RowsThatWentWithAnEarlierOneAreSkipped) {
    open("I([L(a,b)],c)");
    const Items whole(m_layout.items().begin(), m_layout.items().begin() + 5);
    m_layout.removeItems(m_engine.get(), ElementSource, &m_sender, whole);
    EXPECT_EQ(tree(), "c");
    m_layout.removeItems(m_engine.get(), ElementSource, &m_sender, m_layout.items());
    EXPECT_EQ(tree(), "_");
    EXPECT_EQ(notifications(), 2u);
}

TEST_F(Facade, NothingIsAnnouncedForRowsThatAreNotHere) {
    open("I(a,b)");
    // The address of a record that is gone: it may be compared but not read.
    auto* gone = reinterpret_cast<Item*>(alignof(Item));
    SQLIdentifierSourceComponent table;
    m_layout.removeItems(m_engine.get(), ElementSource, &m_sender, {gone, nullptr});
    m_layout.moveItem(m_engine.get(), ElementSource, &m_sender, gone, 0);
    m_layout.replaceItemComponent(m_engine.get(), ElementSource, &m_sender, gone, &table, true);
    EXPECT_EQ(m_layout.indexOfItem(gone), 3u);
    EXPECT_EQ(notifications(), 0u);
    m_layout.removeItems(m_engine.get(), ElementSource, &m_sender, {gone, row(0)});
    EXPECT_EQ(tree(), "b");
}

TEST_F(Facade, AListenerStillSeesWhatWentAndMayInstallANewImplementation) {
    open("I(a,b)");
    const auto* removed = dynamic_cast<SQLIdentifierSourceComponent*>(row(2)->component);
    std::string nameSeen;
    m_onModified = [&] {
        nameSeen = removed->name;
        install(std::make_unique<SourceTreeLayout>(&m_statement->sourceExpr->root));
    };
    m_layout.removeItems(m_engine.get(), ElementSource, nullptr, {row(2)});
    EXPECT_EQ(nameSeen, "b");
    EXPECT_EQ(tree(), "a");
}

}  // namespace QB::Test
