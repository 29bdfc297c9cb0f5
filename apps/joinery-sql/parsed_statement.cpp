#include "apps/joinery-sql/parsed_statement.h"

#include <algorithm>
#include <new>
#include <regex>
#include <stdexcept>

#include "model/detached_parts.h"

namespace QB::Cli {
namespace {

using Component::SQL::SQLSelectStmtComponent;

constexpr const char* byteOrderMark = "\xEF\xBB\xBF";

bool isBlank(const std::string& text) {
    const std::size_t start = text.compare(0, 3, byteOrderMark) == 0 ? 3 : 0;
    return text.find_first_not_of(" \t\r\n\f\v", start) == std::string::npos;
}

QBParseOutcome nothingThere(const std::string& text) {
    QBParseOutcome outcome;
    outcome.verdict = QBParseOutcome::Verdict::NotSelect;
    outcome.message = "there is no statement in the text";
    outcome.error = {static_cast<std::int32_t>(text.size()), 0};
    return outcome;
}

}  // namespace

ParsedStatement::ParsedStatement(const std::string& text, DatabaseType type,
                                 const std::string& schema)
    : m_type(type)
    , m_schema(schema)
    , m_statement(std::make_unique<SQLSelectStmtComponent>())
    , m_outcome(isBlank(text)
                    ? nothingThere(text)
                    : QBQueryParser::parseStatement(m_statement.get(), text, type, schema)) {}

ParsedStatement::~ParsedStatement() {
    destroyUnownedClauses(m_statement.get());
}

GeneratedText ParsedStatement::generate() const {
    const auto stringifier = QBQueryComponentStringifier::createStringifier({m_type, 0});
    if (!stringifier) throw std::runtime_error("no text form for this family");
    stringifier->setCurrentSchema(m_schema);
    GeneratedText generated;
    generated.text = stringifier->stringifyQuery(m_statement.get());
    generated.ranges = stringifier->componentRanges();
    return generated;
}

std::optional<sqlet::TextPosition> placeOf(const std::string& text, int offset) {
    if (offset < 0) return std::nullopt;
    return sqlet::positionOf(text, static_cast<std::size_t>(offset));
}

std::string reasonOf(const QBParseOutcome& outcome) {
    const std::size_t paragraph = outcome.message.rfind("\n\n");
    std::string reason =
        paragraph == std::string::npos ? outcome.message : outcome.message.substr(paragraph + 2);
    static const std::regex position("^line [0-9]+, column [0-9]+: ");
    reason = std::regex_replace(reason, position, "", std::regex_constants::format_first_only);
    std::replace(reason.begin(), reason.end(), '\n', ' ');
    return reason;
}

std::string currentExceptionText() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return "the text needs more memory than there is";
    } catch (const std::exception& error) {
        return std::string("internal error: ") + error.what();
    } catch (std::runtime_error* error) {  // the form in which the engine reports misuse
        const std::unique_ptr<std::runtime_error> owner(error);
        return std::string("internal error: ") + error->what();
    } catch (...) {
        return "internal error";
    }
}

}  // namespace QB::Cli
