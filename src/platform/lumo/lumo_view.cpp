#include "platform/lumo/lumo_view.h"

#include <algorithm>
#include <cmath>

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include "platform/lumo/lumo_diagram.h"
#include "platform/lumo/lumo_dispatch.h"
#include "platform/lumo/lumo_paint.h"
#include "platform/lumo/lumo_view_state.h"

namespace {

constexpr int darkerOutside = 108;  // of 100: what lies beyond the canvas

QColor colorOf(const LumoColor& color) {
    return {color.red, color.green, color.blue, int(std::lround(color.alpha * 255))};
}

/// What is behind the objects of @p diagram.
QColor groundOf(const LumoDiagram* diagram, const QColor& fallback) {
    const LumoColor color = diagram ? diagram->getBackgroundColor() : LumoColor();
    return color.alpha > 0 ? colorOf(color) : fallback;
}

/// The rectangles to paint for @p region: one pass is cheaper than several that see the same
/// objects, unless it would paint much that is not dirty.
std::vector<QRect> passesOf(const QRegion& region) {
    constexpr double worthwhile = 1.5;
    constexpr int most = 8;
    double dirty = 0;
    for (const QRect& rect : region)
        dirty += double(rect.width()) * rect.height();
    const QRect all = region.boundingRect();
    const bool isCompact = double(all.width()) * all.height() <= worthwhile * dirty;
    if (isCompact || region.rectCount() > most) return {all};
    return {region.begin(), region.end()};
}

}  // namespace

LumoUIScrollView::LumoUIScrollView(LumoContext* context, QWidget* parent)
    : QAbstractScrollArea(parent), m_state(std::make_unique<State>(this, context)) {
    qRegisterMetaType<LumoUIRightClickParam>();
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    viewport()->setAutoFillBackground(false);
}

LumoUIScrollView::~LumoUIScrollView() {
    m_state->control.dispatcher()->cancel();
}

void LumoUIScrollView::init() {
    viewport()->grabGesture(Qt::PinchGesture);
}

LumoControl* LumoUIScrollView::getControl() const {
    return &m_state->control;
}

LumoDiagram* LumoUIScrollView::diagram() const {
    return m_state->control.diagram();
}

void LumoUIScrollView::setLumoCursorToCursorHandler(std::function<QCursor*(int)> handler) {
    m_state->cursorHandler = std::move(handler);
}

int LumoUIScrollView::paintPasses() const {
    return m_state->paintPasses;
}

int LumoUIScrollView::objectsInLastPass() const {
    return m_state->objectsInLastPass;
}

void LumoUIScrollView::zoomIn() {
    m_state->control.zoomIn();
}

void LumoUIScrollView::zoomOut() {
    m_state->control.zoomOut();
}

void LumoUIScrollView::zoomReset() {
    m_state->control.zoomReset();
}

void LumoUIScrollView::fitToView() {
    m_state->control.fitToView();
}

// ---- painting ----

void LumoUIScrollView::paintEvent(QPaintEvent* event) {
    Control& control = m_state->control;
    const QRegion region = event->region() & viewport()->rect();
    control.prepareToPaint(region);
    ++m_state->paintPasses;
    m_state->objectsInLastPass = 0;

    QPainter painter(viewport());
    for (const QRect& rect : passesOf(region))
        paintRect(&painter, rect);
}

void LumoUIScrollView::paintRect(QPainter* painter, const QRect& rect) {
    Control& control = m_state->control;
    LumoDiagram* const shown = diagram();
    painter->save();
    painter->setClipRect(rect);
    const QColor ground = groundOf(shown, palette().color(QPalette::Base));
    const QRect canvas = shown ? control.canvasInControl() : QRect();
    painter->fillRect(rect & canvas, ground);
    for (const QRect& outside : QRegion(rect) - canvas)
        painter->fillRect(outside, shown ? ground.darker(darkerOutside) : ground);
    if (shown) {
        const LumoControlPoint offset = control.getScrollOrigin();
        painter->save();
        painter->translate(-offset.x, -offset.y);
        painter->scale(control.getZoom(), control.getZoom());
        LumoPaintConfig config(painter, &m_state->pictures);
        shown->paint(&config, control.diagramRectOf(rect));
        m_state->objectsInLastPass += config.paintedObjects;
        painter->restore();
    }
    paintOverlay(painter);
    painter->restore();
}

void LumoUIScrollView::renderTo(QPainter* painter, LumoDiagram* diagram,
                                const LumoRect& diagramRect, const QRectF& target) {
    if (diagramRect.size.width <= 0 || diagramRect.size.height <= 0) return;
    diagram->layout();
    const double scale = std::min(target.width() / diagramRect.size.width,
                                  target.height() / diagramRect.size.height);
    painter->save();
    painter->setClipRect(target, Qt::IntersectClip);
    painter->translate(target.topLeft());
    painter->scale(scale, scale);
    painter->translate(-diagramRect.origin.x, -diagramRect.origin.y);
    const QRect shown(diagramRect.origin.x, diagramRect.origin.y, diagramRect.size.width,
                      diagramRect.size.height);
    painter->setClipRect(shown, Qt::IntersectClip);
    const LumoColor ground = diagram->getBackgroundColor();
    if (ground.alpha > 0) painter->fillRect(shown, colorOf(ground));
    LumoPaintConfig config(painter);
    diagram->paint(&config, diagramRect);
    painter->restore();
}

void LumoUIScrollView::paintOverlay(QPainter*) {}

// ---- size ----

void LumoUIScrollView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    m_state->control.resized();
}

void LumoUIScrollView::showEvent(QShowEvent* event) {
    QAbstractScrollArea::showEvent(event);
    m_state->control.shown();
}

void LumoUIScrollView::scrollContentsBy(int, int) {
    m_state->control.barsMoved();
}
