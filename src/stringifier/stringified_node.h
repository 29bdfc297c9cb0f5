#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "model/components.h"
#include "stringifier/stringified_pieces.h"

namespace QB {

/// Generated text before it is put into one: the result of every stringifying operation. It is
/// its text and then its children, in output order; a child that has a component gets a range.
///
/// A child may be deferred: it then stands for text that is made when its turn comes, in text
/// order. Everything that can repeat without bound (chains, sides of joins, brackets, subqueries)
/// is deferred, so no operation recurses, whatever the depth of the model.
///
/// A node is a handle of a few words: what it holds lies in the pieces of the run in which it is
/// made, and goes with them. Moved, never copied. Every operation takes constant time.
///
/// No text is copied but by appendCopy: it is static, or a part of the model, which the caller
/// keeps unchanged while text is made.
struct StringifiedNode {
    std::string_view text;  ///< the node's own text, which comes first
    const Component::AbstractQueryComponent* component = nullptr;  // not owned; null: no range

    /// Empty for good: nothing can be appended to it.
    StringifiedNode() = default;
    explicit StringifiedNode(StringifiedPieces& pieces) : m_pieces(&pieces) {}
    StringifiedNode(StringifiedNode&&) noexcept = default;
    StringifiedNode& operator=(StringifiedNode&&) noexcept = default;
    StringifiedNode(const StringifiedNode&) = delete;
    StringifiedNode& operator=(const StringifiedNode&) = delete;
    ~StringifiedNode() = default;

    /// Drops all children.
    void setText(std::string_view newText);
    /// Appends a child of plain text; an empty one still is a child.
    void append(std::string_view childText);
    /// Shape: a literal, up to the zero at its end.
    template <std::size_t size>
    void append(const char (&literal)[size]) {
        append(std::string_view(literal, size - 1));
    }
    /// A text that ends with the statement is not to be referred to: see appendCopy.
    void append(std::string&&) = delete;
    void appendCopy(std::string childText);
    void append(StringifiedNode child);
    /// @p childText, a line feed and @p level tabs.
    void appendLine(std::string_view childText, int level);
    /// @p name as the host quotes it for the server, asked when its turn comes.
    void appendName(const std::string& name);
    void appendName(std::string&&) = delete;
    void appendNumber(std::int32_t number);
    /// What @p operation will return for @p object and @p level; it is called once, when its turn
    /// comes.
    void appendDeferred(StringifiedPiece::Operation operation, const void* object, int level);

    /// True without text and without children. A node with an empty child is not empty, nor is one
    /// with a deferred child.
    bool isEmpty() const { return text.empty() && !m_hasChildren; }

    /// The children as a list whose last entry has no next one yet; both null if none has text.
    StringifiedPiece* firstPiece() const { return m_first; }
    StringifiedPiece* lastPiece() const { return m_last; }

private:
    StringifiedPiece* push(StringifiedPiece::Kind kind);
    void pushText(std::string_view childText);
    void splice(const StringifiedNode& child);

    StringifiedPieces* m_pieces = nullptr;  // not owned: the stringifier's
    StringifiedPiece* m_first = nullptr;    // not owned: of m_pieces
    StringifiedPiece* m_last = nullptr;     // not owned: of m_pieces
    bool m_hasChildren = false;
};

// Inlined, since statements are made of these and little else.

inline StringifiedPiece* StringifiedNode::push(StringifiedPiece::Kind kind) {
    assert(m_pieces);
    StringifiedPiece* piece = m_pieces->take();
    piece->kind = kind;
    (m_first ? m_last->next : m_first) = piece;
    m_last = piece;
    m_hasChildren = true;
    return piece;
}

inline void StringifiedNode::pushText(std::string_view childText) {
    StringifiedPiece* piece = push(StringifiedPiece::Text);
    piece->subject = childText.data();
    piece->size = childText.size();
}

inline void StringifiedNode::splice(const StringifiedNode& child) {
    if (!child.m_first) return;
    (m_first ? m_last->next : m_first) = child.m_first;
    m_last = child.m_last;
}

inline void StringifiedNode::append(std::string_view childText) {
    // The text of a first child stands where the node's own would, which takes no piece.
    if (!m_first && text.empty()) {
        text = childText;
        m_hasChildren = true;
    } else {
        pushText(childText);
    }
}

inline void StringifiedNode::appendLine(std::string_view childText, int level) {
    StringifiedPiece* piece = push(StringifiedPiece::Line);
    piece->subject = childText.data();
    piece->size = childText.size();
    piece->level = level;
}

inline void StringifiedNode::appendName(const std::string& name) {
    push(StringifiedPiece::Name)->subject = &name;
}

inline void StringifiedNode::appendDeferred(StringifiedPiece::Operation operation,
                                            const void* object, int level) {
    StringifiedPiece* piece = push(StringifiedPiece::Deferred);
    piece->operation = operation;
    piece->subject = object;
    piece->level = level;
}

}  // namespace QB
