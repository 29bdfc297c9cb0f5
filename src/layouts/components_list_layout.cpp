#include "layouts/components_list_layout.h"

#include <utility>

#include "engine/engine.h"
#include "model/element_expressions.h"

namespace QB {

using Component::AbstractQueryComponent;

QBComponentsListLayout::QBComponentsListLayout() = default;
QBComponentsListLayout::QBComponentsListLayout(std::unique_ptr<Impl> impl)
    : m_impl(std::move(impl)) {}
QBComponentsListLayout::~QBComponentsListLayout() = default;

void QBComponentsListLayout::setImplementation(std::unique_ptr<Impl> impl) {
    m_impl = std::move(impl);
}

const QBComponentsListLayout::Items& QBComponentsListLayout::items() const {
    static const Items none;
    return m_impl ? m_impl->items() : none;
}

std::size_t QBComponentsListLayout::indexOfItem(const Item* item) const {
    return m_impl ? m_impl->indexOfItem(item) : 0;
}

bool QBComponentsListLayout::canGroupItemsByBracket(const Items& rows) const {
    return m_impl && m_impl->canGroupItemsByBracket(rows);
}

bool QBComponentsListLayout::canUngroupItemsByBracket(const Items& rows) const {
    return m_impl && m_impl->canUngroupItemsByBracket(rows);
}

int QBComponentsListLayout::moveUpOffset(Item* item) const {
    return m_impl ? m_impl->moveUpOffset(item) : 0;
}

int QBComponentsListLayout::moveDownOffset(Item* item) const {
    return m_impl ? m_impl->moveDownOffset(item) : 0;
}

void QBComponentsListLayout::groupItemsByBracket(QBEngine* engine,
                                                 TopLevelQueryComponentElementEnum element,
                                                 void* sender, const Items& rows, int index) {
    edit(engine, element, sender, [&](Impl& impl) { impl.groupItemsByBracket(rows, index); });
}

void QBComponentsListLayout::ungroupItemsByBracket(QBEngine* engine,
                                                   TopLevelQueryComponentElementEnum element,
                                                   void* sender, const Items& rows) {
    edit(engine, element, sender, [&](Impl& impl) { impl.ungroupItemsByBracket(rows); });
}

QBComponentsListLayout::Items QBComponentsListLayout::addItem(
    QBEngine* engine, TopLevelQueryComponentElementEnum element, void* sender,
    AbstractQueryComponent* component, int index) {
    Items added;
    edit(engine, element, sender, [&](Impl& impl) { added = impl.addItem(component, index); });
    return added;
}

QBComponentsListLayout::Items QBComponentsListLayout::insertItem(
    QBEngine* engine, TopLevelQueryComponentElementEnum element, void* sender,
    AbstractQueryComponent* component, int index) {
    Items inserted;
    edit(engine, element, sender,
         [&](Impl& impl) { inserted = impl.insertItem(component, index); });
    return inserted;
}

void QBComponentsListLayout::removeItems(QBEngine* engine,
                                         TopLevelQueryComponentElementEnum element, void* sender,
                                         Items rows) {
    if (!m_impl || m_impl->heldRows(rows).empty()) return;
    edit(engine, element, sender, [&](Impl& impl) { impl.removeItems_internal(rows); });
}

void QBComponentsListLayout::moveItem(QBEngine* engine, TopLevelQueryComponentElementEnum element,
                                      void* sender, Item* item, unsigned long target) {
    // The record is read only once it is known to exist.
    if (!m_impl || !m_impl->contains(item) || item->isPlaceholder) return;
    edit(engine, element, sender, [&](Impl& impl) { impl.moveItem(item, target); });
}

void QBComponentsListLayout::replaceItemComponent(QBEngine* engine,
                                                  TopLevelQueryComponentElementEnum element,
                                                  void* sender, Item* item,
                                                  AbstractQueryComponent* component,
                                                  bool deleteOld) {
    if (!m_impl || !m_impl->contains(item)) return;
    edit(engine, element, sender,
         [&](Impl& impl) { impl.replaceItemComponent(item, component, deleteOld); });
}

void QBComponentsListLayout::edit(QBEngine* engine, TopLevelQueryComponentElementEnum element,
                                  void* sender, const std::function<void(Impl&)>& change) {
    if (!m_impl || !engine) return;
    // Any class of element: chains of join conditions are edited under the source element.
    engine->modifyInTopLevelQueryComponentElement<ELEMAbstractTopLevelQueryExpr*>(
        element, engine->currentTopLevelQueryComponentLayer(),
        [&](ELEMAbstractTopLevelQueryExpr*) {
            change(*m_impl);
            m_impl->updateItemFlags();
            engine->retire(m_impl->takeDetachedParts());
            return true;
        },
        sender);
}

}  // namespace QB
