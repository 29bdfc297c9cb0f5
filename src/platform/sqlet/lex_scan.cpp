#include "platform/sqlet/lex_scan.h"

#include <string>

namespace sqlet {
namespace {

std::uint32_t endOf(std::size_t found, std::size_t length) {
    return found == std::string_view::npos ? openEnd : static_cast<std::uint32_t>(found + length);
}

/// Position of the next @p a or @p b, or npos. Two equal ones are found faster.
std::size_t findEither(std::string_view text, std::size_t position, char a, char b) {
    if (a == b) return text.find(a, position);
    while (position < text.size() && text[position] != a && text[position] != b)
        ++position;
    return position < text.size() ? position : std::string_view::npos;
}

bool isRadixDigit(char letter, char c) {
    if (toLower(letter) == 'b') return c == '0' || c == '1';
    if (toLower(letter) == 'o') return c >= '0' && c <= '7';
    return isHexDigit(c);
}

}  // namespace

// Comments

bool TextScan::isLineComment(std::uint32_t position) const {
    if (at(position + 1) != '-') return false;
    const char next = at(position + 2);
    return !traits.dashesNeedBlank || static_cast<unsigned char>(next) <= ' ' || next == '\x7F';
}

std::uint32_t TextScan::lineCommentEnd(std::uint32_t position) const {
    const char other = traits.carriageReturnEndsComment ? '\r' : '\n';
    return std::min(endOf(findEither(text, position, '\n', other), 0), size);
}

std::uint32_t TextScan::blockCommentEnd(std::uint32_t position) const {
    const char opening = traits.nestedComments ? '/' : '*';
    position += 2;
    for (std::uint32_t depth = 1; depth > 0;) {
        const std::size_t found = findEither(text, position, '*', opening);
        if (found == std::string_view::npos) return openEnd;
        const bool closes = text[found] == '*';
        position = static_cast<std::uint32_t>(found) + 1;
        if (at(position) != (closes ? '/' : '*')) continue;
        closes ? --depth : ++depth;
        ++position;
    }
    return position;
}

// Quotes

TextScan::Quoted TextScan::quotedEnd(std::uint32_t position, char closing, bool hasBackslashes,
                                     bool doublingEscapes) const {
    const char other = hasBackslashes ? '\\' : closing;
    Quoted quoted;
    for (;;) {
        const std::size_t found = findEither(text, position, closing, other);
        if (found == std::string_view::npos) return quoted;
        position = static_cast<std::uint32_t>(found) + 1;
        if (text[found] == '\\') {
            quoted.hasEscape = true;
            position = std::min(position + 1, size);
        } else if (doublingEscapes && at(position) == closing) {
            ++position;
        } else {
            quoted.end = position;
            return quoted;
        }
    }
}

/// The first byte of @p delimiter occurs in it only once, or it is short: linear.
std::uint32_t TextScan::delimitedEnd(std::uint32_t position, std::string_view delimiter) const {
    return endOf(text.find(delimiter, position), delimiter.size());
}

std::uint32_t TextScan::alternativeEnd(std::uint32_t position) const {
    constexpr std::uint32_t longestCharacter = 4;
    const char opening = at(position + 1);
    if (position + 1 >= size || isBlank(opening)) return position;
    std::uint32_t end = position + 2;
    while (end < position + 1 + longestCharacter &&
           (static_cast<unsigned char>(at(end)) & 0xC0U) == 0x80)
        ++end;
    std::string delimiter(between(position + 1, end));
    delimiter.front() = closingPartner(opening);
    return delimitedEnd(end, delimiter + '\'');
}

std::uint32_t TextScan::dollarQuotedEnd(std::uint32_t position) const {
    if (isDigit(at(position + 1))) return position;
    std::uint32_t end = position + 1;
    while (isInName(at(end)) && at(end) != '$')
        ++end;
    if (at(end) != '$') return position;
    return delimitedEnd(end + 1, between(position, end + 1));
}

// Numbers

TextScan::NumberEnd TextScan::numberEnd(std::uint32_t position) const {
    const NumberEnd radix = radixEnd(position);
    if (radix.end > position) return radix;
    std::uint32_t end = digitsEnd(position);
    if (at(end) == '.' && at(end + 1) != '.') end = digitsEnd(end + 1);
    end = exponentEnd(end);
    if (holds(traits.numberSuffixes, at(end))) ++end;
    return withTail(position, end);
}

TextScan::NumberEnd TextScan::moneyEnd(std::uint32_t position) const {
    std::uint32_t end = digitsEnd(position + 1);
    if (at(end) == '.' && isDigit(at(end + 1))) end = digitsEnd(end + 1);
    return withTail(position, end);
}

TextScan::NumberEnd TextScan::radixEnd(std::uint32_t position) const {
    const NumberEnd none = {position, TokenKind::Bad};
    const char letter = at(position + 1);
    if (at(position) != '0' || !holds(traits.radixLetters, letter)) return none;
    std::uint32_t end = position + 2;
    while (isRadixDigit(letter, at(end)) || isSeparator(end))
        ++end;
    const bool isEmpty = end == position + 2;
    if (isInName(at(end)) || (isEmpty && traits.digitStartsName)) return none;
    return {end, TokenKind::Number, true};
}

bool TextScan::isSeparator(std::uint32_t position) const {
    return traits.digitSeparators && at(position) == '_' && isHexDigit(at(position + 1));
}

std::uint32_t TextScan::digitsEnd(std::uint32_t position) const {
    while (isDigit(at(position)) || (isSeparator(position) && isDigit(at(position + 1))))
        ++position;
    return position;
}

std::uint32_t TextScan::exponentEnd(std::uint32_t position) const {
    if (toLower(at(position)) != 'e') return position;
    const char sign = at(position + 1);
    const std::uint32_t digits = position + (sign == '+' || sign == '-' ? 2 : 1);
    return isDigit(at(digits)) ? digitsEnd(digits) : position;
}

/// A number that goes on as a name: `1a` is a name in some dialects; elsewhere it is an error or,
/// worse, a number with an alias, of which the writer did not think.
TextScan::NumberEnd TextScan::withTail(std::uint32_t begin, std::uint32_t end) const {
    if (!isInName(at(end))) return {end, TokenKind::Number};
    if (!traits.digitStartsName) return {nameEnd(end), TokenKind::Bad};
    const std::string_view digits = between(begin, end);
    if (std::all_of(digits.begin(), digits.end(), isDigit)) return {nameEnd(end), TokenKind::Word};
    if (toLower(at(end)) == 'e') return {nameEnd(end), TokenKind::Bad};
    return {end, TokenKind::Number};
}

// Operators

std::uint32_t TextScan::listedOperator(std::uint32_t position) const {
    const std::string_view rest = text.substr(position, 3);
    std::string_view listed = traits.operators;
    while (!listed.empty()) {
        const std::string_view each = listed.substr(0, listed.find(' '));
        if (rest.substr(0, each.size()) == each) return static_cast<std::uint32_t>(each.size());
        listed.remove_prefix(std::min(each.size() + 1, listed.size()));
    }
    return 0;
}

TextScan::OperatorEnd TextScan::operatorEnd(std::uint32_t position) const {
    if (!isInOperator(at(position + 1))) return {position + 1, position + 1};
    if (traits.operatorRuns) return runEnd(position);
    const std::uint32_t end = position + std::max(listedOperator(position), 1U);
    return {end, end};
}

/// A run ends before a comment, and with + or - only if it holds a character that no operator of
/// the SQL standard has: "Operators" in PostgreSQL's "Lexical Structure". The signs given back are
/// told too, or a million of them would be read a million times.
TextScan::OperatorEnd TextScan::runEnd(std::uint32_t position) const {
    constexpr std::string_view unusual = "~!@#%^&|`?";
    bool isUnusual = holds(unusual, at(position));
    std::uint32_t end = position + 1;
    std::uint32_t runEnd = end;
    for (; isInOperator(at(runEnd)) && !isCommentAt(runEnd); ++runEnd) {
        const char c = at(runEnd);
        isUnusual = isUnusual || holds(unusual, c);
        if (isUnusual || (c != '+' && c != '-')) end = runEnd + 1;
    }
    return {end, runEnd};
}

bool TextScan::isCommentAt(std::uint32_t position) const {
    const char c = at(position);
    const char next = at(position + 1);
    return (c == '-' && next == '-') || (c == '/' && next == '*');
}

}  // namespace sqlet
