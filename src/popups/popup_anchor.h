#pragma once

#include <QRect>
#include <QString>
#include <QWidget>
#include <functional>
#include <optional>
#include <utility>

namespace QB {

/// Where a popup opens: at a widget, or at a part of one, which may be an empty one, a point.
struct QBPopupAnchor {
    /// Implicit: a whole widget, by its accessible name.
    QBPopupAnchor(QWidget* whole)
        : widget(whole), area(whole->rect()), name(whole->accessibleName()) {}
    QBPopupAnchor(QWidget* around, const QRect& part, QString partName = {})
        : widget(around), area(part), name(std::move(partName)) {}

    QWidget* widget;  // not owned: used when the popup opens, and not kept
    QRect area;       ///< in the widget's coordinates
    QString name;     ///< of what the popup is for, to screen readers
};

/// For a popup that may have to open later, or once more; nothing where there is no place any more.
using QBPopupAnchorFinder = std::function<std::optional<QBPopupAnchor>()>;

}  // namespace QB
