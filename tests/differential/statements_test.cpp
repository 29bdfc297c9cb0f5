// The statements of the data files: what the parser accepts gives the same rows after parse and
// build, whatever the host's way of quoting; what it refuses is refused for the stated reason.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "differential/adversarial_schema.h"
#include "differential/examination.h"
#include "differential/session_fixture.h"
#include "differential/statement_file.h"

using namespace QB;
using namespace QB::Test;

namespace {

std::vector<StatementCase> statementsOf(const LiveServer& server) {
    std::vector<StatementCase> statements = readStatements("shared.sql");
    const QString own = QString::fromLatin1(server.name).toLower() + ".sql";
    for (StatementCase& statement : readStatements(own.toStdString()))
        statements.push_back(std::move(statement));
    return statements;
}

class Statements : public OnAdversarialSchema {
protected:
    void expectRefused(const StatementCase& statement, const Examination& examination,
                       const Answer& original) {
        if (examination.result != Examined::RefusedByParser) {
            ADD_FAILURE() << statement.where << " is not refused\n"
                          << describe(examination, statement.sql, original);
            return;
        }
        EXPECT_NE(examination.outcome.message.find(statement.refusal), std::string::npos)
            << statement.where << "\n"
            << examination.outcome.message;
        EXPECT_GE(examination.outcome.error.location, 0) << statement.where;
    }

    void expectKept(const StatementCase& statement, const Examination& examination,
                    const Answer& original) {
        Examined worst = statement.mayChangeLabels ? Examined::OtherLabels : Examined::Same;
        if (statement.changesByContract) worst = Examined::RefusedByServer;
        EXPECT_LE(examination.result, worst) << statement.where << "\n"
                                             << describe(examination, statement.sql, original);
        EXPECT_TRUE(!statement.changesByContract || examination.result == Examined::OtherRows)
            << statement.where << " no longer changes; mend the file";
    }
};

TEST_P(Statements, AreAcceptedByTheServerAsTheyStand) {
    for (const StatementCase& statement : statementsOf(GetParam())) {
        const Answer answer = session->ask(statement.sql);
        EXPECT_FALSE(answer.isRefused) << statement.where << " " << answer.message;
        const bool mustHaveRows = statement.hasRows && !statement.isRefused;
        EXPECT_TRUE(!answer.rows.empty() || !mustHaveRows)
            << statement.where << " " << statement.name;
    }
}

TEST_P(Statements, KeepTheirMeaningOrAreRefused) {
    for (const StatementCase& statement : statementsOf(GetParam())) {
        const std::string schema =
            statement.hasSchema ? statement.schema : mainSchema(GetParam().family);
        const Answer original = session->ask(statement.sql);
        const Examination examination = examine(*session, statement.sql, original, schema);
        if (statement.isRefused) {
            expectRefused(statement, examination, original);
        } else {
            expectKept(statement, examination, original);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Live, Statements, testing::Values(livePostgreSQL, liveMariaDB, liveSQLite),
                         serverName);

}  // namespace
