#include "rows/row_database.h"

#include "model/kind_of.h"
#include "model/tree_walks.h"

namespace QB {

std::string schemaLeftOut(const Component::AbstractTopLevelQueryComponent* statement,
                          const std::string& currentSchema) {
    const auto* select = ifKind<Component::SQL::SQLSelectStmtComponent>(statement);
    if (!select || Tools::checkMultipleSchemaInvolved(select->sourceExpr)) return {};
    return currentSchema;
}

}  // namespace QB
