#include "panels/source_selection_panel_widget.h"

#include "support/story_desk.h"

namespace QB {
namespace {

using namespace Component::SQL;
using Test::Delivery;

/// The FROM panel over a server with the tables t, u, v and w. Parts of rows go by the names in
/// their forms. Further events:
///
///     back          leave the layer
class Desk : public Test::PanelDesk {
public:
    explicit Desk(Delivery delivery, DatabaseType family = DatabaseTypeMySQL)
        : PanelDesk(delivery, family, {"v", "w"}) {
        show(new QBSourceSelectionPanelWidget);
    }

    QBSourceSelectionPanelWidget* sources() const {
        return static_cast<QBSourceSelectionPanelWidget*>(listPanel.get());
    }

    /// The entries of a row's menu.
    QString entries(int row) {
        view()->scrollTo(view()->model()->index(row, 0));
        openMenu(row);
        settle();
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu) return {};
        QStringList all;
        const auto actions = menu->actions();
        for (const QAction* action : actions)
            all.append((action->isEnabled() || action->isSeparator() ? "" : "-") + action->text());
        run("key Esc");
        return all.join('|');
    }

    bool runOwn(const QString& word, const QString&) override {
        if (word != "back") return false;
        engine->popCurrentLayerTopLevelQueryComponent();
        return true;
    }
};

const Test::Story stories[] = {
    // adding
    {"the first table has nothing to be joined to", "SELECT 1", "click 0 main; pick t",
     "SELECT 1 FROM t"},
    {"an INNER JOIN is proposed", "SELECT * FROM t", "click 0 addLabel; pick u",
     "SELECT * FROM t INNER JOIN u"},
    {"another kind of join", "SELECT * FROM t", "click 0 addLabel; join 5; pick main.u",
     "SELECT * FROM t CROSS JOIN u"},
    {"a kind chosen after the table", "SELECT * FROM t",
     "click 0 addLabel; key Down; outside; click 0 addLabel; join 1; pick u", "SELECT * FROM t, u"},
    {"a join of one's own words", "SELECT * FROM t",
     "click 0 addLabel; join 0; type STRAIGHT_JOIN; pick u", "SELECT * FROM t STRAIGHT_JOIN u"},
    {"a custom join without words is refused", "SELECT * FROM t",
     "click 0 addLabel; join 0; pick u; outside; key Esc", "SELECT * FROM t",
     "words of the custom"},
    {"and loses no typed text", "SELECT * FROM t",
     "click 0 addLabel; tab 1; type f(1); join 0; outside; join 1", "SELECT * FROM t, f(1)",
     "words of the custom join"},
    {"added at the end of the brackets", "SELECT * FROM ( t INNER JOIN u ), v",
     "click 1 addLabel; pick w", "SELECT * FROM ( t INNER JOIN u INNER JOIN w ), v"},
    {"added behind the brackets", "SELECT * FROM ( t INNER JOIN u ), v",
     "click 4 addLabel; join 1; pick w", "SELECT * FROM ( t INNER JOIN u ), v, w"},
    {"a schema heading adds nothing", "SELECT * FROM t",
     "click 0 addLabel; pick main; key Esc; click 0 addLabel; pick main; outside; click 0 "
     "addLabel; outside",
     "SELECT * FROM t"},
    {"escape adds nothing", "SELECT * FROM t", "click 0 addLabel; tab 1; type v; key Esc",
     "SELECT * FROM t"},
    {"inserted first it asks for no join", "SELECT * FROM t INNER JOIN u ON t.a = u.a",
     "menu 0 Insert row; pick v", "SELECT * FROM v, t INNER JOIN u ON t.a = u.a"},
    {"inserted first in brackets it asks for no join", "SELECT * FROM w, ( t INNER JOIN u )",
     "menu 3 Insert row; pick v", "SELECT * FROM w, ( v, t INNER JOIN u )"},
    {"inserted before a table it goes before its join", "SELECT * FROM t LEFT JOIN u ON t.a = u.a",
     "menu 2 Insert row; join 5; pick v", "SELECT * FROM t CROSS JOIN v LEFT JOIN u ON t.a = u.a"},
    {"by keyboard alone", "SELECT * FROM t",
     "click 0 row; key Ins; key Down; key Down; key Down; key Return",
     "SELECT * FROM t INNER JOIN u"},
    {"faster than the host tells", "SELECT * FROM t",
     "hold; click 0 addLabel; pick u; click 0 addLabel; pick v; deliver",
     "SELECT * FROM t INNER JOIN u INNER JOIN v"},
    // texts
    {"a typed expression", "SELECT * FROM t",
     "click 0 addLabel; join 1; tab 1; type f(1); key Ctrl+Return", "SELECT * FROM t, f(1)"},
    {"a typed SELECT becomes a subquery", "SELECT * FROM t",
     "click 0 addLabel; join 1; tab 1; type (SELECT 1); outside", "SELECT * FROM t, ( SELECT 1 )"},
    {"and takes the alias behind it", "SELECT * FROM t",
     "click 0 addLabel; join 1; tab 1; type (SELECT 1) AS x; outside",
     "SELECT * FROM t, ( SELECT 1 ) AS x"},
    {"a text keeps its comment to itself", "SELECT y.a FROM t, f(1) AS y",
     "click 2 main; key Ctrl+A; type f(2) -- two; outside", "SELECT y.a FROM t, f(2) -- two AS y"},
    {"an empty text is told", "SELECT * FROM t", "click 0 addLabel; tab 1; type  ; outside",
     "SELECT * FROM t", "text is empty"},
    {"an edited text becomes a subquery and keeps its alias", "SELECT x.a FROM f(1) AS x",
     "click 0 main; key Ctrl+A; type SELECT 2 AS a; key Ctrl+Return",
     "SELECT x.a FROM ( SELECT 2 AS a ) AS x"},
    {"a text converted to a subquery opens it", "SELECT 1 FROM f(1) AS x",
     "click 0 main; key Ctrl+A; type g(2); outside; menu 0 Convert to subquery",
     "SELECT 1 FROM g(2) AS x", "The query cannot be read"},
    {"a table becomes a text and keeps its alias and its fields", "SELECT x.a FROM t AS x",
     "click 0 main; tab 1; type f(1); outside; click 0 aliasLabel; type y; key Return",
     "SELECT y.a FROM f(1) AS y"},
    {"a table of a tree that has just moved", "SELECT * FROM t, u",
     "click 0 addLabel; pick v; click 2 main; tab 1; type f(1); outside",
     "SELECT * FROM t, f(1) AS u INNER JOIN v"},
    {"what takes a table's place goes by its name", "SELECT t.a, u.a FROM t, u",
     "click 0 main; tab 1; type (SELECT 1 AS a); outside; click 2 main; tab 1; type s.f(1); "
     "outside",
     "SELECT t.a, u.a FROM ( SELECT 1 AS a ) AS t, s.f(1) AS u"},
    {"but a text with more words has its alias, if any, in it", "SELECT * FROM t, u",
     "click 0 main; tab 1; type v AS x; outside; click 2 main; tab 1; type u USE INDEX (a); "
     "outside",
     "SELECT * FROM v AS x, u USE INDEX (a)"},
    {"and no two sources get one name", "SELECT * FROM main.t, s.t, main.w AS u, main.u",
     "click 0 main; tab 1; type f(1); outside; click 6 main; tab 1; type f(1); outside",
     "SELECT * FROM f(1), s.t, main.w AS u, f(1)"},
    {"another table", "SELECT x.a, u.b, u.b + 1 FROM t AS x, u",
     "click 0 main; outside; click 2 main; pick v", "SELECT x.a, v.b, v.b + 1 FROM t AS x, v"},
    // aliases
    {"fields follow an alias", "SELECT t.a FROM t INNER JOIN u ON t.a = u.a",
     "click 0 aliasLabel; type x; key Return", "SELECT x.a FROM t AS x INNER JOIN u ON x.a = u.a"},
    {"texts follow, too",
     "SELECT lower(t.a), lower(main.t.a), lower(x.t.a), lower('t.a') FROM t INNER JOIN u ON t.a = "
     "upper(`t`.b), f(t.c) WHERE t.b > (SELECT max(w.b) FROM w WHERE w.a = t.a) ORDER BY t.a + 1 "
     "ASC",
     "click 0 aliasLabel; type x; key Return",
     "SELECT lower(x.a), lower(x.a), lower(x.t.a), lower('t.a') FROM t AS "
     "x INNER JOIN u ON x.a = upper(x.b), f(x.c) WHERE "
     "x.b > (SELECT max(w.b) FROM w WHERE w.a = x.a) ORDER BY x.a + 1 ASC"},
    {"texts keep apart two aliases that change places", "SELECT x.a || y.b FROM t AS x, u AS y",
     "click 0 aliasLabel; type z; key Return; click 2 aliasLabel; type x; key Return; click 0 "
     "aliasLabel; type y; key Return",
     "SELECT y.a || x.b FROM t AS y, u AS x"},
    {"texts that may mean another source stay and are told",
     "SELECT t.a + (SELECT max(t.a) FROM w AS t), t.a + (SELECT max(x.a) FROM w AS x) FROM t",
     "click 0 aliasLabel; type x; key Return",
     "SELECT t.a + (SELECT max(t.a) FROM w AS t), t.a + (SELECT max(x.a) FROM w AS x) FROM t AS x",
     "t.a + (SELECT max(t.a) FROM w AS t)\nt.a + (SELECT max(x.a) FROM w AS x)"},
    {"an alias is taken away", "SELECT x.a FROM t AS x",
     "click 0 aliasLabel; key Del; outside; click 0 aliasLabel; type y; key Esc",
     "SELECT t.a FROM t"},
    {"an alias that another source has is told and can be mended", "SELECT * FROM t, u AS x",
     "click 0 aliasLabel; type x; key Return; type 2; outside; click 2 aliasLabel; type t; "
     "outside",
     "SELECT * FROM t AS x2, u AS t", "goes by the name x."},
    {"an alias by key", "SELECT 1 FROM t",
     "click 0 row; key Right; key Right; key Return; type y; key Return", "SELECT 1 FROM t AS y"},
    // joins
    {"the kind of a join", "SELECT * FROM t INNER JOIN u ON t.a = u.a", "click 1 joinLabel; join 4",
     "SELECT * FROM t RIGHT JOIN u ON t.a = u.a"},
    {"the kind by key", "SELECT * FROM t INNER JOIN u ON t.a = u.a",
     "click 1 row; key Return; key Down; key Return", "SELECT * FROM t LEFT JOIN u ON t.a = u.a"},
    {"a join with its condition, from nothing", "SELECT 1",
     "click 0 main; pick t; click 0 addLabel; pick u; click 1 conditionLabel; key Ins; key Return; "
     "pick t.a; key Return; pick u.d; key Esc",
     "SELECT 1 FROM t INNER JOIN u ON t.a = u.d"},
    {"a comma keeps the condition for later", "SELECT * FROM t LEFT JOIN u ON t.a = u.a",
     "click 1 joinLabel; join 1; click 1 joinLabel; join 2",
     "SELECT * FROM t INNER JOIN u ON t.a = u.a"},
    {"a join row removed is a comma without condition", "SELECT * FROM t LEFT JOIN u ON t.a = u.a",
     "click 1 deleteLabel; click 1 joinLabel; join 2", "SELECT * FROM t INNER JOIN u"},
    {"by the Delete key", "SELECT * FROM t LEFT JOIN u USING (a)", "click 1 row; key Del",
     "SELECT * FROM t, u"},
    {"what a comma puts out of sight goes and is told",
     "SELECT * FROM t INNER JOIN u ON t.a = u.a INNER JOIN v ON v.a = t.a AND v.a = u.b",
     "click 1 deleteLabel", "SELECT * FROM t, u INNER JOIN v ON v.a = u.b", "v.a = t.a"},
    {"so does what a chosen comma puts out of sight",
     "SELECT * FROM t INNER JOIN u ON t.a = u.a INNER JOIN v ON v.a = t.a AND v.a = u.b",
     "click 1 joinLabel; join 1; click 1 joinLabel; join 2",
     "SELECT * FROM t INNER JOIN u ON t.a = u.a INNER JOIN v ON v.a = u.b", "v.a = t.a"},
    {"and a table inserted behind a comma",
     "SELECT * FROM t INNER JOIN u ON t.a = u.a INNER JOIN v ON v.a = t.a AND v.a = u.b",
     "menu 3 Insert row; join 1; pick w",
     "SELECT * FROM t INNER JOIN u ON t.a = u.a, w INNER JOIN v", "v.a = u.b"},
    {"a comma that becomes a join reads from the left",
     "SELECT * FROM t, u INNER JOIN v ON v.a = u.b", "click 1 joinLabel; join 5",
     "SELECT * FROM t CROSS JOIN u INNER JOIN v ON v.a = u.b"},
    {"columns of USING", "SELECT * FROM t INNER JOIN u USING (a)",
     "click 1 conditionLabel; key Ctrl+A; type (b, a); key Ctrl+Return",
     "SELECT * FROM t INNER JOIN u USING (b, a)"},
    {"no list of columns is told and can be mended", "SELECT * FROM t INNER JOIN u USING (a)",
     "click 1 conditionLabel; key End; type ) WHERE (1; key Ctrl+Return; key Ctrl+A; type b; "
     "outside",
     "SELECT * FROM t INNER JOIN u USING (b)", "a) WHERE (1"},
    {"ON becomes USING", "SELECT * FROM t INNER JOIN u ON t.a = u.a",
     "menu 1 Change to USING; click 1 conditionLabel; type b; outside",
     "SELECT * FROM t INNER JOIN u USING (b)"},
    {"an outer join that waits for its columns says so", "SELECT * FROM t LEFT JOIN u ON t.a = u.a",
     "menu 1 Change to USING", "SELECT * FROM t NATURAL LEFT JOIN u", "NATURAL LEFT JOIN"},
    {"USING becomes ON", "SELECT * FROM t INNER JOIN u USING (a)", "menu 1 Change to ON",
     "SELECT * FROM t INNER JOIN u"},
    {"conditions of ON stay with the first escape",
     "SELECT * FROM t INNER JOIN u ON t.a = u.a AND t.b = 1",
     "click 1 conditionLabel; key Down; key Del; key Esc",
     "SELECT * FROM t INNER JOIN u ON t.a = u.a"},
    // removing
    {"a table goes with its join and what names it",
     "SELECT * FROM t INNER JOIN u ON t.a = u.a INNER JOIN v ON v.a = u.b AND v.a = t.a",
     "click 2 deleteLabel", "SELECT * FROM t INNER JOIN v ON v.a = t.a"},
    {"a join whose condition it was compares other columns then",
     "SELECT * FROM t INNER JOIN u ON t.a = u.a LEFT JOIN v ON v.a = u.a", "click 2 deleteLabel",
     "SELECT * FROM t NATURAL LEFT JOIN v", "NATURAL LEFT JOIN"},
    {"the last one leaves the prompt", "SELECT 1 FROM t, u",
     "click 0 row; key Del; key Del; key Del", "SELECT 1"},
    {"brackets go with all in them", "SELECT * FROM ( t INNER JOIN u ), v", "menu 4 Remove",
     "SELECT * FROM v"},
    // brackets
    {"empty brackets are filled where they are", "SELECT * FROM t",
     "click 0 addBracketLabel; join 2; key Ins; pick u; click 3 addLabel; join 1; pick v",
     "SELECT * FROM t INNER JOIN ( u, v )"},
    {"the first brackets ask for no join", "SELECT 1", "click 0 addBracketLabel; key Ins; pick u",
     "SELECT 1 FROM ( u )"},
    {"grouped and ungrouped", "SELECT * FROM t INNER JOIN u ON t.a = u.a INNER JOIN v ON v.a = u.b",
     "click 0 row; click 2 row shift; menu 0 Group in brackets",
     "SELECT * FROM ( t INNER JOIN u ON t.a = u.a ) INNER JOIN v ON v.a = u.b"},
    {"brackets taken away", "SELECT * FROM t CROSS JOIN ( u INNER JOIN v ON v.a = u.b )",
     "menu 2 Ungroup", "SELECT * FROM t CROSS JOIN u INNER JOIN v ON v.a = u.b"},
    {"what brackets hide stays and is told",
     "SELECT * FROM t INNER JOIN u ON t.a = u.a INNER JOIN v ON v.a = t.b",
     "click 2 row; click 4 row shift; menu 4 Group in brackets; menu 2 Ungroup",
     "SELECT * FROM t INNER JOIN u ON t.a = u.a INNER JOIN v ON v.a = t.b", "v.a = t.b"},
    // subqueries
    {"a subquery as text", "SELECT * FROM ( SELECT 1 ) AS x",
     "menu 0 Edit as plain text; key Ctrl+A; type SELECT a FROM t; key Ctrl+Return",
     "SELECT * FROM ( SELECT a FROM t ) AS x"},
    {"an emptied text is told and leaves the subquery",
     "SELECT x.a FROM ( SELECT t.a FROM t ) AS x",
     "menu 0 Edit as plain text; key Ctrl+A; key Del; key Ctrl+Return; key Esc",
     "SELECT x.a FROM ( SELECT t.a FROM t ) AS x", "text is empty"},
    {"a subquery as text with another alias", "SELECT x.a, -x.a FROM ( SELECT t.a FROM t ) AS x",
     "menu 0 Edit as plain text; key Ctrl+A; type (SELECT u.a FROM u) AS y; key Ctrl+Return",
     "SELECT y.a, -y.a FROM ( SELECT u.a FROM u ) AS y"},
    {"a refused text changes nothing and can be mended", "SELECT * FROM ( SELECT 1 ) AS x",
     "menu 0 Edit as plain text; key Ctrl+End; type  FROM; key Ctrl+Return; type  t; key "
     "Ctrl+Return",
     "SELECT * FROM ( SELECT 1 FROM t ) AS x", "The query cannot be read"},
    {"a subquery is edited in its layer", "SELECT * FROM t, ( SELECT 1 ) AS x",
     "click 2 main; click 0 main; pick u; back; click 2 main; back",
     "SELECT * FROM t, ( SELECT 1 FROM u ) AS x"},
};

}  // namespace

class SourcePanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() { QB::Test::outliveAnimations(); }

    void everyEditGivesItsText_data() { Test::addStories(stories); }
    void everyEditGivesItsText() { Test::tellStory<Desk>(stories); }

    void theMenuOffersWhatTheRowAllows() {
        struct Row {
            int row;
            const char* entries;  ///< a dash before one that cannot be chosen
        };
        const Row rows[] = {
            {0, "Insert row|Insert bracket|Remove||Group in brackets|-Ungroup"},
            {1, "Insert row|Insert bracket|-Remove||Change to USING||-Group in brackets|-Ungroup"},
            {2, "Insert row|Insert bracket|Remove||Group in brackets|Ungroup"},
            {4, "Insert row|Insert bracket|-Remove||Change to ON||-Group in brackets|-Ungroup"},
            {6, "-Insert row|-Insert bracket|Remove||Group in brackets|Ungroup"},
            {8, "Insert row|Insert bracket|Remove||Edit as plain text||Group in brackets|-Ungroup"},
            {10,
             "Insert row|Insert bracket|Remove||Convert to subquery||Group in brackets|-Ungroup"},
        };
        Desk desk(Delivery::AtOnce);
        desk.parse("SELECT * FROM t INNER JOIN (u INNER JOIN v USING (a)), (SELECT 1) AS x, f(1)");
        for (const Row& row : rows)
            QCOMPARE(desk.entries(row.row), QString(row.entries));
        QVERIFY2(!desk.sources()->shouldShowJoinPanel(3, true), "nothing stands before it");
        QVERIFY(desk.sources()->shouldShowJoinPanel(5, true));
        QVERIFY(desk.run("click 0 row; click 1 row ctrl"));
        QVERIFY(desk.entries(1).startsWith("-Insert row|-Insert bracket|"));
        desk.parse("SELECT x.a FROM t INNER JOIN (u INNER JOIN v) AS x");
        for (const int row : {2, 6})  // what names the alias would be lost with it
            QVERIFY2(desk.entries(row).endsWith("|Group in brackets|-Ungroup"),
                     qPrintable(desk.entries(row)));
        desk.parse("SELECT 1");
        QVERIFY(desk.entries(0).startsWith("Insert row|Insert bracket|-Remove|"));
    }

    void aSubqueryWithoutAliasIsMarkedInItsLayer() {
        Desk desk(Delivery::Later);
        desk.parse("SELECT * FROM t");
        QVERIFY(desk.run("click 0 addLabel; join 1; tab 1; type SELECT 1; outside"));
        QVERIFY2(!desk.sources()->hasInvalidComponents(), "it was made just now");
        QCOMPARE(desk.part(2, "aliasLabel")->colour(), LabelColour::Placeholder);
        desk.sources()->panelBecomeInactive();
        QVERIFY(desk.sources()->hasInvalidComponents());
        QCOMPARE(desk.part(2, "aliasLabel")->colour(), LabelColour::Invalid);
        QVERIFY(desk.run("click 2 main"));
        QVERIFY(!desk.sources()->hasInvalidComponents());
        QVERIFY(desk.run("back"));
        QVERIFY(desk.sources()->hasInvalidComponents());
        QVERIFY(desk.run("click 2 aliasLabel; type x; key Return"));
        QVERIFY(!desk.sources()->hasInvalidComponents());
    }

    void aLayerIsCalledByTheAliasOrThePlace() {
        Desk desk(Delivery::AtOnce);
        desk.parse("SELECT * FROM (SELECT 1) AS x, (SELECT 2)");
        QVERIFY(desk.run("click 0 main"));
        QCOMPARE(desk.engine->topLevelQueryComponentLayerName(1), std::string("x"));
        QVERIFY(desk.run("back; click 2 main"));
        QCOMPARE(desk.engine->topLevelQueryComponentLayerName(1), std::string("(Subquery 3)"));
    }

    /// As some servers bind commas, the condition names what is not there.
    void aConditionOutOfSightIsMarkedWhereTheServerCannotSeeIt() {
        for (const DatabaseType family : {DatabaseTypePostgreSQL, DatabaseTypeSQLite}) {
            Desk desk(Delivery::AtOnce, family);
            desk.parse("SELECT * FROM t, u INNER JOIN v ON v.a = t.a");
            QCOMPARE(desk.sources()->hasInvalidComponents(), family != DatabaseTypeSQLite);
            desk.parse("SELECT * FROM t INNER JOIN u ON t.a = u.a INNER JOIN v ON v.a = t.b");
            QVERIFY(!desk.sources()->hasInvalidComponents());
            QVERIFY(desk.run("click 2 row; click 4 row shift; menu 4 Group in brackets"));
            QVERIFY(desk.sources()->hasInvalidComponents());
            QCOMPARE(desk.part(4, "conditionLabel")->colour(), LabelColour::Invalid);
            QCOMPARE(desk.part(1, "conditionLabel")->colour(), LabelColour::Value);
        }
    }

    void aJoinWithoutWhatItNeedsIsMarked() {
        const struct {
            DatabaseType family;
            const char* before;
            const char* events;
            const char* told;
        } lines[] = {
            {DatabaseTypeSQLServer, "SELECT * FROM t LEFT JOIN u ON t.a = u.a",
             "click 1 conditionLabel; key Del; key Esc", "needs a condition"},
            {DatabaseTypeSQLite,
             "SELECT * FROM t INNER JOIN u ON t.a = u.a INNER JOIN v ON v.a = u.a",
             "click 2 deleteLabel", "every row"},
        };
        for (const auto& line : lines) {
            Desk desk(Delivery::Later, line.family);
            desk.parse(line.before);
            QVERIFY(!desk.sources()->hasInvalidComponents());
            QVERIFY(desk.run(line.events));
            QVERIFY(desk.sources()->hasInvalidComponents());
            QCOMPARE(desk.part(1, "conditionLabel")->colour(), LabelColour::Invalid);
            QVERIFY(desk.part(1, "conditionLabel")->toolTip().contains(line.told));
            QVERIFY(desk.run("click 1 joinLabel; join 5"));
            QVERIFY(!desk.sources()->hasInvalidComponents());
        }
    }

    void aConditionThatACrossJoinKeepsIsShownAsLeftOut() {
        Desk desk(Delivery::Later);
        desk.parse("SELECT * FROM t INNER JOIN u ON t.a = u.a");
        QVERIFY(desk.run("click 1 joinLabel; join 5"));
        QBLabel* const kept = desk.part(1, "conditionLabel");
        QCOMPARE(kept->colour(), LabelColour::Placeholder);
        QVERIFY(kept->isVisible() && kept->toolTip().contains("not part of the query"));
        QVERIFY(desk.run("click 1 conditionLabel; key Del; key Esc"));
        QVERIFY(!desk.part(1, "conditionLabel")->isVisible());
    }

    void ownEditsKeepTheRowsAndForeignOnesRebuildThem() {
        Desk desk(Delivery::Later);
        desk.parse("SELECT * FROM t INNER JOIN u");
        const auto* first = desk.sources()->rowLayout().items().front();
        QStringList announced;
        desk.engine->registerNotifyChangeListener(
            "TopLevelQueryComponentElementModifiedNotification",
            [&](const std::string&, const QBNotificationParameters*) {
                announced.append(desk.text());
            });
        QVERIFY(desk.run("click 2 addLabel; pick v; click 0 aliasLabel; type x; key Return"));
        QCOMPARE(desk.sources()->rowLayout().items().front(), first);
        QCOMPARE(announced, QStringList({"SELECT * FROM t INNER JOIN u INNER JOIN v",
                                         "SELECT * FROM t AS x INNER JOIN u INNER JOIN v"}));
        Test::addTable(desk.engine.get(), {"main"}, "w");
        desk.settle();
        QVERIFY(desk.sources()->rowLayout().items().front() != first);
        QCOMPARE(desk.sources()->rowCount(), 7);
    }

    void popupsGoWithTheirRow_data() {
        QTest::addColumn<QString>("opening");
        QTest::addRow("table") << "click 0 addLabel";
        QTest::addRow("alias") << "click 2 aliasLabel";
        QTest::addRow("kind") << "click 1 joinLabel";
        QTest::addRow("condition") << "click 1 conditionLabel; key Del";
        QTest::addRow("menu") << "click 2 row; key Menu";
    }
    void popupsGoWithTheirRow() {
        QFETCH(QString, opening);
        for (const Delivery delivery : {Delivery::AtOnce, Delivery::Later}) {
            Desk other(delivery);
            other.parse("SELECT 1 FROM t INNER JOIN u ON t.a = u.a");
            QVERIFY(other.run(opening));
            other.engine->setDatabaseInfo(DatabaseTypePostgreSQL, 2);
            other.settle();
            QVERIFY(!QApplication::activePopupWidget());
            QCOMPARE(other.sources()->rowCount(), 1);

            Desk desk(delivery);
            desk.parse("SELECT 1 FROM t INNER JOIN u ON t.a = u.a");
            QVERIFY(desk.run(opening));
            QVERIFY(QApplication::activePopupWidget());
            Test::emptyFromClause(desk.engine.get());
            desk.settle();
            QVERIFY(!QApplication::activePopupWidget());
            QCOMPARE(desk.text(), QString("SELECT 1"));
            QVERIFY(desk.run("click 0 main; pick v"));
            QCOMPARE(desk.text(), QString("SELECT 1 FROM v"));
        }
    }
};

}  // namespace QB

QTEST_MAIN(QB::SourcePanelTest)
#include "source_panel_test.moc"
