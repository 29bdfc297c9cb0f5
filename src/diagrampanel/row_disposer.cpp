#include "diagrampanel/row_disposer.h"

#include <QByteArray>
#include <QTreeWidget>
#include <algorithm>
#include <memory>
#include <utility>

namespace QB {
namespace {

constexpr int entriesAStep = 64;

void append(std::vector<ObjectTreeItem*>& to, std::vector<ObjectTreeItem*> rows) {
    if (to.empty())
        to = std::move(rows);
    else
        to.insert(to.end(), rows.begin(), rows.end());
}

/// The C library lays small freed blocks aside and joins them all when a larger one is next asked
/// for. After 100,000 rows that one request takes 50 milliseconds, wherever it comes from; asking
/// after each few rows keeps it short.
void joinFreedBlocks() {
    const QByteArray larger(4096, Qt::Uninitialized);
}

}  // namespace

RowDisposer::RowDisposer(ObjectTreeStore& store) : m_store(store) {}

RowDisposer::~RowDisposer() {
    while (clearStep()) {
    }
    while (destroyStep()) {
    }
}

void RowDisposer::disposeRowsOf(ObjectTreeItem* parent) {
    m_store.hideRows(parent);
    append(m_toDestroy, parent->takeRows());
}

void RowDisposer::disposeAll() {
    append(m_toClear, m_store.root.takeRows());
    m_oldTables.push_back(std::exchange(m_store.itemsByKey, {}));
    m_store.itemsByKey.insert(QString(), nullptr);
}

bool RowDisposer::clearStep() {
    if (m_toClear.empty()) return false;
    // A row with its whole subtree leaves the tree in one call of Qt's, so the subtrees go singly.
    const std::size_t end = std::min(m_toClear.size(), m_cleared + entriesAStep);
    while (m_cleared < end) {
        ObjectTreeItem* row = m_toClear[m_cleared];
        if (m_store.isHidingLong(row)) {
            m_store.hideLastRows(row, entriesAStep);
            return true;
        }
        ++m_cleared;
        if (row->childCount() == 0) continue;
        m_store.hideRows(row);
        return true;
    }
    if (m_cleared < m_toClear.size()) return true;
    m_store.hideRows(&m_store.root);
    append(m_toDestroy, std::exchange(m_toClear, {}));
    m_cleared = 0;
    return true;
}

bool RowDisposer::destroyStep() {
    if (!m_oldTables.empty()) {
        shrinkOldTable();
        return true;
    }
    for (int i = 0; i < entriesAStep; ++i) {
        if (m_toDestroy.empty()) return i > 0;
        destroyLast();
    }
    joinFreedBlocks();
    return true;
}

void RowDisposer::shrinkOldTable() {
    QHash<QString, QTreeWidgetItem*>& table = m_oldTables.back();
    auto entry = table.begin();
    for (int i = 0; i < entriesAStep && entry != table.end(); ++i)
        entry = table.erase(entry);
    if (table.isEmpty()) m_oldTables.pop_back();
    joinFreedBlocks();
}

void RowDisposer::destroyLast() {
    const std::unique_ptr<ObjectTreeItem> row(m_toDestroy.back());
    m_toDestroy.pop_back();
    if (!row->rows().empty()) append(m_toDestroy, row->takeRows());
    const auto entry = m_store.itemsByKey.constFind(row->key());
    if (entry != m_store.itemsByKey.cend() && entry.value() == row.get())
        m_store.itemsByKey.erase(entry);
}

}  // namespace QB
