#include "parser/dedent.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "platform/sqlet/lex_scan.h"
#include "platform/sqlet/lexer.h"

namespace QB {
namespace {

bool isBlank(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool isLineBreak(char c) {
    return c == '\n' || c == '\r';
}

std::string_view withoutSurroundingBlanks(std::string_view text) {
    std::size_t lineStart = 0;
    for (std::size_t i = 0; i < text.size() && isBlank(text[i]); ++i) {
        if (isLineBreak(text[i])) lineStart = i + 1;
    }
    std::size_t end = text.size();
    while (end > lineStart && isBlank(text[end - 1]))
        --end;
    return text.substr(lineStart, end - lineStart);
}

std::string_view leadingBlanks(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size() && isBlank(text[length]))
        ++length;
    return text.substr(0, length);
}

/// Copies text and leaves the indentation out behind line feeds.
class Dedenter {
public:
    Dedenter(std::string_view text, std::string_view indent, int dialect)
        : m_text(text), m_indent(indent), m_scan(text, dialect) {
        m_result.reserve(text.size());
    }

    void copyTo(std::size_t end) {
        m_result.append(m_text, m_position, end - m_position);
        m_position = end;
    }

    /// What lies between two tokens: blanks and comments.
    void dedentTo(std::size_t end) {
        while (m_position < end) {
            if (!isBlank(m_text[m_position])) {
                copyTo(commentEnd(end));
            } else if (m_text[m_position] == '\n') {
                m_result += '\n';
                ++m_position;
                skipIndent();
            } else {
                m_result += m_text[m_position++];
            }
        }
    }

    std::string takeResult() { return std::move(m_result); }

private:
    /// Of further tabs one stays: two are the least indentation of a derived table in generated
    /// text, and would be taken for it when that text is parsed.
    void skipIndent() {
        if (m_text.compare(m_position, m_indent.size(), m_indent) == 0)
            m_position += m_indent.size();
        while (m_text.compare(m_position, 2, "\t\t") == 0)
            ++m_position;
    }

    /// The line feed behind a comment of one line is not part of it.
    std::size_t commentEnd(std::size_t limit) const {
        if (m_text.compare(m_position, 2, "/*") == 0) {
            const auto start = static_cast<std::uint32_t>(m_position);
            return std::min<std::size_t>(m_scan.blockCommentEnd(start), limit);
        }
        std::size_t end = m_position;
        while (end < limit && m_text[end] != '\n')
            ++end;
        return end;
    }

    std::string_view m_text;
    std::string_view m_indent;
    const sqlet::TextScan m_scan;
    std::size_t m_position = 0;
    std::string m_result;
};

}  // namespace

std::string dedented(const std::string& text, int dialect) {
    const std::string_view body = withoutSurroundingBlanks(text);
    const std::string_view indent = leadingBlanks(body);
    if (indent.empty() && body.find("\n\t\t") == std::string_view::npos) return std::string(body);
    Dedenter dedenter(body, indent, dialect);
    for (const sqlet::Token& token : sqlet::lex(body, dialect).tokens) {
        dedenter.dedentTo(token.offset);
        dedenter.copyTo(token.end());
    }
    return dedenter.takeResult().substr(indent.size());
}

}  // namespace QB
