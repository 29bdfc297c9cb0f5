#include "diagrampanel/object_tree_memory.h"

#include <QItemSelectionModel>
#include <QScopedValueRollback>
#include <QTreeWidget>

namespace QB {
namespace {

QString keyOf(const QTreeWidgetItem* item) {
    const auto* row = dynamic_cast<const ObjectTreeItem*>(item);
    return row ? row->key() : QString();
}

/// True if @p row is in the tree and all rows above it stand open.
bool isInSight(const QTreeWidgetItem* row) {
    if (!row->treeWidget()) return false;
    for (const QTreeWidgetItem* above = row->parent(); above; above = above->parent()) {
        if (!above->isExpanded()) return false;
    }
    return true;
}

}  // namespace

ObjectTreeMemory::ObjectTreeMemory(ObjectTreeStore& store) : m_store(store) {}

void ObjectTreeMemory::rememberCurrent() {
    if (!m_currentKey.isEmpty()) return;
    const QTreeWidgetItem* current = m_store.tree()->currentItem();
    m_currentKey = keyOf(current);
    m_isCurrentSelected = current && current->isSelected();
}

void ObjectTreeMemory::rememberScrollPosition() {
    if (m_topKey.isEmpty()) m_topKey = keyOf(m_store.tree()->itemAt(0, 0));
}

void ObjectTreeMemory::restore() {
    restoreCurrent();
    restoreScrollPosition();
}

void ObjectTreeMemory::forget() {
    m_currentKey.clear();
    m_topKey.clear();
}

void ObjectTreeMemory::restoreCurrent() {
    if (m_currentKey.isEmpty()) return;
    ObjectTreeItem* row = m_store.find(m_currentKey);
    if (!row || !row->treeWidget()) return;
    m_currentKey.clear();
    const QScopedValueRollback<bool> guard(m_store.isAdjusting, true);
    m_store.tree()->setAutoScroll(false);
    m_store.tree()->setCurrentItem(
        row, 0,
        m_isCurrentSelected ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::Clear);
    m_store.tree()->setAutoScroll(true);
    if (m_topKey.isEmpty() && isInSight(row)) m_store.tree()->scrollToItem(row);
}

void ObjectTreeMemory::restoreScrollPosition() {
    if (m_topKey.isEmpty()) return;
    const ObjectTreeItem* row = m_store.find(m_topKey);
    if (!row || !isInSight(row)) return;
    m_topKey.clear();
    m_store.tree()->scrollToItem(row, QAbstractItemView::PositionAtTop);
}

}  // namespace QB
