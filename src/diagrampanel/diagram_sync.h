#pragma once

#include <vector>

#include "model/components.h"

/// What has to be done on the diagram so that it shows a statement: a pure difference.
namespace QB {

/// A component as one side of the comparison knows it. Addresses are compared, never read.
struct DiagramPart {
    Component::SQL::SQLAbstractSourceComponent* component;  // not owned
    long id;
    bool isJoin;
    bool operator==(const DiagramPart& other) const {
        return component == other.component && id == other.id && isJoin == other.isJoin;
    }
};
using DiagramParts = std::vector<DiagramPart>;

/// The items, then the joins, of a FROM clause in text order: named sources, subqueries and
/// expressions, whatever brackets they are in; joins but the commas. Nothing for a null @p root.
/// Thread: the caller may read the statement.
DiagramParts diagramPartsOf(const Component::SQL::SourceNode* root);

/// A part that lies at another address now, with the same id.
struct DiagramRebind {
    Component::SQL::SQLAbstractSourceComponent* former;
    Component::SQL::SQLAbstractSourceComponent* now;
};

/// To be done in this order: an address in `removed` may be one in `added`.
struct DiagramDifference {
    DiagramParts removed;                ///< drawn, and not in the statement: no such id there
    std::vector<DiagramRebind> rebound;  ///< as a permutation: take all first, then give
    DiagramParts added;                  ///< in text order
    DiagramParts updated;                ///< in both, as they lie in the statement now
};

/// A part is the same on both sides if id and kind are; what became a join of another kind stays
/// the same. No id occurs twice on one side. Cost: linear.
DiagramDifference diagramDifference(const DiagramParts& drawn, const DiagramParts& wanted);

}  // namespace QB
