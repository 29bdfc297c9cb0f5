#include "parser/name_quoting.h"

#include "platform/sqlet/sqlet.h"
#include "platform/sqlet/words.h"

namespace QB {

namespace {

struct QuoteMarks {
    char open;
    char close;  // doubled inside
};

QuoteMarks quoteMarks(int dialect) {
    if (dialect == parserDialect(DatabaseTypeMySQL)) return {'`', '`'};
    if (dialect == parserDialect(DatabaseTypeSQLServer)) return {'[', ']'};
    return {'"', '"'};
}

}  // namespace

std::string quotedName(const std::string& name, DatabaseType type) {
    const QuoteMarks marks = quoteMarks(parserDialect(type));
    std::string text(1, marks.open);
    for (const char c : name) {
        if (c == marks.close) text += c;
        text += c;
    }
    return text += marks.close;
}

bool canStandBare(const std::string& name, DatabaseType type) {
    const int length = static_cast<int>(name.size());
    return sqlet_reads_as_name(type, name.data(), length) != 0 &&
           (sqlet_word_class(type, name.data(), length) & SQLET_WORD_NO_BARE_ALIAS) == 0;
}

std::string quotedWhereNeeded(const std::string& name, DatabaseType type) {
    return canStandBare(name, type) ? name : quotedName(name, type);
}

}  // namespace QB
