#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "platform/sqlet/words.h"
#include "stringifier/golden_cases.h"
#include "stringifier/query_component_stringifier.h"
#include "support/host_callbacks.h"

using namespace QB;
using namespace QB::Test;
namespace fs = std::filesystem;

namespace {

struct Family {
    DatabaseType type;
    const char* name;
};
constexpr Family families[] = {
    {DatabaseTypeMySQL, "mysql"},           {DatabaseTypeMariaDB, "mariadb"},
    {DatabaseTypePostgreSQL, "postgresql"}, {DatabaseTypeOracle, "oracle"},
    {DatabaseTypeSQLite, "sqlite"},         {DatabaseTypeSQLServer, "sqlserver"},
};

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) return "(no such file)";
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// A host that quotes only what the server would read otherwise, and leaves aggregates bare.
std::string quoteWhenNeeded(const std::string& name, DatabaseType type, int version) {
    const int length = static_cast<int>(name.size());
    const bool isFunction = sqlet_word_class(type, name.data(), length) & SQLET_WORD_FUNCTION;
    if (isFunction || sqlet_reads_as_name(type, name.data(), length)) return name;
    return HostCallbacks::quoteAlways(name, type, version);
}

using Parameter = std::tuple<Family, GoldenCase>;

class Golden : public testing::TestWithParam<Parameter> {
protected:
    HostCallbacks m_host;
};

TEST_P(Golden, TextIsAsTheFileSays) {
    const auto& [family, golden] = GetParam();
    if (golden.quotesWhenNeeded) Callback::formatIdentifier = quoteWhenNeeded;
    const Statement statement = golden.build();
    auto stringifier = QBQueryComponentStringifier::createStringifier({family.type, 0});
    ASSERT_TRUE(stringifier);
    stringifier->setCurrentSchema("shop");
    // Files end in a line feed, texts do not.
    const std::string text = stringifier->stringifyQuery(statement.get()) + '\n';

    const fs::path file =
        fs::path(JOINERY_TEST_DATA) / "golden" / family.name / (std::string(golden.name) + ".sql");
    if (std::getenv("JOINERY_REWRITE_GOLDEN")) {
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
    }
    EXPECT_EQ(text, contentOf(file)) << file;
}

INSTANTIATE_TEST_SUITE_P(Text, Golden,
                         testing::Combine(testing::ValuesIn(families),
                                          testing::ValuesIn(goldenCases())),
                         [](const testing::TestParamInfo<Parameter>& parameter) {
                             return std::string(std::get<0>(parameter.param).name) + "_" +
                                    std::get<1>(parameter.param).name;
                         });

}  // namespace
