// docs/dialects.md is what the table gives; JOINERY_REWRITE_PAGE=1 writes it anew.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

#include "constructs/construct_table.h"
#include "constructs/expected_text.h"

using namespace constructs;
using QB::Test::HostStyle;

namespace {

constexpr const char* introduction =
    R"(# What becomes of each construct

Made by `tests/constructs/`, where every cell of these tables is a test; do not edit this page. After
a change of the table: `JOINERY_REWRITE_PAGE=1 build/dev/bin/test_constructs --gtest_filter=Page.*`.

A text of SQL that the user opens or pastes means the same after it went through the builder, or it
is not taken. Each construct is one of these:

- **model**: tables, joins, columns and comparisons that the panels and the diagram edit.
- **model + text**: the same, with operands or items in it that are kept as written.
- **text**: kept as written as a whole, as one source, column or condition; the rest of the
  statement is model. The user can edit the text and move or remove it.
- **refused**: the whole statement is refused with line, column and reason, and the builder keeps
  what it has. ‸ shows the place that the message names.

A family without an entry has no such construct, or reads it as one of the other rows does. The last
column is what the builder writes for a host that quotes only what it must, in the first family of
the row and without line breaks; "same" where that is the text itself.

What the text does not say comes from the connection:

- The current schema is the one in which the server looks for a table without a schema. Where two
  schemas meet in one FROM, such tables are written with it; one that is really a temporary table in
  front of another of its name, or stands in a later schema of a search path, would then be missed.
- The servers' default modes are taken for granted: MySQL and MariaDB with backslashes in strings and
  without `ANSI_QUOTES`, PostgreSQL with `standard_conforming_strings`, SQL Server with
  `QUOTED_IDENTIFIER`.
)";

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    for (std::size_t at = text.find(what); at != std::string::npos;
         at = text.find(what, at + by.size()))
        text.replace(at, what.size(), by);
    return text;
}

/// As code in a cell of a Markdown table.
std::string code(std::string text) {
    if (text.empty()) return "(empty)";
    const std::pair<std::string, std::string> signs[] = {{"\n", "␊"},
                                                         {"\r", "␍"},
                                                         {"\t", "␉"},
                                                         {"|", "\\|"},
                                                         {"\xEF\xBB\xBF", "␂"},
                                                         {"\u00A0", "⍽"},
                                                         {std::string(1, '\0'), "␀"}};
    for (const auto& [bytes, sign] : signs)
        text = replaced(text, bytes, sign);
    if (text.find('`') == std::string::npos) return "`" + text + "`";
    return "``` " + text + " ```";
}

std::string verdictText(const Entry& entry) {
    if (entry.verdict == Verdict::Refused) return "refused";
    if (entry.verdict == Verdict::Text) return "text";
    return entry.freeTexts.empty() ? "model" : "model + text";
}

std::string resultText(const Cell& cell) {
    const Entry& entry = *cell.entry;
    if (!cell.isAccepted()) return "line L, column C: …" + code(entry.message);
    const std::string shown = cell.shownStatement();
    const std::string rebuilt =
        withoutLayout(expectedText(cell, entry.shownRebuilt, HostStyle::Minimal));
    return rebuilt == withoutLayout(shown) ? "same" : code(rebuilt);
}

std::string rowText(const std::string& title, const Entry& entry, const Cell& first) {
    std::string row = "| " + title + " | " + code(first.shownStatement()) + " |";
    for (const Family& family : families()) {
        const auto& named = entry.families;
        const bool isNamed = std::find(named.begin(), named.end(), &family) != named.end();
        row += isNamed ? " " + verdictText(entry) + " |" : " |";
    }
    return row + " " + resultText(first) + " |\n";
}

std::string page() {
    std::string text = introduction;
    for (const Theme& theme : themes()) {
        text += "\n## " + theme.title + "\n\n";
        if (!theme.frame.empty())
            text += "What is no whole statement stands in " + code(theme.frame) + ".\n\n";
        text += "| Construct | Text |";
        for (const Family& family : families())
            text += std::string(" ") + family.name + " |";
        text += " Written, or message |\n|---|---|---|---|---|---|---|---|---|\n";
        for (const Construct& construct : theme.constructs) {
            std::string title = construct.title;
            for (const Entry& entry : construct.entries) {
                text += rowText(title, entry, {&theme, &construct, &entry, entry.families.front()});
                title.clear();
            }
        }
    }
    return text;
}

}  // namespace

TEST(Page, IsWhatTheTableGives) {
    const std::string path = JOINERY_DOCS "/dialects.md";
    if (std::getenv("JOINERY_REWRITE_PAGE")) std::ofstream(path, std::ios::binary) << page();
    std::ifstream stream(path, std::ios::binary);
    const std::string committed{std::istreambuf_iterator<char>(stream), {}};
    EXPECT_TRUE(committed == page()) << path << " differs; rewrite and read it";
}
