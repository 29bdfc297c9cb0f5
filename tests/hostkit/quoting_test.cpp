#include "hostkit/quoting.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "hostkit/schema_reader.h"
#include "sqlite_file.h"

using QB::HostKit::formatIdentifier;

namespace {

struct Expectation {
    QB::DatabaseType family;
    const char* name;
    const char* text;
};

std::string sqlite(const std::string& name) {
    return formatIdentifier(name, QB::DatabaseTypeSQLite, 3040001);
}

/// The names of one table's columns, asked of the server by a statement that uses each of them.
std::vector<std::string> columnsRead(sqlite3* handle, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    std::vector<std::string> names;
    EXPECT_EQ(sqlite3_prepare_v2(handle, sql.c_str(), -1, &statement, nullptr), SQLITE_OK)
        << sqlite3_errmsg(handle) << " in: " << sql;
    for (int i = 0; i < sqlite3_column_count(statement); ++i)
        names.emplace_back(sqlite3_column_origin_name(statement, i));
    sqlite3_finalize(statement);
    return names;
}

class MemoryDatabase {
public:
    MemoryDatabase() {
        sqlite3_open(":memory:", &handle);
        // A quoted name that is not read as a name must fail, not turn into text.
        sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
        sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    }
    ~MemoryDatabase() { sqlite3_close(handle); }

    /// Makes a table with a column of that name, and reads it back with the name as column, alias
    /// of the table and qualifier.
    void expectRoundTrip(const std::string& name) {
        const std::string quoted = sqlite(name);
        std::string always = "\"";
        for (const char c : name)
            always += c == '"' ? std::string("\"\"") : std::string(1, c);
        always += '"';
        const std::string create = "CREATE TABLE " + always + " (" + always + " INTEGER)";
        ASSERT_EQ(sqlite3_exec(handle, create.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(handle) << " in: " << create;
        const std::string select = "SELECT " + quoted + ", " + quoted + "." + quoted + " FROM " +
                                   quoted + " AS " + quoted + " WHERE " + quoted +
                                   " > 1 ORDER BY " + quoted;
        EXPECT_EQ(columnsRead(handle, select), std::vector<std::string>({name, name}));
        sqlite3_exec(handle, ("DROP TABLE " + always).c_str(), nullptr, nullptr, nullptr);
    }

    sqlite3* handle = nullptr;
};

}  // namespace

TEST(Quoting, NamesAreQuotedWhereTheFamilyNeedsIt) {
    using namespace QB;
    const Expectation expectations[] = {
        {DatabaseTypeMySQL, "orders", "orders"},
        {DatabaseTypeMySQL, "Orders", "Orders"},
        {DatabaseTypeMySQL, "order", "`order`"},
        {DatabaseTypeMySQL, "a`b", "`a``b`"},
        {DatabaseTypeMySQL, "a\"b]", "`a\"b]`"},
        {DatabaseTypeMySQL, "2nd", "`2nd`"},
        {DatabaseTypeMySQL, "count", "count"},
        {DatabaseTypeMySQL, "GROUP_CONCAT", "GROUP_CONCAT"},
        {DatabaseTypeMariaDB, "select", "`select`"},
        {DatabaseTypeMariaDB, "straße", "`straße`"},
        {DatabaseTypePostgreSQL, "orders", "orders"},
        {DatabaseTypePostgreSQL, "Orders", "\"Orders\""},
        {DatabaseTypePostgreSQL, "user", "\"user\""},
        {DatabaseTypePostgreSQL, "a\"b", "\"a\"\"b\""},
        {DatabaseTypePostgreSQL, "COUNT", "COUNT"},
        {DatabaseTypePostgreSQL, "Count", "\"Count\""},
        {DatabaseTypePostgreSQL, "a.b", "\"a.b\""},
        {DatabaseTypeOracle, "ORDERS", "ORDERS"},
        {DatabaseTypeOracle, "orders", "\"orders\""},
        {DatabaseTypeOracle, "DATE", "\"DATE\""},
        {DatabaseTypeOracle, "_X", "\"_X\""},
        {DatabaseTypeOracle, "count", "count"},
        {DatabaseTypeOracle, "LEFT", "\"LEFT\""},
        {DatabaseTypeSQLite, "Orders", "Orders"},
        {DatabaseTypeSQLite, "group", "\"group\""},
        {DatabaseTypeSQLite, "my table", "\"my table\""},
        {DatabaseTypeSQLite, "😀", "\"😀\""},
        {DatabaseTypeSQLServer, "Orders", "Orders"},
        {DatabaseTypeSQLServer, "User", "[User]"},
        {DatabaseTypeSQLServer, "a]b[c", "[a]]b[c]"},
        {DatabaseTypeSQLServer, "a\"b", "[a\"b]"},
        {DatabaseTypeSQLServer, "MAX", "MAX"},
        {DatabaseTypeNone, "a b", "\"a b\""},
        {DatabaseTypePostgreSQL, "", "\"\""},
        {DatabaseTypeSQLServer, "", "[]"},
        {DatabaseTypeMySQL, "", "``"},
    };
    for (const Expectation& e : expectations)
        EXPECT_EQ(formatIdentifier(e.name, e.family, 0), e.text) << "family " << e.family;
}

TEST(Quoting, ANulNeitherEndsTheNameNorMakesItAnotherOne) {
    const std::string name("a\0\"; DROP", 9);
    EXPECT_EQ(formatIdentifier(name, QB::DatabaseTypePostgreSQL, 0), "\"a\uFFFD\"\"; DROP\"");
}

TEST(Quoting, SqliteReadsEveryQuotedNameBackAsItself) {
    MemoryDatabase database;
    const char* const names[] = {"plain",  "MixedCase", "my table", " lead and trail ",
                                 "straße", "Ärger",     "😀 smile",  "a\"b",
                                 "\"",     "\"\"",      "a'b",      "a`b",
                                 "[x]",    "a]b",       "a.b.c",    "2nd",
                                 "42",     "1e5",       "x'41'",    "$x",
                                 "a-b",    "a--b",      "/*c*/",    "a;b",
                                 "a\nb",   "a\tb",      "%s%n",     "\\",
                                 ":name",  "?1",        "@v",       "#t",
                                 "*",      "rowid",     "_rowid_",  "true",
                                 "FALSE",  "null",      "count",    "SUM"};
    for (const char* const name : names) {
        SCOPED_TRACE(name);
        database.expectRoundTrip(name);
    }
}

TEST(Quoting, SqliteReadsEveryKeywordOfItsOwnBackAsAName) {
    MemoryDatabase database;
    ASSERT_GT(sqlite3_keyword_count(), 100);
    for (int i = 0; i < sqlite3_keyword_count(); ++i) {
        const char* keyword = nullptr;
        int length = 0;
        sqlite3_keyword_name(i, &keyword, &length);
        const std::string name(keyword, static_cast<std::size_t>(length));
        SCOPED_TRACE(name);
        database.expectRoundTrip(name);
    }
}

TEST(Quoting, AggregatesStayFunctionsInSqlite) {
    MemoryDatabase database;
    for (const char* const name : {"COUNT", "SUM", "AVG", "MIN", "MAX", "TOTAL", "GROUP_CONCAT"}) {
        const std::string sql = "SELECT " + sqlite(name) + "(1)";
        EXPECT_EQ(sqlite3_exec(database.handle, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
        EXPECT_EQ(sqlite(name), name);
    }
}

TEST(Quoting, ANameFoundByTheReaderCanBeWrittenBackInAStatement) {
    QB::Test::SqliteFile file;
    const std::vector<std::string> names = {"a \"quoted\" 'name' `of` [all]", "Ärger 😀", "x.y",
                                            "select", "%1 %s"};
    for (const std::string& name : names)
        file.execute("CREATE TABLE " + sqlite(name) + " (" + sqlite(name) + ")");
    const QB::HostKit::SchemaReader reader(file.open());
    const auto objects = reader.objects("main");
    ASSERT_EQ(objects.rows.size(), names.size()) << objects.error.toStdString();
    for (const auto& object : objects.rows) {
        EXPECT_EQ(std::count(names.begin(), names.end(), object.name), 1) << object.name;
        const auto columns = reader.columns("main", object.name);
        ASSERT_EQ(columns.rows.size(), 1u);
        EXPECT_EQ(columns.rows[0].name, object.name);
        file.execute("SELECT " + sqlite(columns.rows[0].name) + " FROM " + sqlite(object.name));
    }
}
