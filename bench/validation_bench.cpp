// What a check of a statement costs: the columns of its SELECT list, and a chain of as many
// conditions, against the candidates of the server, at n and 2n. The goal is 50 ms for 10,000
// columns against 100,000 candidates.
//
// Rooms: tools

#include <benchmark/benchmark.h>

#include "model/element_expressions.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"
#include "tools/validation.h"

namespace QB {
namespace {

using namespace Component::SQL;

/// How the candidates and the columns are spread.
struct Shape {
    int tables;
    int fieldsOfTable;
    int sources;  ///< of the statement, on the first tables
    int columns;
};

/// A schema of tables, and a statement on some of them; each second column names no field.
class Query {
public:
    explicit Query(const Shape& shape) {
        m_engine->setCurrentSchema("shop");
        QBIdentifierCandidate* schema = candidate(nullptr, "shop");
        for (int i = 0; i < shape.tables; ++i) {
            QBIdentifierCandidate* table = candidate(schema, tableName(i));
            for (int j = 0; j < shape.fieldsOfTable; ++j)
                candidate(table, "delivery_address_" + std::to_string(j));
        }
        addSources(shape.sources);
        for (int i = 0; i < shape.columns; ++i)
            addColumn(i, shape.fieldsOfTable);
    }

    void checkColumns() {
        m_columns = Tools::Validation::invalidateRefComponents_selectColumn(
            ElementSelectColumn, m_engine.get(), this, &m_columns);
    }
    void checkConditions() {
        m_conditions = Tools::Validation::invalidateConditionComponents(
            &statement()->whereExpr->root, ElementWhere, m_engine.get(), this, &m_conditions);
    }
    std::size_t faults() const { return m_columns.size() + m_conditions.size(); }

private:
    SQLSelectStmtComponent* statement() const {
        return dynamic_cast<SQLSelectStmtComponent*>(m_engine->currentTopLevelQueryComponent());
    }
    static std::string tableName(int i) { return "customer_orders_" + std::to_string(i); }

    QBIdentifierCandidate* candidate(QBIdentifierCandidate* parent, const std::string& name) {
        QBIdentifierCandidate* child = m_accessor.addChild(parent);
        m_accessor.setName(child, name);
        return child;
    }

    void addSources(int count) {
        SourceNode*& root = statement()->sourceExpr->root;
        for (int i = 0; i < count; ++i) {
            auto* source = new SQLIdentifierSourceComponent;
            source->name = tableName(i);
            m_sources.push_back(source);
            auto* leaf = new SourceNode;
            leaf->value = source;
            if (root) {
                auto* comma = new SourceNode;
                comma->value = new SQLJoinSourceNodeComponent;
                comma->left = root;
                comma->right = leaf;
                root = comma;
            } else {
                root = leaf;
            }
        }
    }

    SQLFieldColumnComponent* field(int i, int fieldsOfTable) {
        auto* column = new SQLFieldColumnComponent;
        auto* const source = m_sources[std::size_t(i) % m_sources.size()];
        // Half of them by reference, half by path.
        if (i % 4 < 2) column->source = source;
        column->parentPath = {source->name};
        column->fieldName =
            "delivery_address_" + std::to_string(i % 2 == 0 ? i % fieldsOfTable : -i);
        return column;
    }

    void addColumn(int i, int fieldsOfTable) {
        statement()->selectColumnExpr->columns.push_back(field(i, fieldsOfTable));
        auto* compare = new SQLCompareConditionComponent;
        auto* value = new SQLConditionValueComponent;
        compare->leftValue = value;
        value->values = {field(i, fieldsOfTable)};
        compare->compareOp = CompareOpIsNull;
        *m_end = compare;
        m_end = &compare->next;
    }

    Test::HostCallbacks m_host;
    Test::OwnedEngine<> m_engine{DatabaseTypeSQLite};
    QBEngineIdentifierCandidateAccessor m_accessor{m_engine->core()};
    std::vector<SQLIdentifierSourceComponent*> m_sources;
    SQLAbstractConditionComponent** m_end = &statement()->whereExpr->root;
    Tools::Validation::InvalidColumns m_columns;
    Tools::Validation::InvalidConditions m_conditions;
};

void measure(benchmark::State& state, const Shape& shape, void (Query::*check)()) {
    Query query(shape);
    for (auto _ : state)
        (query.*check)();
    state.counters["faults"] = double(query.faults());
}

/// @p state ranges over the thousands of columns, with ten times as many candidates.
int thousands(const benchmark::State& state) {
    return static_cast<int>(state.range(0)) * 1000;
}

void columnsOfOneWideTable(benchmark::State& state) {
    const int n = thousands(state);
    measure(state, {1, 10 * n, 1, n}, &Query::checkColumns);
}

void columnsOfManyTables(benchmark::State& state) {
    const int n = thousands(state);
    measure(state, {n / 10, 100, n / 10, n}, &Query::checkColumns);
}

void columnsInAWideSchema(benchmark::State& state) {
    const int n = thousands(state);
    measure(state, {10 * n, 1, 20, n}, &Query::checkColumns);
}

void conditionsOfManyTables(benchmark::State& state) {
    const int n = thousands(state);
    measure(state, {n / 10, 100, n / 10, n}, &Query::checkConditions);
}

#define CHECK_AT_N_AND_2N(name) BENCHMARK(name)->Arg(10)->Arg(20)->Unit(benchmark::kMillisecond)
CHECK_AT_N_AND_2N(columnsOfOneWideTable);
CHECK_AT_N_AND_2N(columnsOfManyTables);
CHECK_AT_N_AND_2N(columnsInAWideSchema);
CHECK_AT_N_AND_2N(conditionsOfManyTables);

}  // namespace
}  // namespace QB
