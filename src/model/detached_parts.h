#pragma once

#include <memory>
#include <set>
#include <vector>

#include "model/components.h"

namespace QB {

/// Destroys the WHERE and HAVING chains and the GROUP BY and ORDER BY columns of @p statement and
/// of every subquery in its FROM clause, which the destructors leave alone; leaves those clauses
/// empty. Null is allowed. Call it before a statement is deleted.
void destroyUnownedClauses(Component::AbstractTopLevelQueryComponent* statement);

/// Destroys a statement that is part of no other, with all of its clauses.
struct StatementDeleter {
    void operator()(Component::SQL::SQLSelectStmtComponent* statement) const;
};
using OwnedStatement = std::unique_ptr<Component::SQL::SQLSelectStmtComponent, StatementDeleter>;

/// Exchanges the contents of two statements: the seven elements change places, the statements stay.
void swapElements(Component::SQL::SQLSelectStmtComponent& a,
                  Component::SQL::SQLSelectStmtComponent& b);

/// What edits took out of a statement and nobody may free yet: other columns, panels or a worker
/// may still point at it.
///
/// Ownership: owns its parts; destroying the list frees them, with all clauses of subqueries in
/// them.
/// Thread: none of its own; the engine's list is guarded by queryComponentAccessMutex.
class DetachedParts {
public:
    using References = std::set<const Component::AbstractQueryComponent*>;

    DetachedParts() = default;
    DetachedParts(DetachedParts&&) = default;
    DetachedParts& operator=(DetachedParts&&) = default;
    ~DetachedParts();

    void add(std::unique_ptr<Component::SQL::SourceNode> tree);
    void add(std::unique_ptr<Component::AbstractQueryComponent> component);
    /// Appends all parts of @p other, which is empty afterwards.
    void add(DetachedParts&& other);

    bool isEmpty() const { return m_parts.empty(); }
    std::size_t size() const { return m_parts.size(); }

    /// Calls @p visit for each part with a tree and a component, one of which is null.
    template <typename Visit>
    void visitParts(const Visit& visit) const {
        for (const Part& part : m_parts)
            visit(part.tree.get(), part.component.get());
    }

    /// Frees every part that contains none of @p referenced and that no part which stays refers to.
    void freeUnreferenced(References referenced);

private:
    struct Part {
        std::unique_ptr<Component::SQL::SourceNode> tree;
        std::unique_ptr<Component::AbstractQueryComponent> component;
    };

    static void destroy(Part& part);

    std::vector<Part> m_parts;
};

/// Adds to @p references what the columns among @p root's components refer to without owning it.
void collectReferences(const Component::AbstractQueryComponent* root,
                       DetachedParts::References& references);

}  // namespace QB
