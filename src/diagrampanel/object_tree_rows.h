#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <vector>

#include "diagrampanel/object_tree_builder.h"
#include "diagrampanel/object_tree_filter.h"
#include "diagrampanel/object_tree_memory.h"
#include "diagrampanel/object_tree_store.h"
#include "diagrampanel/row_disposer.h"
#include "diagrampanel/sliced_work.h"

class QTreeWidget;

namespace QB {

/// Keeps the rows of a QTreeWidget in step with the engine's candidates, a slice at a time: clears,
/// creates, filters, brings back what the user had, destroys. A key names a candidate; the empty
/// key is the root. Main thread.
class ObjectTreeRows : public QObject {
    Q_OBJECT

public:
    /// Asks the engine to load the children of these candidates.
    using Loader = std::function<void(const std::vector<QBIdentifierCandidate*>&)>;

    /// @p tree outlives this object.
    ObjectTreeRows(QTreeWidget* tree, ObjectTreeBuilder::Reader reader, Loader loader);
    ~ObjectTreeRows() override;

    void setDatabaseType(DatabaseType type);

    /// The children are about to change: their rows go.
    void loadBegun(const QString& key);
    /// The children are known: their rows are created. @p candidate is null for the root.
    void loadEnded(const QString& key, QBIdentifierCandidate* candidate);
    /// Another engine: nothing that was known holds any more.
    void forgetAll();

    /// Shows only rows whose name contains @p text, and what leads to them; empty shows all.
    void setFilter(const QString& text);
    bool isFilterWithoutMatch() const;

    /// Null if there is no such row.
    ObjectTreeItem* find(const QString& key) { return m_store.find(key); }
    bool isSettled() const { return m_isSettled; }
    /// Gives the tree the focus and lets no row become the current one by that.
    void focusTree();

Q_SIGNALS:
    /// The top-level rows exist, after a load of the root; rows below them may be missing.
    void topLevelCreated();
    /// All rows exist after a load of the root; their scroll position is not restored yet.
    void wholeTreeCreated();
    void settled();

private:
    void connectTree();
    void continueWork();
    bool step();
    void settle();
    void rowsCreated(const ObjectTreeItem* parent);
    void interruptFilter();
    void removeRowsOf(ObjectTreeItem* row);
    void openedByUser(QTreeWidgetItem* item);
    void closedByUser(QTreeWidgetItem* item);
    void flushLoadRequests();

    const Loader m_loader;
    ObjectTreeStore m_store;
    RowDisposer m_disposer;
    ObjectTreeBuilder m_builder;
    ObjectTreeFilter m_filter;
    ObjectTreeMemory m_memory;
    SlicedWork m_work;
    bool m_isFilterStale = false;  ///< the shown rows are not what the filter wants
    bool m_isTreeNew = false;
    bool m_isSettled = true;
};

}  // namespace QB
