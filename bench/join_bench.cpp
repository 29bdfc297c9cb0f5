// Links drawn in and taken out of a FROM clause of many tables, each with its modification and its
// notification.
//
// Rooms: tools

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

#include "layouts/source_tree_surgery.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"
#include "support/tree_notation.h"
#include "tools/join_tools.h"

namespace QB {
namespace {

using namespace Component::SQL;

/// An engine with a chain of tables in its FROM clause, leaning left as a parsed text does.
class Chain {
public:
    Chain(int count, SQLJoinType type) {
        SourceNode* root = nullptr;
        for (int i = 0; i < count; ++i) {
            SourceNode* leaf = Test::makeNode(Test::makeTable("t" + std::to_string(i))).release();
            root = root ? Test::makeJoin(type, root, leaf).release() : leaf;
        }
        slot() = root;
        for (const SourceTree::Place& place : SourceTree::flatten(&slot()))
            note(place.component);
    }

    /// Each table with the one before it.
    void compareAll() {
        for (std::size_t i = 0; i < joins.size(); ++i) {
            auto* comparison = new SQLCompareConditionComponent;
            comparison->leftValue = operand(tables[i]);
            comparison->rightValue = operand(tables[i + 1]);
            joins[i]->condition = comparison;
        }
    }
    void link(std::size_t a, std::size_t b) {
        Tools::SQL::makeJoinLinkIfNecessary(engine.get(), nullptr, tables[a], "x", tables[b], "x");
    }
    void unlink(std::size_t join) {
        Tools::SQL::removeJoins(engine.get(), nullptr, {{joins[join], nullptr}});
    }

    SourceNode*& slot() {
        auto* statement =
            dynamic_cast<SQLSelectStmtComponent*>(engine->currentTopLevelQueryComponent());
        return statement->sourceExpr->root;
    }

    Test::HostCallbacks host;
    Test::OwnedEngine<> engine{DatabaseTypePostgreSQL};
    std::vector<SQLAbstractSourceComponent*> tables;
    std::vector<SQLJoinSourceNodeComponent*> joins;

private:
    static SQLConditionValueComponent* operand(SQLAbstractSourceComponent* source) {
        auto* column = new SQLFieldColumnComponent;
        column->source = source;
        column->fieldName = "x";
        auto* value = new SQLConditionValueComponent;
        value->values.push_back(column);
        return value;
    }

    void note(SQLAbstractSourceComponent* component) {
        if (auto* join = dynamic_cast<SQLJoinSourceNodeComponent*>(component)) {
            joins.push_back(join);
        } else {
            tables.push_back(component);
        }
    }
};

/// The first table and the last of a list by commas, which move next to each other, and back.
void linkAcrossCommas(benchmark::State& state) {
    Chain chain(static_cast<int>(state.range(0)), SQLJoinTypeComma);
    for (auto _ : state) {
        chain.link(0, chain.tables.size() - 1);
        SQLJoinSourceNodeComponent* made = chain.joins.back();
        Tools::SQL::removeJoins(chain.engine.get(), nullptr, {{made, nullptr}});
    }
}
BENCHMARK(linkAcrossCommas)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// One more comparison between tables that are joined.
void linkInAChain(benchmark::State& state) {
    Chain chain(static_cast<int>(state.range(0)), SQLJoinTypeInner);
    for (auto _ : state)
        chain.link(chain.tables.size() / 2, chain.tables.size() / 2 + 1);
}
BENCHMARK(linkInAChain)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

/// A chain in which each table is compared with the one before it falls in two; all joins behind
/// the gap are looked at, and the next one loses its comparison. Building it is not counted.
void unlinkInAChain(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto chain = std::make_unique<Chain>(static_cast<int>(state.range(0)), SQLJoinTypeInner);
        chain->compareAll();
        state.ResumeTiming();
        chain->unlink(chain->joins.size() / 2);
        state.PauseTiming();
        chain.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(unlinkInAChain)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace QB
