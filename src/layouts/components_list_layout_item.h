#pragma once

#include <cstdint>

#include "model/components.h"

namespace QB {

/// One row of a components list layout. Callers name a row by the address of its record; the record
/// lives as long as the row.
///
/// There are four kinds of row: a placeholder (isPlaceholder), a close bracket (no component, but a
/// partner), an open bracket (the component is a bracket), and a plain row. In the source layout a
/// plain row may be a join, which stands between its operands.
/// Ownership: owned by the layout's implementation.
struct QBComponentsListLayoutItem {
    Component::AbstractQueryComponent* component = nullptr;  // not owned: part of the model
    std::int32_t level = 0;                                  ///< nesting depth, 0 = top level
    /// On a close row its open row, null on every other row.
    QBComponentsListLayoutItem* partnerItem = nullptr;  // not owned: goes with its close row
    bool isPlaceholder = false;  ///< stands for an empty list or an empty bracket
    bool isGroupTail = false;    ///< the last row, or the next one lies less deep
};

}  // namespace QB
