#include "tools/identifier_tools.h"

#include <gtest/gtest.h>

#include "model/detached_parts.h"
#include "model/dump.h"
#include "model/notification_names.h"
#include "parser/query_parser.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"

namespace QB::Test {

using namespace Component::SQL;
using Names = std::vector<std::string>;

namespace {

class IdentifierTools : public testing::Test {
protected:
    IdentifierTools() {
        m_engine->setDatabaseInfo(DatabaseTypePostgreSQL, 150000);
        m_engine->setCurrentSchema("shop");
        QBIdentifierCandidate* shop = add(nullptr, "shop", IdentifierTypeSchema);
        add(add(shop, "orders", IdentifierTypeTable), "id", IdentifierTypeField);
        add(shop, "items", IdentifierTypeTable);
        QBIdentifierCandidate* archive = add(nullptr, "archive", IdentifierTypeSchema);
        add(add(archive, "orders", IdentifierTypeTable), "year", IdentifierTypeField);
        // A catalogue of the same name as a schema, with a schema in it.
        add(add(archive, "shop", IdentifierTypeSchema), "deep", IdentifierTypeTable);
        m_engine->registerNotifyChangeListener(
            Notification::topLevelQueryComponentElementModified,
            [this](const std::string&, const QBNotificationParameters* params) {
                m_senders.push_back(params->at("sender").toPointer());
                m_seen = dumpStatement(statement());
            });
    }

    QBIdentifierCandidate* add(QBIdentifierCandidate* parent, const std::string& name,
                               IdentifierType type) {
        QBEngineIdentifierCandidateAccessor accessor(m_engine->core());
        QBIdentifierCandidate* candidate = accessor.addChild(parent);
        accessor.setName(candidate, name);
        accessor.setType(candidate, type);
        return candidate;
    }

    QBIdentifierCandidate* at(const Names& path) const {
        QBIdentifierCandidate* candidate = nullptr;
        for (const std::string& name : path)
            candidate = m_engine->findChildCandidate(candidate, name);
        return candidate;
    }

    SQLSelectStmtComponent* statement() const {
        return dynamic_cast<SQLSelectStmtComponent*>(m_engine->currentTopLevelQueryComponent());
    }

    /// What the component is found to name, as "schema.table.field"; "-" if nothing.
    std::string found(const Component::AbstractQueryComponent& component, bool stopAtSource,
                      const Names& path) {
        const auto result = Tools::Identifier::findTargetIdentifierCandidate(
            &component, m_engine.get(), stopAtSource);
        EXPECT_EQ(result.path, path);
        if (!result.candidate) return "-";
        std::string text;
        for (const std::string& name : m_engine->candidatePath(result.candidate))
            text += (text.empty() ? "" : ".") + name;
        return text;
    }

    std::string foundSource(const Names& path, const std::string& name) {
        SQLIdentifierSourceComponent source;
        source.path = path;
        source.name = name;
        Names names = path;
        names.push_back(name);
        return found(source, false, names);
    }

    HostCallbacks m_callbacks;
    OwnedEngine<> m_engine;
    std::vector<void*> m_senders;
    std::string m_seen;
    int m_sender = 0;
};

}  // namespace

TEST_F(IdentifierTools, ASourceIsFoundInItsSchemaOrInTheCurrentOne) {
    EXPECT_EQ(foundSource({}, "orders"), "shop.orders");
    EXPECT_EQ(foundSource({"archive"}, "orders"), "archive.orders");
    EXPECT_EQ(foundSource({"archive"}, "items"), "-");
    EXPECT_EQ(foundSource({}, "missing"), "-");
    EXPECT_EQ(foundSource({"archive", "shop"}, "deep"), "archive.shop.deep");
    // A longer path that leads nowhere is tried by its schema alone.
    EXPECT_EQ(foundSource({"archive", "shop"}, "items"), "shop.items");
    EXPECT_EQ(foundSource({"catalogue", "shop"}, "items"), "shop.items");
    EXPECT_EQ(foundSource({"shop", "nowhere"}, "items"), "-");
    m_engine->setCurrentSchema("archive");
    EXPECT_EQ(foundSource({}, "orders"), "archive.orders");
    const SQLJoinSourceNodeComponent join;
    EXPECT_EQ(found(join, false, {}), "-");
    using Tools::Identifier::findTargetIdentifierCandidate;
    EXPECT_FALSE(findTargetIdentifierCandidate(&join, nullptr, false).candidate);
    EXPECT_FALSE(findTargetIdentifierCandidate(nullptr, m_engine.get(), false).candidate);
}

TEST_F(IdentifierTools, AFieldIsFoundThroughItsSourceOrItsQualifiers) {
    SQLIdentifierSourceComponent orders;
    orders.name = "orders";
    SQLFieldColumnComponent field;
    field.source = &orders;
    field.fieldName = "id";
    EXPECT_EQ(found(field, false, {"shop", "orders", "id"}), "shop.orders.id");
    EXPECT_EQ(found(field, true, {"orders"}), "shop.orders");
    field.fieldName = "missing";
    EXPECT_EQ(found(field, false, {"shop", "orders", "missing"}), "-");
    field.isAsterisk = true;
    EXPECT_EQ(found(field, false, {}), "-");
    EXPECT_EQ(found(field, true, {"orders"}), "shop.orders");

    SQLFieldColumnComponent qualified;
    qualified.fieldName = "year";
    EXPECT_EQ(found(qualified, false, {}), "-");
    qualified.parentPath = {"archive", "orders", "more"};
    EXPECT_EQ(found(qualified, true, qualified.parentPath), "archive.orders") << "the deepest";
    EXPECT_EQ(found(qualified, false, qualified.parentPath), "-") << "no field of a part of a path";
    qualified.parentPath.pop_back();
    EXPECT_EQ(found(qualified, false, {"archive", "orders", "year"}), "archive.orders.year");
    qualified.parentPath = {"nowhere"};
    EXPECT_EQ(found(qualified, false, {"nowhere"}), "-");
    EXPECT_EQ(found(qualified, true, {"nowhere"}), "-");
}

// ---- adding -----------------------------------------------------------------------------------

TEST_F(IdentifierTools, CandidatesAreAddedAfterACommaEachWithOneNotification) {
    using Tools::Identifier::addIdentifierComponentToExpression;
    const auto* first =
        addIdentifierComponentToExpression(m_engine.get(), &m_sender, at({"shop", "orders"}));
    const auto* second = addIdentifierComponentToExpression(m_engine.get(), &m_sender,
                                                            at({"archive", "shop", "deep"}));
    ASSERT_TRUE(first && second);
    const std::string expected =
        "statement\n  select\n  from\n    join ,\n"
        "      table \"orders\" path=[\"shop\"]\n"
        "      table \"deep\" path=[\"archive\", \"shop\"]\n";
    EXPECT_EQ(dumpStatement(statement()), expected);
    EXPECT_EQ(m_seen, expected) << "the listeners saw a join that was not yet set";
    EXPECT_EQ(m_senders, (std::vector<void*>{&m_sender, &m_sender}));
}

TEST_F(IdentifierTools, APathBeginsBelowTheInnermostCandidateThatIsNoNameSpace) {
    QBIdentifierCandidate* folder = add(at({"shop"}), "Saved queries", IdentifierTypeQuery);
    QBIdentifierCandidate* schema = add(folder, "reports", IdentifierTypeSchema);
    // The root is the root whatever type a host gives it.
    QBEngineIdentifierCandidateAccessor(m_engine->core()).setType(nullptr, IdentifierTypeSchema);
    const auto pathOf = [this](const QBIdentifierCandidate* candidate) {
        return Tools::Identifier::makeIdentifierComponent(m_engine.get(), candidate)->path;
    };
    EXPECT_EQ(pathOf(add(folder, "yearly", IdentifierTypeQuery)), Names());
    EXPECT_EQ(pathOf(add(schema, "monthly", IdentifierTypeQuery)), Names({"reports"}));
    EXPECT_EQ(pathOf(add(at({"shop"}), "weekly", IdentifierTypeQuery)), Names({"shop"}));
}

TEST_F(IdentifierTools, ASourceFollowsAnEarlierBracketAndCanBeAddedBelowTheOpenLayer) {
    const auto add = [this](std::unique_ptr<SQLAbstractSourceComponent> source, int layer) {
        return Tools::Identifier::addSourceComponentToExpression(m_engine.get(), nullptr,
                                                                 std::move(source), layer);
    };
    auto* inner = new SQLSelectStmtComponent;
    auto subquery = std::make_unique<SQLSubquerySourceComponent>();
    subquery->subquery = inner;
    EXPECT_TRUE(add(std::make_unique<SQLBracketedSourceNodeComponent>(), -1));
    EXPECT_TRUE(add(std::move(subquery), -1));
    m_engine->pushNewLayerTopLevelQueryComponent(inner, "inner");
    EXPECT_TRUE(add(std::make_unique<SQLBracketedSourceNodeComponent>(), 0));
    EXPECT_EQ(inner->sourceExpr->root, nullptr);
    EXPECT_TRUE(add(std::make_unique<SQLBracketedSourceNodeComponent>(), -1));
    EXPECT_NE(inner->sourceExpr->root, nullptr);
    EXPECT_NE(dumpStatement(m_engine->topLevelQueryComponent(0))
                  .find("  from\n    join ,\n      join ,\n        bracket\n          (empty)\n"
                        "        subquery\n"),
              std::string::npos);
}

TEST_F(IdentifierTools, NothingIsAddedWithoutStatementOrForNoSource) {
    using namespace Tools::Identifier;
    EXPECT_FALSE(addIdentifierComponentToExpression(m_engine.get(), nullptr, nullptr));
    EXPECT_FALSE(addIdentifierComponentToExpression(m_engine.get(), nullptr,
                                                    m_engine->identifierCandidateRootNode()));
    EXPECT_FALSE(addSourceComponentToExpression(m_engine.get(), nullptr,
                                                std::make_unique<SQLJoinSourceNodeComponent>()));
    EXPECT_FALSE(addSourceComponentToExpression(m_engine.get(), nullptr, nullptr));
    EXPECT_TRUE(m_senders.empty());
    OwnedEngine<> withoutStatement;
    EXPECT_FALSE(addSourceComponentToExpression(withoutStatement.get(), nullptr,
                                                std::make_unique<SQLIdentifierSourceComponent>()));
}

// ---- finding sources --------------------------------------------------------------------------

TEST_F(IdentifierTools, SourcesAreFoundThroughJoinsAndBracketsButNotInSubqueries) {
    const auto outcome = QBQueryParser::parseStatement(
        statement(), "SELECT 1 FROM (s.t x), s.t y, t x, c.s.t x, (SELECT 1 FROM s.t x) d",
        DatabaseTypePostgreSQL, "shop");
    ASSERT_TRUE(outcome.isAccepted()) << outcome.message;
    const auto found = [&](const std::string& alias, bool ignoreAlias) {
        std::string aliases;
        for (const auto* source : Tools::findTargetIdentifierSourceNodes(
                 statement()->sourceExpr, {"s"}, "t", alias, ignoreAlias))
            aliases += source->alias;
        return aliases;
    };
    EXPECT_EQ(found("", true), "xy");
    EXPECT_EQ(found("y", false), "y");
    EXPECT_EQ(found("", false), "");
    EXPECT_TRUE(Tools::findTargetIdentifierSourceNodes(nullptr, {}, "t", "", true).empty());
}

}  // namespace QB::Test
