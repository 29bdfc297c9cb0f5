#include "model/statement_check.h"

#include <gtest/gtest.h>

#include <functional>

#include "sample_statement.h"

using namespace QB;
using namespace QB::Component;
using namespace QB::Test;

namespace {

/// The sample, and behind a comma in brackets a derived table; with room for seeded faults, which
/// are taken back before anything is destroyed.
struct Seeded : Sample {
    SQLSelectStmtComponent* inner = new SQLSelectStmtComponent;
    SQLSubquerySourceComponent* derived = new SQLSubquerySourceComponent;
    SQLIdentifierSourceComponent* innerTable = new SQLIdentifierSourceComponent;
    SourceNode* joinNode = statement.sourceExpr->root;
    SourceNode* comma = leaf(new SQLJoinSourceNodeComponent);
    SourceNode* bracketNode = leaf(new SQLBracketedSourceNodeComponent);
    SQLFieldColumnComponent* innerField = new SQLFieldColumnComponent;
    DetachedParts detached;
    std::vector<const AbstractTopLevelQueryComponent*> layers = {&statement, inner};

    Seeded() {
        derived->subquery = inner;
        inner->sourceExpr->root = leaf(innerTable);
        inner->selectColumnExpr->columns = {innerField};
        innerField->source = innerTable;
        bracketNode->left = leaf(derived);
        comma->left = joinNode;
        comma->right = bracketNode;
        statement.sourceExpr->root = comma;
        ordered->source = bracketNode->value;
        value->values = {nullptr};
    }
    ~Seeded() {
        for (; !m_undo.empty(); m_undo.pop_back())
            m_undo.back()();
    }

    template <typename T>
    void put(T& place, std::common_type_t<T> fault) {
        m_undo.push_back([&place, sound = place] { place = sound; });
        place = fault;
    }

    /// Owned by the sample, part of nothing.
    template <typename T>
    T* detach(T* component) {
        detached.add(std::unique_ptr<AbstractQueryComponent>(component));
        return component;
    }

    std::string faults(bool areDetachedKnown = false) const {
        StatementCheck check(&statement);
        if (areDetachedKnown) check.addDetached(detached);
        check.addLayers(layers);
        return check.faults();
    }

private:
    std::vector<std::function<void()>> m_undo;
};

template <typename T>
T* freed() {
    T* const component = new T;
    delete component;
    return component;
}

/// Without the numbers, which no test can know.
std::string withoutIds(std::string text) {
    for (std::size_t at = text.find('#'); at != std::string::npos; at = text.find('#', at + 1))
        text.erase(at + 1, text.find_first_not_of("0123456789", at + 1) - at - 1);
    return text;
}

}  // namespace

TEST(StatementCheck, FindsAndNamesEverySeededFault) {
    const Seeded sound;
    EXPECT_EQ(sound.faults(), "");
    const auto seed = [](const char* fault, const auto& make) {
        Seeded broken;
        make(broken);
        const std::string told = withoutIds(broken.faults());
        EXPECT_NE(told.find(fault), std::string::npos) << fault << "\nbut: " << told;
    };
    seed("\"a\" # is reached twice", [](auto& s) { s.put(s.joinNode->right->value, s.a); });
    seed("the node of table \"a\" # is reached twice",
         [](auto& s) { s.put(s.bracketNode->left, s.joinNode->left); });
    seed("the node of join INNER JOIN # is reached twice",
         [](auto& s) { s.put(s.joinNode->left->left, s.joinNode); });
    seed("WHERE: condition bracket # is reached twice",
         [](auto& s) { s.put(s.bracket->inner->next, s.bracket); });
    seed("\"x\"", [](auto& s) { s.put(s.value->values[0], s.field); });
    seed("statement # is reached twice", [](auto& s) { s.put(s.derived->subquery, &s.statement); });
    seed("the extra data of field \"f\" # is reached twice",
         [](auto& s) { s.put(s.field->extraData, s.direction); });
    seed("FROM: join INNER JOIN # lacks a child",
         [](auto& s) { s.put(s.joinNode->right, nullptr); });
    seed("source bracket # has a right child", [](auto& s) {
        s.put(s.bracketNode->right, s.joinNode->left);
        s.put(s.joinNode->left, s.bracketNode->left);
        s.put(s.bracketNode->left, nullptr);
    });
    seed("\"b\" # has a child", [](auto& s) {
        s.put(s.joinNode->right->left, s.bracketNode->left);
        s.put(s.bracketNode->left, nullptr);
    });
    seed("a node has no value", [](auto& s) { s.put(s.joinNode->left->value, nullptr); });
    seed("\"a\" # is not owned by its node",
         [](auto& s) { s.put(s.joinNode->left->ownsValue, false); });
    seed("derived table \"\" # has no statement",
         [](auto& s) { s.put(s.derived->subquery, nullptr); });
    seed("has a condition that is no USING list", [](auto& s) { s.put(s.join->isUsing, true); });
    seed("HAVING: has no element", [](auto& s) { s.put(s.inner->havingExpr, nullptr); });
    seed("GROUP BY: a column of the list is null",
         [](auto& s) { s.put(s.statement.groupByExpr->columns, {nullptr}); });
    seed("ORDER BY: field \"x\" # carries no direction",
         [](auto& s) { s.put(s.ordered->extraData, nullptr); });
    seed("ON: comparison # has a chain for its left operand",
         [](auto& s) { s.put(s.value->next, s.detach(new SQLConditionValueComponent)); });
    seed("is no pair of bounds", [](auto& s) {
        auto* bound = s.detach(new SQLConditionValueComponent);
        s.put(s.compare->rightValue, bound);
        s.put(bound->next, s.detach(new SQLConditionValueComponent));
    });
    seed("SELECT: field \"f\" # belongs to a source that is not in its statement",
         [](auto& s) { s.put(s.field->source, freed<SQLIdentifierSourceComponent>()); });
    seed("\"f\" # belongs to a source", [](auto& s) { s.put(s.field->source, s.innerTable); });
    seed("\"f\" # belongs to a source", [](auto& s) { s.put(s.field->source, s.join); });
    seed("\"\" # belongs to a source", [](auto& s) { s.put(s.innerField->source, s.a); });
    seed("\"x\" # refers to a column that is not in the SELECT list",
         [](auto& s) { s.put(s.ordered->referencedColumn, freed<SQLFieldColumnComponent>()); });
    seed("\"x\" # refers to a column",
         [](auto& s) { s.put(s.ordered->referencedColumn, s.ordered); });
    seed("layer 0 is no part", [](auto& s) { s.layers[0] = s.inner; });
    seed("layer 1 is no part", [](auto& s) { s.layers[1] = freed<SQLSelectStmtComponent>(); });
    seed("layer 2 is no part", [](auto& s) { s.layers.push_back(s.inner); });
}

TEST(StatementCheck, WhatWasTakenOutMayBeReferredToAndBeOpenButStandNowhereElse) {
    Seeded edited;
    edited.put(edited.field->source, edited.detach(new SQLIdentifierSourceComponent));
    edited.put(edited.ordered->referencedColumn, edited.detach(new SQLFieldColumnComponent));
    edited.layers[1] = edited.detach(new SQLSelectStmtComponent);
    EXPECT_NE(edited.faults(), "");
    EXPECT_EQ(edited.faults(true), "");
    // A join was taken out, its left side stays in its place, and the join still points at it.
    auto join = std::unique_ptr<SourceNode>(Sample::leaf(new SQLJoinSourceNodeComponent));
    edited.put(join->left, edited.joinNode->left);
    edited.detached.add(std::move(join));
    const std::string told = withoutIds(edited.faults(true));
    EXPECT_NE(told.find("the node of table \"a\" # was taken out and still stands"),
              std::string::npos)
        << told;
}

TEST(StatementCheck, WalksAnyDepthAndTellsOnlyTheFirstOfManyFaults) {
    const OwnedStatement statement(new SQLSelectStmtComponent);
    SQLIdentifierSourceComponent elsewhere;
    constexpr int depth = 100'000;
    for (int i = 0; i < depth; ++i) {
        SourceNode* join = Sample::leaf(new SQLJoinSourceNodeComponent);
        join->left = std::exchange(statement->sourceExpr->root, join);
        join->right = Sample::leaf(new SQLIdentifierSourceComponent);
        auto* link = new SQLCompareConditionComponent;
        link->next = std::exchange(statement->whereExpr->root, link);
        auto* field = new SQLFieldColumnComponent;
        field->source = &elsewhere;
        statement->selectColumnExpr->columns.push_back(field);
    }
    const std::string told = findStatementFaults(statement.get());
    EXPECT_NE(told.find("lacks a child"), std::string::npos);
    EXPECT_NE(told.find("more"), std::string::npos);
    EXPECT_LT(told.size(), 4000U);
}
