#include "layouts/source_tree_layout.h"

#include <algorithm>
#include <utility>

#include "layouts/source_tree_surgery.h"

namespace QB::QBComponentsListLayout_Private {

using namespace Component;
using namespace Component::SQL;
using SourceTree::Side;
using Item = SourceTreeLayout::Item;
using Items = SourceTreeLayout::Items;

namespace {

SQLAbstractSourceComponent* sourceOf(const Item* item) {
    return dynamic_cast<SQLAbstractSourceComponent*>(item->component);
}

bool isJoinRow(const Item* item) {
    return SourceTree::isJoin(sourceOf(item));
}

bool isOpenRow(const Item* item) {
    return SourceTree::isBracket(sourceOf(item));
}

bool isSameKind(const SQLAbstractSourceComponent* a, const SQLAbstractSourceComponent* b) {
    return (SourceTree::isJoin(a) && SourceTree::isJoin(b)) ||
           (SourceTree::isBracket(a) && SourceTree::isBracket(b)) ||
           (SourceTree::isLeaf(a) && SourceTree::isLeaf(b));
}

}  // namespace

/// Where a new source goes: the row position, and the subtree it is joined to or the empty slot
/// that it fills.
struct SourceTreeLayout::Gap {
    std::size_t position;
    int level;
    Slot slot;
    enum { Fill, Before, After } side;
};

SourceTreeLayout::QBComponentsListLayoutImpl(Slot root) : m_root(root) {}
SourceTreeLayout::~QBComponentsListLayoutImpl() = default;

void SourceTreeLayout::rebuildItems() {
    if (!m_root) return;
    clearRows();
    const auto places = SourceTree::flatten(m_root);
    insertRows(0, makeRows(places));
    SlottedLayout::noteSlots(places);
}

/// Before an edit it finds a tree that was changed elsewhere, after it a mistake of ours: an edit
/// moves subtrees to other slots, and rows must still read as the tree does.
void SourceTreeLayout::noteSlots() {
    SlottedLayout::noteSlots(SourceTree::flatten(m_root));
}

// ---- adding -----------------------------------------------------------------------------------

Items SourceTreeLayout::addItem(AbstractQueryComponent* component, int index) {
    return insertItem(component, groupEnd(index));
}

Items SourceTreeLayout::insertItem(AbstractQueryComponent* component, int index) {
    auto* source = dynamic_cast<SQLAbstractSourceComponent*>(component);
    const bool isOperand = SourceTree::isLeaf(source) || SourceTree::isBracket(source);
    if (!isOperand || m_items.empty()) return {};
    noteSlots();
    return insertIntoGap(gapAt(index), source);
}

/// Operands follow one another only with a join between them: a position within a run of rows means
/// the join above it.
std::size_t SourceTreeLayout::snapToJoin(int index) const {
    const std::size_t count = m_items.size();
    if (index < 0 || static_cast<std::size_t>(index) >= count) return count;
    auto position = static_cast<std::size_t>(index);
    while (position > 0 && !isJoinRow(m_items[position]) &&
           m_items[position]->level == m_items[position - 1]->level) {
        --position;
    }
    return position;
}

SourceTreeLayout::Gap SourceTreeLayout::gapAt(int index) const {
    const std::size_t position = snapToJoin(index);
    Item* row = position < m_items.size() ? m_items[position] : nullptr;
    Item* rowBefore = position > 0 ? m_items[position - 1] : nullptr;
    if (row && row->isPlaceholder) return {position, row->level, m_slots.at(row), Gap::Fill};
    if (rowBefore && rowBefore->isPlaceholder) {
        return {position - 1, rowBefore->level, m_slots.at(rowBefore), Gap::Fill};
    }
    if (!row) return {position, rowBefore->level, m_root, Gap::After};
    if (isClose(row)) {
        const Slot content = &(*m_slots.at(row->partnerItem))->left;
        return {position, rowBefore->level, content, Gap::After};
    }
    const Slot slot = m_slots.at(row);
    const bool isGroupStart = !rowBefore || isOpenRow(rowBefore);
    if (isGroupStart) return {position, row->level, slot, Gap::Before};
    // A join: what stands to its left is joined with the new source first.
    return {position, row->level, &(*slot)->left, Gap::After};
}

Items SourceTreeLayout::insertIntoGap(const Gap& gap, SQLAbstractSourceComponent* source) {
    auto node = std::make_unique<SourceNode>();
    node->value = source;
    AbstractQueryComponent* join = nullptr;
    if (gap.side == Gap::Fill) {
        eraseRows({gap.position, gap.position});
        // The slot was empty, or at the most held a node without a value.
        m_detached.add(std::unique_ptr<SourceNode>(std::exchange(*gap.slot, node.release())));
    } else {
        const Side side = gap.side == Gap::Before ? Side::Left : Side::Right;
        join = SourceTree::joinWith(gap.slot, std::move(node), side);
    }

    std::size_t end = gap.position;
    if (gap.side == Gap::After) insertRow(end++, makeRow(join, gap.level));
    Item* row = insertRow(end++, makeRow(source, gap.level));
    if (SourceTree::isBracket(source)) {
        insertRow(end++, makePlaceholder(gap.level + 1));
        insertRow(end++, makeClose(row));
    }
    if (gap.side == Gap::Before) insertRow(end++, makeRow(join, gap.level));
    noteSlots();
    return itemsOf({gap.position, end - 1});
}

// ---- removing, moving, replacing --------------------------------------------------------------

void SourceTreeLayout::removeItem_internal(Item* item) {
    std::size_t index = indexOfItem(item);
    if (index == m_items.size() || item->isPlaceholder) return;
    if (isJoinRow(item) && ++index == m_items.size()) return;
    noteSlots();
    Span span = spanOf(index);
    Item* operand = m_items[span.first];
    const int level = operand->level;

    std::unique_ptr<SourceNode> detached = SourceTree::takeOperand(m_root, m_slots.at(operand));
    const AbstractQueryComponent* top = detached ? detached->value : nullptr;
    const bool leavesGap = top == operand->component;
    if (!leavesGap) {
        // The join went along; it stands right before or right after its operand.
        const bool isJoinBefore = span.first > 0 && m_items[span.first - 1]->component == top;
        isJoinBefore ? --span.first : ++span.last;
    }
    eraseRows(span);
    if (leavesGap) insertRow(span.first, makePlaceholder(level));
    m_detached.add(std::move(detached));
    noteSlots();
}

void SourceTreeLayout::moveItem(Item*, unsigned long) {}

void SourceTreeLayout::replaceItemComponent(Item* item, AbstractQueryComponent* component,
                                            bool deleteOld) {
    auto* source = dynamic_cast<SQLAbstractSourceComponent*>(component);
    const Slot slot = slotOf(item);
    if (!slot || item->component == component || !isSameKind(source, sourceOf(item))) return;
    if (deleteOld) m_detached.add(std::unique_ptr<AbstractQueryComponent>(item->component));
    (*slot)->value = source;
    item->component = source;
}

// ---- brackets ---------------------------------------------------------------------------------

bool SourceTreeLayout::canGroupItemsByBracket(const Items& rows) const {
    Items group = rows;
    return obtainGroupItemsByBracket(group);
}

bool SourceTreeLayout::obtainGroupItemsByBracket(Items& rows) const {
    const std::optional<Span> span = adjacentSpan(rows);
    if (!span) return false;
    const bool isBracketRow = isOpenRow(rows.front()) || isClose(rows.front());
    if (rows.size() > 1 || !isBracketRow) return isWholeOperands(*span);
    const bool isOpen = isOpenRow(rows.front());
    rows = itemsOf(spanOf(span->first));
    if (isOpen) std::reverse(rows.begin(), rows.end());
    return true;
}

bool SourceTreeLayout::isWholeOperands(Span span) const {
    Item* first = m_items[span.first];
    Item* last = m_items[span.last];
    if (!first->component || isJoinRow(first)) return false;
    if (last->isPlaceholder || isJoinRow(last) || isOpenRow(last)) return false;
    const Items rows = itemsOf(span);
    const auto isOutside = [first](const Item* row) {
        return row->level < first->level;
    };
    if (last->level != first->level || std::any_of(rows.begin(), rows.end(), isOutside)) {
        return false;
    }
    return SourceTree::canWrap(m_root, m_slots.at(first), m_slots.at(operandRow(last)));
}

void SourceTreeLayout::groupItemsByBracket(const Items& rows, int) {
    Items group = rows;
    if (!obtainGroupItemsByBracket(group)) return;
    noteSlots();
    const Span span = *adjacentSpan(group);
    Item* first = m_items[span.first];
    Item* last = operandRow(m_items[span.last]);
    const int level = first->level;
    AbstractQueryComponent* bracket = SourceTree::wrap(m_root, m_slots.at(first), m_slots.at(last));

    for (Item* row : group)
        ++row->level;
    Item* open = insertRow(span.first, makeRow(bracket, level));
    insertRow(span.last + 2, makeClose(open));
    noteSlots();
}

bool SourceTreeLayout::canUngroupItemsByBracket(const Items& rows) const {
    Items group = rows;
    return obtainUngroupItemsByBracket(group);
}

bool SourceTreeLayout::obtainUngroupItemsByBracket(Items& rows) const {
    const std::optional<Span> span = adjacentSpan(rows);
    if (!span) return false;
    rows = itemsOf(rows.size() == 1 ? spanOf(span->first) : *span);
    const Item* open = rows.front();
    const Item* close = rows.back();
    if (!isOpenRow(open) || close->partnerItem != open) return false;
    return !rows[1]->isPlaceholder && sourceOf(open)->alias.empty();
}

void SourceTreeLayout::ungroupItemsByBracket(const Items& rows) {
    Items group = rows;
    if (!obtainUngroupItemsByBracket(group)) return;
    noteSlots();
    const Span span = *adjacentSpan(group);
    m_detached.add(SourceTree::takeBracketAway(m_root, m_slots.at(group.front())));
    for (Item* row : group)
        --row->level;
    eraseRows({span.last, span.last});
    eraseRows({span.first, span.first});
    noteSlots();
}

}  // namespace QB::QBComponentsListLayout_Private
