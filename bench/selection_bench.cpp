// What it costs to tick and untick all fields of a wide table, and to collect the names that a
// subquery yields: at n, 2n and more, where the instructions must not more than double. Meant to
// take less than 50 ms at 10,000 fields and at 30,000 names.
//
// Rooms: tools

#include <benchmark/benchmark.h>

#include "engine/engine_core.h"
#include "model/element_expressions.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"
#include "tools/selection_tools.h"
#include "tools/subquery_fields.h"

namespace QB {
namespace {

using namespace Component::SQL;

SQLIdentifierSourceComponent* newTable(const std::string& name) {
    auto* table = new SQLIdentifierSourceComponent;
    table->path = {"shop"};
    table->name = name;
    return table;
}

SourceNode* newLeaf(SQLAbstractSourceComponent* source) {
    auto* node = new SourceNode;
    node->value = source;
    return node;
}

/// A statement over one table, whose fields the engine knows.
class Scene {
public:
    explicit Scene(benchmark::State& state) : m_count(static_cast<int>(state.range(0))) {
        QBEngineIdentifierCandidateAccessor accessor(engine->core());
        const auto add = [&accessor](QBIdentifierCandidate* parent, const std::string& name) {
            QBIdentifierCandidate* child = accessor.addChild(parent);
            accessor.setName(child, name);
            return child;
        };
        QBIdentifierCandidate* wide = add(add(nullptr, "shop"), "wide");
        for (int i = 0; i < m_count; ++i)
            add(wide, "field" + std::to_string(i));
        root()->sourceExpr->root = newLeaf(table);
    }

    SQLSelectStmtComponent* root() {
        return static_cast<SQLSelectStmtComponent*>(engine->topLevelQueryComponent(0));
    }

    void select(bool isSelected) {
        Tools::SQL::changeItemComponentAllSelection(engine.get(), nullptr, table, true, isSelected);
    }

    /// The subquery `SELECT field0, field1, ..., * FROM wide`.
    std::unique_ptr<SQLSubquerySourceComponent> subquery() const {
        auto source = std::make_unique<SQLSubquerySourceComponent>();
        auto* statement = new SQLSelectStmtComponent;
        source->subquery = statement;
        for (int i = 0; i <= m_count; ++i) {
            auto* column = new SQLFieldColumnComponent;
            column->isAsterisk = i == m_count;
            if (!column->isAsterisk) column->fieldName = "field" + std::to_string(i);
            statement->selectColumnExpr->columns.push_back(column);
        }
        statement->sourceExpr->root = newLeaf(newTable("wide"));
        return source;
    }

    const Test::HostCallbacks host;
    Test::OwnedEngine<> engine{DatabaseTypePostgreSQL};
    SQLIdentifierSourceComponent* const table = newTable("wide");

private:
    const int m_count;
};

void selectAll(benchmark::State& state) {
    Scene scene(state);
    for (auto _ : state) {
        scene.select(true);
        state.PauseTiming();
        scene.select(false);
        state.ResumeTiming();
    }
}
BENCHMARK(selectAll)->Arg(5000)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);

void selectAllAgain(benchmark::State& state) {
    Scene scene(state);
    scene.select(true);
    for (auto _ : state)
        scene.select(true);
}
BENCHMARK(selectAllAgain)->Arg(5000)->Arg(10000)->Arg(20000)->Unit(benchmark::kMillisecond);

/// With the sweep that frees them.
void deselectAll(benchmark::State& state) {
    Scene scene(state);
    for (auto _ : state) {
        state.PauseTiming();
        scene.select(true);
        state.ResumeTiming();
        scene.select(false);
    }
}
BENCHMARK(deselectAll)->Arg(10000)->Arg(50000)->Arg(100000)->Unit(benchmark::kMillisecond);

void knownSubqueryFields(benchmark::State& state) {
    Scene scene(state);
    const auto subquery = scene.subquery();
    for (auto _ : state)
        benchmark::DoNotOptimize(Tools::knownSubqueryFields(scene.engine.get(), subquery.get()));
}
BENCHMARK(knownSubqueryFields)->Arg(15000)->Arg(30000)->Arg(60000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace QB
