#pragma once

#include <map>
#include <string>
#include <vector>

#include "canvas/base/object.h"
#include "model/variant.h"

namespace QB::DiagramLumo {

/// Cells of one height, one below the other, filled by a delegate from rows of data.
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
    std::vector<Cell*> cells() const { return m_cells; }
    const Row& getRowData(size_t index) const;
    std::vector<Row>& rows() { return m_rows; }
    /// Keeps the cells that remain and fills them anew; others are destroyed or made.
    void setRowData(std::vector<Row> rows);
    void updateRow(size_t index);

    void autoResize() override;

protected:
    void customLayout() override;

private:
    int32_t m_rowHeight = 20;
    std::vector<Cell*> m_cells;  // owned as children
    std::vector<Row> m_rows;
    ICellDelegate* m_delegate = nullptr;  // not owned
};

}  // namespace QB::DiagramLumo
