#pragma once

#include "apps/joinery-sql/command_line.h"

namespace QB::Cli {

/// Runs format, check, dump or ranges over all files, going on behind those that fail.
/// Returns: the exit status; what went wrong has been told.
ExitCode runFileCommand(const CommandLine& options);

}  // namespace QB::Cli
