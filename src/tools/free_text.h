#pragma once

#include <string>

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

/// Whether @p text names something by the table of that name or alias before it, whatever the case.
/// Thread: any.
bool namesTable(const std::string& text, const std::string& table, DatabaseType family);

}  // namespace QB
