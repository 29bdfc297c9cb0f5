#include "diagrampanel/object_tree_rows.h"

#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTreeWidget>
#include <utility>

namespace QB {

ObjectTreeRows::ObjectTreeRows(QTreeWidget* tree, ObjectTreeBuilder::Reader reader, Loader loader)
    : m_loader(std::move(loader))
    , m_store(tree)
    , m_disposer(m_store)
    , m_builder(m_store, std::move(reader),
                [this](const ObjectTreeItem* parent) { rowsCreated(parent); })
    , m_filter(m_store)
    , m_memory(m_store)
    , m_work([this] { return step(); }) {
    m_store.icons.setDatabaseType(DatabaseTypeNone);
    connectTree();
}

ObjectTreeRows::~ObjectTreeRows() {
    m_store.tree()->disconnect(this);
}

void ObjectTreeRows::connectTree() {
    QTreeWidget* tree = m_store.tree();
    connect(tree, &QTreeWidget::itemExpanded, this, &ObjectTreeRows::openedByUser);
    connect(tree, &QTreeWidget::itemCollapsed, this, &ObjectTreeRows::closedByUser);
    connect(tree, &QTreeWidget::currentItemChanged, this, [this] {
        if (!m_store.isAdjusting) m_memory.forget();
    });
    connect(tree->verticalScrollBar(), &QScrollBar::actionTriggered, this,
            [this] { m_memory.forgetScrollPosition(); });
}

void ObjectTreeRows::setDatabaseType(DatabaseType type) {
    m_store.icons.setDatabaseType(type);
    m_store.tree()->viewport()->update();
}

void ObjectTreeRows::loadBegun(const QString& key) {
    if (key.isEmpty()) {
        m_store.loadingKeys.clear();
        m_store.awaitedKeys.clear();
    }
    m_store.loadingKeys.insert(key);
    ObjectTreeItem* row = m_store.find(key);
    if (!row) {
        m_store.itemsByKey.insert(key, nullptr);
        return;
    }
    removeRowsOf(row);
    if (row->isRoot()) return m_work.run();
    row->setData(0, ObjectTreeItem::LoadingRole, true);
    m_work.schedule();
}

void ObjectTreeRows::loadEnded(const QString& key, QBIdentifierCandidate* candidate) {
    m_store.loadingKeys.remove(key);
    m_store.awaitedKeys.remove(key);
    ObjectTreeItem* row = m_store.find(key);
    if (!row) {
        // The row is still to be created; it finds this entry and asks for its children again.
        m_store.itemsByKey.insert(key, nullptr);
        return;
    }
    removeRowsOf(row);
    row->setCandidate(candidate);
    if (row->isRoot()) m_isTreeNew = true;
    m_builder.add(row);
    continueWork();
}

void ObjectTreeRows::forgetAll() {
    m_store.expandedKeys.clear();
    m_store.loadRequests.clear();
    removeRowsOf(&m_store.root);
    m_memory.forget();
    continueWork();
}

void ObjectTreeRows::removeRowsOf(ObjectTreeItem* row) {
    interruptFilter();
    m_builder.cancelBelow(row);
    if (row->rows().empty()) return;
    m_memory.rememberCurrent();
    m_memory.rememberScrollPosition();
    if (row->isRoot())
        m_disposer.disposeAll();
    else
        m_disposer.disposeRowsOf(row);
}

void ObjectTreeRows::setFilter(const QString& text) {
    m_memory.rememberCurrent();
    m_filter.cancel();
    m_filter.setText(text);
    m_isFilterStale = true;
    m_builder.setShowsRows(false);
    continueWork();
}

bool ObjectTreeRows::isFilterWithoutMatch() const {
    return m_filter.isActive() && !m_store.root.hasMatchBelow && !m_store.root.rows().empty();
}

void ObjectTreeRows::interruptFilter() {
    if (m_filter.isActive() || m_filter.isRunning()) m_isFilterStale = true;
    m_filter.cancel();
}

void ObjectTreeRows::focusTree() {
    const QScopedValueRollback<bool> guard(m_store.isAdjusting, true);
    m_store.tree()->setFocus();
}

void ObjectTreeRows::continueWork() {
    m_isSettled = false;
    m_work.run();
}

bool ObjectTreeRows::step() {
    if (!m_work.isFresh() && m_filter.isNextStepLong()) {
        m_work.endSlice();
        return true;
    }
    if (m_disposer.clearStep() || m_builder.step()) return true;
    if (m_isFilterStale) {
        m_isFilterStale = false;
        m_filter.start();
        return true;
    }
    if (m_filter.step()) return true;
    if (!m_isSettled) {
        settle();
        return true;
    }
    return m_disposer.destroyStep();
}

void ObjectTreeRows::settle() {
    m_isSettled = true;
    m_builder.setShowsRows(!m_filter.isActive());
    flushLoadRequests();
    if (std::exchange(m_isTreeNew, false)) Q_EMIT wholeTreeCreated();
    m_memory.restore();
    const bool isComplete = m_store.loadingKeys.isEmpty() && m_store.awaitedKeys.isEmpty();
    if (isComplete && !m_filter.isActive()) m_memory.forget();
    Q_EMIT settled();
}

void ObjectTreeRows::rowsCreated(const ObjectTreeItem* parent) {
    if (parent->isRoot()) Q_EMIT topLevelCreated();
}

void ObjectTreeRows::openedByUser(QTreeWidgetItem* item) {
    auto* row = dynamic_cast<ObjectTreeItem*>(item);
    if (m_store.isAdjusting || !row || row->type() == IdentifierTypeField) return;
    row->isExpandedByUser = true;
    m_store.expandedKeys.insert(row->key());
    if (!row->rows().empty() || m_store.loadingKeys.contains(row->key())) return;
    m_store.requestLoad(row);
    flushLoadRequests();
}

void ObjectTreeRows::closedByUser(QTreeWidgetItem* item) {
    auto* row = dynamic_cast<ObjectTreeItem*>(item);
    if (m_store.isAdjusting || !row) return;
    row->isExpandedByUser = false;
    m_store.expandedKeys.remove(row->key());
}

void ObjectTreeRows::flushLoadRequests() {
    const auto candidates = std::exchange(m_store.loadRequests, {});
    if (!candidates.empty()) m_loader(candidates);
}

}  // namespace QB
