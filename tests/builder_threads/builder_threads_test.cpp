// The whole builder in a window while workers parse, refresh, look up keys and write previews.
#include <gtest/gtest.h>

#include <QApplication>
#include <QUndoStack>
#include <atomic>
#include <functional>
#include <memory>
#include <vector>

#include "diagrampanel/diagram_panel_widget.h"
#include "diagrampanel/fake_server.h"
#include "frame/abstract_query_preview_panel_widget.h"
#include "frame/query_builder_widget.h"
#include "support/dice.h"
#include "support/late_host.h"
#include "support/owned_engine.h"

namespace QB::Test {
namespace {

const char* const texts[] = {
    "SELECT s.a FROM (SELECT t.a FROM t WHERE t.b = 1) AS s INNER JOIN u ON u.a = s.a",
    "SELECT * FROM t, u WHERE t.a IN (1, 2) ORDER BY u.d", "SELECT FROM", "SELECT t.b FROM t"};

QApplication& application() {
    static int count = 1;
    static char name[] = "builder_threads";
    static char* arguments[] = {name, nullptr};
    static QApplication theApplication(count, arguments);
    return theApplication;
}

/// What came to its end while the window lived.
struct Outcome {
    int parsed = 0;
    int searched = 0;
    int previewed = 0;
    int drawn = 0;
};

/// A host does all this at once, in an order of its own, and takes the builder and the engine away
/// whatever still goes on.
class Scene {
public:
    explicit Scene(int seed) : m_dice(seed), m_engine(DatabaseTypeMySQL) {
        using Objects = FakeServer::Objects;
        m_server.set("", Objects{{"main", IdentifierTypeSchema}});
        m_server.set("main", Objects{{"t", IdentifierTypeTable}, {"u", IdentifierTypeTable}});
        for (const char* const table : {"main.t", "main.u"})
            m_server.set(table, Objects{{"a", IdentifierTypeField}, {"d", IdentifierTypeField}});
        m_engine->registerIdentifierCandidateChildrenUpdater(m_server.updater());
        m_engine->registerForeignKeySearcher([this](const auto&, const auto&) {
            ++m_searched;
            return QBForeignKeys{{{"main", "t", "a"}, {"main", "u", "a"}}};
        });
        m_engine->setCurrentSchema("main");
        m_builder = std::make_unique<QBQueryBuilderWidget>();
        m_builder->setEngine(m_engine.get());
        m_builder->show();
        refresh();
        m_host.finishAll();
    }
    ~Scene() {
        const bool isEngineFirst = m_dice.isOneIn(2);
        if (isEngineFirst) m_engine.destroy();
        m_builder.reset();
        m_host.finishAll();
    }

    Outcome play(int steps) {
        const std::vector<std::function<void()>> all = {[this] { parse(); },
                                                        [this] { refresh(); },
                                                        [this] { addTable(); },
                                                        [this] { preview(); },
                                                        [this] { undo(); },
                                                        [this] {
                                                            changeLayer();
                                                        }};
        for (int i = 0; i < steps; ++i) {
            all[static_cast<std::size_t>(m_dice.pick(static_cast<int>(all.size())))]();
            if (m_dice.isOneIn(2)) m_host.deliver();
            QApplication::processEvents();
        }
        m_host.finishAll();
        QApplication::processEvents();
        const auto* const panel = m_builder->findChild<QBDiagramPanelWidget*>();
        m_outcome.drawn = static_cast<int>(panel->arrangement().entries.size());
        m_outcome.searched = m_searched;
        return m_outcome;
    }

private:
    void parse() {
        m_engine->parseQuery(texts[m_dice.pick(4)],
                             [this](bool isRead, QBRange) { m_outcome.parsed += isRead; });
    }
    void refresh() {
        m_engine->addRefreshIdentifierCandidateChildrenRequest(std::vector<std::string>{}, true);
        for (const std::vector<std::string>& path :
             {std::vector<std::string>{"main"}, {"main", "t"}, {"main", "u"}})
            m_engine->addRefreshIdentifierCandidateChildrenRequest(path, true);
        m_engine->refreshRequestedIdentifierCandidateChildren(true);
    }
    void addTable() {
        QBIdentifierCandidate* const schema = m_engine->findChildCandidate(nullptr, "main");
        auto* const panel = m_builder->findChild<QBDiagramPanelWidget*>();
        if (schema)
            panel->addIdentifierCandidateToDiagram(
                m_engine->findChildCandidate(schema, m_dice.isOneIn(2) ? "t" : "u"));
    }
    void preview() {
        m_builder->queryPreviewPanel()->setNeedsUpdateQuery(true);
        m_builder->queryPreviewPanel()->updatePreviewQuery();
        ++m_outcome.previewed;
    }
    void undo() {
        m_dice.isOneIn(3) ? m_builder->undoStack()->redo() : m_builder->undoStack()->undo();
    }
    void changeLayer() {
        if (m_engine->currentTopLevelQueryComponentLayer() > 0)
            m_engine->popCurrentLayerTopLevelQueryComponent();
    }

    Dice m_dice;
    LateHost m_host{Delivery::Later};
    FakeServer m_server;
    OwnedEngine<QBEngine_LINUX> m_engine;
    std::unique_ptr<QBQueryBuilderWidget> m_builder;
    std::atomic<int> m_searched{0};
    Outcome m_outcome;
};

TEST(BuilderThreads, TheWindowLivesWhileWorkersUseItsEngine) {
    application();
    Outcome all;
    for (int seed = 1; seed <= 12; ++seed) {
        Scene scene(seed);
        const Outcome outcome = scene.play(40);
        all.parsed += outcome.parsed;
        all.searched += outcome.searched;
        all.previewed += outcome.previewed;
        all.drawn += outcome.drawn;
    }
    EXPECT_GT(all.parsed, 12);
    EXPECT_GT(all.searched, 12);
    EXPECT_GT(all.previewed, 12);
    EXPECT_GT(all.drawn, 12);
}

}  // namespace
}  // namespace QB::Test
