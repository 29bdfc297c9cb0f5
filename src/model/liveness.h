#pragma once

#include <functional>

#include "model/export.h"

namespace QB {

/// The liveness registry: work that crosses threads carries the id of the object it wants, and
/// asks here whether that object still exists. All operations are safe on any thread.

/// Enters a new id. Ids only grow, none is given out twice.
QB_EXPORT long issueId();

/// One more object bears @p id, which then stays alive until retireId() was called for each of
/// them. An id that has gone comes back to life. False, and nothing changes, for one never given
/// out.
QB_EXPORT bool shareId(long id);

/// Removes @p id, or one of its bearers. While another thread is inside runIfAlive with this id the
/// call waits, so the object cannot go away under that thread's block. A block may retire its own
/// id.
QB_EXPORT void retireId(long id);

/// Calls @p block with whether @p id is alive; an alive id stays so (for other threads' retireId)
/// until the block returns. No lock of the registry is held during the block, so the block may
/// take other locks and create or destroy components.
/// Errors: throws std::bad_function_call if @p block is empty.
QB_EXPORT void runIfAlive(long id, const std::function<void(bool alive)>& block);

}  // namespace QB
