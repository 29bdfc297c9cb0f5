#pragma once

#include <QTableView>
#include <memory>
#include <vector>

#include "rows/row_key.h"

class QHBoxLayout;
class QMimeData;

namespace QB {

class QBNestedListRowWidget;

/// What a list asks its panel about the rows. Rows count from 0; a row outside the list is answered
/// with nothing, since a screen reader may ask for one that has just gone.
class IQBNestedListRowProvider {
public:
    virtual ~IQBNestedListRowProvider() = default;

    virtual int rowCount() const = 0;
    virtual QBRowKey rowKey(int row) const = 0;
    /// Rows of one kind can share widgets. -1: the row has no widget.
    virtual int rowKind(int row) const = 0;
    /// A new widget for rows of the kind of @p row, its signals connected. updateRowWidget follows.
    /// Ownership: @p parent's.
    virtual QBNestedListRowWidget* createRowWidget(int row, QWidget* parent) = 0;
    /// Makes @p widget, which was made for a row of that kind, show @p row: component, level and
    /// marks.
    virtual void updateRowWidget(QBNestedListRowWidget* widget, int row) = 0;
    /// Called once for each widget, between createRowWidget and the first updateRowWidget.
    virtual void rowWidgetCreated(QBNestedListRowWidget* /*widget*/) {}
};

/// A list of rows that are widgets: one stretched column, each row indented by its level.
///
/// Widgets exist for the rows that show and for a page more; they come from a pool. All else
/// behaves as if each row had one: rowWidget() makes it on the spot.
///
/// Keys: arrows, Home, End, Page keys with Shift and Ctrl choose rows; Left and Right go along the
/// parts of the current row (mirrored right to left); Return, Enter, F2 and Space click the marked
/// part, or the row's main part; Insert, Delete, Ctrl+Up, Ctrl+Down and the Menu key ask the panel.
/// Tab leaves the list. Return and Enter do not go on to a dialog around the list.
/// Thread: main.
class QBNestedListTableView : public QTableView {
    Q_OBJECT

public:
    explicit QBNestedListTableView(QWidget* parent = nullptr);
    ~QBNestedListTableView() override;

    /// What a panel floats over the lower edge of the list; never null, owned by the view.
    QHBoxLayout* bottomLayout() const;

    /// @p provider outlives the view or is taken away with null.
    void setRowProvider(IQBNestedListRowProvider* provider);

    /// Shows the rows as the provider has them now. The current row, the selection and the scroll
    /// position stay with the rows that are still there, recognised by their keys. @p rowToSelect,
    /// if not negative, becomes the only selected row instead, and is scrolled into view.
    void refreshRows(int rowToSelect = -1);
    /// Lets go of all components, keeping in mind what refreshRows() restores: the rows are stale
    /// and nobody sees them.
    void releaseRows();
    /// Fills the widgets that exist again, after marks changed.
    void updateRowWidgets();

    /// The widget of that row, made now if there was none; null outside the rows and for a row
    /// without widget. It shows that row until the next event is processed; a row that is on
    /// screen keeps its widget until it is refreshed or scrolled away.
    QBNestedListRowWidget* rowWidget(int row);
    /// As rowWidget(); hides that of the base, which knows nothing of rows on demand.
    QWidget* indexWidget(const QModelIndex& index);
    /// The row that shows @p widget, a row widget or anything in one; -1 if none does.
    int rowOf(const QWidget* widget) const;

    /// The key that @p row had when the rows were refreshed last; invalid outside the rows. Safe
    /// also where the model has changed since.
    QBRowKey shownKey(int row) const;
    /// -1 if there is none.
    int currentRow() const;
    /// In ascending order.
    std::vector<int> selectedRowNumbers() const;
    /// Makes @p row the current and only selected one; nothing outside the rows.
    void selectOnly(int row);
    /// Makes the first row the current one, though not a selected one, if the list has the focus
    /// and no current row: keys shall have a row that they act on.
    void ensureCurrentRow();

    /// Rows can be moved by dragging; rowDropped() says where to.
    void setRowDragEnabled(bool isEnabled);
    /// What a dragged row carries, by which a list knows it from all else. Ownership: the caller's.
    static QMimeData* newRowMimeData();

Q_SIGNALS:
    void addRequested();
    void removeRequested();
    void moveUpRequested();
    void moveDownRequested();
    /// @p position is in the viewport, at the current row for the Menu key.
    void menuRequested(QPoint position);
    /// The current row was dropped before row @p target, -1 behind the last one.
    void rowDropped(int target);
    /// The user chose another row; not while rows are refreshed. -1: none.
    void currentRowChosen(int row);
    /// The user chose other rows; not while rows are refreshed.
    void selectionChosen();

protected:
    bool event(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void showEvent(QShowEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void updateGeometries() override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected,
                          const QItemSelection& deselected) override;

private:
    friend class QBNestedListTableViewItemDelegate;

    /// Gives the row's widget its place, if there is one: indented from the leading edge.
    void placeRow(int row) const;

    class Private;
    const std::unique_ptr<Private> d;
};

}  // namespace QB
