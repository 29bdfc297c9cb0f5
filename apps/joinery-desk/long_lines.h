#pragma once

#include <QString>

#include "model/vocabulary.h"

namespace QB::Desk {

/// Lines above this make every edit of them slow, since a line is laid out as a whole.
constexpr int longestLine = 5000;  // UTF-16 units

/// @p text with its overlong lines broken where a line break means nothing to any server: outside
/// strings, names and comments, behind a comma or in front of a keyword. Other lines, and stretches
/// without such a place, stay as they are. Linear.
QString withBrokenLines(const QString& text, DatabaseType family);

}  // namespace QB::Desk
