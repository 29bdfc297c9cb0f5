#pragma once

#include <string>
#include <vector>

#include "model/vocabulary.h"

namespace QB::Test {

/// The grammar of random expressions as data: for each kind of expression the forms that a server
/// reads. A form is a row of words with blanks between them; a word in angle brackets stands for
/// another random part:
///
///     <int> <text> <bool>        an expression of that type
///     <intcol> <textcol>         a column
///     <intval> <textval>         a literal
///     <int*> <text*>             two to four of them, with commas between
///     <query:int> <query:text>   a subquery of one column and any number of rows, with its bracket
///     <query:int,int>            one of two columns
///     <query:scalar>             one of one row and one integer
///     <cmp>                      a comparison operator
///
/// A word that ends in "(" is a function's name; some servers want no blank there.
struct ExpressionRule {
    unsigned families;  ///< a sum of the constants below
    unsigned weight;
    const char* form;
};

constexpr unsigned onSQLite = 1;
constexpr unsigned onPostgreSQL = 2;
constexpr unsigned onMariaDB = 4;
constexpr unsigned onAll = 7;

extern const std::vector<ExpressionRule> integerRules;
extern const std::vector<ExpressionRule> textRules;
extern const std::vector<ExpressionRule> conditionRules;
extern const std::vector<ExpressionRule> aggregateRules;  ///< of integers, over ungrouped rows
extern const std::vector<ExpressionRule> textLiteralRules;
extern const std::vector<ExpressionRule> limitRules;  ///< <count> and <offset> are small numbers

unsigned familyBit(DatabaseType family);

}  // namespace QB::Test
