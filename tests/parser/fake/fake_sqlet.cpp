#include "fake_sqlet.h"

#include <type_traits>

namespace {

FakeSqlet* current = nullptr;

template <typename List>
auto itemAt(const List& list, int index) {
    return index < static_cast<int>(list.size()) ? list[static_cast<std::size_t>(index)] : nullptr;
}

}  // namespace

FakeSqlet::FakeSqlet() {
    current = this;
}
FakeSqlet::~FakeSqlet() {
    current = nullptr;
}

SqletParser* sqlet_create_in_schema(int, const char* text, const char*) {
    current->parsed.emplace_back(text);
    ++current->openHandles;
    const auto found = current->answers.find(text);
    auto* parser = new SqletParser;
    if (found == current->answers.end())
        parser->type = SQLET_STATEMENT_OTHER;
    else
        *parser = found->second;
    parser->select.start = text;
    return parser;
}
void sqlet_free(SqletParser* parser) {
    if (parser) --current->openHandles;
    delete parser;
}
int sqlet_number_of_error(SqletParser* p) {
    return p->errors;
}
const char* sqlet_last_error_msg(SqletParser* p) {
    return p->message;
}
int sqlet_is_multi_stmts(SqletParser* p) {
    return p->isMultiple;
}
int sqlet_last_stmt_type(SqletParser* p) {
    return p->type;
}
SqletSelect* sqlet_select(SqletParser* p) {
    current->calls += "select ";
    return &p->select;
}
void sqlet_select_by_parts(SqletParser*, SqletStretch*, SqletStretch*, SqletStretch*, SqletStretch*,
                           SqletStretch*, SqletStretch*, SqletStretch*, SqletStretch*) {
    current->calls += "parts ";
}
int sqlet_error_kind(SqletParser* p) {
    return p->kind;
}
SqletStretch sqlet_error_stretch(SqletParser* p) {
    return p->errors > 0 ? SqletStretch{3, 4} : SqletStretch{-1, 0};
}
SqletStretch sqlet_unwanted_stretch(SqletParser*) {
    return {5, 6};
}
const char* sqlet_position_text(SqletParser*, int) {
    return "line 1, column 3";
}
int sqlet_has_quoted_word(SqletParser*) {
    return 0;
}
int sqlet_first_difference(SqletParser* original, SqletParser*, const char*) {
    return original->firstDifference;
}

#define FAKE_FIELD(result, function, Node, member)                                      \
    result function(Node* node) {                                                       \
        return node ? node->member : std::remove_reference_t<decltype(node->member)>{}; \
    }
FAKE_FIELD(const char*, sqlet_select_start, SqletSelect, start)
FAKE_FIELD(int, sqlet_select_length, SqletSelect, length)
FAKE_FIELD(SqletTable*, sqlet_select_tab, SqletSelect, table)
FAKE_FIELD(int, sqlet_select_is_distinct, SqletSelect, isDistinct)
FAKE_FIELD(SqletExpr*, sqlet_select_where_expr, SqletSelect, where)
FAKE_FIELD(SqletExpr*, sqlet_select_having_expr, SqletSelect, having)
FAKE_FIELD(const char*, sqlet_select_limit_fetch_option, SqletSelect, fetchOption)
FAKE_FIELD(const char*, sqlet_select_limit_offset, SqletSelect, offset)
FAKE_FIELD(const char*, sqlet_select_limit_limit, SqletSelect, count)
FAKE_FIELD(int, sqlet_select_limit_is_fetch_percent, SqletSelect, isPercent)
FAKE_FIELD(const char*, sqlet_select_limit_return_option, SqletSelect, returnOption)
FAKE_FIELD(unsigned, sqlet_select_tab_inside_number_of_parens, SqletTable, parens)
FAKE_FIELD(SqletTable*, sqlet_select_tab_left, SqletTable, left)
FAKE_FIELD(SqletTable*, sqlet_select_tab_right, SqletTable, right)
FAKE_FIELD(const char*, sqlet_select_tab_join_op, SqletTable, op)
FAKE_FIELD(SqletExpr*, sqlet_select_tab_on_expr, SqletTable, on)
FAKE_FIELD(const char*, sqlet_select_tab_parent1, SqletTable, parents[0])
FAKE_FIELD(const char*, sqlet_select_tab_parent0, SqletTable, parents[1])
FAKE_FIELD(const char*, sqlet_select_tab_parent, SqletTable, parents[2])
FAKE_FIELD(const char*, sqlet_select_tab_name, SqletTable, name)
FAKE_FIELD(const char*, sqlet_select_tab_complex, SqletTable, complex)
FAKE_FIELD(const char*, sqlet_select_tab_alias, SqletTable, alias)
FAKE_FIELD(const char*, sqlet_select_column_name, SqletColumn, name)
FAKE_FIELD(const char*, sqlet_select_column_formatted_name, SqletColumn, formattedName)
FAKE_FIELD(const char*, sqlet_select_column_parent0, SqletColumn, parents[0])
FAKE_FIELD(const char*, sqlet_select_column_parent1, SqletColumn, parents[1])
FAKE_FIELD(const char*, sqlet_select_column_parent2, SqletColumn, parents[2])
FAKE_FIELD(const char*, sqlet_select_column_aggre_func, SqletColumn, aggregate)
FAKE_FIELD(const char*, sqlet_select_column_aggre_func_param, SqletColumn, parameter)
FAKE_FIELD(const char*, sqlet_select_column_complex, SqletColumn, complex)
FAKE_FIELD(const char*, sqlet_select_column_alias, SqletColumn, alias)
FAKE_FIELD(int, sqlet_select_column_is_desc, SqletColumn, isDescending)
FAKE_FIELD(SqletColumn*, sqlet_select_column_next, SqletColumn, next)
FAKE_FIELD(unsigned, sqlet_expr_inside_number_of_parens, SqletExpr, parens)
FAKE_FIELD(const char*, sqlet_expr_op, SqletExpr, op)
FAKE_FIELD(SqletExpr*, sqlet_expr_left, SqletExpr, left)
FAKE_FIELD(SqletExpr*, sqlet_expr_right, SqletExpr, right)
FAKE_FIELD(const char*, sqlet_expr_complex, SqletExpr, complex)
FAKE_FIELD(const char*, sqlet_expr_name, SqletExpr, name)
FAKE_FIELD(const char*, sqlet_expr_parent1, SqletExpr, parents[0])
FAKE_FIELD(const char*, sqlet_expr_parent2, SqletExpr, parents[1])
FAKE_FIELD(const char*, sqlet_expr_aggre_func, SqletExpr, aggregate)
FAKE_FIELD(SqletColumn*, sqlet_expr_list_item, SqletExpr, list)
FAKE_FIELD(int, sqlet_expr_is_negated, SqletExpr, negatedAt)
#undef FAKE_FIELD

#define FAKE_LIST(count, at, list)                    \
    int count(SqletSelect* select) {                  \
        return static_cast<int>(select->list.size()); \
    }                                                 \
    SqletColumn* at(SqletSelect* select, int index) { \
        return itemAt(select->list, index);           \
    }
FAKE_LIST(sqlet_select_number_of_columns, sqlet_select_column_at, columns)
FAKE_LIST(sqlet_select_group_by_number_of_columns, sqlet_select_group_by_column_at, groupBy)
FAKE_LIST(sqlet_select_order_by_number_of_columns, sqlet_select_order_by_column_at, orderBy)
#undef FAKE_LIST

int sqlet_expr_is_using(SqletExpr* expr) {
    return expr && !expr->usingItems.empty() ? 1 : 0;
}
int sqlet_expr_number_of_using_items(SqletExpr* expr) {
    return expr ? static_cast<int>(expr->usingItems.size()) : 0;
}
const char* sqlet_expr_using_item_at(SqletExpr* expr, int index) {
    return itemAt(expr->usingItems, index);
}
