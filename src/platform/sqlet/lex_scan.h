#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "platform/sqlet/lex_traits.h"
#include "platform/sqlet/token.h"

/// Where the parts of a text end, by the rules of one dialect.
namespace sqlet {

/// Behind the end of the text: what is open there.
constexpr std::uint32_t openEnd = 0xFFFFFFFFU;

/// Functions take the position of the first byte and return the one behind the last, or openEnd
/// where the text ends before. Each reads a byte a fixed number of times.
class TextScan {
public:
    TextScan(std::string_view scanned, int dialect)
        : text(scanned)
        , size(static_cast<std::uint32_t>(scanned.size()))
        , traits(lexTraits(dialect))
        , m_chars(charTable(dialect)) {}

    /// NUL behind the end.
    char at(std::uint32_t position) const { return position < size ? text[position] : '\0'; }
    CharClass classAt(std::uint32_t position) const { return m_chars.classOf(text[position]); }
    bool isInName(char c) const { return m_chars.isInName(c); }
    bool isInOperator(char c) const { return m_chars.isInOperator(c); }
    std::string_view between(std::uint32_t begin, std::uint32_t end) const {
        return text.substr(begin, end - begin);
    }

    std::uint32_t blanksEnd(std::uint32_t position) const {
        while (position < size && isBlank(text[position]))
            ++position;
        return position;
    }
    std::uint32_t nameEnd(std::uint32_t position) const {
        while (position < size && m_chars.isInName(text[position]))
            ++position;
        return position;
    }

    /// @p position is at the first of two dashes, or at what may be one.
    bool isLineComment(std::uint32_t position) const;
    std::uint32_t lineCommentEnd(std::uint32_t position) const;
    std::uint32_t blockCommentEnd(std::uint32_t position) const;

    struct Quoted {
        std::uint32_t end = openEnd;
        bool hasEscape = false;  ///< with a backslash

        bool isOpen() const { return end == openEnd; }
    };
    /// @p position is behind the opening quote. A doubled closing quote does not close, unless
    /// @p doublingEscapes is false.
    Quoted quotedEnd(std::uint32_t position, char closing, bool hasBackslashes,
                     bool doublingEscapes = true) const;
    /// Of q'[..]' from its quote on; @p position itself if there is none.
    std::uint32_t alternativeEnd(std::uint32_t position) const;
    /// Of $tag$..$tag$; @p position itself if there is none.
    std::uint32_t dollarQuotedEnd(std::uint32_t position) const;

    struct NumberEnd {
        std::uint32_t end;
        TokenKind kind;  ///< Number, Word or Bad
        bool hasRadix = false;
    };
    /// From a digit, or a dot with one behind it.
    NumberEnd numberEnd(std::uint32_t position) const;
    /// $1.5 and a bare $, which is 0.
    NumberEnd moneyEnd(std::uint32_t position) const;
    std::uint32_t digitsEnd(std::uint32_t position) const;

    /// Length of the longest listed operator, or 0.
    std::uint32_t listedOperator(std::uint32_t position) const;
    struct OperatorEnd {
        std::uint32_t end;
        std::uint32_t signsEnd;  ///< behind the signs that follow, each an operator of its own
    };
    /// Of the operator that begins with the operator character here.
    OperatorEnd operatorEnd(std::uint32_t position) const;

    const std::string_view text;
    const std::uint32_t size;
    const LexTraits& traits;

private:
    std::uint32_t delimitedEnd(std::uint32_t position, std::string_view delimiter) const;
    NumberEnd radixEnd(std::uint32_t position) const;
    bool isSeparator(std::uint32_t position) const;
    std::uint32_t exponentEnd(std::uint32_t position) const;
    NumberEnd withTail(std::uint32_t begin, std::uint32_t end) const;
    OperatorEnd runEnd(std::uint32_t position) const;
    bool isCommentAt(std::uint32_t position) const;

    const CharTable& m_chars;
};

}  // namespace sqlet
