#pragma once

#include <QApplication>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDropEvent>
#include <QMimeData>
#include <functional>
#include <memory>

#include "rows/nested_list_table_view.h"

namespace QB::Test {

/// Drags the current row of @p view to @p position of its viewport and drops it there, as the
/// events that a platform sends; the offscreen one cannot drag by itself. @p before runs ahead of
/// the drop, or of leaving the list if not @p isDropped.
/// Whether the list took what was dragged.
inline bool dragRow(
    QBNestedListTableView* view, QPointF position, const std::function<void()>& before = [] {},
    bool isDropped = true, QMimeData* other = nullptr) {
    const std::unique_ptr<QMimeData> row(QBNestedListTableView::newRowMimeData());
    const QMimeData* mime = other == nullptr ? row.get() : other;
    const auto send = [view](QEvent& event) {
        QApplication::sendEvent(view->viewport(), &event);
    };
    QDragEnterEvent enter(position.toPoint(), Qt::MoveAction, mime, Qt::LeftButton, Qt::NoModifier);
    send(enter);
    if (!enter.isAccepted()) return false;
    QDragMoveEvent move(position.toPoint(), Qt::MoveAction, mime, Qt::LeftButton, Qt::NoModifier);
    send(move);
    before();
    QDragLeaveEvent leave;
    if (!isDropped) send(leave);
    QDropEvent drop(position, Qt::MoveAction | Qt::CopyAction, mime, Qt::LeftButton,
                    Qt::NoModifier);
    if (isDropped) send(drop);
    return move.isAccepted();
}

}  // namespace QB::Test
