#pragma once

#include <functional>

#include "differential/statement_tokens.h"

namespace QB::Test {

/// The smallest statement found by leaving out tokens, whole brackets and their content while
/// @p isStillBad holds. Asks it some hundred times, @p budget at most.
StatementTokens shrunk(StatementTokens tokens,
                       const std::function<bool(const StatementTokens&)>& isStillBad,
                       int budget = 1500);

}  // namespace QB::Test
