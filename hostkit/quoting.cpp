#include "hostkit/quoting.h"

#include "platform/sqlet/words.h"

namespace QB::HostKit {
namespace {

struct QuoteMarks {
    char open;
    char close;  // doubled inside
};

/// Left out, it would make the name that of another object.
constexpr const char* replacementForNul = "\uFFFD";

QuoteMarks quoteMarks(DatabaseType type) {
    switch (type) {
        case DatabaseTypeMySQL:
        case DatabaseTypeMariaDB:
            return {'`', '`'};
        case DatabaseTypeSQLServer:
            return {'[', ']'};
        default:
            return {'"', '"'};
    }
}

std::string quoted(const std::string& name, QuoteMarks marks) {
    std::string text(1, marks.open);
    text.reserve(name.size() + 2);
    for (const char c : name) {
        if (c == marks.close) text += c;
        c == '\0' ? text += replacementForNul : text += c;
    }
    return text += marks.close;
}

bool isInOneCase(const std::string& word) {
    bool hasLower = false;
    bool hasUpper = false;
    for (const char c : word) {
        hasLower |= c >= 'a' && c <= 'z';
        hasUpper |= c >= 'A' && c <= 'Z';
    }
    return !(hasLower && hasUpper);
}

bool isAggregateName(const std::string& name, int family, int length) {
    const unsigned flags = sqlet_word_class(family, name.data(), length);
    return (flags & SQLET_WORD_FUNCTION) != 0 && isInOneCase(name);
}

/// Oracle's source aliases follow a blank, where a word like LEFT would be read as the next
/// keyword.
bool mayFollowBlank(const std::string& name, int family, int length) {
    return (sqlet_word_class(family, name.data(), length) & SQLET_WORD_NO_BARE_ALIAS) == 0;
}

bool isReadAsName(const std::string& name, int family, int length) {
    return sqlet_reads_as_name(family, name.data(), length) && mayFollowBlank(name, family, length);
}

}  // namespace

std::string formatIdentifier(const std::string& name, DatabaseType type, int /*version*/) {
    const int length = static_cast<int>(name.size());
    if (isReadAsName(name, type, length) || isAggregateName(name, type, length)) return name;
    return quoted(name, quoteMarks(type));
}

}  // namespace QB::HostKit
