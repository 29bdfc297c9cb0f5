#pragma once

#include <QString>

namespace QB {
class QBCanvasCommands;
}

namespace QB::Desk {

/// Writes the diagram to @p file: as PDF or SVG if it is named so, else as PNG at twice its size,
/// or as much of that as an image can hold.
/// @return an empty text, or what went wrong, for the user.
QString saveDiagramPicture(const QBCanvasCommands& commands, const QString& file);

}  // namespace QB::Desk
