#include "constructs/construct_table.h"

#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <utility>

namespace constructs {
namespace {

constexpr std::string_view caret = "‸";
constexpr const char* files[] = {"conditions", "operands",  "qualifiers", "names",
                                 "from",       "statement", "text_level", "everyday"};

[[noreturn]] void fail(const std::string& place, const std::string& why) {
    std::cerr << "constructs: " << place << ": " << why << "\n";
    std::exit(2);
}

void replaceAll(std::string& text, std::string_view what, std::string_view by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at)) {
        text.replace(at, what.size(), by);
        at += by.size();
    }
}

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

/// Reads one file, line by line.
class Reader {
public:
    explicit Reader(const std::string& name) : m_name(name + ".txt") {
        const std::string path = std::string(JOINERY_CONSTRUCTS) + "/" + m_name;
        std::ifstream stream(path, std::ios::binary);
        if (!stream) fail(path, "cannot be read");
        for (std::string text; std::getline(stream, text);) {
            ++m_line;
            read(text);
        }
        finishEntry();
    }

    Theme theme() { return std::move(m_theme); }

private:
    std::string place() const { return m_name + ":" + std::to_string(m_line); }

    void read(const std::string& text) {
        const auto rest = [&](std::size_t skipped) {
            return text.size() > skipped ? withoutSigns(text.substr(skipped)) : std::string();
        };
        if (text.empty()) return;
        if (startsWith(text, "# ")) return void(m_theme.title = rest(2));
        if (startsWith(text, "frame ")) return frame(rest(6));
        if (startsWith(text, "## ")) return construct(rest(3));
        if (startsWith(text, "@ ")) return entry(text.substr(2));
        if (m_theme.constructs.empty() || m_theme.constructs.back().entries.empty())
            fail(place(), "stands in front of a cell");
        if (startsWith(text, ">>")) return statement(rest(3), true);
        if (startsWith(text, ">")) return statement(rest(2), false);
        if (startsWith(text, "==")) return rebuilt(rest(3), true);
        if (startsWith(text, "=")) return rebuilt(rest(2), false);
        if (startsWith(text, "~ ")) return current().freeTexts.push_back(rest(2));
        if (startsWith(text, "| ")) return current().dumpLines.push_back(rest(2));
        if (startsWith(text, "! ")) return void(current().message = rest(2));
        if (startsWith(text, "% ")) return option(rest(2));
        fail(place(), "is not understood: " + text);
    }

    Entry& current() { return m_theme.constructs.back().entries.back(); }

    void frame(const std::string& text) {
        const std::size_t arrow = text.find(" => ");
        if (arrow == std::string::npos) fail(place(), "a frame needs an arrow");
        m_theme.frame = text.substr(0, arrow);
        m_rebuiltFrame = text.substr(arrow + 4);
    }

    static std::string framed(std::string frame, const std::string& text) {
        replaceAll(frame, "…", text);
        return frame;
    }

    void construct(const std::string& title) {
        finishEntry();
        m_theme.constructs.push_back({title, {}});
    }

    void entry(const std::string& text) {
        finishEntry();
        if (m_theme.constructs.empty()) fail(place(), "stands in front of a construct");
        m_theme.constructs.back().entries.emplace_back();
        current().place = place();
        const std::size_t colon = text.find(": ");
        if (colon == std::string::npos) fail(place(), "a cell needs a verdict");
        const std::string verdict = text.substr(colon + 2);
        if (verdict != "model" && verdict != "text" && verdict != "refused")
            fail(place(), "no such verdict: " + verdict);
        current().verdict = verdict == "model"  ? Verdict::Model
                            : verdict == "text" ? Verdict::Text
                                                : Verdict::Refused;
        addFamilies(" " + text.substr(0, colon) + " ");
    }

    void addFamilies(std::string keys) {
        for (const Family& family : families()) {
            const std::string key = " " + std::string(family.key) + " ";
            const std::size_t at = keys.find(key);
            if (at == std::string::npos && keys != " all ") continue;
            if (at != std::string::npos) keys.replace(at, key.size(), " ");
            current().families.push_back(&family);
        }
        if (keys != " " && keys != " all ") fail(place(), "no such family:" + keys);
    }

    void statement(const std::string& text, bool isFramed) {
        current().shown = text;
        current().statement = isFramed ? framed(m_theme.frame, text) : text;
        m_isFramed = isFramed;
    }

    void rebuilt(const std::string& text, bool isFramed) {
        current().shownRebuilt = text;
        current().rebuilt = isFramed ? framed(m_rebuiltFrame, text) : text;
    }

    void option(const std::string& text) {
        if (startsWith(text, "schema ")) return void(current().schema = text.substr(7));
        if (startsWith(text, "not run: ")) return void(current().notRun = text.substr(9));
        fail(place(), "no such option: " + text);
    }

    /// What a cell leaves out.
    void finishEntry() {
        if (m_theme.constructs.empty() || m_theme.constructs.back().entries.empty()) return;
        Entry& entry = current();
        if (entry.verdict == Verdict::Refused) {
            if (entry.message.empty()) fail(entry.place, "a refusal needs a message");
            return;
        }
        if (entry.rebuilt.empty()) {
            if (!m_isFramed) fail(entry.place, "needs what is rebuilt");
            rebuilt(entry.shown, true);
        }
        if (entry.verdict == Verdict::Text && entry.freeTexts.empty())
            entry.freeTexts.push_back(entry.shown);
    }

    const std::string m_name;
    int m_line = 0;
    Theme m_theme;
    std::string m_rebuiltFrame;
    bool m_isFramed = false;
};

bool isWordCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '$' || c == '#';
}

}  // namespace

const std::vector<Family>& families() {
    static const std::vector<Family> all = {
        {1, 1, "mysql", "MySQL", "joinery", '`', '`'},
        {6, 1, "mariadb", "MariaDB", "joinery", '`', '`'},
        {2, 2, "postgresql", "PostgreSQL", "public", '"', '"'},
        {3, 3, "oracle", "Oracle", "APP", '"', '"'},
        {4, 4, "sqlite", "SQLite", "main", '"', '"'},
        {5, 5, "sqlserver", "SQL Server", "dbo", '[', ']'},
    };
    return all;
}

const Family& familyOf(int number) {
    for (const Family& family : families())
        if (family.number == number) return family;
    fail("family " + std::to_string(number), "is not known");
}

const std::vector<Theme>& themes() {
    static const std::vector<Theme> all = [] {
        std::vector<Theme> result;
        for (const char* file : files)
            result.push_back(Reader(file).theme());
        return result;
    }();
    return all;
}

std::vector<Cell> cells() {
    std::vector<Cell> result;
    for (const Theme& theme : themes())
        for (const Construct& construct : theme.constructs)
            for (const Entry& entry : construct.entries)
                for (const Family* family : entry.families)
                    result.push_back({&theme, &construct, &entry, family});
    return result;
}

bool isFilled(std::string_view inBraces) {
    if (inBraces.empty()) return false;
    if (inBraces == "$" || startsWith(inBraces, "as ")) return true;
    if (std::string_view("=@^~").find(inBraces.front()) != std::string_view::npos) return true;
    if (startsWith(inBraces, "f:")) inBraces.remove_prefix(2);
    if (const std::size_t dot = inBraces.find('.'); dot != std::string_view::npos) {
        const std::string_view field = inBraces.substr(dot + 1);
        return isFilled(inBraces.substr(0, dot)) && (field.empty() || isFilled(field));
    }
    for (const char c : inBraces)
        if (!isWordCharacter(c)) return false;
    return std::isdigit(static_cast<unsigned char>(inBraces.front())) == 0;
}

std::string withoutSigns(std::string text) {
    using namespace std::string_view_literals;
    constexpr std::pair<std::string_view, std::string_view> signs[] = {
        {"␊", "\n"sv}, {"␍", "\r"sv},           {"␉", "\t"sv},
        {"␀", "\0"sv}, {"␂", "\xEF\xBB\xBF"sv}, {"⍽", "\u00A0"sv},
    };
    for (const auto& [sign, bytes] : signs)
        replaceAll(text, sign, bytes);
    return text;
}

std::string quoted(std::string_view name, const Family& family) {
    std::string text(1, family.openQuote);
    for (const char c : name) {
        if (c == family.closeQuote) text += c;
        text += c;
    }
    return text + family.closeQuote;
}

std::string Cell::statement() const {
    std::string text = entry->statement;
    replaceAll(text, caret, "");
    return statementText(text);
}

std::string Cell::shownStatement() const {
    return statementText(entry->shown);
}

std::string Cell::statementText(std::string_view text) const {
    return fillBraces(text, [this](std::string_view inBraces) -> std::string {
        if (inBraces == "$") return family->schema;
        if (inBraces.front() == '=') return quoted(inBraces.substr(1), *family);
        return "{" + std::string(inBraces) + "}";
    });
}

std::string Cell::schema() const {
    if (entry->schema == "-") return {};
    return entry->schema.empty() ? family->schema : entry->schema;
}

int Cell::errorOffset() const {
    const std::size_t at = entry->statement.find(caret);
    if (at == std::string::npos) return -1;
    return static_cast<int>(statementText(entry->statement.substr(0, at)).size());
}

}  // namespace constructs
