#include "frame/query_history.h"

#include <QUndoStack>
#include <future>

#include "builder/builder_desk.h"
#include "canvas/view/canvas_commands.h"
#include "diagrampanel/diagram_panel_widget.h"
#include "model/dump.h"
#include "model/notification_names.h"
#include "support/diagram_places.h"
#include "support/long_runs.h"
#include "support/qt_animations.h"
#include "support/random_edits.h"
#include "tools/join_tools.h"
#include "tools/selection_tools.h"

namespace QB::Test {
namespace {

/// All that an undo has to bring back.
struct State {
    std::string record, dump, text;
    std::vector<long> layerPath;
    DiagramArrangement arrangement;
};

std::string described(const DiagramArrangement& arrangement) {
    const auto numbers = [](std::initializer_list<long> all) {
        std::string text;
        for (const long number : all)
            text += std::to_string(number) + ' ';
        return text;
    };
    const LumoPoint scrolled = arrangement.scrollOrigin;
    std::string text =
        numbers({arrangement.canvas.width, arrangement.canvas.height, scrolled.x, scrolled.y});
    for (const auto& [id, rect, isSized, isSelected] : arrangement.entries)
        text += "\n" + numbers({id, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height,
                                isSized, isSelected});
    return text;
}

/// Empty if they are the same.
QString difference(const State& wanted, const State& found) {
    const auto told = [](const char* what, const std::string& a, const std::string& b) {
        return QString("%1:\n%2\nand not\n%3").arg(what, a.c_str(), b.c_str());
    };
    if (wanted.dump != found.dump) return told("dump", wanted.dump, found.dump);
    if (wanted.text != found.text) return told("text", wanted.text, found.text);
    if (wanted.record != found.record) return "record";
    if (wanted.layerPath != found.layerPath) return "layers";
    if (wanted.arrangement == found.arrangement) return {};
    return told("arrangement", described(wanted.arrangement), described(found.arrangement));
}

class HistoryDesk : public BuilderDesk {
public:
    explicit HistoryDesk(Delivery delivery, const char* sql = nullptr)
        : BuilderDesk(delivery)
        , history(builder->history())
        , stack(builder->undoStack())
        , panel(builder->findChild<QBDiagramPanelWidget*>()) {
        if (sql) parse(sql);
        settle();
        history->clear();
    }

    State state() const {
        return {live()->recordQuery(), dumpStatement(live()->topLevelQueryComponent(0)),
                live()->buildQuery(), live()->layerPath(), panel->arrangement()};
    }

    QBLumoDiagram* diagram() const { return panel->drawer()->diagram(); }
    void select(int item) {
        const auto items = diagram()->items();
        if (!items.empty())
            diagram()->selectObject(items[static_cast<std::size_t>(item) % items.size()], false);
        settle();
    }
    void dragOnCanvas(QPoint from, QPoint to) {
        QWidget* const canvas = panel->drawer()->getView()->viewport();
        QWindow* const handle = window.windowHandle();
        const auto place = [&](QPoint point) {
            return canvas->mapTo(&window, point);
        };
        QTest::mousePress(handle, Qt::LeftButton, {}, place(from));
        for (const int step : {1, 2, 3})
            QTest::mouseMove(handle, place(from + (to - from) * step / 3));
        QTest::mouseRelease(handle, Qt::LeftButton, {}, place(to));
        settle();
    }
    void pressOnCanvas(Qt::Key key) {
        QTest::keyClick(panel->drawer()->getView(), key);
        settle();
    }

    SQLSelectStmtComponent* current() const { return statement(live()); }
    template <typename Element>
    void modify(TopLevelQueryComponentElementEnum element,
                const std::function<void(Element*)>& edit) {
        live()->modifyInTopLevelQueryComponentElement<Element*>(
            element, live()->currentTopLevelQueryComponentLayer(),
            [&edit](Element* expression) {
                edit(expression);
                return true;
            },
            nullptr);
    }
    void limit(int rows) {
        modify<ELEMSQLLimitExpr>(ElementLimit, [rows](auto* limit) { limit->rowCount = rows; });
    }
    SQLAbstractSourceComponent* source(const std::string& name) const {
        SQLAbstractSourceComponent* found = nullptr;
        Tools::visitSourceNodes(current()->sourceExpr->root, [&](const SourceNode* node) {
            const auto* table = dynamic_cast<SQLIdentifierSourceComponent*>(node->value);
            if (table && table->name == name) found = node->value;
        });
        return found;
    }
    void tick(const std::string& field, bool isOn) {
        Tools::SQL::changeItemComponentFieldSelection(live(), nullptr, source("t"), field, isOn);
    }

    void undo() {
        stack->undo();
        settle();
    }
    void redo() {
        stack->redo();
        settle();
    }

    QBQueryHistory* const history;
    QUndoStack* const stack;
    QBDiagramPanelWidget* const panel;
};

/// Steps at random, with the states before and after each, so far as they are not undone.
class RandomSteps {
public:
    RandomSteps(HistoryDesk& desk, int seed)
        : m_desk(desk), m_dice(seed), m_edits(m_dice, desk.live(), [&desk] { desk.settle(); }) {
        desk.live()->setCurrentSchema("s");
        m_edits.parse();
        desk.history->clear();
    }

    void step() {
        if (m_dice.isOneIn(20)) return goBack();
        const int index = m_desk.stack->index();
        if (m_dice.isOneIn(6)) m_desk.select(m_dice.pick(5));
        const State before = m_desk.state();
        const bool isAfterLast = !m_taken.empty() && m_taken.back().last == index;
        if (isAfterLast && m_taken.back().after.layerPath == before.layerPath)
            m_taken.back().after = before;  // how that place is left
        act();
        m_desk.settle();
        if (m_desk.stack->index() == index) return;
        m_taken.push_back({index, m_desk.stack->index(), before, m_desk.state()});
    }

    int count() const { return static_cast<int>(m_taken.size()); }

    /// What is not as it was, on the whole way back, and forth to how that left it.
    QString faults() {
        for (int i = count() - 1; i >= 0; --i) {
            Taken& taken = m_taken[static_cast<std::size_t>(i)];
            goTo(taken.last);
            const State left = m_desk.state();  // where the way back leads
            if (left.layerPath == taken.after.layerPath) taken.after = left;
            goTo(taken.first);
            const QString fault = difference(taken.before, m_desk.state());
            if (!fault.isEmpty())
                return QString("undo of %1, %2: ").arg(i).arg(m_desk.stack->redoText()) + fault;
        }
        for (int i = 0; i < count(); ++i) {
            const Taken& taken = m_taken[static_cast<std::size_t>(i)];
            goTo(taken.last);
            const QString fault = difference(taken.after, m_desk.state());
            if (!fault.isEmpty())
                return QString("redo of %1, %2: ").arg(i).arg(m_desk.stack->undoText()) + fault;
        }
        return {};
    }

private:
    struct Taken {
        int first, last;  ///< the index of the stack before and after
        State before, after;
    };

    void act() {
        const int kind = m_dice.pick(10);
        if (kind == 0) return m_edits.parse();
        if (kind == 1)
            return m_desk.pressOnCanvas(m_dice.pickFrom(std::vector{Qt::Key_Right, Qt::Key_Down}));
        if (kind == 2) return m_desk.builder->canvasCommands()->arrange();
        if (kind == 3 && m_dice.isOneIn(3)) return m_desk.pressOnCanvas(Qt::Key_Delete);
        if (kind == 4) return drag();
        if (kind == 5) m_edits.editClause();  // and another one before anyone hears of it
        kind == 5 ? m_edits.editClause() : m_edits.step();
    }

    /// An item where there is one.
    void drag() {
        const auto items = m_desk.diagram()->items();
        if (items.empty()) return;
        const DiagramPlaces places(m_desk.panel->drawer());
        const QPoint from = places.titlePlace(m_dice.pickFrom(items));
        if (places.view()->viewport()->rect().contains(from))
            m_desk.dragOnCanvas(from, from + QPoint(m_dice.pick(90), m_dice.pick(90)));
    }

    void goBack() {
        const int index = std::max(0, m_desk.stack->index() - 1 - m_dice.pick(2));
        goTo(index);
        while (!m_taken.empty() && m_taken.back().last > index)
            m_taken.pop_back();
    }

    void goTo(int index) {
        while (m_desk.stack->index() > index)
            m_desk.undo();
        while (m_desk.stack->index() < index)
            m_desk.redo();
    }

    HistoryDesk& m_desk;
    Dice m_dice;
    RandomEdits m_edits;
    std::vector<Taken> m_taken;
};

constexpr char twoTables[] = "SELECT t.a FROM t, u WHERE t.b = 1";

/// What each kind of step is called.
const struct {
    const char* name;
    void (*make)(HistoryDesk&);
} kinds[] = {
    {"Add table",
     [](HistoryDesk& d) {
         auto table = std::make_unique<SQLIdentifierSourceComponent>();
         table->name = "v";
         Tools::Identifier::addSourceComponentToExpression(d.live(), nullptr, std::move(table));
     }},
    {"Remove table",
     [](HistoryDesk& d) {
         d.select(0);
         d.pressOnCanvas(Qt::Key_Delete);
     }},
    {"Join tables",
     [](HistoryDesk& d) {
         Tools::SQL::makeJoinLinkIfNecessary(d.live(), nullptr, d.source("t"), d.source("u"),
                                             {{"a", "a"}});
     }},
    {"Select field",
     [](HistoryDesk& d) {
         d.tick("b", true);
     }},
    {"Deselect field",
     [](HistoryDesk& d) {
         d.tick("a", false);
     }},
    {"Change SELECT",
     [](HistoryDesk& d) {
         d.modify<ELEMSQLSelectColumnExpr>(
             ElementSelectColumn, [](auto* element) { element->selectOption = "DISTINCT"; });
     }},
    {"Change FROM",
     [](HistoryDesk& d) {
         d.modify<ELEMSQLSourceExpr>(ElementSource,
                                     [&d](auto*) { d.source("t")->alias = "other"; });
     }},
    {"Change WHERE",
     [](HistoryDesk& d) {
         d.modify<ELEMSQLConditionExpr>(ElementWhere, [](auto* e) { e->root->negated = true; });
     }},
    {"Change LIMIT",
     [](HistoryDesk& d) {
         d.limit(3);
     }},
    {"Apply SQL text",
     [](HistoryDesk& d) {
         d.parse("SELECT v.a FROM v");
     }},
    {"Apply SQL text",
     [](HistoryDesk& d) {
         d.parse("SELECT FROM");
     }},
    {"Move on the diagram",
     [](HistoryDesk& d) {
         d.select(1);
         d.pressOnCanvas(Qt::Key_Down);
     }},
    {"Arrange the diagram",
     [](HistoryDesk& d) {
         d.builder->canvasCommands()->arrange();
     }},
    {"Something better",
     [](HistoryDesk& d) {
         d.history->nameNextStep("Something better");
         d.limit(3);
     }},
};

}  // namespace

class QueryHistoryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() { outliveAnimations(); }

    void anyStepsAreUndoneAndRedoneToTheByte_data() {
        QTest::addColumn<int>("seed");
        const int first = qEnvironmentVariableIntValue("JOINERY_SEED");
        for (int seed = first; seed < first + repetitions(2); ++seed)
            QTest::addRow("seed %d, %s", seed, seed % 2 ? "later" : "at once") << seed;
    }
    void anyStepsAreUndoneAndRedoneToTheByte() {
        QFETCH(int, seed);
        HistoryDesk desk(seed % 2 ? Delivery::Later : Delivery::AtOnce);
        RandomSteps steps(desk, seed);
        while (desk.stack->index() < 500)
            steps.step();
        QCOMPARE(steps.faults(), QString());
    }

    void eachKindOfStepHasAName_data() { addHosts(); }
    void eachKindOfStepHasAName() {
        for (const auto& kind : kinds) {
            HistoryDesk desk(hostOfTest(), twoTables);
            desk.select(0);
            desk.panel->drawer()->getView()->setFocus();
            // Not where the automatic layout has it.
            QBLumoItem* const item = desk.panel->drawer()->diagram()->items().back();
            item->setRect({{700, 300}, item->getRect().size});
            const State before = desk.state();
            kind.make(desk);
            desk.settle();
            QCOMPARE(desk.stack->undoText(), QString(kind.name));
            QCOMPARE(desk.stack->count(), 1);
            const State after = desk.state();
            desk.undo();
            QVERIFY2(before.record == desk.state().record, kind.name);
            QCOMPARE(desk.stack->redoText(), QString(kind.name));
            desk.redo();
            QVERIFY2(difference(after, desk.state()).isEmpty(), kind.name);
        }
    }

    void aRowOfMovesByKeyIsOneStep() {
        HistoryDesk desk(Delivery::AtOnce, twoTables);
        desk.select(0);
        const State before = desk.state();
        for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Down})
            desk.pressOnCanvas(key);
        QCOMPARE(desk.stack->count(), 1);
        desk.select(1);
        desk.pressOnCanvas(Qt::Key_Right);
        QCOMPARE(desk.stack->count(), 2);
        desk.stack->setClean();
        desk.pressOnCanvas(Qt::Key_Right);
        QCOMPARE(desk.stack->count(), 3);
        desk.stack->setIndex(0);
        QCOMPARE(difference(before, desk.state()), QString());
        desk.pressOnCanvas(Qt::Key_Escape);  // no step
        QCOMPARE(desk.stack->count(), 3);
    }

    void whatFollowsFromAStepIsPartOfIt_data() { addHosts(); }
    void whatFollowsFromAStepIsPartOfIt() {
        HistoryDesk desk(hostOfTest(), "SELECT t.a FROM t, u GROUP BY t.a ORDER BY t.a");
        desk.openPage(ElementOrderBy);
        desk.settle();
        desk.history->clear();
        const State before = desk.state();
        desk.modify<ELEMSQLSourceExpr>(ElementSource, [&desk](ELEMSQLSourceExpr* element) {
            DetachedParts parts;
            parts.add(std::unique_ptr<SourceNode>(std::exchange(element->root, nullptr)));
            desk.live()->retire(std::move(parts));
        });
        desk.settle();
        QVERIFY(!desk.current()->orderByExpr->columns.empty());
        const auto* repaired =
            dynamic_cast<SQLFieldColumnComponent*>(desk.current()->orderByExpr->columns[0]);
        QVERIFY(repaired && !repaired->source);
        QCOMPARE(desk.stack->count(), 1);
        const State after = desk.state();
        desk.undo();
        QCOMPARE(difference(before, desk.state()), QString());
        desk.redo();
        QCOMPARE(difference(after, desk.state()), QString());
        desk.undo();
        desk.openPage(ElementGroupBy);
        QCOMPARE(desk.stack->count(), 1);
    }

    /// Unless the user has gone on before the server tells of them. What could be redone, can.
    void linksByForeignKeyArePartOfTheStepThatAddsTheTable() {
        using Meanwhile = void (*)(HistoryDesk&);
        const struct {
            Meanwhile act;
            int steps;
            bool isRedoLeft;
        } cases[] = {{[](auto&) {}, 1, false},
                     {[](auto& desk) { desk.limit(1); }, 3, false},
                     {[](auto& desk) {
                          desk.builder->canvasCommands()->arrange();
                          desk.stack->undo();
                      },
                      2, true}};
        for (const auto& [meanwhile, steps, isRedoLeft] : cases) {
            HistoryDesk desk(Delivery::Later, "SELECT 1 FROM t, u");  // whose fields are known then
            desk.parse("SELECT 1 FROM main.t");
            desk.history->clear();
            std::promise<void> answer;
            desk.live()->registerForeignKeySearcher(
                [mayAnswer = answer.get_future().share()](const auto&, const auto&) {
                    mayAnswer.wait();
                    return QBForeignKeys{{{"main", "u", "a"}, {"main", "t", "a"}}};
                });
            const State before = desk.state();
            desk.panel->addIdentifierCandidateToDiagram(desk.live()->findChildCandidate(
                desk.live()->findChildCandidate(nullptr, "main"), "u"));
            desk.host.deliver();
            meanwhile(desk);
            desk.host.deliver();
            answer.set_value();
            desk.settle();
            QVERIFY(desk.text().contains("JOIN"));
            QCOMPARE(desk.stack->count(), steps);
            QCOMPARE(desk.stack->canRedo(), isRedoLeft);
            isRedoLeft ? desk.redo() : desk.undo();
            QVERIFY(!desk.text().contains("JOIN"));
            desk.stack->setIndex(0);
            QCOMPARE(difference(before, desk.state()), QString());
        }
    }

    void tenThousandStepsTakeAFewMegabytes() {
        LateHost host(Delivery::AtOnce);  // which finishes all at its end
        const OwnedEngine<> engine(DatabaseTypeMySQL);
        QBDiagramPanelWidget panel;
        QBQueryHistory history(&panel);
        panel.setEngine(engine.get());
        std::string from = " FROM t0", select = "SELECT t0.id";
        for (int i = 1; i < 10; ++i) {
            const std::string name = "t" + std::to_string(i);
            from += " INNER JOIN " + name + " ON t0.id = " + name + ".id";
            for (const char* field : {".name", ".price", ".since"})
                select += ", " + name + field;
        }
        engine->registerIdentifierCandidateChildrenUpdater([](auto*, auto*) {});
        engine->parseQuery(select + from + " WHERE t1.price > 10 ORDER BY t1.name", {});
        host.finishWorkers();
        history.setEngine(engine.get());

        auto* const view = panel.drawer()->getView();
        const int steps = isLongRun() ? 10'000 : 2'000;
        for (int i = 0; history.undoStack()->count() < steps; ++i) {
            const auto items = panel.drawer()->diagram()->items();
            panel.drawer()->diagram()->selectObject(
                items[static_cast<std::size_t>(i) % items.size()], false);
            QTest::keyClick(view, Qt::Key_Right);
            engine->modifyInTopLevelQueryComponentElement<ELEMSQLLimitExpr*>(
                ElementLimit, 0, [i](auto* limit) { return limit->rowCount = i + 1, true; },
                nullptr);
            if (i % 4 != 0) continue;
            // Something larger, which the next step takes the place of.
            auto table = std::make_unique<SQLIdentifierSourceComponent>();
            table->name = "more";
            Tools::Identifier::addSourceComponentToExpression(engine.get(), nullptr,
                                                              std::move(table));
            if (i % 8 == 0) history.undoStack()->undo();
        }
        const double perStep = double(history.memoryUse()) / steps;
        qInfo("%d steps take %.1f MB, %.0f bytes each", steps,
              double(history.memoryUse()) / (1 << 20), perStep);
        QVERIFY(perStep * 10'000 < 64.0 * (1 << 20));
        history.undoStack()->setIndex(0);
        QVERIFY(double(history.memoryUse()) < 1.1 * perStep * steps);
    }
};

}  // namespace QB::Test

QTEST_MAIN(QB::Test::QueryHistoryTest)
#include "query_history_test.moc"
