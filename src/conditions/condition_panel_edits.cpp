// What the condition panel does with whole conditions: adding, removing, moving, brackets, NOT, the
// logic word and the operator.

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <algorithm>

#include "conditions/condition_builder_panel_widget.h"
#include "conditions/condition_values.h"
#include "engine/engine_linux.h"
#include "layouts/condition_chain_surgery.h"
#include "layouts/condition_list_layout.h"
#include "platform/tolk/tolk.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;
using Condition = SQLAbstractConditionComponent;
using Compare = SQLCompareConditionComponent;
using Value = SQLConditionValueComponent;
using Expression = SQLAnyExpressionColumnComponent;
using Panel = QBConditionBuilderPanelWidget;

namespace {

QAction* addEntry(QMenu* menu, unsigned text, bool isEnabled, std::function<void()> act) {
    QAction* const entry = menu->addAction(Tolk::localize(text));
    entry->setEnabled(isEnabled);
    QObject::connect(entry, &QAction::triggered, menu, std::move(act));
    return entry;
}

SQLLogicGate nextGate(SQLLogicGate gate) {
    switch (gate) {
        case SQLLogicGateOr:
        case SQLLogicGateNone:
            return SQLLogicGateAnd;
        case SQLLogicGateAnd:
            return SQLLogicGateOr;
    }
    return SQLLogicGateNone;
}

/// The text of a value that is a single expression; null otherwise.
std::string* onlyExpression(Value* value) {
    if (!value || value->values.size() != 1) return nullptr;
    auto* expression = dynamic_cast<Expression*>(value->values.front());
    return expression ? &expression->expression : nullptr;
}

}  // namespace

/// Runs @p change on the chain in one modification; it tells whether it changed anything.
void Panel::modify(const std::function<bool(DetachedParts&)>& change) {
    engine()->modifyInTopLevelQueryComponentElement<ELEMAbstractTopLevelQueryExpr*>(
        element(), engine()->currentTopLevelQueryComponentLayer(),
        [&](ELEMAbstractTopLevelQueryExpr*) {
            DetachedParts removed;
            const bool isChanged = change(removed);
            if (!removed.isEmpty()) engine()->retire(std::move(removed));
            return isChanged;
        },
        this);
}

void Panel::editCondition(QBRowKey key, const std::function<bool(Condition*)>& change) {
    if (!mayAct()) return;
    const int row = findRow(key);
    Condition* const condition = conditionIn(itemAt(row));
    if (!condition) return;
    applyOwnEdit([&] { modify([&](DetachedParts&) { return change(condition); }); },
                 [=] { return row; });
}

// ---- adding and removing ----------------------------------------------------------------------

void Panel::addValueComponent(bool insertBefore, bool bareValue) {
    if (bareValue) {
        auto value = std::make_unique<Value>();
        value->logicGate = SQLLogicGateAnd;
        value->values.push_back(new Expression);
        return addCondition(std::move(value), insertBefore);
    }
    auto compare = std::make_unique<Compare>();
    compare->logicGate = SQLLogicGateAnd;
    compare->leftValue = new Value;
    compare->rightValue = new Value;
    addCondition(std::move(compare), insertBefore);
}

void Panel::addBracketComponent(bool insertBefore) {
    auto bracket = std::make_unique<SQLBracketedConditionComponent>();
    bracket->logicGate = SQLLogicGateAnd;
    addCondition(std::move(bracket), insertBefore);
}

void Panel::addCondition(std::unique_ptr<Condition> condition, bool insertBefore) {
    const QBRowKey key = currentKey();
    if (!mayAct()) return;
    const int row = findRow(key);
    if (row < 0) return;
    const long id = condition->id();
    const bool isBracket = ConditionChain::asBracket(condition.get()) != nullptr;
    if (dynamic_cast<const Compare*>(condition.get())) {
        m_excluded.insert({id, QBConditionSide::Left});
        m_excluded.insert({id, QBConditionSide::Right});
    }
    applyOwnEdit(
        [&] {
            QBComponentsListLayout& rows = editableLayout();
            const bool isAdded =
                !(insertBefore ? rows.insertItem(engine(), element(), this, condition.get(), row)
                               : rows.addItem(engine(), element(), this, condition.get(), row))
                     .empty();
            if (isAdded) condition.release();
        },
        // Of a bracket the empty place in it, where the user goes on.
        [=] {
            return findRow({isBracket ? QBRowKey::Placeholder : QBRowKey::Component, id});
        });
}

void Panel::slotAddRow() {
    addValueComponent(false, false);
}

void Panel::slotInsertRow() {
    addValueComponent(true, false);
}

void Panel::slotAddBracketRow() {
    addBracketComponent(false);
}

void Panel::slotInsertBracketRow() {
    addBracketComponent(true);
}

void Panel::slotRemoveSelectedRow() {
    const std::vector<QBRowKey> keys = selectedKeys();
    if (!mayAct()) return;
    const Items items = itemsOf(keys);
    if (items.empty()) return;
    const int first = static_cast<int>(rowLayout().indexOfItem(items.front()));
    const int place = spanOf(first).first;
    applyOwnEdit([&] { editableLayout().removeItems(engine(), element(), this, items); },
                 [=] { return std::min(place, rowCount() - 1); });
}

// ---- moving and brackets ----------------------------------------------------------------------

/// @p targetOf gives the row before which the row goes, from the number that it has by then.
void Panel::moveRow(QBRowKey key, const std::function<int(int)>& targetOf) {
    if (!mayAct()) return;
    const int row = findRow(key);
    Item* const item = itemAt(row);
    if (!item || item->isPlaceholder) return;
    const int target = std::max(0, std::min(targetOf(row), rowCount()));
    const std::pair<int, int> span = spanOf(row);
    if (span.first <= target && target <= span.second + 1) return;
    applyOwnEdit(
        [&] {
            editableLayout().moveItem(engine(), element(), this, item,
                                      static_cast<unsigned long>(target));
        },
        [=] { return findRow(key); });
}

void Panel::slotMoveUpSelectedRow() {
    moveRow(currentKey(), [this](int row) { return row + rowLayout().moveUpOffset(itemAt(row)); });
}

void Panel::slotMoveDownSelectedRow() {
    moveRow(currentKey(),
            [this](int row) { return row + rowLayout().moveDownOffset(itemAt(row)); });
}

void Panel::group(const std::vector<QBRowKey>& keys) {
    if (!mayAct()) return;
    const Items items = itemsOf(keys);
    if (!rowLayout().canGroupItemsByBracket(items)) return;
    applyOwnEdit(
        [&] { editableLayout().groupItemsByBracket(engine(), element(), this, items, -1); },
        // The bracket's own row stands before the first one in it.
        [=] { return spanOf(findRow(keys.front())).first - 1; });
}

void Panel::ungroup(const std::vector<QBRowKey>& keys) {
    if (!mayAct()) return;
    const Items items = itemsOf(keys);
    if (!rowLayout().canUngroupItemsByBracket(items)) return;
    const int open = spanOf(findRow(keys.front())).first;
    applyOwnEdit([&] { editableLayout().ungroupItemsByBracket(engine(), element(), this, items); },
                 [=] { return open; });
}

// ---- NOT, logic word, operator ----------------------------------------------------------------

void Panel::slotEditSelectedRowNegator() {
    editCondition(currentKey(), [](Condition* condition) {
        condition->negated = !condition->negated;
        return true;
    });
}

void Panel::slotEditSelectedRowOperator() {
    editCondition(currentKey(), [](Condition* condition) {
        if (!condition->next) return false;
        condition->next->logicGate = nextGate(condition->next->logicGate);
        return true;
    });
}

void Panel::slotEditSelectedRowCompareOperator() {
    const QBRowKey key = currentKey();
    if (!mayAct()) return;
    const int row = findRow(key);
    const Item* const item = itemAt(row);
    if (!item || rowKind(row) != ConditionRow) return;
    auto* const menu = new QMenu(this);
    fillOperatorMenu(menu, key);
    const QModelIndex index = rowView()->model()->index(row, 0);
    popupMenu(menu, rowView()->visualRect(index).center());
}

void Panel::fillOperatorMenu(QMenu* menu, QBRowKey key) {
    const auto* compare = dynamic_cast<const Compare*>(conditionIn(itemAt(findRow(key))));
    const CompareOp current = compare ? compare->compareOp : CompareOpNone;
    auto* const group = new QActionGroup(menu);  // of which one is on
    for (const CompareOp op : operatorsInOrder()) {
        QAction* const entry = menu->addAction(operatorText(op));
        connect(entry, &QAction::triggered, this, [this, key, op] { chooseOperator(key, op); });
        entry->setCheckable(true);
        group->addAction(entry);
        if (op != current) continue;
        entry->setChecked(true);
        QFont font = menu->font();
        font.setWeight(QFont::Bold);
        entry->setFont(font);
        menu->setActiveAction(entry);
    }
}

void Panel::chooseOperator(QBRowKey key, int compareOp) {
    if (!mayAct()) return;
    const int row = findRow(key);
    performEditCompareOperator(conditionIn(itemAt(row)), compareOp, row);
}

void Panel::performEditCompareOperator(Condition* condition, int operatorValue, int row) {
    if (!condition || row < 0 || operatorText(operatorValue).isEmpty() || !mayAct()) return;
    Item* const item = itemAt(row);
    if (!item || item->component != condition) return;
    const auto op = static_cast<CompareOp>(operatorValue);
    auto* const compare = dynamic_cast<Compare*>(condition);
    auto* const value = dynamic_cast<Value*>(condition);
    const bool wantsCompare = op != CompareOpNone;
    applyOwnEdit(
        [&] {
            if (compare)
                return wantsCompare ? replaceOperator(compare, op) : replaceByValue(item, compare);
            if (value && wantsCompare) replaceByCompare(item, value, op);
        },
        [=] { return row; });
}

void Panel::replaceOperator(Compare* compare, CompareOp compareOp) {
    if (compare->compareOp == compareOp) return;
    modify([&](DetachedParts& removed) {
        if (auto* right = dynamic_cast<Value*>(compare->rightValue)) {
            ConditionValues::adaptOperand(right, operandOf(compare->compareOp),
                                          operandOf(compareOp), removed);
        }
        compare->compareOp = compareOp;
        return true;
    });
}

/// What stands on the left goes on as a condition by itself. NOT before NOT is none.
void Panel::replaceByValue(Item* item, Compare* compare) {
    auto* const rows = editableLayout().implementation();
    modify([&](DetachedParts& removed) {
        Condition* left = std::exchange(compare->leftValue, nullptr);
        if (!left) left = new Value;
        left->logicGate = std::exchange(compare->logicGate, SQLLogicGateNone);
        left->negated = left->negated != compare->negated;
        moveExclusion({compare->id(), QBConditionSide::Left}, {left->id(), QBConditionSide::Left});
        rows->replaceItemComponent(item, left, true);
        rows->updateItemFlags();
        removed = rows->takeDetachedParts();
        return true;
    });
}

/// A NOT that stood before the value stands before the comparison: there the text has it, too.
void Panel::replaceByCompare(Item* item, Value* value, CompareOp compareOp) {
    auto* const rows = editableLayout().implementation();
    std::string* const text = onlyExpression(value);
    const std::string onePiece =
        text ? ConditionValues::asOnePiece(*text, ConditionValues::Place::Left, m_database)
             : std::string();
    modify([&](DetachedParts& removed) {
        auto compare = std::make_unique<Compare>();
        compare->compareOp = compareOp;
        compare->logicGate = std::exchange(value->logicGate, SQLLogicGateNone);
        compare->negated = std::exchange(value->negated, false);
        if (text) *text = onePiece;
        const long id = compare->id();
        moveExclusion({value->id(), QBConditionSide::Left}, {id, QBConditionSide::Left});
        m_excluded.insert({id, QBConditionSide::Right});
        compare->leftValue = value;
        rows->replaceItemComponent(item, compare.release(), false);
        rows->updateItemFlags();
        removed = rows->takeDetachedParts();
        return true;
    });
}

void Panel::moveExclusion(QBConditionSide from, QBConditionSide to) {
    if (m_excluded.erase(from) > 0) m_excluded.insert(to);
}

// ---- the menu of a row ------------------------------------------------------------------------

void Panel::showCellContextMenu(const QPoint& position) {
    if (!mayAct()) return;
    const QBRowKey key = currentKey();
    const std::vector<QBRowKey> keys = selectedKeys();
    const Items items = itemsOf(keys);
    const Item* const current = currentItem();
    const Condition* const condition = conditionIn(current);

    auto* const menu = new QMenu(this);
    addEntry(menu, Tolk::TextAddCondition, current, [this] { slotAddRow(); });
    addEntry(menu, Tolk::TextInsertCondition, current, [this] { slotInsertRow(); });
    addEntry(menu, Tolk::TextAddConditionBracket, current, [this] { slotAddBracketRow(); });
    addEntry(menu, Tolk::TextInsertConditionBracket, current, [this] { slotInsertBracketRow(); });
    addEntry(menu, Tolk::TextRemoveCondition, !items.empty(), [this] { slotRemoveSelectedRow(); });
    menu->addSeparator();
    addEntry(menu, Tolk::TextGroupConditions, rowLayout().canGroupItemsByBracket(items),
             [this, keys] { group(keys); });
    addEntry(menu, Tolk::TextUngroupConditions, rowLayout().canUngroupItemsByBracket(items),
             [this, keys] { ungroup(keys); });
    menu->addSeparator();
    QAction* const negate = addEntry(menu, Tolk::TextNegateCondition, condition,
                                     [this] { slotEditSelectedRowNegator(); });
    negate->setCheckable(true);
    negate->setChecked(condition && condition->negated);
    QMenu* const operators = menu->addMenu(Tolk::localize(Tolk::TextConditionOperator));
    operators->setEnabled(rowKind(rowView()->currentRow()) == ConditionRow);
    if (operators->isEnabled()) fillOperatorMenu(operators, key);
    popupMenu(menu, position);
}

}  // namespace QB
