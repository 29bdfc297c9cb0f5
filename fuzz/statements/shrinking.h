#pragma once

#include <functional>
#include <string>

namespace QB::Fuzz {

/// The smallest text found by leaving out tokens, brackets and their content while @p isStillBad
/// holds. Asks it some hundred times, @p budget at most. @p dialect: whose lexer cuts the text.
std::string shrunk(const std::string& text, int dialect,
                   const std::function<bool(const std::string&)>& isStillBad, int budget = 1500);

}  // namespace QB::Fuzz
