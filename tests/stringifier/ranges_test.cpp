#include <gtest/gtest.h>

#include <random>

#include "model/tree_walks.h"
#include "stringifier/query_component_stringifier.h"
#include "stringifier/statement_builder.h"
#include "support/host_callbacks.h"
#include "support/long_runs.h"

using namespace QB;
using namespace QB::Test;
using Component::AbstractQueryComponent;

namespace {

/// Statements of every shape, small enough to check each component against all others.
class RandomStatement {
public:
    explicit RandomStatement(unsigned seed) : m_random(seed) {}

    Statement statement(int depth) {
        Statement s = newStatement();
        if (!chance(4)) s->sourceExpr->root = source(depth);
        for (int i = below(4); i > 0; --i)
            s->selectColumnExpr->columns.push_back(column());
        if (!chance(3)) s->whereExpr->root = conditions(depth);
        if (chance(3)) s->groupByExpr->columns = {directed(column(), OrderDirectionNone)};
        if (chance(3)) s->havingExpr->root = conditions(depth);
        if (chance(3)) s->orderByExpr->columns = {directed(column(), OrderDirectionDescending)};
        if (chance(2)) s->limitExpr->rowCount = below(100);
        return s;
    }

private:
    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
    bool chance(int oneIn) { return below(oneIn) == 0; }
    std::string name() { return std::string(1, static_cast<char>('a' + below(26))); }
    std::string nameOrNone() { return chance(2) ? name() : std::string(); }

    SourceNode* source(int depth) {
        if (depth <= 0 || chance(4)) return table(name(), nameOrNone(), {name()});
        switch (below(4)) {
            case 0:
                return bracket(source(depth - 1), nameOrNone());
            case 1:
                return subquery(chance(5) ? nullptr : statement(depth - 1), nameOrNone());
            case 2:
                return freeSource("f(" + name() + ")", nameOrNone());
            default:
                return randomJoin(depth - 1);
        }
    }

    SourceNode* randomJoin(int depth) {
        const auto type = static_cast<SQLJoinType>(below(7));
        SourceNode* left = source(depth);
        SourceNode* node = join(left, type, source(depth), chance(4) ? nullptr : conditions(depth));
        joinOf(node)->isUsing = chance(5);
        return node;
    }

    SQLAbstractColumnComponent* column() {
        if (chance(3)) return expression(chance(4) ? "" : "1 + " + name(), nameOrNone());
        SQLFieldColumnComponent* made = field(nullptr, nameOrNone(), nameOrNone());
        if (chance(2)) made->parentPath = {name(), name()};
        return chance(3) ? aggregate("COUNT", made) : made;
    }

    std::vector<SQLAbstractColumnComponent*> columns(int limit) {
        std::vector<SQLAbstractColumnComponent*> made;
        for (int i = below(limit); i > 0; --i)
            made.push_back(chance(6) ? nullptr : column());
        return made;
    }

    SQLAbstractConditionComponent* condition(int depth) {
        const int kind = below(depth > 0 ? 5 : 3);
        if (kind == 0) return value(columns(3));
        if (kind >= 3) return bracketed(chance(6) ? nullptr : conditions(depth - 1));
        auto* made = compare(column(), static_cast<CompareOp>(below(24) - 1), columns(4));
        if (depth > 0 && chance(5)) {
            delete std::exchange(made->rightValue, condition(depth - 1));
        } else if (chance(4)) {
            made->rightValue->next = condition(depth - 1);
            made->rightValue->next->logicGate = static_cast<SQLLogicGate>(below(2));
        }
        return made;
    }

    SQLAbstractConditionComponent* conditions(int depth) {
        std::vector<SQLAbstractConditionComponent*> links;
        for (int i = 1 + below(3); i > 0; --i) {
            links.push_back(condition(depth));
            links.back()->negated = chance(4);
        }
        return chain(static_cast<SQLLogicGate>(below(2)), links);
    }

    std::mt19937 m_random;
};

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

    QBRange rangeOf(const AbstractQueryComponent* component) {
        return m_stringifier->componentRanges().at(component);
    }

    HostCallbacks m_host;
    std::unique_ptr<QBQueryComponentStringifier> m_stringifier;
};

TEST_F(Ranges, CoverTheTextThatTheComponentGivesAlone) {
    int compared = 0;
    for (int seed = 0; seed < repetitions(300); ++seed) {
        const Statement statement = RandomStatement(static_cast<unsigned>(seed)).statement(4);
        const std::string text = run(statement.get());
        const auto ranges = m_stringifier->componentRanges();
        EXPECT_EQ(ranges.at(statement.get()), (QBRange{0, static_cast<int>(text.size())}));
        for (const auto& [component, range] : ranges) {
            if (holdsTreeSides(component)) continue;  // alone it has no sides
            const auto start = static_cast<std::size_t>(range.location);
            const std::string part = text.substr(start, static_cast<std::size_t>(range.length));
            ASSERT_EQ(outdented(part, indentAt(text, start)), run(component)) << "seed " << seed;
            ++compared;
        }
    }
    EXPECT_GT(compared, 3000);
}

TEST_F(Ranges, EncloseWhatTheComponentOwns) {
    for (int seed = 0; seed < repetitions(100); ++seed) {
        const Statement statement = RandomStatement(static_cast<unsigned>(seed)).statement(4);
        run(statement.get());
        const auto ranges = m_stringifier->componentRanges();
        for (const auto& [component, outer] : ranges) {
            const QBRange around = outer;
            Tools::visitOwnedComponents(component, [&](const AbstractQueryComponent* owned) {
                const auto found = ranges.find(owned);
                if (found == ranges.end()) return;
                const QBRange inner = found->second;
                EXPECT_GE(inner.location, around.location);
                EXPECT_LE(inner.location + inner.length, around.location + around.length);
            });
        }
    }
}

TEST_F(Ranges, OfConditionsRunToTheEndOfTheirChain) {
    auto* first = value({expression("a")});
    auto* second = negated(value({expression("b")}));
    auto* third = value({expression("c")});
    const std::unique_ptr<SQLAbstractConditionComponent> owner(
        chain(SQLLogicGateOr, {first, second, third}));
    EXPECT_EQ(run(first), "a OR\nNOT b OR\nc");
    EXPECT_EQ(rangeOf(first), (QBRange{0, 15}));
    EXPECT_EQ(rangeOf(second), (QBRange{5, 10}));
    EXPECT_EQ(rangeOf(third), (QBRange{14, 1}));
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

TEST_F(Ranges, AComponentMetTwiceKeepsTheFirst) {
    SQLAnyExpressionColumnComponent* shared = expression("xy");
    const Statement s = newStatement();
    s->selectColumnExpr->columns = {shared};
    s->groupByExpr->columns = {shared};
    run(s.get());
    EXPECT_EQ(rangeOf(shared), (QBRange{8, 2}));
    s->groupByExpr->columns.clear();
}

}  // namespace
