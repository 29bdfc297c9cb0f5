#pragma once

#include <memory>

#include "canvas/items/base_item_body.h"

class LumoTimer;

namespace QB::DiagramLumo {

/// Makes, fills and places what a row of a field list consists of, and hands the diagram what the
/// user does with it. A row is a map with "FieldName" (not for the wildcard), "IsWildCard" and
/// "Selected"; its cell has the objects "Background", "CheckBox" and "Label".
class QBLumoBaseItemBody::FieldCellDelegate : public QBLumoListView::ICellDelegate {
public:
    using Cell = QBLumoListView::Cell;
    using Row = QBLumoListView::Row;

    explicit FieldCellDelegate(QBLumoBaseItemBody* body);

    [[nodiscard]] static Row wildcardRow(bool selected);
    [[nodiscard]] static Row fieldRow(const std::string& name, bool selected);

    void setupCell(QBLumoListView* list, Cell* cell) override;
    void updateCell(QBLumoListView* list, const Row& row, Cell* cell) override;
    void layoutCell(QBLumoListView* list, const Row& row, Cell* cell) override;
    void paintCell(QBLumoListView* list, const Row& row, Cell* cell, LumoPaintConfig* config,
                   LumoRect rect) override;

    /// A drag from a field draws a link, and keeps the list still until it ends.
    virtual bool cellDragging(QBLumoListView* list, Cell* cell, LumoEvent event);
    virtual bool cellDrop(QBLumoListView* list, Cell* cell, LumoEvent event);
    virtual bool cellDragEnter(QBLumoListView* list, Cell* cell, LumoEvent event);
    virtual bool cellDragLeave(QBLumoListView* list, Cell* cell, LumoEvent event);
    virtual bool cellMouseUp(QBLumoListView* list, Cell* cell, LumoEvent event);

private:
    QBLumoBaseItemBody* const m_body;  // not owned: it owns this delegate
};

/// Shows that the mouse, or a link that is being drawn, is over a row.
class QBLumoBaseItemBody::FieldCellBackground : public QBLumoObject {
public:
    FieldCellBackground();
    void paint(LumoPaintConfig* config, LumoRect rect) override;

private:
    LumoColor stateColor() const;
};

/// Lies over a list, unseen, and scrolls it while a link is drawn over its first or last row.
class QBLumoBaseItemBody::ScrollViewExtraActionReceiver : public QBLumoObject {
public:
    /// Neither is owned; both live longer.
    ScrollViewExtraActionReceiver(QBLumoScrollView* view, QBLumoListView* list);
    ~ScrollViewExtraActionReceiver() override;

    virtual bool responderDragOver(LumoEvent event);
    virtual bool responderDragLeave(LumoEvent event);
    bool isScrolling() const;

private:
    int directionAt(LumoPoint point) const;
    void scroll(int direction);

    QBLumoScrollView* const m_view;  // not owned
    QBLumoListView* const m_list;    // not owned
    const std::unique_ptr<LumoTimer> m_timer;
    int m_direction = 0;
};

}  // namespace QB::DiagramLumo
