// The whole builder, shown in a window with a preview, 1,000 tables of 10 columns in the object
// tree and 200 joined tables in the query: from the last event of an edit until everything shows
// it. That is all that was posted, the workers, the step of the history, the text in the preview
// and the paint events of the next frame; but not how long the preview waits for its timer. Each
// run is checked: the text or the arrangement has changed, the preview shows it, and something was
// painted.
//
// "median_ms" and "p99_ms" are milliseconds of the processor, all threads together, since others
// that run do not stretch those as much as the ones of the clock ("clock_median_ms",
// "clock_p99_ms"). They are meant to be at most 16 and 50; those of a layer of 200 tables that is
// opened, at most 300.
//
// Rooms: frame
// Libraries: Qt5::Test

#include <benchmark/benchmark.h>

#include <QScrollBar>
#include <QTabWidget>
#include <QUndoStack>
#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

#include "builder/monkey_desk.h"
#include "frame/highlighting_query_preview_panel_widget.h"
#include "frame/sql_text_view.h"
#include "platform/lumo/lumo_control.h"
#include "platform/tolk/tolk.h"
#include "support/application.h"

namespace QB {
namespace {

using namespace DiagramLumo;
using Test::DiagramPlaces;

constexpr int tablesInCatalogue = 1000;
constexpr int fieldCount = 10;

QString tableName(int number) {
    return QStringLiteral("table%1").arg(number);
}

/// Each table joined to one of those before it.
QString joinedTables(int count) {
    QString text = "table0";
    for (int i = 1; i < count; ++i)
        text += QString(" INNER JOIN %1 ON %1.c0 = %2.c1").arg(tableName(i), tableName(i / 3));
    return text;
}

/// A query with something in each clause.
QString query(int tables) {
    return "SELECT table0.c0, table1.c1 + 1 AS x FROM " + joinedTables(tables) +
           " WHERE table1.c2 = 1 AND table2.c3 > 2 GROUP BY table0.c0 HAVING COUNT(table0.c0) > 1"
           " ORDER BY table0.c0 LIMIT 10";
}

/// Counts the paint events of a widget.
class PaintCount : public QObject {
public:
    explicit PaintCount(QWidget* widget) { widget->installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

/// The builder in a window of 1600 x 1000.
class Desk : public Test::MonkeyDesk {
public:
    Desk(const QString& text, int tables) : MonkeyDesk(Test::Delivery::Later), m_tables(tables) {
        m_preview = new QBHighlightingQueryPreviewPanelWidget;
        builder->setQueryPreviewPanel(m_preview);
        window.resize(1600, 1000);
        loadCatalogue();
        parse(text);
        lookAtPage();
        finish();
        canvasPaints = std::make_unique<PaintCount>(places().view()->viewport());
        previewPaints =
            std::make_unique<PaintCount>(m_preview->findChild<QBSqlTextView*>()->viewport());
    }

    /// Lets everything arrive and shows it.
    void finish() {
        arrive();
        m_preview->updatePreviewQuery();  // what its timer does
        arrive();
    }
    /// What is drawn and in the preview is what the query says.
    bool showsQuery() const {
        const QString shown = m_preview->findChild<QBSqlTextView*>()->toPlainText();
        const auto isItem = [](const auto& part) {
            return !part.isJoin;
        };
        const auto parts = panel()->drawer()->drawnComponents();
        return shown.simplified() == text() &&
               places().diagram()->items().size() ==
                   std::size_t(std::count_if(parts.begin(), parts.end(), isItem));
    }

    int tables() const { return m_tables; }
    /// In sight.
    QBLumoItem* item(int number) {
        const auto items = places().diagram()->items();
        QBLumoItem* const found = items[std::size_t(number) % items.size()];
        places().view()->getControl()->scrollToVisible(found->getRect(), true);
        places().diagram()->layout();
        arrive();
        return found;
    }
    QPoint inWindow(QPoint inView) const {
        return places().view()->viewport()->mapTo(&window, inView);
    }
    void clickCanvas(QPoint point, Qt::MouseButton button = Qt::LeftButton) {
        clickAt(places().view()->viewport(), point, button);
    }
    /// Presses and moves, but for the last step. Places in the window.
    void drag(QPoint from, QPoint to) {
        QWindow* const handle = window.windowHandle();
        QTest::mouseMove(handle, from);
        QTest::mousePress(handle, Qt::LeftButton, {}, from);
        for (int step = 1; step <= 3; ++step)
            QTest::mouseMove(handle, from + (to - from) * step / 4);
        m_draggedTo = to;
    }
    void drop() { QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, m_draggedTo); }
    QPoint boxPlace(QBLumoItem* of, std::size_t row) const {
        of->getBody()->scrollToRow(row);
        places().diagram()->layout();
        return places().boxPlace(of, row);
    }

    std::unique_ptr<PaintCount> canvasPaints;
    std::unique_ptr<PaintCount> previewPaints;

private:
    void arrive() {
        for (int i = 0; i < 2; ++i) {
            host.finishAll();
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    void loadCatalogue() {
        Test::FakeServer::Objects fields;
        for (int i = 0; i < fieldCount; ++i)
            fields.emplace_back("c" + std::to_string(i), IdentifierTypeField);
        server.setTables("main", tablesInCatalogue);
        engine->addRefreshIdentifierCandidateChildrenRequest(std::vector<std::string>{"main"},
                                                             true);
        for (int i = 0; i < tablesInCatalogue; ++i) {
            const std::string name = tableName(i).toStdString();
            server.set("main." + name, fields);
        }
        engine->refreshRequestedIdentifierCandidateChildren(true);
        arrive();
        for (int i = 0; i < tablesInCatalogue; ++i)
            engine->addRefreshIdentifierCandidateChildrenRequest(
                {"main", tableName(i).toStdString()}, true);
        engine->refreshRequestedIdentifierCandidateChildren(true);
        arrive();
        tree()->expandAll();
    }

    const int m_tables;
    QPoint m_draggedTo;
    QBHighlightingQueryPreviewPanelWidget* m_preview;  // not owned: the builder's
};

// ---- edits
// ----------------------------------------------------------------------------------------

enum Page { Select, From, Where, GroupBy, Having, OrderBy, Limit };

/// Types what is new in run @p run.
void typeNumber(Desk& desk, int run) {
    desk.press("Ctrl+A");
    desk.type("1+" + QString::number(run + 10));
}
void typeName(Desk& desk, int run) {
    desk.press("Ctrl+A");
    desk.type("x" + QString::number(run));
}
void pressReturn(Desk& desk, int) {
    desk.press("Return");
}
void pressCtrlReturn(Desk& desk, int) {
    desk.press("Ctrl+Return");
}

void openExpression(Desk& desk, int run) {
    desk.run("click 1 main");
    typeNumber(desk, run);
}
void openSourceAlias(Desk& desk, int run) {
    desk.run(QString("click %1 alias").arg(run % desk.tables() * 2));
    typeName(desk, run);
}
void openValue(Desk& desk, int run) {
    desk.run("click 0 right");
    typeNumber(desk, run);
}
void openAdding(Desk& desk, int) {
    desk.run("click 0 add");
}
void pickField(Desk& desk, int run) {
    desk.pick(tableName(run % desk.tables()) + ".c4");
}
void openLimit(Desk& desk, int run) {
    desk.step("limit clicklabel_rowCount");
    desk.press("Ctrl+A");
    desk.type(QString::number(run + 20));
}

void findBox(Desk& desk, int run) {
    desk.item(run);
}
void clickBox(Desk& desk, int run) {
    QBLumoItem* const item = desk.places().diagram()->items()[std::size_t(run % desk.tables())];
    desk.clickCanvas(desk.boxPlace(item, 5));
}

/// Another item of which a row is in sight.
QPoint rowOfNeighbour(Desk& desk, const QBLumoItem* item, std::size_t row) {
    const QRect shown = desk.places().view()->viewport()->rect().adjusted(8, 8, -8, -8);
    for (QBLumoItem* other : desk.places().diagram()->items())
        if (other != item && shown.contains(desk.places().rowPlace(other, row)))
            return desk.places().rowPlace(other, row);
    return {};
}
void dragLink(Desk& desk, int run) {
    for (int i = 0; i < 8 && run == 0; ++i)
        desk.builder->canvasCommands()->zoomOut();
    QBLumoItem* const item = desk.item(run);
    const QPoint from = desk.inWindow(desk.places().rowPlace(item, 3));
    const QPoint to = rowOfNeighbour(desk, item, 4);
    desk.drag(from, desk.inWindow(to));
}
void drop(Desk& desk, int) {
    desk.drop();
}

void selectItem(Desk& desk, int run) {
    desk.clickCanvas(desk.places().titlePlace(desk.item(run)));
}
void pressDelete(Desk& desk, int) {
    desk.press("Del");
}
void pressArrow(Desk& desk, int run) {
    desk.press(run % 2 ? "Right" : "Left");
}
void dragItem(Desk& desk, int run) {
    const QPoint from = desk.inWindow(desk.places().titlePlace(desk.item(run)));
    desk.drag(from, from + QPoint(40, 40));
}
void openItemAlias(Desk& desk, int run) {
    desk.clickCanvas(desk.places().titlePlace(desk.item(run)), Qt::RightButton);
    desk.settle();
    desk.choose(Tolk::localize(Tolk::TextCanvasEditAlias));
    typeName(desk, run);
}
void addTable(Desk& desk, int run) {
    const std::string name = tableName(desk.tables() + run).toStdString();
    desk.panel()->addIdentifierCandidateToDiagram(
        desk.live()->findChildCandidate(desk.live()->findChildCandidate(nullptr, "main"), name));
}

void editSource(Desk& desk, int run) {
    if (run % 2) return;
    openSourceAlias(desk, run);
    pressReturn(desk, run);
}
void removeItem(Desk& desk, int run) {
    if (run % 2) return;
    if (run > 0) desk.builder->undoStack()->undo();
    selectItem(desk, run);
    pressDelete(desk, run);
}
void undoOrRedo(Desk& desk, int run) {
    QUndoStack* const stack = desk.builder->undoStack();
    run % 2 ? stack->redo() : stack->undo();
}

void parseText(Desk& desk, int run) {
    desk.live()->parseQuery(
        query(desk.tables()).replace("> 2", "> " + QString::number(run)).toStdString(), {});
}

enum class After { Keep, Undo };
using Act = void (*)(Desk&, int);
struct Kind {
    const char* name;
    int page;
    Act prepare;  ///< not measured; may be null
    Act act;
    After after = After::Keep;
};
const Kind kinds[] = {
    {"SELECT: an expression", Select, openExpression, pressCtrlReturn},
    {"FROM: an alias", From, openSourceAlias, pressReturn},
    {"WHERE: a value", Where, openValue, pressCtrlReturn},
    {"GROUP BY: another column", GroupBy, openAdding, pickField, After::Undo},
    {"ORDER BY: another column", OrderBy, openAdding, pickField, After::Undo},
    {"LIMIT: a number", Limit, openLimit, pressReturn},
    {"diagram: a tick", Select, findBox, clickBox},
    {"diagram: a link, dropped", From, dragLink, drop, After::Undo},
    {"diagram: an item removed", From, selectItem, pressDelete, After::Undo},
    {"diagram: an item moved by key", From, selectItem, pressArrow},
    {"diagram: an item moved, dropped", From, dragItem, drop},
    {"diagram: an alias", From, openItemAlias, pressReturn},
    {"diagram: a table added", From, nullptr, addTable, After::Undo},
    {"undo or redo of an alias", From, editSource, undoOrRedo},
    {"undo or redo of a removal", From, removeItem, undoOrRedo},
    {"a text, parsed", From, nullptr, parseText},
};

// ---- measuring
// ------------------------------------------------------------------------------------

double milliseconds(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

struct Times {
    std::vector<double> processor;  ///< milliseconds
    std::vector<double> clock;

    template <typename Action>
    double add(const Action& action) {
        const double begun = milliseconds(CLOCK_MONOTONIC);
        const double used = milliseconds(CLOCK_PROCESS_CPUTIME_ID);
        action();
        processor.push_back(milliseconds(CLOCK_PROCESS_CPUTIME_ID) - used);
        clock.push_back(milliseconds(CLOCK_MONOTONIC) - begun);
        return processor.back();
    }
    void tell(benchmark::State& state) {
        state.counters["median_ms"] = percentile(processor, 0.5);
        state.counters["p99_ms"] = percentile(processor, 0.99);
        state.counters["clock_median_ms"] = percentile(clock, 0.5);
        state.counters["clock_p99_ms"] = percentile(clock, 0.99);
    }

private:
    static double percentile(std::vector<double>& times, double part) {
        std::sort(times.begin(), times.end());
        return times[std::size_t(part * double(times.size() - 1))];
    }
};

/// What an edit changes: the text, the aliases, the order, and where everything stands.
std::string standing(const Desk& desk) {
    std::string all = desk.text().toStdString();
    for (const auto& entry : desk.panel()->arrangement().entries)
        all +=
            ' ' + std::to_string(entry.rect.origin.x) + ',' + std::to_string(entry.rect.origin.y);
    return all;
}

__attribute__((noinline)) void measuredEdit(Desk& desk, const Kind& kind, int run) {
    kind.act(desk, run);
    desk.finish();
}

void edits(benchmark::State& state) {
    Test::needApplication();
    const Kind& kind = kinds[state.range(0)];
    const int tables = int(state.range(1));
    Desk desk(query(tables), tables);
    desk.openPage(kind.page);
    Times times;
    int run = 0;
    for (auto _ : state) {
        if (kind.prepare) kind.prepare(desk, run);
        desk.finish();
        const std::string before = standing(desk);
        const int step = desk.builder->undoStack()->index();
        desk.canvasPaints->count = desk.previewPaints->count = 0;
        state.SetIterationTime(times.add([&] { measuredEdit(desk, kind, run); }) / 1000);
        if (standing(desk) == before && desk.builder->undoStack()->index() == step)
            return state.SkipWithError("the edit changed nothing");
        if (!desk.showsQuery()) return state.SkipWithError("the edit is not shown");
        if (desk.canvasPaints->count + desk.previewPaints->count == 0)
            return state.SkipWithError("nothing was painted");
        if (kind.after == After::Undo) desk.builder->undoStack()->undo();
        desk.finish();
        ++run;
    }
    state.SetLabel(kind.name);
    times.tell(state);
}
void eachKind(benchmark::internal::Benchmark* bench) {
    for (std::size_t kind = 0; kind < std::size(kinds); ++kind)
        bench->Args({int(kind), 200});
    for (const int tables : {50, 100, 400})
        bench->Args({1, tables})->Args({6, tables});
}
BENCHMARK(edits)->Apply(eachKind)->UseManualTime()->Iterations(200)->Unit(benchmark::kMillisecond);
// For bench/gates.py.
BENCHMARK(edits)->Name("gatedEdits")->Args({1, 50})->Args({1, 200})->UseManualTime()->Iterations(3);

__attribute__((noinline)) void measuredLayer(Desk& desk, QPoint place) {
    QTest::mouseDClick(desk.window.windowHandle(), Qt::LeftButton, {}, place);
    desk.finish();
}

/// Into a subquery of 200 tables by a double click, for the first time.
void openLayer(benchmark::State& state) {
    Test::needApplication();
    const int tables = int(state.range(0));
    Times times;
    for (auto _ : state) {
        Desk desk("SELECT s.c0 FROM ( SELECT table0.c0 FROM " + joinedTables(tables) + " ) AS s",
                  1);
        const QPoint place = desk.inWindow(desk.places().titlePlace(desk.item(0)));
        state.SetIterationTime(times.add([&] { measuredLayer(desk, place); }) / 1000);
        if (desk.places().diagram()->items().size() != std::size_t(tables))
            state.SkipWithError("not all tables are drawn");
    }
    times.tell(state);
}
BENCHMARK(openLayer)->Arg(100)->Arg(200)->Arg(400)->UseManualTime()->Iterations(5)->Unit(
    benchmark::kMillisecond);

}  // namespace
}  // namespace QB
