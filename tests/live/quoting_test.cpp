// Names as awkward as servers allow, written by the host kit and read back from the server.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "hostkit/quoting.h"
#include "live/live_server.h"
#include "support/long_runs.h"

using namespace QB;
using namespace QB::Test;

namespace {

class Quoting : public OnServer {
protected:
    QString quoted(const QString& name) const {
        return QString::fromStdString(
            HostKit::formatIdentifier(name.toStdString(), GetParam().family, 0));
    }

    /// The names of the tables that exist, as the server itself reports them.
    QStringList tables() {
        if (family() == DatabaseTypeSQLite) {
            return server().column("SELECT name FROM sqlite_master WHERE type = 'table'");
        }
        const char* schema = family() == DatabaseTypePostgreSQL ? "public" : "joinery";
        return server().column(
            QStringLiteral("SELECT table_name FROM information_schema.tables WHERE table_schema = "
                           "'%1'")
                .arg(schema));
    }

    /// Makes a table of that name with a column of that name, and reads it through both. False if
    /// the server allows no such name; a failure if it reads another one.
    bool roundTrip(const QString& name) {
        const QString q = quoted(name);
        if (!server().run(QStringLiteral("CREATE TABLE %1 (%1 integer)").arg(q))) return false;
        EXPECT_EQ(tables(), QStringList{name});
        EXPECT_TRUE(server().run(QStringLiteral("INSERT INTO %1 VALUES (42)").arg(q)));
        EXPECT_EQ(
            server().value(QStringLiteral("SELECT %1.%1 FROM %1 WHERE %1 = 42 ORDER BY %1").arg(q)),
            "42")
            << q.toStdString() << ": " << server().error().toStdString();
        EXPECT_TRUE(server().run(QStringLiteral("DROP TABLE %1").arg(q)));
        return true;
    }
};

TEST_P(Quoting, AwkwardNamesComeBackAsTheyAre) {
    const std::vector<const char*> names = {
        "plain",
        "MixedCase",
        "UPPER",
        "select",
        "Select",
        "user",
        "two words",
        " leading",
        "quote\"inside",
        "\"\"\"",
        "it's",
        "`tick`",
        "[brackets]",
        "]",
        "semi;colon",
        "-- comment",
        "/* c */",
        "dot.ted",
        "back\\slash",
        "\\",
        "per%cent",
        "1st",
        "42",
        "under_score",
        "dollar$",
        "#hash",
        "@at",
        "new\nline",
        "tab\tbed",
        "ümläut",
        "Ünicode",
        "日本語",
        "x'; DROP TABLE y",
        "{\"a\":1}",
        "?",
        ":name",
        "count",
        "current_date",
        "null",
        "true",
        "_leading",
        "group by",
    };
    for (const char* name : names)
        EXPECT_TRUE(roundTrip(name)) << name << ": " << server().error().toStdString();
}

TEST_P(Quoting, ANameIsReadAsItIsOrRefused) {
    for (const char* name : {"trailing ", "\U0001F600 emoji", "\x01\x7f", ""})
        roundTrip(name);
    EXPECT_EQ(tables(), QStringList());
}

TEST_P(Quoting, RandomNamesComeBackAsTheyAre) {
    const QString alphabet = QStringLiteral("aZ_0 \"'`[]\\.;-/*%$#@:?()\n\tß");
    std::mt19937 random(20231122);
    int accepted = 0;
    for (int i = 0; i < repetitions(100); ++i) {
        QString name(static_cast<int>(1 + random() % 12), QChar());
        for (QChar& c : name)
            c = alphabet[static_cast<int>(random() % static_cast<unsigned>(alphabet.size()))];
        if (roundTrip(name)) ++accepted;
        if (HasFailure()) FAIL() << "round " << i << ": " << name.toStdString();
    }
    EXPECT_GT(accepted, 50);
}

INSTANTIATE_TEST_SUITE_P(Live, Quoting, testing::Values(livePostgreSQL, liveMariaDB, liveSQLite),
                         serverName);

}  // namespace
