#pragma once

#include <QMainWindow>

#include "apps/joinery-desk/command_line.h"
#include "apps/joinery-desk/theme.h"

class QMenu;

namespace QB {
class QBCanvasPlayground;
}

namespace QB::Desk {

/// The playground of the canvas with a View menu: 200 items, 300 links, no query and no database.
class CanvasDemoWindow : public QMainWindow {
    Q_OBJECT

public:
    CanvasDemoWindow(int items, int links, QWidget* parent = nullptr);

    QBCanvasPlayground* playground() const { return m_playground; }

private:
    void addUndoArrange(QMenu* menu);

    QBCanvasPlayground* m_playground;  // owned as a child
};

/// Shows the demo as the command line says; with a picture to take, takes it and ends.
/// @return the program's exit code.
int runCanvasDemo(const CommandLine& options);

}  // namespace QB::Desk
