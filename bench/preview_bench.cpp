// Rooms: frame
// Libraries: Qt5::Widgets
//
// The preview with texts of megabytes: a whole text set and shown, and a small edit in one.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <string>

#include "frame/highlighting_query_preview_panel_widget.h"
#include "frame/sql_text_view.h"
#include "support/host_callbacks.h"

namespace {

/// One application and one set of host callbacks for all runs, offscreen.
struct Desktop {
    Desktop() { QCoreApplication::processEvents(); }

    int argc = 1;
    char name[14] = "preview_bench";
    char* argv[2] = {name, nullptr};
    const bool isOffscreen = qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application{argc, argv};
    QB::Test::HostCallbacks host;
};

Desktop& desktop() {
    static Desktop theDesktop;
    return theDesktop;
}

std::string sqlText(std::size_t megabytes) {
    std::string text = "SELECT\n";
    for (int i = 0; text.size() < megabytes * 1'000'000; ++i)
        text += "\tt.column_" + std::to_string(i) + " AS 'text of the column', -- number " +
                std::to_string(i) + "\n";
    return text + "FROM\n\tt";
}

/// What one generation costs the main thread: the text set and the visible part painted.
void showText(QB::QBSqlTextView& view, const std::string& text) {
    view.setSqlText(text);
    view.repaint();
    QCoreApplication::processEvents();
}

void setAndPaintText(benchmark::State& state) {
    desktop();
    const std::string text = sqlText(static_cast<std::size_t>(state.range(0)));
    QB::QBSqlTextView view;
    view.setFamily(QB::DatabaseTypePostgreSQL);
    view.resize(800, 600);
    view.show();
    for (auto _ : state) {
        showText(view, text);
        state.PauseTiming();
        showText(view, "");
        state.ResumeTiming();
    }
    state.counters["colored_lines_per_run"] =
        benchmark::Counter(view.coloredLineCount(), benchmark::Counter::kAvgIterations);
}

void editInTheMiddle(benchmark::State& state) {
    desktop();
    const std::string before = sqlText(static_cast<std::size_t>(state.range(0)));
    std::string after = before;
    after.replace(after.find("column", after.size() / 2), 6, "renamed");
    QB::QBSqlTextView view;
    view.setFamily(QB::DatabaseTypePostgreSQL);
    view.resize(800, 600);
    view.show();
    showText(view, before);
    bool isAfter = false;
    for (auto _ : state) {
        isAfter = !isAfter;
        showText(view, isAfter ? after : before);
    }
}

void markAComponent(benchmark::State& state) {
    desktop();
    const std::string text = sqlText(static_cast<std::size_t>(state.range(0)));
    QB::QBHighlightingQueryPreviewPanelWidget preview;
    preview.setPreviewQuery(text);
    preview.show();
    const auto end = static_cast<std::int32_t>(text.size());
    std::int32_t location = 0;
    for (auto _ : state) {
        location = (location + end / 3) % (end - 10);
        preview.highlightText(QB::QBAbstractQueryPreviewPanelWidget::HighlightTypeFocusedComponent,
                              {{location, 10}});
    }
}

BENCHMARK(setAndPaintText)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(editInTheMiddle)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(markAComponent)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

}  // namespace
