#pragma once

#include <QString>
#include <QVector>

#include "model/export.h"
#include "model/vocabulary.h"

namespace QB {

enum class SqlTokenKind { Keyword, Function, String, Number, Comment, QuotedIdentifier };

/// A stretch of a line that gets a colour: `[start, start + length)` in UTF-16 units.
struct SqlToken {
    int start = 0;
    int length = 0;
    SqlTokenKind kind = SqlTokenKind::Keyword;
};

inline bool operator==(const SqlToken& a, const SqlToken& b) {
    return a.start == b.start && a.length == b.length && a.kind == b.kind;
}

/// What is still open where a line begins. Two states that are equal colour what follows equally.
struct SqlLexState {
    enum class Open {
        Nothing,
        Comment,       ///< depth says how deep
        Quoted,        ///< up to quote, which stands for itself where it is doubled
        DollarQuoted,  ///< up to the delimiter
    };

    Open open = Open::Nothing;
    int depth = 0;
    QChar quote;
    bool hasBackslashEscapes = false;
    SqlTokenKind kind = SqlTokenKind::String;  ///< of the quoted text
    QString delimiter;                         ///< such as "$tag$"
};

inline bool operator==(const SqlLexState& a, const SqlLexState& b) {
    return a.open == b.open && a.depth == b.depth && a.quote == b.quote &&
           a.hasBackslashEscapes == b.hasBackslashEscapes && a.kind == b.kind &&
           a.delimiter == b.delimiter;
}
inline bool operator!=(const SqlLexState& a, const SqlLexState& b) {
    return !(a == b);
}

/// Finds what is to be coloured in SQL text, line by line, by the rules of a server family. It
/// knows quotes, comments and words, no grammar, and reads any text, however broken.
/// Thread: any; without state of its own.
class QB_EXPORT SqlHighlightLexer {
public:
    explicit SqlHighlightLexer(DatabaseType family = DatabaseTypeNone);

    DatabaseType family() const { return m_family; }

    /// Reads @p line, which holds no line break, from the state at its start and returns the state
    /// at the start of the next one. Appends the tokens to @p tokens, in order and without
    /// overlap; with null it only follows the state, which is cheaper. Linear.
    SqlLexState lexLine(const QString& line, const SqlLexState& start,
                        QVector<SqlToken>* tokens) const;

private:
    DatabaseType m_family;
};

}  // namespace QB
