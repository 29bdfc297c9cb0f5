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
    std::string schema;  ///< the current one; empty: not known
    bool isOdd = false;  ///< with comments, which may be part of a label
    Answer original;
    Examination examination;  ///< yet to be made
};

/// The statement of that number: of several tries the first that gives rows, since no rows show no
/// fault; else one that the server accepts at least, or none.
Candidate randomCandidate(ServerSession& session, unsigned number);

}  // namespace QB::Test
