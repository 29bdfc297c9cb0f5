#include "model/binary_tree_node.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// Writes its name to a log when it is destroyed.
class Tracer {
public:
    Tracer(std::string& log, char name) : m_log(log), m_name(name) {}
    virtual ~Tracer() { m_log += m_name; }

private:
    std::string& m_log;
    const char m_name;
};

using Node = QB::QBBinaryTreeNode<Tracer*>;

Node* makeNode(std::string& log, char name, Node* left = nullptr, Node* right = nullptr) {
    auto* node = new Node;
    node->value = new Tracer(log, name);
    node->left = left;
    node->right = right;
    return node;
}

/// A spine of @p depth nodes; @p step says on which side the next node hangs.
template <typename Step>
void destroySpine(int depth, Step goesLeft) {
    std::string log;
    auto* root = new Node;
    Node* last = root;
    for (int i = 0; i < depth; ++i) {
        auto* next = makeNode(log, 'x');
        (goesLeft(i) ? last->left : last->right) = next;
        last = next;
    }
    delete root;
    EXPECT_EQ(log.size(), static_cast<std::size_t>(depth));
}

}  // namespace

TEST(BinaryTreeNode, DestroysTheLeftTreeThenTheRightTreeThenTheValue) {
    std::string log;
    Node* left = makeNode(log, 'c', makeNode(log, 'a'), makeNode(log, 'b'));
    Node* right = makeNode(log, 'f', makeNode(log, 'd'), makeNode(log, 'e'));
    delete makeNode(log, 'g', left, right);
    EXPECT_EQ(log, "abcdefg");
}

TEST(BinaryTreeNode, LeavesAValueThatItDoesNotOwnButDestroysTheChildren) {
    std::string log;
    Node* root = makeNode(log, 'r', makeNode(log, 'a'), makeNode(log, 'b'));
    Tracer* const kept = root->value;
    root->ownsValue = false;
    delete root;
    EXPECT_EQ(log, "ab");
    delete kept;
}

TEST(BinaryTreeNode, ATreeAHundredThousandDeepIsDestroyedOnADefaultStack) {
    destroySpine(100000, [](int) { return true; });
    destroySpine(100000, [](int) { return false; });
    destroySpine(100000, [](int i) { return i % 2 == 0; });
}
