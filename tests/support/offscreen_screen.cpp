// Linked into the widget tests and the program of sanitizer builds. Qt's offscreen platform forgets
// its only screen when the application ends, and the leak check would report that in every test. A
// pointer kept here holds the screen within reach, so that no suppression has to hide other leaks
// with it.
#include <QGuiApplication>
#include <QScreen>

namespace {

QScreen* volatile keptScreen = nullptr;  // not owned

void keepScreen() {
    keptScreen = QGuiApplication::primaryScreen();
}
Q_COREAPP_STARTUP_FUNCTION(keepScreen)

}  // namespace
