#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/vocabulary.h"

namespace QB {

/// @p text, a part of a statement that the user typed, such that what the statement has behind it
/// stays out of it: where it ends in a comment to the end of the line, the line ends, too.
/// Thread: any.
std::string withLineEnded(const std::string& text, DatabaseType family);

/// Whether the source @p text is a name, a call or something in brackets, and has nothing behind it
/// that an alias would have to stand before, such as a hint, or that is an alias.
/// Thread: any.
bool isOnePiece(const std::string& text, DatabaseType family);

/// What texts may call a source: an alias, or the path and the name of a table, outermost first.
struct SourceName {
    std::vector<std::string> names;
    bool isClear = true;  ///< the last of them does alone: no other source goes by it
};

enum class TextPlace { Value, Source };

/// @p text with @p now wherever it names a field by @p former; null where that cannot be told from
/// the tokens alone: a subquery in it may mean a source of its own, and a source may stand in the
/// schema of that name; nor where @p now has no name. Linear.
/// Thread: any.
std::optional<std::string> withSourceRenamed(const std::string& text, TextPlace place,
                                             const SourceName& former, const SourceName& now,
                                             const QBDatabaseInfo& info);

}  // namespace QB
