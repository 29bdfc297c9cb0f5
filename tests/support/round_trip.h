#pragma once

#include <string>

#include "hostkit/quoting.h"
#include "model/detached_parts.h"
#include "model/statement_text.h"
#include "parser/query_parser.h"
#include "platform/sqlet/words.h"
#include "support/host_callbacks.h"

namespace QB::Test {

/// How the host of a round trip quotes names.
enum class HostStyle {
    AlwaysQuote,  ///< everything but the names of standard aggregates
    Minimal       ///< what cannot stand bare
};

struct RoundTrip {
    QBParseOutcome outcome;
    std::string text;  ///< generated from the model; empty if the parse failed
};

inline std::string quoteForHost(const std::string& name, DatabaseType family, HostStyle style) {
    const std::string minimal = HostKit::formatIdentifier(name, family, 0);
    if (style == HostStyle::Minimal) return minimal;
    const unsigned word = sqlet_word_class(family, name.data(), static_cast<int>(name.size()));
    const bool isAggregate = (word & SQLET_WORD_FUNCTION) != 0 && minimal == name;
    return isAggregate ? name : HostCallbacks::quoteAlways(name, family, 0);
}

/// Parses @p text into a statement of its own and generates the text of what came of it. Needs the
/// rooms parser and stringifier and the host kit's quoting; no host callbacks.
inline RoundTrip roundTrip(const std::string& text, DatabaseType family, const std::string& schema,
                           HostStyle style) {
    const OwnedStatement statement(new Component::SQL::SQLSelectStmtComponent);
    RoundTrip trip;
    trip.outcome = QBQueryParser::parseStatement(statement.get(), text, family, schema);
    if (!trip.outcome.isAccepted()) return trip;
    trip.text = statementText()(statement.get(), {family, 0}, schema, [=](const std::string& name) {
        return quoteForHost(name, family, style);
    });
    return trip;
}

}  // namespace QB::Test
