#pragma once

#include <string>
#include <vector>

#include "model/vocabulary.h"

namespace QB::Test {

/// Tables made so that a statement whose meaning changed gives other rows: columns called like
/// aliases, the same columns everywhere with other values, NULLs, duplicate rows, one row that all
/// tables share (so that natural joins find something), two schemas with the same tables, a
/// temporary table that hides a real one, names that need quotes or differ only in case, texts of
/// several lines, an empty table.
struct SchemaColumn {
    std::string name;
    bool isText = false;  ///< else an integer
};

struct SchemaTable {
    std::string schema;  ///< empty: temporary
    std::string name;
    std::vector<SchemaColumn> columns;
    std::vector<std::string> rows;  ///< values as SQL literals, with commas between

    bool isTemporary() const { return schema.empty(); }
};

/// Where bare names are found: "main", "public" or "joinery".
std::string mainSchema(DatabaseType family);

/// The tables of a server, real ones before the temporary ones that hide them.
std::vector<SchemaTable> adversarialTables(DatabaseType family);

/// @p name with the family's quotes around it, whatever it is.
std::string quotedName(const std::string& name, DatabaseType family);

/// The statements that drop all tables, where they exist, and make them anew. @p isReversed: the
/// rows come in reverse order, which shows what a statement leaves to chance.
std::vector<std::string> schemaScript(DatabaseType family, bool isReversed);

}  // namespace QB::Test
