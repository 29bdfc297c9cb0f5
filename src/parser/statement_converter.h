#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "model/components.h"
#include "model/element_expressions.h"
#include "model/vocabulary.h"
#include "platform/sqlet/sqlet.h"

namespace QB {

/// Makes components of one statement's tree: an object for each statement, since sources and
/// aliases are looked up in what it has made.
///
/// Chains of conditions and left-leaning joins are walked by loops, so their length does not count;
/// brackets and subqueries are as deep as the parser library allows.
class StatementConverter {
public:
    StatementConverter(DatabaseType type, const std::string& defaultSchema);

    /// Fills @p statement, which is empty.
    /// Errors: throws std::runtime_error* "currNode1 not exist unexpectedly" for a chain of
    /// conditions without a first link; @p statement then holds what was made before.
    void convert(SqletSelect* select, Component::SQL::SQLSelectStmtComponent& statement);

private:
    using Source = Component::SQL::SQLAbstractSourceComponent;
    using Column = Component::SQL::SQLAbstractColumnComponent;
    using Condition = Component::SQL::SQLAbstractConditionComponent;
    using NodePtr = std::unique_ptr<Component::SQL::SourceNode>;
    using ColumnPtr = std::unique_ptr<Column>;
    using ConditionPtr = std::unique_ptr<Condition>;
    using Columns = std::vector<Column*>;
    using ColumnAliases = std::map<std::string, Column*>;
    using CountOf = int (*)(SqletSelect*);
    using ColumnAt = SqletColumn* (*)(SqletSelect*, int);
    struct JoinStep;

    // Sources (source_converter.cpp). All of them give null for a null table.
    NodePtr convertTable(SqletTable* table, unsigned depth);
    NodePtr convertUnbracketed(SqletTable* table, unsigned depth, std::vector<JoinStep>& steps);
    NodePtr finishStep(const JoinStep& step, NodePtr left);
    NodePtr convertJoin(SqletTable* table, unsigned depth, NodePtr left);
    NodePtr convertLeaf(SqletTable* table) const;
    NodePtr convertComplexSource(const std::string& text) const;
    std::vector<std::string> pathOf(SqletTable* table) const;
    ConditionPtr convertJoinCondition(SqletExpr* on);
    void noteAlias(SqletTable* table, Source* source);

    // Columns (statement_converter.cpp).
    void convertList(SqletSelect* select, CountOf count, ColumnAt at, bool isOrderBy,
                     Columns& columns);
    ColumnPtr convertColumn(SqletColumn* column, ColumnAliases& aliases) const;
    ColumnPtr convertExpressionColumn(SqletColumn* column) const;
    ColumnPtr convertFieldColumn(SqletColumn* column, const char* name,
                                 const ColumnAliases& aliases) const;
    void convertLimit(SqletSelect* select, ELEMSQLLimitExpr& limit) const;

    // Conditions (condition_converter.cpp). @p tail receives the last link of the chain and may be
    // null.
    ConditionPtr convertCondition(SqletExpr* expr, unsigned depth, Condition** tail);
    ConditionPtr convertChain(SqletExpr* expr, unsigned depth, Condition** tail);
    ConditionPtr convertLink(SqletExpr* expr, unsigned depth);
    ConditionPtr convertComparison(SqletExpr* expr, CompareOp op, unsigned depth);
    ConditionPtr convertNamedValue(SqletExpr* expr, const char* name) const;
    ConditionPtr convertValueList(SqletColumn* first) const;

    Source* findSource(const std::string& name) const;

    const DatabaseType m_type;
    const int m_dialect;
    const std::string& m_defaultSchema;  // not owned: outlives the object
    /// Name or alias of each source; the values belong to the statement.
    std::map<std::string, Source*> m_sources;
    ColumnAliases m_columnAliases;  ///< of the SELECT list; the values belong to the statement
};

}  // namespace QB
