#include "platform/sqlet/grammar.h"

// Conditions: chains of terms, groups in brackets, and the comparisons that the model knows. A term
// that is anything else is one leaf, from its first token to its last.

namespace sqlet {

namespace {

using K = Keyword;
using T = TokenKind;

}  // namespace

SqletExpr* Grammar::condition() {
    return chain(0);
}

SqletExpr* Grammar::chain(std::uint32_t parens) {
    const TokenIndex first = m_position;
    SqletExpr* left = term(parens);
    while (is(K::And) || is(K::Or)) {
        const char* op = is(K::And) ? "AND" : "OR";
        takeStructure();
        SqletExpr* right = term(parens);
        SqletExpr* link = makeExpr(ExprForm::Chain, {first, m_position - 1}, parens);
        link->op = op;
        link->left = left;
        link->right = right;
        left = link;
    }
    return left;
}

SqletExpr* Grammar::term(std::uint32_t parens) {
    if (is(K::Not)) return negatedTerm(parens);
    if (is(T::LeftParen) && isGroup()) return group(parens);
    return predicate(parens);
}

SqletExpr* Grammar::negatedTerm(std::uint32_t parens) {
    const TokenIndex first = m_position;
    advance();
    if (!is(K::Not)) {
        const bool isInGroup = is(T::LeftParen) && isGroup();
        SqletExpr* content = isInGroup ? group(parens) : predicate(parens);
        const bool canBeNegated =
            content->negatedAt == 0 && (isInGroup || content->form == ExprForm::Compare);
        if (canBeNegated) {
            structure(first);
            content->negatedAt = parens + 1;
            return content;
        }
    }
    m_position = first;
    return leaf(expression(Reach::Term), parens);
}

/// A bracket in this place is a group unless it is an operand, which shows behind it, or a query.
bool Grammar::isGroup() const {
    const TokenIndex close = m_parser.tokens.partner[m_position];
    if (close == noToken) return false;
    if (isQueryStart(m_position + 1) || isSetOperation(m_position + 1)) return false;
    const Token& behind = at(close + 1);
    switch (behind.kind) {
        case T::Operator:
        case T::Dot:
        case T::LeftBracket:
        case T::LeftParen:
            return false;
        case T::Word:
            return !isComparisonWordAt(close + 1) && behind.keyword != K::Collate &&
                   !isBinaryWord(close + 1) && !isIntervalOf(close + 1) &&
                   !(behind.keyword == K::At && at(close + 2).keyword == K::Time) &&
                   !(behind.keyword == K::Operator && at(close + 2).kind == T::LeftParen);
        default:
            return true;
    }
}

SqletExpr* Grammar::group(std::uint32_t parens) {
    const TokenIndex open = m_position;
    const TokenIndex close = partner();
    if (++m_state.groupDepth > maxGroupDepth) beyondLimit(open, "more than 200 nested brackets");
    structure(open);
    structure(close);
    advance();
    SqletExpr* content = chain(parens + 1);
    if (m_position != close) unexpected("AND, OR or ')'");
    advance();
    --m_state.groupDepth;
    return content;
}

SqletExpr* Grammar::predicate(std::uint32_t parens) {
    const TokenIndex first = m_position;
    const TokenSpan left = expression(Reach::Operand);
    if (SqletExpr* comparison = comparisonBehind(left, parens)) return comparison;
    // Whatever it is, it goes on from the operand.
    m_position = left.last + 1;
    AfterOperand then = afterOperand(Reach::Term);
    while (then != AfterOperand::Ends) {
        if (then == AfterOperand::WantsOperand) operand();
        then = afterOperand(Reach::Term);
    }
    return leaf({first, m_position - 1}, parens);
}

/// Null if no comparison that the model knows follows, or more follows behind it.
SqletExpr* Grammar::comparisonBehind(TokenSpan left, std::uint32_t parens) {
    if (is(T::Operator)) return symbolComparison(left, parens);
    if (here().keyword == K::None || !isComparisonWordAt(m_position)) return nullptr;
    const Keyword word = is(K::Not) ? next().keyword : here().keyword;
    switch (word) {
        case K::Is:
        case K::Isnull:
        case K::Notnull:
        case K::Null:
            return nullTest(left, parens);
        case K::In:
            return inComparison(left, parens);
        case K::Between:
            return betweenComparison(left, parens);
        case K::Like:
            return likeComparison(left, parens);
        default:
            return nullptr;
    }
}

SqletExpr* Grammar::symbolComparison(TokenSpan left, std::uint32_t parens) {
    const char* op = nullptr;
    if (m_dialect.roleOf(m_parser.textOf(m_position), &op) != OperatorRole::Comparison)
        return nullptr;
    if (endOfOperator() != m_position + 1) return nullptr;
    const TokenIndex symbol = m_position;
    advance();
    const TokenSpan right = expression(Reach::Operand);
    if (!endsTerm()) return nullptr;
    structure(symbol);
    SqletExpr* leftSide = leaf(left, parens);
    return compare(op, leftSide, leaf(right, parens), parens);
}

/// x IS NULL, x IS NOT NULL and the postfix forms.
SqletExpr* Grammar::nullTest(TokenSpan left, std::uint32_t parens) {
    const TokenIndex first = m_position;
    const char* op = "IS NULL";
    TokenIndex null = noToken;
    if (is(K::Is)) {
        const bool isNot = nextIs(K::Not);
        op = isNot ? "IS NOT" : "IS";
        null = m_position + (isNot ? 2 : 1);
        if (at(null).keyword != K::Null) return nullptr;
        m_position = null + 1;
    } else if (is(K::Not)) {
        op = "IS NOT NULL";
        m_position += 2;
    } else {
        if (is(K::Notnull)) op = "IS NOT NULL";
        advance();
    }
    if (!endsTerm()) return nullptr;
    structure({first, m_position - 1});
    SqletExpr* leftSide = leaf(left, parens);
    SqletExpr* right = null == noToken ? nullptr : makeExpr(ExprForm::Text, {null, null}, parens);
    SqletExpr* test = compare(op, leftSide, right, parens);
    test->span.last = m_position - 1;
    return test;
}

SqletExpr* Grammar::inComparison(TokenSpan left, std::uint32_t parens) {
    const TokenIndex first = m_position;
    const bool isNot = is(K::Not);
    const TokenIndex open = m_position + (isNot ? 2 : 1);
    if (at(open).kind != T::LeftParen) return nullptr;
    m_position = open;
    const TokenIndex close = partner();
    if (close == open + 1) {
        m_position = close;
        if (!m_dialect.hasEmptyLists) unexpected("an expression");
        return nullptr;
    }
    m_position = close + 1;
    if (!endsTerm()) return nullptr;

    m_position = open + 1;
    SqletExpr* leftSide = leaf(left, parens);
    SqletExpr* right = bracketContent(open, close, parens);
    m_position = close + 1;
    structure({first, open});
    structure(close);
    SqletExpr* result = compare(isNot ? "NOT IN" : "IN", leftSide, right, parens);
    result->span.last = close;
    return result;
}

SqletExpr* Grammar::bracketContent(TokenIndex open, TokenIndex close, std::uint32_t parens) {
    const TokenSpan inside = {open + 1, close - 1};
    if (isQueryStart(open + 1) || isSetOperation(open + 1))
        return makeExpr(ExprForm::Query, inside, parens);
    SqletExpr* list = makeExpr(ExprForm::List, inside, parens);
    list->items = listItems(close);
    return list;
}

/// ( SELECT .. ) UNION ..
bool Grammar::isSetOperation(TokenIndex open) const {
    if (at(open).kind != T::LeftParen || m_parser.tokens.partner[open] == noToken) return false;
    const Keyword behind = at(m_parser.tokens.partner[open] + 1).keyword;
    return behind == K::Union || behind == K::Except || behind == K::Intersect ||
           (behind == K::Minus && m_dialect.refusedClauses.contains(K::Minus));
}

ColumnArray Grammar::listItems(TokenIndex close) {
    std::vector<SqletColumn*> items;
    for (;;) {
        TokenSpan span = {m_position, m_position};
        const T behind = at(m_position + 1).kind;
        if ((is(T::Number) || is(T::String)) && (behind == T::Comma || behind == T::RightParen))
            advance();
        else
            span = expression(Reach::Whole);
        SqletColumn* item = m_parser.arena.make<SqletColumn>(&m_parser);
        item->span = span;
        item->form = columnForm(span);
        item->role = ColumnRole::ListItem;
        if (!items.empty()) items.back()->next = item;
        items.push_back(item);
        if (m_position == close) break;
        if (!is(T::Comma)) unexpected("',' or ')'");
        takeStructure();
    }
    return arrayOf(items);
}

SqletExpr* Grammar::betweenComparison(TokenSpan left, std::uint32_t parens) {
    const TokenIndex first = m_position;
    const bool isNot = is(K::Not);
    m_position += isNot ? 2 : 1;
    if (is(K::Symmetric) || is(K::Asymmetric)) return nullptr;
    const TokenSpan low = expression(Reach::Operand);
    if (!is(K::And)) unexpected("AND");
    const TokenIndex word = m_position;
    advance();
    const TokenSpan high = expression(Reach::Operand);
    if (!endsTerm()) return nullptr;

    structure({first, low.first - 1});
    structure(word);
    SqletExpr* leftSide = leaf(left, parens);
    SqletExpr* bounds = makeExpr(ExprForm::Chain, {low.first, high.last}, parens);
    bounds->op = "AND";
    bounds->left = leaf(low, parens);
    bounds->right = leaf(high, parens);
    return compare(isNot ? "NOT BETWEEN" : "BETWEEN", leftSide, bounds, parens);
}

SqletExpr* Grammar::likeComparison(TokenSpan left, std::uint32_t parens) {
    const TokenIndex first = m_position;
    const bool isNot = is(K::Not);
    m_position += isNot ? 2 : 1;
    if (is(K::Any) || is(K::All) || is(K::Some)) return nullptr;
    const TokenSpan right = expression(Reach::Operand);
    if (!endsTerm()) return nullptr;
    structure({first, right.first - 1});
    SqletExpr* leftSide = leaf(left, parens);
    return compare(isNot ? "NOT LIKE" : "LIKE", leftSide, leaf(right, parens), parens);
}

SqletExpr* Grammar::compare(const char* op, SqletExpr* left, SqletExpr* right,
                            std::uint32_t parens) {
    const TokenIndex last = right ? right->span.last : left->span.last;
    SqletExpr* result = makeExpr(ExprForm::Compare, {left->span.first, last}, parens);
    result->op = op;
    result->left = left;
    result->right = right;
    return result;
}

SqletExpr* Grammar::leaf(TokenSpan span, std::uint32_t parens) {
    ExprForm form = ExprForm::Text;
    switch (columnForm(span)) {
        case ColumnForm::Name:
            form = ExprForm::Name;
            break;
        case ColumnForm::AggregateName:
            form = ExprForm::AggregateName;
            break;
        default:
            break;
    }
    return makeExpr(form, span, parens);
}

SqletExpr* Grammar::makeExpr(ExprForm form, TokenSpan span, std::uint32_t parens) {
    SqletExpr* expr = m_parser.arena.make<SqletExpr>(&m_parser);
    expr->form = form;
    expr->span = span;
    expr->parens = parens;
    return expr;
}

/// True if the term that was read up to here does not go on.
bool Grammar::endsTerm() {
    const Token& token = here();
    switch (token.kind) {
        case T::Operator: {
            const char* name = nullptr;
            return m_dialect.roleOf(m_parser.textOf(m_position), &name) == OperatorRole::Assignment;
        }
        case T::Word:
            return !isComparisonWordAt(m_position) && token.keyword != K::Collate &&
                   !isBinaryWord(m_position);
        case T::LeftBracket:
        case T::Dot:
            return false;
        default:
            return true;
    }
}

}  // namespace sqlet
