// Where the ends of a link stand: the sources that a join's condition compares, and their sides.

#include <algorithm>
#include <optional>
#include <unordered_set>

#include "layouts/condition_chain_surgery.h"
#include "layouts/source_tree_surgery.h"
#include "model/tree_walks.h"
#include "tools/join_sight.h"
#include "tools/join_tools.h"

namespace QB::Tools::SQL {

using namespace Component;
using namespace Component::SQL;
using SourceTree::Path;
using SourceTree::Slot;
using Sources = std::vector<SQLAbstractSourceComponent*>;

namespace {

/// The field that an operand, or a condition of its own, begins with; null if it is none.
SQLFieldColumnComponent* firstField(const SQLAbstractConditionComponent* condition) {
    const auto* value = dynamic_cast<const SQLConditionValueComponent*>(condition);
    return value ? dynamic_cast<SQLFieldColumnComponent*>(value->firstValue()) : nullptr;
}

/// The fields that the conditions in a chain compare, at any depth of brackets.
std::vector<SQLFieldColumnComponent*> comparedFields(SQLJoinSourceNodeComponent* join) {
    std::vector<SQLFieldColumnComponent*> fields;
    const auto add = [&fields](const SQLAbstractConditionComponent* condition) {
        if (SQLFieldColumnComponent* field = firstField(condition)) fields.push_back(field);
    };
    for (const ConditionChain::Place& place : ConditionChain::flatten(&join->condition)) {
        add(place.component);
        const auto* compare = dynamic_cast<const SQLCompareConditionComponent*>(place.component);
        if (!compare) continue;
        add(compare->leftValue);
        add(compare->rightValue);
    }
    return fields;
}

/// True if @p qualifiers name @p source: by its alias, or without one by its name, with its path or
/// bare.
bool isNamedBy(const SQLAbstractSourceComponent* source,
               const std::vector<std::string>& qualifiers) {
    if (!source->alias.empty()) return qualifiers.size() == 1 && qualifiers[0] == source->alias;
    const auto* table = dynamic_cast<const SQLIdentifierSourceComponent*>(source);
    if (!table || qualifiers.empty() || qualifiers.back() != table->name) return false;
    return qualifiers.size() == 1 || std::equal(qualifiers.begin(), qualifiers.end() - 1,
                                                table->path.begin(), table->path.end());
}

/// The sources below a join, to find those of its fields.
class SourcesBelow {
public:
    explicit SourcesBelow(const SourceNode* joinNode) {
        visitSourceNodes(joinNode, [this](const SourceNode* node) {
            if (hasFields(node->value)) m_sources.push_back(node->value);
        });
        m_known.insert(m_sources.begin(), m_sources.end());
    }

    SQLAbstractSourceComponent* sourceOf(const SQLFieldColumnComponent* field) const {
        if (field->source) return m_known.count(field->source) > 0 ? field->source : nullptr;
        const auto found = std::find_if(
            m_sources.begin(), m_sources.end(),
            [field](const auto* source) { return isNamedBy(source, field->parentPath); });
        return found == m_sources.end() ? nullptr : *found;
    }

private:
    Sources m_sources;  // in text order
    std::unordered_set<const SQLAbstractSourceComponent*> m_known;
};

bool isRightEdge(const Path& path, std::size_t step) {
    return step > 0 && path[step] == &(*path[step - 1])->right;
}

/// The top of the group that holds the node at the end of @p path: what its join joins from the
/// left, without what stands in front of a comma or around a bracket.
Slot groupTop(const Path& path) {
    std::size_t top = 0;
    for (std::size_t i = 1; i < path.size(); ++i) {
        const SQLAbstractSourceComponent* above = (*path[i - 1])->value;
        const bool isApart = SourceTree::isComma(above) || SourceTree::isBracket(above);
        if (isApart || isRightEdge(path, i)) top = i;
    }
    return path[top];
}

enum class End { Left, Right };

/// From the left side of the join on, at @p step of @p path. None behind a comma on the left.
std::optional<End> leftEnd(const Path& path, std::size_t step) {
    for (std::size_t i = step; i + 1 < path.size(); ++i) {
        const SQLAbstractSourceComponent* value = (*path[i])->value;
        if (SourceTree::isBracket(value) || isRightEdge(path, i + 1)) break;
        if (SourceTree::isComma(value)) return std::nullopt;
    }
    return End::Left;
}

/// The side of the join at which the end of @p path stands; none if the join does not reach there.
std::optional<End> endOf(const Path& path, const SourceNode* joinNode) {
    if (path.empty()) return std::nullopt;
    const auto join =
        std::find_if(path.begin(), path.end(), [joinNode](Slot slot) { return *slot == joinNode; });
    // What the join does not hold is joined to its group later.
    if (join == path.end()) return End::Right;
    const auto behind = static_cast<std::size_t>(join - path.begin()) + 1;
    if (behind == path.size()) return std::nullopt;
    return isRightEdge(path, behind) ? End::Right : leftEnd(path, behind);
}

/// The leaves below a node, from the left to the right.
Sources leavesBelow(const SourceNode* node) {
    Sources leaves;
    visitSourceNodes(node, [&leaves](const SourceNode* below) {
        if (SourceTree::isLeaf(below->value)) leaves.push_back(below->value);
    });
    return leaves;
}

/// The sources of one comparison, on either side of a join.
struct Neighbours {
    SQLAbstractSourceComponent* left = nullptr;
    SQLAbstractSourceComponent* right = nullptr;
};

/// Those that the first comparison across the join names; none if there is no such one.
std::optional<Neighbours> comparedNeighbours(const SourceNode* joinNode, const Sources& leftLeaves,
                                             SQLJoinSourceNodeComponent* join) {
    const SourcesBelow sources(joinNode);
    const std::unordered_set<const SQLAbstractSourceComponent*> left(leftLeaves.begin(),
                                                                     leftLeaves.end());
    for (const ConditionChain::Place& place : ConditionChain::flatten(&join->condition)) {
        const auto* compare = dynamic_cast<const SQLCompareConditionComponent*>(place.component);
        const SQLFieldColumnComponent* const a = compare ? firstField(compare->leftValue) : nullptr;
        const SQLFieldColumnComponent* const b =
            compare ? firstField(compare->rightValue) : nullptr;
        if (!a || !b) continue;
        auto* const sourceA = sources.sourceOf(a);
        auto* const sourceB = sources.sourceOf(b);
        if (!sourceA || !sourceB || left.count(sourceA) == left.count(sourceB)) continue;
        return left.count(sourceA) > 0 ? Neighbours{sourceA, sourceB}
                                       : Neighbours{sourceB, sourceA};
    }
    return std::nullopt;
}

}  // namespace

void findNeighboursOfJoin(const SourceNode* joinNode, SQLAbstractSourceComponent*& left,
                          SQLAbstractSourceComponent*& right) {
    left = right = nullptr;
    auto* join = joinNode ? dynamic_cast<SQLJoinSourceNodeComponent*>(joinNode->value) : nullptr;
    if (!join) return;
    const Sources leftLeaves = leavesBelow(joinNode->left);
    const Sources rightLeaves = leavesBelow(joinNode->right);
    const Neighbours next = {leftLeaves.empty() ? nullptr : leftLeaves.back(),
                             rightLeaves.empty() ? nullptr : rightLeaves.front()};
    const Neighbours found = comparedNeighbours(joinNode, leftLeaves, join).value_or(next);
    left = found.left;
    right = found.right;
}

void findParentItemComponentOfJoinConditionFieldComponent(
    const SourceNode* joinNode,
    std::map<SQLFieldColumnComponent*, SQLAbstractSourceComponent*>& result) {
    result.clear();
    auto* join = joinNode ? dynamic_cast<SQLJoinSourceNodeComponent*>(joinNode->value) : nullptr;
    if (!join) return;
    const SourcesBelow sources(joinNode);
    for (SQLFieldColumnComponent* field : comparedFields(join)) {
        if (auto* source = sources.sourceOf(field)) result.emplace(field, source);
    }
}

void checkItemComponentsSideOnJoinComponent(SourceNode* root, SourceNode* joinNode,
                                            const Sources& items, Sources& left, Sources& right) {
    left.clear();
    right.clear();
    const Path path = joinNode ? SourceTree::pathToValue(&root, joinNode->value) : Path();
    if (path.empty()) return;
    const Slot top = groupTop(path);
    for (SQLAbstractSourceComponent* item : items) {
        const std::optional<End> end = endOf(SourceTree::pathToValue(top, item), joinNode);
        if (end) (*end == End::Left ? left : right).push_back(item);
    }
}

}  // namespace QB::Tools::SQL
