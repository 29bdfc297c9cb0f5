// Random statements: what the server accepts and the parser too must give the same rows after
// parse and build. Failures come as the smallest statement that still fails.
//
//   JOINERY_SEED=N          other statements than the usual ones
//   JOINERY_STATEMENTS=N    how many
//   JOINERY_BACKLOG=1       shows the smallest statements that only the parser calls wrong
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "differential/candidate.h"
#include "differential/session_fixture.h"
#include "differential/shrinking.h"
#include "support/long_runs.h"

using namespace QB;
using namespace QB::Test;

namespace {

unsigned environmentNumber(const char* variable, unsigned usual) {
    const char* value = std::getenv(variable);
    return value ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : usual;
}

/// The message without position and without what the statement brought in.
std::string reason(const QBParseOutcome& outcome) {
    std::string text = outcome.message;
    const std::size_t position = text.find("line ");
    const std::size_t colon = position == std::string::npos ? position : text.find(": ", position);
    if (colon != std::string::npos) text.erase(0, colon + 2);
    return std::to_string(static_cast<int>(outcome.verdict)) + " " + text;
}

class RandomStatements : public OnAdversarialSchema {
protected:
    void take(const Candidate& candidate) {
        Examined result = candidate.examination.result;
        if (candidate.isOdd && result == Examined::OtherLabels) result = Examined::Same;
        ++m_results[name(result)];
        if (result == Examined::Same) return;
        if (result == Examined::RefusedByParser) {
            const QBParseOutcome& outcome = candidate.examination.outcome;
            ++m_reasons[reason(outcome)];
            if (outcome.verdict == QBParseOutcome::Verdict::SyntaxError) {
                m_backlog.push_back(candidate);
            }
            // The layer below the gate is to see by itself what cannot be represented.
            if (outcome.verdict != QBParseOutcome::Verdict::CannotBeRepresented) return;
        }
        m_suspects.push_back(candidate);
    }

    /// Of the suspects, those that are no play of chance.
    std::vector<Candidate> culprits() {
        std::vector<LocatedStatement> statements;
        for (const Candidate& suspect : m_suspects)
            statements.push_back({suspect.sql, suspect.bareSchema});
        const std::vector<Difference> chances = session->chances(statements);
        std::vector<Candidate> found;
        for (std::size_t i = 0; i < m_suspects.size(); ++i) {
            const Examined result = m_suspects[i].examination.result;
            const bool isChance =
                (result == Examined::OtherRows && chances[i].inRows) ||
                (result == Examined::OtherOrder && (chances[i].inOrder || chances[i].inRows));
            if (!isChance) found.push_back(m_suspects[i]);
        }
        return found;
    }

    /// The smallest statement with the same result, or the same kind of refusal.
    std::string smallest(const Candidate& candidate) {
        session->useSchema(candidate.bareSchema);
        const auto isStillBad = [&](const StatementTokens& tokens) {
            const std::string sql = plainText(tokens);
            const Answer original = session->ask(sql);
            if (original.isRefused) return false;
            const Examination now = examine(*session, sql, original, candidate.schema);
            return now.result == candidate.examination.result &&
                   now.outcome.verdict == candidate.examination.outcome.verdict;
        };
        const std::string sql = plainText(shrunk(candidate.tokens, isStillBad));
        const Answer original = session->ask(sql);
        return "schema \"" + candidate.schema + "\", bare names in " + candidate.bareSchema + "\n" +
               describe(examine(*session, sql, original, candidate.schema), sql, original);
    }

    void printCounts(unsigned seed) {
        std::cout << "[ seed " << seed << " ]";
        for (const auto& [result, count] : m_results)
            std::cout << "  " << result << " " << count;
        std::cout << "  (with two rows or more: " << m_withRows << ")\n";
        for (const auto& [why, count] : m_reasons)
            std::cout << "    " << count << " x " << why << '\n';
    }

    int m_withRows = 0;
    std::map<std::string, int> m_results;
    std::map<std::string, int> m_reasons;
    std::vector<Candidate> m_suspects;
    std::vector<Candidate> m_backlog;
};

TEST_P(RandomStatements, KeepTheirMeaningOrAreRefused) {
    const unsigned first = environmentNumber("JOINERY_SEED", 20240229);
    const unsigned count =
        environmentNumber("JOINERY_STATEMENTS", static_cast<unsigned>(repetitions(400)));
    for (unsigned i = 0; i < count; ++i) {
        Candidate candidate = randomCandidate(*session, first + i);
        if (candidate.original.isRefused) {
            ++m_results["refused by the server"];
            continue;
        }
        m_withRows += candidate.original.rows.size() > 1;
        candidate.examination =
            examine(*session, candidate.sql, candidate.original, candidate.schema);
        take(candidate);
    }
    const std::vector<Candidate> found = culprits();
    printCounts(first);
    EXPECT_FALSE(session->ask("SELECT 1").isRefused) << "the server died on the way";
    EXPECT_GT(static_cast<unsigned>(m_withRows), count / 2) << "the statements show too little";
    EXPECT_GT(static_cast<unsigned>(m_results[name(Examined::Same)]), count / 2)
        << "too few were compared";
    for (std::size_t i = 0; i < found.size() && i < 12; ++i)
        ADD_FAILURE() << smallest(found[i]);
    if (!std::getenv("JOINERY_BACKLOG")) return;
    for (std::size_t i = 0; i < m_backlog.size() && i < 40; ++i)
        std::cout << smallest(m_backlog[i]) << "\n\n";
}

INSTANTIATE_TEST_SUITE_P(Live, RandomStatements,
                         testing::Values(livePostgreSQL, liveMariaDB, liveSQLite), serverName);

}  // namespace
