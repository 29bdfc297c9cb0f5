#include "canvas/controls/list_view.h"

#include <algorithm>
#include <memory>

namespace QB::DiagramLumo {

QBLumoListView::Cell::Cell(QBLumoListView* list) : m_list(list) {}

void QBLumoListView::Cell::customLayout() {
    if (m_row >= 0 && m_list->m_delegate)
        m_list->m_delegate->layoutCell(m_list, m_list->getRowData(size_t(m_row)), this);
    QBLumoObject::customLayout();
}

void QBLumoListView::Cell::paint(LumoPaintConfig* config, LumoRect rect) {
    if (m_row >= 0 && m_list->m_delegate)
        m_list->m_delegate->paintCell(m_list, m_list->getRowData(size_t(m_row)), this, config,
                                      rect);
    QBLumoObject::paint(config, rect);
}

void QBLumoListView::setRowHeight(int32_t height) {
    m_rowHeight = height;
    setRequireToVerifyLayout(true);
}

void QBLumoListView::setCellDelegate(ICellDelegate* delegate) {
    m_delegate = delegate;
}

std::vector<QBLumoListView::Cell*> QBLumoListView::cells() {
    for (size_t index = 0; index < m_cells.size(); ++index)
        cellAt(index);
    return m_cells;
}

std::vector<QBLumoListView::Cell*> QBLumoListView::existingCells() const {
    std::vector<Cell*> existing;
    std::copy_if(m_cells.begin(), m_cells.end(), std::back_inserter(existing),
                 [](const Cell* cell) { return cell; });
    return existing;
}

QBLumoListView::Cell* QBLumoListView::cellAt(size_t index) {
    if (index >= m_cells.size()) return nullptr;
    return m_cells[index] ? m_cells[index] : makeCell(index);
}

QBLumoListView::Cell* QBLumoListView::makeCell(size_t index) {
    auto cell = std::make_unique<Cell>(this);
    cell->m_row = int64_t(index);
    cell->setRect(rowRect(index));
    if (m_delegate) m_delegate->setupCell(this, cell.get());
    m_cells[index] = cell.get();
    cell->setRequireToVerifyLayout(true);
    addChild(cell.release());
    updateRow(index);
    return m_cells[index];
}

void QBLumoListView::destroyLastCell() {
    const std::unique_ptr<Cell> cell(m_cells.back());
    m_cells.pop_back();
    // Leaves before it dies, so that a drag from it ends with its drop.
    if (cell) removeChild(cell.get());
}

const QBLumoListView::Row& QBLumoListView::getRowData(size_t index) const {
    return m_rows.at(index);
}

void QBLumoListView::setRowData(std::vector<Row> rows) {
    while (m_cells.size() > rows.size())
        destroyLastCell();
    m_rows = std::move(rows);
    m_cells.resize(m_rows.size(), nullptr);
    for (size_t index = 0; index < m_cells.size(); ++index)
        updateRow(index);
    makeShownCells();
    setRequireToVerifyLayout(true);
}

void QBLumoListView::updateRow(size_t index) {
    Cell* const cell = index < m_cells.size() ? m_cells[index] : nullptr;
    if (!cell) return;
    if (m_delegate) m_delegate->updateCell(this, m_rows[index], cell);
    cell->invalidate();
    cell->flushDirtyRect();
}

void QBLumoListView::setShownRect(const LumoRect& rect) {
    m_shown = rect;
    makeShownCells();
}

void QBLumoListView::makeShownCells() {
    if (!m_shown || m_rowHeight <= 0) {
        cells();
        return;
    }
    const auto first = size_t(std::max(lumoMinY(*m_shown), 0) / m_rowHeight);
    const auto end = size_t(std::max(lumoMaxY(*m_shown) + m_rowHeight - 1, 0) / m_rowHeight);
    for (size_t index = first; index < std::min(end, m_cells.size()); ++index)
        cellAt(index);
}

LumoRect QBLumoListView::rowRect(size_t index) const {
    return {0, int32_t(index) * m_rowHeight, lumoWidth(getRect()), m_rowHeight};
}

void QBLumoListView::autoResize() {
    LumoRect rect = getRect();
    rect.size.height = int32_t(m_rows.size()) * m_rowHeight;
    setRect(rect);
}

void QBLumoListView::customLayout() {
    for (size_t index = 0; index < m_cells.size(); ++index)
        if (m_cells[index]) m_cells[index]->setRect(rowRect(index));
    QBLumoObject::customLayout();
}

}  // namespace QB::DiagramLumo
