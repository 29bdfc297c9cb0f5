#pragma once

#include <string>

#include "model/components.h"

namespace QB {

/// What the names in a row depend on.
struct RowDatabase {
    QBDatabaseInfo info;
    std::string schema;
};

inline bool operator==(const RowDatabase& a, const RowDatabase& b) {
    return a.info.databaseType == b.info.databaseType &&
           a.info.databaseVersion == b.info.databaseVersion && a.schema == b.schema;
}

/// What a list hands to its rows as the schema that names may leave out: @p currentSchema, or none
/// where @p statement reads from several schemas, as in its text. @p statement may be null.
/// Linear in the sources: ask once for all rows. A subquery's row gets the current schema itself.
std::string schemaLeftOut(const Component::AbstractTopLevelQueryComponent* statement,
                          const std::string& currentSchema);

}  // namespace QB
