#pragma once

#include <functional>
#include <string>
#include <vector>

#include "model/components.h"
#include "model/element_expressions.h"
#include "model/export.h"

namespace QB::Tools {

/// True if the sources of @p element lie in more than one schema, so that no qualifier may be
/// dropped. Counts the last path entry of each identifier source, through joins and brackets, not
/// into subqueries; a source without a path counts for none. Null gives false.
QB_EXPORT bool checkMultipleSchemaInvolved(const ELEMSQLSourceExpr* element);

/// Calls @p visit for every node of a join tree that has a value, in text order: the left tree,
/// the node, the right tree; a bracket before its content. Does not enter subqueries. Any depth.
void visitSourceNodes(const Component::SQL::SourceNode* root,
                      const std::function<void(const Component::SQL::SourceNode*)>& visit);

/// Calls @p visit for @p root and every component that it owns, at any depth, subqueries included.
/// Null is allowed. The order is not text order. Any depth, no recursion.
void visitOwnedComponents(
    const Component::AbstractQueryComponent* root,
    const std::function<void(const Component::AbstractQueryComponent*)>& visit);

/// As visitOwnedComponents for every value of a join tree.
void visitOwnedComponents(
    const Component::SQL::SourceNode* tree,
    const std::function<void(const Component::AbstractQueryComponent*)>& visit);

}  // namespace QB::Tools
