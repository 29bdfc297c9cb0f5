#pragma once

#include <QMainWindow>
#include <QString>
#include <memory>

#include "apps/joinery-desk/recent_files.h"
#include "apps/joinery-desk/theme.h"

class QSettings;
class QSplitter;

namespace QB {
class QBDiagramObjectTreePanelWidget;
class QBQueryBuilderWidget;
namespace HostKit {
class Database;
}
}  // namespace QB

namespace QB::Desk {

class MessageBar;
class ResultGrid;
class WindowActions;
class Workspace;

/// The window: the builder on an open database above, the rows of its query below. One window at a
/// time, as it is the one that shows the library's errors. Main thread; needs installCallbacks().
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    /// @param settings not owned: outlives the window. The sample database lies beside its file if
    /// @p sampleFile says so.
    MainWindow(QSettings* settings, const QString& sampleFile, QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Opens a SQLite database in the background; databaseOpened() or openFailed() follows. On an
    /// error what was open stays. Asks the user first when a query would be lost.
    void openFile(const QString& file);
    void openSample();
    /// The file opened last if it is still there, else the sample.
    void openLast();
    bool isOpening() const { return m_isOpening; }

    /// True when the tables of the default schema are in the tree.
    bool isDatabaseShown() const;

    /// Builds the query and runs it; nothing without a database.
    void runQuery();
    /// Builds the query and puts its text on the clipboard.
    void copyQuery();

    void setTheme(Theme theme);
    /// A code such as "de", empty for the system's.
    void setLanguage(const QString& code);

    QBQueryBuilderWidget* builder() const { return m_builder; }
    QBDiagramObjectTreePanelWidget* objectTree() const;
    ResultGrid* resultGrid() const { return m_grid; }
    MessageBar* messageBar() const { return m_messageBar; }
    Workspace* workspace() const { return m_workspace.get(); }

Q_SIGNALS:
    void databaseOpened();
    void openFailed(const QString& message);
    /// A source was added or taken out.
    void sourcesChanged();

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void setUpContent();
    void setUpBuilder();
    void connectActions();
    void retranslate();
    void chooseFile();
    void finishOpening(const QString& file, const HostKit::Database& database,
                       const QString& error);
    void adopt(const HostKit::Database& database);
    void connectEngine();
    void startQuery();
    void takeQuery(const QString& text, bool run);
    bool confirmIncompleteQuery();
    bool confirmDiscard();
    void showDefaultSchema();
    void showError(const QString& text);
    void showNote(const QString& text);
    void updateTitle();
    void updateActions();
    void updateRecentFiles();
    void showAbout();
    void restoreState();
    void saveState();

    QSettings* m_settings;  // not owned
    const QString m_sampleFile;
    RecentFiles m_recentFiles;
    ThemeSwitcher m_themeSwitcher;
    std::unique_ptr<Workspace> m_workspace;  // null while no database is open
    WindowActions* m_actions;                // owned by the widget
    QBQueryBuilderWidget* m_builder;         // owned by the widget, destroyed before the workspace
    ResultGrid* m_grid;                      // owned by the widget
    MessageBar* m_messageBar;                // owned by the widget
    QSplitter* m_splitter;                   // owned by the widget
    int m_openNumber = 0;                    ///< of the opening that counts: the last one begun
    bool m_isOpening = false;
    bool m_isSchemaLoaded = false;
    bool m_isSchemaExpanded = false;
    bool m_isQueryUnsaved = false;  ///< changed since its text was last taken
};

}  // namespace QB::Desk
