// What the texts cost that grow without bound: parse, build, print and destroy each of them, at the
// size that the tests use and at half of it. Counters: "s_per_MB" for a second a megabyte at most,
// "doubling" for the cost of twice the size, 2.3 at most.
// Rooms: parser stringifier
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>

#include "hostile/shapes.h"
#include "model/detached_parts.h"
#include "stringifier/query_component_stringifier.h"
#include "support/host_callbacks.h"

using namespace QB;
using namespace QB::Test;

namespace {

/// Seconds of one whole life of a statement.
double lifetime(const Shape& shape, const std::string& text) {
    const auto begin = std::chrono::steady_clock::now();
    {
        const OwnedStatement statement(new Component::SQL::SQLSelectStmtComponent);
        benchmark::DoNotOptimize(
            QBQueryParser::parseStatement(statement.get(), text, shape.family, "s"));
        auto stringifier = QBQueryComponentStringifier::createStringifier({shape.family, 0});
        benchmark::DoNotOptimize(stringifier->stringifyQuery(statement.get()));
        benchmark::DoNotOptimize(stringifier->componentRanges());
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    return taken.count();
}

double shortestLifetime(const Shape& shape, const std::string& text) {
    double shortest = lifetime(shape, text);
    for (int i = 0; i < 4; ++i)
        shortest = std::min(shortest, lifetime(shape, text));
    return shortest;
}

void measure(benchmark::State& state, const Shape& shape) {
    const HostCallbacks host;
    const std::string whole = shape.text(shape.size);
    const std::string half = shape.text(shape.size / 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(lifetime(shape, whole));
    const double megabytes = static_cast<double>(whole.size()) / 1e6;
    const double seconds = shortestLifetime(shape, whole);
    state.counters["s_per_MB"] = seconds / megabytes;
    state.counters["doubling"] = seconds / shortestLifetime(shape, half);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(whole.size()));
}

const bool isRegistered = [] {
    for (const Shape& shape : allShapes())
        benchmark::RegisterBenchmark(shape.name, measure, shape)->Unit(benchmark::kMillisecond);
    return true;
}();

}  // namespace
