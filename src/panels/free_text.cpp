#include "panels/free_text.h"

#include "platform/sqlet/lexer.h"

namespace QB {

namespace {

/// Whether a word behind @p text would be read as one.
bool leavesNext(const std::string& text, DatabaseType family) {
    const std::string next = text + " x";
    const auto list = sqlet::lex(next, family);
    const auto& tokens = list.tokens;
    return tokens.size() > 1 && tokens[tokens.size() - 2].offset == next.size() - 1 &&
           tokens[tokens.size() - 2].kind == sqlet::TokenKind::Word;
}

}  // namespace

std::string withLineEnded(const std::string& text, DatabaseType family) {
    // An open quote or comment of several lines is no better for it.
    const bool isSwallowing = !leavesNext(text, family) && leavesNext(text + '\n', family);
    return isSwallowing ? text + '\n' : text;
}

}  // namespace QB
