// The statements of the construct table, damaged in every way, in every dialect: whatever the text,
// the C interface keeps its promises.
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "constructs/construct_table.h"
#include "hostile/accessor_faults.h"
#include "platform/sqlet/lexer.h"
#include "support/long_runs.h"
#include "support/token_changes.h"

using namespace QB::Test;

namespace {

constexpr int dialects = 5;

struct Statement {
    int dialect;
    std::string text;
};

/// Each text once in each dialect that the table gives it in. Of the usual run every third, of a
/// long one all.
std::vector<Statement> statements() {
    std::set<std::pair<std::string, int>> seen;
    std::vector<Statement> all;
    const std::size_t step = repetitions(1) > 1 ? 1 : 3;
    for (const constructs::Cell& cell : constructs::cells()) {
        const bool isNew = seen.insert({cell.statement(), cell.family->dialect}).second;
        if (isNew && seen.size() % step == 0)
            all.push_back({cell.family->dialect, cell.statement()});
    }
    return all;
}

/// Looks at texts, and tells of the first that breaks each promise.
class Watch {
public:
    ~Watch() { EXPECT_GT(m_looked, 1000); }

    void look(int dialect, const std::string& text) {
        ++m_looked;
        const std::string fault = faultOfAccessors(dialect, text);
        if (fault.empty() || !m_faults.insert(fault).second) return;
        ADD_FAILURE() << fault << "\ndialect " << dialect << ": " << text;
    }

private:
    int m_looked = 0;
    std::set<std::string> m_faults;
};

TEST(MutatedStatements, CutAtAnyByte) {
    Watch watch;
    for (const Statement& statement : statements())
        for (std::size_t size = 0; size < statement.text.size(); ++size)
            watch.look(statement.dialect, statement.text.substr(0, size));
}

TEST(MutatedStatements, WithATokenLostDoubledOrMisplaced) {
    Watch watch;
    for (const Statement& statement : statements()) {
        const sqlet::TokenList list = sqlet::lex(statement.text, statement.dialect);
        for (sqlet::TokenIndex i = 0; i < list.count(); ++i)
            for (const std::string& text : changedAt(statement.text, list, i))
                watch.look(statement.dialect, text);
    }
}

TEST(MutatedStatements, ReadInTheOtherDialects) {
    Watch watch;
    for (const Statement& statement : statements())
        for (int dialect = 1; dialect <= dialects; ++dialect)
            for (std::size_t size = statement.text.size(); size > 0; size -= (size + 7) / 8)
                watch.look(dialect, statement.text.substr(0, size));
}

TEST(MutatedStatements, WithRandomBytes) {
    Watch watch;
    std::mt19937 random(20261123);
    for (const Statement& statement : statements()) {
        for (int i = 0; i < repetitions(10); ++i) {
            std::string text = statement.text;
            for (std::size_t bytes = 1 + random() % 3; bytes > 0 && !text.empty(); --bytes)
                text[random() % text.size()] = static_cast<char>(random());
            watch.look(1 + static_cast<int>(random() % dialects), text);
        }
    }
}

}  // namespace
