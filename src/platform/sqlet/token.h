#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

/// The tokens of a text: what the lexer gives to the grammar, and all that is kept of the layout.
namespace sqlet {

/// Index of a token or of "no token".
using TokenIndex = std::uint32_t;
constexpr TokenIndex noToken = 0xFFFFFFFFU;

/// The words that the grammar looks at, in any family. No word has the value 0.
enum class Keyword : std::uint16_t {
    None = 0,
#define SQLET_KEYWORD(name, text) name,
#include "platform/sqlet/keywords.inc"
#undef SQLET_KEYWORD
};

enum class TokenKind : std::uint8_t {
    End,         ///< one behind the last token, of length 0, at the end of the text
    Word,        ///< bare word: keyword or name; bytes from 0x80 up are part of words
    QuotedName,  ///< a name in quotes of any form, `"a"`, `a` in backticks, [a]
    String,      ///< a string in any form, with its prefix (N'..', E'..', q'[..]', $$..$$)
    Number,
    Parameter,  ///< ?, ?1, $1, :name, @name, @@name, &name, $action
    Operator,   ///< the longest operator of the dialect, such as <=, ||, ::, ->>
    LeftParen,
    RightParen,
    LeftBracket,  ///< [ where it is a subscript or an array
    RightBracket,
    LeftBrace,
    RightBrace,
    Comma,
    Dot,
    Semicolon,
    ExecutableComment,  ///< /*! .. */ and /*M! .. */ of MySQL: code that runs
    Hint,               ///< /*+ .. */ that changes what the statement does (SET_VAR); others vanish
    Bad,                ///< a byte that no token of the dialect begins with, or an unterminated one
};

/// Bits of Token::flags.
enum TokenFlag : std::uint8_t {
    // 1, 2, 4, 8 and 16 are those of SqletWordFlag, for a Word, in the dialect at hand.
    TokenTouchesNext = 32,     ///< no blank and no comment before the next token
    TokenIsUnterminated = 64,  ///< Bad: a quote or comment that is open at the end of the text
    TokenHasEscape = 128,      ///< QuotedName or String whose content is not its plain decoding:
                               ///< U&"..", or adjacent strings that the server joins into one
};

struct Token {
    std::uint32_t offset = 0;  ///< bytes from the start of the text
    std::uint32_t length = 0;
    Keyword keyword = Keyword::None;
    TokenKind kind = TokenKind::End;
    std::uint8_t flags = 0;

    std::uint32_t end() const { return offset + length; }
};
static_assert(sizeof(Token) == 12);

/// The significant tokens of a text in order, always with an End behind the last.
struct TokenList {
    std::vector<Token> tokens;
    /// For each token the index of the bracket that belongs to it; noToken for what is no bracket,
    /// and for a bracket without a partner. As long as tokens.
    std::vector<TokenIndex> partner;

    const Token& operator[](TokenIndex index) const { return tokens[index]; }
    /// Number of tokens without End.
    TokenIndex count() const { return static_cast<TokenIndex>(tokens.size() - 1); }
};

}  // namespace sqlet
