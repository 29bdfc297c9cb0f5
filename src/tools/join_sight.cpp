#include "tools/join_sight.h"

#include <algorithm>

#include "layouts/condition_chain_surgery.h"
#include "layouts/source_tree_layout.h"
#include "model/kind_of.h"
#include "model/tree_walks.h"
#include "tools/join_tools.h"

namespace QB::Tools::SQL {

using namespace Component;
using namespace Component::SQL;
using QBComponentsListLayout_Private::SourceTreeLayout;
using SourceTree::Place;
using SourceTree::PlaceKind;
using Slot = SourceTree::Slot;

namespace {

/// The slots of all joins below @p root, each before those below it.
std::vector<Slot> joinSlots(Slot root) {
    std::vector<Slot> joins;
    std::vector<Slot> pending = {root};
    while (!pending.empty()) {
        const Slot slot = pending.back();
        pending.pop_back();
        SourceNode* node = *slot;
        if (!node) continue;
        const bool isJoin = SourceTree::isJoin(node->value);
        if (isJoin) joins.push_back(slot);
        if (isJoin) pending.push_back(&node->right);
        pending.push_back(&node->left);
    }
    return joins;
}

/// The sources in a layout's rows, if it shows a join tree that has row @p row.
SourceTreeLayout* treeWithRow(const QBComponentsListLayout* layout, unsigned long row) {
    auto* tree = layout ? dynamic_cast<SourceTreeLayout*>(layout->implementation()) : nullptr;
    return tree && row < tree->items().size() ? tree : nullptr;
}

}  // namespace

bool hasFields(const SQLAbstractSourceComponent* source) {
    return ifKind<SQLIdentifierSourceComponent>(source) ||
           ifKind<SQLSubquerySourceComponent>(source);
}

JoinSight::JoinSight(Slot root) : m_places(SourceTree::flatten(root)) {
    for (std::size_t row = 0; row < m_places.size(); ++row) {
        if (hasFields(m_places[row].component)) m_rows.emplace(m_places[row].component, row);
    }
    findRuns();
    findSpans(root);
}

void JoinSight::findRuns() {
    std::vector<std::size_t> open;  // the rows of the brackets around
    std::size_t run = 0;
    std::size_t runs = 1;
    for (std::size_t row = 0; row < m_places.size(); ++row) {
        const Place& place = m_places[row];
        m_spans.push_back({row, row});
        if (place.kind == PlaceKind::Close) {
            run = m_runs[open.back()];
            m_spans[row] = m_spans[open.back()] = {open.back(), row};
            open.pop_back();
        }
        m_runs.push_back(run);
        m_runStarts.resize(runs, row);
        const bool isOpen = place.kind == PlaceKind::Open;
        if (isOpen) open.push_back(row);
        if (isOpen || SourceTree::isComma(place.component)) run = runs++;
    }
}

void JoinSight::findSpans(Slot root) {
    std::unordered_map<Slot, std::size_t> rows;
    for (std::size_t row = 0; row < m_places.size(); ++row)
        rows.emplace(m_places[row].slot, row);
    const std::vector<Slot> joins = joinSlots(root);
    std::for_each(joins.rbegin(), joins.rend(), [&](Slot join) {
        const Span left = m_spans[rows[&(*join)->left]];
        const Span right = m_spans[rows[&(*join)->right]];
        m_spans[rows[join]] = {left.first, right.last};
    });
}

SQLJoinSourceNodeComponent* JoinSight::joinAt(std::size_t row) const {
    return ifKind<SQLJoinSourceNodeComponent>(m_places[row].component);
}

JoinSight::Span JoinSight::rowsInSight(std::size_t row) const {
    if (SourceTree::isComma(m_places[row].component)) return {row, m_spans[row].last};
    const std::size_t start = m_runStarts[m_runs[row]];
    if (joinAt(row)) return {std::max(start, m_spans[row].first), m_spans[row].last};
    std::size_t end = row + 1;
    while (end < m_places.size() && m_places[end].level >= m_places[row].level &&
           (m_places[end].level > m_places[row].level || !joinAt(end)))
        ++end;
    return {start, end - 1};
}

std::vector<SQLAbstractConditionComponent*> JoinSight::blindConditions(std::size_t row) const {
    std::vector<SQLAbstractConditionComponent*> blind;
    SQLJoinSourceNodeComponent* join = joinAt(row);
    if (!join) return blind;
    const Span sight = rowsInSight(row);
    for (const ConditionChain::Place& place : ConditionChain::flatten(&join->condition)) {
        if (place.kind == PlaceKind::Node && isBlind(place.component, sight)) {
            blind.push_back(place.component);
        }
    }
    return blind;
}

bool JoinSight::isBlind(const SQLAbstractConditionComponent* condition, Span sight) const {
    bool isBlind = false;
    const auto look = [&](const AbstractQueryComponent* component) {
        isBlind = isBlind || isOutOfSight(component, sight);
    };
    if (const auto* value = ifKind<SQLConditionValueComponent>(condition)) {
        std::for_each(value->values.begin(), value->values.end(), look);
    } else if (const auto* compare = ifKind<SQLCompareConditionComponent>(condition)) {
        // Not the comparison itself: that owns the rest of the chain.
        visitOwnedComponents(compare->leftValue, look);
        visitOwnedComponents(compare->rightValue, look);
    }
    return isBlind;
}

bool JoinSight::isOutOfSight(const AbstractQueryComponent* component, Span sight) const {
    const auto* column = ifKind<SQLFieldColumnComponent>(component);
    if (!column || !column->source) return false;
    const auto found = m_rows.find(column->source);
    return found == m_rows.end() || found->second < sight.first || found->second > sight.last;
}

std::vector<SQLAbstractSourceComponent*>* joinConditionRelatedSources(
    QBComponentsListLayout* layout, int row) {
    const SourceTreeLayout* tree = row < 0 ? nullptr : treeWithRow(layout, unsigned(row));
    if (!tree) return nullptr;
    const JoinSight sight(tree->root());
    auto sources = std::make_unique<std::vector<SQLAbstractSourceComponent*>>();
    const auto add = [&](std::size_t at) {
        SQLAbstractSourceComponent* source = sight.places()[at].component;
        if (hasFields(source)) sources->push_back(source);
    };
    const auto from = static_cast<std::size_t>(row);
    const JoinSight::Span rows = sight.rowsInSight(from);
    for (std::size_t at = from + 1; at-- > rows.first;)
        add(at);
    for (std::size_t at = from + 1; at <= rows.last; ++at)
        add(at);
    return sources.release();
}

}  // namespace QB::Tools::SQL

namespace QB::Tools::Validation {

using namespace Component::SQL;

std::vector<SQLAbstractConditionComponent*> invalidateJoinConditions(QBComponentsListLayout* layout,
                                                                     unsigned long row, QBEngine*) {
    const auto* tree = SQL::treeWithRow(layout, row);
    if (!tree) return {};
    return SQL::JoinSight(tree->root()).blindConditions(row);
}

}  // namespace QB::Tools::Validation
