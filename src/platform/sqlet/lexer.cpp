#include "platform/sqlet/lexer.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/sqlet/lex_traits.h"
#include "platform/sqlet/word_table.h"
#include "platform/sqlet/words.h"

namespace sqlet {
namespace {

/// One run over one text. Each scan function stands at the first byte of what it reads, which
/// m_start keeps, and leaves m_at behind the last.
class Lexer {
public:
    Lexer(std::string_view text, int dialect)
        : m_text(text)
        , m_traits(lexTraits(dialect))
        , m_chars(charTable(dialect))
        , m_words(WordTable::instance())
        , m_dialect(
              static_cast<std::size_t>(dialect >= 1 && dialect <= dialectCount ? dialect - 1 : 0))
        , m_size(static_cast<std::uint32_t>(text.size())) {}

    TokenList run() {
        m_list.tokens.reserve(m_size / 3 + 2);
        m_open.reserve(16);
        m_pairs.reserve(16);
        if (m_text.substr(0, 3) == "\xEF\xBB\xBF") m_at = 3;
        for (skipBlanks(); m_at < m_size; skipBlanks()) {
            m_start = m_at;
            scanOne(m_text[m_at]);
        }
        m_start = m_at;
        push(TokenKind::End);
        linkBrackets();
        return std::move(m_list);
    }

private:
    char at(std::uint32_t position) const { return position < m_size ? m_text[position] : '\0'; }
    char here(std::uint32_t ahead = 0) const { return at(m_at + ahead); }

    const Token* previous() const {
        return m_list.tokens.empty() ? nullptr : &m_list.tokens.back();
    }
    bool touches(const Token* token) const { return token && token->end() == m_start; }

    void scanOne(char first) {
        switch (m_chars.classOf(first)) {
            case CharClass::Word:
                return scanWord();
            case CharClass::Digit:
                return scanNumber();
            case CharClass::Quote:
                return scanBareString('\'');
            case CharClass::DoubleQuote:
                return m_traits.doubleQuoteIsString ? scanBareString('"') : scanName('"', true);
            case CharClass::Backtick:
                return scanName('`', true);
            case CharClass::BracketName:
                return scanName(']', m_traits.doubledBracketEscapes);
            case CharClass::Open:
                return openBracket(first);
            case CharClass::Close:
                return closeBracket(first);
            case CharClass::Dot:
                return scanDot();
            case CharClass::Comma:
                return pushSingle(TokenKind::Comma);
            case CharClass::Semicolon:
                return pushSingle(TokenKind::Semicolon);
            case CharClass::Minus:
                return isLineComment() ? skipLineComment() : scanOperator();
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
                return pushSingle(TokenKind::Bad);
        }
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

    void pushSingle(TokenKind kind) {
        ++m_at;
        push(kind);
    }

    void pushUnterminated() {
        m_at = m_size;
        push(TokenKind::Bad, TokenIsUnterminated);
    }

    // Blanks and comments

    void skipBlanks() {
        std::uint32_t end = m_at;
        while (end < m_size && isBlank(m_text[end]))
            ++end;
        m_at = end;
    }

    bool isLineComment() const {
        if (here(1) != '-') return false;
        return !m_traits.dashesNeedBlank || static_cast<unsigned char>(here(2)) <= ' ' ||
               here(2) == '\x7F';
    }

    void skipLineComment() {
        const char* ends = m_traits.carriageReturnEndsComment ? "\n\r" : "\n";
        m_at = static_cast<std::uint32_t>(
            std::min<std::size_t>(m_text.find_first_of(ends, m_at), m_size));
    }

    bool isExecutableComment() const {
        return m_traits.executableComments &&
               (here(2) == '!' || (here(2) == 'M' && here(3) == '!'));
    }

    void scanBlockComment() {
        const bool isExecutable = isExecutableComment();
        const bool isHint = m_traits.hintsSetVariables && here(2) == '+';
        if (!skipBlockComment()) return pushUnterminated();
        if (isExecutable) push(TokenKind::ExecutableComment);
        if (isHint && mentions("set_var")) push(TokenKind::Hint);
    }

    bool skipBlockComment() {
        int depth = 1;
        m_at += 2;
        while (depth > 0) {
            const std::size_t found =
                m_text.find_first_of(m_traits.nestedComments ? "*/" : "*", m_at);
            if (found == std::string_view::npos) return false;
            m_at = static_cast<std::uint32_t>(found) + 1;
            const char wanted = m_text[found] == '*' ? '/' : '*';
            if (here() != wanted) continue;
            depth += wanted == '/' ? -1 : 1;
            ++m_at;
        }
        return true;
    }

    /// True if @p lowerCase stands in what was read since m_start, in any case.
    bool mentions(std::string_view lowerCase) const {
        const std::string_view read = m_text.substr(m_start, m_at - m_start);
        return std::search(read.begin(), read.end(), lowerCase.begin(), lowerCase.end(),
                           [](char c, char wanted) { return toLower(c) == wanted; }) != read.end();
    }

    // Words

    void skipName() {
        std::uint32_t end = m_at;
        while (end < m_size && m_chars.isInName(m_text[end]))
            ++end;
        m_at = end;
    }

    void scanWord() {
        ++m_at;
        skipName();
        const char next = here();
        if (next == '\'' || next == '&') return scanMaybePrefix(next);
        pushWord();
    }

    void pushWord() {
        Token& token = push(TokenKind::Word);
        const TableWord* word = m_words.find(m_text.substr(token.offset, token.length));
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
        const std::uint32_t length = m_at - m_start;
        const char first = toLower(m_text[m_start]);
        if (length == 2 && next == '\'' && first == 'n' && toLower(m_text[m_start + 1]) == 'q')
            return scanAlternative();
        if (length != 1) return false;
        if (next == '&') return first == 'u' && scanUnicode();
        if (first == 'q') return scanAlternative();
        if (first == 'e' && m_traits.escapePrefix) return scanPrefixedString(true, true);
        if (first == 'n' && m_traits.nationalPrefix)
            return scanPrefixedString(m_traits.backslashEscapes, true);
        if ((first == 'x' && m_traits.hexPrefix) || (first == 'b' && m_traits.bitPrefix))
            return scanPrefixedString(false, m_traits.adjacentStrings != AdjacentStrings::Joined);
        return false;
    }

    bool scanPrefixedString(bool hasBackslashes, bool mayGoOn) {
        ++m_at;
        const Quoted quoted = skipQuoted('\'', true, hasBackslashes);
        pushString(quoted, mayGoOn);
        return true;
    }

    bool scanUnicode() {
        const char quote = here(1);
        if (!m_traits.unicodePrefix || (quote != '\'' && quote != '"')) return false;
        m_at += 2;
        if (!skipQuoted(quote, true, false).isClosed)
            pushUnterminated();
        else
            push(quote == '"' ? TokenKind::QuotedName : TokenKind::String, TokenHasEscape);
        m_mayStringGoOn = true;
        return true;
    }

    /// q'[..]': ends with the partner of the bracket, or with the same character, and a quote.
    bool scanAlternative() {
        const char opening = here(1);
        if (!m_traits.alternativeQuotes || m_at + 1 >= m_size || isBlank(opening)) return false;
        std::uint32_t length = 1;
        while ((static_cast<unsigned char>(here(1 + length)) & 0xC0U) == 0x80)
            ++length;
        m_delimiter.assign(m_text.substr(m_at + 1, length));
        const std::size_t bracket = std::string_view("([{<").find(opening);
        if (bracket != std::string_view::npos) m_delimiter = ")]}>"[bracket];
        m_delimiter += '\'';
        m_at += 1 + length;
        scanDelimited();
        return true;
    }

    /// Up to m_delimiter, whose first byte occurs in it only once: linear.
    void scanDelimited() {
        const std::size_t found = m_text.find(m_delimiter, m_at);
        if (found == std::string_view::npos) return pushUnterminated();
        m_at = static_cast<std::uint32_t>(found + m_delimiter.size());
        m_mayStringGoOn = false;
        push(TokenKind::String);
    }

    // Quotes

    struct Quoted {
        bool isClosed = false;
        bool hasEscape = false;  // a backslash
    };

    /// From behind the opening quote to behind the closing one.
    Quoted skipQuoted(char quote, bool doublingEscapes, bool hasBackslashes) {
        const char stops[] = {quote, '\\', '\0'};
        const std::string_view wanted(stops, hasBackslashes ? 2 : 1);
        Quoted quoted;
        for (;;) {
            const std::size_t found =
                hasBackslashes ? m_text.find_first_of(wanted, m_at) : m_text.find(quote, m_at);
            if (found == std::string_view::npos) return quoted;
            m_at = static_cast<std::uint32_t>(found) + 1;
            if (m_text[found] == '\\') {
                quoted.hasEscape = true;
                m_at = std::min(m_at + 1, m_size);
            } else if (doublingEscapes && here() == quote) {
                ++m_at;
            } else {
                quoted.isClosed = true;
                return quoted;
            }
        }
    }

    void scanName(char closing, bool doublingEscapes) {
        ++m_at;
        if (!skipQuoted(closing, doublingEscapes, false).isClosed) return pushUnterminated();
        push(TokenKind::QuotedName);
    }

    void scanBareString(char quote) {
        const bool goesOn = continuesPrevious();
        const bool isEscape =
            goesOn && m_traits.escapePrefix && toLower(m_text[m_list.tokens.back().offset]) == 'e';
        ++m_at;
        const Quoted quoted = skipQuoted(quote, true, m_traits.backslashEscapes || isEscape);
        if (!goesOn || !quoted.isClosed) return pushString(quoted, true);
        extendPrevious();
    }

    /// @p mayGoOn: an adjacent string may become part of it.
    void pushString(Quoted quoted, bool mayGoOn) {
        m_mayStringGoOn = mayGoOn;
        if (!quoted.isClosed) return pushUnterminated();
        if (followsIntroducer()) return extendPrevious();
        push(TokenKind::String, quoted.hasEscape ? TokenHasEscape : 0);
    }

    void extendPrevious() {
        Token& token = m_list.tokens.back();
        token.length = m_at - token.offset;
        token.kind = TokenKind::String;
        token.keyword = Keyword::None;
        token.flags = TokenHasEscape;
    }

    /// True behind a word such as _utf8, which says how the string that follows is to be read.
    bool followsIntroducer() const {
        const Token* word = previous();
        if (!m_traits.charsetPrefix || !word || word->kind != TokenKind::Word) return false;
        if (m_text[word->offset] != '_' || !(word->flags & SQLET_WORD_RESERVED)) return false;
        return m_list.tokens.size() < 2 || word[-1].kind != TokenKind::Dot;
    }

    bool continuesPrevious() const {
        const Token* string = previous();
        if (!string || string->kind != TokenKind::String || !m_mayStringGoOn) return false;
        switch (m_traits.adjacentStrings) {
            case AdjacentStrings::Separate:
                return false;
            case AdjacentStrings::Joined:
                return true;
            case AdjacentStrings::JoinedAcrossLine:
                return isLineBreakGap(m_text.substr(string->end(), m_start - string->end()));
        }
        return false;
    }

    /// Blanks and line comments with a line break among them, but no other comment.
    static bool isLineBreakGap(std::string_view gap) {
        if (gap.find_first_of("\r\n") == std::string_view::npos) return false;
        for (std::size_t i = 0; i < gap.size(); ++i) {
            if (gap[i] == '-')
                i = std::min(gap.find_first_of("\r\n", i), gap.size());
            else if (gap[i] == '/')
                return false;
        }
        return true;
    }

    // Numbers

    void scanNumber() {
        const Token* dot = previous();
        // After a dot that touches a bare name there is a name: t.1
        if (m_isDotOfName && touches(dot) && dot->kind == TokenKind::Dot) return scanWord();
        if (scanRadixNumber()) return;
        skipDigits();
        if (here() == '.' && here(1) != '.') {
            ++m_at;
            skipDigits();
        }
        skipExponent();
        if (holds(m_traits.numberSuffixes, here())) ++m_at;
        pushNumber();
    }

    bool scanRadixNumber() {
        const char letter = here(1);
        if (here() != '0' || !holds(m_traits.radixLetters, letter)) return false;
        std::uint32_t end = m_at + 2;
        while (isRadixDigit(letter, at(end)) || isSeparator(end))
            ++end;
        const bool isEmpty = end == m_at + 2;
        if (m_chars.isInName(at(end)) || (isEmpty && m_traits.digitStartsName)) return false;
        m_at = end;
        m_mayStringGoOn = false;
        if (followsIntroducer())
            extendPrevious();
        else
            push(TokenKind::Number);
        return true;
    }

    static bool isRadixDigit(char letter, char c) {
        if (toLower(letter) == 'b') return c == '0' || c == '1';
        if (toLower(letter) == 'o') return c >= '0' && c <= '7';
        return isHexDigit(c);
    }

    bool isSeparator(std::uint32_t position) const {
        return m_traits.digitSeparators && at(position) == '_' && isHexDigit(at(position + 1));
    }

    void skipDigits() {
        while (isDigit(here()) || (isSeparator(m_at) && isDigit(here(1))))
            ++m_at;
    }

    void skipExponent() {
        if (toLower(here()) != 'e') return;
        const std::uint32_t sign = here(1) == '+' || here(1) == '-' ? 1 : 0;
        if (!isDigit(here(1 + sign))) return;
        m_at += 2 + sign;
        skipDigits();
    }

    /// What goes on as a name: `1a` is one in some dialects; elsewhere it is an error or, worse, a
    /// number with an alias, of which the writer did not think.
    void pushNumber() {
        if (!m_chars.isInName(here())) {
            push(TokenKind::Number);
            return;
        }
        if (!m_traits.digitStartsName) return pushBadNumber();
        const std::string_view read = m_text.substr(m_start, m_at - m_start);
        if (std::all_of(read.begin(), read.end(), isDigit)) {
            skipName();
            return pushWord();
        }
        if (toLower(here()) == 'e') return pushBadNumber();
        push(TokenKind::Number);
    }

    void pushBadNumber() {
        skipName();
        push(TokenKind::Bad);
    }

    void scanDot() {
        const Token* name = previous();
        const bool isOfName =
            m_traits.digitStartsName && touches(name) && name->kind == TokenKind::Word;
        m_isDotOfName = isOfName;
        if (isDigit(here(1)) && !isOfName) return scanFraction();
        pushSingle(TokenKind::Dot);
    }

    void scanFraction() {
        ++m_at;
        skipDigits();
        skipExponent();
        if (holds(m_traits.numberSuffixes, here())) ++m_at;
        pushNumber();
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

    void openBracket(char c) {
        pushSingle(kindOfBracket(c));
        m_open.push_back(m_list.count());
    }

    void closeBracket(char c) {
        const TokenKind kind = kindOfBracket(c);
        pushSingle(kind);
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
        if (!m_chars.isInOperator(here(1))) return scanLoneOperator();
        pushOperator(m_traits.operatorRuns ? runLength() : std::max(listedLength(), 1U));
    }

    void scanLoneOperator() {
        const bool isParameter = here() == '?' && !followsOperand();
        pushSingle(isParameter ? TokenKind::Parameter : TokenKind::Operator);
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

    /// The longest listed operator that begins here, or 0.
    std::uint32_t listedLength() const {
        const std::string_view rest = m_text.substr(m_at, 3);
        std::string_view listed = m_traits.operators;
        while (!listed.empty()) {
            const std::string_view each = listed.substr(0, listed.find(' '));
            if (rest.substr(0, each.size()) == each) return static_cast<std::uint32_t>(each.size());
            listed.remove_prefix(std::min(each.size() + 1, listed.size()));
        }
        return 0;
    }

    /// PostgreSQL: a run ends before a comment, and with + or - only if it holds a character that
    /// no operator of standard SQL has.
    std::uint32_t runLength() const {
        std::uint32_t end = m_at + 1;
        bool isOwn = holds(unusual, here());
        std::uint32_t ownEnd = end;  // behind the last byte that need not be given back
        while (m_chars.isInOperator(at(end)) && !isCommentAt(end)) {
            const char c = at(end++);
            isOwn = isOwn || holds(unusual, c);
            if (isOwn || (c != '+' && c != '-')) ownEnd = end;
        }
        return ownEnd - m_at;
    }

    bool isCommentAt(std::uint32_t position) const {
        const char c = at(position);
        const char next = at(position + 1);
        return (c == '-' && next == '-') || (c == '/' && next == '*');
    }

    void scanDollar() {
        if (m_traits.dollarQuotes) return scanDollarQuoted() ? void() : scanNumbered();
        if (m_traits.moneyLiterals) return scanMoney();
        if (holds(m_traits.parameterMarks, '$')) return scanMark();
        pushSingle(TokenKind::Bad);
    }

    /// $1
    void scanNumbered() {
        ++m_at;
        skipDigits();
        const bool hasDigits = m_at > m_start + 1;
        if (hasDigits && m_chars.isInName(here())) return pushBadNumber();
        push(hasDigits ? TokenKind::Parameter : TokenKind::Bad);
    }

    /// $1.5, a bare $ (which is 0), or a pseudo-column such as $action.
    void scanMoney() {
        if (m_chars.isInName(here(1)) && !isDigit(here(1))) return scanWord();
        ++m_at;
        skipDigits();
        if (here() == '.' && isDigit(here(1))) {
            ++m_at;
            skipDigits();
        }
        pushNumber();
    }

    bool scanDollarQuoted() {
        if (isDigit(here(1))) return false;
        std::uint32_t end = m_at + 1;
        while (m_chars.isInName(at(end)) && at(end) != '$')
            ++end;
        if (at(end) != '$') return false;
        m_delimiter.assign(m_text.substr(m_at, end + 1 - m_at));
        m_at = end + 1;
        scanDelimited();
        return true;
    }

    void scanMark() {
        if (const std::uint32_t length = listedLength()) return pushOperator(length);
        const char mark = here();
        if (mark == ':' && isInSubscript()) return pushOperator(1);
        ++m_at;
        if (mark == '@' || mark == '&') m_at += here() == mark ? 1U : 0U;
        if (m_traits.dottedVariables && mark == '@') return scanVariable();
        const std::uint32_t name = m_at;
        skipName();
        // A mark without a name is an operator, if anything.
        const bool isParameter = mark == '?' || m_at > name;
        push(isParameter ? TokenKind::Parameter : TokenKind::Operator);
    }

    void pushOperator(std::uint32_t length) {
        m_at += length;
        push(TokenKind::Operator);
    }

    void scanVariable() {
        const char quote = here();
        if (quote == '\'' || quote == '"' || quote == '`') {
            ++m_at;
            if (!skipQuoted(quote, true, quote != '`').isClosed) return pushUnterminated();
            push(TokenKind::Parameter);
            return;
        }
        const std::uint32_t begin = m_at;
        while (m_chars.isInName(here()) || here() == '.')
            ++m_at;
        push(m_at > begin ? TokenKind::Parameter : TokenKind::Operator);
    }

    /// [1:2] is a slice, not a parameter.
    bool isInSubscript() const {
        return !m_open.empty() && m_list[m_open.back()].kind == TokenKind::LeftBracket;
    }

    static constexpr std::string_view unusual = "~!@#%^&|`?";

    const std::string_view m_text;
    const LexTraits& m_traits;
    const CharTable& m_chars;
    const WordTable& m_words;
    const std::size_t m_dialect;
    const std::uint32_t m_size;
    TokenList m_list;
    std::uint32_t m_start = 0;  // of what is read at the moment
    std::uint32_t m_at = 0;
    std::vector<TokenIndex> m_open;  // brackets, outermost first
    std::vector<std::pair<TokenIndex, TokenIndex>> m_pairs;
    bool m_mayStringGoOn = false;  // the last string
    bool m_isDotOfName = false;    // the last dot
    std::string m_delimiter;
};

}  // namespace

TokenList lex(std::string_view text, int dialect) {
    return Lexer(text, dialect).run();
}

}  // namespace sqlet
