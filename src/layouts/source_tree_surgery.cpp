#include "layouts/source_tree_surgery.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <set>
#include <utility>

namespace QB::SourceTree {

using namespace Component::SQL;

namespace {

/// The slots from the root down to a node, both included.
using Path = std::vector<Slot>;
using Nodes = std::vector<SourceNode*>;

bool holdsJoin(const SourceNode* node) {
    return node && isJoin(node->value);
}

bool holdsComma(const SourceNode* node) {
    const auto* join = dynamic_cast<const SQLJoinSourceNodeComponent*>(node->value);
    return join && join->joinType == SQLJoinTypeComma;
}

Path findPath(Slot root, const std::function<bool(Slot)>& isWanted) {
    struct Step {
        Slot slot;
        std::size_t depth;
    };
    Path path;
    std::vector<Step> steps = {{root, 0}};
    while (!steps.empty()) {
        const Step step = steps.back();
        steps.pop_back();
        path.resize(step.depth);
        path.push_back(step.slot);
        if (isWanted(step.slot)) return path;
        SourceNode* node = *step.slot;
        if (!node) continue;
        steps.push_back({&node->right, step.depth + 1});
        steps.push_back({&node->left, step.depth + 1});
    }
    return {};
}

Path pathToNode(Slot root, const SourceNode* node) {
    return findPath(root, [node](Slot slot) { return *slot == node; });
}

/// The slot of the join right above @p slot; null if there is none.
Slot joinAbove(Slot root, Slot slot) {
    const Path path = findPath(root, [slot](Slot other) { return other == slot; });
    if (path.size() < 2) return nullptr;
    const Slot parent = path[path.size() - 2];
    return holdsJoin(*parent) ? parent : nullptr;
}

bool turnsRight(const Path& path, std::size_t step) {
    return path[step + 1] == &(*path[step])->right;
}

std::size_t commonLength(const Path& a, const Path& b) {
    const auto differ = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    return static_cast<std::size_t>(std::distance(a.begin(), differ.first));
}

/// The joins of which the right side holds one end of a selection but neither all of the selection
/// nor only selected operands. Without such a join the selection is a subtree, or becomes one when
/// the join before its first operand is lifted.
///
/// The right side of a join on the way to the first operand starts with that operand only if the
/// way does not turn right again; on the way to the last operand it ends with that operand only if
/// the way never turns left again.
Nodes joinsInTheWay(const Path& first, const Path& last) {
    if (first == last) return {};
    const std::size_t common = commonLength(first, last);
    Nodes inTheWay;
    Nodes rightTurns;
    for (std::size_t i = common; i + 1 < first.size(); ++i) {
        if (turnsRight(first, i)) rightTurns.push_back(*first[i]);
    }
    if (!rightTurns.empty()) {
        inTheWay.assign(rightTurns.begin(), std::prev(rightTurns.end()));
        rightTurns.clear();
    }
    for (std::size_t i = common - 1; i + 1 < last.size(); ++i) {
        if (turnsRight(last, i)) {
            rightTurns.push_back(*last[i]);
        } else {
            inTheWay.insert(inTheWay.end(), rightTurns.begin(), rightTurns.end());
            rightTurns.clear();
        }
    }
    return inTheWay;
}

/// J(X, K(L(Y, Z), ...)) becomes K(L(J(X, Y), Z), ...): the same text, leaning to the left. The
/// right side of the join in @p slot is a join.
void leanLeft(Slot slot) {
    SourceNode* join = *slot;
    SourceNode* deepest = join->right;
    while (holdsJoin(deepest->left))
        deepest = deepest->left;
    *slot = join->right;
    join->right = deepest->left;
    deepest->left = join;
}

/// Leans every one of @p commas below @p top to the left. Upper ones first, so that each step of
/// the way down is made once.
void rotateCommas(Slot top, const std::set<SourceNode*>& commas) {
    std::vector<Slot> slots = {top};
    while (!slots.empty()) {
        const Slot slot = slots.back();
        slots.pop_back();
        while (commas.count(*slot) > 0 && holdsJoin((*slot)->right))
            leanLeft(slot);
        if (!holdsJoin(*slot)) continue;
        slots.push_back(&(*slot)->left);
        slots.push_back(&(*slot)->right);
    }
}

/// Follows @p path from @p start while it goes left: the slot of the first join that it leaves to
/// the right, or its end.
Slot leftmostOnPath(const Path& path, std::size_t start) {
    std::size_t i = start;
    while (i + 1 < path.size() && !turnsRight(path, i))
        ++i;
    return path[i];
}

}  // namespace

bool isJoin(const SQLAbstractSourceComponent* component) {
    return dynamic_cast<const SQLJoinSourceNodeComponent*>(component);
}

bool isBracket(const SQLAbstractSourceComponent* component) {
    return dynamic_cast<const SQLBracketedSourceNodeComponent*>(component);
}

bool isLeaf(const SQLAbstractSourceComponent* component) {
    return dynamic_cast<const SQLIdentifierSourceComponent*>(component) ||
           dynamic_cast<const SQLAnyExpressionSourceComponent*>(component) ||
           dynamic_cast<const SQLSubquerySourceComponent*>(component);
}

std::vector<Place> flatten(Slot root) {
    // A step opens a slot, or is a place that was put off until the tree to its left is through.
    struct Step {
        Place place;
        bool isOpening;
    };
    const auto opening = [](Slot slot, int level) {
        return Step{{PlaceKind::Empty, slot, nullptr, level}, true};
    };
    std::vector<Place> places;
    std::vector<Step> steps = {opening(root, 0)};
    while (!steps.empty()) {
        const Step step = steps.back();
        steps.pop_back();
        const Place& place = step.place;
        SourceNode* node = step.isOpening ? *place.slot : nullptr;
        if (!node || !node->value) {
            places.push_back(place);
            continue;
        }
        const Place own = {PlaceKind::Node, place.slot, node->value, place.level};
        if (isJoin(node->value)) {
            steps.push_back(opening(&node->right, place.level));
            steps.push_back({own, false});
            steps.push_back(opening(&node->left, place.level));
        } else if (isBracket(node->value)) {
            places.push_back(own);
            steps.push_back({{PlaceKind::Close, nullptr, node->value, place.level}, false});
            steps.push_back(opening(&node->left, place.level + 1));
        } else if (isLeaf(node->value)) {
            places.push_back(own);
        }
    }
    return places;
}

SQLAbstractSourceComponent* joinWith(Slot target, std::unique_ptr<SourceNode> operand, Side side) {
    auto component = std::make_unique<SQLJoinSourceNodeComponent>();
    component->joinType = side == Side::Left ? SQLJoinTypeComma : SQLJoinTypeCustom;
    auto join = std::make_unique<SourceNode>();
    join->value = component.release();
    (side == Side::Left ? join->left : join->right) = operand.release();
    (side == Side::Left ? join->right : join->left) = *target;
    *target = join.release();
    return (*target)->value;
}

std::unique_ptr<SourceNode> takeOperand(Slot root, Slot slot) {
    const Slot parent = joinAbove(root, slot);
    if (!parent) return std::unique_ptr<SourceNode>(std::exchange(*slot, nullptr));
    std::unique_ptr<SourceNode> join(*parent);
    *parent = std::exchange(slot == &join->left ? join->right : join->left, nullptr);
    return join;
}

bool canWrap(Slot root, Slot first, Slot last) {
    const Nodes inTheWay = joinsInTheWay(pathToNode(root, *first), pathToNode(root, *last));
    return std::all_of(inTheWay.begin(), inTheWay.end(), holdsComma);
}

SQLAbstractSourceComponent* wrap(Slot root, Slot first, Slot last) {
    const SourceNode* firstNode = *first;
    const SourceNode* lastNode = *last;
    Path path = pathToNode(root, firstNode);
    Path lastPath = pathToNode(root, lastNode);
    const Nodes commas = joinsInTheWay(path, lastPath);
    if (!commas.empty()) {
        rotateCommas(path[commonLength(path, lastPath) - 1], {commas.begin(), commas.end()});
        path = pathToNode(root, firstNode);
        lastPath = pathToNode(root, lastNode);
    }
    const std::size_t common = commonLength(path, lastPath);
    const Slot top = path[common - 1];

    auto bracket = std::make_unique<SourceNode>();
    bracket->value = new SQLBracketedSourceNodeComponent;
    SQLAbstractSourceComponent* component = bracket->value;
    bracket->left = *top;
    const Slot split = common < path.size() ? leftmostOnPath(path, common) : top;
    SourceNode* before = common < path.size() && holdsJoin(*split) ? *split : nullptr;
    if (!before) {
        *top = bracket.release();
        return component;
    }
    // What stands to the left of the selection belongs to this join: it goes above the bracket.
    *top = before;
    *split = before->right;
    before->right = bracket.release();
    return component;
}

std::unique_ptr<SourceNode> takeBracketAway(Slot root, Slot slot) {
    const Slot parent = joinAbove(root, slot);
    std::unique_ptr<SourceNode> bracket(*slot);
    *slot = std::exchange(bracket->left, nullptr);
    const bool leansRight = parent && slot == &(*parent)->right && holdsJoin(*slot);
    if (leansRight) leanLeft(parent);
    return bracket;
}

}  // namespace QB::SourceTree
