#include "differential/adversarial_schema.h"

#include <algorithm>

namespace QB::Test {
namespace {

const std::vector<SchemaColumn> usualColumns = {{"id"}, {"n"}, {"y"}, {"total"}, {"name", true}};

/// In every table but the empty one.
constexpr const char* sharedRow = "6, 6, 6, 6, 'six'";

SchemaTable usualTable(const std::string& schema, const std::string& name,
                       std::vector<std::string> rows) {
    rows.emplace_back(sharedRow);
    return {schema, name, usualColumns, std::move(rows)};
}

/// What every server has, in the schema where bare names are found.
std::vector<SchemaTable> mainTables(const std::string& schema) {
    return {
        usualTable(schema, "a",
                   {"1, 3, 10, 5, 'one'", "1, 2, 8, 9, 'one'", "2, 1, 20, 5, 'two'",
                    "2, 1, 20, 5, 'two'", "3, NULL, 15, 7, NULL", "4, 2, NULL, 1, 'A!%'",
                    "5, 3, 5, NULL, 'first line\n\tsecond line'"}),
        usualTable(schema, "b",
                   {"1, 2, 7, 9, 'uno'", "2, 1, 20, 5, 'two'", "3, 3, NULL, 2, NULL",
                    "3, 5, 15, 7, 'A%%'", "7, NULL, 1, 20, 'first line\n    second line'"}),
        usualTable(schema, "o",
                   {"1, 1, 3, 15, 'order one'", "2, 3, 2, NULL, 'two'", "4, NULL, NULL, 4, 'eins'",
                    "8, 2, 1, 10, NULL"}),
        usualTable(schema, "g", {"2, 5, 1, 3, 'gee'", "3, 3, 3, 3, 'one'", "NULL, 1, 2, 2, 'x'"}),
        usualTable(schema, "order",
                   {"1, 7, 2, 4, 'first'", "5, 3, 5, NULL, 'last'", "5, 3, 5, NULL, 'last'"}),
        usualTable(schema, "two words", {"2, 2, 1, 1, 'tw'", "3, 9, 9, 2, 'A!%'"}),
        usualTable(schema, "we\"ird", {"4, 4, 1, 2, 'quote\"s'", "1, 2, 3, 4, 'it''s'"}),
        usualTable(schema, "n", {"1, 4, 4, 4, 'en'", "2, NULL, 8, 1, 'y'"}),
        {schema, "empty", usualColumns, {}},
        usualTable(schema, "hidden", {"1, 1, 1, 1, 'real'", "2, 2, 2, 2, 'real'"}),
        {schema,
         "odd",
         {{"id"}, {"user"}, {"2"}, {"My A"}, {"select"}, {"true"}, {"count"}, {"current_date"}},
         {"1, 9, 8, 7, 6, 5, 4, 3", "2, 3, 4, 5, 6, 7, 8, 9", "3, 5, NULL, 2, 9, 1, 7, 4",
          "4, 1, 6, 9, 2, 8, NULL, 5"}},
        {schema,
         "words",
         {{"id"},
          {"date"},
          {"interval"},
          {"left"},
          {"row"},
          {"values"},
          {"end"},
          {"key"},
          {"natural"},
          {"exists"},
          {"current_user"},
          {"*"},
          {"a.b"},
          {"first", true}},
         {"1, 3, 5, 7, 9, 2, 4, 6, 8, 1, 3, 5, 7, 'one'",
          "2, 4, 6, 8, 1, 3, 5, 7, 9, 2, 4, 6, 8, 'two'",
          "2, 4, 6, 8, 1, 3, 5, 7, 9, 2, 4, 6, 8, 'two'",
          "3, 9, 8, 7, 6, 5, 4, 3, 2, 1, NULL, 9, 8, NULL"}},
    };
}

std::vector<SchemaTable> otherTables() {
    return {
        usualTable("other", "a",
                   {"1, 9, 1, 100, 'other one'", "3, 8, 2, 200, 'two'", "3, 8, 2, 200, 'two'"}),
        usualTable("other", "b", {"2, 7, 9, 300, 'other b'", "5, 1, 1, NULL, NULL"}),
        usualTable("other", "o", {"1, 5, 5, 400, 'other o'", "4, 2, 2, 1, 'eins'"}),
        usualTable("other", "order", {"5, 2, 8, 500, 'other order'"}),
        usualTable("other", "only here", {"2, 3, 4, 600, 'only'"}),
    };
}

std::vector<SchemaTable> tablesInCapitals(const std::string& schema) {
    return {
        usualTable(schema, "A", {"1, 6, 2, 50, 'capital A'", "2, 2, 2, 60, 'two'"}),
        usualTable(schema, "O", {"2, 4, 1, 70, 'capital O'", "4, 1, 9, 80, NULL"}),
    };
}

void append(std::vector<SchemaTable>& tables, std::vector<SchemaTable> more) {
    std::move(more.begin(), more.end(), std::back_inserter(tables));
}

/// PostgreSQL tells "Y" from y; the values sort another way than those of y, and equal rows stay
/// equal, in one table as in all.
void addColumnsInCapitals(SchemaTable& table) {
    table.columns.push_back({"Y"});
    table.columns.push_back({"O"});
    for (std::string& row : table.rows) {
        unsigned sum = 0;
        for (const char c : row)
            sum = sum * 31 + static_cast<unsigned char>(c);
        row += ", " + std::to_string(90 - sum % 41) + ", " + std::to_string(sum % 7);
    }
}

std::string path(const SchemaTable& table, DatabaseType family) {
    const std::string name = quotedName(table.name, family);
    return table.isTemporary() ? name : quotedName(table.schema, family) + "." + name;
}

std::string columnList(const SchemaTable& table, DatabaseType family) {
    std::string list;
    for (const SchemaColumn& column : table.columns) {
        if (!list.empty()) list += ", ";
        list += quotedName(column.name, family);
        list += column.isText ? " varchar(100)" : " integer";
    }
    return list;
}

std::string creation(const SchemaTable& table, DatabaseType family) {
    return std::string("CREATE ") + (table.isTemporary() ? "TEMPORARY " : "") + "TABLE " +
           path(table, family) + " (" + columnList(table, family) + ")";
}

std::string insertion(const SchemaTable& table, DatabaseType family, bool isReversed) {
    std::vector<std::string> rows = table.rows;
    if (isReversed) std::reverse(rows.begin(), rows.end());
    std::string text = "INSERT INTO " + path(table, family) + " VALUES ";
    for (std::size_t i = 0; i < rows.size(); ++i)
        text += (i > 0 ? ", (" : "(") + rows[i] + ")";
    return text;
}

/// The other schema, made anew; dropping it drops its tables.
std::vector<std::string> schemaCreation(DatabaseType family) {
    if (family == DatabaseTypePostgreSQL) {
        return {"DROP SCHEMA IF EXISTS other CASCADE", "CREATE SCHEMA other"};
    }
    if (family == DatabaseTypeMariaDB) {
        return {"DROP DATABASE IF EXISTS other", "CREATE DATABASE other"};
    }
    return {};  // attached once, when the connection opens
}

std::string dropping(const SchemaTable& table, DatabaseType family) {
    const bool isMariaDB = family == DatabaseTypeMariaDB;
    if (!table.isTemporary()) return "DROP TABLE IF EXISTS " + path(table, family);
    if (isMariaDB) return "DROP TEMPORARY TABLE IF EXISTS " + path(table, family);
    return std::string("DROP TABLE IF EXISTS ") +
           (family == DatabaseTypePostgreSQL ? "pg_temp." : "temp.") + path(table, family);
}

}  // namespace

std::string mainSchema(DatabaseType family) {
    if (family == DatabaseTypeSQLite) return "main";
    return family == DatabaseTypePostgreSQL ? "public" : "joinery";
}

std::vector<SchemaTable> adversarialTables(DatabaseType family) {
    std::vector<SchemaTable> tables = mainTables(mainSchema(family));
    append(tables, otherTables());
    if (family != DatabaseTypeSQLite) append(tables, tablesInCapitals(mainSchema(family)));
    append(tables, {usualTable("", "hidden", {"1, 5, 3, 9, 'temporary'"})});
    if (family != DatabaseTypePostgreSQL) return tables;
    for (SchemaTable& table : tables) {
        if (table.name != "odd" && table.name != "words") addColumnsInCapitals(table);
    }
    return tables;
}

std::string quotedName(const std::string& name, DatabaseType family) {
    const char quote = family == DatabaseTypeMariaDB ? '`' : '"';
    std::string text(1, quote);
    for (const char c : name) {
        if (c == quote) text += c;
        text += c;
    }
    return text += quote;
}

std::vector<std::string> schemaScript(DatabaseType family, bool isReversed) {
    const std::vector<SchemaTable> tables = adversarialTables(family);
    std::vector<std::string> script;
    for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
        // The other schema may not be there yet; it is dropped as a whole.
        const bool isDroppedWithSchema = table->schema == "other" && family != DatabaseTypeSQLite;
        if (!isDroppedWithSchema) script.push_back(dropping(*table, family));
    }
    for (std::string& statement : schemaCreation(family))
        script.push_back(std::move(statement));
    for (const SchemaTable& table : tables) {
        script.push_back(creation(table, family));
        if (!table.rows.empty()) script.push_back(insertion(table, family, isReversed));
    }
    return script;
}

}  // namespace QB::Test
