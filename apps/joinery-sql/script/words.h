#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/vocabulary.h"
#include "platform/sqlet/token.h"

namespace QB::Cli {

/// A field as it stands in a script: what names its source, and the field; empty for a *.
struct FieldName {
    std::vector<std::string> source;
    std::string field;
};

/// The words of one command, taken one after the other. Names are read as the server reads them:
/// quoted as the dialect quotes, bare ones folded as it folds. Comments of the dialect are skipped.
/// Every operation that takes something throws a Refusal when something else stands there; @p what
/// then says what was wanted, such as "a table".
class Words {
public:
    Words(std::string text, DatabaseType family);

    bool isAtEnd() const;
    bool isNumberNext() const;
    /// Takes @p keyword, a bare word in any case, or a mark such as "(", if it is next.
    bool skip(std::string_view keyword);

    /// A bare word in lower case, for what the script's language knows.
    std::string keyword(const char* what);
    std::string name(const char* what);
    /// Names with dots between them.
    std::vector<std::string> path(const char* what);
    /// A path that ends with a field or a *.
    FieldName field(const char* what);
    int number(const char* what);
    /// At least one number or range, such as 0 2-4.
    std::vector<int> numbers(const char* what);
    /// All that is left, as it stands.
    std::string rest();
    std::string rest(const char* what);
    /// Nothing may be left.
    void end() const;

private:
    const sqlet::Token& next() const { return m_list.tokens[m_next]; }
    std::string_view textOf(const sqlet::Token& token) const;
    bool isNameNext() const;
    std::string takeName();
    [[noreturn]] void refuse(const std::string& what) const;

    const std::string m_text;
    const int m_dialect;
    const sqlet::TokenList m_list;
    sqlet::TokenIndex m_next = 0;
};

/// Names as a script writes them, for messages: with dots, without quotes.
std::string shownPath(const std::vector<std::string>& path);

}  // namespace QB::Cli
