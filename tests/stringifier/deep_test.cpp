// Statements that are as deep as they are long: on a stack of the usual size each of these ends in
// a crash if anything recurses along a chain.
#include <gtest/gtest.h>

#include "stringifier/query_component_stringifier.h"
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

}  // namespace
