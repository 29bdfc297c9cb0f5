#include "widgets/label.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QToolTip>
#include <algorithm>

#include "widgets/label_accessible.h"
#include "widgets/plain_tool_tip.h"

namespace QB {
namespace {

constexpr qreal hoverOpacity = 150.0 / 255.0;
constexpr int longestText = 512;
constexpr int smallestWidth = 16;
constexpr int modestWidth = 96;

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

/// What of @p text is worth laying out, in one line.
QString startInOneLine(const QString& text) {
    QString start = text.left(longestText);
    for (QChar& c : start)
        if (c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r') ||
            c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
            c = QLatin1Char(' ');
    return start;
}

/// How @p text reads: names and SQL from left to right in any surroundings, signs as what is
/// around.
Qt::LayoutDirection directionOf(const QString& text, Qt::LayoutDirection around) {
    for (const QChar c : text) {
        if (c.direction() == QChar::DirL) return Qt::LeftToRight;
        if (c.direction() == QChar::DirR || c.direction() == QChar::DirAL) return Qt::RightToLeft;
    }
    return around;
}

}  // namespace

QBLabel::QBLabel(QWidget* parent) : QLabel(parent) {
    installLabelAccessibility();
    setTextFormat(Qt::PlainText);
}

void QBLabel::setClickable(bool clickable) {
    m_isClickable = clickable;
}

void QBLabel::setHovered(bool hovered) {
    if (m_isHeldHovered == hovered) return;
    m_isHeldHovered = hovered;
    showLook();
}

void QBLabel::setPixmap(const QPixmap& pixmap) {
    m_plainPixmap = pixmap;
    m_fullText.clear();
    showLook();
}

void QBLabel::setText(const QString& value) {
    if (m_plainPixmap.isNull() && value == m_fullText) return;
    m_plainPixmap = QPixmap();
    m_fullText = value;
    forgetTextWidth();
    QLabel::setText(startInOneLine(value));
    showLook();
}

void QBLabel::setLabelColour(LabelColour colour) {
    if (m_colour == colour) return;
    const bool changesText = m_colour == LabelColour::Invalid || colour == LabelColour::Invalid;
    m_colour = colour;
    if (changesText) {
        forgetTextWidth();
        updateGeometry();
    }
    update();
}

void QBLabel::setSelectedLook(bool isSelected) {
    if (m_isOnSelection == isSelected) return;
    m_isOnSelection = isSelected;
    update();
}

void QBLabel::setCurrentPart(bool isCurrent) {
    if (m_isCurrentPart == isCurrent) return;
    m_isCurrentPart = isCurrent;
    update();
}

void QBLabel::setToolTipText(const QString& text) {
    if (m_toolTipText == text) return;
    m_toolTipText = text;
    setToolTip(plainToolTip(text));
}

void QBLabel::click() {
    if (m_isClickable) Q_EMIT clicked();
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

// ---- size and painting ----------------------------------------------------------------------

void QBLabel::forgetTextWidth() {
    m_textWidth = -1;
    m_elidedWidth = -1;
}

QString QBLabel::shownText() const {
    return m_colour == LabelColour::Invalid ? QStringLiteral("! ") + text() : text();
}

int QBLabel::textWidth() const {
    if (m_textWidth < 0) m_textWidth = fontMetrics().horizontalAdvance(shownText()) + 1;
    return m_textWidth;
}

QRect QBLabel::textRect() const {
    const int inset = margin();
    return contentsRect().adjusted(inset, inset, -inset, -inset);
}

QSize QBLabel::sizeHint() const {
    if (!m_plainPixmap.isNull()) return QLabel::sizeHint();
    const QMargins around = contentsMargins() + margin();
    const bool takesTheRest = sizePolicy().horizontalPolicy() == QSizePolicy::Expanding;
    const int width = takesTheRest ? std::min(textWidth(), modestWidth) : textWidth();
    return QSize(width + around.left() + around.right(),
                 fontMetrics().height() + around.top() + around.bottom());
}

QSize QBLabel::minimumSizeHint() const {
    if (!m_plainPixmap.isNull()) return QLabel::minimumSizeHint();
    const QSize whole = sizeHint();
    return QSize(std::min(whole.width(), smallestWidth), whole.height());
}

QColor QBLabel::textColour() const {
    if (!isEnabled()) return palette().color(QPalette::Disabled, QPalette::WindowText);
    const QColor plain = labelColour(m_colour);
    return m_isOnSelection ? readableColour(plain, selectedRowColour(palette())) : plain;
}

void QBLabel::paintText(QPainter& painter) {
    const QRect area = textRect();
    if (m_elidedWidth != area.width()) {
        m_elidedWidth = area.width();
        const bool isWhole = textWidth() <= area.width();
        m_elided = isWhole ? shownText()
                           : fontMetrics().elidedText(shownText(), Qt::ElideRight, area.width());
        m_elidedAdvance = isWhole ? textWidth() : fontMetrics().horizontalAdvance(m_elided);
    }
    const Qt::Alignment sides = QStyle::visualAlignment(layoutDirection(), alignment());
    const QRect place = QStyle::alignedRect(Qt::LeftToRight, sides,
                                            QSize(m_elidedAdvance, fontMetrics().height()), area);
    painter.setLayoutDirection(directionOf(text(), layoutDirection()));
    painter.setPen(textColour());
    // At a point: in a rectangle the text would be laid out twice, which shows while scrolling.
    painter.drawText(place.left(), place.top() + fontMetrics().ascent(), m_elided);
}

/// An outline only: the focus frame of a style may tint the label, which would be harder to read.
void QBLabel::paintFocusFrame(QPainter& painter) {
    painter.setPen(palette().color(QPalette::Highlight));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void QBLabel::paintEvent(QPaintEvent* event) {
    if (!m_plainPixmap.isNull()) {
        QLabel::paintEvent(event);
    } else {
        QPainter painter(this);
        drawFrame(&painter);
        paintText(painter);
    }
    if (!m_isCurrentPart && !hasFocus()) return;
    QPainter painter(this);
    paintFocusFrame(painter);
}

// ---- events ---------------------------------------------------------------------------------

bool QBLabel::event(QEvent* event) {
    const bool hasToolTip = !m_toolTipText.isEmpty() || !toolTip().isEmpty();
    if (event->type() != QEvent::ToolTip || hasToolTip || !m_plainPixmap.isNull())
        return QLabel::event(event);
    const bool isWhole = textWidth() <= textRect().width() && m_fullText.size() <= longestText;
    const QPoint position = static_cast<QHelpEvent*>(event)->globalPos();
    QToolTip::showText(position, isWhole ? QString() : plainToolTip(m_fullText), this);
    return true;
}

void QBLabel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        forgetTextWidth();
    QLabel::changeEvent(event);
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
    // The release comes to the label all the same: it is where the press was.
    m_isPressed = m_isClickable && event->button() == Qt::LeftButton;
    event->ignore();
}

void QBLabel::mouseMoveEvent(QMouseEvent* event) {
    event->ignore();
}

void QBLabel::mouseReleaseEvent(QMouseEvent* event) {
    event->ignore();
    if (event->button() != Qt::LeftButton || !m_isPressed) return;
    m_isPressed = false;
    const QPointer<QBLabel> self(this);
    if (rect().contains(event->pos())) click();
    if (!self) event->accept();  // else it goes on to a parent that is not there any more
}

void QBLabel::keyPressEvent(QKeyEvent* event) {
    if (!m_isClickable || !isActivationKey(event->key())) return QLabel::keyPressEvent(event);
    click();
}

}  // namespace QB
