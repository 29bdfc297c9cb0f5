#include "platform/lumo/lumo_view_control.h"

#include <algorithm>
#include <cmath>

#include <QCoreApplication>
#include <QEvent>
#include <QScopedValueRollback>
#include <QScrollBar>

#include "platform/lumo/lumo_context.h"
#include "platform/lumo/lumo_diagram.h"
#include "platform/lumo/lumo_dispatch.h"

namespace {

constexpr double smallestZoom = 0.25;
constexpr double largestZoom = 4;
constexpr double zoomStep = 1.1;
constexpr int barStep = 20;
constexpr int fitMargin = 20;

/// Where a window of @p extent at @p origin must go to show [@p from, @p from + @p length).
double shownOrigin(double origin, double extent, double from, double length) {
    const bool covers = from <= origin && from + length >= origin + extent;
    const bool inside = from >= origin && from + length <= origin + extent;
    if (covers || inside) return origin;
    if (from < origin || length > extent) return from;
    return from + length - extent;
}

/// Of all of @p rect, at most 1.
double zoomToShow(const LumoRect& rect, const QSize& room) {
    return std::min(
        {1.0, double(room.width()) / lumoWidth(rect), double(room.height()) / lumoHeight(rect)});
}

/// The union of what the children of @p diagram paint.
LumoRect contentOf(const LumoDiagram* diagram) {
    LumoRect all;
    for (const LumoObject* child : diagram->getChildren()) {
        if (!child->getVisible()) continue;
        LumoRect rect = child->customDirtyRect();
        rect.origin += child->getRect().origin;
        all = lumoUnionRect(all, rect);
    }
    return all;
}

}  // namespace

LumoUIScrollView::Control::Control(LumoUIScrollView* view, LumoContext* context)
    : LumoControl(context), m_view(view) {}

LumoDiagram* LumoUIScrollView::Control::diagram() const {
    return getContext() ? getContext()->getActiveDiagram(this) : nullptr;
}

bool LumoUIScrollView::Control::isReady() const {
    return m_shown && diagram();
}

// ---- where the view stands ----

QSize LumoUIScrollView::Control::canvasSize() const {
    const LumoDiagram* const shown = diagram();
    if (!shown) return {0, 0};
    const LumoSize size = shown->getRect().size;
    return {int(std::ceil(size.width * m_zoom)), int(std::ceil(size.height * m_zoom))};
}

QRect LumoUIScrollView::Control::canvasInControl() const {
    return {QPoint(-m_offset.x, -m_offset.y), canvasSize()};
}

LumoControlPoint LumoUIScrollView::Control::middle() const {
    return {m_view->viewport()->width() / 2, m_view->viewport()->height() / 2};
}

LumoControlPoint LumoUIScrollView::Control::roundedOrigin() const {
    return {int32_t(std::lround(m_origin.x * m_zoom)), int32_t(std::lround(m_origin.y * m_zoom))};
}

LumoRect LumoUIScrollView::Control::diagramRectOf(const QRect& rect) const {
    const LumoPoint from = controlSpaceToDiagramSpace({rect.left(), rect.top()});
    const LumoPoint last = controlSpaceToDiagramSpace({rect.right(), rect.bottom()});
    // One more: the last pixel may begin in one and end in the next.
    return {from, {last.x - from.x + 2, last.y - from.y + 2}};
}

LumoRect LumoUIScrollView::Control::getDisplayRect() const {
    const QRect shown = m_view->viewport()->rect() & canvasInControl();
    if (shown.isEmpty()) return {};
    const LumoPoint from = controlSpaceToDiagramSpace({shown.left(), shown.top()});
    const LumoPoint last = controlSpaceToDiagramSpace({shown.right(), shown.bottom()});
    return {from, {last.x - from.x + 1, last.y - from.y + 1}};
}

void LumoUIScrollView::Control::setScrollOrigin(LumoControlPoint origin) {
    m_wish.reset();
    if (origin == m_offset) return;
    m_origin = {origin.x / m_zoom, origin.y / m_zoom};
    applyOrigin();
}

void LumoUIScrollView::Control::scrollToVisible(const LumoRect& rect, bool centre) {
    if (!isReady()) {
        m_wish = Wish{rect, centre};
        return;
    }
    const double width = m_view->viewport()->width() / m_zoom;
    const double height = m_view->viewport()->height() / m_zoom;
    const LumoDoubleRect wanted(rect);
    if (centre) {
        m_origin = {wanted.origin.x + (wanted.size.width - width) / 2,
                    wanted.origin.y + (wanted.size.height - height) / 2};
    } else {
        m_origin = {shownOrigin(m_origin.x, width, wanted.origin.x, wanted.size.width),
                    shownOrigin(m_origin.y, height, wanted.origin.y, wanted.size.height)};
    }
    applyOrigin();
}

void LumoUIScrollView::Control::shown() {
    if (m_shown) return resized();
    m_shown = true;
    diagramChanged();
}

void LumoUIScrollView::Control::resized() {
    if (!isReady()) return;
    updateBars();
    applyOrigin();
    Q_EMIT m_view->displayChanged();
}

void LumoUIScrollView::Control::diagramChanged() {
    m_view->viewport()->update();
    Q_EMIT m_view->contentChanged();
    if (m_shown) updateBars();
    if (!isReady()) return;
    applyOrigin();
    if (m_wish) {
        const Wish wish = *std::exchange(m_wish, std::nullopt);
        scrollToVisible(wish.rect, wish.centre);
    }
    Q_EMIT m_view->displayChanged();
}

void LumoUIScrollView::Control::updateBars() {
    m_barsAgain = true;
    if (m_settingBars) return;  // a bar that came or went has changed the viewport
    const QScopedValueRollback<bool> guard(m_settingBars, true);
    for (int round = 0; m_barsAgain && round < 4; ++round) {
        m_barsAgain = false;
        setRanges();
    }
}

void LumoUIScrollView::Control::setRanges() {
    const QSize canvas = canvasSize();
    const QSize most = m_view->maximumViewportSize();
    const bool fits = canvas.width() <= most.width() && canvas.height() <= most.height();
    const QSize page = fits ? most : m_view->viewport()->size();
    const auto set = [](QScrollBar* bar, int canvasLength, int pageLength) {
        bar->setRange(0, std::max(0, canvasLength - pageLength));
        bar->setPageStep(pageLength);
        bar->setSingleStep(barStep);
    };
    set(m_view->horizontalScrollBar(), canvas.width(), page.width());
    set(m_view->verticalScrollBar(), canvas.height(), page.height());
}

/// Clamps m_origin and takes it to bars and widget; before there is something to scroll it waits.
void LumoUIScrollView::Control::applyOrigin() {
    const LumoControlPoint before = m_offset;
    m_offset = roundedOrigin();
    if (!isReady()) return;
    QScrollBar* const across = m_view->horizontalScrollBar();
    QScrollBar* const down = m_view->verticalScrollBar();
    const LumoControlPoint clamped{std::clamp(m_offset.x, 0, across->maximum()),
                                   std::clamp(m_offset.y, 0, down->maximum())};
    if (clamped.x != m_offset.x) m_origin.x = clamped.x / m_zoom;
    if (clamped.y != m_offset.y) m_origin.y = clamped.y / m_zoom;
    m_offset = clamped;
    {
        const QScopedValueRollback<bool> guard(m_settingBars, true);
        across->setValue(m_offset.x);
        down->setValue(m_offset.y);
    }
    if (m_offset != before) canvasMovedBy(before.x - m_offset.x, before.y - m_offset.y);
}

void LumoUIScrollView::Control::barsMoved() {
    if (m_settingBars || !isReady()) return;
    const LumoControlPoint before = m_offset;
    m_offset = {m_view->horizontalScrollBar()->value(), m_view->verticalScrollBar()->value()};
    if (m_offset.x != before.x) m_origin.x = m_offset.x / m_zoom;
    if (m_offset.y != before.y) m_origin.y = m_offset.y / m_zoom;
    canvasMovedBy(before.x - m_offset.x, before.y - m_offset.y);
}

/// Moves the pixels that stay and paints the rest.
void LumoUIScrollView::Control::canvasMovedBy(int dx, int dy) {
    QWidget* const viewport = m_view->viewport();
    m_dirty.translate(dx, dy);
    viewport->scroll(dx, dy, viewport->rect());
    // Widgets over the canvas stay, what of them was moved along must go.
    for (const QObject* child : viewport->children()) {
        const auto* const widget = qobject_cast<const QWidget*>(child);
        if (!widget || widget->isHidden()) continue;
        viewport->update(widget->geometry());
        viewport->update(widget->geometry().translated(dx, dy));
    }
    dispatcher()->pointerStaysWhileCanvasMoves();
    Q_EMIT m_view->displayChanged();
}

// ---- zoom ----

void LumoUIScrollView::Control::setZoom(double zoom, LumoControlPoint fixed) {
    const double wanted = std::clamp(zoom, smallestZoom, largestZoom);
    if (!(std::abs(wanted - m_zoom) > 0)) return;
    const LumoDoublePoint kept{m_origin.x + fixed.x / m_zoom, m_origin.y + fixed.y / m_zoom};
    m_zoom = wanted;
    m_origin = {kept.x - fixed.x / m_zoom, kept.y - fixed.y / m_zoom};
    m_view->viewport()->update();
    if (isReady()) updateBars();
    const LumoControlPoint before = m_offset;
    applyOrigin();
    if (m_offset != before) return;  // told already
    dispatcher()->pointerStaysWhileCanvasMoves();
    Q_EMIT m_view->displayChanged();
}

void LumoUIScrollView::Control::zoomBy(double steps, LumoControlPoint fixed) {
    constexpr double noise = 1e-6;
    if (std::abs(steps) < noise) return;
    const double level = std::log(m_zoom) / std::log(zoomStep);
    double target = level + steps;
    if (!(std::abs(steps - std::round(steps)) > noise))
        target = (steps > 0 ? std::floor(level + noise) : std::ceil(level - noise)) + steps;
    setZoom(std::pow(zoomStep, target), fixed);
}

void LumoUIScrollView::Control::zoomIn() {
    zoomBy(1, middle());
}

void LumoUIScrollView::Control::zoomOut() {
    zoomBy(-1, middle());
}

void LumoUIScrollView::Control::zoomReset() {
    setZoom(1, middle());
}

void LumoUIScrollView::Control::fitToView() {
    if (!isReady()) return;
    const LumoRect content = contentOf(diagram());
    if (content.size == LumoSize{}) return zoomReset();
    const LumoRect framed = lumoInflateRect(content, fitMargin, fitMargin);
    setZoom(zoomToShow(framed, m_view->maximumViewportSize()), {0, 0});
    // Where that brought bars there is less room.
    setZoom(std::min(m_zoom, zoomToShow(framed, m_view->viewport()->size())), {0, 0});
    scrollToVisible(framed, true);
}

// ---- what became dirty ----

int LumoUIScrollView::Control::flushEventType() {
    static const int type = QEvent::registerEventType();
    return type;
}

void LumoUIScrollView::Control::layoutWanted() {
    if (std::exchange(m_flushPosted, true)) return;
    QCoreApplication::postEvent(m_view, new QEvent(QEvent::Type(flushEventType())));
}

void LumoUIScrollView::Control::layOut() {
    if (LumoDiagram* const shown = diagram()) shown->layout();
    if (LumoDiagram* const shown = diagram()) shown->flushDirtyRect();
}

void LumoUIScrollView::Control::flush() {
    layOut();
    m_flushPosted = false;
    if (!m_dirty.isEmpty()) m_view->viewport()->update(std::exchange(m_dirty, {}));
    Q_EMIT m_view->contentChanged();
}

void LumoUIScrollView::Control::prepareToPaint(const QRegion& region) {
    layOut();
    m_dirty -= region;
}

void LumoUIScrollView::Control::updateRegion(const LumoRect& diagramRect) {
    const double left = diagramRect.origin.x * m_zoom - m_offset.x;
    const double top = diagramRect.origin.y * m_zoom - m_offset.y;
    const double right = left + diagramRect.size.width * m_zoom;
    const double bottom = top + diagramRect.size.height * m_zoom;
    QRect rect;
    rect.setCoords(int(std::floor(left)) - 1, int(std::floor(top)) - 1, int(std::ceil(right)),
                   int(std::ceil(bottom)));
    rect &= m_view->viewport()->rect();
    if (rect.isEmpty() || !m_view->isVisible()) return;
    m_dirty += rect;
    layoutWanted();
}

// ---- what the diagram wants of the widget ----

void LumoUIScrollView::Control::cursorChanged(int code) {
    m_view->showCursor(code);
}

void LumoUIScrollView::Control::rightClicked(const LumoMessageRightClickParam& param,
                                             LumoPoint point) {
    const LumoControlPoint place = diagramSpaceToControlSpace(point);
    const QPoint onScreen = m_view->viewport()->mapToGlobal({place.x, place.y});
    Q_EMIT m_view->signalRightClickMenu(m_view, LumoUIRightClickParam(param.block(), onScreen));
}
