#pragma once

#include <QPalette>

#include "model/export.h"

class QWidget;

namespace QB {

/// For the frame of a popup: on a dark window a lighter colour, or nobody would see it.
QColor edgeColour(const QPalette& palette);

/// Qt's Fusion style draws the edges of buttons, fields and menus in a darker shade of the window's
/// colour; on a dark window nobody sees those. This is the window's colour for which it draws edges
/// that can be seen: that of @p palette itself, if the window is light.
QB_EXPORT QColor edgedWindowColour(const QPalette& palette);

/// Gives that colour to @p root and its radio buttons, check boxes, fields and menus, where they
/// are drawn by Fusion; they use it for nothing else. To be called when they are shown, and again
/// when the palette of @p root has changed. Main thread.
void showEdges(QWidget* root);

}  // namespace QB
