#include <QPlainTextEdit>
#include <QTabWidget>

#include "conditions/condition_builder_panel_widget.h"
#include "conditions/condition_nested_list_row_widget.h"
#include "model/detached_parts.h"
#include "parser/query_parser.h"
#include "rows/invalid_reason.h"
#include "support/from_clause.h"
#include "support/panel_desk.h"
#include "support/qt_animations.h"
#include "tools/validation.h"

namespace QB {
namespace {

using namespace Component::SQL;
using Test::Delivery;

constexpr auto W = ElementWhere;
constexpr auto H = ElementHaving;
constexpr auto F = ElementSource;  // the condition of the first join

/// The texts of the labels that show, a dimmed one in braces.
QString readRow(const QBConditionNestedListRowWidget& row) {
    QStringList texts;
    for (const char* name :
         {"negatorLabel", "leftValueLabel", "operatorLabel", "rightValueLabel", "logicalLabel"}) {
        const auto* label = row.findChild<QBLabel*>(QLatin1String(name));
        const bool isDim = label->colour() == LabelColour::Placeholder;
        if (!label->isHidden()) texts << (isDim ? '{' + label->text() + '}' : label->text());
    }
    return texts.join(' ');
}

class Desk : public Test::PanelDesk {
public:
    Desk(Delivery delivery, TopLevelQueryComponentElementEnum clause)
        : PanelDesk(delivery, DatabaseTypeMySQL), m_clause(clause) {
        panel = new QBConditionBuilderPanelWidget(nullptr);
        if (clause != ElementSource) panel->setRelatedElements({clause});
        show(panel);
    }

    void begin(const QString& text) override {
        PanelDesk::begin(text);
        if (m_clause == ElementSource) panel->setJoin(join());
    }

    SQLJoinSourceNodeComponent* join() const {
        return dynamic_cast<SQLJoinSourceNodeComponent*>(statement()->sourceExpr->root->value);
    }

    SQLCompareConditionComponent* compare() const {
        return dynamic_cast<SQLCompareConditionComponent*>(statement()->whereExpr->root);
    }

    /// What the rows of all conditions say.
    QStringList shownConditions() const {
        QStringList rows;
        for (int row = 0; row < panel->rowCount(); ++row) {
            using Row = QBConditionNestedListRowWidget;
            if (auto* condition = dynamic_cast<Row*>(view()->rowWidget(row)))
                rows << readRow(*condition);
        }
        return rows;
    }

    TopLevelQueryComponentElementEnum clause() const { return m_clause; }

    bool runOwn(const QString& word, const QString& rest) override {
        if (word == "foreign") return parse(rest), true;
        if (word == "layer") return pushLayer();
        if (word == "set") return setText(rest);
        if (word == "operator")
            return openMenu(rest.section(' ', 0, 0).toInt()) &&
                   chooseOperator(rest.section(' ', 1));
        if (word == "menuhere") return press("Menu") && choose(rest);
        return false;
    }

    /// What is typed into the text that has the focus, all at once.
    static bool setText(const QString& text) {
        QWidget* const popup = QApplication::activePopupWidget();
        QWidget* const focus = popup ? popup->focusWidget() : nullptr;
        auto* const line = qobject_cast<QLineEdit*>(focus);
        auto* const edit = qobject_cast<QPlainTextEdit*>(focus);
        if (line) line->setText(text);
        if (edit) edit->setPlainText(text);
        return line || edit;
    }

    static bool chooseOperator(const QString& text) {
        QWidget* const menu = QApplication::activePopupWidget();
        const auto isOpen = [menu] {
            return QApplication::activePopupWidget() != menu;
        };
        return choose("Operator") && QTest::qWaitFor(isOpen) && choose(text);
    }

    /// That of the first source.
    bool pushLayer() {
        auto* const source =
            dynamic_cast<SQLSubquerySourceComponent*>(panel->choiceSources().at(0));
        engine->pushNewLayerTopLevelQueryComponent(source->subquery, "other");
        return true;
    }

    QBConditionBuilderPanelWidget* panel;  // owned by the base

private:
    const TopLevelQueryComponentElementEnum m_clause;
};

struct Story {
    const char* name;
    TopLevelQueryComponentElementEnum clause;
    const char* before;  // behind "SELECT * FROM ", as after
    const char* events;
    const char* after;
};

const Story stories[] = {
    // adding
    {"the prompt of an empty list", W, "t", "click 0 prompt; click 0 left; pick t.a",
     "t WHERE t.a ="},
    {"a whole condition by keyboard alone", W, "t",
     "key Tab; click 0 row; key Ins; key Return; key Down; key Down; key Return; key Return; "
     "type 5; key Ctrl+Return",
     "t WHERE t.a = 5"},
    {"a condition goes to the end of its group", W, "t WHERE ( a = 1 AND b = 2 ) AND c = 3",
     "click 1 add", "t WHERE ( a = 1 AND b = 2 AND = ) AND c = 3"},
    {"an inserted condition goes before its row", W, "t WHERE a = 1 OR b = 2",
     "menu 1 Insert condition", "t WHERE a = 1 AND = OR b = 2"},
    {"brackets, and what goes into them", W, "t WHERE a = 1",
     "click 0 bracket; key Ins; click 2 left; pick t.b", "t WHERE a = 1 AND ( t.b = )"},
    {"inserted brackets", W, "t WHERE a = 1", "menu 0 Insert brackets; key Ins",
     "t WHERE ( = ) AND a = 1"},
    {"escape changes nothing", W, "t WHERE a = 1",
     "click 0 left; key Esc; click 0 right; type 7; key Esc; click 0 op; key Esc", "t WHERE a = 1"},
    {"a click outside without a choice changes nothing", W, "t WHERE a = 1",
     "click 0 add; click 1 right; outside; click 1 left; outside; click 0 left; tab 1; outside; "
     "click 1 delete",
     "t WHERE a = 1"},
    // values
    {"a value as text", W, "t WHERE a = 1", "click 0 right; set 2 + 3; outside",
     "t WHERE a = 2 + 3"},
    {"a field for a text", W, "t WHERE a = 1", "click 0 right; tab 0; pick t.c", "t WHERE a = t.c"},
    {"a text on the right that would fall apart", W, "t WHERE a = 1 AND c = 3",
     "click 0 right; set 1 OR b = 2; outside", "t WHERE a = (1 OR b = 2) AND c = 3"},
    {"a text on the left that would", W, "t WHERE a = 1",
     "click 0 left; tab 1; set b OR c; outside", "t WHERE (b OR c) = 1"},
    {"a text that ends in a comment", W, "t WHERE a = 1 AND b = 2",
     "click 0 right; set 5 -- five; outside", "t WHERE a = (5 -- five ) AND b = 2"},
    {"a text that cannot be read stays", W, "t WHERE a = 1", "click 0 right; set (; outside",
     "t WHERE a = ("},
    {"an aggregate in HAVING", H, "t GROUP BY a HAVING a = 1",
     "click 0 left; aggregate SUM; pick t.b", "t GROUP BY a HAVING SUM(t.b) = 1"},
    {"a value that is a condition", W, "t WHERE a AND b = 2",
     "click 0 left; tab 1; set a OR c; outside", "t WHERE (a OR c) AND b = 2"},
    // operators
    {"an operator", W, "t WHERE a = 1", "click 0 op; choose <>", "t WHERE a <> 1"},
    {"an operator by key", W, "t WHERE a = 1",
     "click 0 row; key Right; key Right; key Return; key Down; key Return", "t WHERE a <> 1"},
    {"no right side, and back to it", W, "t WHERE a = 1",
     "click 0 op; choose is null; click 0 op; choose <", "t WHERE a < 1"},
    {"no operator leaves the left value", W, "t WHERE NOT a = 1 OR NOT b = 2",
     "click 1 op; choose [no operator]; click 0 op; choose [no operator]",
     "t WHERE NOT a OR NOT b"},
    {"a value becomes a comparison with its NOT", W, "t WHERE c = 1 OR NOT a = 2",
     "click 1 op; choose [no operator]; operator 1 <; click 1 right; type 3; outside",
     "t WHERE c = 1 OR NOT a < 3"},
    {"an expression becomes the left side as one piece", W, "t WHERE c AND a + b OR NOT a",
     "operator 0 >; operator 1 =; operator 2 =", "t WHERE c > AND a + b = OR (NOT a) ="},
    {"BETWEEN keeps its bounds as a list", W, "t WHERE a BETWEEN 1 AND 2",
     "click 0 op; choose in list", "t WHERE a IN (1,2)"},
    {"a string has its quotes once", W, "t WHERE a = 'x''y'",
     "click 0 op; choose contains; click 0 op; choose is null; click 0 op; choose starts with",
     "t WHERE a LIKE 'x''y%'"},
    {"and again behind an equal sign", W, "t WHERE a = 'x'",
     "click 0 op; choose contains; click 0 right; set it's; outside; click 0 op; choose =",
     "t WHERE a = 'it''s'"},
    // BETWEEN
    {"what is no pattern waits for an operator that writes it", W,
     "t WHERE a = t.b AND c = NOW() AND b = ''",
     "click 0 op; choose contains; click 1 op; choose ends with; click 2 op; choose starts with; "
     "click 0 op; choose =; click 1 op; choose <; click 2 op; choose =",
     "t WHERE a = t.b AND c < NOW() AND b = ''"},
    {"and goes when a pattern is typed", W, "t WHERE a = t.b",
     "click 0 op; choose contains; click 0 right; set x; outside; click 0 op; choose in list",
     "t WHERE a IN ('x')"},
    {"a string that would be reckoned with gets quotes", W, "t WHERE a = 'x'",
     "click 0 op; choose starts with; click 0 right; set 2020-01; outside; click 0 op; choose =",
     "t WHERE a = '2020-01'"},
    {"bounds", W, "t WHERE a BETWEEN 1 AND 2", "click 0 right; type 3; key Tab; type 4; key Return",
     "t WHERE a BETWEEN 3 AND 4"},
    {"one bound, the other stays a field", W, "t WHERE a BETWEEN t.b AND 2",
     "click 0 right; key Tab; type 4; outside; click 0 right; key Return",
     "t WHERE a BETWEEN t.b AND 4"},
    {"new bounds", W, "t WHERE a = 1",
     "click 0 delete; click 0 prompt; click 0 left; pick t.a; click 0 op; choose between; "
     "click 0 right; type 1; key Tab; type 2; key Return",
     "t WHERE t.a BETWEEN 1 AND 2"},
    {"a bound that would end the range", W, "t WHERE a BETWEEN 1 AND 2",
     "click 0 right; set 1 AND b; key Return", "t WHERE a BETWEEN (1 AND b) AND 2"},
    {"escape leaves the bounds", W, "t WHERE a NOT BETWEEN 1 AND 2",
     "click 0 right; type 9; key Esc", "t WHERE a NOT BETWEEN 1 AND 2"},
    // IN
    {"a list", W, "t WHERE a IN (1)", "click 0 right; set 1, t.b, 'x)'; key Ctrl+Return",
     "t WHERE a IN (1,t.b,'x)')"},
    {"a list that is no list stays as typed", W, "t WHERE a IN (1)",
     "click 0 right; set 1) OR (1=1; outside", "t WHERE a IN (1) OR (1=1)"},
    {"a list with a clause behind it stays as typed", W, "t WHERE a NOT IN (1)",
     "click 0 right; set 1) ORDER BY (2; outside", "t WHERE a NOT IN (1) ORDER BY (2)"},
    {"a list with a comment", W, "t WHERE a IN (1)", "click 0 right; set 1, 2 -- two; outside",
     "t WHERE a IN (1,2)"},
    {"a subquery", W, "t WHERE a IN (1)", "click 0 right; set SELECT a FROM u; outside",
     "t WHERE a IN (SELECT a FROM u)"},
    {"an empty list", W, "t WHERE a IN (1,2)", "click 0 right; set  ; outside", "t WHERE a IN ()"},
    // NOT and the logic word
    {"NOT is within reach of the current row", W, "t WHERE a = 1 AND b = 2",
     "click 1 row; click 1 not; click 0 row; click 0 not; click 1 not",
     "t WHERE NOT a = 1 AND b = 2"},
    {"NOT by the menu, before brackets as well", W, "t WHERE a = 1 AND ( b = 2 )",
     "menu 0 Negate (NOT); menu 1 Negate (NOT)", "t WHERE NOT a = 1 AND NOT ( b = 2 )"},
    {"the logic word", W, "t WHERE a = 1 AND ( b = 2 ) OR c = 3",
     "click 0 gate; click 3 gate; click 3 gate", "t WHERE a = 1 OR ( b = 2 ) OR c = 3"},
    // moving, brackets, removing
    {"moves by key", W, "t WHERE a = 1 AND b = 2 OR c = 3",
     "click 2 row; key Ctrl+Up; key Ctrl+Up; key Ctrl+Up; click 1 row; key Ctrl+Down; "
     "key Ctrl+Down",
     "t WHERE c = 3 AND b = 2 OR a = 1"},
    {"a bracket moves as a block", W, "t WHERE ( a = 1 OR b = 2 ) AND c = 3",
     "click 3 row; button moveDownButton; button moveDownButton",
     "t WHERE c = 3 AND ( a = 1 OR b = 2 )"},
    {"drags", W, "t WHERE a = 1 AND b = 2 AND c = 3", "drag 0 -1; drag 2 1",
     "t WHERE b = 2 AND a = 1 AND c = 3"},
    {"into a bracket and out of it", W, "t WHERE a = 1 AND ( b = 2 )", "drag 0 2; drag 2 -1",
     "t WHERE ( a = 1 ) AND b = 2"},
    {"puts in brackets", W, "t WHERE a = 1 AND b = 2 OR c = 3",
     "click 1 row; click 2 row ctrl; menuhere Put in brackets",
     "t WHERE a = 1 AND ( b = 2 OR c = 3 )"},
    {"takes brackets away", W, "t WHERE a = 1 AND NOT ( b = 2 OR c = 3 )",
     "menu 4 Take brackets away", "t WHERE a = 1 AND NOT b = 2 OR c = 3"},
    {"removes several rows", W, "t WHERE a = 1 AND ( b = 2 ) OR c = 3",
     "click 0 row; click 3 row ctrl; key Del", "t WHERE c = 3"},
    {"nothing can be removed from an empty list", W, "t", "click 0 row; key Del; key Ctrl+Down",
     "t"},
    {"faster than the host tells", W, "t WHERE a = 1 AND b = 2 AND c = 3",
     "click 0 row; hold; key Del; key Ctrl+Down; key Del; deliver", "t WHERE c = 3"},
    // joins
    {"the condition of a join", F, "t INNER JOIN u ON t.a = u.a",
     "click 0 right; pick u.d; click 0 add; click 1 left; pick t.b",
     "t INNER JOIN u ON t.a = u.d AND t.b ="},
    {"a pattern is typed, also where fields come first", F, "t INNER JOIN u ON t.a = u.a",
     "click 0 add; click 1 left; pick t.b; click 1 op; choose contains; click 1 right; set x; "
     "outside",
     "t INNER JOIN u ON t.a = u.a AND t.b LIKE '%x%'"},
    // what happens meanwhile
    {"another statement closes the popup", W, "t WHERE a = 1",
     "click 0 right; set 7; foreign SELECT * FROM t WHERE b = 2; outside", "t WHERE b = 2"},
    {"another layer closes the popup", W, "( SELECT a FROM t ) AS s WHERE a = 1",
     "click 0 right; set 7; layer; outside", "( SELECT a FROM t ) AS s WHERE a = 1"},
};

}  // namespace

class ConditionPanelTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() { QB::Test::outliveAnimations(); }

    void everyEditGivesItsText_data() { Test::addStories(stories); }
    void everyEditGivesItsText() {
        const Story& told = Test::storyOfTest(stories);
        Desk desk(Test::hostOfTest(), told.clause);
        const QString start = QStringLiteral("SELECT * FROM ");
        desk.tell(start + told.before, told.events, start + told.after);
        expectReadBack(desk);
    }
    void textsWereReadBack() { QVERIFY(m_textsRead > 60); }

    void aRowReadsLikeItsCondition() {
        const struct {
            const char* conditions;
            QStringList rows;
        } cases[] = {
            {"a = 1", {"a = 1"}},
            {"NOT t.a >= 'x' OR b <> 2", {"NOT t.a >= 'x' OR", "b <> 2"}},
            {"f(a) AND b OR c", {"f(a) AND", "b OR", "c"}},
            {"a IN (1, 2) AND b NOT BETWEEN 1 AND 2",
             {"a in list 1,2 AND", "b not between 1 AND 2"}},
            {"a IS NULL OR (b IS NOT NULL AND c LIKE 'x')",
             {"a is null OR", "b is not null AND", "c is like 'x'"}},
            {"NOT a", {"NOT a"}},
        };
        Desk desk(Delivery::AtOnce, W);
        for (const auto& each : cases) {
            desk.begin(QString("SELECT * FROM t WHERE ") + each.conditions);
            QCOMPARE(desk.shownConditions(), each.rows);
        }
        desk.begin("SELECT * FROM t WHERE f(a) AND g(b)");
        QVERIFY(desk.run("click 0 row; click 0 not"));
        QCOMPARE(desk.shownConditions(), QStringList({"NOT f(a) AND", "g(b)"}));
    }

    void whatIsMissingShowsAPrompt() {
        const Test::LateHost host(Test::Delivery::AtOnce);
        SQLCompareConditionComponent compare;
        QBConditionNestedListRowWidget row(&compare, {DatabaseTypeMySQL, 0}, "", nullptr);
        QCOMPARE(readRow(row), QString("{<value>} = {<value>}"));
        QCOMPARE(row.mainPart(), row.valueLabel(QBConditionSide::Left));
        compare.compareOp = CompareOpNone;
        compare.negated = true;
        row.refreshFromComponent();
        QCOMPARE(readRow(row), QString("NOT {<value>} {[no operator]}"));
        row.setCurrentLook(true);
        compare.negated = false;
        row.refreshFromComponent();
        QCOMPARE(readRow(row), QString("{NOT} {<value>} {[no operator]}"));
        QVERIFY(!row.accessibleText().contains("NOT"));
    }

    void marksAreToldInWords() {
        Desk desk(Delivery::AtOnce, W);
        desk.begin("SELECT * FROM t WHERE t.a = t.b");
        auto* const compare = desk.compare();
        QBConditionNestedListRowWidget row(compare, {DatabaseTypeMySQL, 0}, "main", nullptr);
        const QString reason = invalidReasonText(Tools::Validation::InvalidField);
        row.setRightInvalidReason(Tools::Validation::InvalidField);
        QCOMPARE(row.valueLabel(QBConditionSide::Left)->colour(), LabelColour::Value);
        QCOMPARE(row.valueLabel(QBConditionSide::Right)->colour(), LabelColour::Invalid);
        QVERIFY(row.valueLabel(QBConditionSide::Right)->toolTipText().contains(reason));
        QVERIFY(row.accessibleText().contains(reason));
        compare->compareOp = CompareOpIsNull;
        row.refreshFromComponent();
        QVERIFY(!row.accessibleText().contains(reason));  // there is no right side any more
    }

    void aFreshConditionIsMarkedWhenTheUserHasLeftIt() {
        Desk desk(Delivery::AtOnce, W);
        desk.begin("SELECT * FROM t WHERE t.nope = 1");
        QVERIFY(desk.run("click 0 add"));
        const auto colours = [&desk](int row) {
            return std::pair{desk.part(row, "left")->colour(), desk.part(row, "right")->colour()};
        };
        QCOMPARE(colours(0), std::pair(LabelColour::Invalid, LabelColour::Value));
        QCOMPARE(colours(1), std::pair(LabelColour::Placeholder, LabelColour::Placeholder));
        QVERIFY(desk.panel->hasInvalidComponents());
        QVERIFY(desk.run("click 0 delete"));
        QCOMPARE(colours(0), std::pair(LabelColour::Placeholder, LabelColour::Placeholder));
        QVERIFY(!desk.panel->hasInvalidComponents());
        QVERIFY(desk.run("click 0 op; choose in list"));  // keeps its place among the unmarked
        QVERIFY(!desk.panel->hasInvalidComponents());
        desk.panel->panelBecomeInactive();
        QCOMPARE(colours(0), std::pair(LabelColour::Invalid, LabelColour::Invalid));
        QVERIFY(!desk.panel->tabIcon().isNull());
        desk.panel->excludeInvalidComponent(&desk.compare()->leftValue);
        QCOMPARE(colours(0), std::pair(LabelColour::Placeholder, LabelColour::Invalid));
        SQLAbstractConditionComponent* stranger = nullptr;
        desk.panel->excludeInvalidComponent(&stranger);
        desk.panel->excludeInvalidComponent(&desk.compare()->rightValue);
        QVERIFY(!desk.panel->hasInvalidComponents());
    }

    void aRemovedTableIsMarked() {
        Desk desk(Delivery::Later, W);
        desk.begin("SELECT * FROM t WHERE t.a = 1");
        QVERIFY(!desk.panel->hasInvalidComponents());
        Test::emptyFromClause(desk.engine.get());
        desk.settle();
        QCOMPARE(desk.part(0, "left")->colour(), LabelColour::Invalid);
    }

    void boundsKeepTheirFormUntilTheUpperOneChanges() {
        Desk desk(Delivery::AtOnce, W);
        desk.begin("SELECT * FROM t WHERE a BETWEEN 1 AND t.b");
        auto* const right = dynamic_cast<SQLConditionValueComponent*>(desk.compare()->rightValue);
        const auto* const upper = right->next;
        QVERIFY(upper);
        QCOMPARE(desk.part(0, "right")->text(), QString("1 AND t.b"));
        QVERIFY(desk.run("click 0 right; type 0; key Return"));
        QCOMPARE(desk.text(), QString("SELECT * FROM t WHERE a BETWEEN 0 AND t.b"));
        QVERIFY(right->next == upper);
        const auto* const lower = right->values.front();
        QVERIFY(desk.run("click 0 right; key Tab; type 9; key Return"));
        QCOMPARE(desk.text(), QString("SELECT * FROM t WHERE a BETWEEN 0 AND 9"));
        QVERIFY(!right->next);
        QVERIFY(right->values.front() == lower);
    }

    void theOperatorMenuListsAllAndMarksTheCurrentOne() {
        Desk desk(Delivery::AtOnce, W);
        desk.begin("SELECT * FROM t WHERE a BETWEEN 1 AND 2");
        QVERIFY(desk.run("click 0 op"));
        const auto entries = QApplication::activePopupWidget()->actions();
        QCOMPARE(entries.size(), 23);
        for (const QAction* entry : entries) {
            const bool isCurrent = entry->text() == "between";
            QCOMPARE(entry->font().weight() == QFont::Bold, isCurrent);
            QCOMPARE(entry->isChecked(), isCurrent);
        }
        QCOMPARE(entries.first()->text(), QString("="));
        QCOMPARE(entries.last()->text(), QString("[no operator]"));
    }

    /// It would be written with its name as the text.
    void noFieldIsOfferedForAPattern() {
        Desk desk(Delivery::AtOnce, W);
        desk.begin("SELECT * FROM t WHERE a = t.b");
        const auto isFieldOffered = [&desk] {
            if (!desk.run("click 0 right")) return false;
            auto* const tabs = QApplication::activePopupWidget()->findChild<QTabWidget*>();
            const bool isOffered = tabs->isTabVisible(0);
            desk.run("key Esc");
            return isOffered;
        };
        QVERIFY(isFieldOffered());
        for (const char* op : {"contains", "does not contain", "starts with", "does not start with",
                               "ends with", "does not end with"}) {
            QVERIFY(desk.run(QString("click 0 op; choose ") + op));
            QVERIFY2(!isFieldOffered(), op);
        }
        QVERIFY(desk.run("click 0 op; choose is like"));
        QVERIFY(isFieldOffered());
        QCOMPARE(desk.text(), QString("SELECT * FROM t WHERE a LIKE t.b"));
    }

    void aPanelOfAJoinFollowsItAndTellsWhenItHasGone() {
        Desk desk(Delivery::AtOnce, F);
        desk.parse("SELECT * FROM t INNER JOIN u ON t.a = u.a");
        QBConditionBuilderPanelWidget other(&desk.join()->condition);
        other.setRelatedComponents({desk.join(), desk.panel->choiceSources().back()});
        other.setEngine(desk.engine.get());
        other.refreshUI(true);
        QCOMPARE(other.rowCount(), 1);
        QCOMPARE(other.choiceSources().size(), std::size_t(1));
        QSignalSpy lost(&other, &QBConditionBuilderPanelWidget::rootLost);
        desk.parse("SELECT * FROM t INNER JOIN u ON t.a = u.a");
        QCOMPARE(lost.count(), 1);
        other.refreshUI(true);
        QCOMPARE(other.rowCount(), 0);
        QVERIFY(other.choiceSources().empty());
        QCOMPARE(lost.count(), 1);
    }

private:
    /// The server must take the text apart where the rows do. A text of a list that is none, which
    /// is kept as typed, is the one exception.
    void expectReadBack(const Desk& desk) {
        const OwnedStatement read(new SQLSelectStmtComponent);
        const std::string text = desk.engine->buildQuery();
        const bool isRead =
            QBQueryParser::parseStatement(read.get(), text, DatabaseTypeMySQL, "main").isAccepted();
        const bool isTyped = QString(QTest::currentDataTag()).contains("as typed");
        const bool isRoot = desk.engine->currentTopLevelQueryComponentLayer() == 0;
        if (!isRead || !isRoot || isTyped || desk.clause() == F) return;
        const auto links = [](const SQLAbstractConditionComponent* link) {
            std::string words;
            for (; link; link = link->next)
                words += link->next ? std::to_string(link->next->logicGate) + ' ' : ".";
            return words;
        };
        const auto* clause = static_cast<ELEMSQLConditionExpr*>(read->element(desk.clause()));
        QCOMPARE(links(clause->root), links(desk.panel->obtainRepresentedExpression()->root));
        ++m_textsRead;
    }

    int m_textsRead = 0;
};

}  // namespace QB

QTEST_MAIN(QB::ConditionPanelTest)
#include "condition_panel_test.moc"
