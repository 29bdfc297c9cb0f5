#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The files of this folder as data: what is to become of each construct in each family. README.md
/// says how they are written. Standard C++ only.
namespace constructs {

/// A server family, numbered as QB::DatabaseType.
struct Family {
    int number;
    int dialect;         ///< of the parser library
    const char* key;     ///< in the files
    const char* name;    ///< in the page
    const char* schema;  ///< the current schema, unless a cell says otherwise
    char openQuote;
    char closeQuote;  ///< doubled inside
};

const std::vector<Family>& families();
const Family& familyOf(int number);

enum class Verdict { Model, Text, Refused };

/// What is said of one statement in some families. Statements and rebuilt texts still hold braces.
struct Entry {
    std::string place;  ///< file and line
    std::vector<const Family*> families;
    Verdict verdict = Verdict::Model;
    std::string statement;
    std::string shown;  ///< the statement, or what stands in the frame
    std::string rebuilt;
    std::string shownRebuilt;  ///< the same of rebuilt
    std::vector<std::string> freeTexts;
    std::vector<std::string> dumpLines;
    std::string message;
    std::string schema;  ///< empty: the family's; "-": none
    std::string notRun;  ///< why no server runs it
};

struct Construct {
    std::string title;
    std::vector<Entry> entries;
};

struct Theme {
    std::string title;
    std::string frame;  ///< what shown texts stand in, with … in their place; may be empty
    std::vector<Construct> constructs;
};

/// All files, in the order of the page. Read once; a file that cannot be read or that is not
/// written as README.md says ends the program with a message.
const std::vector<Theme>& themes();

/// One entry in one family, ready to use.
struct Cell {
    const Theme* theme;
    const Construct* construct;
    const Entry* entry;
    const Family* family;

    std::string statement() const;
    /// For the page: what stands in the frame, with the mark of the error.
    std::string shownStatement() const;
    std::string schema() const;
    /// Byte of the statement at which a refusal is reported; -1 if the entry does not say.
    int errorOffset() const;
    bool isAccepted() const { return entry->verdict != Verdict::Refused; }

private:
    std::string statementText(std::string_view text) const;
};

std::vector<Cell> cells();

/// Calls @p use with what stands in each pair of braces of @p text that is a name in the sense of
/// README.md, and gives the text with the answers in place of the braces.
template <typename Use>
std::string fillBraces(std::string_view text, const Use& use);

/// True if what stands in braces is to be filled; all else, such as JSON, stays as it is.
bool isFilled(std::string_view inBraces);

/// The text with the bytes that its signs, such as ␊, stand for.
std::string withoutSigns(std::string text);

/// The name in the family's quotes.
std::string quoted(std::string_view name, const Family& family);

template <typename Use>
std::string fillBraces(std::string_view text, const Use& use) {
    std::string result;
    while (!text.empty()) {
        const std::size_t open = text.find('{');
        const std::size_t close = text.find('}', open);
        result += text.substr(0, open);
        if (open == std::string_view::npos || close == std::string_view::npos)
            return open == std::string_view::npos ? result : result.append(text.substr(open));
        const std::string_view inBraces = text.substr(open + 1, close - open - 1);
        const bool fills = isFilled(inBraces);
        result += fills ? use(inBraces) : std::string("{");
        text.remove_prefix(fills ? close + 1 : open + 1);
    }
    return result;
}

}  // namespace constructs
