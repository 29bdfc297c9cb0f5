#include "parser/query_parser.h"

#include <limits>
#include <utility>

#include "model/detached_parts.h"
#include "parser/parser_handle.h"
#include "parser/round_trip_gate.h"
#include "parser/statement_converter.h"
#include "platform/tolk/tolk.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

using Verdict = QBParseOutcome::Verdict;

std::string localized(Tolk::TextId id) {
    return Tolk::localize(id).toStdString();
}

QBParseOutcome failure(Verdict verdict, std::string message, QBRange error = {-1, 0}) {
    return {verdict, std::move(message), {-1, 0}, error};
}

/// A failure that a reason explains.
QBParseOutcome parseError(Verdict verdict, const std::string& reason, QBRange error = {-1, 0}) {
    return failure(verdict, localized(Tolk::TextParseError) + ":\n\n" + reason, error);
}

Verdict verdictOf(int errorKind) {
    switch (errorKind) {
        case SQLET_ERROR_UNSUPPORTED:
            return Verdict::Unsupported;
        case SQLET_ERROR_LIMIT:
            return Verdict::TooLarge;
        default:
            return Verdict::SyntaxError;
    }
}

QBRange rangeOf(SqletStretch stretch) {
    return {stretch.start, stretch.length};
}

/// What is wrong with a text for the parser library; accepted if nothing is.
QBParseOutcome outcomeOf(SqletParser* parser) {
    if (sqlet_number_of_error(parser) > 0) {
        return parseError(verdictOf(sqlet_error_kind(parser)), sqlet_last_error_msg(parser),
                          rangeOf(sqlet_error_stretch(parser)));
    }
    if (sqlet_is_multi_stmts(parser))
        return failure(Verdict::SeveralStatements, localized(Tolk::TextSeveralStatements),
                       rangeOf(sqlet_unwanted_stretch(parser)));
    if (sqlet_last_stmt_type(parser) != SQLET_STATEMENT_SELECT)
        return failure(Verdict::NotSelect, localized(Tolk::TextOnlySelect),
                       rangeOf(sqlet_unwanted_stretch(parser)));
    return {};
}

/// The parser library reads up to a NUL and would leave out what follows.
QBParseOutcome nulFailure(int dialect, const std::string& text, std::size_t nul) {
    const ParserHandle parser = parseText(dialect, text, {});
    const int offset = static_cast<int>(nul);
    const char* const position = sqlet_position_text(parser.get(), offset);
    return parseError(Verdict::SyntaxError,
                      Tolk::localizeWithArgs(Tolk::TextNulInText, position).toStdString(),
                      {offset, 1});
}

QBRange rangeOf(SqletSelect* select, const std::string& text) {
    const auto location = sqlet_select_start(select) - text.c_str();
    return {static_cast<std::int32_t>(location), sqlet_select_length(select)};
}

/// Fills @p content, which is empty; after a failure it may hold a part of the statement.
QBParseOutcome fill(SQLSelectStmtComponent& content, const std::string& text, DatabaseType type,
                    const std::string& defaultSchema) {
    const int dialect = parserDialect(type);
    if (text.empty()) return {};
    if (text.size() > std::numeric_limits<std::int32_t>::max())
        return parseError(Verdict::TooLarge, localized(Tolk::TextTooLong));
    const std::size_t nul = text.find('\0');
    if (nul != std::string::npos) return nulFailure(dialect, text, nul);

    const ParserHandle parser = parseText(dialect, text, defaultSchema);
    QBParseOutcome outcome = outcomeOf(parser.get());
    if (!outcome.isAccepted()) return outcome;
    // The library wants to be asked for the stretches before it is asked for the statement.
    SqletStretch parts[8];
    sqlet_select_by_parts(parser.get(), &parts[0], &parts[1], &parts[2], &parts[3], &parts[4],
                          &parts[5], &parts[6], &parts[7]);
    SqletSelect* const select = sqlet_select(parser.get());
    StatementConverter(type, defaultSchema).convert(select, content);
    outcome = checkRoundTrip(parser.get(), content, type, defaultSchema);
    outcome.statement = rangeOf(select, text);
    return outcome;
}

constexpr TopLevelQueryComponentElementEnum announcedElements[] = {
    // A new ORDER BY is not announced: who shows it follows the other elements.
    ElementSelectColumn, ElementSource, ElementWhere, ElementGroupBy, ElementHaving, ElementLimit};

}  // namespace

QBParseOutcome QBQueryParser::parseStatement(SQLSelectStmtComponent* stmt, const std::string& text,
                                             DatabaseType type, const std::string& defaultSchema) {
    OwnedStatement content(new SQLSelectStmtComponent);
    QBParseOutcome outcome = fill(*content, text, type, defaultSchema);
    if (!outcome.isAccepted()) content.reset(new SQLSelectStmtComponent);
    if (!stmt) return outcome;
    swapElements(*stmt, *content);
    // What the statement held goes as its elements do: the clauses that these do not own stay.
    delete content.release();
    return outcome;
}

void QBQueryParser::parse_SQL(SQLSelectStmtComponent* stmt, const std::string& text,
                              DatabaseType type, const std::string& defaultSchema,
                              std::set<TopLevelQueryComponentElementEnum>* changed,
                              std::string* message, QBRange* range) {
    const QBParseOutcome outcome = parseStatement(stmt, text, type, defaultSchema);
    if (message) *message = outcome.message;
    if (range && outcome.statement.location >= 0) *range = outcome.statement;
    if (changed) changed->insert(std::begin(announcedElements), std::end(announcedElements));
}

void QBQueryParser::parse(AbstractTopLevelQueryComponent* stmt, const std::string& text,
                          DatabaseType type, const std::string& defaultSchema,
                          std::set<TopLevelQueryComponentElementEnum>* changed,
                          std::string* message, QBRange* range) {
    if (!hasStatementModel(type)) return;
    parse_SQL(dynamic_cast<SQLSelectStmtComponent*>(stmt), text, type, defaultSchema, changed,
              message, range);
}

}  // namespace QB
