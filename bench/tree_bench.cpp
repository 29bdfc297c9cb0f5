// From the host's updater to visible rows: how long the object tree takes for a schema of many
// tables, and how long it keeps the event loop from turning meanwhile. The counter "gap_ms" is the
// longest time between two turns, "busy_ms" the longest that the thread itself was at work between
// two turns: on a machine that does other things, too, only that one says what our code costs.
//
// Rooms: diagrampanel

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTimer>
#include <QTreeWidget>
#include <algorithm>
#include <ctime>
#include <functional>

#include "diagrampanel/diagram_object_tree_panel_widget.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"

namespace QB {
namespace {

/// Milliseconds between two turns of the event loop.
struct Gap {
    double whole = 0;
    double busy = 0;

    void take(const Gap& other) {
        whole = std::max(whole, other.whole);
        busy = std::max(busy, other.busy);
    }
    void report(benchmark::State& state) const {
        state.counters["gap_ms"] = whole;
        state.counters["busy_ms"] = busy;
    }
};

double threadTime() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

/// Counts the longest time between two turns of the event loop.
class Heart {
public:
    Heart() {
        QObject::connect(&m_timer, &QTimer::timeout, [this] { beat(); });
        m_timer.start(0);
    }

    Gap turnUntil(const std::function<bool()>& isDone) {
        m_longest = {};
        start();
        while (!isDone())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        beat();
        return m_longest;
    }

private:
    void start() {
        m_sinceBeat.start();
        m_threadTime = threadTime();
    }
    void beat() {
        m_longest.take({double(m_sinceBeat.nsecsElapsed()) / 1e6, threadTime() - m_threadTime});
        start();
    }

    QTimer m_timer;
    QElapsedTimer m_sinceBeat;
    double m_threadTime = 0;
    Gap m_longest;
};

/// A tree over an engine whose one schema has that many tables.
struct Tree {
    explicit Tree(int tables) {
        QObject::connect(&pump, &QTimer::timeout, [this] { host.runPending(); });
        pump.start(0);
        engine->registerIdentifierCandidateChildrenUpdater(
            [tables](IQBIdentifierCandidateAccessor* accessor, QBIdentifierCandidate* node) {
                accessor->clearChildren(node);
                for (int i = 0; i < (node ? tables : 1); ++i) {
                    QBIdentifierCandidate* child = accessor->addChild(node);
                    accessor->setName(child, "customer_orders_" + std::to_string(i));
                    accessor->setType(child, node ? IdentifierTypeTable : IdentifierTypeSchema);
                }
            });
        panel.setEngine(engine.get());
        panel.resize(300, 800);
        panel.show();
        load({});
        heart.turnUntil([this] { return tree->topLevelItemCount() == 1 && panel.isSettled(); });
        tree->topLevelItem(0)->setExpanded(true);
        waitForRows(tables);
    }
    ~Tree() { host.finishWorkers(); }

    void load(const std::vector<std::string>& path) {
        engine->addRefreshIdentifierCandidateChildrenRequest(path, true);
        engine->refreshRequestedIdentifierCandidateChildren(true);
    }
    Gap waitForRows(int count) {
        return heart.turnUntil([this, count] {
            const QTreeWidgetItem* schema = tree->topLevelItem(0);
            return schema && schema->childCount() == count && panel.isSettled();
        });
    }

    Test::HostCallbacks host;
    QTimer pump;
    Heart heart;
    Test::OwnedEngine<> engine{DatabaseTypeSQLite};
    QBDiagramObjectTreePanelWidget panel;
    QTreeWidget* tree = panel.findChild<QTreeWidget*>("diagramPaneObjectTreeWidget");
    QLineEdit* filter = panel.findChild<QLineEdit*>("filterLineEdit");
};

void reload(benchmark::State& state, const std::vector<std::string>& path) {
    const int tables = static_cast<int>(state.range(0));
    Tree desk(tables);
    Gap gap;
    for (auto _ : state) {
        desk.load(path);
        gap.take(desk.heart.turnUntil([&] {
            const QTreeWidgetItem* schema = desk.tree->topLevelItem(0);
            return !schema || schema->childCount() == 0;
        }));
        gap.take(desk.waitForRows(tables));
    }
    gap.report(state);
}

void reloadSchema(benchmark::State& state) {
    reload(state, {"customer_orders_0"});
}
BENCHMARK(reloadSchema)->Arg(100'000)->Arg(200'000)->Unit(benchmark::kMillisecond)->UseRealTime();

void reloadEverything(benchmark::State& state) {
    reload(state, {});
}
BENCHMARK(reloadEverything)
    ->Arg(100'000)
    ->Arg(200'000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

/// Few rows match, then all come back.
void filterAndClear(benchmark::State& state) {
    const int tables = static_cast<int>(state.range(0));
    Tree desk(tables);
    Gap gap;
    for (auto _ : state) {
        desk.filter->setText(QStringLiteral("orders_777"));
        gap.take(desk.heart.turnUntil([&] {
            return desk.tree->topLevelItem(0)->childCount() < tables && desk.panel.isSettled();
        }));
        desk.filter->clear();
        gap.take(desk.waitForRows(tables));
    }
    gap.report(state);
}
BENCHMARK(filterAndClear)->Arg(100'000)->Arg(200'000)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace QB

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
