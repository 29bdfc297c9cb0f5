#include "panels/source_column_selection_panel_widget.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QSignalBlocker>
#include <algorithm>

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

namespace QB {

using namespace Component::SQL;

namespace {

/// The option of a box; its text has the signs that Qt reads as shortcuts doubled.
constexpr char optionProperty[] = "option";
constexpr int narrowestBox = 60;

QString optionOf(const QAbstractButton* box) {
    return box->property(optionProperty).toString();
}

bool isPlainStar(const SQLAbstractColumnComponent& column) {
    const auto* field = ifKind<SQLFieldColumnComponent>(&column);
    return field && field->isAsterisk && field->aggregateFunction.empty();
}

bool haveSameTexts(const std::vector<QBSelectOption>& a, const std::vector<QBSelectOption>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const QBSelectOption& one, const QBSelectOption& other) {
                          return one.text == other.text;
                      });
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
    QBColumnListPanelWidget::retranslate();
    m_ui->tableView->setAccessibleName(Tolk::localizeWithArgs(Tolk::TextColumnsOfClause, "SELECT"));
    if (engine()) rebuildBoxes(shownOptions());
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
    connectRow(row, &Row::identifierLabelClicked,
               &QBSourceColumnSelectionPanelWidget::slotEditSelectedRowField);
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
    const QString text =
        current ? QString::fromStdString(current->selectColumnExpr->selectOption) : QString();
    showOptions(selectOptions(selectOptionWords(family), text));
}

void QBSourceColumnSelectionPanelWidget::showOptions(const std::vector<QBSelectOption>& options) {
    if (!haveSameTexts(options, shownOptions())) return rebuildBoxes(options);
    const QList<QAbstractButton*> boxes = m_extraOptionsGroup->buttons();
    for (int i = 0; i < boxes.size(); ++i)
        boxes[i]->setChecked(options[static_cast<std::size_t>(i)].isChosen);
}

void QBSourceColumnSelectionPanelWidget::rebuildBoxes(const std::vector<QBSelectOption>& options) {
    const auto boxes = m_extraOptionsGroup->buttons();
    for (QAbstractButton* box : boxes) {
        m_extraOptionsGroup->removeButton(box);
        box->setParent(nullptr);
        box->deleteLater();  // this may be its own click
    }
    for (const QBSelectOption& option : options) {
        QCheckBox* const box = createBox(option.text);
        box->setChecked(option.isChosen);
        m_extraOptionsGroup->addButton(box);
        m_ui->extraOptionsContainer->layout()->addWidget(box);
    }
}

QCheckBox* QBSourceColumnSelectionPanelWidget::createBox(const QString& option) {
    const bool isKnown = selectOptionWords(engine()->databaseType()).contains(option);
    const QString hint =
        Tolk::localize(isKnown ? Tolk::TextDistinctHint : Tolk::TextUnknownOptionHint);
    auto* const box = new QCheckBox(QString(option).replace(QLatin1Char('&'), QLatin1String("&&")),
                                    m_ui->extraOptionsContainer);
    box->setProperty(optionProperty, option);
    box->setToolTip(isKnown ? hint : option.toHtmlEscaped() + QLatin1String("<br>") + hint);
    box->setAccessibleDescription(hint);
    // A long text, which nobody asked for, must not make the whole panel wide.
    if (!isKnown) box->setMinimumWidth(narrowestBox);
    connect(box, &QCheckBox::clicked, this,
            &QBSourceColumnSelectionPanelWidget::slotExtraOptionChanged);
    return box;
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
    const auto at = std::find_if(options.begin(), options.end(), [&](const QBSelectOption& option) {
        return option.text == changed.text;
    });
    if (at != options.end()) {
        at->isChosen = changed.isChosen;
        settleSelectOptions(options, static_cast<std::size_t>(at - options.begin()));
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
