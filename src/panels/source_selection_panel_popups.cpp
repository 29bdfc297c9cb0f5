// The popups of the sources panel, and what their answers do.

#include <QApplication>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTabWidget>
#include <QTreeWidget>
#include <utility>

#include "conditions/condition_builder_panel_widget.h"
#include "conditions/join_condition_panel.h"
#include "engine/engine_linux.h"
#include "model/callbacks.h"
#include "panels/source_selection_panel_answers.h"
#include "panels/source_selection_panel_widget.h"
#include "platform/tolk/tolk.h"
#include "popups/column_selection_popup_widget.h"
#include "popups/input_popup.h"
#include "popups/join_choice.h"
#include "popups/join_selection_popup_widget.h"
#include "rows/identifier_source_row_widget.h"
#include "rows/nested_list_any_expression_row_widget.h"
#include "rows/source_selection_join_row_widget.h"
#include "tools/free_text.h"
#include "tools/identifier_tools.h"
#include "tools/source_edits.h"
#include "tools/subquery_conversion.h"
#include "widgets/label.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

constexpr QSize treeSize(300, 400);
constexpr int textTab = 1;

void showError(const QString& text) {
    Callback::showError(text.toStdString());
}

/// Compares what the names lead to: @p chosen has at most a schema.
bool isSameTable(const SQLIdentifierSourceComponent& chosen,
                 const SQLIdentifierSourceComponent& edited, const std::string& currentSchema) {
    const auto schemaOf = [&](const SQLIdentifierSourceComponent& table) {
        return table.path.empty() ? currentSchema : table.path.back();
    };
    return chosen.name == edited.name && schemaOf(chosen) == schemaOf(edited);
}

/// The two side by side, the focus in the second.
QWidget* sideBySide(QWidget* first, QWidget* second) {
    auto* content = new QWidget;
    auto* layout = new QHBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(first);
    layout->addWidget(second);
    content->setFocusProxy(second);
    return content;
}

}  // namespace

// ---- adding -----------------------------------------------------------------------------------

void QBSourceSelectionPanelWidget::slotAddRow() {
    popupForAddValueComponent(false);
}

void QBSourceSelectionPanelWidget::slotInsertRow() {
    popupForAddValueComponent(true);
}

void QBSourceSelectionPanelWidget::slotAddBracketRow() {
    addBracketComponent(false);
}

void QBSourceSelectionPanelWidget::slotInsertBracketRow() {
    addBracketComponent(true);
}

QBSourceSelectionPanelWidget::Place QBSourceSelectionPanelWidget::placeOfNew(int row, bool insert,
                                                                             bool withJoin) {
    // A new source and its join stay together: before the join above, not between it and its right
    // side.
    const bool isBehindJoin =
        insert && withJoin && !componentAt<Join>(row) && componentAt<Join>(row - 1);
    return {rowKey(isBehindJoin ? row - 1 : row),
            insert ? SourcePlace::Before : SourcePlace::GroupEnd};
}

void QBSourceSelectionPanelWidget::popupForAddValueComponent(bool insert) {
    if (!mayAct()) return;
    const int row = rowView()->currentRow();
    if (!itemAt(row)) return;
    const bool withJoin = shouldShowJoinPanel(row, insert);
    const Place place = placeOfNew(row, insert, withJoin);
    openChoosers(place,
                 withJoin ? std::optional(SourceJoinChoice{SQLJoinTypeInner, {}}) : std::nullopt);
}

/// For a new source, with @p text in the chooser, if any; beside it the kinds of join, if @p join
/// is given, at that one.
QPlainTextEdit* QBSourceSelectionPanelWidget::openChoosers(
    const Place& place, const std::optional<SourceJoinChoice>& join, const QString& text) {
    auto* const chooser = makeSourceChooser(nullptr);
    auto* const joins = join ? makeJoinChooser(*join, engine()->databaseType(), true) : nullptr;
    if (!text.isEmpty()) chooser->setExpression(text);
    const auto accept = [=] {
        if (chooser->hasChoice() && (!joins || joins->canBeAccepted())) m_popup.accept();
    };
    connect(chooser, &QBColumnSelectionPopupWidget::chosen, this, accept);
    if (joins) {
        joins->setAcceptCheck([chooser] { return chooser->hasChoice(); });
        connect(joins, &QBJoinSelectionPopupWidget::chosen, this, accept);
    }
    QWidget* const content = joins ? sideBySide(joins, chooser) : chooser;
    openAt(place, content, [=] { addChosen(place, chooser, joins); });
    return chooser->plainTextEdit();
}

void QBSourceSelectionPanelWidget::addBracketComponent(bool insert) {
    if (!mayAct()) return;
    const int row = rowView()->currentRow();
    if (!itemAt(row)) return;
    const bool withJoin = shouldShowJoinPanel(row, insert);
    const Place place = placeOfNew(row, insert, withJoin);
    const auto add = [=](const std::optional<SourceJoinChoice>& join) {
        addSource(place, std::make_unique<SQLBracketedSourceNodeComponent>(), join);
    };
    if (!withJoin) return add(std::nullopt);
    auto* const joins = makeJoinChooser({SQLJoinTypeInner, {}}, engine()->databaseType(), true);
    connect(joins, &QBJoinSelectionPopupWidget::chosen, this, [this] { m_popup.accept(); });
    openAt(place, joins, [=] {
        const SourceJoinChoice join = chosenJoin(joins);
        if (!refuseWithoutWords(join)) add(join);
    });
}

/// Under the row, or where something is inserted over it.
void QBSourceSelectionPanelWidget::openAt(const Place& place, QWidget* content,
                                          std::function<void()> accepted) {
    QBPopupAnchor anchor(rowView()->rowWidget(findRow(place.row)));
    if (place.place == SourcePlace::Before) anchor.area.setSize(QSize(0, 0));
    m_popupRow = place.row;
    m_popup.open(content, anchor, std::move(accepted));
}

QBColumnSelectionPopupWidget* QBSourceSelectionPanelWidget::makeSourceChooser(
    AbstractQueryComponent* edited) {
    QStringList schemas = obtainExtraSchemaList();
    auto* const chooser =
        new QBColumnSelectionPopupWidget(this, &schemas, edited, nullptr, nullptr);
    chooser->treeWidget()->setMinimumSize(treeSize);
    chooser->treeWidget()->setHeaderHidden(true);
    chooser->setAggregateVisible(false);
    // Where the focus is beside the chooser, a click on a tab would leave it there.
    QTabWidget* const tabs = chooser->tabWidget();
    connect(tabs, &QTabWidget::currentChanged, chooser, [chooser, tabs] {
        if (!tabs->isAncestorOf(QApplication::focusWidget())) chooser->setFocus();
    });
    return chooser;
}

void QBSourceSelectionPanelWidget::addChosen(const Place& place,
                                             QBColumnSelectionPopupWidget* chooser,
                                             QBJoinSelectionPopupWidget* joins) {
    const auto join = joins ? std::optional(chosenJoin(joins)) : std::nullopt;
    if (!mayAct() || !chooser->hasChoice()) return;
    QString error;
    std::unique_ptr<Source> source = makeSource(chooser, &error);
    if (!source) return showError(error);
    const QPointer<QBSourceSelectionPanelWidget> self(this);
    if (!join || !refuseWithoutWords(*join)) return addSource(place, std::move(source), join);
    if (!self || !mayAct()) return;
    const bool isTyped = chooser->tabWidget()->currentIndex() == textTab;
    const QString text = isTyped ? chooser->expressionText() : QString();
    openChoosers(place, join, text)->moveCursor(QTextCursor::End);
}

void QBSourceSelectionPanelWidget::addSource(const Place& place, std::unique_ptr<Source> source,
                                             const std::optional<SourceJoinChoice>& join) {
    if (!mayAct()) return;
    const int row = findRow(place.row);
    if (row < 0) return;
    fetchIdentifierForComponent(source.get());
    const bool isBracket = dynamic_cast<SQLBracketedSourceNodeComponent*>(source.get());
    apply([&](SourceEdits& edits) {
        const int added = edits.add(std::move(source), row, place.place, join);
        // In a new bracket the next one goes to the place that it has free.
        return isBracket && added >= 0 ? added + 1 : added;
    });
}

/// A typed SELECT becomes a subquery. Null with an error if there is nothing to make one of.
std::unique_ptr<SQLAbstractSourceComponent> QBSourceSelectionPanelWidget::makeSource(
    QBColumnSelectionPopupWidget* chooser, QString* errorOut) {
    if (chooser->tabWidget()->currentIndex() != textTab) {
        auto table = std::make_unique<SQLIdentifierSourceComponent>();
        updateComponent(table.get(), chooser, errorOut);
        return table;
    }
    auto expression = std::make_unique<Expression>();
    updateComponent(expression.get(), chooser, errorOut);
    if (!errorOut->isEmpty()) return nullptr;
    QString noSelect;
    std::unique_ptr<Source> subquery = convertExpressionToSubquery(*expression, &noSelect);
    return subquery ? std::move(subquery) : std::move(expression);
}

/// Writes what was chosen into a source that is in no statement yet.
void QBSourceSelectionPanelWidget::updateComponent(Source* source,
                                                   QBColumnSelectionPopupWidget* chooser,
                                                   QString* errorOut) {
    if (auto* table = dynamic_cast<SQLIdentifierSourceComponent*>(source)) {
        const QBIdentifierChoiceItemData chosen = chooser->chosenSource();
        table->name = chosen.objectName.toStdString();
        table->path.clear();
        if (!chosen.catalogOrSchemaName.isEmpty())
            table->path.push_back(chosen.catalogOrSchemaName.toStdString());
    } else if (auto* expression = dynamic_cast<Expression*>(source)) {
        const std::string typed = chooser->expressionText().trimmed().toStdString();
        expression->expression = withLineEnded(typed, engine()->databaseType());
        if (expression->expression.empty()) *errorOut = Tolk::localize(Tolk::TextSourceTextMissing);
    }
}

/// The fields of a new table shall be there when the user looks for them.
void QBSourceSelectionPanelWidget::fetchIdentifierForComponent(const Source* source) {
    const auto* table = dynamic_cast<const SQLIdentifierSourceComponent*>(source);
    if (!table) return;
    engine()->addRefreshIdentifierCandidateChildrenRequest(
        Tools::Identifier::tablePath(table->path, table->name, engine()->currentSchema()), false);
    engine()->refreshRequestedIdentifierCandidateChildren(true);
}

// ---- editing a source -------------------------------------------------------------------------

void QBSourceSelectionPanelWidget::slotEditSelectedRowIdentifier() {
    Source* const source = currentForAction<Source>();
    QWidget* const widget = rowView()->rowWidget(rowView()->currentRow());
    QLabel* anchor = nullptr;
    if (auto* table = dynamic_cast<QBIdentifierSourceRowWidget*>(widget))
        anchor = table->identifierLabel();
    if (auto* text = dynamic_cast<QBNestedListAnyExpressionRowWidget*>(widget))
        anchor = text->valueLabel();
    if (!source || !anchor) return;
    const QBRowKey key = rowKey(rowView()->currentRow());
    auto* const chooser = makeSourceChooser(source);
    connect(chooser, &QBColumnSelectionPopupWidget::chosen, this, [this] { m_popup.accept(); });
    m_popupRow = key;
    m_popup.open(chooser, anchor, [=] { replaceByChosen(key, chooser); });
}

void QBSourceSelectionPanelWidget::replaceByChosen(QBRowKey key,
                                                   QBColumnSelectionPopupWidget* chooser) {
    if (!mayAct() || !chooser->hasChoice()) return;
    QString error;
    std::unique_ptr<Source> chosen = makeSource(chooser, &error);
    if (!chosen) return showError(error);
    fetchIdentifierForComponent(chosen.get());
    applyTo<Source>(key, [&](SourceEdits& edits, int row, Source* old) {
        using Table = SQLIdentifierSourceComponent;
        const auto* table = dynamic_cast<Table*>(chosen.get());
        const auto* text = dynamic_cast<Expression*>(chosen.get());
        const auto* oldTable = dynamic_cast<Table*>(old);
        if (table && oldTable) {
            if (!isSameTable(*table, *oldTable, engine()->currentSchema()))
                edits.setTable(row, table->path, table->name);
        } else if (text && dynamic_cast<Expression*>(old)) {
            edits.setExpression(row, text->expression);
        } else {
            edits.replace(row, std::move(chosen));
        }
    });
}

void QBSourceSelectionPanelWidget::slotEditSelectedRowAlias() {
    const auto* source = currentForAction<Source>();
    if (!source) return;
    const QBRowKey key = rowKey(rowView()->currentRow());
    const auto aliasPart = [](QWidget* row) -> QWidget* {
        auto* aliased = dynamic_cast<IQBNestedListRowWidgetEditAliasSupported*>(row);
        return aliased ? aliased->aliasLabel() : nullptr;
    };
    m_popup.editLine(QString::fromStdString(source->alias), atRow(key, aliasPart),
                     [=](const QString& typed) { return takeAlias(key, typed); });
}

QString QBSourceSelectionPanelWidget::takeAlias(QBRowKey key, const QString& typed) {
    const std::string alias = typed.trimmed().toStdString();
    if (!mayAct()) return {};
    const QString fault = aliasFault(engine(), key.componentId, alias);
    if (!fault.isEmpty()) return fault;
    applyTo<Source>(key, [&](SourceEdits& edits, int row, Source*) { edits.setAlias(row, alias); });
    return {};
}

/// @p partOf the widget of that row, as long as there is one; a popup there is for the row.
QBPopupAnchorFinder QBSourceSelectionPanelWidget::atRow(
    QBRowKey key, const std::function<QWidget*(QWidget*)>& partOf) {
    return [=]() -> std::optional<QBPopupAnchor> {
        QWidget* const row = mayAct() ? rowView()->rowWidget(findRow(key)) : nullptr;
        QWidget* const part = row ? partOf(row) : nullptr;
        if (!part) return std::nullopt;
        m_popupRow = key;
        return QBPopupAnchor(part);
    };
}

// ---- joins ------------------------------------------------------------------------------------

void QBSourceSelectionPanelWidget::slotEditSelectedRowJoinType() {
    const Join* const join = currentForAction<Join>();
    const int row = rowView()->currentRow();
    auto* widget = dynamic_cast<QBSourceSelectionJoinRowWidget*>(rowView()->rowWidget(row));
    if (!join || !widget) return;
    const QBRowKey key = m_popupRow = rowKey(row);
    auto* const joins =
        makeJoinChooser({join->joinType, join->joinText}, engine()->databaseType(), true);
    connect(joins, &QBJoinSelectionPopupWidget::chosen, this, [this] { m_popup.accept(); });
    m_popup.open(joins, widget->joinLabel(), [=] {
        const SourceJoinChoice choice = chosenJoin(joins);
        if (refuseWithoutWords(choice)) return;
        applyTo<Join>(key, [&](SourceEdits& edits, int at, Join*) { edits.setJoin(at, choice); });
    });
}

void QBSourceSelectionPanelWidget::slotEditJoinCondition() {
    Join* const join = currentForAction<Join>();
    if (!join || !join->needsCondition()) return;
    const QBRowKey key = rowKey(rowView()->currentRow());
    if (!join->isUsing) return editOnCondition(key, join);
    const auto conditionPart = [](QWidget* row) -> QWidget* {
        auto* shown = dynamic_cast<QBSourceSelectionJoinRowWidget*>(row);
        return shown ? shown->conditionLabel() : nullptr;
    };
    m_popup.editText(QString::fromStdString(usingListText(join)), atRow(key, conditionPart),
                     [=](const QString& typed) { return takeUsingList(key, typed); });
}

/// The edits of the panel in the popup are told to all but this panel, which would take the rows
/// from under the popup, and so shows them at the end.
void QBSourceSelectionPanelWidget::editOnCondition(QBRowKey key, Join* join) {
    const int row = findRow(key);
    auto* widget = dynamic_cast<QBSourceSelectionJoinRowWidget*>(rowView()->rowWidget(row));
    if (!widget) return;
    auto* const conditions =
        makeJoinConditionPanel(engine(), join, obtainJoinConditionRelatedComponents(row));
    m_popupRow = key;
    QBInputPopup* const popup = m_popup.open(conditions, widget->conditionLabel(), {});
    conditions->rowView()->selectOnly(0);
    connect(conditions, &QBConditionBuilderPanelWidget::rootLost, popup,
            [this] { m_popup.cancel(); });
    connect(popup, &QBInputPopup::done, this, [this] {
        if (!mayAct()) return;  // the rows may be those of a statement that has gone
        updateMarks();
        refreshUI(false);
    });
}

QString QBSourceSelectionPanelWidget::takeUsingList(QBRowKey key, const QString& typed) {
    if (!mayAct()) return {};
    UsingReading reading = readUsingList(typed.trimmed().toStdString(), language());
    if (!reading.error.isEmpty()) return reading.error;
    applyTo<Join>(key, [&](SourceEdits& edits, int row, Join*) {
        edits.setUsingList(row, std::move(reading.list));
    });
    return {};
}

// ---- subqueries -------------------------------------------------------------------------------

/// Null with an error if the text is no SELECT. What comes of it is not marked at once for lacking
/// an alias.
std::unique_ptr<SQLSubquerySourceComponent>
QBSourceSelectionPanelWidget::convertExpressionToSubquery(const Expression& expression,
                                                          QString* error) {
    SubqueryReading reading = readSubquery(expression.expression, language());
    *error = reading.error;
    if (!reading.statement) return nullptr;
    auto subquery = std::make_unique<Subquery>();
    subquery->alias = expression.alias.empty() ? reading.alias : expression.alias;
    subquery->subquery = reading.statement.release();
    m_freshSubqueries.insert(subquery->id());
    return subquery;
}

void QBSourceSelectionPanelWidget::slotConvertToSubquery() {
    const auto* const expression = currentForAction<Expression>();
    if (!expression) return;
    QString error;
    std::unique_ptr<Subquery> subquery = convertExpressionToSubquery(*expression, &error);
    if (!subquery) return showError(error);
    const QBRowKey key{QBRowKey::Component, subquery->id()};
    const QPointer<QBSourceSelectionPanelWidget> self(this);
    applyTo<Expression>(rowKey(rowView()->currentRow()), [&](SourceEdits& edits, int row, auto*) {
        edits.replace(row, std::move(subquery));
    });
    if (!self || !mayAct()) return;
    const int row = findRow(key);
    if (auto* made = componentAt<Subquery>(row)) openLayerOf(made, row);
}

void QBSourceSelectionPanelWidget::editSubqueryAsPlaintext(QBRowKey key, const QString& text) {
    const auto wholeRow = [](QWidget* row) {
        return row;
    };
    m_popup.editText(text, atRow(key, wholeRow),
                     [=](const QString& typed) { return takeSubqueryText(key, typed); });
}

QString QBSourceSelectionPanelWidget::takeSubqueryText(QBRowKey key, const QString& typed) {
    if (!mayAct()) return {};
    SubqueryReading reading = readSubquery(typed.trimmed().toStdString(), language());
    if (!reading.statement) return reading.error;
    applyTo<Subquery>(key, [&](SourceEdits& edits, int row, Subquery*) {
        edits.setStatement(row, std::move(reading.statement), reading.alias);
    });
    return {};
}

void QBSourceSelectionPanelWidget::slotOpenSubquery() {
    Subquery* const subquery = currentForAction<Subquery>();
    if (!subquery) return;
    const QBRowKey key = rowKey(rowView()->currentRow());
    const QPointer<QBSourceSelectionPanelWidget> self(this);
    if (!subquery->subquery) {
        applyTo<Subquery>(key, [this](SourceEdits& edits, int row, Subquery*) {
            auto* statement = engine()->createTopLevelQueryComponentForCurrentDatabase();
            edits.setStatement(row,
                               OwnedStatement(dynamic_cast<SQLSelectStmtComponent*>(statement)));
        });
        if (!self || !mayAct()) return;
    }
    const int row = findRow(key);
    if (auto* opened = componentAt<Subquery>(row)) openLayerOf(opened, row);
}

/// A subquery without alias goes by its place in the list.
void QBSourceSelectionPanelWidget::openLayerOf(Subquery* subquery, int row) {
    if (!subquery->subquery) return;
    std::string name = subquery->alias;
    if (name.empty()) {
        const QString numbered = Tolk::localizeWithArgs(Tolk::TextNumberedSubquery, row + 1);
        name = '(' + numbered.toStdString() + ')';
    }
    engine()->pushNewLayerTopLevelQueryComponent(subquery->subquery, name);
}

}  // namespace QB
