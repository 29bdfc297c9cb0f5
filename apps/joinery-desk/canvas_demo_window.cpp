#include "apps/joinery-desk/canvas_demo_window.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QTimer>
#include <cstdio>

#include "apps/joinery-desk/diagram_actions.h"
#include "apps/joinery-desk/language.h"
#include "canvas/playground/canvas_playground.h"
#include "canvas/view/canvas_commands.h"

namespace QB::Desk {
namespace {

constexpr int demoItems = 200;
constexpr int demoLinks = 300;
constexpr int settleMs = 300;  // for the window to be laid out and painted before its picture

}  // namespace

CanvasDemoWindow::CanvasDemoWindow(int items, int links, QWidget* parent)
    : QMainWindow(parent), m_playground(new QBCanvasPlayground(items, links, this)) {
    setWindowTitle(tr("Canvas: %1 items, %2 links").arg(items).arg(links));
    setCentralWidget(m_playground);
    QMenu* const view = menuBar()->addMenu(tr("&View"));
    auto* const actions = new DiagramActions(view);
    actions->setCommands(m_playground->commands());
    addUndoArrange(view);
    view->addSeparator();
    QAction* const fields = view->addAction(tr("Links between &Fields"));
    fields->setCheckable(true);
    fields->setShortcut(Qt::CTRL + Qt::SHIFT + Qt::Key_F);
    connect(fields, &QAction::toggled, m_playground, &QBCanvasPlayground::setShowsFieldRelations);

    QStatusBar* const status = statusBar();  // from the start: later it would push the canvas up
    const auto tell = [status](const QString& message) {
        status->showMessage(message);
    };
    connect(m_playground, &QBCanvasPlayground::messageChanged, this, tell);
    connect(actions, &DiagramActions::pictureFailed, this, tell);
    connect(actions, &DiagramActions::pictureSaved, this,
            [tell](const QString& file) { tell(tr("Saved as \"%1\".").arg(file)); });
    m_playground->setFocus();
}

/// There is no query here whose history could know of it.
void CanvasDemoWindow::addUndoArrange(QMenu* menu) {
    QBCanvasCommands* const commands = m_playground->commands();
    QAction* const undo = menu->addAction(tr("&Undo Arrange"));
    undo->setObjectName(QStringLiteral("undoArrange"));
    undo->setShortcut(Qt::CTRL + Qt::SHIFT + Qt::Key_Z);
    undo->setEnabled(commands->canUndoArrange());
    connect(undo, &QAction::triggered, commands, &QBCanvasCommands::undoArrange);
    connect(commands, &QBCanvasCommands::undoArrangeAvailable, undo, &QAction::setEnabled);
}

int runCanvasDemo(const CommandLine& options) {
    ThemeSwitcher theme;
    theme.apply(themeOfName(options.theme));
    if (!options.language.isEmpty()) applyLanguage(options.language);
    CanvasDemoWindow window(demoItems, demoLinks);
    window.resize(options.size.isValid() ? options.size : QSize(1280, 800));
    window.show();
    if (!options.screenshot.isEmpty())
        QTimer::singleShot(settleMs, &window, [&window, &options] {
            if (window.grab().save(options.screenshot)) return QApplication::exit(ExitOk);
            std::fprintf(
                stderr, "joinery-desk: %s\n",
                qUtf8Printable(CanvasDemoWindow::tr("The picture \"%1\" could not be written.")
                                   .arg(options.screenshot)));
            QApplication::exit(ExitNoImage);
        });
    return QApplication::exec();
}

}  // namespace QB::Desk
