// The statements of the data files: what the parser accepts gives the same rows after parse and
// build, whatever the host's way of quoting; what it refuses is refused for the stated reason.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "differential/adversarial_schema.h"
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

class Statements : public OnAdversarialSchema {};

TEST_P(Statements, AreAcceptedByTheServerAsTheyStand) {
    for (const StatementCase& statement : statementsOf(GetParam())) {
        const Answer answer = session->ask(statement.sql);
        EXPECT_FALSE(answer.isRefused) << statement.where << " " << answer.message;
        const bool mustHaveRows = statement.hasRows && !statement.isRefused;
        EXPECT_TRUE(!answer.rows.empty() || !mustHaveRows)
            << statement.where << " " << statement.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Live, Statements, testing::Values(livePostgreSQL, liveMariaDB, liveSQLite),
                         serverName);

}  // namespace
