#pragma once

#include <string>
#include <string_view>

#include "platform/sqlet/token.h"

/// Names as the server understands them.
namespace sqlet {

/// The name that @p token stands for in @p text: without quotes, doubled quotes made single, and a
/// bare word folded (PostgreSQL to ASCII lower case, Oracle to upper case). Also for a String that
/// stands as an alias.
std::string decodedName(std::string_view text, const Token& token, int dialect);

/// True if decodedName gives the whole name: a Word, QuotedName or plain String without escapes
/// (TokenHasEscape), not empty.
bool isDecodable(std::string_view text, const Token& token, int dialect);

}  // namespace sqlet
