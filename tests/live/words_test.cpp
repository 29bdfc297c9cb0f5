// What the word table promises, asked of the servers themselves: a word that it lets stand bare
// means what it says.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "live/live_server.h"
#include "platform/sqlet/words.h"

using namespace QB;
using namespace QB::Test;

namespace {

class Words : public OnServer {
protected:
    /// Every word that any family or the server at hand knows, in lower case.
    std::vector<std::string> allWords() {
        std::vector<std::string> words;
        for (int family = DatabaseTypeMySQL; family <= DatabaseTypeMariaDB; ++family) {
            for (int i = 0; const char* word = sqlet_words(family, i, nullptr); ++i)
                words.push_back(QString::fromUtf8(word).toLower().toStdString());
        }
        for (const QString& word : serverWords())
            words.push_back(word.toLower().toStdString());
        std::sort(words.begin(), words.end());
        words.erase(std::unique(words.begin(), words.end()), words.end());
        return words;
    }

    QStringList serverWords() {
        if (family() == DatabaseTypePostgreSQL) {
            return server().column("SELECT word FROM pg_get_keywords()");
        }
        if (family() == DatabaseTypeMariaDB) {
            return server().column(
                "SELECT word FROM information_schema.keywords WHERE word REGEXP '^[A-Za-z_]+$' "
                "UNION SELECT CONCAT('_', character_set_name) FROM "
                "information_schema.character_sets");
        }
        return {};
    }

    unsigned flags(const std::string& word) {
        return sqlet_word_class(family(), word.data(), static_cast<int>(word.size()));
    }

    /// The word as table and as column, in every clause where a name can stand.
    QString asName(const std::string& word) {
        return server().value(
            QStringLiteral("SELECT %1.%1 FROM (SELECT 42 AS %1) AS %1 WHERE %1 = 42 AND %1.%1 = 42 "
                           "GROUP BY %1.%1 HAVING %1.%1 = 42 ORDER BY %1.%1")
                .arg(QString::fromStdString(word)));
    }

    QString asBareAlias(const std::string& word) {
        return server().value(
            QStringLiteral("SELECT 42 %1 FROM (SELECT 1 AS one) AS t").arg(word.c_str()));
    }
};

TEST_P(Words, AWordThatMayStandBareIsReadAsThatName) {
    int tried = 0;
    for (const std::string& word : allWords()) {
        if (!sqlet_reads_as_name(family(), word.data(), static_cast<int>(word.size()))) continue;
        EXPECT_EQ(asName(word), "42") << word << ": " << server().error().toStdString();
        ++tried;
    }
    EXPECT_GT(tried, 100);
}

TEST_P(Words, AWordThatMayFollowAnExpressionIsReadAsItsAlias) {
    for (const std::string& word : allWords()) {
        const unsigned barred = SQLET_WORD_RESERVED | SQLET_WORD_NO_BARE_ALIAS;
        if (flags(word) & barred) continue;
        EXPECT_EQ(asBareAlias(word), "42") << word << ": " << server().error().toStdString();
    }
}

TEST_P(Words, AReservedWordIsOneThatTheServerRefuses) {
    // Quoting a word too many does no harm to the meaning, but litters the text; a few words are
    // reserved in other versions of the server than the one that runs here.
    int reserved = 0;
    std::string needless;
    int needlessCount = 0;
    for (const std::string& word : allWords()) {
        if (!(flags(word) & SQLET_WORD_RESERVED)) continue;
        ++reserved;
        if (asName(word) != "42") continue;
        needless += ' ' + word;
        ++needlessCount;
    }
    EXPECT_GT(reserved, 20);
    EXPECT_LE(needlessCount, reserved / 5) << "quoted without need:" << needless;
}

TEST_P(Words, EveryKeywordOfTheServerIsInTheTable) {
    for (const QString& word : serverWords()) {
        EXPECT_NE(flags(word.toStdString()), 0U) << word.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Live, Words, testing::Values(livePostgreSQL, liveMariaDB, liveSQLite),
                         serverName);

}  // namespace
