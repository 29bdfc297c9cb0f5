#pragma once

#include <string>

/// The half of hostkit/threads.h that needs no Gui: what a program without windows starts with, and
/// what installCallbacks() builds on.
namespace QB::HostKit {

/// Sets the pointers of QB::Callback but isDarkTheme, which is left as it is.
/// Thread, repetition and errors as installCallbacks().
void installThreadCallbacks();

/// True on the application's thread. Any thread.
bool isMainThread();

/// Who shows errors while no handler is set, on the main thread. At first they go to qWarning.
void setDefaultErrorHandler(void (*show)(const std::string& text));

}  // namespace QB::HostKit
