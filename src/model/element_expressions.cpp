#include "model/element_expressions.h"

namespace QB {

ELEMAbstractTopLevelQueryExpr::~ELEMAbstractTopLevelQueryExpr() = default;

ELEMSQLSelectColumnExpr::~ELEMSQLSelectColumnExpr() {
    for (auto* column : columns)
        delete column;
}

ELEMSQLSourceExpr::~ELEMSQLSourceExpr() {
    delete root;
}
ELEMSQLConditionExpr::~ELEMSQLConditionExpr() = default;
ELEMSQLColumnExpr::~ELEMSQLColumnExpr() = default;
ELEMSQLLimitExpr::~ELEMSQLLimitExpr() = default;

}  // namespace QB
