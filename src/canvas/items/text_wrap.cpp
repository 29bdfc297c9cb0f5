#include "canvas/items/text_wrap.h"

#include <algorithm>

#include "canvas/base/canvas_style.h"
#include "canvas/items/item_look.h"
#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

namespace {

const std::string ellipsis = "\u2026";
const std::string tab = "    ";

double widthOf(const std::string& text) {
    return lumoLayoutHelper().measureText(text, Style::itemFont).width;
}

/// The start of @p text, more than @p lines lines can show, without what has no shape.
std::string visibleStart(const std::string& text, double width, int lines) {
    std::string result;
    for (const char letter : lineStart(text, width * lines)) {
        if (letter == '\t')
            result += tab;
        else if (letter != '\r')
            result += letter;
    }
    return result;
}

/// Breaks one text into lines, front to back. Words are measured one by one: another width asks for
/// the same words again, whose measures are known by then.
class LineBreaker {
public:
    LineBreaker(std::string text, double width)
        : m_text(std::move(text)), m_width(width), m_spaceWidth(widthOf(" ")) {}

    bool atEnd() const { return m_at >= m_text.size(); }

    std::string next() {
        const size_t start = m_at;
        const size_t lineEnd = std::min(m_text.find('\n', start), m_text.size());
        size_t end = endOfWords(start, lineEnd);
        if (end == start && start < lineEnd) end = breakInWord(start, lineEnd);
        const size_t rest = std::min(m_text.find_first_not_of(' ', end), lineEnd);
        m_at = rest == lineEnd ? lineEnd + 1 : rest;
        return m_text.substr(start, end - start);
    }

private:
    /// The end of the last word that fits; @p start if not even the first one does.
    size_t endOfWords(size_t start, size_t lineEnd) const {
        size_t end = start;
        double width = 0;
        while (end < lineEnd) {
            const size_t word = std::min(m_text.find_first_not_of(' ', end), lineEnd);
            const size_t wordEnd = std::min(m_text.find(' ', word), lineEnd);
            width += double(word - end) * m_spaceWidth +
                     widthOf(lineStart(m_text.substr(word, wordEnd - word), m_width));
            if (width > m_width) break;
            end = wordEnd;
        }
        return end;
    }

    /// A place inside of a word that is wider than a line: after one character at least.
    size_t breakInWord(size_t start, size_t lineEnd) const {
        const std::string word = lineStart(m_text.substr(start, lineEnd - start), m_width);
        const std::string fitting = lumoLayoutHelper().elide(word, Style::itemFont, m_width);
        size_t end = start + std::max(fitting.size(), ellipsis.size() + 1) - ellipsis.size();
        while (end < lineEnd && (m_text[end] & 0xC0) == 0x80)  // inside of a character
            ++end;
        return std::min(end, lineEnd);
    }

    const std::string m_text;
    const double m_width;
    const double m_spaceWidth;
    size_t m_at = 0;
};

}  // namespace

WrappedText wrappedText(const std::string& text, double width, int maxLines) {
    WrappedText result;
    if (maxLines <= 0 || width <= 0) {
        result.isCut = !text.empty();
        return result;
    }
    LineBreaker breaker(visibleStart(text, width, maxLines), width);
    while (!breaker.atEnd() && int(result.lines.size()) < maxLines)
        result.lines.push_back(breaker.next());
    result.isCut = !breaker.atEnd();
    if (!result.isCut) return result;
    std::string& last = result.lines.back();
    last = lumoLayoutHelper().elide(last + ellipsis, Style::itemFont, width);
    return result;
}

}  // namespace QB::DiagramLumo
