#pragma once

class QMenu;

namespace QB {

/// Lets the user type to go to an entry of @p menu, and of the menus in it, as in a list: to the
/// one that is what was typed, or else to the next one that begins so. Letters typed in quick
/// succession belong together. Thread: main.
void letTypingFindEntries(QMenu* menu);

}  // namespace QB
