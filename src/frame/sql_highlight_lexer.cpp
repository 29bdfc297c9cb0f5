#include "frame/sql_highlight_lexer.h"

#include <array>
#include <string_view>

#include "platform/sqlet/lexer.h"
#include "platform/sqlet/words.h"

namespace QB {
namespace {

using Open = SqlLexState::Open;

bool isDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool isAsciiLetter(QChar c) {
    const char16_t lower = c.unicode() | 0x20;
    return lower >= u'a' && lower <= u'z';
}

bool isBlank(QChar c) {
    return c.unicode() <= 0x20;
}

bool holds(std::string_view characters, QChar c) {
    return c.unicode() < 0x80 && characters.find(c.toLatin1()) != characters.npos;
}

QChar closingPartner(QChar opening) {
    if (opening.unicode() >= 0x80) return opening;
    return QLatin1Char(sqlet::closingPartner(opening.toLatin1()));
}

/// One run over one line.
class LineScanner {
public:
    LineScanner(DatabaseType family, const QString& line, const SqlLexState& start,
                QVector<SqlToken>* tokens)
        : m_family(family)
        , m_traits(sqlet::lexTraits(family))
        , m_line(line)
        , m_state(start)
        , m_tokens(tokens) {}

    SqlLexState run() {
        while (m_position < m_line.size()) {
            m_tokenStart = m_position;
            scanOne();
        }
        return m_state;
    }

private:
    QChar at(int position) const {
        return position < m_line.size() ? m_line.at(position) : QChar(0);
    }
    QChar here(int ahead = 0) const { return at(m_position + ahead); }
    bool isHere(char first, char second) const {
        return here() == QLatin1Char(first) && here(1) == QLatin1Char(second);
    }

    void emitToken(SqlTokenKind kind) {
        if (m_tokens != nullptr && m_position > m_tokenStart)
            m_tokens->append({m_tokenStart, m_position - m_tokenStart, kind});
    }

    void scanOne() {
        switch (m_state.open) {
            case Open::Comment:
                return scanBlockComment();
            case Open::Quoted:
                return scanQuoted();
            case Open::DollarQuoted:
                return scanDelimited();
            case Open::Nothing:
                return scanCode();
        }
    }

    /// Letters of any script count as letters of a word, as they do for the servers; a variable
    /// is a word too, one without a meaning.
    bool isWordStart(QChar c) const {
        return isAsciiLetter(c) || c == QLatin1Char('_') || c == QLatin1Char('@') ||
               c.unicode() >= 0x80 || holds(m_traits.nameStart, c);
    }

    bool isWordPart(QChar c) const {
        return isWordStart(c) || isDigit(c) || holds(m_traits.namePart, c);
    }

    void scanCode() {
        if (isLineComment()) return scanLineComment();
        if (isHere('/', '*')) return openBlockComment();
        if (openQuoted()) return scanOne();
        if (isDigit(here()) || (here() == QLatin1Char('.') && isDigit(here(1))))
            return scanNumber();
        if (isWordStart(here())) return scanWord();
        ++m_position;
    }

    bool isLineComment() const {
        if (m_traits.hashComments && here() == QLatin1Char('#')) return true;
        if (!isHere('-', '-')) return false;
        return !m_traits.dashesNeedBlank || isBlank(here(2));
    }

    void scanLineComment() {
        m_position = m_line.size();
        emitToken(SqlTokenKind::Comment);
    }

    void openBlockComment() {
        m_position += 2;
        m_state.open = Open::Comment;
        m_state.depth = 1;
        scanBlockComment();
    }

    void scanBlockComment() {
        while (m_position < m_line.size() && m_state.depth > 0) {
            if (isHere('*', '/')) {
                --m_state.depth;
                m_position += 2;
            } else if (m_traits.nestedComments && isHere('/', '*')) {
                ++m_state.depth;
                m_position += 2;
            } else {
                ++m_position;
            }
        }
        if (m_state.depth == 0) m_state = SqlLexState();
        emitToken(SqlTokenKind::Comment);
    }

    /// Opens the string or name that begins here, with its prefix, if one does.
    bool openQuoted() {
        if (here() == QLatin1Char('\''))
            return open(1, here(), SqlTokenKind::String, m_traits.backslashEscapes);
        if (here() == QLatin1Char('"')) return openDoubleQuoted();
        if (m_traits.backtickNames && here() == QLatin1Char('`'))
            return open(1, here(), SqlTokenKind::QuotedIdentifier, false);
        if (m_traits.bracketNames && here() == QLatin1Char('['))
            return open(1, QLatin1Char(']'), SqlTokenKind::QuotedIdentifier, false);
        if (m_traits.dollarQuotes && here() == QLatin1Char('$')) return openDollarQuoted();
        return isAsciiLetter(here()) && openPrefixed();
    }

    bool openDoubleQuoted() {
        if (m_traits.doubleQuoteIsString)
            return open(1, here(), SqlTokenKind::String, m_traits.backslashEscapes);
        return open(1, here(), SqlTokenKind::QuotedIdentifier, false);
    }

    bool open(int length, QChar quote, SqlTokenKind kind, bool hasBackslashEscapes) {
        m_position += length;
        m_state.open = Open::Quoted;
        m_state.quote = quote;
        m_state.kind = kind;
        m_state.hasBackslashEscapes = hasBackslashEscapes;
        return true;
    }

    /// N'...', U&'...', q'[...]' and the like, where the family has them.
    bool openPrefixed() {
        const char prefix = here().toLower().toLatin1();
        if (m_traits.alternativeQuotes && openAlternative(prefix == 'n' ? 1 : 0)) return true;
        if (m_traits.unicodePrefix && prefix == 'u' && here(1) == QLatin1Char('&'))
            return openUnicode();
        if (here(1) != QLatin1Char('\'') || !isStringPrefix(prefix)) return false;
        return open(2, QLatin1Char('\''), SqlTokenKind::String,
                    prefix == 'e' || m_traits.backslashEscapes);
    }

    bool isStringPrefix(char prefix) const {
        return (prefix == 'e' && m_traits.escapePrefix) ||
               (prefix == 'n' && m_traits.nationalPrefix) ||
               (prefix == 'x' && m_traits.hexPrefix) || (prefix == 'b' && m_traits.bitPrefix);
    }

    bool openUnicode() {
        const QChar quote = here(2);
        if (quote == QLatin1Char('\'')) return open(3, quote, SqlTokenKind::String, false);
        return quote == QLatin1Char('"') && open(3, quote, SqlTokenKind::QuotedIdentifier, false);
    }

    bool openAlternative(int prefixLength) {
        if (here(prefixLength).toLower() != QLatin1Char('q')) return false;
        if (here(prefixLength + 1) != QLatin1Char('\'')) return false;
        const QChar opening = here(prefixLength + 2);
        if (opening.isNull() || isBlank(opening)) return false;
        m_position += prefixLength + 3;
        m_state.open = Open::DollarQuoted;
        m_state.delimiter = QString(closingPartner(opening)) + QLatin1Char('\'');
        return true;
    }

    bool openDollarQuoted() {
        int end = m_position + 1;
        if (isDigit(at(end))) return false;  // a parameter: $1
        while (end < m_line.size() && at(end) != QLatin1Char('$') && isWordPart(at(end)))
            ++end;
        if (at(end) != QLatin1Char('$')) return false;
        m_state.open = Open::DollarQuoted;
        m_state.delimiter = m_line.mid(m_position, end + 1 - m_position);
        m_position = end + 1;
        return true;
    }

    void scanQuoted() {
        while (m_position < m_line.size()) {
            if (m_state.hasBackslashEscapes && here() == QLatin1Char('\\')) {
                m_position = qMin(m_position + 2, m_line.size());
            } else if (here() != m_state.quote) {
                ++m_position;
            } else if (here(1) == m_state.quote && isQuoteDoubled()) {
                m_position += 2;
            } else {
                ++m_position;
                return closeQuoted();
            }
        }
        emitToken(m_state.kind);
    }

    bool isQuoteDoubled() const {
        return m_state.quote != QLatin1Char(']') || m_traits.doubledBracketEscapes;
    }

    void closeQuoted() {
        emitToken(m_state.kind);
        m_state = SqlLexState();
    }

    void scanDelimited() {
        const int found = m_line.indexOf(m_state.delimiter, m_position);
        if (found < 0) {
            m_position = m_line.size();
            return emitToken(SqlTokenKind::String);
        }
        m_position = found + m_state.delimiter.size();
        closeQuoted();
    }

    void scanNumber() {
        const bool isHex = here() == QLatin1Char('0') && here(1).toLower() == QLatin1Char('x');
        if (isHex) m_position += 2;
        while (isWordPart(here()) || here() == QLatin1Char('.') || isExponentSign(isHex))
            ++m_position;
        emitToken(SqlTokenKind::Number);
    }

    bool isExponentSign(bool isHex) const {
        if (isHex || (here() != QLatin1Char('+') && here() != QLatin1Char('-'))) return false;
        return at(m_position - 1).toLower() == QLatin1Char('e') && isDigit(here(1));
    }

    void scanWord() {
        while (m_position < m_line.size() && isWordPart(here()))
            ++m_position;
        if (m_tokens == nullptr || isQualified()) return;
        const unsigned flags = wordClass();
        if ((flags & SQLET_WORD_FUNCTION) != 0 && isBeforeBracket())
            return emitToken(SqlTokenKind::Function);
        if ((flags & (SQLET_WORD_KEYWORD | SQLET_WORD_CONSTANT)) != 0)
            emitToken(SqlTokenKind::Keyword);
    }

    /// A word at a dot is part of a name, whatever it means elsewhere.
    bool isQualified() const {
        const bool followsDot = m_tokenStart > 0 && at(m_tokenStart - 1) == QLatin1Char('.');
        return followsDot || here() == QLatin1Char('.');
    }

    bool isBeforeBracket() const {
        int next = m_position;
        while (at(next) == QLatin1Char(' '))
            ++next;
        return at(next) == QLatin1Char('(');
    }

    unsigned wordClass() const {
        // No word of any family is longer, and all of them are ASCII.
        std::array<char, 64> word;
        const int length = m_position - m_tokenStart;
        if (length > static_cast<int>(word.size())) return 0;
        for (int i = 0; i < length; ++i) {
            const QChar c = m_line.at(m_tokenStart + i);
            if (c.unicode() >= 0x80) return 0;
            word[static_cast<std::size_t>(i)] = static_cast<char>(c.unicode());
        }
        return sqlet_word_class(m_family, word.data(), length);
    }

    const DatabaseType m_family;
    const sqlet::LexTraits& m_traits;
    const QString& m_line;
    SqlLexState m_state;
    QVector<SqlToken>* const m_tokens;  // not owned: the caller's, may be null
    int m_position = 0;
    int m_tokenStart = 0;
};

}  // namespace

SqlHighlightLexer::SqlHighlightLexer(DatabaseType family) : m_family(family) {}

SqlLexState SqlHighlightLexer::lexLine(const QString& line, const SqlLexState& start,
                                       QVector<SqlToken>* tokens) const {
    return LineScanner(m_family, line, start, tokens).run();
}

}  // namespace QB
