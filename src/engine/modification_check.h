#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "model/components.h"

namespace QB {

class RetiredParts;

/// True in builds with assertions: there, the statements are checked after each modification.
#ifdef NDEBUG
inline constexpr bool checksModifications = false;
#else
inline constexpr bool checksModifications = true;
#endif

/// What the engine does after each modification, still under the lock: looks whether the
/// statements are whole (see StatementCheck), and ends the program with the faults on stderr if
/// not, since who broke them is still on the stack.
///
/// So that a long run of edits of a huge statement stays as fast as it was, a statement of more
/// than `alwaysChecked` components is looked at only after every (size / alwaysChecked)-th
/// modification: then a fault shows a few edits late.
/// Thread: under queryComponentAccessMutex.
class ModificationCheck {
public:
    static constexpr std::size_t alwaysChecked = 2000;

    struct Modification {
        TopLevelQueryComponentElementEnum element;
        int layer;
        DatabaseType type;
        std::string schema;  ///< the current one
    };
    using Layers = std::vector<const Component::AbstractTopLevelQueryComponent*>;

    /// @p layers are the open statements, the root first; none gives nothing to check.
    void run(const Modification& modification, const Layers& layers, const RetiredParts& retired);

private:
    std::size_t m_skipped = 0;  ///< modifications that are still to go unchecked
};

/// @name The text check
/// For tests: whether the check looks at the text of the root statement, too, which must say what
/// the statement says (see readOwnText). A text that the parser refuses is that of a query that is
/// not finished, and only counted. Off at first; for the whole process. Any thread.
/// @{

void setTextCheck(bool isOn);

struct TextCheckCounts {
    long accepted;
    long refused;
};
/// Since the process began.
TextCheckCounts textCheckCounts();

/// @}

}  // namespace QB
