#pragma once

#include <QMainWindow>
#include <QString>
#include <memory>

#include "apps/joinery-desk/query_parsing.h"
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
class SqlTab;
class WindowActions;
class Workspace;

/// The window: the builder on an open database above, the rows of its query below. One window at a
/// time, as it is the one that shows the library's errors. Main thread; needs installCallbacks().
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    /// @param settings not owned: outlives the window. The sample database lies beside its file if
    /// @p sampleFile says so.
    MainWindow(QSettings* settings, const QString& sampleFile,
               const QueryParsing& parsing = libraryParsing(), QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Opens a SQLite database in the background; databaseOpened() or openFailed() follows. On an
    /// error what was open stays. Asks the user first when a query would be lost.
    void openFile(const QString& file);
    void openSample();
    /// The file opened last if it is still there, else the sample.
    void openLast();
    /// Opens a file with SQL text in the SQL tab, where it is applied if it is accepted. Asks the
    /// user first when typed text would be lost. SqlTab::fileOpened() or fileFailed() follows.
    void openTextFile(const QString& file);
    /// One or the other, by the name of the file.
    void openAnyFile(const QString& file);
    bool isOpening() const { return m_isOpening; }

    /// True when the tables of the default schema are in the tree.
    bool isDatabaseShown() const;

    /// Builds the query and runs it; nothing without a database. With the SQL tab in front, text in
    /// it that is new is applied before, and nothing runs if it is refused.
    void runQuery() { takeQuery(true); }
    /// Puts its text on the clipboard. The same otherwise.
    void copyQuery() { takeQuery(false); }

    void setTheme(Theme theme);
    /// A code such as "de", empty for the system's.
    void setLanguage(const QString& code);

    QBQueryBuilderWidget* builder() const { return m_builder; }
    QBDiagramObjectTreePanelWidget* objectTree() const;
    ResultGrid* resultGrid() const { return m_grid; }
    SqlTab* sqlTab() const { return m_sqlTab; }
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
    void setUpSqlTab();
    void hideCancelButton();
    void connectActions();
    void connectTextActions();
    void retranslate();
    void chooseFile();
    void finishOpening(const QString& file, const HostKit::Database& database,
                       const QString& error);
    void adopt(const HostKit::Database& database);
    void connectEngine();
    void startQuery();
    void takeQuery(bool run);
    void takeBuiltQuery(bool run);
    void handOutQuery(bool run);
    bool confirmDiscardQuery();
    bool confirmDiscardText();
    bool confirmReplacingQuery(const QString& reason);
    void editText();
    void chooseTextFile();
    bool saveText();
    bool saveTextAs();
    bool saveTextTo(const QString& file);
    bool confirmOverwriting();
    bool isTextInFront() const;
    void updateTextActions();
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
    RecentFiles m_recentTexts;
    ThemeSwitcher m_themeSwitcher;
    std::unique_ptr<Workspace> m_workspace;  // null while no database is open
    WindowActions* m_actions;                // owned by the widget
    QBQueryBuilderWidget* m_builder;         // owned by the widget, destroyed before the workspace
    SqlTab* m_sqlTab;                        // owned by the builder
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
