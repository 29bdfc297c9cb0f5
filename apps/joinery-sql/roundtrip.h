#pragma once

#include <string>
#include <string_view>

#include "apps/joinery-sql/command_line.h"

namespace QB::Cli {

/// Answers every line of standard input with one line on standard output, each handed over before
/// the next is read.
/// Returns: ExitOk, whatever the lines were; ExitIo if reading or writing failed.
ExitCode runRoundtrip(const CommandLine& options);

/// The answer to one line, without a line feed. @p line can hold anything; where memory runs out,
/// or has run out before @p line was whole, that is the answer.
std::string answerLine(std::string_view line, const CommandLine& options, bool isWhole);

}  // namespace QB::Cli
