#include "platform/sqlet/dialect.h"

#include <iterator>

namespace sqlet {

namespace {

using K = Keyword;

constexpr OperatorRule standardRules[] = {
    {"=", OperatorRole::Comparison, "="},   {"<", OperatorRole::Comparison, "<"},
    {">", OperatorRole::Comparison, ">"},   {"<=", OperatorRole::Comparison, "<="},
    {">=", OperatorRole::Comparison, ">="}, {"<>", OperatorRole::Comparison, "<>"},
    {"!=", OperatorRole::Comparison, "!="}, {":=", OperatorRole::Assignment, nullptr},
};

// In MySQL || is OR or the concatenation, by the mode of the server.
constexpr OperatorRule mysqlRules[] = {
    {"=", OperatorRole::Comparison, "="},   {"<", OperatorRole::Comparison, "<"},
    {">", OperatorRole::Comparison, ">"},   {"<=", OperatorRole::Comparison, "<="},
    {">=", OperatorRole::Comparison, ">="}, {"<>", OperatorRole::Comparison, "<>"},
    {"!=", OperatorRole::Comparison, "!="}, {"<=>", OperatorRole::Looser, nullptr},
    {"&&", OperatorRole::Looser, nullptr},  {"||", OperatorRole::Looser, nullptr},
    {":=", OperatorRole::Looser, nullptr},
};

constexpr OperatorRule oracleRules[] = {
    {"=", OperatorRole::Comparison, "="},   {"<", OperatorRole::Comparison, "<"},
    {">", OperatorRole::Comparison, ">"},   {"<=", OperatorRole::Comparison, "<="},
    {">=", OperatorRole::Comparison, ">="}, {"<>", OperatorRole::Comparison, "<>"},
    {"!=", OperatorRole::Comparison, "!="}, {"^=", OperatorRole::Looser, nullptr},
    {"~=", OperatorRole::Looser, nullptr},  {":=", OperatorRole::Assignment, nullptr},
};

constexpr OperatorRule sqliteRules[] = {
    {"=", OperatorRole::Comparison, "="},   {"<", OperatorRole::Comparison, "<"},
    {">", OperatorRole::Comparison, ">"},   {"<=", OperatorRole::Comparison, "<="},
    {">=", OperatorRole::Comparison, ">="}, {"<>", OperatorRole::Comparison, "<>"},
    {"!=", OperatorRole::Comparison, "!="}, {"==", OperatorRole::Looser, nullptr},
};

constexpr OperatorRule sqlserverRules[] = {
    {"=", OperatorRole::Comparison, "="},
    {"<", OperatorRole::Comparison, "<"},
    {">", OperatorRole::Comparison, ">"},
    {"<=", OperatorRole::Comparison, "<="},
    {">=", OperatorRole::Comparison, ">="},
    {"<>", OperatorRole::Comparison, "<>"},
    {"!=", OperatorRole::Comparison, "!="},
    {"!<", OperatorRole::Looser, nullptr},
    {"!>", OperatorRole::Looser, nullptr},
    // SELECT @a += b
    {"+=", OperatorRole::Looser, nullptr},
    {"-=", OperatorRole::Looser, nullptr},
    {"*=", OperatorRole::Looser, nullptr},
    {"/=", OperatorRole::Looser, nullptr},
    {"%=", OperatorRole::Looser, nullptr},
    {"&=", OperatorRole::Looser, nullptr},
    {"|=", OperatorRole::Looser, nullptr},
    {"^=", OperatorRole::Looser, nullptr},
};

// Behind a select list: what may follow it, or end the statement.
constexpr KeywordSet standardClauses = {
    K::From,   K::Where, K::Group,     K::Having, K::Order,  K::Union,
    K::Except, K::Into,  K::Intersect, K::As,     K::Select,
};

// Behind a source.
constexpr KeywordSet standardSourceEnds =
    standardClauses.with({K::Join, K::Inner, K::Left, K::Right, K::Cross, K::Natural, K::On,
                          K::Using, K::Set, K::Values, K::And, K::Or, K::Not});

constexpr KeywordSet standardComparisons = {K::Is, K::In, K::Like, K::Between};

constexpr KeywordSet standardRefusals = {K::Union, K::Except, K::Intersect, K::Into, K::Window};

template <std::size_t N>
constexpr void setRules(Dialect& dialect, const OperatorRule (&rules)[N]) {
    dialect.rules = rules;
    dialect.ruleCount = N;
}

constexpr Dialect mysql() {
    Dialect d;
    setRules(d, mysqlRules);
    d.prefixes = "+ - ~ !";
    d.binaryWords = {K::Div, K::Mod};
    d.comparisonWords =
        standardComparisons.with({K::Regexp, K::Rlike, K::Sounds, K::Member, K::Xor, K::Escape});
    d.prefixWords = {K::Binary};
    d.hasDateLiterals = true;
    d.hasIntervals = true;
    d.hasIntervalExpressions = true;
    d.hasStringAliases = true;
    d.clauseWords = standardClauses.with({K::Limit, K::For, K::Lock, K::Procedure, K::Fetch});
    d.sourceEnds = standardSourceEnds.with({K::StraightJoin, K::Partition, K::Use, K::Force,
                                            K::Ignore, K::Limit, K::For, K::Lock, K::Procedure,
                                            K::Fetch, K::Window, K::Lateral});
    d.refusedClauses = standardRefusals.with({K::For, K::Lock, K::Procedure, K::Minus});
    d.refusedModifiers = {K::HighPriority, K::StraightJoin,     K::SqlSmallResult,
                          K::SqlBigResult, K::SqlBufferResult,  K::SqlCache,
                          K::SqlNoCache,   K::SqlCalcFoundRows, K::MaxStatementTime};
    d.distinctWords = {K::Distinctrow};
    d.conditionless = ConditionlessJoin::InnerOnly;
    d.hasFlashback = true;
    d.crossTakesCondition = true;
    d.limitForms = LimitWord | LimitComma | OffsetWord | OffsetAlone | FetchWords;
    return d;
}

constexpr Dialect postgresql() {
    Dialect d;
    setRules(d, standardRules);
    // % and : are what client programs put in front of their parameters.
    d.prefixes = "+ - ~ ! !! @ @@ |/ ||/ # @-@ ?- ?| !!= % :";
    d.comparisonWords = standardComparisons.with({K::Ilike, K::Similar, K::Overlaps, K::Escape});
    d.hasPostfixNullTests = true;
    d.hasTypedLiterals = true;
    d.hasIntervals = true;
    d.hasCastOperator = true;
    d.clauseWords = standardClauses.with(
        {K::Limit, K::Offset, K::Fetch, K::For, K::Window, K::Over, K::Filter, K::Within});
    d.sourceEnds = standardSourceEnds.with(
        {K::Full, K::Limit, K::Offset, K::Fetch, K::For, K::Window, K::Tablesample, K::Lateral});
    d.refusedClauses = standardRefusals.with({K::For});
    d.mayLackColumns = true;
    d.nulls = NullOrder::Largest;
    d.hasNullsWords = true;
    d.limitForms = LimitWord | OffsetWord | OffsetAlone | FetchWords | AllWord;
    return d;
}

constexpr Dialect oracle() {
    Dialect d;
    setRules(d, oracleRules);
    d.prefixes = "+ - :";  // : a, with a blank
    d.comparisonWords = standardComparisons.with(
        {K::Likec, K::Like2, K::Like4, K::Member, K::Submultiset, K::Overlaps, K::Escape});
    d.binaryWords = {K::Multiset, K::Mod};
    d.modMayBeName = true;
    d.prefixWords = {K::Prior, K::ConnectByRoot};
    d.hasDateLiterals = true;
    d.hasIntervals = true;
    d.hasIntervalUnitsBehind = true;
    d.hasOuterJoinMarks = true;
    d.hasBlanksInOperators = true;
    d.clauseWords = standardClauses.with(
        {K::Connect, K::Start, K::Minus, K::Fetch, K::Offset, K::For, K::Model, K::Bulk});
    d.sourceEnds = standardSourceEnds.with({K::Full, K::Outer, K::Connect, K::Start, K::Minus,
                                            K::Fetch, K::Offset, K::For, K::Model, K::Partition,
                                            K::Subpartition, K::Sample, K::Pivot, K::Unpivot,
                                            K::Versions, K::MatchRecognize, K::Window, K::Qualify});
    d.refusedClauses =
        standardRefusals.with({K::Minus, K::Connect, K::Start, K::For, K::Model, K::Qualify});
    d.distinctWords = {K::Unique};
    d.mayHavingComeFirst = true;
    d.hasFlashback = true;
    d.hasModel = true;
    d.hasPivot = true;
    d.hasApply = true;
    d.nulls = NullOrder::Largest;
    d.hasNullsWords = true;
    d.limitForms = OffsetAlone | FetchWords;
    d.hasFetchOptions = true;
    return d;
}

constexpr Dialect sqlite() {
    Dialect d;
    setRules(d, sqliteRules);
    d.prefixes = "+ - ~";
    d.comparisonWords = standardComparisons.with({K::Glob, K::Regexp, K::Match, K::Escape});
    d.hasPostfixNullTests = true;
    d.hasPostfixNotNull = true;
    d.hasEmptyLists = true;
    d.hasStringAliases = true;
    d.hasStringNames = true;
    d.clauseWords = standardClauses.with({K::Limit, K::Window});
    d.sourceEnds =
        standardSourceEnds.with({K::Full, K::Outer, K::Limit, K::Indexed, K::Window, K::Returning});
    d.refusedClauses = standardRefusals;
    d.conditionless = ConditionlessJoin::Always;
    d.crossTakesCondition = true;
    d.commaTakesCondition = true;
    d.mayBracketStatement = false;
    d.nulls = NullOrder::Smallest;
    d.hasNullsWords = true;
    d.limitForms = LimitWord | LimitComma | OffsetWord | NegativeIsAll;
    d.hasLooseCounts = true;
    return d;
}

constexpr Dialect sqlserver() {
    Dialect d;
    setRules(d, sqlserverRules);
    d.prefixes = "+ - ~";
    d.comparisonWords = standardComparisons.with({K::Escape});
    d.hasStaticMethods = true;
    d.hasStringAliases = true;
    d.hasAssignedAliases = true;
    d.hasPivot = true;
    d.hasApply = true;
    d.clauseWords = standardClauses.with({K::For, K::Option, K::Within});
    d.sourceEnds =
        standardSourceEnds.with({K::Full, K::Outer, K::For, K::Option, K::With, K::Tablesample,
                                 K::Pivot, K::Unpivot, K::Window, K::Fetch});
    d.refusedClauses = standardRefusals.with({K::For, K::Option});
    d.limitForms = TopWord | OffsetAlone | FetchWords;
    return d;
}

constexpr Dialect dialects[] = {mysql(), postgresql(), oracle(), sqlite(), sqlserver()};

}  // namespace

OperatorRole Dialect::roleOf(std::string_view symbol, const char** name) const {
    for (std::size_t i = 0; i < ruleCount; ++i) {
        if (rules[i].text != symbol) continue;
        *name = rules[i].name;
        return rules[i].role;
    }
    return OperatorRole::Binary;
}

const Dialect* dialectOf(int number) {
    if (number < 1 || number > static_cast<int>(std::size(dialects))) return nullptr;
    return &dialects[number - 1];
}

}  // namespace sqlet
