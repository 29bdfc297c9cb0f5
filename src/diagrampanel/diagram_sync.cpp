#include "diagrampanel/diagram_sync.h"

#include <algorithm>
#include <unordered_map>

#include "layouts/source_tree_surgery.h"
#include "model/tree_walks.h"

namespace QB {

DiagramParts diagramPartsOf(const Component::SQL::SourceNode* root) {
    DiagramParts items;
    DiagramParts joins;
    Tools::visitSourceNodes(root, [&](const Component::SQL::SourceNode* node) {
        auto* const component = node->value;
        if (SourceTree::isLeaf(component)) items.push_back({component, component->id(), false});
        if (SourceTree::isJoin(component) && !SourceTree::isComma(component))
            joins.push_back({component, component->id(), true});
    });
    items.insert(items.end(), joins.begin(), joins.end());
    return items;
}

DiagramDifference diagramDifference(const DiagramParts& drawn, const DiagramParts& wanted) {
    std::unordered_map<long, const DiagramPart*> gone;
    for (const DiagramPart& part : drawn)
        gone.emplace(part.id, &part);
    DiagramDifference difference;
    for (const DiagramPart& part : wanted) {
        const auto same = gone.find(part.id);
        if (same == gone.end() || same->second->isJoin != part.isJoin) {
            difference.added.push_back(part);
            continue;
        }
        if (same->second->component != part.component)
            difference.rebound.push_back({same->second->component, part.component});
        difference.updated.push_back(part);
        gone.erase(same);
    }
    std::copy_if(drawn.begin(), drawn.end(), std::back_inserter(difference.removed),
                 [&gone](const DiagramPart& part) { return gone.count(part.id) > 0; });
    return difference;
}

}  // namespace QB
