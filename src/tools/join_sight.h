#pragma once

#include <unordered_map>
#include <vector>

#include "layouts/source_tree_surgery.h"
#include "model/components.h"

namespace QB::Tools::SQL {

/// What the conditions of a join tree may name. The condition of a join may name the sources below
/// that join, those in brackets included, but on its left none before the nearest comma of its
/// group: a comma binds weaker than the joins around it.
///
/// A picture of the tree as it is: any edit makes it wrong. Linear in the tree to make, and then in
/// what is asked for.
class JoinSight {
public:
    using Source = Component::SQL::SQLAbstractSourceComponent;
    /// Rows from first to last, both included.
    struct Span {
        std::size_t first;
        std::size_t last;
    };

    /// The tree in @p root.
    explicit JoinSight(SourceTree::Slot root);

    /// What each row shows, in text order.
    const std::vector<SourceTree::Place>& places() const { return m_places; }

    /// A number for the operands and joins of one bracket, or of the top level, that no comma
    /// separates. A comma counts to what stands before it.
    std::size_t runOf(std::size_t row) const { return m_runs[row]; }

    /// The join in @p row, or null.
    Component::SQL::SQLJoinSourceNodeComponent* joinAt(std::size_t row) const;

    /// The rows in sight of a join. For another row: those of its own run up to the next join.
    Span rowsInSight(std::size_t row) const;

    /// The conditions in the chain of the join in @p row, in text order and at any depth of
    /// brackets, that name a source out of its sight, in whatever place.
    std::vector<Component::SQL::SQLAbstractConditionComponent*> blindConditions(
        std::size_t row) const;

private:
    void findRuns();
    void findSpans(SourceTree::Slot root);
    bool isBlind(const Component::SQL::SQLAbstractConditionComponent* condition, Span sight) const;
    bool isOutOfSight(const Component::AbstractQueryComponent* component, Span sight) const;

    std::vector<SourceTree::Place> m_places;
    std::vector<std::size_t> m_runs;                        // of each row
    std::vector<std::size_t> m_runStarts;                   // first row of each run
    std::vector<Span> m_spans;                              // of the subtree of each row
    std::unordered_map<const Source*, std::size_t> m_rows;  // of the named sources and subqueries
};

/// A table or a subquery: what fields can belong to.
bool hasFields(const Component::SQL::SQLAbstractSourceComponent* source);

}  // namespace QB::Tools::SQL
