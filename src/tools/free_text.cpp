#include "tools/free_text.h"

#include "model/names.h"
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

bool namesTable(const std::string& text, const std::string& table, DatabaseType family) {
    const sqlet::TokenList list = sqlet::lex(text, family);
    for (sqlet::TokenIndex at = 0; at + 1 < list.count(); ++at) {
        const sqlet::Token& token = list[at];
        const bool isFirst = at == 0 || list[at - 1].kind != sqlet::TokenKind::Dot;
        if (!isName(token) || !isFirst || list[at + 1].kind != sqlet::TokenKind::Dot) continue;
        const bool isQuoted = token.kind == sqlet::TokenKind::QuotedName;
        const std::string_view written(text.data() + token.offset, token.length);
        const std::string_view name = isQuoted ? written.substr(1, written.size() - 2) : written;
        if (equalWithoutCase(name, table)) return true;
    }
    return false;
}

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
