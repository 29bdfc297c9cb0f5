#include <QAbstractButton>
#include <QCheckBox>

#include "panels/column_alias.h"
#include "panels/column_picker_panel_widget.h"
#include "panels/source_column_selection_panel_widget.h"
#include "rows/column_nested_list_row_widget.h"
#include "support/panel_desk.h"
#include "support/qt_animations.h"
#include "tools/validation.h"

namespace QB {
namespace {

using namespace Component::SQL;
using Test::Delivery;

QBColumnListPanelWidget* makePanel(TopLevelQueryComponentElementEnum clause) {
    if (clause == ElementSelectColumn) return new QBSourceColumnSelectionPanelWidget;
    auto* const picker = new QBColumnPickerPanelWidget;
    picker->setRelatedElements({clause});
    return picker;
}

/// The panel of a clause of columns, driven by its user.
class Desk : public Test::PanelDesk {
public:
    Desk(Delivery delivery, TopLevelQueryComponentElementEnum clause, DatabaseType family)
        : PanelDesk(delivery, family), panel(makePanel(clause)) {
        show(panel);
    }

    bool runOwn(const QString& word, const QString& rest) override {
        if (word == "tick") return clickOn(box(rest));
        // What the list says of a drag that has ended.
        return word == "dropped" && (Q_EMIT view()->rowDropped(rest.toInt()), true);
    }

    QCheckBox* box(const QString& option) const {
        const auto boxes = panel->findChildren<QCheckBox*>();
        for (QCheckBox* each : boxes) {
            if (each->text().startsWith(option)) return each;
        }
        return nullptr;
    }

    QBColumnListPanelWidget* const panel;  // owned by the base
};

constexpr auto S = ElementSelectColumn;
constexpr auto G = ElementGroupBy;
constexpr auto O = ElementOrderBy;

struct Story {
    const char* name;
    TopLevelQueryComponentElementEnum clause;
    const char* before;
    const char* events;
    const char* after;
};

const Story stories[] = {
    // adding
    {"an added field goes to the end", S, "SELECT t.a, t.b FROM t", "click 0 add; pick t.c",
     "SELECT t.a, t.b, t.c FROM t"},
    {"an inserted field goes before its row", S, "SELECT t.a, t.b FROM t",
     "menu 1 Insert row; pick t.c", "SELECT t.a, t.c, t.b FROM t"},
    {"a typed expression", S, "SELECT t.a FROM t", "click 0 add; tab 1; type 1+1; key Ctrl+Return",
     "SELECT t.a, 1+1 FROM t"},
    {"Return breaks the line of an expression", S, "SELECT 1+1 FROM t",
     "click 0 field; key Ctrl+End; key Return; type +2; key Ctrl+Return", "SELECT 1+1 +2 FROM t"},
    {"an expression keeps its comment to itself", S, "SELECT t.a, t.b FROM t",
     "click 0 field; tab 1; type 1 -- one; key Ctrl+Return; click 0 alias; type x; key Return",
     "SELECT 1 -- one AS x, t.b FROM t"},
    {"a click outside accepts an expression", S, "SELECT t.a FROM t",
     "click 0 add; tab 1; type 1+1; outside", "SELECT t.a, 1+1 FROM t"},
    {"all fields of a table", S, "SELECT t.a FROM t", "click 0 add; pick t.*",
     "SELECT t.a, t.* FROM t"},
    {"an aggregate over all", S, "SELECT t.a FROM t", "click 0 add; aggregate COUNT; pick All",
     "SELECT t.a, COUNT(*) FROM t"},
    {"the prompt of an empty list", S, "SELECT * FROM t",
     "click 0 row; key Del; key Del; click 0 field; pick t.b", "SELECT t.b FROM t"},
    {"by keyboard alone", S, "SELECT t.a FROM t",
     "click 0 row; key Ins; key Down; key Down; key Down; key Down; key Down; key Return",
     "SELECT t.a, t.b FROM t"},
    {"escape adds nothing", S, "SELECT t.a FROM t", "click 0 add; tab 1; type 1+1; key Esc",
     "SELECT t.a FROM t"},
    {"nothing chosen adds nothing", S, "SELECT t.a FROM t",
     "click 0 add; outside; click 0 add; tab 1; outside; click 0 add; tab 1; type  ; outside",
     "SELECT t.a FROM t"},
    // editing
    {"another field", S, "SELECT t.a AS x FROM t", "click 0 field; pick t.c",
     "SELECT t.c AS x FROM t"},
    {"nothing new chosen changes nothing", S, "SELECT a, t.b+1 FROM t, u",
     "click 0 field; outside; click 1 field; outside", "SELECT a, t.b+1 FROM t, u"},
    {"a field without its table stays so until another is chosen", S, "SELECT a, a FROM t",
     "click 0 field; aggregate MAX; outside; click 1 field; pick t.b", "SELECT MAX(a), t.b FROM t"},
    {"an aggregate alone", S, "SELECT t.a AS x FROM t", "click 0 field; aggregate SUM; outside",
     "SELECT SUM(t.a) AS x FROM t"},
    {"an aggregate taken away", S, "SELECT t.a FROM t",
     "click 0 field; aggregate SUM; outside; click 0 field; aggregate ; outside",
     "SELECT t.a FROM t"},
    {"a field becomes an expression and stays what others refer to", S,
     "SELECT t.a AS x FROM t GROUP BY x ORDER BY x DESC",
     "click 0 field; tab 1; type 1+1; key Ctrl+Return; click 0 alias; type y; key Return",
     "SELECT 1+1 AS y FROM t GROUP BY y ORDER BY y DESC"},
    {"to a wildcard nobody can refer", S, "SELECT t.a AS x FROM t ORDER BY x ASC",
     "click 0 field; pick t.*; click 0 field; pick t.b; click 0 alias; type y; key Return",
     "SELECT t.b AS y FROM t ORDER BY x ASC"},
    {"an expression becomes a field and keeps its alias", S,
     "SELECT t.a+1 AS x FROM t ORDER BY x ASC", "click 0 field; tab 0; pick t.b",
     "SELECT t.b AS x FROM t ORDER BY x ASC"},
    // aliases
    {"columns that refer to an alias follow it", S,
     "SELECT t.a AS x, x FROM t GROUP BY x ORDER BY MAX(x) DESC",
     "click 0 alias; type y; key Return",
     "SELECT t.a AS y, x FROM t GROUP BY y ORDER BY MAX(y) DESC"},
    {"without an alias they name the field", S, "SELECT SUM(t.a) AS x FROM t ORDER BY x DESC",
     "click 0 alias; key Del; key Return", "SELECT SUM(t.a) FROM t ORDER BY SUM(t.a) DESC"},
    {"without an alias they repeat the expression", S,
     "SELECT t.a+1 AS x FROM t GROUP BY x ORDER BY x DESC", "click 0 alias; key Del; outside",
     "SELECT t.a+1 FROM t GROUP BY t.a+1 ORDER BY t.a+1 DESC"},
    {"but not a number, which would be the place of a column", S,
     "SELECT 2 AS x, t.a FROM t GROUP BY x ORDER BY x DESC, MAX(x) ASC",
     "click 0 alias; key Del; outside",
     "SELECT 2, t.a FROM t GROUP BY x ORDER BY x DESC, MAX(2) ASC"},
    {"however it is dressed", S, "SELECT (-(2)) AS x, t.a FROM t ORDER BY x ASC",
     "click 0 alias; key Del; outside", "SELECT (-(2)), t.a FROM t ORDER BY x ASC"},
    {"nor is a sum one", S, "SELECT 2-1 AS x, t.a FROM t ORDER BY x ASC",
     "click 0 alias; key Del; outside", "SELECT 2-1, t.a FROM t ORDER BY 2-1 ASC"},
    {"escape leaves the alias", S, "SELECT t.a AS x FROM t", "click 0 alias; type y; key Esc",
     "SELECT t.a AS x FROM t"},
    // moving
    {"up and down by key", S, "SELECT t.a, t.b, t.c FROM t",
     "click 2 row; key Ctrl+Up; key Ctrl+Up; key Ctrl+Up; click 1 row; key Ctrl+Down; key "
     "Ctrl+Down",
     "SELECT t.c, t.b, t.a FROM t"},
    {"by button", G, "SELECT t.a FROM t GROUP BY t.a, t.b, t.c",
     "click 1 row; click 0 row; button moveDownButton; button moveDownButton; button moveUpButton",
     "SELECT t.a FROM t GROUP BY t.b, t.a, t.c"},
    {"by drag", O, "SELECT t.a FROM t ORDER BY t.a ASC, t.b DESC, t.c ASC",
     "click 0 row; dropped -1; click 2 row; dropped 1",
     "SELECT t.a FROM t ORDER BY t.b DESC, t.a ASC, t.c ASC"},
    {"a drop while the chooser is open moves nothing", O,
     "SELECT t.a FROM t ORDER BY t.a ASC, t.b ASC", "click 0 row; key Ins; dropped -1; key Esc",
     "SELECT t.a FROM t ORDER BY t.a ASC, t.b ASC"},
    // removing
    {"several rows at once", S, "SELECT t.a, t.b, t.c, 1 FROM t",
     "click 0 row; click 2 row ctrl; key Del; key Del", "SELECT t.b FROM t"},
    {"by its control and by the menu", O, "SELECT t.a FROM t ORDER BY t.a ASC, t.b ASC, t.c ASC",
     "click 1 delete; menu 1 Remove", "SELECT t.a FROM t ORDER BY t.a ASC"},
    {"faster than the host tells", S, "SELECT t.a, t.b, t.c, 1 FROM t",
     "click 0 row; hold; key Del; key Ctrl+Down; key Del; deliver", "SELECT t.c, 1 FROM t"},
    // GROUP BY and ORDER BY
    {"a column of the SELECT list", O, "SELECT t.a+1 AS x FROM t", "click 0 field; pick t.a+1 (x)",
     "SELECT t.a+1 AS x FROM t ORDER BY x"},
    {"a column of the SELECT list without alias", G, "SELECT u.a FROM t, u",
     "click 0 field; pick u.a", "SELECT u.a FROM t, u GROUP BY u.a"},
    {"one click on the direction is one step", O, "SELECT t.a FROM t ORDER BY t.a ASC, 1+1 DESC",
     "click 0 order; click 1 order", "SELECT t.a FROM t ORDER BY t.a DESC, 1+1"},
    {"three clicks on the direction are a round", O, "SELECT t.a FROM t ORDER BY t.a DESC",
     "click 0 order; click 0 order; click 0 order", "SELECT t.a FROM t ORDER BY t.a DESC"},
    {"the direction by key", O, "SELECT t.a FROM t ORDER BY t.a DESC",
     "click 0 row; key Right; key Right; key Return; key Return",
     "SELECT t.a FROM t ORDER BY t.a ASC"},
    {"the direction by menu", O, "SELECT t.a FROM t ORDER BY t.a ASC, t.b ASC",
     "menu 1 Descending; click 0 row; menu 0 No direction",
     "SELECT t.a FROM t ORDER BY t.a, t.b DESC"},
    {"an expression keeps the direction", O, "SELECT t.a FROM t ORDER BY t.a DESC",
     "click 0 field; tab 1; type 1+1; key Ctrl+Return; hold; click 0 order; deliver; click 0 order",
     "SELECT t.a FROM t ORDER BY 1+1 ASC"},
    // options
    {"DISTINCT", S, "SELECT t.a FROM t", "tick DISTINCT", "SELECT DISTINCT t.a FROM t"},
    {"DISTINCT taken back by key", S, "SELECT DISTINCT t.a FROM t",
     "tick DISTINCT; key Space; key Space", "SELECT t.a FROM t"},
};

}  // namespace

/// What stands behind SELECT, the box that is clicked, and what stands there then.
struct OptionClick {
    const char* before;
    const char* box;
    const char* after;
};

const OptionClick optionClicks[] = {
    {"", "DISTINCT", "DISTINCT"},
    {"DISTINCT", "DISTINCT", ""},
    {"ALL", "DISTINCT", "DISTINCT"},
    {"SQL_NO_CACHE", "DISTINCT", "DISTINCT SQL_NO_CACHE"},
    {"SQL_NO_CACHE DISTINCT R&D", "DISTINCT", "SQL_NO_CACHE R&D"},
    {"DISTINCT ON (a,  b)", "DISTINCT", ""},
    {"DISTINCT ON (a,  b)", "ON (a,  b)", "DISTINCT"},
    {"DISTINCT R&D", "R&&D", "DISTINCT"},
};

class ColumnPanelsTest : public QObject {
    Q_OBJECT

private:
    static void setOption(Desk& desk, const std::string& option) {
        desk.engine->modifyInTopLevelQueryComponentElement<ELEMSQLSelectColumnExpr*>(
            S, desk.engine->currentTopLevelQueryComponentLayer(),
            [&](ELEMSQLSelectColumnExpr* element) {
                element->selectOption = option;
                return true;
            },
            nullptr);
        desk.settle();
    }
    static QStringList boxes(const Desk& desk) {
        QStringList texts;
        for (const QCheckBox* box : desk.panel->findChildren<QCheckBox*>())
            texts << (box->isChecked() ? "[x] " : "[ ] ") + box->text();
        return texts;
    }
    static int reason(const Desk& desk, int row) {
        auto* const widget =
            dynamic_cast<QBColumnNestedListRowWidget*>(desk.panel->rowView()->rowWidget(row));
        return widget ? widget->invalidReason() : -2;
    }

private Q_SLOTS:
    void cleanupTestCase() { QB::Test::outliveAnimations(); }

    void everyEditGivesItsText_data() { Test::addStories(stories); }
    void everyEditGivesItsText() {
        const Story& told = Test::storyOfTest(stories);
        Desk desk(Test::hostOfTest(), told.clause, DatabaseTypeMySQL);
        desk.tell(told.before, told.events, told.after);
    }

    void theOrderOfEventsAndRefreshesLeavesRowsAndModelInStep_data() { Test::addHosts(); }
    void theOrderOfEventsAndRefreshesLeavesRowsAndModelInStep() {
        Desk desk(Test::hostOfTest(), O, DatabaseTypeMySQL);
        desk.parse("SELECT t.a FROM t");
        QVERIFY(desk.run("click 0 field; pick t.b; hold; click 0 add; pick t.c; key Ctrl+Up"));
        QCOMPARE(desk.statement()->orderByExpr->columns.size(), std::size_t(2));
        // The row that was added is the current one, and every column has its direction.
        QCOMPARE(desk.panel->rowView()->currentRow(), 0);
        QCOMPARE(desk.panel->rowCount(), 2);
        for (const auto* column : desk.statement()->orderByExpr->columns)
            QVERIFY(dynamic_cast<SQLAbstractColumnComponent::ExtraDataOrderDirection*>(
                column->extraData));
        QVERIFY(desk.run("deliver"));
        QCOMPARE(desk.text(), QString("SELECT t.a FROM t ORDER BY t.c, t.b"));
        QCOMPARE(desk.panel->rowView()->currentRow(), 0);
    }

    void aColumnWhoseSelectColumnHasGoneStaysMarkedUntilItIsEdited_data() { Test::addHosts(); }
    void aColumnWhoseSelectColumnHasGoneStaysMarkedUntilItIsEdited() {
        Desk desk(Test::hostOfTest(), O, DatabaseTypeMySQL);
        desk.parse("SELECT t.a+1 AS x, t.b FROM t ORDER BY t.b DESC, x ASC");
        QCOMPARE(reason(desk, 1), -1);
        QVERIFY(!desk.panel->hasInvalidComponents());
        QVERIFY(desk.run("click 1 field"));  // the popup outlives what it offers
        desk.dropSelectColumn();
        QVERIFY(desk.run("key Esc"));
        QCOMPARE(desk.text(), QString("SELECT t.b FROM t ORDER BY t.b DESC, x ASC"));
        QCOMPARE(reason(desk, 1), 0);
        QVERIFY(!desk.panel->tabIcon().isNull());
        QVERIFY(desk.run("click 0 order; click 0 add; pick t.a; key Del"));  // looks at all again
        QCOMPARE(reason(desk, 0), -1);
        QCOMPARE(reason(desk, 1), 0);
        QVERIFY(desk.run("click 1 field; pick t.c"));
        QCOMPARE(reason(desk, 1), -1);
        QVERIFY(!desk.panel->hasInvalidComponents());
        QCOMPARE(desk.text(), QString("SELECT t.b FROM t ORDER BY t.b, t.c ASC"));
    }

    void aColumnThatReferredToANumberIsMarkedWhenTheNumberLosesItsAlias() {
        for (const Delivery delivery : {Delivery::AtOnce, Delivery::Later}) {
            Desk desk(delivery, O, DatabaseTypeMySQL);
            desk.parse("SELECT 2 AS x FROM t ORDER BY x, t.a");
            QCOMPARE(reason(desk, 0), -1);
            desk.engine->modifyInTopLevelQueryComponentElement<ELEMSQLSelectColumnExpr*>(
                S, 0,
                [&](ELEMSQLSelectColumnExpr* element) {
                    setColumnAlias(element->columns.front(), {}, desk.engine.get());
                    return true;
                },
                nullptr);
            desk.settle();
            QCOMPARE(reason(desk, 0), int(Tools::Validation::InvalidReferencedColumn));
            QVERIFY(desk.run("click 1 order"));  // looks at all again
            QCOMPARE(reason(desk, 0), int(Tools::Validation::InvalidReferencedColumn));
            QCOMPARE(desk.text(), QString("SELECT 2 FROM t ORDER BY x ASC, t.a DESC"));
        }
    }

    void noChangeIsAnnouncedWithoutOne() {
        Desk desk(Delivery::AtOnce, S, DatabaseTypeMySQL);
        desk.parse("SELECT t.a, 1+1 FROM t");
        int announced = 0;
        QObject::connect(desk.engine->signalEmitter(),
                         &QBEngineSignalEmitter::topLevelQueryComponentElementModified, desk.panel,
                         [&announced] { ++announced; });
        QVERIFY(
            desk.run("click 0 field; outside; click 1 field; outside; click 0 alias; outside; "
                     "click 0 add; pick t; outside; click 1 row; key Ctrl+Down; dropped 1"));
        QCOMPARE(announced, 0);
    }

    void aChooserWhoseColumnHasGoneClosesAndChangesNoOther_data() { Test::addHosts(); }
    void aChooserWhoseColumnHasGoneClosesAndChangesNoOther() {
        Desk desk(Test::hostOfTest(), S, DatabaseTypeMySQL);
        desk.parse("SELECT t.a, t.b FROM t");
        QVERIFY(desk.run("click 0 field; tab 1; type 1+1"));
        desk.dropSelectColumn();
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(desk.text(), QString("SELECT t.b FROM t"));
    }

    void noWordBehindSelectIsLost() {
        for (const OptionClick& click : optionClicks) {
            Desk desk(Delivery::AtOnce, S, DatabaseTypePostgreSQL);
            desk.parse("SELECT t.a FROM t");
            setOption(desk, click.before);
            QCheckBox* const box = desk.box(click.box);
            QVERIFY(desk.run(QString("tick ") + click.box));
            QCOMPARE(desk.statement()->selectColumnExpr->selectOption, std::string(click.after));
            QVERIFY(box->hasFocus());
            QVERIFY(desk.run("click 0 add; key Esc"));  // the list looks at the statement again
            QCOMPARE(desk.box(click.box), box);
        }
    }

    void boxesAreThoseOfTheFamilyAndOfTheLayer() {
        Desk desk(Delivery::AtOnce, S, DatabaseTypeMySQL);
        desk.parse("SELECT DISTINCT x.a FROM (SELECT t.a FROM t) x");
        QCOMPARE(boxes(desk), QStringList("[x] DISTINCT"));
        auto* const derived =
            dynamic_cast<SQLSubquerySourceComponent*>(desk.statement()->sourceExpr->root->value);
        desk.engine->pushNewLayerTopLevelQueryComponent(derived->subquery, "x");
        QCOMPARE(boxes(desk), QStringList("[ ] DISTINCT"));
        QVERIFY(desk.run("tick DISTINCT; click 0 row; key Del"));
        QCOMPARE(boxes(desk), QStringList("[x] DISTINCT (needs a column)"));
        QVERIFY(desk.box("DISTINCT")->isEnabled());
        QVERIFY(desk.run("tick DISTINCT"));
        QVERIFY2(!desk.box("DISTINCT")->isEnabled(), "it would not be written");
        QVERIFY(desk.run("click 0 add; pick t.a; tick DISTINCT; click 0 add; pick t.b"));
        desk.engine->popCurrentLayerTopLevelQueryComponent();
        QCOMPARE(boxes(desk), QStringList("[x] DISTINCT"));
        QCOMPARE(desk.text(), QString("SELECT DISTINCT x.a FROM ( SELECT DISTINCT t.a, t.b FROM t )"
                                      " AS x"));
        desk.engine->setDatabaseInfo(DatabaseTypeMongoDB, 1);
        QCOMPARE(boxes(desk), QStringList());
        QCOMPARE(desk.panel->rowCount(), 0);
        QVERIFY(desk.run("key Ins; key Del"));
    }
};

}  // namespace QB

QTEST_MAIN(QB::ColumnPanelsTest)
#include "column_panels_test.moc"
