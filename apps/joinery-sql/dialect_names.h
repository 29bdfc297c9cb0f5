#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "model/vocabulary.h"

/// The server families as a user of the command line names them.
namespace QB::Cli {

/// The family called @p name, such as "postgresql"; nothing for any other word. Case matters.
std::optional<DatabaseType> dialectOfName(std::string_view name);

/// All names, separated by ", ".
std::string dialectNames();

}  // namespace QB::Cli
