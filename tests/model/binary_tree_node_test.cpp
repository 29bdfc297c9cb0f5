#include "model/binary_tree_node.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// Writes its name to a log when it is destroyed.
struct Tracer {
    ~Tracer() { log += name; }

    std::string& log;
    const char name;
};

using Node = QB::QBBinaryTreeNode<Tracer*>;

Node* makeNode(std::string& log, char name, Node* left = nullptr, Node* right = nullptr) {
    auto* node = new Node;
    node->value = new Tracer{log, name};
    node->left = left;
    node->right = right;
    return node;
}

}  // namespace

TEST(BinaryTreeNode, DestroysTheLeftTreeThenTheRightTreeThenTheValueThatItOwns) {
    std::string log;
    Node* left = makeNode(log, 'c', makeNode(log, 'a'), makeNode(log, 'b'));
    Node* right = makeNode(log, 'f', makeNode(log, 'd'), makeNode(log, 'e'));
    Tracer* const kept = right->value;
    right->ownsValue = false;
    delete makeNode(log, 'g', left, right);
    EXPECT_EQ(log, "abcdeg");
    delete kept;
}

TEST(BinaryTreeNode, ATreeAHundredThousandDeepIsDestroyedOnADefaultStack) {
    for (const unsigned turnMask : {0U, 1U}) {  // a straight spine and a zigzag
        for (const unsigned side : {0U, 1U}) {
            std::string log;
            Node* root = nullptr;
            for (unsigned i = 0; i < 100000; ++i) {
                const bool isLeft = (i & turnMask) == side;
                root = makeNode(log, 'x', isLeft ? root : nullptr, isLeft ? nullptr : root);
            }
            delete root;
            EXPECT_EQ(log.size(), 100000U);
        }
    }
}
