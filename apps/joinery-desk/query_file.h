#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QMap>
#include <QString>
#include <QVariant>
#include <optional>
#include <vector>

#include "model/vocabulary.h"

namespace QB::Desk {

/// All that a saved query keeps: what a ".joinery" file holds, and a journal. The format is in
/// docs/query-files.md.
struct QueryDocument {
    DatabaseType family = DatabaseTypeNone;
    QString schema;    ///< where names without one are looked for
    QString database;  ///< the file that the query was made on, absolute; empty: not known
    QString sql;       ///< the main query, empty for an empty one
    /// What the SQL tab has of its own and no other file keeps; if it is the same as sql, the
    /// builder has it, too.
    std::optional<QString> text;
    std::vector<int>
        listSizes;    ///< Tools::SQL::selectListSizes of the main query; empty: not known
    QString layouts;  ///< of the diagrams, as the builder gives them
    QMap<QString, QVariant> preferences;
    QString file;        ///< in a journal: where the query was to be saved; else empty
    QDateTime fileTime;  ///< in a journal: when that was written, as far as the window knew
};

/// Files above this are refused: a query of 1,000 tables takes less than a hundredth of it.
constexpr qint64 largestQueryFile = 32 * 1024 * 1024;

/// True for a name that ends in ".joinery".
bool isQueryFileName(const QString& path);

/// Reads a query. All of it is looked at, so what comes back is whole.
/// Returns: empty on success, otherwise the text for the user, which names the file and the reason;
/// @p document is as it was then.
/// Thread: any; blocks for as long as the disk takes.
[[nodiscard]] QString readQueryFile(const QString& path, QueryDocument& document);

/// Writes the whole file or leaves the old one as it is. A database below the folder of the file is
/// kept by its relative path, so that both can be moved together. The same otherwise.
[[nodiscard]] QString writeQueryFile(const QString& path, const QueryDocument& document);

}  // namespace QB::Desk
