// The statements of the construct table, damaged in every way: whatever the text, the C interface
// keeps its promises, and what is accepted keeps its meaning. And what fuzzing found.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "constructs/construct_table.h"
#include "platform/sqlet/lexer.h"
#include "round_trip_faults.h"
#include "sqlet/accessor_dump.h"
#include "support/long_runs.h"
#include "support/token_changes.h"

using namespace QB;
using namespace QB::Test;
using constructs::Cell;

namespace {

/// Each text once in each dialect that the table gives it in: of the usual run every third, of a
/// long one all.
std::vector<Cell> statements() {
    std::set<std::pair<std::string, int>> seen;
    std::vector<Cell> all;
    const std::size_t step = isLongRun() ? 1 : 3;
    for (const Cell& cell : constructs::cells()) {
        const bool isNew = seen.insert({cell.statement(), cell.family->dialect}).second;
        if (isNew && seen.size() % step == 0) all.push_back(cell);
    }
    return all;
}

/// Looks at texts, and tells of the first that breaks each promise.
class Watch {
public:
    ~Watch() { EXPECT_GT(m_looked, 1000); }

    void look(const Cell& cell, const std::string& text) {
        const auto type = static_cast<DatabaseType>(cell.family->number);
        std::string fault = sqlet_test::faultOfAccessors(cell.family->dialect, text);
        if (fault.empty() && ++m_looked % m_step == 0)
            fault = faultOfRoundTrip(text, type, cell.schema(), HostStyle::Minimal);
        tell(fault, type, text);
    }
    /// Of the accessors alone, in any dialect.
    void look(int dialect, const std::string& text) {
        ++m_looked;
        tell(sqlet_test::faultOfAccessors(dialect, text), dialect, text);
    }

private:
    void tell(const std::string& fault, int family, const std::string& text) {
        constexpr std::size_t kindLength = 24;
        if (fault.empty() || !m_faults.insert({family, fault.substr(0, kindLength)}).second) return;
        ADD_FAILURE() << fault << "\nfamily or dialect " << family << ": " << text;
    }

    const int m_step = isLongRun() ? 1 : 6;
    int m_looked = 0;
    std::set<std::pair<int, std::string>> m_faults;
};

constexpr int dialects = 5;

TEST(MutatedStatements, CutAtAnyByte) {
    Watch watch;
    for (const Cell& cell : statements())
        for (std::size_t size = 0; size < cell.statement().size(); ++size)
            watch.look(cell, cell.statement().substr(0, size));
}

TEST(MutatedStatements, WithATokenLostDoubledOrMisplaced) {
    Watch watch;
    for (const Cell& cell : statements()) {
        const std::string statement = cell.statement();
        const sqlet::TokenList list = sqlet::lex(statement, cell.family->dialect);
        for (sqlet::TokenIndex i = 0; i < list.count(); ++i)
            for (const std::string& text : changedAt(statement, list, i))
                watch.look(cell, text);
    }
}

TEST(MutatedStatements, ReadInTheOtherDialects) {
    Watch watch;
    for (const Cell& cell : statements()) {
        const std::string statement = cell.statement();
        for (int dialect = 1; dialect <= dialects; ++dialect)
            for (std::size_t size = statement.size(); size > 0; size -= (size + 7) / 8)
                watch.look(dialect, statement.substr(0, size));
    }
}

TEST(MutatedStatements, WithRandomBytes) {
    Watch watch;
    std::mt19937 random(20261123);
    for (const Cell& cell : statements()) {
        for (int i = 0; i < repetitions(10); ++i) {
            std::string text = cell.statement();
            for (std::size_t bytes = 1 + random() % 3; bytes > 0 && !text.empty(); --bytes)
                text[random() % text.size()] = static_cast<char>(random());
            watch.look(1 + static_cast<int>(random() % dialects), text);
        }
    }
}

std::vector<std::filesystem::path> findings() {
    const std::filesystem::directory_iterator folder(JOINERY_TEST_DATA "/findings");
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : folder)
        paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    return paths;
}

/// What fuzzing found: the first line of each file names the family and the current schema, the
/// rest is the text, byte for byte.
class Finding : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(Finding, StaysMended) {
    std::ifstream file(GetParam(), std::ios::binary);
    std::string key;
    std::string schema;
    ASSERT_TRUE(std::getline(file, key, ' ') && std::getline(file, schema))
        << "no line \"FAMILY SCHEMA\"";
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto& all = constructs::families();
    const auto family =
        std::find_if(all.begin(), all.end(), [&](const auto& known) { return known.key == key; });
    ASSERT_NE(family, all.end()) << key;
    EXPECT_EQ(sqlet_test::faultOfAccessors(family->dialect, text, schema.c_str()), "");
    for (const HostStyle style : {HostStyle::Minimal, HostStyle::AlwaysQuote})
        EXPECT_EQ(faultOfRoundTrip(text, static_cast<DatabaseType>(family->number), schema, style),
                  "");
}

INSTANTIATE_TEST_SUITE_P(, Finding, testing::ValuesIn(findings()),
                         [](const testing::TestParamInfo<std::filesystem::path>& file) {
                             return file.param.stem().string();
                         });

}  // namespace
