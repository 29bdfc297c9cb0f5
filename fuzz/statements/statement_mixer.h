#pragma once

#include <random>
#include <string>
#include <vector>

#include "model/vocabulary.h"
#include "platform/sqlet/sqlet.h"

namespace QB::Fuzz {

/// A statement in two parts: its order may be made total once the number of its columns is known.
struct MixedStatement {
    std::string text;     ///< without order and limit
    std::string orderBy;  ///< may be empty
    std::string limit;    ///< may be empty; chooses rows by chance without a total order

    /// With its order, then that of all columns, then its limit; the text alone if it has no order.
    std::string ordered(std::size_t columns) const;
};

/// Makes random statements out of the clauses, conditions, operands and sources of given ones. What
/// comes out is read by a server often enough where all of them are about the same tables.
class StatementMixer {
public:
    /// @p corpus: statements of the family; what the parser refuses is left out.
    StatementMixer(DatabaseType family, const std::vector<std::string>& corpus);

    /// The same for the same seed.
    MixedStatement statement(unsigned seed);

    /// @p sql as a careless hand would write it: keywords in any case, comments and line breaks.
    /// Follows the last statement's seed.
    std::string oddlyWritten(const std::string& sql);

private:
    struct Clauses {
        std::string head;  ///< SELECT, or with DISTINCT
        std::string columns, from, where, groupBy, having, orderBy, limit;
    };

    void take(const std::string& sql);
    void takeConditions(SqletExpr* root);
    void change(Clauses& clauses);
    std::string joinedTo(const std::string& from);
    std::string condition(const std::string& left);
    std::string withOperand(const std::string& text);
    std::string withSource(const std::string& from);
    void renameAlias(Clauses& clauses);
    std::string anyAlias();
    static std::string textOf(const Clauses& clauses);

    std::size_t below(std::size_t n) { return n ? m_random() % n : 0; }
    bool chance(unsigned percent) { return below(100) < percent; }
    const std::string& pick(const std::vector<std::string>& from) {
        return from[below(from.size())];
    }

    const DatabaseType m_family;
    const int m_dialect;
    std::vector<Clauses> m_statements;
    std::vector<std::string> m_conditions;
    std::vector<std::string> m_operands;
    std::mt19937 m_random;
};

}  // namespace QB::Fuzz
