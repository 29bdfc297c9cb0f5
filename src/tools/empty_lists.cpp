#include "tools/empty_lists.h"

#include <memory>
#include <string>
#include <utility>

#include "model/detached_parts.h"
#include "model/tree_walks.h"

namespace QB::Tools::SQL {

using namespace Component;
using namespace Component::SQL;

namespace {

using Columns = std::vector<SQLAbstractColumnComponent*>;

std::vector<Columns*> listsOf(const QBEngine* engine) {
    std::vector<Columns*> found;
    std::vector<AbstractTopLevelQueryComponent*> waiting = {engine->topLevelQueryComponent(0)};
    while (!waiting.empty()) {
        const auto* statement = dynamic_cast<const SQLSelectStmtComponent*>(waiting.back());
        waiting.pop_back();
        if (!statement) continue;
        found.push_back(&statement->selectColumnExpr->columns);
        visitSourceNodes(statement->sourceExpr->root, [&waiting](const SourceNode* node) {
            const auto* derived = dynamic_cast<const SQLSubquerySourceComponent*>(node->value);
            if (derived) waiting.push_back(derived->subquery);
        });
    }
    return found;
}

bool mayHaveBeen(const std::vector<Columns*>& lists, const std::vector<int>& sizes) {
    bool isFitting = lists.size() == sizes.size();
    for (std::size_t i = 0; isFitting && i < lists.size(); ++i) {
        const int present = static_cast<int>(lists[i]->size());
        isFitting = present == sizes[i] || (present == 1 && sizes[i] == 0);
    }
    return isFitting;
}

/// What stood in the lists that became empty; elsewhere nothing.
std::vector<Columns> takeOut(const std::vector<Columns*>& lists, const std::vector<int>& sizes) {
    std::vector<Columns> taken(lists.size());
    for (std::size_t i = 0; i < lists.size(); ++i)
        if (sizes[i] == 0) taken[i].swap(*lists[i]);
    return taken;
}

void putBack(const std::vector<Columns*>& lists, std::vector<Columns>& taken) {
    for (std::size_t i = 0; i < lists.size(); ++i)
        if (!taken[i].empty()) lists[i]->swap(taken[i]);
}

/// True if a list was changed.
bool retire(QBEngine* engine, const std::vector<Columns>& taken) {
    DetachedParts parts;
    for (const Columns& columns : taken)
        for (SQLAbstractColumnComponent* column : columns)
            parts.add(std::unique_ptr<AbstractQueryComponent>(column));
    const bool hasChanged = !parts.isEmpty();
    engine->retire(std::move(parts));
    return hasChanged;
}

}  // namespace

std::vector<int> selectListSizes(const QBEngine* engine) {
    std::vector<int> sizes;
    for (const Columns* list : listsOf(engine))
        sizes.push_back(static_cast<int>(list->size()));
    return sizes;
}

void emptySelectLists(QBEngine* engine, const std::vector<int>& sizes, void* sender) {
    bool hasChanged = false;
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLSelectColumnExpr*>(
        ElementSelectColumn, 0,
        [&](ELEMSQLSelectColumnExpr*) {
            const std::vector<Columns*> lists = listsOf(engine);
            if (!mayHaveBeen(lists, sizes)) return false;
            const std::string text = engine->buildQuery();
            std::vector<Columns> taken = takeOut(lists, sizes);
            if (engine->buildQuery() == text) return hasChanged = retire(engine, taken);
            putBack(lists, taken);
            return false;
        },
        sender);
    if (hasChanged) engine->modify_notify(ElementSource, 0, sender);
}

}  // namespace QB::Tools::SQL
