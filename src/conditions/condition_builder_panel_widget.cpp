// The condition panel: its chain, its rows and their marks. Its edits are in
// condition_panel_edits.cpp, the edits of values in condition_panel_values.cpp.

#include "conditions/condition_builder_panel_widget.h"

#include <QAbstractButton>
#include <QEvent>
#include <QPointer>
#include <algorithm>

#include "conditions/condition_nested_list_row_widget.h"
#include "engine/engine_linux.h"
#include "layouts/condition_chain_surgery.h"
#include "layouts/condition_list_layout.h"
#include "model/tree_walks.h"
#include "platform/tolk/tolk.h"
#include "rows/nested_list_close_bracket_row_widget.h"
#include "rows/nested_list_dummy_row_widget.h"
#include "rows/nested_list_open_bracket_row_widget.h"
#include "rows/row_move_buttons.h"
#include "tools/join_sight.h"
#include "tools/validation_scope.h"
#include "ui_condition_builder_panel_widget.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;
using QBComponentsListLayout_Private::ConditionListLayout;
using QBComponentsListLayout_Private::PlaceKind;
using Condition = SQLAbstractConditionComponent;
using Slot = Condition**;

namespace {

/// Calls @p visit with each side of the conditions in the chain and the slot of the value there.
template <typename Visit>
void visitSides(Slot root, const Visit& visit) {
    for (const ConditionChain::Place& place : ConditionChain::flatten(root)) {
        if (place.kind != PlaceKind::Node) continue;
        const long id = place.component->id();
        auto* compare = dynamic_cast<SQLCompareConditionComponent*>(place.component);
        visit(QBConditionSide{id, QBConditionSide::Left},
              compare ? &compare->leftValue : place.slot);
        if (compare) visit(QBConditionSide{id, QBConditionSide::Right}, &compare->rightValue);
    }
}

}  // namespace

QBConditionBuilderPanelWidget::QBConditionBuilderPanelWidget(Condition** root, QWidget* parent)
    : QBRowListPanelWidget(parent)
    , m_ui(std::make_unique<Ui::QBConditionBuilderPanelWidget>())
    , m_givenRoot(root)
    , m_popup(this) {
    m_ui->setupUi(this);
    m_moveButtons = new QBRowMoveButtons(m_ui->moveUpButton, m_ui->moveDownButton, this);
    m_ui->tableView->setRowDragEnabled(true);
    setFocusProxy(m_ui->tableView);
    setupRows(m_ui->tableView);
    connect(m_ui->moveUpButton, &QAbstractButton::clicked, this,
            &QBConditionBuilderPanelWidget::slotMoveUpSelectedRow);
    connect(m_ui->moveDownButton, &QAbstractButton::clicked, this,
            &QBConditionBuilderPanelWidget::slotMoveDownSelectedRow);
    connect(m_ui->tableView, &QBNestedListTableView::rowDropped, this, [this](int target) {
        moveRow(currentKey(), [this, target](int) { return target < 0 ? rowCount() : target; });
    });
    if (root) setRelatedElements({ElementSource});
    retranslate();
}

QBConditionBuilderPanelWidget::~QBConditionBuilderPanelWidget() = default;

void QBConditionBuilderPanelWidget::retranslate() {
    m_ui->tableView->setAccessibleName(Tolk::localize(Tolk::TextConditions));
}

void QBConditionBuilderPanelWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LanguageChange) retranslate();
    QBRowListPanelWidget::changeEvent(event);
}

void QBConditionBuilderPanelWidget::setBordered(bool isBordered) {
    m_ui->tableView->setFrameShape(isBordered ? QFrame::StyledPanel : QFrame::NoFrame);
}

// ---- which chain ------------------------------------------------------------------------------

void QBConditionBuilderPanelWidget::setJoin(const Join* join) {
    m_givenRoot = nullptr;
    m_joinId = join ? join->id() : -1;
    setRelatedElements({ElementSource});
    if (!engine()) return;
    checkInvalidComponents();
    refreshUI(true);
}

void QBConditionBuilderPanelWidget::setRelatedElements(
    const QSet<TopLevelQueryComponentElementEnum>& elements) {
    QBRowListPanelWidget::setRelatedElements(elements);
    setupRootComponentRef();
}

QSet<TopLevelQueryComponentElementEnum> QBConditionBuilderPanelWidget::relatedElements() const {
    return QBRowListPanelWidget::relatedElements() + QSet{ElementSource};
}

void QBConditionBuilderPanelWidget::setRelatedComponents(const QList<Source*>& sources) {
    m_hasRelatedSources = true;
    m_relatedSources.clear();
    for (const Source* source : sources)
        m_relatedSources.insert(source->id());
}

ELEMSQLConditionExpr* QBConditionBuilderPanelWidget::obtainRepresentedExpression() const {
    const SQLSelectStmtComponent* statement = Tools::Validation::currentStatement(engine());
    if (!statement) return nullptr;
    if (element() == ElementWhere) return statement->whereExpr;
    return element() == ElementHaving ? statement->havingExpr : nullptr;
}

void QBConditionBuilderPanelWidget::setupRootComponentRef() {
    if (!m_root) m_root = findRoot();
}

void QBConditionBuilderPanelWidget::renewRoot() {
    m_root = findRoot();
    if (!engine()) return;
    m_database.info = engine()->databaseInfo();
    m_database.schema =
        schemaLeftOut(Tools::Validation::currentStatement(engine()), engine()->currentSchema());
}

Slot QBConditionBuilderPanelWidget::findRoot() {
    if (!engine()) return nullptr;
    if (element() == ElementSource) return findRootOfJoin();
    ELEMSQLConditionExpr* const expression = obtainRepresentedExpression();
    return expression ? &expression->root : nullptr;
}

/// The join may have been taken out, and its address given to another one; an undo brings it back
/// at another one.
Slot QBConditionBuilderPanelWidget::findRootOfJoin() {
    if (m_joinId < 0 && !m_givenRoot) return nullptr;
    Join* found = nullptr;
    const auto look = [&](const SourceNode* node) {
        auto* join = dynamic_cast<Join*>(node->value);
        if (!join) return;
        const bool isIt = m_givenRoot ? &join->condition == m_givenRoot : join->id() == m_joinId;
        if (isIt) found = join;
    };
    const SQLSelectStmtComponent* statement = Tools::Validation::currentStatement(engine());
    if (statement) Tools::visitSourceNodes(statement->sourceExpr->root, look);
    const bool wasLost = std::exchange(m_isJoinLost, !found);
    if (!found) {
        m_root = nullptr;
        if (!wasLost) Q_EMIT rootLost();
        return nullptr;
    }
    m_givenRoot = nullptr;
    m_joinId = found->id();
    return &found->condition;
}

std::vector<SQLAbstractSourceComponent*> QBConditionBuilderPanelWidget::choiceSources() const {
    std::vector<Source*> sources;
    const SQLSelectStmtComponent* statement = Tools::Validation::currentStatement(engine());
    if (!statement) return sources;
    const auto isOffered = [this](const Source* source) {
        return !m_hasRelatedSources || m_relatedSources.count(source->id()) > 0;
    };
    Tools::visitSourceNodes(statement->sourceExpr->root, [&](const SourceNode* node) {
        if (Tools::SQL::hasFields(node->value) && isOffered(node->value))
            sources.push_back(node->value);
    });
    return sources;
}

// ---- rows -------------------------------------------------------------------------------------

std::unique_ptr<QBComponentsListLayout::Impl> QBConditionBuilderPanelWidget::createLayout() {
    if (!m_root) return nullptr;
    auto layout = std::make_unique<ConditionListLayout>(m_root);
    layout->rebuildItems();
    layout->updateItemFlags();
    return layout;
}

int QBConditionBuilderPanelWidget::rowKind(int row) const {
    const Item* item = itemAt(row);
    if (!item) return -1;
    if (item->isPlaceholder) return DummyRow;
    if (item->partnerItem) return CloseRow;
    return ConditionChain::asBracket(item->component) ? OpenRow : ConditionRow;
}

QBNestedListRowWidget* QBConditionBuilderPanelWidget::createRowWidget(int row, QWidget* parent) {
    using Row = QBConditionNestedListRowWidget;
    using Panel = QBConditionBuilderPanelWidget;
    switch (rowKind(row)) {
        case DummyRow:
            return new QBNestedListDummyRowWidget(nullptr, parent);
        case OpenRow:
            return new QBNestedListOpenBracketRowWidget(nullptr, parent);
        case CloseRow:
            return new QBNestedListCloseBracketRowWidget(nullptr, parent);
        case ConditionRow:
            break;
        default:
            return nullptr;
    }
    auto* widget = new Row(nullptr, m_database.info, m_database.schema, parent);
    connectRow(widget, &Row::leftValueLabelClicked, this, &Panel::slotEditSelectedRowLeftValue);
    connectRow(widget, &Row::operatorLabelClicked, this,
               &Panel::slotEditSelectedRowCompareOperator);
    connectRow(widget, &Row::rightValueLabelClicked, this, &Panel::slotEditSelectedRowRightValue);
    return widget;
}

void QBConditionBuilderPanelWidget::markRow(QBNestedListRowWidget* widget, const Item& item) {
    if (auto* dummy = dynamic_cast<QBNestedListDummyRowWidget*>(widget)) {
        const bool isEmptyList = item.level == 0;
        dummy->setPromptText(isEmptyList ? Tolk::localize(Tolk::TextPromptFirstCondition)
                                         : QString());
    }
    auto* row = dynamic_cast<QBConditionNestedListRowWidget*>(widget);
    if (!row) return;
    row->setDatabase(m_database.info, m_database.schema);
    auto* compare = dynamic_cast<Compare*>(item.component);
    row->setLeftInvalidReason(shownReason(compare ? &compare->leftValue : slotOf(item)));
    row->setRightInvalidReason(compare ? shownReason(&compare->rightValue) : -1);
}

Slot QBConditionBuilderPanelWidget::slotOf(const Item& item) const {
    const auto* layout = static_cast<const ConditionListLayout*>(rowLayout().implementation());
    return layout->slotOf(const_cast<Item*>(&item));  // a key, which is not written to
}

int QBConditionBuilderPanelWidget::shownReason(Slot slot) const {
    if (m_excludedSlots.count(slot) > 0) return -1;
    const auto& invalid = m_invalidComponentsPerLayer.top();
    const auto found = invalid.find(slot);
    return found == invalid.end() ? -1 : found->second;
}

QBRowKey QBConditionBuilderPanelWidget::currentKey() const {
    return rowView()->shownKey(rowView()->currentRow());
}

Condition* QBConditionBuilderPanelWidget::conditionIn(const Item* item) const {
    if (!item) return nullptr;
    const Item* shown = item->partnerItem ? item->partnerItem : item;
    return dynamic_cast<Condition*>(shown->component);
}

std::pair<int, int> QBConditionBuilderPanelWidget::spanOf(int row) const {
    const Item* item = itemAt(row);
    if (!item) return {row, row};
    if (item->partnerItem)
        return {static_cast<int>(rowLayout().indexOfItem(item->partnerItem)), row};
    int last = row;
    if (ConditionChain::asBracket(item->component)) {
        while (last + 1 < rowCount() && itemAt(last)->partnerItem != item)
            ++last;
    }
    return {row, last};
}

std::vector<QBRowKey> QBConditionBuilderPanelWidget::selectedKeys() const {
    std::vector<QBRowKey> keys;
    for (const int row : rowView()->selectedRowNumbers())
        keys.push_back(rowView()->shownKey(row));
    return keys;
}

QBRowListPanelWidget::Items QBConditionBuilderPanelWidget::itemsOf(
    const std::vector<QBRowKey>& keys) const {
    Items items;
    for (const QBRowKey key : keys) {
        Item* const item = itemAt(findRow(key));
        if (item && !item->isPlaceholder) items.push_back(item);
    }
    return items;
}

void QBConditionBuilderPanelWidget::rowsRefreshed() {
    const Item* item = currentItem();
    const std::pair<int, int> span = spanOf(rowView()->currentRow());
    const bool canMove = item && !item->isPlaceholder;
    m_moveButtons->setEnabled(canMove && span.first > 0, canMove && span.second + 1 < rowCount());
}

// ---- marks ------------------------------------------------------------------------------------

bool QBConditionBuilderPanelWidget::needsCheck(
    void* sender, const QSet<TopLevelQueryComponentElementEnum>& elements) const {
    return isModifying() || (sender != this && relatedElements().intersects(elements));
}

void QBConditionBuilderPanelWidget::checkInvalidComponents() {
    if (m_isChecking) return;
    const QPointer<QBConditionBuilderPanelWidget> self(this);
    m_isChecking = true;
    renewRoot();
    Tools::Validation::InvalidConditions& invalid = m_invalidComponentsPerLayer.top();
    if (m_root) {
        auto found = Tools::Validation::invalidateConditionComponents(m_root, element(), engine(),
                                                                      this, &invalid);
        if (!self) return;
        renewRoot();  // who was told of a repair may have done anything
        m_invalidComponentsPerLayer.top() = std::move(found);
    } else {
        invalid.clear();
    }
    m_isChecking = false;
    renewExclusion();
    Q_EMIT signalIconNeedsUpdate();
}

bool QBConditionBuilderPanelWidget::hasInvalidComponents() const {
    const auto& invalid = m_invalidComponentsPerLayer.top();
    return std::any_of(invalid.begin(), invalid.end(), [this](const auto& entry) {
        return m_excludedSlots.count(entry.first) == 0;
    });
}

void QBConditionBuilderPanelWidget::excludeInvalidComponent(Condition** slot) {
    renewRoot();
    if (!m_root) return;
    visitSides(m_root, [&](QBConditionSide side, Slot here) {
        if (here == slot) m_excluded.insert(side);
    });
    renewExclusion();
    if (rowLayout().implementation()) refreshUI(false);
    Q_EMIT signalIconNeedsUpdate();
}

/// Forgets what has left the chain, and finds the slots of the rest.
void QBConditionBuilderPanelWidget::renewExclusion() {
    m_excludedSlots.clear();
    if (m_excluded.empty() || !m_root) return;
    std::set<QBConditionSide> left;
    visitSides(m_root, [&](QBConditionSide side, Slot slot) {
        if (m_excluded.count(side) == 0) return;
        left.insert(side);
        m_excludedSlots.insert(slot);
    });
    m_excluded = std::move(left);
}

void QBConditionBuilderPanelWidget::panelBecomeInactive() {
    QBRowListPanelWidget::panelBecomeInactive();
    if (m_excluded.empty()) return;
    m_excluded.clear();
    m_excludedSlots.clear();
    if (rowLayout().implementation()) refreshUI(false);
    Q_EMIT signalIconNeedsUpdate();
}

void QBConditionBuilderPanelWidget::adjustLayers(int currentLayer) {
    m_invalidComponentsPerLayer.adjustTo(currentLayer);
    m_excluded.clear();
    m_excludedSlots.clear();
}

}  // namespace QB
