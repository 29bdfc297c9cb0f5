#pragma once

#include <QFont>

namespace QB {

/// The font for SQL text. Main thread.
QFont fixedWidthFont();

}  // namespace QB
