#pragma once

#include <string>

#include "differential/server_session.h"
#include "parser/query_parser.h"

namespace QB::Test {

/// What became of a statement that the server accepts, from good to bad.
enum class Examined {
    Same,
    OtherLabels,
    OtherOrder,  ///< bad only if the order of the original is total
    RefusedByParser,
    NoFixedPoint,  ///< parsed and built again, the rebuilt text comes out different
    OtherRows,
    RefusedByServer,  ///< the rebuilt text is
};

const char* name(Examined result);

struct Examination {
    Examined result = Examined::Same;
    QBParseOutcome outcome;  ///< of the parser, on the original
    std::string rebuilt;     ///< the text that gave the result
    Answer answer;           ///< to the rebuilt text
};

/// Parses and builds @p sql under both ways of quoting and has the server answer what comes of it;
/// the worse result counts. @p original is the server's answer to @p sql.
Examination examine(ServerSession& session, const std::string& sql, const Answer& original,
                    const std::string& schema);

/// The two texts and what the server says to each.
std::string describe(const Examination& examination, const std::string& sql,
                     const Answer& original);

}  // namespace QB::Test
