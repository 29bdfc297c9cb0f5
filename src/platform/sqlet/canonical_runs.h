#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/sqlet/source_numbers.h"

namespace sqlet {

/// Something in the text that is read as a whole.
struct Run {
    enum class Kind : std::uint8_t {
        Column,
        Operand,       ///< a leaf of a condition
        RightOperand,  ///< a leaf where SQLite takes a name in double quotes for a string
        Source,
        JoinOperator,
        JoinAlias,  ///< behind the bracket around a join
        Redundant,  ///< means nothing
        Unreadable,
    };
    Kind kind;
    TokenIndex last;
    union {
        const SqletColumn* column;
        const SqletExpr* expr;
        const SqletTable* table;
    };
};

/// What stands in the meaning, but not in the text.
struct Implied {
    int bracketsBefore = 0;
    int bracketsBehind = 0;
    bool isAlwaysTrueBehind = false;  ///< ON 1
};

/// Where the runs of a text begin, as its tree says.
class RunTable {
public:
    explicit RunTable(const SqletParser& parser);

    /// Enters the runs of @p select, but not those of its subqueries, and its sources. Linear.
    void add(const SqletSelect& select, SourceNumbers& sources);

    bool isRun(TokenIndex first) const { return m_runAt[first] != 0; }
    /// A copy: the runs of a subquery may be added while it is in use.
    Run runAt(TokenIndex first) const { return m_runs[m_runAt[first] - 1]; }
    /// Null where nothing is implied.
    const Implied* impliedAt(TokenIndex index) const;

private:
    const Token& token(TokenIndex index) const { return m_parser.tokens[index]; }
    bool is(TokenIndex index, Keyword word) const { return token(index).keyword == word; }
    bool isInBrackets(TokenIndex first, TokenIndex last) const;
    bool isAliasBehind(TokenIndex last, TokenIndex alias) const;

    void mark(TokenIndex first, Run run);
    void markColumns(const ColumnArray& columns);
    void markColumn(const SqletColumn& column);
    void markCondition(const SqletExpr* root);
    void markRightSide(const SqletExpr* expr);
    void markOperand(const SqletExpr* expr, Run::Kind kind);
    void markSources(const SqletTable* root, SourceNumbers& sources);
    void markSource(const SqletTable& table);
    void markJoin(const SqletTable& join);
    void markRedundantBrackets(TokenIndex first, TokenIndex last);
    void markDeferredCondition(const SqletTable& right);
    void markImpliedOrder(const SqletSelect& select);

    const SqletParser& m_parser;
    std::vector<std::uint32_t> m_runAt;  ///< by first token: index in m_runs plus 1; 0: none
    std::vector<Run> m_runs;
    std::unordered_map<TokenIndex, Implied> m_implied;
};

/// True for the condition of a join that has none in the text: ON 1.
inline bool isAlwaysTrue(const SqletExpr* on) {
    return on && on->span.isEmpty();
}

}  // namespace sqlet
