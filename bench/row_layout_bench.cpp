// Flat rows over conditions and columns: how long a rebuild takes, one edit in the middle, and the
// removal of every second row at once, by the number of rows.
//
// Rooms: layouts

#include <benchmark/benchmark.h>

#include <memory>
#include <utility>
#include <vector>

#include "layouts/column_vector_layout.h"
#include "layouts/condition_list_layout.h"

namespace QB {
namespace {

using namespace Component::SQL;
using QBComponentsListLayout_Private::ColumnVectorLayout;
using QBComponentsListLayout_Private::ConditionListLayout;

/// A chain in which every tenth link is a bracket around the next nine.
class Conditions {
public:
    using Layout = ConditionListLayout;
    explicit Conditions(int count) : layout(&m_root) {
        for (int i = 0; i < count; ++i) {
            const bool isBracket = i % 10 == 9;
            if (!isBracket) prepend(make());
            if (isBracket) prepend(new SQLBracketedConditionComponent);
            if (isBracket) takeIn(*dynamic_cast<SQLBracketedConditionComponent*>(m_root), 9);
        }
    }
    ~Conditions() { delete m_root; }
    Conditions(const Conditions&) = delete;
    Conditions& operator=(const Conditions&) = delete;

    static SQLAbstractConditionComponent* make() { return new SQLConditionValueComponent; }

private:
    void prepend(SQLAbstractConditionComponent* link) {
        link->next = m_root;
        m_root = link;
    }

    static void takeIn(SQLBracketedConditionComponent& bracket, int count) {
        SQLAbstractConditionComponent** end = &bracket.next;
        for (int i = 0; i < count; ++i)
            end = &(*end)->next;
        bracket.inner = std::exchange(bracket.next, std::exchange(*end, nullptr));
    }

    SQLAbstractConditionComponent* m_root = nullptr;

public:
    Layout layout;
};

class Columns {
public:
    using Layout = ColumnVectorLayout;
    explicit Columns(int count) : layout(&m_columns) {
        for (int i = 0; i < count; ++i)
            m_columns.push_back(make());
    }
    ~Columns() {
        for (SQLAbstractColumnComponent* column : m_columns)
            delete column;
    }
    Columns(const Columns&) = delete;
    Columns& operator=(const Columns&) = delete;

    static SQLAbstractColumnComponent* make() { return new SQLFieldColumnComponent; }

private:
    std::vector<SQLAbstractColumnComponent*> m_columns;

public:
    Layout layout;
};

template <typename Structure>
void rebuild(benchmark::State& state) {
    Structure structure(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        structure.layout.rebuildItems();
        structure.layout.updateItemFlags();
    }
}

template <typename Structure>
void insertAndRemoveOne(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    Structure structure(count);
    structure.layout.rebuildItems();
    for (auto _ : state) {
        const auto rows = structure.layout.insertItem(Structure::make(), count / 2);
        structure.layout.updateItemFlags();
        structure.layout.removeItem_internal(rows.front());
        structure.layout.updateItemFlags();
        benchmark::DoNotOptimize(structure.layout.takeDetachedParts());
    }
}

template <typename Structure>
void removeEverySecond(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto structure = std::make_unique<Structure>(static_cast<int>(state.range(0)));
        structure->layout.rebuildItems();
        std::vector<QBComponentsListLayoutItem*> rows;
        for (std::size_t i = 0; i < structure->layout.items().size(); i += 2)
            rows.push_back(structure->layout.items()[i]);
        state.ResumeTiming();
        structure->layout.removeItems_internal(rows);
        structure->layout.updateItemFlags();
        state.PauseTiming();
        structure.reset();
        state.ResumeTiming();
    }
}

#define ROWS_BENCHMARK(edit) \
    BENCHMARK(edit)->RangeMultiplier(10)->Range(1'000, 100'000)->Unit(benchmark::kMillisecond)

ROWS_BENCHMARK(rebuild<Conditions>);
ROWS_BENCHMARK(rebuild<Columns>);
ROWS_BENCHMARK(insertAndRemoveOne<Conditions>);
ROWS_BENCHMARK(insertAndRemoveOne<Columns>);
ROWS_BENCHMARK(removeEverySecond<Conditions>);
ROWS_BENCHMARK(removeEverySecond<Columns>);

}  // namespace
}  // namespace QB
