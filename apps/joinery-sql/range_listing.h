#pragma once

#include <string>

#include "apps/joinery-sql/parsed_statement.h"

namespace QB::Cli {

/// Every component with its range in @p generated, one a line, in the order of the text with what
/// encloses before what is enclosed: location, length, kind, and the stretch itself in quotes, cut
/// after 60 code points; separated by tabs. The kinds are those of dumpStatement. Stable: the same
/// for every run on the same text.
std::string rangeListing(const GeneratedText& generated);

}  // namespace QB::Cli
