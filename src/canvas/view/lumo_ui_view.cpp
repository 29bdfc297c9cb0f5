#include "canvas/view/lumo_ui_view.h"

#include <QCursor>
#include <QEvent>
#include <QFocusEvent>
#include <QPainter>

#include "canvas/base/canvas_style.h"
#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/diagram/focus_place.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/items/text_based_item_body.h"
#include "canvas/links/join_symbol.h"
#include "canvas/view/diagram_accessible.h"
#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_dispatch.h"
#include "platform/lumo/lumo_label.h"

namespace QB::DiagramLumo {

namespace {

constexpr double focusRingWidth = 2.0;
constexpr int mostTipLines = 30;

/// The first lines of a text that may be a whole query.
std::string firstLines(const std::string& text) {
    size_t end = 0;
    for (int line = 0; line < mostTipLines; ++line) {
        end = text.find('\n', end);
        if (end == std::string::npos) return text;
        ++end;
    }
    return text.substr(0, end) + "…";
}

/// The whole text of @p object if it is cut at @p point (its own space).
std::string cutTextOf(const LumoObject* object, LumoPoint point) {
    if (const auto* const label = dynamic_cast<const LumoLabel*>(object))
        return label->isElided() ? label->getText() : std::string();
    const auto* const body = dynamic_cast<const QBLumoBaseItemBody*>(object);
    const auto* const textBody = dynamic_cast<const QBLumoTextBasedItemBody*>(body);
    if (textBody && textBody->isTextElided() && lumoPointInRect(point, textBody->textRect()))
        return firstLines(textBody->getText());
    if (!body || point.y >= Style::titleHeight || !body->isTitleElided()) return {};
    return body->titleText();
}

}  // namespace

QBLumoUIView* QBLumoUIView::create(QBLumoContext* context, QWidget* parent) {
    auto* const view = new QBLumoUIView(context, parent);
    view->init();
    return view;
}

QBLumoUIView::QBLumoUIView(QBLumoContext* context, QWidget* parent)
    : LumoUIScrollView(context, parent), m_accessible(std::make_unique<DiagramAccessible>(this)) {
    installDiagramAccessible();
    setLumoCursorToCursorHandler(&QBLumoUIView::cursorForCode);
    connect(this, &LumoUIScrollView::contentChanged, this, &QBLumoUIView::updateRing);
}

QBLumoUIView::~QBLumoUIView() = default;

QCursor* QBLumoUIView::cursorForCode(int code) {
    switch (code) {
        case LumoCursorResizeHorizontal:
            return new QCursor(Qt::SizeHorCursor);
        case LumoCursorResizeVertical:
            return new QCursor(Qt::SizeVerCursor);
        case LumoCursorResizeFalling:
            return new QCursor(Qt::SizeFDiagCursor);
        case LumoCursorResizeRising:
            return new QCursor(Qt::SizeBDiagCursor);
        case LumoCursorOpenHand:
            return new QCursor(Qt::OpenHandCursor);
        case LumoCursorClosedHand:
            return new QCursor(Qt::ClosedHandCursor);
        default:
            return nullptr;
    }
}

QBLumoDiagram* QBLumoUIView::lumoDiagram() const {
    return dynamic_cast<QBLumoDiagram*>(diagram());
}

void QBLumoUIView::applyTheme() {
    dropJoinSymbolPictures();
    QBLumoDiagram* const shown = lumoDiagram();
    if (!shown) return;
    shown->setBackgroundColor(themePalette().canvas);
    for (QBLumoItem* item : shown->items())
        if (item->getBody()) item->getBody()->themeChanged();
    shown->repaint();
    viewport()->update();
}

void QBLumoUIView::changeEvent(QEvent* event) {
    LumoUIScrollView::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        applyTheme();
}

QString QBLumoUIView::toolTipAt(LumoPoint diagramPoint) const {
    LumoDiagram* const shown = diagram();
    if (!shown) return {};
    for (const LumoObject* object : LumoDispatcher::hitList(shown, diagramPoint)) {
        const std::string text = cutTextOf(object, shown->translatePoint(diagramPoint, object));
        if (!text.empty()) return QString::fromStdString(text);
        // What lies below an item is not meant.
        if (dynamic_cast<const QBLumoItem*>(object)) return {};
    }
    return {};
}

// ---- the keyboard focus ----

void QBLumoUIView::focusInEvent(QFocusEvent* event) {
    LumoUIScrollView::focusInEvent(event);
    QBLumoDiagram* const shown = lumoDiagram();
    const bool forward = event->reason() == Qt::TabFocusReason;
    if (shown && (forward || event->reason() == Qt::BacktabFocusReason)) {
        shown->setFocusedObject(nullptr);
        shown->focusNext(forward);
    }
    updateRing();
    m_accessible->focusArrived();
}

void QBLumoUIView::focusOutEvent(QFocusEvent* event) {
    LumoUIScrollView::focusOutEvent(event);
    updateRing();
}

LumoRect QBLumoUIView::ringPlace() const {
    const QBLumoDiagram* const shown = lumoDiagram();
    return shown && hasFocus() && shown->isFocusRingShown() ? focusPlace(shown) : LumoRect();
}

/// The ring moves with what it surrounds, which knows nothing of it.
void QBLumoUIView::updateRing() {
    const LumoRect place = ringPlace();
    if (place == m_ringPlace) return;
    for (const LumoRect& dirty : {std::exchange(m_ringPlace, place), place})
        if (lumoWidth(dirty) > 0)
            getControl()->updateRegion(lumoInflateRect(dirty, focusRingReach, focusRingReach));
}

void QBLumoUIView::paintOverlay(QPainter* painter) {
    const LumoRect place = ringPlace();
    if (lumoWidth(place) == 0) return;
    const LumoControlPoint topLeft = getControl()->diagramSpaceToControlSpace(place.origin);
    const double zoom = getControl()->getZoom();
    const QRectF ring(topLeft.x, topLeft.y, place.size.width * zoom, place.size.height * zoom);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(palette().color(QPalette::Highlight), focusRingWidth));
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(ring.adjusted(-1, -1, 1, 1), Style::cornerRadius * zoom,
                             Style::cornerRadius * zoom);
}

}  // namespace QB::DiagramLumo
