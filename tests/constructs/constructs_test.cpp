// Every cell of the table: what becomes of it, the bytes that two hosts are given, the model.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <regex>

#include "constructs/construct_table.h"
#include "constructs/expected_text.h"
#include "model/dump.h"
#include "support/round_trip.h"

using namespace QB;
using namespace QB::Test;
using namespace constructs;

namespace {

/// Numbers, NULL and strings on one line, which the table does not list as free text.
bool isLiteral(const std::string& text) {
    static const std::regex literal("[-+]?[0-9]+|NULL|'([^'\n]|'')*'");
    return std::regex_match(text, literal);
}

/// The text in quotes that begins at @p at in a line of a dump.
std::string unescaped(const std::string& line, std::size_t at) {
    std::string result;
    for (std::size_t i = at + 1; i < line.size() && line[i] != '"'; ++i) {
        if (line[i] != '\\') {
            result += line[i];
            continue;
        }
        const char c = line[++i];
        result += c == 'n' ? '\n' : c == 't' ? '\t' : c;
    }
    return result;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/// What the model keeps as text, sorted: the dump tells conditions of a join before its sources.
std::vector<std::string> freeTexts(const std::string& dump) {
    std::vector<std::string> texts;
    for (const std::string& line : linesOf(dump)) {
        const std::size_t at = line.find("expression \"");
        if (at == std::string::npos) continue;
        const std::string text = unescaped(line, at + 11);
        if (!isLiteral(text)) texts.push_back(text);
    }
    std::sort(texts.begin(), texts.end());
    return texts;
}

/// True if the line holds all that @p wanted says, in order, with " … " for what lies between.
bool holds(const std::string& line, const std::string& wanted) {
    const std::string gap = " … ";
    const std::size_t end = wanted.find(gap);
    const std::size_t at = line.find(wanted.substr(0, end));
    if (at == std::string::npos || end == std::string::npos) return at != std::string::npos;
    return holds(line.substr(at + end), wanted.substr(end + gap.size()));
}

/// The first line that the table names for the model and that does not follow the earlier ones in
/// the dump; empty if there is none.
std::string firstMissing(const std::string& dump, const Cell& cell) {
    const std::vector<std::string> lines = linesOf(dump);
    std::size_t line = 0;
    for (const std::string& named : cell.entry->dumpLines) {
        const std::string wanted = expectedDumpLine(cell, named);
        while (line < lines.size() && !holds(lines[line], wanted))
            ++line;
        if (line++ >= lines.size()) return wanted;
    }
    return {};
}

/// "line L, column C", counted here anew.
std::string positionText(const std::string& text, int offset) {
    int line = 1;
    int column = 1;
    for (int i = 0; i < offset; ++i) {
        const char c = text[static_cast<std::size_t>(i)];
        const bool endsLine =
            c == '\n' || (c == '\r' && text[static_cast<std::size_t>(i) + 1] != '\n');
        if (endsLine) {
            ++line;
            column = 1;
        } else if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) {
            ++column;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

std::string dumpOf(const Cell& cell) {
    const OwnedStatement statement(new Component::SQL::SQLSelectStmtComponent);
    QBQueryParser::parseStatement(statement.get(), cell.statement(),
                                  static_cast<DatabaseType>(cell.family->number), cell.schema());
    return dumpStatement(statement.get());
}

class Constructs : public testing::TestWithParam<Cell> {
protected:
    void expectAccepted(const Cell& cell) {
        const auto type = static_cast<DatabaseType>(cell.family->number);
        for (const HostStyle style : {HostStyle::AlwaysQuote, HostStyle::Minimal}) {
            const RoundTrip trip = roundTrip(cell.statement(), type, cell.schema(), style);
            ASSERT_TRUE(trip.outcome.isAccepted()) << trip.outcome.message;
            EXPECT_EQ(withoutLayout(trip.text),
                      withoutLayout(expectedText(cell, cell.entry->rebuilt, style)));
        }
        const std::string dump = dumpOf(cell);
        std::vector<std::string> texts = cell.entry->freeTexts;
        texts.erase(std::remove(texts.begin(), texts.end(), std::string()), texts.end());
        std::sort(texts.begin(), texts.end());
        EXPECT_EQ(freeTexts(dump), texts) << dump;
        EXPECT_EQ(firstMissing(dump, cell), "") << dump;
    }

    void expectRefused(const Cell& cell) {
        const std::string statement = cell.statement();
        const RoundTrip trip = roundTrip(statement, static_cast<DatabaseType>(cell.family->number),
                                         cell.schema(), HostStyle::Minimal);
        ASSERT_FALSE(trip.outcome.isAccepted()) << trip.text;
        const std::string& message = trip.outcome.message;
        EXPECT_NE(message.find(cell.entry->message), std::string::npos) << message;
        if (cell.errorOffset() < 0) return;
        EXPECT_EQ(trip.outcome.error.location, cell.errorOffset()) << message;
        const std::string position = positionText(statement, cell.errorOffset());
        EXPECT_NE(message.find(position), std::string::npos) << message << "\n" << position;
    }
};

TEST_P(Constructs, AreTakenAsTheTableSays) {
    const Cell& cell = GetParam();
    SCOPED_TRACE(cell.entry->place + " " + cell.family->name + ": " + cell.statement());
    cell.isAccepted() ? expectAccepted(cell) : expectRefused(cell);
}

/// Such as "conditions_12_MariaDB".
std::string cellName(const testing::TestParamInfo<Cell>& instance) {
    std::string name = instance.param.entry->place + "_" + instance.param.family->key;
    name.erase(name.find(".txt"), 4);
    std::replace_if(
        name.begin(), name.end(),
        [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Table, Constructs, testing::ValuesIn(cells()), cellName);

}  // namespace
