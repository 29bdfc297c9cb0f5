#pragma once

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
    bool backslashEscapes = false;     ///< in every string
    bool doubleQuoteIsString = false;  ///< "abc" is a string, not a name
    bool backtickNames = false;        ///< `abc`
    bool bracketNames = false;         ///< [abc]
    bool nestedComments = false;       ///< /* /* */ */
    bool executableComments = false;   ///< /*! */ holds code
    bool hashComments = false;         ///< # to the end of the line
    bool dashesNeedBlank = false;      ///< 5--3 is 8
    bool carriageReturnEndsComment = false;
    bool dollarQuotes = false;  ///< $tag$..$tag$
    bool dollarInNames = false;
    bool hashInNames = false;        ///< #temp, a#b
    bool atInNames = false;          ///< a@b
    bool digitStartsName = false;    ///< 1a is a name
    bool escapePrefix = false;       ///< E'..' with backslashes
    bool unicodePrefix = false;      ///< U&'..' and U&".."
    bool nationalPrefix = false;     ///< N'..'
    bool alternativeQuotes = false;  ///< q'[..]' and nq'[..]'
    bool charsetPrefix = false;      ///< _utf8'..'
    bool bitPrefix = false;          ///< x'..' and b'..'
    AdjacentStrings adjacentStrings = AdjacentStrings::Separate;
};

/// The traits of dialect 1 to 5; those of a family that is no dialect are empty.
const LexTraits& lexTraits(int dialect);

/// The tokens of @p text, which may hold any bytes but is at most 2 GiB - 1 long (the caller sees
/// to that). A byte order mark at the start is skipped. Comments and blanks vanish; so do hints
/// that change no result. Never fails: what cannot be read becomes tokens of kind Bad. Linear.
TokenList lex(std::string_view text, int dialect);

}  // namespace sqlet
