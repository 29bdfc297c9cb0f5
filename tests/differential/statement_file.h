#pragma once

#include <string>
#include <vector>

namespace QB::Test {

/// A line of statements.txt, whose head says how it is written.
struct StatementCase {
    std::string name;
    std::string where;  ///< file and line
    std::string sql;
    std::string refusal;  ///< empty: accepted
    bool isRefused = false;
    bool hasSchema = false;
    std::string schema;
    bool hasRows = true;
    bool mayChangeLabels = false;
    bool changesByContract = false;
};

/// The lines for the server of @p family, a key of the construct table.
/// Errors: throws std::runtime_error if the file cannot be read or a line is not understood.
std::vector<StatementCase> readStatements(const std::string& family);

}  // namespace QB::Test
