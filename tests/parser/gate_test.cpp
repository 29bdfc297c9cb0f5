// The gate sees what no other check does: it is given faults on purpose.

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

#include "model/dump.h"
#include "model/element_expressions.h"
#include "support/round_trip.h"

using namespace QB;
using namespace QB::Test;
using namespace QB::Component::SQL;

namespace {

/// Stands between the gate and the generator: changes what is generated and counts.
class FaultyGenerator {
public:
    FaultyGenerator(std::string what, std::string with)
        : m_what(std::move(what)), m_with(std::move(with)) {
        current = this;
        installStatementText([](const Component::AbstractQueryComponent* component,
                                QBDatabaseInfo info, const std::string& schema,
                                const QuoteName& quote) {
            return current->change(current->m_earlier(component, info, schema, quote));
        });
    }
    ~FaultyGenerator() { installStatementText(m_earlier); }
    FaultyGenerator(const FaultyGenerator&) = delete;
    FaultyGenerator& operator=(const FaultyGenerator&) = delete;

    int runs = 0;

private:
    std::string change(std::string text) {
        ++runs;
        const std::size_t place = m_what.empty() ? std::string::npos : text.find(m_what);
        if (place != std::string::npos) text.replace(place, m_what.size(), m_with);
        return text;
    }

    static FaultyGenerator* current;
    const StatementText m_earlier = statementText();
    const std::string m_what;
    const std::string m_with;
};
FaultyGenerator* FaultyGenerator::current = nullptr;

QBParseOutcome parse(SQLSelectStmtComponent* statement, const std::string& text) {
    return QBQueryParser::parseStatement(statement, text, DatabaseTypePostgreSQL, "s");
}

}  // namespace

TEST(Gate, RefusesATextThatWouldMeanSomethingElse) {
    const char* const text =
        "SELECT a AS x, count(*)\nFROM t JOIN o.u ON t.i = u.i\nWHERE (a = 1 OR b = 2) AND "
        "c LIKE 'z'\nORDER BY x DESC LIMIT 5 OFFSET 2";
    const struct {
        const char* what;
        const char* with;
        const char* position;
    } faults[] = {
        {" AS \"x\"", "", "line 1, column 13"},
        {"\"a\"", "\"A\"", "line 1, column 8"},
        {"count(*)", "count(1)", "line 1, column 16"},
        {"count", "\"count\"", "line 1, column 16"},
        {"\"o\".\"u\"\n", "\"u\"\n", "line 2, column 13"},
        {"INNER", "LEFT", "line 2, column 8"},
        {"\"u\".\"i\"", "\"i\"", "line 2, column 26"},
        {"OR", "AND", "line 3, column 14"},
        {" LIKE ", " = ", "line 3, column 30"},
        {"'z'", "'z' ", ""},
        {"DESC", "ASC", "line 4, column 12"},
        {"LIMIT 5", "LIMIT 4", "line 4, column 17"},
        {"OFFSET 2", "", "line 4, column 17"},
        {"= 2", "= 3", "line 3, column 21"},
        {"SELECT", "SELEC", "line 1, column 1"},
    };
    for (const auto& [what, with, position] : faults) {
        const FaultyGenerator generator(what, with);
        const OwnedStatement statement(new SQLSelectStmtComponent);
        statement->limitExpr->rowCount = 7;
        const QBParseOutcome outcome = parse(statement.get(), text);
        if (*position == '\0') {
            EXPECT_TRUE(outcome.isAccepted()) << outcome.message;
            continue;
        }
        EXPECT_EQ(outcome.verdict, QBParseOutcome::Verdict::CannotBeRepresented) << what;
        const std::string told =
            "The query cannot be represented:\n\n" + std::string(position) + ": from here";
        EXPECT_EQ(outcome.message.substr(0, told.size()), told) << what;
        EXPECT_EQ(outcome.statement.location, 0);
        EXPECT_EQ(dumpStatement(statement.get()), "statement\n  select\n");
    }
}

TEST(Gate, AcceptsNothingWithoutAGeneratorAndLeavesFamiliesWithoutAModelAlone) {
    const StatementText installed = statementText();
    installStatementText(nullptr);
    const OwnedStatement statement(new SQLSelectStmtComponent);
    EXPECT_EQ(parse(statement.get(), "SELECT 1").message,
              "The query cannot be represented: no text generator is installed to check it with.");
    installStatementText(installed);
    std::set<TopLevelQueryComponentElementEnum> changed;
    statement->limitExpr->rowCount = 5;
    for (const auto type : {DatabaseTypeNone, DatabaseTypeReserved, DatabaseTypeMongoDB})
        QBQueryParser::parse(statement.get(), "", type, "", &changed, nullptr, nullptr);
    EXPECT_TRUE(changed.empty());
    EXPECT_EQ(statement->limitExpr->rowCount, 5);
    std::string message;
    for (std::string* told : {&message, static_cast<std::string*>(nullptr)})
        QBQueryParser::parse(statement.get(), "UPDATE", DatabaseTypeMariaDB, "", &changed, told,
                             nullptr);
    EXPECT_FALSE(message.empty());
    EXPECT_EQ(changed.count(ElementWhere), 1U);
    EXPECT_THROW(QBQueryParser::parse_SQL(statement.get(), "", DatabaseTypeReserved, "", nullptr,
                                          nullptr, nullptr),
                 std::runtime_error);
}

TEST(Gate, RunsOnceForTheWholeStatementAndAgainWhereQuotesMatter) {
    const struct {
        const char* text;
        int runs;
    } cases[] = {{"SELECT a FROM (SELECT b AS a FROM t) x", 1},
                 {"SELECT \"select\" FROM t", 1},  // cannot stand bare
                 {"SELECT a FROM t AS rows", 1},   // stood bare and does so again
                 {"SELECT a FROM t AS \"rows\"", 2},
                 {"SELECT a + FROM t", 0}};
    for (const auto& [text, runs] : cases) {
        for (const bool hasStatement : {true, false}) {
            const FaultyGenerator generator("", "");
            const OwnedStatement statement(hasStatement ? new SQLSelectStmtComponent : nullptr);
            parse(statement.get(), text);
            EXPECT_EQ(generator.runs, runs) << text;
        }
    }
}
