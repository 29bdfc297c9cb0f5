// The accessors of the C interface: each reads the settled tree. Texts are made on first use.

#include <algorithm>
#include <string>
#include <string_view>

#include "platform/sqlet/name_chain.h"
#include "platform/sqlet/names.h"
#include "platform/sqlet/parser.h"
#include "platform/sqlet/sqlet.h"

using sqlet::ColumnForm;
using sqlet::ExprForm;
using sqlet::NameChain;
using sqlet::NodeTexts;
using sqlet::TableForm;
using sqlet::TokenIndex;

namespace {

/// The text that @p slot points at, which @p make makes when it is first asked for.
template <typename Node, typename Make>
const char* lazyText(Node* node, const char* NodeTexts::*slot, Make make) {
    const char*& text = sqlet::textsOf(*node, node->owner->arena).*slot;
    if (!text) text = node->owner->arena.copyText(make(*node->owner));
    return text;
}

template <typename Node>
const char* lazySpan(Node* node, const char* NodeTexts::*slot, sqlet::TokenSpan span) {
    return lazyText(node, slot, [span](const SqletParser& owner) { return owner.textOf(span); });
}

std::string decoded(const SqletParser& owner, TokenIndex token) {
    return sqlet::decodedName(owner.text, owner.tokens[token], owner.dialect);
}

template <typename Node>
const char* lazyName(Node* node, const char* NodeTexts::*slot, TokenIndex token) {
    return lazyText(node, slot,
                    [token](const SqletParser& owner) { return decoded(owner, token); });
}

template <typename Node>
const char* complexOf(Node* node) {
    return node ? lazySpan(node, &NodeTexts::complex, node->span) : nullptr;
}

template <typename Node>
const char* aliasOf(Node* node) {
    if (!node || node->alias == sqlet::noToken) return nullptr;
    return lazyName(node, &NodeTexts::alias, node->alias);
}

template <typename Node>
const char* nameOf(Node* node) {
    if (!node) return nullptr;
    const NameChain chain = sqlet::nameChainOf(*node);
    return chain.first == sqlet::noToken ? nullptr : lazyName(node, &NodeTexts::name, chain.last);
}

/// Qualifier @p index of the node's name, counted from the outermost.
template <typename Node>
const char* qualifierOf(Node* node, std::uint32_t index) {
    if (!node) return nullptr;
    const NameChain chain = sqlet::nameChainOf(*node);
    if (index >= chain.qualifierCount()) return nullptr;
    const char*& text = sqlet::textsOf(*node, node->owner->arena).parents[index];
    if (!text) text = node->owner->arena.copyText(decoded(*node->owner, chain.qualifier(index)));
    return text;
}

/// Qualifier of a table, counted from the innermost.
const char* tableQualifier(SqletTable* table, std::uint32_t fromInnermost) {
    const std::uint32_t count = table ? sqlet::nameChainOf(*table).qualifierCount() : 0;
    return fromInnermost < count ? qualifierOf(table, count - 1 - fromInnermost) : nullptr;
}

int countOf(const sqlet::ColumnArray& array) {
    return static_cast<int>(array.count);
}

SqletColumn* itemAt(const sqlet::ColumnArray& array, int index) {
    return index >= 0 && index < countOf(array) ? array.items[index] : nullptr;
}

std::string upperCase(std::string_view word) {
    std::string upper(word);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return upper;
}

/// The last token of the piece that is copied as it stands from @p token on: a bracket goes to its
/// partner.
TokenIndex pieceEnd(const SqletParser& owner, TokenIndex token, TokenIndex last) {
    const TokenIndex partner = owner.tokens.partner[token];
    return partner != sqlet::noToken && partner > token && partner <= last ? partner : token;
}

/// The words of an operator in upper case with single blanks; what is in quotes or brackets as
/// written.
std::string operatorWords(const SqletParser& owner, sqlet::TokenSpan span) {
    std::string text;
    for (TokenIndex i = span.first; i <= span.last; ++i) {
        if (!text.empty()) text += ' ';
        const TokenIndex end = pieceEnd(owner, i, span.last);
        const bool isWord = owner.tokens[i].kind == sqlet::TokenKind::Word;
        text += isWord ? upperCase(owner.textOf(i)) : std::string(owner.textOf({i, end}));
        i = end;
    }
    return text;
}

sqlet::TokenSpan statementSpan(const SqletSelect& select) {
    return select.parts[static_cast<int>(sqlet::Part::Statement)];
}

}  // namespace

// ---- the statement ---------------------------------------------------------------------------

const char* sqlet_select_start(SqletSelect* select) {
    if (!select) return nullptr;
    const TokenIndex first = statementSpan(*select).first;
    return select->owner->original + select->owner->tokens[first].offset;
}

int sqlet_select_length(SqletSelect* select) {
    if (!select) return 0;
    return static_cast<int>(select->owner->textOf(statementSpan(*select)).size());
}

SqletTable* sqlet_select_tab(SqletSelect* select) {
    return select ? select->from : nullptr;
}

int sqlet_select_is_distinct(SqletSelect* select) {
    return select && select->isDistinct;
}

int sqlet_select_number_of_columns(SqletSelect* select) {
    return select ? countOf(select->columns) : 0;
}

SqletColumn* sqlet_select_column_at(SqletSelect* select, int index) {
    return select ? itemAt(select->columns, index) : nullptr;
}

SqletExpr* sqlet_select_where_expr(SqletSelect* select) {
    return select ? select->where : nullptr;
}

SqletExpr* sqlet_select_having_expr(SqletSelect* select) {
    return select ? select->having : nullptr;
}

int sqlet_select_group_by_number_of_columns(SqletSelect* select) {
    return select ? countOf(select->groupBy) : 0;
}

SqletColumn* sqlet_select_group_by_column_at(SqletSelect* select, int index) {
    return select ? itemAt(select->groupBy, index) : nullptr;
}

int sqlet_select_order_by_number_of_columns(SqletSelect* select) {
    return select ? countOf(select->orderBy) : 0;
}

SqletColumn* sqlet_select_order_by_column_at(SqletSelect* select, int index) {
    return select ? itemAt(select->orderBy, index) : nullptr;
}

const char* sqlet_select_limit_fetch_option(SqletSelect* select) {
    return select ? select->limit.fetchOption : nullptr;
}

const char* sqlet_select_limit_offset(SqletSelect* select) {
    return select ? select->limit.offset : nullptr;
}

const char* sqlet_select_limit_limit(SqletSelect* select) {
    return select ? select->limit.count : nullptr;
}

int sqlet_select_limit_is_fetch_percent(SqletSelect* select) {
    return select && select->limit.isPercent;
}

const char* sqlet_select_limit_return_option(SqletSelect* select) {
    return select ? select->limit.returnOption : nullptr;
}

// ---- sources ---------------------------------------------------------------------------------

unsigned sqlet_select_tab_inside_number_of_parens(SqletTable* table) {
    return table ? table->parens : 0;
}

SqletTable* sqlet_select_tab_left(SqletTable* table) {
    return table ? table->left : nullptr;
}

SqletTable* sqlet_select_tab_right(SqletTable* table) {
    return table ? table->right : nullptr;
}

const char* sqlet_select_tab_join_op(SqletTable* table) {
    if (!table || table->form != TableForm::Join) return nullptr;
    if (table->joinOperator) return table->joinOperator;
    if (table->operatorSpan.isEmpty()) return nullptr;
    return lazyText(table, &NodeTexts::joinOperator, [table](const SqletParser& owner) {
        return operatorWords(owner, table->operatorSpan);
    });
}

SqletExpr* sqlet_select_tab_on_expr(SqletTable* table) {
    return table ? table->on : nullptr;
}

const char* sqlet_select_tab_parent1(SqletTable* table) {
    return tableQualifier(table, 2);
}

const char* sqlet_select_tab_parent0(SqletTable* table) {
    return tableQualifier(table, 1);
}

const char* sqlet_select_tab_parent(SqletTable* table) {
    return tableQualifier(table, 0);
}

const char* sqlet_select_tab_name(SqletTable* table) {
    return nameOf(table);
}

const char* sqlet_select_tab_complex(SqletTable* table) {
    return complexOf(table);
}

const char* sqlet_select_tab_alias(SqletTable* table) {
    return aliasOf(table);
}

// ---- columns ---------------------------------------------------------------------------------

const char* sqlet_select_column_name(SqletColumn* column) {
    return nameOf(column);
}

const char* sqlet_select_column_formatted_name(SqletColumn* column) {
    if (!column) return nullptr;
    const NameChain chain = sqlet::nameChainOf(*column);
    if (chain.first == sqlet::noToken) return nullptr;
    return lazySpan(column, &NodeTexts::formattedName, {chain.last, chain.last});
}

const char* sqlet_select_column_parent0(SqletColumn* column) {
    return qualifierOf(column, 0);
}

const char* sqlet_select_column_parent1(SqletColumn* column) {
    return qualifierOf(column, 1);
}

const char* sqlet_select_column_parent2(SqletColumn* column) {
    return qualifierOf(column, 2);
}

static bool isAggregate(const SqletColumn* column) {
    return column &&
           (column->form == ColumnForm::AggregateName || column->form == ColumnForm::AggregateStar);
}

const char* sqlet_select_column_aggre_func(SqletColumn* column) {
    if (!isAggregate(column)) return nullptr;
    return lazyName(column, &NodeTexts::aggregate, column->span.first);
}

const char* sqlet_select_column_aggre_func_param(SqletColumn* column) {
    if (!isAggregate(column)) return nullptr;
    const NameChain argument = sqlet::chainInCall(column->span);
    return lazySpan(column, &NodeTexts::aggregateParameter, {argument.first, argument.last});
}

const char* sqlet_select_column_complex(SqletColumn* column) {
    return complexOf(column);
}

const char* sqlet_select_column_alias(SqletColumn* column) {
    return aliasOf(column);
}

int sqlet_select_column_is_desc(SqletColumn* column) {
    return column ? static_cast<int>(column->direction) : 0;
}

SqletColumn* sqlet_select_column_next(SqletColumn* column) {
    return column ? column->next : nullptr;
}

// ---- conditions ------------------------------------------------------------------------------

unsigned sqlet_expr_inside_number_of_parens(SqletExpr* expr) {
    return expr ? expr->parens : 0;
}

const char* sqlet_expr_op(SqletExpr* expr) {
    return expr ? expr->op : nullptr;
}

SqletExpr* sqlet_expr_left(SqletExpr* expr) {
    return expr ? expr->left : nullptr;
}

SqletExpr* sqlet_expr_right(SqletExpr* expr) {
    return expr ? expr->right : nullptr;
}

const char* sqlet_expr_complex(SqletExpr* expr) {
    return complexOf(expr);
}

const char* sqlet_expr_name(SqletExpr* expr) {
    return nameOf(expr);
}

const char* sqlet_expr_parent1(SqletExpr* expr) {
    return qualifierOf(expr, 0);
}

const char* sqlet_expr_parent2(SqletExpr* expr) {
    return qualifierOf(expr, 1);
}

const char* sqlet_expr_aggre_func(SqletExpr* expr) {
    if (!expr || expr->form != ExprForm::AggregateName) return nullptr;
    return lazyName(expr, &NodeTexts::aggregate, expr->span.first);
}

SqletColumn* sqlet_expr_list_item(SqletExpr* expr) {
    return expr && expr->form == ExprForm::List ? itemAt(expr->items, 0) : nullptr;
}

int sqlet_expr_is_using(SqletExpr* expr) {
    return expr && expr->form == ExprForm::Using;
}

int sqlet_expr_number_of_using_items(SqletExpr* expr) {
    return sqlet_expr_is_using(expr) ? countOf(expr->items) : 0;
}

const char* sqlet_expr_using_item_at(SqletExpr* expr, int index) {
    SqletColumn* item = sqlet_expr_is_using(expr) ? itemAt(expr->items, index) : nullptr;
    return complexOf(item);
}

int sqlet_expr_is_negated(SqletExpr* expr) {
    return expr ? static_cast<int>(expr->negatedAt) : 0;
}
