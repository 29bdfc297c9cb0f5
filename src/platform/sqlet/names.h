#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/sqlet/token.h"

/// Names as the server understands them.
namespace sqlet {

/// The name that @p token stands for in @p text: without quotes, doubled quotes made single, and a
/// bare word folded (PostgreSQL to lower, Oracle to upper case; ASCII letters only, as PostgreSQL
/// does in a database of UTF-8). Also for a String that stands as an alias. What isDecodable
/// refuses comes back as it stands.
std::string decodedName(std::string_view text, const Token& token, int dialect);

/// True if decodedName gives the name that the server reads, so that a host can quote it again: a
/// Word, QuotedName or plain String without prefix and escapes (TokenHasEscape), not empty and of
/// valid UTF-8 (hosts hold names as Unicode), and no bare word whose folding is the server's affair
/// (Oracle folds letters beyond ASCII too, by its character set). Nor is it true for a quoted name
/// that is an aggregate's in another case than the server folds to: hosts write those bare.
bool isDecodable(std::string_view text, const Token& token, int dialect);

/// Length of the UTF-8 character that begins @p bytes, which is not empty; 0 if it is none: no
/// overlong form, surrogate or value above U+10FFFF.
std::size_t characterLength(std::string_view bytes);

/// True if @p bytes consists of such characters. Linear.
bool isValidUtf8(std::string_view bytes);

/// In ASCII lower case: two names that give the same are the same to a server that ignores case.
std::string withoutCase(std::string_view name);

}  // namespace sqlet
