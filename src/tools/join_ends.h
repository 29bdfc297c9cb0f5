#pragma once

#include <cstddef>
#include <map>
#include <unordered_map>
#include <vector>

#include "model/components.h"

namespace QB::Tools::SQL {

/// Where the ends of the links of all joins of a FROM clause stand: the sources that a condition
/// compares, and the sides of its join on which they are.
///
/// A picture of the tree as it is: any edit, an alias included, makes it wrong. Linear in the tree
/// to make; an answer costs what the condition of the join is long, and a look at the sources below
/// the join for each of its fields that is not bound to one.
/// Thread: the caller may read the statement.
class JoinEnds {
public:
    using Source = Component::SQL::SQLAbstractSourceComponent;
    using Join = Component::SQL::SQLJoinSourceNodeComponent;
    using Field = Component::SQL::SQLFieldColumnComponent;
    using Sources = std::vector<Source*>;

    /// The tree below @p root, which may be null.
    explicit JoinEnds(const Component::SQL::SourceNode* root);

    struct Neighbours {
        Source* left = nullptr;
        Source* right = nullptr;
    };
    /// The two sources that the link of a join stands between: those of the first comparison in its
    /// condition that names a field of each side, or else the leaves next to the join. Each is null
    /// where there is none, and both for what is no join of the tree.
    Neighbours neighboursOf(const Source* join) const;
    /// See findParentItemComponentOfJoinConditionFieldComponent(); empty for what is no join.
    std::map<Field*, Source*> sourcesOfFields(const Source* join) const;

    struct Sides {
        Sources left;
        Sources right;
    };
    /// See checkItemComponentsSideOnJoinComponent().
    Sides sidesOf(const Source* join, const Sources& items) const;

private:
    /// Stretches of rows, which are the nodes in the order of the text.
    struct Span {
        std::size_t first = 0;
        std::size_t end = 0;
        bool holds(std::size_t row) const { return row >= first && row < end; }
    };
    struct Node {
        Source* value;
        std::size_t parent;
        std::size_t left = none;
        std::size_t right = none;
        std::size_t row = 0;
        Span below = {};
        /// Of the group that holds the node: what its join joins from the left, without what stands
        /// in front of a comma or around a bracket.
        Span group = {};
        /// From here on, what a join behind the node sees of it: none behind a comma.
        std::size_t sightBegin = 0;
        Source* firstLeaf = nullptr;
        Source* lastLeaf = nullptr;
        bool isComma = false;
        bool isBracket = false;
    };
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    void addNodes(const Component::SQL::SourceNode* root);
    void measure();
    void countRows();
    void findSights();
    const Node* find(const Source* source) const;
    const Node* findJoin(const Source* join) const;
    Span belowOf(std::size_t node) const { return node == none ? Span() : m_nodes[node].below; }
    Source* sourceOf(const Field* field, const Node& join) const;

    std::vector<Node> m_nodes;  // each before those below it
    std::vector<Source*> m_rows;
    std::unordered_map<const Source*, std::size_t> m_places;  // in m_nodes
};

}  // namespace QB::Tools::SQL
