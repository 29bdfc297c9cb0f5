#include "layouts/condition_chain_surgery.h"

#include <utility>

#include "model/kind_of.h"

namespace QB::ConditionChain {

using QBComponentsListLayout_Private::PlaceKind;

SQLBracketedConditionComponent* asBracket(Component::AbstractQueryComponent* component) {
    return ifKind<SQLBracketedConditionComponent>(component);
}

std::vector<Place> flatten(Slot head) {
    std::vector<Place> places;
    std::vector<SQLBracketedConditionComponent*> open;
    const auto add = [&](PlaceKind kind, Slot slot, SQLAbstractConditionComponent* component) {
        places.push_back({kind, slot, component, static_cast<int>(open.size())});
    };
    if (!*head) add(PlaceKind::Empty, head, nullptr);
    for (Slot slot = head; *slot || !open.empty();) {
        if (!*slot) {
            SQLBracketedConditionComponent* bracket = open.back();
            open.pop_back();
            add(PlaceKind::Close, slot, bracket);
            slot = &bracket->next;
        } else if (auto* bracket = asBracket(*slot)) {
            add(PlaceKind::Open, slot, bracket);
            open.push_back(bracket);
            slot = &bracket->inner;
            if (!*slot) add(PlaceKind::Empty, slot, nullptr);
        } else {
            add(PlaceKind::Node, slot, *slot);
            slot = &(*slot)->next;
        }
    }
    return places;
}

Link takeLink(Slot slot) {
    Link link(*slot);
    *slot = std::exchange(link->next, nullptr);
    return link;
}

void insertLink(Slot slot, Link link) {
    link->next = *slot;
    *slot = link.release();
}

void insertAndBindLink(Slot head, Slot slot, Link link) {
    insertLink(slot, std::move(link));
    const SQLLogicGate spare = (*head)->logicGate;
    const auto bind = [spare](SQLAbstractConditionComponent* behind) {
        if (!behind || behind->logicGate != SQLLogicGateNone) return;
        behind->logicGate = spare == SQLLogicGateNone ? SQLLogicGateAnd : spare;
    };
    if (slot != head) bind(*slot);
    bind((*slot)->next);
}

Link takeBracketAway(Slot slot) {
    SQLBracketedConditionComponent* bracket = asBracket(*slot);
    SQLAbstractConditionComponent* first = std::exchange(bracket->inner, nullptr);
    first->logicGate = bracket->logicGate;
    first->negated = first->negated != bracket->negated;
    Slot end = &first->next;
    while (*end)
        end = &(*end)->next;
    *end = std::exchange(bracket->next, nullptr);
    *slot = first;
    return Link(bracket);
}

}  // namespace QB::ConditionChain
