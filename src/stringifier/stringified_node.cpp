#include "stringifier/stringified_node.h"

#include <cstdint>

namespace QB {

StringifiedNode::StringifiedNode(std::string ownText) : text(std::move(ownText)) {}

StringifiedNode StringifiedNode::deferred(Producer produce) {
    StringifiedNode node;
    node.producer = std::move(produce);
    return node;
}

StringifiedNode& StringifiedNode::operator=(StringifiedNode&& other) noexcept {
    // The swap leaves the old children to the destructor of other, which does not recurse.
    text.swap(other.text);
    std::swap(component, other.component);
    children.swap(other.children);
    producer.swap(other.producer);
    return *this;
}

StringifiedNode::~StringifiedNode() {
    // A chain nests a node in the one before: destroyed level by level, it would exhaust the stack.
    std::vector<StringifiedNode> pending = std::move(children);
    while (!pending.empty()) {
        std::vector<StringifiedNode> below = std::move(pending.back().children);
        pending.pop_back();
        for (StringifiedNode& child : below) {
            if (!child.children.empty()) pending.push_back(std::move(child));
        }
    }
}

void StringifiedNode::setText(std::string newText) {
    StringifiedNode formerChildren;
    formerChildren.children.swap(children);
    text = std::move(newText);
}

void StringifiedNode::append(std::string childText) {
    children.emplace_back(std::move(childText));
}

void StringifiedNode::append(StringifiedNode child) {
    children.push_back(std::move(child));
}

void StringifiedNode::appendDeferred(Producer produce) {
    children.push_back(deferred(std::move(produce)));
}

namespace {

/// Writes a tree into one buffer, with the nodes that are open kept on a stack of its own.
class Flattening {
public:
    explicit Flattening(ComponentRangeList& ranges) : m_ranges(ranges) {}

    std::string run(StringifiedNode root) {
        open(std::move(root));
        while (!m_open.empty()) {
            if (m_open.back().next == m_open.back().children.size()) {
                close();
            } else {
                open(takeNextChild());
            }
        }
        return std::move(m_text);
    }

private:
    struct OpenNode {
        std::vector<StringifiedNode> children;
        std::size_t next;   // the child to write next
        std::size_t start;  // of the node, in bytes
        const Component::AbstractQueryComponent* component;
    };

    void open(StringifiedNode node) {
        while (node.producer)
            node = StringifiedNode::Producer(std::move(node.producer))();
        m_open.push_back({std::move(node.children), 0, m_text.size(), node.component});
        m_text += node.text;
    }

    StringifiedNode takeNextChild() {
        OpenNode& top = m_open.back();
        StringifiedNode child = std::move(top.children[top.next++]);
        if (top.next < top.children.size()) return child;
        // Each link of a chain is the last child of the one before: what is written of them goes
        // now, and only what still needs a range stays open until the chain ends.
        if (top.component) {
            top = {{}, 0, top.start, top.component};
        } else {
            m_open.pop_back();
        }
        return child;
    }

    void close() {
        const OpenNode& top = m_open.back();
        if (top.component) m_ranges.emplace_back(top.component, rangeFrom(top.start));
        m_open.pop_back();
    }

    QBRange rangeFrom(std::size_t start) const {
        return {static_cast<std::int32_t>(start), static_cast<std::int32_t>(m_text.size() - start)};
    }

    ComponentRangeList& m_ranges;
    std::string m_text;
    std::vector<OpenNode> m_open;
};

}  // namespace

std::string flatten(StringifiedNode root, ComponentRangeList& ranges) {
    return Flattening(ranges).run(std::move(root));
}

}  // namespace QB
