#pragma once

#include <functional>

namespace QB {

/// Whether the id is live at this moment; on the owner's own thread it then stays so until that
/// thread destroys it.
bool isAlive(long id);

/// Posts @p call to the main thread, where it runs if @p id is still alive. Does not wait.
/// Thread: any. @p call is destroyed unrun if the host drops it.
void postToMainThread(long id, std::function<void()> call);

/// As postToMainThread, and waits until the closure has run, thrown or been dropped by the host.
/// True if @p call ran to its end, that is, the owner was alive. Ask isAlive again before the
/// owner is used later.
/// Thread: any; the caller holds no lock that the main thread may want. On the main thread only
/// if the host's function runs closures at once there.
bool callOnMainThread(long id, std::function<void()> call);

}  // namespace QB
