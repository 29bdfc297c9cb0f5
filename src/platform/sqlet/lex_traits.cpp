#include "platform/sqlet/lex_traits.h"

namespace sqlet {
namespace {

// Tried on MariaDB 10.11 unless said otherwise.
constexpr LexTraits mysqlTraits() {
    LexTraits traits;
    traits.executableComments = true;
    traits.hintsSetVariables = true;  // MySQL 8
    traits.hashComments = true;
    traits.dashesNeedBlank = true;  // 5---3 is 2; a -- at the end of the text is a comment
    traits.backslashEscapes = true;
    traits.doubleQuoteIsString = true;
    traits.backtickNames = true;
    traits.nationalPrefix = true;
    traits.charsetPrefix = true;  // blanks may follow; `_foo'x'` is a column with an alias
    traits.hexPrefix = true;
    traits.bitPrefix = true;
    traits.adjacentStrings = AdjacentStrings::Joined;  // x'41' 'b' is not
    traits.nameStart = "$";
    traits.namePart = "$";
    traits.digitStartsName = true;  // 1e, 0x, 0X1F and 1_000 are names; 1.5a and 1e5a have an alias
    traits.radixLetters = "xb";
    traits.parameterMarks = ":@";
    traits.dottedVariables = true;
    traits.operators = "->> <=> -> <= >= <> != := || && << >>";
    return traits;
}

// Tried on PostgreSQL 15; radix letters and digit separators come with 16.
constexpr LexTraits postgresqlTraits() {
    LexTraits traits;
    traits.nestedComments = true;
    traits.carriageReturnEndsComment = true;
    traits.dollarQuotes = true;
    traits.escapePrefix = true;
    traits.unicodePrefix = true;  // no blank in U&'..'
    traits.nationalPrefix = true;
    traits.hexPrefix = true;
    traits.bitPrefix = true;
    // Only -- comments may lie between; the second part has no prefix and the mode of the first.
    traits.adjacentStrings = AdjacentStrings::JoinedAcrossLine;
    traits.namePart = "$";
    traits.radixLetters = "xXbBoO";
    traits.digitSeparators = true;
    traits.parameterMarks = ":$";
    traits.operatorRuns = true;  // 1 != -1 and 1 !=-1 differ: the latter is an operator !=-
    traits.operators = ":: :=";
    return traits;
}

// By the SQL Language Reference.
constexpr LexTraits oracleTraits() {
    LexTraits traits;
    traits.nationalPrefix = true;
    traits.alternativeQuotes = true;
    traits.namePart = "$#";
    traits.numberSuffixes = "fFdD";
    traits.parameterMarks = ":&";
    traits.operators = "<= >= <> != ^= ~= := => || << >>";
    return traits;
}

// Tried on SQLite 3.40, which takes an open comment at the end for closed; we do not.
constexpr LexTraits sqliteTraits() {
    LexTraits traits;
    traits.backtickNames = true;
    traits.bracketNames = true;
    traits.hexPrefix = true;
    traits.namePart = "$";
    traits.radixLetters = "xX";
    traits.digitSeparators = true;  // 3.46
    traits.parameterMarks = ":@$";
    traits.operators = "->> -> <= >= <> != == || << >>";
    return traits;
}

// By the Transact-SQL Reference.
constexpr LexTraits sqlserverTraits() {
    LexTraits traits;
    traits.nestedComments = true;
    traits.bracketNames = true;
    traits.doubledBracketEscapes = true;
    traits.nationalPrefix = true;
    traits.nameStart = "#";
    traits.namePart = "$#@";
    traits.radixLetters = "xX";
    traits.moneyLiterals = true;
    traits.parameterMarks = ":@";
    traits.operators = "<= >= <> != !< !> += -= *= /= %= &= |= ^= :: || << >>";
    return traits;
}

constexpr std::string_view plainOperators = "+*%<>=!^|&~@";
// PostgreSQL: "Operators" in "Lexical Structure".
constexpr std::string_view runCharacters = "+-*/<>=~!@#%^&|`?";

constexpr CharClass classOf(const LexTraits& traits, char c) {
    if (isBlank(c)) return CharClass::Blank;
    if (isDigit(c)) return CharClass::Digit;
    const bool isWord = isLetter(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80;
    if (isWord || holds(traits.nameStart, c)) return CharClass::Word;
    if (c == '\'') return CharClass::Quote;
    if (c == '"') return CharClass::DoubleQuote;
    if (c == '`' && traits.backtickNames) return CharClass::Backtick;
    if (c == '[' && traits.bracketNames) return CharClass::BracketName;
    if (c == '(' || c == '[' || c == '{') return CharClass::Open;
    if (c == ')' || c == ']' || c == '}') return CharClass::Close;
    if (c == '.') return CharClass::Dot;
    if (c == ',') return CharClass::Comma;
    if (c == ';') return CharClass::Semicolon;
    if (c == '-') return CharClass::Minus;
    if (c == '/') return CharClass::Slash;
    if (c == '#' && traits.hashComments) return CharClass::HashComment;
    if (c == '$') return CharClass::Dollar;
    if (traits.operatorRuns && holds(runCharacters, c)) return CharClass::Operator;
    if (c == '?' || c == ':' || holds(traits.parameterMarks, c)) return CharClass::Mark;
    return holds(plainOperators, c) ? CharClass::Operator : CharClass::Bad;
}

constexpr bool isInName(const LexTraits& traits, char c) {
    return isLetter(c) || isDigit(c) || c == '_' || static_cast<unsigned char>(c) >= 0x80 ||
           holds(traits.namePart, c);
}

constexpr CharTable tableFor(const LexTraits& traits) {
    CharTable table;
    for (std::size_t i = 0; i < 256; ++i) {
        const char c = static_cast<char>(i);
        table.begins[i] = classOf(traits, c);
        if (isInName(traits, c)) table.roles[i] |= CharInName;
        const std::string_view inOperators = traits.operatorRuns ? runCharacters : traits.operators;
        if (c != ' ' && holds(inOperators, c)) table.roles[i] |= CharInOperator;
    }
    return table;
}

struct Dialect {
    LexTraits traits;
    CharTable characters;
};

constexpr Dialect dialectOf(const LexTraits& traits) {
    return {traits, tableFor(traits)};
}

constexpr Dialect dialects[] = {
    dialectOf(LexTraits()),    dialectOf(mysqlTraits()),  dialectOf(postgresqlTraits()),
    dialectOf(oracleTraits()), dialectOf(sqliteTraits()), dialectOf(sqlserverTraits()),
};

const Dialect& dialectOfFamily(int family) {
    constexpr int mariadb = 6;
    if (family == mariadb) return dialects[1];
    return dialects[family >= 1 && family <= 5 ? family : 0];
}

}  // namespace

const LexTraits& lexTraits(int family) {
    return dialectOfFamily(family).traits;
}

const CharTable& charTable(int family) {
    return dialectOfFamily(family).characters;
}

}  // namespace sqlet
