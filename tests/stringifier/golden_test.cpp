#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <utility>
#include <vector>

#include "platform/sqlet/words.h"
#include "stringifier/golden_cases.h"
#include "stringifier/query_component_stringifier.h"
#include "support/host_callbacks.h"

using namespace QB;
using namespace QB::Test;
namespace fs = std::filesystem;

namespace {

constexpr std::pair<DatabaseType, const char*> families[] = {
    {DatabaseTypeMySQL, "mysql"},           {DatabaseTypeMariaDB, "mariadb"},
    {DatabaseTypePostgreSQL, "postgresql"}, {DatabaseTypeOracle, "oracle"},
    {DatabaseTypeSQLite, "sqlite"},         {DatabaseTypeSQLServer, "sqlserver"},
};

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) return "(no such file)";
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The quotes of one family for all, so that texts that differ in them alone are one.
std::string quote(const std::string& name, DatabaseType, int version) {
    return HostCallbacks::quoteAlways(name, DatabaseTypeSQLite, version);
}

/// A host that quotes only what the server would read otherwise, and leaves aggregates bare.
std::string quoteWhenNeeded(const std::string& name, DatabaseType type, int version) {
    const int length = static_cast<int>(name.size());
    const bool isFunction = sqlet_word_class(type, name.data(), length) & SQLET_WORD_FUNCTION;
    if (isFunction || sqlet_reads_as_name(type, name.data(), length)) return name;
    return quote(name, type, version);
}

std::string textFor(DatabaseType type, const Statement& statement) {
    const auto stringifier = QBQueryComponentStringifier::createStringifier({type, 0});
    stringifier->setCurrentSchema("shop");
    return stringifier->stringifyQuery(statement.get()) + '\n';
}

/// What each family's text has behind @p start, under the names of all that share it.
std::string sections(const Statement& statement, const std::string& title = {},
                     const std::string& start = {}) {
    std::vector<std::pair<std::string, std::string>> texts;
    for (const auto& [type, name] : families) {
        const std::string text = textFor(type, statement);
        EXPECT_EQ(text.substr(0, start.size()), start);
        const auto same = std::find_if(texts.begin(), texts.end(), [&](const auto& known) {
            return known.second == text.substr(start.size());
        });
        if (same == texts.end())
            texts.emplace_back("--" + title + " " + name, text.substr(start.size()));
        else
            same->first += std::string(" ") + name;
    }
    std::string all;
    for (const auto& [names, text] : texts)
        all += names + '\n' + text;
    return all;
}

class Golden : public testing::Test {
protected:
    Golden() { Callback::formatIdentifier = quote; }

    static void expectFile(const std::string& name, const std::string& text) {
        const fs::path file = fs::path(JOINERY_TEST_DATA) / "golden" / (name + ".sql");
        if (std::getenv("JOINERY_REWRITE_GOLDEN")) std::ofstream(file, std::ios::binary) << text;
        EXPECT_EQ(text, contentOf(file)) << file;
    }

    HostCallbacks m_host;
};

TEST_F(Golden, TextsAreAsTheFilesSay) {
    for (const GoldenCase& golden : goldenCases()) {
        Callback::formatIdentifier = golden.quotesWhenNeeded ? quoteWhenNeeded : quote;
        expectFile(golden.name, sections(golden.build()));
    }
}

struct LimitCase {
    const char* name;
    int offset;
    int rowCount;
    const char* option = "ONLY";
    bool isOrdered = false;
    bool isPercent = false;
};

TEST_F(Golden, RowLimitsAreAsTheFileSays) {
    constexpr LimitCase cases[] = {
        {"rows", -1, 10},
        {"no rows", -1, 0},
        {"offset", 0, -1},
        {"offset and rows, ordered", 5, 10, "ONLY", true},
        {"percent with ties, ordered", 5, 10, "with ties", true, true},
        {"ties", -1, 10, "With Ties"},
        {"ties without rows", 5, -1, "WITH TIES"},
    };
    std::string text;
    for (const LimitCase& c : cases) {
        const Statement s = newStatement();
        s->sourceExpr->root = table("t");
        if (c.isOrdered)
            s->orderByExpr->columns = {directed(expression("a"), OrderDirectionAscending)};
        s->limitExpr->offset = c.offset;
        s->limitExpr->rowCount = c.rowCount;
        s->limitExpr->returnOption = c.option;
        s->limitExpr->isPercent = c.isPercent;
        text += sections(s, std::string(" ") + c.name + ":", "SELECT\n\t*\nFROM\n\t\"t\"\n");
    }
    expectFile("limits", text);
}

}  // namespace
