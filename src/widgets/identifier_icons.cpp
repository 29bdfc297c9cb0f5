#include "widgets/identifier_icons.h"

namespace QB {
namespace {

bool holdsSchemas(DatabaseType type) {
    return type == DatabaseTypePostgreSQL || type == DatabaseTypeOracle ||
           type == DatabaseTypeSQLServer;
}

QString iconPath(IdentifierType type, DatabaseType databaseType) {
    switch (type) {
        case IdentifierTypeQuery:
            return QStringLiteral(":/images/OV_Query.png");
        case IdentifierTypeSchema:
            return holdsSchemas(databaseType) ? QStringLiteral(":/images/OV_Schema_On.png")
                                              : QStringLiteral(":/images/OV_Database_On.png");
        case IdentifierTypeTable:
            return QStringLiteral(":/images/OV_Table.png");
        case IdentifierTypeView:
            return QStringLiteral(":/images/OV_View.png");
        case IdentifierTypeMaterializedView:
            return QStringLiteral(":/images/OV_Materialized_View.png");
        case IdentifierTypeField:
            return QStringLiteral(":/images/OV_Column.png");
        case IdentifierTypeReserved:
            break;
    }
    return QString();
}

}  // namespace

QIcon iconForIdentifierType(IdentifierType type, DatabaseType databaseType) {
    const QString path = iconPath(type, databaseType);
    return path.isEmpty() ? QIcon() : QIcon(path);
}

}  // namespace QB
