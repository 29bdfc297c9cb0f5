#include "platform/sqlet/words.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>

namespace {

enum Family { MySQL = 1, PostgreSQL, Oracle, SQLite, SQLServer, MariaDB };

unsigned classOf(int family, const std::string& word) {
    return sqlet_word_class(family, word.data(), static_cast<int>(word.size()));
}

bool readsAsName(int family, const std::string& word) {
    return sqlet_reads_as_name(family, word.data(), static_cast<int>(word.size()));
}

class EachFamily : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Words, EachFamily, testing::Range(1, 7));

TEST_P(EachFamily, ListsItsWordsSortedAndFindsEachInAnyCase) {
    std::string previous;
    unsigned flags = 0;
    int index = 0;
    for (; const char* listed = sqlet_words(GetParam(), index, &flags); ++index) {
        std::string word = listed;
        EXPECT_LT(previous, word);
        previous = word;
        EXPECT_NE(flags, 0U) << word;
        EXPECT_TRUE(sqlet_is_plain_word(GetParam(), listed, static_cast<int>(word.size()))) << word;
        word.back() = static_cast<char>(std::tolower(word.back()));
        EXPECT_EQ(classOf(GetParam(), word), flags) << word;
    }
    EXPECT_GT(index, 140);
    EXPECT_EQ(sqlet_words(GetParam(), -1, &flags), nullptr);
}

TEST(Words, AreReadAsNamesInTheCaseThatTheServerFoldsTo) {
    EXPECT_TRUE(readsAsName(PostgreSQL, "o_1"));
    EXPECT_FALSE(readsAsName(PostgreSQL, "O_1"));
    EXPECT_TRUE(readsAsName(Oracle, "O_1"));
    EXPECT_FALSE(readsAsName(Oracle, "o_1"));
    EXPECT_FALSE(readsAsName(Oracle, "_O"));
    EXPECT_TRUE(readsAsName(SQLite, "_O_1"));
    for (const char* word : {"", "2", "1a", "My A", "a-b", "a$b", "\xC3\xA4", "select", "true"})
        EXPECT_FALSE(readsAsName(MySQL, word)) << word;
}

TEST(Words, AreCountedByLengthAndBoundToAFamily) {
    EXPECT_TRUE(sqlet_word_class(MySQL, "selection", 6) & SQLET_WORD_RESERVED);
    EXPECT_EQ(classOf(MySQL, std::string(100000, 'A')), 0U);
    EXPECT_EQ(sqlet_word_class(MySQL, nullptr, 3), 0U);
    EXPECT_EQ(sqlet_word_class(MySQL, "select", -1), 0U);
    for (const int family : {-1, 0, 7, 8}) {
        EXPECT_EQ(classOf(family, "select"), 0U);
        EXPECT_EQ(sqlet_words(family, 0, nullptr), nullptr);
        EXPECT_EQ(sqlet_folding(family), SQLET_FOLDING_NONE);
        EXPECT_FALSE(readsAsName(family, "a"));
    }
}

}  // namespace
