#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace sqlet {

/// A place in a text, for people. Lines end with LF, CR or both.
struct TextPosition {
    int line = 1;    ///< from 1
    int column = 1;  ///< from 1, in code points
};

/// Where the byte @p offset of @p text is; its end for one behind it. A byte order mark at the
/// start is no character of the text. Linear.
TextPosition positionOf(std::string_view text, std::size_t offset);

/// @p text cut to a length that fits a message, at the border of a character; what is no character
/// of UTF-8 and what does not show becomes "?".
std::string excerpt(std::string_view text);

}  // namespace sqlet
