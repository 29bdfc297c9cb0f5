#pragma once

#include <memory>
#include <string>
#include <vector>

#include "model/binary_tree_node.h"
#include "model/export.h"
#include "model/vocabulary.h"

namespace QB {
class ELEMAbstractTopLevelQueryExpr;
class ELEMSQLSelectColumnExpr;
class ELEMSQLSourceExpr;
class ELEMSQLConditionExpr;
class ELEMSQLColumnExpr;
class ELEMSQLLimitExpr;
}  // namespace QB

/// The parsed form of one SELECT statement: plain objects in a tree, all heap-allocated.
///
/// Kinds are told apart by dynamic_cast. A component is never copied; two are the same only if
/// they are the same object. Fields are public; the live model is changed only inside a
/// modification block of the engine.
/// Thread: no locks here. Reading or writing a live model needs the engine's
/// queryComponentAccessMutex or the main thread.
namespace QB::Component {

class QB_EXPORT AbstractQueryComponent {
public:
    AbstractQueryComponent();
    virtual ~AbstractQueryComponent();
    AbstractQueryComponent(const AbstractQueryComponent&) = delete;
    AbstractQueryComponent& operator=(const AbstractQueryComponent&) = delete;

    /// The component's identity across threads: unique in the process, never given to another one.
    /// What an undo restores is the same component to all who know it by its id, though it is
    /// another object; see model/statement_record.h.
    long id() const { return m_id; }

private:
    friend class RecordedIdentity;
    long m_id;  // set for good before anybody else knows of the component
};

/// A whole statement.
class QB_EXPORT AbstractTopLevelQueryComponent : public AbstractQueryComponent {
public:
    ~AbstractTopLevelQueryComponent() override;

    /// The content of one clause; never null.
    virtual ELEMAbstractTopLevelQueryExpr* element(TopLevelQueryComponentElementEnum which) = 0;
};

}  // namespace QB::Component

namespace QB::Component::SQL {

class QB_EXPORT SQLSelectStmtComponent : public AbstractTopLevelQueryComponent {
public:
    /// Creates all seven elements, empty.
    SQLSelectStmtComponent();
    /// Destroys the elements; what each element destroys with it is said at its class.
    ~SQLSelectStmtComponent() override;

    /// Errors: throws std::runtime_error "Unexpected TopLevelQueryComponentElement" for a value
    /// outside 0 to 6.
    ELEMAbstractTopLevelQueryExpr* element(TopLevelQueryComponentElementEnum which) override;

    ELEMSQLSelectColumnExpr* selectColumnExpr;  // owned, never null
    ELEMSQLSourceExpr* sourceExpr;              // owned, never null
    ELEMSQLConditionExpr* whereExpr;            // owned, never null
    ELEMSQLColumnExpr* groupByExpr;             // owned, never null
    ELEMSQLConditionExpr* havingExpr;           // owned, never null
    ELEMSQLColumnExpr* orderByExpr;             // owned, never null
    ELEMSQLLimitExpr* limitExpr;                // owned, never null
};

// ---- sources: the values of the join tree ---------------------------------------------------

/// One entry of the FROM clause.
class QB_EXPORT SQLAbstractSourceComponent : public AbstractQueryComponent {
public:
    ~SQLAbstractSourceComponent() override;

    std::string alias;  ///< empty if none; without use on a join
};

/// Node of a join tree. A leaf holds an identifier, expression or subquery source; a join node
/// always has both children, an identifier source with an empty name filling a side that could not
/// be read; a bracket node has its content at the left. A run of joins leans to the left.
using SourceNode = QBBinaryTreeNode<SQLAbstractSourceComponent*>;

/// A named table, view or query.
class QB_EXPORT SQLIdentifierSourceComponent : public SQLAbstractSourceComponent {
public:
    ~SQLIdentifierSourceComponent() override;

    std::vector<std::string> path;  ///< qualifiers, outermost first; the last one is the schema
    std::string name;               ///< empty: a placeholder for a side that could not be read
};

/// A source kept as free text.
class QB_EXPORT SQLAnyExpressionSourceComponent : public SQLAbstractSourceComponent {
public:
    ~SQLAnyExpressionSourceComponent() override;

    std::string expression;
};

/// A derived table.
class QB_EXPORT SQLSubquerySourceComponent : public SQLAbstractSourceComponent {
public:
    ~SQLSubquerySourceComponent() override;

    AbstractTopLevelQueryComponent* subquery = nullptr;  // owned, set by who makes the source
};

/// The brackets around the left child of its node.
class QB_EXPORT SQLBracketedSourceNodeComponent : public SQLAbstractSourceComponent {
public:
    ~SQLBracketedSourceNodeComponent() override;
};

class SQLAbstractConditionComponent;

/// A join of the two children of its node.
class QB_EXPORT SQLJoinSourceNodeComponent : public SQLAbstractSourceComponent {
public:
    ~SQLJoinSourceNodeComponent() override;

    bool hasCondition() const { return condition != nullptr; }
    bool needsCondition() const {
        return joinType != SQLJoinTypeComma && joinType != SQLJoinTypeCross;
    }

    SQLJoinType joinType = SQLJoinTypeCustom;
    std::string joinText;  ///< the operator as it was read; what a custom join writes
    SQLAbstractConditionComponent* condition = nullptr;  // owned; ON, or the column list of USING
    bool isUsing = false;                                ///< the condition is a USING list
};

// ---- columns --------------------------------------------------------------------------------

/// One column of a SELECT, GROUP BY or ORDER BY list, or one value in a condition.
class QB_EXPORT SQLAbstractColumnComponent : public AbstractQueryComponent {
public:
    /// What the list that holds the column adds to it.
    class QB_EXPORT ExtraDataBase {
    public:
        ExtraDataBase() = default;
        virtual ~ExtraDataBase();
        ExtraDataBase(const ExtraDataBase&) = delete;
        ExtraDataBase& operator=(const ExtraDataBase&) = delete;
    };

    /// Carried by every column of GROUP BY (with no direction) and of ORDER BY.
    class QB_EXPORT ExtraDataOrderDirection : public ExtraDataBase {
    public:
        ~ExtraDataOrderDirection() override;

        OrderDirection direction = OrderDirectionNone;
    };

    ~SQLAbstractColumnComponent() override;

    std::string alias;                   ///< empty if none
    ExtraDataBase* extraData = nullptr;  // owned
};

/// A column that names a field.
class QB_EXPORT SQLFieldColumnComponent : public SQLAbstractColumnComponent {
public:
    ~SQLFieldColumnComponent() override;

    /// The source of this statement that the field belongs to.
    SQLAbstractSourceComponent* source =
        nullptr;                          // not owned: whoever removes the source clears it
    std::vector<std::string> parentPath;  ///< qualifiers as written, or path + name
    /// Set where the field's name is the alias of a column in the SELECT list.
    SQLAbstractColumnComponent* referencedColumn = nullptr;  // not owned: as source
    bool isAsterisk = false;                                 ///< fieldName is then empty
    std::string fieldName;
    std::string aggregateFunction;  ///< as written, for instance "COUNT"; empty if none
};

/// A column kept as free text.
class QB_EXPORT SQLAnyExpressionColumnComponent : public SQLAbstractColumnComponent {
public:
    ~SQLAnyExpressionColumnComponent() override;

    std::string expression;
};

// ---- conditions -----------------------------------------------------------------------------

/// One link of a chain of conditions. A chain is linear, in text order; there is no precedence in
/// the model, brackets are links of their own. Destroying a link destroys the rest of its chain,
/// by a loop.
class QB_EXPORT SQLAbstractConditionComponent : public AbstractQueryComponent {
public:
    ~SQLAbstractConditionComponent() override;

    SQLLogicGate logicGate = SQLLogicGateNone;      ///< without meaning on the first link
    bool negated = false;                           ///< "NOT " stands before the link
    SQLAbstractConditionComponent* next = nullptr;  // owned
};

/// A value or list of values: an operand, or a whole condition kept as free text.
class QB_EXPORT SQLConditionValueComponent : public SQLAbstractConditionComponent {
public:
    ~SQLConditionValueComponent() override;

    /// Null if the list is empty.
    SQLAbstractColumnComponent* firstValue() const;
    /// The first slot; appends a null slot to an empty list.
    SQLAbstractColumnComponent*& firstValueRef();

    std::vector<SQLAbstractColumnComponent*> values;  // each owned; several are the IN list
};

class QB_EXPORT SQLCompareConditionComponent : public SQLAbstractConditionComponent {
public:
    ~SQLCompareConditionComponent() override;

    SQLAbstractConditionComponent* leftValue = nullptr;   // owned
    SQLAbstractConditionComponent* rightValue = nullptr;  // owned; BETWEEN: two values, or a chain
    CompareOp compareOp = CompareOpEqual;
};

/// A parenthesised group.
class QB_EXPORT SQLBracketedConditionComponent : public SQLAbstractConditionComponent {
public:
    ~SQLBracketedConditionComponent() override;

    SQLAbstractConditionComponent* inner = nullptr;  // owned; first link of the chain inside
};

}  // namespace QB::Component::SQL
