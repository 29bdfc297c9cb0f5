// The automatic layout of diagrams: trees with a third more links than a tree has, as schemas have.
//
// Rooms: canvas

#include <benchmark/benchmark.h>

#include "canvas/diagram/auto_layout.h"
#include "support/dice.h"

namespace QB::DiagramLumo {
namespace {

LayoutGraph schemaOf(int boxes) {
    Test::Dice dice(boxes);
    LayoutGraph graph;
    for (int box = 0; box < boxes; ++box) {
        graph.boxes.push_back({218, 98 + 20 * dice.pick(8)});
        if (box > 0) graph.edges.push_back({box, dice.pick(box)});
        if (dice.isOneIn(3)) graph.edges.push_back({box, dice.pick(boxes)});
    }
    return graph;
}

/// One hub that all others hang on, and links among those: one layer, as long as it gets.
LayoutGraph starOf(int boxes) {
    LayoutGraph graph = schemaOf(boxes);
    for (int box = 1; box < boxes; ++box)
        graph.edges.push_back({0, box});
    return graph;
}

void layOut(benchmark::State& state, LayoutGraph (*graphOf)(int)) {
    const LayoutGraph graph = graphOf(static_cast<int>(state.range(0)));
    std::vector<LumoPoint> places;
    for (auto _ : state)
        benchmark::DoNotOptimize(places = layoutInLayers(graph));
    state.counters["crossings"] = countCrossings(graph, places);
}

// The number of runs is fixed, for counting instructions.
BENCHMARK_CAPTURE(layOut, schema, schemaOf)
    ->Arg(20)
    ->Arg(100)
    ->Arg(200)
    ->Arg(500)
    ->Arg(2000)
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(layOut, star, starOf)
    ->Arg(100)
    ->Arg(500)
    ->Arg(2000)
    ->Iterations(2)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace QB::DiagramLumo
