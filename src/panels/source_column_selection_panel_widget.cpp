#include "panels/source_column_selection_panel_widget.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QHash>
#include <algorithm>
#include <utility>

#include "engine/engine_linux.h"
#include "model/kind_of.h"
#include "panels/column_alias.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"
#include "popups/column_selection_popup_widget.h"
#include "rows/column_panel_field_row_widget.h"
#include "rows/nested_list_any_expression_row_widget.h"
#include "rows/row_interfaces.h"
#include "ui_source_column_selection_panel_widget.h"
#include "widgets/label.h"
#include "widgets/plain_tool_tip.h"

namespace QB {

using namespace Component::SQL;

namespace {

/// The option of a box; its text has the signs that Qt reads as shortcuts doubled.
constexpr char optionProperty[] = "option";
constexpr int widestBoxText = 110;

QString optionOf(const QAbstractButton* box) {
    return box->property(optionProperty).toString();
}

bool isPlainStar(const SQLAbstractColumnComponent& column) {
    const auto* field = ifKind<SQLFieldColumnComponent>(&column);
    return field && field->isAsterisk && field->aggregateFunction.empty();
}

QBSelectOption* findOption(std::vector<QBSelectOption>& options, const QString& text) {
    const auto found =
        std::find_if(options.begin(), options.end(),
                     [&text](const QBSelectOption& option) { return option.text == text; });
    return found == options.end() ? nullptr : &*found;
}

}  // namespace

QBSourceColumnSelectionPanelWidget::QBSourceColumnSelectionPanelWidget(QWidget* parent)
    : QBColumnListPanelWidget(parent)
    , m_ui(std::make_unique<Ui::QBSourceColumnSelectionPanelWidget>())
    , m_extraOptionsGroup(new QButtonGroup(this)) {
    m_ui->setupUi(this);
    m_extraOptionsGroup->setObjectName(QStringLiteral("extraOptionsGroup"));
    m_extraOptionsGroup->setExclusive(false);
    setupColumns(m_ui->tableView, m_ui->moveUpButton, m_ui->moveDownButton);
    setRelatedElements({ElementSelectColumn});
}

QBSourceColumnSelectionPanelWidget::~QBSourceColumnSelectionPanelWidget() = default;

void QBSourceColumnSelectionPanelWidget::renewRoot() {
    QBColumnListPanelWidget::renewRoot();
    if (engine()) setupExtraOptions(engine()->databaseType());
}

void QBSourceColumnSelectionPanelWidget::retranslate() {
    m_ui->tableView->setAccessibleName(Tolk::localizeWithArgs(Tolk::TextColumnsOfClause, "SELECT"));
    for (QAbstractButton* box : m_extraOptionsGroup->buttons()) {
        explainBox(box);
        showEffect(box);
    }
}

// ---- rows -----------------------------------------------------------------------------------

QString QBSourceColumnSelectionPanelWidget::promptText() const {
    return Tolk::localize(Tolk::TextNoSelectColumns);
}

QBNestedListRowWidget* QBSourceColumnSelectionPanelWidget::createFieldRow(
    Component::AbstractQueryComponent* component, QWidget* parent) {
    using Row = QBColumnPanelFieldRowWidget;
    const RowDatabase& database = rowDatabase();
    auto* const row = new Row(component, database.info, database.schema, parent);
    connectRow<Row, QBColumnListPanelWidget>(row, &Row::identifierLabelClicked, this,
                                             &QBColumnListPanelWidget::slotEditSelectedRowField);
    return row;
}

void QBSourceColumnSelectionPanelWidget::markFieldRow(QBNestedListRowWidget* widget,
                                                      const Column& column, int reason) {
    auto* const row = dynamic_cast<QBColumnPanelFieldRowWidget*>(widget);
    if (!row) return;
    row->setDatabase(rowDatabase().info, rowDatabase().schema);
    row->setInvalidReason(reason);
    // It stands for several columns, and its alias would not be written.
    row->setAliasVisible(!isPlainStar(column));
}

void QBSourceColumnSelectionPanelWidget::setupExpressionRow(
    QBNestedListAnyExpressionRowWidget* widget) {
    widget->setOrderVisible(false);
}

void QBSourceColumnSelectionPanelWidget::setupChooser(QBColumnSelectionPopupWidget* chooser) {
    chooser->setUseColumnSourceOption(true);
}

// ---- aliases --------------------------------------------------------------------------------

void QBSourceColumnSelectionPanelWidget::slotEditSelectedRowAlias() {
    if (!mayAct()) return;
    const int row = rowView()->currentRow();
    const Column* const column = columnAt(row);
    if (!column || isPlainStar(*column)) return;
    auto* const widget =
        dynamic_cast<IQBNestedListRowWidgetEditAliasSupported*>(rowView()->rowWidget(row));
    if (!widget) return;
    const QBRowKey key = rowKey(row);
    setPopupRow(key);
    panelPopup().openLine(QString::fromStdString(column->alias), widget->aliasLabel(),
                          [=](const QString& alias) { setAlias(key, alias); });
}

void QBSourceColumnSelectionPanelWidget::setAlias(QBRowKey key, const QString& alias) {
    if (!mayAct()) return;
    const int row = findRow(key);
    Column* const column = columnAt(row);
    const std::string text = alias.trimmed().toStdString();
    if (!column || text == QString::fromStdString(column->alias).trimmed().toStdString()) return;
    modifyColumns(row, [&] {
        setColumnAlias(column, text, engine());
        return true;
    });
}

// ---- options --------------------------------------------------------------------------------

void QBSourceColumnSelectionPanelWidget::setupExtraOptions(DatabaseType family) {
    const SQLSelectStmtComponent* const current = statement();
    const long statementId = current ? current->id() : -1;
    if (std::exchange(m_optionsOf, statementId) != statementId) {
        m_uncheckedOptions.clear();
        // A box that is held down was meant for the statement before.
        for (QAbstractButton* box : m_extraOptionsGroup->buttons())
            box->setDown(false);
    }
    const QString text =
        current ? QString::fromStdString(current->selectColumnExpr->selectOption) : QString();
    std::vector<QBSelectOption> options = selectOptions(selectOptionWords(family), text);
    for (const QString& unchecked : m_uncheckedOptions) {
        if (!findOption(options, unchecked)) options.push_back({unchecked, false});
    }
    showOptions(options);
}

void QBSourceColumnSelectionPanelWidget::showOptions(const std::vector<QBSelectOption>& options) {
    QHash<QString, QAbstractButton*> earlier;
    const auto boxes = m_extraOptionsGroup->buttons();
    for (QAbstractButton* box : boxes)
        earlier.insert(optionOf(box), box);
    // The group lists its boxes in the order in which they came.
    for (QAbstractButton* box : boxes)
        m_extraOptionsGroup->removeButton(box);
    QLayout* const row = m_ui->extraOptionsContainer->layout();
    for (const QBSelectOption& option : options) {
        QAbstractButton* box = earlier.take(option.text);
        if (!box) box = createBox(option.text);
        box->setChecked(option.isChosen);
        showEffect(box);
        m_extraOptionsGroup->addButton(box);
        row->removeWidget(box);
        row->addWidget(box);
    }
    for (QAbstractButton* box : qAsConst(earlier)) {
        box->hide();  // a layout shows what is new in it later, and would show a window then
        box->setParent(nullptr);
        box->deleteLater();  // this may be its own click
    }
}

QAbstractButton* QBSourceColumnSelectionPanelWidget::createBox(const QString& option) {
    auto* const box = new QCheckBox(m_ui->extraOptionsContainer);
    box->setProperty(optionProperty, option);
    explainBox(box);
    connect(box, &QCheckBox::clicked, this,
            &QBSourceColumnSelectionPanelWidget::slotExtraOptionChanged);
    return box;
}

/// An option is written before columns only. One that waits for them can still be taken back.
void QBSourceColumnSelectionPanelWidget::showEffect(QAbstractButton* box) {
    const SQLSelectStmtComponent* const current = statement();
    const bool hasEffect = current && !current->selectColumnExpr->columns.empty();
    // A long text, which nobody asked for, must not make the whole panel wide.
    QString text = fontMetrics().elidedText(optionOf(box), Qt::ElideRight, widestBoxText);
    text.replace(QLatin1Char('&'), QLatin1String("&&"));
    const bool isWaiting = box->isChecked() && !hasEffect;
    box->setText(
        isWaiting ? Tolk::localizeWithArgs(Tolk::TextOptionNeedsColumn, text.toUtf8().constData())
                  : text);
    box->setEnabled(hasEffect || box->isChecked());
}

void QBSourceColumnSelectionPanelWidget::rowsRefreshed() {
    QBColumnListPanelWidget::rowsRefreshed();
    for (QAbstractButton* box : m_extraOptionsGroup->buttons())
        showEffect(box);
}

void QBSourceColumnSelectionPanelWidget::explainBox(QAbstractButton* box) {
    const QString option = optionOf(box);
    const bool isKnown = engine() && selectOptionWords(engine()->databaseType()).contains(option);
    const QString hint =
        Tolk::localize(isKnown ? Tolk::TextDistinctHint : Tolk::TextUnknownOptionHint);
    box->setToolTip(plainToolTip(isKnown ? hint : option + QLatin1Char('\n') + hint));
    box->setAccessibleName(option);
    box->setAccessibleDescription(hint);
}

std::vector<QBSelectOption> QBSourceColumnSelectionPanelWidget::shownOptions() const {
    std::vector<QBSelectOption> options;
    const auto boxes = m_extraOptionsGroup->buttons();
    for (const QAbstractButton* box : boxes)
        options.push_back({optionOf(box), box->isChecked()});
    return options;
}

void QBSourceColumnSelectionPanelWidget::slotExtraOptionChanged() {
    // Read first: what is shown may change when the model is looked at.
    const auto* const box = qobject_cast<QAbstractButton*>(sender());
    const QBSelectOption changed = {box ? optionOf(box) : QString(), box && box->isChecked()};
    if (!mayAct()) {
        if (engine()) setupExtraOptions(engine()->databaseType());
        return;
    }
    std::vector<QBSelectOption> options = shownOptions();
    if (QBSelectOption* const option = findOption(options, changed.text)) {
        option->isChosen = changed.isChosen;
        settleSelectOptions(options, static_cast<std::size_t>(option - options.data()));
    }
    m_uncheckedOptions.clear();
    for (const QBSelectOption& option : options) {
        if (!option.isChosen) m_uncheckedOptions << option.text;
    }
    showOptions(options);
    storeOptions(options);
}

void QBSourceColumnSelectionPanelWidget::storeOptions(const std::vector<QBSelectOption>& options) {
    const std::string text = selectOptionText(options).toStdString();
    modifyColumns(-1, [&] {
        std::string& stored = statement()->selectColumnExpr->selectOption;
        if (stored == text) return false;
        stored = text;
        return true;
    });
}

}  // namespace QB
