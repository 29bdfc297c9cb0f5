#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "platform/sqlet/token.h"

/// What the dialects read differently, as data: the grammar itself is the same for all.
namespace sqlet {

constexpr std::size_t keywordCount = 1
#define SQLET_KEYWORD(name, text) +1
#include "platform/sqlet/keywords.inc"
#undef SQLET_KEYWORD
    ;

class KeywordSet {
public:
    constexpr KeywordSet(std::initializer_list<Keyword> words = {}) {
        for (const Keyword word : words)
            add(word);
    }

    constexpr bool contains(Keyword word) const {
        const auto index = static_cast<std::size_t>(word);
        return (m_bits[index / 64] >> (index % 64) & 1U) != 0;
    }

    constexpr KeywordSet with(std::initializer_list<Keyword> words) const {
        KeywordSet result = *this;
        for (const Keyword word : words)
            result.add(word);
        return result;
    }

private:
    constexpr void add(Keyword word) {
        const auto index = static_cast<std::size_t>(word);
        if (word != Keyword::None) m_bits[index / 64] |= std::uint64_t{1} << (index % 64);
    }

    std::array<std::uint64_t, keywordCount / 64 + 1> m_bits{};
};

/// What an operator does where an operand has ended.
enum class OperatorRole : std::uint8_t {
    Binary,      ///< binds tighter than a comparison: belongs to the operand
    Comparison,  ///< one of those that the model knows
    Looser,      ///< a comparison that it does not know, or anything that binds as loosely
    Assignment,  ///< no operator between values
};

struct OperatorRule {
    std::string_view text;
    OperatorRole role;
    const char* name;  ///< Comparison: as the accessors give it
};

/// Whether a join may stand without a condition.
enum class ConditionlessJoin : std::uint8_t {
    Never,
    InnerOnly,  ///< MySQL; the join then leans to the left like a comma
    Always,     ///< SQLite; an outer join without one means ON 1
};

/// Where NULL sorts in ascending order.
enum class NullOrder : std::uint8_t { Unspecified, Smallest, Largest };

/// How a limit may be written; a sum.
enum LimitForm : std::uint8_t {
    LimitWord = 1,       ///< LIMIT n
    LimitComma = 2,      ///< LIMIT offset, n
    OffsetWord = 4,      ///< OFFSET n behind LIMIT
    OffsetAlone = 8,     ///< OFFSET n, also in front of LIMIT
    FetchWords = 16,     ///< [OFFSET n ROWS] FETCH FIRST n ROWS ONLY
    TopWord = 32,        ///< SELECT TOP n
    NegativeIsAll = 64,  ///< LIMIT -1
    AllWord = 128        ///< LIMIT ALL and LIMIT NULL
};

struct Dialect {
    /// Symbols that are no Binary operator, longest need not come first.
    const OperatorRule* rules = nullptr;
    std::size_t ruleCount = 0;
    /// Symbols that may stand before an operand.
    std::string_view prefixes;
    /// Words that work like Binary symbols.
    KeywordSet binaryWords;
    /// Words that begin or are a comparison, also behind NOT.
    KeywordSet comparisonWords;
    bool modMayBeName = false;  ///< MOD works like a symbol, but only where an operand follows
    /// Words in front of an operand.
    KeywordSet prefixWords;
    /// x ISNULL and x NOTNULL; x NOT NULL.
    bool hasPostfixNullTests = false;
    bool hasPostfixNotNull = false;

    bool hasEmptyLists = false;  ///< x IN ()

    /// Any word in front of a string makes it a literal of that type; else DATE, TIME, TIMESTAMP
    /// where hasDateLiterals.
    bool hasTypedLiterals = false;
    bool hasDateLiterals = false;
    /// INTERVAL '1' DAY.
    bool hasIntervals = false;
    bool hasIntervalExpressions = false;  ///< INTERVAL 1 + n DAY
    bool hasIntervalUnitsBehind = false;  ///< (a - b) DAY TO SECOND
    /// x::type, and x[1].
    bool hasCastOperator = false;
    /// type::Method().
    bool hasStaticMethods = false;
    /// name(+).
    bool hasOuterJoinMarks = false;

    /// a < = b, 'a' | | 'b', and 2 ** 3.
    bool hasBlanksInOperators = false;

    /// A string may stand as the alias of a column: behind AS, and without it.
    bool hasStringAliases = false;
    /// 't'.'a' is a column, and FROM t 'x' has an alias.
    bool hasStringNames = false;
    /// SELECT x = 1.
    bool hasAssignedAliases = false;
    /// Words that are aliases behind AS only because of what they begin otherwise.
    KeywordSet clauseWords;
    /// Words that end a source, so are no bare alias of one.
    KeywordSet sourceEnds;
    /// Clauses that exist, but that nothing could show.
    KeywordSet refusedClauses;
    /// Words behind SELECT that change what it does.
    KeywordSet refusedModifiers;
    /// UNIQUE or DISTINCTROW.
    KeywordSet distinctWords;
    bool mayLackColumns = false;      ///< SELECT FROM t
    bool mayHavingComeFirst = false;  ///< HAVING .. GROUP BY ..

    bool hasPivot = false;      ///< t PIVOT (..)
    bool hasApply = false;      ///< t CROSS APPLY f(t.a)
    bool hasModel = false;      ///< MODEL DIMENSION BY ..
    bool hasFlashback = false;  ///< t AS OF TIMESTAMP x

    ConditionlessJoin conditionless = ConditionlessJoin::Never;
    bool crossTakesCondition = false;
    bool commaTakesCondition = false;
    bool mayBracketStatement = true;

    NullOrder nulls = NullOrder::Unspecified;
    bool hasNullsWords = false;
    std::uint8_t limitForms = 0;
    bool hasFetchOptions = false;  ///< PERCENT and WITH TIES have a place
    bool hasLooseCounts = false;   ///< LIMIT '5' and LIMIT 0x5

    OperatorRole roleOf(std::string_view symbol, const char** name) const;
};

/// The dialect 1 to 5; null for any other number.
const Dialect* dialectOf(int number);

}  // namespace sqlet
