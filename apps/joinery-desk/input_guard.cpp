#include "apps/joinery-desk/input_guard.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace QB::Desk {
namespace {

bool isInput(QEvent::Type type) {
    switch (type) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::Shortcut:
        case QEvent::Wheel:
        case QEvent::ContextMenu:
        case QEvent::InputMethod:
        case QEvent::TouchBegin:
        case QEvent::DragEnter:
        case QEvent::Drop:
            return true;
        default:
            return false;
    }
}

}  // namespace

InputGuard::InputGuard(QWidget* guarded, QWidget* exempt)
    : QObject(guarded), m_guarded(guarded), m_exempt(exempt) {}

void InputGuard::setActive(bool isActive) {
    qApp->removeEventFilter(this);
    if (isActive) qApp->installEventFilter(this);
}

bool InputGuard::eventFilter(QObject* receiver, QEvent* event) {
    if (!isInput(event->type()) || !receiver->isWidgetType()) return false;
    const auto* widget = static_cast<const QWidget*>(receiver);
    const bool isInside = widget == m_guarded || m_guarded->isAncestorOf(widget);
    return isInside && widget != m_exempt && !m_exempt->isAncestorOf(widget);
}

}  // namespace QB::Desk
