#pragma once

#include <memory>
#include <string>

#include "platform/sqlet/sqlet.h"

namespace QB {

struct ParserHandleDeleter {
    void operator()(SqletParser* parser) const { sqlet_free(parser); }
};

/// A parsed text of the parser library, with all of its nodes and texts.
using ParserHandle = std::unique_ptr<SqletParser, ParserHandleDeleter>;

inline ParserHandle parseText(int dialect, const std::string& text,
                              const std::string& defaultSchema) {
    return ParserHandle(sqlet_create_in_schema(dialect, text.c_str(), defaultSchema.c_str()));
}

/// True for one statement that the accessors show whole.
inline bool isOneSelect(SqletParser* parser) {
    return sqlet_number_of_error(parser) <= 0 && !sqlet_is_multi_stmts(parser) &&
           sqlet_last_stmt_type(parser) == SQLET_STATEMENT_SELECT;
}

}  // namespace QB
