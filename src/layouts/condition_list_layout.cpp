#include "layouts/condition_list_layout.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

#include "layouts/condition_chain_surgery.h"

namespace QB::QBComponentsListLayout_Private {

using namespace Component;
using namespace Component::SQL;
using ConditionChain::asBracket;
using ConditionChain::Link;
using Item = ConditionListLayout::Item;
using Items = ConditionListLayout::Items;

/// A link that is part of no chain, with the rows that show it.
struct ConditionListLayout::Piece {
    Link link;
    Rows rows;

    void shiftTo(int level) {
        const int shift = level - rows.front()->level;
        for (const auto& row : rows)
            row->level += shift;
    }
};

/// Where a link goes: the position of its first row, and the slot in front of which it is spliced.
struct ConditionListLayout::Gap {
    std::size_t position;
    int level;
    Slot slot;
    bool hasPlaceholder;  ///< at the position; it gives way
};

ConditionListLayout::QBComponentsListLayoutImpl(Slot root) : m_root(root) {}
ConditionListLayout::~QBComponentsListLayoutImpl() = default;

void ConditionListLayout::rebuildItems() {
    if (!m_root) return;
    clearRows();
    const auto places = ConditionChain::flatten(m_root);
    insertRows(0, makeRows(places));
    SlottedLayout::noteSlots(places);
}

/// Before an edit it finds a chain that was changed elsewhere, after it a mistake of ours.
void ConditionListLayout::noteSlots() {
    SlottedLayout::noteSlots(ConditionChain::flatten(m_root));
}

// ---- adding -----------------------------------------------------------------------------------

Items ConditionListLayout::addItem(AbstractQueryComponent* component, int index) {
    return insertItem(component, groupEnd(index));
}

Items ConditionListLayout::insertItem(AbstractQueryComponent* component, int index) {
    Condition* link = looseLink(component);
    if (!link || m_items.empty()) return {};
    noteSlots();
    const bool isInside = index >= 0 && static_cast<std::size_t>(index) < m_items.size();
    return insertPiece(isInside ? static_cast<std::size_t>(index) : m_items.size(),
                       makePiece(link));
}

/// @p component as a link that can go into the chain; null if it cannot.
ConditionListLayout::Condition* ConditionListLayout::looseLink(
    AbstractQueryComponent* component) const {
    auto* link = dynamic_cast<Condition*>(component);
    const auto showsIt = [link](const Item* row) {
        return row->component == link;
    };
    const bool isLoose = link && !link->next;
    return isLoose && std::none_of(m_items.begin(), m_items.end(), showsIt) ? link : nullptr;
}

ConditionListLayout::Piece ConditionListLayout::makePiece(Condition* link) {
    return {Link(link), makeRows(ConditionChain::flatten(&link))};
}

Items ConditionListLayout::insertPiece(std::size_t position, Piece piece) {
    const Gap gap = gapAt(position);
    const std::size_t last = gap.position + piece.rows.size() - 1;
    piece.shiftTo(gap.level);
    const Slot head = headOfGroup(gap.position, gap.level);
    ConditionChain::insertAndBindLink(head, gap.slot, std::move(piece.link));
    if (gap.hasPlaceholder) eraseRows({gap.position, gap.position});
    insertRows(gap.position, std::move(piece.rows));
    noteSlots();
    return itemsOf({gap.position, last});
}

ConditionListLayout::Gap ConditionListLayout::gapAt(std::size_t position) const {
    Item* row = position < m_items.size() ? m_items[position] : nullptr;
    Item* rowBefore = position > 0 ? m_items[position - 1] : nullptr;
    if (row && row->isPlaceholder) return {position, row->level, m_slots.at(row), true};
    if (rowBefore && rowBefore->isPlaceholder) {
        return {position - 1, rowBefore->level, m_slots.at(rowBefore), true};
    }
    if (row) return {position, row->level + (isClose(row) ? 1 : 0), m_slots.at(row), false};
    Item* lastLink = isClose(rowBefore) ? rowBefore->partnerItem : rowBefore;
    return {position, rowBefore->level, &(*m_slots.at(lastLink))->next, false};
}

/// Where the chain begins that has a row of @p level at @p position.
ConditionListLayout::Slot ConditionListLayout::headOfGroup(std::size_t position, int level) const {
    while (position-- > 0) {
        if (m_items[position]->level < level)
            return &asBracket(m_items[position]->component)->inner;
    }
    return m_root;
}

// ---- removing, moving, replacing --------------------------------------------------------------

void ConditionListLayout::removeItem_internal(Item* item) {
    removeItems_internal({item});
}

void ConditionListLayout::removeItems_internal(const Items& rows) {
    const Spans spans = spansOf(rows);
    if (spans.empty()) return;
    noteSlots();
    for (Piece& piece : takeOut(spans)) {
        m_detached.add(std::move(piece.link));
        discardRows(std::move(piece.rows));
    }
    noteSlots();
}

/// The rows of the links that @p rows stand for, in row order; a link inside a bracket that is
/// among them goes with it.
ConditionListLayout::Spans ConditionListLayout::spansOf(const Items& rows) const {
    std::set<const Item*> wanted;
    for (const Item* row : heldRows(rows))
        wanted.insert(isClose(row) ? row->partnerItem : row);
    Spans spans;
    const Item* open = nullptr;
    for (std::size_t i = 0; i < m_items.size(); ++i) {
        const Item* row = m_items[i];
        if (open) {
            spans.back().last = i;
            if (row->partnerItem == open) open = nullptr;
        } else if (row->component && wanted.count(row) > 0) {
            spans.push_back({i, i});
            if (asBracket(row->component)) open = row;
        }
    }
    return spans;
}

/// Takes links out with their rows, in row order. A group that this empties gets a placeholder.
std::vector<ConditionListLayout::Piece> ConditionListLayout::takeOut(const Spans& spans) {
    std::vector<Piece> pieces(spans.size());
    // Backwards: taking a link out leaves the slots of all that stands before it as they are.
    for (std::size_t i = spans.size(); i-- > 0;)
        pieces[i].link = ConditionChain::takeLink(m_slots.at(m_items[spans[i].first]));
    Items kept;
    std::size_t row = 0;
    for (std::size_t i = 0; i < spans.size(); ++i) {
        for (; row < spans[i].first; ++row)
            kept.push_back(m_items[row]);
        for (; row <= spans[i].last; ++row)
            pieces[i].rows.emplace_back(m_items[row]);
    }
    kept.insert(kept.end(), std::next(m_items.begin(), static_cast<std::ptrdiff_t>(row)),
                m_items.end());
    m_items = std::move(kept);
    fillEmptyGroups();
    return pieces;
}

void ConditionListLayout::fillEmptyGroups() {
    Items filled;
    for (Item* row : m_items) {
        if (isClose(row) && row->partnerItem == filled.back()) {
            filled.push_back(makePlaceholder(row->level + 1).release());
        }
        filled.push_back(row);
    }
    if (filled.empty()) filled.push_back(makePlaceholder(0).release());
    m_items = std::move(filled);
}

void ConditionListLayout::moveItem(Item* item, unsigned long target) {
    const std::size_t index = indexOfItem(item);
    if (index == m_items.size() || item->isPlaceholder) return;
    const Span span = spanOf(index);
    const bool isOwnPlace = span.first <= target && target <= span.last + 1;
    if (isOwnPlace) return;
    noteSlots();
    const Item* before = target < m_items.size() ? m_items[target] : nullptr;
    Piece piece = std::move(takeOut({span}).front());
    noteSlots();
    insertPiece(indexOfItem(before), std::move(piece));
}

void ConditionListLayout::replaceItemComponent(Item* item, AbstractQueryComponent* component,
                                               bool deleteOld) {
    Condition* link = looseLink(component);
    if (!link || !contains(item) || !item->component) return;
    const SQLBracketedConditionComponent* bracket = asBracket(item->component);
    const bool losesContent = bracket && bracket->inner && !asBracket(link);
    if (losesContent) return;
    noteSlots();

    const Slot slot = m_slots.at(item);
    Piece piece = makePiece(link);
    Link old = ConditionChain::takeLink(slot);
    ConditionChain::insertLink(slot, std::move(piece.link));
    const Span span = spanOf(indexOfItem(item));
    if (span.first < span.last) eraseRows({span.first + 1, span.last});
    // The row itself stays, so that whoever knows it still does.
    item->component = link;
    piece.shiftTo(item->level);
    if (piece.rows.size() > 1) piece.rows.back()->partnerItem = item;
    piece.rows.erase(piece.rows.begin());
    insertRows(span.first + 1, std::move(piece.rows));
    noteSlots();
    if (deleteOld) return m_detached.add(std::move(old));
    static_cast<void>(old.release());  // passes to the caller
}

std::size_t ConditionListLayout::distanceToPartner(Item* item) const {
    const std::size_t index = indexOfItem(item);
    if (index == m_items.size()) return 0;
    const Span span = spanOf(index);
    return span.last - span.first;
}

/// A bracket rises as a block.
int ConditionListLayout::moveUpOffset(Item* item) const {
    const bool isCloseRow = contains(item) && isClose(item);
    return isCloseRow ? -static_cast<int>(distanceToPartner(item)) - 1 : -1;
}

/// And sinks as a block.
int ConditionListLayout::moveDownOffset(Item* item) const {
    const bool isCloseRow = contains(item) && isClose(item);
    return isCloseRow ? 2 : static_cast<int>(distanceToPartner(item)) + 2;
}

// ---- brackets ---------------------------------------------------------------------------------

bool ConditionListLayout::canGroupItemsByBracket(const Items& rows) const {
    return groupedSpans(rows).has_value();
}

/// The spans of the links to group; none if @p rows are not whole links.
std::optional<ConditionListLayout::Spans> ConditionListLayout::groupedSpans(
    const Items& rows) const {
    const Items held = heldRows(rows);
    const Spans spans = spansOf(held);
    if (spans.empty()) return std::nullopt;
    if (held.size() == 1) return spans;
    Items whole;
    for (const Span& span : spans) {
        const Items some = itemsOf(span);
        whole.insert(whole.end(), some.begin(), some.end());
    }
    if (whole != held) return std::nullopt;
    return spans;
}

void ConditionListLayout::groupItemsByBracket(const Items& rows, int index) {
    const std::optional<Spans> spans = groupedSpans(rows);
    if (!spans) return;
    noteSlots();
    const std::size_t at = index < 0 ? spans->front().first : static_cast<std::size_t>(index);
    const Item* before = rowOutside(*spans, at);
    Piece group = bracketAround(takeOut(*spans));
    noteSlots();
    insertPiece(indexOfItem(before), std::move(group));
}

/// The first row from @p index on that is in none of @p spans; null for the end.
const Item* ConditionListLayout::rowOutside(const Spans& spans, std::size_t index) const {
    for (const Span& span : spans) {
        if (span.first <= index && index <= span.last) index = span.last + 1;
    }
    return index < m_items.size() ? m_items[index] : nullptr;
}

ConditionListLayout::Piece ConditionListLayout::bracketAround(std::vector<Piece> pieces) {
    auto bracket = std::make_unique<SQLBracketedConditionComponent>();
    bracket->logicGate = SQLLogicGateAnd;
    Rows rows;
    rows.push_back(makeRow(bracket.get(), 0));
    Slot tail = &bracket->inner;
    for (Piece& piece : pieces) {
        piece.shiftTo(1);
        std::move(piece.rows.begin(), piece.rows.end(), std::back_inserter(rows));
        *tail = piece.link.release();
        tail = &(*tail)->next;
    }
    rows.push_back(makeClose(rows.front().get()));
    return {std::move(bracket), std::move(rows)};
}

bool ConditionListLayout::canUngroupItemsByBracket(const Items& rows) const {
    return ungroupedSpan(rows).has_value();
}

std::optional<ConditionListLayout::Span> ConditionListLayout::ungroupedSpan(
    const Items& rows) const {
    const std::optional<Span> selected = adjacentSpan(rows);
    if (!selected) return std::nullopt;
    const Span span = rows.size() == 1 ? spanOf(selected->first) : *selected;
    const bool isBracket = m_items[span.last]->partnerItem == m_items[span.first];
    if (!isBracket || m_items[span.first + 1]->isPlaceholder) return std::nullopt;
    return span;
}

void ConditionListLayout::ungroupItemsByBracket(const Items& rows) {
    const std::optional<Span> span = ungroupedSpan(rows);
    if (!span) return;
    noteSlots();
    m_detached.add(ConditionChain::takeBracketAway(m_slots.at(m_items[span->first])));
    for (Item* row : itemsOf(*span))
        --row->level;
    eraseRows({span->last, span->last});
    eraseRows({span->first, span->first});
    noteSlots();
}

}  // namespace QB::QBComponentsListLayout_Private
