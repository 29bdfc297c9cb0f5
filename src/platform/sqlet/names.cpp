#include "platform/sqlet/names.h"

#include <algorithm>

#include "platform/sqlet/lexer.h"
#include "platform/sqlet/words.h"

namespace sqlet {

namespace {

constexpr int dialectOracle = 3;

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
char raised(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
bool isAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

std::string_view spelling(std::string_view text, const Token& token) {
    return text.substr(token.offset, token.length);
}

std::string folded(std::string_view word, int dialect) {
    std::string name(word);
    const int folding = sqlet_folding(dialect);
    if (folding == SQLET_FOLDING_LOWER)
        std::transform(name.begin(), name.end(), name.begin(), lowered);
    if (folding == SQLET_FOLDING_UPPER)
        std::transform(name.begin(), name.end(), name.begin(), raised);
    return name;
}

/// The quote that ends what begins with @p opening; NUL if it opens nothing.
char closingQuote(char opening) {
    if (opening == '[') return ']';
    const bool isQuote = opening == '"' || opening == '\'' || opening == '`';
    return isQuote ? opening : '\0';
}

/// What stands between the quotes; null data if @p spelled is not quoted.
std::string_view contentOf(std::string_view spelled) {
    if (spelled.size() < 2) return {};
    const char closing = closingQuote(spelled.front());
    if (closing == '\0' || spelled.back() != closing) return {};
    return spelled.substr(1, spelled.size() - 2);
}

std::string unquoted(std::string_view spelled) {
    const std::string_view content = contentOf(spelled);
    if (content.data() == nullptr) return std::string(spelled);
    const char closing = spelled.back();
    std::string name;
    name.reserve(content.size());
    for (std::size_t i = 0; i < content.size(); ++i) {
        name += content[i];
        const bool isDoubled =
            content[i] == closing && i + 1 < content.size() && content[i + 1] == closing;
        if (isDoubled) ++i;
    }
    return name;
}

bool isFoldedByAsciiRules(std::string_view word, int dialect) {
    return dialect != dialectOracle || std::all_of(word.begin(), word.end(), isAscii);
}

/// Hosts leave the names of aggregates bare, whoever bears them, and the server then folds those.
bool isFoldedAggregate(std::string_view name, int dialect) {
    if (sqlet_folding(dialect) == SQLET_FOLDING_NONE) return false;
    const unsigned word = sqlet_word_class(dialect, name.data(), static_cast<int>(name.size()));
    return (word & SQLET_WORD_FUNCTION) != 0 && folded(name, dialect) != name;
}

bool isPlainlyQuoted(std::string_view spelled, const Token& token, int dialect) {
    if (token.flags & TokenHasEscape) return false;
    const std::string_view content = contentOf(spelled);
    if (content.empty()) return false;
    const bool mayEscape = token.kind == TokenKind::String && lexTraits(dialect).backslashEscapes;
    return !mayEscape || content.find('\\') == std::string_view::npos;
}

}  // namespace

std::string decodedName(std::string_view text, const Token& token, int dialect) {
    const std::string_view spelled = spelling(text, token);
    if (token.kind == TokenKind::Word) return folded(spelled, dialect);
    return unquoted(spelled);
}

bool isDecodable(std::string_view text, const Token& token, int dialect) {
    const std::string_view spelled = spelling(text, token);
    if (spelled.empty() || !isValidUtf8(spelled)) return false;
    if (token.kind == TokenKind::Word) return isFoldedByAsciiRules(spelled, dialect);
    const bool isQuoted = token.kind == TokenKind::QuotedName || token.kind == TokenKind::String;
    return isQuoted && isPlainlyQuoted(spelled, token, dialect) &&
           !isFoldedAggregate(contentOf(spelled), dialect);
}

std::size_t characterLength(std::string_view bytes) {
    const auto byte = [&](std::size_t i) {
        return static_cast<unsigned char>(bytes[i]);
    };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
    }
    const bool isOverlong = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xF0 && byte(1) < 0x90);
    const bool isSurrogate = lead == 0xED && byte(1) >= 0xA0;
    const bool isTooLarge = lead == 0xF4 && byte(1) >= 0x90;
    return isOverlong || isSurrogate || isTooLarge ? 0 : length;
}

bool isValidUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t length = characterLength(bytes);
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::string withoutCase(std::string_view name) {
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), lowered);
    return lower;
}

}  // namespace sqlet
