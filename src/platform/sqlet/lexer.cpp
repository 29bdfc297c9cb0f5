#include "platform/sqlet/lexer.h"

#include <algorithm>
#include <utility>

#include "platform/sqlet/lex_scan.h"
#include "platform/sqlet/word_table.h"
#include "platform/sqlet/words.h"

namespace sqlet {
namespace {

/// One run over one text. Each scan function stands at the first byte of what it reads, which
/// m_start keeps, and leaves m_at behind the last.
class Lexer {
public:
    Lexer(std::string_view text, int dialect)
        : m_scan(text, dialect)
        , m_words(WordTable::instance())
        , m_dialect(static_cast<std::size_t>(dialect >= 1 && dialect <= dialectCount ? dialect - 1
                                                                                     : 0)) {}

    TokenList run() {
        m_list.tokens.reserve(m_scan.size / 3 + 2);
        m_open.reserve(16);
        m_pairs.reserve(16);
        if (m_scan.text.substr(0, 3) == "\xEF\xBB\xBF") m_at = 3;
        m_at = m_scan.blanksEnd(m_at);
        while (m_at < m_scan.size) {
            m_start = m_at;
            scanOne();
            m_at = m_scan.blanksEnd(m_at);
        }
        m_start = m_at;
        push(TokenKind::End);
        linkBrackets();
        return std::move(m_list);
    }

private:
    const LexTraits& traits() const { return m_scan.traits; }
    char here(std::uint32_t ahead = 0) const { return m_scan.at(m_at + ahead); }

    const Token* previous() const {
        return m_list.tokens.empty() ? nullptr : &m_list.tokens.back();
    }
    bool touches(const Token* token) const { return token && token->end() == m_start; }

    void scanOne() {
        switch (m_scan.classAt(m_at)) {
            case CharClass::Word:
                return scanWord();
            case CharClass::Digit:
                return scanNumber();
            case CharClass::Quote:
                return scanBareString('\'');
            case CharClass::DoubleQuote:
                return traits().doubleQuoteIsString ? scanBareString('"') : scanName('"', true);
            case CharClass::Backtick:
                return scanName('`', true);
            case CharClass::BracketName:
                return scanName(']', traits().doubledBracketEscapes);
            case CharClass::Open:
                return openBracket();
            case CharClass::Close:
                return closeBracket();
            case CharClass::Dot:
                return scanDot();
            case CharClass::Comma:
                return pushUpTo(m_at + 1, TokenKind::Comma);
            case CharClass::Semicolon:
                return pushUpTo(m_at + 1, TokenKind::Semicolon);
            case CharClass::Minus:
                return m_scan.isLineComment(m_at) ? skipLineComment() : scanOperator();
            case CharClass::Slash:
                return here(1) == '*' ? scanBlockComment() : scanOperator();
            case CharClass::HashComment:
                return skipLineComment();
            case CharClass::Dollar:
                return scanDollar();
            case CharClass::Mark:
                return scanMark();
            case CharClass::Operator:
                return scanOperator();
            case CharClass::Blank:
            case CharClass::Bad:
                return isNullEscape() ? pushUpTo(m_at + 2, TokenKind::Parameter)
                                      : pushUpTo(m_at + 1, TokenKind::Bad);
        }
    }

    /// \N, which is NULL.
    bool isNullEscape() const {
        return traits().backslashEscapes && here() == '\\' && here(1) == 'N';
    }

    // Tokens

    /// From m_start to m_at.
    Token& push(TokenKind kind, unsigned flags = 0) {
        if (!m_list.tokens.empty() && m_list.tokens.back().end() == m_start)
            m_list.tokens.back().flags |= TokenTouchesNext;
        Token token;
        token.offset = m_start;
        token.length = m_at - m_start;
        token.kind = kind;
        token.flags = static_cast<std::uint8_t>(flags);
        m_list.tokens.push_back(token);
        return m_list.tokens.back();
    }

    /// An end that is openEnd makes it Bad.
    void pushUpTo(std::uint32_t end, TokenKind kind, unsigned flags = 0) {
        if (end == openEnd) return pushUnterminated();
        m_at = end;
        push(kind, flags);
    }

    void pushUnterminated() {
        m_at = m_scan.size;
        push(TokenKind::Bad, TokenIsUnterminated);
    }

    // Comments

    void skipLineComment() { m_at = m_scan.lineCommentEnd(m_at); }

    void scanBlockComment() {
        const bool isExecutable =
            traits().executableComments && (here(2) == '!' || (here(2) == 'M' && here(3) == '!'));
        const bool isHint = traits().hintsSetVariables && here(2) == '+';
        const std::uint32_t end = m_scan.blockCommentEnd(m_at);
        if (end == openEnd || isExecutable) return pushUpTo(end, TokenKind::ExecutableComment);
        m_at = end;
        if (isHint && mentions("set_var")) push(TokenKind::Hint);
    }

    /// True if @p lowerCase stands in what was read since m_start, in any case.
    bool mentions(std::string_view lowerCase) const {
        const std::string_view read = m_scan.between(m_start, m_at);
        return std::search(read.begin(), read.end(), lowerCase.begin(), lowerCase.end(),
                           [](char c, char wanted) { return toLower(c) == wanted; }) != read.end();
    }

    // Words

    void scanWord() {
        m_at = m_scan.nameEnd(m_at + 1);
        const char next = here();
        if (next == '\'' || next == '&') return scanMaybePrefix(next);
        pushWord();
    }

    void pushWord() {
        Token& token = push(TokenKind::Word);
        const TableWord* word = m_words.find(m_scan.between(m_start, m_at));
        if (!word) return;
        token.keyword = word->keyword;
        token.flags = word->dialectFlags[m_dialect];
    }

    /// Apart from scanWord, which is the busiest function and stays small.
    [[gnu::noinline]] void scanMaybePrefix(char next) {
        if (!scanPrefixed(next)) pushWord();
    }

    /// The string or name whose prefix is the word just read; false if it is no prefix.
    bool scanPrefixed(char next) {
        const std::string_view prefix = m_scan.between(m_start, m_at);
        if (next == '&') return isPrefix(prefix, "u") && scanUnicode();
        if (isPrefix(prefix, "q") || isPrefix(prefix, "nq")) return scanAlternative();
        if (prefix.size() != 1) return false;
        switch (toLower(prefix.front())) {
            case 'e':
                return traits().escapePrefix && scanPrefixedString(true);
            case 'n':
                return traits().nationalPrefix && scanPrefixedString(traits().backslashEscapes);
            case 'x':
                return traits().hexPrefix && scanBits();
            case 'b':
                return traits().bitPrefix && scanBits();
            default:
                return false;
        }
    }

    static bool isPrefix(std::string_view word, std::string_view lowerCase) {
        return std::equal(word.begin(), word.end(), lowerCase.begin(), lowerCase.end(),
                          [](char c, char wanted) { return toLower(c) == wanted; });
    }

    bool scanPrefixedString(bool hasBackslashes) {
        pushString(m_scan.quotedEnd(m_at + 1, '\'', hasBackslashes));
        return true;
    }

    /// x'..' and b'..' end at the first quote: x'41''a' has an alias. Of all strings these alone do
    /// not go on in MySQL.
    bool scanBits() {
        pushString(m_scan.quotedEnd(m_at + 1, '\'', false, false));
        m_mayStringGoOn = traits().adjacentStrings != AdjacentStrings::Joined;
        return true;
    }

    bool scanUnicode() {
        const char quote = here(1);
        if (!traits().unicodePrefix || (quote != '\'' && quote != '"')) return false;
        pushUpTo(m_scan.quotedEnd(m_at + 2, quote, false).end,
                 quote == '"' ? TokenKind::QuotedName : TokenKind::String, TokenHasEscape);
        m_mayStringGoOn = true;
        return true;
    }

    bool scanAlternative() {
        const std::uint32_t end = traits().alternativeQuotes ? m_scan.alternativeEnd(m_at) : m_at;
        if (end == m_at) return false;
        m_mayStringGoOn = false;
        pushUpTo(end, TokenKind::String);
        return true;
    }

    // Quotes

    void scanName(char closing, bool doublingEscapes) {
        pushUpTo(m_scan.quotedEnd(m_at + 1, closing, false, doublingEscapes).end,
                 TokenKind::QuotedName);
    }

    void scanBareString(char quote) {
        const bool goesOn = continuesPrevious();
        const bool isEscape = goesOn && traits().escapePrefix &&
                              toLower(m_scan.text[m_list.tokens.back().offset]) == 'e';
        const TextScan::Quoted quoted =
            m_scan.quotedEnd(m_at + 1, quote, traits().backslashEscapes || isEscape);
        if (goesOn && !quoted.isOpen()) return extendPrevious(quoted.end);
        pushString(quoted);
    }

    void pushString(TextScan::Quoted quoted) {
        m_mayStringGoOn = true;
        if (followsIntroducer() && !quoted.isOpen()) return extendPrevious(quoted.end);
        pushUpTo(quoted.end, TokenKind::String, quoted.hasEscape ? TokenHasEscape : 0);
    }

    void extendPrevious(std::uint32_t end) {
        Token& token = m_list.tokens.back();
        m_at = end;
        token.length = end - token.offset;
        token.kind = TokenKind::String;
        token.keyword = Keyword::None;
        token.flags = TokenHasEscape;
    }

    /// True behind a word such as _utf8, which says how the string that follows is to be read.
    bool followsIntroducer() const {
        const Token* word = previous();
        if (!traits().charsetPrefix || !word || word->kind != TokenKind::Word) return false;
        if (m_scan.text[word->offset] != '_' || !(word->flags & SQLET_WORD_RESERVED)) return false;
        return m_list.tokens.size() < 2 || word[-1].kind != TokenKind::Dot;
    }

    bool continuesPrevious() const {
        const Token* string = previous();
        if (!string || string->kind != TokenKind::String || !m_mayStringGoOn) return false;
        switch (traits().adjacentStrings) {
            case AdjacentStrings::Separate:
                return false;
            case AdjacentStrings::Joined:
                return true;
            case AdjacentStrings::JoinedAcrossLine:
                return isLineBreakGap(m_scan.between(string->end(), m_start));
        }
        return false;
    }

    /// Blanks and line comments with a line break among them, but no other comment.
    static bool isLineBreakGap(std::string_view gap) {
        if (gap.find_first_of("\r\n") == std::string_view::npos) return false;
        for (std::size_t i = 0; i < gap.size(); ++i) {
            if (gap[i] == '/') return false;
            if (gap[i] == '-') i = std::min(gap.find_first_of("\r\n", i), gap.size());
        }
        return true;
    }

    // Numbers and dots

    void scanNumber() {
        const Token* dot = previous();
        // After a dot that touches a bare name there is a name: t.1
        if (m_isDotOfName && touches(dot) && dot->kind == TokenKind::Dot) return scanWord();
        pushNumber(m_scan.numberEnd(m_at));
    }

    void pushNumber(TextScan::NumberEnd number) {
        if (number.hasRadix && followsIntroducer()) {
            m_mayStringGoOn = false;
            return extendPrevious(number.end);
        }
        m_at = number.end;
        if (number.kind == TokenKind::Word) return pushWord();
        push(number.kind);
    }

    void scanDot() {
        const Token* name = previous();
        m_isDotOfName = traits().digitStartsName && touches(name) && name->kind == TokenKind::Word;
        if (isDigit(here(1)) && !m_isDotOfName) return pushNumber(m_scan.numberEnd(m_at));
        pushUpTo(m_at + 1, TokenKind::Dot);
    }

    // Brackets

    static TokenKind kindOfBracket(char c) {
        switch (c) {
            case '(':
                return TokenKind::LeftParen;
            case ')':
                return TokenKind::RightParen;
            case '[':
                return TokenKind::LeftBracket;
            case ']':
                return TokenKind::RightBracket;
            case '{':
                return TokenKind::LeftBrace;
            default:
                return TokenKind::RightBrace;
        }
    }

    static TokenKind closingKind(TokenKind opening) {
        if (opening == TokenKind::LeftParen) return TokenKind::RightParen;
        if (opening == TokenKind::LeftBracket) return TokenKind::RightBracket;
        return TokenKind::RightBrace;
    }

    void openBracket() {
        pushUpTo(m_at + 1, kindOfBracket(here()));
        m_open.push_back(m_list.count());
    }

    void closeBracket() {
        const TokenKind kind = kindOfBracket(here());
        pushUpTo(m_at + 1, kind);
        if (m_open.empty() || closingKind(m_list[m_open.back()].kind) != kind) return;
        m_pairs.push_back({m_open.back(), m_list.count()});
        m_open.pop_back();
    }

    void linkBrackets() {
        m_list.partner.assign(m_list.tokens.size(), noToken);
        for (const auto& [opening, closing] : m_pairs) {
            m_list.partner[opening] = closing;
            m_list.partner[closing] = opening;
        }
    }

    // Operators and parameters

    void scanOperator() {
        const auto [end, signsEnd] = m_scan.operatorEnd(m_at);
        const bool isParameter = here() == '?' && end == m_at + 1 && !followsOperand();
        pushUpTo(end, isParameter ? TokenKind::Parameter : TokenKind::Operator);
        while (m_at < signsEnd) {
            m_start = m_at;
            pushUpTo(m_at + 1, TokenKind::Operator);
        }
    }

    /// PostgreSQL has operators with a question mark, but its drivers have parameters too.
    bool followsOperand() const {
        const Token* token = previous();
        if (!token) return false;
        switch (token->kind) {
            case TokenKind::Word:
                return canEndOperand(*token);
            case TokenKind::QuotedName:
            case TokenKind::String:
            case TokenKind::Number:
            case TokenKind::Parameter:
            case TokenKind::RightParen:
            case TokenKind::RightBracket:
                return true;
            default:
                return false;
        }
    }

    static bool canEndOperand(const Token& word) {
        if (word.keyword == Keyword::Between || word.keyword == Keyword::By) return false;
        if (word.keyword == Keyword::Escape) return false;
        return !(word.flags & SQLET_WORD_RESERVED) || (word.flags & SQLET_WORD_CONSTANT) ||
               word.keyword == Keyword::End;
    }

    void scanDollar() {
        if (traits().dollarQuotes) return scanDollarQuoted();
        if (traits().moneyLiterals) return scanMoney();
        if (holds(traits().parameterMarks, '$')) return scanMark();
        pushUpTo(m_at + 1, TokenKind::Bad);
    }

    void scanDollarQuoted() {
        const std::uint32_t end = m_scan.dollarQuotedEnd(m_at);
        if (end == m_at) return scanNumbered();
        m_mayStringGoOn = false;
        pushUpTo(end, TokenKind::String);
    }

    /// $1
    void scanNumbered() {
        const std::uint32_t end = m_scan.digitsEnd(m_at + 1);
        if (end == m_at + 1) return pushUpTo(end, TokenKind::Bad);
        const bool isWhole = !m_scan.isInName(m_scan.at(end));
        pushUpTo(m_scan.nameEnd(end), isWhole ? TokenKind::Parameter : TokenKind::Bad);
    }

    /// An amount, or a pseudo-column such as $action, which is no name to be quoted.
    void scanMoney() {
        if (!m_scan.isInName(here(1)) || isDigit(here(1))) return pushNumber(m_scan.moneyEnd(m_at));
        pushUpTo(m_scan.nameEnd(m_at + 1), TokenKind::Parameter);
    }

    void scanMark() {
        const std::uint32_t length = m_scan.listedOperator(m_at);
        if (length > 0) return pushUpTo(m_at + length, TokenKind::Operator);
        const char mark = here();
        if (mark == '?') return pushUpTo(m_scan.digitsEnd(m_at + 1), TokenKind::Parameter);
        if (mark == ':' && isInSubscript()) return pushUpTo(m_at + 1, TokenKind::Operator);
        const bool isDoubled = here(1) == mark && mark != ':';
        const std::uint32_t name = m_at + (isDoubled ? 2 : 1);
        if (traits().dottedVariables && mark == '@') return scanVariable(name);
        // :5 ends with its digits.
        const bool isNumbered = mark == ':' && isDigit(m_scan.at(name));
        pushMarked(name, isNumbered ? m_scan.digitsEnd(name) : m_scan.nameEnd(name));
    }

    /// A mark without a name is an operator, if anything.
    void pushMarked(std::uint32_t name, std::uint32_t end) {
        pushUpTo(end, end > name ? TokenKind::Parameter : TokenKind::Operator);
    }

    void scanVariable(std::uint32_t name) {
        const char quote = m_scan.at(name);
        if (quote == '\'' || quote == '"' || quote == '`')
            return pushUpTo(m_scan.quotedEnd(name + 1, quote, quote != '`').end,
                            TokenKind::Parameter);
        std::uint32_t end = name;
        while (m_scan.isInName(m_scan.at(end)) || m_scan.at(end) == '.')
            ++end;
        pushMarked(name, end);
    }

    /// [1:2] is a slice, not a parameter.
    bool isInSubscript() const {
        return !m_open.empty() && m_list[m_open.back()].kind == TokenKind::LeftBracket;
    }

    const TextScan m_scan;
    const WordTable& m_words;
    const std::size_t m_dialect;
    TokenList m_list;
    std::uint32_t m_start = 0;  // of what is read at the moment
    std::uint32_t m_at = 0;
    std::vector<TokenIndex> m_open;  // brackets, outermost first
    std::vector<std::pair<TokenIndex, TokenIndex>> m_pairs;
    bool m_mayStringGoOn = false;  // the last string
    bool m_isDotOfName = false;    // the last dot
};

}  // namespace

TokenList lex(std::string_view text, int dialect) {
    return Lexer(text, dialect).run();
}

}  // namespace sqlet
