#pragma once

#include <QKeySequence>
#include <QObject>
#include <QString>
#include <QVector>
#include <utility>

class QAction;
class QActionGroup;
class QMainWindow;
class QMenu;

namespace QB::Desk {

/// The menus of the window. What an action does is connected by the window. Main thread.
class WindowActions : public QObject {
    Q_OBJECT

public:
    /// @param window owns all of it.
    explicit WindowActions(QMainWindow* window);

    void retranslate();
    /// Fills the menu of recent files: databases, and SQL texts below them.
    void setRecentFiles(const QStringList& databases, const QStringList& texts);

    // All owned by the window.
    QAction *open, *openSample, *openText, *saveText, *saveTextAs, *reload, *quit;
    QAction *newQuery, *run, *stop, *copyText;
    QAction *editText, *applyText, *undoApply, *redoApply, *loadText, *goToError;
    QAction* about;
    QMenu* recent;
    QAction* clearRecent;
    QActionGroup* themes;     ///< data: the theme's name
    QActionGroup* languages;  ///< data: the language's code, empty for the system's

Q_SIGNALS:
    void recentFileTriggered(const QString& file);
    void recentTextTriggered(const QString& file);

private:
    QAction* add(QMenu* menu, const char* text, const QKeySequence& keys = QKeySequence());
    QMenu* addMenu(QMenu* parent, const char* text);
    void addChoice(QMenu* menu, QActionGroup* group, const char* text, const QString& data);
    void addLanguages(QMenu* menu);
    void addRecent(const QStringList& files, void (WindowActions::*triggered)(const QString&),
                   QAction* before);

    QMainWindow* m_window;  // not owned: the parent
    QVector<std::pair<QAction*, const char*>> m_texts;
    int m_recentCount = 0;
};

}  // namespace QB::Desk
