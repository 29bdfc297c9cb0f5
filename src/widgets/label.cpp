#include "widgets/label.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace QB {
namespace {

constexpr qreal hoverOpacity = 150.0 / 255.0;

QPixmap fadedCopy(const QPixmap& plain) {
    QPixmap faded(plain.size());
    faded.setDevicePixelRatio(plain.devicePixelRatio());
    faded.fill(Qt::transparent);
    QPainter painter(&faded);
    painter.setOpacity(hoverOpacity);
    painter.drawPixmap(0, 0, plain);
    return faded;
}

bool isActivationKey(int key) {
    return key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
}

}  // namespace

QBLabel::QBLabel(QWidget* parent) : QLabel(parent) {}

void QBLabel::setClickable(bool clickable) {
    m_isClickable = clickable;
}

void QBLabel::setHovered(bool hovered) {
    m_isHeldHovered = hovered;
    showLook();
}

void QBLabel::setPixmap(const QPixmap& pixmap) {
    m_plainPixmap = pixmap;
    showLook();
}

void QBLabel::setText(const QString& value) {
    m_plainPixmap = QPixmap();
    QLabel::setText(value);
    showLook();
}

void QBLabel::showLook() {
    const bool isHovered = m_isUnderMouse || m_isHeldHovered;
    if (!m_plainPixmap.isNull())
        QLabel::setPixmap(isHovered ? fadedCopy(m_plainPixmap) : m_plainPixmap);
    showUnderline(isHovered && m_plainPixmap.isNull());
}

void QBLabel::showUnderline(bool isWanted) {
    // A label that is underlined by itself stays so.
    if (isWanted == m_hasHoverUnderline || (isWanted && font().underline())) return;
    m_hasHoverUnderline = isWanted;
    QFont changed = font();
    changed.setUnderline(isWanted);
    setFont(changed);
}

void QBLabel::enterEvent(QEvent* event) {
    QLabel::enterEvent(event);
    m_isUnderMouse = true;
    showLook();
}

void QBLabel::leaveEvent(QEvent* event) {
    QLabel::leaveEvent(event);
    m_isUnderMouse = false;
    showLook();
}

void QBLabel::mousePressEvent(QMouseEvent* event) {
    QLabel::mousePressEvent(event);
    // The release comes only to the widget that took the press.
    if (m_isClickable) event->accept();
}

void QBLabel::mouseReleaseEvent(QMouseEvent* event) {
    QLabel::mouseReleaseEvent(event);
    if (!m_isClickable || event->button() != Qt::LeftButton) return;
    event->accept();
    if (rect().contains(event->pos())) Q_EMIT clicked();
}

void QBLabel::keyPressEvent(QKeyEvent* event) {
    if (!m_isClickable || !isActivationKey(event->key())) return QLabel::keyPressEvent(event);
    Q_EMIT clicked();
}

}  // namespace QB
