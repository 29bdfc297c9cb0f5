#pragma once

#include <string>
#include <vector>

namespace QB::Test {

/// A statement of a data file. The files are SQL, so that an editor shows them well:
///
///     --- BETWEEN keeps both bounds
///     SELECT id FROM a WHERE y BETWEEN 1 AND 15
///
///     --- a set operation is refused
///     --: refused UNION
///     SELECT id FROM a UNION SELECT id FROM b
///
/// A statement begins with a line "--- NAME" and runs to the next such line, without blank lines
/// at its end. Lines "--: " between name and text say more:
///
///     --: refused WORDS   the parser refuses it with a message that contains WORDS
///     --: schema NAME     the current schema, else the main one; empty: none is known
///     --: no rows         there are none to compare
///     --: label           the labels of the columns may change
///     --: changes WHY     the rows change, by contract; WHY says which
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

/// The statements of tests/differential/statements/@p file.
/// Errors: throws std::runtime_error if the file cannot be read or a directive is unknown.
std::vector<StatementCase> readStatements(const std::string& file);

}  // namespace QB::Test
