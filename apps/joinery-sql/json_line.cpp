#include "apps/joinery-sql/json_line.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTextCodec>
#include <algorithm>

namespace QB::Cli {
namespace {

/// Walks over the members of one object. Trusts nothing; what it returns is checked by its user.
class MemberScanner {
public:
    explicit MemberScanner(std::string_view line) : m_line(line) {}

    bool enterObject() { return skip('{'); }

    /// Moves to the next member. False at the end, or where the line can be read no further.
    bool next(std::string_view& key, std::string_view& value) {
        skip(',');
        return readString(key) && skip(':') && readValue(value);
    }

private:
    bool isAtEnd() const { return m_at >= m_line.size(); }

    void skipBlanks() { m_at = std::min(m_line.find_first_not_of(" \t\r\n", m_at), m_line.size()); }

    bool skip(char wanted) {
        skipBlanks();
        if (isAtEnd() || m_line[m_at] != wanted) return false;
        ++m_at;
        return true;
    }

    bool skipString() {
        if (isAtEnd() || m_line[m_at] != '"') return false;
        for (++m_at; !isAtEnd(); ++m_at) {
            if (m_line[m_at] == '\\') {
                ++m_at;
            } else if (m_line[m_at] == '"') {
                ++m_at;
                return true;
            }
        }
        return false;
    }

    /// Without its quotes, escapes as written.
    bool readString(std::string_view& content) {
        skipBlanks();
        const std::size_t start = m_at;
        if (!skipString()) return false;
        content = m_line.substr(start + 1, m_at - start - 2);
        return true;
    }

    bool readValue(std::string_view& value) {
        skipBlanks();
        const std::size_t start = m_at;
        if (!skipValue()) return false;
        value = m_line.substr(start, m_at - start);
        return true;
    }

    bool skipValue() {
        if (isAtEnd()) return false;
        if (m_line[m_at] == '"') return skipString();
        if (m_line[m_at] == '{' || m_line[m_at] == '[') return skipBrackets();
        m_at = m_line.find_first_of(",} \t\r\n", m_at);  // a word or number, if more follows it
        return m_at != std::string_view::npos;
    }

    bool skipBrackets() {
        int depth = 0;
        while (!isAtEnd()) {
            const char c = m_line[m_at];
            if (c == '"') {
                if (!skipString()) return false;
                continue;
            }
            ++m_at;
            if (c == '{' || c == '[') ++depth;
            if ((c == '}' || c == ']') && --depth == 0) return true;
        }
        return false;
    }

    std::string_view m_line;
    std::size_t m_at = 0;
};

/// @p value if it is sound JSON; written anew if it has line breaks or other control characters.
std::string soundValue(std::string_view value) {
    if (value.size() > largestLine) return "null";
    QByteArray array("[");
    array.append(value.data(), static_cast<int>(value.size())).append(']');
    const QJsonDocument document = QJsonDocument::fromJson(array);
    if (document.array().size() != 1) return "null";
    const auto isControl = [](char c) {
        return static_cast<unsigned char>(c) < 0x20;
    };
    if (std::any_of(value.begin(), value.end(), isControl))
        array = document.toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2).toStdString();
}

}  // namespace

std::string rawMember(std::string_view line, std::string_view name) {
    MemberScanner scanner(line.substr(line.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0));
    std::string_view found;
    std::string_view key;
    std::string_view value;
    for (bool more = scanner.enterObject(); more && scanner.next(key, value);)
        if (key == name) found = value;
    return soundValue(found);
}

std::string jsonString(const QString& text) {
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2).toStdString();
}

std::optional<QString> decodeUtf8(const std::string& utf8) {
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);  // a byte order mark is a character
    const QTextCodec* const codec = QTextCodec::codecForMib(106);
    const QString text = codec->toUnicode(utf8.data(), static_cast<int>(utf8.size()), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0) return std::nullopt;
    return text;
}

std::optional<std::string> encodeUtf8(const QString& text) {
    if (!text.isValidUtf16()) return std::nullopt;
    return text.toStdString();
}

}  // namespace QB::Cli
