#include <QSignalSpy>
#include <QtTest>
#include <functional>
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
#include "support/host_callbacks.h"
#include "widgets/label.h"

namespace QB {
namespace {

using namespace Component;
using namespace Component::SQL;

using Row = std::unique_ptr<QBNestedListRowWidget>;
using Part = std::unique_ptr<AbstractQueryComponent>;

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

template <typename Source>
std::unique_ptr<Source> aliased(const std::string& alias) {
    auto source = std::make_unique<Source>();
    source->alias = alias;
    return source;
}

std::unique_ptr<SQLIdentifierSourceComponent> table(std::vector<std::string> path,
                                                    const std::string& name,
                                                    const std::string& alias = {}) {
    auto source = aliased<SQLIdentifierSourceComponent>(alias);
    source->path = std::move(path);
    source->name = name;
    return source;
}

std::unique_ptr<SQLFieldColumnComponent> field(std::vector<std::string> path,
                                               const std::string& name,
                                               const std::string& alias = {}) {
    auto column = aliased<SQLFieldColumnComponent>(alias);
    column->parentPath = std::move(path);
    column->fieldName = name;
    column->isAsterisk = name.empty();
    return column;
}

template <typename Kind>
std::unique_ptr<Kind> freeText(const std::string& expression, const std::string& alias = {}) {
    auto part = aliased<Kind>(alias);
    part->expression = expression;
    return part;
}

std::unique_ptr<SQLConditionValueComponent> value(SQLAbstractColumnComponent* column) {
    auto part = std::make_unique<SQLConditionValueComponent>();
    part->values = {column};
    return part;
}

std::unique_ptr<SQLJoinSourceNodeComponent> join(SQLJoinType type) {
    auto part = std::make_unique<SQLJoinSourceNodeComponent>();
    part->joinType = type;
    return part;
}

std::unique_ptr<SQLJoinSourceNodeComponent> usingJoin(const std::string& columns) {
    auto part = join(SQLJoinTypeInner);
    part->isUsing = true;
    part->condition = value(freeText<SQLAnyExpressionColumnComponent>(columns).release()).release();
    return part;
}

/// ON a.id = b.id AND a.n > 1
std::unique_ptr<SQLJoinSourceNodeComponent> joinOn(SQLJoinType type) {
    const auto compare = [](SQLAbstractColumnComponent* left, CompareOp op,
                            SQLAbstractColumnComponent* right) {
        auto condition = std::make_unique<SQLCompareConditionComponent>();
        condition->leftValue = value(left).release();
        condition->compareOp = op;
        condition->rightValue = value(right).release();
        return condition;
    };
    auto first =
        compare(field({"a"}, "id").release(), CompareOpEqual, field({"b"}, "id").release());
    auto second = compare(field({"a"}, "n").release(), CompareOpGreater,
                          freeText<SQLAnyExpressionColumnComponent>("1").release());
    second->logicGate = SQLLogicGateAnd;
    first->next = second.release();
    auto part = join(type);
    part->condition = first.release();
    return part;
}

std::unique_ptr<SQLSubquerySourceComponent> subquery(bool isEmpty, const std::string& alias = {}) {
    auto statement = std::make_unique<SQLSelectStmtComponent>();
    if (!isEmpty) {
        statement->selectColumnExpr->columns = {field({}, "id").release()};
        statement->sourceExpr->root = new SourceNode;
        statement->sourceExpr->root->value = table({"shop"}, "film").release();
        statement->sourceExpr->root->ownsValue = true;
    }
    auto source = aliased<SQLSubquerySourceComponent>(alias);
    source->subquery = statement.release();
    return source;
}

std::unique_ptr<SQLBracketedConditionComponent> bracket(SQLLogicGate nextGate) {
    auto next = std::make_unique<SQLConditionValueComponent>();
    next->logicGate = nextGate;
    auto part = std::make_unique<SQLBracketedConditionComponent>();
    part->next = next.release();
    return part;
}

template <typename Column>
std::unique_ptr<Column> ordered(std::unique_ptr<Column> column, OrderDirection direction) {
    auto* extra = new SQLAbstractColumnComponent::ExtraDataOrderDirection;
    extra->direction = direction;
    column->extraData = extra;
    return column;
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
    const char* name;
    MakeRow make;
    std::function<Part()> part;
    QString expected;
    QBDatabaseInfo info = mySQL;
};

template <typename Column>
std::unique_ptr<Column> aggregated(std::unique_ptr<Column> column, const std::string& function) {
    column->aggregateFunction = function;
    return column;
}

const std::vector<Case>& cases() {
    using Text = SQLAnyExpressionColumnComponent;
    static const std::vector<Case> all = {
        {"current schema", sourceRow, [] { return table({"shop"}, "film", "f"); }, "film | (f)"},
        {"other schema", sourceRow,
         [] {
             return table({"x", "y"}, "film");
         },
         "x.y.film | ~<alias>"},
        {"SQL Server", sourceRow, [] { return table({"shop"}, "film"); }, "shop.film | ~<alias>",
         sqlServer},
        {"placeholder", sourceRow, [] { return table({"shop"}, ""); }, "~<table> | ~<alias>"},
        {"no such source", sourceRow, [] { return join(SQLJoinTypeInner); }, "~<table> | ~<alias>"},

        {"no condition", joinRow, [] { return join(SQLJoinTypeLeft); },
         "LEFT JOIN | ~<condition...>"},
        {"no kind", joinRow, [] { return join(SQLJoinTypeCustom); },
         "~<join type> | ~<condition...>"},
        {"comma", joinRow, [] { return joinOn(SQLJoinTypeComma); }, "Comma Seperated"},
        {"cross", joinRow, [] { return join(SQLJoinTypeCross); }, "CROSS JOIN"},
        {"using", joinRow, [] { return usingJoin("id,\n  \"x\""); },
         "INNER JOIN | USING: id, \"x\""},
        {"empty using", joinRow, [] { return usingJoin(""); },
         "INNER JOIN | ~<columns of the same name...>"},
        {"on", joinRow, [] { return joinOn(SQLJoinTypeFullOuter); },
         "FULL OUTER JOIN | [`a`.`id` = `b`.`id` AND `a`.`n` > 1]"},

        {"ascending", columnRow,
         [] {
             return ordered(field({"shop", "film"}, "id", "n"), OrderDirectionAscending);
         },
         "film.id (n) | Ascending"},
        {"no direction", columnRow, [] { return freeText<Text>("a +\n\t1"); },
         "a + 1 | ~<direction>"},
        {"no table", columnRow, [] { return field({}, "id"); }, "<table>.id | ~<direction>"},

        {"aggregate", fieldRow, [] { return aggregated(field({"film"}, "id", "n"), "MAX"); },
         "MAX(film.id) | (n)"},
        {"count", fieldRow, [] { return aggregated(field({}, ""), "COUNT"); },
         "COUNT(*) | ~<alias>"},
        {"wildcard", fieldRow, [] { return field({"film"}, ""); }, "film.*"},
        {"expression", fieldRow, [] { return freeText<Text>("1", "one"); }, "1 | (one)"},
        {"new column", fieldRow, [] { return std::make_unique<SQLFieldColumnComponent>(); },
         "~<column> | ~<alias>"},

        {"source text", expressionRow,
         [] { return freeText<SQLAnyExpressionSourceComponent>("f(1)\n", "t"); },
         "Expression: | f(1) | (t)"},
        {"empty column", expressionRow, [] { return freeText<Text>(""); },
         "Expression: | ~<expression> | ~<alias>"},

        {"open", openRow, [] { return bracket(SQLLogicGateAnd); }, "("},
        {"close", closing, [] { return bracket(SQLLogicGateOr); }, ") | #OR"},
        {"close and", closing, [] { return bracket(SQLLogicGateAnd); }, ") | #AND"},
        {"close no word", closing, [] { return bracket(SQLLogicGateNone); }, ") | ~<AND or OR>"},
        {"close last", closing, [] { return std::make_unique<SQLBracketedConditionComponent>(); },
         ")"},
        {"close source", closing,
         [] { return std::make_unique<SQLBracketedSourceNodeComponent>(); }, ")"},

        {"subquery", subqueryRow, [] { return subquery(false, "s"); },
         "Subquery: | SELECT `id` FROM `film` | (s)"},
        {"empty subquery", subqueryRow, [] { return subquery(true); },
         "Subquery: | ~<empty subquery> | ~<alias>"},
        {"no statement", subqueryRow, [] { return std::make_unique<SQLSubquerySourceComponent>(); },
         "Subquery: | ~<empty subquery> | ~<alias>"},
    };
    return all;
}

}  // namespace

class RowWidgetsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyKindShowsItsComponent_data() {
        QTest::addColumn<int>("index");
        for (std::size_t i = 0; i < cases().size(); ++i)
            QTest::newRow(cases()[i].name) << static_cast<int>(i);
    }

    void everyKindShowsItsComponent() {
        QFETCH(int, index);
        const Case& c = cases()[static_cast<std::size_t>(index)];
        const Part part = c.part();
        const Row row = c.make(part, c.info);
        QCOMPARE(shown(row.get()), c.expected);
        QVERIFY2(row->styleSheet().isEmpty(), "colours come from the palette");
        for (const QBLabel* label : row->findChildren<QBLabel*>())
            if (label->isClickable() && !label->fullText().isEmpty())
                QVERIFY(label->isHidden() || label->toolTipText().contains(label->fullText()));
        // A row from a pool keeps its texts while it shows nothing.
        row->setComponent(nullptr);
        row->slotOnComponentChanged();
        QVERIFY(!shown(row.get()).isEmpty());
    }

private:
    Test::HostCallbacks m_host;
};

}  // namespace QB

QTEST_MAIN(QB::RowWidgetsTest)
#include "row_widgets_test.moc"
