#pragma once

#include <string>

#include "model/vocabulary.h"

namespace QB {

/// How a family's names are written for a text that only our own parser will read. The host's
/// function decides for texts that go to a server.
/// Thread: any.

/// In the family's quotes.
std::string quotedName(const std::string& name, DatabaseType type);

/// True if @p name may stand bare wherever a name can, and is then read as it is.
bool canStandBare(const std::string& name, DatabaseType type);

/// In quotes unless it may stand bare.
std::string quotedWhereNeeded(const std::string& name, DatabaseType type);

}  // namespace QB
