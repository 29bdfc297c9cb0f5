#pragma once

#include <QIcon>
#include <QPixmap>

class QPalette;

namespace QB {

/// What stands in for an image that the application's resources do not hold.
enum class DrawnSign { Plus, BracketedPlus, Cross, Minus, Up, Down, TwoCircles };

/// The image of the resources, or where it is missing @p sign in the text colour of @p palette, as
/// large as @p size in logical pixels and sharp on the screen. Main thread.
QPixmap imageOrSign(const QString& resource, DrawnSign sign, const QPalette& palette,
                    int size = 16);

/// As imageOrSign(), for buttons.
QIcon iconOrSign(const QString& resource, DrawnSign sign, const QPalette& palette);

}  // namespace QB
