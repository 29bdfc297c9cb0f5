#include "layouts/row_dump.h"

#include "model/dump.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;
using QBComponentsListLayout_Private::BasicQBComponentsListLayoutImpl;

namespace {

void append(std::string& list, const AbstractQueryComponent* component) {
    list += (list.empty() ? "" : ", ") + dumpLine(component);
}

std::string valuesOf(const SQLConditionValueComponent* condition) {
    std::string list;
    for (const SQLAbstractColumnComponent* value : condition->values)
        append(list, value);
    return " (" + list + ")";
}

/// The two values of a range may be two links.
std::string operandText(const SQLAbstractConditionComponent* operand) {
    std::string text;
    for (const auto* link = operand; link; link = link->next) {
        const auto* value = dynamic_cast<const SQLConditionValueComponent*>(link);
        text += value ? valuesOf(value) : " (" + dumpLine(link) + ")";
    }
    return operand ? text : " (null)";
}

/// The component in one line, a condition with its values.
std::string summary(const AbstractQueryComponent* component) {
    const std::string line = dumpLine(component);
    if (const auto* value = dynamic_cast<const SQLConditionValueComponent*>(component))
        return line + valuesOf(value);
    if (const auto* compare = dynamic_cast<const SQLCompareConditionComponent*>(component))
        return line + operandText(compare->leftValue) + operandText(compare->rightValue);
    return line;
}

std::string kindOf(const BasicQBComponentsListLayoutImpl& layout,
                   const QBComponentsListLayoutItem& row) {
    if (row.isPlaceholder) return "placeholder";
    if (row.component) return summary(row.component);
    if (row.partnerItem) return "close of " + std::to_string(layout.indexOfItem(row.partnerItem));
    return "(nothing)";
}

}  // namespace

std::string dumpRows(const BasicQBComponentsListLayoutImpl& layout) {
    std::string text;
    for (std::size_t i = 0; i < layout.items().size(); ++i) {
        const QBComponentsListLayoutItem& row = *layout.items()[i];
        text += std::to_string(i) + ": level " + std::to_string(row.level) + " " +
                kindOf(layout, row) + (row.isGroupTail ? " tail" : "") + "\n";
    }
    return text;
}

}  // namespace QB
