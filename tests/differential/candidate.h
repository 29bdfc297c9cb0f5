#pragma once

#include <string>

#include "differential/examination.h"
#include "differential/server_session.h"
#include "differential/statement_tokens.h"

namespace QB::Test {

/// A random statement with what the server says to it.
struct Candidate {
    StatementTokens tokens;
    std::string sql;
    std::string bareSchema;  ///< where the server finds bare names
    std::string schema;      ///< the same as the parser is told, or empty: not known
    bool isOdd = false;      ///< with comments, which may be part of a label
    Answer original;
    Examination examination;  ///< yet to be made
};

/// The statement of that number: of several tries the first that gives rows, since no rows show no
/// fault; else one that the server accepts at least, or none. Leaves the session in its bareSchema.
Candidate randomCandidate(ServerSession& session, unsigned number);

}  // namespace QB::Test
