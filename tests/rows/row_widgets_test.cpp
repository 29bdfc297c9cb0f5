#include <QSignalSpy>
#include <QtTest>
#include <algorithm>
#include <memory>

#include "model/element_expressions.h"
#include "platform/tolk/tolk.h"
#include "rows/column_nested_list_row_widget.h"
#include "rows/column_panel_field_row_widget.h"
#include "rows/identifier_source_row_widget.h"
#include "rows/invalid_reason.h"
#include "rows/nested_list_any_expression_row_widget.h"
#include "rows/nested_list_close_bracket_row_widget.h"
#include "rows/nested_list_dummy_row_widget.h"
#include "rows/nested_list_open_bracket_row_widget.h"
#include "rows/nested_list_subquery_row_widget.h"
#include "rows/source_selection_join_row_widget.h"
#include "stringifier/statement_builder.h"
#include "support/capitals.h"
#include "support/host_callbacks.h"
#include "widgets/label.h"

namespace QB {
namespace {

using namespace Component;
using namespace Component::SQL;

using Row = std::unique_ptr<QBNestedListRowWidget>;
using Part = std::shared_ptr<AbstractQueryComponent>;

constexpr QBDatabaseInfo mySQL{DatabaseTypeMySQL, 80036};
constexpr QBDatabaseInfo sqlServer{DatabaseTypeSQLServer, 11000000};

/// The texts of a row from left to right, those of hidden labels left out: "~" before a prompt,
/// "#" before an operator, "!" before an invalid text.
QString shown(const QWidget* row) {
    QStringList texts;
    for (const QBLabel* label : row->findChildren<QBLabel*>()) {
        if (label->isHidden() || label->fullText().isEmpty()) continue;
        const QString marks[] = {"", "~", "#", "!"};
        texts << marks[static_cast<int>(label->colour())] + label->fullText();
    }
    return texts.join(" | ");
}

template <typename Kind>
Kind* aliased(const std::string& alias) {
    auto* part = new Kind;
    part->alias = alias;
    return part;
}

SQLIdentifierSourceComponent* table(std::vector<std::string> path, const std::string& name,
                                    const std::string& alias = {}) {
    auto* source = aliased<SQLIdentifierSourceComponent>(alias);
    source->path = std::move(path);
    source->name = name;
    return source;
}

SQLAnyExpressionSourceComponent* sourceText(const std::string& text, const std::string& alias) {
    auto* source = aliased<SQLAnyExpressionSourceComponent>(alias);
    source->expression = text;
    return source;
}

SQLFieldColumnComponent* field(std::vector<std::string> path, const std::string& name,
                               const std::string& alias = {}) {
    auto* column = Test::field(nullptr, name, alias);
    column->parentPath = std::move(path);
    return column;
}

SQLJoinSourceNodeComponent* join(SQLJoinType type) {
    auto* part = new SQLJoinSourceNodeComponent;
    part->joinType = type;
    return part;
}

SQLJoinSourceNodeComponent* usingJoin(const std::string& columns) {
    auto* part = join(SQLJoinTypeInner);
    part->isUsing = true;
    part->condition = Test::value({Test::expression(columns)});
    return part;
}

/// ON a.id = b.id AND a.n > 1
SQLJoinSourceNodeComponent* joinOn(SQLJoinType type) {
    auto* part = join(type);
    part->condition =
        Test::chain(SQLLogicGateAnd,
                    {Test::compare(field({"a"}, "id"), CompareOpEqual, {field({"b"}, "id")}),
                     Test::compare(field({"a"}, "n"), CompareOpGreater, {Test::expression("1")})});
    return part;
}

SQLSubquerySourceComponent* subquery(bool isEmpty, const std::string& alias = {}) {
    Test::Statement statement = Test::newStatement();
    if (!isEmpty) {
        statement->selectColumnExpr->columns = {field({}, "id")};
        statement->sourceExpr->root = Test::table("film", {}, {"shop"});
    }
    auto* source = aliased<SQLSubquerySourceComponent>(alias);
    source->subquery = statement.release();
    return source;
}

SQLBracketedConditionComponent* bracket(SQLLogicGate nextGate) {
    auto* part = Test::bracketed(nullptr);
    part->next = new SQLConditionValueComponent;
    part->next->logicGate = nextGate;
    return part;
}

template <typename Widget>
Row on(const Part& part, QBDatabaseInfo info = mySQL) {
    return std::make_unique<Widget>(part.get(), info, "shop", nullptr);
}

template <typename Widget>
Row plain(const Part& part, QBDatabaseInfo = {}) {
    return std::make_unique<Widget>(part.get(), nullptr);
}

Row closing(const Part& part, QBDatabaseInfo = {}) {
    QBNestedListOpenBracketRowWidget open(part.get(), nullptr);
    return std::make_unique<QBNestedListCloseBracketRowWidget>(&open, nullptr);
}

using MakeRow = Row (*)(const Part&, QBDatabaseInfo);
constexpr MakeRow sourceRow = on<QBIdentifierSourceRowWidget>;
constexpr MakeRow joinRow = on<QBSourceSelectionJoinRowWidget>;
constexpr MakeRow columnRow = on<QBColumnNestedListRowWidget>;
constexpr MakeRow fieldRow = on<QBColumnPanelFieldRowWidget>;
constexpr MakeRow expressionRow = plain<QBNestedListAnyExpressionRowWidget>;
constexpr MakeRow openRow = plain<QBNestedListOpenBracketRowWidget>;
constexpr MakeRow subqueryRow = on<QBNestedListSubqueryRowWidget>;

struct Case {
    Case(const char* called, MakeRow maker, AbstractQueryComponent* component, QString texts,
         QBDatabaseInfo database = mySQL)
        : name(called), make(maker), part(component), expected(std::move(texts)), info(database) {}

    const char* name;
    MakeRow make;
    Part part;
    QString expected;
    QBDatabaseInfo info;
};

std::vector<Case> cases() {
    return {
        {"current schema", sourceRow, table({"shop"}, "film", "f"), "film | (f)"},
        {"other schema", sourceRow, table({"x", "y"}, "film"), "x.y.film | ~<alias>"},
        {"catalogue", sourceRow, table({"shop", "x"}, "film"), "shop.x.film | ~<alias>"},
        {"SQL Server", sourceRow, table({"shop"}, "film"), "shop.film | ~<alias>", sqlServer},
        {"placeholder", sourceRow, table({"shop"}, ""), "~<table> | ~<alias>"},
        {"no such source", sourceRow, join(SQLJoinTypeInner), "~<table> | ~<alias>"},

        {"no condition", joinRow, join(SQLJoinTypeLeft), "LEFT JOIN | ~<condition...>"},
        {"no kind", joinRow, join(SQLJoinTypeCustom), "~<join type> | ~<condition...>"},
        {"comma", joinRow, joinOn(SQLJoinTypeComma), "Comma Seperated"},
        {"cross", joinRow, join(SQLJoinTypeCross), "CROSS JOIN"},
        {"using", joinRow, usingJoin("id,\n  \"x\""), "INNER JOIN | USING: id, \"x\""},
        {"empty using", joinRow, usingJoin(""), "INNER JOIN | ~<columns of the same name...>"},
        {"on", joinRow, joinOn(SQLJoinTypeFullOuter),
         "FULL OUTER JOIN | [`a`.`id` = `b`.`id` AND `a`.`n` > 1]"},

        {"ascending", columnRow,
         Test::directed(field({"shop", "film"}, "id", "n"), OrderDirectionAscending),
         "film.id (n) | Ascending"},
        {"no direction", columnRow, Test::expression("a +\n\t1"), "a + 1 | ~<direction>"},
        {"table like the schema", columnRow, field({"shop"}, "id"), "shop.id | ~<direction>"},
        {"no table", columnRow, field({}, "id"), "<table>.id | ~<direction>"},

        {"aggregate", fieldRow, Test::aggregate("MAX", field({"film"}, "id", "n")),
         "MAX(film.id) | (n)"},
        {"count", fieldRow, Test::aggregate("COUNT", field({}, "")), "COUNT(*) | ~<alias>"},
        {"wildcard", fieldRow, field({"film"}, ""), "film.*"},
        {"expression", fieldRow, Test::expression("1", "one"), "1 | (one)"},
        {"new column", fieldRow, new SQLFieldColumnComponent, "~<column> | ~<alias>"},

        {"source text", expressionRow, sourceText("f(1)\n", "t"), "Expression: | f(1) | (t)"},
        {"empty column", expressionRow, Test::expression(""),
         "Expression: | ~<expression> | ~<alias>"},

        {"open", openRow, bracket(SQLLogicGateAnd), "("},
        {"close", closing, bracket(SQLLogicGateOr), ") | #OR"},
        {"close and", closing, bracket(SQLLogicGateAnd), ") | #AND"},
        {"close no word", closing, bracket(SQLLogicGateNone), ") | ~<AND or OR>"},
        {"close last", closing, new SQLBracketedConditionComponent, ")"},
        {"close source", closing, new SQLBracketedSourceNodeComponent, ")"},
        {"close named source", closing, aliased<SQLBracketedSourceNodeComponent>("x"), ") (x)"},

        {"subquery", subqueryRow, subquery(false, "s"),
         "Subquery: | SELECT `id` FROM `film` | (s)"},
        {"empty subquery", subqueryRow, subquery(true), "Subquery: | ~<empty subquery> | ~<alias>"},
        {"no statement", subqueryRow, new SQLSubquerySourceComponent,
         "Subquery: | ~<empty subquery> | ~<alias>"},
    };
}

}  // namespace

class RowWidgetsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyKindShowsItsComponent_data() {
        QTest::addColumn<int>("index");
        int index = 0;
        for (const Case& c : cases())
            QTest::newRow(c.name) << index++;
    }

    void everyKindShowsItsComponent() {
        QFETCH(int, index);
        const Case c = cases()[static_cast<std::size_t>(index)];
        const Row row = c.make(c.part, c.info);
        QCOMPARE(shown(row.get()), c.expected);
        QVERIFY2(row->styleSheet().isEmpty(), "colours come from the palette");
        for (const QBLabel* label : row->parts()) {
            const bool isImage = !label->pixmap(Qt::ReturnByValue).isNull();
            QVERIFY2(isImage != !label->fullText().isEmpty(), "nothing to click");
            QVERIFY(isImage || label->toolTipText().contains(label->fullText()));
        }
        // A row from a pool keeps its texts while it shows nothing.
        row->setComponent(nullptr);
        row->slotOnComponentChanged();
        QVERIFY(!shown(row.get()).isEmpty());
    }

    void aClickOnAPartTellsWhatIsWanted_data() {
        QTest::addColumn<int>("index");
        QTest::addColumn<QStringList>("signalsInOrder");
        const QString add = "addRowButtonClicked";
        const QString bracketed = "addBracketButtonClicked";
        const QString remove = "deleteButtonClicked";
        const QString alias = "aliasLabelClicked";
        const auto row = [](const char* name, const QStringList& expected) {
            const std::vector<Case> all = cases();
            const auto found = std::find_if(all.begin(), all.end(), [&](const Case& c) {
                return QLatin1String(c.name) == QLatin1String(name);
            });
            QTest::newRow(name) << static_cast<int>(found - all.begin()) << expected;
        };
        row("current schema", {"signalEditIdentifierRequested", alias, add, bracketed, remove});
        row("on", {"signalEditJoinTypeRequested", "signalEditConditionRequested", remove});
        row("ascending", {"identifierLabelClicked", "orderLabelClicked", add, remove});
        row("aggregate", {"identifierLabelClicked", alias, add, remove});
        row("source text",
            {"valueLabelClicked", alias, "orderLabelClicked", add, bracketed, remove});
        row("open", {"negateToggleTriggered", remove});
        row("close", {"logicGateLabelClicked", add, bracketed, remove});
        row("subquery", {"signalJumpToSubqueryRequested", alias, add, bracketed, remove});
    }

    /// Each clickable part, clicked in the window, gives just its signal.
    void aClickOnAPartTellsWhatIsWanted() {
        QFETCH(int, index);
        QFETCH(QStringList, signalsInOrder);
        const Case c = cases()[static_cast<std::size_t>(index)];
        const Row row = c.make(c.part, c.info);
        if (auto* text = dynamic_cast<QBNestedListAnyExpressionRowWidget*>(row.get()))
            text->setOrderVisible(true);
        if (auto* bracket = dynamic_cast<SQLBracketedConditionComponent*>(row->component())) {
            bracket->negated = row->inherits("QB::QBNestedListOpenBracketRowWidget");
            row->refreshFromComponent();
        }
        row->resize(700, 23);
        row->show();
        QStringList heard;
        for (QBLabel* label : row->parts()) {
            const auto spies = spiesOn(row.get());
            click(label);
            for (const auto& spy : spies)
                for (int i = 0; i < spy->count(); ++i)
                    heard << nameOf(*spy);
        }
        QCOMPARE(heard, signalsInOrder);
        QCOMPARE(row->mainPart(), row->parts().first());
    }

    void aRowIsUsedAgainForAnotherComponent() {
        const Part first(field({"shop", "film"}, "id", "n"));
        const Part second(field({"shop", "actor"}, "name"));
        QBColumnPanelFieldRowWidget row(first.get(), mySQL, "shop", nullptr);
        QCOMPARE(row.fieldLabel()->toolTipText(), QString("film.id - n"));
        row.setComponent(second.get());
        QCOMPARE(shown(&row), QString("actor.name | ~<alias>"));
        row.setDatabase(mySQL, {});
        QCOMPARE(shown(&row), QString("shop.actor.name | ~<alias>"));
        row.setInvalidReason(3);
        row.setAliasVisible(false);
        QCOMPARE(shown(&row), QString("!shop.actor.name"));
        QCOMPARE(row.fieldLabel()->toolTipText(), invalidReasonText(3) + "\nshop.actor.name");
        QCOMPARE(row.fieldLabel()->accessibleDescription(), invalidReasonText(3));
        const Row twin(row.clone());
        QCOMPARE(shown(twin.get()), shown(&row));
        row.setInvalidReason(-1);
        row.setAliasVisible(true);
        QCOMPARE(shown(&row), QString("shop.actor.name | ~<alias>"));
        QVERIFY(row.fieldLabel()->accessibleDescription().isEmpty());
    }

    /// As the text of the statement names it.
    void aFieldIsNamedByItsSource() {
        const std::unique_ptr<SQLIdentifierSourceComponent> source(table({"shop"}, "film", "f"));
        const Part part(field({"shop", "film"}, "id"));
        static_cast<SQLFieldColumnComponent*>(part.get())->source = source.get();
        const Row row = fieldRow(part, mySQL);
        QCOMPARE(shown(row.get()), QString("f.id | ~<alias>"));
        source->alias.clear();
        source->name = "film2";  // written with a name that has gone
        row->slotOnComponentChanged();
        QCOMPARE(shown(row.get()), QString("film2.id | ~<alias>"));
        const Part referring(field({}, "n"));
        static_cast<SQLFieldColumnComponent*>(referring.get())->referencedColumn =
            static_cast<SQLFieldColumnComponent*>(part.get());
        static_cast<SQLFieldColumnComponent*>(part.get())->alias = "n";
        QCOMPARE(shown(columnRow(referring, mySQL).get()), QString("n | ~<direction>"));
        static_cast<SQLFieldColumnComponent*>(referring.get())->aggregateFunction = "MAX";
        QCOMPARE(shown(columnRow(referring, mySQL).get()), QString("MAX(n) | ~<direction>"));
    }

    void bracketsAndPromptsShowWhatThePanelAsksFor() {
        const Part part(bracket(SQLLogicGateAnd));
        QBNestedListOpenBracketRowWidget open(part.get(), nullptr);
        QVERIFY2(!open.mainPart(), "Return would remove the bracket");
        open.setNegateVisible(true);
        QCOMPARE(shown(&open), QString("~NOT | ("));
        QVERIFY2(!open.mainPart(), "Return would negate");
        static_cast<SQLBracketedConditionComponent*>(part.get())->negated = true;
        open.slotOnComponentChanged();
        QCOMPARE(open.mainPart(), open.negatorLabel());
        QCOMPARE(shown(&open), QString("#NOT | ("));

        QBNestedListDummyRowWidget dummy(nullptr, nullptr);
        QCOMPARE(dummy.parts(), QList<QBLabel*>({dummy.addRowLabel(), dummy.addBracketLabel()}));
        dummy.setPromptText("add a table");
        dummy.setAddBracketVisible(false);
        QCOMPARE(shown(&dummy), QString("~<add a table>"));
        QCOMPARE(dummy.parts(), QList<QBLabel*>({dummy.promptLabel(), dummy.addRowLabel()}));
        QVERIFY(dummy.qt_metacast("IQBNestedListRowWidgetAddBracketSupported"));
        QVERIFY(!dummy.qt_metacast("IQBNestedListRowWidgetDeleteSupported"));
    }

private:
    using Spies = std::vector<std::unique_ptr<QSignalSpy>>;

    static QString nameOf(const QSignalSpy& spy) {
        return QString::fromLatin1(spy.signal()).section('(', 0, 0);
    }

    /// On all signals that the row's own class adds.
    static Spies spiesOn(QObject* row) {
        Spies spies;
        const QMetaObject* type = row->metaObject();
        for (int i = type->methodOffset(); i < type->methodCount(); ++i)
            if (type->method(i).methodType() == QMetaMethod::Signal)
                spies.push_back(std::make_unique<QSignalSpy>(row, type->method(i)));
        return spies;
    }

    static void click(const QBLabel* label) {
        const QPoint middle = label->mapTo(label->window(), label->rect().center());
        QTest::mouseClick(label->window()->windowHandle(), Qt::LeftButton, {}, middle);
    }

    Test::HostCallbacks m_host;
};

}  // namespace QB

QTEST_MAIN(QB::RowWidgetsTest)
#include "row_widgets_test.moc"
