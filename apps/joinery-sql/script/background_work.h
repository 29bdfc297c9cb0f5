#pragma once

#include <string>

/// The threads of a script: those of the host kit, and a way to wait until all is done, so that
/// every command finds what the one before it has set off.
/// Thread: main, with an application object.
namespace QB::Cli {

/// Sets the host's callbacks. What is dispatched from then on is waited for by settle().
void startBackgroundWork();

/// Runs what is posted to the main thread until no worker has anything left to do.
void settle();

/// The errors that the library or the host kit reported since the last call, a line each.
std::string takeReportedErrors();

}  // namespace QB::Cli
