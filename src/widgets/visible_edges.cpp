#include "widgets/visible_edges.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QMenu>
#include <QRadioButton>
#include <QStyle>
#include <QWidget>

namespace QB {
namespace {

constexpr int fusionShade = 140;  // how much darker Fusion's edges are, in percent

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

bool hasEdge(const QWidget* widget) {
    return qobject_cast<const QRadioButton*>(widget) || qobject_cast<const QCheckBox*>(widget) ||
           qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QMenu*>(widget);
}

void showEdge(QWidget* widget, const QColor& window) {
    if (!hasEdge(widget) || widget->palette().color(QPalette::Window) == window) return;
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Window, window);
    widget->setPalette(palette);
}

}  // namespace

QColor edgeColour(const QPalette& palette) {
    if (!isDark(palette)) return palette.color(QPalette::Mid);
    const QColor window = palette.color(QPalette::Window);
    const QColor text = palette.color(QPalette::WindowText);
    return QColor((window.red() + text.red()) / 2, (window.green() + text.green()) / 2,
                  (window.blue() + text.blue()) / 2);
}

QColor edgedWindowColour(const QPalette& palette) {
    return isDark(palette) ? edgeColour(palette).lighter(fusionShade)
                           : palette.color(QPalette::Window);
}

void showEdges(QWidget* root) {
    if (root->style()->objectName().compare(QLatin1String("fusion"), Qt::CaseInsensitive) != 0)
        return;
    const QWidget* const above = root->parentWidget() ? root->parentWidget() : root;
    const QColor window = edgedWindowColour(above->palette());
    showEdge(root, window);
    const auto children = root->findChildren<QWidget*>();
    for (QWidget* child : children)
        showEdge(child, window);
}

}  // namespace QB
