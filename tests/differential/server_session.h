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

/// A statement and the schema where its bare names are found.
struct LocatedStatement {
    std::string sql;
    std::string schema;
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

/// Where bare names are found: "main", "public" or "joinery".
std::string mainSchema(DatabaseType family);

/// A server with the tables of tables.sql, as one connection sees it.
class ServerSession {
public:
    ServerSession(LiveConnection& connection, DatabaseType family);

    /// Empty unless the schema could not be made.
    const std::string& error() const { return m_error; }
    DatabaseType family() const { return m_family; }

    /// Where bare names are found from now on: the main schema at first, or "other", which SQLite
    /// cannot.
    void useSchema(const std::string& schema);

    /// At most 20,000 rows are read.
    Answer ask(const std::string& sql);

    /// For each statement what it leaves to chance: how its answer differs when all tables hold
    /// their rows in reverse. In rows: a limit that picks others; in order: one that is not total.
    /// Slow: loads the schema twice.
    std::vector<Difference> chances(const std::vector<LocatedStatement>& statements);

private:
    enum class RowOrder { AsWritten, Reversed };

    void load(RowOrder order);
    void dropTables();
    void run(const std::string& statement);

    LiveConnection& m_connection;
    DatabaseType m_family;
    std::string m_error;
    std::string m_schema;  ///< in use
};

}  // namespace QB::Test
