#include "differential/statement_tokens.h"

#include <cctype>

namespace QB::Test {
namespace {

enum class Letters { Upper, Lower, Mixed };

char inLetters(char c, Letters letters, Dice& dice) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isUpper =
        letters == Letters::Upper || (letters == Letters::Mixed && dice.chance(50));
    return static_cast<char>(isUpper ? std::toupper(byte) : std::tolower(byte));
}

std::string inLetters(std::string word, Letters letters, Dice& dice) {
    for (char& c : word)
        c = inLetters(c, letters, dice);
    return word;
}

bool needsNoBlank(const std::string& before, const std::string& after) {
    const char last = before.back();
    const bool isComment = before.rfind("--", 0) == 0 || before.front() == '#';
    if (isComment) return false;
    return last == '(' || last == ',' || last == ')' || after == ")" || after == "," ||
           after == "(";
}

std::string comment(DatabaseType family, Dice& dice) {
    std::vector<std::string> comments = {
        "/* note */", "/* it's \"one\" -- */", "/**/", "-- don't ( \n", "--\n",
        "-- \"x\n",   "/* a\n   b ; */",
    };
    if (family == DatabaseTypeMariaDB) comments.emplace_back("# 'hash\n");
    if (family == DatabaseTypePostgreSQL) comments.emplace_back("/* a /* b */ ' */");
    return dice.pick(comments);
}

}  // namespace

StatementTokens& operator+=(StatementTokens& tokens, const StatementTokens& more) {
    tokens.insert(tokens.end(), more.begin(), more.end());
    return tokens;
}

StatementTokens& operator+=(StatementTokens& tokens, const std::string& text) {
    tokens.push_back({text, false});
    return tokens;
}

std::string plainText(const StatementTokens& tokens) {
    std::string text;
    for (const StatementToken& token : tokens) {
        if (!text.empty()) text += ' ';
        text += token.text;
    }
    return text;
}

StatementTokens oddlyWritten(const StatementTokens& tokens, DatabaseType family, unsigned seed) {
    static const std::vector<std::string> breaks = {"\n", "\n\t", "\r\n", "\n\n    ", "\t"};
    Dice dice(seed);
    const auto letters = static_cast<Letters>(dice.below(3));
    StatementTokens odd;
    for (StatementToken token : tokens) {
        if (token.isKeyword) token.text = inLetters(token.text, letters, dice);
        if (dice.chance(3)) odd += comment(family, dice);
        if (dice.chance(10)) odd += dice.pick(breaks);
        const bool isGlued = !odd.empty() && needsNoBlank(odd.back().text, token.text);
        if (isGlued && dice.chance(50)) {
            odd.back().text += token.text;
        } else {
            odd.push_back(token);
        }
    }
    return odd;
}

}  // namespace QB::Test
