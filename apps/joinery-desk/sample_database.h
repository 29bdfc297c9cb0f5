#pragma once

#include <QString>

namespace QB::Desk {

/// Where the sample database lies for a program whose settings are in @p settingsFile; empty for
/// the user's own settings, when it lies among the user's data.
QString sampleDatabaseFile(const QString& settingsFile);

/// Writes the sample database to @p file unless the present version of it is there already. It is
/// built beside and moved into place, so a half-written one is never seen.
/// Returns: empty, or the text for the user.
/// Thread: any, blocks for some milliseconds.
QString ensureSampleDatabase(const QString& file);

}  // namespace QB::Desk
