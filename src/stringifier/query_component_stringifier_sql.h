#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/components.h"
#include "model/element_expressions.h"
#include "stringifier/query_component_stringifier.h"

namespace QB {

/// The text of a SELECT statement, the same in all dialects but for the row limit and the few
/// questions at the end of the class.
///
/// Every operation returns one level of text at the indentation @p level and defers what the
/// component holds (see StringifiedNode); only stringifyComponent gives a node its component, so
/// what is written without passing through it has no range.
class QBQueryComponentStringifier_SQL : public QBQueryComponentStringifier {
public:
    StringifiedNode stringifyComponent(const Component::AbstractQueryComponent* component,
                                       int level, const SourceChildCallback& sourceChild) override;
    ~QBQueryComponentStringifier_SQL() override;

protected:
    explicit QBQueryComponentStringifier_SQL(QBDatabaseInfo info);

    virtual StringifiedNode stringifyComponent_SQLSelectStmtComponent(
        const Component::SQL::SQLSelectStmtComponent* statement, int level);

    // The clauses. An element enumeration that is not the clause's writes no keyword, and a line
    // to stderr.
    virtual StringifiedNode stringifyExpr_ELEMSQLSelectColumnExpr(
        const ELEMSQLSelectColumnExpr* element, int level, TopLevelQueryComponentElementEnum which);
    virtual StringifiedNode stringifyExpr_ELEMSQLSourceExpr(
        const ELEMSQLSourceExpr* element, int level, TopLevelQueryComponentElementEnum which);
    virtual StringifiedNode stringifyExpr_ELEMSQLConditionExpr(
        const ELEMSQLConditionExpr* element, int level, TopLevelQueryComponentElementEnum which);
    virtual StringifiedNode stringifyExpr_ELEMSQLColumnExpr(
        const ELEMSQLColumnExpr* element, int level, TopLevelQueryComponentElementEnum which);
    virtual StringifiedNode stringifyExpr_ELEMSQLLimitExpr(
        const Component::SQL::SQLSelectStmtComponent* statement, const ELEMSQLLimitExpr* element,
        int level, TopLevelQueryComponentElementEnum which) = 0;

    virtual StringifiedNode stringifyComponent_SQLFieldColumnComponent(
        const Component::SQL::SQLFieldColumnComponent* column, int level);
    virtual StringifiedNode stringifyComponent_SQLAnyExpressionColumnComponent(
        const Component::SQL::SQLAnyExpressionColumnComponent* column, int level);

    virtual StringifiedNode stringifyComponent_SQLIdentifierSourceComponent(
        const Component::SQL::SQLIdentifierSourceComponent* source, int level);
    virtual StringifiedNode stringifyComponent_SQLJoinSourceNodeComponent(
        const Component::SQL::SQLJoinSourceNodeComponent* join, int level,
        const SourceChildCallback& sourceChild);
    virtual StringifiedNode stringifyComponent_SQLSubquerySourceComponent(
        const Component::SQL::SQLSubquerySourceComponent* source, int level);
    virtual StringifiedNode stringifyComponent_SQLBracketedSourceNodeComponent(
        const Component::SQL::SQLBracketedSourceNodeComponent* source, int level,
        const SourceChildCallback& sourceChild);
    virtual StringifiedNode stringifyComponent_SQLAnyExpressionSourceComponent(
        const Component::SQL::SQLAnyExpressionSourceComponent* source, int level);

    /// The logic word of the link behind @p condition and that link; empty at the end of a chain.
    virtual StringifiedNode stringifyNextCondition(
        const Component::SQL::SQLAbstractConditionComponent* condition, int level);
    virtual StringifiedNode stringifyComponent_SQLCompareConditionComponent(
        const Component::SQL::SQLCompareConditionComponent* condition, int level);
    virtual StringifiedNode stringifyComponent_SQLBracketedConditionComponent(
        const Component::SQL::SQLBracketedConditionComponent* condition, int level);
    /// @p listMode as conditionValueListModeKey says; -1: what that parameter says.
    virtual StringifiedNode stringifyComponent_SQLConditionValueComponent(
        const Component::SQL::SQLConditionValueComponent* value, int level, int listMode);

    // Questions to the dialect.

    /// What stands between a source and its alias.
    virtual std::string_view sourceAliasSeparator() const;
    /// True if a table's only qualifier is written even where it is the current schema.
    virtual bool keepsTableSchema() const;
    /// True if @p nested, the right side of another join, needs no brackets.
    virtual bool readsNestedJoin(const Component::SQL::SQLJoinSourceNodeComponent* nested) const;

    void resetRun() override;

private:
    /// Writes @p component into @p node, marked as its text, if a class that Test knows it by has
    /// a text; else false.
    template <typename Test>
    bool dispatch(const Component::AbstractQueryComponent* component, int level,
                  const SourceChildCallback& sourceChild, StringifiedNode& node);
    template <auto clauseOperation, auto element, TopLevelQueryComponentElementEnum which>
    static StringifiedNode clauseOf(QBQueryComponentStringifier& stringifier, const void* statement,
                                    int level);
    static QBQueryComponentStringifier_SQL& sql(QBQueryComponentStringifier& stringifier);

    static void appendDeferred(StringifiedNode& node,
                               const Component::AbstractQueryComponent* component, int level);
    StringifiedNode deferredSources(const Component::SQL::SourceNode* node, int level);
    StringifiedNode walkSources(const Component::SQL::SourceNode* node, int level);
    bool needsBrackets(const Component::SQL::SourceNode* node) const;
    StringifiedNode inBrackets(StringifiedNode content, int level);
    template <auto operation>
    static StringifiedNode joinPart(QBQueryComponentStringifier& stringifier, const void* join,
                                    int level);
    /// What stands between the sides; then what follows the right one.
    StringifiedNode joinOperator(const Component::SQL::SQLJoinSourceNodeComponent* join, int level);
    StringifiedNode joinCondition(const Component::SQL::SQLJoinSourceNodeComponent* join,
                                  int level);
    void appendColumnList(StringifiedNode& node,
                          const std::vector<Component::SQL::SQLAbstractColumnComponent*>& columns,
                          int level, bool withDirection);
    void appendColumnAlias(StringifiedNode& node, const std::string& alias) const;
    void appendSourceAlias(StringifiedNode& node, const std::string& alias) const;
    /// The value without what is chained to it.
    StringifiedNode valueItems(const Component::SQL::SQLConditionValueComponent* value, int level,
                               int listMode);
    StringifiedNode betweenChain(const Component::SQL::SQLConditionValueComponent* value,
                                 int level);
    StringifiedNode upperBound(const Component::SQL::SQLAbstractConditionComponent* bound,
                               int level);
    StringifiedNode rightOperand(const Component::SQL::SQLAbstractConditionComponent* operand,
                                 int level, int listMode);
    /// What stands before every condition.
    StringifiedNode startOf(const Component::SQL::SQLAbstractConditionComponent* condition);

    void appendField(StringifiedNode& node,
                     const Component::SQL::SQLFieldColumnComponent* column) const;
    void appendQualifiers(StringifiedNode& node,
                          const Component::SQL::SQLFieldColumnComponent* column) const;
    /// @p alias where it refers to what bears it: bare if the server reads the bare word so.
    void appendAliasReference(StringifiedNode& node, const std::string& alias) const;
    bool mayDropSchema(const std::string& schema) const;
    int listModeParameter() const;

    /// One entry for each statement that is open in the text: true if it reads from more than one
    /// schema, so that no qualifier may be left out. Empty while a single component is written.
    std::vector<bool> m_multipleSchemaStack;
};

}  // namespace QB
