#include "widgets/mouse_over_border_button.h"

namespace QB {

QBMouseOverBorderButton::QBMouseOverBorderButton(QWidget* parent) : QPushButton(parent) {
    setAttribute(Qt::WA_MouseTracking);
    setFlat(true);
    setAutoDefault(false);
}

void QBMouseOverBorderButton::enterEvent(QEvent* event) {
    setFlat(false);
    QPushButton::enterEvent(event);
}

void QBMouseOverBorderButton::leaveEvent(QEvent* event) {
    setFlat(true);
    QPushButton::leaveEvent(event);
}

}  // namespace QB
