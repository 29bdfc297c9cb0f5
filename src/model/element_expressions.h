#pragma once

#include <string>
#include <vector>

#include "model/components.h"
#include "model/export.h"

namespace QB {

/// The content of one clause of a statement: the unit that is locked, changed and announced.
/// Lives as long as its statement, except that a parse replaces all seven.
class QB_EXPORT ELEMAbstractTopLevelQueryExpr {
public:
    ELEMAbstractTopLevelQueryExpr() = default;
    virtual ~ELEMAbstractTopLevelQueryExpr();
    ELEMAbstractTopLevelQueryExpr(const ELEMAbstractTopLevelQueryExpr&) = delete;
    ELEMAbstractTopLevelQueryExpr& operator=(const ELEMAbstractTopLevelQueryExpr&) = delete;
};

/// The SELECT list and its option. Destroys its columns.
class QB_EXPORT ELEMSQLSelectColumnExpr : public ELEMAbstractTopLevelQueryExpr {
public:
    ~ELEMSQLSelectColumnExpr() override;

    std::string selectOption;  ///< what follows SELECT, such as "DISTINCT"; empty if nothing
    std::vector<Component::SQL::SQLAbstractColumnComponent*> columns;  // each owned
};

/// FROM. Destroys the tree with its owned values.
class QB_EXPORT ELEMSQLSourceExpr : public ELEMAbstractTopLevelQueryExpr {
public:
    ~ELEMSQLSourceExpr() override;

    Component::SQL::SourceNode* root = nullptr;  // owned; null: no FROM clause
};

/// WHERE or HAVING. Does not destroy its chain: who removes a whole chain destroys it.
class QB_EXPORT ELEMSQLConditionExpr : public ELEMAbstractTopLevelQueryExpr {
public:
    ~ELEMSQLConditionExpr() override;

    Component::SQL::SQLAbstractConditionComponent* root = nullptr;  // see the class
};

/// GROUP BY or ORDER BY. Does not destroy its columns: who removes a whole list destroys it.
class QB_EXPORT ELEMSQLColumnExpr : public ELEMAbstractTopLevelQueryExpr {
public:
    ~ELEMSQLColumnExpr() override;

    std::vector<Component::SQL::SQLAbstractColumnComponent*> columns;  // see the class
};

/// The row limit.
class QB_EXPORT ELEMSQLLimitExpr : public ELEMAbstractTopLevelQueryExpr {
public:
    ~ELEMSQLLimitExpr() override;

    std::int32_t offset = -1;           ///< rows; -1 = none, 0 counts as set
    std::int32_t rowCount = -1;         ///< rows; -1 = none, 0 counts as set
    bool isPercent = false;             ///< rowCount is a percentage (FETCH clause)
    std::string returnOption = "ONLY";  ///< "ONLY" or "WITH TIES" (FETCH clause)
};

}  // namespace QB
