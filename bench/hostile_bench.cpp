// What the texts cost that grow without bound: parse, build, print and destroy each of them, at the
// size that the tests use and at half of it. Counters of processor time: "s_per_MB", which is to be
// 1 at most, and "doubling", the cost of twice the size, which is to be 2.3 at most.
// Rooms: parser stringifier
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <ctime>
#include <string>

#include "hostile/shapes.h"
#include "model/detached_parts.h"
#include "stringifier/query_component_stringifier.h"
#include "support/host_callbacks.h"

using namespace QB;
using namespace QB::Test;

namespace {

double threadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

/// Seconds of one whole life of a statement.
double lifetime(const Shape& shape, const std::string& text) {
    const double begin = threadSeconds();
    {
        const OwnedStatement statement(new Component::SQL::SQLSelectStmtComponent);
        benchmark::DoNotOptimize(
            QBQueryParser::parseStatement(statement.get(), text, shape.family, "s"));
        auto stringifier = QBQueryComponentStringifier::createStringifier({shape.family, 0});
        benchmark::DoNotOptimize(stringifier->stringifyQuery(statement.get()));
        benchmark::DoNotOptimize(stringifier->componentRanges());
    }
    return threadSeconds() - begin;
}

/// Of as many lives as fit into a fifth of a second, but of five at least.
double shortestLifetime(const Shape& shape, const std::string& text) {
    double shortest = lifetime(shape, text);
    double sum = shortest;
    for (int i = 1; i < 5 || sum < 0.2; ++i) {
        const double seconds = lifetime(shape, text);
        shortest = std::min(shortest, seconds);
        sum += seconds;
    }
    return shortest;
}

/// Memory that was freed is kept: what it costs to get it anew from the system jumps with the size.
void keepMemory() {
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
}

void measure(benchmark::State& state, const Shape& shape) {
    const HostCallbacks host;
    keepMemory();
    const std::string whole = shape.text(shape.size);
    const std::string half = shape.text(shape.size / 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(lifetime(shape, whole));
    const double megabytes = static_cast<double>(whole.size()) / 1e6;
    const double seconds = shortestLifetime(shape, whole);
    state.counters["s_per_MB"] = seconds / megabytes;
    if (!shape.isAtLimit) state.counters["doubling"] = seconds / shortestLifetime(shape, half);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(whole.size()));
}

const bool isRegistered = [] {
    for (const Shape& shape : allShapes())
        benchmark::RegisterBenchmark(shape.name, measure, shape)->Unit(benchmark::kMillisecond);
    return true;
}();

}  // namespace
