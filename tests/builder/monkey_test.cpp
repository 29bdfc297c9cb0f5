#include <iostream>

#include "builder/canvas_oracles.h"
#include "builder/monkey.h"
#include "builder/oracles.h"
#include "support/long_runs.h"
#include "support/qt_animations.h"

namespace QB {
namespace {

using namespace Component::SQL;
using Test::Delivery;
using Desk = Test::MonkeyDesk;
using Test::Monkey;
using Test::Oracles;

/// Something goes wrong, and nobody is told.
struct Fault {
    const char* name;
    const char* found;  ///< what the report begins with
    QString (Oracles::*oracle)() const;
    void (*seed)(Desk&);
};

SQLAbstractSourceComponent* firstSource(Desk& desk) {
    SQLAbstractSourceComponent* first = nullptr;
    Tools::visitSourceNodes(Desk::statement(desk.live())->sourceExpr->root, [&](const auto* node) {
        if (!first && !node->left) first = node->value;
    });
    return first;
}

const Fault faults[] = {
    {"rows", "layout:", &Oracles::rows,
     [](Desk& desk) {
         auto& columns = Desk::statement(desk.live())->selectColumnExpr->columns;
         std::swap(columns[0], columns[1]);
     }},
    {"a text that nobody reads", "text: refused", &Oracles::text,
     [](Desk& desk) {
         auto* const column = new SQLAnyExpressionColumnComponent;
         column->expression = "x) (";
         Desk::statement(desk.live())->selectColumnExpr->columns.push_back(column);
     }},
    {"an alias", "diagram: alias", &Oracles::diagram,
     [](Desk& desk) {
         firstSource(desk)->alias = "q";
     }},
    {"an item outside", "diagram: outside", &Oracles::diagram,
     [](Desk& desk) {
         auto* const item = desk.places().diagram()->items().front();
         item->setRect({{-5, 0}, item->getRect().size});
     }},
    {"a tick", "diagram: tick", &Oracles::diagram,
     [](Desk& desk) {
         desk.places().diagram()->items().front()->getBody()->setFieldSelected("a", false);
     }},
    {"an item too few", "diagram: ", &Oracles::diagram,
     [](Desk& desk) {
         desk.panel()->drawer()->removeComponentFromDiagram(firstSource(desk));
     }},
    {"the kind of a link", "diagram: ", &Oracles::diagram,
     [](Desk& desk) {
         desk.places().diagram()->joinLinks().front()->setJoinType(3);
     }},
    {"fields", "fresh diagram:", &Oracles::freshDiagram,
     [](Desk& desk) {
         desk.places().item("u")->getBody()->setFields({"a"});
     }},
    {"a step", "history: ", &Oracles::history,
     [](Desk& desk) {
         QObject::connect(desk.builder->undoStack(), &QUndoStack::indexChanged, desk.builder,
                          [&desk] { ++Desk::statement(desk.live())->limitExpr->rowCount; });
     }},
};

}  // namespace

class MonkeyTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() {
        for (const auto& [action, count] : m_counts)
            std::cout << count.second << " of " << count.first << "  " << action << std::endl;
        Test::outliveAnimations();
        // Elsewhere no drag begins.
        if (!Test::isLongRun() || QGuiApplication::platformName() != "minimal") return;
        for (const auto& [action, count] : m_counts)
            QVERIFY2(count.second >= 100, action.c_str());
    }

    void whatIsWrongIsSeen_data() {
        QTest::addColumn<int>("fault");
        for (const Fault& fault : faults)
            QTest::newRow(fault.name) << static_cast<int>(&fault - faults);
    }
    void whatIsWrongIsSeen() {
        QFETCH(int, fault);
        Desk desk(Delivery::AtOnce);
        const Oracles oracles(desk);
        desk.parse("SELECT t.a, u.d, SUM(t.c) FROM t INNER JOIN u ON t.a = u.a");
        QCOMPARE(oracles.all(), QString());
        faults[fault].seed(desk);
        const QString found = (oracles.*faults[fault].oracle)();
        QVERIFY2(found.startsWith(faults[fault].found), qPrintable(found));
    }

    void nothingARandomUserDoesConfusesTheBuilder_data() {
        QTest::addColumn<int>("seed");
        const int first = qEnvironmentVariableIntValue("JOINERY_SEED");
        for (int seed = first; seed < first + (Test::isLongRun() ? 100 : 5); ++seed)
            QTest::addRow("seed %d, %s", seed, seed % 2 ? "later" : "at once") << seed;
    }
    void nothingARandomUserDoesConfusesTheBuilder() {
        QFETCH(int, seed);
        DiagramLumo::Probes probes;  // its objects tell when they go
        Desk desk(seed % 2 ? Delivery::Later : Delivery::AtOnce);
        Callback::formatIdentifier = Test::HostCallbacks::quoteAlways;  // any name can be typed
        desk.parse(Test::monkeyTexts[2 + static_cast<std::size_t>(seed % 5)]);
        Monkey monkey(desk, seed);
        const Oracles oracles(desk);
        Test::CanvasOracles canvas(desk, probes);
        const auto fault = [&](int step) {
            // What is held may still be to come.
            QString found = desk.isHeld ? QString() : desk.rowFaults();
            if (found.isEmpty()) found = canvas.afterStep();
            if (found.isEmpty() && step % 10 == 0) found = canvas.whenQuiet();
            if (!found.isEmpty() || step % 100) return found;
            desk.rest();
            found = oracles.all();
            return found.isEmpty() ? canvas.atRest() : found;
        };
        for (int step = 1; step <= 500; ++step) {
            monkey.act(&m_counts);
            const QString found = fault(step);
            if (found.isEmpty()) continue;
            // Qt Test cuts long messages.
            std::cerr << qPrintable(found) << "\n  after " << step << ":\n    "
                      << qPrintable(monkey.story()) << std::endl;
            QFAIL(qPrintable(found.section('\n', 0, 0)));
        }
    }

private:
    Monkey::Counts m_counts;
};

}  // namespace QB

QTEST_MAIN(QB::MonkeyTest)
#include "monkey_test.moc"
