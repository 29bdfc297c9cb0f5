#pragma once

#include <string>

#include "model/export.h"
#include "model/vocabulary.h"

namespace QB::HostKit {

/// The name as the server reads it back as exactly this name: bare where that works, else quoted.
///
/// Bare is what starts with a letter or an underscore, goes on with letters, digits and
/// underscores, is no reserved word of the family and is in the case that the family folds to
/// (PostgreSQL lower, Oracle upper, any for the others). Everything else is quoted, with quote
/// characters inside doubled: backticks for MySQL and MariaDB, brackets for SQL Server (only "]" is
/// doubled), double quotes for the others.
///
/// The generator passes aggregate names through here too, and quoted they would be no functions:
/// the family's standard aggregates (COUNT, SUM, AVG, MIN, MAX and more) stay bare when written
/// all in upper or all in lower case. A column of PostgreSQL called "COUNT" in capitals therefore
/// has to be written by hand.
///
/// Limits: Oracle has no way to write a double quote or a NUL in a name; a double quote is doubled
/// all the same, so that the text stays one name and the server refuses it. No family takes a NUL:
/// U+FFFD stands for it, so that the server knows no such name. An empty name gives empty quotes,
/// which only SQLite reads as a name.
/// An unknown family quotes like the standard, with double quotes.
///
/// @param version the number of QBDatabaseInfo; words that a later version reserved are quoted for
/// every version.
/// Thread: any; touches no shared state.
QB_EXPORT std::string formatIdentifier(const std::string& name, DatabaseType type, int version);

}  // namespace QB::HostKit
