#include "fuzz/statements/statement_mixer.h"

#include <array>
#include <cctype>
#include <functional>

#include "parser/parser_handle.h"
#include "platform/sqlet/lexer.h"
#include "platform/sqlet/words.h"

namespace QB::Fuzz {
namespace {

/// Of sources and columns: names of the tables and columns themselves, other cases, words, numbers.
const std::vector<std::string> aliases = {
    "x", "o", "g", "a", "b",    "y",    "n", "O",     "Y",     "My A", "id",   "order", "user",
    "2", "é", "A", "s", "full", "true", "*", "count", "value", "a.b",  "-- c", "a\"b",  "isnull"};

const std::vector<std::string> joins = {
    ", ",           " JOIN ",      " INNER JOIN ",   " LEFT JOIN ",        " RIGHT OUTER JOIN ",
    " CROSS JOIN ", " FULL JOIN ", " NATURAL JOIN ", " NATURAL LEFT JOIN "};

std::string quoted(const std::string& name, DatabaseType family) {
    const char quote = family == DatabaseTypeMariaDB ? '`' : '"';
    std::string text(1, quote);
    for (const char c : name)
        text += c == quote ? std::string(2, c) : std::string(1, c);
    return text + quote;
}

std::string_view textOf(const std::string& sql, const sqlet::Token& token) {
    return std::string_view(sql).substr(token.offset, token.length);
}

/// @p sql with what @p change gives in place of each token of which it gives something.
std::string rewritten(
    const std::string& sql, int dialect,
    const std::function<std::string(const sqlet::TokenList&, std::size_t)>& change) {
    const sqlet::TokenList list = sqlet::lex(sql, dialect);
    std::string text;
    std::size_t copied = 0;
    for (std::size_t i = 0; i < list.count(); ++i) {
        const std::string by = change(list, i);
        if (by.empty()) continue;
        text += sql.substr(copied, list.tokens[i].offset - copied) + by;
        copied = list.tokens[i].end();
    }
    return text + sql.substr(copied);
}

bool isPlainName(const sqlet::TokenList& list, std::size_t i) {
    const sqlet::Token& token = list.tokens[i];
    return token.kind == sqlet::TokenKind::Word && token.keyword == sqlet::Keyword::None &&
           (token.flags & SQLET_WORD_RESERVED) == 0 &&
           list.tokens[i + 1].kind != sqlet::TokenKind::LeftParen;
}

}  // namespace

std::string MixedStatement::ordered(std::size_t columns) const {
    if (orderBy.empty()) return text;
    std::string all = text + " ORDER BY " + orderBy;
    for (std::size_t i = 1; i <= columns; ++i)
        all += ", " + std::to_string(i);
    return all + " " + limit;
}

StatementMixer::StatementMixer(DatabaseType family, const std::vector<std::string>& corpus)
    : m_family(family), m_dialect(parserDialect(family)) {
    for (const std::string& sql : corpus)
        take(sql);
}

void StatementMixer::take(const std::string& sql) {
    const ParserHandle parser = parseText(m_dialect, sql, "");
    if (!isOneSelect(parser.get())) return;
    std::array<SqletStretch, 8> parts{};
    sqlet_select_by_parts(parser.get(), &parts[0], &parts[1], &parts[2], &parts[3], &parts[4],
                          &parts[5], &parts[6], &parts[7]);
    const auto part = [&](std::size_t i) {
        return parts[i].start < 0 ? std::string()
                                  : sql.substr(static_cast<std::size_t>(parts[i].start),
                                               static_cast<std::size_t>(parts[i].length));
    };
    SqletSelect* select = sqlet_select(parser.get());
    const char* head = sqlet_select_is_distinct(select) ? "SELECT DISTINCT " : "SELECT ";
    m_statements.push_back({head, part(0), part(1), part(2), part(3), part(4), part(5), part(6)});
    takeConditions(sqlet_select_where_expr(select));
    for (int i = 0; i < sqlet_select_number_of_columns(select); ++i) {
        SqletColumn* column = sqlet_select_column_at(select, i);
        const std::string text = sqlet_select_column_complex(column);
        if (text.back() != '*') m_operands.push_back(text);
    }
}

/// Each link of the chain, and its operands.
void StatementMixer::takeConditions(SqletExpr* root) {
    std::vector<SqletExpr*> open = {root};
    while (!open.empty()) {
        SqletExpr* expr = open.back();
        open.pop_back();
        if (!expr) continue;
        SqletExpr* left = sqlet_expr_left(expr);
        const std::string op = left ? sqlet_expr_op(expr) : "";
        const bool isOperand = left && op != "AND" && op != "OR";
        m_conditions.emplace_back(sqlet_expr_complex(expr));
        if (isOperand && !sqlet_expr_left(left)) m_operands.emplace_back(sqlet_expr_complex(left));
        if (!isOperand) open.insert(open.end(), {left, sqlet_expr_right(expr)});
    }
}

MixedStatement StatementMixer::statement(unsigned seed) {
    m_random.seed(seed);
    Clauses clauses = m_statements[below(m_statements.size())];
    for (std::size_t changes = 1 + below(4); changes > 0; --changes)
        change(clauses);
    return {textOf(clauses), clauses.orderBy, clauses.limit};
}

std::string StatementMixer::textOf(const Clauses& clauses) {
    std::string text = clauses.head + clauses.columns;
    const auto append = [&text](const char* words, const std::string& clause) {
        if (!clause.empty()) text += words + clause;
    };
    append(" FROM ", clauses.from);
    append(" WHERE ", clauses.where);
    append(" GROUP BY ", clauses.groupBy);
    append(" HAVING ", clauses.having);
    return text;
}

void StatementMixer::change(Clauses& clauses) {
    const Clauses& other = m_statements[below(m_statements.size())];
    switch (below(12)) {
        case 0:
            clauses.columns = other.columns;
            break;
        case 1:
            clauses.columns += ", " + pick(m_operands);
            if (chance(70)) clauses.columns += " AS " + anyAlias();
            break;
        case 2:
            clauses.from = other.from;
            break;
        case 3:
            clauses.from = joinedTo(clauses.from);
            break;
        case 4:
            clauses.from = withSource(clauses.from);
            break;
        case 5:
            clauses.where = withOperand(clauses.where);
            break;
        case 6:
            clauses.columns = withOperand(clauses.columns);
            break;
        case 7:
            clauses.orderBy = other.orderBy;
            clauses.limit = other.limit;
            break;
        case 8:
            clauses = {"SELECT ",
                       "*",
                       "(" + textOf(clauses) + ") AS " + anyAlias(),
                       "",
                       "",
                       "",
                       chance(50) ? "1 DESC" : "",
                       ""};
            break;
        case 9:
            renameAlias(clauses);
            break;
        default:
            clauses.where = condition(clauses.where);
    }
}

std::string StatementMixer::condition(const std::string& left) {
    const std::string& right = pick(m_conditions);
    if (left.empty()) return chance(80) ? right : "NOT (" + right + ")";
    switch (below(6)) {
        case 0:
            return left + " AND " + right;
        case 1:
            return right + " OR " + left;
        case 2:
            return "(" + left + ") AND NOT (" + right + ")";
        case 3:
            return "NOT " + left + " OR " + right;
        case 4:
            return "(" + left + " OR " + right + ") AND " + pick(m_conditions);
        default:
            return "(" + left + ")";
    }
}

std::string StatementMixer::joinedTo(const std::string& from) {
    const std::string& join = pick(joins);
    std::string right = m_statements[below(m_statements.size())].from;
    if (from.empty() || right.empty()) return from + right;
    if (chance(20)) right = "(" + right + ")";
    const bool isBare = join == ", " || join == " CROSS JOIN " || join.rfind(" NATURAL", 0) == 0;
    const std::string all = from + join + right;
    if (isBare) return all;
    return all + (chance(25) ? " USING (id)" : " ON " + pick(m_conditions));
}

/// One name or number becomes an operand of another statement.
std::string StatementMixer::withOperand(const std::string& text) {
    const std::size_t wanted = below(6);
    std::size_t found = 0;
    return rewritten(text, m_dialect, [&](const sqlet::TokenList& list, std::size_t i) {
        const bool isNumber = list.tokens[i].kind == sqlet::TokenKind::Number;
        const bool isPart = i > 0 && list.tokens[i - 1].kind == sqlet::TokenKind::Dot;
        if (isPart || (!isNumber && !isPlainName(list, i)) || found++ != wanted)
            return std::string();
        return chance(50) ? pick(m_operands) : "(" + pick(m_operands) + ")";
    });
}

/// A table becomes a derived one, one of the other schema or one with an alias.
std::string StatementMixer::withSource(const std::string& from) {
    const std::size_t wanted = below(2);
    std::size_t found = 0;
    return rewritten(from, m_dialect, [&](const sqlet::TokenList& list, std::size_t i) {
        if (!isPlainName(list, i) || found++ != wanted) return std::string();
        const std::string name(Fuzz::textOf(from, list.tokens[i]));
        if (chance(30)) return "other." + name;
        if (chance(40)) return name + " AS " + anyAlias();
        return "(SELECT * FROM " + name + (chance(50) ? ") AS " + name : ") " + name);
    });
}

/// A qualifier and all words like it get another name.
void StatementMixer::renameAlias(Clauses& clauses) {
    const std::string all = clauses.columns + " " + clauses.where;
    std::string name;
    rewritten(all, m_dialect, [&](const sqlet::TokenList& list, std::size_t i) {
        const bool isQualifier = list.tokens[i + 1].kind == sqlet::TokenKind::Dot;
        if (isQualifier && (name.empty() || chance(30))) name = Fuzz::textOf(all, list.tokens[i]);
        return std::string();
    });
    if (name.empty()) return;
    const std::string by = anyAlias();
    for (std::string* clause : {&clauses.columns, &clauses.from, &clauses.where, &clauses.groupBy,
                                &clauses.having, &clauses.orderBy}) {
        *clause = rewritten(*clause, m_dialect, [&](const sqlet::TokenList& list, std::size_t i) {
            const bool isName = Fuzz::textOf(*clause, list.tokens[i]) == name;
            const bool isLast = i > 0 && list.tokens[i - 1].kind == sqlet::TokenKind::Dot;
            return isName && !isLast ? by : std::string();
        });
    }
}

std::string StatementMixer::anyAlias() {
    const std::string& alias = pick(aliases);
    const bool isBare = sqlet_is_plain_word(m_family, alias.data(), static_cast<int>(alias.size()));
    return isBare && chance(60) ? alias : quoted(alias, m_family);
}

std::string StatementMixer::oddlyWritten(const std::string& sql) {
    static const std::vector<std::string> gaps = {
        "\n", "\r\n", "\n\n\t  ", "/* it's \"one\" -- */", "-- don't ( \n", "/* a\n   b ; */"};
    const bool isUpper = chance(50);
    return rewritten(sql, m_dialect, [&](const sqlet::TokenList& list, std::size_t i) {
        std::string word(Fuzz::textOf(sql, list.tokens[i]));
        if (list.tokens[i].keyword != sqlet::Keyword::None) {
            for (char& c : word)
                c = static_cast<char>(isUpper ? std::toupper(c) : std::tolower(c));
        }
        return i > 0 && chance(8) ? pick(gaps) + word : word;
    });
}

}  // namespace QB::Fuzz
