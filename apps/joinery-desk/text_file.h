#pragma once

#include <QByteArray>
#include <QString>

namespace QB::Desk {

/// Reads a file that is UTF-8 and has at most @p limit bytes.
/// Returns: empty on success, otherwise the text for the user, which names the file; @p bytes is as
/// it was then.
/// Thread: any; blocks for as long as the disk takes.
[[nodiscard]] QString readTextFile(const QString& path, qint64 limit, QByteArray& bytes);

/// Writes the whole file or leaves the old one as it is. The same otherwise.
[[nodiscard]] QString writeTextFile(const QString& path, const QByteArray& bytes);

}  // namespace QB::Desk
