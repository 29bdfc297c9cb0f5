#include "canvas/base/context.h"

namespace QB::DiagramLumo {

namespace {

/// Calls a copy: the function may replace its own slot.
template <typename Slot, typename... Args>
void fire(const Slot& slot, Args&&... args) {
    if (!slot) return;
    const Slot called = slot;
    called(std::forward<Args>(args)...);
}

}  // namespace

void QBLumoContext::setItemsWillBeDeleted(ItemsSlot slot) {
    m_itemsWillBeDeleted = std::move(slot);
}
void QBLumoContext::itemsWillBeDeleted(const std::vector<QBLumoItem*>& items) {
    fire(m_itemsWillBeDeleted, items);
}

void QBLumoContext::setJoinLinksWillBeDeleted(JoinLinksSlot slot) {
    m_joinLinksWillBeDeleted = std::move(slot);
}
void QBLumoContext::joinLinksWillBeDeleted(const std::vector<QBLumoJoinLink*>& links) {
    fire(m_joinLinksWillBeDeleted, links);
}

void QBLumoContext::setItemSelectionChanged(ItemSelectionSlot slot) {
    m_itemSelectionChanged = std::move(slot);
}
void QBLumoContext::itemSelectionChanged(QBLumoItem* item, bool selected) {
    fire(m_itemSelectionChanged, item, selected);
}

void QBLumoContext::setFieldLinkDrawn(FieldLinkSlot slot) {
    m_fieldLinkDrawn = std::move(slot);
}
void QBLumoContext::fieldLinkDrawn(QBLumoItem* source, const std::string& sourceField,
                                   QBLumoItem* target, const std::string& targetField) {
    fire(m_fieldLinkDrawn, source, sourceField, target, targetField);
}

void QBLumoContext::setItemBodyDoubleClicked(BodySlot slot) {
    m_itemBodyDoubleClicked = std::move(slot);
}
void QBLumoContext::itemBodyDoubleClicked(QBLumoBaseItemBody* body) {
    fire(m_itemBodyDoubleClicked, body);
}

void QBLumoContext::setJoinLinkDoubleClicked(JoinLinkSlot slot) {
    m_joinLinkDoubleClicked = std::move(slot);
}
void QBLumoContext::joinLinkDoubleClicked(QBLumoJoinLink* link, bool byUser) {
    fire(m_joinLinkDoubleClicked, link, byUser);
}

void QBLumoContext::setDiagramEmptinessChanged(EmptinessSlot slot) {
    m_diagramEmptinessChanged = std::move(slot);
}
void QBLumoContext::diagramEmptinessChanged(bool empty) {
    fire(m_diagramEmptinessChanged, empty);
}

void QBLumoContext::setItemAliasWanted(ItemSlot slot) {
    m_itemAliasWanted = std::move(slot);
}
void QBLumoContext::itemAliasWanted(QBLumoItem* item) {
    fire(m_itemAliasWanted, item);
}
void QBLumoContext::setItemsArranged(ArrangedSlot slot) {
    m_itemsArranged = std::move(slot);
}
void QBLumoContext::itemsArranged(Arrangement how) {
    fire(m_itemsArranged, how);
}

}  // namespace QB::DiagramLumo
