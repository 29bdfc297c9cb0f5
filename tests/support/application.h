#pragma once

#include <QApplication>

namespace QB::Test {

/// The application of a GoogleTest program that paints text or shows windows, made for the first
/// test that needs it. Offscreen unless QT_QPA_PLATFORM says otherwise. It is never destroyed:
/// where a menu was shown, its desktop's window would look for what Qt has already put away by
/// then.
inline void needApplication() {
    if (QCoreApplication::instance()) return;
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    new QApplication(count, arguments);
}

}  // namespace QB::Test
