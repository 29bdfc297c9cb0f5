#include "layouts/source_tree_surgery.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <list>
#include <set>
#include <utility>

#include "model/kind_of.h"

namespace QB::SourceTree {

using namespace Component::SQL;

namespace {

using Nodes = std::vector<SourceNode*>;

bool holdsJoin(const SourceNode* node) {
    return node && isJoin(node->value);
}

bool holdsComma(const SourceNode* node) {
    return node && isComma(node->value);
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

Path pathToSlot(Slot root, Slot slot) {
    return findPath(root, [slot](Slot other) { return other == slot; });
}

/// The slot of the join right above the end of @p path; null if there is none.
Slot joinAbove(const Path& path) {
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

/// Operands without a comma in them, and the commas between them.
struct CommaList {
    std::list<SourceNode*> operands;
    std::list<SourceNode*> commas;

    /// Appends @p other with @p join between the two.
    void append(SourceNode* join, CommaList& other) {
        if (holdsComma(join)) {
            commas.push_back(join);
        } else {
            join->left = operands.back();
            join->right = other.operands.front();
            operands.back() = join;
            other.operands.pop_front();
        }
        operands.splice(operands.end(), other.operands);
        commas.splice(commas.end(), other.commas);
    }
};

/// The joins of a group, each before those below it, right sides before left ones.
Nodes joinsOf(SourceNode* group) {
    Nodes joins;
    Nodes pending = {group};
    while (!pending.empty()) {
        SourceNode* node = pending.back();
        pending.pop_back();
        if (!holdsJoin(node)) continue;
        joins.push_back(node);
        pending.push_back(node->left);
        pending.push_back(node->right);
    }
    return joins;
}

CommaList takeCommasOut(SourceNode* group) {
    // Read backwards the joins come after both of their sides, the right one last.
    std::vector<CommaList> sides;
    const auto takeSide = [&sides](SourceNode* side) {
        CommaList list = {{side}, {}};
        if (!holdsJoin(side)) return list;
        list = std::move(sides.back());
        sides.pop_back();
        return list;
    };
    const Nodes joins = joinsOf(group);
    for (auto join = joins.rbegin(); join != joins.rend(); ++join) {
        CommaList right = takeSide((*join)->right);
        sides.push_back(takeSide((*join)->left));
        sides.back().append(*join, right);
    }
    return takeSide(group);
}

/// True if the joins of a group stand below its commas, and these lean to the left.
bool isSunk(SourceNode* group) {
    const Nodes joins = joinsOf(group);
    return std::none_of(joins.begin(), joins.end(), [](const SourceNode* join) {
        return holdsComma(join->right) || (!holdsComma(join) && holdsComma(join->left));
    });
}

bool hasComma(SourceNode* group) {
    const Nodes joins = joinsOf(group);
    return std::any_of(joins.begin(), joins.end(), holdsComma);
}

/// True if a comma stands to the right of another join, whose condition the text puts behind it.
bool hasCommaRightOfJoin(SourceNode* group) {
    struct Step {
        SourceNode* node;
        bool isRightOfJoin;
    };
    std::vector<Step> steps = {{group, false}};
    while (!steps.empty()) {
        const Step step = steps.back();
        steps.pop_back();
        if (!holdsJoin(step.node)) continue;
        const bool isOther = !holdsComma(step.node);
        if (step.isRightOfJoin && !isOther) return true;
        steps.push_back({step.node->left, step.isRightOfJoin});
        steps.push_back({step.node->right, step.isRightOfJoin || isOther});
    }
    return false;
}

/// Two ways that part at a join, the left one first.
struct Fork {
    Path left;
    Path right;
    std::size_t depth;  ///< of the slot of the join
    bool isInOrder;

    Slot join() const { return left[depth]; }
};

std::optional<Fork> forkOf(Slot root, const SQLAbstractSourceComponent* first,
                           const SQLAbstractSourceComponent* second) {
    Path a = pathToValue(root, first);
    Path b = pathToValue(root, second);
    const std::size_t common = commonLength(a, b);
    if (common == 0 || common == a.size() || common == b.size()) return std::nullopt;
    const bool isInOrder = turnsRight(b, common - 1);
    if (!isInOrder) a.swap(b);
    return Fork{std::move(a), std::move(b), common - 1, isInOrder};
}

/// True if no comma stands between the left source and the join, and none behind the join.
bool isInReach(const Fork& fork) {
    if (hasComma((*fork.join())->right)) return false;
    for (std::size_t i = fork.depth + 1; holdsJoin(*fork.left[i]); ++i) {
        SourceNode* join = *fork.left[i];
        const bool isCut = holdsComma(join) || hasComma(join->right);
        if (!turnsRight(fork.left, i) && isCut) return false;
    }
    return true;
}

/// Puts the right side of a comma behind the operand of commas that holds the left source, both
/// under that comma. Returns the slot in which it is then.
Slot moveNextToLeft(const Fork& fork) {
    std::size_t i = fork.depth + 1;
    while (holdsComma(*fork.left[i]))
        ++i;
    const bool isNextTo = i == fork.depth + 1;
    if (isNextTo) return fork.join();
    const Slot operand = fork.left[i];
    SourceNode* comma = *fork.join();
    *fork.join() = comma->left;
    comma->left = *operand;
    *operand = comma;
    return operand;
}

}  // namespace

bool isJoin(const SQLAbstractSourceComponent* component) {
    return ifKind<SQLJoinSourceNodeComponent>(component);
}

bool isComma(const SQLAbstractSourceComponent* component) {
    const auto* join = ifKind<SQLJoinSourceNodeComponent>(component);
    return join && join->joinType == SQLJoinTypeComma;
}

bool isBracket(const SQLAbstractSourceComponent* component) {
    return ifKind<SQLBracketedSourceNodeComponent>(component);
}

bool isLeaf(const SQLAbstractSourceComponent* component) {
    return ifKind<SQLIdentifierSourceComponent>(component) ||
           ifKind<SQLAnyExpressionSourceComponent>(component) ||
           ifKind<SQLSubquerySourceComponent>(component);
}

Path pathToValue(Slot root, const SQLAbstractSourceComponent* value) {
    if (!value) return {};
    return findPath(root, [value](Slot slot) { return *slot && (*slot)->value == value; });
}

Slot groupOf(const Path& path, std::size_t depth) {
    while (depth > 0 && holdsJoin(*path[depth - 1]))
        --depth;
    return path[depth];
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
        const PlaceKind kind = isBracket(node->value) ? PlaceKind::Open : PlaceKind::Node;
        const Place own = {kind, place.slot, node->value, place.level};
        if (isJoin(node->value)) {
            steps.push_back(opening(&node->right, place.level));
            steps.push_back({own, false});
            steps.push_back(opening(&node->left, place.level));
        } else if (kind == PlaceKind::Open) {
            places.push_back(own);
            steps.push_back({{PlaceKind::Close, nullptr, node->value, place.level}, false});
            steps.push_back(opening(&node->left, place.level + 1));
        } else if (isLeaf(node->value)) {
            places.push_back(own);
        }
    }
    return places;
}

void leanLeft(Slot slot) {
    SourceNode* join = *slot;
    SourceNode* deepest = join->right;
    while (holdsJoin(deepest->left))
        deepest = deepest->left;
    *slot = join->right;
    join->right = deepest->left;
    deepest->left = join;
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
    const Slot parent = joinAbove(pathToSlot(root, slot));
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
    const Path path = pathToSlot(root, slot);
    const Slot group = groupOf(path, path.size() - 1);
    const Slot parent = joinAbove(path);
    std::unique_ptr<SourceNode> bracket(*slot);
    *slot = std::exchange(bracket->left, nullptr);
    const bool leansRight = parent && slot == &(*parent)->right && holdsJoin(*slot);
    if (leansRight) leanLeft(parent);
    if (hasCommaRightOfJoin(*group)) sinkJoinsBelowCommas(group);
    return bracket;
}

bool sinkJoinsBelowCommas(Slot group) {
    if (isSunk(*group)) return false;
    CommaList list = takeCommasOut(*group);
    auto operand = list.operands.begin();
    *group = *operand;
    for (SourceNode* comma : list.commas) {
        comma->left = std::exchange(*group, comma);
        comma->right = *++operand;
    }
    return true;
}

std::optional<Meeting> bringTogether(Slot root, const SQLAbstractSourceComponent* first,
                                     const SQLAbstractSourceComponent* second) {
    const std::optional<Fork> fork = forkOf(root, first, second);
    if (!fork) return std::nullopt;
    const Slot group = groupOf(fork->left, fork->depth);
    if (isInReach(*fork) && !hasCommaRightOfJoin(*group)) {
        return Meeting{fork->join(), fork->isInOrder, false};
    }
    sinkJoinsBelowCommas(group);
    const std::optional<Fork> sunk = forkOf(root, first, second);
    if (!sunk) return std::nullopt;
    const bool isBound = !holdsComma(*sunk->join());
    return Meeting{isBound ? sunk->join() : moveNextToLeft(*sunk), sunk->isInOrder, true};
}

}  // namespace QB::SourceTree
