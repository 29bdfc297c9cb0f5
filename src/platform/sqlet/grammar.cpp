#include "platform/sqlet/grammar.h"

// What all parts of the grammar use: looking at tokens, taking them, and giving up.

namespace sqlet {

namespace {

constexpr std::size_t maxExcerpt = 40;

bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

/// Length of the UTF-8 character at the start of @p text; 0 if none stands there.
std::size_t characterLength(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    std::size_t length = 1;
    if (lead >= 0xF0U && lead < 0xF5U)
        length = 4;
    else if (lead >= 0xE0U)
        length = 3;
    else if (lead >= 0xC2U)
        length = 2;
    else if (lead >= 0x80U)
        return 0;
    if (lead >= 0xF5U || length > text.size()) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if (!isContinuation(text[i])) return 0;
    }
    return length;
}

}  // namespace

std::string excerpt(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const std::size_t shown = length == 0 ? 1 : length;
        if (result.size() + shown > maxExcerpt) return result + "...";
        const bool isControl = static_cast<unsigned char>(text.front()) < 0x20U;
        if (length == 0 || isControl)
            result += '?';
        else
            result += text.substr(0, length);
        text.remove_prefix(shown);
    }
    return result;
}

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
