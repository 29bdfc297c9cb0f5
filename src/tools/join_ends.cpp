// Where the ends of a link stand: the sources that a join's condition compares, and their sides.

#include "tools/join_ends.h"

#include <algorithm>
#include <utility>

#include "layouts/condition_chain_surgery.h"
#include "layouts/source_tree_surgery.h"
#include "model/kind_of.h"
#include "tools/join_sight.h"
#include "tools/join_tools.h"

namespace QB::Tools::SQL {

using namespace Component;
using namespace Component::SQL;
using Sources = std::vector<SQLAbstractSourceComponent*>;

namespace {

/// The field that an operand, or a condition of its own, begins with; null if it is none.
SQLFieldColumnComponent* firstField(const SQLAbstractConditionComponent* condition) {
    const auto* value = ifKind<SQLConditionValueComponent>(condition);
    return value ? ifKind<SQLFieldColumnComponent>(value->firstValue()) : nullptr;
}

/// The fields that the conditions in a chain compare, at any depth of brackets.
std::vector<SQLFieldColumnComponent*> comparedFields(SQLJoinSourceNodeComponent* join) {
    std::vector<SQLFieldColumnComponent*> fields;
    const auto add = [&fields](const SQLAbstractConditionComponent* condition) {
        if (SQLFieldColumnComponent* field = firstField(condition)) fields.push_back(field);
    };
    for (const ConditionChain::Place& place : ConditionChain::flatten(&join->condition)) {
        add(place.component);
        const auto* compare = ifKind<SQLCompareConditionComponent>(place.component);
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
    const auto* table = ifKind<SQLIdentifierSourceComponent>(source);
    if (!table || qualifiers.empty() || qualifiers.back() != table->name) return false;
    return qualifiers.size() == 1 || std::equal(qualifiers.begin(), qualifiers.end() - 1,
                                                table->path.begin(), table->path.end());
}

}  // namespace

JoinEnds::JoinEnds(const SourceNode* root) {
    addNodes(root);
    measure();
    countRows();
    findSights();
}

void JoinEnds::addNodes(const SourceNode* root) {
    struct Step {
        const SourceNode* node;
        std::size_t parent;
        bool isRight;
    };
    std::vector<Step> steps = {{root, none, false}};
    while (!steps.empty()) {
        const Step step = steps.back();
        steps.pop_back();
        if (!step.node || !step.node->value) continue;
        const std::size_t at = m_nodes.size();
        m_nodes.push_back({step.node->value, step.parent});
        m_places.emplace(step.node->value, at);
        if (step.parent != none)
            (step.isRight ? m_nodes[step.parent].right : m_nodes[step.parent].left) = at;
        steps.push_back({step.node->right, at, true});
        steps.push_back({step.node->left, at, false});
    }
}

/// From the leaves up: how many rows lie below each node, counted from 0 in each, and its outer
/// leaves.
void JoinEnds::measure() {
    std::for_each(m_nodes.rbegin(), m_nodes.rend(), [this](Node& node) {
        node.isComma = SourceTree::isComma(node.value);
        node.isBracket = SourceTree::isBracket(node.value);
        if (SourceTree::isLeaf(node.value)) node.firstLeaf = node.lastLeaf = node.value;
        node.below.end = 1;
        for (const std::size_t side : {node.left, node.right}) {
            if (side == none) continue;
            const Node& below = m_nodes[side];
            node.below.end += below.below.end;
            if (!node.firstLeaf) node.firstLeaf = below.firstLeaf;
            if (below.lastLeaf) node.lastLeaf = below.lastLeaf;
        }
    });
}

/// From the root down. A bracket stands before its content, a join between its sides.
void JoinEnds::countRows() {
    m_rows.resize(m_nodes.size());
    for (std::size_t at = 0; at < m_nodes.size(); ++at) {
        Node& node = m_nodes[at];
        const Node* const parent = node.parent == none ? nullptr : &m_nodes[node.parent];
        const bool isRight = parent && parent->right == at;
        if (parent)
            node.below.first = isRight || parent->isBracket ? parent->row + 1 : parent->below.first;
        node.below.end += node.below.first;
        node.row = node.below.first;
        if (!node.isBracket) node.row += belowOf(node.left).end;  // not counted from the first yet
        const bool isTop = !parent || parent->isComma || parent->isBracket || isRight;
        node.group = isTop ? node.below : parent->group;
        m_rows[node.row] = node.value;
    }
}

void JoinEnds::findSights() {
    std::for_each(m_nodes.rbegin(), m_nodes.rend(), [this](Node& node) {
        const bool isDown = !node.isComma && !node.isBracket && node.left != none;
        node.sightBegin = isDown         ? m_nodes[node.left].sightBegin
                          : node.isComma ? node.row
                                         : node.below.first;
    });
}

const JoinEnds::Node* JoinEnds::find(const Source* source) const {
    const auto found = m_places.find(source);
    return found == m_places.end() ? nullptr : &m_nodes[found->second];
}

const JoinEnds::Node* JoinEnds::findJoin(const Source* join) const {
    const Node* const node = find(join);
    return node && ifKind<Join>(node->value) ? node : nullptr;
}

/// The source below @p join that @p field belongs to; null if there is none.
JoinEnds::Source* JoinEnds::sourceOf(const Field* field, const Node& join) const {
    if (field->source) {
        const Node* const source = find(field->source);
        const bool isBelow = source && join.below.holds(source->row);
        return isBelow && hasFields(source->value) ? source->value : nullptr;
    }
    for (std::size_t row = join.below.first; row < join.below.end; ++row) {
        if (hasFields(m_rows[row]) && isNamedBy(m_rows[row], field->parentPath)) return m_rows[row];
    }
    return nullptr;
}

/// Those that the first comparison across the join names, or else those next to it.
JoinEnds::Neighbours JoinEnds::neighboursOf(const Source* join) const {
    const Node* const node = findJoin(join);
    if (!node) return {};
    const Span left = belowOf(node->left);
    auto* const component = static_cast<Join*>(node->value);
    for (const ConditionChain::Place& place : ConditionChain::flatten(&component->condition)) {
        const auto* compare = ifKind<SQLCompareConditionComponent>(place.component);
        const Field* const a = compare ? firstField(compare->leftValue) : nullptr;
        const Field* const b = compare ? firstField(compare->rightValue) : nullptr;
        Source* const sourceA = a && b ? sourceOf(a, *node) : nullptr;
        Source* const sourceB = a && b ? sourceOf(b, *node) : nullptr;
        if (!sourceA || !sourceB) continue;
        const bool isLeftA = left.holds(find(sourceA)->row);
        if (isLeftA == left.holds(find(sourceB)->row)) continue;
        return isLeftA ? Neighbours{sourceA, sourceB} : Neighbours{sourceB, sourceA};
    }
    return {node->left == none ? nullptr : m_nodes[node->left].lastLeaf,
            node->right == none ? nullptr : m_nodes[node->right].firstLeaf};
}

std::map<JoinEnds::Field*, JoinEnds::Source*> JoinEnds::sourcesOfFields(const Source* join) const {
    std::map<Field*, Source*> sources;
    const Node* const node = findJoin(join);
    if (!node) return sources;
    for (Field* field : comparedFields(static_cast<Join*>(node->value))) {
        if (Source* const source = sourceOf(field, *node)) sources.emplace(field, source);
    }
    return sources;
}

/// What the join does not hold, but its group, is joined to it later: on the right.
JoinEnds::Sides JoinEnds::sidesOf(const Source* join, const Sources& items) const {
    Sides sides;
    const Node* const node = find(join);
    if (!node) return sides;
    for (Source* item : items) {
        const Node* const place = find(item);
        if (!place || place == node || !node->group.holds(place->row)) continue;
        if (!belowOf(node->left).holds(place->row))
            sides.right.push_back(item);
        else if (place->row >= m_nodes[node->left].sightBegin)
            sides.left.push_back(item);
    }
    return sides;
}

// ---- for one join, which names nothing but what is below it
// -------------------------------------------------------------------------------

void findParentItemComponentOfJoinConditionFieldComponent(
    const SourceNode* joinNode,
    std::map<SQLFieldColumnComponent*, SQLAbstractSourceComponent*>& result) {
    result.clear();
    if (joinNode) result = JoinEnds(joinNode).sourcesOfFields(joinNode->value);
}

void checkItemComponentsSideOnJoinComponent(SourceNode* root, SourceNode* joinNode,
                                            const Sources& items, Sources& left, Sources& right) {
    auto sides = joinNode ? JoinEnds(root).sidesOf(joinNode->value, items) : JoinEnds::Sides();
    left = std::move(sides.left);
    right = std::move(sides.right);
}

}  // namespace QB::Tools::SQL
