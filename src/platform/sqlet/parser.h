#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sqlet/arena.h"
#include "platform/sqlet/sqlet.h"
#include "platform/sqlet/syntax_tree.h"
#include "platform/sqlet/token.h"

namespace sqlet {

/// The first thing that is wrong with a text; none while kind is SQLET_ERROR_NONE.
struct Error {
    SqletErrorKind kind = SQLET_ERROR_NONE;
    std::uint32_t offset = 0;  ///< bytes
    std::uint32_t length = 0;
    std::string message;  ///< with the position in front
};

/// What a token is for. Every token of a statement needs one, or the statement is refused.
enum class Coverage : std::uint8_t {
    Nothing,
    Structure,  ///< told by the shape of the tree, set by the grammar: SELECT, AS, ON, a comma
    Shown,      ///< lies in a text that an accessor gives, set by settleView
};

}  // namespace sqlet

/// A text with all that is known about it: the handle of the C interface.
struct SqletParser {
    const char* original = nullptr;  // not owned: the text that sqlet_create was given
    std::string text;
    int dialect = 0;
    std::optional<std::string> defaultSchema;  ///< of bare table names, if it is known
    sqlet::TokenList tokens;
    std::vector<sqlet::Coverage> coverage;  ///< as long as the tokens
    sqlet::Arena arena;
    SqletSelect* select = nullptr;  // in the arena; null if there is an error
    sqlet::Error error;
    int statementType = SQLET_STATEMENT_NONE;
    bool isMultiple = false;

    /// The bytes from the first to the last token of @p span, with what lies between.
    std::string_view textOf(sqlet::TokenSpan span) const;
    std::string_view textOf(sqlet::TokenIndex token) const;

    /// Records the error unless there is one already. @p what stands behind the position.
    void fail(SqletErrorKind kind, std::uint32_t offset, std::uint32_t length,
              const std::string& what);
    /// "line L, column C" of a byte; lines end with LF, CR LF or CR; columns in code points from 1.
    std::string positionText(std::uint32_t offset) const;
};

namespace sqlet {

/// Parses the first statement of @p parser's text into its tree: tokens, select, error, kind.
/// Works on any text; recursion is bounded (see the limits in grammar.cpp). Linear.
void parse(SqletParser& parser);

}  // namespace sqlet
