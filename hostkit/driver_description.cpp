#include "hostkit/driver_description.h"

#include "hostkit/sqlite_description.h"
#include "platform/tolk/tolk.h"

namespace QB::HostKit {

const DriverDescription* findDriverDescription(DatabaseType family) {
    switch (family) {
        case DatabaseTypeSQLite:
            return &sqliteDescription();
        default:
            return nullptr;
    }
}

QString missingDescriptionText(DatabaseType family) {
    return Tolk::localizeWithArgs(Tolk::TextFamilyNotConnectable,
                                  familyName(family).toUtf8().constData());
}

QString familyName(DatabaseType family) {
    switch (family) {
        case DatabaseTypeMySQL:
            return QStringLiteral("MySQL");
        case DatabaseTypePostgreSQL:
            return QStringLiteral("PostgreSQL");
        case DatabaseTypeOracle:
            return QStringLiteral("Oracle");
        case DatabaseTypeSQLite:
            return QStringLiteral("SQLite");
        case DatabaseTypeSQLServer:
            return QStringLiteral("SQL Server");
        case DatabaseTypeMariaDB:
            return QStringLiteral("MariaDB");
        case DatabaseTypeMongoDB:
            return QStringLiteral("MongoDB");
        default:
            return QStringLiteral("?");
    }
}

}  // namespace QB::HostKit
