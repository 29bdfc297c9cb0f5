#pragma once

#include <QString>
#include <string>
#include <vector>

#include "model/export.h"
#include "model/vocabulary.h"

namespace QB {

/// A stretch of a text document, in positions of QTextDocument: `[start, start + length)`.
struct TextSpan {
    int start = 0;
    int length = 0;
};

inline bool operator==(TextSpan a, TextSpan b) {
    return a.start == b.start && a.length == b.length;
}

/// What differs between two texts: `[start, start + oldLength)` of the old one is replaced by
/// `[start, start + newLength)` of the new one.
struct TextDifference {
    int start = 0;
    int oldLength = 0;
    int newLength = 0;
};

/// UTF-8 @p text as a document holds it: each of "\r\n", "\r" and the separators that Qt reads as
/// the end of a block becomes one "\n".
QB_EXPORT QString documentText(const std::string& text);

/// @p range with the indentation in front of it: where only white space stands between the start
/// and the line feed before it, the range begins behind that line feed.
QBRange widenedOverIndentation(const std::string& text, QBRange range);

/// Where ranges of bytes of the UTF-8 @p text stand in documentText(text). What lies beyond the
/// text is cut off, and a range without text is left out. In order of @p ranges. One pass over the
/// text.
QB_EXPORT std::vector<TextSpan> documentSpans(const std::string& text,
                                              const std::vector<QBRange>& ranges);

/// The shortest difference in one piece; splits no surrogate pair.
QB_EXPORT TextDifference differenceBetween(const QString& oldText, const QString& newText);

}  // namespace QB
