#include <QComboBox>
#include <QLabel>
#include <QSignalSpy>

#include "popups/chooser_fixture.h"
#include "support/from_clause.h"
#include "support/qt_animations.h"
#include "support/text_check.h"

namespace QB {

using namespace Test;

namespace {

constexpr const char* allSources =
    "city [id, name]; a [id, name]; b [id, name]; town [name]; s [id, total]";

/// Without the quotes of any family.
QString bare(QString text) {
    return text.remove(QRegularExpression("[\"`\\[\\]]"));
}

}  // namespace

class ColumnSelectionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() { QB::Test::outliveAnimations(); }

    // ---- what is offered ------------------------------------------------------------------------

    void eachKindOfPanelIsOfferedItsOwn() {
        Chooser chooser;
        chooser.loadAll();
        chooser.setSources();
        addColumn(*chooser.engine.get(), field(chooser.cityA, "id", "key"));
        addColumn(*chooser.engine.get(), expression("1 + 1"));
        addColumn(*chooser.engine.get(), aggregate("SUM", field(chooser.cityB, "id")));
        addColumn(*chooser.engine.get(), field(nullptr, ""));
        const std::vector<std::pair<QBColumnChoice, QString>> cases = {
            {QBColumnChoice::Sources, "main [city, country, places]; other [town]"},
            {QBColumnChoice::SelectFields,
             "All (*); city [city.* (*), id, name]; a [a.* (*), id, name]; b [b.* (*), id, name]; "
             "town [town.* (*), name]; s [s.* (*), id, total]"},
            {QBColumnChoice::Fields, allSources},
            {QBColumnChoice::PickedFields,
             QString("Columns of the SELECT list [id (key), SUM(id)]; ") + allSources}};
        for (const auto& [choice, expected] : cases) {
            chooser.open(choice);
            chooser.settle();
            QCOMPARE(chooser.shown(), expected);
            QVERIFY(!chooser.popup->hasChoice() && !chooser.tree->currentItem());
            delete chooser.popup;
        }
    }

    void aPanelThatOffersNothingAndAStatementWithoutTablesAreToldOf() {
        Chooser chooser;
        chooser.open(QBColumnChoice::Fields);
        QCOMPARE(chooser.shown(), "Add a table to FROM first");
        PlainPanel plain;
        plain.setEngine(chooser.engine.get());
        const QBColumnSelectionPopupWidget nothing(&plain, nullptr, nullptr, nullptr, nullptr);
        QCOMPARE(nothing.treeWidget()->topLevelItem(0)->text(0), "Nothing to choose from");
    }

    void aTableThatIsListedTwiceByTheSameNamesIsOfferedOnce() {
        Chooser chooser;
        chooser.loadAll();
        SourceNode* twin = table("city", "a", {"main"});
        setSource(*chooser.engine.get(), join(join(table("city", "a", {"main"}), SQLJoinTypeComma,
                                                   table("city", "b", {"main"})),
                                              SQLJoinTypeComma, twin));
        chooser.open(QBColumnChoice::Fields);
        QCOMPARE(chooser.shown(), "a [id, name]; b [id, name]");
        delete chooser.popup;
        const std::unique_ptr<SQLFieldColumnComponent> edited(field(twin, "name"));
        chooser.open(QBColumnChoice::Fields, edited.get());
        QCOMPARE(chooser.selected(), "a/name");
        QCOMPARE(chooser.popup->chosenColumn().editedColumnId, edited->id());
    }

    void extraSchemasStandBehindTheCurrentOneAndOthersHideUntilTheyAreLoaded() {
        Chooser chooser;
        chooser.server.set("", {{"archive", IdentifierTypeSchema},
                                {"main", IdentifierTypeSchema},
                                {"other", IdentifierTypeSchema}});
        chooser.server.set("archive", {{"old", IdentifierTypeTable}});
        chooser.server.hold();
        chooser.open(QBColumnChoice::Sources, nullptr, {"other"});
        QCOMPARE(chooser.shown(), "Loading...");
        chooser.server.release();
        chooser.settle();
        QCOMPARE(chooser.shown(), "main [city, country, places]; other [town]");
        QVERIFY(chooser.item("archive")->isHidden());
        chooser.refreshAndWait({"archive"});
        QCOMPARE(chooser.shown(), "main [city, country, places]; other [town]; archive [old]");
    }

    // ---- what is chosen -----------------------------------------------------------------------

    void whatIsChosenIsWrittenAndReadAsThatInAllFamilies() {
        struct Case {
            QBColumnChoice choice;
            TopLevelQueryComponentElementEnum clause;
            QString line;
            QString aggregate;
            QString text;
        };
        const auto select = QBColumnChoice::SelectFields;
        const auto picked = QBColumnChoice::PickedFields;
        const std::vector<Case> cases = {
            {select, ElementSelectColumn, "city/name", "", "main.city.name FROM"},
            {select, ElementSelectColumn, "a/name", "", ", a.name FROM"},
            {select, ElementSelectColumn, "b/id", "MAX", ", MAX(b.id) FROM"},
            {select, ElementSelectColumn, "town/name", "", "other.town.name FROM"},
            {select, ElementSelectColumn, "s/total", "", ", s.total FROM"},
            {select, ElementSelectColumn, "b/b.* (*)", "", ", b.* FROM"},
            {select, ElementSelectColumn, "All (*)", "COUNT", ", COUNT(*) FROM"},
            {picked, ElementOrderBy, "Columns of the SELECT list/id (k1)", "", "BY k1"},
            {picked, ElementGroupBy, "Columns of the SELECT list/name", "", "BY a.name"},
            {picked, ElementOrderBy, "Columns of the SELECT list/SUM(id)", "", "BY SUM(a.id)"},
            {picked, ElementOrderBy, "s/id", "", "BY s.id"}};
        long checked = 0;
        for (const DatabaseType family :
             {DatabaseTypeMySQL, DatabaseTypeMariaDB, DatabaseTypePostgreSQL, DatabaseTypeOracle,
              DatabaseTypeSQLite, DatabaseTypeSQLServer}) {
            for (const Case& each : cases) {
                Chooser chooser(family);
                chooser.loadAll();
                chooser.setSources();
                addColumn(*chooser.engine.get(), field(chooser.cityA, "id", "k1"));
                addColumn(*chooser.engine.get(), field(chooser.cityA, "name"));
                const bool hasSum = each.line.contains("SUM");
                if (hasSum)
                    addColumn(*chooser.engine.get(), aggregate("SUM", field(chooser.cityA, "id")));
                chooser.open(each.choice);
                chooser.popup->aggregateComboBox()->setCurrentText(each.aggregate);
                chooser.click(each.line);
                // An aggregate of a field is read as an expression.
                const bool isExpression = hasSum || each.aggregate == "MAX";
                const auto textCheck = isExpression ? nullptr : std::make_unique<const TextCheck>();
                const QString text = chooser.textWithChoice(each.clause);
                QVERIFY2(bare(text).contains(each.text), qPrintable(text));
                if (textCheck) QCOMPARE(textCheck->refused(), 0);
                if (textCheck) checked += textCheck->accepted();
            }
        }
        QCOMPARE(checked, 6 * long(cases.size() - 2));
    }

    void whatHasLeftTheStatementIsNotChosenAnyMore() {
        for (const bool isLate : {false, true}) {
            Chooser chooser;
            chooser.loadAll();
            const auto lateHost = isLate ? std::make_unique<LateHost>() : nullptr;
            chooser.setSources();
            chooser.open(QBColumnChoice::SelectFields);
            chooser.click("b/id");
            const QBChosenColumn chosen = chooser.popup->chosenColumn();
            setSource(*chooser.engine.get(), table("city", "b", {"main"}));
            QVERIFY(!makeColumn(chosen, chooser.engine.get()));
            QTRY_COMPARE(chooser.shown(), "All (*); b [b.* (*), id, name]");
            QCOMPARE(chooser.selected(), QString());
            QVERIFY(!chooser.popup->hasChoice());
        }
    }

    // ---- what is edited -----------------------------------------------------------------------

    void theEditedComponentIsSelectedWhereItIs() {
        Chooser chooser;
        chooser.loadAll();
        chooser.setSources();
        auto* key = field(chooser.cityA, "id", "key");
        addColumn(*chooser.engine.get(), key);
        auto written = [](std::vector<std::string> path, const std::string& name) {
            auto* column = field(nullptr, name);
            column->parentPath = std::move(path);
            return column;
        };
        const auto fields = QBColumnChoice::Fields;
        const auto picked = QBColumnChoice::PickedFields;
        const auto select = QBColumnChoice::SelectFields;
        struct Case {
            QBColumnChoice choice;
            std::unique_ptr<Component::AbstractQueryComponent> edited;
            QString selected;
        };
        std::vector<Case> cases;
        const auto add = [&cases](QBColumnChoice choice, Component::AbstractQueryComponent* edited,
                                  const QString& selected) {
            cases.push_back(
                {choice, std::unique_ptr<Component::AbstractQueryComponent>(edited), selected});
        };
        add(fields, field(chooser.cityB, "name"), "b/name");
        add(fields, field(chooser.cityB, "NAME"), "b/name");
        add(fields, field(chooser.city, "name"), "city/name");
        add(fields, value({field(chooser.town, "name")}), "town/name");
        add(fields, written({"main", "city"}, "id"), "city/id");
        add(fields, written({"city"}, "id"), "city/id");
        add(fields, written({"a"}, "id"), "a/id");
        add(fields, written({}, "total"), "s/total");
        add(fields, written({}, "id"), "");
        add(fields, written({"gone"}, "id"), "");
        add(fields, field(chooser.cityB, "nosuchfield"), "");
        add(picked, referenceTo(key), "Columns of the SELECT list/id (key)");
        add(select, field(chooser.cityB, ""), "b/b.* (*)");
        add(select, field(nullptr, ""), "All (*)");
        for (const Case& each : cases) {
            chooser.open(each.choice, each.edited.get());
            chooser.settle();
            QCOMPARE(chooser.selected(), each.selected);
            QCOMPARE(chooser.popup->hasChoice(), !each.selected.isEmpty());
            QVERIFY(!chooser.popup->hasChanged());
            delete chooser.popup;
        }
        for (const auto& [path, selected] :
             std::vector<std::pair<std::vector<std::string>, QString>>{
                 {{}, "main/city"}, {{"other"}, ""}, {{"x", "main"}, "main/city"}}) {
            const std::unique_ptr<SourceNode> node(table("city", "c", path));
            chooser.open(QBColumnChoice::Sources, node->value);
            QCOMPARE(chooser.selected(), selected);
            delete chooser.popup;
        }
    }

    void aColumnWhoseSourceHasGoneLeavesNothingSelectedAndKeepsItsField() {
        Chooser chooser;
        chooser.loadAll();
        chooser.setSources();
        auto* column = field(chooser.cityA, "id");
        addColumn(*chooser.engine.get(), column);
        const SourceNode* earlier = chooser.cityA;
        column->source = earlier->value;
        emptyFromClause(chooser.engine.get());
        setSource(*chooser.engine.get(), table("country", {}, {"main"}));
        chooser.open(QBColumnChoice::SelectFields, column);
        QCOMPARE(chooser.selected(), QString());
        QVERIFY(!chooser.popup->hasChoice());
        chooser.popup->aggregateComboBox()->setCurrentText("MIN");
        QVERIFY(chooser.popup->hasChoice() && chooser.popup->hasChanged());
        QVERIFY(fillColumn(column, chooser.popup->chosenColumn(), chooser.engine.get()));
        QCOMPARE(column->aggregateFunction, std::string("MIN"));
        QCOMPARE(column->source, earlier->value);
    }

    // ---- mouse and keys ------------------------------------------------------------------------

    void onlyWhatCanBeChosenIsAcceptedAndThatOnce() {
        Chooser chooser;
        chooser.loadAll();
        chooser.open(QBColumnChoice::Sources);
        QSignalSpy chosen(chooser.popup, &QBColumnSelectionPopupWidget::chosen);
        QWindow* const window = chooser.popup->windowHandle();
        chooser.click("main");
        chooser.press(Qt::Key_Down);
        chooser.press(Qt::Key_Up);
        QCOMPARE(chooser.tree->currentItem(), chooser.item("main"));
        chooser.press(Qt::Key_Return);
        QVERIFY(!chooser.item("main")->isExpanded());
        chooser.press(Qt::Key_Enter);
        QVERIFY(chooser.item("main")->isExpanded() && !chooser.popup->hasChoice());
        QCOMPARE(chosen.count(), 0);
        const QPoint at = chooser.placeOf("main/country");
        QTest::mouseClick(window, Qt::LeftButton, {}, at);
        QCOMPARE(chosen.count(), 1);
        QTest::mouseDClick(window, Qt::LeftButton, {}, at);
        QVERIFY2(chosen.count() == 2, "a double click is a click that has been told, and no more");
        QTest::mouseClick(window, Qt::LeftButton, {}, at);
        QCOMPARE(chosen.count(), 3);
        chooser.press(Qt::Key_Down);
        chooser.press(Qt::Key_Return);
        QCOMPARE(chosen.count(), 4);
        QCOMPARE(chooser.popup->chosenSource().objectName, "places");
        chooser.click("main");
        QVERIFY(!chooser.popup->hasChoice());
    }

    void whatIsTypedFiltersAndLeadsToTheFirstMatch() {
        Chooser chooser;
        chooser.loadAll();
        chooser.setSources();
        chooser.open(QBColumnChoice::Fields);
        QSignalSpy chosen(chooser.popup, &QBColumnSelectionPopupWidget::chosen);
        const std::vector<std::pair<QString, QString>> cases = {
            {"NA", "city [name]; a [name]; b [name]; town [name]"},
            {"tow", "town [name]"},
            {"b.na", "b [name]"},
            {"zz", "Nothing found"},
            {"", allSources}};
        for (const auto& [typed, expected] : cases) {
            chooser.popup->filterLineEdit()->clear();
            chooser.tree->setFocus();
            chooser.type(typed);
            QTRY_COMPARE(chooser.shown(), expected);
            QVERIFY(!chooser.popup->hasChoice());
        }
        chooser.type("na");
        QVERIFY(chooser.popup->filterLineEdit()->hasFocus());
        chooser.press(Qt::Key_Down);
        QVERIFY(chooser.tree->hasFocus());
        QCOMPARE(chooser.selected(), "city/name");
        chooser.press(Qt::Key_Down);
        chooser.press(Qt::Key_Down);
        QCOMPARE(chooser.selected(), "a/name");
        chooser.popup->filterLineEdit()->setText("town");
        QTRY_COMPARE(chooser.selected(), QString());
        chooser.popup->filterLineEdit()->clear();
        QTRY_COMPARE(chooser.selected(), "a/name");
        chooser.click("a");
        chooser.popup->filterLineEdit()->setFocus();
        chooser.type("tot");
        chooser.press(Qt::Key_Return);
        QCOMPARE(chosen.count(), 1);
        QCOMPARE(chooser.popup->chosenColumn().fieldName, std::string("total"));
    }

    // ---- what comes late ----------------------------------------------------------------------

    void fieldsThatArriveLateAppearAndTheEditedOneIsSelectedThen() {
        for (const bool isLate : {false, true}) {
            Chooser chooser;
            const auto lateHost = isLate ? std::make_unique<LateHost>() : nullptr;
            chooser.setSources();
            const std::unique_ptr<SQLFieldColumnComponent> edited(field(chooser.cityB, "name"));
            chooser.server.hold();
            chooser.open(QBColumnChoice::Fields, edited.get());
            QCOMPARE(chooser.shown(),
                     "city [Loading...]; a [Loading...]; b [Loading...]; town [Loading...]; "
                     "s [id, total]");
            QVERIFY(!chooser.popup->hasChoice());
            chooser.server.release();
            QTRY_COMPARE(chooser.shown(), allSources);
            QTRY_COMPARE(chooser.selected(), "b/name");
            QVERIFY(!chooser.popup->hasChanged());
            QTRY_VERIFY(!chooser.engine->isRefreshingIdentifierCandidateChildren());
        }
    }

    void whatArrivesWhenTheChooserHasGoneIsLetGo() {
        Chooser chooser;
        chooser.setSources();
        chooser.server.hold();
        chooser.open(QBColumnChoice::Fields);
        delete chooser.popup;
        chooser.server.release();
        chooser.settle();
        chooser.server.hold();
        chooser.refresh({"main", "city"});
        chooser.open(QBColumnChoice::Fields);
        const auto* tree = chooser.tree;
        chooser.server.release();
        chooser.settle();
        chooser.engine.destroy();
        QVERIFY(tree->topLevelItemCount() > 0);
        chooser.popup->filterLineEdit()->setText("x");
        QTRY_COMPARE(chooser.shown(), "Nothing found");
        QVERIFY(!makeColumn(chooser.popup->chosenColumn(), nullptr));
    }

    void aServerReadAnewLeavesSelectionAndLines() {
        Chooser chooser;
        chooser.loadAll();
        chooser.open(QBColumnChoice::Sources);
        chooser.click("main/country");
        chooser.refreshAndWait({});
        QCOMPARE(chooser.selected(), "main/country");
        chooser.server.set("main",
                           {{"anew", IdentifierTypeTable}, {"country", IdentifierTypeView}});
        chooser.refreshAndWait({"main"});
        QCOMPARE(chooser.shown(), "main [anew, country]; other [town]");
        QCOMPARE(chooser.selected(), "main/country");
        delete chooser.popup;
        setSource(*chooser.engine.get(), table("city", {}, {"main"}));
        chooser.server.set("main", {{"city", IdentifierTypeTable}});
        chooser.server.set("other", {{"city", IdentifierTypeTable}});
        chooser.server.set("other.city", {{"another", IdentifierTypeField}});
        chooser.refreshAndWait({"main"});
        chooser.open(QBColumnChoice::Fields);
        chooser.settle();
        chooser.refreshAndWait({});
        chooser.refreshAndWait({"other", "city"});
        QCOMPARE(chooser.shown(), "city [id, name]");
    }
};

}  // namespace QB

QTEST_MAIN(QB::ColumnSelectionTest)
#include "column_selection_test.moc"
