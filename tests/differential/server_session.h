#pragma once

#include <string>
#include <vector>

#include "live/live_server.h"

namespace QB::Test {

/// What a server says to a statement: rows, or why it refuses.
struct Answer {
    using Row = std::vector<std::string>;  ///< texts in quotes, NULL without

    bool isRefused = false;
    std::string message;              ///< of the refusal
    std::vector<std::string> labels;  ///< of the columns
    std::vector<Row> rows;            ///< in the order in which they came
};

/// How the answer to a rebuilt statement differs from that to the original.
struct Difference {
    bool isRefused = false;  ///< the server refuses the rebuilt statement
    bool inRows = false;     ///< as a multiset
    bool inOrder = false;    ///< the same rows in another order
    bool inLabels = false;

    bool isNone() const { return !isRefused && !inRows && !inOrder && !inLabels; }
};

/// The original must not have been refused.
Difference differenceBetween(const Answer& original, const Answer& rebuilt);

/// The labels and the first rows, for messages.
std::string describe(const Answer& answer);

/// A server with the adversarial schema, as one connection sees it.
class ServerSession {
public:
    ServerSession(LiveConnection& connection, DatabaseType family);

    /// Empty unless the schema could not be made.
    const std::string& error() const { return m_error; }
    DatabaseType family() const { return m_family; }

    /// At most 20,000 rows are read.
    Answer ask(const std::string& sql);

    /// True if the statement gives the same rows in the same order when all tables hold theirs in
    /// reverse: then its order is total and its limit picks the same rows always. Slow: loads the
    /// schema twice.
    bool isSteady(const std::string& sql);
    /// The same for many statements, in the time of one.
    std::vector<bool> areSteady(const std::vector<std::string>& statements);

private:
    void load(bool isReversed);

    LiveConnection& m_connection;
    DatabaseType m_family;
    std::string m_error;
};

}  // namespace QB::Test
