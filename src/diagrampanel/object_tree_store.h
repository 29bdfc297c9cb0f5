#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <vector>

#include "diagrampanel/object_tree_item.h"

class QTreeWidget;

namespace QB {

/// The rows of one tree and what is known of them: shared by those who create, filter, remember
/// and destroy rows.
class ObjectTreeStore {
public:
    explicit ObjectTreeStore(QTreeWidget* tree);
    ~ObjectTreeStore();
    ObjectTreeStore(const ObjectTreeStore&) = delete;
    ObjectTreeStore& operator=(const ObjectTreeStore&) = delete;

    QTreeWidget* tree() const { return m_tree; }

    /// The row with that key, shown or not; the root for an empty key; null if there is none.
    ObjectTreeItem* find(const QString& key);
    /// What holds the rows of @p parent in the tree.
    QTreeWidgetItem* shownParent(ObjectTreeItem* parent) const;
    /// Takes the shown rows of @p parent out of the tree; nothing is destroyed.
    void hideRows(ObjectTreeItem* parent);
    /// Takes the last @p count shown rows of @p parent out of the tree, and closes it.
    void hideLastRows(ObjectTreeItem* parent, int count);
    /// Whether hideRows() takes some milliseconds: Qt takes rows out all at once or singly.
    bool isHidingLong(ObjectTreeItem* parent) const;
    /// Appends @p rows, which are rows of @p parent, to those that the tree shows of it.
    void showRows(ObjectTreeItem* parent, const QList<QTreeWidgetItem*>& rows);
    /// The row stands open without rows below it: its load is to be asked for.
    void requestLoad(const ObjectTreeItem* row);
    void setExpanded(ObjectTreeItem* row, bool isExpanded);

    ObjectTreeItem root;  ///< its rows are the top-level ones
    ObjectTreeIcons icons;
    /// One entry for each row; null for a candidate that was heard of before its row existed.
    QHash<QString, QTreeWidgetItem*> itemsByKey;
    QSet<QString> loadingKeys;   ///< between begin and end of their load
    QSet<QString> expandedKeys;  ///< what the user has opened, also while its row is gone
    std::vector<QBIdentifierCandidate*> loadRequests;  ///< not handed to the engine yet
    QSet<QString> awaitedKeys;                         ///< of requested loads that have not ended
    bool isAdjusting = false;  ///< the tree changes by program, not by its user

private:
    QTreeWidget* const m_tree;  // not owned: the form
};

}  // namespace QB
