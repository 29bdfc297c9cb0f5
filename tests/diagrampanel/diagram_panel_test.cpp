#include <QRadioButton>
#include <QtTest>
#include <memory>

#include "canvas/diagram/auto_layout.h"
#include "canvas/drawer/diagram_hint_widget.h"
#include "diagrampanel/diagram_desk.h"

namespace QB::Test {
namespace {

using namespace Component::SQL;

/// A statement, what the user does, the statement then (empty: the same), and what the canvas
/// shows.
struct Deed {
    const char* name;
    const char* before;
    const char* events;
    const char* after;
    const char* canvas;
};

const Deed deeds[] = {
    // The text shows on the canvas.
    {"tables with their fields", "SELECT t.a, t.* FROM t, u", "", "", "t: [*] [a] b c; u: * a d"},
    {"a join", "SELECT * FROM t INNER JOIN u ON t.a = u.a", "", "",
     "t: * a b c; u: * a d; inner t=u"},
    {"a join between fields", "SELECT * FROM t LEFT JOIN u ON t.a = u.a AND u.d = t.b",
     "mode field", "", "t: * a b c; u: * a d; left t.a=u.a; left t.b=u.d"},
    {"names without case", "SELECT T.B FROM T INNER JOIN U ON T.A = U.a", "mode field", "",
     "T: * a [b] c; U: * a d; inner T.a=U.a"},
    {"columns of USING", "SELECT * FROM t INNER JOIN u USING (a) LEFT JOIN t AS x USING (a, \"b\")",
     "mode field", "",
     "t (x): * a b c; t: * a b c; u: * a d; inner t.a=u.a; left t.b=t (x).b; left u.a=t (x).a"},
    {"bare names of the one that has them", "SELECT b, d, a FROM t, u", "", "",
     "t: * a [b] c; u: * a [d]"},
    {"bare names beside an unknown source", "SELECT b FROM t, f(1)", "", "", "<?>:; t: * a b c"},
    {"every other source", "SELECT s.d FROM ( SELECT a, d FROM u ) AS s, f(1)", "", "",
     "<?>:; s: * a [d]"},
    {"one table twice", "SELECT y.a FROM t AS x INNER JOIN t AS y ON x.b = y.a", "", "",
     "t (x): * a b c; t (y): * [a] b c; inner t (x)=t (y)"},
    {"three in a row", "SELECT * FROM t INNER JOIN u ON t.a = u.a LEFT JOIN v ON t.b = v.a", "", "",
     "t: * a b c; u: * a d; v: * a; inner t=u; left t=v"},
    {"another text", "SELECT t.a FROM t", "sql SELECT w.a FROM w, v", "SELECT w.a FROM w, v",
     "v: * a; w: * [a]"},
    {"a text that is none", "SELECT t.a FROM t", "sql SELECT FROM WHERE", "SELECT *", ""},
    // What the user does there shows in the text.
    {"tick", "SELECT t.a FROM t", "tick t.b; tick t.*", "SELECT t.a, t.b, t.* FROM t",
     "t: [*] [a] [b] c"},
    {"untick", "SELECT t.a, t.b FROM t", "tick t.a", "SELECT t.b FROM t", "t: * a [b] c"},
    {"untick a bare name", "SELECT b, A FROM t", "tick t.a; tick t.c", "SELECT b, t.c FROM t",
     "t: * a [b] [c]"},
    {"a field in an aggregate is no tick", "SELECT max(t.a), t.b FROM t", "tick t.a; tick t.a", "",
     "t: * a [b] c"},
    {"drag a link", "SELECT * FROM t, u", "pull t.b u.d",
     "SELECT * FROM t INNER JOIN u ON t.b = u.d", "t selected: * a b c; u: * a d; inner t=u"},
    {"delete an item", "SELECT t.a FROM t INNER JOIN u ON t.a = u.a", "select u; key Del",
     "SELECT t.a FROM t", "t: * [a] b c"},
    {"delete all", "SELECT t.a FROM t INNER JOIN u ON t.a = u.a, v",
     "select t; key Ctrl+A; key Del", "SELECT t.a", ""},
    {"delete what a bracket holds", "SELECT t.a FROM t, ( u INNER JOIN v ON u.a = v.a )",
     "select u; also v; key Del", "SELECT t.a FROM t", "t: * [a] b c"},
    {"delete a link", "SELECT * FROM t INNER JOIN u ON t.a = u.a", "link 0; key Del",
     "SELECT * FROM t, u", "t: * a b c; u: * a d"},
    {"delete one of two conditions", "SELECT * FROM t INNER JOIN u ON t.a = u.a AND t.b = u.d",
     "mode field; link 1; key Del", "SELECT * FROM t INNER JOIN u ON t.b = u.d",
     "t: * a b c; u: * a d; inner t.b=u.d"},
    {"delete one of two columns of USING", "SELECT * FROM t INNER JOIN t AS x USING (a, \"b\", c)",
     "mode field; link 1; key Del", "SELECT * FROM t INNER JOIN t AS x USING (a, c)",
     "t (x): * a b c; t: * a b c; inner t.a=t (x).a; inner t.c=t (x).c"},
    {"delete a link of USING", "SELECT * FROM t INNER JOIN u USING (a)",
     "mode field; link 0; key Del", "SELECT * FROM t, u", "t: * a b c; u: * a d"},
    {"delete both", "SELECT * FROM t INNER JOIN u ON t.a = u.a AND t.b = u.d, v",
     "mode field; link 0; link 1 also; key Del", "SELECT * FROM t INNER JOIN u, v",
     "t: * a b c; u: * a d; v: * a"},
    {"give an alias", "SELECT t.a FROM t", "select t; key F2; type x; key Return",
     "SELECT x.a FROM t AS x", "t (x) selected: * [a] b c"},
    {"escape from an alias", "SELECT t.a FROM t", "select t; key F2; type x; key Esc", "",
     "t selected: * [a] b c"},
    {"a condition by the menu", "SELECT * FROM t",
     "right t.b; submenu WHERE; choose =", "SELECT * FROM t WHERE t.b =", "t selected: * a b c"},
    {"a group by the menu", "SELECT * FROM t",
     "right t.b; submenu GROUP BY; choose Group by this field", "SELECT * FROM t GROUP BY t.b",
     "t selected: * a b c"},
    {"an order by the menu", "SELECT * FROM t", "right t.b; submenu ORDER BY; choose DESC",
     "SELECT * FROM t ORDER BY t.b DESC", "t selected: * a b c"},
    {"open the editor of a join", "SELECT * FROM t INNER JOIN u ON t.a = u.a",
     "link 0; editor; key Esc", "", "t: * a b c; u: * a d; inner t=u"},
    {"fields anew, in what yields them, too", "SELECT t.a FROM t, ( SELECT * FROM t ) AS s",
     "server t a e; right t; choose Refresh", "", "s: * a e; t selected: * [a] e"},
    {"fields anew", "SELECT t.a FROM t", "server t a e; right t; choose Refresh", "",
     "t selected: * [a] e"},
    {"a step back", "SELECT t.a FROM t INNER JOIN u ON t.a = u.a",
     "record; tick t.b; select u; key Del; restore", "", "t: * [a] b c; u: * a d; inner t=u"},
    // Tables from the tree.
    {"add a table", "SELECT t.a FROM t", "add v", "SELECT t.a FROM t, v", "t: * [a] b c; v: * a"},
    {"add a table that a key links", "SELECT t.a FROM t", "add u",
     "SELECT t.a FROM t INNER JOIN u ON t.a = u.a", "t: * [a] b c; u: * a d; inner t=u"},
    {"the same twice while it loads", "SELECT t.a FROM t", "busy; add w; add w; free",
     "SELECT t.a FROM t, w, w AS w_2", "t: * [a] b c; w (w_2): * a; w: * a"},
    {"one of another schema is another table", "SELECT 1 FROM x.t", "add t",
     "SELECT 1 FROM x.t, main.t", "t:; t: * a b c"},
    {"once more, where the next name is taken", "SELECT 1 FROM t, v AS t_2", "add t; add v",
     "SELECT 1 FROM t, v AS t_2, t AS t_3, v",
     "t (t_3): * a b c; t: * a b c; v (t_2): * a; v: * a"},
    {"a reset ends the wait", "SELECT t.a FROM t", "busy; add w; reset; free", "", "t: * [a] b c"},
    {"the schema turns out to be another", "SELECT * FROM t",
     "schema ; sql SELECT * FROM v; schema main", "SELECT * FROM v", "v: * a"},
    // Layers.
    {"the keys find the first item of a layer", "SELECT s.a FROM ( SELECT t.a FROM t ) AS s",
     "select s; key Return; key Tab; key Space", "", "t selected: * [a] b c"},
    {"into a subquery", "SELECT s.d FROM ( SELECT u.a, u.d FROM u, v ) AS s", "double s", "",
     "u: * [a] [d]; v: * a"},
    {"a change there, and back", "SELECT s.d FROM ( SELECT u.a, u.d FROM u ) AS s",
     "double s; tick u.d; out", "SELECT s.d FROM ( SELECT u.a FROM u ) AS s", "s: * a"},
    {"added to the layer it was meant for", "SELECT s.d FROM ( SELECT u.d FROM u ) AS s",
     "busy; add w; double s; free; out", "SELECT s.d FROM ( SELECT u.d FROM u ) AS s, w",
     "s: * [d]; w: * a"},
    {"added when the layer is entered again", "SELECT s.d FROM ( SELECT u.d FROM u ) AS s",
     "double s; busy; add w; out; free; double s", "SELECT s.d FROM ( SELECT u.d FROM u, w ) AS s",
     "u: * a [d]; w: * a"},
    {"a reset leaves the layers", "SELECT s.d FROM ( SELECT u.d FROM u ) AS s", "double s; reset",
     "", "s: * [d]"},
    // While a text is read.
    {"nothing is done during a parse", "SELECT t.a FROM t, u",
     "hold; sql SELECT t.b FROM t, u; tick t.c; pull t.b u.d; select u; key Del; add v; deliver",
     "SELECT t.b FROM t, u", "t: * a [b] c; u: * a d"},
};

/// What leaves items where the user has put them.
const struct Stay {
    const char* name;
    const char* before;
    const char* events;
} stays[] = {
    {"another table", "SELECT * FROM t, u", "mark; add v"},
    {"into a subquery and back", "SELECT * FROM t, ( SELECT * FROM u ) AS s",
     "mark; double s; out"},
    {"a reset", "SELECT * FROM t, ( SELECT * FROM u ) AS s", "mark; double s; reset"},
    {"a text with more", "SELECT * FROM t, u", "mark; sql SELECT * FROM w, u, t WHERE t.a = 1"},
    {"a slip in the text", "SELECT * FROM t, u",
     "mark; sql SELECT FROM WHERE; sql SELECT * FROM t, u"},
    {"a step back", "SELECT * FROM t, u", "mark; record; tick t.b; restore"},
    {"a layout", "SELECT * FROM t, u", "mark; keep; select t; key Down; load"},
    {"a layout loaded while its text is read", "SELECT * FROM t, u",
     "mark; keep; sql SELECT * FROM w, u; hold; sql SELECT * FROM t, u; load; deliver"},
    {"a layout of another layer", "SELECT * FROM ( SELECT * FROM t, u ) AS s",
     "double s; select t; key Down; mark; keep; out; sql SELECT * FROM v; load; "
     "sql SELECT * FROM ( SELECT * FROM t, u ) AS s; double s"},
};

}  // namespace

class DiagramPanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theCanvasAndTheTextAreOne_data() { addStories(deeds); }
    void theCanvasAndTheTextAreOne() {
        const Deed& story = storyOfTest(deeds);
        DiagramDesk desk(hostOfTest());
        desk.parse(story.before);
        QCOMPARE(desk.text(), story.before);
        QVERIFY(desk.run(story.events));
        QCOMPARE(desk.text(), QString(*story.after ? story.after : story.before));
        QCOMPARE(desk.canvas(), QString(story.canvas));
    }

    void itemsStayWhereTheyAre_data() { addStories(stays); }
    void itemsStayWhereTheyAre() {
        const Stay& stay = storyOfTest(stays);
        DiagramDesk desk(hostOfTest());
        desk.parse(stay.before);
        if (desk.item("t")) QVERIFY(desk.run("select t; key Right; key Down; key Down"));
        QVERIFY(desk.run(stay.events));
        QVERIFY(!desk.marked.isEmpty());
        const QStringList now = desk.places().split("; ");
        for (const QString& place : desk.marked)
            QVERIFY2(now.contains(place),
                     qPrintable(desk.marked.join("; ") + " | " + now.join("; ")));
    }

    void whateverALayoutSaysAnItemIsInSight() {
        for (
            const char* const objects :
            {R"({"Alias":"","Name":"film","Schema":"","X":2000,"Y":900,"Width":218,"Height":245})",
             R"({"Alias":"","Name":"t","Schema":"main","X":40,"Y":40,"Width":218,"Height":245})"}) {
            DiagramDesk desk(Delivery::AtOnce);
            desk.parse("SELECT * FROM t");
            desk.panel->restoreLayout(
                std::string(
                    R"([{"ID":[],"Width":3000,"Height":3000,"X":2000,"Y":2000,"Objects":[)") +
                objects + "]}]");
            const LumoRect seen = desk.panel->drawer()->getControl()->getDisplayRect();
            QVERIFY(lumoIntersectsRect(desk.item("t")->getRect(), seen));
        }
    }

    void aLoadedTextIsArranged_data() { addHosts(); }
    void aLoadedTextIsArranged() {
        DiagramDesk desk(hostOfTest());
        desk.parse(
            "SELECT * FROM v, ( SELECT * FROM v, t INNER JOIN u ON t.a = u.a ) AS s, "
            "t INNER JOIN u ON t.a = u.a");
        const auto top = [&desk](const QString& title) {
            return desk.item(title)->getRect().origin.y;
        };
        for (const char* const events : {"", "double s"}) {
            QVERIFY(desk.run(events));
            QCOMPARE(top("t"), top("u"));  // the search for free places puts all into one row
            QVERIFY(top("v") > top("t"));
        }
    }

    /// Fields, and with them the heights of items, come when these are arranged already.
    void aLoadedTextIsArrangedByTheHeightsThatItemsGet_data() {
        QTest::addColumn<QString>("meanwhile");
        QTest::addColumn<bool>("isArranged");
        QTest::addRow("untouched") << "" << true;
        QTest::addRow("a field is ticked") << "tick t.a" << true;
        QTest::addRow("one is moved") << "select w; key Down" << false;
        QTest::addRow("a table comes") << "add u" << false;
    }
    void aLoadedTextIsArrangedByTheHeightsThatItemsGet() {
        QFETCH(QString, meanwhile);
        QFETCH(bool, isArranged);
        DiagramDesk desk(Delivery::AtOnce);
        desk.parse("SELECT t.b FROM t, u");  // whose fields are known from then on
        desk.server.hold();
        desk.isHeld = true;
        desk.engine->parseQuery(
            "SELECT v.a FROM t INNER JOIN v ON t.a = v.a INNER JOIN w ON t.b = w.a, nowhere", {});
        QTRY_VERIFY((desk.host.runPending(), desk.item("w")));
        QVERIFY(desk.run(meanwhile));
        const QStringList first = desk.places().split("; ");
        QVERIFY(desk.run("free"));
        const auto gap = [&desk] {
            return lumoMinY(desk.item("w")->getRect()) - lumoMaxY(desk.item("v")->getRect());
        };
        QCOMPARE(desk.item("v")->getRect().size.height, 105);
        QCOMPARE(gap() == LayoutSpacing().below, isArranged);
        if (isArranged) return;
        for (const QString& place : first)
            QVERIFY2(desk.places().split("; ").contains(place), qPrintable(place));
    }

    void droppedTablesGoToTheirPoints_data() { addHosts(); }
    void droppedTablesGoToTheirPoints() {
        DiagramDesk desk(hostOfTest());
        QVERIFY(desk.run("busy; drop v 300 200; drop w 600 150; free; drop u 250 560; add t"));
        // With the height that their fields need, which is less than the one without fields.
        QCOMPARE(desk.panel->drawer()->getControl()->getScrollOrigin().y, 0);
        desk.panel->drawer()->scrollToOrigin();
        const auto middle = [&desk](const QString& title) {
            return desk.view()->viewport()->mapTo(desk.panel.get(), desk.placeOf(title));
        };
        QCOMPARE(middle("v"), QPoint(300, 200));
        QCOMPARE(middle("w"), QPoint(600, 150));
        QCOMPARE(middle("u"), QPoint(250, 560));
        QVERIFY(middle("t") != QPoint(250, 560));
    }

    void onlyTablesOfTheTreeAreTaken() {
        DiagramDesk desk(Delivery::AtOnce);
        auto* const schema = desk.engine->findChildCandidate(nullptr, "main");
        QBIdentifierCandidate stranger;
        stranger.type = IdentifierTypeTable;
        for (QBIdentifierCandidate* candidate :
             {schema, desk.engine->identifierCandidateRootNode(), &stranger,
              reinterpret_cast<QBIdentifierCandidate*>(quintptr(0xdeadbeef))})
            desk.panel->addIdentifierCandidateToDiagram(candidate);
        QVERIFY(desk.run("drop none 5 5"));
        QCOMPARE(desk.canvas(), QString());
        QCOMPARE(desk.panel->pendingItemCount(), 0);
        QMimeData mime;
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, {});
        enter.ignore();
        QWidget stranger2;
        desk.panel->source = &stranger2;
        QCoreApplication::sendEvent(desk.panel.get(), &enter);
        QVERIFY(!enter.isAccepted());
    }

    void theHintSaysWhatTakesADrop() {
        DiagramDesk desk(Delivery::AtOnce);
        const QBDiagramHintWidget* const hint = desk.panel->drawer()->hintWidget();
        QVERIFY(hint->isVisible());
        QTreeWidget tree;
        desk.panel->source = &tree;
        QMimeData mime;
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, {});
        QCoreApplication::sendEvent(desk.panel.get(), &enter);
        QVERIFY(hint->takesDrop());
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(desk.panel.get(), &leave);
        QVERIFY(!hint->takesDrop());
        QVERIFY(desk.run("drop none 5 5"));
        QVERIFY(hint->isVisible() && !hint->takesDrop());
        desk.parse("SELECT * FROM t");
        QVERIFY(!hint->isVisible());
    }

    void theFocusIsSharedWithOtherPanels_data() { addHosts(); }
    void theFocusIsSharedWithOtherPanels() {
        DiagramDesk desk(hostOfTest());
        desk.parse("SELECT * FROM t, u");
        QStringList told;
        connect(desk.engine->signalEmitter(), &QBEngineSignalEmitter::componentFocusChanged,
                [&](QBEngine*, auto* component, bool isFocused, void* sender) {
                    QCOMPARE(sender, static_cast<void*>(desk.panel.get()));
                    const auto* table = dynamic_cast<SQLIdentifierSourceComponent*>(component);
                    told += (isFocused ? "+" : "-") + QString::fromStdString(table->name);
                });
        QVERIFY(desk.run("select t; select u"));
        QCOMPARE(told.join(' '), QString("+t -t +u"));
        desk.engine->signalEmitter()->disconnect();
        auto* const t = desk.panel->drawer()->componentOf(desk.item("t"));
        QBEngineSignalEmitter* const emitter = desk.engine->signalEmitter();
        desk.panel->setEngine(desk.engine.get());
        int own = 0;
        connect(emitter, &QBEngineSignalEmitter::componentFocusChanged,
                [&](QBEngine*, auto*, bool, void* sender) { own += sender == desk.panel.get(); });
        Q_EMIT emitter->componentFocusChanged(desk.engine.get(), t, true, &desk);
        QVERIFY(desk.item("t")->getSelected() && !desk.item("u")->getSelected());
        Q_EMIT emitter->componentFocusChanged(desk.engine.get(), t, false, &desk);
        QVERIFY(!desk.item("t")->getSelected());
        QCOMPARE(own, 0);
    }

    void theUserHearsWhichClauseChanged() {
        DiagramDesk desk(Delivery::AtOnce);
        desk.parse("SELECT t.a FROM t, u");
        int excluded = 0;
        connect(desk.panel.get(), &QBDiagramPanelWidget::signalExcludeInvalidConditionComponent,
                [&](auto** slot) {
                    auto* const condition = desk.statement()->whereExpr->root;
                    auto* const compare = dynamic_cast<SQLCompareConditionComponent*>(condition);
                    excluded += compare && slot == &compare->rightValue;
                });
        QVERIFY(desk.run("tick t.b; pull t.a u.a; right t.b; submenu WHERE; choose ="));
        QCOMPARE(desk.jumps,
                 QString("%1%2%3").arg(ElementSelectColumn).arg(ElementSource).arg(ElementWhere));
        QCOMPARE(excluded, 1);
        // While a text is read nothing is done: a tick goes back, what was deleted comes back.
        const QString jumps = desk.jumps;
        QVERIFY(desk.run("hold; sql SELECT t.b FROM t, u; tick t.c"));
        QVERIFY(desk.canvas().contains(": * [a] [b] c;"));
        QVERIFY(desk.run("pull t.b u.d; select u; key Del"));
        QVERIFY(desk.canvas().contains("u: * a d"));
        QCOMPARE(desk.jumps, jumps);
        QVERIFY(desk.run("deliver"));
    }

    void theRelationModeShowsInTheBar() {
        DiagramDesk desk(Delivery::AtOnce);
        auto* const field = desk.panel->findChild<QRadioButton*>("fieldRelRadioButton");
        for (const char* const mode : {"2", "7", ""}) {
            desk.panel->setRelationMode(mode);
            QVERIFY(field->isVisible() && field->isChecked());
        }
        QVERIFY(desk.run("mode table"));
        QCOMPARE(desk.panel->relationMode(), QString("1"));
    }

    void theEngineMayGo_data() { addHosts(); }
    void theEngineMayGo() {
        DiagramDesk desk(hostOfTest());
        desk.parse("SELECT t.a FROM t INNER JOIN ( SELECT * FROM w ) AS s ON t.a = s.a");
        QVERIFY(desk.run("select t; busy; add v"));
        desk.engine.destroy();
        desk.run("free");
        QCOMPARE(desk.canvas(), QString());
        QVERIFY(desk.panel->layerPaths().empty());
        OwnedEngine<> another(DatabaseTypeSQLite);
        desk.connectServer(another.get());
        desk.panel->setEngine(another.get());
        another->parseQuery("SELECT w.a FROM w", {});
        desk.settle();
        QCOMPARE(desk.canvas(), QString("w: * [a]"));
        desk.panel->setEngine(nullptr);
    }

    void theThemeIsTaken() {
        DiagramDesk desk(Delivery::AtOnce);
        desk.parse("SELECT * FROM t");
        for (const QEvent::Type type : {QEvent::PaletteChange, QEvent::StyleChange}) {
            desk.host.isDark = !desk.host.isDark;
            QEvent change(type);
            QCoreApplication::sendEvent(desk.panel.get(), &change);
            const QImage picture = desk.view()->viewport()->grab().toImage();
            const bool isDark = picture.pixelColor(picture.width() - 5, 5).lightness() < 100;
            QCOMPARE(isDark, desk.host.isDark);
        }
    }

    void eachLayerHasItsZoom() {
        DiagramDesk desk(Delivery::AtOnce);
        desk.parse("SELECT * FROM ( SELECT t.a FROM t, u ) AS s");
        LumoControl* const control = desk.panel->drawer()->getControl();
        for (const double zoom : {0.5, 1.5}) {
            control->setZoom(zoom, {0, 0});
            desk.panel->drawer()->scrollToOrigin();
            QVERIFY(desk.run("double s"));
            QCOMPARE(control->getZoom(), zoom == 0.5 ? 1.0 : 2.0);
            control->setZoom(2, {0, 0});
            QVERIFY(desk.run("out"));
            QCOMPARE(control->getZoom(), zoom);
        }
    }
};

}  // namespace QB::Test

QTEST_MAIN(QB::Test::DiagramPanelTest)
#include "diagram_panel_test.moc"
