#include "diagrampanel/object_tree_store.h"

#include <QScopedValueRollback>
#include <QTreeWidget>

namespace QB {

ObjectTreeStore::ObjectTreeStore(QTreeWidget* tree) : m_tree(tree) {}

ObjectTreeStore::~ObjectTreeStore() {
    isAdjusting = true;
    std::vector<ObjectTreeItem*> hidden;
    for (ObjectTreeItem* row : root.takeRows()) {
        if (!row->treeWidget()) hidden.push_back(row);
    }
    qDeleteAll(m_tree->invisibleRootItem()->takeChildren());
    qDeleteAll(hidden);
}

ObjectTreeItem* ObjectTreeStore::find(const QString& key) {
    if (key.isEmpty()) return &root;
    auto* row = static_cast<ObjectTreeItem*>(itemsByKey.value(key));
    return row && row->isLive() ? row : nullptr;
}

QTreeWidgetItem* ObjectTreeStore::shownParent(ObjectTreeItem* parent) const {
    return parent->isRoot() ? m_tree->invisibleRootItem() : parent;
}

void ObjectTreeStore::hideRows(ObjectTreeItem* parent) {
    const QScopedValueRollback<bool> guard(isAdjusting, true);
    const QList<QTreeWidgetItem*> taken = shownParent(parent)->takeChildren();
    if (!parent->isRoot()) return;
    // What others have put into the tree has no other owner than the tree.
    for (QTreeWidgetItem* item : taken) {
        if (!dynamic_cast<ObjectTreeItem*>(item)) delete item;
    }
}

void ObjectTreeStore::hideLastRows(ObjectTreeItem* parent, int count) {
    const QScopedValueRollback<bool> guard(isAdjusting, true);
    QTreeWidgetItem* shown = shownParent(parent);
    // Closed first, or the view would lay all remaining rows out again after each few.
    shown->setExpanded(false);
    for (int i = 0; i < count && shown->childCount() > 0; ++i)
        shown->takeChild(shown->childCount() - 1);
}

bool ObjectTreeStore::isHidingLong(ObjectTreeItem* parent) const {
    return shownParent(parent)->childCount() > 10'000;
}

void ObjectTreeStore::showRows(ObjectTreeItem* parent, const QList<QTreeWidgetItem*>& rows) {
    const QScopedValueRollback<bool> guard(isAdjusting, true);
    shownParent(parent)->addChildren(rows);
}

void ObjectTreeStore::requestLoad(const ObjectTreeItem* row) {
    loadRequests.push_back(row->candidate());
    awaitedKeys.insert(row->key());
}

void ObjectTreeStore::setExpanded(ObjectTreeItem* row, bool isExpanded) {
    if (row->treeWidget() != m_tree || row->isExpanded() == isExpanded) return;
    const QScopedValueRollback<bool> guard(isAdjusting, true);
    row->setExpanded(isExpanded);
}

}  // namespace QB
