#include "apps/joinery-sql/statement_shape.h"

#include <algorithm>
#include <vector>

#include "model/element_expressions.h"
#include "model/tree_walks.h"

namespace QB::Cli {

using namespace Component::SQL;

namespace {

bool isFreeText(const SQLAbstractConditionComponent* link) {
    const auto* const value = dynamic_cast<const SQLConditionValueComponent*>(link);
    return value && std::any_of(value->values.begin(), value->values.end(), [](const auto* item) {
               return dynamic_cast<const SQLAnyExpressionColumnComponent*>(item) != nullptr;
           });
}

}  // namespace

bool hasOnlyComponentsInFrom(const SQLSelectStmtComponent* statement) {
    bool only = true;
    Tools::visitSourceNodes(statement->sourceExpr->root, [&only](const SourceNode* node) {
        only = only && !dynamic_cast<const SQLAnyExpressionSourceComponent*>(node->value);
    });
    return only;
}

bool hasOnlyComponentsInWhere(const SQLSelectStmtComponent* statement) {
    std::vector<const SQLAbstractConditionComponent*> chains{statement->whereExpr->root};
    while (!chains.empty()) {
        const SQLAbstractConditionComponent* link = chains.back();
        chains.pop_back();
        for (; link; link = link->next) {
            if (isFreeText(link)) return false;
            if (const auto* group = dynamic_cast<const SQLBracketedConditionComponent*>(link))
                chains.push_back(group->inner);
        }
    }
    return true;
}

}  // namespace QB::Cli
