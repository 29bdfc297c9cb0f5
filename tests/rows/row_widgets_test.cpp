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
        {"catalogue", sourceRow,
         [] {
             return table({"shop", "x"}, "film");
         },
         "shop.x.film | ~<alias>"},
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
        {"table like the schema", columnRow, [] { return field({"shop"}, "id"); },
         "shop.id | ~<direction>"},
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
        {"close named source", closing,
         [] { return aliased<SQLBracketedSourceNodeComponent>("x"); }, ") (x)"},

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

/// Any language.
class Translator : public QTranslator {
public:
    QString translate(const char*, const char* source, const char*, int) const override {
        return "x " + QString::fromLatin1(source);
    }
    bool isEmpty() const override { return false; }
};

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

    /// Fainter than the others it would read as disabled on the row that the keys are on.
    void theDeleteControlFadesUnderTheMouseOnly() {
        const Part part = cases().front().part();
        const Row row = cases().front().make(part, cases().front().info);
        auto* const deletable = dynamic_cast<IQBNestedListRowWidgetDeleteSupported*>(row.get());
        QVERIFY(deletable);
        const auto look = [deletable] {
            return deletable->deleteLabel()->pixmap(Qt::ReturnByValue).toImage();
        };
        const QImage plain = look();
        row->setCurrentLook(true);
        QVERIFY(row->areControlsLit());
        QCOMPARE(look(), plain);
        QEvent leave(QEvent::Leave);
        QEnterEvent enter(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
        QCoreApplication::sendEvent(row.get(), &enter);
        QVERIFY(look() != plain);
        row->setCurrentLook(false);
        QVERIFY(look() != plain);
        QCoreApplication::sendEvent(row.get(), &leave);
        QCOMPARE(look(), plain);
    }

    void aClickOnAPartTellsWhatIsWanted_data() {
        QTest::addColumn<int>("index");
        QTest::addColumn<QStringList>("signalsInOrder");
        const QString add = "addRowButtonClicked";
        const QString bracketed = "addBracketButtonClicked";
        const QString remove = "deleteButtonClicked";
        const QString alias = "aliasLabelClicked";
        const auto row = [](const char* name, const QStringList& expected) {
            for (std::size_t i = 0; i < cases().size(); ++i)
                if (QLatin1String(cases()[i].name) == QLatin1String(name))
                    QTest::newRow(name) << static_cast<int>(i) << expected;
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
        const Case& c = cases()[static_cast<std::size_t>(index)];
        const Part part = c.part();
        const Row row = c.make(part, c.info);
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

    void theCaptionOfASubqueryOpensItToo() {
        const Part part = subquery(false);
        const Row row = subqueryRow(part, mySQL);
        row->resize(700, 23);
        row->show();
        const auto spies = spiesOn(row.get());
        click(row->findChild<QBLabel*>("subqueryLabel"));
        for (const auto& spy : spies)
            QCOMPARE(spy->count(), nameOf(*spy) == "signalJumpToSubqueryRequested" ? 1 : 0);
    }

    void aRowIsUsedAgainForAnotherComponent() {
        const Part first = field({"shop", "film"}, "id", "n");
        const Part second = field({"shop", "actor"}, "name");
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
        const auto source = table({"shop"}, "film", "f");
        const Part part = field({"shop", "film"}, "id");
        static_cast<SQLFieldColumnComponent*>(part.get())->source = source.get();
        const Row row = fieldRow(part, mySQL);
        QCOMPARE(shown(row.get()), QString("f.id | ~<alias>"));
        source->alias.clear();
        source->name = "film2";  // written with a name that has gone
        row->slotOnComponentChanged();
        QCOMPARE(shown(row.get()), QString("film2.id | ~<alias>"));
        const Part referring = field({}, "n");
        static_cast<SQLFieldColumnComponent*>(referring.get())->referencedColumn =
            static_cast<SQLFieldColumnComponent*>(part.get());
        static_cast<SQLFieldColumnComponent*>(part.get())->alias = "n";
        QCOMPARE(shown(columnRow(referring, mySQL).get()), QString("n | ~<direction>"));
        static_cast<SQLFieldColumnComponent*>(referring.get())->aggregateFunction = "MAX";
        QCOMPARE(shown(columnRow(referring, mySQL).get()), QString("MAX(n) | ~<direction>"));
    }

    void bracketsAndPromptsShowWhatThePanelAsksFor() {
        const Part part = bracket(SQLLogicGateAnd);
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

    void aNarrowRowKeepsItsShortTexts() {
        const Part part = subquery(false, "longest");
        const Row row = subqueryRow(part, mySQL);
        row->resize(300, 23);
        row->show();
        const QBLabel* alias = row->findChild<QBLabel*>("aliasLabel");
        QTRY_VERIFY(alias->width() >= alias->sizeHint().width());
        QVERIFY(row->findChild<QBLabel*>("subqueryLabel")->isHidden());
        row->resize(700, 23);
        QVERIFY(!row->findChild<QBLabel*>("subqueryLabel")->isHidden());
    }

    void allTextsFollowTheLanguage() {
        const Part part = subquery(true);
        QBNestedListSubqueryRowWidget row(part.get(), mySQL, "shop", nullptr);
        row.setInvalidReason(5);
        const QString english = row.addRowLabel()->toolTipText();
        Translator translator;
        QCoreApplication::installTranslator(&translator);
        QCoreApplication::processEvents();
        QCOMPARE(shown(&row), QString("x Subquery: | !<x empty subquery> | !<x alias>"));
        QCOMPARE(row.addRowLabel()->toolTipText(), "x " + english);
        QCOMPARE(row.addRowLabel()->accessibleName(), "x " + english);
    }

    void everyFaultHasAWordAndASchemaIsLeftOutOnlyIfThereIsOne() {
        QSet<QString> texts;
        for (int reason = 0; reason <= 6; ++reason)
            texts << invalidReasonText(reason);
        QCOMPARE(texts.size(), 7);
        QVERIFY(!texts.contains(QString()));
        QVERIFY(invalidReasonText(-1).isEmpty() && invalidReasonText(7).isEmpty());

        const auto source = subquery(false);
        auto* statement = static_cast<SQLSelectStmtComponent*>(source->subquery);
        QCOMPARE(schemaLeftOut(statement, "shop"), std::string("shop"));
        QCOMPARE(schemaLeftOut(nullptr, "shop"), std::string());
        SourceNode*& root = statement->sourceExpr->root;
        auto* joined = new SourceNode;
        joined->value = join(SQLJoinTypeComma).release();
        joined->left = root;
        joined->right = new SourceNode;
        joined->right->value = table({"other"}, "t").release();
        root = joined;
        QCOMPARE(schemaLeftOut(statement, "shop"), std::string());
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
