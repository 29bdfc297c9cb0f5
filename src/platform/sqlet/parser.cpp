#include "platform/sqlet/parser.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

#include "platform/sqlet/dialect.h"
#include "platform/sqlet/grammar.h"
#include "platform/sqlet/lexer.h"
#include "platform/sqlet/text_position.h"
#include "platform/sqlet/view.h"

namespace sqlet {

namespace {

/// What lies in brackets is skipped unread, so a token that is none can hide there.
void refuseHiddenTokens(const SqletParser& parser, TokenIndex end) {
    for (TokenIndex i = 0; i < end; ++i) {
        const TokenKind kind = parser.tokens[i].kind;
        if (kind == TokenKind::Bad) throw badToken(parser, i);
        if (kind == TokenKind::ExecutableComment)
            throw Refusal{SQLET_ERROR_UNSUPPORTED, i, "a comment with code is not supported"};
        if (kind == TokenKind::Hint)
            throw Refusal{SQLET_ERROR_UNSUPPORTED, i,
                          "a hint that sets variables is not supported"};
    }
}

void readStatement(SqletParser& parser, const Dialect& dialect) {
    Grammar grammar(parser, dialect);
    try {
        grammar.readStatement();
        if (parser.select) refuseHiddenTokens(parser, grammar.position());
    } catch (const Refusal& refusal) {
        const Token& token = parser.tokens[refusal.token];
        parser.select = nullptr;
        parser.fail(refusal.kind, token.offset, token.length, refusal.what);
    }
    if (!parser.select && parser.statementType == SQLET_STATEMENT_SELECT)
        parser.statementType = SQLET_STATEMENT_OTHER;
}

}  // namespace

void parse(SqletParser& parser) {
    const Dialect* dialect = dialectOf(parser.dialect);
    if (!dialect) {
        parser.fail(SQLET_ERROR_UNSUPPORTED, 0, 0, "this dialect is not known");
        return;
    }
    parser.tokens = lex(parser.text, parser.dialect);
    parser.coverage.assign(parser.tokens.tokens.size(), Coverage::Nothing);
    readStatement(parser, *dialect);
    if (!parser.select) return;
    settleView(parser, *parser.select);
    if (parser.error.kind == SQLET_ERROR_NONE) return;
    parser.select = nullptr;
    parser.statementType = SQLET_STATEMENT_OTHER;
}

}  // namespace sqlet

std::string_view SqletParser::textOf(sqlet::TokenSpan span) const {
    if (span.isEmpty()) return {};
    const sqlet::Token& first = tokens[span.first];
    return std::string_view(text).substr(first.offset, tokens[span.last].end() - first.offset);
}

std::string_view SqletParser::textOf(sqlet::TokenIndex token) const {
    return std::string_view(text).substr(tokens[token].offset, tokens[token].length);
}

void SqletParser::fail(SqletErrorKind kind, std::uint32_t offset, std::uint32_t length,
                       const std::string& what) {
    if (error.kind != SQLET_ERROR_NONE) return;
    error = {kind, offset, length, positionText(offset) + ": " + what};
}

std::string SqletParser::positionText(std::uint32_t offset) const {
    const sqlet::TextPosition position = sqlet::positionOf(text, offset);
    return "line " + std::to_string(position.line) + ", column " + std::to_string(position.column);
}

namespace sqlet {

namespace {

/// A C caller cannot catch what memory that is short throws.
void parseWithin(SqletParser& parser, std::string_view text) {
    try {
        parser.text.assign(text);
        parse(parser);
    } catch (const std::bad_alloc&) {
        parser.select = nullptr;
        parser.statementType = SQLET_STATEMENT_OTHER;
        parser.tokens = {};
        parser.error = {SQLET_ERROR_LIMIT, 0, 0, "the text needs more memory than there is"};
    }
}

}  // namespace

}  // namespace sqlet

SqletParser* sqlet_create(int dialect, const char* text, int /*one*/) {
    return sqlet_create_in_schema(dialect, text, nullptr);
}

SqletParser* sqlet_create_in_schema(int dialect, const char* text, const char* default_schema) {
    auto* parser = new SqletParser;
    if (default_schema) parser->defaultSchema = default_schema;
    parser->dialect = dialect;
    parser->original = text;
    if (!text) {
        parser->fail(SQLET_ERROR_SYNTAX, 0, 0, "there is no text");
        return parser;
    }
    const std::size_t length = std::strlen(text);
    if (length >= static_cast<std::size_t>(INT_MAX)) {
        parser->fail(SQLET_ERROR_LIMIT, 0, 0, "the text is longer than 2 GiB");
        return parser;
    }
    sqlet::parseWithin(*parser, std::string_view(text, length));
    return parser;
}

void sqlet_free(SqletParser* parser) {
    delete parser;
}

int sqlet_number_of_error(SqletParser* parser) {
    return parser && parser->error.kind != SQLET_ERROR_NONE ? 1 : 0;
}

const char* sqlet_last_error_msg(SqletParser* parser) {
    return parser ? parser->error.message.c_str() : "";
}

int sqlet_is_multi_stmts(SqletParser* parser) {
    return parser && parser->isMultiple ? 1 : 0;
}

int sqlet_last_stmt_type(SqletParser* parser) {
    return parser ? parser->statementType : SQLET_STATEMENT_NONE;
}

SqletSelect* sqlet_select(SqletParser* parser) {
    return parser ? parser->select : nullptr;
}

void sqlet_select_by_parts(SqletParser* parser, SqletStretch* columns, SqletStretch* from,
                           SqletStretch* where, SqletStretch* group_by, SqletStretch* having,
                           SqletStretch* order_by, SqletStretch* limit, SqletStretch* statement) {
    SqletStretch* const outputs[sqlet::partCount] = {columns, from,     where, group_by,
                                                     having,  order_by, limit, statement};
    for (int i = 0; i < sqlet::partCount; ++i) {
        if (!outputs[i]) continue;
        *outputs[i] = {-1, 0};
        if (!parser || !parser->select || parser->select->parts[i].isEmpty()) continue;
        const sqlet::TokenSpan span = parser->select->parts[i];
        *outputs[i] = {static_cast<int>(parser->tokens[span.first].offset),
                       static_cast<int>(parser->textOf(span).size())};
    }
}

int sqlet_error_kind(SqletParser* parser) {
    return parser ? parser->error.kind : SQLET_ERROR_NONE;
}

SqletStretch sqlet_error_stretch(SqletParser* parser) {
    if (!parser || parser->error.kind == SQLET_ERROR_NONE) return {-1, 0};
    return {static_cast<int>(parser->error.offset), static_cast<int>(parser->error.length)};
}

SqletStretch sqlet_unwanted_stretch(SqletParser* parser) {
    if (!parser || parser->tokens.tokens.empty()) return {-1, 0};
    const std::vector<sqlet::Token>& tokens = parser->tokens.tokens;
    const auto isSemicolon = [](const sqlet::Token& token) {
        return token.kind == sqlet::TokenKind::Semicolon;
    };
    auto start = tokens.begin();
    if (parser->isMultiple) start = std::find_if(start, tokens.end(), isSemicolon);
    start = std::find_if_not(start, tokens.end(), isSemicolon);
    const sqlet::Token& found = start == tokens.end() ? tokens.back() : *start;
    return {static_cast<int>(found.offset), static_cast<int>(found.length)};
}

const char* sqlet_position_text(SqletParser* parser, int offset) {
    if (!parser || offset < 0) return "";
    return parser->arena.copyText(parser->positionText(static_cast<std::uint32_t>(offset)));
}
