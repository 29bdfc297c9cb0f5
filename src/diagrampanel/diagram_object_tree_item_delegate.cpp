#include "diagrampanel/diagram_object_tree_item_delegate.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "diagrampanel/diagram_object_tree_panel_widget.h"
#include "diagrampanel/object_tree_item.h"
#include "engine/engine_linux.h"
#include "platform/tolk/tolk.h"

namespace QB {
namespace {

/// The icon in one colour: a blue sign on the blue of a selection would not be seen.
QIcon silhouette(const QIcon& icon, const QStyleOptionViewItem& option, const QColor& color) {
    QWindow* window = option.widget ? option.widget->window()->windowHandle() : nullptr;
    QPixmap pixmap = icon.pixmap(window, option.decorationSize);
    if (pixmap.isNull()) return icon;
    QPainter painter(&pixmap);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), color);
    painter.end();
    QIcon result;
    result.addPixmap(pixmap, QIcon::Normal);
    result.addPixmap(pixmap, QIcon::Selected);
    return result;
}

}  // namespace

QBDiagramObjectTreeItemDelegate::QBDiagramObjectTreeItemDelegate(
    QBDiagramObjectTreePanelWidget* panel)
    : QStyledItemDelegate(panel), m_panel(panel) {}

QBDiagramObjectTreeItemDelegate::~QBDiagramObjectTreeItemDelegate() = default;

void QBDiagramObjectTreeItemDelegate::initStyleOption(QStyleOptionViewItem* option,
                                                      const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    if (option->state & QStyle::State_Selected)
        option->icon =
            silhouette(option->icon, *option, option->palette.color(QPalette::HighlightedText));
    if (isCurrentSchema(index)) option->font.setBold(true);
    if (!index.data(ObjectTreeItem::LoadingRole).toBool()) return;
    option->font.setItalic(true);
    option->text += QStringLiteral("  ") + Tolk::localize(Tolk::TextLoading);
}

bool QBDiagramObjectTreeItemDelegate::isCurrentSchema(const QModelIndex& index) const {
    if (index.parent().isValid() || !m_panel->engine()) return false;
    const std::string schema = m_panel->engine()->currentSchema();
    return !schema.empty() && index.data().toString() == QString::fromStdString(schema);
}

bool QBDiagramObjectTreeItemDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                                const QStyleOptionViewItem& option,
                                                const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip)
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const bool isElided = sizeHint(option, index).width() > view->visualRect(index).width();
    QToolTip::showText(event->globalPos(), isElided ? index.data().toString() : QString(), view);
    return true;
}

}  // namespace QB
