#include "apps/joinery-desk/query_parsing.h"

#include <utility>

#include "engine/engine_linux.h"

namespace QB::Desk {

QueryParsing libraryParsing() {
    QueryParsing parsing;
    parsing.check = [](const SqlCheckRequest& request) {
        return QBQueryParser::parseStatement(nullptr, request.text, request.family, request.schema);
    };
    parsing.load = [](QBEngine_LINUX* engine, const std::string& text,
                      std::function<void(bool)> done) {
        engine->parseQuery(
            text, [done = std::move(done)](bool isAccepted, QBRange) { done(isAccepted); });
    };
    parsing.isLoading = [](const QBEngine_LINUX* engine) {
        return engine->isParsingQuery();
    };
    return parsing;
}

}  // namespace QB::Desk
