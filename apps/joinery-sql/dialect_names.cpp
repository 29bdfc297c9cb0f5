#include "apps/joinery-sql/dialect_names.h"

namespace QB::Cli {
namespace {

struct Dialect {
    std::string_view name;
    DatabaseType type;
};

constexpr Dialect dialects[] = {
    {"mysql", DatabaseTypeMySQL},   {"mariadb", DatabaseTypeMariaDB},
    {"oracle", DatabaseTypeOracle}, {"postgresql", DatabaseTypePostgreSQL},
    {"sqlite", DatabaseTypeSQLite}, {"sqlserver", DatabaseTypeSQLServer},
};

}  // namespace

std::optional<DatabaseType> dialectOfName(std::string_view name) {
    for (const Dialect& dialect : dialects)
        if (dialect.name == name) return dialect.type;
    return std::nullopt;
}

std::string dialectNames() {
    std::string names;
    for (const Dialect& dialect : dialects) {
        if (!names.empty()) names += ", ";
        names += dialect.name;
    }
    return names;
}

}  // namespace QB::Cli
