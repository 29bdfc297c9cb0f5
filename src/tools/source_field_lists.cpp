#include "tools/source_field_lists.h"

#include "model/element_expressions.h"
#include "model/tree_walks.h"

namespace QB::Tools {

using namespace Component;
using namespace Component::SQL;

std::map<AbstractTopLevelQueryComponent*, std::vector<std::string>> collectSourceFieldLists(
    AbstractTopLevelQueryComponent* statement, const std::vector<std::string>& path) {
    std::map<AbstractTopLevelQueryComponent*, std::vector<std::string>> paths;
    if (!statement) return paths;
    paths.emplace(statement, path);
    std::vector<AbstractTopLevelQueryComponent*> pending = {statement};
    while (!pending.empty()) {
        const auto* select = dynamic_cast<SQLSelectStmtComponent*>(pending.back());
        std::vector<std::string> inner = paths[pending.back()];
        pending.pop_back();
        if (!select) continue;
        visitSourceNodes(select->sourceExpr->root, [&](const SourceNode* node) {
            const auto* derived = dynamic_cast<const SQLSubquerySourceComponent*>(node->value);
            if (!derived || derived->alias.empty() || !derived->subquery) return;
            inner.push_back(derived->alias);
            paths.emplace(derived->subquery, inner);
            inner.pop_back();
            pending.push_back(derived->subquery);
        });
    }
    return paths;
}

}  // namespace QB::Tools
