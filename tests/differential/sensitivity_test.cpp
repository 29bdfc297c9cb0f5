// How well random statements show faults: statements with one token changed, as a parser or
// generator might change it, must give other rows often enough. Where they do not, the schema or
// the generator is too tame to trust the comparison.
#include <gtest/gtest.h>

#include <functional>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "differential/candidate.h"
#include "differential/expression_rules.h"
#include "differential/session_fixture.h"

using namespace QB;
using namespace QB::Test;

namespace {

/// Replaces the token at a position, or says that it does not apply there.
using TokenFault = std::function<bool(StatementTokens& tokens, std::size_t at)>;

TokenFault replaces(const std::string& from, const std::string& to) {
    return [=](StatementTokens& tokens, std::size_t at) {
        if (!tokens[at].isKeyword || tokens[at].text != from) return false;
        tokens[at].text = to;
        return true;
    };
}

bool takesAnotherSource(StatementTokens& tokens, std::size_t at) {
    // Of two parts only: MariaDB dies of schemas that it does not know, behind a natural join.
    const auto qualifierOf = [](const std::string& text) {
        const std::size_t dot = text.find('.');
        const bool isName = dot != std::string::npos && dot > 0 && dot == text.rfind('.') &&
                            text.find('\'') == std::string::npos;
        return isName ? text.substr(0, dot) : std::string();
    };
    const std::string own = qualifierOf(tokens[at].text);
    if (own.empty()) return false;
    for (const StatementToken& token : tokens) {
        const std::string other = qualifierOf(token.text);
        if (other.empty() || other == own) continue;
        tokens[at].text.replace(0, own.size(), other);
        return true;
    }
    return false;
}

bool becomesAString(StatementTokens& tokens, std::size_t at) {
    std::string& text = tokens[at].text;
    if (text.size() < 3 || text.front() != '"' || text.back() != '"') return false;
    text.front() = text.back() = '\'';
    return true;
}

bool skipsOneRowMore(StatementTokens& tokens, std::size_t at) {
    if (tokens[at].text != "OFFSET" || at + 1 == tokens.size()) return false;
    tokens[at + 1].text += "1";
    return true;
}

bool losesItsCondition(StatementTokens& tokens, std::size_t at) {
    if (tokens[at].text != "WHERE" || at + 1 == tokens.size()) return false;
    tokens[at + 1].text.insert(0, "1 = 1 OR ");
    return true;
}

struct NamedFault {
    const char* name;
    unsigned families;
    TokenFault fault;
};

const std::vector<NamedFault> faults = {
    {"LEFT becomes INNER", onAll, replaces("LEFT", "INNER")},
    {"DISTINCT is lost", onAll, replaces("DISTINCT", "ALL")},
    {"AND becomes OR", onAll, replaces("AND", "OR")},
    {"OR becomes AND", onAll, replaces("OR", "AND")},
    {"DESC becomes ASC", onAll, replaces("DESC", "ASC")},
    {"NULLS LAST becomes NULLS FIRST", onSQLite | onPostgreSQL, replaces("LAST", "FIRST")},
    {"NULLS FIRST becomes NULLS LAST", onSQLite | onPostgreSQL, replaces("FIRST", "LAST")},
    {"another source is taken", onAll, takesAnotherSource},
    {"a condition is lost", onAll, losesItsCondition},
    {"the offset grows", onAll, skipsOneRowMore},
    {"a name becomes a string", onSQLite, becomesAString},
};

class Sensitivity : public OnAdversarialSchema {
protected:
    struct Count {
        int tried = 0;
        int shown = 0;
    };

    /// Puts the fault into each place of the statement where it fits and the server accepts it;
    /// null if there is none.
    std::optional<bool> shows(const NamedFault& fault, const StatementTokens& tokens,
                              const Answer& original) {
        std::optional<bool> isShown;
        for (std::size_t at = 0; at < tokens.size() && !isShown.value_or(false); ++at) {
            StatementTokens faulty = tokens;
            if (!fault.fault(faulty, at)) continue;
            const Answer answer = session->ask(plainText(faulty));
            if (answer.isRefused) continue;
            const Difference difference = differenceBetween(original, answer);
            isShown = difference.inRows || difference.inOrder;
        }
        return isShown;
    }
};

TEST_P(Sensitivity, RandomStatementsShowFaults) {
    const unsigned family = familyBit(GetParam().family);
    std::vector<Count> counts(faults.size());
    for (unsigned number = 1; number <= 300; ++number) {
        const Candidate candidate = randomCandidate(*session, number);
        if (candidate.original.rows.size() < 2) continue;
        for (std::size_t i = 0; i < faults.size(); ++i) {
            if (!(faults[i].families & family)) continue;
            const std::optional<bool> isShown =
                shows(faults[i], candidate.tokens, candidate.original);
            counts[i].tried += isShown.has_value();
            counts[i].shown += isShown.value_or(false);
        }
    }
    EXPECT_FALSE(session->ask("SELECT 1").isRefused) << "the server died on the way";
    for (std::size_t i = 0; i < faults.size(); ++i) {
        if (!(faults[i].families & family)) continue;
        std::cout << "    " << faults[i].name << ": " << counts[i].shown << " of "
                  << counts[i].tried << '\n';
        EXPECT_GE(counts[i].shown, 2) << faults[i].name;
        EXPECT_GE(25 * counts[i].shown, counts[i].tried) << faults[i].name;
    }
}

INSTANTIATE_TEST_SUITE_P(Live, Sensitivity,
                         testing::Values(livePostgreSQL, liveMariaDB, liveSQLite), serverName);

}  // namespace
