#include "panels/column_list_panel_widget.h"

#include <QAbstractButton>
#include <QEvent>
#include <QMenu>
#include <QPointer>
#include <algorithm>
#include <utility>

#include "engine/engine_linux.h"
#include "layouts/column_vector_layout.h"
#include "model/kind_of.h"
#include "model/tree_walks.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"
#include "popups/column_selection_popup_widget.h"
#include "rows/nested_list_any_expression_row_widget.h"
#include "rows/nested_list_dummy_row_widget.h"
#include "rows/row_interfaces.h"
#include "rows/row_move_buttons.h"
#include "tools/free_text.h"
#include "tools/validation_scope.h"
#include "widgets/label.h"

namespace QB {

using namespace Component::SQL;
using QBComponentsListLayout_Private::QBComponentsListLayoutImpl;

namespace {

enum ChooserTab { FieldTab = 0, ExpressionTab = 1 };

int tabOf(const QBChosenColumn& chosen) {
    return chosen.isField() ? FieldTab : ExpressionTab;
}

bool losesAlias(const SQLAbstractColumnComponent& column, const QBChosenColumn& chosen) {
    const bool isPlainStar =
        chosen.kind == QBChosenColumn::Star && chosen.aggregateFunction.empty();
    return isPlainStar && !column.alias.empty();
}

std::set<std::string> selectAliases(const SQLSelectStmtComponent& statement) {
    std::set<std::string> aliases;
    for (const SQLAbstractColumnComponent* column : statement.selectColumnExpr->columns)
        aliases.insert(column->alias);
    return aliases;
}

/// A name that is not one of @p known, without anything that says where it belongs.
bool isBareName(const SQLAbstractColumnComponent& column, const std::set<std::string>& known) {
    const auto* field = ifKind<SQLFieldColumnComponent>(&column);
    return field && !field->source && !field->referencedColumn && field->parentPath.empty() &&
           known.count(field->fieldName) == 0;
}

}  // namespace

QBColumnListPanelWidget::QBColumnListPanelWidget(QWidget* parent) : QBRowListPanelWidget(parent) {}

QBColumnListPanelWidget::~QBColumnListPanelWidget() = default;

void QBColumnListPanelWidget::setupColumns(QBNestedListTableView* view,
                                           QAbstractButton* moveUpButton,
                                           QAbstractButton* moveDownButton) {
    m_moveButtons = new QBRowMoveButtons(moveUpButton, moveDownButton, this);
    setupRows(view);
    view->setRowDragEnabled(true);
    connect(view, &QBNestedListTableView::rowDropped, this,
            &QBColumnListPanelWidget::dropCurrentRow);
    connect(moveUpButton, &QAbstractButton::clicked, this, [this] { slotMoveUpSelectedRow(); });
    connect(moveDownButton, &QAbstractButton::clicked, this, [this] { slotMoveDownSelectedRow(); });
    retranslate();
    rowsRefreshed();
}

// ---- the clause -----------------------------------------------------------------------------

QSet<TopLevelQueryComponentElementEnum> QBColumnListPanelWidget::relatedElements() const {
    return QBRowListPanelWidget::relatedElements() << ElementSource;
}

void QBColumnListPanelWidget::setRelatedElements(
    const QSet<TopLevelQueryComponentElementEnum>& elements) {
    QBRowListPanelWidget::setRelatedElements(elements);
    retranslate();
    if (engine()) refreshUI(true);
}

SQLSelectStmtComponent* QBColumnListPanelWidget::statement() const {
    return Tools::Validation::currentStatement(engine());
}

std::vector<QBColumnListPanelWidget::Column*>* QBColumnListPanelWidget::columns() const {
    const SQLSelectStmtComponent* const current = statement();
    if (!current) return nullptr;
    switch (firstRelatedElement()) {
        case ElementSelectColumn:
            return &current->selectColumnExpr->columns;
        case ElementGroupBy:
            return &current->groupByExpr->columns;
        case ElementOrderBy:
            return &current->orderByExpr->columns;
        default:
            return nullptr;
    }
}

std::vector<SQLAbstractSourceComponent*> QBColumnListPanelWidget::choiceSources() const {
    std::vector<SQLAbstractSourceComponent*> sources;
    const SQLSelectStmtComponent* const current = statement();
    if (!current) return sources;
    Tools::visitSourceNodes(current->sourceExpr->root, [&sources](const SourceNode* node) {
        if (!node->left && !node->right) sources.push_back(node->value);
    });
    return sources;
}

// ---- rows -----------------------------------------------------------------------------------

std::unique_ptr<QBComponentsListLayout::Impl> QBColumnListPanelWidget::createLayout() {
    std::vector<Column*>* const list = columns();
    if (!list) return nullptr;
    auto rows = std::make_unique<QBComponentsListLayoutImpl<std::vector<Column*>*>>(list);
    rows->rebuildItems();
    rows->updateItemFlags();
    return rows;
}

void QBColumnListPanelWidget::renewRoot() {
    if (!engine()) return;
    m_rowDatabase = {engine()->databaseInfo(),
                     schemaLeftOut(statement(), engine()->currentSchema())};
}

int QBColumnListPanelWidget::rowKind(int row) const {
    const Item* const item = itemAt(row);
    if (!item) return NoWidgetRow;
    if (item->isPlaceholder) return PlaceholderRow;
    return ifKind<SQLFieldColumnComponent>(item->component) ? FieldRow : ExpressionRow;
}

QBNestedListRowWidget* QBColumnListPanelWidget::createRowWidget(int row, QWidget* parent) {
    const int kind = rowKind(row);
    if (kind == NoWidgetRow) return nullptr;
    if (kind == PlaceholderRow) {
        auto* const prompt = new QBNestedListDummyRowWidget(nullptr, parent);
        prompt->setAddBracketVisible(false);
        return prompt;
    }
    Component::AbstractQueryComponent* const component = itemAt(row)->component;
    if (kind == FieldRow) return createFieldRow(component, parent);
    auto* const expression = new QBNestedListAnyExpressionRowWidget(component, parent);
    expression->setAddBracketVisible(false);
    connectRow(expression, &QBNestedListAnyExpressionRowWidget::valueLabelClicked, this,
               &QBColumnListPanelWidget::slotEditSelectedRowField);
    setupExpressionRow(expression);
    return expression;
}

void QBColumnListPanelWidget::markRow(QBNestedListRowWidget* widget, const Item& item) {
    if (auto* const prompt = dynamic_cast<QBNestedListDummyRowWidget*>(widget))
        return prompt->setPromptText(promptText());
    const auto* const column = dynamic_cast<const Column*>(item.component);
    if (!column) return;
    const int reason = invalidReason(column);
    if (auto* const expression = dynamic_cast<QBNestedListAnyExpressionRowWidget*>(widget))
        return expression->setInvalidReason(reason);
    markFieldRow(widget, *column, reason);
}

QBColumnListPanelWidget::Column* QBColumnListPanelWidget::columnAt(int row) const {
    const Item* const item = itemAt(row);
    return item ? dynamic_cast<Column*>(item->component) : nullptr;
}

QBColumnListPanelWidget::Column* QBColumnListPanelWidget::currentColumn() const {
    return columnAt(rowView()->currentRow());
}

// ---- validity -------------------------------------------------------------------------------

void QBColumnListPanelWidget::checkInvalidComponents() {
    using namespace Tools::Validation;
    InvalidColumns found;
    const QPointer<QBColumnListPanelWidget> self(this);
    if (statement()) {
        const InvalidColumns known = m_invalidComponentsPerLayer.top();
        const int which = firstRelatedElement();
        found = which == ElementSelectColumn
                    ? invalidateRefComponents_selectColumn(which, engine(), this, &known)
                    : invalidateRefComponents_column(which, engine(), this, &known);
        if (!self) return;  // who was told of a repair may have done anything
        if (statement()) keepLostReferences(found);
    }
    m_invalidComponentsPerLayer.top() = std::move(found);
}

/// A check takes the reference to a column that has gone away, and the next one finds a bare name,
/// which may be anything. It stays marked until it names something again.
void QBColumnListPanelWidget::keepLostReferences(Tools::Validation::InvalidColumns& found) {
    using Tools::Validation::InvalidReferencedColumn;
    const std::set<long> earlier = std::exchange(m_lostReferencesPerLayer.top(), {});
    std::set<std::string> aliases;
    if (!earlier.empty()) aliases = selectAliases(*statement());
    const std::vector<Column*>* const list = columns();
    if (!list) return;
    for (Column* column : *list) {
        const auto fault = found.find(column);
        const bool isNew = fault != found.end() && fault->second == InvalidReferencedColumn;
        const bool isOld = earlier.count(column->id()) > 0 && isBareName(*column, aliases);
        if (!isNew && !isOld) continue;
        m_lostReferencesPerLayer.top().insert(column->id());
        found.emplace(column, InvalidReferencedColumn);
    }
}

bool QBColumnListPanelWidget::needsCheck(
    void* sender, const QSet<TopLevelQueryComponentElementEnum>& elements) const {
    const bool isForeign = sender != this && elements.contains(element());
    return isModifying() || isForeign || elements.contains(ElementSource);
}

void QBColumnListPanelWidget::adjustLayers(int currentLayer) {
    m_invalidComponentsPerLayer.adjustTo(currentLayer);
    m_lostReferencesPerLayer.adjustTo(currentLayer);
}

bool QBColumnListPanelWidget::hasInvalidComponents() const {
    return !m_invalidComponentsPerLayer.top().empty();
}

int QBColumnListPanelWidget::invalidReason(const Column* column) const {
    const auto& invalid = m_invalidComponentsPerLayer.top();
    const auto found = invalid.find(const_cast<Column*>(column));
    return found == invalid.end() ? -1 : found->second;
}

// ---- adding and editing ---------------------------------------------------------------------

void QBColumnListPanelWidget::modifyColumns(int row, const std::function<bool()>& edit) {
    applyOwnEdit(
        [&] {
            engine()->modifyInTopLevelQueryComponentElement<ELEMAbstractTopLevelQueryExpr*>(
                element(), engine()->currentTopLevelQueryComponentLayer(),
                [&edit](ELEMAbstractTopLevelQueryExpr*) { return edit(); }, this);
        },
        [row] { return row; });
}

void QBColumnListPanelWidget::addComponent(bool insert) {
    if (!mayAct()) return;
    // With the keyboard a list can have the focus and no current row.
    const int current = rowView()->currentRow();
    const int row = current < 0 ? rowCount() - 1 : current;
    auto* const widget =
        dynamic_cast<IQBNestedListRowWidgetAddRowSupported*>(rowView()->rowWidget(row));
    if (!widget) return;
    const QBRowKey before = insert && columnAt(row) ? rowKey(row) : QBRowKey();
    const long statementId = statement()->id();
    setPopupRow({});
    openChooser(widget->addRowLabel(), nullptr,
                [=](const QBChosenColumn& chosen) { insertColumn(chosen, before, statementId); });
}

void QBColumnListPanelWidget::slotEditSelectedRowField() {
    if (!mayAct()) return;
    const int row = rowView()->currentRow();
    Column* const column = columnAt(row);
    QBNestedListRowWidget* const widget = column ? rowView()->rowWidget(row) : nullptr;
    if (!widget) return;
    QWidget* anchor = widget->mainPart();
    if (!anchor) anchor = widget;
    const QBRowKey key = rowKey(row);
    setPopupRow(key);
    openChooser(anchor, column, [=](const QBChosenColumn& chosen) { editColumn(key, chosen); });
}

void QBColumnListPanelWidget::openChooser(QWidget* anchor, Column* edited, const Answer& answer) {
    auto* const chooser = new QBColumnSelectionPopupWidget(this, nullptr, edited, nullptr, nullptr);
    chooser->setAggregateVisible(true);
    setupChooser(chooser);
    connect(chooser, &QBColumnSelectionPopupWidget::chosen, this, [this] { m_popup.accept(); });
    m_popup.open(chooser, anchor, [this, chooser, answer] {
        // A click outside accepts, too: without a new choice it changes nothing.
        if (!chooser->hasChoice() || !chooser->hasChanged() || !engine()) return;
        QBChosenColumn chosen = chooser->chosenColumn();
        chosen.expression = withLineEnded(chosen.expression, engine()->databaseType());
        answer(chosen);
    });
}

void QBColumnListPanelWidget::insertColumn(const QBChosenColumn& chosen, QBRowKey before,
                                           long statementId) {
    if (!mayAct() || statement()->id() != statementId) return;
    std::unique_ptr<Column> column(obtainSuitableComponent(nullptr, tabOf(chosen)));
    if (!fillColumn(column.get(), chosen, engine())) return;
    settleExtraData(*column, OrderDirectionNone);
    const QBRowKey key{QBRowKey::Component, column->id()};
    applyOwnEdit(
        [&] {
            const bool isAdded =
                !editableLayout()
                     .insertItem(engine(), element(), this, column.get(), findRow(before))
                     .empty();
            if (isAdded) column.release();
        },
        [=] { return findRow(key); });
}

void QBColumnListPanelWidget::editColumn(QBRowKey key, const QBChosenColumn& chosen) {
    if (!mayAct()) return;
    const int row = findRow(key);
    Item* const item = itemAt(row);
    Column* const old = columnAt(row);
    if (!old) return;
    const OrderDirection direction = directionOf(*old);
    // Who refers to the column by its alias must not find a wildcard, which bears none.
    Column* const kept = losesAlias(*old, chosen) ? nullptr : old;
    Column* const column = obtainSuitableComponent(kept, tabOf(chosen));
    std::unique_ptr<Column> replacement(column == old ? nullptr : column);
    m_invalidComponentsPerLayer.top().erase(old);
    modifyColumns(row, [&] {
        if (!fillColumn(column, chosen, engine())) return false;
        if (replacement) replaceColumn(item, std::move(replacement));
        settleExtraData(*column, direction);
        return true;
    });
}

/// Inside a block.
void QBColumnListPanelWidget::replaceColumn(Item* item, std::unique_ptr<Column> replacement) {
    takeOverColumn(static_cast<Column*>(item->component), replacement.get(), engine());
    QBComponentsListLayout::Impl* const rows = rowLayout().implementation();
    rows->replaceItemComponent(item, replacement.release(), true);
    engine()->retire(rows->takeDetachedParts());
}

/// @p component if it is of the class that the tab edits, else a new one of that class, the
/// caller's; null for another tab.
QBColumnListPanelWidget::Column* QBColumnListPanelWidget::obtainSuitableComponent(Column* component,
                                                                                  int tab) {
    if (tab == FieldTab) {
        return dynamic_cast<SQLFieldColumnComponent*>(component) ? component
                                                                 : new SQLFieldColumnComponent;
    }
    if (tab != ExpressionTab) return nullptr;
    return dynamic_cast<SQLAnyExpressionColumnComponent*>(component)
               ? component
               : new SQLAnyExpressionColumnComponent;
}

// ---- removing -------------------------------------------------------------------------------

void QBColumnListPanelWidget::slotRemoveSelectedRow() {
    if (!mayAct()) return;
    Items going = selectedItems();
    going.erase(std::remove_if(going.begin(), going.end(),
                               [](const Item* item) { return item->isPlaceholder; }),
                going.end());
    if (going.empty()) return;
    for (const Item* item : going)
        m_invalidComponentsPerLayer.top().erase(static_cast<Column*>(item->component));
    const int row = rowView()->currentRow();
    applyOwnEdit([&] { editableLayout().removeItems(engine(), element(), this, going); },
                 [=] { return std::min(std::max(row, 0), rowCount() - 1); });
}

// ---- moving ---------------------------------------------------------------------------------

void QBColumnListPanelWidget::slotMoveUpSelectedRow() {
    moveCurrentRow(-1);
}

void QBColumnListPanelWidget::slotMoveDownSelectedRow() {
    moveCurrentRow(2);
}

/// @p offset leads to the row before which the current one goes.
void QBColumnListPanelWidget::moveCurrentRow(int offset) {
    if (!mayAct()) return;
    const int row = rowView()->currentRow();
    if (row + offset >= 0) moveComponent(row, row + offset);
}

void QBColumnListPanelWidget::dropCurrentRow(int target) {
    if (mayAct()) moveComponent(rowView()->currentRow(), target);
}

/// @p target is the row before which the column goes, -1 or a number past the rows the end.
void QBColumnListPanelWidget::moveComponent(int row, int target) {
    Item* const item = itemAt(row);
    if (!item || item->isPlaceholder) return;
    const int place = target < 0 ? rowCount() : std::min(target, rowCount());
    if (place == row || place == row + 1) return;
    const QBRowKey key = rowKey(row);
    applyOwnEdit(
        [&] {
            editableLayout().moveItem(engine(), element(), this, item,
                                      static_cast<unsigned long>(place));
        },
        [=] { return findRow(key); });
}

void QBColumnListPanelWidget::rowsRefreshed() {
    const int row = rowView()->currentRow();
    const bool isColumn = columnAt(row) != nullptr;
    m_moveButtons->setEnabled(isColumn && row > 0, isColumn && row + 1 < rowCount());
}

// ---- menu -------------------------------------------------------------------------

void QBColumnListPanelWidget::showCellContextMenu(const QPoint& position) {
    if (!mayAct()) return;
    const bool isColumn = columnAt(rowView()->indexAt(position).row()) != nullptr;
    auto* const menu = new QMenu(this);
    QAction* const insert = menu->addAction(Tolk::localize(Tolk::TextInsertRow), this,
                                            &QBColumnListPanelWidget::slotInsertRow);
    insert->setEnabled(rowView()->selectedRowNumbers().size() == 1);
    QAction* const remove = menu->addAction(Tolk::localize(Tolk::TextRemove), this,
                                            &QBColumnListPanelWidget::slotRemoveSelectedRow);
    remove->setEnabled(isColumn);
    addMenuActions(menu);
    popupMenu(menu, position);
}

void QBColumnListPanelWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LanguageChange) retranslate();
    QBRowListPanelWidget::changeEvent(event);
}

}  // namespace QB
