#pragma once

#include <QList>
#include <cstddef>
#include <deque>
#include <functional>
#include <vector>

#include "diagrampanel/object_tree_store.h"

namespace QB {

/// Creates rows for the children of candidates, a few at a time. Parents are worked off in the
/// order in which they came; the rows of a parent appear in growing portions, since each portion
/// makes the tree lay out all rows that stand open.
class ObjectTreeBuilder {
public:
    using Records = std::vector<QBIdentifierCandidateSnapshot>;
    /// At most @p count children of a candidate from the index @p first on; null for the root.
    using Reader =
        std::function<Records(const QBIdentifierCandidate*, std::size_t first, std::size_t count)>;
    using Finished = std::function<void(ObjectTreeItem* parent)>;

    /// @p finished is called when all rows of one parent exist.
    ObjectTreeBuilder(ObjectTreeStore& store, Reader reader, Finished finished);

    /// The rows below @p parent, which has none, are to be created.
    void add(ObjectTreeItem* parent);
    /// Forgets all that is to be created below @p row, or below rows of it.
    void cancelBelow(const ObjectTreeItem* row);
    bool isIdle() const { return m_builds.empty(); }
    /// Whether new rows appear in the tree at once, or are left to the filter.
    void setShowsRows(bool showsRows) { m_showsRows = showsRows; }

    /// Does a piece; false if nothing is left.
    bool step();

private:
    struct Build {
        ObjectTreeItem* parent;           // not owned: cancelled before it goes
        QList<QTreeWidgetItem*> unshown;  ///< rows that exist and are not in the tree yet
    };

    bool createRows(Build& build);
    void createRow(Build& build, const QBIdentifierCandidateSnapshot& record);
    bool isPortionFull(const Build& build) const;
    void showPortion(Build& build);
    void finishFirst();

    ObjectTreeStore& m_store;
    const Reader m_reader;
    const Finished m_finished;
    bool m_showsRows = true;
    std::deque<Build> m_builds;
};

}  // namespace QB
