#pragma once

#include <string>

#include "model/components.h"
#include "model/vocabulary.h"
#include "parser/query_parser.h"
#include "platform/sqlet/sqlet.h"

namespace QB {

/// Whether @p statement, which was made of the text of @p original, gives a text that means the
/// same: generates it, parses it and compares the two. Names are written in quotes throughout; a
/// second time bare where the server would read them so, if one of them is a word of the dialect
/// that stood in quotes.
/// Accepted, or CannotBeRepresented with the place in the original text where the two part.
QBParseOutcome checkRoundTrip(SqletParser* original,
                              const Component::SQL::SQLSelectStmtComponent& statement,
                              DatabaseType type, const std::string& schema);

}  // namespace QB
