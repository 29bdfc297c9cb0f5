#include "token_mutator.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "platform/sqlet/lexer.h"

namespace QB::Fuzz {
namespace {

constexpr std::array<std::string_view, 260> keywordTexts() {
    std::array<std::string_view, 260> texts{};
    std::size_t count = 0;
#define SQLET_KEYWORD(name, text) \
    if (count < texts.size()) texts[count++] = text;
#include "platform/sqlet/keywords.inc"
#undef SQLET_KEYWORD
    return texts;
}

constexpr std::string_view phrases[] = {
#include "phrases.inc"
};

}  // namespace

std::string TokenMutator::mutated(std::string text) {
    for (std::size_t changes = 1 + below(4); changes > 0; --changes)
        text = changed(text);
    return text;
}

std::string TokenMutator::crossed(const std::string& left, const std::string& right) {
    const Stretch at = anyStretch(left);
    const Stretch from = anyStretch(right);
    if (below(2) == 0) return left.substr(0, at.begin) + right.substr(from.begin);
    return left.substr(0, at.begin) + right.substr(from.begin, from.end - from.begin) +
           left.substr(at.end);
}

std::string TokenMutator::changed(const std::string& text) {
    const auto [begin, end] = anyStretch(text);
    const std::string before = text.substr(0, begin);
    const std::string here = text.substr(begin, end - begin);
    const std::string after = text.substr(end);
    switch (below(9)) {
        case 0:
            return before + after;
        case 1:
            return before + here + " " + here + after;
        case 2:
            return before + anyPiece() + after;
        case 3:
            return before + " " + anyPiece() + " " + here + after;
        case 4:
            return before + here + " " + anyPiece() + " " + after;
        case 5:
            return before + "(" + here + ")" + after;
        case 6:
            return before + (below(2) ? "/*c*/" : "--c\n") + here + after;
        case 7:
            return before + anyPiece() + " " + after;
        default:
            break;
    }
    // Two stretches change places; the second lies behind the first.
    const Stretch other = anyStretch(after);
    return before + after.substr(other.begin, other.end - other.begin) +
           after.substr(0, other.begin) + here + after.substr(other.end);
}

TokenMutator::Stretch TokenMutator::anyStretch(const std::string& text) {
    const sqlet::TokenList list = sqlet::lex(text, m_dialect);
    if (list.count() == 0) return {0, text.size()};
    const auto count = static_cast<std::size_t>(list.count());
    const std::size_t first = below(count);
    std::size_t last = first;
    const sqlet::TokenIndex partner = list.partner[first];
    if (partner != sqlet::noToken && partner > first && below(2))
        last = partner;
    else if (below(3) == 0)
        last = std::min(count - 1, first + below(8));
    return {list.tokens[first].offset, list.tokens[last].end()};
}

std::string TokenMutator::anyPiece() {
    static constexpr auto keywords = keywordTexts();
    if (below(3) == 0) return std::string(keywords[below(keywords.size())]);
    return std::string(phrases[below(std::size(phrases))]);
}

}  // namespace QB::Fuzz
