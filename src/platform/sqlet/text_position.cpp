#include "platform/sqlet/text_position.h"

#include "platform/sqlet/names.h"

namespace sqlet {
namespace {

bool endsLine(std::string_view text, std::size_t i) {
    const bool isHalfOfPair = i + 1 < text.size() && text[i + 1] == '\n';
    return text[i] == '\n' || (text[i] == '\r' && !isHalfOfPair);
}

bool startsCodePoint(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

constexpr std::size_t maxExcerpt = 40;

}  // namespace

TextPosition positionOf(std::string_view text, std::size_t offset) {
    const std::size_t end = offset < text.size() ? offset : text.size();
    TextPosition position;
    for (std::size_t i = text.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0; i < end; ++i) {
        if (endsLine(text, i)) {
            position = {position.line + 1, 1};
        } else if (startsCodePoint(text[i]) && text[i] != '\r') {
            ++position.column;
        }
    }
    return position;
}

std::string excerpt(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const std::size_t shown = length == 0 ? 1 : length;
        if (result.size() + shown > maxExcerpt) return result + "...";
        const bool isControl = static_cast<unsigned char>(text.front()) < 0x20U;
        if (length == 0 || isControl)
            result += '?';
        else
            result += text.substr(0, length);
        text.remove_prefix(shown);
    }
    return result;
}

}  // namespace sqlet
