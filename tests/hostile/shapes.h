#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "model/vocabulary.h"
#include "parser/query_parser.h"

/// Texts that grow without bound in one direction each: what a careless program or a hostile
/// colleague pastes. The tests ask for the right verdict on a small stack, the benchmark for the
/// time that a size and twice that size take.
namespace QB::Test {

using Verdict = QBParseOutcome::Verdict;

struct Shape {
    const char* name;
    DatabaseType family;
    int size;
    Verdict verdict;  ///< at this size
    std::string (*text)(int n);
    /// At the limit of what is accepted: bounded, so that it need not grow evenly.
    bool isAtLimit = false;
};

inline std::string repeated(const std::string& piece, int n) {
    std::string text;
    text.reserve(piece.size() * static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i)
        text += piece;
    return text;
}

/// @p piece n times with @p separator between; "#" in it stands for the number, counted from 0.
inline std::string listed(const std::string& piece, int n, const std::string& separator = ", ") {
    std::string text;
    for (int i = 0; i < n; ++i) {
        if (i > 0) text += separator;
        for (const char c : piece)
            c == '#' ? text += std::to_string(i) : text += c;
    }
    return text;
}

/// @p inner between n times @p before and n times @p after.
inline std::string nested(const std::string& before, int n, const std::string& inner,
                          const std::string& after) {
    return repeated(before, n) + inner + repeated(after, n);
}

inline std::string spaced(const std::string& word, int n) {
    return repeated(word + " ", n);
}

// clang-format off
inline const std::vector<Shape>& bracketShapes() {
    static const std::vector<Shape> shapes = {
        {"open brackets in a condition", DatabaseTypeSQLite, 1000000, Verdict::SyntaxError,
         [](int n) { return "SELECT 1 WHERE " + repeated("(", n); }},
        {"open brackets in FROM", DatabaseTypePostgreSQL, 1000000, Verdict::SyntaxError,
         [](int n) { return "SELECT * FROM " + repeated("(", n); }},
        {"open brackets in the list", DatabaseTypeMySQL, 1000000, Verdict::SyntaxError,
         [](int n) { return "SELECT " + repeated("(", n); }},
        {"open brackets before the statement", DatabaseTypeOracle, 1000000, Verdict::SyntaxError,
         [](int n) { return repeated("(", n) + "SELECT 1"; }},
        {"closing brackets", DatabaseTypeMariaDB, 1000000, Verdict::SyntaxError,
         [](int n) { return "SELECT 1" + repeated(")", n); }},
        {"brackets of all kinds", DatabaseTypePostgreSQL, 300000, Verdict::SyntaxError,
         [](int n) { return "SELECT " + repeated("([{", n); }},
        {"brackets that cross", DatabaseTypePostgreSQL, 300000, Verdict::SyntaxError,
         [](int n) { return "SELECT " + nested("([", n, "1", ")]"); }},
        {"brackets in an operand", DatabaseTypeSQLite, 100000, Verdict::Accepted,
         [](int n) { return "SELECT 1 WHERE a = " + nested("(", n, "1", ")"); }},
        {"brackets at the left of a comparison", DatabaseTypePostgreSQL, 100000, Verdict::Accepted,
         [](int n) { return "SELECT 1 WHERE " + nested("(", n, "a", ")") + " + 1 = 2"; }},
        {"brackets in a list item", DatabaseTypeSQLServer, 100000, Verdict::Accepted,
         [](int n) { return "SELECT " + nested("(", n, "1", ")") + " AS x"; }},
        {"calls in calls", DatabaseTypeOracle, 100000, Verdict::Accepted,
         [](int n) { return "SELECT " + nested("f(", n, "1", ")") + " AS x FROM t"; }},
        {"subscripts in subscripts", DatabaseTypePostgreSQL, 100000, Verdict::Accepted,
         [](int n) { return "SELECT " + nested("a[", n, "1", "]") + " AS x FROM t"; }},
        {"subqueries in operands", DatabaseTypeSQLite, 10000, Verdict::Accepted,
         [](int n) { return "SELECT 1 WHERE a = " + nested("(SELECT a FROM t WHERE a = ", n, "1", ")"); }},
        {"subqueries behind IN", DatabaseTypeMySQL, 10000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t WHERE a IN " + nested("(SELECT a FROM t WHERE a IN ", n, "(1)", ")"); }},
        {"CASE in CASE", DatabaseTypeSQLite, 100000, Verdict::Accepted,
         [](int n) { return "SELECT " + nested("CASE WHEN 1 THEN ", n, "1", " ELSE 0 END") + " AS x"; }},
        {"CASE without END", DatabaseTypeSQLite, 100000, Verdict::SyntaxError,
         [](int n) { return "SELECT " + repeated("CASE WHEN 1 THEN ", n); }},
        {"boolean groups", DatabaseTypeSQLite, 200, Verdict::Accepted,
         [](int n) { return "SELECT 1 WHERE " + nested("(", n, "a = 1", ")"); }, true},
        {"one boolean group more", DatabaseTypeSQLite, 201, Verdict::TooLarge,
         [](int n) { return "SELECT 1 WHERE " + nested("(", n, "a = 1", ")"); }},
        {"boolean groups with terms", DatabaseTypePostgreSQL, 200, Verdict::Accepted,
         [](int n) { return "SELECT 1 WHERE " + nested("a = 1 OR (", n, "b = 2", " AND c = 3)"); }, true},
        {"one boolean group with terms more", DatabaseTypePostgreSQL, 201, Verdict::TooLarge,
         [](int n) { return "SELECT 1 WHERE " + nested("a = 1 OR (", n, "b = 2", " AND c = 3)"); }},
        {"far too many boolean groups", DatabaseTypeMySQL, 1000000, Verdict::TooLarge,
         [](int n) { return "SELECT 1 WHERE " + nested("(", n, "a = 1", ")"); }},
        {"join brackets", DatabaseTypePostgreSQL, 200, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM " + nested("(", n, "a", " CROSS JOIN b)"); }, true},
        {"one join bracket more", DatabaseTypePostgreSQL, 201, Verdict::TooLarge,
         [](int n) { return "SELECT 1 FROM " + nested("(", n, "a", " CROSS JOIN b)"); }},
        {"join brackets at the right", DatabaseTypeSQLite, 200, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM " + nested("a CROSS JOIN (", n, "a CROSS JOIN b", ")"); }, true},
        {"far too many join brackets", DatabaseTypeMySQL, 300000, Verdict::TooLarge,
         [](int n) { return "SELECT 1 FROM " + nested("(", n, "a", " CROSS JOIN b)"); }},
        {"brackets around one table", DatabaseTypeMySQL, 200, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM " + nested("(", n, "a", ")"); }, true},
        {"derived tables in derived tables", DatabaseTypeMySQL, 32, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM " + nested("(SELECT a FROM ", n, "t", ") AS d"); }, true},
        {"derived tables in six brackets each", DatabaseTypeSQLite, 32, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM " + nested("((((((a CROSS JOIN (SELECT 1 FROM ", n, "a", ") q))))))"); }, true},
        {"derived tables in seven brackets each", DatabaseTypeSQLite, 32, Verdict::TooLarge,
         [](int n) { return "SELECT 1 FROM " + nested("(((((((a CROSS JOIN (SELECT 1 FROM ", n, "a", ") q)))))))"); }, true},
        {"one derived table more", DatabaseTypeMySQL, 33, Verdict::TooLarge,
         [](int n) { return "SELECT 1 FROM " + nested("(SELECT a FROM ", n, "t", ") AS d"); }},
        {"a hundred thousand derived tables deep", DatabaseTypePostgreSQL, 100000, Verdict::TooLarge,
         [](int n) { return "SELECT 1 FROM " + nested("(SELECT a FROM ", n, "t", ") AS d"); }},
    };
    return shapes;
}

inline const std::vector<Shape>& chainShapes() {
    static const std::vector<Shape> shapes = {
        {"NOTs", DatabaseTypeSQLite, 1000000, Verdict::Accepted,
         [](int n) { return "SELECT 1 WHERE " + spaced("NOT", n) + "a"; }},
        {"NOTs without an operand", DatabaseTypePostgreSQL, 1000000, Verdict::SyntaxError,
         [](int n) { return "SELECT 1 WHERE " + spaced("NOT", n); }},
        {"minus signs", DatabaseTypePostgreSQL, 1000000, Verdict::Accepted,
         [](int n) { return "SELECT 1 WHERE a = " + spaced("-", n) + "1"; }},
        {"minus signs without an operand", DatabaseTypeSQLite, 1000000, Verdict::SyntaxError,
         [](int n) { return "SELECT 1 WHERE a = " + spaced("-", n); }},
        {"ANDed terms", DatabaseTypeSQLite, 100000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t WHERE " + listed("a = #", n, " AND "); }},
        {"ORed terms", DatabaseTypeMySQL, 100000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t WHERE " + listed("t.a > #", n, " OR "); }},
        {"terms in HAVING, ANDed and ORed", DatabaseTypePostgreSQL, 50000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t HAVING " + listed("a = # AND b LIKE 'x'", n, " OR "); }},
        {"terms in ON", DatabaseTypeSQLServer, 50000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t JOIN u ON " + listed("t.a = u.a", n, " AND "); }},
        {"BETWEENs", DatabaseTypeOracle, 50000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t WHERE " + listed("a BETWEEN # AND 7", n, " AND "); }},
        {"terms that end in AND", DatabaseTypeSQLite, 100000, Verdict::SyntaxError,
         [](int n) { return "SELECT 1 WHERE " + repeated("a = 1 AND ", n); }},
        {"groups side by side", DatabaseTypePostgreSQL, 50000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t WHERE " + listed("(a = # OR b = 2)", n, " AND "); }},
        {"concatenations", DatabaseTypeSQLite, 100000, Verdict::Accepted,
         [](int n) { return "SELECT " + listed("'a'", n, " || ") + " AS x"; }},
        {"sums in a term", DatabaseTypeMariaDB, 100000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t WHERE a = " + listed("1", n, "+"); }},
        {"comparisons in a row", DatabaseTypeSQLite, 100000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t WHERE a" + repeated(" = a", n); }},
        {"casts", DatabaseTypePostgreSQL, 100000, Verdict::Accepted,
         [](int n) { return "SELECT 1" + repeated("::int", n) + " AS x"; }},
        {"intervals in intervals", DatabaseTypeMySQL, 100000, Verdict::TooLarge,
         [](int n) { return "SELECT " + repeated("INTERVAL ", n) + "1"; }},
        {"subscripts in a row", DatabaseTypePostgreSQL, 100000, Verdict::Accepted,
         [](int n) { return "SELECT a" + repeated("[1]", n) + " AS x FROM t"; }},
        {"IS NULL in a row", DatabaseTypeSQLite, 100000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t WHERE a" + repeated(" IS NULL", n); }},
        {"WHENs", DatabaseTypeSQLServer, 100000, Verdict::Accepted,
         [](int n) { return "SELECT CASE" + repeated(" WHEN a = 1 THEN 2", n) + " END AS x FROM t"; }},
        {"adjacent strings", DatabaseTypeMySQL, 100000, Verdict::Accepted,
         [](int n) { return "SELECT " + spaced("'a'", n) + "AS x"; }},
        {"UNIONs", DatabaseTypePostgreSQL, 100000, Verdict::Unsupported,
         [](int n) { return "SELECT 1" + repeated(" UNION SELECT 1", n); }},
        {"semicolons", DatabaseTypeSQLite, 1000000, Verdict::SeveralStatements,
         [](int n) { return "SELECT 1" + repeated(";", n); }},
        {"statements", DatabaseTypePostgreSQL, 100000, Verdict::SeveralStatements,
         [](int n) { return repeated("SELECT 1;", n); }},
    };
    return shapes;
}

inline const std::vector<Shape>& listShapes() {
    static const std::vector<Shape> shapes = {
        {"items of an IN list", DatabaseTypeSQLite, 100000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t WHERE a IN (" + listed("#", n) + ")"; }},
        {"strings of a NOT IN list", DatabaseTypeOracle, 100000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t WHERE a NOT IN (" + listed("'x#'", n) + ")"; }},
        {"rows of an IN list", DatabaseTypeMySQL, 50000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t WHERE (a, b) IN (" + listed("(#, 2)", n) + ")"; }},
        {"an IN list that does not end", DatabaseTypePostgreSQL, 100000, Verdict::SyntaxError,
         [](int n) { return "SELECT 1 FROM t WHERE a IN (" + listed("#", n); }},
        {"columns", DatabaseTypePostgreSQL, 10000, Verdict::Accepted,
         [](int n) { return "SELECT " + listed("t.c#", n) + " FROM t"; }},
        {"columns with aliases", DatabaseTypeSQLServer, 10000, Verdict::Accepted,
         [](int n) { return "SELECT " + listed("c# + 1 AS x#", n) + " FROM t ORDER BY " + listed("x#", n); }},
        {"columns with one alias", DatabaseTypeSQLite, 10000, Verdict::Accepted,
         [](int n) { return "SELECT " + listed("c# AS x", n) + " FROM t"; }},
        {"columns to group by", DatabaseTypeMySQL, 10000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t GROUP BY " + listed("c#", n); }},
        {"columns to order by", DatabaseTypeOracle, 10000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t ORDER BY " + listed("c# DESC", n); }},
        {"columns of USING", DatabaseTypePostgreSQL, 10000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t JOIN u USING (" + listed("c#", n) + ")"; }},
        {"arguments", DatabaseTypeMySQL, 100000, Verdict::Accepted,
         [](int n) { return "SELECT f(" + listed("#", n) + ") AS x"; }},
        {"commas", DatabaseTypeSQLite, 1000000, Verdict::SyntaxError,
         [](int n) { return "SELECT " + repeated(",", n); }},
        {"words behind a column", DatabaseTypePostgreSQL, 300000, Verdict::SyntaxError,
         [](int n) { return "SELECT " + spaced("a", n); }},
        {"words behind a table", DatabaseTypeMySQL, 300000, Verdict::SyntaxError,
         [](int n) { return "SELECT 1 FROM " + spaced("a", n); }},
        {"joins", DatabaseTypeSQLite, 1000, Verdict::Accepted,
         [](int n) { return "SELECT t0.a FROM t0" + listed(" JOIN t# ON t#.a = t0.a", n, ""); }, true},
        {"one join more", DatabaseTypeSQLite, 1001, Verdict::TooLarge,
         [](int n) { return "SELECT t0.a FROM t0" + listed(" JOIN t# ON t#.a = t0.a", n, ""); }},
        {"names of many sources", DatabaseTypePostgreSQL, 1000, Verdict::Accepted,
         [](int n) { return "SELECT " + listed("s#.a, s#.b", n) + " FROM t" + listed(" CROSS JOIN t AS s#", n, "") +
                            " WHERE " + listed("s#.a = s#.b", n, " AND "); }, true},
        {"sources of one name", DatabaseTypeSQLite, 1000, Verdict::Accepted,
         [](int n) { return "SELECT t.a FROM t" + repeated(", t", n); }, true},
        {"commas between sources", DatabaseTypePostgreSQL, 100000, Verdict::TooLarge,
         [](int n) { return "SELECT 1 FROM " + listed("t#", n); }},
        {"derived tables side by side", DatabaseTypePostgreSQL, 1000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM (SELECT 1) AS d" + listed(", (SELECT a FROM t WHERE a = #) AS d#", n, ""); }, true},
        {"too many derived tables side by side", DatabaseTypeMySQL, 100000, Verdict::TooLarge,
         [](int n) { return "SELECT 1 FROM " + listed("(SELECT 1) AS d#", n); }},
        {"joins before their conditions", DatabaseTypePostgreSQL, 1000, Verdict::TooLarge,
         [](int n) { return "SELECT 1 FROM a" + repeated(" JOIN b", n) + repeated(" ON 1 = 1", n); }},
    };
    return shapes;
}

inline const std::vector<Shape>& lexicalShapes() {
    static const std::vector<Shape> shapes = {
        {"nested comments", DatabaseTypePostgreSQL, 1000000, Verdict::Accepted,
         [](int n) { return "SELECT 1 " + nested("/*", n, "", "*/"); }},
        {"nested comments that do not end", DatabaseTypeSQLServer, 1000000, Verdict::SyntaxError,
         [](int n) { return "SELECT 1 " + repeated("/*", n); }},
        {"comments", DatabaseTypeSQLite, 300000, Verdict::Accepted,
         [](int n) { return "SELECT " + repeated("/**/--\n", n) + "1"; }},
        {"a comment that does not end", DatabaseTypeMySQL, 10000000, Verdict::SyntaxError,
         [](int n) { return "SELECT 1 /*" + repeated("x", n); }},
        {"a string that does not end", DatabaseTypeSQLite, 10000000, Verdict::SyntaxError,
         [](int n) { return "SELECT '" + repeated("x", n); }},
        {"a name that does not end", DatabaseTypeOracle, 10000000, Verdict::SyntaxError,
         [](int n) { return "SELECT \"" + repeated("x", n); }},
        {"a bracketed name that does not end", DatabaseTypeSQLServer, 10000000, Verdict::SyntaxError,
         [](int n) { return "SELECT [" + repeated("x", n); }},
        {"a dollar quote that does not end", DatabaseTypePostgreSQL, 3000000, Verdict::SyntaxError,
         [](int n) { return "SELECT $a$" + repeated("$b$", n); }},
        {"dollar quotes that do not end", DatabaseTypePostgreSQL, 100000, Verdict::SyntaxError,
         [](int n) { return "SELECT " + listed("$a#$", n, " "); }},
        {"alternative quotes that do not end", DatabaseTypeOracle, 1000000, Verdict::SyntaxError,
         [](int n) { return "SELECT q'[" + repeated("q'[", n); }},
        {"a long string", DatabaseTypeMySQL, 5000000, Verdict::Accepted,
         [](int n) { return "SELECT '" + repeated("''", n) + "' AS x"; }},
        {"backslashes", DatabaseTypeMySQL, 5000000, Verdict::Accepted,
         [](int n) { return "SELECT '" + repeated("\\\\", n) + "' AS x"; }},
        {"a long name", DatabaseTypePostgreSQL, 1000000, Verdict::Accepted,
         [](int n) { return "SELECT " + repeated("A", n) + " FROM t"; }},
        {"a long quoted name", DatabaseTypeSQLite, 1000000, Verdict::Accepted,
         [](int n) { return "SELECT t.\"" + repeated("\"\"", n) + "\" FROM t"; }},
        {"a long alias and its uses", DatabaseTypeMySQL, 100000, Verdict::Accepted,
         [](int n) { const std::string x = repeated("x", n);
                     return "SELECT " + x + ".a AS b FROM t AS " + x + " WHERE " + x + ".a = 1 ORDER BY " + x + ".a"; }},
        {"a dotted name", DatabaseTypePostgreSQL, 100000, Verdict::Accepted,
         [](int n) { return "SELECT a" + repeated(".a", n) + " AS x FROM t"; }},
        {"a dotted condition", DatabaseTypeSQLServer, 100000, Verdict::Accepted,
         [](int n) { return "SELECT 1 FROM t WHERE a" + repeated(".a", n) + " = 1"; }},
        {"dots", DatabaseTypeOracle, 1000000, Verdict::SyntaxError,
         [](int n) { return "SELECT a" + repeated(".", n); }},
        {"digits", DatabaseTypeMySQL, 1000000, Verdict::Accepted,
         [](int n) { return "SELECT " + repeated("1", n) + " AS x"; }},
        {"operators", DatabaseTypePostgreSQL, 1000000, Verdict::SyntaxError,
         [](int n) { return "SELECT 1 " + repeated("=", n); }},
        {"bytes of no dialect", DatabaseTypeSQLite, 1000000, Verdict::SyntaxError,
         [](int n) { return "SELECT " + repeated("\x01", n); }},
        {"blanks", DatabaseTypeSQLite, 10000000, Verdict::NotSelect,
         [](int n) { return repeated(" \n", n / 2); }},
    };
    return shapes;
}
// clang-format on

inline std::vector<Shape> allShapes() {
    std::vector<Shape> all;
    for (const auto* shapes : {&bracketShapes(), &chainShapes(), &listShapes(), &lexicalShapes()})
        all.insert(all.end(), shapes->begin(), shapes->end());
    return all;
}

}  // namespace QB::Test
