#pragma once

#include <QDebug>
#include <QMap>
#include <QString>
#include <QVector>
#include <string>

#include "model/export.h"
#include "model/vocabulary.h"

namespace QB::HostKit {

/// A password that does not leave by accident: it prints as stars, converts to nothing, and its
/// text is only had by asking for it by name.
class QB_EXPORT Password {
public:
    Password() = default;
    explicit Password(const QString& text) : m_text(text) {}

    bool isEmpty() const { return m_text.isEmpty(); }

    /// The text itself, for the one call that hands it to the driver.
    const QString& reveal() const { return m_text; }

    /// @p text with every occurrence of the password, plain or percent-encoded, replaced by stars.
    QString scrub(QString text) const;

private:
    QString m_text;
};

QB_EXPORT QDebug operator<<(QDebug debug, const Password& password);

/// A further database file that every connection attaches under a schema name.
struct AttachedFile {
    QString schema;
    QString file;
};

/// Where a database is and how to get in. Which fields count depends on the family: SQLite reads
/// databaseFile and attached, the servers read host to password.
struct QB_EXPORT ConnectionSettings {
    DatabaseType family = DatabaseTypeNone;
    QString databaseFile;
    QVector<AttachedFile> attached;
    QString host;
    int port = -1;   ///< -1: the family's usual port
    QString socket;  ///< path of a local socket; used in place of host and port when not empty
    QString database;
    QString user;
    Password password;
    QMap<QString, QString> options;  ///< further connect options of the Qt driver, by its names
    bool readOnly = false;
    int busyTimeoutMs = 3000;  ///< how long to wait for a lock that another connection holds

    /// A SQLite file, to be read and written.
    static ConnectionSettings sqliteFile(const QString& file);

    /// What a window title or a list of recent connections shows: the file's name without its
    /// folder, or "database@host". Never the password.
    QString displayName() const;
};

/// Writes every field but the password.
QB_EXPORT QDebug operator<<(QDebug debug, const ConnectionSettings& settings);

}  // namespace QB::HostKit
