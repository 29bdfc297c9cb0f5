#pragma once

#include <functional>
#include <utility>

namespace QB {

/// Calls @p function, unless it is empty.
template <typename... Parameters, typename... Arguments>
void tell(const std::function<void(Parameters...)>& function, Arguments&&... arguments) {
    if (function) function(std::forward<Arguments>(arguments)...);
}

}  // namespace QB
