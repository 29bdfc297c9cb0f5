#include "canvas/view/overview_map.h"

#include <algorithm>
#include <iterator>

#include <QMouseEvent>
#include <QPainter>

#include "canvas/base/canvas_style.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/item.h"
#include "canvas/items/item_geometry.h"
#include "canvas/links/join_link.h"
#include "canvas/view/canvas_extent.h"
#include "canvas/view/lumo_ui_view.h"
#include "platform/lumo/lumo_control.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"

namespace QB::DiagramLumo {

namespace {

constexpr int distanceToEdge = 8;
constexpr int largestWidth = 220;
constexpr int largestHeight = 150;
constexpr int shareOfView = 3;  // at most a third of the view either way
constexpr int extentMargin = 40;
constexpr double mostlySeen = 1.5;   // the extent in views, either way
constexpr double lineOpacity = 0.4;  // boxes are what is looked for

QRectF toQt(const LumoRect& rect) {
    return {double(rect.origin.x), double(rect.origin.y), double(rect.size.width),
            double(rect.size.height)};
}

QColor toQt(const LumoColor& color) {
    QColor result(color.red, color.green, color.blue);
    result.setAlphaF(color.alpha);
    return result;
}

QLineF lineOf(const QBLumoJoinLink* link, const QBLumoDiagram* diagram) {
    const Route& route = link->routes().front();
    const LumoPoint start = link->translatePoint(route.start, diagram);
    const LumoPoint end = link->translatePoint(route.end, diagram);
    return {double(start.x), double(start.y), double(end.x), double(end.y)};
}

}  // namespace

// A child of the viewport: scrolling then moves the pixels below it instead of painting all anew.
OverviewMap::OverviewMap(QBLumoUIView* view) : QWidget(view->viewport()), m_view(view) {
    setObjectName(QStringLiteral("canvasOverview"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoMousePropagation);
    setCursor(Qt::PointingHandCursor);
    translateTexts();
    hide();
    connect(view, &LumoUIScrollView::contentChanged, this, &OverviewMap::refresh);
    connect(view, &LumoUIScrollView::displayChanged, this, &OverviewMap::refresh);
}

void OverviewMap::translateTexts() {
    setAccessibleName(Tolk::localize(Tolk::TextCanvasOverview));
    setToolTip(Tolk::localize(Tolk::TextCanvasOverviewHint));
}

void OverviewMap::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) translateTexts();
}

void OverviewMap::setWanted(bool wanted) {
    m_wanted = wanted;
    refresh();
}

OverviewMap::Content OverviewMap::currentContent() const {
    Content content;
    const QBLumoDiagram* const diagram = m_view->lumoDiagram();
    if (!diagram || !m_wanted) return content;
    content.room = m_view->viewport()->size();
    content.dark = isDarkTheme();
    content.display = m_view->getControl()->getDisplayRect();
    for (const QBLumoItem* item : diagram->items())
        if (item->getVisible())
            content.boxes.push_back(
                {lumoInflateRect(item->getRect(), -itemInsetX, -itemInsetY), item->getSelected()});
    for (const QBLumoJoinLink* link : diagram->joinLinks())
        if (link->isShown()) content.lines.push_back(lineOf(link, diagram));
    content.extent = lumoUnionRect(
        lumoInflateRect(contentExtent(diagram), extentMargin, extentMargin), content.display);
    return content;
}

void OverviewMap::refresh() {
    Content content = currentContent();
    const bool useful = !content.boxes.empty() &&
                        !lumoContainsRect(content.display, contentExtent(m_view->lumoDiagram()));
    if (!useful) {
        hide();
        return;
    }
    if (isVisible() && content == m_content) return;
    m_content = std::move(content);
    if (!place()) {
        hide();
        return;
    }
    show();
    raise();
    update();
}

/// False where it had better not be: it would cover items, and little lies out of sight.
bool OverviewMap::place() {
    const QSize room = m_content.room;
    const QSize largest(std::min(largestWidth, room.width() / shareOfView),
                        std::min(largestHeight, room.height() / shareOfView));
    const QSize size = toQt(m_content.extent)
                           .size()
                           .scaled(largest, Qt::KeepAspectRatio)
                           .toSize()
                           .expandedTo({1, 1});
    const int right = room.width() - distanceToEdge - size.width();
    const int bottom = room.height() - distanceToEdge - size.height();
    const QPoint corners[] = {{right, bottom},
                              {right, distanceToEdge},
                              {distanceToEdge, bottom},
                              {distanceToEdge, distanceToEdge}};
    const auto isFree = [&](QPoint corner) {
        return !coversItem({corner, size});
    };
    const auto* const free = std::find_if(std::begin(corners), std::end(corners), isFree);
    const bool isFound = free != std::end(corners);
    setGeometry({isFound ? *free : corners[0], size});
    const LumoSize& whole = m_content.extent.size;
    const LumoSize& seen = m_content.display.size;
    return isFound || whole.width > mostlySeen * seen.width ||
           whole.height > mostlySeen * seen.height;
}

bool OverviewMap::coversItem(const QRect& place) const {
    const QRectF display = toQt(m_content.display);
    const double scale = display.width() / m_content.room.width();
    const QRectF covered(display.topLeft() + QPointF(place.topLeft()) * scale,
                         QSizeF(place.size()) * scale);
    return std::any_of(m_content.boxes.begin(), m_content.boxes.end(),
                       [&](const Box& box) { return toQt(box.rect).intersects(covered); });
}

QTransform OverviewMap::diagramToMap() const {
    const QRectF extent = toQt(m_content.extent);
    if (extent.isEmpty()) return {};
    return QTransform::fromTranslate(-extent.x(), -extent.y()) *
           QTransform::fromScale(width() / extent.width(), height() / extent.height());
}

void OverviewMap::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const ThemePalette& colors = themePalette();
    painter.fillRect(rect(), toQt(colors.canvas));
    painter.setRenderHint(QPainter::Antialiasing);
    const QTransform map = diagramToMap();

    painter.setPen(toQt(Style::linkGrey));
    painter.setOpacity(lineOpacity);
    for (const QLineF& line : m_content.lines)
        painter.drawLine(map.map(line));
    painter.setOpacity(1);
    for (const Box& box : m_content.boxes) {
        painter.setPen(QPen(toQt(Style::linkGrey), 0.5));
        painter.setBrush(toQt(box.selected ? Style::accentStrong : colors.itemBackground));
        painter.drawRect(map.mapRect(toQt(box.rect)));
    }
    painter.setPen(QPen(toQt(Style::symbolAccent), 1.5));
    painter.setBrush(toQt(Style::hover));
    const QRectF inner = QRectF(rect()).adjusted(1, 1, -1, -1);
    painter.drawRect(map.mapRect(toQt(m_content.display)).intersected(inner));
    painter.setPen(toQt(Style::linkGrey));
    painter.setBrush(Qt::NoBrush);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void OverviewMap::centreViewOn(const QPoint& point) {
    const QPointF target = diagramToMap().inverted().map(QPointF(point));
    const double zoom = m_view->getControl()->getZoom();
    const QSizeF view = m_view->viewport()->size();
    m_view->getControl()->setScrollOrigin(
        {int(target.x() * zoom - view.width() / 2), int(target.y() * zoom - view.height() / 2)});
}

void OverviewMap::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) centreViewOn(event->pos());
}

void OverviewMap::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() & Qt::LeftButton) centreViewOn(event->pos());
}

void OverviewMap::wheelEvent(QWheelEvent* event) {
    // Over the map the wheel means the diagram's size, with Ctrl or without.
    if (event->angleDelta().y() == 0) return;
    event->angleDelta().y() > 0 ? m_view->zoomIn() : m_view->zoomOut();
}

}  // namespace QB::DiagramLumo
