#include "apps/joinery-sql/comments.h"

#include <string_view>

#include "platform/sqlet/lexer.h"

namespace QB::Cli {
namespace {

constexpr std::string_view blanks = " \t\r\n\f\v";

/// Calls @p visit(start, end) for each stretch of @p text that lies between two tokens.
template <typename Visit>
void visitGaps(std::string_view text, DatabaseType type, Visit visit) {
    std::size_t start = 0;
    for (const sqlet::Token& token : sqlet::lex(text, parserDialect(type)).tokens) {
        if (token.offset > start) visit(start, std::size_t(token.offset));
        start = token.end();
    }
}

}  // namespace

std::vector<Comment> commentsOf(const std::string& text, DatabaseType type) {
    std::vector<Comment> comments;
    visitGaps(text, type, [&](std::size_t start, std::size_t end) {
        const std::string_view gap = std::string_view(text).substr(start, end - start);
        const std::size_t begin = gap.find_first_not_of(blanks);
        if (begin == std::string_view::npos) return;
        const std::size_t length = gap.find_last_not_of(blanks) + 1 - begin;
        comments.push_back({static_cast<int>(start + begin), std::string(gap, begin, length)});
    });
    return comments;
}

std::vector<Comment> lostComments(const std::vector<Comment>& before,
                                  const std::vector<Comment>& after) {
    std::vector<Comment> lost;
    auto kept = after.begin();
    for (const Comment& comment : before) {
        if (kept != after.end() && kept->text == comment.text)
            ++kept;
        else
            lost.push_back(comment);
    }
    return lost;
}

std::string withCarriageReturns(const std::string& text, DatabaseType type) {
    std::string result;
    std::size_t copied = 0;
    visitGaps(text, type, [&](std::size_t start, std::size_t end) {
        for (std::size_t i = start; i < end; ++i) {
            if (text[i] != '\n' || (i > 0 && text[i - 1] == '\r')) continue;
            result.append(text, copied, i - copied).append("\r\n");
            copied = i + 1;
        }
    });
    return result.append(text, copied);
}

}  // namespace QB::Cli
