#pragma once

#include <set>
#include <string>
#include <vector>

#include "model/components.h"

/// The column list of a join with USING, which the model keeps as one free text.
namespace QB::Tools::SQL {

/// True if the condition of @p join is such a list, or there is none yet.
bool canBeUsingList(const Component::SQL::SQLJoinSourceNodeComponent* join);

/// The names in the list as they are without quotes; none for a condition that is no such list.
std::vector<std::string> usingColumns(const Component::SQL::SQLJoinSourceNodeComponent* join);

/// Takes names out of the list, by their places in usingColumns(). Returns true if there was one.
bool removeFromUsingList(Component::SQL::SQLJoinSourceNodeComponent* join,
                         const std::set<std::size_t>& places);

/// Adds a column to the list, for which canBeUsingList is true; @p quoted is @p name as the text is
/// to have it. Nothing if it is there already, with or without quotes, in whatever case if without.
/// Returns true if it was added.
bool addToUsingList(Component::SQL::SQLJoinSourceNodeComponent* join, const std::string& name,
                    const std::string& quoted);

}  // namespace QB::Tools::SQL
