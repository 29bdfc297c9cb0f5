#include "widgets/loading_indicator_widget.h"

#include <QCoreApplication>
#include <QPainter>
#include <QPointer>
#include <QTimer>

namespace QB {
namespace {

constexpr int frameInterval = 33;  // milliseconds
constexpr int framesPerTurn = 30;
constexpr int arcSpan = 1440;         // sixteenths of a degree: a quarter
constexpr int arcStepPerFrame = 192;  // sixteenths of a degree: a thirtieth of a turn
constexpr int ringWidth = 4;          // logical pixels
constexpr int ringDiameter = 40;      // logical pixels, where there is room

int currentFrame = 0;
int shownIndicators = 0;

/// The timer that turns all indicators; made on first use, destroyed with the application.
QTimer* sharedTimer() {
    static QPointer<QTimer> timer;
    if (timer) return timer;
    timer = new QTimer(QCoreApplication::instance());
    timer->setInterval(frameInterval);
    QObject::connect(timer, &QTimer::timeout,
                     [] { currentFrame = (currentFrame + 1) % framesPerTurn; });
    return timer;
}

QRectF ringRect(const QSize& room) {
    const int diameter = qMin(ringDiameter, qMin(room.width(), room.height()) - ringWidth);
    QRectF ring(0, 0, diameter, diameter);
    ring.moveCenter(QRectF(QPointF(), room).center());
    return ring;
}

}  // namespace

QBLoadingIndicatorWidget::QBLoadingIndicatorWidget(QWidget* parent) : QWidget(parent) {
    // A parent given to the constructor is announced by no event that reaches this class.
    if (parent != nullptr) parent->installEventFilter(this);
    followParent();
}

QBLoadingIndicatorWidget::~QBLoadingIndicatorWidget() {
    stopTurning();
}

QSize QBLoadingIndicatorWidget::sizeHint() const {
    return QSize(64, 64);
}

bool QBLoadingIndicatorWidget::event(QEvent* event) {
    if (event->type() == QEvent::ParentAboutToChange && parentWidget() != nullptr)
        parentWidget()->removeEventFilter(this);
    if (event->type() == QEvent::ParentChange && parentWidget() != nullptr) {
        parentWidget()->installEventFilter(this);
        followParent();
    }
    return QWidget::event(event);
}

bool QBLoadingIndicatorWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) followParent();
    return QWidget::eventFilter(watched, event);
}

void QBLoadingIndicatorWidget::followParent() {
    if (parentWidget() != nullptr) setGeometry(parentWidget()->rect());
}

void QBLoadingIndicatorWidget::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    raise();
    startTurning();
}

void QBLoadingIndicatorWidget::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    stopTurning();
}

void QBLoadingIndicatorWidget::startTurning() {
    if (m_turning) return;
    m_turning = connect(sharedTimer(), &QTimer::timeout, this, [this] { update(); });
    if (++shownIndicators == 1) sharedTimer()->start();
}

void QBLoadingIndicatorWidget::stopTurning() {
    if (!m_turning) return;
    disconnect(m_turning);
    m_turning = {};
    if (--shownIndicators == 0) sharedTimer()->stop();
}

void QBLoadingIndicatorWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().brush(QPalette::Window));
    const QRectF ring = ringRect(size());
    if (ring.width() <= 0) return;
    painter.setRenderHint(QPainter::Antialiasing);
    QPen pen(QColor(230, 230, 230, 224), ringWidth);
    painter.setPen(pen);
    painter.drawEllipse(ring);
    pen.setColor(palette().color(QPalette::Text));
    painter.setPen(pen);
    // Angles count anticlockwise; the ring turns clockwise.
    painter.drawArc(ring, -currentFrame * arcStepPerFrame, arcSpan);
}

}  // namespace QB
