// Statements that are as deep as they are long: on a stack of the usual size each of these ends in
// a crash if anything recurses along a chain.
#include <gtest/gtest.h>

#include "stringifier/dialects.h"
#include "stringifier/statement_builder.h"
#include "support/host_callbacks.h"

using namespace QB;
using namespace QB::Test;

namespace {

constexpr int depth = 100000;

class Deep : public testing::Test {
protected:
    std::string run(const Component::AbstractQueryComponent* component) {
        return m_stringifier->stringifyQuery(component);
    }

    HostCallbacks m_host;
    std::unique_ptr<QBQueryComponentStringifier> m_stringifier =
        QBQueryComponentStringifier::createStringifier({DatabaseTypePostgreSQL, 0});
};

TEST_F(Deep, ChainsOfConditionsAreWrittenWithTheirRanges) {
    std::vector<SQLAbstractConditionComponent*> links;
    for (int i = 0; i < depth; ++i)
        links.push_back(compare(expression("a"), CompareOpEqual, {expression("1")}));
    const Statement s = newStatement();
    s->whereExpr->root = chain(SQLLogicGateAnd, links);
    const std::string text = run(s.get());
    const auto ranges = m_stringifier->componentRanges();

    const auto length = static_cast<std::int32_t>(std::string("a = 1 AND\n\t").size());
    std::int32_t location = static_cast<std::int32_t>(text.find("a = 1"));
    for (const SQLAbstractConditionComponent* link : links) {
        ASSERT_EQ(ranges.at(link),
                  (QBRange{location, static_cast<std::int32_t>(text.size()) - location}));
        location += length;
    }
    EXPECT_EQ(text.substr(text.size() - 16), "a = 1 AND\n\ta = 1");
}

TEST_F(Deep, ComparisonsInOperandsAreWritten) {
    SQLAbstractConditionComponent* operand = value({expression("x")});
    for (int i = 0; i < depth; ++i) {
        auto* outer = new SQLCompareConditionComponent;
        outer->leftValue = operand;
        operand = outer;
    }
    const std::unique_ptr<SQLAbstractConditionComponent> owner(operand);
    EXPECT_EQ(run(operand).size(), 1 + 3 * static_cast<std::size_t>(depth));
    EXPECT_EQ(m_stringifier->componentRanges().at(operand).length, 1 + 3 * depth);
}

TEST_F(Deep, JoinsAreWrittenAndTheirRangesCoverBothSides) {
    for (const bool isLeftDeep : {true, false}) {
        SourceNode* root = table("t");
        const SourceNode* lowestLeaf = root;
        std::vector<const SourceNode*> joins;
        for (int i = 0; i < depth; ++i) {
            SourceNode* leaf = table("t");
            root = join(isLeftDeep ? root : leaf, SQLJoinTypeComma, isLeftDeep ? leaf : root);
            joins.push_back(root);
        }
        const Statement s = newStatement();
        s->sourceExpr->root = root;
        const std::string text = run(s.get());
        const auto ranges = m_stringifier->componentRanges();
        const auto textStart = static_cast<std::int32_t>(text.find('"'));
        const auto textEnd = static_cast<std::int32_t>(text.size());
        std::int32_t length = ranges.at(lowestLeaf->value).length;
        EXPECT_EQ(length, 3);
        for (const SourceNode* node : joins) {
            length += static_cast<std::int32_t>(std::string(",\n\t\"t\"").size());
            const QBRange range = ranges.at(node->value);
            ASSERT_EQ(range.length, length);
            ASSERT_EQ(range.location, isLeftDeep ? textStart : textEnd - length);
        }
    }
}

/// Gives nodes by themselves.
class Nodes : public QBQueryComponentStringifier_MONGODB {
public:
    Nodes() : QBQueryComponentStringifier_MONGODB({DatabaseTypeMongoDB, 0}) {}

    StringifiedNode nested(const Component::AbstractQueryComponent* component) {
        StringifiedNode node = newNode();
        node.setText("x");
        for (int i = 0; i < depth; ++i) {
            StringifiedNode outer = newNode();
            outer.setText("x");
            node.component = component;
            outer.append(std::move(node));
            node = std::move(outer);
        }
        return node;
    }

    using QBQueryComponentStringifier_MONGODB::flatten;
    using QBQueryComponentStringifier_MONGODB::newNode;
};

TEST(DeepNodes, AreWrittenWithTheirRangesFromTheInside) {
    const HostCallbacks host;
    const std::unique_ptr<SQLAnyExpressionColumnComponent> component(expression("x"));
    Nodes nodes;
    Nodes::ComponentRangeList ranges;
    EXPECT_EQ(nodes.flatten(nodes.nested(component.get()), ranges).size(), std::size_t{depth} + 1);
    ASSERT_EQ(ranges.size(), std::size_t{depth});
    EXPECT_EQ(ranges.front().second, (QBRange{depth, 1}));
    EXPECT_EQ(ranges.back().second, (QBRange{1, depth}));
    StringifiedNode dropped = nodes.nested(nullptr);
    dropped.setText("y");
    EXPECT_EQ(nodes.flatten(std::move(dropped), ranges), "y");
}

TEST(StringifiedNodes, AreWrittenInTheOrderOfTheirChildren) {
    const HostCallbacks host;
    const std::unique_ptr<SQLAnyExpressionColumnComponent> component(expression("x"));
    Nodes nodes;
    StringifiedNode marked = nodes.newNode();
    marked.append("c");
    marked.component = component.get();
    StringifiedNode node = nodes.newNode();
    EXPECT_TRUE(node.isEmpty());
    node.append(nodes.newNode());
    EXPECT_FALSE(node.isEmpty()) << "an empty child is a child";
    node.setText("a");
    node.append("b");
    node.append(std::move(marked));
    const std::string name = "n";
    node.appendName(name);
    node.appendLine("", 9);
    node.appendNumber(-1);
    Nodes::ComponentRangeList ranges;
    EXPECT_EQ(nodes.flatten(std::move(node), ranges), "abc\"n\"\n\t\t\t\t\t\t\t\t\t-1");
    ASSERT_EQ(ranges.size(), 1U);
    EXPECT_EQ(ranges.front().second, (QBRange{2, 1}));
}

}  // namespace
