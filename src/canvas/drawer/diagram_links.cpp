// The links of joins: one for the two sources, and one for each condition that compares two fields.

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/drawer/diagram_drawer.h"
#include "canvas/drawer/drawer_tell.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "platform/lumo/lumo_control.h"

namespace QB {

using namespace Component::SQL;
using namespace DiagramLumo;

namespace {

/// The comparisons in the condition of a join, in text order, at any depth of brackets; none where
/// it is kept, but not part of the text.
std::vector<SQLCompareConditionComponent*> comparisonsOf(const SQLJoinSourceNodeComponent* join) {
    std::vector<SQLCompareConditionComponent*> found;
    if (!join->needsCondition()) return found;
    std::vector<SQLAbstractConditionComponent*> open{join->condition};
    while (!open.empty()) {
        SQLAbstractConditionComponent* const condition = open.back();
        open.pop_back();
        if (!condition) continue;
        open.push_back(condition->next);
        if (auto* const compare = dynamic_cast<SQLCompareConditionComponent*>(condition))
            found.push_back(compare);
        else if (auto* const group = dynamic_cast<SQLBracketedConditionComponent*>(condition))
            open.push_back(group->inner);
    }
    return found;
}

bool isUsingList(const SQLJoinSourceNodeComponent* join) {
    return join->isUsing && join->condition && join->needsCondition();
}

/// The field that an operand is; null if it is anything else, or several values.
SQLFieldColumnComponent* fieldOf(const SQLAbstractConditionComponent* operand) {
    const auto* const value = dynamic_cast<const SQLConditionValueComponent*>(operand);
    if (!value || value->values.size() != 1) return nullptr;
    auto* const field = dynamic_cast<SQLFieldColumnComponent*>(value->firstValue());
    return field && !field->fieldName.empty() ? field : nullptr;
}

}  // namespace

// ---- drawing a join -------------------------------------------------------------------------

/// Brings the links of one join to what the join says now; touches what differs only.
class QBLumoDiagramDrawer::JoinDrawing {
public:
    JoinDrawing(QBLumoDiagramDrawer* drawer, Join* join)
        : m_drawer(drawer)
        , m_join(join)
        , m_label(join->joinType == SQLJoinTypeCustom ? join->joinText : std::string()) {
        const auto range = drawer->m_joinLinks.equal_range(join);
        for (auto link = range.first; link != range.second; ++link)
            m_former.emplace(link->second.conditionId, link);
    }

    void draw() {
        findSources();
        show({}, tablePair());
        for (Compare* const condition : comparisonsOf(m_join))
            show({condition, condition->id()}, fieldPair(condition));
        if (isUsingList(m_join)) showUsingColumns();
        for (const auto& [id, link] : m_former)
            m_drawer->removeLink(link);
        if (m_drawer->m_layerRebuilds > 0) return;
        for (QBLumoJoinLink* link : m_changed)
            link->playPromptAnimation();
    }

private:
    using Pair = QBLumoJoinLink::AdaptorPair;
    /// What a link stands for, as in LinkEntry.
    struct Meaning {
        Compare* condition = nullptr;
        long conditionId = 0;
    };

    void findSources() {
        tell(m_drawer->m_callbacks.findParentItemComponentOfJoinConditionFieldComponent, m_join,
             m_parents);
    }

    QBLumoItem* itemOf(const Source* source) const {
        const ItemEntry* const entry = m_drawer->entryOfLive(source);
        return entry ? entry->item : nullptr;
    }

    std::pair<Source*, Source*> neighbours() const {
        Source* left = nullptr;
        Source* right = nullptr;
        tell(m_drawer->m_callbacks.findNeighbouringItemSourceComponentOfJoinComponent, m_join, left,
             right);
        return {left, right};
    }

    Pair tablePair() const {
        const auto [left, right] = neighbours();
        QBLumoItem* const leftItem = itemOf(left);
        QBLumoItem* const rightItem = itemOf(right);
        if (!leftItem || !rightItem) return {};
        return {leftItem->getAdaptor(), rightItem->getAdaptor()};
    }

    Source* sourceOf(SQLFieldColumnComponent* field) const {
        if (field->source) return field->source;
        const auto found = m_parents.find(field);
        return found == m_parents.end() ? nullptr : found->second;
    }

    /// Nulls for a condition that shows no link.
    Pair fieldPair(const Compare* condition) const {
        SQLFieldColumnComponent* a = fieldOf(condition->leftValue);
        SQLFieldColumnComponent* b = fieldOf(condition->rightValue);
        if (!a || !b) return {};
        Source* const sourceA = sourceOf(a);
        Source* const sourceB = sourceOf(b);
        if (!sourceA || !sourceB || sourceA == sourceB) return {};
        Sources left;
        Sources right;
        tell(m_drawer->m_callbacks.checkItemComponentsSideOnJoinComponent, m_join,
             Sources{sourceA, sourceB}, left, right);
        if (left.empty() || right.empty()) return {};
        if (left.front() != sourceA) std::swap(a, b);
        QBLumoItem* const leftItem = itemOf(left.front());
        QBLumoItem* const rightItem = itemOf(right.front());
        if (!leftItem || !rightItem) return {};
        return {leftItem->getBody()->adaptorForField(a->fieldName),
                rightItem->getBody()->adaptorForField(b->fieldName)};
    }

    /// Each name of a USING list is a column of both neighbours, or of a source further left.
    void showUsingColumns() {
        std::vector<std::string> columns;
        tell(m_drawer->m_callbacks.findUsingColumnsOfJoinComponent, m_join, columns);
        const auto [left, right] = neighbours();
        QBLumoItem* const rightItem = itemOf(right);
        long number = 0;
        for (const std::string& column : columns) {
            QBLumoItem* const leftItem = leftItemWith(column, left, rightItem);
            --number;
            if (!leftItem || !rightItem) continue;
            show({nullptr, number}, {leftItem->getBody()->adaptorForField(column),
                                     rightItem->getBody()->adaptorForField(column)});
        }
    }

    /// The neighbour unless it is known not to have that field.
    QBLumoItem* leftItemWith(const std::string& field, const Source* neighbour,
                             const QBLumoItem* right) const {
        QBLumoItem* const next = itemOf(neighbour);
        const bool isKnown = next && !next->getBody()->fieldNames().empty();
        if (!isKnown || next->getBody()->hasField(field)) return next;
        Sources having;
        for (const auto& [source, entry] : m_drawer->m_items)
            if (entry.item != right && entry.item->getBody()->hasField(field))
                having.push_back(source);
        Sources atLeft;
        Sources atRight;
        tell(m_drawer->m_callbacks.checkItemComponentsSideOnJoinComponent, m_join, having, atLeft,
             atRight);
        return atLeft.empty() ? next : itemOf(atLeft.front());
    }

    /// With nulls for a pair only the link of the tables stays.
    void show(const Meaning& meaning, const Pair& pair) {
        const bool isTable = meaning.conditionId == 0;
        if (!pair.first && !isTable) return;
        const auto former = m_former.find(meaning.conditionId);
        if (former == m_former.end()) return showNew(meaning, pair);
        LinkEntry& entry = former->second->second;
        m_former.erase(former);
        entry.condition = meaning.condition;
        if (isUpToDate(entry.link, pair)) return;
        entry.link->removeAllAdaptors();
        fill(entry.link, isTable, pair);
    }

    /// Below the items and the other links of the join, whenever it comes: a query looks the same
    /// however it was made.
    int placeOfNew() const {
        std::unordered_set<const LumoObject*> own;
        const auto range = m_drawer->m_joinLinks.equal_range(m_join);
        for (auto link = range.first; link != range.second; ++link)
            own.insert(link->second.link);
        int place = 0;
        for (const LumoObject* child : m_drawer->m_diagram->getChildren()) {
            if (own.count(child) > 0) return place;
            if (dynamic_cast<const QBLumoItem*>(child)) break;
            ++place;
        }
        return 0;
    }

    void showNew(const Meaning& meaning, const Pair& pair) {
        auto* const link = new QBLumoJoinLink;
        m_drawer->m_diagram->addChild(link, placeOfNew());
        m_drawer->m_joinLinks.emplace(
            m_join, LinkEntry{m_join, m_join->id(), meaning.condition, meaning.conditionId, link});
        fill(link, meaning.conditionId == 0, pair);
    }

    bool isUpToDate(const QBLumoJoinLink* link, const Pair& pair) const {
        const std::vector<Pair> wanted = pair.first ? std::vector<Pair>{pair} : std::vector<Pair>{};
        return link->getJoinType() == m_join->joinType && link->getLabel() == m_label &&
               link->allAdaptorPairs() == wanted;
    }

    void fill(QBLumoJoinLink* link, bool isTable, const Pair& pair) {
        link->setJoinType(m_join->joinType);
        link->setLabel(m_label);
        isTable ? link->setTableAdaptors(pair.first, pair.second)
                : link->addFieldAdaptors(pair.first, pair.second);
        if (pair.first) m_changed.push_back(link);
    }

    QBLumoDiagramDrawer* const m_drawer;  // not owned
    Join* const m_join;                   // not owned
    const std::string m_label;
    std::map<SQLFieldColumnComponent*, Source*> m_parents;
    std::unordered_map<long, LinkMap::iterator> m_former;  // by condition; those not yet seen again
    std::vector<QBLumoJoinLink*> m_changed;
};

void QBLumoDiagramDrawer::addOrUpdateJoinComponentInDiagram(Join* join) {
    if (!m_diagram || !join) return;
    // Of another component that was at this address, or of a comma, which shows no link.
    if (drawnId(join) != join->id() || join->joinType == SQLJoinTypeComma)
        removeComponentFromDiagram(join);
    if (join->joinType != SQLJoinTypeComma) JoinDrawing(this, join).draw();
}

QBLumoDiagramDrawer::LinkMap::iterator QBLumoDiagramDrawer::removeLink(LinkMap::iterator link) {
    QBLumoJoinLink* const drawn = link->second.link;
    const auto next = m_joinLinks.erase(link);
    drawn->removeAllAdaptors();
    destroyChild(drawn);
    return next;
}

void QBLumoDiagramDrawer::removeLinks(const Source* join) {
    for (auto link = m_joinLinks.find(join); link != m_joinLinks.end() && link->first == join;)
        link = removeLink(link);
}

/// After its links have come from another address: the conditions lie at others, too.
void QBLumoDiagramDrawer::rebindConditions(const Join* join) {
    std::unordered_map<long, Compare*> conditions{{0, nullptr}};
    for (Compare* const condition : comparisonsOf(join))
        conditions[condition->id()] = condition;
    for (auto link = m_joinLinks.find(join); link != m_joinLinks.end() && link->first == join;) {
        const auto condition = conditions.find(link->second.conditionId);
        const bool isUsing = link->second.conditionId < 0 && isUsingList(join);
        if (condition == conditions.end() && !isUsing) {
            link = removeLink(link);
            continue;
        }
        link->second.condition = isUsing ? nullptr : condition->second;
        ++link;
    }
}

// ---- what the user does with links ----------------------------------------------------------

void QBLumoDiagramDrawer::listenToLinks() {
    QBLumoContext* const context = getContext();
    context->setJoinLinksWillBeDeleted(
        [this](const auto& links) { joinLinksWillBeDeleted(links); });
    context->setJoinLinkDoubleClicked([this](QBLumoJoinLink* link, bool byUser) {
        if (const LinkEntry* const entry = entryOf(link)) askToEdit(*entry, byUser);
    });
}

/// As itemsWillBeDeleted().
void QBLumoDiagramDrawer::joinLinksWillBeDeleted(const std::vector<QBLumoJoinLink*>& links) {
    std::unordered_map<const QBLumoJoinLink*, LinkMap::iterator> entries;
    for (auto entry = m_joinLinks.begin(); entry != m_joinLinks.end(); ++entry)
        entries.emplace(entry->second.link, entry);
    std::vector<std::pair<Join*, Compare*>> removed;
    std::map<const Join*, std::set<std::size_t>> columns;
    for (const QBLumoJoinLink* link : links) {
        const auto found = entries.find(link);
        if (found == entries.end()) continue;
        const LinkEntry entry = found->second->second;
        m_joinLinks.erase(found->second);
        if (entry.conditionId < 0)
            columns[entry.join].insert(static_cast<std::size_t>(-entry.conditionId - 1));
        if (entry.conditionId >= 0 || !showsUsingColumns(entry.join))
            removed.emplace_back(entry.join, entry.condition);
    }
    for (const auto& [join, condition] : removed)
        if (!condition) columns.erase(join);  // all of it goes
    if (!removed.empty()) tell(m_callbacks.requestRemoveJoins, removed);
    if (!columns.empty()) tell(m_callbacks.requestRemoveUsingColumns, columns);
}

bool QBLumoDiagramDrawer::showsUsingColumns(const Source* join) const {
    const auto range = m_joinLinks.equal_range(join);
    return std::any_of(range.first, range.second,
                       [](const auto& entry) { return entry.second.conditionId < 0; });
}

void QBLumoDiagramDrawer::editJoin(Join* join, bool byUser) {
    if (const LinkEntry* const entry = shownLinkOf(join)) askToEdit(*entry, byUser);
}

/// The link that is selected or shows; else that of the tables.
const QBLumoDiagramDrawer::LinkEntry* QBLumoDiagramDrawer::shownLinkOf(const Source* join) const {
    const LinkEntry* best = nullptr;
    int bestRank = -1;
    const auto range = m_joinLinks.equal_range(join);
    for (auto entry = range.first; entry != range.second; ++entry) {
        const QBLumoJoinLink* const link = entry->second.link;
        const int rank = 4 * link->getSelected() + 2 * link->isShown() + !entry->second.condition;
        if (rank <= bestRank) continue;
        best = &entry->second;
        bestRank = rank;
    }
    return best;
}

void QBLumoDiagramDrawer::askToEdit(const LinkEntry& link, bool byUser) const {
    m_diagram->layout();  // a link knows its middle only then
    const LumoPoint middle = link.link->midPoint();
    const LumoPoint point =
        getControl() ? getContext()->translatePointToControlSpace(middle, link.link, getControl())
                     : link.link->translatePoint(middle, m_diagram.get());
    tell(m_callbacks.requestEditJoin, link.join, point.x, point.y, byUser);
}

// ---- finding them again ---------------------------------------------------------------------

const QBLumoDiagramDrawer::LinkEntry* QBLumoDiagramDrawer::entryOf(
    const QBLumoJoinLink* link) const {
    for (const auto& [join, entry] : m_joinLinks)
        if (entry.link == link) return &entry;
    return nullptr;
}

QBLumoDiagramDrawer::LinkId QBLumoDiagramDrawer::idOf(const QBLumoJoinLink* link) const {
    const LinkEntry* const entry = entryOf(link);
    return entry ? LinkId{entry->joinId, entry->conditionId} : LinkId{};
}

QBLumoDiagramDrawer::Join* QBLumoDiagramDrawer::joinWithId(long id) const {
    for (const auto& [join, entry] : m_joinLinks)
        if (entry.joinId == id) return entry.join;
    return nullptr;
}

QBLumoJoinLink* QBLumoDiagramDrawer::linkWithId(LinkId id) const {
    for (const auto& [join, entry] : m_joinLinks)
        if (entry.joinId == id.join && entry.conditionId == id.condition) return entry.link;
    return nullptr;
}

}  // namespace QB
