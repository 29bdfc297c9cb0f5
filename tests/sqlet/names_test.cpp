#include "platform/sqlet/names.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/sqlet/lexer.h"

namespace {

enum Dialect { MySQL = 1, PostgreSQL, Oracle, SQLite, SQLServer };

struct NameCase {
    int dialect;
    const char* spelled;
    /// Null: it cannot be decoded.
    const char* name;
};

const NameCase nameCases[] = {
    // A bare word is folded, as far as the server's own folding is known.
    {MySQL, "Total", "Total"},
    {PostgreSQL, "Total$1", "total$1"},
    {PostgreSQL, "\xC3\x89tat", "\xC3\x89tat"},
    {Oracle, "v$session#", "V$SESSION#"},
    {Oracle, "\xC3\xA9tat", nullptr},
    {SQLite, "Total", "Total"},
    {SQLServer, "#Temp", "#Temp"},
    {MySQL, "1a", "1a"},
    // Quotes keep the case; a doubled quote stands for one.
    {PostgreSQL, "\"Say \"\"Hi\"\"\"", "Say \"Hi\""},
    {Oracle, "\"\xC3\xA9tat\"", "\xC3\xA9tat"},
    {MySQL, "`a``b\"c`", "a`b\"c"},
    {MySQL, "`a\\b`", "a\\b"},
    {SQLite, "`a``b`", "a`b"},
    {SQLite, "[a\"b]", "a\"b"},
    {SQLServer, "[a]]b]", "a]b"},
    {SQLServer, "[a\"\"b]", "a\"\"b"},
    {SQLServer, "\"a]]b\"", "a]]b"},
    {SQLite, "\"\"\"\"", "\""},
    {SQLite, "\"*\"", "*"},
    // A string as an alias.
    {SQLite, "'it''s'", "it's"},
    {MySQL, "\"it's\"", "it's"},
    {MySQL, "'a\"b'", "a\"b"},
    {SQLServer, "'x'", "x"},
    // What has escapes or a prefix, and what is no name.
    {MySQL, "'a\\'b'", nullptr},
    {MySQL, "N'x'", nullptr},
    {MySQL, "_utf8'x'", nullptr},
    {MySQL, "'x' 'y'", nullptr},
    {PostgreSQL, "U&\"d\\0061t\"", nullptr},
    {PostgreSQL, "E'x'", nullptr},
    {PostgreSQL, "$$x$$", nullptr},
    {PostgreSQL, "\"\"", nullptr},
    {SQLite, "''", nullptr},
    {SQLite, "12", nullptr},
    {SQLite, "\"a", nullptr},
    {SQLite, "\"a\xFF\"", nullptr},
};

TEST(Names, AreDecodedAsTheServerReadsThem) {
    for (const auto& [dialect, spelled, name] : nameCases) {
        const std::string text = spelled;
        const sqlet::TokenList list = sqlet::lex(text, dialect);
        ASSERT_EQ(list.count(), 1U) << text;
        EXPECT_EQ(sqlet::isDecodable(text, list[0], dialect), name != nullptr) << text;
        if (!name) continue;
        EXPECT_EQ(sqlet::decodedName(text, list[0], dialect), name);
    }
}

TEST(Names, AreUtf8WithoutOverlongFormsAndSurrogates) {
    for (const char* good : {"", "a", "\xC2\x80", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEF\xBF\xBD",
                             "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(sqlet::isValidUtf8(good)) << good;
    for (const char* bad :
         {"\x80", "\xC1\xBF", "\xC3", "a\xC3", "\xC3(", "\xE0\x9F\xBF", "\xE2\x82", "\xED\xA0\x80",
          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80"})
        EXPECT_FALSE(sqlet::isValidUtf8(bad)) << bad;
}

}  // namespace
