#include "canvas/drawer/diagram_drawer.h"

#include <algorithm>
#include <set>
#include <unordered_map>

#include <QScopedValueRollback>

#include "canvas/base/canvas_style.h"
#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/diagram/placement.h"
#include "canvas/drawer/diagram_save_load_handler.h"
#include "canvas/drawer/drawer_tell.h"
#include "canvas/items/database_item_body.h"
#include "canvas/items/item.h"
#include "canvas/items/text_based_item_body.h"
#include "canvas/links/join_link_adaptor.h"
#include "canvas/view/lumo_ui_view.h"
#include "model/names.h"
#include "platform/lumo/lumo_control.h"

namespace QB {

using namespace Component::SQL;
using namespace DiagramLumo;

namespace {

bool isDrawnAsItem(const SQLAbstractSourceComponent* component) {
    return dynamic_cast<const SQLIdentifierSourceComponent*>(component) ||
           dynamic_cast<const SQLSubquerySourceComponent*>(component) ||
           dynamic_cast<const SQLAnyExpressionSourceComponent*>(component);
}

std::string schemaOf(const SQLIdentifierSourceComponent* table) {
    return table->path.empty() ? std::string() : table->path.back();
}

/// True if @p body shows other names than before.
bool showTable(const SQLIdentifierSourceComponent* table, QBLumoDatabaseItemBody* body) {
    const std::string schema = schemaOf(table);
    const bool changed = body->getTableName() != table->name || body->getSchema() != schema;
    body->setTableName(table->name);
    body->setSchema(schema);
    return changed;
}

/// True if @p body shows another text than before.
bool showText(const std::string& text, QBLumoTextBasedItemBody* body) {
    const bool changed = body->getText() != text;
    body->setText(text);
    return changed;
}

}  // namespace

QBLumoDiagramDrawer::QBLumoDiagramDrawer()
    : m_saveLoadHandler(std::make_unique<QBLumoDiagramSaveLoadHandler>()) {}

QBLumoDiagramDrawer::~QBLumoDiagramDrawer() = default;

// ---- the canvas -----------------------------------------------------------------------------

void QBLumoDiagramDrawer::setupDiagram(const Callbacks& callbacks) {
    m_callbacks = callbacks;
    if (m_diagram) return;
    m_diagram = std::make_unique<QBLumoDiagram>(getContext(), getControl());
    m_diagram->setBackgroundColor(themePalette().canvas);
    m_firstCanvas = m_diagram->getRect().size;
    listenToItems();
    listenToLinks();
    getContext()->setDiagramEmptinessChanged(
        [this](bool empty) { tell(m_callbacks.diagramEmptyChanged, empty); });
    if (getControl()) getContext()->setActiveDiagram(getControl(), m_diagram.get());
}

void QBLumoDiagramDrawer::destroyDiagram() {
    m_items.clear();
    m_joinLinks.clear();
    m_diagram.reset();
}

void QBLumoDiagramDrawer::clearDiagram() {
    if (!m_diagram) return;
    m_items.clear();
    m_joinLinks.clear();
    m_diagram->clearChildren();
    m_diagram->setFocusedObject(nullptr, -1);  // nor where it was: what comes is something else
    m_diagram->setRect(LumoRect({0, 0}, m_firstCanvas));
    applyTheme();
}

void QBLumoDiagramDrawer::setTableRelationMode() {
    if (m_diagram) m_diagram->setRelationMode(TableRelation);
}

void QBLumoDiagramDrawer::setFieldRelationMode() {
    if (m_diagram) m_diagram->setRelationMode(FieldRelation);
}

int QBLumoDiagramDrawer::relationMode() const {
    return m_diagram ? m_diagram->getRelationMode() : TableRelation;
}

void QBLumoDiagramDrawer::applyTheme() {
    if (!m_diagram) return;
    m_diagram->setBackgroundColor(themePalette().canvas);
    if (getView()) getView()->applyTheme();
    m_diagram->repaint();
}

void QBLumoDiagramDrawer::scrollToOrigin() {
    if (getControl()) getControl()->setScrollOrigin({0, 0});
}

QBLumoDiagramDrawer::LayerRebuild::LayerRebuild(QBLumoDiagramDrawer* drawer) : m_drawer(drawer) {
    ++m_drawer->m_layerRebuilds;
}

QBLumoDiagramDrawer::LayerRebuild::~LayerRebuild() {
    --m_drawer->m_layerRebuilds;
}

// ---- what the user does with items ----------------------------------------------------------

void QBLumoDiagramDrawer::listenToItems() {
    QBLumoContext* const context = getContext();
    context->setItemsWillBeDeleted([this](const auto& items) { itemsWillBeDeleted(items); });
    context->setItemSelectionChanged([this](QBLumoItem* item, bool selected) {
        Source* const source = m_isFocusMuted ? nullptr : componentOf(item);
        if (source) tell(m_callbacks.changeComponentSelection, source, selected);
    });
    context->setItemBodyDoubleClicked([this](QBLumoBaseItemBody* body) {
        if (Subquery* const subquery = subqueryOf(componentOf(body->item())))
            tell(m_callbacks.requestJumpIntoSubqueryComponent, subquery);
    });
    context->setItemAliasWanted([this](QBLumoItem* item) {
        if (Source* const source = componentOf(item)) editAlias(source);
    });
    context->setFieldLinkDrawn([this](QBLumoItem* a, const std::string& fieldA, QBLumoItem* b,
                                      const std::string& fieldB) {
        tell(m_callbacks.makeJoinLinkIfNecessary, componentOf(a), fieldA, componentOf(b), fieldB);
    });
}

/// Out of the map first: the panel may bring the canvas up to date before it returns, and the
/// diagram destroys what was told of.
void QBLumoDiagramDrawer::itemsWillBeDeleted(const std::vector<QBLumoItem*>& items) {
    std::unordered_map<const QBLumoItem*, Source*> sources;
    for (const auto& [source, entry] : m_items)
        sources[entry.item] = source;
    Sources removed;
    for (const QBLumoItem* item : items) {
        const auto found = sources.find(item);
        if (found == sources.end()) continue;
        removed.push_back(found->second);
        m_items.erase(found->second);
    }
    if (!removed.empty()) tell(m_callbacks.requestRemoveComponents, removed);
}

// ---- items ----------------------------------------------------------------------------------

void QBLumoDiagramDrawer::addComponentInDiagram(Source* component, int x, int y) {
    if (auto* const join = dynamic_cast<Join*>(component))
        return addOrUpdateJoinComponentInDiagram(join);
    if (isDrawnAsItem(component)) addItemComponentInDiagram(component, x, y);
}

void QBLumoDiagramDrawer::updateComponentInDiagram(Source* component) {
    if (auto* const join = dynamic_cast<Join*>(component))
        return addOrUpdateJoinComponentInDiagram(join);
    updateItemComponentInDiagram(component);
}

void QBLumoDiagramDrawer::removeComponentFromDiagram(Source* component) {
    const auto found = m_items.find(component);
    if (found != m_items.end()) {
        QBLumoItem* const item = found->second.item;
        m_items.erase(found);
        destroyChild(item);
    }
    removeLinks(component);
}

void QBLumoDiagramDrawer::destroyChild(LumoObject* child) {
    m_diagram->removeChild(child);
    delete child;
}

void QBLumoDiagramDrawer::addItemComponentInDiagram(Source* component, int x, int y) {
    if (!m_diagram || !component || entryOfLive(component)) return;
    removeComponentFromDiagram(component);  // of another one that was at this address
    QBLumoItem* const item = makeItem(component).release();
    item->setOrder(component->id());
    m_diagram->addChild(item);
    if ((x & y) == -1)
        m_diagram->autoLayoutChild(item);
    else
        putTitleAt(item, x, y);
    item->getBody()->setRequireToVerifyLayout(true);
    m_items[component] = {item, component->id(), dynamic_cast<Subquery*>(component)};
    requestFields(component);
    // With fields that are known it has its real height now; who was asked may have done anything.
    if (itemOf(component) == item) showInView(item);
}

std::unique_ptr<QBLumoItem> QBLumoDiagramDrawer::makeItem(Source* component) {
    auto item = std::make_unique<QBLumoItem>();
    if (dynamic_cast<SQLIdentifierSourceComponent*>(component))
        item->setBody(new QBLumoDatabaseItemBody);
    else
        item->setBody(new QBLumoTextBasedItemBody);
    item->getBody()->setNamesHaveCase(m_namesHaveCase);
    if (dynamic_cast<Subquery*>(component)) {
        auto* const body = static_cast<QBLumoTextBasedItemBody*>(item->getBody());
        body->setEditButtonHandler([this](QBLumoTextBasedItemBody* pressed) {
            if (Subquery* const subquery = subqueryOf(componentOf(pressed->item())))
                editSubquery(subquery);
        });
    }
    item->setFieldSelectionHandler([this](QBLumoItem* of, const std::string& field, bool selected) {
        if (Source* const source = componentOf(of))
            tell(m_callbacks.changeItemComponentFieldSelection, source, field, selected);
    });
    showComponent(component, item.get());
    return item;
}

/// Alias, names and text. True if the fields may be other ones now.
bool QBLumoDiagramDrawer::showComponent(const Source* component, QBLumoItem* item) const {
    item->getBody()->setAlias(component->alias);
    if (auto* const body = dynamic_cast<QBLumoDatabaseItemBody*>(item->getBody())) {
        const auto* const table = dynamic_cast<const SQLIdentifierSourceComponent*>(component);
        return table && showTable(table, body);
    }
    auto* const body = static_cast<QBLumoTextBasedItemBody*>(item->getBody());
    if (const auto* const subquery = dynamic_cast<const Subquery*>(component)) {
        const auto& stringify = m_callbacks.stringifySubqueryComponent;
        return showText(stringify ? stringify(const_cast<Subquery*>(subquery)) : "", body);
    }
    const auto* const free = dynamic_cast<const SQLAnyExpressionSourceComponent*>(component);
    return free && showText(free->expression, body);
}

/// The canvas grows to the right and below where it must.
void QBLumoDiagramDrawer::putTitleAt(QBLumoItem* item, int x, int y) {
    const LumoSize size = item->getRect().size;
    const LumoRect title = lumoMovedRect(item->getBody()->titleRect(), bodyRectOf(size).origin);
    LumoPoint origin =
        getControl() ? getControl()->controlSpaceToDiagramSpace({x, y}) : LumoPoint{x, y};
    origin -= title.origin + LumoPoint{title.size.width / 2, title.size.height / 2};
    origin.x = std::clamp(origin.x, 0, largestCanvas - size.width);
    origin.y = std::clamp(origin.y, 0, largestCanvas - size.height);
    const LumoRect place(origin, size);
    m_diagram->setRect(LumoRect({0, 0}, grownToHold(m_diagram->getRect().size, place)));
    item->setRect(place);
}

void QBLumoDiagramDrawer::showInView(const QBLumoItem* item) {
    if (m_layerRebuilds == 0 && getControl()) getControl()->scrollToVisible(item->getRect(), false);
}

void QBLumoDiagramDrawer::requestFields(Source* component) const {
    tell(m_callbacks.requestRefreshItemComponentField, Sources{component}, false);
}

void QBLumoDiagramDrawer::updateItemComponentInDiagram(Source* component) {
    const ItemEntry* const entry = entryOfLive(component);
    if (entry && showComponent(component, entry->item)) requestFields(component);
}

// ---- fields ---------------------------------------------------------------------------------

void QBLumoDiagramDrawer::setItemFieldSelection(Source* component,
                                                const std::vector<std::string>& names) {
    const ItemEntry* const entry = entryOfLive(component);
    if (!entry) return;
    std::set<std::string> fields(names.begin(), names.end());
    const bool wildcard = fields.erase("") > 0;
    entry->item->getBody()->setFieldSelection(fields, wildcard);
}

void QBLumoDiagramDrawer::setItemFields(Source* component, const std::vector<std::string>& fields) {
    if (const ItemEntry* const entry = entryOfLive(component))
        entry->item->getBody()->setFields(fields);
}

void QBLumoDiagramDrawer::updateAllComponentsUsingIdentifier(
    const QBIdentifierObjectPath& table, const std::string& currentSchema,
    const std::vector<std::string>& fields) {
    const auto named = [&currentSchema](const std::string& schema) -> const std::string& {
        return schema.empty() ? currentSchema : schema;
    };
    for (const auto& [source, entry] : m_items) {
        auto* const body = dynamic_cast<QBLumoDatabaseItemBody*>(entry.item->getBody());
        if (!body || !isSameName(body->getTableName(), table.object, m_namesHaveCase)) continue;
        if (isSameName(named(body->getSchema()), named(table.schema), m_namesHaveCase))
            body->setFields(fields);
    }
}

void QBLumoDiagramDrawer::showComponentFocus(Source* component, bool focused) {
    const ItemEntry* const entry = entryOfLive(component);
    if (!entry || m_diagram->isSelected(entry->item) == focused) return;
    const QScopedValueRollback<bool> muted(m_isFocusMuted, true);
    if (!focused) return m_diagram->deselectObject(entry->item);
    m_diagram->selectObject(entry->item, false);
    showInView(entry->item);
}

// ---- what the menus do ----------------------------------------------------------------------

LumoRect QBLumoDiagramDrawer::rectInView(const QBLumoItem* item) const {
    const LumoRect rect = item->getBoundingRect();
    if (!getControl()) return item->translateRect(rect, m_diagram.get());
    return getContext()->translateRectToControlSpace(rect, item, getControl());
}

void QBLumoDiagramDrawer::editAlias(Source* component) {
    const ItemEntry* const entry = entryOf(component);
    if (!entry) return;
    const LumoRect rect = rectInView(entry->item);
    tell(m_callbacks.requestEditComponentAlias, component, rect.origin.x, rect.origin.y,
         rect.size.width, rect.size.height);
}

void QBLumoDiagramDrawer::editSubquery(Subquery* subquery) {
    const ItemEntry* const entry = entryOf(subquery);
    if (!entry) return;
    const LumoRect rect = rectInView(entry->item);
    tell(m_callbacks.requestEditSubquery, subquery, rect.origin.x, rect.origin.y, rect.size.width,
         rect.size.height);
}

void QBLumoDiagramDrawer::addWhereComparison(Source* item, const std::string& field, CompareOp op) {
    if (entryOf(item)) tell(m_callbacks.requestAddWhereComparison, item, field, op);
}

void QBLumoDiagramDrawer::addGroupByField(Source* item, const std::string& field) {
    if (entryOf(item)) tell(m_callbacks.requestAddGroupByItemField, item, field);
}

void QBLumoDiagramDrawer::addOrderByField(Source* item, const std::string& field,
                                          OrderDirection direction) {
    if (entryOf(item)) tell(m_callbacks.requestAddOrderByItemField, item, field, direction);
}

// ---- what is drawn --------------------------------------------------------------------------

const QBLumoDiagramDrawer::ItemEntry* QBLumoDiagramDrawer::entryOf(const Source* component) const {
    const auto found = m_items.find(component);
    return found == m_items.end() ? nullptr : &found->second;
}

/// Null too if another component was at this address when the item was drawn.
const QBLumoDiagramDrawer::ItemEntry* QBLumoDiagramDrawer::entryOfLive(
    const Source* component) const {
    const ItemEntry* const entry = entryOf(component);
    return entry && entry->id == component->id() ? entry : nullptr;
}

QBLumoDiagramDrawer::Source* QBLumoDiagramDrawer::componentOf(const QBLumoItem* item) const {
    for (const auto& [source, entry] : m_items)
        if (entry.item == item) return source;
    return nullptr;
}

QBLumoItem* QBLumoDiagramDrawer::itemOf(const Source* component) const {
    const ItemEntry* const entry = entryOf(component);
    return entry ? entry->item : nullptr;
}

QBLumoDiagramDrawer::Subquery* QBLumoDiagramDrawer::subqueryOf(const Source* source) const {
    const ItemEntry* const entry = entryOf(source);
    return entry ? entry->subquery : nullptr;
}

long QBLumoDiagramDrawer::idOf(const QBLumoItem* item) const {
    return drawnId(componentOf(item));
}

QBLumoDiagramDrawer::Source* QBLumoDiagramDrawer::sourceWithId(long id) const {
    for (const auto& [source, entry] : m_items)
        if (entry.id == id) return source;
    return nullptr;
}

long QBLumoDiagramDrawer::drawnId(const Source* component) const {
    if (const ItemEntry* const entry = entryOf(component)) return entry->id;
    const auto link = m_joinLinks.find(component);
    return link == m_joinLinks.end() ? 0 : link->second.joinId;
}

std::vector<QBLumoDiagramDrawer::DrawnComponent> QBLumoDiagramDrawer::drawnComponents() const {
    std::vector<DrawnComponent> drawn;
    for (const auto& [source, entry] : m_items)
        drawn.push_back({source, entry.id, false});
    for (auto link = m_joinLinks.begin(); link != m_joinLinks.end();
         link = m_joinLinks.upper_bound(link->first))
        drawn.push_back({link->first, link->second.joinId, true});
    std::sort(drawn.begin(), drawn.end(),
              [](const DrawnComponent& a, const DrawnComponent& b) { return a.id < b.id; });
    return drawn;
}

QBLumoDiagramDrawer::Sources QBLumoDiagramDrawer::allComponentsInDiagram() const {
    Sources all;
    for (const DrawnComponent& drawn : drawnComponents())
        all.push_back(drawn.component);
    return all;
}

void QBLumoDiagramDrawer::rebindComponents(const std::vector<std::pair<Source*, Source*>>& moved) {
    std::vector<std::pair<Source*, ItemEntry>> items;
    std::vector<std::pair<Join*, LinkEntry>> links;
    for (const auto& [former, now] : moved) {
        if (!now || drawnId(former) != now->id()) continue;
        const auto item = m_items.find(former);
        if (item != m_items.end()) {
            items.emplace_back(now, item->second);
            m_items.erase(item);
        }
        const auto range = m_joinLinks.equal_range(former);
        for (auto link = range.first; link != range.second; ++link)
            links.emplace_back(dynamic_cast<Join*>(now), link->second);
        m_joinLinks.erase(range.first, range.second);
    }
    // What still stands at an address that is taken now belongs to a component that is gone.
    for (const auto& [former, now] : moved)
        if (now && drawnId(now) != 0 && drawnId(now) != now->id()) removeComponentFromDiagram(now);
    for (auto& [now, entry] : items) {
        entry.subquery = dynamic_cast<Subquery*>(now);
        m_items[now] = entry;
    }
    for (auto& [now, entry] : links) {
        entry.join = now;
        m_joinLinks.emplace(now, entry);
    }
    for (const auto& [former, now] : moved)
        if (const auto* const join = dynamic_cast<const Join*>(now)) rebindConditions(join);
}

// ---- layouts --------------------------------------------------------------------------------

void QBLumoDiagramDrawer::saveLayerLayout(std::uint64_t layerId) {
    m_saveLoadHandler->save(layerId, getControl(), m_diagram.get());
}

bool QBLumoDiagramDrawer::restoreLayerLayout(std::uint64_t layerId) {
    const bool isCovered = m_saveLoadHandler->load(layerId, getControl(), m_diagram.get());
    lookAtSomething();
    return isCovered;
}

/// A layout may have been made for other items, or look where there are none.
void QBLumoDiagramDrawer::lookAtSomething() {
    if (!getControl() || !m_diagram) return;
    const LumoRect seen = getControl()->getDisplayRect();
    const std::vector<QBLumoItem*> items = m_diagram->items();
    if (items.empty() || seen.size == LumoSize()) return;
    const auto isSeen = [&](const QBLumoItem* item) {
        return lumoIntersectsRect(item->getRect(), seen);
    };
    if (std::any_of(items.begin(), items.end(), isSeen)) return;
    const auto isNearer = [](const QBLumoItem* a, const QBLumoItem* b) {
        const LumoPoint first = a->getRect().origin;
        const LumoPoint second = b->getRect().origin;
        return first.x + first.y < second.x + second.y;
    };
    scrollToOrigin();
    getControl()->scrollToVisible(
        (*std::min_element(items.begin(), items.end(), isNearer))->getRect(), false);
}

bool QBLumoDiagramDrawer::hasLayerLayout(std::uint64_t layerId) const {
    return m_saveLoadHandler->contains(layerId);
}

std::string QBLumoDiagramDrawer::exportLayouts(
    const std::map<std::uint64_t, std::vector<std::string>>& layerPaths) {
    return m_saveLoadHandler->exportLayouts(layerPaths);
}

void QBLumoDiagramDrawer::importLayouts(
    const std::string& text, const std::map<std::uint64_t, std::vector<std::string>>& layerPaths) {
    m_saveLoadHandler->importLayouts(text, layerPaths);
}

void QBLumoDiagramDrawer::matchLayouts(
    const std::map<std::uint64_t, std::vector<std::string>>& layerPaths) {
    m_saveLoadHandler->match(layerPaths);
}

}  // namespace QB
