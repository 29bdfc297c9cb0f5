#pragma once

#include <QAccessible>
#include <QHash>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QSet>
#include <QStandardItemModel>
#include <QTimer>
#include <optional>
#include <set>
#include <vector>

#include "rows/nested_list_row_pool.h"
#include "rows/nested_list_table_view.h"

class QDropEvent;
class QKeyEvent;

namespace QB {

/// What the view remembers and does behind its events.
class QBNestedListTableView::Private {
public:
    /// What a refresh brings back, by key.
    struct Memory {
        QBRowKey current;
        QSet<QBRowKey> selected;
        QBRowKey top;  // the first row that shows
        int topY = 0;  // where in the viewport it begins
    };

    explicit Private(QBNestedListTableView* owner);

    int count() const { return static_cast<int>(keys.size()); }
    int rowHeight() const { return q->verticalHeader()->defaultSectionSize(); }
    QModelIndex index(int row) const { return model->index(row, 0); }
    bool isSelected(int row) const { return q->selectionModel()->isSelected(index(row)); }
    bool isShowing(int row) const;

    Memory remember() const;
    void restoreSelection(const Memory& memory, const QHash<QBRowKey, int>& rows);
    void restoreScroll(const Memory& memory, const QHash<QBRowKey, int>& rows);
    QHash<QBRowKey, int> findRows(const QSet<QBRowKey>& wanted) const;
    void takeKeys();

    void fill();
    void forgetExtraRows();
    void dress(int row, QBNestedListRowWidget* widget);
    void dressAll();
    QRect rowGeometry(int row, const QBNestedListRowWidget* widget) const;

    QBLabel* markedPart(const QBNestedListRowWidget* widget) const;
    void tellRowEvent(int row, QAccessible::Event type);
    void movePart(int step);
    void clickPart();
    void showMark();

    /// Whether the key means more to the list than to a table.
    static bool isOwnKey(const QKeyEvent* event);
    void handleKey(const QKeyEvent* event);
    void askForMenu();
    bool isOwnRow(const QDropEvent* event) const;
    int dropTarget(const QPointF& position) const;
    void showDropLine(int target);
    void endDrop();

    void matchBackground();
    void updateRowHeight();
    void updateBottomMargins();
    void updateScrollRange();

    QBNestedListTableView* const q;
    QStandardItemModel* const model;  // owned by q
    QHBoxLayout* const bottom;        // owned by q
    IQBNestedListRowProvider* provider = nullptr;
    QBNestedListRowPool pool;
    QWidget* const dropLine;  // owned by the viewport
    std::vector<QBRowKey> keys;
    std::optional<Memory> released;  // set between releaseRows() and refreshRows()
    std::set<int> extraRows;         // asked for by rowWidget(), until the next event
    QTimer extraTimer;
    int partPlace = -1;  // among the parts of the current row; stays while rows go by; -1: none
    QBRowKey dragged;
    bool isRefreshing = false;
    bool isFilling = false;
    bool isUpdatingGeometries = false;
};

}  // namespace QB
