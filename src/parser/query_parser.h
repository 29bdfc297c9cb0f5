#pragma once

#include <set>
#include <string>

#include "model/components.h"
#include "model/export.h"
#include "model/vocabulary.h"

namespace QB {

/// What became of a text that was to be a statement.
struct QBParseOutcome {
    enum class Verdict {
        Accepted,
        SyntaxError,
        Unsupported,  ///< understood, but the model has no place for a part of it
        TooLarge,     ///< too deep, too long or too many
        SeveralStatements,
        NotSelect,
        CannotBeRepresented  ///< the text built from the model would not mean the same
    };

    Verdict verdict = Verdict::Accepted;
    /// What the user is told, localised, with line and column; empty if accepted.
    std::string message;
    /// Where the statement stands in the text, in bytes; location -1, length 0 if it was not
    /// reached.
    QBRange statement{-1, 0};
    /// Where the error is, in bytes; location -1 if there is none or it has no place.
    QBRange error{-1, 0};

    bool isAccepted() const { return verdict == Verdict::Accepted; }
};

/// Turns SQL text into the component model. A text that is accepted means to the server what the
/// text generated from the model means: at the end of each parse the statement is generated and
/// parsed again, and where the two differ the parse fails.
/// Thread: any; uses nothing but its arguments. A live statement needs the engine's
/// queryComponentAccessMutex.
class QB_EXPORT QBQueryParser {
public:
    /// Replaces the content of @p stmt by that of @p text; null only checks the text. A failed
    /// parse leaves the statement empty, not as it was. Does nothing for a family without a
    /// statement model, and takes a statement of another class for null.
    /// @p changed receives the elements that were replaced, @p message why it failed (untouched
    /// or empty: success), @p range where the statement stands; each may be null.
    static void parse(Component::AbstractTopLevelQueryComponent* stmt, const std::string& text,
                      DatabaseType type, const std::string& defaultSchema,
                      std::set<TopLevelQueryComponentElementEnum>* changed, std::string* message,
                      QBRange* range);

    /// The same for a statement of the SQL families.
    /// Errors: throws std::runtime_error "Unexpected Database Type" for a value of 7 or above.
    static void parse_SQL(Component::SQL::SQLSelectStmtComponent* stmt, const std::string& text,
                          DatabaseType type, const std::string& defaultSchema,
                          std::set<TopLevelQueryComponentElementEnum>* changed,
                          std::string* message, QBRange* range);

    /// As parse_SQL, but tells all that is known about a failure. @p stmt may be null.
    static QBParseOutcome parseStatement(Component::SQL::SQLSelectStmtComponent* stmt,
                                         const std::string& text, DatabaseType type,
                                         const std::string& defaultSchema);
};

}  // namespace QB
