// What two statements mean, compared symbol by symbol.

#include <algorithm>

#include "platform/sqlet/canonical_tokens.h"
#include "platform/sqlet/names.h"
#include "platform/sqlet/words.h"

namespace sqlet {

namespace {

constexpr int dialectMySQL = 1;
constexpr int dialectOracle = 3;
constexpr int dialectSQLServer = 5;
constexpr int familyMariaDB = 6;
constexpr int noDifference = -1;

/// One of the two statements.
class Side {
public:
    Side(const SqletParser& parser, std::string_view schema)
        : m_parser(parser), m_symbols(canonicalSymbols(parser, schema)) {}

    std::size_t size() const { return m_symbols.size(); }
    const Symbol& operator[](std::size_t index) const { return m_symbols[index]; }
    const Token& token(const Symbol& symbol) const { return m_parser.tokens[symbol.token]; }
    const Token& behind(const Symbol& symbol) const { return m_parser.tokens[symbol.token + 1]; }
    std::string_view bytes(const Symbol& symbol) const { return m_parser.textOf(symbol.token); }

    std::string name(const Symbol& symbol) const {
        if (symbol.kind == SymbolKind::NameText) return std::string(symbol.text);
        return decodedName(m_parser.text, token(symbol), m_parser.dialect);
    }

    /// True for a bare word that may be a value and no name.
    bool isConstant(const Symbol& symbol) const {
        const Token& word = token(symbol);
        if (word.kind != TokenKind::Word) return false;
        if ((word.flags & SQLET_WORD_CONSTANT) != 0) return true;
        const bool isSequence =
            word.keyword == Keyword::Nextval || word.keyword == Keyword::Currval;
        if (isSequence && m_parser.dialect == dialectOracle) return true;
        if (m_parser.dialect != dialectMySQL) return false;
        const std::string_view text = bytes(symbol);
        const unsigned flags =
            sqlet_word_class(familyMariaDB, text.data(), static_cast<int>(text.size()));
        return (flags & SQLET_WORD_CONSTANT) != 0;
    }

    int offsetOf(std::size_t index) const {
        if (index >= m_symbols.size()) return static_cast<int>(m_parser.text.size());
        return static_cast<int>(token(m_symbols[index]).offset);
    }

private:
    const SqletParser& m_parser;
    const std::vector<Symbol> m_symbols;
};

class Comparison {
public:
    Comparison(const Side& original, const Side& rebuilt)
        : m_original(original), m_rebuilt(rebuilt) {}

    int firstDifference() const {
        const std::size_t common = std::min(m_original.size(), m_rebuilt.size());
        for (std::size_t i = 0; i < common; ++i) {
            if (!isEqual(m_original[i], m_rebuilt[i])) return m_original.offsetOf(i);
        }
        return m_original.size() == m_rebuilt.size() ? noDifference : m_original.offsetOf(common);
    }

private:
    bool isEqual(const Symbol& a, const Symbol& b) const {
        switch (a.kind) {
            case SymbolKind::Token:
                if (b.kind == SymbolKind::Word) return isWord(m_original, a, b.text);
                return b.kind == SymbolKind::Token && isSameToken(a, b);
            case SymbolKind::Word:
                if (b.kind == SymbolKind::Token) return isWord(m_rebuilt, b, a.text);
                return b.kind == SymbolKind::Word && a.text == b.text;
            case SymbolKind::Name:
            case SymbolKind::NameText:
                return (b.kind == SymbolKind::Name || b.kind == SymbolKind::NameText) &&
                       isSameName(a, b);
            case SymbolKind::Qualifier:
            case SymbolKind::Alias:
                return a.kind == b.kind && isSameName(a, b);
            case SymbolKind::Function:
                return b.kind == SymbolKind::Function && isSameFunction(a, b);
            case SymbolKind::Source:
                return b.kind == SymbolKind::Source && a.number == b.number;
            case SymbolKind::Unreadable:
                return false;
        }
        return false;
    }

    static bool isWord(const Side& side, const Symbol& token, std::string_view word) {
        return withoutCase(side.bytes(token)) == withoutCase(word);
    }

    static bool isVerbatim(const Symbol& a, const Symbol& b) {
        return ((a.flags | b.flags) & SymbolIsVerbatim) != 0;
    }

    bool isSameToken(const Symbol& a, const Symbol& b) const {
        const Token& left = m_original.token(a);
        const Token& right = m_rebuilt.token(b);
        if (left.kind != right.kind) return false;
        if (isVerbatim(a, b)) return isSameBytes(a, b) && isSameCall(a, b);
        if (left.keyword != Keyword::None && left.keyword == right.keyword) return true;
        return isSameBytes(a, b);
    }

    bool isSameBytes(const Symbol& a, const Symbol& b) const {
        return m_original.bytes(a) == m_rebuilt.bytes(b);
    }

    /// With a blank in front of the bracket a word may be another function, or none.
    bool isSameCall(const Symbol& a, const Symbol& b) const {
        if (m_original.behind(a).kind != TokenKind::LeftParen) return true;
        const int flags = m_original.token(a).flags ^ m_rebuilt.token(b).flags;
        return (flags & TokenTouchesNext) == 0;
    }

    bool isSameName(const Symbol& a, const Symbol& b) const {
        const bool isInBoth = a.kind != SymbolKind::NameText && b.kind != SymbolKind::NameText;
        // Free text stays as it is; what was a name may be shown as text once it is in quotes.
        if (isInBoth && (a.flags & SymbolIsVerbatim) != 0) return isSameBytes(a, b);
        if (isInBoth && ((a.flags | b.flags) & SymbolIsUnqualified) != 0 &&
            m_original.isConstant(a) != m_rebuilt.isConstant(b))
            return false;
        if ((a.flags & SymbolMayBeString) != 0 && (b.flags & SymbolMayBeString) == 0) return false;
        return m_original.name(a) == m_rebuilt.name(b);
    }

    bool isSameFunction(const Symbol& a, const Symbol& b) const {
        if (!isSameCall(a, b)) return false;
        if (isSameBytes(a, b)) return true;
        const bool areBare = m_original.token(a).kind == TokenKind::Word &&
                             m_rebuilt.token(b).kind == TokenKind::Word;
        return areBare && (a.flags & SymbolIsVerbatim) == 0 &&
               withoutCase(m_original.bytes(a)) == withoutCase(m_rebuilt.bytes(b));
    }

    const Side& m_original;
    const Side& m_rebuilt;
};

/// Where a table without a schema lies.
std::string_view schemaOf(int dialect, const char* defaultSchema) {
    if (defaultSchema && *defaultSchema) return defaultSchema;
    return dialect == dialectSQLServer ? "dbo" : "";
}

}  // namespace

}  // namespace sqlet

int sqlet_has_quoted_word(SqletParser* parser) {
    if (!parser) return 0;
    for (const sqlet::Token& token : parser->tokens.tokens) {
        const bool mayBeName =
            token.kind == sqlet::TokenKind::QuotedName || token.kind == sqlet::TokenKind::String;
        if (!mayBeName) continue;
        const std::string name = sqlet::decodedName(parser->text, token, parser->dialect);
        const int length = static_cast<int>(name.size());
        if (sqlet_word_class(parser->dialect, name.data(), length) != 0) return 1;
    }
    return 0;
}

int sqlet_first_difference(SqletParser* original, SqletParser* rebuilt,
                           const char* default_schema) {
    if (!original || !rebuilt || !original->select || !rebuilt->select) return 0;
    if (original->dialect != rebuilt->dialect || original->isMultiple || rebuilt->isMultiple)
        return 0;
    const std::string_view schema = sqlet::schemaOf(original->dialect, default_schema);
    const sqlet::Side left(*original, schema);
    const sqlet::Side right(*rebuilt, schema);
    return sqlet::Comparison(left, right).firstDifference();
}
