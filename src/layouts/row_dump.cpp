#include "layouts/row_dump.h"

#include "model/dump.h"

namespace QB {

using QBComponentsListLayout_Private::BasicQBComponentsListLayoutImpl;

namespace {

/// The first line of the component's own dump.
std::string summary(const Component::AbstractQueryComponent* component) {
    const std::string text = dumpStatement(component);
    return text.substr(0, text.find('\n'));
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
