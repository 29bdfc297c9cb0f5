// The statements of statements.txt and the cells of the construct table: what the parser accepts
// gives the same rows after parse and build, whatever the host's way of quoting; what it refuses is
// refused for the stated reason.
#include <gtest/gtest.h>

#include <iostream>
#include <string>
#include <vector>

#include "constructs/construct_table.h"
#include "differential/examination.h"
#include "differential/session_fixture.h"
#include "differential/statement_file.h"

using namespace QB;
using namespace QB::Test;

namespace {

std::vector<StatementCase> statementsOf(const LiveServer& server) {
    const constructs::Family& family = constructs::familyOf(server.family);
    std::vector<StatementCase> statements = readStatements(family.key);
    for (const constructs::Cell& cell : constructs::cells()) {
        if (cell.family != &family || !cell.isAccepted() || !cell.entry->notRun.empty()) continue;
        StatementCase statement;
        statement.name = cell.construct->title;
        statement.where = cell.entry->place;
        statement.sql = cell.statement();
        statement.schema = cell.schema();
        statement.hasSchema = true;
        statement.hasRows = false;
        if (!statement.sql.empty()) statements.push_back(statement);
    }
    return statements;
}

class Statements : public OnTables {
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
    const std::vector<StatementCase> statements = statementsOf(GetParam());
    std::size_t withRows = 0;
    for (const StatementCase& statement : statements) {
        const Answer answer = session->ask(statement.sql);
        EXPECT_FALSE(answer.isRefused) << statement.where << " " << answer.message;
        const bool mustHaveRows = statement.hasRows && !statement.isRefused;
        EXPECT_TRUE(!answer.rows.empty() || !mustHaveRows)
            << statement.where << " " << statement.name;
        withRows += !answer.rows.empty();
    }
    std::cout << statements.size() << " statements, " << withRows << " with rows\n";
    EXPECT_GT(10 * withRows, 9 * statements.size()) << "statements without rows compare little";
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
