#pragma once

#include <climits>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "parser/parser_handle.h"
#include "platform/sqlet/names.h"
#include "platform/sqlet/sqlet.h"

/// Everything that the C interface tells about a parsed text, as text: one line a node, children
/// indented by one blank. An attribute that is null or 0 is left out. No addresses, so that two
/// dumps compare.
///
/// Every accessor is called for every node, for null and with indexes out of range, and every
/// answer is held against what sqlet.h promises. Walks in loops: the trees may be a hundred
/// thousand deep.
namespace sqlet_test {

class AccessorDump {
public:
    /// @p text is what was parsed and must outlive the object; no NUL inside.
    AccessorDump(SqletParser* parser, const std::string& text) : m_text(text) {
        addNull();
        addParser(parser);
    }

    const std::string& dump() const { return m_out; }
    /// The first promise that is broken, or "".
    const std::string& fault() const { return m_fault; }

private:
    // ---- lines and promises
    void line(const std::string& what) { m_out += std::string(m_indent, ' ') + what + "\n"; }
    void expect(bool holds, const char* promise) {
        if (!holds && m_fault.empty()) m_fault = promise;
    }
    static std::string number(const char* key, long value) {
        return value == 0 ? std::string() : std::string(" ") + key + "=" + std::to_string(value);
    }
    static std::string text(const char* key, const char* value) {
        return value ? std::string(" ") + key + "=" + value : std::string();
    }
    /// A name or a word: not empty.
    std::string name(const char* key, const char* value) {
        expect(!value || *value, "a name is null or not empty");
        return text(key, value);
    }
    /// Decimal digits.
    std::string decimal(const char* key, const char* value) {
        expect(!value || (*value && std::strspn(value, "0123456789") == std::strlen(value)),
               "a limit is a decimal number");
        return text(key, value);
    }
    /// In angle brackets since a text may hold any quote.
    std::string shown(const char* value) {
        expect(value && *value, "a text is not empty");
        return std::string(" <") + (value ? value : "") + ">";
    }
    /// A stretch of the text. Looked for near the beginning only: a search from there for each
    /// would be quadratic.
    std::string written(const char* value) {
        constexpr std::size_t maxSearched = 50'000'000;
        m_searched += m_text.size();
        expect(m_searched > maxSearched || !value || m_text.find(value) != std::string::npos,
               "a text is as written");
        return shown(value);
    }
    bool isInText(SqletStretch stretch) const {
        return stretch.start >= 0 && stretch.length >= 0 &&
               static_cast<std::size_t>(stretch.start) + static_cast<std::size_t>(stretch.length) <=
                   m_text.size();
    }
    static bool isChain(const char* op) {
        return op && (std::strcmp(op, "AND") == 0 || std::strcmp(op, "OR") == 0);
    }

    template <typename At>
    void list(const char* title, int count, SqletSelect* select, At at) {
        expect(
            !at(select, -1) && !at(select, count) && !at(select, INT_MAX) && !at(select, INT_MIN),
            "an index out of range gives null");
        if (count == 0) return;
        line(title);
        ++m_indent;
        for (int i = 0; i < count; ++i)
            addColumn(at(select, i), false);
        --m_indent;
    }

    // ---- nodes
    void addNull();
    void addParser(SqletParser* parser);
    void checkError(SqletParser* parser);
    void addParts(SqletParser* parser, SqletSelect* select);
    void addSelect(SqletSelect* select);
    void addTable(SqletTable* root);
    void addTableNode(SqletTable* table);
    void addColumn(SqletColumn* column, bool isListItem);
    void addExpr(const char* title, SqletExpr* root);
    void addExprNode(SqletExpr* expr, bool isInsideChain);
    void addUsing(SqletExpr* expr);

    static constexpr unsigned nestingLimit = 200;

    const std::string& m_text;
    std::string m_out;
    std::string m_fault;
    std::size_t m_indent = 0;
    std::size_t m_searched = 0;
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
    const bool noTable = sqlet_select_tab_inside_number_of_parens(nullptr) == 0 &&
                         !sqlet_select_tab_left(nullptr) && !sqlet_select_tab_right(nullptr) &&
                         !sqlet_select_tab_join_op(nullptr) && !sqlet_select_tab_on_expr(nullptr) &&
                         !sqlet_select_tab_parent1(nullptr) && !sqlet_select_tab_parent0(nullptr) &&
                         !sqlet_select_tab_parent(nullptr) && !sqlet_select_tab_name(nullptr) &&
                         !sqlet_select_tab_complex(nullptr) && !sqlet_select_tab_alias(nullptr);
    const bool noColumn =
        !sqlet_select_column_name(nullptr) && !sqlet_select_column_formatted_name(nullptr) &&
        !sqlet_select_column_parent0(nullptr) && !sqlet_select_column_parent1(nullptr) &&
        !sqlet_select_column_parent2(nullptr) && !sqlet_select_column_aggre_func(nullptr) &&
        !sqlet_select_column_aggre_func_param(nullptr) && !sqlet_select_column_complex(nullptr) &&
        !sqlet_select_column_alias(nullptr) && sqlet_select_column_is_desc(nullptr) == 0 &&
        !sqlet_select_column_next(nullptr);
    const bool noExpr =
        sqlet_expr_inside_number_of_parens(nullptr) == 0 && !sqlet_expr_op(nullptr) &&
        !sqlet_expr_left(nullptr) && !sqlet_expr_right(nullptr) && !sqlet_expr_complex(nullptr) &&
        !sqlet_expr_name(nullptr) && !sqlet_expr_parent1(nullptr) && !sqlet_expr_parent2(nullptr) &&
        !sqlet_expr_aggre_func(nullptr) && !sqlet_expr_list_item(nullptr) &&
        sqlet_expr_is_using(nullptr) == 0 && sqlet_expr_number_of_using_items(nullptr) == 0 &&
        !sqlet_expr_using_item_at(nullptr, 0) && sqlet_expr_is_negated(nullptr) == 0;
    expect(noStatement && noSelect && noTable && noColumn && noExpr, "null gives nothing");
}

inline void AccessorDump::addParser(SqletParser* parser) {
    const int errors = sqlet_number_of_error(parser);
    const int kind = sqlet_last_stmt_type(parser);
    const int size = static_cast<int>(m_text.size());
    expect(errors == 0 || errors == 1, "number_of_error is 0 or 1");
    expect((errors > 0) == (sqlet_error_kind(parser) != SQLET_ERROR_NONE), "an error has a kind");
    expect((errors > 0) == (sqlet_error_stretch(parser).start >= 0), "an error has a place");
    for (const int offset : {0, size / 2, size}) {
        const char* position = sqlet_position_text(parser, offset);
        expect(position && std::strncmp(position, "line ", 5) == 0, "every byte has a position");
    }
    sqlet_position_text(parser, -1);
    sqlet_position_text(parser, INT_MAX);
    const char* message = sqlet_last_error_msg(parser);
    expect(message && (errors > 0) == (*message != '\0'), "an error has a message");

    if (sqlet_is_multi_stmts(parser)) line("several statements");
    if (errors > 0 && message) checkError(parser);
    SqletSelect* select = sqlet_select(parser);
    addParts(parser, select);
    expect((select != nullptr) == (kind == SQLET_STATEMENT_SELECT), "a SELECT has its accessors");
    expect(kind != SQLET_STATEMENT_SELECT || errors == 0, "a statement has no errors");
    if (!select) return line("no SELECT, kind " + std::to_string(kind));
    addSelect(select);
}

inline void AccessorDump::checkError(SqletParser* parser) {
    const std::string message = sqlet_last_error_msg(parser);
    const SqletStretch place = sqlet_error_stretch(parser);
    const std::string position = sqlet_position_text(parser, place.start);
    const bool isAtEnd = place.start == static_cast<int>(m_text.size());
    expect(isInText(place), "the error lies in the text");
    expect(place.length > 0 || isAtEnd, "the error has a length unless the text ends there");
    expect(message.rfind(position + ": ", 0) == 0,
           "the message begins with the place of the error");
    expect(message.size() < 500, "a message is short");
    expect(!sqlet::isValidUtf8(m_text) || sqlet::isValidUtf8(message),
           "a message cuts no character");
    line("error " + std::to_string(sqlet_error_kind(parser)) + " [" + std::to_string(place.start) +
         "+" + std::to_string(place.length) + "]: " + message);
}

inline void AccessorDump::addParts(SqletParser* parser, SqletSelect* select) {
    static const char* const names[] = {"columns", "from",  "where", "group",
                                        "having",  "order", "limit", "statement"};
    SqletStretch parts[8];
    sqlet_select_by_parts(parser, &parts[0], &parts[1], &parts[2], &parts[3], &parts[4], &parts[5],
                          &parts[6], &parts[7]);
    const SqletStretch& whole = parts[7];
    std::string all;
    for (int i = 0; i < 8; ++i) {
        const SqletStretch& part = parts[i];
        if (part.start == -1) continue;
        expect(isInText(part), "a part lies in the text");
        expect(!select || (part.start >= whole.start &&
                           part.start + part.length <= whole.start + whole.length),
               "a part lies in the statement");
        all += std::string(" ") + names[i] + "[" + std::to_string(part.start) + "+" +
               std::to_string(part.length) + "]";
    }
    if (!all.empty()) line("parts" + all);
    if (!select) return;
    const std::string_view statement = {sqlet_select_start(select),
                                        static_cast<std::size_t>(sqlet_select_length(select))};
    expect(isInText(whole) && whole.length > 0 &&
               statement == std::string_view(m_text).substr(static_cast<std::size_t>(whole.start),
                                                            static_cast<std::size_t>(whole.length)),
           "the statement lies in the text");
}

inline void AccessorDump::addSelect(SqletSelect* select) {
    line(sqlet_select_is_distinct(select) ? "select distinct" : "select");
    expect(sqlet_select_number_of_columns(select) > 0, "a SELECT has columns");
    list("columns", sqlet_select_number_of_columns(select), select, sqlet_select_column_at);
    addTable(sqlet_select_tab(select));
    addExpr("where", sqlet_select_where_expr(select));
    list("group by", sqlet_select_group_by_number_of_columns(select), select,
         sqlet_select_group_by_column_at);
    addExpr("having", sqlet_select_having_expr(select));
    list("order by", sqlet_select_order_by_number_of_columns(select), select,
         sqlet_select_order_by_column_at);
    const std::string limit = decimal("count", sqlet_select_limit_limit(select)) +
                              decimal("offset", sqlet_select_limit_offset(select)) +
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
        unsigned outside;
        bool isLeftDone;
    };
    std::vector<Visit> waiting = {{root, 0, false}};
    ++m_indent;
    while (!waiting.empty()) {
        const auto [table, outside, isLeftDone] = waiting.back();
        waiting.pop_back();
        const unsigned parens = sqlet_select_tab_inside_number_of_parens(table);
        expect(parens >= outside && parens <= nestingLimit, "brackets of sources are counted");
        SqletTable* left = sqlet_select_tab_left(table);
        if (isLeftDone || !left) {
            addTableNode(table);
            continue;
        }
        if (SqletTable* right = sqlet_select_tab_right(table))
            waiting.push_back({right, parens, false});
        waiting.push_back({table, outside, true});
        waiting.push_back({left, parens, false});
    }
    --m_indent;
}

inline void AccessorDump::addTableNode(SqletTable* table) {
    const char* op = sqlet_select_tab_join_op(table);
    const bool isJoin = sqlet_select_tab_left(table) != nullptr;
    const char* tableName = sqlet_select_tab_name(table);
    // The text of a join is asked for, but left out: it is that of its parts.
    const char* complex = sqlet_select_tab_complex(table);
    expect(!op == !sqlet_select_tab_right(table), "a join has an operator and two sides");
    expect(isJoin || !op, "a leaf is no join");
    line((isJoin ? std::string("join ") + (op ? op : "wraps its left side")
                 : (tableName ? "table" : "source") + written(complex)) +
         name("parent1", sqlet_select_tab_parent1(table)) +
         name("parent0", sqlet_select_tab_parent0(table)) +
         name("parent", sqlet_select_tab_parent(table)) + name("name", tableName) +
         name("alias", sqlet_select_tab_alias(table)) +
         number("parens", sqlet_select_tab_inside_number_of_parens(table)));
    ++m_indent;
    addExpr("on", sqlet_select_tab_on_expr(table));
    --m_indent;
}

// ---- columns -----------------------------------------------------------------------------------

inline void AccessorDump::addColumn(SqletColumn* column, bool isListItem) {
    expect(column, "every index of a list has a column");
    if (!column) return;
    const char* last = sqlet_select_column_name(column);
    const char* formatted = sqlet_select_column_formatted_name(column);
    const char* aggregate = sqlet_select_column_aggre_func(column);
    const char* argument = sqlet_select_column_aggre_func_param(column);
    const int direction = sqlet_select_column_is_desc(column);
    expect(isListItem || !sqlet_select_column_next(column), "only items have a next one");
    expect(!last || (formatted && *formatted), "a name has its spelling");
    expect(!aggregate || (argument && *argument), "an aggregate has an argument");
    expect(direction >= -1 && direction <= 1, "a direction is -1, 0 or 1");
    line(
        "column" + written(sqlet_select_column_complex(column)) +
        name("parent0", sqlet_select_column_parent0(column)) +
        name("parent1", sqlet_select_column_parent1(column)) +
        name("parent2", sqlet_select_column_parent2(column)) + name("name", last) +
        (last && formatted && std::strcmp(last, formatted) != 0 ? text("written", formatted) : "") +
        name("aggregate", aggregate) + text("of", argument) +
        name("alias", sqlet_select_column_alias(column)) + number("desc", direction));
}

// ---- conditions --------------------------------------------------------------------------------

/// A chain in text order, one link a line, whatever its length.
inline void AccessorDump::addExpr(const char* title, SqletExpr* root) {
    if (!root) return;
    line(title);
    struct Visit {
        SqletExpr* expr;
        std::size_t indent;
        unsigned outside;
        bool isLeftDone;
        bool isInsideChain;
        bool isOperand;
    };
    std::vector<Visit> waiting = {{root, m_indent + 1, 0, false, false, false}};
    const std::size_t indent = m_indent;
    while (!waiting.empty()) {
        const Visit visit = waiting.back();
        waiting.pop_back();
        m_indent = visit.indent;
        const char* op = sqlet_expr_op(visit.expr);
        SqletExpr* left = sqlet_expr_left(visit.expr);
        SqletExpr* right = sqlet_expr_right(visit.expr);
        const unsigned parens = sqlet_expr_inside_number_of_parens(visit.expr);
        expect(parens >= visit.outside && parens <= nestingLimit,
               "brackets of conditions are counted");
        expect(!op == !left && (left || !right), "an operator has a left side, a leaf has none");
        expect(!isChain(op) || right, "AND and OR have two sides");
        expect(!visit.isOperand || !left || isChain(op), "an operand is a leaf or a chain");
        if (isChain(op) && !visit.isLeftDone) {
            if (right) waiting.push_back({right, visit.indent, parens, false, true, false});
            waiting.push_back(
                {visit.expr, visit.indent, visit.outside, true, visit.isInsideChain, false});
            waiting.push_back({left, visit.indent, parens, false, true, false});
            continue;
        }
        addExprNode(visit.expr, visit.isInsideChain);
        if (isChain(op)) continue;
        for (SqletExpr* side : {right, left})
            if (side) waiting.push_back({side, visit.indent + 1, parens, false, false, true});
    }
    m_indent = indent;
}

inline void AccessorDump::addExprNode(SqletExpr* expr, bool isInsideChain) {
    const char* op = sqlet_expr_op(expr);
    SqletColumn* item = sqlet_expr_list_item(expr);
    const char* kind = item ? "list" : sqlet_expr_is_using(expr) ? "using" : "value";
    // The text of an inner link of a long chain holds all before it: quadratic if asked for all.
    if (!isChain(op) || !isInsideChain) expect(sqlet_expr_complex(expr), "a condition has a text");
    line((op ? op : kind + shown(sqlet_expr_complex(expr))) +
         name("parent1", sqlet_expr_parent1(expr)) + name("parent2", sqlet_expr_parent2(expr)) +
         name("name", sqlet_expr_name(expr)) + name("aggregate", sqlet_expr_aggre_func(expr)) +
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
    expect((count > 0) == (sqlet_expr_is_using(expr) != 0), "USING has items");
    expect(!sqlet_expr_using_item_at(expr, -1) && !sqlet_expr_using_item_at(expr, count) &&
               !sqlet_expr_using_item_at(expr, INT_MAX),
           "an index out of range gives null");
    for (int i = 0; i < count; ++i)
        line("item" + written(sqlet_expr_using_item_at(expr, i)));
}

/// Parses @p text up to its first NUL, in @p schema if it is not null, and checks everything that
/// can be asked; "" if all is well.
inline std::string faultOfAccessors(int dialect, const std::string& text,
                                    const char* schema = nullptr) {
    const std::string upToNul = text.c_str();
    const auto parsed = [&] {
        return QB::ParserHandle(schema ? sqlet_create_in_schema(dialect, upToNul.c_str(), schema)
                                       : sqlet_create(dialect, upToNul.c_str(), 1));
    };
    const QB::ParserHandle parser = parsed();
    if (!parser) return "there is no handle";
    const AccessorDump first(parser.get(), upToNul);
    if (!first.fault().empty()) return first.fault();
    // What the first look has asked for is in the handle's store of texts now.
    if (AccessorDump(parser.get(), upToNul).dump() != first.dump())
        return "a second look shows something else";
    if (!QB::isOneSelect(parser.get())) return {};
    const QB::ParserHandle again = parsed();
    const int difference = sqlet_first_difference(parser.get(), again.get(), schema);
    return difference == -1 ? "" : "a statement differs from itself";
}

}  // namespace sqlet_test
