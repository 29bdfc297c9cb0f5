// Random statements, mixed of those that the other tests have: what the server accepts and the
// parser too must give the same rows after parse and build. Failures come as the smallest statement
// that still fails.
//
//   JOINERY_SEED=N          other statements than the usual ones
//   JOINERY_STATEMENTS=N    how many
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <map>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "constructs/construct_table.h"
#include "differential/examination.h"
#include "differential/session_fixture.h"
#include "differential/statement_file.h"
#include "fuzz/statements/shrinking.h"
#include "fuzz/statements/statement_mixer.h"
#include "support/long_runs.h"

using namespace QB;
using namespace QB::Test;

namespace {

unsigned environmentNumber(const char* variable, unsigned usual) {
    const char* value = std::getenv(variable);
    return value ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : usual;
}

/// What the catalogue holds changes from one statement to the next.
bool isAboutCatalogue(const std::string& sql) {
    return sql.find("_schema") != std::string::npos || sql.find("pg_class") != std::string::npos;
}

std::vector<std::string> corpus(DatabaseType type) {
    const constructs::Family& family = constructs::familyOf(type);
    std::vector<std::string> texts;
    for (const StatementCase& statement : readStatements(family.key))
        texts.push_back(statement.sql);
    for (const constructs::Cell& cell : constructs::cells())
        if (cell.family == &family && cell.isAccepted() && cell.entry->notRun.empty())
            texts.push_back(cell.statement());
    texts.erase(std::remove_if(texts.begin(), texts.end(), isAboutCatalogue), texts.end());
    return texts;
}

/// A statement that the server reads, and what it says.
struct Candidate {
    std::string sql;
    std::string bareSchema;  ///< where the server finds bare names
    std::string schema;      ///< the same as the parser is told, or empty: not known
    bool isOdd = false;      ///< with comments, which may be part of a label
    bool isOrdered = false;  ///< by all columns
    Answer original;
    Examination examination;
};

class RandomStatements : public OnTables {
protected:
    /// Of several tries the first that gives rows, since no rows show no fault; else one that the
    /// server accepts at least, or none.
    std::optional<Candidate> candidate(Fuzz::StatementMixer& mixer, unsigned number) {
        constexpr unsigned tries = 20;
        std::optional<Candidate> best;
        for (unsigned seed = number * tries; seed < (number + 1) * tries; ++seed) {
            Candidate made;
            const bool isOther = number % 11 == 0 && session->family() != DatabaseTypeSQLite;
            made.bareSchema = isOther ? "other" : mainSchema(session->family());
            made.schema = number % 3 == 0 ? "" : made.bareSchema;
            made.isOdd = number % 4 == 0;
            const Fuzz::MixedStatement mixed = mixer.statement(seed);
            made.sql = mixed.text;
            if (!mayBeAsked(made.sql)) continue;
            session->useSchema(made.bareSchema);
            made.original = session->ask(made.sql);
            if (made.original.isRefused) continue;
            made.isOrdered = !mixed.orderBy.empty();
            made.sql = mixed.ordered(made.original.labels.size());
            if (made.isOdd) made.sql = mixer.oddlyWritten(made.sql);
            made.original = session->ask(made.sql);
            if (made.original.isRefused) continue;
            best = made;
            if (made.original.rows.size() > 1) break;
        }
        return best;
    }

    bool mayBeAsked(const std::string& sql) const {
        const auto has = [&sql](const char* word) {
            return sql.find(word) != std::string::npos;
        };
        // By contract the parser takes the current schema for that of a temporary table.
        if (has("shade")) return false;
        // MariaDB 10.11 dies of a.b.c that is not there, behind a merged column.
        static const std::regex threeParts("[.]\\s*[^\\s.,()]+\\s*[.]");
        const bool isMerged = has("NATURAL") || has("USING");
        return family() != DatabaseTypeMariaDB || !isMerged || !std::regex_search(sql, threeParts);
    }

    void examine(Candidate& candidate) {
        session->useSchema(candidate.bareSchema);
        candidate.examination =
            QB::Test::examine(*session, candidate.sql, candidate.original, candidate.schema);
        Examined& result = candidate.examination.result;
        const bool isByChance = (candidate.isOdd && result == Examined::OtherLabels) ||
                                (!candidate.isOrdered && result == Examined::OtherOrder);
        if (isByChance) result = Examined::Same;
    }

    /// "x" of SQLite is a string where no column has that name; in a list it is taken for a column.
    static bool isStringInQuotes(const Candidate& candidate) {
        const std::string start = "no such column: ";
        const std::string& message = candidate.examination.answer.message;
        if (message.rfind(start, 0) != 0) return false;
        const std::string name =
            message.substr(start.size(), message.find(" Unable") - start.size());
        return candidate.sql.find('"' + name + '"') != std::string::npos;
    }

    static bool isSuspect(const Candidate& candidate) {
        const Examination& examination = candidate.examination;
        if (isStringInQuotes(candidate)) return false;
        if (examination.result != Examined::RefusedByParser)
            return examination.result != Examined::Same;
        // The layer below the gate is to see by itself what cannot be represented.
        return examination.outcome.verdict == QBParseOutcome::Verdict::CannotBeRepresented;
    }

    /// Of the suspects, those that are no play of chance: a limit in a derived table may be one.
    std::vector<Candidate> culprits(const std::vector<Candidate>& suspects) {
        std::vector<LocatedStatement> statements;
        for (const Candidate& suspect : suspects)
            statements.push_back({suspect.sql, suspect.bareSchema});
        const std::vector<Difference> chances = session->chances(statements);
        std::vector<Candidate> found;
        for (std::size_t i = 0; i < suspects.size(); ++i) {
            const bool isChance = suspects[i].examination.result == Examined::OtherRows &&
                                  (chances[i].inRows || chances[i].inOrder);
            if (!isChance) found.push_back(suspects[i]);
        }
        return found;
    }

    /// The smallest statement with the same result.
    std::string smallest(Candidate candidate) {
        const Examined result = candidate.examination.result;
        const auto isStillBad = [&](const std::string& sql) {
            candidate.sql = sql;
            candidate.original = session->ask(sql);
            if (candidate.original.isRefused) return false;
            examine(candidate);
            return candidate.examination.result == result && isSuspect(candidate);
        };
        // Without all columns in it the order would be a matter of chance.
        if (result != Examined::OtherOrder)
            isStillBad(Fuzz::shrunk(candidate.sql, parserDialect(session->family()), isStillBad));
        return "schema \"" + candidate.schema + "\", bare names in " + candidate.bareSchema + "\n" +
               describe(candidate.examination, candidate.sql, candidate.original);
    }
};

TEST_P(RandomStatements, KeepTheirMeaningOrAreRefused) {
    const unsigned first = environmentNumber("JOINERY_SEED", 20240229);
    const unsigned count =
        environmentNumber("JOINERY_STATEMENTS", static_cast<unsigned>(repetitions(400)));
    Fuzz::StatementMixer mixer(session->family(), corpus(session->family()));
    std::map<std::string, unsigned> results;
    std::vector<Candidate> suspects;
    unsigned withRows = 0;
    for (unsigned i = 0; i < count; ++i) {
        std::optional<Candidate> made = candidate(mixer, first + i);
        if (!made) continue;
        withRows += made->original.rows.size() > 1;
        examine(*made);
        ++results[name(made->examination.result)];
        if (isSuspect(*made)) suspects.push_back(*made);
    }
    std::cout << "[ seed " << first << " ]";
    for (const auto& [result, number] : results)
        std::cout << "  " << result << " " << number;
    std::cout << "  (with two rows or more: " << withRows << ")\n";
    EXPECT_FALSE(session->ask("SELECT 1").isRefused) << "the server died on the way";
    EXPECT_GT(withRows, count / 2) << "the statements show too little";
    EXPECT_GT(results[name(Examined::Same)], count / 2) << "too few were compared";
    const std::vector<Candidate> found = culprits(suspects);
    for (std::size_t i = 0; i < found.size() && i < 12; ++i)
        ADD_FAILURE() << smallest(found[i]);
}

INSTANTIATE_TEST_SUITE_P(Live, RandomStatements,
                         testing::Values(livePostgreSQL, liveMariaDB, liveSQLite), serverName);

}  // namespace
