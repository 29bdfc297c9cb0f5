#pragma once

#include <string>

#include "layouts/components_list_layout_impl.h"

namespace QB {

/// The rows of a layout as text, one line a row: number, level, kind, component in short, flags.
/// Stable, without addresses; equal dumps mean equal rows. For tests and debugging.
std::string dumpRows(const QBComponentsListLayout_Private::BasicQBComponentsListLayoutImpl& layout);

}  // namespace QB
