// A panel over a long chain of conditions: what a refresh costs, for the rows that show.
// Rooms: conditions

#include <benchmark/benchmark.h>

#include <QApplication>

#include "conditions/condition_builder_panel_widget.h"
#include "layouts/condition_chain_surgery.h"
#include "support/late_host.h"
#include "support/owned_engine.h"

namespace {

using namespace QB;
using namespace QB::Component::SQL;

QApplication* application() {
    static int count = 1;
    static char name[] = "bench";
    static char* names[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static auto* const app = new QApplication(count, names);
    return app;
}

SQLAbstractConditionComponent* makeCondition(bool isValue) {
    auto* column = new SQLAnyExpressionColumnComponent;
    column->expression = "f(x)";
    auto* value = new SQLConditionValueComponent;
    value->values.push_back(column);
    value->logicGate = SQLLogicGateAnd;
    if (isValue) return value;
    auto* compare = new SQLCompareConditionComponent;
    compare->leftValue = value;
    compare->logicGate = SQLLogicGateAnd;
    return compare;
}

/// Every second condition is a comparison, the others are values by themselves.
void refreshOfAChain(benchmark::State& state) {
    application();
    Test::LateHost host(Test::Delivery::AtOnce);
    Test::OwnedEngine<> engine(DatabaseTypeMySQL);
    QBConditionBuilderPanelWidget panel(nullptr);
    panel.setRelatedElements({ElementWhere});
    panel.resize(500, 300);
    panel.show();
    panel.setEngine(engine.get());
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLConditionExpr*>(
        ElementWhere, 0,
        [&state](ELEMSQLConditionExpr* where) {
            for (long i = 0; i < state.range(0); ++i)
                ConditionChain::insertLink(&where->root,
                                           ConditionChain::Link(makeCondition(i % 2 == 0)));
            return true;
        },
        nullptr);
    for (auto _ : state)
        panel.refreshUI(true);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(refreshOfAChain)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace
