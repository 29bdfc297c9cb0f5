#pragma once

#include <functional>
#include <string>

#include "parser/query_parser.h"

namespace QB {
class QBEngine_LINUX;
}

namespace QB::Desk {

/// A text with all that decides whether it is accepted.
struct SqlCheckRequest {
    std::string text;  ///< UTF-8
    DatabaseType family = DatabaseTypeNone;
    std::string schema;  ///< where names without one are looked for
};

/// What the window needs of the parser, so that it can be seen working on any answer.
struct QueryParsing {
    /// Reads a text without touching a query. Any thread; uses nothing but the request.
    std::function<QBParseOutcome(const SqlCheckRequest&)> check;
    /// Puts @p text in the place of the statement of the engine's current layer, and calls @p done
    /// on the main thread: true if it was accepted, else the statement is empty. Main thread.
    std::function<void(QBEngine_LINUX* engine, const std::string& text,
                       std::function<void(bool isAccepted)> done)>
        load;
    /// True while a load is under way. Main thread.
    std::function<bool(const QBEngine_LINUX* engine)> isLoading;
};

/// The library's parser.
QueryParsing libraryParsing();

}  // namespace QB::Desk
