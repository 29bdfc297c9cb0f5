#pragma once

#include <memory>
#include <string>

#include "layouts/condition_list_layout.h"
#include "support/row_checks.h"

/// Chains of conditions as short text: "&a|!b&[c=|[]]" is a, or not b, and a bracket around the
/// compare of c with nothing, or an empty bracket. & is AND, | is OR, neither is no gate.
namespace QB::Test {

using namespace Component::SQL;
using QBComponentsListLayout_Private::ConditionListLayout;
using Condition = SQLAbstractConditionComponent;

inline SQLConditionValueComponent* makeValue(const std::string& name) {
    auto* column = new SQLAnyExpressionColumnComponent;
    column->expression = name;
    auto* value = new SQLConditionValueComponent;
    value->values.push_back(column);
    return value;
}

inline SQLCompareConditionComponent* makeCompare(Condition* left) {
    auto* compare = new SQLCompareConditionComponent;
    compare->leftValue = left;
    return compare;
}

inline SQLBracketedConditionComponent* makeBracket(Condition* inner) {
    auto* bracket = new SQLBracketedConditionComponent;
    bracket->inner = inner;
    return bracket;
}

/// Null at the end of the text and of a bracket.
inline Condition* readChain(const char*& text) {
    if (*text == '\0' || *text == ']') return nullptr;
    const char gate = *text;
    if (gate == '&' || gate == '|') ++text;
    const bool isNegated = *text == '!';
    if (isNegated) ++text;
    const char letter = *text++;
    Condition* link = letter == '[' ? static_cast<Condition*>(makeBracket(readChain(text)))
                                    : makeValue(std::string(1, letter));
    if (letter == '[') ++text;
    if (*text == '=' && ++text) link = makeCompare(link);
    if (gate == '&') link->logicGate = SQLLogicGateAnd;
    if (gate == '|') link->logicGate = SQLLogicGateOr;
    link->negated = isNegated;
    link->next = readChain(text);
    return link;
}

inline Condition* chainOf(const char* text) {
    return readChain(text);
}

inline std::string conditionWord(const Component::AbstractQueryComponent* component) {
    const auto* link = dynamic_cast<const Condition*>(component);
    if (!link) return "?";
    const char* gates[] = {"", "|", "&"};
    const std::string start = std::string(gates[link->logicGate + 1]) + (link->negated ? "!" : "");
    if (dynamic_cast<const SQLBracketedConditionComponent*>(link)) return start + "[";
    if (const auto* compare = dynamic_cast<const SQLCompareConditionComponent*>(link)) {
        return start + (compare->leftValue ? conditionWord(compare->leftValue) : "") + "=";
    }
    const auto* value = dynamic_cast<const SQLConditionValueComponent*>(link);
    const auto* column = dynamic_cast<const SQLAnyExpressionColumnComponent*>(value->firstValue());
    return start + (column ? column->expression : "?");
}

inline std::string writeChain(const Condition* link) {
    if (!link) return "";
    const auto* bracket = dynamic_cast<const SQLBracketedConditionComponent*>(link);
    const std::string content = bracket ? writeChain(bracket->inner) + "]" : "";
    return conditionWord(link) + content + writeChain(link->next);
}

inline void expectRowsOf(Condition** head, int level, ExpectedRows& rows) {
    if (!*head) rows.push_back({nullptr, level, head, -1});
    for (Condition** slot = head; *slot; slot = &(*slot)->next) {
        const auto open = static_cast<long>(rows.size());
        rows.push_back({*slot, level, slot, -1});
        auto* bracket = dynamic_cast<SQLBracketedConditionComponent*>(*slot);
        if (!bracket) continue;
        expectRowsOf(&bracket->inner, level + 1, rows);
        Condition** end = &bracket->inner;
        while (*end)
            end = &(*end)->next;
        rows.push_back({nullptr, level, end, open});
    }
}

/// The rows with these numbers.
template <typename Layout, typename Indices>
Items rowsAt(const Layout& layout, const Indices& indices) {
    Items rows;
    for (const std::size_t index : indices)
        rows.push_back(layout.items().at(index));
    return rows;
}

/// Fails unless the rows are what the chain asks for.
inline void expectInStep(const ConditionListLayout& layout, Condition** root) {
    ExpectedRows expected;
    expectRowsOf(root, 0, expected);
    expectRows(layout, expected, writeChain(*root));
}

/// A chain with its layout.
class ChainUnderEdit {
public:
    explicit ChainUnderEdit(const char* text) : ChainUnderEdit(chainOf(text)) {}
    explicit ChainUnderEdit(Condition* chain) : layout(&m_root), m_root(chain) {
        layout.rebuildItems();
        layout.updateItemFlags();
    }
    ~ChainUnderEdit() { delete m_root; }
    ChainUnderEdit(const ChainUnderEdit&) = delete;
    ChainUnderEdit& operator=(const ChainUnderEdit&) = delete;

    /// The chain, after a check that the rows show it.
    std::string chain() {
        layout.updateItemFlags();
        expectInStep(layout, &m_root);
        return writeChain(m_root);
    }
    Condition*& root() { return m_root; }
    Item* row(std::size_t index) const { return layout.items().at(index); }

    ConditionListLayout layout;

private:
    Condition* m_root;
};

}  // namespace QB::Test
