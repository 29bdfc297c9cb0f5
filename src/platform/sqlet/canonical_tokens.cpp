#include "platform/sqlet/canonical_tokens.h"

#include <string>
#include <unordered_map>

#include "platform/sqlet/name_chain.h"
#include "platform/sqlet/names.h"
#include "platform/sqlet/words.h"

namespace sqlet {

namespace {

using K = Keyword;
using T = TokenKind;

constexpr int dialectOracle = 3;
constexpr int dialectSQLite = 4;
constexpr int dialectSQLServer = 5;
constexpr std::uint32_t noSource = 0xFFFFFFFFU;

bool isNameToken(const Token& token) {
    return token.kind == T::Word || token.kind == T::QuotedName;
}

/// What a qualifier finds in one FROM clause.
class Sources {
public:
    Sources(const SqletParser& parser, std::string_view defaultSchema)
        : m_parser(parser)
        , m_defaultSchema(defaultSchema)
        , m_ignoresCase(sqlet_folding(parser.dialect) == SQLET_FOLDING_NONE) {}

    void add(const SqletTable& table) {
        const bool isTable = table.form == TableForm::Name;
        const TokenIndex named =
            table.alias != noToken ? table.alias : (isTable ? table.span.last : noToken);
        const auto number = static_cast<std::uint32_t>(m_tables.size());
        m_tables.push_back(&table);
        if (named == noToken) return;
        const std::string name = decoded(named);
        enter(m_byName, name, number);
        if (m_ignoresCase) enter(m_byFoldedName, withoutCase(name), number);
    }

    /// The source that the qualifiers of @p chain find; noSource for none or several.
    std::uint32_t find(const NameChain& chain) const {
        const std::string name = decoded(chain.innermost());
        std::uint32_t found = lookUp(m_byName, name);
        if (found == noSource && m_ignoresCase && m_byName.count(name) == 0)
            found = lookUp(m_byFoldedName, withoutCase(name));
        if (found == noSource || chain.qualifierCount() == 1) return found;
        return isPathOf(chain, *m_tables[found]) ? found : noSource;
    }

private:
    using Numbers = std::unordered_map<std::string, std::uint32_t>;

    /// A name that stands for several sources finds none.
    static void enter(Numbers& numbers, const std::string& name, std::uint32_t number) {
        const auto [entry, isNew] = numbers.emplace(name, number);
        if (!isNew) entry->second = noSource;
    }

    static std::uint32_t lookUp(const Numbers& numbers, const std::string& name) {
        const auto found = numbers.find(name);
        return found == numbers.end() ? noSource : found->second;
    }

    /// True if what stands before the name of the table in @p chain is the end of its path.
    bool isPathOf(const NameChain& chain, const SqletTable& table) const {
        if (table.alias != noToken || table.form != TableForm::Name) return false;
        const NameChain path = nameChainOf(table);
        const std::uint32_t wanted = chain.qualifierCount() - 1;
        if (path.qualifierCount() == 0)
            return wanted == 1 && !m_defaultSchema.empty() &&
                   decoded(chain.first) == m_defaultSchema;
        if (wanted > path.qualifierCount()) return false;
        const std::uint32_t skipped = path.qualifierCount() - wanted;
        for (std::uint32_t i = 0; i < wanted; ++i) {
            if (decoded(chain.qualifier(i)) != decoded(path.qualifier(skipped + i))) return false;
        }
        return true;
    }

    std::string decoded(TokenIndex token) const {
        return decodedName(m_parser.text, m_parser.tokens[token], m_parser.dialect);
    }

    const SqletParser& m_parser;
    const std::string_view m_defaultSchema;
    const bool m_ignoresCase;
    std::vector<const SqletTable*> m_tables;
    Numbers m_byName;
    Numbers m_byFoldedName;
};

/// Something in the text that is read as a whole.
struct Run {
    enum class Kind : std::uint8_t {
        Column,
        Operand,       ///< a leaf of a condition
        RightOperand,  ///< a leaf where SQLite takes a name in double quotes for a string
        Source,
        JoinOperator,
        JoinAlias,  ///< behind the bracket around a join
        Redundant,  ///< means nothing
        Unreadable,
    };
    Kind kind;
    TokenIndex last;
    union {
        const SqletColumn* column;
        const SqletExpr* expr;
        const SqletTable* table;
    };
};

/// What stands in the meaning, but not in the text.
struct Implied {
    int bracketsBefore = 0;
    int bracketsBehind = 0;
    bool isAlwaysTrueBehind = false;  ///< ON 1
};

class Canonicalizer {
public:
    Canonicalizer(const SqletParser& parser, std::string_view defaultSchema)
        : m_parser(parser)
        , m_tokens(parser.tokens.tokens.data())
        , m_defaultSchema(defaultSchema)
        , m_runAt(parser.tokens.tokens.size(), 0) {
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

    // ---- what is a whole
    void mark(TokenIndex first, Run run) {
        m_runs.push_back(run);
        m_runAt[first] = static_cast<std::uint32_t>(m_runs.size());
    }
    void markAs(Run::Kind kind, TokenIndex first, TokenIndex last) {
        Run run{kind, last, {}};
        mark(first, run);
    }

    void markColumns(const ColumnArray& columns) {
        for (std::uint32_t i = 0; i < columns.count; ++i)
            markColumn(*columns.items[i]);
    }

    void markColumn(const SqletColumn& column) {
        Run run{Run::Kind::Column, column.span.last, {}};
        run.column = &column;
        TokenIndex first = column.span.first;
        if (column.alias != noToken && column.alias < first) {  // x = expression
            if (column.alias + 2 != first || !isText(column.alias + 1, "="))
                run.kind = Run::Kind::Unreadable;
            first = column.alias;
        } else if (column.alias != noToken) {
            if (!isAliasBehind(column.span.last, column.alias)) run.kind = Run::Kind::Unreadable;
            run.last = column.alias;
        }
        mark(first, run);
    }

    bool isAliasBehind(TokenIndex last, TokenIndex alias) const {
        return alias == last + 1 || (alias == last + 2 && is(last + 1, K::As));
    }

    /// Chains lean to the left and are as deep as they are long.
    void markCondition(const SqletExpr* root) {
        std::vector<const SqletExpr*> waiting = {root};
        while (!waiting.empty()) {
            const SqletExpr* expr = waiting.back();
            waiting.pop_back();
            if (!expr) continue;
            if (expr->form == ExprForm::Chain) {
                waiting.push_back(expr->left);
                waiting.push_back(expr->right);
            } else if (expr->form == ExprForm::Compare) {
                markOperand(expr->left, Run::Kind::Operand);
                if (!isNullTest(*expr)) markRightSide(expr->right);
            } else {
                markOperand(expr, Run::Kind::RightOperand);
            }
        }
    }

    /// The NULL in it is no operand, but a word of the comparison.
    static bool isNullTest(const SqletExpr& compare) {
        return compare.op && std::string_view(compare.op).substr(0, 2) == "IS";
    }

    void markRightSide(const SqletExpr* expr) {
        if (!expr) return;
        if (expr->form != ExprForm::Chain) return markOperand(expr, Run::Kind::RightOperand);
        markOperand(expr->left, Run::Kind::RightOperand);  // the bounds of BETWEEN
        markOperand(expr->right, Run::Kind::RightOperand);
    }

    void markOperand(const SqletExpr* expr, Run::Kind kind) {
        if (!expr || expr->form == ExprForm::Using) return;  // its names stand as written
        if (expr->form == ExprForm::List) return markColumns(expr->items);
        if (expr->span.isEmpty()) return;
        Run run{kind, expr->span.last, {}};
        run.expr = expr;
        mark(expr->span.first, run);
    }

    void markSources(const SqletTable* root, Sources& sources) {
        std::vector<const SqletTable*> waiting = {root};
        while (!waiting.empty()) {
            const SqletTable* table = waiting.back();
            waiting.pop_back();
            if (!table) continue;
            sources.add(*table);
            if (table->form != TableForm::Join) {
                markSource(*table);
                continue;
            }
            markJoin(*table);
            waiting.push_back(table->right);
            waiting.push_back(table->left);
        }
    }

    /// Brackets around a lone source mean nothing; its alias may stand inside or behind them.
    void markSource(const SqletTable& table) {
        Run run{Run::Kind::Source, table.span.last, {}};
        run.table = &table;
        TokenIndex first = table.span.first;
        bool isAliasTaken = table.alias == noToken;
        for (;;) {
            if (!isAliasTaken && isAliasBehind(run.last, table.alias)) {
                run.last = table.alias;
                isAliasTaken = true;
            }
            const bool isBracketed = first > 0 && token(first - 1).kind == T::LeftParen &&
                                     m_parser.tokens.partner[first - 1] == run.last + 1;
            if (!isBracketed) break;
            --first;
            ++run.last;
        }
        if (!isAliasTaken) run.kind = Run::Kind::Unreadable;
        mark(first, run);
    }

    void markJoin(const SqletTable& join) {
        Run run{Run::Kind::JoinOperator, join.operatorSpan.last, {}};
        run.table = &join;
        mark(join.operatorSpan.first, run);
        if (join.alias != noToken) {
            const TokenIndex first = is(join.alias - 1, K::As) ? join.alias - 1 : join.alias;
            Run alias{Run::Kind::JoinAlias, join.alias, {}};
            alias.table = &join;
            mark(first, alias);
        }
        if (isAlwaysTrue(join.on))
            m_implied[join.span.last].isAlwaysTrueBehind = true;
        else
            markCondition(join.on);
        markDeferredCondition(*join.right);
    }

    static bool isAlwaysTrue(const SqletExpr* on) { return on && on->span.isEmpty(); }

    /// In a JOIN b JOIN c ON .. ON .. the right side is a join without brackets; it means one in
    /// brackets.
    void markDeferredCondition(const SqletTable& right) {
        if (right.form != TableForm::Join) return;
        const TokenIndex first = right.span.first;
        const TokenIndex last = right.span.last;
        if (token(first - 1).kind == T::LeftParen && m_parser.tokens.partner[first - 1] == last + 1)
            return;
        if (!right.on || !(is(last + 1, K::On) || is(last + 1, K::Using))) return;
        ++m_implied[first].bracketsBefore;
        ++m_implied[last].bracketsBehind;
    }

    // ---- a statement
    void readSelect(const SqletSelect& select, TokenSpan span) {
        const Sources* const outer = m_sources;
        Sources sources(m_parser, m_defaultSchema);
        markColumns(select.columns);
        markSources(select.from, sources);
        markCondition(select.where);
        markColumns(select.groupBy);
        markCondition(select.having);
        markColumns(select.orderBy);
        markImpliedOrder(select);
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

    /// SQL Server takes no limit without an order, so this one is written for none.
    void markImpliedOrder(const SqletSelect& select) {
        if (m_parser.dialect != dialectSQLServer) return;
        const TokenSpan limit = select.parts[static_cast<int>(Part::Limit)];
        const bool isDropped = select.orderBy.count == 0 && !limit.isEmpty() && limit.first >= 3 &&
                               is(limit.first - 3, K::Order) && isText(limit.first - 1, "1");
        if (isDropped) markAs(Run::Kind::Redundant, limit.first - 3, limit.first - 1);
        if (select.orderBy.count != 1) return;
        const TokenSpan item = select.orderBy.items[0]->span;
        const bool isFirstColumn = item.first == item.last && isText(item.first, "1");
        const bool hasLimit = select.limit.count || select.limit.offset;
        if (!isFirstColumn || !hasLimit || is(item.last + 1, K::Desc)) return;
        const TokenIndex last = is(item.last + 1, K::Asc) ? item.last + 1 : item.last;
        markAs(Run::Kind::Redundant, item.first - 2, last);
    }

    TokenIndex readNext(TokenIndex i, TokenIndex last) {
        const auto implied = m_implied.empty() ? m_implied.end() : m_implied.find(i);
        if (implied != m_implied.end())
            for (int n = 0; n < implied->second.bracketsBefore; ++n)
                addWord("(", i);
        const TokenIndex next = m_runAt[i] != 0 ? readRun(i) : readStructure(i, last);
        if (!m_implied.empty()) addImpliedBehind(next - 1);
        return next;
    }

    void addImpliedBehind(TokenIndex i) {
        const auto implied = m_implied.find(i);
        if (implied == m_implied.end()) return;
        if (implied->second.isAlwaysTrueBehind) {
            addWord("ON", i);
            addWord("1", i);
        }
        for (int n = 0; n < implied->second.bracketsBehind; ++n)
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
                if (is(i + 1, K::Null) && m_runAt[i + 1] == 0 && !is(i - 1, K::Is))
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
        const Run run = m_runs[m_runAt[first] - 1];  // a copy: a subquery adds runs
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
        const std::uint32_t source = count > 0 ? m_sources->find(chain) : noSource;
        if (source != noSource) {
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
    std::vector<std::uint32_t> m_runAt;  ///< by first token: index in m_runs plus 1; 0: none
    std::vector<Run> m_runs;
    std::unordered_map<TokenIndex, Implied> m_implied;
    const Sources* m_sources = nullptr;  ///< of the statement that is read
    std::vector<Symbol> m_symbols;
};

}  // namespace

std::vector<Symbol> canonicalSymbols(const SqletParser& parser, std::string_view defaultSchema) {
    return Canonicalizer(parser, defaultSchema).read();
}

}  // namespace sqlet
