#include "differential/examination.h"

#include <algorithm>
#include <cctype>

#include "support/round_trip.h"

namespace QB::Test {
namespace {

/// Dedenting a subquery may change the layout of the free text in it.
std::string withoutBlanks(std::string text) {
    const auto isBlank = [](unsigned char c) {
        return std::isspace(c) != 0;
    };
    text.erase(std::remove_if(text.begin(), text.end(), isBlank), text.end());
    return text;
}

Examined resultOf(const Difference& difference) {
    if (difference.isRefused) return Examined::RefusedByServer;
    if (difference.inRows) return Examined::OtherRows;
    if (difference.inOrder) return Examined::OtherOrder;
    return difference.inLabels ? Examined::OtherLabels : Examined::Same;
}

Examination examineStyle(ServerSession& session, const std::string& sql, const Answer& original,
                         const std::string& schema, HostStyle style) {
    Examination examination;
    const RoundTrip trip = roundTrip(sql, session.family(), schema, style);
    examination.outcome = trip.outcome;
    if (!trip.outcome.isAccepted()) {
        examination.result = Examined::RefusedByParser;
        return examination;
    }
    examination.rebuilt = trip.text;
    examination.answer = session.ask(trip.text);
    examination.result = resultOf(differenceBetween(original, examination.answer));
    const RoundTrip again = roundTrip(trip.text, session.family(), schema, style);
    if (withoutBlanks(again.text) != withoutBlanks(trip.text) &&
        examination.result < Examined::NoFixedPoint) {
        examination.result = Examined::NoFixedPoint;
        examination.rebuilt += "\n-- and then\n" + again.text + again.outcome.message;
    }
    return examination;
}

}  // namespace

const char* name(Examined result) {
    switch (result) {
        case Examined::Same:
            return "same";
        case Examined::OtherLabels:
            return "other labels";
        case Examined::OtherOrder:
            return "other order";
        case Examined::RefusedByParser:
            return "refused by the parser";
        case Examined::NoFixedPoint:
            return "no fixed point";
        case Examined::OtherRows:
            return "OTHER ROWS";
        case Examined::RefusedByServer:
            return "REBUILT TEXT REFUSED";
    }
    return "";
}

Examination examine(ServerSession& session, const std::string& sql, const Answer& original,
                    const std::string& schema) {
    Examination quoted = examineStyle(session, sql, original, schema, HostStyle::AlwaysQuote);
    if (quoted.result == Examined::RefusedByParser) return quoted;
    Examination bare = examineStyle(session, sql, original, schema, HostStyle::Minimal);
    return bare.result > quoted.result ? bare : quoted;
}

std::string describe(const Examination& examination, const std::string& sql,
                     const Answer& original) {
    if (examination.result == Examined::RefusedByParser) {
        return sql + "\n-- refused by the parser: " + examination.outcome.message;
    }
    return sql + "\n-- gives\n" + describe(original) + "\n-- " + name(examination.result) + ":\n" +
           examination.rebuilt + "\n-- gives\n" + describe(examination.answer);
}

}  // namespace QB::Test
