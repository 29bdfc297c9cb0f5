#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "model/components.h"

/// Joins that have no condition where one is expected. Thread: may read the statement.
namespace QB::Tools::SQL {

enum class JoinLack {
    None,       ///< it has one, takes none, or can do without
    Condition,  ///< servers refuse it without one
    Cross,      ///< servers take it for a CROSS JOIN, which nobody wrote
    /// Its text says NATURAL, so that it compares all columns of the same name, which nobody wrote.
    Natural,
};

/// True if @p join was read as NATURAL, so that it compares all columns of the same name.
bool saysNatural(const Component::SQL::SQLJoinSourceNodeComponent* join);

/// What the lack of a condition comes to with servers of that family. Nothing is known of joins in
/// the user's own words.
JoinLack lackOf(const Component::SQL::SQLJoinSourceNodeComponent* join, DatabaseType type);

/// Finds the joins that an edit leaves without the condition they had, so that they compare other
/// columns from then on.
class NaturalJoinWatch {
public:
    /// Before the edit of the tree in @p root.
    NaturalJoinWatch(const Component::SQL::SourceNode* root, DatabaseType type);

    /// After it: what the text calls them, each word once.
    std::vector<std::string> newlyNatural(const Component::SQL::SourceNode* root) const;

private:
    DatabaseType m_type;
    std::unordered_set<long> m_withCondition;  // ids
};

/// Tells the user of them (showError); nothing for none. To be called last: the host may end the
/// caller.
void tellNaturalJoins(const std::vector<std::string>& words);

}  // namespace QB::Tools::SQL
