#include "tools/join_edits.h"

#include <memory>
#include <utility>

namespace QB::Tools::SQL {

using namespace Component::SQL;
using QBComponentsListLayout_Private::PlaceKind;

DetachedParts takeConditions(ConditionChain::Slot head,
                             const std::set<const SQLAbstractConditionComponent*>& doomed) {
    DetachedParts taken;
    // Last ones first: what stands before keeps its slot.
    const std::vector<ConditionChain::Place> places = ConditionChain::flatten(head);
    for (std::size_t i = places.size(); i-- > 0;) {
        const ConditionChain::Place& place = places[i];
        if (place.kind == PlaceKind::Empty || place.kind == PlaceKind::Close) continue;
        const auto* bracket = ConditionChain::asBracket(place.component);
        const bool isEmptied = bracket && !bracket->inner && places[i + 1].kind != PlaceKind::Empty;
        if (isEmptied || doomed.count(place.component) > 0) {
            taken.add(ConditionChain::takeLink(place.slot));
        }
    }
    return taken;
}

DetachedParts unbind(SQLJoinSourceNodeComponent* join) {
    DetachedParts taken;
    join->joinType = SQLJoinTypeComma;
    join->joinText.clear();
    join->isUsing = false;
    if (join->condition) {
        taken.add(std::unique_ptr<SQLAbstractConditionComponent>(
            std::exchange(join->condition, nullptr)));
    }
    return taken;
}

}  // namespace QB::Tools::SQL
