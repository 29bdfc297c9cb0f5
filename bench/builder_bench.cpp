// The whole builder, with 1,000 tables of 10 columns in the catalogue and 200 joined tables in the
// query: from an edit until the window shows it, the clause panel in front and the diagram included
// (the preview follows on its own timer). Each kind of edit tells the median and the 99th
// percentile of its runs: at most 16 and 50 ms; opening a layer of 200 tables at most 300 ms.
//
// Rooms: frame

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QUndoStack>
#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/drawer/diagram_drawer_linux.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/view/canvas_commands.h"
#include "diagrampanel/diagram_panel_widget.h"
#include "diagrampanel/fake_server.h"
#include "frame/query_builder_widget.h"
#include "support/late_host.h"
#include "support/owned_engine.h"
#include "tools/join_tools.h"

namespace QB {
namespace {

using namespace Component::SQL;
using Clock = std::chrono::steady_clock;

constexpr int tablesInCatalogue = 1000;
constexpr int tablesInQuery = 200;

QApplication& application() {
    static int count = 1;
    static char name[] = "builder_bench";
    static char* arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication theApplication(count, arguments);
    return theApplication;
}

std::string tableName(int number) {
    return "table" + std::to_string(number);
}

/// Each table joined to one of those before it.
std::string joinedTables(int count) {
    std::string text = "SELECT table0.c0 FROM table0";
    for (int i = 1; i < count; ++i)
        text += " INNER JOIN " + tableName(i) + " ON " + tableName(i) +
                ".c0 = " + tableName(i / 3) + ".c1";
    return text;
}

/// A builder in a window of 1600 x 1000, and a host that runs main-thread work when it is settled.
class Desk {
public:
    explicit Desk(const std::string& text) {
        m_server.set("", {{"main", IdentifierTypeSchema}});
        m_server.setTables("main", tablesInCatalogue);
        Test::FakeServer::Objects fields;
        for (int i = 0; i < 10; ++i)
            fields.emplace_back("c" + std::to_string(i), IdentifierTypeField);
        for (int i = 0; i < tablesInCatalogue; ++i)
            m_server.set("main." + tableName(i), fields);
        engine->registerIdentifierCandidateChildrenUpdater(m_server.updater());
        engine->setCurrentSchema("main");
        builder.resize(1600, 1000);
        builder.setEngine(engine.get());
        builder.show();
        for (const std::vector<std::string>& path : {std::vector<std::string>{}, {"main"}})
            engine->addRefreshIdentifierCandidateChildrenRequest(path, true);
        engine->refreshRequestedIdentifierCandidateChildren(true);
        settle();
        engine->parseQuery(text, {});
        settle();
        panel = builder.findChild<QBDiagramPanelWidget*>();
    }
    ~Desk() { m_host.finishAll(); }

    void settle() {
        for (int i = 0; i < 3; ++i) {
            m_host.finishAll();
            QApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
    /// What the event loop of a host does, and no more: work that was posted, events, painting.
    void show() {
        m_host.deliver();
        QApplication::processEvents();
        m_host.deliver();
        QApplication::processEvents();
    }

    SQLSelectStmtComponent* statement() const {
        return dynamic_cast<SQLSelectStmtComponent*>(engine->currentTopLevelQueryComponent());
    }
    DiagramLumo::QBLumoItem* item(int number) const {
        return panel->drawer()->diagram()->items()[static_cast<std::size_t>(number)];
    }
    SQLAbstractSourceComponent* source(int number) const {
        return panel->drawer()->componentOf(item(number));
    }

private:
    Test::LateHost m_host{Test::Delivery::Later};
    Test::FakeServer m_server;

public:
    Test::OwnedEngine<QBEngine_LINUX> engine{DatabaseTypeMySQL};
    QBQueryBuilderWidget builder;
    QBDiagramPanelWidget* panel = nullptr;
};

void tick(Desk& desk, int run) {
    desk.item(run % tablesInQuery)->fireFieldSelection("c" + std::to_string(run % 7 + 2), run % 2);
}

void link(Desk& desk, int run) {
    Tools::SQL::makeJoinLinkIfNecessary(desk.engine.get(), desk.panel,
                                        desk.source(run % tablesInQuery), "c5",
                                        desk.source((run + 7) % tablesInQuery), "c6");
}

void alias(Desk& desk, int run) {
    desk.engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
        ElementSource, 0,
        [&](ELEMSQLSourceExpr*) {
            desk.source(run % tablesInQuery)->alias = "a" + std::to_string(run);
            return true;
        },
        nullptr);
}

void condition(Desk& desk, int run) {
    desk.engine->modifyInTopLevelQueryComponentElement<ELEMSQLConditionExpr*>(
        ElementWhere, 0,
        [&](ELEMSQLConditionExpr* where) {
            auto* value = new SQLAnyExpressionColumnComponent;
            value->expression = std::to_string(run);
            auto* left = new SQLConditionValueComponent;
            left->values.push_back(value);
            left->logicGate = SQLLogicGateAnd;
            left->next = where->root;
            where->root = left;
            return true;
        },
        nullptr);
}

void moveByKey(Desk& desk, int run) {
    auto* const diagram = desk.panel->drawer()->diagram();
    diagram->selectObject(desk.item(run % tablesInQuery), false);
    diagram->moveSelectedItems(run % 2 ? 10 : -10, 0);
}

void undo(Desk& desk, int run) {
    run % 2 ? desk.builder.undoStack()->redo() : desk.builder.undoStack()->undo();
}

using Edit = void (*)(Desk&, int);
struct Kind {
    const char* name;
    Edit edit;
    int tab;  ///< of the clause in front
};
constexpr Kind kinds[] = {{"tick a field, SELECT in front", tick, 0},
                          {"draw a link, FROM in front", link, 1},
                          {"change an alias, FROM in front", alias, 1},
                          {"add a condition, WHERE in front", condition, 2},
                          {"move an item", moveByKey, 0},
                          {"undo or redo a tick", undo, 0}};

double percentile(std::vector<double> times, double part) {
    std::sort(times.begin(), times.end());
    return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
}

void edits(benchmark::State& state) {
    application();
    const Kind& kind = kinds[state.range(0)];
    Desk desk(joinedTables(tablesInQuery));
    desk.builder.findChild<QTabWidget*>("tabWidget")->setCurrentIndex(kind.tab);
    if (kind.edit == undo) tick(desk, 1);
    desk.settle();
    std::vector<double> times;
    int run = 0;
    for (auto _ : state) {
        const auto begun = Clock::now();
        kind.edit(desk, run++);
        desk.show();
        const std::chrono::duration<double> took = Clock::now() - begun;
        times.push_back(took.count() * 1000);
        state.SetIterationTime(took.count());
        desk.settle();
    }
    state.SetLabel(kind.name);
    state.counters["median_ms"] = percentile(times, 0.5);
    state.counters["p99_ms"] = percentile(times, 0.99);
}
BENCHMARK(edits)->DenseRange(0, 5)->UseManualTime()->Iterations(200)->Unit(benchmark::kMillisecond);

/// Into a subquery of 200 tables for the first time, and back.
void openLayer(benchmark::State& state) {
    application();
    std::vector<double> times;
    for (auto _ : state) {
        Desk desk("SELECT s.c0 FROM (" + joinedTables(tablesInQuery) + ") AS s");
        auto* const derived = dynamic_cast<SQLSubquerySourceComponent*>(desk.source(0));
        const auto begun = Clock::now();
        desk.engine->pushNewLayerTopLevelQueryComponent(derived->subquery, "s");
        desk.show();
        const std::chrono::duration<double> took = Clock::now() - begun;
        times.push_back(took.count() * 1000);
        state.SetIterationTime(took.count());
        desk.settle();
        if (desk.panel->drawer()->diagram()->items().size() != tablesInQuery)
            state.SkipWithError("not all tables are drawn");
    }
    state.counters["median_ms"] = percentile(times, 0.5);
}
BENCHMARK(openLayer)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace QB
