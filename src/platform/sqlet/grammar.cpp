#include "platform/sqlet/grammar.h"
#include "platform/sqlet/text_position.h"

// What all parts of the grammar use: looking at tokens, taking them, and giving up.

namespace sqlet {

bool Grammar::isSymbol(TokenIndex index, std::string_view symbol) const {
    const Token& token = at(index);
    return token.kind == TokenKind::Operator && token.length == symbol.size() &&
           m_parser.text.compare(token.offset, token.length, symbol) == 0;
}

bool Grammar::isName(const Token& token) const {
    return token.kind == TokenKind::Word || token.kind == TokenKind::QuotedName;
}

bool Grammar::isQueryStart(TokenIndex index) const {
    const Token& behind = at(index + 1);
    switch (at(index).keyword) {
        case Keyword::Select:
        case Keyword::With:
            return true;
        case Keyword::Values:
            return behind.kind == TokenKind::LeftParen || behind.keyword == Keyword::Row;
        case Keyword::Table:
            return isName(behind);
        default:
            return false;
    }
}

TokenIndex Grammar::partner() {
    const TokenIndex result = m_parser.tokens.partner[m_position];
    if (result != noToken) return result;
    // An open quote swallows the bracket; then the quote is what is wrong.
    const bool isSwallowed = m_count > 0 && m_tokens[m_count - 1].kind == TokenKind::Bad;
    if (isSwallowed) {
        m_position = m_count - 1;
        unexpected("')'");
    }
    throw Refusal{SQLET_ERROR_SYNTAX, m_position,
                  "'" + excerpt(m_parser.textOf(m_position)) + "' is never closed"};
}

void Grammar::structure(TokenSpan span) {
    for (TokenIndex i = span.first; i <= span.last; ++i)
        structure(i);
}

bool Grammar::takeIf(Keyword word) {
    if (!is(word)) return false;
    takeStructure();
    return true;
}

bool Grammar::takeIf(TokenKind kind) {
    if (!is(kind)) return false;
    takeStructure();
    return true;
}

void Grammar::take(Keyword word, const char* expected) {
    if (!takeIf(word)) unexpected(expected);
}

void Grammar::take(TokenKind kind, const char* expected) {
    if (!takeIf(kind)) unexpected(expected);
}

std::string Grammar::wordOf(TokenIndex token) const {
    std::string word = excerpt(m_parser.textOf(token));
    for (char& c : word) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return word;
}

void Grammar::unexpected(const char* expected) const {
    const Token& token = here();
    switch (token.kind) {
        case TokenKind::ExecutableComment:
            unsupported(m_position, "a comment with code");
        case TokenKind::Hint:
            unsupported(m_position, "a hint that sets variables");
        case TokenKind::Bad:
            throw badToken(m_parser, m_position);
        case TokenKind::End:
            throw Refusal{SQLET_ERROR_SYNTAX, m_position,
                          std::string("unexpected end of the text, expected ") + expected};
        default:
            throw Refusal{
                SQLET_ERROR_SYNTAX, m_position,
                "unexpected '" + excerpt(m_parser.textOf(m_position)) + "', expected " + expected};
    }
}

Refusal badToken(const SqletParser& parser, TokenIndex index) {
    const Token& token = parser.tokens[index];
    const std::string_view text = parser.textOf(index);
    if ((token.flags & TokenIsUnterminated) == 0)
        return {SQLET_ERROR_SYNTAX, index, "unexpected '" + excerpt(text) + "'"};
    const bool isComment = text.substr(0, 2) == "/*";
    return {SQLET_ERROR_SYNTAX, index,
            isComment ? "the comment is never closed"
                      : "the quote " + excerpt(text.substr(0, 1)) + " is never closed"};
}

void Grammar::unsupported(TokenIndex token, const std::string& what) const {
    throw Refusal{SQLET_ERROR_UNSUPPORTED, token, what + " is not supported"};
}

void Grammar::beyondLimit(TokenIndex token, const std::string& what) const {
    throw Refusal{SQLET_ERROR_LIMIT, token, what};
}

}  // namespace sqlet
