#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "canvas/base/object.h"
#include "model/variant.h"

namespace QB::DiagramLumo {

/// Cells of one height, one below the other, filled by a delegate from rows of data.
///
/// A cell is made when its row shows first or is asked for, and then lives until the rows shrink: a
/// table of 1,600 columns opens with the cells of a dozen. A list that was not told what shows
/// (setShownRect) shows all.
class QBLumoListView : public QBLumoObject {
public:
    using Row = std::map<std::string, QBVariant>;

    /// One row on the screen; its named objects are children of it.
    class Cell : public QBLumoObject {
    public:
        explicit Cell(QBLumoListView* list);
        QBLumoListView* getListView() const { return m_list; }
        std::map<std::string, LumoObject*>& namedObjects() { return m_named; }
        /// Counted from 0; -1 until placed.
        int64_t rowIndex() const { return m_row; }
        void paint(LumoPaintConfig* config, LumoRect rect) override;

    protected:
        void customLayout() override;

    private:
        friend class QBLumoListView;
        QBLumoListView* const m_list;                // not owned: the parent
        std::map<std::string, LumoObject*> m_named;  // not owned: children
        int64_t m_row = -1;
    };

    class ICellDelegate {
    public:
        virtual ~ICellDelegate() = default;
        /// Once for each cell: adds its objects.
        virtual void setupCell(QBLumoListView* list, Cell* cell) = 0;
        virtual void updateCell(QBLumoListView* list, const Row& row, Cell* cell) = 0;
        virtual void layoutCell(QBLumoListView* list, const Row& row, Cell* cell) = 0;
        virtual void paintCell(QBLumoListView* list, const Row& row, Cell* cell,
                               LumoPaintConfig* config, LumoRect rect) = 0;
    };

    void setRowHeight(int32_t height);
    int32_t getRowHeight() const { return m_rowHeight; }
    void setCellDelegate(ICellDelegate* delegate);  // not owned
    ICellDelegate* getCellDelegate() const { return m_delegate; }
    /// One for each row: makes those that are missing.
    std::vector<Cell*> cells();
    /// Those that were made so far, in the order of rows.
    std::vector<Cell*> existingCells() const;
    /// Makes the cell if it is missing; its rectangle is final. Null past the end.
    Cell* cellAt(size_t index);
    const Row& getRowData(size_t index) const;
    std::vector<Row>& rows() { return m_rows; }
    /// Keeps the cells that remain and fills them anew; those of rows that go are destroyed, after
    /// they got what ends a drag from them.
    void setRowData(std::vector<Row> rows);
    /// Fills the cell of a row anew, if it was made.
    void updateRow(size_t index);
    /// The part of the list, in its own space, that can be seen.
    void setShownRect(const LumoRect& rect);
    /// In own space; also of a row whose cell was not made.
    LumoRect rowRect(size_t index) const;

    void autoResize() override;

protected:
    void customLayout() override;

private:
    Cell* makeCell(size_t index);
    void destroyLastCell();
    void makeShownCells();

    int32_t m_rowHeight = 20;
    std::vector<Cell*> m_cells;  // owned as children; null where none was made yet
    std::vector<Row> m_rows;
    ICellDelegate* m_delegate = nullptr;  // not owned
    std::optional<LumoRect> m_shown;      // without: everything
};

}  // namespace QB::DiagramLumo
