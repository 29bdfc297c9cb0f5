#include <gtest/gtest.h>

#include <cctype>
#include <string>

#include "model/dump.h"
#include "parser/query_parser.h"
#include "shapes.h"
#include "small_stack.h"
#include "sqlet/accessor_dump.h"
#include "stringifier/query_component_stringifier.h"
#include "stringifier/statement_builder.h"
#include "support/host_callbacks.h"
#include "support/long_runs.h"

using namespace QB;
using namespace QB::Test;

namespace {

const char* nameOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::Accepted:
            return "accepted";
        case Verdict::SyntaxError:
            return "syntax error";
        case Verdict::Unsupported:
            return "unsupported";
        case Verdict::TooLarge:
            return "too large";
        case Verdict::SeveralStatements:
            return "several statements";
        case Verdict::NotSelect:
            return "no SELECT";
        case Verdict::CannotBeRepresented:
            return "cannot be represented";
    }
    return "no verdict";
}

/// The verdict in words, or what is wrong with how it is told.
std::string told(const QBParseOutcome& outcome, const std::string& text) {
    const auto size = static_cast<std::int64_t>(text.size());
    const auto& [place, length] = outcome.error;
    if (outcome.isAccepted())
        return outcome.message.empty() ? "accepted" : "accepted with a message";
    if (outcome.message.empty()) return "refused without a message";
    if (place < 0 || length < 0 || place + std::int64_t{length} > size)
        return "refused without a place: " + outcome.message;
    return nameOf(outcome.verdict);
}

std::string textOf(const SQLSelectStmtComponent* statement, DatabaseType family) {
    auto stringifier = QBQueryComponentStringifier::createStringifier({family, 0});
    std::string text = stringifier->stringifyQuery(statement);
    if (stringifier->componentRanges().empty()) return {};
    return text;
}

/// The longest texts take their time with sanitizers.
bool isReadInAllDialects(const std::string& text) {
    return text.size() < 200'000 || isLongRun();
}

class HostileText : public testing::TestWithParam<Shape> {
protected:
    const HostCallbacks m_host;
};

TEST_P(HostileText, IsAnsweredOnASmallStack) {
    const Shape& shape = GetParam();
    const std::string text = shape.text(shape.size);
    std::string answer;
    std::string rebuilt;
    std::string fault;
    onSmallStack([&] {
        const Statement statement = newStatement();
        const auto outcome =
            QBQueryParser::parseStatement(statement.get(), text, shape.family, "s");
        answer = told(outcome, text);
        if (outcome.verdict != shape.verdict) answer += ": " + outcome.message.substr(0, 300);
        rebuilt = textOf(statement.get(), shape.family);
    });
    EXPECT_EQ(answer, nameOf(shape.verdict));
    EXPECT_FALSE(rebuilt.empty());
    for (int dialect = 1; dialect <= 5; ++dialect) {
        if (!isReadInAllDialects(text) && dialect != parserDialect(shape.family)) continue;
        onSmallStack([&] { fault = sqlet_test::faultOfAccessors(dialect, text); });
        EXPECT_EQ(fault, "") << "dialect " << dialect;
    }
}

std::string testName(const testing::TestParamInfo<Shape>& shape) {
    std::string name;
    for (const char c : std::string(shape.param.name))
        name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
}

INSTANTIATE_TEST_SUITE_P(, HostileText, testing::ValuesIn(allShapes()), testName);

// ---- bytes -----------------------------------------------------------------------------------

struct Bytes {
    const char* what;
    std::string text;
    Verdict verdict;
    int place = -1;         ///< of the statement if it is accepted, else of the error; -1: any
    std::string kept = {};  ///< stands in the rebuilt text byte for byte
};

std::vector<Bytes> strangeBytes() {
    using namespace std::string_literals;
    return {
        {"a NUL between tokens", "SELECT 1 \0 FROM t"s, Verdict::SyntaxError, 9},
        {"a NUL in a string", "SELECT 'a\0b' FROM t"s, Verdict::SyntaxError, 9},
        {"a NUL in a comment", "SELECT 1 /*\0*/ FROM t"s, Verdict::SyntaxError, 11},
        {"a NUL at the end", "SELECT 1\0"s, Verdict::SyntaxError, 8},
        {"nothing but a NUL", "\0"s, Verdict::SyntaxError, 0},
        {"Latin-1 in a name", "SELECT caf\xE9 FROM t", Verdict::Accepted, 0, "caf\xE9"},
        {"a cut character in a string", "SELECT '\xE2\x82' AS x", Verdict::Accepted, 0,
         "'\xE2\x82'"},
        {"a lone surrogate", "SELECT '\xED\xA0\x80' AS x", Verdict::Accepted, 0, "\xED\xA0\x80"},
        {"an overlong slash", "SELECT '\xC0\xAF' AS x", Verdict::Accepted, 0, "\xC0\xAF"},
        {"bytes that no UTF-8 holds", "SELECT \xFE\xFF FROM t", Verdict::Accepted, 0, "\xFE\xFF"},
        {"a byte order mark", "\xEF\xBB\xBFSELECT 1", Verdict::Accepted, 3},
        {"a byte order mark alone", "\xEF\xBB\xBF", Verdict::NotSelect},
        {"a byte order mark inside",
         "SELECT \xEF\xBB\xBF"
         "a FROM t",
         Verdict::Accepted, 0,
         "\xEF\xBB\xBF"
         "a"},
        {"a blank that does not break",
         "SELECT\xC2\xA0"
         "a FROM t",
         Verdict::SyntaxError, 0},
        {"a cut character at an error", "SELECT 1 FROM t WHERE a = = \xE2\x82",
         Verdict::SyntaxError, 26},
    };
}

TEST(HostileBytes, AreKeptOrRefusedAtTheirPlace) {
    const HostCallbacks host;
    for (int family = DatabaseTypeMySQL; family <= DatabaseTypeMariaDB; ++family) {
        for (const Bytes& bytes : strangeBytes()) {
            SCOPED_TRACE(std::string(bytes.what) + ", family " + std::to_string(family));
            const auto type = static_cast<DatabaseType>(family);
            const Statement statement = newStatement();
            const auto outcome =
                QBQueryParser::parseStatement(statement.get(), bytes.text, type, "");
            EXPECT_EQ(told(outcome, bytes.text), nameOf(bytes.verdict)) << outcome.message;
            const int place =
                outcome.isAccepted() ? outcome.statement.location : outcome.error.location;
            EXPECT_TRUE(bytes.place < 0 || place == bytes.place) << place;
            EXPECT_NE(textOf(statement.get(), type).find(bytes.kept), std::string::npos);
        }
    }
}

std::string withBreaks(const std::string& lines, const std::string& lineBreak) {
    std::string text;
    for (const char c : lines)
        c == '\n' ? text += lineBreak : text += c;
    return text;
}

// A line break inside a text that is kept as written stays what it was, so here none is.
TEST(HostileBytes, EveryKindOfLineBreakMakesTheSameModel) {
    const HostCallbacks host;
    const std::string lines =
        "SELECT a AS x,\nCOUNT(b)\nFROM t AS u\nJOIN v\nON u.i = v.i\nWHERE a\n= 1\nAND\n"
        "(b IN (1,\n2)\nOR c IS\nNOT NULL)\nGROUP\nBY a\nORDER BY\na DESC\n";
    for (int family = DatabaseTypeMySQL; family <= DatabaseTypeMariaDB; ++family) {
        const auto model = [&](const std::string& text) {
            const Statement statement = newStatement();
            const auto outcome = QBQueryParser::parseStatement(
                statement.get(), text, static_cast<DatabaseType>(family), "");
            return outcome.message + dumpStatement(statement.get());
        };
        const std::string expected = model(lines);
        for (const char* lineBreak : {"\r\n", "\r", "\n\r\n", " \t\r\n", "\f"})
            EXPECT_EQ(model(withBreaks(lines, lineBreak)), expected) << "family " << family;
    }
}

}  // namespace
