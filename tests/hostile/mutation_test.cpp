#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>

#include "accessor_faults.h"
#include "platform/sqlet/lexer.h"
#include "round_trip_faults.h"
#include "statements.h"
#include "support/token_changes.h"

using namespace QB;
using namespace QB::Test;

namespace {

std::vector<Text> seeds() {
    return statementsIn(JOINERY_TEST_DATA "/../../fuzz/seeds");
}

/// Gathers what is wrong with many texts, of each kind of fault the first.
class Faults {
public:
    void look(DatabaseType family, const std::string& text) {
        std::string fault = faultOfAccessors(parserDialect(family), text);
        if (fault.empty()) fault = faultOfRoundTrip(text, family, "s", HostStyle::Minimal);
        if (fault.empty() || !m_kinds.insert({family, fault.substr(0, kindLength)}).second) return;
        m_told += "\nfamily " + std::to_string(family) + ": " + fault + "\n" + text + "\n";
    }
    const std::string& told() const { return m_told; }

private:
    static constexpr std::size_t kindLength = 24;
    std::set<std::pair<DatabaseType, std::string>> m_kinds;
    std::string m_told;
};

TEST(Mutation, AStatementCutAtAnyByteKeepsItsMeaningOrIsRefused) {
    Faults faults;
    for (const Text& statement : seeds())
        for (std::size_t size = 0; size <= statement.text.size(); ++size)
            faults.look(statement.family, statement.text.substr(0, size));
    EXPECT_EQ(faults.told(), "");
}

TEST(Mutation, AStatementWithATokenLostDoubledOrMisplacedKeepsItsMeaningOrIsRefused) {
    Faults faults;
    for (const Text& statement : seeds()) {
        const sqlet::TokenList list = sqlet::lex(statement.text, parserDialect(statement.family));
        for (sqlet::TokenIndex i = 0; i < list.count(); ++i)
            for (const std::string& text : changedAt(statement.text, list, i))
                faults.look(statement.family, text);
    }
    EXPECT_EQ(faults.told(), "");
}

/// What fuzzing found: the first line of each file names the family and the current schema, the
/// rest is the text, byte for byte.
class Finding : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(Finding, StaysMended) {
    const std::string content = contentOf(GetParam());
    const std::size_t blank = content.find(' ');
    const std::size_t end = content.find('\n');
    ASSERT_TRUE(blank < end && end != std::string::npos) << "no line \"FAMILY SCHEMA\"";
    const DatabaseType family = familyNamed(content.substr(0, blank));
    const std::string schema = content.substr(blank + 1, end - blank - 1);
    const std::string text = content.substr(end + 1);
    EXPECT_EQ(faultOfAccessors(parserDialect(family), text, schema.c_str()), "");
    for (const HostStyle style : {HostStyle::Minimal, HostStyle::AlwaysQuote})
        EXPECT_EQ(faultOfRoundTrip(text, family, schema, style), "");
}

std::string stemOf(const testing::TestParamInfo<std::filesystem::path>& file) {
    return file.param.stem().string();
}

INSTANTIATE_TEST_SUITE_P(, Finding, testing::ValuesIn(filesIn(JOINERY_TEST_DATA "/findings")),
                         stemOf);

}  // namespace
