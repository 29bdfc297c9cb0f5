#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "parser/parser_handle.h"
#include "platform/sqlet/sqlet.h"
#include "sqlet/accessor_dump.h"

/// Holds what the parser's accessors give for any text against what their header promises.
namespace QB::Test {

/// Walks everything that hangs on one handle, in loops: the trees may be a hundred thousand deep.
class AccessorCheck {
public:
    /// @p text is what was parsed and must outlive the object; no NUL inside.
    AccessorCheck(SqletParser* parser, const std::string& text) : m_parser(parser), m_text(text) {}

    /// The first promise that is broken, or "".
    std::string fault() {
        checkOutcome();
        if (m_fault.empty() && m_select) checkSelect();
        return m_fault;
    }

private:
    void expect(bool holds, const char* promise) {
        if (!holds && m_fault.empty()) m_fault = promise;
    }
    bool isInText(SqletStretch stretch) const {
        const auto size = static_cast<long long>(m_text.size());
        return stretch.start >= 0 && stretch.length >= 0 &&
               static_cast<long long>(stretch.start) + stretch.length <= size;
    }
    /// Looks for a text near the beginning only: a search from there for each would be quadratic.
    bool isPartOfText(const char* part) {
        const std::string_view wanted = part;
        m_searched += m_text.size();
        if (m_searched > maxSearched) return true;
        return m_text.find(wanted) != std::string::npos;
    }

    // ---- the outcome -------------------------------------------------------------------------

    void checkOutcome() {
        const int errors = sqlet_number_of_error(m_parser);
        const char* message = sqlet_last_error_msg(m_parser);
        const int kind = sqlet_last_stmt_type(m_parser);
        const SqletStretch place = sqlet_error_stretch(m_parser);
        m_select = sqlet_select(m_parser);
        expect(errors == 0 || errors == 1, "number_of_error is 0 or 1");
        expect(kind == SQLET_STATEMENT_NONE || kind == SQLET_STATEMENT_OTHER ||
                   kind == SQLET_STATEMENT_SELECT,
               "last_stmt_type is a kind");
        if (!m_fault.empty()) return;
        if (errors) checkError(message, place);
        checkPositions();
        checkParts();
    }

    void checkError(const char* message, SqletStretch place) {
        const bool isAtEnd = place.start == static_cast<int>(m_text.size());
        expect(isInText(place), "the error lies in the text");
        expect(place.length > 0 || isAtEnd, "the error has a length unless the text ends there");
        expect(std::strncmp(message, "line ", 5) == 0, "a message begins with its position");
        expect(std::strstr(message, ": ") != nullptr, "a message says what is wrong");
        expect(std::strlen(message) < longestMessage, "a message is short");
        expect(!isUtf8(m_text) || isUtf8(message), "a message cuts no character");
        const std::string position = sqlet_position_text(m_parser, place.start);
        expect(std::string_view(message).substr(0, position.size()) == position,
               "the message names the place of the error");
    }

    void checkPositions() {
        const int size = static_cast<int>(m_text.size());
        for (const int offset : {0, size / 2, size}) {
            const char* position = sqlet_position_text(m_parser, offset);
            expect(position && std::strncmp(position, "line ", 5) == 0,
                   "every byte has a position text");
        }
    }

    void checkParts() {
        SqletStretch parts[8];
        sqlet_select_by_parts(m_parser, &parts[0], &parts[1], &parts[2], &parts[3], &parts[4],
                              &parts[5], &parts[6], &parts[7]);
        for (const SqletStretch& part : parts)
            expect(part.start == -1 || isInText(part), "a part lies in the text");
        if (!m_select) return;
        const char* begin = sqlet_select_start(m_select);
        const bool isInside = begin >= m_text.data() && begin <= m_text.data() + m_text.size();
        expect(isInside, "the statement begins in the text that was given");
        if (!isInside) return;
        const int start = static_cast<int>(begin - m_text.data());
        const int length = sqlet_select_length(m_select);
        expect(isInText({start, length}) && length > 0, "the statement lies in the text");
        expect(parts[7].start == start && parts[7].length == length,
               "both accessors agree where the statement stands");
        for (const SqletStretch& part : parts)
            expect(part.start == -1 ||
                       (part.start >= start && part.start + part.length <= start + length),
                   "a part lies in the statement");
    }

    // ---- the statement -----------------------------------------------------------------------

    void checkSelect() {
        expect(sqlet_select_number_of_columns(m_select) > 0, "a SELECT has columns");
        checkColumns(sqlet_select_number_of_columns, sqlet_select_column_at);
        checkColumns(sqlet_select_group_by_number_of_columns, sqlet_select_group_by_column_at);
        checkColumns(sqlet_select_order_by_number_of_columns, sqlet_select_order_by_column_at);
        checkDecimal(sqlet_select_limit_limit(m_select));
        checkDecimal(sqlet_select_limit_offset(m_select));
        if (SqletTable* root = sqlet_select_tab(m_select)) checkTables(root);
        if (SqletExpr* root = sqlet_select_where_expr(m_select)) checkConditions(root);
        if (SqletExpr* root = sqlet_select_having_expr(m_select)) checkConditions(root);
    }

    void checkDecimal(const char* text) {
        expect(!text || (*text && std::strspn(text, "0123456789") == std::strlen(text)),
               "a limit is a decimal number");
    }

    template <typename Count, typename At>
    void checkColumns(Count count, At at) {
        const int n = count(m_select);
        for (int i = 0; i < n && m_fault.empty(); ++i) {
            SqletColumn* column = at(m_select, i);
            expect(column, "every index of a list has a column");
            if (!column) return;
            checkColumn(column);
        }
    }

    void checkColumn(SqletColumn* column) {
        const char* name = sqlet_select_column_name(column);
        const char* written = sqlet_select_column_formatted_name(column);
        const char* complex = sqlet_select_column_complex(column);
        const char* aggregate = sqlet_select_column_aggre_func(column);
        const char* argument = sqlet_select_column_aggre_func_param(column);
        const int direction = sqlet_select_column_is_desc(column);
        expect(complex && *complex, "a column has a text");
        if (!complex) return;
        expect(isPartOfText(complex), "a column's text is as written");
        expect(!name || (*name && written && *written), "a column's name is not empty");
        expect(!aggregate || (*aggregate && argument && *argument), "an aggregate has an argument");
        expect(direction >= -1 && direction <= 1, "a direction is -1, 0 or 1");
        for (auto* parent : {sqlet_select_column_parent0, sqlet_select_column_parent1,
                             sqlet_select_column_parent2})
            checkName(parent(column));
        checkName(sqlet_select_column_alias(column));
    }

    void checkName(const char* name) { expect(!name || *name, "a name is null or not empty"); }

    // ---- sources -----------------------------------------------------------------------------

    void checkTables(SqletTable* root) {
        struct Step {
            SqletTable* table;
            unsigned parens;
        };
        std::vector<Step> open{{root, 0}};
        while (!open.empty() && m_fault.empty()) {
            const auto [table, outside] = open.back();
            open.pop_back();
            const unsigned parens = sqlet_select_tab_inside_number_of_parens(table);
            expect(parens >= outside, "brackets are counted from the root");
            expect(parens <= nestingLimit, "brackets of sources are limited");
            checkTable(table);
            for (SqletTable* side : {sqlet_select_tab_left(table), sqlet_select_tab_right(table)})
                if (side) open.push_back({side, parens});
        }
    }

    void checkTable(SqletTable* table) {
        SqletTable* left = sqlet_select_tab_left(table);
        const char* op = sqlet_select_tab_join_op(table);
        checkName(sqlet_select_tab_alias(table));
        checkName(sqlet_select_tab_name(table));
        for (auto* parent :
             {sqlet_select_tab_parent, sqlet_select_tab_parent0, sqlet_select_tab_parent1})
            checkName(parent(table));
        if (!left) {
            const char* complex = sqlet_select_tab_complex(table);
            expect(complex && *complex, "a source has a text");
            expect(!complex || isPartOfText(complex), "a source's text is as written");
            expect(!sqlet_select_tab_right(table) && !op, "a leaf is no join");
        } else {
            expect(!op == !sqlet_select_tab_right(table), "a join has an operator and two sides");
            expect(!op || *op, "a join operator is not empty");
        }
        if (SqletExpr* on = sqlet_select_tab_on_expr(table))
            sqlet_expr_is_using(on) ? checkUsing(on) : checkConditions(on);
    }

    void checkUsing(SqletExpr* on) {
        const int n = sqlet_expr_number_of_using_items(on);
        expect(n > 0, "USING has items");
        for (int i = 0; i < n; ++i) {
            const char* item = sqlet_expr_using_item_at(on, i);
            expect(item && *item && isPartOfText(item), "an item of USING is as written");
        }
    }

    // ---- conditions --------------------------------------------------------------------------

    enum class Place { Chain, Operand };

    void checkConditions(SqletExpr* root) {
        struct Step {
            SqletExpr* expr;
            unsigned parens;
            Place place;
        };
        std::vector<Step> open{{root, 0, Place::Chain}};
        while (!open.empty() && m_fault.empty()) {
            const auto [expr, outside, place] = open.back();
            open.pop_back();
            const unsigned parens = sqlet_expr_inside_number_of_parens(expr);
            SqletExpr* left = sqlet_expr_left(expr);
            SqletExpr* right = sqlet_expr_right(expr);
            expect(parens >= outside, "brackets are counted from the root");
            expect(parens <= nestingLimit, "brackets of conditions are limited");
            checkExpr(expr, left, right);
            const bool isChain = isChainOperator(sqlet_expr_op(expr));
            expect(place == Place::Chain || !left || isChain, "an operand is a leaf or a chain");
            for (SqletExpr* side : {right, left})
                if (side) open.push_back({side, parens, isChain ? Place::Chain : Place::Operand});
        }
    }

    static bool isChainOperator(const char* op) {
        return op && (std::strcmp(op, "AND") == 0 || std::strcmp(op, "OR") == 0);
    }

    void checkExpr(SqletExpr* expr, SqletExpr* left, SqletExpr* right) {
        const char* op = sqlet_expr_op(expr);
        expect(!op == !left, "an operator has a left side, and a leaf has none");
        expect(left || !right, "a leaf has no right side");
        expect(!isChainOperator(op) || right, "AND and OR have two sides");
        if (SqletColumn* item = sqlet_expr_list_item(expr)) {
            for (; item && m_fault.empty(); item = sqlet_select_column_next(item))
                checkColumn(item);
        }
        checkName(sqlet_expr_name(expr));
        checkName(sqlet_expr_parent1(expr));
        checkName(sqlet_expr_parent2(expr));
        checkName(sqlet_expr_aggre_func(expr));
        // The text of each link of a long chain holds all before it: quadratic if asked for all.
        if (isChainOperator(op) && ++m_chains > maxChainTexts) return;
        const char* complex = sqlet_expr_complex(expr);
        expect(complex, "an expression has a text");
        const bool isShown = left || sqlet_expr_list_item(expr) || !complex || *complex;
        expect(isShown, "a leaf's text is not empty");
    }

    static bool isUtf8(std::string_view text) {
        for (std::size_t i = 0; i < text.size();) {
            const auto lead = static_cast<unsigned char>(text[i++]);
            const int more = lead < 0x80   ? 0
                             : lead < 0xC2 ? -1
                             : lead < 0xE0 ? 1
                             : lead < 0xF0 ? 2
                             : lead < 0xF5 ? 3
                                           : -1;
            if (more < 0 || i + static_cast<std::size_t>(more) > text.size()) return false;
            for (int k = 0; k < more; ++k)
                if ((static_cast<unsigned char>(text[i++]) & 0xC0) != 0x80) return false;
        }
        return true;
    }

    static constexpr unsigned nestingLimit = 200;
    static constexpr std::size_t longestMessage = 500;
    static constexpr int maxChainTexts = 50;
    static constexpr std::size_t maxSearched = 50'000'000;

    SqletParser* m_parser;
    const std::string& m_text;
    SqletSelect* m_select = nullptr;
    int m_chains = 0;
    std::size_t m_searched = 0;
    std::string m_fault;
};

/// Whether the two dumps show the same and every answer was one that may be given. What the first
/// has asked for is in the handle's store of texts when the second asks.
inline std::string faultOfDumps(SqletParser* parser, const std::string& text) {
    const std::string first = sqlet_test::dumpAccessors(parser);
    if (first != sqlet_test::dumpAccessors(parser)) return "a second look shows something else";
    const std::size_t broken = first.find("BROKEN ");
    if (broken == std::string::npos || text.find("BROKEN ") != std::string::npos) return {};
    return first.substr(broken, first.find('\n', broken) - broken);
}

/// Parses @p text up to its first NUL, in @p schema if it is not null, and checks everything that
/// can be asked; "" if all is well.
inline std::string faultOfAccessors(int dialect, const std::string& text,
                                    const char* schema = nullptr) {
    const std::string upToNul = text.c_str();
    const auto parsed = [&] {
        return ParserHandle(schema ? sqlet_create_in_schema(dialect, upToNul.c_str(), schema)
                                   : sqlet_create(dialect, upToNul.c_str(), 1));
    };
    const ParserHandle parser = parsed();
    if (!parser) return "there is no handle";
    std::string fault = AccessorCheck(parser.get(), upToNul).fault();
    if (fault.empty()) fault = faultOfDumps(parser.get(), upToNul);
    if (!fault.empty() || !isOneSelect(parser.get())) return fault;
    const ParserHandle again = parsed();
    const int difference = sqlet_first_difference(parser.get(), again.get(), schema);
    return difference == -1 ? "" : "a statement differs from itself";
}

}  // namespace QB::Test
