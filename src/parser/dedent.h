#pragma once

#include <string>

namespace QB {

/// @p text, the inside of the brackets of a derived table, moved to the left margin: without the
/// blank lines before it and the blanks behind it, and without the indentation of its first line at
/// the start of each line that has it. Of further tabs there one stays, so that the text is the
/// same when it was generated and is parsed again. Line breaks inside strings, quoted names and
/// comments are part of these and stay as they are.
std::string dedented(const std::string& text, int dialect);

}  // namespace QB
