#include <gtest/gtest.h>

#include "model/tree_walks.h"
#include "stringifier/golden_cases.h"
#include "stringifier/query_component_stringifier.h"
#include "support/host_callbacks.h"

using namespace QB;
using namespace QB::Test;
using Component::AbstractQueryComponent;

namespace {

/// The number of tabs that start the line in which @p location lies.
std::size_t indentAt(const std::string& text, std::size_t location) {
    const std::size_t feed = location == 0 ? std::string::npos : text.rfind('\n', location - 1);
    const std::size_t start = feed == std::string::npos ? 0 : feed + 1;
    return text.find_first_not_of('\t', start) - start;
}

/// @p part with @p tabs fewer behind each line feed.
std::string outdented(const std::string& part, std::size_t tabs) {
    std::string result;
    for (std::size_t i = 0; i < part.size(); ++i) {
        result += part[i];
        if (part[i] == '\n') i += tabs;
    }
    return result;
}

bool holdsTreeSides(const AbstractQueryComponent* component) {
    return dynamic_cast<const SQLJoinSourceNodeComponent*>(component) ||
           dynamic_cast<const SQLBracketedSourceNodeComponent*>(component);
}

class Ranges : public testing::Test {
protected:
    std::string run(const AbstractQueryComponent* component) {
        m_stringifier = QBQueryComponentStringifier::createStringifier({DatabaseTypeSQLite, 0});
        return m_stringifier->stringifyQuery(component);
    }

    static void expectOwnedWithin(const AbstractQueryComponent* component, QBRange outer,
                                  const QBQueryComponentStringifier::Ranges& ranges) {
        Tools::visitOwnedComponents(component, [&](const AbstractQueryComponent* owned) {
            const auto found = ranges.find(owned);
            if (found == ranges.end()) return;
            const QBRange inner = found->second;
            EXPECT_GE(inner.location, outer.location);
            EXPECT_LE(inner.location + inner.length, outer.location + outer.length);
        });
    }

    QBRange rangeOf(const AbstractQueryComponent* component) {
        return m_stringifier->componentRanges().at(component);
    }

    HostCallbacks m_host;
    std::unique_ptr<QBQueryComponentStringifier> m_stringifier;
};

TEST_F(Ranges, CoverTheTextThatTheComponentGivesAloneAndWhatItOwns) {
    int compared = 0;
    for (const GoldenCase& golden : goldenCases()) {
        SCOPED_TRACE(golden.name);
        // Further in, so that lines are indented.
        const Statement statement = newStatement();
        statement->sourceExpr->root =
            join(table("first"), SQLJoinTypeComma, subquery(golden.build(), "s"));
        const std::string text = run(statement.get());
        const auto ranges = m_stringifier->componentRanges();
        EXPECT_EQ(ranges.at(statement.get()), (QBRange{0, static_cast<int>(text.size())}));
        for (const auto& [component, range] : ranges) {
            expectOwnedWithin(component, range, ranges);
            if (holdsTreeSides(component)) continue;  // alone it has no sides
            const auto start = static_cast<std::size_t>(range.location);
            const std::string part = text.substr(start, static_cast<std::size_t>(range.length));
            EXPECT_EQ(outdented(part, indentAt(text, start)), run(component));
            ++compared;
        }
    }
    EXPECT_GT(compared, 300);
}

TEST_F(Ranges, OfJoinsCoverBothSidesAndTheCondition) {
    const Statement s = newStatement();
    auto* inner = join(table("a"), SQLJoinTypeInner, table("b"), value({expression("x")}));
    s->sourceExpr->root = join(inner, SQLJoinTypeComma, table("c"));
    const std::string text = run(s.get());
    const auto textOf = [&](const SourceNode* node) {
        const QBRange range = rangeOf(node->value);
        return text.substr(static_cast<std::size_t>(range.location),
                           static_cast<std::size_t>(range.length));
    };
    EXPECT_EQ(textOf(inner), "\"a\"\n\tINNER JOIN\n\t\"b\"\n\tON \n\t\tx");
    EXPECT_EQ(textOf(s->sourceExpr->root), textOf(inner) + ",\n\t\"c\"");
}

TEST_F(Ranges, OfComponentsWithoutTextHaveNoLength) {
    const std::unique_ptr<SQLCompareConditionComponent> condition(
        compare(expression(""), CompareOpEqual, {expression("1")}));
    EXPECT_EQ(run(condition.get()), " = 1");
    EXPECT_EQ(rangeOf(condition->leftValue), (QBRange{0, 0}));
    // The operand on the right is written by its operator, and has no range; its items have.
    EXPECT_EQ(m_stringifier->componentRanges().count(condition->rightValue), 0U);
    EXPECT_EQ(m_stringifier->componentRanges().size(), 4U);
}

TEST_F(Ranges, AreKeptByCopiesAndMovesWhenTheGeneratorIsGone) {
    const std::unique_ptr<SQLCompareConditionComponent> condition(
        compare(expression("a"), CompareOpIn, {expression("1"), expression("2")}));
    run(condition.get());
    QBQueryComponentStringifier::Ranges ranges = m_stringifier->componentRanges();
    m_stringifier.reset();
    const QBQueryComponentStringifier::Ranges copy = ranges;
    // Erased nodes are used again, and neither map sees what the other does.
    ranges.erase(condition.get());
    ranges[nullptr] = {7, 7};
    const QBQueryComponentStringifier::Ranges moved = std::move(ranges);
    ranges = copy;
    EXPECT_EQ(ranges, copy);
    EXPECT_EQ(copy.at(condition.get()), (QBRange{0, 10}));
    EXPECT_EQ(moved.at(nullptr), (QBRange{7, 7}));
    EXPECT_EQ(moved.count(condition.get()), 0U);
    EXPECT_EQ(moved.size(), copy.size());
}

}  // namespace
