#include "differential/statement_file.h"

#include <fstream>
#include <stdexcept>

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

void cutEnd(std::string& sql) {
    sql.erase(sql.find_last_not_of(" \n") + 1);
}

}  // namespace

std::vector<StatementCase> readStatements(const std::string& file) {
    std::ifstream in(std::string(JOINERY_TEST_DATA "/") + file);
    if (!in) throw std::runtime_error("cannot read " + file);
    std::vector<StatementCase> statements;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        if (takePrefix(line, "--- ")) {
            statements.emplace_back();
            statements.back().name = line;
            statements.back().where = file + ":" + std::to_string(number);
        } else if (statements.empty()) {
            continue;  // the head of the file
        } else if (statements.back().sql.empty() && takePrefix(line, "--: ")) {
            readDirective(statements.back(), line);
        } else {
            statements.back().sql += line + '\n';
        }
    }
    for (StatementCase& statement : statements)
        cutEnd(statement.sql);
    return statements;
}

}  // namespace QB::Test
