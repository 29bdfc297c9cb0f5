#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/sqlet/lexer.h"

/// What the lexer looks up for each byte, made from the traits when the library is compiled.
namespace sqlet {

/// What a byte can begin.
enum class CharClass : std::uint8_t {
    Bad,
    Blank,
    Word,
    Digit,
    Quote,
    DoubleQuote,
    Backtick,
    BracketName,
    Open,   ///< ( [ {
    Close,  ///< ) ] }
    Dot,
    Comma,
    Semicolon,
    Minus,  ///< an operator or a comment
    Slash,  ///< an operator or a comment
    HashComment,
    Dollar,
    Mark,  ///< a parameter or an operator
    Operator,
};

/// What else a byte can be, as bits.
enum CharRole : std::uint8_t {
    CharInName = 1,
    CharInOperator = 2,  ///< can go on in an operator of several characters
};

struct CharTable {
    std::array<CharClass, 256> begins = {};
    std::array<std::uint8_t, 256> roles = {};

    CharClass classOf(char c) const { return begins[static_cast<unsigned char>(c)]; }
    bool isInName(char c) const { return roles[static_cast<unsigned char>(c)] & CharInName; }
    bool isInOperator(char c) const {
        return roles[static_cast<unsigned char>(c)] & CharInOperator;
    }
};

/// That of lexTraits(@p family).
const CharTable& charTable(int family);

constexpr bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
/// A no-break space is none: the servers take its bytes for part of a name.
constexpr bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
constexpr char toLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr bool holds(std::string_view characters, char c) {
    for (const char each : characters) {
        if (each == c) return true;
    }
    return false;
}

}  // namespace sqlet
