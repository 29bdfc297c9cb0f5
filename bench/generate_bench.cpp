// From components to text: what a statement of n parts costs, at n, 2n and 4n, and what the texts
// of the parser's benchmark cost with the range of every component.
//
// bench/gates.py counts the instructions of the function measuredGeneration.
// Rooms: parser stringifier
#include <benchmark/benchmark.h>

#include "parser/query_parser.h"
#include "platform/sqlet/words.h"
#include "stringifier/query_component_stringifier.h"
#include "stringifier/statement_builder.h"
#include "support/host_callbacks.h"
#include "texts.h"

using namespace QB;
using namespace QB::Test;

namespace {

Statement columns(int n) {
    Statement s = newStatement();
    SourceNode* t = table("orders", "o", {"shop"});
    s->sourceExpr->root = t;
    for (int i = 0; i < n; ++i)
        s->selectColumnExpr->columns.push_back(field(t, "c" + std::to_string(i), "a"));
    return s;
}

Statement conditions(int n) {
    Statement s = newStatement();
    SourceNode* t = table("orders", "", {"shop"});
    s->sourceExpr->root = t;
    std::vector<SQLAbstractConditionComponent*> links;
    for (int i = 0; i < n; ++i)
        links.push_back(compare(field(t, "total"), CompareOpGreater, {expression("100")}));
    s->whereExpr->root = chain(SQLLogicGateAnd, links);
    return s;
}

/// A tree that leans to the left, as a run of joins does.
Statement joins(int n) {
    Statement s = newStatement();
    SourceNode* first = table("t", "", {"shop"});
    SourceNode* root = first;
    for (int i = 0; i < n; ++i) {
        SourceNode* right = table("t" + std::to_string(i), "", {"shop"});
        root = join(root, SQLJoinTypeLeft, right,
                    compare(field(first, "id"), CompareOpEqual, {field(right, "id")}));
    }
    s->sourceExpr->root = root;
    return s;
}

template <Statement (*build)(int)>
void text(benchmark::State& state) {
    const HostCallbacks host;
    const Statement statement = build(static_cast<int>(state.range(0)));
    std::size_t bytes = 0;
    for (auto _ : state) {
        auto stringifier = QBQueryComponentStringifier::createStringifier({DatabaseTypeMySQL, 0});
        stringifier->setCurrentSchema("shop");
        bytes += stringifier->stringifyQuery(statement.get()).size();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
    state.SetComplexityN(state.range(0));
}

void rangesOfConditions(benchmark::State& state) {
    const HostCallbacks host;
    const Statement statement = conditions(static_cast<int>(state.range(0)));
    auto stringifier = QBQueryComponentStringifier::createStringifier({DatabaseTypeMySQL, 0});
    stringifier->stringifyQuery(statement.get());
    for (auto _ : state)
        benchmark::DoNotOptimize(stringifier->componentRanges());
    state.SetComplexityN(state.range(0));
}

[[gnu::noinline]] std::size_t measuredGeneration(const SQLSelectStmtComponent& statement) {
    auto stringifier = QBQueryComponentStringifier::createStringifier({DatabaseTypePostgreSQL, 0});
    stringifier->setCurrentSchema("shop");
    const std::size_t bytes = stringifier->stringifyQuery(&statement).size();
    benchmark::DoNotOptimize(stringifier->componentRanges());
    return bytes;
}

void textAndRanges(benchmark::State& state, Bench::TextKind kind) {
    const HostCallbacks host;
    const Statement statement = newStatement();
    QBQueryParser::parseStatement(statement.get(), Bench::textOf(kind), DatabaseTypePostgreSQL,
                                  "shop");
    std::size_t bytes = 0;
    for (auto _ : state)
        bytes = measuredGeneration(*statement);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
    state.counters["bytes"] = static_cast<double>(bytes);
}

void wordClass(benchmark::State& state) {
    const std::string word = "Between";
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            sqlet_word_class(DatabaseTypeMySQL, word.data(), static_cast<int>(word.size())));
    }
}

void doubled(benchmark::internal::Benchmark* benchmark, int n) {
    benchmark->Arg(n)->Arg(2 * n)->Arg(4 * n)->Complexity()->Unit(benchmark::kMillisecond);
}

BENCHMARK_TEMPLATE(text, columns)->Name("text/columns")->Apply([](auto* b) { doubled(b, 10000); });
BENCHMARK_TEMPLATE(text, conditions)->Name("text/conditions")->Apply([](auto* b) {
    doubled(b, 100000);
});
BENCHMARK_TEMPLATE(text, joins)->Name("text/joins")->Apply([](auto* b) { doubled(b, 1000); });
BENCHMARK_TEMPLATE(text, joins)->Name("text/deep_joins")->Apply([](auto* b) {
    doubled(b, 100000);
});
BENCHMARK(rangesOfConditions)->Name("ranges/conditions")->Apply([](auto* b) {
    doubled(b, 100000);
});
// The number of runs is fixed for counting instructions.
BENCHMARK_CAPTURE(textAndRanges, 1kB, Bench::TextKind::Ordinary1kB)->Iterations(500);
BENCHMARK_CAPTURE(textAndRanges, 10kB, Bench::TextKind::Ordinary10kB);
BENCHMARK_CAPTURE(textAndRanges, in_list_1MB, Bench::TextKind::InList1MB)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(textAndRanges, chain_100k, Bench::TextKind::Chain100k)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(wordClass)->Name("word_class");

}  // namespace
