#include <algorithm>

#include "platform/sqlet/grammar.h"

// Joins: one flat run of sources and joins becomes a tree that leans to the left, whatever binds
// tighter in the dialect, since the text is the same. Only where two ON meet, the right side of the
// outer join is a join of its own; it gets the bracket that it has in meaning.

namespace sqlet {

namespace {

using K = Keyword;
using T = TokenKind;

constexpr int maxJoins = 1000;
constexpr std::size_t noStep = static_cast<std::size_t>(-1);

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

}  // namespace sqlet
