// Holds the classes of the model against the fields that a record keeps of them. A class that has
// another size than its fields here has got a field that is not recorded: undo would lose it. Add
// it to StatementExchange in statement_record.cpp, to tests/model/statement_record_test.cpp, then
// here. (What fits into the padding of a class does not show by its size.)

#include "model/components.h"
#include "model/element_expressions.h"

namespace QB::Component::SQL {
namespace {

using Source = SQLAbstractSourceComponent;
using Column = SQLAbstractColumnComponent;
using Condition = SQLAbstractConditionComponent;
using ExtraData = Column::ExtraDataBase;
using Texts = std::vector<std::string>;
using Columns = std::vector<Column*>;

template <typename Class, typename Fields>
constexpr bool isAllRecorded = sizeof(Class) == sizeof(Fields);

struct Polymorphic {
    virtual ~Polymorphic() = default;
};
struct ComponentFields : Polymorphic {
    long id;
};
static_assert(isAllRecorded<AbstractQueryComponent, ComponentFields>);

// ---- sources

struct SourceFields : AbstractQueryComponent {
    std::string alias;
};
static_assert(isAllRecorded<Source, SourceFields>);
struct TableFields : Source {
    Texts path;
    std::string name;
};
static_assert(isAllRecorded<SQLIdentifierSourceComponent, TableFields>);
struct ExpressionFields : Source {
    std::string expression;
};
static_assert(isAllRecorded<SQLAnyExpressionSourceComponent, ExpressionFields>);
struct SubqueryFields : Source {
    AbstractTopLevelQueryComponent* subquery;
};
static_assert(isAllRecorded<SQLSubquerySourceComponent, SubqueryFields>);
struct SourceBracketFields : Source {};
static_assert(isAllRecorded<SQLBracketedSourceNodeComponent, SourceBracketFields>);
struct JoinFields : Source {
    SQLJoinType joinType;
    std::string joinText;
    Condition* condition;
    bool isUsing;
};
static_assert(isAllRecorded<SQLJoinSourceNodeComponent, JoinFields>);

// ---- columns

struct ExtraDataFields : Polymorphic {};
static_assert(isAllRecorded<ExtraData, ExtraDataFields>);
struct DirectionFields : ExtraData {
    OrderDirection direction;
};
static_assert(isAllRecorded<Column::ExtraDataOrderDirection, DirectionFields>);
struct ColumnFields : AbstractQueryComponent {
    std::string alias;
    ExtraData* extraData;
};
static_assert(isAllRecorded<Column, ColumnFields>);
struct FieldColumnFields : Column {
    Source* source;
    Texts parentPath;
    Column* referencedColumn;
    bool isAsterisk;
    std::string fieldName;
    std::string aggregateFunction;
};
static_assert(isAllRecorded<SQLFieldColumnComponent, FieldColumnFields>);
struct ExpressionColumnFields : Column {
    std::string expression;
};
static_assert(isAllRecorded<SQLAnyExpressionColumnComponent, ExpressionColumnFields>);

// ---- conditions

struct ConditionFields : AbstractQueryComponent {
    SQLLogicGate logicGate;
    bool negated;
    Condition* next;
};
static_assert(isAllRecorded<Condition, ConditionFields>);
struct ValueFields : Condition {
    Columns values;
};
static_assert(isAllRecorded<SQLConditionValueComponent, ValueFields>);
struct CompareFields : Condition {
    Condition* leftValue;
    Condition* rightValue;
    CompareOp compareOp;
};
static_assert(isAllRecorded<SQLCompareConditionComponent, CompareFields>);
struct ConditionBracketFields : Condition {
    Condition* inner;
};
static_assert(isAllRecorded<SQLBracketedConditionComponent, ConditionBracketFields>);

// ---- the statement and its elements

struct StatementFields : AbstractTopLevelQueryComponent {
    ELEMAbstractTopLevelQueryExpr* elements[7];
};
static_assert(isAllRecorded<SQLSelectStmtComponent, StatementFields>);
struct SelectFields : ELEMAbstractTopLevelQueryExpr {
    std::string selectOption;
    Columns columns;
};
static_assert(isAllRecorded<ELEMSQLSelectColumnExpr, SelectFields>);
struct FromFields : ELEMAbstractTopLevelQueryExpr {
    SourceNode* root;
};
static_assert(isAllRecorded<ELEMSQLSourceExpr, FromFields>);
struct ConditionClauseFields : ELEMAbstractTopLevelQueryExpr {
    Condition* root;
};
static_assert(isAllRecorded<ELEMSQLConditionExpr, ConditionClauseFields>);
struct ColumnClauseFields : ELEMAbstractTopLevelQueryExpr {
    Columns columns;
};
static_assert(isAllRecorded<ELEMSQLColumnExpr, ColumnClauseFields>);
struct LimitFields : ELEMAbstractTopLevelQueryExpr {
    std::int32_t offset;
    std::int32_t rowCount;
    bool isPercent;
    std::string returnOption;
};
static_assert(isAllRecorded<ELEMSQLLimitExpr, LimitFields>);

}  // namespace
}  // namespace QB::Component::SQL
