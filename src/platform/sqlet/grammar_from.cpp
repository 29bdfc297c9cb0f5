#include <algorithm>

#include "platform/sqlet/grammar.h"

// FROM: one flat run of sources and joins becomes a tree that leans to the left, whatever binds
// tighter in the dialect, since the text is the same. Only where two ON meet, the right side of the
// outer join is a join of its own; it gets the bracket that it has in meaning.

namespace sqlet {

namespace {

using K = Keyword;
using T = TokenKind;

constexpr int maxJoins = 1000;
constexpr int maxQueryDepth = 32;
constexpr std::uint32_t maxGroupDepth = 200;
constexpr std::size_t noStep = static_cast<std::size_t>(-1);

/// Statements of SQL Server whose output is a source.
constexpr KeywordSet dataChanges = {K::Insert, K::Update, K::Delete, K::Merge};

constexpr KeywordSet joinHints = {K::Hash, K::Loop, K::Merge, K::Remote};

}  // namespace

SqletTable* Grammar::sources(std::uint32_t parens) {
    std::vector<JoinStep> steps;
    steps.push_back(joinStep({}, parens));
    for (;;) {
        const JoinOperator op = joinOperator();
        if (op.isEmpty()) break;
        if (++m_joinCount > maxJoins) beyondLimit(m_position - 1, "more than 1000 joins");
        steps.push_back(joinStep(op, parens));
        joinConditions(steps, parens);
    }
    if (steps.size() > 1 && takePivot()) return pivotOf(steps.front().span.first, parens);
    completeConditions(steps);
    return foldJoins(steps, 0, parens);
}

/// A pivot of a join, which is one source in one text.
SqletTable* Grammar::pivotOf(TokenIndex first, std::uint32_t parens) {
    SqletTable* table = makeTable(TableForm::Text, parens);
    table->span = spanFrom(first);
    sourceTail(table);
    return table;
}

Grammar::JoinStep Grammar::joinStep(JoinOperator op, std::uint32_t parens) {
    JoinStep step;
    step.op = op;
    step.span.first = m_position;
    step.side = source(parens);
    step.span.last = m_position - 1;
    return step;
}

Grammar::JoinOperator Grammar::joinOperator() {
    if (is(T::Comma)) {
        JoinOperator comma;
        comma.text = ",";
        comma.isComma = true;
        comma.takesCondition = m_dialect.commaTakesCondition;
        comma.words = {m_position, m_position};
        takeStructure();
        return comma;
    }
    if (!is(T::Word) || here().keyword == K::None) return {};
    const TokenIndex first = m_position;
    JoinOperator op = wordJoin();
    if (op.isEmpty()) {
        m_position = first;
        return op;
    }
    op.words = {first, m_position - 1};
    structure(op.words);
    return op;
}

/// A join by words; empty if there is none. The words are taken, not marked.
Grammar::JoinOperator Grammar::wordJoin() {
    JoinOperator op;
    op.takesCondition = true;
    op.wantsCondition = m_dialect.conditionless == ConditionlessJoin::Never;
    if (is(K::StraightJoin) && m_dialect.conditionless == ConditionlessJoin::InnerOnly) {
        advance();
        op.text = "STRAIGHT_JOIN";
        return op;
    }
    if (m_dialect.hasApply && (is(K::Cross) || is(K::Outer)) && nextIs(K::Apply)) {
        op.text = is(K::Cross) ? "CROSS APPLY" : "OUTER APPLY";
        op.takesCondition = op.wantsCondition = false;
        m_position += 2;
        return op;
    }
    const bool isPartitioned = is(K::Partition) && nextIs(K::By);
    if (isPartitioned) {
        m_position += 2;
        if (!is(T::LeftParen)) unexpected("'('");
        skipBrackets();
    }
    if (is(K::Natural)) {
        advance();
        op.isNatural = true;
        op.takesCondition = op.wantsCondition = false;
    }
    bool isInner = false;
    if (is(K::Inner)) {
        advance();
        isInner = true;
    } else if (is(K::Cross)) {
        advance();
        op.isCross = true;
        if (!m_dialect.crossTakesCondition) op.takesCondition = false;
        op.wantsCondition = false;
    } else if (is(K::Left) || is(K::Right) || isFullJoin()) {
        advance();
        op.isOuter = true;
        if (is(K::Outer)) advance();
        if (!op.isNatural) op.wantsCondition = true;
    }
    const bool isHinted = joinHints.contains(here().keyword) && nextIs(K::Join);
    if (isHinted) advance();
    if (!is(K::Join)) {
        const bool isSomeJoin =
            isPartitioned || op.isNatural || isInner || op.isCross || op.isOuter;
        if (isSomeJoin) unexpected("JOIN");
        return {};
    }
    advance();
    if (isPartitioned || isHinted) {
        op.words = {m_position - 1, m_position - 1};  // as written
        return op;
    }
    if (op.isNatural && !op.isOuter) {
        op.text = "NATURAL JOIN";
    } else if (op.isCross) {
        op.text = "CROSS JOIN";
    } else if (!op.isOuter) {
        op.text = "INNER JOIN";
    } else {
        op.words = {m_position - 1, m_position - 1};
    }
    return op;
}

/// Where a source is complete. FULL is a name of MySQL, which took it as alias if it could.
bool Grammar::isFullJoin() const {
    return is(K::Full) &&
           (nextIs(K::Join) || nextIs(K::Outer) || joinHints.contains(next().keyword));
}

void Grammar::joinConditions(std::vector<JoinStep>& steps, std::uint32_t parens) {
    while (is(K::On) || is(K::Using)) {
        const std::size_t index = pendingJoin(steps);
        if (index == noStep) unexpected("a join or the end of FROM");
        JoinStep& step = steps[index];
        if (index + 1 < steps.size()) {
            step.side = foldJoins(steps, index, parens);
            if (addBracket(step.side) > maxGroupDepth)
                beyondLimit(m_position, "more than 200 nested brackets");
            steps.resize(index + 1);
        }
        if (is(K::Using)) {
            step.on = usingList();
        } else {
            takeStructure();
            step.on = condition();
        }
        step.span.last = m_position - 1;
    }
}

/// The last join that has no condition yet and takes one; a condition does not reach over a comma,
/// nor over another join where no join has to wait for one.
std::size_t Grammar::pendingJoin(const std::vector<JoinStep>& steps) const {
    const bool canWait = m_dialect.conditionless != ConditionlessJoin::Always;
    for (std::size_t i = steps.size() - 1; i > 0; --i) {
        if (steps[i].op.takesCondition && !steps[i].on) return i;
        if (steps[i].op.isComma || !canWait) return noStep;
    }
    return noStep;
}

void Grammar::completeConditions(std::vector<JoinStep>& steps) {
    for (std::size_t i = 1; i < steps.size(); ++i) {
        JoinStep& step = steps[i];
        if (step.on) {
            // A condition makes an inner join of what has none elsewhere.
            if (step.op.isComma || step.op.isCross) step.op.text = "INNER JOIN";
        } else if (step.op.wantsCondition) {
            if (m_dialect.conditionless != ConditionlessJoin::Always) unexpected("ON or USING");
            step.on = alwaysTrue();
        }
    }
}

SqletExpr* Grammar::alwaysTrue() {
    SqletExpr* expr = makeExpr(ExprForm::Text, {}, 0);
    expr->texts = m_parser.arena.make<NodeTexts>();
    expr->texts->complex = "1";
    return expr;
}

SqletExpr* Grammar::usingList() {
    takeStructure();
    if (!is(T::LeftParen)) unexpected("'('");
    const TokenIndex close = partner();
    takeStructure();
    SqletExpr* list = makeExpr(ExprForm::Using, {m_position, close - 1}, 0);
    std::vector<SqletColumn*> items;
    for (;;) {
        if (!isName(here())) unexpected("a column");
        SqletColumn* item = m_parser.arena.make<SqletColumn>(&m_parser);
        item->span = {m_position, m_position};
        item->form = ColumnForm::Name;
        item->role = ColumnRole::ListItem;
        items.push_back(item);
        advance();
        if (is(T::RightParen)) break;
        if (!is(T::Comma)) unexpected("',' or ')'");
        takeStructure();
    }
    takeStructure();
    if (is(K::As)) unsupported(m_position, "an alias of USING");
    list->items = arrayOf(items);
    return list;
}

/// The steps from @p first on as one tree; the operator and condition of the first belong to what
/// stands before it.
SqletTable* Grammar::foldJoins(const std::vector<JoinStep>& steps, std::size_t first,
                               std::uint32_t parens) {
    SqletTable* left = steps[first].side;
    for (std::size_t i = first + 1; i < steps.size(); ++i) {
        const JoinStep& step = steps[i];
        SqletTable* join = makeTable(TableForm::Join, parens);
        join->left = left;
        join->right = step.side;
        join->on = step.on;
        join->joinOperator = step.op.text;
        join->operatorSpan = step.op.words;
        join->span = {steps[first].span.first, step.span.last};
        left = join;
    }
    return left;
}

void Grammar::dropBracket(SqletTable* table) {
    for (; table; table = table->left) {
        --table->parens;
        dropBracket(table->right);
    }
}

/// Returns how deep the deepest source is then.
std::uint32_t Grammar::addBracket(SqletTable* table) {
    std::uint32_t deepest = 0;
    for (; table; table = table->left) {
        deepest = std::max(deepest, ++table->parens);
        if (table->right) deepest = std::max(deepest, addBracket(table->right));
    }
    return deepest;
}

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
    if (++m_state.groupDepth > static_cast<int>(maxGroupDepth))
        beyondLimit(open, "more than 200 nested brackets");
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
