#include "platform/lumo/lumo_view.h"

#include <cmath>

#include <QApplication>
#include <QGestureEvent>
#include <QHash>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QNativeGestureEvent>
#include <QPinchGesture>
#include <QPointer>
#include <QScrollBar>
#include <QSet>
#include <QToolTip>

#include "platform/lumo/lumo_dispatch.h"
#include "platform/lumo/lumo_view_state.h"

namespace {

constexpr int wheelNotch = 120;  // of an angle, in eighths of a degree

int32_t keysOf(Qt::KeyboardModifiers modifiers) {
    int32_t keys = 0;
    if (modifiers & Qt::ShiftModifier) keys |= LumoKeyShift;
    if (modifiers & Qt::ControlModifier) keys |= LumoKeyControl;
    if (modifiers & Qt::AltModifier) keys |= LumoKeyAlt;
    return keys;
}

int32_t keysOf(Qt::MouseButtons buttons) {
    int32_t keys = 0;
    if (buttons & Qt::LeftButton) keys |= LumoButtonLeft;
    if (buttons & Qt::RightButton) keys |= LumoButtonRight;
    if (buttons & Qt::MiddleButton) keys |= LumoButtonMiddle;
    return keys;
}

int32_t keysOf(const QMouseEvent* event) {
    return keysOf(event->modifiers()) | keysOf(event->buttons() | event->button());
}

LumoControlPoint pointOf(const QPoint& point) {
    return {point.x(), point.y()};
}

int32_t zoomKeyCode(const QKeyEvent* event) {
    const bool onPad = event->modifiers() & Qt::KeypadModifier;
    switch (event->key()) {
        case Qt::Key_0:
            return onPad ? LumoKeyZeroPad : LumoKeyZero;
        case Qt::Key_Plus:
            return onPad ? LumoKeyPlusPad : LumoKeyPlus;
        case Qt::Key_Minus:
            return onPad ? LumoKeyMinusPad : LumoKeyMinus;
        case Qt::Key_Equal:
            return LumoKeyEqual;
        default:
            return 0;
    }
}

int32_t letterCode(const QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_A:
            return LumoKeyA;
        case Qt::Key_E:
            return LumoKeyE;
        case Qt::Key_F:
            return LumoKeyF;
        case Qt::Key_L:
            return LumoKeyL;
        case Qt::Key_R:
            return LumoKeyR;
        default:
            return 0;
    }
}

bool isTab(const QKeyEvent* event) {
    return (event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab) &&
           !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
}

bool isMenuKey(const QKeyEvent* event) {
    return event->key() == Qt::Key_Menu ||
           (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier);
}

/// Of a key that stands for itself, whatever the keyboard's language.
int32_t fixedKeyCode(const QKeyEvent* event) {
    static const QHash<int, LumoKeyCode> codes = {
        {Qt::Key_Escape, LumoKeyEscape},
        {Qt::Key_Backtab, LumoKeyBackTab},
        {Qt::Key_Return, LumoKeyReturn},
        {Qt::Key_Enter, LumoKeyReturn},
        {Qt::Key_Space, LumoKeySpace},
        {Qt::Key_F2, LumoKeyF2},
        {Qt::Key_Left, LumoKeyLeft},
        {Qt::Key_Right, LumoKeyRight},
        {Qt::Key_Up, LumoKeyUp},
        {Qt::Key_Down, LumoKeyDown},
        {Qt::Key_Delete, LumoKeyDelete},
        {Qt::Key_Home, LumoKeyHome},
        {Qt::Key_End, LumoKeyEnd},
        {Qt::Key_PageUp, LumoKeyPageUp},
        {Qt::Key_PageDown, LumoKeyPageDown},
    };
    if (event->key() == Qt::Key_Tab)
        return event->modifiers() & Qt::ShiftModifier ? LumoKeyBackTab : LumoKeyTab;
    return codes.value(event->key(), LumoKeyCode(0));
}

int32_t keyCodeOf(const QKeyEvent* event) {
    if (const int32_t code = fixedKeyCode(event)) return code;
    if (const int32_t code = letterCode(event)) return code;
    return zoomKeyCode(event);
}

/// Of the keys with Control; all others are the host's.
bool isWithControl(const QKeyEvent* event) {
    static const QSet<int> keys = {Qt::Key_9,     Qt::Key_A,  Qt::Key_Space, Qt::Key_Left,
                                   Qt::Key_Right, Qt::Key_Up, Qt::Key_Down};
    return keys.contains(event->key());
}

/// Keys that mean something alone or with Control, but nothing with Shift.
bool meansNothingWithShift(const QKeyEvent* event) {
    static const QSet<int> keys = {Qt::Key_A, Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter,
                                   Qt::Key_F2};
    return keys.contains(event->key()) && (event->modifiers() & Qt::ShiftModifier);
}

/// Shift only writes a sign or digit that stands with it on some keyboards.
int32_t heldWith(const QKeyEvent* event) {
    const int32_t keys = keysOf(event->modifiers());
    return zoomKeyCode(event) != 0 && (keys & LumoKeyControl) ? keys & ~LumoKeyShift : keys;
}

Qt::KeyboardModifiers modifiersBut(Qt::KeyboardModifiers ignored, const QKeyEvent* event) {
    return event->modifiers() & ~ignored;
}

Qt::CursorShape shapeOf(int code) {
    switch (code) {
        case LumoCursorHand:
            return Qt::PointingHandCursor;
        case LumoCursorResizeHorizontal:
            return Qt::SizeHorCursor;
        case LumoCursorResizeVertical:
            return Qt::SizeVerCursor;
        case LumoCursorResizeFalling:
            return Qt::SizeFDiagCursor;
        case LumoCursorResizeRising:
            return Qt::SizeBDiagCursor;
        case LumoCursorOpenHand:
            return Qt::OpenHandCursor;
        case LumoCursorClosedHand:
            return Qt::ClosedHandCursor;
        default:
            return Qt::ArrowCursor;
    }
}

/// Pixels to scroll, positive shows more right and below.
QPointF scrollOf(const QWheelEvent* event) {
    // X11 gives pixels of any size, or none.
    if (!event->pixelDelta().isNull() && QGuiApplication::platformName() != "xcb")
        return -QPointF(event->pixelDelta());
    return -QPointF(event->angleDelta()) * lumoWheelNotch / wheelNotch;
}

}  // namespace

// ---- mouse ----

void LumoUIScrollView::mousePressEvent(QMouseEvent* event) {
    m_state->control.dispatcher()->mousePress(pointOf(event->pos()), keysOf(event));
}

void LumoUIScrollView::mouseMoveEvent(QMouseEvent* event) {
    m_state->control.dispatcher()->mouseMove(pointOf(event->pos()), keysOf(event));
}

void LumoUIScrollView::mouseReleaseEvent(QMouseEvent* event) {
    m_state->control.dispatcher()->mouseRelease(pointOf(event->pos()), keysOf(event),
                                                keysOf(event->buttons()));
}

void LumoUIScrollView::mouseDoubleClickEvent(QMouseEvent* event) {
    // Two right clicks in a row ask for the menu twice.
    if (event->button() != Qt::LeftButton) return mousePressEvent(event);
    m_state->control.dispatcher()->mouseDoubleClick(pointOf(event->pos()), keysOf(event));
}

void LumoUIScrollView::wheelEvent(QWheelEvent* event) {
    Control& control = m_state->control;
    const LumoControlPoint point = pointOf(event->position().toPoint());
    if (event->modifiers() & Qt::ControlModifier)
        return control.zoomBy(double(event->angleDelta().y()) / wheelNotch, point);

    QPointF scroll = scrollOf(event);
    if ((event->modifiers() & Qt::ShiftModifier) && !(std::abs(scroll.x()) > 0))
        scroll = scroll.transposed();
    scroll += m_state->wheelRest;
    const LumoPoint pixels{int32_t(scroll.x()), int32_t(scroll.y())};
    m_state->wheelRest = scroll - QPointF(pixels.x, pixels.y);

    const QPointer<LumoUIScrollView> alive(this);
    const bool taken = control.dispatcher()->mouseWheel(point, pixels, keysOf(event->modifiers()));
    if (taken || !alive || !diagram()) return;
    const LumoControlPoint before = control.getScrollOrigin();
    control.setScrollOrigin({before.x + pixels.x, before.y + pixels.y});
    // At the end of the canvas a scroll area around it goes on.
    if (pixels != LumoPoint() && control.getScrollOrigin() == before) event->ignore();
}

// ---- keys ----

bool LumoUIScrollView::ownsKey(const QKeyEvent* event) const {
    if (isMenuKey(event)) return true;
    if (meansNothingWithShift(event)) return false;
    const auto modifiers = modifiersBut(Qt::KeypadModifier | Qt::ShiftModifier, event);
    if (modifiers == Qt::ControlModifier) return zoomKeyCode(event) != 0 || isWithControl(event);
    if (modifiers != Qt::NoModifier) return false;
    const bool isPlainLetter = letterCode(event) != 0 && event->modifiers() == Qt::NoModifier;
    return fixedKeyCode(event) != 0 || isPlainLetter;
}

void LumoUIScrollView::keyPressEvent(QKeyEvent* event) {
    if (isMenuKey(event)) {
        // Where the system makes an event for menus of the key, that came first.
        if (event->key() != Qt::Key_Menu || !std::exchange(m_state->menuKeyIsHandled, false))
            askForMenu();
        return;
    }
    const QPointer<LumoUIScrollView> alive(this);
    const double zoom = m_state->control.getZoom();
    if (takesKey(event) || !alive) return;
    if (std::abs(m_state->control.getZoom() - zoom) > 0 || zoomKey(event)) return;
    QAbstractScrollArea::keyPressEvent(event);
}

bool LumoUIScrollView::takesKey(const QKeyEvent* event) {
    return m_state->control.dispatcher()->keyDown(keyCodeOf(event), heldWith(event));
}

/// The keys of the zoom where no diagram takes them.
bool LumoUIScrollView::zoomKey(const QKeyEvent* event) {
    if (modifiersBut(Qt::KeypadModifier | Qt::ShiftModifier, event) != Qt::ControlModifier)
        return false;
    switch (event->key()) {
        case Qt::Key_0:
            zoomReset();
            return true;
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            zoomIn();
            return true;
        case Qt::Key_Minus:
            zoomOut();
            return true;
        case Qt::Key_9:
            fitToView();
            return true;
        default:
            return false;
    }
}

// ---- menus by key ----

/// The diagram knows where its focus is; else a click by the right button where the pointer is, or
/// in the middle of what shows.
void LumoUIScrollView::askForMenu() {
    LumoDispatcher* const dispatcher = m_state->control.dispatcher();
    const QPointer<LumoUIScrollView> alive(this);
    if (dispatcher->keyDown(LumoKeyMenu, 0) || !alive) return;
    const QPoint pointer = viewport()->mapFromGlobal(QCursor::pos());
    const QRect shown = viewport()->rect();
    dispatcher->contextClick(pointOf(shown.contains(pointer) ? pointer : shown.center()));
}

void LumoUIScrollView::contextMenuEvent(QContextMenuEvent* event) {
    // A right click is told by press and release.
    if (event->reason() != QContextMenuEvent::Keyboard) return;
    m_state->menuKeyIsHandled = true;
    askForMenu();
}

// ---- everything else ----

void LumoUIScrollView::focusOutEvent(QFocusEvent* event) {
    m_state->control.dispatcher()->cancel();
    QAbstractScrollArea::focusOutEvent(event);
}

bool LumoUIScrollView::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::ShortcutOverride:
            if (!ownsKey(static_cast<QKeyEvent*>(event))) break;
            event->accept();
            return true;
        case QEvent::KeyPress:
            // Before it moves the focus to another widget.
            if (!isTab(static_cast<QKeyEvent*>(event))) break;
            if (takesKey(static_cast<QKeyEvent*>(event))) return true;
            break;
        case QEvent::WindowDeactivate:
        case QEvent::Hide:
            m_state->control.dispatcher()->cancel();
            break;
        default:
            if (event->type() != Control::flushEventType()) break;
            m_state->control.flush();
            return true;
    }
    return QAbstractScrollArea::event(event);
}

bool LumoUIScrollView::viewportEvent(QEvent* event) {
    switch (event->type()) {
        case QEvent::Leave:
            m_state->control.dispatcher()->mouseLeave();
            break;
        case QEvent::ToolTip:
            showToolTip(static_cast<QHelpEvent*>(event));
            return true;
        case QEvent::NativeGesture: {
            const auto* const gesture = static_cast<QNativeGestureEvent*>(event);
            if (gesture->gestureType() != Qt::ZoomNativeGesture) break;
            Control& control = m_state->control;
            control.setZoom(control.getZoom() * (1 + gesture->value()), pointOf(gesture->pos()));
            return true;
        }
        case QEvent::Gesture:
            if (pinch(static_cast<QGestureEvent*>(event))) return true;
            break;
        default:
            break;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

bool LumoUIScrollView::pinch(const QGestureEvent* event) {
    const auto* const gesture = static_cast<QPinchGesture*>(event->gesture(Qt::PinchGesture));
    if (!gesture) return false;
    const QPoint centre = viewport()->mapFromGlobal(gesture->centerPoint().toPoint());
    Control& control = m_state->control;
    control.setZoom(control.getZoom() * gesture->scaleFactor(), pointOf(centre));
    return true;
}

QString LumoUIScrollView::toolTipAt(LumoPoint) const {
    return {};
}

void LumoUIScrollView::showToolTip(const QHelpEvent* event) {
    const Control& control = m_state->control;
    const QString text = toolTipAt(control.controlSpaceToDiagramSpace(pointOf(event->pos())));
    // Names are no markup.
    QToolTip::showText(event->globalPos(),
                       Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text,
                       viewport());
}

void LumoUIScrollView::showCursor(int code) {
    if (std::exchange(m_state->cursorCode, code) == code) return;
    if (code == LumoCursorDefault) return viewport()->unsetCursor();
    std::unique_ptr<QCursor> cursor(m_state->cursorHandler ? m_state->cursorHandler(code)
                                                           : nullptr);
    viewport()->setCursor(cursor ? *cursor : QCursor(shapeOf(code)));
}
