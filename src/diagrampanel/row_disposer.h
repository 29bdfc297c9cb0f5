#pragma once

#include <QHash>
#include <vector>

#include "diagrampanel/object_tree_store.h"

namespace QB {

/// Takes rows out of the tree and destroys them bit by bit: 100,000 at once would block the loop.
class RowDisposer {
public:
    explicit RowDisposer(ObjectTreeStore& store);
    ~RowDisposer();
    RowDisposer(const RowDisposer&) = delete;
    RowDisposer& operator=(const RowDisposer&) = delete;

    /// The rows below @p parent go: nobody finds them from now on, and the tree does not show them.
    void disposeRowsOf(ObjectTreeItem* parent);

    /// All rows go. Nobody finds them from now on; the tree is empty once clearStep() is false.
    void disposeAll();

    /// Takes a piece of disposeAll() out of the tree; false if nothing is left.
    bool clearStep();
    /// Destroys a piece; false if nothing is left.
    bool destroyStep();

private:
    void shrinkOldTable();
    void destroyLast();

    ObjectTreeStore& m_store;
    std::vector<ObjectTreeItem*> m_toClear;    // owned; may still be in the tree
    std::size_t m_cleared = 0;                 // of m_toClear: have no shown rows any more
    std::vector<ObjectTreeItem*> m_toDestroy;  // owned; not in the tree
    /// The tables of before disposeAll(); their rows are not owned.
    std::vector<QHash<QString, QTreeWidgetItem*>> m_oldTables;
};

}  // namespace QB
