#include "model/vocabulary.h"

#include <array>
#include <stdexcept>
#include <tuple>

namespace QB {

bool hasStatementModel(DatabaseType type) {
    return type >= DatabaseTypeMySQL && type <= DatabaseTypeMariaDB;
}

int parserDialect(DatabaseType type) {
    static constexpr std::array<int, 7> dialects = {0, 1, 2, 3, 4, 5, 1};
    const auto index = static_cast<std::size_t>(type);
    if (index >= dialects.size()) throw std::runtime_error("Unexpected Database Type");
    return dialects[index];
}

std::string joinTypeText(SQLJoinType type) {
    static constexpr std::array<const char*, 7> texts = {
        "[Custom Join]", ",",          "INNER JOIN",      "LEFT JOIN",
        "RIGHT JOIN",    "CROSS JOIN", "FULL OUTER JOIN",
    };
    const auto index = static_cast<std::size_t>(type);
    return index < texts.size() ? texts[index] : "";
}

bool operator<(const QBIdentifierObjectPath& a, const QBIdentifierObjectPath& b) {
    return std::tie(a.schema, a.object) < std::tie(b.schema, b.object);
}
bool operator==(const QBIdentifierObjectPath& a, const QBIdentifierObjectPath& b) {
    return std::tie(a.schema, a.object) == std::tie(b.schema, b.object);
}

bool operator<(const QBIdentifierFieldPath& a, const QBIdentifierFieldPath& b) {
    return std::tie(a.schema, a.object, a.field) < std::tie(b.schema, b.object, b.field);
}
bool operator==(const QBIdentifierFieldPath& a, const QBIdentifierFieldPath& b) {
    return std::tie(a.schema, a.object, a.field) == std::tie(b.schema, b.object, b.field);
}

}  // namespace QB
