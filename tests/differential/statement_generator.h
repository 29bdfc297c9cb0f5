#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "differential/adversarial_schema.h"
#include "differential/expression_rules.h"
#include "differential/statement_tokens.h"

namespace QB::Test {

/// Random SELECT statements over the adversarial schema, most of which the server accepts. The
/// same seed gives the same statement. ORDER BY is total and stands wherever there is a limit.
class StatementGenerator {
public:
    /// @p bareSchema: where the server finds bare names. @p schemaIsKnown: the parser is told, so
    /// what makes it untrue is left out (the temporary table that hides a real one).
    StatementGenerator(DatabaseType family, std::string bareSchema, bool schemaIsKnown,
                       unsigned seed);

    StatementTokens statement();

private:
    /// A column of a source, or of what a query gives.
    struct Label {
        std::string name;
        bool isText = false;
    };
    struct Source {
        std::string name;    ///< by which columns are qualified; empty: they cannot be
        std::string schema;  ///< may stand in front of the name; empty: may not
        std::vector<Label> columns;
    };
    /// The sources that an expression sees.
    struct Scope {
        std::vector<Source> sources;
        std::set<std::string> merged;  ///< columns of natural joins and USING
        const Scope* outer = nullptr;
        bool isGrouped = false;
        std::vector<std::pair<StatementTokens, bool>> keys;  ///< GROUP BY columns; true: text
    };
    struct Query {
        StatementTokens tokens;
        std::vector<Label> labels;
    };
    struct Item {
        StatementTokens tokens;  ///< without alias
        std::string alias;
        bool isText = false;
    };
    enum class Depth { Top, Inner };

    // Statements
    Query query(const Scope* outer, Depth depth, const std::vector<bool>* types);
    StatementTokens selectList(Scope& scope, const std::vector<bool>* types, Depth depth,
                               std::vector<Item>& items, std::vector<Label>& labels);
    bool appendStar(const Scope& scope, StatementTokens& tokens, std::vector<Item>& items,
                    std::vector<Label>& labels);
    Item item(const Scope& scope, bool isText, Depth depth);
    void chooseKeys(Scope& scope);
    StatementTokens grouping(const Scope& scope, const std::vector<Item>& items);
    StatementTokens groupingItem(const StatementTokens& key, const std::vector<Item>& items);
    StatementTokens orderAndLimit(const std::vector<Item>& items);
    StatementTokens orderItem(const Item& item, std::size_t position);
    StatementTokens limit();
    StatementTokens unsupportedTail();

    // Sources
    StatementTokens sources(Scope& scope, int budget);
    StatementTokens joined(Scope& scope, int budget);
    StatementTokens deferredJoin(Scope& scope, int budget);
    StatementTokens joinWith(Scope& scope, const Scope& right, const StatementTokens& rightTokens);
    StatementTokens primary(Scope& scope, int budget);
    StatementTokens bracketed(Scope& scope, int budget);
    static StatementTokens inBrackets(const StatementTokens& content);
    StatementTokens table(Scope& scope);
    StatementTokens derivedTable(Scope& scope);
    StatementTokens specialSource(Scope& scope);
    StatementTokens lateral(Scope& scope);
    StatementTokens columnsNamed(Source& source, const std::vector<Label>& columns);
    StatementTokens setOperation(std::vector<Label>& labels);
    std::string freeAlias();
    std::vector<std::string> commonColumns(const Scope& left, const Scope& right);

    // Expressions
    StatementTokens integer(const Scope& scope, int depth);
    StatementTokens text(const Scope& scope, int depth);
    StatementTokens condition(const Scope& scope, int depth);
    StatementTokens aggregate(const Scope& scope);
    StatementTokens expand(const std::string& form, const Scope& scope, int depth);
    StatementTokens expandPart(const std::string& part, const Scope& scope, int depth);
    const char* chooseForm(const std::vector<ExpressionRule>& rules);
    StatementTokens column(const Scope& scope, bool isText);
    StatementTokens columnOf(const Scope& scope, const Source& source, const std::string& name);
    StatementTokens groupedColumn(const Scope& scope, bool isText);
    StatementTokens subquery(const Scope& scope, std::vector<bool> types);
    StatementTokens scalarSubquery(const Scope& scope);

    // Names
    std::string spelled(const std::string& name, bool caseMatters);
    std::string columnName(const std::string& name);
    std::string tableName(const std::string& name);
    StatementTokens withAlias(const std::string& alias, bool caseMatters);
    std::string folded(const std::string& name) const;
    bool isAmbiguous(const Scope& scope, const std::string& name) const;

    std::string anyAlias(const std::vector<std::string>& usual);

    bool is(unsigned families) const { return (m_bit & families) != 0; }
    static std::string inSmallLetters(std::string text);
    static StatementTokens words(const std::string& form);

    const DatabaseType m_family;
    const unsigned m_bit;
    const std::string m_bareSchema;
    Dice m_dice;
    std::vector<SchemaTable> m_tables;
    std::vector<std::string> m_words;     ///< of the family, in small letters
    std::set<std::string> m_sourceNames;  ///< in use in the FROM clause at hand
    int m_queries = 0;                    ///< in the statement at hand
};

}  // namespace QB::Test
