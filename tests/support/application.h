#pragma once

#include <QApplication>
#include <memory>

namespace QB::Test {

/// Null until it is needed. Who ends it before the program's end, as tests with menus must, resets
/// it.
inline std::unique_ptr<QApplication>& application() {
    static std::unique_ptr<QApplication> held;
    return held;
}

/// The application of a GoogleTest program that paints text or shows windows, made for the first
/// test that needs it. Offscreen unless QT_QPA_PLATFORM says otherwise; kept to the end.
inline void needApplication() {
    if (QCoreApplication::instance()) return;
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    application() = std::make_unique<QApplication>(count, arguments);
}

}  // namespace QB::Test
