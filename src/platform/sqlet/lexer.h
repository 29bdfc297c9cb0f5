#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/sqlet/token.h"

/// Text to tokens, by the rules of one dialect.
namespace sqlet {

/// How adjacent strings are read.
enum class AdjacentStrings : std::uint8_t {
    Separate,          ///< two tokens
    JoinedAcrossLine,  ///< one string if a line break lies between (PostgreSQL)
    Joined,            ///< one string (MySQL)
};

/// What a dialect's lexer does differently. The default modes of the servers are assumed:
/// backslashes escape in MySQL, standard strings in PostgreSQL, quoted names by double quotes in
/// SQL Server.
struct LexTraits {
    // Comments
    bool nestedComments = false;             ///< /* /* */ */
    bool executableComments = false;         ///< /*! */ holds code
    bool hintsSetVariables = false;          ///< /*+ SET_VAR(..) */ changes the result
    bool hashComments = false;               ///< # to the end of the line
    bool dashesNeedBlank = false;            ///< 5--3 is 8
    bool carriageReturnEndsComment = false;  ///< a CR alone ends a line comment

    // Strings and names in quotes
    bool backslashEscapes = false;       ///< in every string
    bool doubleQuoteIsString = false;    ///< "abc" is a string, not a name
    bool backtickNames = false;          ///< `abc`
    bool bracketNames = false;           ///< [abc]
    bool doubledBracketEscapes = false;  ///< ]] stands for ] in [abc]
    bool dollarQuotes = false;           ///< $tag$..$tag$
    bool escapePrefix = false;           ///< E'..' with backslashes
    bool unicodePrefix = false;          ///< U&'..' and U&".."
    bool nationalPrefix = false;         ///< N'..'
    bool alternativeQuotes = false;      ///< q'[..]' and nq'[..]'
    bool charsetPrefix = false;          ///< _utf8'..'
    bool hexPrefix = false;              ///< x'..'
    bool bitPrefix = false;              ///< b'..'
    AdjacentStrings adjacentStrings = AdjacentStrings::Separate;

    // Bare names
    std::string_view nameStart;    ///< what begins a name beside letters, _ and bytes from 0x80
    std::string_view namePart;     ///< what goes on in it beside these and digits
    bool digitStartsName = false;  ///< 1a is a name

    // Numbers
    std::string_view radixLetters;    ///< those behind the 0 of 0x1F
    std::string_view numberSuffixes;  ///< 1.5f
    bool digitSeparators = false;     ///< 1_000
    bool moneyLiterals = false;       ///< $1.5

    // Parameters and operators
    std::string_view parameterMarks;  ///< what makes a parameter of the name or number behind it
    bool dottedVariables = false;     ///< @@global.a, @a.b and @'a b' are one parameter
    bool operatorRuns = false;        ///< any run of operator characters is one operator
    std::string_view operators;       ///< those of several characters, longest first, with blanks
};

/// What closes q'[..]' after @p opening: its partner, or the character itself.
constexpr char closingPartner(char opening) {
    constexpr std::string_view openings = "([{<";
    const std::size_t bracket = openings.find(opening);
    return bracket == openings.npos ? opening : ")]}>"[bracket];
}

/// The traits of a server family (QB::DatabaseType): of dialect 1 to 5, and of MariaDB, which is
/// dialect 1. Those of any other number are empty.
const LexTraits& lexTraits(int family);

/// The tokens of @p text, which may hold any bytes but is at most 2 GiB - 1 long (the caller sees
/// to that). A byte order mark at the start is skipped. Comments and blanks vanish; so do hints
/// that change no result. Never fails: what cannot be read becomes tokens of kind Bad. Linear.
TokenList lex(std::string_view text, int dialect);

}  // namespace sqlet
