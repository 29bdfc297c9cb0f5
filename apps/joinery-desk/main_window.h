#pragma once

#include <QDateTime>
#include <QMainWindow>
#include <QString>
#include <memory>
#include <optional>

#include "apps/joinery-desk/journal.h"
#include "apps/joinery-desk/query_file.h"
#include "apps/joinery-desk/query_parsing.h"
#include "apps/joinery-desk/recent_files.h"
#include "apps/joinery-desk/sql_checker.h"
#include "apps/joinery-desk/theme.h"
#include "apps/joinery-desk/window_states.h"

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

class BuilderText;
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
    /// On which database a saved query is opened.
    enum class QueryDatabase { Named, Present };

    /// @param settings not owned: outlives the window. @param sampleFile where the sample database
    /// lies; the journals lie in a folder beside it, without it there are none.
    MainWindow(QSettings* settings, const QString& sampleFile,
               const QueryParsing& parsing = libraryParsing(), QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Opens a SQLite database in the background; databaseOpened() or openFailed() follows. On an
    /// error what was open stays. When a query would be lost the user is asked, and may refuse.
    void openFile(const QString& file);
    void openSample();
    /// The file opened last if it is still there, else the sample.
    void openLast();
    /// Opens a file with SQL text in the SQL tab, where it is applied if it is accepted. Asks the
    /// user first when typed text would be lost. SqlTab::fileOpened() or fileFailed() follows.
    void openTextFile(const QString& file);
    /// Opens a saved query, on the database that it names if that is there, else on the present
    /// one or the one used last. What is there now goes when the file is known to be whole and its
    /// query to be readable, and when the user gives up what is unsaved. A query that cannot be
    /// read comes into the SQL tab as text. queryOpened() or queryFailed() follows, unless the user
    /// refuses.
    void openQueryFile(const QString& file, QueryDatabase database = QueryDatabase::Named);
    /// One or the other, by the name of the file.
    void openAnyFile(const QString& file);
    bool isOpening() const { return m_isOpening; }
    /// Asks whether to restore the work of programs that have crashed, one after another.
    void offerLeftJournals();
    /// True if something would be lost that lies in no file.
    bool isWorkUnsaved() const;

    /// True when the tables of the default schema are in the tree.
    bool isDatabaseShown() const;

    /// Builds the query and runs it; nothing without a database. With the SQL tab in front, text in
    /// it that is new is applied before, and nothing runs if it is refused.
    void runQuery() { takeQuery(true); }
    /// Puts its text on the clipboard. The same otherwise.
    void copyQuery() { takeQuery(false); }

    /// From now on, whatever size the window had with a database.
    void setGivenSize(const QSize& size);
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
    void queryOpened(const QString& file);
    void queryFailed(const QString& message);
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
    void takeDatabase(const QString& file, const HostKit::Database& database);
    void adopt(const HostKit::Database& database);
    void connectEngine();
    void startQuery();
    void takeQuery(bool run);
    void takeBuiltQuery(bool run);
    void handOutQuery(bool run);
    // Saved queries.
    struct Opening {
        QueryDocument document;
        QString path;  ///< of the file, or of the journal
        bool isJournal = false;
        QueryDatabase database = QueryDatabase::Named;
        bool isLoading = false;  ///< the text is on its way into the builder
    };
    void setUpQueries();
    void connectQueryActions();
    void chooseQueryFile();
    void takeQuery(Opening opening, const QString& error);
    void takeQueryCheck(const SqlCheckResult& result);
    void openQueryDatabase();
    void loadQuery();
    void applyQuery();
    void finishQuery(bool isApplied, const QString& error);
    void showRefusedQuery(const QString& reason);
    void failQuery(const QString& message);
    void dropOpening();
    bool isSchemaThere(const QString& schema) const;
    void tellWhatIsNotThere(const Opening& opening);
    void askAboutLeftJournal();
    void continueLeftJournal();
    void setQueryFile(const QString& file);
    QueryDocument queryDocument(const QString& builtText, bool isJournal) const;
    bool saveQuery();
    bool saveQueryAs();
    bool saveQueryTo(const QString& file);
    bool confirmLosingWork();
    bool confirmLosingQuery(bool isTextAtStake);
    bool isBuilderUnsaved() const;
    void noteQueryInSqlFile();
    void noteWork();
    void writeJournal();
    void updateHistoryActions();

    bool confirmDiscardText();
    void editText();
    void chooseTextFile();
    bool saveText();
    bool saveTextAs();
    bool saveTextTo(const QString& file);
    bool confirmOverwriting(const QString& file);
    bool isTextInFront() const;
    void updateTextActions();
    void showDefaultSchema();
    void showError(const QString& text);
    void showNote(const QString& text);
    void updateTitle();
    void updateActions();
    void updateRecentFiles();
    void showAbout();
    QString databaseFile() const;
    void restoreSettings();
    void restoreState(const WindowState& state);
    void saveState();

    QSettings* m_settings;  // not owned
    const QString m_sampleFile;
    RecentFiles m_recentFiles;
    RecentFiles m_recentQueries;
    RecentFiles m_recentTexts;
    WindowStates m_states;
    ThemeSwitcher m_themeSwitcher;
    std::unique_ptr<Workspace> m_workspace;  // null while no database is open
    WindowActions* m_actions;                // owned by the widget
    QBQueryBuilderWidget* m_builder;         // owned by the widget, destroyed before the workspace
    SqlTab* m_sqlTab;                        // owned by the builder
    ResultGrid* m_grid;                      // owned by the widget
    MessageBar* m_messageBar;                // owned by the widget
    MessageBar* m_recoveryBar;               // owned by the widget
    QSplitter* m_splitter;                   // owned by the widget
    BuilderText* m_wholeText;                // owned by the builder; for the journal
    SqlChecker m_queryChecker;               // of a query that is being opened
    SqlChecker m_savedChecker;               // of one that was saved
    Journal m_journal;
    std::optional<LeftJournal> m_left;  ///< what the user is being asked about
    std::optional<Opening> m_opening;
    int m_readNumber = 0;  ///< of the query file that counts: the last one chosen
    QString m_queryFile;   ///< absolute; empty while there is none
    QDateTime m_queryFileTime;
    QString m_restoredLayout;  ///< of window and panes, set last
    QSize m_givenSize;
    int m_openNumber = 0;  ///< of the opening that counts: the last one begun
    bool m_isOpening = false;
    bool m_isSchemaLoaded = false;
    bool m_isSchemaExpanded = false;
};

}  // namespace QB::Desk
