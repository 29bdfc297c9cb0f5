#include "parser/round_trip_gate.h"

#include "model/statement_text.h"
#include "parser/name_quoting.h"
#include "parser/parser_handle.h"
#include "platform/sqlet/words.h"
#include "platform/tolk/tolk.h"

namespace QB {

using namespace Component::SQL;

namespace {

/// Quotes names, and notes whether quotes matter for any of them.
class Quoter {
public:
    explicit Quoter(DatabaseType type) : m_type(type) {}

    std::string always(const std::string& name) {
        const unsigned word = wordClass(name);
        // Ordinary words read the same with and without quotes.
        if (word == 0) return quotedName(name, m_type);
        const bool canBeBare = canStandBare(name, m_type);
        m_hasBareWord = m_hasBareWord || canBeBare;
        // Quoted, the name of an aggregate is no function to some servers.
        return canBeBare && (word & SQLET_WORD_FUNCTION) ? name : quotedName(name, m_type);
    }

    bool isWord(const std::string& name) const { return wordClass(name) != 0; }

    /// True if one of the names is a word of the dialect that may stand bare.
    bool hasBareWord() const { return m_hasBareWord; }

private:
    unsigned wordClass(const std::string& name) const {
        return sqlet_word_class(m_type, name.data(), static_cast<int>(name.size()));
    }
    const DatabaseType m_type;
    bool m_hasBareWord = false;
};

constexpr int noDifference = -1;

int firstDifference(SqletParser* original, const std::string& rebuilt, int dialect,
                    const std::string& schema) {
    const ParserHandle parser = parseText(dialect, rebuilt, schema);
    return sqlet_first_difference(original, parser.get(), schema.c_str());
}

QBParseOutcome refusal(SqletParser* original, int offset) {
    const std::string position = sqlet_position_text(original, offset);
    QBParseOutcome outcome;
    outcome.verdict = QBParseOutcome::Verdict::CannotBeRepresented;
    outcome.message =
        Tolk::localizeWithArgs(Tolk::TextCannotBeRepresented, position.c_str()).toStdString();
    outcome.error = {offset, 1};
    return outcome;
}

QBParseOutcome noGenerator() {
    QBParseOutcome outcome;
    outcome.verdict = QBParseOutcome::Verdict::CannotBeRepresented;
    outcome.message = Tolk::localize(Tolk::TextNoTextGenerator).toStdString();
    return outcome;
}

}  // namespace

QBParseOutcome checkRoundTrip(SqletParser* original, const SQLSelectStmtComponent& statement,
                              DatabaseType type, const std::string& schema) {
    const StatementText textOf = statementText();
    if (!textOf) return noGenerator();
    const int dialect = parserDialect(type);
    const auto compare = [&](const QuoteName& quote) {
        const std::string text = textOf(&statement, {type, 0}, schema, quote);
        return firstDifference(original, text, dialect, schema);
    };
    Quoter quoter(type);
    int difference = compare([&quoter](const std::string& name) { return quoter.always(name); });
    // What stood bare in the original text stands bare again.
    const bool isNewlyBare = sqlet_has_quoted_word(original) || quoter.isWord(schema);
    if (difference == noDifference && quoter.hasBareWord() && isNewlyBare)
        difference =
            compare([type](const std::string& name) { return quotedWhereNeeded(name, type); });
    return difference == noDifference ? QBParseOutcome() : refusal(original, difference);
}

}  // namespace QB
