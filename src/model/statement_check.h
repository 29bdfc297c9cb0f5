#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "model/components.h"

namespace QB {

class DetachedParts;

/// Looks whether statements are whole: what is broken in one shows only much later, as a crash or
/// as a text that lost a table.
///
///     StatementCheck check(root);           // what is to be whole
///     check.addDetached(retired);           // what edits took out and nobody has freed
///     check.addLayers(layers);              // what is open
///     const std::string faults = check.faults();
///
/// Whole means:
/// - every node and component is reached once, and none that was taken out is still reached;
/// - a join has both children, a bracket none at the right, a leaf none at all, a derived table its
///   statement; every node has a value and owns it;
/// - a list of columns holds no null; in GROUP BY and ORDER BY each column carries its direction;
/// - an operand is one condition: only the right one may be two with an AND between them, the
///   bounds of BETWEEN;
/// - the source of a field is a table, free text, derived table or bracket of its own statement;
///   the column that it refers to is one of its SELECT list. Statements around it do not count: no
///   name is bound to them. Until validation has cleared them, both may also be something that
///   was taken out;
/// - the first layer is the root, every other the statement of a derived table in the one before;
///   or it was taken out.
/// What is half made is whole: empty clauses, operands, brackets, lists of values, a null value.
///
/// What is referred to is compared by address and never read, so a reference to freed memory is
/// found as long as nothing stands at that address again. What is owned is read: a freed component
/// that is still part of the statement is for the address sanitizer to find.
/// For debugging and tests. Linear, without recursion, any shape: cycles and shared nodes are
/// faults, not traps.
/// Thread: the caller may read the statements and the detached parts.
class StatementCheck {
public:
    /// Null, and a statement of an unknown class, have nothing that could be broken.
    explicit StatementCheck(const Component::AbstractTopLevelQueryComponent* root);
    ~StatementCheck();
    StatementCheck(const StatementCheck&) = delete;
    StatementCheck& operator=(const StatementCheck&) = delete;

    /// What was taken out and is kept. Its shape does not count, but what it holds may stand
    /// nowhere else.
    void addDetached(const DetachedParts& parts);

    /// The statements that are open, the root first; call it last. Null entries are allowed.
    void addLayers(const std::vector<const Component::AbstractTopLevelQueryComponent*>& layers);

    /// A line for each fault, in no particular order, that names the component and what is wrong
    /// with it; empty if all is whole. Of a great many faults only the first are told.
    std::string faults() const;

    /// How many nodes and components were looked at.
    std::size_t size() const;

private:
    class Walk;
    const std::unique_ptr<Walk> m_walk;
};

/// The faults of @p root alone, with @p layers open on it and nothing taken out.
std::string findStatementFaults(
    const Component::AbstractTopLevelQueryComponent* root,
    const std::vector<const Component::AbstractTopLevelQueryComponent*>& layers = {});

}  // namespace QB
