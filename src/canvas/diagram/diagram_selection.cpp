#include <algorithm>

#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/diagram/diagram_keyboard.h"
#include "canvas/diagram/diagram_link_drag.h"
#include "canvas/diagram/diagram_walk.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"

namespace QB::DiagramLumo {

namespace {

bool hasShiftOrControl(const LumoEvent& event) {
    return (event.keys & (LumoKeyShift | LumoKeyControl)) != 0;
}

template <typename T>
std::vector<T*> selectedOf(const std::vector<LumoObject*>& children,
                           const std::set<LumoObject*>& selection) {
    std::vector<T*> found;
    for (LumoObject* child : children)
        if (selection.count(child))
            if (auto* const match = dynamic_cast<T*>(child)) found.push_back(match);
    return found;
}

}  // namespace

// ---- the set ----

void QBLumoDiagram::selectObject(LumoObject* object, bool keepOthers) {
    if (!object || object->getParent() != this) return;
    Walk pending(this, std::vector<LumoObject*>{object});
    if (!keepOthers) clearSelection();
    // Whoever was told of the others may have destroyed it.
    if (!pending.holds(object) || !m_selection.insert(object).second) return;
    object->setSelected(true);
    object->invalidate();
    auto* const item = dynamic_cast<QBLumoItem*>(object);
    if (item && lumoContext()) lumoContext()->itemSelectionChanged(item, true);
}

void QBLumoDiagram::deselectObject(LumoObject* object) {
    if (!m_selection.erase(object)) return;
    object->setSelected(false);
    object->invalidate();
    auto* const item = dynamic_cast<QBLumoItem*>(object);
    if (item && lumoContext()) lumoContext()->itemSelectionChanged(item, false);
}

void QBLumoDiagram::clearSelection() {
    setSelection({});
}

void QBLumoDiagram::selectAll() {
    std::set<LumoObject*> all;
    for (QBLumoItem* item : items())
        if (item->getVisible()) all.insert(item);
    for (QBLumoJoinLink* link : joinLinks())
        if (link->isShown()) all.insert(link);
    setSelection(all);
}

void QBLumoDiagram::setSelection(const std::set<LumoObject*>& wanted) {
    std::vector<LumoObject*> leave;
    std::vector<LumoObject*> enter;
    for (LumoObject* child : getChildren()) {
        const bool is = m_selection.count(child) != 0;
        const bool becomes = wanted.count(child) != 0;
        if (is != becomes) (is ? leave : enter).push_back(child);
    }
    Walk leaving(this, leave);
    Walk entering(this, enter);
    while (LumoObject* const object = leaving.next())
        deselectObject(object);
    while (LumoObject* const object = entering.next())
        selectObject(object, true);
}

bool QBLumoDiagram::isSelected(LumoObject* object) const {
    return m_selection.count(object) != 0;
}

std::vector<QBLumoItem*> QBLumoDiagram::selectedItems() const {
    return selectedOf<QBLumoItem>(getChildren(), m_selection);
}

std::vector<QBLumoJoinLink*> QBLumoDiagram::selectedJoinLinks() const {
    return selectedOf<QBLumoJoinLink>(getChildren(), m_selection);
}

// ---- presses ----

void QBLumoDiagram::selectPressed(LumoObject* object, const LumoEvent& event, bool keepIfSelected) {
    const bool selected = isSelected(object);
    if (!hasShiftOrControl(event))
        selectObject(object, selected && keepIfSelected);
    else if (!selected)
        selectObject(object, true);
    else if (event.containsEventKey(LumoButtonLeft))
        deselectObject(object);
}

void QBLumoDiagram::raise(LumoObject* object) {
    for (LumoObject* parent = object->getParent(); parent; parent = object->getParent()) {
        parent->bringChildToFront(object);
        object = parent;
    }
}

void QBLumoDiagram::askForMenu(LumoObject* clicked, const std::string* fieldName,
                               const LumoEvent& event, LumoPoint point) {
    const auto block = std::make_shared<RightClickBlock>();
    block->clicked = clicked;
    for (LumoObject* child : getChildren())
        if (m_selection.count(child)) block->selection.push_back(child);
    if (fieldName) block->extras["FieldName"] = QBVariant(*fieldName);
    if (getContext()) getContext()->notifyRightClickMenu({event, block}, point);
}

void QBLumoDiagram::pressItem(QBLumoItem* item, const LumoEvent& event,
                              const std::function<void(LumoPoint)>& menu) {
    Walk pending(this, std::vector<LumoObject*>{item});
    if (std::exchange(m_pressed, item) != item) selectPressed(item, event, true);
    if (!pending.holds(item)) return;
    raise(item);
    item->invalidate();
    if (!event.containsEventKey(LumoButtonRight)) return;
    if (getContext() && event.control)
        getContext()->notifyCursorChange(event.control, LumoCursorDefault);
    menu(item->translatePoint(event.point, this));
}

void QBLumoDiagram::handleItemPressed(QBLumoItem* item, LumoEvent event) {
    if (!item || item->getParent() != this) return;
    m_keyboard->pressed(item);
    m_pressed = nullptr;
    pressItem(item, event, [&](LumoPoint point) { askForMenu(item, nullptr, event, point); });
}

void QBLumoDiagram::handleItemFieldPressed(QBLumoObject* body, const std::string& fieldName,
                                           LumoEvent event) {
    auto* item = dynamic_cast<QBLumoItem*>(body);
    if (!item && body) item = body->findParent<QBLumoItem>();
    if (!item || item->getParent() != this) return;
    m_keyboard->pressed(item);
    event.point = body->translatePoint(event.point, item);
    pressItem(item, event, [&](LumoPoint point) { askForMenu(item, &fieldName, event, point); });
    // The row speaks last in a gesture: another press of it is a new one.
    m_pressed = nullptr;
}

void QBLumoDiagram::handleJoinLinkPressed(QBLumoJoinLink* link, LumoEvent event) {
    if (!link || link->getParent() != this) return;
    m_keyboard->pressed(link);
    m_pressed = nullptr;
    pressLink(link, event);
}

void QBLumoDiagram::pressLink(QBLumoJoinLink* link, const LumoEvent& event) {
    Walk pending(this, std::vector<LumoObject*>{link});
    selectPressed(link, event, false);
    if (!pending.holds(link)) return;
    link->invalidate();
    if (!event.containsEventKey(LumoButtonRight)) return;
    if (getContext() && event.control)
        getContext()->notifyCursorChange(event.control, LumoCursorDefault);
    askForMenu(link, nullptr, event, link->translatePoint(event.point, this));
}

void QBLumoDiagram::handleBodyReleased(QBLumoItem* item, LumoEvent event) {
    if (!item || hasShiftOrControl(event) || !event.containsEventKey(LumoButtonLeft)) return;
    if (item->isMoving() || item->isResizing()) return;
    const bool alone = m_selection.size() == 1 && isSelected(item);
    if (!alone) selectObject(item, false);
}

// ---- deletion ----

void QBLumoDiagram::deleteSelection() {
    if (isLinkDragActive()) return;
    QBLumoContext* const context = lumoContext();
    const std::vector<QBLumoItem*> toldItems = selectedItems();
    Walk itemsToDelete(this, toldItems);
    if (context && !toldItems.empty()) context->itemsWillBeDeleted(toldItems);
    // Read again: whoever was told may have destroyed some, or deselected what is to stay.
    const std::vector<QBLumoJoinLink*> toldLinks = selectedJoinLinks();
    Walk linksToDelete(this, toldLinks);
    if (context && !toldLinks.empty()) context->joinLinksWillBeDeleted(toldLinks);
    destroySelected(itemsToDelete.rest());
    destroySelected(linksToDelete.rest());
    invalidate();
}

void QBLumoDiagram::destroySelected(const std::vector<LumoObject*>& told) {
    Walk doomed(this, told);
    while (LumoObject* const object = doomed.next()) {
        if (!isSelected(object)) continue;
        removeChild(object);
        delete object;
    }
}

}  // namespace QB::DiagramLumo
