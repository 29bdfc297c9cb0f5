#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <string>

#include "hostkit/connection_settings.h"

namespace QB::HostKit {

struct ConnectionWatch;

/// All that the kit knows of one server family. A family is added by filling one record (see
/// sqlite_description.cpp) and naming it in findDriverDescription; no other function asks which
/// family it is dealing with.
///
/// The statements take their arguments as bound values, `:schema` and `:object`, each of them at
/// most once, and give the columns stated here in this order. A function pointer may be null where
/// it says so. All functions run on the thread of the connection that they get, except cancel.
struct DriverDescription {
    DatabaseType family;
    const char* qtDriver;       ///< name of the QtSql driver, "QSQLITE"
    std::string defaultSchema;  ///< where a name without schema is looked for

    /// A text for the user when the settings cannot work (no such file, ...), empty otherwise.
    QString (*checkSettings)(const ConnectionSettings& settings);
    /// Fills in file or host, user, password and connect options. The connection is still closed.
    void (*configure)(QSqlDatabase& connection, const ConnectionSettings& settings);
    /// The first work on a freshly opened connection, down to a first read that proves that there
    /// is a database. Empty, or the server's message.
    QString (*prepareConnection)(QSqlDatabase& connection, const ConnectionSettings& settings);

    const char* versionSql;                           ///< one row, one text
    int (*parseVersion)(const QString& versionText);  ///< "3.40.1" -> 3040001; 0 if unreadable

    const char* schemasSql;  ///< name
    const char* objectsSql;  ///< name, kind ("table", "view", "materialized view"), tag; of :schema
    const char* columnsSql;  ///< name, declared type, tag; of :schema and :object
    /// constraint, field, referenced schema, referenced object, referenced field; of :schema and
    /// :object; ordered by constraint and position. A null referenced field is a broken key.
    const char* foreignKeysSql;

    /// True if both names mean the same schema or object to the server.
    bool (*sameName)(const std::string& a, const std::string& b);

    /// Lets the connection look at @p watch while it works; null if the family cannot. The watch
    /// outlives the connection.
    void (*attachWatch)(const QVariant& handle, ConnectionWatch* watch);
    /// Stops what runs on the connection. Any thread; the handle stays valid during the call.
    void (*cancel)(const QVariant& handle);
    /// Names of the result columns as the server gives them; null: those of QSqlRecord.
    QStringList (*columnNames)(const QSqlQuery& query);
    /// Where in the statement the server's last complaint points, in characters from 0; -1 if it
    /// does not say. Null: never known.
    int (*errorPosition)(const QVariant& handle, const QString& statement);
    /// True while a transaction is open that a statement began by hand; null: never known.
    bool (*isInTransaction)(const QVariant& handle);
};

/// The record of a family; null if the kit has none (missingDescriptionText says so to the user).
QB_EXPORT const DriverDescription* findDriverDescription(DatabaseType family);

/// "The host kit cannot connect to PostgreSQL yet."
QB_EXPORT QString missingDescriptionText(DatabaseType family);

/// "SQLite", "SQL Server", ...; "?" for none.
QB_EXPORT QString familyName(DatabaseType family);

}  // namespace QB::HostKit
