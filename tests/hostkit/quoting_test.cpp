#include "hostkit/quoting.h"

#include <gtest/gtest.h>

#include <algorithm>
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

}  // namespace

TEST(Quoting, NamesAreQuotedWhereTheFamilyNeedsIt) {
    using namespace QB;
    const Expectation expectations[] = {
        {DatabaseTypeMySQL, "orders", "orders"},
        {DatabaseTypeMySQL, "Orders", "Orders"},
        {DatabaseTypeMySQL, "order", "`order`"},
        {DatabaseTypeMySQL, "a`b", "`a``b`"},
        {DatabaseTypeMySQL, "2nd", "`2nd`"},
        {DatabaseTypeMySQL, "GROUP_CONCAT", "GROUP_CONCAT"},
        {DatabaseTypeMariaDB, "straße", "`straße`"},
        {DatabaseTypePostgreSQL, "Orders", "\"Orders\""},
        {DatabaseTypePostgreSQL, "user", "\"user\""},
        {DatabaseTypePostgreSQL, "a\"b", "\"a\"\"b\""},
        {DatabaseTypePostgreSQL, "COUNT", "COUNT"},
        {DatabaseTypePostgreSQL, "Count", "\"Count\""},
        {DatabaseTypeOracle, "ORDERS", "ORDERS"},
        {DatabaseTypeOracle, "orders", "\"orders\""},
        {DatabaseTypeOracle, "DATE", "\"DATE\""},
        {DatabaseTypeOracle, "_X", "\"_X\""},
        {DatabaseTypeOracle, "count", "count"},
        {DatabaseTypeSQLite, "group", "\"group\""},
        {DatabaseTypeSQLite, "my table", "\"my table\""},
        {DatabaseTypeSQLite, "😀", "\"😀\""},
        {DatabaseTypeSQLServer, "User", "[User]"},
        {DatabaseTypeSQLServer, "a]b[c", "[a]]b[c]"},
        {DatabaseTypeSQLServer, "MAX", "MAX"},
        {DatabaseTypeNone, "a b", "\"a b\""},
        {DatabaseTypeSQLServer, "", "[]"},
    };
    for (const Expectation& e : expectations)
        EXPECT_EQ(formatIdentifier(e.name, e.family, 0), e.text) << "family " << e.family;
    // A NUL neither ends the name nor makes it another one.
    const std::string name("a\0\"; DROP", 9);
    EXPECT_EQ(formatIdentifier(name, DatabaseTypePostgreSQL, 0), "\"a\uFFFD\"\"; DROP\"");
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
