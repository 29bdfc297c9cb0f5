#pragma once

#include <cstdint>
#include <string>

#include "parser/parser_handle.h"
#include "support/round_trip.h"

/// Holds what comes of a text, and of the text that is built from it, against the promise that the
/// meaning never changes.
namespace QB::Test {

/// "" if the outcome is told as it should be: a message exactly with a refusal, places in the text.
inline std::string faultOfOutcome(const QBParseOutcome& outcome, const std::string& text) {
    const auto isInside = [&](QBRange range) {
        return range.location >= 0 && range.length >= 0 &&
               std::int64_t{range.location} + range.length <=
                   static_cast<std::int64_t>(text.size());
    };
    using Verdict = QBParseOutcome::Verdict;
    const bool isAnywhere =
        outcome.verdict == Verdict::SeveralStatements || outcome.verdict == Verdict::NotSelect;
    if (outcome.isAccepted()) {
        if (!outcome.message.empty()) return "accepted with the message " + outcome.message;
        return text.empty() || isInside(outcome.statement) ? "" : "accepted outside the text";
    }
    if (outcome.message.empty()) return "refused without a message";
    if (isInside(outcome.error)) return {};
    return isAnywhere && outcome.error.location == -1 ? "" : "refused without a place in the text";
}

/// "" if two texts of statements mean the same to the parser's own comparison.
inline std::string faultOfMeaning(const std::string& text, const std::string& rebuilt,
                                  DatabaseType family, const std::string& schema) {
    const int dialect = parserDialect(family);
    const ParserHandle original = parseText(dialect, text, schema);
    const ParserHandle other = parseText(dialect, rebuilt, schema);
    const int place = sqlet_first_difference(original.get(), other.get(), schema.c_str());
    return place == -1 ? "" : "meaning changed at byte " + std::to_string(place);
}

/// What a refusal is by which only the gate at the end of a parse kept the meaning: no harm was
/// done, but the parser should have refused with a reason or kept the part as text.
enum class GateRefusal { IsFault, IsFine };

/// Parses, builds, parses and builds. "" if the text is refused as it should be, or if the text
/// that is built is accepted, means the same and comes back unchanged.
inline std::string faultOfRoundTrip(const std::string& text, DatabaseType family,
                                    const std::string& schema, HostStyle style,
                                    GateRefusal gateRefusal = GateRefusal::IsFault) {
    const RoundTrip first = roundTrip(text, family, schema, style);
    std::string fault = faultOfOutcome(first.outcome, text);
    if (!fault.empty()) return fault;
    if (gateRefusal == GateRefusal::IsFault &&
        first.outcome.verdict == QBParseOutcome::Verdict::CannotBeRepresented)
        return "only the gate refuses it: " + first.outcome.message;
    if (!first.outcome.isAccepted() || text.empty()) return {};
    const RoundTrip second = roundTrip(first.text, family, schema, style);
    const std::string rebuilt = ", rebuilt: " + first.text;
    if (!second.outcome.isAccepted())
        return "the rebuilt text is refused: " + second.outcome.message + rebuilt;
    // A limit that needs an order got one, which is a part of the statement from then on.
    const bool isOrdered = first.text.find("\nORDER BY 1\n") != std::string::npos;
    if (second.text != first.text && !isOrdered)
        return "the rebuilt text changes" + rebuilt + ", then: " + second.text;
    fault = faultOfMeaning(text, first.text, family, schema);
    return fault.empty() ? "" : fault + rebuilt;
}

}  // namespace QB::Test
