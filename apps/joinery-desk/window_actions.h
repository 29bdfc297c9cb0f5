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

class DiagramActions;

/// The menus of the window. What an action does is connected by the window. Main thread.
class WindowActions : public QObject {
    Q_OBJECT

public:
    /// @param window owns all of it.
    explicit WindowActions(QMainWindow* window);

    void retranslate();
    /// Fills the menu of recent files: databases, queries below them, and SQL texts last.
    void setRecentFiles(const QStringList& databases, const QStringList& queries,
                        const QStringList& texts);
    /// Shows Ctrl+S beside the one of the two saving entries that it means now.
    void setSavedByKey(QAction* saving);

    // All owned by the window.
    QAction *open, *openSample, *reload, *quit;
    QAction *openQuery, *saveQuery, *saveQueryAs;
    QAction *openText, *saveText, *saveTextAs;
    QAction *undo, *redo;  ///< their texts are the window's
    QAction *newQuery, *run, *stop, *copyText;
    QAction *editText, *applyText, *loadText, *goToError;
    DiagramActions* diagram;
    QActionGroup* relations;  ///< how links are drawn; data: the value of "RelationMode"
    QMenu* view;
    QAction* about;
    QMenu* recent;
    QAction* clearRecent;
    QActionGroup* themes;     ///< data: the theme's name
    QActionGroup* languages;  ///< data: the language's code, empty for the system's

Q_SIGNALS:
    void recentFileTriggered(const QString& file);
    void recentQueryTriggered(const QString& file);
    void recentTextTriggered(const QString& file);

private:
    QAction* add(QMenu* menu, const char* text, const QKeySequence& keys = QKeySequence());
    QMenu* addMenu(QMenu* parent, const char* text);
    void addChoice(QMenu* menu, QActionGroup* group, const char* text, const QString& data);
    void addFileMenu();
    void addQueryMenu();
    void addViewMenu();
    void addLanguages(QMenu* menu);
    void addRecent(const QStringList& files, void (WindowActions::*triggered)(const QString&),
                   QAction* before);

    QMainWindow* m_window;  // not owned: the parent
    QVector<std::pair<QAction*, const char*>> m_texts;
    int m_recentCount = 0;
};

/// Checks the action of the group with that data.
void checkChoice(const QActionGroup* group, const QString& data);

}  // namespace QB::Desk
