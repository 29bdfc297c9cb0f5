#pragma once

#include <string>

#include "model/vocabulary.h"

namespace QB {

/// @p text, a part of a statement that the user typed, such that what the statement has behind it
/// stays out of it: where it ends in a comment to the end of the line, the line ends, too.
/// Thread: any.
std::string withLineEnded(const std::string& text, DatabaseType family);

}  // namespace QB
