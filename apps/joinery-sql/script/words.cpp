#include "apps/joinery-sql/script/words.h"

#include <charconv>
#include <utility>

#include "apps/joinery-sql/script/refusal.h"
#include "platform/sqlet/lexer.h"
#include "platform/sqlet/names.h"
#include "platform/sqlet/text_position.h"

namespace QB::Cli {

using sqlet::Token;
using sqlet::TokenKind;

namespace {

constexpr int largestRange = 100000;

}  // namespace

Words::Words(std::string text, DatabaseType family)
    : m_text(std::move(text))
    , m_dialect(parserDialect(family))
    , m_list(sqlet::lex(m_text, m_dialect)) {}

bool Words::isAtEnd() const {
    return next().kind == TokenKind::End;
}

bool Words::isNumberNext() const {
    return next().kind == TokenKind::Number;
}

std::string_view Words::textOf(const Token& token) const {
    return std::string_view(m_text).substr(token.offset, token.length);
}

bool Words::skip(std::string_view keyword) {
    if (isAtEnd() || sqlet::withoutCase(textOf(next())) != keyword) return false;
    ++m_next;
    return true;
}

std::string Words::keyword(const char* what) {
    if (next().kind != TokenKind::Word) refuse(what);
    return sqlet::withoutCase(textOf(m_list[m_next++]));
}

bool Words::isNameNext() const {
    const TokenKind kind = next().kind;
    return kind == TokenKind::Word || kind == TokenKind::QuotedName;
}

std::string Words::takeName() {
    const Token& token = m_list[m_next++];
    if (!sqlet::isDecodable(m_text, token, m_dialect))
        throw Refusal("the name " + sqlet::excerpt(textOf(token)) + " has to be quoted plainly");
    return sqlet::decodedName(m_text, token, m_dialect);
}

std::string Words::name(const char* what) {
    if (!isNameNext()) refuse(what);
    return takeName();
}

std::vector<std::string> Words::path(const char* what) {
    std::vector<std::string> names{name(what)};
    while (skip("."))
        names.push_back(name("a name behind the dot"));
    return names;
}

FieldName Words::field(const char* what) {
    FieldName result{{name(what)}, {}};
    while (skip(".")) {
        if (skip("*")) return result;
        result.source.push_back(name("a name or * behind the dot"));
    }
    if (result.source.size() < 2)
        throw Refusal(std::string(what) + " is named by its source, too: SOURCE.FIELD, not " +
                      result.source.front());
    result.field = std::move(result.source.back());
    result.source.pop_back();
    return result;
}

int Words::number(const char* what) {
    if (!isNumberNext()) refuse(what);
    const std::string_view digits = textOf(next());
    int value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size()) refuse(what);
    ++m_next;
    return value;
}

std::vector<int> Words::numbers(const char* what) {
    std::vector<int> all;
    do {
        const int first = number(what);
        const int last = skip("-") ? number("the end of the range") : first;
        if (last < first || last - first > largestRange)
            throw Refusal("there is no range from " + std::to_string(first) + " to " +
                          std::to_string(last));
        for (int i = first; i <= last; ++i)
            all.push_back(i);
    } while (isNumberNext());
    return all;
}

std::string Words::rest() {
    const std::string text = m_text.substr(next().offset);
    m_next = m_list.count();
    return text;
}

std::string Words::rest(const char* what) {
    if (isAtEnd()) refuse(what);
    return rest();
}

void Words::end() const {
    if (!isAtEnd()) refuse("the end of the line");
}

void Words::refuse(const std::string& what) const {
    const Token& token = next();
    if (token.flags & sqlet::TokenIsUnterminated)
        throw Refusal("a quote or comment is not closed: " + sqlet::excerpt(textOf(token)));
    const std::string found = isAtEnd() ? "nothing" : sqlet::excerpt(textOf(token));
    throw Refusal("expected " + what + ", found " + found);
}

std::string shownPath(const std::vector<std::string>& path) {
    std::string text;
    for (const std::string& name : path)
        text += (text.empty() ? "" : ".") + name;
    return text;
}

}  // namespace QB::Cli
