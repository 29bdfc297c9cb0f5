#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/sqlet/dialect.h"
#include "platform/sqlet/parser.h"

namespace sqlet {

/// How far an expression may reach, each level with all that the one before takes.
enum class Reach : std::uint8_t {
    Operand,  ///< what may stand at one side of a comparison
    Term,     ///< with comparisons: what AND and OR join
    Whole,    ///< with AND and OR
};

/// How deep brackets may nest: groups of conditions, joins, and those that a deferred condition
/// adds.
constexpr std::uint32_t maxGroupDepth = 200;

/// Why a statement was given up; thrown inside the parser only.
struct Refusal {
    SqletErrorKind kind;
    TokenIndex token;
    std::string what;
};

/// Reads one statement. Recursive where the language nests, to limited depths; loops along chains,
/// lists and joins. What lies in brackets inside an expression is not read but skipped, whatever
/// its depth.
///
/// Every token that a function takes is either in the span of a node or marked as structure.
class Grammar {
public:
    Grammar(SqletParser& parser, const Dialect& dialect);

    /// Throws Refusal; leaves what was read so far in the parser's select.
    void readStatement();

    TokenIndex position() const { return m_position; }

private:
    enum class AfterOperand : std::uint8_t { Ends, WantsOperand, GoesOn };

    /// Of the statement that is read at the moment. Brackets are counted with those around it, so
    /// that the depth of all nesting is bounded.
    struct StatementState {
        std::uint32_t groupDepth = 0;
        int intervalDepth = 0;
        bool hasFetchWords = false;
    };

    // ---- tokens
    const Token& at(TokenIndex index) const { return m_tokens[index < m_count ? index : m_count]; }
    const Token& here() const { return m_tokens[m_position]; }
    const Token& next() const { return at(m_position + 1); }
    bool is(Keyword word) const { return here().keyword == word; }
    bool is(TokenKind kind) const { return here().kind == kind; }
    bool nextIs(Keyword word) const { return next().keyword == word; }
    bool isSymbol(TokenIndex index, std::string_view symbol) const;
    bool isName(const Token& token) const;
    bool isQueryStart(TokenIndex index) const;
    /// Never behind the End.
    void advance() {
        if (m_position < m_count) ++m_position;
    }
    /// The partner of the bracket here; refuses if it has none.
    TokenIndex partner();
    void skipBrackets() { m_position = partner() + 1; }

    void structure(TokenIndex index) { m_parser.coverage[index] = Coverage::Structure; }
    void structure(TokenSpan span);
    void takeStructure() { structure(m_position++); }
    bool takeIf(Keyword word);
    bool takeIf(TokenKind kind);
    void take(Keyword word, const char* expected);
    void take(TokenKind kind, const char* expected);

    [[noreturn]] void unexpected(const char* expected) const;
    [[noreturn]] void unsupported(TokenIndex token, const std::string& what) const;
    [[noreturn]] void beyondLimit(TokenIndex token, const std::string& what) const;
    /// In upper case.
    std::string wordOf(TokenIndex token) const;

    // ---- expressions: grammar_expression.cpp
    /// Takes an expression; refuses if there is none.
    TokenSpan expression(Reach reach);
    void operand();
    void prefixes();
    void primary();
    void takeStringChain();
    void wordPrimary();
    bool isAtStart() const;
    void nameChain();
    bool isWindow() const;
    void afterCall();
    void afterName();
    bool isIntervalLiteral() const;
    void intervalLiteral();
    void expressionWithUnit();
    bool isFromFirstOrLast() const;
    bool takeTypedLiteral();
    void caseExpression();
    bool isPartOfName() const;
    bool isBehindOperator() const;
    void typeName();
    void unitOf();
    AfterOperand afterOperand(Reach reach);
    AfterOperand afterOperandSymbol(Reach reach);
    TokenIndex endOfOperator() const;
    AfterOperand afterOperandWord(Reach reach);
    bool isIntervalOf(TokenIndex unit) const;
    bool isBinaryWord(TokenIndex index) const;
    AfterOperand comparisonWord();
    void isTest();
    void betweenBounds();
    bool isComparisonWordAt(TokenIndex index) const;

    bool isNameChain(TokenSpan span) const;
    bool isCallOf(TokenSpan span) const;
    ColumnForm columnForm(TokenSpan span) const;

    // ---- conditions: grammar_condition.cpp
    SqletExpr* condition();
    SqletExpr* chain(std::uint32_t parens);
    SqletExpr* term(std::uint32_t parens);
    SqletExpr* negatedTerm(std::uint32_t parens);
    SqletExpr* group(std::uint32_t parens);
    bool isGroup() const;
    SqletExpr* predicate(std::uint32_t parens);
    SqletExpr* comparisonBehind(TokenSpan left, std::uint32_t parens);
    SqletExpr* symbolComparison(TokenSpan left, std::uint32_t parens);
    SqletExpr* nullTest(TokenSpan left, std::uint32_t parens);
    SqletExpr* inComparison(TokenSpan left, std::uint32_t parens);
    SqletExpr* betweenComparison(TokenSpan left, std::uint32_t parens);
    SqletExpr* likeComparison(TokenSpan left, std::uint32_t parens);
    SqletExpr* compare(const char* op, SqletExpr* left, SqletExpr* right, std::uint32_t parens);
    SqletExpr* leaf(TokenSpan span, std::uint32_t parens);
    SqletExpr* bracketContent(TokenIndex open, TokenIndex close, std::uint32_t parens);
    bool isSetOperation(TokenIndex open) const;
    ColumnArray listItems(TokenIndex close);
    SqletExpr* makeExpr(ExprForm form, TokenSpan span, std::uint32_t parens);
    bool endsTerm();

    // ---- sources: grammar_joins.cpp and grammar_from.cpp
    struct JoinOperator {
        const char* text = nullptr;
        TokenSpan words;
        bool isComma = false;
        bool isCross = false;
        bool isNatural = false;
        bool isOuter = false;
        bool takesCondition = false;
        bool wantsCondition = false;  ///< and may not stand without
        bool isEmpty() const { return !text && words.isEmpty(); }
    };
    /// One source of a flat run with the operator in front of it.
    struct JoinStep {
        JoinOperator op;
        SqletTable* side = nullptr;
        SqletExpr* on = nullptr;
        TokenSpan span;  ///< of the side, with its brackets and alias, and of its condition
    };
    SqletTable* sources(std::uint32_t parens);
    JoinOperator joinOperator();
    JoinOperator wordJoin();
    bool isFullJoin() const;
    void joinConditions(std::vector<JoinStep>& steps, std::uint32_t parens);
    JoinStep joinStep(JoinOperator op, std::uint32_t parens);
    std::size_t pendingJoin(const std::vector<JoinStep>& steps) const;
    SqletExpr* usingList();
    SqletTable* foldJoins(const std::vector<JoinStep>& steps, std::size_t first,
                          std::uint32_t parens);
    void completeConditions(std::vector<JoinStep>& steps);
    SqletExpr* alwaysTrue();
    static void dropBracket(SqletTable* table);
    static std::uint32_t addBracket(SqletTable* table);
    SqletTable* source(std::uint32_t parens);
    SqletTable* bracketedSource(std::uint32_t parens);
    SqletTable* derivedTable(std::uint32_t parens);
    SqletTable* plainSource(std::uint32_t parens);
    bool isQueryInBrackets(TokenIndex open) const;
    void sourceHead(SqletTable* table);
    bool takeHeadWords();
    bool takeSourceSuffix();
    bool takePivot();
    bool takeTimeTravel();
    bool isFlashback() const;
    void takeTimeKind();
    SqletTable* pivotOf(TokenIndex first, std::uint32_t parens);
    bool takeSuffixBehindAlias();
    bool isPartitionedSource() const;
    bool takeIndexHints();
    void sourceTail(SqletTable* table);
    bool takeModel();
    bool isBehindModel() const;
    void keepAliasInText(SqletTable* table);
    bool takeSourceAlias(SqletTable* table);
    bool isBareSourceAlias() const;
    void readSubquery(SqletTable* table, TokenIndex open, TokenIndex close);
    SqletTable* makeTable(TableForm form, std::uint32_t parens);

    // ---- statements: grammar_statement.cpp
    void refuseUnlessSelect();
    TokenIndex openStatementBrackets();
    SqletSelect* select();
    void selectOptions(SqletSelect& select);
    void topClause(SqletSelect& select);
    void selectList(SqletSelect& select);
    void filterClauses(SqletSelect& select);
    void groupClause(SqletSelect& select);
    void refuseClause() const;
    using Suffix = void (Grammar::*)(SqletColumn&);
    ColumnArray columns(ColumnRole role, Suffix suffix);
    SqletColumn* column(ColumnRole role);
    TokenSpan columnSpan(ColumnRole role);
    void selectAlias(SqletColumn& column);
    TokenIndex takeAssignedAlias();
    bool isBareColumnAlias() const;
    bool isOffsetClause() const;
    void groupSuffix(SqletColumn& column);
    void orderSuffix(SqletColumn& column);
    bool takeIfUsingOperator();
    void keepInText(SqletColumn& column);
    bool isDefaultNullOrder(bool isDescending, bool isFirst) const;
    void limitClauses(SqletSelect& select);
    bool takeLimitClause(SqletSelect& select);
    void limitWord(SqletSelect& select);
    void fetchWords(SqletSelect& select);
    void offsetRows(SqletSelect& select);
    bool takesLimit(LimitForm form) const { return (m_dialect.limitForms & form) != 0; }
    /// A count of rows; null where it says all of them.
    const char* rowCount();
    const char* rowOffset();
    const char* decimal(TokenIndex number, bool isNegative);
    void settleLimit(SqletSelect& select);
    void dropMadeUpOrder(SqletSelect& select);
    TokenSpan spanFrom(TokenIndex first) const { return {first, m_position - 1}; }

    ColumnArray arrayOf(const std::vector<SqletColumn*>& columns);

    SqletParser& m_parser;
    const Dialect& m_dialect;
    const Token* m_tokens;
    const TokenIndex m_count;
    TokenIndex m_position = 0;
    StatementState m_state;
    int m_queryDepth = 0;
    int m_joinCount = 0;
    const char* m_expectedEnd = "";  ///< what may follow what was read of the statement
};

/// What is wrong with a token of kind Bad.
Refusal badToken(const SqletParser& parser, TokenIndex index);

}  // namespace sqlet
