#include <QtTest>

#include "conditions/condition_nested_list_row_widget.h"
#include "layouts/condition_chain_surgery.h"
#include "model/detached_parts.h"
#include "parser/query_parser.h"
#include "rows/invalid_reason.h"
#include "support/late_host.h"
#include "tools/validation.h"
#include "widgets/label.h"

namespace QB {
namespace {

using namespace Component::SQL;

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

class Chain {
public:
    explicit Chain(const QString& conditions) {
        const std::string text = ("SELECT 1 FROM t WHERE " + conditions).toStdString();
        QBQueryParser::parse_SQL(m_statement.get(), text, DatabaseTypeMySQL, "main", nullptr,
                                 nullptr, nullptr);
    }
    SQLAbstractConditionComponent* first() const { return m_statement->whereExpr->root; }

    /// What the rows of all conditions say.
    QStringList rows() const {
        QStringList rows;
        for (const auto& place : ConditionChain::flatten(&m_statement->whereExpr->root)) {
            if (place.kind == QBComponentsListLayout_Private::PlaceKind::Node)
                rows << readRow({place.component, {DatabaseTypeMySQL, 0}, "main", nullptr});
        }
        return rows;
    }

private:
    const OwnedStatement m_statement{new SQLSelectStmtComponent};
};

}  // namespace

class ConditionRowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aRowReadsLikeItsCondition_data() {
        QTest::addColumn<QString>("conditions");
        QTest::addColumn<QStringList>("rows");
        const auto row = [](const char* conditions, const QStringList& rows) {
            QTest::newRow(conditions) << QString(conditions) << rows;
        };
        row("a = 1", {"a = 1"});
        row("NOT t.a >= 'x' OR b <> 2", {"NOT t.a >= 'x' OR", "b <> 2"});
        row("f(a) AND b OR c", {"f(a) AND", "b OR", "c"});
        row("a IN (1, 2) AND b NOT BETWEEN 1 AND 2",
            {"a in list 1,2 AND", "b not between 1 AND 2"});
        row("a IS NULL OR (b IS NOT NULL AND c LIKE 'x')",
            {"a is null", "b is not null AND", "c is like 'x'"});
        row("NOT a", {"NOT a"});
    }
    void aRowReadsLikeItsCondition() {
        QFETCH(QString, conditions);
        QFETCH(QStringList, rows);
        const Test::LateHost host(Test::Delivery::AtOnce);
        QStringList shown = Chain(conditions).rows();
        // The word behind a bracket belongs to the row of the bracket.
        shown.replaceInStrings("a is null OR", "a is null");
        QCOMPARE(shown, rows);
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

    void aNegatedValueSaysNotOnce() {
        const Test::LateHost host(Test::Delivery::AtOnce);
        const Chain chain("f(a) AND g(b)");
        chain.first()->negated = true;
        QCOMPARE(chain.rows(), QStringList({"NOT f(a) AND", "g(b)"}));
    }

    void marksAreToldInWords() {
        const Test::LateHost host(Test::Delivery::AtOnce);
        const Chain chain("t.a = t.b");
        auto* const compare = dynamic_cast<SQLCompareConditionComponent*>(chain.first());
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
};

}  // namespace QB

QTEST_MAIN(QB::ConditionRowTest)
#include "condition_row_test.moc"
