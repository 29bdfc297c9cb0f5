#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Small helpers for the texts of the parser library, which are null where absent.
namespace QB {

inline std::string textOf(const char* text) {
    return text ? text : "";
}

inline void appendPresent(std::vector<std::string>& path, const char* name) {
    if (name) path.emplace_back(name);
}

/// ASCII letters alone, whatever the process's locale.
inline char upperCase(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// True if @p text is @p word, which is in upper case, in any case. Null is no word.
inline bool isWord(const char* text, std::string_view word) {
    if (!text) return false;
    for (const char c : word) {
        if (upperCase(*text) != c) return false;
        ++text;
    }
    return *text == '\0';
}

}  // namespace QB
