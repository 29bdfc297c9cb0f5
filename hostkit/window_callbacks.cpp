#include "hostkit/threads.h"

#include <QApplication>
#include <QMessageBox>
#include <QPalette>
#include <QPointer>
#include <atomic>

#include "hostkit/thread_callbacks.h"
#include "model/callbacks.h"

// The half of threads.h that needs Gui and Widgets: the looks, and how errors are shown. Programs
// without windows are linked without this file.
namespace QB::HostKit {
namespace {

/// What workers see of the theme; the main thread keeps it up to date.
std::atomic<bool> isDark{false};
std::atomic<bool> isPaletteFollowed{true};

bool isPaletteDark() {
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) return false;
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::WindowText).lightness() >
           palette.color(QPalette::Window).lightness();
}

bool isDarkTheme() {
    if (isPaletteFollowed.load() && isMainThread()) isDark.store(isPaletteDark());
    return isDark.load();
}

/// One box for a run of errors: a box for each would bury the window.
void showInMessageBox(const std::string& text) {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return qWarning("%s", text.c_str());
    static QPointer<QMessageBox> openBox;
    const QString message = QString::fromStdString(text);
    if (!openBox) {
        openBox = new QMessageBox(QMessageBox::Warning, QCoreApplication::applicationName(),
                                  message, QMessageBox::Close, QApplication::activeWindow());
        openBox->setAttribute(Qt::WA_DeleteOnClose);
        openBox->setTextFormat(Qt::PlainText);
        openBox->setModal(false);
    } else if (!openBox->text().contains(message)) {
        openBox->setText(openBox->text() + QLatin1Char('\n') + message);
    }
    openBox->show();
    openBox->raise();
}

}  // namespace

void installCallbacks() {
    installThreadCallbacks();
    setDefaultErrorHandler(showInMessageBox);
    isDarkTheme();
    Callback::isDarkTheme = isDarkTheme;
}

void setDarkTheme(bool isDarkNow) {
    isPaletteFollowed.store(false);
    isDark.store(isDarkNow);
}

void followPaletteTheme() {
    isPaletteFollowed.store(true);
    isDarkTheme();
}

}  // namespace QB::HostKit
