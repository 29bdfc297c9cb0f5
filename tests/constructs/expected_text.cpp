#include "constructs/expected_text.h"

#include <cctype>
#include <functional>
#include <string_view>
#include <utility>

namespace constructs {
namespace {

using QB::Test::HostStyle;

/// Fills braces for one family and host.
class Filler {
public:
    using Quote = std::function<std::string(const std::string&)>;

    Filler(const Cell& cell, Quote quote) : m_family(*cell.family), m_quote(std::move(quote)) {}

    std::string fill(std::string_view text) const {
        return fillBraces(text, [this](std::string_view inBraces) { return filled(inBraces); });
    }

private:
    std::string filled(std::string_view s) const {
        if (s == "$") return name(m_family.schema);
        if (s.front() == '@') return table(s.substr(1));
        if (s.front() == '=') return name(s.substr(1));
        if (s.front() == '^') return reference(folded(s.substr(1)));
        if (s.front() == '~') return reference(std::string(s.substr(1)));
        if (s.substr(0, 2) == "f:") return folded(s.substr(2));
        if (s.substr(0, 3) == "as ") return alias(s.substr(3));
        if (const std::size_t dot = s.find('.'); dot != std::string_view::npos) {
            const std::string_view field = s.substr(dot + 1);
            const std::string start = reference(folded(s.substr(0, dot))) + ".";
            return field.empty() ? start : start + name(folded(field));
        }
        return name(folded(s));
    }

    std::string table(std::string_view s) const {
        const std::size_t as = s.find(" as ");
        const bool isSQLServer = m_family.number == QB::DatabaseTypeSQLServer;
        const std::string schema = isSQLServer ? name(m_family.schema) + "." : std::string();
        const std::string text = schema + name(folded(s.substr(0, as)));
        return as == std::string_view::npos ? text : text + " " + alias(s.substr(as + 4));
    }

    std::string alias(std::string_view s) const {
        const std::string text = s.front() == '=' ? name(s.substr(1)) : name(folded(s));
        return m_family.number == QB::DatabaseTypeOracle ? text : "AS " + text;
    }

    std::string name(std::string_view s) const { return m_quote(std::string(s)); }

    /// Bare where the server reads the bare word as that very name; the files write out by hand
    /// what reserved words do.
    std::string reference(const std::string& s) const {
        bool isPlain = std::isdigit(static_cast<unsigned char>(s.front())) == 0 && s == folded(s);
        for (const char c : s)
            isPlain &= std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
        return isPlain ? s : name(s);
    }

    std::string folded(std::string_view s) const {
        std::string result(s);
        for (char& c : result) {
            const auto byte = static_cast<unsigned char>(c);
            if (byte >= 0x80) continue;
            if (m_family.number == QB::DatabaseTypePostgreSQL)
                c = static_cast<char>(std::tolower(byte));
            if (m_family.number == QB::DatabaseTypeOracle)
                c = static_cast<char>(std::toupper(byte));
        }
        return result;
    }

    const Family& m_family;
    Quote m_quote;
};

}  // namespace

std::string expectedText(const Cell& cell, const std::string& rebuilt, HostStyle style) {
    const auto type = static_cast<QB::DatabaseType>(cell.family->number);
    const auto quote = [=](const std::string& name) {
        return QB::Test::quoteForHost(name, type, style);
    };
    return Filler(cell, quote).fill(rebuilt);
}

std::string expectedDumpLine(const Cell& cell, const std::string& line) {
    return Filler(cell, [](const std::string& name) { return name; }).fill(line);
}

std::string withoutLayout(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\n') {
            result += text[i];
            continue;
        }
        if (!result.empty() && result.back() == ' ') result.pop_back();
        while (i + 1 < text.size() && text[i + 1] == '\t')
            ++i;
        result += ' ';
    }
    return result;
}

}  // namespace constructs
