#pragma once

#include <cstddef>
#include <string>

/// The texts on which parsers are measured, in the SQL that all families share.
namespace QB::Bench {

/// A table for each name that the texts use.
constexpr const char* const schemaOfTexts =
    "CREATE TABLE orders (id, customer_id, created_at, status, total, note);"
    "CREATE TABLE customers (id, name, country_code);"
    "CREATE TABLE countries (code, name);";

/// One statement as people write them, of about @p size bytes: more columns and more conditions the
/// longer it is.
inline std::string ordinaryStatement(std::size_t size) {
    const std::string from =
        "\nFROM orders AS o\n"
        "    INNER JOIN customers AS c ON c.id = o.customer_id\n"
        "    LEFT JOIN countries ON countries.code = c.country_code\n"
        "WHERE o.created_at >= '2024-01-01'";
    const std::string end =
        "\nGROUP BY o.id, c.name\n"
        "HAVING SUM(o.total) BETWEEN 10 AND 1000\n"
        "ORDER BY total DESC, c.name\n"
        "LIMIT 50";
    std::string columns = "SELECT o.id, c.name AS customer_name, SUM(o.total) AS total";
    std::string conditions;
    for (int i = 0; columns.size() + from.size() + conditions.size() + end.size() < size; ++i) {
        const std::string n = std::to_string(i);
        columns += ",\n    o.status, countries.name AS country_" + n +
                   ", MAX(o.total) AS largest_" + n + ", o.total * 1.19 AS gross_" + n;
        conditions += "\n    AND (o.status IN ('paid', 'sent', 'n" + n + "') OR o.total > 100.5" +
                      ")\n    AND c.name NOT LIKE 'test" + n + "%' AND o.note IS NOT NULL";
    }
    return columns + from + conditions + end;
}

/// An IN list of numbers, of about @p size bytes.
inline std::string inList(std::size_t size) {
    std::string text = "SELECT id FROM orders WHERE id IN (0";
    for (int i = 1; text.size() < size; ++i)
        text += ", " + std::to_string(i);
    return text + ")";
}

/// @p terms comparisons with AND between.
inline std::string chain(int terms) {
    std::string text = "SELECT id FROM orders WHERE total > 0";
    for (int i = 1; i < terms; ++i)
        text += " AND total > " + std::to_string(i);
    return text;
}

enum class TextKind { Ordinary1kB, Ordinary10kB, InList1MB, Chain100k };

inline std::string textOf(TextKind kind) {
    switch (kind) {
        case TextKind::Ordinary1kB:
            return ordinaryStatement(1000);
        case TextKind::Ordinary10kB:
            return ordinaryStatement(10000);
        case TextKind::InList1MB:
            return inList(1 << 20);
        case TextKind::Chain100k:
            return chain(100000);
    }
    return {};
}

}  // namespace QB::Bench
