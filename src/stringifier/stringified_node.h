#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "model/components.h"

namespace QB {

/// Generated text as a tree: the result of every stringifying operation. It is a tree and not one
/// buffer because the range of a component is known only when all text before it is known.
///
/// A node may be deferred: it then stands for text that is made when its turn comes, in text
/// order. Everything that can repeat without bound (chains, sides of joins, brackets, subqueries)
/// is deferred, so no operation recurses, whatever the depth of the model.
///
/// Moved, never copied. Moving and appending take constant time; destruction is a loop.
struct StringifiedNode {
    using Producer = std::function<StringifiedNode()>;

    std::string text;  ///< the node's own text, which comes first
    const Component::AbstractQueryComponent* component =
        nullptr;  // not owned: the caller keeps the model while text is made; null for plain text
    std::vector<StringifiedNode> children;  ///< in output order, behind text
    Producer producer;                      ///< set in a deferred node, which has nothing else

    StringifiedNode() = default;
    explicit StringifiedNode(std::string ownText);
    /// A node that stands for what @p produce will return; it is called once, when the text is
    /// flattened, and what it captured has to live until then.
    static StringifiedNode deferred(Producer produce);
    StringifiedNode(StringifiedNode&& other) noexcept = default;
    StringifiedNode& operator=(StringifiedNode&& other) noexcept;
    StringifiedNode(const StringifiedNode&) = delete;
    StringifiedNode& operator=(const StringifiedNode&) = delete;
    ~StringifiedNode();

    /// Destroys all children.
    void setText(std::string newText);
    /// Appends a child of plain text; an empty string still is a child.
    void append(std::string childText);
    void append(StringifiedNode child);
    void appendDeferred(Producer produce);

    /// True without text and without children. A node with an empty child is not empty, nor is a
    /// deferred one.
    bool isEmpty() const { return text.empty() && children.empty() && !producer; }
};

/// Where each component of a flattened tree stands, those inside before those around them.
using ComponentRangeList =
    std::vector<std::pair<const Component::AbstractQueryComponent*, QBRange>>;

/// The text of @p root and of all that it defers; appends the range of every node that has a
/// component to @p ranges, when the last of its text is written. Linear, any depth.
std::string flatten(StringifiedNode root, ComponentRangeList& ranges);

}  // namespace QB
