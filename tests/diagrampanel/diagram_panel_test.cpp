#include <QLabel>
#include <QRadioButton>
#include <QtTest>
#include <memory>

#include "canvas/drawer/diagram_hint_widget.h"
#include "diagrampanel/diagram_desk.h"
#include "platform/tolk/tolk.h"

namespace QB::Test {
namespace {

using namespace Component::SQL;

/// A statement, what the user does, the statement then, and what the canvas shows.
struct Story {
    const char* name;
    const char* before;
    const char* events;
    const char* after;
    const char* canvas;
};

const Story stories[] = {
    // The text shows on the canvas.
    {"tables with their fields", "SELECT t.a, t.* FROM t, u", "", "SELECT t.a, t.* FROM t, u", ""},
    {"a join", "SELECT * FROM t INNER JOIN u ON t.a = u.a", "", "", ""},
    {"a join between fields", "SELECT * FROM t LEFT JOIN u ON t.a = u.a AND u.d = t.b",
     "mode field", "", ""},
    {"every other source", "SELECT s.d FROM ( SELECT a, d FROM u ) AS s, f(1)", "", "", ""},
    {"one table twice", "SELECT y.a FROM t AS x INNER JOIN t AS y ON x.b = y.a", "", "", ""},
    {"three in a row", "SELECT * FROM t INNER JOIN u ON t.a = u.a LEFT JOIN v ON t.b = v.a", "", "",
     ""},
    {"another text", "SELECT t.a FROM t", "sql SELECT w.a FROM w, v", "", ""},
    {"a text that is none", "SELECT t.a FROM t", "sql SELECT FROM WHERE", "", ""},
    // What the user does there shows in the text.
    {"tick", "SELECT t.a FROM t", "tick t.b; tick t.*", "", ""},
    {"untick", "SELECT t.a, t.b FROM t", "tick t.a", "", ""},
    {"drag a link", "SELECT * FROM t, u", "pull t.b u.d", "", ""},
    {"delete an item", "SELECT t.a FROM t INNER JOIN u ON t.a = u.a", "select u; key Del", "", ""},
    {"delete all", "SELECT t.a FROM t INNER JOIN u ON t.a = u.a, v",
     "select t; key Ctrl+A; key Del", "", ""},
    {"delete what a bracket holds", "SELECT t.a FROM t, ( u INNER JOIN v ON u.a = v.a )",
     "select u; also v; key Del", "", ""},
    {"delete a link", "SELECT * FROM t INNER JOIN u ON t.a = u.a", "link; key Del", "",
     ""},
    {"delete one of two conditions", "SELECT * FROM t INNER JOIN u ON t.a = u.a AND t.b = u.d",
     "mode field; link; key Del", "", ""},
    {"give an alias", "SELECT t.a FROM t", "select t; key F2; type x; key Return", "", ""},
    {"escape from an alias", "SELECT t.a FROM t", "select t; key F2; type x; key Esc", "", ""},
    {"a condition by the menu", "SELECT * FROM t", "right t.b; submenu WHERE; choose =", "", ""},
    {"a group by the menu", "SELECT * FROM t", "right t.b; submenu GROUP BY; choose Group by this field", "", ""},
    {"an order by the menu", "SELECT * FROM t", "right t.b; submenu ORDER BY; choose DESC", "", ""},
    {"open the editor of a join", "SELECT * FROM t INNER JOIN u ON t.a = u.a", "link; editor; key Esc", "",
     ""},
    // Tables from the tree.
    {"add a table", "SELECT t.a FROM t", "add v", "", ""},
    {"add a table that a key links", "SELECT t.a FROM t", "add u", "", ""},
    {"the same twice while it loads", "SELECT t.a FROM t", "busy; add w; add w; free", "", ""},
    {"a reset ends the wait", "SELECT t.a FROM t", "busy; add w; reset; free", "", ""},
    // Layers.
    {"into a subquery", "SELECT s.d FROM ( SELECT u.a, u.d FROM u, v ) AS s", "double s", "", ""},
    {"a change there, and back", "SELECT s.d FROM ( SELECT u.a, u.d FROM u ) AS s",
     "double s; tick u.d; out", "", ""},
    {"added to the layer it was meant for", "SELECT s.d FROM ( SELECT u.d FROM u ) AS s",
     "busy; add w; double s; free; out", "", ""},
    {"added when the layer is entered again", "SELECT s.d FROM ( SELECT u.d FROM u ) AS s",
     "double s; busy; add w; out; free; double s", "", ""},
    {"a reset leaves the layers", "SELECT s.d FROM ( SELECT u.d FROM u ) AS s", "double s; reset", "",
     ""},
    // While a text is read.
    {"nothing is done during a parse", "SELECT t.a FROM t, u",
     "hold; sql SELECT t.b FROM t, u; tick t.c; pull t.b u.d; select u; key Del; add v; deliver",
     "", ""},
};

}  // namespace

class DiagramPanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theCanvasAndTheTextAreOne_data() { addStories(stories); }
    void theCanvasAndTheTextAreOne() {
        const Story& story = storyOfTest(stories);
        DiagramDesk desk(hostOfTest());
        desk.parse(story.before);
        QCOMPARE(desk.text(), story.before);
        QVERIFY(desk.run(story.events));
        qInfo("TEXT  %s", qPrintable(desk.text()));
        qInfo("CANVAS %s", qPrintable(desk.canvas()));
    }
};

}  // namespace QB::Test

QTEST_MAIN(QB::Test::DiagramPanelTest)
#include "diagram_panel_test.moc"
