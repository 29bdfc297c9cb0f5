#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "model/vocabulary.h"

/// How servers compare names. The letters A to Z alone have a case here.
namespace QB {

/// Whether servers of that family tell apart what differs in case alone. The parser has folded the
/// bare names of these families. MySQL's tables have a case on some systems only: who looks for one
/// takes the exact name first.
inline bool namesHaveCase(DatabaseType type) {
    return type == DatabaseTypePostgreSQL || type == DatabaseTypeOracle;
}

constexpr char lowerCase(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

inline bool equalWithoutCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowerCase(x) == lowerCase(y); });
}

inline bool isSameName(std::string_view a, std::string_view b, bool haveCase) {
    return haveCase ? a == b : equalWithoutCase(a, b);
}

/// The same for all names that are the same.
inline std::string foldedName(std::string name, bool haveCase) {
    if (!haveCase) std::transform(name.begin(), name.end(), name.begin(), lowerCase);
    return name;
}

}  // namespace QB
