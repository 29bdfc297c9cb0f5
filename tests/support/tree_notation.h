#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "layouts/source_tree_layout.h"
#include "model/components.h"
#include "support/row_checks.h"

/// Join trees as short text, so that a test reads as the tree does:
///
///     "L(I(a,[b]),_)"   a LEFT JOIN of (a INNER JOIN of a and the bracket around b) and nothing
///
/// Small letters are tables, C is a comma, J a custom join, I inner, L left, R right.
namespace QB::Test {

using Component::SQL::SourceNode;
using QBComponentsListLayout_Private::SourceTreeLayout;

inline const std::string joinLetters = "JCILRXF";  // in the order of SQLJoinType

inline Component::SQL::SQLIdentifierSourceComponent* makeTable(const std::string& name) {
    auto* table = new Component::SQL::SQLIdentifierSourceComponent;
    table->name = name;
    return table;
}

inline std::unique_ptr<SourceNode> makeNode(Component::SQL::SQLAbstractSourceComponent* value,
                                            SourceNode* left = nullptr,
                                            SourceNode* right = nullptr) {
    auto node = std::make_unique<SourceNode>();
    node->value = value;
    node->left = left;
    node->right = right;
    return node;
}

inline std::unique_ptr<SourceNode> makeJoin(SQLJoinType type, SourceNode* left, SourceNode* right) {
    auto* join = new Component::SQL::SQLJoinSourceNodeComponent;
    join->joinType = type;
    if (type == SQLJoinTypeCustom) join->joinText = "STRAIGHT_JOIN";
    return makeNode(join, left, right);
}

inline SourceNode* readTree(const char*& text) {
    const char letter = *text++;
    if (letter == '_') return nullptr;
    if (letter == '[') {
        SourceNode* content = readTree(text);
        ++text;  // ]
        return makeNode(new Component::SQL::SQLBracketedSourceNodeComponent, content).release();
    }
    if (*text != '(') return makeNode(makeTable(std::string(1, letter))).release();
    SourceNode* left = readTree(++text);
    SourceNode* right = readTree(++text);
    ++text;  // )
    return makeJoin(static_cast<SQLJoinType>(joinLetters.find(letter)), left, right).release();
}

/// What one row or node reads as: a name, a join letter, or "[" for a bracket; a subquery by its
/// alias.
inline std::string wordOf(const Component::AbstractQueryComponent* component) {
    using namespace Component::SQL;
    if (const auto* table = dynamic_cast<const SQLIdentifierSourceComponent*>(component)) {
        return table->name;
    }
    if (const auto* join = dynamic_cast<const SQLJoinSourceNodeComponent*>(component)) {
        return joinLetters.substr(static_cast<std::size_t>(join->joinType), 1);
    }
    if (const auto* derived = dynamic_cast<const SQLSubquerySourceComponent*>(component)) {
        return derived->alias;
    }
    return dynamic_cast<const SQLBracketedSourceNodeComponent*>(component) ? "[" : "?";
}

inline std::string writeTree(const SourceNode* node) {
    if (!node) return "_";
    const std::string word = wordOf(node->value);
    if (word == "[") return "[" + writeTree(node->left) + "]";
    if (!node->left && !node->right) return word;
    return word + "(" + writeTree(node->left) + "," + writeTree(node->right) + ")";
}

inline void expectRowsOf(SourceNode** slot, int level, ExpectedRows& rows) {
    SourceNode* node = *slot;
    const auto* value = node ? node->value : nullptr;
    if (!value) {
        rows.push_back({nullptr, level, slot, -1});
    } else if (dynamic_cast<const Component::SQL::SQLJoinSourceNodeComponent*>(value)) {
        expectRowsOf(&node->left, level, rows);
        rows.push_back({value, level, slot, -1});
        expectRowsOf(&node->right, level, rows);
    } else if (dynamic_cast<const Component::SQL::SQLBracketedSourceNodeComponent*>(value)) {
        const auto open = static_cast<long>(rows.size());
        rows.push_back({value, level, slot, -1});
        expectRowsOf(&node->left, level + 1, rows);
        rows.push_back({nullptr, level, nullptr, open});
    } else {
        rows.push_back({value, level, slot, -1});
    }
}

/// Fails unless the rows are what the tree asks for.
inline void expectInStep(const SourceTreeLayout& layout, SourceNode** root) {
    ExpectedRows expected;
    expectRowsOf(root, 0, expected);
    expectRows(layout, expected, writeTree(*root));
}

/// A tree with its layout.
class TreeUnderEdit {
public:
    explicit TreeUnderEdit(const char* text) : TreeUnderEdit(readTree(text)) {}
    explicit TreeUnderEdit(SourceNode* tree) : layout(&m_root), m_root(tree) {
        layout.rebuildItems();
        layout.updateItemFlags();
    }
    ~TreeUnderEdit() { delete m_root; }
    TreeUnderEdit(const TreeUnderEdit&) = delete;
    TreeUnderEdit& operator=(const TreeUnderEdit&) = delete;

    std::string tree() const { return writeTree(m_root); }
    SourceNode** root() { return &m_root; }
    Item* row(std::size_t index) const { return layout.items().at(index); }

    Items rows(std::size_t first, std::size_t last) const {
        const auto begin = layout.items().begin();
        return Items(begin + static_cast<std::ptrdiff_t>(first),
                     begin + static_cast<std::ptrdiff_t>(last) + 1);
    }

    /// The rows as words; a placeholder is "_".
    std::string words() const { return words(layout.items()); }
    static std::string words(const Items& items) {
        std::string text;
        for (const std::string& word : wordsOf(items, wordOf))
            text += (text.empty() ? "" : " ") + word;
        return text;
    }

    SourceTreeLayout layout;

private:
    SourceNode* m_root;
};

}  // namespace QB::Test
