#pragma once

#include <QList>
#include <QString>
#include <QStringMatcher>
#include <cstddef>
#include <vector>

#include "diagrampanel/object_tree_store.h"

namespace QB {

/// Finds rows by a part of their name, whatever its case, among the rows that are loaded.
///
/// The tree shows the matches and the rows above them, which stand open. Below a table that
/// matches all its rows show; below any other match, if nothing there matches, too.
/// The rest is taken out of the tree: hiding rows in place costs a QTreeView more than 20
/// microseconds a row. Without a text all rows show, opened as the user had left them.
class ObjectTreeFilter {
public:
    explicit ObjectTreeFilter(ObjectTreeStore& store);

    /// The next pass looks for @p text; empty for no filter.
    void setText(const QString& text);
    bool isActive() const { return !m_text.isEmpty(); }

    /// Begins a pass over all rows; one that is under way is given up. Only while no rows are
    /// created, and rows must not be created or destroyed before it has ended or was cancelled.
    void start();
    void cancel();
    bool isRunning() const { return m_phase != Phase::Idle; }

    /// Whether the next step takes out so many rows that it needs a slice of its own.
    bool isNextStepLong() const;
    /// Does a piece of the pass; false if nothing is left.
    bool step();

private:
    enum class Phase { Idle, Matching, Showing };
    enum class Stage { Collecting, Replacing, Adding, Opening };
    /// A row among whose rows the search for matches is under way.
    struct Search {
        ObjectTreeItem* row;
        std::size_t next = 0;
    };
    /// A row below which the tree is to show what passes.
    struct Target {
        ObjectTreeItem* row;
        bool showsAll;
    };

    void matchStep();
    void leaveSearch();
    bool match(const ObjectTreeItem* row) const;
    void showStep();
    void nextTarget();
    void collectStep();
    void replaceShown();
    void addStep();
    void openStep();
    bool isShownAlready() const;
    bool showsAllBelow(const ObjectTreeItem* row) const;

    ObjectTreeStore& m_store;
    QString m_text;
    QStringMatcher m_matcher;
    Phase m_phase = Phase::Idle;
    std::vector<Search> m_searches;  ///< from the root down to the row at hand

    std::vector<Target> m_targets;
    Target m_target{nullptr, false};
    Stage m_stage = Stage::Collecting;
    int m_next = 0;                    ///< first row that the stage has not come to
    QList<QTreeWidgetItem*> m_wanted;  ///< what the tree is to show below m_target
};

}  // namespace QB
