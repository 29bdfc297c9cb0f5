#include "platform/sqlet/grammar.h"

// Sources: what stands between the joins of FROM, with its brackets, modifiers and alias.

namespace sqlet {

namespace {

using K = Keyword;
using T = TokenKind;

constexpr int maxQueryDepth = 32;

/// Statements of SQL Server whose output is a source.
constexpr KeywordSet dataChanges = {K::Insert, K::Update, K::Delete, K::Merge};

}  // namespace

SqletTable* Grammar::makeTable(TableForm form, std::uint32_t parens) {
    SqletTable* table = m_parser.arena.make<SqletTable>(&m_parser);
    table->form = form;
    table->parens = parens;
    return table;
}

SqletTable* Grammar::source(std::uint32_t parens) {
    if (is(T::LeftBrace)) unsupported(m_position, "{OJ ...}");
    if (!is(T::LeftParen)) return plainSource(parens);
    if (isQueryInBrackets(m_position)) return derivedTable(parens);
    return bracketedSource(parens);
}

/// True for ( SELECT .. ), however many brackets are around the query; false where the query is the
/// first of several sources in the bracket.
bool Grammar::isQueryInBrackets(TokenIndex open) const {
    TokenIndex inner = open;
    while (at(inner + 1).kind == T::LeftParen)
        ++inner;
    const bool isQuery = isQueryStart(inner + 1) || dataChanges.contains(at(inner + 1).keyword);
    if (!isQuery) return false;
    for (TokenIndex i = inner; i > open; --i) {
        const TokenIndex close = m_parser.tokens.partner[i];
        if (close == noToken) return true;
        const Token& behind = at(close + 1);
        if (behind.kind == T::RightParen) continue;
        return behind.keyword == K::Union || behind.keyword == K::Except ||
               behind.keyword == K::Intersect || behind.keyword == K::Minus ||
               behind.keyword == K::Order || behind.keyword == K::Limit ||
               behind.keyword == K::Offset || behind.keyword == K::Fetch;
    }
    return true;
}

SqletTable* Grammar::derivedTable(std::uint32_t parens) {
    const TokenIndex outerOpen = m_position;
    TokenIndex open = outerOpen;
    TokenIndex close = partner();
    const TokenIndex outerClose = close;
    while (at(open + 1).kind == T::LeftParen && m_parser.tokens.partner[open + 1] == close - 1) {
        structure(open++);
        structure(close--);
    }
    SqletTable* table = makeTable(TableForm::Derived, parens);
    table->span = {open, close};
    readSubquery(table, open, close);
    m_position = outerClose + 1;
    sourceTail(table);
    if (table->form == TableForm::Text) table->span.first = outerOpen;  // with all its brackets
    return table;
}

/// A query that nothing could show is kept as text, and then not read to its end; a query that is
/// no SQL is an error of the whole text.
void Grammar::readSubquery(SqletTable* table, TokenIndex open, TokenIndex close) {
    if (++m_queryDepth > maxQueryDepth) beyondLimit(open, "more than 32 nested queries");
    const StatementState outer = m_state;
    m_state.hasFetchWords = false;
    try {
        m_position = open + 1;
        table->subquery = select();
        if (m_position != close) {
            refuseClause();
            unexpected(m_expectedEnd);
        }
    } catch (const Refusal& refusal) {
        if (refusal.kind != SQLET_ERROR_UNSUPPORTED) throw;
        table->subquery = nullptr;
    }
    m_state = outer;
    --m_queryDepth;
    m_position = close + 1;
}

SqletTable* Grammar::bracketedSource(std::uint32_t parens) {
    const TokenIndex open = m_position;
    const TokenIndex close = partner();
    if (++m_state.groupDepth > maxGroupDepth) beyondLimit(open, "more than 200 nested brackets");
    takeStructure();
    SqletTable* content = sources(parens + 1);
    if (m_position != close) unexpected("a join or ')'");
    takeStructure();
    --m_state.groupDepth;

    if (takePivot()) return pivotOf(open, parens);
    const bool isLone = content->form != TableForm::Join || content->alias != noToken;
    if (isLone) {
        dropBracket(content);  // around one source it means nothing
        const bool hadAlias = content->alias != noToken;
        if (!takeSourceAlias(content)) return content;
        if (hadAlias) unsupported(m_position - 1, "a second alias");
    } else if (!takeSourceAlias(content)) {
        return content;
    } else if (content->form != TableForm::Join) {
        unsupported(m_position - 1, "such an alias behind a bracket");
    }
    if (is(T::LeftParen)) unsupported(m_position, "a column list behind the alias of a bracket");
    return content;
}

SqletTable* Grammar::plainSource(std::uint32_t parens) {
    SqletTable* table = makeTable(TableForm::Name, parens);
    table->span.first = m_position;
    sourceHead(table);
    // In PostgreSQL t * is t with the tables that inherit from it.
    if (m_dialect.hasCastOperator && isSymbol(m_position, "*")) advance();
    table->span.last = m_position - 1;
    if (table->form == TableForm::Name && !isNameChain(table->span)) table->form = TableForm::Text;
    sourceTail(table);
    return table;
}

/// What stands before the alias apart from modifiers: a name, a function, a variable.
void Grammar::sourceHead(SqletTable* table) {
    if (takeHeadWords()) table->form = TableForm::Text;
    if (is(T::LeftParen)) {  // LATERAL (..), TABLE (..)
        skipBrackets();
        return;
    }
    if (is(T::Parameter) || is(T::String)) {
        table->form = TableForm::Text;
        advance();
        if (is(T::Dot)) {  // @x.nodes('..')
            advance();
            nameChain();
            afterName();
        }
        return;
    }
    while (is(T::Dot) || isSymbol(m_position, "::"))
        advance();  // .t in MySQL, ..t and ::f() in SQL Server
    if (!isName(here())) unexpected("a table");
    const bool isReserved = is(T::Word) && (here().flags & SQLET_WORD_RESERVED) != 0;
    const bool isFunction =
        next().kind == T::LeftParen && !m_dialect.clauseWords.contains(here().keyword);
    if (isReserved && !isFunction && !is(K::Dual)) unexpected("a table");
    nameChain();
    afterName();
    const bool hasMark = is(T::LeftParen) && isSymbol(m_position + 1, "+");
    if (hasMark && m_dialect.hasOuterJoinMarks) skipBrackets();  // XMLTABLE(..)(+)
}

bool Grammar::takeHeadWords() {
    const TokenIndex first = m_position;
    if (is(K::Lateral)) advance();
    if ((is(K::Only) || is(K::Table)) && (isName(next()) || next().kind == T::LeftParen)) advance();
    if (is(K::Rows) && nextIs(K::From)) m_position += 2;
    return m_position != first;
}

/// Modifiers between a source and its alias.
bool Grammar::takeSourceSuffix() {
    const bool hasBracket = next().kind == T::LeftParen;
    if ((is(K::Partition) || is(K::Subpartition)) && hasBracket) {
        advance();
        skipBrackets();
        return true;
    }
    if (is(K::Sample)) {
        if (!hasBracket && at(m_position + 2).kind != T::LeftParen) return false;
        m_position += hasBracket ? 1 : 2;
        skipBrackets();
        if (is(K::Seed) && next().kind == T::LeftParen) {
            advance();
            skipBrackets();
        }
        return true;
    }
    if (is(K::With) && nextIs(K::Ordinality)) {
        m_position += 2;
        return true;
    }
    if (is(K::With) && hasBracket) {
        advance();
        skipBrackets();
        return true;
    }
    return takePivot() || takeTimeTravel();
}

bool Grammar::takePivot() {
    const bool isPivot = is(K::Pivot) || is(K::Unpivot) || is(K::MatchRecognize);
    if (!isPivot || !m_dialect.hasPivot) return false;
    const TokenIndex first = m_position;
    advance();
    while (is(T::Word) && m_position < first + 3)
        advance();  // XML, INCLUDE NULLS
    if (!is(T::LeftParen)) {
        m_position = first;
        return false;
    }
    skipBrackets();
    return true;
}

bool Grammar::takeTimeTravel() {
    if (isFlashback()) {
        m_position += 2;
        takeTimeKind();
        expression(Reach::Operand);
        return true;
    }
    if (is(K::Versions) && (nextIs(K::Between) || nextIs(K::Period))) {
        advance();
        takeTimeKind();
        if (!is(K::Between)) unexpected("BETWEEN");
        advance();
        takeTimeKind();
        betweenBounds();
        return true;
    }
    if (!is(K::For) || !nextIs(K::SystemTime)) return false;
    m_position += 2;
    if (is(K::All)) {
        advance();
    } else if (is(K::As) && nextIs(K::Of)) {
        m_position += 2;
        takeTimeKind();
        expression(Reach::Operand);
    } else if (is(K::Between)) {
        advance();
        betweenBounds();
    } else if (is(K::From)) {
        advance();
        expression(Reach::Operand);
        if (!is(K::To)) unexpected("TO");
        advance();
        expression(Reach::Operand);
    } else if (is(K::Contained) && nextIs(K::In)) {
        m_position += 2;
        if (!is(T::LeftParen)) unexpected("'('");
        skipBrackets();
    } else {
        unexpected("a time");
    }
    return true;
}

/// t AS OF TIMESTAMP x; where no time follows, OF is a name.
bool Grammar::isFlashback() const {
    if (!m_dialect.hasFlashback || !is(K::As) || !nextIs(K::Of)) return false;
    const Token& time = at(m_position + 2);
    return time.kind == T::String || time.kind == T::Parameter || time.kind == T::LeftParen ||
           time.keyword == K::Timestamp || time.keyword == K::Scn || time.keyword == K::Period ||
           (time.kind == T::Word && at(m_position + 3).kind == T::LeftParen &&
            !m_dialect.sourceEnds.contains(time.keyword));
}

void Grammar::takeTimeKind() {
    if (is(K::Period) && nextIs(K::For)) {
        m_position += 2;
        nameChain();
    } else if ((is(K::Timestamp) && next().kind != T::String) || is(K::Scn)) {
        advance();
    }
}

/// Modifiers behind the alias.
bool Grammar::takeSuffixBehindAlias() {
    if (isPartitionedSource()) {
        m_position += 2;
        skipBrackets();
        return true;
    }
    if (is(K::Tablesample)) {
        advance();
        if (is(T::Word)) nameChain();
        if (!is(T::LeftParen)) unexpected("'('");
        skipBrackets();
        if (is(K::Repeatable) && next().kind == T::LeftParen) {
            advance();
            skipBrackets();
        }
        return true;
    }
    if (is(K::With) && next().kind == T::LeftParen) {
        advance();
        skipBrackets();
        return true;
    }
    if (is(K::Indexed) && nextIs(K::By)) {
        m_position += 2;
        nameChain();
        return true;
    }
    if (is(K::Not) && nextIs(K::Indexed)) {
        m_position += 2;
        return true;
    }
    return takeIndexHints();
}

/// t PARTITION BY (..) at the right of an outer join; at its left these words begin the join.
bool Grammar::isPartitionedSource() const {
    if (!is(K::Partition) || !nextIs(K::By) || at(m_position + 2).kind != T::LeftParen)
        return false;
    const TokenIndex close = m_parser.tokens.partner[m_position + 2];
    if (close == noToken) return false;
    const Keyword behind = at(close + 1).keyword;
    return behind == K::On || behind == K::Using;
}

bool Grammar::takeIndexHints() {
    const bool isHint =
        (is(K::Use) || is(K::Force) || is(K::Ignore)) && (nextIs(K::Index) || nextIs(K::Key));
    if (!isHint) return false;
    m_position += 2;
    if (is(K::For)) {
        advance();
        while (is(K::Join) || is(K::Order) || is(K::Group) || is(K::By))
            advance();
    }
    if (!is(T::LeftParen)) unexpected("'('");
    skipBrackets();
    return true;
}

/// Modifiers, alias and what follows it. What cannot be written in the place where it stands makes
/// one text of the source and all that belongs to it.
void Grammar::sourceTail(SqletTable* table) {
    for (;;) {
        bool hasSuffix = false;
        while (takeSourceSuffix())
            hasSuffix = true;
        if (hasSuffix) keepAliasInText(table);
        if (table->alias != noToken || !takeSourceAlias(table)) break;
        if (!is(K::Pivot) && !is(K::Unpivot) && !is(K::MatchRecognize)) break;
    }
    if (is(T::LeftParen)) {  // the names of its columns, or a hint of SQL Server
        skipBrackets();
        keepAliasInText(table);
    }
    while (takeSuffixBehindAlias())
        keepAliasInText(table);
    if (takeModel()) keepAliasInText(table);
}

/// The MODEL clause of Oracle, up to what may follow it; it stays with what it follows.
bool Grammar::takeModel() {
    static constexpr KeywordSet beginnings = {K::Return,    K::Unique, K::Dimension, K::Partition,
                                              K::Reference, K::Main,   K::Ignore,    K::Keep};
    if (!is(K::Model) || !m_dialect.hasModel || !beginnings.contains(next().keyword)) return false;
    while (!isBehindModel()) {
        if (is(T::LeftParen) || is(T::LeftBracket))
            skipBrackets();
        else
            advance();
    }
    return true;
}

bool Grammar::isBehindModel() const {
    if (is(K::Order)) return nextIs(K::By);  // not RULES SEQUENTIAL ORDER (..)
    return is(T::End) || is(T::Semicolon) || is(T::RightParen) || is(K::Fetch) || is(K::Offset) ||
           (is(K::For) && nextIs(K::Update)) || is(K::Union) || is(K::Minus) || is(K::Intersect);
}

void Grammar::keepAliasInText(SqletTable* table) {
    table->form = TableForm::Text;
    table->alias = noToken;
    table->subquery = nullptr;
    table->span.last = m_position - 1;
}

bool Grammar::takeSourceAlias(SqletTable* table) {
    const bool hasAs = is(K::As) && !isFlashback();
    if (!hasAs && !isBareSourceAlias()) return false;
    const TokenIndex as = m_position;
    if (hasAs) advance();
    const bool isFunction =
        table->form == TableForm::Text && at(table->span.last).kind == T::RightParen;
    if (hasAs && is(T::LeftParen) && isFunction) {  // f() AS (a int)
        skipBrackets();
        keepAliasInText(table);
        return true;
    }
    const bool isString = is(T::String) && m_dialect.hasStringAliases;
    if (!isName(here()) && !isString) unexpected("an alias");
    const TokenIndex alias = m_position;
    advance();
    if ((at(alias).flags & TokenHasEscape) != 0) {
        keepAliasInText(table);
        return true;
    }
    if (hasAs) structure(as);
    table->alias = alias;
    return true;
}

bool Grammar::isBareSourceAlias() const {
    const Token& token = here();
    if (token.kind == T::QuotedName) return true;
    if (token.kind == T::String) return m_dialect.hasStringNames;
    if (token.kind != T::Word) return false;
    if (is(K::Model) && next().kind != T::Word) return true;  // a name of Oracle too
    if (m_dialect.sourceEnds.contains(token.keyword) || isOffsetClause()) return false;
    if (is(K::Full) && nextIs(K::Outer)) return false;  // elsewhere an alias of MySQL
    return (token.flags & SQLET_WORD_RESERVED) == 0;
}

}  // namespace sqlet
