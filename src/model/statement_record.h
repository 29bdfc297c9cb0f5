#pragma once

#include <string>
#include <string_view>

#include "model/detached_parts.h"

namespace QB {

/// A statement with all that hangs on it, as bytes: every field, the ids, and what columns refer
/// to. Two statements have the same record exactly if they are the same in all of that, free texts
/// and halves of conditions included; a record is of one run of the program and of no use in
/// another.
///
/// What a column refers to may have been taken out of the statement: such a source or column is
/// recorded, too.
/// Cost: linear in the statement; chains and nested brackets by loops.
/// Thread: the caller may read the statement.
std::string recordStatement(const Component::SQL::SQLSelectStmtComponent& statement);

/// A statement made of a record.
struct RestoredStatement {
    OwnedStatement statement;
    DetachedParts detached;  ///< what columns of it refer to and that stands in no clause
};

/// Makes the statement of @p record: other objects with the same ids, so that who knows a component
/// by its id finds it again. The objects that bear these ids now are expected to go soon; an id
/// stays alive as long as one of its objects lives.
/// Errors: a null statement for bytes that recordStatement() did not write.
[[nodiscard]] RestoredStatement restoreStatement(std::string_view record);

}  // namespace QB
