#pragma once

#include <functional>
#include <string>

#include "model/export.h"

/// Threads, the main-thread queue, looks and errors for the library, on Qt's event loop.
///
/// Main thread: functions run on the application's thread in order of posting, one queued event
/// each, so that input and painting are never starved by more than one function. A function posted
/// on that very thread runs at once when nothing is queued before it, and is queued otherwise:
/// order holds either way, and no queued function runs inside a caller that did not expect it.
/// Who waits for a posted function must therefore never do so on the main thread.
///
/// Workers: a worker function may block, for the server or for the main thread, so there is always
/// a thread for a new one: idle threads are used again, a new one is started when none is idle, up
/// to 64 (a function beyond that waits for its turn; reaching it needs 64 functions that all
/// block). A thread without work ends after ten seconds.
///
/// End: when the application object is destroyed, running statements of the kit are cancelled,
/// worker functions that have not started are dropped, and main-thread functions go on being served
/// until the workers are idle (each waits only for functions that find its owner gone), for at most
/// three seconds. After that, functions posted to either side are destroyed unrun.
namespace QB::HostKit {

/// Sets the five pointers of QB::Callback, including formatIdentifier (hostkit/quoting.h).
/// Call it on the application's thread, after the application object was made and before the first
/// engine; calling it again is harmless, and is needed after a new application object was made.
/// Errors: throws std::logic_error without an application object.
QB_EXPORT void installCallbacks();

/// What QB::Callback::isDarkTheme answers from now on. Until it is called, the answer is taken from
/// the application's palette (window text lighter than the window). Any thread.
QB_EXPORT void setDarkTheme(bool isDark);

/// Goes back to the application's palette. Main thread.
QB_EXPORT void followPaletteTheme();

/// Who shows errors, on the main thread; an empty function restores the default, a message box that
/// does not block. A text that arrives on another thread is queued. Main thread.
QB_EXPORT void setErrorHandler(std::function<void(const std::string& text)> handler);

/// Hands @p text to the error handler on the main thread. Any thread; never waits.
QB_EXPORT void reportError(const std::string& text);

/// The two queues behind the callbacks. Any thread.
QB_EXPORT void postToMainThread(std::function<void()> function);
QB_EXPORT void postToWorker(std::function<void()> function);

}  // namespace QB::HostKit
