#pragma once

#include <cstdint>

#include "platform/sqlet/syntax_tree.h"

namespace sqlet {

/// A name with its qualifiers, a.b.c: parts and dots by turns. The last part is the name itself
/// (or the asterisk), those before it are the qualifiers, outermost first.
struct NameChain {
    TokenIndex first = noToken;
    TokenIndex last = noToken;

    std::uint32_t qualifierCount() const { return first == noToken ? 0 : (last - first) / 2; }
    TokenIndex qualifier(std::uint32_t index) const { return first + 2 * index; }
    /// The qualifier next to the name; only if there is one.
    TokenIndex innermost() const { return last - 2; }
};

/// The chain inside F(a.b), where F and the brackets are one token each.
inline NameChain chainInCall(TokenSpan call) {
    return {call.first + 2, call.last - 1};
}

/// The name in a node; empty where its form holds none.
inline NameChain nameChainOf(const SqletColumn& column) {
    const bool isName = column.form == ColumnForm::Name || column.form == ColumnForm::Asterisk;
    if (isName) return {column.span.first, column.span.last};
    return column.form == ColumnForm::AggregateName ? chainInCall(column.span) : NameChain();
}

inline NameChain nameChainOf(const SqletExpr& expr) {
    if (expr.form == ExprForm::Name) return {expr.span.first, expr.span.last};
    return expr.form == ExprForm::AggregateName ? chainInCall(expr.span) : NameChain();
}

inline NameChain nameChainOf(const SqletTable& table) {
    return table.form == TableForm::Name ? NameChain{table.span.first, table.span.last}
                                         : NameChain();
}

/// The texts kept with a node, which get their place in the arena when they are first needed.
template <typename Node>
NodeTexts& textsOf(Node& node, Arena& arena) {
    if (!node.texts) node.texts = arena.make<NodeTexts>();
    return *node.texts;
}

}  // namespace sqlet
