#include "diagrampanel/object_tree_builder.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace QB {
namespace {

constexpr std::size_t rowsAStep = 64;
constexpr int smallestPortion = 256;
constexpr int largestPortion = 16384;  // adding it takes about two milliseconds

}  // namespace

ObjectTreeBuilder::ObjectTreeBuilder(ObjectTreeStore& store, Reader reader, Finished finished)
    : m_store(store), m_reader(std::move(reader)), m_finished(std::move(finished)) {}

void ObjectTreeBuilder::add(ObjectTreeItem* parent) {
    m_builds.push_back({parent, {}});
}

void ObjectTreeBuilder::cancelBelow(const ObjectTreeItem* row) {
    const auto isBelow = [row](const Build& build) {
        return build.parent->key().startsWith(row->key());
    };
    m_builds.erase(std::remove_if(m_builds.begin(), m_builds.end(), isBelow), m_builds.end());
}

bool ObjectTreeBuilder::step() {
    if (m_builds.empty()) return false;
    Build& build = m_builds.front();
    const bool isComplete = createRows(build);
    if (m_showsRows && (isComplete || isPortionFull(build))) showPortion(build);
    if (isComplete) finishFirst();
    return true;
}

/// True when the last row exists.
bool ObjectTreeBuilder::createRows(Build& build) {
    const Records records =
        m_reader(build.parent->candidate(), build.parent->rows().size(), rowsAStep);
    for (const QBIdentifierCandidateSnapshot& record : records)
        createRow(build, record);
    return records.size() < rowsAStep;
}

void ObjectTreeBuilder::createRow(Build& build, const QBIdentifierCandidateSnapshot& record) {
    auto owned = std::make_unique<ObjectTreeItem>(m_store.icons, record, *build.parent);
    ObjectTreeItem* row = owned.get();
    build.parent->appendRow(std::move(owned));

    const int knownBefore = m_store.itemsByKey.size();
    QTreeWidgetItem*& entry = m_store.itemsByKey[row->key()];
    const bool wasHeardOf = !entry && m_store.itemsByKey.size() == knownBefore;
    // The first of several objects of one name is the one that is found.
    if (!entry || !static_cast<ObjectTreeItem*>(entry)->isLive()) entry = row;

    row->isExpandedByUser = m_store.expandedKeys.contains(row->key());
    if (m_store.loadingKeys.contains(row->key()))
        row->setData(0, ObjectTreeItem::LoadingRole, true);
    if (record.hasChildren || wasHeardOf)
        add(row);
    else if (row->isExpandedByUser && row->type() != IdentifierTypeField)
        m_store.requestLoad(row);
    build.unshown.append(row);
}

bool ObjectTreeBuilder::isPortionFull(const Build& build) const {
    const int shown = m_store.shownParent(build.parent)->childCount();
    return build.unshown.size() >= std::clamp(shown, smallestPortion, largestPortion);
}

void ObjectTreeBuilder::showPortion(Build& build) {
    m_store.showRows(build.parent, build.unshown);
    for (QTreeWidgetItem* item : std::as_const(build.unshown)) {
        auto* row = static_cast<ObjectTreeItem*>(item);
        if (row->isExpandedByUser) m_store.setExpanded(row, true);
    }
    build.unshown.clear();
}

void ObjectTreeBuilder::finishFirst() {
    ObjectTreeItem* parent = m_builds.front().parent;
    m_builds.pop_front();
    if (!parent->isRoot()) {
        parent->setData(0, ObjectTreeItem::LoadingRole,
                        m_store.loadingKeys.contains(parent->key()));
        parent->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
    }
    m_finished(parent);
}

}  // namespace QB
