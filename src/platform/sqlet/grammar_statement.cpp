#include <cerrno>
#include <cstdlib>

#include "platform/sqlet/grammar.h"

namespace sqlet {

namespace {

using K = Keyword;
using T = TokenKind;

/// Statements of other kinds: they are none of our business, not mistakes.
constexpr KeywordSet otherStatements = {
    K::Abort,    K::Alter,    K::Analyze,  K::Attach,     K::Backup,   K::Begin,      K::Cache,
    K::Call,     K::Change,   K::Check,    K::Checkpoint, K::Checksum, K::Close,      K::Cluster,
    K::Comment,  K::Commit,   K::Copy,     K::Create,     K::Dbcc,     K::Deallocate, K::Declare,
    K::Delete,   K::Deny,     K::Desc,     K::Describe,   K::Detach,   K::Discard,    K::Do,
    K::Drop,     K::End,      K::Exec,     K::Execute,    K::Explain,  K::Fetch,      K::Flush,
    K::Get,      K::Go,       K::Grant,    K::Handler,    K::Help,     K::If,         K::Insert,
    K::Install,  K::Kill,     K::Listen,   K::Load,       K::Lock,     K::Merge,      K::Notify,
    K::Open,     K::Optimize, K::Pragma,   K::Prepare,    K::Print,    K::Purge,      K::Raiserror,
    K::Refresh,  K::Reindex,  K::Release,  K::Rename,     K::Repair,   K::Replace,    K::Reset,
    K::Resignal, K::Restore,  K::Return,   K::Revoke,     K::Rollback, K::Savepoint,  K::Security,
    K::Set,      K::Show,     K::Shutdown, K::Signal,     K::Start,    K::Throw,      K::Truncate,
    K::Unlisten, K::Update,   K::Use,      K::Vacuum,     K::Waitfor,  K::While,      K::Xa,
};

/// Queries in a form that is not SELECT.
constexpr KeywordSet otherQueries = {K::With, K::Values, K::Table, K::From};

/// Statements of SQL Server that can stand in the place of a query.
constexpr KeywordSet dataChanges = {K::Insert, K::Update, K::Delete, K::Merge};

constexpr unsigned long long greatestCount = 2147483647ULL;
constexpr unsigned long long allRows = 9223372036854775807ULL;

}  // namespace

Grammar::Grammar(SqletParser& parser, const Dialect& dialect)
    : m_parser(parser)
    , m_dialect(dialect)
    , m_tokens(parser.tokens.tokens.data())
    , m_count(parser.tokens.count()) {}

void Grammar::readStatement() {
    if (is(T::End)) return;
    const TokenIndex brackets = openStatementBrackets();
    refuseUnlessSelect();
    if (m_parser.statementType == SQLET_STATEMENT_OTHER) return;
    m_parser.select = select();
    for (TokenIndex i = 0; i < brackets; ++i) {
        refuseClause();
        take(T::RightParen, m_expectedEnd);
    }
    if (brackets > 0 && !is(T::End) && !is(T::Semicolon)) {
        refuseClause();
        unsupported(m_position, wordOf(m_position) + " behind a statement in brackets");
    }
    if (is(T::Semicolon)) {
        takeStructure();
        m_parser.isMultiple = !is(T::End);
    } else if (!is(T::End)) {
        refuseClause();
        unexpected(m_expectedEnd);
    }
    m_parser.statementType = SQLET_STATEMENT_SELECT;
}

TokenIndex Grammar::openStatementBrackets() {
    TokenIndex count = 0;
    while (is(T::LeftParen)) {
        partner();
        takeStructure();
        ++count;
    }
    if (count > 0 && !m_dialect.mayBracketStatement) {
        m_position = 0;
        unexpected("SELECT");
    }
    return count;
}

void Grammar::refuseUnlessSelect() {
    if (is(K::Select)) return;
    if (otherQueries.contains(here().keyword)) unsupported(m_position, wordOf(m_position));
    if (!otherStatements.contains(here().keyword)) unexpected("SELECT");
    m_parser.statementType = SQLET_STATEMENT_OTHER;
}

SqletSelect* Grammar::select() {
    if (otherQueries.contains(here().keyword) || dataChanges.contains(here().keyword))
        unsupported(m_position, wordOf(m_position));
    const TokenIndex first = m_position;
    if (is(T::LeftParen)) unsupported(first, "a query of several in brackets");
    take(K::Select, "SELECT");
    SqletSelect* result = m_parser.arena.make<SqletSelect>(&m_parser);

    selectOptions(*result);
    selectList(*result);
    filterClauses(*result);
    limitClauses(*result);
    settleLimit(*result);

    result->parts[static_cast<int>(Part::Statement)] = spanFrom(first);
    return result;
}

void Grammar::selectOptions(SqletSelect& select) {
    if (is(K::Distinct) || m_dialect.distinctWords.contains(here().keyword)) {
        takeStructure();
        select.isDistinct = true;
        if (is(K::On) && next().kind == T::LeftParen) unsupported(m_position - 1, "DISTINCT ON");
    } else if (is(K::All)) {
        takeStructure();
    }
    if (is(K::Top) && takesLimit(TopWord)) topClause(select);
    if (m_dialect.refusedModifiers.contains(here().keyword))
        unsupported(m_position, wordOf(m_position));
    if (is(T::Hint)) unexpected("a column");
}

void Grammar::topClause(SqletSelect& select) {
    const bool isTop =
        next().kind == T::Number || next().kind == T::LeftParen || next().kind == T::Parameter;
    if (!isTop) return;
    const TokenIndex first = m_position;
    takeStructure();
    select.limit.count = rowCount();
    // In a derived table it may be what makes its ORDER BY legal.
    if (!select.limit.count) unsupported(first, "TOP with all rows");
    if (*select.limit.count == '0') unsupported(first, "TOP 0");
    if (is(K::Percent)) unsupported(m_position, "PERCENT");
    if (is(K::With) && nextIs(K::Ties)) unsupported(m_position, "WITH TIES");
    select.parts[static_cast<int>(Part::Limit)] = spanFrom(first);
}

void Grammar::selectList(SqletSelect& select) {
    if (is(K::From) && m_dialect.mayLackColumns)
        unsupported(m_position, "a SELECT without columns");
    const TokenIndex first = m_position;
    select.columns = columns(ColumnRole::Select, &Grammar::selectAlias);
    select.parts[static_cast<int>(Part::Columns)] = spanFrom(first);
    if (is(K::Into)) refuseClause();
    m_expectedEnd = "',' or FROM";
    if (!is(K::From)) return;
    takeStructure();
    const TokenIndex from = m_position;
    select.from = sources(0);
    m_expectedEnd = "',', a join, WHERE or the end of the statement";
    select.parts[static_cast<int>(Part::From)] = spanFrom(from);
}

void Grammar::filterClauses(SqletSelect& select) {
    if (takeIf(K::Where)) {
        const TokenIndex first = m_position;
        select.where = condition();
        m_expectedEnd = "AND, OR or the end of the statement";
        select.parts[static_cast<int>(Part::Where)] = spanFrom(first);
    }
    groupClause(select);
    if (takeIf(K::Having)) {
        const TokenIndex first = m_position;
        select.having = condition();
        m_expectedEnd = "AND, OR or the end of the statement";
        select.parts[static_cast<int>(Part::Having)] = spanFrom(first);
        if (m_dialect.mayHavingComeFirst && select.groupBy.count == 0) groupClause(select);
    }
    if (is(K::Order) && nextIs(K::Siblings)) unsupported(m_position, "ORDER SIBLINGS BY");
    if (!is(K::Order)) return;
    takeStructure();
    take(K::By, "BY");
    const TokenIndex first = m_position;
    select.orderBy = columns(ColumnRole::OrderBy, &Grammar::orderSuffix);
    m_expectedEnd = "',' or the end of the statement";
    select.parts[static_cast<int>(Part::OrderBy)] = spanFrom(first);
}

void Grammar::groupClause(SqletSelect& select) {
    if (!takeIf(K::Group)) return;
    take(K::By, "BY");
    const TokenIndex first = m_position;
    select.groupBy = columns(ColumnRole::GroupBy, &Grammar::groupSuffix);
    m_expectedEnd = "',' or the end of the statement";
    select.parts[static_cast<int>(Part::GroupBy)] = spanFrom(first);
}

/// Returns where the token here is no clause that is refused.
void Grammar::refuseClause() const {
    if (!m_dialect.refusedClauses.contains(here().keyword)) return;
    std::string words = wordOf(m_position);
    const bool isPair = is(K::For) || is(K::Start) || is(K::Connect);
    if (isPair && next().kind == T::Word) words += " " + wordOf(m_position + 1);
    if (is(K::Lock)) words = "LOCK IN SHARE MODE";
    unsupported(m_position, words);
}

ColumnArray Grammar::columns(ColumnRole role, Suffix suffix) {
    std::vector<SqletColumn*> items;
    do {
        items.push_back(column(role));
        (this->*suffix)(*items.back());
    } while (takeIf(T::Comma));
    return arrayOf(items);
}

SqletColumn* Grammar::column(ColumnRole role) {
    const TokenIndex alias = role == ColumnRole::Select ? takeAssignedAlias() : noToken;
    const TokenSpan span = columnSpan(role);
    SqletColumn* result = m_parser.arena.make<SqletColumn>(&m_parser);
    result->role = role;
    result->span = span;
    result->form = columnForm(span);
    result->alias = alias;
    return result;
}

TokenSpan Grammar::columnSpan(ColumnRole role) {
    const TokenIndex first = m_position;
    if (role == ColumnRole::Select && is(T::Operator) && isSymbol(m_position, "*")) {
        advance();
        return spanFrom(first);
    }
    if (role == ColumnRole::GroupBy) {
        if (is(K::All) || is(K::Distinct)) advance();
        if (is(K::Grouping) && nextIs(K::Sets)) {
            m_position += 2;
            if (!is(T::LeftParen)) unexpected("'('");
            skipBrackets();
            return spanFrom(first);
        }
    }
    expression(Reach::Whole);
    return spanFrom(first);
}

/// The alias in SELECT x = 1, with its sign; noToken if there is none.
TokenIndex Grammar::takeAssignedAlias() {
    if (!m_dialect.hasAssignedAliases || !isSymbol(m_position + 1, "=")) return noToken;
    if (!isName(here()) && !is(T::String)) return noToken;
    const TokenIndex alias = m_position;
    advance();
    takeStructure();
    return alias;
}

void Grammar::selectAlias(SqletColumn& column) {
    const bool hasAs = is(K::As);
    if (!hasAs && !isBareColumnAlias()) return;
    if (column.alias != noToken) unexpected("',' or FROM");
    const TokenIndex as = m_position;
    if (hasAs) advance();
    const bool isString = is(T::String) && m_dialect.hasStringAliases;
    if (!isName(here()) && !isString) unexpected("an alias");
    const Token& alias = here();
    advance();
    const bool isEmpty = alias.kind != T::Word && alias.length <= 2;
    if ((alias.flags & TokenHasEscape) != 0 || isEmpty) {
        keepInText(column);
        return;
    }
    if (hasAs) structure(as);
    column.alias = m_position - 1;
}

bool Grammar::isBareColumnAlias() const {
    const Token& token = here();
    if (token.kind == T::QuotedName) return true;
    if (token.kind == T::String) return m_dialect.hasStringAliases;
    if (token.kind != T::Word) return false;
    if (m_dialect.clauseWords.contains(token.keyword) || isOffsetClause()) return false;
    return (token.flags & SQLET_WORD_NO_BARE_ALIAS) == 0;
}

/// OFFSET is a name of MySQL too.
bool Grammar::isOffsetClause() const {
    return is(K::Offset) && next().kind == T::Number && takesLimit(OffsetAlone);
}

void Grammar::keepInText(SqletColumn& column) {
    column.span.last = m_position - 1;
    column.form = ColumnForm::Text;
}

void Grammar::groupSuffix(SqletColumn& column) {
    const TokenIndex first = m_position;
    if (is(K::Asc) || is(K::Desc)) advance();
    if (is(K::With) && (nextIs(K::Rollup) || nextIs(K::Cube))) m_position += 2;
    takeModel();
    if (m_position != first) keepInText(column);
}

void Grammar::orderSuffix(SqletColumn& column) {
    const TokenIndex first = m_position;
    bool isPlain = true;
    if (takeIfUsingOperator()) isPlain = false;
    const bool isDescending = is(K::Desc);
    if (is(K::Asc) || isDescending) advance();
    if (is(K::Nulls) && m_dialect.hasNullsWords && (nextIs(K::First) || nextIs(K::Last))) {
        isPlain = isPlain && isDefaultNullOrder(isDescending, nextIs(K::First));
        m_position += 2;
    }
    if (!isPlain) {
        keepInText(column);
        column.direction = Direction::InText;
        return;
    }
    column.direction = isDescending ? Direction::Descending : Direction::Ascending;
    if (first != m_position) structure(spanFrom(first));
}

/// ORDER BY x USING <
bool Grammar::takeIfUsingOperator() {
    if (!is(K::Using)) return false;
    advance();
    if (is(K::Operator)) {
        advance();
        skipBrackets();
        return true;
    }
    if (!is(T::Operator)) unexpected("an operator");
    advance();
    return true;
}

bool Grammar::isDefaultNullOrder(bool isDescending, bool isFirst) const {
    const bool smallestFirst = !isDescending;
    if (m_dialect.nulls == NullOrder::Smallest) return isFirst == smallestFirst;
    return isFirst != smallestFirst;
}

void Grammar::limitClauses(SqletSelect& select) {
    const TokenIndex first = m_position;
    while (takeLimitClause(select)) {
    }
    if (m_position == first) return;
    select.parts[static_cast<int>(Part::Limit)] = spanFrom(first);
    m_expectedEnd = "the end of the statement";
}

bool Grammar::takeLimitClause(SqletSelect& select) {
    if (is(K::Limit) && takesLimit(LimitWord)) {
        limitWord(select);
        return true;
    }
    const bool needsOrder = takesLimit(TopWord) && select.orderBy.count == 0;
    if ((is(K::Offset) || is(K::Fetch)) && needsOrder) unexpected("ORDER BY");
    if (is(K::Offset) && takesLimit(OffsetAlone)) {
        offsetRows(select);
        return true;
    }
    if (is(K::Fetch) && takesLimit(FetchWords)) {
        fetchWords(select);
        return true;
    }
    return false;
}

void Grammar::limitWord(SqletSelect& select) {
    const TokenIndex word = m_position;
    if (select.limit.count) unexpected("the end of the statement");
    takeStructure();
    if (is(K::Rows)) unsupported(word, "LIMIT ROWS EXAMINED");
    const TokenIndex first = m_position;
    select.limit.count = rowCount();
    if (is(T::Comma) && takesLimit(LimitComma)) {
        const TokenIndex behind = m_position;
        m_position = first;
        select.limit.offset = rowOffset();
        if (m_position != behind) unexpected("','");
        takeStructure();
        select.limit.count = rowCount();
    } else if (is(K::Offset) && takesLimit(OffsetWord)) {
        offsetRows(select);
    }
    if (is(K::Rows)) unsupported(word, "LIMIT ROWS EXAMINED");
}

void Grammar::offsetRows(SqletSelect& select) {
    if (select.limit.offset) unexpected("the end of the statement");
    takeStructure();
    select.limit.offset = rowOffset();
    if (is(K::Row) || is(K::Rows)) takeStructure();
}

void Grammar::fetchWords(SqletSelect& select) {
    if (select.limit.count) unexpected("the end of the statement");
    takeStructure();
    if (!is(K::First) && !is(K::Next)) unexpected("FIRST or NEXT");
    takeStructure();
    m_state.hasFetchWords = true;
    select.limit.count = is(K::Row) || is(K::Rows) ? "1" : rowCount();
    if (is(K::Percent)) {
        if (!m_dialect.hasFetchOptions) unsupported(m_position, "PERCENT");
        takeStructure();
        select.limit.isPercent = true;
    }
    if (!is(K::Row) && !is(K::Rows)) unexpected("ROWS");
    takeStructure();
    if (takeIf(K::Only)) {
        select.limit.returnOption = "ONLY";
        return;
    }
    if (!is(K::With) || !nextIs(K::Ties)) unexpected("ONLY");
    if (!m_dialect.hasFetchOptions) unsupported(m_position, "WITH TIES");
    takeStructure();
    takeStructure();
    // Without an order nothing ties.
    select.limit.returnOption = select.orderBy.count > 0 ? "WITH TIES" : "ONLY";
}

const char* Grammar::rowOffset() {
    const TokenIndex first = m_position;
    const char* offset = rowCount();
    if (!offset && (is(K::Null) || m_parser.tokens[first].keyword != K::Null))
        unsupported(first, "this offset");
    return offset;
}

const char* Grammar::rowCount() {
    const TokenIndex first = m_position;
    if ((is(K::All) || is(K::Null)) && takesLimit(AllWord)) {
        takeStructure();
        return nullptr;
    }
    TokenIndex brackets = 0;
    for (; is(T::LeftParen); ++brackets)
        takeStructure();
    bool isNegative = false;
    if (is(T::Operator) && (isSymbol(m_position, "-") || isSymbol(m_position, "+"))) {
        isNegative = isSymbol(m_position, "-");
        takeStructure();
    }
    const bool isString = is(T::String) && m_dialect.hasLooseCounts;
    if (is(T::End) || is(T::Semicolon)) unexpected("a number");
    if (!is(T::Number) && !isString) unsupported(first, "a row limit that is no number");
    const char* text = decimal(m_position, isNegative);
    takeStructure();
    for (; brackets > 0; --brackets) {
        if (!is(T::RightParen)) unsupported(first, "a row limit that is no number");
        takeStructure();
    }
    const bool goesOn = is(T::Operator) && !takesLimit(TopWord);  // TOP 5 *
    if (goesOn) unsupported(first, "a row limit that is no number");
    return text;
}

/// The number as decimal text; null where it says all rows.
const char* Grammar::decimal(TokenIndex number, bool isNegative) {
    std::string digits(m_parser.textOf(number));
    if (m_tokens[number].kind == T::String) digits = digits.substr(1, digits.size() - 2);
    const bool isHex = m_dialect.hasLooseCounts && digits.size() > 2 && digits[0] == '0' &&
                       (digits[1] == 'x' || digits[1] == 'X');
    const char* allowed = isHex ? "0123456789abcdefABCDEF" : "0123456789";
    if (digits.empty() || digits.find_first_not_of(allowed, isHex ? 2 : 0) != std::string::npos)
        unsupported(number, "a row limit that is no whole number");
    // Sixteen digits of it may already be a negative number.
    if (isHex && isNegative) unsupported(number, "a negative row limit");
    errno = 0;
    const unsigned long long value = std::strtoull(digits.c_str(), nullptr, isHex ? 16 : 10);
    const bool isTooLarge = errno == ERANGE;
    if (isNegative && value != 0) {
        if (!takesLimit(NegativeIsAll)) unsupported(number, "a negative row limit");
        return nullptr;
    }
    if (isTooLarge || value >= allRows) return nullptr;
    if (value > greatestCount) unsupported(number, "a row limit beyond 2147483647");
    return m_parser.arena.copyText(std::to_string(value));
}

void Grammar::settleLimit(SqletSelect& select) {
    dropMadeUpOrder(select);
    if (!m_state.hasFetchWords) return;
    select.limit.fetchOption = select.limit.offset ? "NEXT" : "FIRST";
}

/// SQL Server limits rows only in some order, so a TOP is generated as ORDER BY 1 OFFSET 0 ROWS
/// FETCH NEXT n ROWS ONLY. Read back it is the same limit, without an order that nobody chose.
void Grammar::dropMadeUpOrder(SqletSelect& select) {
    const Limit& limit = select.limit;
    const bool isForm = takesLimit(TopWord) && limit.count && limit.offset &&
                        std::string_view(limit.offset) == "0" && select.orderBy.count == 1;
    if (!isForm) return;
    const SqletColumn& only = *select.orderBy.items[0];
    const TokenSpan part = select.parts[static_cast<int>(Part::OrderBy)];
    if (part.first != part.last || m_parser.textOf(only.span) != "1") return;
    structure(part);
    select.orderBy = {};
    select.parts[static_cast<int>(Part::OrderBy)] = {};
    select.limit.offset = nullptr;
}

ColumnArray Grammar::arrayOf(const std::vector<SqletColumn*>& columns) {
    return {m_parser.arena.copy(columns.data(), columns.size()),
            static_cast<std::uint32_t>(columns.size())};
}

}  // namespace sqlet
