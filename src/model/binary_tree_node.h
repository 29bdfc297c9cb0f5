#pragma once

#include <cstddef>
#include <utility>
#include <vector>

namespace QB {

/// Owning node of a binary tree; T is a raw pointer type.
///
/// Destroying a node destroys the left tree, then the right tree, then the value if the node owns
/// it. A loop does it, so a tree of any depth is destroyed on a default stack.
template <typename T>
struct QBBinaryTreeNode {
    bool ownsValue = true;
    T value = nullptr;                  // owned if ownsValue
    QBBinaryTreeNode* left = nullptr;   // owned
    QBBinaryTreeNode* right = nullptr;  // owned

    QBBinaryTreeNode() = default;
    QBBinaryTreeNode(const QBBinaryTreeNode&) = delete;
    QBBinaryTreeNode& operator=(const QBBinaryTreeNode&) = delete;

    ~QBBinaryTreeNode() {
        if (left || right) destroyChildren();
        if (ownsValue) delete value;
    }

private:
    void destroyChildren() {
        // Collected as node, right tree, left tree; read backwards that is the order of
        // destruction.
        std::vector<QBBinaryTreeNode*> pending;
        std::vector<QBBinaryTreeNode*> collected;
        detachChildrenInto(pending);
        while (!pending.empty()) {
            QBBinaryTreeNode* node = pending.back();
            pending.pop_back();
            collected.push_back(node);
            node->detachChildrenInto(pending);
        }
        for (std::size_t i = collected.size(); i-- > 0;)
            delete collected[i];
    }

    void detachChildrenInto(std::vector<QBBinaryTreeNode*>& pending) {
        if (left) pending.push_back(std::exchange(left, nullptr));
        if (right) pending.push_back(std::exchange(right, nullptr));
    }
};

}  // namespace QB
