// What opening and filtering a chooser of tables costs with very many of them, the tree included.
//
// Rooms: popups

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QLineEdit>
#include <QTreeWidget>

#include "model/components.h"
#include "popups/column_choice_host.h"
#include "popups/column_selection_popup_widget.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"
#include "widgets/panel_widget.h"

namespace QB {
namespace {

class Panel : public QBPanelWidget, public IQBColumnChoiceHost {
public:
    QBColumnChoice columnChoice() const override { return QBColumnChoice::Sources; }
    std::vector<Component::SQL::SQLAbstractSourceComponent*> choiceSources() const override {
        return {};
    }
};

/// A panel over one schema with @p count tables, all loaded.
struct Desk {
    explicit Desk(std::size_t count) {
        engine->setCurrentSchema("main");
        QBEngineIdentifierCandidateAccessor accessor(engine->core());
        QBIdentifierCandidate* schema = accessor.addChild(nullptr);
        accessor.setName(schema, "main");
        for (std::size_t i = 0; i < count; ++i) {
            QBIdentifierCandidate* table = accessor.addChild(schema);
            accessor.setName(table, "table" + std::to_string(i));
            accessor.setType(table, IdentifierTypeTable);
        }
        panel.setEngine(engine.get());
        edited.name = "table" + std::to_string(count / 2);
    }

    Test::HostCallbacks host;
    Test::OwnedEngine<> engine{DatabaseTypeSQLite};
    Panel panel;
    Component::SQL::SQLIdentifierSourceComponent edited;
};

/// Opens it with a table in the middle selected and scrolled to.
void openChooser(benchmark::State& state) {
    Desk desk(std::size_t(state.range(0)));
    for (auto _ : state) {
        QBColumnSelectionPopupWidget chooser(&desk.panel, nullptr, &desk.edited, nullptr, nullptr);
        chooser.show();
        QCoreApplication::processEvents();
        if (!chooser.hasChoice()) state.SkipWithError("nothing is selected");
    }
}

/// One letter that all tables contain, and its end.
void filterChooser(benchmark::State& state) {
    Desk desk(std::size_t(state.range(0)));
    QBColumnSelectionPopupWidget chooser(&desk.panel, nullptr, nullptr, nullptr, nullptr);
    chooser.show();
    for (auto _ : state) {
        for (const char* text : {"a", "9", ""}) {
            chooser.filterLineEdit()->setText(text);
            QCoreApplication::processEvents();
        }
    }
}

BENCHMARK(openChooser)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(filterChooser)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace QB

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
