#include "differential/statement_file.h"

#include <fstream>
#include <stdexcept>

#include "constructs/construct_table.h"

namespace QB::Test {
namespace {

bool takePrefix(std::string& line, const std::string& prefix) {
    if (line.compare(0, prefix.size(), prefix) != 0) return false;
    line.erase(0, prefix.size());
    return true;
}

void readDirective(StatementCase& statement, std::string directive) {
    if (takePrefix(directive, "refused")) {
        statement.isRefused = true;
        takePrefix(directive, " ");
        statement.refusal = directive;
    } else if (takePrefix(directive, "schema")) {
        statement.hasSchema = true;
        takePrefix(directive, " ");
        statement.schema = directive;
    } else if (directive == "no rows") {
        statement.hasRows = false;
    } else if (directive == "label") {
        statement.mayChangeLabels = true;
    } else if (takePrefix(directive, "changes ")) {
        statement.changesByContract = true;
    } else {
        throw std::runtime_error(statement.where + ": unknown directive " + directive);
    }
}

/// "NAME [DIRECTIVE]: STATEMENT"
StatementCase statementOf(const std::string& line, const std::string& where) {
    StatementCase statement;
    statement.where = where;
    const std::size_t colon = line.find(": ");
    if (colon == std::string::npos) throw std::runtime_error(where + ": no statement");
    statement.name = line.substr(0, colon);
    statement.sql = constructs::withoutSigns(line.substr(colon + 2));
    const std::size_t open = statement.name.find(" [");
    if (open == std::string::npos) return statement;
    readDirective(statement, statement.name.substr(open + 2, colon - open - 3));
    return statement;
}

}  // namespace

std::vector<StatementCase> readStatements(const std::string& family) {
    std::ifstream file(JOINERY_TEST_DATA "/statements.txt");
    if (!file) throw std::runtime_error("cannot read statements.txt");
    std::vector<StatementCase> statements;
    bool isMeant = false;
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (line.empty() || line.front() == '#') continue;
        if (line.front() == '@')
            isMeant = (line + " ").find(" " + family + " ") != std::string::npos;
        else if (isMeant)
            statements.push_back(statementOf(line, "statements.txt:" + std::to_string(number)));
    }
    return statements;
}

}  // namespace QB::Test
