#pragma once

#include <functional>
#include <string>

#include "model/export.h"
#include "model/vocabulary.h"

/// What the host supplies. All five are null until the host sets them, which it does before it
/// creates an engine; the library calls them without a null check.
namespace QB::Callback {

/// Runs the function on the thread of the widgets, in order of posting. May run it at once when
/// the caller is on that thread; does not wait for it in general.
extern QB_EXPORT void (*runOperationOnMainThread)(std::function<void()>);

/// Runs the function on a worker thread, off the caller's stack. The function may block.
extern QB_EXPORT void (*runOperationOnDispatchedThread)(std::function<void()>);

/// True if the host shows a dark theme. Main thread; asked each time a colour or icon is chosen.
extern QB_EXPORT bool (*isDarkTheme)();

/// Shows the text to the user without blocking the caller for long. Main thread.
extern QB_EXPORT void (*showError)(std::string);

/// The name quoted as the server wants it; a name that needs no quotes comes back as it is.
/// Any thread.
extern QB_EXPORT std::string (*formatIdentifier)(const std::string& name, DatabaseType type,
                                                 int version);

}  // namespace QB::Callback
