#pragma once

#include "apps/joinery-sql/command_line.h"

namespace QB::Cli {

/// Runs each script from its start until a command is refused, or to its end with --keep-going;
/// goes on with the next one. Every script begins with a new query.
/// Returns: the exit status; what went wrong has been told.
ExitCode runScripts(const CommandLine& options);

}  // namespace QB::Cli
