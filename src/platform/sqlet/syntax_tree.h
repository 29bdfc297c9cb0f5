#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/sqlet/arena.h"
#include "platform/sqlet/sqlet.h"
#include "platform/sqlet/token.h"

/// The syntax tree of one text, whose nodes are what the handles of the C interface point at.
///
/// The grammar builds it and says what each node is by its form alone (syntax). Then settleView
/// turns every name into text that could not be rebuilt from its parts (meaning), and checks that
/// nothing is lost. The accessors read the settled tree.
namespace sqlet {

/// Tokens from first to last, both included; empty if first is noToken.
struct TokenSpan {
    TokenIndex first = noToken;
    TokenIndex last = noToken;

    bool isEmpty() const { return first == noToken; }
};

/// The texts of a node that were asked for already, null where not; in the parser's arena.
struct NodeTexts {
    const char* name = nullptr;
    const char* formattedName = nullptr;
    const char* parents[3] = {nullptr, nullptr, nullptr};
    const char* complex = nullptr;
    const char* alias = nullptr;
    const char* aggregate = nullptr;
    const char* aggregateParameter = nullptr;
    const char* joinOperator = nullptr;
};

enum class ColumnForm : std::uint8_t {
    Text,           ///< shown as written
    Name,           ///< a.b.c: names and dots by turns, nothing else
    Asterisk,       ///< * or a.b.*
    AggregateName,  ///< F(a.b), without a blank before the bracket and inside
    AggregateStar,  ///< F(*), the same
};

enum class ColumnRole : std::uint8_t { Select, GroupBy, OrderBy, ListItem };

enum class Direction : std::int8_t { InText = -1, Ascending = 0, Descending = 1 };

enum class TableForm : std::uint8_t {
    Text,     ///< shown as written
    Name,     ///< a.b.c: names and dots by turns
    Derived,  ///< ( SELECT .. ): subquery is set unless it cannot be shown
    Join,     ///< has left and right
};

enum class ExprForm : std::uint8_t {
    Text,           ///< a leaf shown as written
    Name,           ///< a leaf a.b.c
    AggregateName,  ///< a leaf F(a.b)
    List,           ///< the right side of IN: ( items ); the span lies inside the brackets
    Query,          ///< the right side of IN: ( SELECT .. ); the span lies inside the brackets
    Using,          ///< USING ( items ); the span lies inside the brackets
    Compare,        ///< left op right; right null for postfix IS NULL
    Chain,          ///< left AND/OR right; left may be a Chain
};

struct Limit {
    const char* fetchOption = nullptr;   ///< static text
    const char* offset = nullptr;        ///< decimal text
    const char* count = nullptr;         ///< decimal text
    const char* returnOption = nullptr;  ///< static text
    bool isPercent = false;
};

struct ColumnArray {
    SqletColumn** items = nullptr;  // in the arena
    std::uint32_t count = 0;
};

/// The eight stretches of sqlet_select_by_parts, without the clause words; empty where absent.
enum class Part { Columns, From, Where, GroupBy, Having, OrderBy, Limit, Statement };
constexpr int partCount = 8;

}  // namespace sqlet

struct SqletColumn {
    SqletParser* owner;
    sqlet::NodeTexts* texts = nullptr;
    SqletColumn* next = nullptr;  ///< in an IN list
    /// Without alias and direction; for an aggregate the whole call.
    sqlet::TokenSpan span = {};
    sqlet::TokenIndex alias = sqlet::noToken;  ///< a Word, QuotedName or String
    sqlet::ColumnForm form = sqlet::ColumnForm::Text;
    sqlet::ColumnRole role = sqlet::ColumnRole::Select;
    sqlet::Direction direction = sqlet::Direction::Ascending;
};

struct SqletExpr {
    SqletParser* owner;
    sqlet::NodeTexts* texts = nullptr;
    SqletExpr* left = nullptr;
    SqletExpr* right = nullptr;
    /// Compare and Chain: the operator in upper case, static ("NOT IN", "IS", "IS NOT", "AND").
    const char* op = nullptr;
    /// List and Using: the items. A USING item is a column of form Text or Name.
    sqlet::ColumnArray items = {};
    /// From the first to the last token of the node, without its counted brackets and without a
    /// NOT that negatedAt stands for. The right operand of IS NULL and IS NOT NULL is a leaf of
    /// form Text over the token NULL. Empty for a condition that is not in the text (SQLite's LEFT
    /// JOIN without one means ON 1): texts->complex is then set.
    sqlet::TokenSpan span = {};
    std::uint32_t parens = 0;  ///< brackets around the node, counted from the root
    sqlet::ExprForm form = sqlet::ExprForm::Text;
    /// A NOT that belongs to the node: one more than the brackets around it; 0: none.
    std::uint32_t negatedAt = 0;
};

struct SqletTable {
    SqletParser* owner;
    sqlet::NodeTexts* texts = nullptr;
    SqletTable* left = nullptr;
    SqletTable* right = nullptr;
    SqletExpr* on = nullptr;
    /// Join: the operator in upper case, static, or null where it is the words of operatorSpan.
    const char* joinOperator = nullptr;
    sqlet::TokenSpan operatorSpan = {};
    SqletSelect* subquery = nullptr;  ///< Derived
    /// A leaf: without alias. A join: from the first to the last token, without counted brackets.
    sqlet::TokenSpan span = {};
    sqlet::TokenIndex alias = sqlet::noToken;
    std::uint32_t parens = 0;
    sqlet::TableForm form = sqlet::TableForm::Text;
};

struct SqletSelect {
    SqletParser* owner;
    sqlet::ColumnArray columns = {};
    sqlet::ColumnArray groupBy = {};
    sqlet::ColumnArray orderBy = {};
    SqletTable* from = nullptr;
    SqletExpr* where = nullptr;
    SqletExpr* having = nullptr;
    sqlet::Limit limit = {};
    sqlet::TokenSpan parts[sqlet::partCount] = {};
    bool isDistinct = false;
};
