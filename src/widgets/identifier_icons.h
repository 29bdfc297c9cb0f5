#pragma once

#include <QIcon>

#include "model/vocabulary.h"

namespace QB {

/// The icon of an identifier candidate, from the resources of the host. Families whose databases
/// hold schemas show the schema sign where the others show the database sign. Empty for
/// IdentifierTypeReserved and for a value outside the enumeration.
QIcon iconForIdentifierType(IdentifierType type, DatabaseType databaseType);

}  // namespace QB
