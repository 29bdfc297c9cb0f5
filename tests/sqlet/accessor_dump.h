#pragma once

#include <climits>
#include <string>
#include <vector>

#include "platform/sqlet/sqlet.h"

/// Everything that the C interface tells about a parsed text, as text: one line a node, children
/// indented by one blank. An attribute that is null or 0 is left out. No addresses, so that two
/// dumps compare.
///
/// Every accessor is called for every node, for null and with indexes out of range; an answer that
/// it must not give is a line that begins with "BROKEN".
namespace sqlet_test {

class AccessorDump {
public:
    static std::string of(SqletParser* parser) {
        AccessorDump dump;
        dump.addNull();
        dump.addParser(parser);
        return dump.m_out;
    }

private:
    // ---- lines
    void line(const std::string& what) { m_out += std::string(m_indent, ' ') + what + "\n"; }
    void expect(bool holds, const char* what) {
        if (!holds) m_out += std::string("BROKEN ") + what + "\n";
    }
    static std::string text(const char* key, const char* value) {
        return value ? std::string(" ") + key + "=" + value : std::string();
    }
    static std::string number(const char* key, long value) {
        return value == 0 ? std::string() : std::string(" ") + key + "=" + std::to_string(value);
    }
    /// Always there; in angle brackets since a text may hold any quote.
    std::string complex(const char* value) {
        expect(value != nullptr, "complex is null");
        return std::string(" <") + (value ? value : "") + ">";
    }

    template <typename List, typename At>
    void list(const char* title, int count, List* owner, At at) {
        expect(at(owner, -1) == nullptr, "item -1");
        expect(at(owner, count) == nullptr, "item behind the last");
        expect(at(owner, INT_MAX) == nullptr && at(owner, INT_MIN) == nullptr, "item far out");
        if (count == 0) return;
        line(title);
        ++m_indent;
        for (int i = 0; i < count; ++i)
            addColumn(at(owner, i), false);
        --m_indent;
    }

    // ---- nodes
    void addNull();
    void addParser(SqletParser* parser);
    void addParts(SqletParser* parser);
    void addSelect(SqletSelect* select);
    void addLimit(SqletSelect* select);
    void addTable(SqletTable* root);
    void addTableNode(SqletTable* table);
    void addColumn(SqletColumn* column, bool isListItem);
    void addExpr(const char* title, SqletExpr* root);
    void addExprNode(SqletExpr* expr, bool isInsideChain);
    void addUsing(SqletExpr* expr);

    std::string m_out;
    std::size_t m_indent = 0;
};

inline void AccessorDump::addNull() {
    const bool noStatement =
        sqlet_number_of_error(nullptr) == 0 && sqlet_is_multi_stmts(nullptr) == 0 &&
        sqlet_last_stmt_type(nullptr) == 0 && !sqlet_select(nullptr) &&
        sqlet_error_kind(nullptr) == 0 && sqlet_error_stretch(nullptr).start <= 0 &&
        sqlet_unwanted_stretch(nullptr).start < 0;
    sqlet_last_error_msg(nullptr);
    sqlet_position_text(nullptr, 0);
    sqlet_select_by_parts(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                          nullptr);
    sqlet_free(nullptr);
    expect(noStatement, "null parser");
    const bool noSelect =
        !sqlet_select_start(nullptr) && sqlet_select_length(nullptr) == 0 &&
        !sqlet_select_tab(nullptr) && sqlet_select_is_distinct(nullptr) == 0 &&
        sqlet_select_number_of_columns(nullptr) == 0 && !sqlet_select_column_at(nullptr, 0) &&
        !sqlet_select_where_expr(nullptr) && !sqlet_select_having_expr(nullptr) &&
        sqlet_select_group_by_number_of_columns(nullptr) == 0 &&
        !sqlet_select_group_by_column_at(nullptr, 0) &&
        sqlet_select_order_by_number_of_columns(nullptr) == 0 &&
        !sqlet_select_order_by_column_at(nullptr, 0) && !sqlet_select_limit_fetch_option(nullptr) &&
        !sqlet_select_limit_offset(nullptr) && !sqlet_select_limit_limit(nullptr) &&
        sqlet_select_limit_is_fetch_percent(nullptr) == 0 &&
        !sqlet_select_limit_return_option(nullptr);
    expect(noSelect, "null select");
    const bool noTable = sqlet_select_tab_inside_number_of_parens(nullptr) == 0 &&
                         !sqlet_select_tab_left(nullptr) && !sqlet_select_tab_right(nullptr) &&
                         !sqlet_select_tab_join_op(nullptr) && !sqlet_select_tab_on_expr(nullptr) &&
                         !sqlet_select_tab_parent1(nullptr) && !sqlet_select_tab_parent0(nullptr) &&
                         !sqlet_select_tab_parent(nullptr) && !sqlet_select_tab_name(nullptr) &&
                         !sqlet_select_tab_complex(nullptr) && !sqlet_select_tab_alias(nullptr);
    expect(noTable, "null table");
    const bool noColumn =
        !sqlet_select_column_name(nullptr) && !sqlet_select_column_formatted_name(nullptr) &&
        !sqlet_select_column_parent0(nullptr) && !sqlet_select_column_parent1(nullptr) &&
        !sqlet_select_column_parent2(nullptr) && !sqlet_select_column_aggre_func(nullptr) &&
        !sqlet_select_column_aggre_func_param(nullptr) && !sqlet_select_column_complex(nullptr) &&
        !sqlet_select_column_alias(nullptr) && sqlet_select_column_is_desc(nullptr) == 0 &&
        !sqlet_select_column_next(nullptr);
    expect(noColumn, "null column");
    const bool noExpr =
        sqlet_expr_inside_number_of_parens(nullptr) == 0 && !sqlet_expr_op(nullptr) &&
        !sqlet_expr_left(nullptr) && !sqlet_expr_right(nullptr) && !sqlet_expr_complex(nullptr) &&
        !sqlet_expr_name(nullptr) && !sqlet_expr_parent1(nullptr) && !sqlet_expr_parent2(nullptr) &&
        !sqlet_expr_aggre_func(nullptr) && !sqlet_expr_list_item(nullptr) &&
        sqlet_expr_is_using(nullptr) == 0 && sqlet_expr_number_of_using_items(nullptr) == 0 &&
        !sqlet_expr_using_item_at(nullptr, 0) && sqlet_expr_is_negated(nullptr) == 0;
    expect(noExpr, "null condition");
}

inline void AccessorDump::addParser(SqletParser* parser) {
    expect(parser != nullptr, "no parser");
    const int errors = sqlet_number_of_error(parser);
    const int kind = sqlet_last_stmt_type(parser);
    const SqletStretch stretch = sqlet_error_stretch(parser);
    const char* message = sqlet_last_error_msg(parser);
    expect(message != nullptr, "message is null");
    expect((errors > 0) == (message && *message != '\0'), "error without a message");
    expect((errors > 0) == (sqlet_error_kind(parser) != SQLET_ERROR_NONE), "error of no kind");
    expect((errors > 0) == (stretch.start >= 0), "error without a place");
    if (stretch.start >= 0) expect(sqlet_position_text(parser, stretch.start), "place is null");
    sqlet_position_text(parser, -1);
    sqlet_position_text(parser, INT_MAX);

    if (sqlet_is_multi_stmts(parser)) line("several statements");
    if (errors > 0)
        line("error " + std::to_string(sqlet_error_kind(parser)) + " [" +
             std::to_string(stretch.start) + "+" + std::to_string(stretch.length) +
             "]: " + (message ? message : ""));
    addParts(parser);
    SqletSelect* select = sqlet_select(parser);
    expect((select != nullptr) == (kind == SQLET_STATEMENT_SELECT), "kind and select disagree");
    expect(kind != SQLET_STATEMENT_SELECT || errors == 0, "a statement with errors");
    if (!select) return line("no SELECT, kind " + std::to_string(kind));
    addSelect(select);
}

inline void AccessorDump::addParts(SqletParser* parser) {
    static const char* const names[] = {"columns", "from",  "where", "group",
                                        "having",  "order", "limit", "statement"};
    SqletStretch parts[8];
    sqlet_select_by_parts(parser, &parts[0], &parts[1], &parts[2], &parts[3], &parts[4], &parts[5],
                          &parts[6], &parts[7]);
    std::string all;
    for (int i = 0; i < 8; ++i) {
        expect(parts[i].start >= -1 && parts[i].length >= 0, "part out of the text");
        if (parts[i].start >= 0)
            all += std::string(" ") + names[i] + "[" + std::to_string(parts[i].start) + "+" +
                   std::to_string(parts[i].length) + "]";
    }
    if (!all.empty()) line("parts" + all);
}

inline void AccessorDump::addSelect(SqletSelect* select) {
    expect(sqlet_select_start(select) != nullptr, "no start");
    expect(sqlet_select_length(select) > 0, "no length");
    line(sqlet_select_is_distinct(select) ? "select distinct" : "select");
    list("columns", sqlet_select_number_of_columns(select), select, sqlet_select_column_at);
    addTable(sqlet_select_tab(select));
    addExpr("where", sqlet_select_where_expr(select));
    list("group by", sqlet_select_group_by_number_of_columns(select), select,
         sqlet_select_group_by_column_at);
    addExpr("having", sqlet_select_having_expr(select));
    list("order by", sqlet_select_order_by_number_of_columns(select), select,
         sqlet_select_order_by_column_at);
    addLimit(select);
}

inline void AccessorDump::addLimit(SqletSelect* select) {
    const std::string limit = text("count", sqlet_select_limit_limit(select)) +
                              text("offset", sqlet_select_limit_offset(select)) +
                              text("fetch", sqlet_select_limit_fetch_option(select)) +
                              number("percent", sqlet_select_limit_is_fetch_percent(select)) +
                              text("option", sqlet_select_limit_return_option(select));
    if (!limit.empty()) line("limit" + limit);
}

// ---- sources -----------------------------------------------------------------------------------

/// In text order: a join stands between its sides. Sides that are joins themselves are not
/// indented, so that a long FROM has short lines; their brackets tell how they nest.
inline void AccessorDump::addTable(SqletTable* root) {
    if (!root) return;
    line("from");
    struct Visit {
        SqletTable* table;
        bool isLeftDone;
    };
    std::vector<Visit> waiting = {{root, false}};
    ++m_indent;
    while (!waiting.empty()) {
        const Visit visit = waiting.back();
        waiting.pop_back();
        SqletTable* left = sqlet_select_tab_left(visit.table);
        if (visit.isLeftDone || !left) {
            addTableNode(visit.table);
            continue;
        }
        if (SqletTable* right = sqlet_select_tab_right(visit.table))
            waiting.push_back({right, false});
        waiting.push_back({visit.table, true});
        waiting.push_back({left, false});
    }
    --m_indent;
}

inline void AccessorDump::addTableNode(SqletTable* table) {
    const char* op = sqlet_select_tab_join_op(table);
    const bool isJoin = sqlet_select_tab_left(table) != nullptr;
    const char* name = sqlet_select_tab_name(table);
    // The text of a join is asked for, but left out: it is that of its parts.
    const std::string source = complex(sqlet_select_tab_complex(table));
    line((isJoin ? std::string("join ") + (op ? op : "wraps its left side")
                 : (name ? "table" : "source") + source) +
         text("parent1", sqlet_select_tab_parent1(table)) +
         text("parent0", sqlet_select_tab_parent0(table)) +
         text("parent", sqlet_select_tab_parent(table)) + text("name", name) +
         text("alias", sqlet_select_tab_alias(table)) +
         number("parens", sqlet_select_tab_inside_number_of_parens(table)));
    ++m_indent;
    addExpr("on", sqlet_select_tab_on_expr(table));
    --m_indent;
}

// ---- columns -----------------------------------------------------------------------------------

inline void AccessorDump::addColumn(SqletColumn* column, bool isListItem) {
    const char* name = sqlet_select_column_name(column);
    const char* formatted = sqlet_select_column_formatted_name(column);
    expect(isListItem || !sqlet_select_column_next(column), "next of no list item");
    expect(!name || formatted, "name without the name as written");
    line("column" + complex(sqlet_select_column_complex(column)) +
         text("parent0", sqlet_select_column_parent0(column)) +
         text("parent1", sqlet_select_column_parent1(column)) +
         text("parent2", sqlet_select_column_parent2(column)) + text("name", name) +
         (name && formatted && std::string(name) != formatted ? text("written", formatted) : "") +
         text("aggregate", sqlet_select_column_aggre_func(column)) +
         text("of", sqlet_select_column_aggre_func_param(column)) +
         text("alias", sqlet_select_column_alias(column)) +
         number("desc", sqlet_select_column_is_desc(column)));
}

// ---- conditions --------------------------------------------------------------------------------

/// A chain in text order, one link a line, whatever its length.
inline void AccessorDump::addExpr(const char* title, SqletExpr* root) {
    if (!root) return;
    line(title);
    struct Visit {
        SqletExpr* expr;
        std::size_t indent;
        bool isLeftDone;
        bool isInsideChain;
    };
    std::vector<Visit> waiting = {{root, m_indent + 1, false, false}};
    const std::size_t indent = m_indent;
    while (!waiting.empty()) {
        const Visit visit = waiting.back();
        waiting.pop_back();
        m_indent = visit.indent;
        const char* op = sqlet_expr_op(visit.expr);
        const bool isChain = op && (std::string(op) == "AND" || std::string(op) == "OR");
        SqletExpr* left = sqlet_expr_left(visit.expr);
        SqletExpr* right = sqlet_expr_right(visit.expr);
        expect((op != nullptr) == (left != nullptr), "operator without operand");
        if (isChain && !visit.isLeftDone) {
            expect(right != nullptr, "gate without a right side");
            waiting.push_back({right, visit.indent, false, true});
            waiting.push_back({visit.expr, visit.indent, true, visit.isInsideChain});
            waiting.push_back({left, visit.indent, false, true});
            continue;
        }
        addExprNode(visit.expr, visit.isInsideChain);
        if (isChain) continue;
        if (right) waiting.push_back({right, visit.indent + 1, false, false});
        if (left) waiting.push_back({left, visit.indent + 1, false, false});
    }
    m_indent = indent;
}

inline void AccessorDump::addExprNode(SqletExpr* expr, bool isInsideChain) {
    const char* op = sqlet_expr_op(expr);
    const bool isLeaf = !sqlet_expr_left(expr);
    // The text of an inner link of a chain is long and overlaps that of the others.
    const bool isChain = op && (std::string(op) == "AND" || std::string(op) == "OR");
    const std::string whole =
        isChain && isInsideChain ? std::string() : complex(sqlet_expr_complex(expr));
    SqletColumn* item = sqlet_expr_list_item(expr);
    const std::string kind = item ? "list" : sqlet_expr_is_using(expr) ? "using" : "value";
    line((isLeaf ? kind + whole : std::string(op ? op : "")) +
         text("parent1", sqlet_expr_parent1(expr)) + text("parent2", sqlet_expr_parent2(expr)) +
         text("name", sqlet_expr_name(expr)) + text("aggregate", sqlet_expr_aggre_func(expr)) +
         number("parens", sqlet_expr_inside_number_of_parens(expr)) +
         number("negated", sqlet_expr_is_negated(expr)));
    ++m_indent;
    for (; item; item = sqlet_select_column_next(item))
        addColumn(item, true);
    addUsing(expr);
    --m_indent;
}

inline void AccessorDump::addUsing(SqletExpr* expr) {
    const int count = sqlet_expr_number_of_using_items(expr);
    expect(!sqlet_expr_using_item_at(expr, -1) && !sqlet_expr_using_item_at(expr, count) &&
               !sqlet_expr_using_item_at(expr, INT_MAX),
           "USING item out of range");
    for (int i = 0; i < count; ++i) {
        const char* item = sqlet_expr_using_item_at(expr, i);
        expect(item != nullptr, "USING item is null");
        line(std::string("item ") + (item ? item : ""));
    }
}

/// The dump of @p parser, which may hold a text that was refused. Linear in the text.
inline std::string dumpAccessors(SqletParser* parser) {
    return AccessorDump::of(parser);
}

}  // namespace sqlet_test
