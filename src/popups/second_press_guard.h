#pragma once

#include <QPoint>

namespace QB {

/// Takes the second press of a double click, and its release, from whatever lies at @p place on the
/// screen: the user meant what lay there at the first press, and that has gone with it. Lasts for
/// the time that a double click may take.
/// Thread: main.
void swallowSecondPress(const QPoint& place);

}  // namespace QB
