// What must not change the model: layout, comments, the case of keywords, quotes around plain
// names, brackets around the whole. Over all statements of the construct table that are accepted.
#include <gtest/gtest.h>

#include <cctype>
#include <functional>
#include <string>

#include "constructs/construct_table.h"
#include "model/dump.h"
#include "platform/sqlet/lexer.h"
#include "platform/sqlet/words.h"
#include "support/round_trip.h"

using namespace QB;
using namespace QB::Test;
using constructs::Cell;

namespace {

DatabaseType typeOf(const Cell& cell) {
    return static_cast<DatabaseType>(cell.family->number);
}

/// The model of the text as text, or why there is none.
std::string dumpOf(const Cell& cell, const std::string& text) {
    const OwnedStatement statement(new Component::SQL::SQLSelectStmtComponent);
    const QBParseOutcome outcome =
        QBQueryParser::parseStatement(statement.get(), text, typeOf(cell), cell.schema());
    return outcome.isAccepted() ? dumpStatement(statement.get()) : outcome.message;
}

bool isModel(const std::string& dump) {
    return dump.substr(0, 9) == "statement";
}

/// Gives the text with something put in place of each token, and of what stands before it.
class Rewriter {
public:
    using Change = std::function<std::string(const sqlet::TokenList&, sqlet::TokenIndex)>;

    explicit Rewriter(const Cell& cell)
        : m_text(cell.statement()), m_tokens(sqlet::lex(m_text, cell.family->dialect)) {}

    std::string rewritten(const Change& gap, const Change& token) const {
        std::string result;
        for (sqlet::TokenIndex i = 0; i < m_tokens.count(); ++i)
            result += gap(m_tokens, i) + token(m_tokens, i);
        return result;
    }

    std::string written(const sqlet::TokenList&, sqlet::TokenIndex i) const {
        return m_text.substr(m_tokens[i].offset, m_tokens[i].length);
    }
    std::string gap(const sqlet::TokenList&, sqlet::TokenIndex i) const {
        const std::size_t end = i == 0 ? 0 : m_tokens[i - 1].end();
        return m_text.substr(end, m_tokens[i].offset - end);
    }
    Change asWritten() const {
        return [this](const auto& list, auto i) {
            return written(list, i);
        };
    }
    Change gapAsWritten() const {
        return [this](const auto& list, auto i) {
            return gap(list, i);
        };
    }

private:
    std::string m_text;
    sqlet::TokenList m_tokens;
};

std::string without(std::string text, const std::string& what) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at))
        text.erase(at, what.size());
    return text;
}

std::string withoutBlanks(const std::string& dump) {
    return without(without(without(dump, "\\n"), "\\t"), " ");
}

std::string inUpperCase(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

std::string inLowerCase(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

/// How a text is changed, and how the model shows it where it keeps text as written.
struct Change {
    const char* name;
    /// Empty where the change would mean something else.
    std::function<std::string(const Cell&)> change;
    std::function<std::string(std::string)> comparable;
    int leastChanged;
};

/// Comments within what is kept as text belong to it.
bool hasComments(const Cell& cell) {
    return cell.statement().find("/*") != std::string::npos;
}

std::string isLaidOutAnew(const Cell& cell) {
    if (hasComments(cell)) return {};
    const Rewriter rewriter(cell);
    const auto gap = [&](const auto& list, auto i) {
        const bool touches = i == 0 || rewriter.gap(list, i).empty();
        return touches ? std::string() : std::string(" /*~*/\n\t");
    };
    return rewriter.rewritten(gap, rewriter.asWritten());
}

/// Between all tokens, but for the calls of aggregates: with blanks they are kept as text, since
/// the server makes the label of their spelling.
std::string isTornApart(const Cell& cell) {
    const std::string model = dumpOf(cell, cell.statement());
    if (hasComments(cell) || model.find("aggregate=") != std::string::npos) return {};
    const Rewriter rewriter(cell);
    const auto gap = [](const auto&, auto) {
        return std::string("\n/*~*/ ");
    };
    return rewriter.rewritten(gap, rewriter.asWritten());
}

template <std::string (*inCase)(std::string)>
std::string hasKeywordsIn(const Cell& cell) {
    const Rewriter rewriter(cell);
    const auto token = [&](const sqlet::TokenList& list, sqlet::TokenIndex i) {
        const std::string written = rewriter.written(list, i);
        const bool isKeyword =
            list[i].kind == sqlet::TokenKind::Word && (list[i].flags & SQLET_WORD_RESERVED) != 0;
        return isKeyword ? inCase(written) : written;
    };
    return rewriter.rewritten(rewriter.gapAsWritten(), token);
}

/// A word that is a name wherever it stands; functions and words of the grammar are not.
bool isPlainName(const sqlet::TokenList& list, sqlet::TokenIndex i) {
    const sqlet::Token& token = list[i];
    return token.kind == sqlet::TokenKind::Word && token.keyword == sqlet::Keyword::None &&
           (token.flags & ~(SQLET_WORD_KEYWORD | sqlet::TokenTouchesNext)) == 0 &&
           list[i + 1].kind != sqlet::TokenKind::LeftParen &&
           list[i + 1].kind != sqlet::TokenKind::String;
}

std::string hasNamesInQuotes(const Cell& cell) {
    const Rewriter rewriter(cell);
    const constructs::Family& family = *cell.family;
    const auto token = [&](const sqlet::TokenList& list, sqlet::TokenIndex i) -> std::string {
        const std::string written = rewriter.written(list, i);
        if (!isPlainName(list, i)) return written;
        // In double quotes SQLite would take some of them for strings.
        if (family.number == DatabaseTypeSQLite) return "`" + written + "`";
        if (family.number == DatabaseTypePostgreSQL) return quoted(inLowerCase(written), family);
        if (family.number == DatabaseTypeOracle) return quoted(inUpperCase(written), family);
        return quoted(written, family);
    };
    return rewriter.rewritten(rewriter.gapAsWritten(), token);
}

std::string standsInBrackets(const Cell& cell) {
    std::string text = cell.statement();
    const bool isStatement = text.substr(0, 6) == "SELECT";
    if (!isStatement || cell.family->number == DatabaseTypeSQLite) return {};
    if (text.back() == ';') text.pop_back();
    return "((" + text + "\n))";
}

std::string withoutLayout(const std::string& dump) {
    return withoutBlanks(without(dump, "/*~*/"));
}

std::string withoutQuotes(std::string dump) {
    for (const char* quote : {"\\\"", "`", "[", "]"})
        dump = without(dump, quote);
    return inUpperCase(dump);
}

std::string asItIs(std::string dump) {
    return dump;
}

const Change changes[] = {
    {"layout", isLaidOutAnew, withoutLayout, 900},
    {"torn apart", isTornApart, withoutLayout, 900},
    {"keywords in upper case", hasKeywordsIn<inUpperCase>, inUpperCase, 20},
    {"keywords in lower case", hasKeywordsIn<inLowerCase>, inUpperCase, 900},
    {"names in quotes", hasNamesInQuotes, withoutQuotes, 900},
    {"brackets around the whole", standsInBrackets, asItIs, 700},
};

class Metamorphic : public testing::TestWithParam<Change> {};

TEST_P(Metamorphic, TheModelStaysTheSame) {
    const Change& change = GetParam();
    int changed = 0;
    for (const Cell& cell : constructs::cells()) {
        const std::string model = dumpOf(cell, cell.statement());
        if (!isModel(model)) continue;
        const std::string text = change.change(cell);
        if (text.empty()) continue;
        changed += text == cell.statement() ? 0 : 1;
        EXPECT_EQ(change.comparable(dumpOf(cell, text)), change.comparable(model))
            << cell.entry->place << " " << cell.family->name << ": " << text;
    }
    EXPECT_GE(changed, change.leastChanged);
}

INSTANTIATE_TEST_SUITE_P(Table, Metamorphic, testing::ValuesIn(changes),
                         [](const testing::TestParamInfo<Change>& instance) {
                             std::string name = instance.param.name;
                             for (char& c : name)
                                 if (c == ' ') c = '_';
                             return name;
                         });

TEST(Rebuilding, GivesItsOwnTextAgain) {
    for (const Cell& cell : constructs::cells()) {
        if (!isModel(dumpOf(cell, cell.statement())) || cell.statement().empty()) continue;
        for (const HostStyle style : {HostStyle::AlwaysQuote, HostStyle::Minimal}) {
            const std::string once =
                roundTrip(cell.statement(), typeOf(cell), cell.schema(), style).text;
            // SQL Server's limit writes this line; read back it is a column of ORDER BY.
            if (once.find("\nORDER BY 1\n") != std::string::npos) continue;
            const RoundTrip twice = roundTrip(once, typeOf(cell), cell.schema(), style);
            EXPECT_EQ(twice.text, once)
                << cell.entry->place << " " << cell.family->name << ": " << cell.statement() << "\n"
                << twice.outcome.message;
        }
    }
}

}  // namespace
