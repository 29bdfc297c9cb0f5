// The values of conditions, and the popups in which they are edited. Opening one changes nothing;
// its answer finds the value again by the id of its condition, makes what is missing and writes, in
// one modification.

#include "conditions/condition_builder_panel_widget.h"
#include "conditions/condition_nested_list_row_widget.h"
#include "conditions/condition_value_edits.h"
#include "conditions/condition_values.h"
#include "engine/engine_linux.h"
#include "popups/column_selection_popup_widget.h"
#include "popups/input_popup.h"
#include "widgets/label.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;
using Condition = SQLAbstractConditionComponent;
using Compare = SQLCompareConditionComponent;
using Value = SQLConditionValueComponent;
using Expression = SQLAnyExpressionColumnComponent;
using Panel = QBConditionBuilderPanelWidget;

namespace {

QString fromModel(const std::string& text) {
    return QString::fromStdString(text);
}

/// The item that an operand shows first; null if there is none.
SQLAbstractColumnComponent* firstItem(const Condition* operand) {
    const auto* value = dynamic_cast<const Value*>(operand);
    return value ? value->firstValue() : nullptr;
}

/// True if @p chosen would only repeat @p item, or put an empty text in the place of a field or of
/// nothing: the popup was closed by a click elsewhere.
bool changesNothing(const QBChosenColumn& chosen, const SQLAbstractColumnComponent* item) {
    if (chosen.kind == QBChosenColumn::Nothing) return true;
    if (chosen.kind != QBChosenColumn::Expression) return false;
    const auto* expression = dynamic_cast<const Expression*>(item);
    return expression ? expression->expression == chosen.expression : chosen.expression.empty();
}

}  // namespace

// ---- finding values ---------------------------------------------------------------------------

Condition* Panel::conditionOf(QBConditionSide side) const {
    const Item* const item = itemAt(findRow({QBRowKey::Component, side.conditionId}));
    return item ? dynamic_cast<Condition*>(item->component) : nullptr;
}

/// Null where the condition has gone, or its operator has nothing there.
std::optional<Panel::Operand> Panel::operandAt(QBConditionSide side) const {
    Condition* const condition = conditionOf(side);
    const bool isLeft = side.side == QBConditionSide::Left;
    if (auto* compare = dynamic_cast<Compare*>(condition)) {
        if (isLeft) return Operand{compare->leftValue, ConditionOperand::Single};
        return Operand{compare->rightValue, operandOf(compare->compareOp)};
    }
    if (!isLeft || !dynamic_cast<Value*>(condition)) return {};
    return Operand{condition, ConditionOperand::Single};
}

/// The value on @p side, in a modification; what stood there instead is removed.
Value* Panel::ensureValue(QBConditionSide side, DetachedParts& removed) {
    Condition* const condition = conditionOf(side);
    auto* const compare = dynamic_cast<Compare*>(condition);
    if (!compare) return dynamic_cast<Value*>(condition);
    const bool isLeft = side.side == QBConditionSide::Left;
    Condition*& slot = isLeft ? compare->leftValue : compare->rightValue;
    if (auto* value = dynamic_cast<Value*>(slot)) return value;
    if (slot) removed.add(std::unique_ptr<AbstractQueryComponent>(slot));
    auto* const value = new Value;
    slot = value;
    return value;
}

void Panel::editValue(QBConditionSide side,
                      const std::function<void(Value*, DetachedParts&)>& write) {
    applyOwnEdit(
        [&] {
            modify([&](DetachedParts& removed) {
                write(ensureValue(side, removed), removed);
                return true;
            });
        },
        [=] {
            return findRow({QBRowKey::Component, side.conditionId});
        });
}

// ---- opening ----------------------------------------------------------------------------------

void Panel::slotEditSelectedRowLeftValue() {
    editSide(QBConditionSide::Left);
}

void Panel::slotEditSelectedRowRightValue() {
    editSide(QBConditionSide::Right);
}

void Panel::editSide(QBConditionSide::Side which) {
    const QBRowKey key = currentKey();
    if (!mayAct()) return;
    const QBConditionSide side{key.componentId, which};
    const std::optional<Operand> operand = operandAt(side);
    const auto* row =
        dynamic_cast<QBConditionNestedListRowWidget*>(rowView()->rowWidget(findRow(key)));
    if (!operand || !row) return;
    m_popupRow = key;
    QWidget* const anchor = row->valueLabel(which);
    switch (operand->kind) {
        case ConditionOperand::None:
            return;
        case ConditionOperand::Range:
            return popupForEditValueComponentExpressionsInBetweenOp(side, anchor);
        case ConditionOperand::List:
            return popupForEditValueComponentExpressionsInInListOp(side, anchor);
        case ConditionOperand::Single:
        case ConditionOperand::Pattern:
            return popupForEditValueComponent(side, anchor, which == QBConditionSide::Right);
    }
}

void Panel::popupForEditValueComponent(QBConditionSide side, QWidget* anchor,
                                       bool preferExpression) {
    const auto [operand, kind] = *operandAt(side);
    SQLAbstractColumnComponent* const item = firstItem(operand);
    auto* const chooser = new QBColumnSelectionPopupWidget(this, nullptr, item, nullptr, nullptr);
    chooser->setAggregateVisible(element() == ElementHaving);
    const bool isOther = operand && !dynamic_cast<const Value*>(operand);
    const bool startsAsText = preferExpression && !item && element() != ElementSource;
    if (isOther) {
        chooser->setExpression(fromModel(ConditionValues::operandText(operand, 1, m_database)));
    } else if (startsAsText) {
        chooser->setExpression({});
    }
    // A field in a pattern would be written with its name as the text.
    if (kind == ConditionOperand::Pattern) chooser->setTextOnly();
    QBInputPopup* const popup = m_popup.open(
        chooser, anchor, [this, side, chooser] { applyChosen(side, chooser->chosenColumn()); });
    connect(chooser, &QBColumnSelectionPopupWidget::chosen, popup,
            [popup] { popup->closePopup(true); });
}

void Panel::popupForEditValueComponentExpressionsInBetweenOp(QBConditionSide side,
                                                             QWidget* anchor) {
    const ConditionValues::Range range =
        ConditionValues::rangeOf(operandAt(side)->component, m_database);
    auto* const bounds = new QBConditionBoundsEdit(fromModel(range.low), fromModel(range.high));
    QBInputPopup* const popup = m_popup.open(
        bounds, anchor,
        [this, side, bounds] {
            applyRange(side, {bounds->low().toStdString(), bounds->high().toStdString()});
        },
        true);
    connect(bounds, &QBConditionBoundsEdit::accepted, popup, [popup] { popup->closePopup(true); });
}

void Panel::popupForEditValueComponentExpressionsInInListOp(QBConditionSide side, QWidget* anchor) {
    const std::string text = ConditionValues::operandText(operandAt(side)->component,
                                                          listModeOf(CompareOpIn), m_database);
    auto* const list = new QBConditionListEdit(fromModel(text));
    QBInputPopup* const popup = m_popup.open(
        list, anchor, [this, side, list] { applyList(side, list->text().toStdString()); }, true);
    connect(list, &QBConditionListEdit::accepted, popup, [popup] { popup->closePopup(true); });
}

// ---- answers ----------------------------------------------------------------------------------

void Panel::applyChosen(QBConditionSide side, QBChosenColumn chosen) {
    if (!mayAct()) return;
    const std::optional<Operand> operand = operandAt(side);
    const bool isText = chosen.kind == QBChosenColumn::Expression;
    if (!operand || changesNothing(chosen, firstItem(operand->component))) return;
    switch (operand->kind) {
        case ConditionOperand::Pattern:
            if (!isText) return;  // the operator was another one
            chosen.expression = ConditionValues::insideQuotes(chosen.expression);
            break;
        case ConditionOperand::Single:
            if (isText) chosen.expression = asOnePiece(side, chosen.expression);
            break;
        default:
            return;  // the operator has changed
    }
    std::unique_ptr<SQLAbstractColumnComponent> column =
        obtainComponentFromColumnSelectionPopupInput(chosen);
    if (!column) return;
    editValue(side, [&](Value* value, DetachedParts& removed) {
        if (operand->kind == ConditionOperand::Pattern)
            ConditionValues::setPattern(value, std::move(column), removed);
        else
            ConditionValues::setItem(value, 0, std::move(column), removed);
    });
}

std::unique_ptr<SQLAbstractColumnComponent> Panel::obtainComponentFromColumnSelectionPopupInput(
    const QBChosenColumn& chosen) const {
    return makeColumn(chosen, engine());
}

std::string Panel::asOnePiece(QBConditionSide side, const std::string& text) const {
    using ConditionValues::Place;
    const bool isCompare = dynamic_cast<const Compare*>(conditionOf(side)) != nullptr;
    const bool isLeft = side.side == QBConditionSide::Left;
    const Place place = !isCompare ? Place::Condition : isLeft ? Place::Left : Place::Right;
    return ConditionValues::asOnePiece(text, place, m_database);
}

void Panel::applyRange(QBConditionSide side, ConditionValues::Range range) {
    if (!mayAct()) return;
    const std::optional<Operand> operand = operandAt(side);
    if (!operand || operand->kind != ConditionOperand::Range) return;
    const ConditionValues::Range old = ConditionValues::rangeOf(operand->component, m_database);
    if (range.low == old.low && range.high == old.high) return;
    if (range.low != old.low) range.low = asOnePiece(side, range.low);
    if (range.high != old.high) range.high = asOnePiece(side, range.high);
    editValue(side, [&](Value* value, DetachedParts& removed) {
        ConditionValues::setRange(value, range, m_database, removed);
    });
}

void Panel::applyList(QBConditionSide side, const std::string& text) {
    if (!mayAct()) return;
    const std::optional<Operand> operand = operandAt(side);
    if (!operand || operand->kind != ConditionOperand::List) return;
    const int listMode = listModeOf(CompareOpIn);
    if (text == ConditionValues::operandText(operand->component, listMode, m_database)) return;
    ConditionValues::Columns items = ConditionValues::readList(text, choiceSources(), m_database);
    editValue(side, [&](Value* value, DetachedParts& removed) {
        ConditionValues::setList(value, std::move(items), removed);
    });
}

}  // namespace QB
