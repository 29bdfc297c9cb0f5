#include "tools/free_text.h"

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

bool isName(const sqlet::Token& token) {
    return token.kind == sqlet::TokenKind::Word || token.kind == sqlet::TokenKind::QuotedName;
}

}  // namespace

std::string withLineEnded(const std::string& text, DatabaseType family) {
    // An open quote or comment of several lines is no better for it.
    const bool isSwallowing = !leavesNext(text, family) && leavesNext(text + '\n', family);
    return isSwallowing ? text + '\n' : text;
}

bool isOnePiece(const std::string& text, DatabaseType family) {
    using sqlet::TokenKind;
    const sqlet::TokenList list = sqlet::lex(text, family);
    sqlet::TokenIndex at = 0;
    while (isName(list[at]) && list[at + 1].kind == TokenKind::Dot)
        at += 2;
    if (isName(list[at])) ++at;
    if (list[at].kind == TokenKind::LeftParen) {
        if (list.partner[at] == sqlet::noToken) return false;
        at = list.partner[at] + 1;
    }
    return at > 0 && at == list.count();
}

}  // namespace QB
