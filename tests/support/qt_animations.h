#pragma once

#include <QCoreApplication>
#include <QPauseAnimation>
#include <QtTest>

namespace QB::Test {

/// To be called at the end of a program whose windows had lines with a clear button. The button
/// fades by an animation that nobody owns: it frees itself in its next turn after the button has
/// gone, for which the program must still be there.
inline void outliveAnimations() {
    QPauseAnimation later(50);
    later.start();
    QTRY_COMPARE(later.state(), QAbstractAnimation::Stopped);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

}  // namespace QB::Test
