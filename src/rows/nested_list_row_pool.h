#pragma once

#include <QPointer>
#include <functional>
#include <map>
#include <set>
#include <vector>

#include "rows/nested_list_row_widget.h"

namespace QB {

class IQBNestedListRowProvider;

/// The widgets of the rows that show, and spare ones by kind for those that will.
///
/// Widgets are passed on from row to row and destroyed only from the event loop: a row may go
/// while one of its labels is telling of a click. The row that the mouse holds is not passed on.
/// Thread: main.
class QBNestedListRowPool {
public:
    /// @p parent becomes the parent of the widgets; not owned, outlives this.
    explicit QBNestedListRowPool(QWidget* parent) : m_parent(parent) {}

    /// Not owned; null: no rows.
    void setProvider(IQBNestedListRowProvider* provider) { m_provider = provider; }
    /// Called for each new widget, before it is filled.
    std::function<void(QBNestedListRowWidget*)> created;

    /// Null if that row has no widget at present.
    QBNestedListRowWidget* find(int row) const;
    /// Makes the widget of a row that has none; null for a row without. It may be hidden.
    QBNestedListRowWidget* make(int row);
    /// The row of @p widget, or of what holds it; -1: none.
    int rowOf(const QWidget* widget) const;
    std::vector<int> rows() const;

    /// Fills the widget of @p row again.
    void update(int row);
    /// Gives each widget to the row that @p newRow names for its row, where that is of the same
    /// kind, and fills it again; -1 and all others become spare.
    void renumber(const std::function<int(int)>& newRow);
    /// Makes the widgets of rows for which @p isWanted answers no spare.
    void keepOnly(const std::function<bool(int)>& isWanted);
    /// Hides what is spare and lets go of what is too much.
    void tidySpares();

    /// The mouse was pressed over @p row.
    void holdRow(int row) { m_held = find(row); }

private:
    struct Shown {
        QBNestedListRowWidget* widget;  // not owned: a child of the parent
        int kind;
    };

    QBNestedListRowWidget* takeSpare(int kind);
    void makeSpare(const Shown& shown);
    bool isHeld(const QBNestedListRowWidget* widget) const;

    QWidget* const m_parent;                                      // not owned
    IQBNestedListRowProvider* m_provider = nullptr;               // not owned
    std::map<int, Shown> m_shown;                                 // by row
    std::map<int, std::vector<QBNestedListRowWidget*>> m_spares;  // by kind; not owned: children
    QPointer<QBNestedListRowWidget> m_held;
};

}  // namespace QB
