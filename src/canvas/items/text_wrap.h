#pragma once

#include <string>
#include <vector>

namespace QB::DiagramLumo {

/// A text in the item font, broken into lines.
struct WrappedText {
    std::vector<std::string> lines;
    bool isCut = false;  // the last line ends in "…": there is more
};
/// @p text in at most @p maxLines lines that are not wider than @p width: broken at its line ends,
/// at spaces, and inside of words that are wider than a line. Costs as much as what is shown,
/// however long the text is.
WrappedText wrappedText(const std::string& text, double width, int maxLines);

}  // namespace QB::DiagramLumo
