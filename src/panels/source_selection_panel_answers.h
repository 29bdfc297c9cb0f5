#pragma once

#include "panels/source_selection_panel_widget.h"
#include "tools/source_edits.h"

// The member templates of the panel, for its source files.
namespace QB {

template <typename Kind>
Kind* QBSourceSelectionPanelWidget::componentAt(int row) const {
    const Item* const item = itemAt(row);
    return item ? dynamic_cast<Kind*>(item->component) : nullptr;
}

template <typename Kind>
Kind* QBSourceSelectionPanelWidget::currentForAction() {
    return mayAct() ? componentAt<Kind>(rowView()->currentRow()) : nullptr;
}

template <typename Kind>
void QBSourceSelectionPanelWidget::applyTo(
    QBRowKey key, const std::function<void(SourceEdits&, int row, Kind*)>& edit) {
    if (!mayAct()) return;
    const int row = findRow(key);
    Kind* const component = componentAt<Kind>(row);
    if (!component) return;
    apply([&](SourceEdits& edits) {
        edit(edits, row, component);
        return -1;
    });
}

}  // namespace QB
