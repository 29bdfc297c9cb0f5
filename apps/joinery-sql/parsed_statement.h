#pragma once

#include <memory>
#include <optional>
#include <string>

#include "parser/query_parser.h"
#include "platform/sqlet/text_position.h"
#include "stringifier/query_component_stringifier.h"

namespace QB::Cli {

/// A text written from the model.
struct GeneratedText {
    std::string text;
    /// Valid as long as the statement that the text was made of.
    QBQueryComponentStringifier::Ranges ranges;
};

/// One text as the query model sees it.
class ParsedStatement {
public:
    /// Parses @p text, of any content and size. A text without a statement is refused here, though
    /// an engine takes it for an empty query: nothing would become "SELECT *".
    /// @p type one of the families with a statement model.
    /// @p schema where unqualified names are found; empty if not known.
    ParsedStatement(const std::string& text, DatabaseType type, const std::string& schema);
    ~ParsedStatement();
    ParsedStatement(const ParsedStatement&) = delete;
    ParsedStatement& operator=(const ParsedStatement&) = delete;

    const QBParseOutcome& outcome() const { return m_outcome; }

    /// Empty unless the text was accepted. Never null.
    const Component::SQL::SQLSelectStmtComponent* statement() const { return m_statement.get(); }

    /// The statement in the same dialect, names quoted where the server needs it.
    GeneratedText generate() const;

private:
    DatabaseType m_type;
    std::string m_schema;
    std::unique_ptr<Component::SQL::SQLSelectStmtComponent> m_statement;
    QBParseOutcome m_outcome;
};

/// Where the byte @p offset of @p text is; nothing for a negative one.
std::optional<sqlet::TextPosition> placeOf(const std::string& text, int offset);

/// The reason of a refusal in one line, without the position that the callers print before it.
std::string reasonOf(const QBParseOutcome& outcome);

/// The exception that is being handled, in words. Call it in a catch block only.
std::string currentExceptionText();

}  // namespace QB::Cli
