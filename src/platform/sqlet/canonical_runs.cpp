#include "platform/sqlet/canonical_runs.h"

namespace sqlet {

namespace {

using K = Keyword;

constexpr int dialectSQLServer = 5;

/// The NULL in it is no operand, but a word of the comparison.
bool isNullTest(const SqletExpr& compare) {
    return compare.op && std::string_view(compare.op).substr(0, 2) == "IS";
}

}  // namespace

RunTable::RunTable(const SqletParser& parser)
    : m_parser(parser), m_runAt(parser.tokens.tokens.size(), 0) {}

void RunTable::add(const SqletSelect& select, SourceNumbers& sources) {
    markColumns(select.columns);
    markSources(select.from, sources);
    markCondition(select.where);
    markColumns(select.groupBy);
    markCondition(select.having);
    markColumns(select.orderBy);
    markImpliedOrder(select);
}

const Implied* RunTable::impliedAt(TokenIndex index) const {
    if (m_implied.empty()) return nullptr;
    const auto found = m_implied.find(index);
    return found == m_implied.end() ? nullptr : &found->second;
}

bool RunTable::isInBrackets(TokenIndex first, TokenIndex last) const {
    return first > 0 && token(first - 1).kind == TokenKind::LeftParen &&
           m_parser.tokens.partner[first - 1] == last + 1;
}

void RunTable::mark(TokenIndex first, Run run) {
    m_runs.push_back(run);
    m_runAt[first] = static_cast<std::uint32_t>(m_runs.size());
}

void RunTable::markColumns(const ColumnArray& columns) {
    for (std::uint32_t i = 0; i < columns.count; ++i)
        markColumn(*columns.items[i]);
}

void RunTable::markColumn(const SqletColumn& column) {
    Run run{Run::Kind::Column, column.span.last, {}};
    run.column = &column;
    TokenIndex first = column.span.first;
    if (column.alias != noToken && column.alias < first) {  // x = expression
        if (column.alias + 2 != first || m_parser.textOf(column.alias + 1) != "=")
            run.kind = Run::Kind::Unreadable;
        first = column.alias;
    } else if (column.alias != noToken) {
        if (!isAliasBehind(column.span.last, column.alias)) run.kind = Run::Kind::Unreadable;
        run.last = column.alias;
    }
    mark(first, run);
}

bool RunTable::isAliasBehind(TokenIndex last, TokenIndex alias) const {
    return alias == last + 1 || (alias == last + 2 && is(last + 1, K::As));
}

/// Chains lean to the left and are as deep as they are long.
void RunTable::markCondition(const SqletExpr* root) {
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

void RunTable::markRightSide(const SqletExpr* expr) {
    if (!expr) return;
    if (expr->form != ExprForm::Chain) return markOperand(expr, Run::Kind::RightOperand);
    markOperand(expr->left, Run::Kind::RightOperand);  // the bounds of BETWEEN
    markOperand(expr->right, Run::Kind::RightOperand);
}

void RunTable::markOperand(const SqletExpr* expr, Run::Kind kind) {
    if (!expr || expr->form == ExprForm::Using) return;  // its names stand as written
    if (expr->form == ExprForm::List) return markColumns(expr->items);
    if (expr->span.isEmpty()) return;
    Run run{kind, expr->span.last, {}};
    run.expr = expr;
    mark(expr->span.first, run);
}

void RunTable::markSources(const SqletTable* root, SourceNumbers& sources) {
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
void RunTable::markSource(const SqletTable& table) {
    Run run{Run::Kind::Source, table.span.last, {}};
    run.table = &table;
    TokenIndex first = table.span.first;
    bool isAliasTaken = table.alias == noToken;
    for (;;) {
        if (!isAliasTaken && isAliasBehind(run.last, table.alias)) {
            run.last = table.alias;
            isAliasTaken = true;
        }
        if (!isInBrackets(first, run.last)) break;
        --first;
        ++run.last;
    }
    if (!isAliasTaken) run.kind = Run::Kind::Unreadable;
    mark(first, run);
}

void RunTable::markJoin(const SqletTable& join) {
    Run run{Run::Kind::JoinOperator, join.operatorSpan.last, {}};
    run.table = &join;
    mark(join.operatorSpan.first, run);
    if (join.alias != noToken) {
        const TokenIndex first = is(join.alias - 1, K::As) ? join.alias - 1 : join.alias;
        Run alias{Run::Kind::JoinAlias, join.alias, {}};
        alias.table = &join;
        mark(first, alias);
        markRedundantBrackets(m_parser.tokens.partner[first - 1], join.alias);
    }
    if (isAlwaysTrue(join.on))
        m_implied[join.span.last].isAlwaysTrueBehind = true;
    else
        markCondition(join.on);
    markDeferredCondition(*join.right);
}

/// Around a bracket with its alias.
void RunTable::markRedundantBrackets(TokenIndex first, TokenIndex last) {
    while (first != noToken && isInBrackets(first, last)) {
        --first;
        ++last;
        mark(first, {Run::Kind::Redundant, first, {}});
        mark(last, {Run::Kind::Redundant, last, {}});
    }
}

/// In a JOIN b JOIN c ON .. ON .. the right side is a join without brackets; it means one in
/// brackets.
void RunTable::markDeferredCondition(const SqletTable& right) {
    if (right.form != TableForm::Join) return;
    const TokenIndex first = right.span.first;
    const TokenIndex last = right.span.last;
    if (isInBrackets(first, last)) return;
    if (!is(last + 1, K::On) && !is(last + 1, K::Using)) return;
    ++m_implied[first].bracketsBefore;
    ++m_implied[last].bracketsBehind;
}

/// SQL Server takes no limit without an order, so this one is written for none.
void RunTable::markImpliedOrder(const SqletSelect& select) {
    if (m_parser.dialect != dialectSQLServer) return;
    const TokenSpan limit = select.parts[static_cast<int>(Part::Limit)];
    const bool isDropped = select.orderBy.count == 0 && !limit.isEmpty() && limit.first >= 3 &&
                           is(limit.first - 3, K::Order) && m_parser.textOf(limit.first - 1) == "1";
    if (isDropped) mark(limit.first - 3, {Run::Kind::Redundant, limit.first - 1, {}});
    if (select.orderBy.count != 1) return;
    const TokenSpan item = select.orderBy.items[0]->span;
    const bool isFirstColumn = item.first == item.last && m_parser.textOf(item.first) == "1";
    const bool hasLimit = select.limit.count || select.limit.offset;
    if (!isFirstColumn || !hasLimit || is(item.last + 1, K::Desc)) return;
    const TokenIndex last = is(item.last + 1, K::Asc) ? item.last + 1 : item.last;
    mark(item.first - 2, {Run::Kind::Redundant, last, {}});
}

}  // namespace sqlet
