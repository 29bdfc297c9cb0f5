#pragma once

#include <QKeySequence>
#include <QObject>
#include <QPointer>
#include <QVector>
#include <utility>

class QAction;
class QMenu;

namespace QB {
class QBCanvasCommands;
}

namespace QB::Desk {

/// The entries of a View menu for a diagram: zoom, arrange, overview, save as picture. Main thread.
class DiagramActions : public QObject {
    Q_OBJECT

public:
    /// Adds the entries to @p menu, which owns them. They do nothing without commands.
    explicit DiagramActions(QMenu* menu);

    /// @param commands not owned; null, or gone: the entries are disabled.
    void setCommands(QBCanvasCommands* commands);
    void retranslate();

    // All owned by the menu.
    QAction *zoomIn, *zoomOut, *zoomReset, *fit, *arrange, *overview, *savePicture;

Q_SIGNALS:
    /// A picture was saved, or why not.
    void pictureSaved(const QString& file);
    void pictureFailed(const QString& message);

private:
    QAction* add(const char* text, const QKeySequence& keys,
                 void (QBCanvasCommands::*command)() = nullptr);
    void refresh();
    void askForPicture();
    void offerFile(const QString& file);

    QMenu* m_menu;  // not owned
    QPointer<QBCanvasCommands> m_commands;
    QVector<std::pair<QAction*, const char*>> m_texts;
};

}  // namespace QB::Desk
