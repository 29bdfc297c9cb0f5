#include "popups/second_press_guard.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTimer>

namespace QB {
namespace {

/// Sees the events of windows, which come before those of the widgets in them.
class SecondPressGuard : public QObject {
public:
    explicit SecondPressGuard(const QPoint& place) : QObject(qApp), m_place(place) {
        qApp->installEventFilter(this);
        QTimer::singleShot(QApplication::doubleClickInterval(), this, [this] { expire(); });
    }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void expire();
    bool takesPress(const QMouseEvent* event);

    const QPoint m_place;
    bool m_hasPress = false;
};

bool SecondPressGuard::eventFilter(QObject* watched, QEvent* event) {
    if (!watched->isWindowType()) return false;
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            return takesPress(static_cast<QMouseEvent*>(event));
        case QEvent::MouseButtonRelease:
            if (m_hasPress) deleteLater();
            return m_hasPress;
        default:
            return false;
    }
}

/// The first press decides: after one elsewhere nothing is left of a double click.
bool SecondPressGuard::takesPress(const QMouseEvent* event) {
    const QPoint way = event->globalPos() - m_place;
    const bool isNear = way.manhattanLength() <= QApplication::startDragDistance();
    m_hasPress = isNear && event->button() == Qt::LeftButton;
    if (!m_hasPress) deleteLater();
    return m_hasPress;
}

/// A press that was taken is followed by its release.
void SecondPressGuard::expire() {
    if (!m_hasPress) deleteLater();
}

}  // namespace

void swallowSecondPress(const QPoint& place) {
    new SecondPressGuard(place);
}

}  // namespace QB
