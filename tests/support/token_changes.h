#pragma once

#include <string>
#include <vector>

#include "platform/sqlet/lexer.h"

namespace QB::Test {

/// The text without token @p i, with it twice, and with it behind the next one.
inline std::vector<std::string> changedAt(const std::string& text, const sqlet::TokenList& list,
                                          sqlet::TokenIndex i) {
    const sqlet::Token& token = list[i];
    const sqlet::Token& next = list[i + 1];
    const std::string before = text.substr(0, token.offset);
    const std::string here = text.substr(token.offset, token.length);
    const std::string after = text.substr(token.end());
    const std::string behindNext =
        text.substr(next.offset, next.length) + " " + here + " " + text.substr(next.end());
    return {before + after, before + here + " " + here + after, before + behindNext};
}

}  // namespace QB::Test
