#include "platform/sqlet/canonical_tokens.h"

#include <string>

#include "platform/sqlet/canonical_runs.h"

namespace sqlet {

namespace {

using K = Keyword;
using T = TokenKind;

constexpr int dialectOracle = 3;
constexpr int dialectSQLite = 4;
constexpr int dialectSQLServer = 5;

bool isNameToken(const Token& token) {
    return token.kind == T::Word || token.kind == T::QuotedName;
}

class Canonicalizer {
public:
    Canonicalizer(const SqletParser& parser, std::string_view defaultSchema)
        : m_parser(parser)
        , m_tokens(parser.tokens.tokens.data())
        , m_defaultSchema(defaultSchema)
        , m_runs(parser) {
        m_symbols.reserve(parser.tokens.tokens.size());
    }

    std::vector<Symbol> read() {
        const SqletSelect& select = *m_parser.select;
        const TokenSpan statement = select.parts[static_cast<int>(Part::Statement)];
        for (TokenIndex i = 0; i < m_parser.tokens.count(); ++i) {
            const T kind = token(i).kind;
            const bool isAround = i < statement.first
                                      ? kind == T::LeftParen
                                      : kind == T::RightParen || kind == T::Semicolon;
            if (i < statement.first || i > statement.last) {
                if (!isAround) add(SymbolKind::Unreadable, i);
                continue;
            }
            readSelect(select, statement);
            i = statement.last;
        }
        return std::move(m_symbols);
    }

private:
    const Token& token(TokenIndex index) const { return m_tokens[index]; }
    bool is(TokenIndex index, K word) const { return token(index).keyword == word; }
    char firstByte(TokenIndex index) const { return m_parser.text[token(index).offset]; }
    bool isText(TokenIndex index, std::string_view text) const {
        return m_parser.textOf(index) == text;
    }

    void add(SymbolKind kind, TokenIndex token, unsigned flags = 0) {
        m_symbols.push_back({kind, static_cast<std::uint8_t>(flags), token, 0, {}});
    }
    void addWord(std::string_view text, TokenIndex token) {
        m_symbols.push_back({SymbolKind::Word, 0, token, 0, text});
    }

    // ---- a statement
    void readSelect(const SqletSelect& select, TokenSpan span) {
        const SourceNumbers* const outer = m_sources;
        SourceNumbers sources(m_parser, m_defaultSchema);
        m_runs.add(select, sources);
        m_sources = &sources;
        const TokenIndex firstItem = firstItemOf(select);
        readClauses(select, {readOptions(span.first, firstItem), span.last});
        addLimit(select, span.last);
        m_sources = outer;
    }

    /// HAVING may stand in front of GROUP BY, in Oracle, and means the same behind it.
    void readClauses(const SqletSelect& select, TokenSpan span) {
        const TokenSpan group = select.parts[static_cast<int>(Part::GroupBy)];
        const TokenSpan having = select.parts[static_cast<int>(Part::Having)];
        const bool isSwapped =
            !group.isEmpty() && !having.isEmpty() && having.last + 3 == group.first;
        if (!isSwapped) return readTokens(span);
        readTokens({span.first, having.first - 2});
        readTokens({group.first - 2, group.last});
        readTokens({having.first - 1, having.last});
        readTokens({group.last + 1, span.last});
    }

    void readTokens(TokenSpan span) {
        for (TokenIndex i = span.first; i <= span.last;)
            i = readNext(i, span.last);
    }

    static TokenIndex firstItemOf(const SqletSelect& select) {
        if (select.columns.count == 0) return noToken;
        const SqletColumn& column = *select.columns.items[0];
        return column.alias < column.span.first ? column.alias : column.span.first;
    }

    /// SELECT and what stands between it and the first item.
    TokenIndex readOptions(TokenIndex first, TokenIndex firstItem) {
        add(SymbolKind::Token, first);
        TokenIndex i = first + 1;
        if (is(i, K::Distinct) || is(i, K::Distinctrow) || is(i, K::Unique)) {
            if (i < firstItem) addWord("DISTINCT", i++);
        } else if (is(i, K::All) && i < firstItem) {
            ++i;
        }
        if (is(i, K::Top) && i < firstItem) i = behindLimit(i, firstItem);
        return i;
    }

    TokenIndex readNext(TokenIndex i, TokenIndex last) {
        if (const Implied* implied = m_runs.impliedAt(i)) {
            for (int n = 0; n < implied->bracketsBefore; ++n)
                addWord("(", i);
        }
        const TokenIndex next = m_runs.isRun(i) ? readRun(i) : readStructure(i, last);
        addImpliedBehind(next - 1);
        return next;
    }

    void addImpliedBehind(TokenIndex i) {
        const Implied* const implied = m_runs.impliedAt(i);
        if (!implied) return;
        if (implied->isAlwaysTrueBehind) {
            addWord("ON", i);
            addWord("1", i);
        }
        for (int n = 0; n < implied->bracketsBehind; ++n)
            addWord(")", i);
    }

    /// A token that belongs to no whole.
    TokenIndex readStructure(TokenIndex i, TokenIndex last) {
        switch (token(i).keyword) {
            case K::Limit:
            case K::Offset:
            case K::Fetch:
                return behindLimit(i, last + 1);
            case K::Isnull:
                return readNullTest(i, 1, false);
            case K::Notnull:
                return readNullTest(i, 1, true);
            case K::Not:
                if (is(i + 1, K::Null) && !m_runs.isRun(i + 1) && !is(i - 1, K::Is))
                    return readNullTest(i, 2, true);
                break;
            default:
                break;
        }
        if (token(i).kind == T::Operator && isText(i, "!="))
            addWord("<>", i);
        else
            add(SymbolKind::Token, i);
        return i + 1;
    }

    TokenIndex readNullTest(TokenIndex i, TokenIndex count, bool isNot) {
        addWord("IS", i);
        if (isNot) addWord("NOT", i);
        addWord("NULL", i);
        return i + count;
    }

    // ---- limits: compared by their numbers
    TokenIndex behindLimit(TokenIndex i, TokenIndex end) const {
        while (i < end && isOfLimit(i))
            ++i;
        return i;
    }

    bool isOfLimit(TokenIndex i) const {
        const Token& here = token(i);
        switch (here.kind) {
            case T::Number:
            case T::String:
            case T::Comma:
            case T::LeftParen:
            case T::RightParen:
                return true;
            case T::Operator:
                return isText(i, "-") || isText(i, "+");
            case T::Word:
                break;
            default:
                return false;
        }
        switch (here.keyword) {
            case K::Limit:
            case K::Offset:
            case K::Fetch:
            case K::Top:
            case K::First:
            case K::Next:
            case K::Row:
            case K::Rows:
            case K::Only:
            case K::With:
            case K::Ties:
            case K::Percent:
            case K::All:
            case K::Null:
                return true;
            default:
                return false;
        }
    }

    void addLimit(const SqletSelect& select, TokenIndex last) {
        const Limit& limit = select.limit;
        const TokenSpan part = select.parts[static_cast<int>(Part::Limit)];
        const TokenIndex place = part.isEmpty() ? last : part.first;
        const auto number = [](const char* text) {
            return text ? std::string_view(text) : std::string_view("all");
        };
        const bool isFromStart = !limit.offset || std::string_view(limit.offset) == "0";
        const bool hasTies =
            limit.returnOption && std::string_view(limit.returnOption) == "WITH TIES";
        addWord(number(limit.count), place);
        addWord(isFromStart ? "0" : limit.offset, place);
        addWord(limit.isPercent ? "PERCENT" : "ROWS", place);
        addWord(hasTies ? "TIES" : "ONLY", place);
    }

    // ---- wholes
    TokenIndex readRun(TokenIndex first) {
        const Run run = m_runs.runAt(first);
        switch (run.kind) {
            case Run::Kind::Column:
                return readColumn(*run.column, run.last);
            case Run::Kind::Operand:
                readSpan(run.expr->span, run.expr->form == ExprForm::Text, false);
                break;
            case Run::Kind::RightOperand:
                readSpan(run.expr->span, run.expr->form == ExprForm::Text, true);
                break;
            case Run::Kind::Source:
                readSource(*run.table);
                break;
            case Run::Kind::JoinOperator:
                readJoinOperator(*run.table);
                break;
            case Run::Kind::JoinAlias:
                add(SymbolKind::Alias, run.last);
                break;
            case Run::Kind::Redundant:
                break;
            case Run::Kind::Unreadable:
                add(SymbolKind::Unreadable, first);
                break;
        }
        return run.last + 1;
    }

    TokenIndex readColumn(const SqletColumn& column, TokenIndex last) {
        readSpan(column.span, column.form == ColumnForm::Text, column.role == ColumnRole::ListItem);
        if (column.alias != noToken) add(SymbolKind::Alias, column.alias);
        const bool hasDirection =
            column.role == ColumnRole::OrderBy && column.direction != Direction::InText;
        return hasDirection ? readDirection(last + 1) : last + 1;
    }

    /// ASC, and the place of NULL that goes without saying, are left out.
    TokenIndex readDirection(TokenIndex i) {
        const bool isDescending = is(i, K::Desc);
        if (isDescending) add(SymbolKind::Token, i);
        if (isDescending || is(i, K::Asc)) ++i;
        if (!is(i, K::Nulls)) return i;
        const bool isFirst = is(i + 1, K::First);
        if (!isFirst && !is(i + 1, K::Last)) return i;
        const bool isNullSmallest = m_parser.dialect == dialectSQLite;
        const bool isDefault = isFirst == (isNullSmallest != isDescending);
        return isDefault ? i + 2 : i;
    }

    /// An item or operand: a name, an aggregate of one, or anything else as it stands.
    void readSpan(TokenSpan span, bool isVerbatim, bool mayBeString) {
        const unsigned flags = isVerbatim ? SymbolIsVerbatim : 0;
        if (isChain(span.first, span.last))
            return readName({span.first, span.last}, flags, mayBeString);
        const bool isCall = span.last >= span.first + 3 && isNameToken(token(span.first)) &&
                            token(span.first + 1).kind == T::LeftParen &&
                            m_parser.tokens.partner[span.first + 1] == span.last &&
                            isChain(span.first + 2, span.last - 1);
        if (!isCall) return readVerbatim(span);
        add(SymbolKind::Function, span.first, flags);
        add(SymbolKind::Token, span.first + 1);
        readName({span.first + 2, span.last - 1}, flags, mayBeString);
        add(SymbolKind::Token, span.last);
    }

    void readVerbatim(TokenSpan span) {
        for (TokenIndex i = span.first; i <= span.last; ++i)
            add(SymbolKind::Token, i, SymbolIsVerbatim);
    }

    /// a, a.b, a.*, *
    bool isChain(TokenIndex first, TokenIndex last) const {
        if ((last - first) % 2 != 0) return false;
        for (TokenIndex i = first; i < last; i += 2) {
            if (!isNameToken(token(i)) || token(i + 1).kind != T::Dot) return false;
        }
        return isNameToken(token(last)) || isText(last, "*");
    }

    void readName(NameChain chain, unsigned flags, bool mayBeString) {
        const std::uint32_t count = chain.qualifierCount();
        const std::uint32_t source = count > 0 ? m_sources->find(chain) : SourceNumbers::none;
        if (source != SourceNumbers::none) {
            m_symbols.push_back({SymbolKind::Source, 0, chain.first, source, {}});
        } else {
            for (std::uint32_t i = 0; i < count; ++i)
                add(SymbolKind::Qualifier, chain.qualifier(i), flags);
        }
        if (!isNameToken(token(chain.last))) return add(SymbolKind::Token, chain.last);
        const bool isAnywhere =
            m_parser.dialect == dialectOracle || m_parser.dialect == dialectSQLServer;
        if (count == 0 || isAnywhere) flags |= SymbolIsUnqualified;
        if (count == 0 && mayBeString && m_parser.dialect == dialectSQLite) {
            if (firstByte(chain.last) == '"') flags |= SymbolMayBeString;
        }
        add(SymbolKind::Name, chain.last, flags);
    }

    // ---- sources
    void readSource(const SqletTable& table) {
        if (table.form == TableForm::Derived && table.subquery) {
            add(SymbolKind::Token, table.span.first);
            readSelect(*table.subquery, {table.span.first + 1, table.span.last - 1});
            add(SymbolKind::Token, table.span.last);
        } else if (table.form == TableForm::Name) {
            readTable(nameChainOf(table));
        } else {
            readVerbatim(table.span);
        }
        if (table.alias != noToken) add(SymbolKind::Alias, table.alias);
    }

    void readTable(NameChain chain) {
        const std::uint32_t count = chain.qualifierCount();
        if (count == 0 && !m_defaultSchema.empty())
            m_symbols.push_back({SymbolKind::NameText, 0, chain.first, 0, m_defaultSchema});
        for (std::uint32_t i = 0; i < count; ++i)
            add(SymbolKind::Name, chain.qualifier(i));
        add(SymbolKind::Name, chain.last);
    }

    /// One spelling for the same join. A condition makes an inner join of a comma and of CROSS.
    void readJoinOperator(const SqletTable& join) {
        const TokenSpan span = join.operatorSpan;
        const bool hasCondition = join.on && !isAlwaysTrue(join.on);
        if (token(span.first).kind == T::Comma)
            return addWord(hasCondition ? "JOIN" : ",", span.first);
        bool isNatural = false;
        bool isOuter = false;
        std::string_view side;
        for (TokenIndex i = span.first; i <= span.last; ++i) {
            switch (token(i).keyword) {
                case K::Natural:
                    isNatural = true;
                    break;
                case K::Left:
                    side = "LEFT";
                    break;
                case K::Right:
                    side = "RIGHT";
                    break;
                case K::Full:
                    side = "FULL";
                    break;
                case K::Cross:
                    side = "CROSS";
                    break;
                case K::Outer:
                    isOuter = true;
                    break;
                case K::Inner:
                case K::Join:
                    break;
                default:
                    return readOwnOperator(span);
            }
        }
        if (isOuter && side.empty()) return readOwnOperator(span);
        const bool isCross = side == "CROSS" && !isNatural && !hasCondition;
        if (isNatural) addWord("NATURAL", span.first);
        if (!side.empty() && (side != "CROSS" || isCross)) addWord(side, span.first);
        addWord("JOIN", span.first);
    }

    /// CROSS APPLY, PARTITION BY (a) RIGHT JOIN and others without another spelling.
    void readOwnOperator(TokenSpan span) {
        for (TokenIndex i = span.first; i <= span.last; ++i) {
            const bool isName = isNameToken(token(i)) && is(i, K::None);
            add(isName ? SymbolKind::Name : SymbolKind::Token, i);
        }
    }

    const SqletParser& m_parser;
    const Token* const m_tokens;
    const std::string_view m_defaultSchema;
    RunTable m_runs;
    const SourceNumbers* m_sources = nullptr;  ///< of the statement that is read
    std::vector<Symbol> m_symbols;
};

}  // namespace

std::vector<Symbol> canonicalSymbols(const SqletParser& parser, std::string_view defaultSchema) {
    return Canonicalizer(parser, defaultSchema).read();
}

}  // namespace sqlet
