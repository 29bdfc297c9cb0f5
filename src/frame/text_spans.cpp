#include "frame/text_spans.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace QB {
namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

/// What QTextCursor reads as the end of a block, beside the line feed.
bool endsBlock(QChar c) {
    return c == QLatin1Char('\r') || c == QChar::ParagraphSeparator || c == QChar(0xfdd0) ||
           c == QChar(0xfdd1);
}

std::size_t clampedOffset(std::int64_t offset, const std::string& text) {
    return static_cast<std::size_t>(
        std::clamp<std::int64_t>(offset, 0, static_cast<std::int64_t>(text.size())));
}

/// How many units of a document the byte at @p offset opens: none inside a character and for the
/// first half of "\r\n", two for a character outside the basic plane.
int unitsAt(const std::string& text, std::size_t offset) {
    const auto byte = static_cast<unsigned char>(text[offset]);
    if ((byte & 0xc0) == 0x80) return 0;
    if (byte == '\r' && offset + 1 < text.size() && text[offset + 1] == '\n') return 0;
    return byte >= 0xf0 ? 2 : 1;
}

/// Positions of byte offsets that come in ascending order; looks at each byte once.
class PositionFinder {
public:
    explicit PositionFinder(const std::string& text) : m_text(text) {
        // The mark of the encoding is no part of the document.
        if (text.compare(0, 3, "\xef\xbb\xbf") == 0) m_offset = 3;
    }

    int positionOf(std::size_t offset) {
        for (; m_offset < offset; ++m_offset)
            m_position += unitsAt(m_text, m_offset);
        return m_position;
    }

private:
    const std::string& m_text;
    std::size_t m_offset = 0;
    int m_position = 0;
};

/// A place where a range begins or ends, and where its position is wanted.
struct Boundary {
    std::size_t offset;
    int* position;  // not owned
};

void findPositions(const std::string& text, std::vector<Boundary> boundaries) {
    std::sort(boundaries.begin(), boundaries.end(),
              [](const Boundary& a, const Boundary& b) { return a.offset < b.offset; });
    PositionFinder finder(text);
    for (const Boundary& boundary : boundaries)
        *boundary.position = finder.positionOf(boundary.offset);
}

}  // namespace

QString documentText(const std::string& text) {
    QString result = QString::fromStdString(text);
    result.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    std::replace_if(result.begin(), result.end(), endsBlock, QChar(QLatin1Char('\n')));
    return result;
}

QBRange widenedOverIndentation(const std::string& text, QBRange range) {
    if (range.location <= 0) return range;
    std::size_t start = clampedOffset(range.location, text);
    while (start > 0 && isBlank(text[start - 1]))
        --start;
    if (start == 0 || text[start - 1] != '\n') return range;
    const int added = range.location - static_cast<int>(start);
    return {range.location - added, range.length + added};
}

std::vector<TextSpan> documentSpans(const std::string& text, const std::vector<QBRange>& ranges) {
    std::vector<int> ends(ranges.size());
    std::vector<TextSpan> spans(ranges.size());
    std::vector<Boundary> boundaries;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        const std::int64_t start = ranges[i].location;
        boundaries.push_back({clampedOffset(start, text), &spans[i].start});
        boundaries.push_back({clampedOffset(start + ranges[i].length, text), &ends[i]});
    }
    findPositions(text, std::move(boundaries));
    for (std::size_t i = 0; i < ranges.size(); ++i)
        spans[i].length = ends[i] - spans[i].start;
    const auto isEmpty = [](TextSpan span) {
        return span.length <= 0;
    };
    spans.erase(std::remove_if(spans.begin(), spans.end(), isEmpty), spans.end());
    return spans;
}

TextDifference differenceBetween(const QString& oldText, const QString& newText) {
    const int shorter = qMin(oldText.size(), newText.size());
    int prefix = static_cast<int>(
        std::mismatch(oldText.begin(), oldText.begin() + shorter, newText.begin()).first -
        oldText.begin());
    if (prefix > 0 && oldText.at(prefix - 1).isHighSurrogate()) --prefix;
    const int room = shorter - prefix;
    int suffix = static_cast<int>(
        std::mismatch(oldText.rbegin(), oldText.rbegin() + room, newText.rbegin()).first -
        oldText.rbegin());
    if (suffix > 0 && oldText.at(oldText.size() - suffix).isLowSurrogate()) --suffix;
    return {prefix, oldText.size() - prefix - suffix, newText.size() - prefix - suffix};
}

}  // namespace QB
