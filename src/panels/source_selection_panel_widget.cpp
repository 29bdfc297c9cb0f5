#include "panels/source_selection_panel_widget.h"

#include <QEvent>
#include <QMenu>
#include <algorithm>
#include <utility>

#include "engine/engine_linux.h"
#include "layouts/source_tree_layout.h"
#include "model/tree_walks.h"
#include "panels/source_selection_panel_answers.h"
#include "platform/tolk/tolk.h"
#include "rows/identifier_source_row_widget.h"
#include "rows/invalid_reason.h"
#include "rows/nested_list_any_expression_row_widget.h"
#include "rows/nested_list_close_bracket_row_widget.h"
#include "rows/nested_list_dummy_row_widget.h"
#include "rows/nested_list_open_bracket_row_widget.h"
#include "rows/nested_list_subquery_row_widget.h"
#include "rows/row_database.h"
#include "rows/source_selection_join_row_widget.h"
#include "tools/join_lack.h"
#include "tools/join_tools.h"
#include "tools/source_edits.h"
#include "tools/subquery_conversion.h"
#include "tools/validation.h"
#include "tools/validation_scope.h"
#include "ui_source_selection_panel_widget.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;
using Item = QBRowListPanelWidget::Item;

namespace {

enum RowKind {
    NoWidget = -1,
    DummyRow,
    TableRow,
    ExpressionRow,
    JoinRow,
    SubqueryRow,
    OpenBracketRow,
    CloseBracketRow,
};

RowKind kindOf(const Item& item) {
    const AbstractQueryComponent* component = item.component;
    if (item.isPlaceholder) return DummyRow;
    if (dynamic_cast<const SQLIdentifierSourceComponent*>(component)) return TableRow;
    if (dynamic_cast<const SQLAnyExpressionSourceComponent*>(component)) return ExpressionRow;
    if (dynamic_cast<const SQLJoinSourceNodeComponent*>(component)) return JoinRow;
    if (dynamic_cast<const SQLSubquerySourceComponent*>(component)) return SubqueryRow;
    if (dynamic_cast<const SQLBracketedSourceNodeComponent*>(component)) return OpenBracketRow;
    return !component && item.partnerItem ? CloseBracketRow : NoWidget;
}

}  // namespace

QBSourceSelectionPanelWidget::QBSourceSelectionPanelWidget(QWidget* parent)
    : QBRowListPanelWidget(parent)
    , m_ui(std::make_unique<Ui::QBSourceSelectionPanelWidget>())
    , m_popup(this) {
    m_ui->setupUi(this);
    setRelatedElements({ElementSource});
    setupRows(m_ui->tableView);
    retranslate();
}

QBSourceSelectionPanelWidget::~QBSourceSelectionPanelWidget() = default;

void QBSourceSelectionPanelWidget::retranslate() {
    m_ui->tableView->setAccessibleName(Tolk::localize(Tolk::TextSources));
}

void QBSourceSelectionPanelWidget::changeEvent(QEvent* event) {
    QBRowListPanelWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) retranslate();
}

// ---- rows -------------------------------------------------------------------------------------

std::unique_ptr<QBComponentsListLayout::Impl> QBSourceSelectionPanelWidget::createLayout() {
    SQLSelectStmtComponent* const statement = Tools::Validation::currentStatement(engine());
    if (!statement) return nullptr;
    auto rows = std::make_unique<SourceEdits::Rows>(&statement->sourceExpr->root);
    rows->rebuildItems();
    rows->updateItemFlags();
    return rows;
}

int QBSourceSelectionPanelWidget::rowKind(int row) const {
    const Item* const item = itemAt(row);
    return item ? kindOf(*item) : NoWidget;
}

QBNestedListRowWidget* QBSourceSelectionPanelWidget::createRowWidget(int row, QWidget* parent) {
    using Panel = QBSourceSelectionPanelWidget;
    AbstractQueryComponent* const component = itemAt(row)->component;
    const QBDatabaseInfo info = engine()->databaseInfo();
    switch (rowKind(row)) {
        case DummyRow:
            return new QBNestedListDummyRowWidget(nullptr, parent);
        case TableRow: {
            auto* table = new QBIdentifierSourceRowWidget(component, info, schemaLeftOut(), parent);
            connectRow(table, &QBIdentifierSourceRowWidget::signalEditIdentifierRequested, this,
                       &Panel::slotEditSelectedRowIdentifier);
            return table;
        }
        case ExpressionRow: {
            auto* expression = new QBNestedListAnyExpressionRowWidget(component, parent);
            connectRow(expression, &QBNestedListAnyExpressionRowWidget::valueLabelClicked, this,
                       &Panel::slotEditSelectedRowIdentifier);
            return expression;
        }
        case JoinRow: {
            auto* join =
                new QBSourceSelectionJoinRowWidget(component, info, schemaLeftOut(), parent);
            connectRow(join, &QBSourceSelectionJoinRowWidget::signalEditJoinTypeRequested, this,
                       &Panel::slotEditSelectedRowJoinType);
            connectRow(join, &QBSourceSelectionJoinRowWidget::signalEditConditionRequested, this,
                       &Panel::slotEditJoinCondition);
            return join;
        }
        case SubqueryRow: {
            auto* subquery = new QBNestedListSubqueryRowWidget(component, info,
                                                               engine()->currentSchema(), parent);
            connectRow(subquery, &QBNestedListSubqueryRowWidget::signalJumpToSubqueryRequested,
                       this, &Panel::slotOpenSubquery);
            return subquery;
        }
        case OpenBracketRow:
            return new QBNestedListOpenBracketRowWidget(component, parent);
        case CloseBracketRow:
            return new QBNestedListCloseBracketRowWidget(nullptr, parent);
        default:
            return nullptr;
    }
}

void QBSourceSelectionPanelWidget::markRow(QBNestedListRowWidget* widget, const Item& item) {
    const QBDatabaseInfo info = engine()->databaseInfo();
    switch (kindOf(item)) {
        case DummyRow:
            static_cast<QBNestedListDummyRowWidget*>(widget)->setPromptText(
                item.level == 0 ? Tolk::localize(Tolk::TextPromptFirstSource) : QString());
            break;
        case TableRow:
            static_cast<QBIdentifierSourceRowWidget*>(widget)->setDatabase(info, schemaLeftOut());
            break;
        case JoinRow: {
            auto* join = static_cast<QBSourceSelectionJoinRowWidget*>(widget);
            join->setDatabase(info, schemaLeftOut());
            join->setConditionFault(joinFaultText(static_cast<const Join*>(item.component),
                                                  validityOf(item.component), info.databaseType));
            break;
        }
        case SubqueryRow: {
            auto* subquery = static_cast<QBNestedListSubqueryRowWidget*>(widget);
            subquery->setDatabase(info, engine()->currentSchema());
            subquery->setInvalidReason(validityOf(item.component));
            break;
        }
        case CloseBracketRow:
            widget->setComponent(item.partnerItem->component);
            break;
        default:
            break;
    }
}

/// -1: there is nothing wrong with it.
int QBSourceSelectionPanelWidget::validityOf(const AbstractQueryComponent* component) const {
    const auto& invalid = m_invalidComponentsPerLayer.top();
    const auto found = invalid.find(component->id());
    const bool isMarked = found != invalid.end() && m_freshSubqueries.count(component->id()) == 0;
    return isMarked ? found->second : -1;
}

const std::string& QBSourceSelectionPanelWidget::schemaLeftOut() {
    if (!m_schemaLeftOut) {
        m_schemaLeftOut =
            QB::schemaLeftOut(engine()->currentTopLevelQueryComponent(), engine()->currentSchema());
    }
    return *m_schemaLeftOut;
}

TextLanguage QBSourceSelectionPanelWidget::language() const {
    return {engine()->databaseInfo(), engine()->currentSchema()};
}

// ---- validity ---------------------------------------------------------------------------------

bool QBSourceSelectionPanelWidget::needsCheck(
    void*, const QSet<TopLevelQueryComponentElementEnum>& elements) const {
    return elements.contains(ElementSource);
}

void QBSourceSelectionPanelWidget::checkInvalidComponents() {
    auto& invalid = m_invalidComponentsPerLayer.top();
    invalid.clear();
    for (const auto& [source, reason] :
         Tools::Validation::invalidateSourceComponents(engine(), this)) {
        invalid.emplace(source->id(), reason);
    }
    for (const auto& [join, reason] : Tools::Validation::invalidateJoins(engine()))
        invalid.emplace(join->id(), reason);
}

bool QBSourceSelectionPanelWidget::hasInvalidComponents() const {
    const auto& invalid = m_invalidComponentsPerLayer.top();
    return std::any_of(invalid.begin(), invalid.end(), [this](const auto& entry) {
        return m_freshSubqueries.count(entry.first) == 0;
    });
}

void QBSourceSelectionPanelWidget::panelBecomeInactive() {
    if (std::exchange(m_freshSubqueries, {}).empty()) return;
    updateMarks();
}

// ---- what the rows and the server offer -------------------------------------------------------

bool QBSourceSelectionPanelWidget::shouldShowJoinPanel(int row, bool insert) const {
    const Item* const item = itemAt(row);
    if (!item || item->isPlaceholder) return false;
    if (!insert) return true;
    // What comes to stand first in its brackets has nothing before it to be joined to.
    return row > 0 && item->level <= itemAt(row - 1)->level;
}

bool QBSourceSelectionPanelWidget::allowInsert(int row) const {
    return itemAt(row) && rowKind(row) != CloseBracketRow;
}

QList<SQLAbstractSourceComponent*>
QBSourceSelectionPanelWidget::obtainJoinConditionRelatedComponents(int row) {
    const std::unique_ptr<std::vector<Source*>> sources(
        Tools::SQL::joinConditionRelatedSources(&editableLayout(), row));
    return sources ? QList<Source*>(sources->begin(), sources->end()) : QList<Source*>();
}

QStringList QBSourceSelectionPanelWidget::obtainExtraSchemaList() const {
    QStringList schemas;
    const SQLSelectStmtComponent* const statement = Tools::Validation::currentStatement(engine());
    if (!statement) return schemas;
    const std::string current = engine()->currentSchema();
    Tools::visitSourceNodes(statement->sourceExpr->root, [&](const SourceNode* node) {
        const auto* table = dynamic_cast<const SQLIdentifierSourceComponent*>(node->value);
        if (!table || table->path.empty() || table->path.back() == current) return;
        const QString schema = QString::fromStdString(table->path.back());
        if (!schemas.contains(schema)) schemas.append(schema);
    });
    return schemas;
}

// ---- edits without a popup --------------------------------------------------------------------

void QBSourceSelectionPanelWidget::apply(const std::function<int(SourceEdits&)>& edit) {
    auto* const rows = dynamic_cast<SourceEdits::Rows*>(editableLayout().implementation());
    if (!rows) return;
    SourceEdits edits(engine(), rows, this);
    int row = -1;
    applyOwnEdit([&] { row = edit(edits); }, [&] { return std::min(row, rowCount() - 1); });
    // Last: the host's window may end all of this, if the edit has not.
    edits.tellConditions();
}

void QBSourceSelectionPanelWidget::slotRemoveSelectedRow() {
    if (!mayAct()) return;
    const std::vector<int> selected = rowView()->selectedRowNumbers();
    int row = rowView()->currentRow();
    const bool isSelected = std::find(selected.begin(), selected.end(), row) != selected.end();
    if (!isSelected && !selected.empty()) row = selected.front();
    const Item* const item = itemAt(row);
    if (!item || item->isPlaceholder) return;
    const bool isJoin = kindOf(*item) == JoinRow;
    apply([=](SourceEdits& edits) {
        edits.remove(row);
        return isJoin ? -1 : row;
    });
}

void QBSourceSelectionPanelWidget::changeBrackets(bool isGrouping) {
    if (!mayAct()) return;
    const Items rows = selectedItems();
    const int current = rowView()->currentRow();
    apply([&](SourceEdits& edits) {
        isGrouping ? edits.group(rows) : edits.ungroup(rows);
        return current;
    });
}

// ---- context menu -----------------------------------------------------------------------------

void QBSourceSelectionPanelWidget::showCellContextMenu(const QPoint& position) {
    if (!mayAct()) return;
    const int row = rowView()->currentRow();
    const int kind = rowKind(row);
    auto* menu = new QMenu(this);
    const auto add = [menu, this](Tolk::TextId text, void (QBSourceSelectionPanelWidget::*slot)()) {
        return menu->addAction(Tolk::localize(text), this, slot);
    };
    using Panel = QBSourceSelectionPanelWidget;
    const bool canInsert = allowInsert(row) && rowView()->selectedRowNumbers().size() == 1;
    add(Tolk::TextInsertSource, &Panel::slotInsertRow)->setEnabled(canInsert);
    add(Tolk::TextInsertSourceBracket, &Panel::slotInsertBracketRow)->setEnabled(canInsert);
    const bool canRemove = kind != NoWidget && kind != JoinRow && kind != DummyRow;
    add(Tolk::TextRemoveSource, &Panel::slotRemoveSelectedRow)->setEnabled(canRemove);
    addActionsOfKind(menu, rowKey(row));
    addBracketActions(menu);
    popupMenu(menu, position);
}

void QBSourceSelectionPanelWidget::addActionsOfKind(QMenu* menu, QBRowKey key) {
    const int row = findRow(key);
    const auto add = [menu, this](const QString& text, const std::function<void()>& act) {
        menu->addSeparator();
        menu->addAction(text, this, act);
    };
    if (const auto* subquery = componentAt<Subquery>(row)) {
        const QString text = QString::fromStdString(subqueryText(subquery->subquery, language()));
        add(Tolk::localize(Tolk::TextEditAsPlainText), [=] { editSubqueryAsPlaintext(key, text); });
    } else if (componentAt<Expression>(row)) {
        add(Tolk::localize(Tolk::TextConvertToSubquery), [this] { slotConvertToSubquery(); });
    } else if (const auto* join = componentAt<Join>(row)) {
        add(Tolk::localizeWithArgs(Tolk::TextChangeJoinForm, join->isUsing ? "ON" : "USING"), [=] {
            applyTo<Join>(key, [](SourceEdits& edits, int joinRow, Join*) {
                edits.changeConditionForm(joinRow);
            });
        });
    }
}

void QBSourceSelectionPanelWidget::addBracketActions(QMenu* menu) {
    const Items rows = selectedItems();
    if (rows.empty()) return;
    menu->addSeparator();
    const auto add = [menu, this](Tolk::TextId text, bool isGrouping) {
        return menu->addAction(Tolk::localize(text), this, [=] { changeBrackets(isGrouping); });
    };
    add(Tolk::TextGroupSources, true)->setEnabled(rowLayout().canGroupItemsByBracket(rows));
    add(Tolk::TextUngroupSources, false)->setEnabled(rowLayout().canUngroupItemsByBracket(rows));
}

}  // namespace QB
