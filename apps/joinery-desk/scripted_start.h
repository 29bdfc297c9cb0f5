#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>
#include <deque>
#include <functional>

#include "apps/joinery-desk/command_line.h"

class QTreeWidgetItem;

namespace QB::Desk {

class MainWindow;

/// Does by itself what a user would do after the start: waits for the database, opens SQL text,
/// adds tables, runs the query, takes a picture. Each step begins when the one before has really
/// come to its end. The window has been told to open its database. Main thread.
class ScriptedStart : public QObject {
    Q_OBJECT

public:
    /// @param window not owned: outlives the script.
    ScriptedStart(MainWindow* window, const CommandLine& options);

Q_SIGNALS:
    /// Once, with an ExitCode, and what went wrong unless that is 0.
    void finished(int exitCode, const QString& message);

private:
    enum class Progress { Wait, Done, Failed };
    /// Called again and again until it is done.
    using Step = std::function<Progress()>;

    void planText(const QString& file);
    void planQuery(const CommandLine& options);
    void planTextWait();
    void planAdding(const QString& table);
    void planRun();
    Progress bringUpTab(const QString& name);
    Progress waitForDatabase();
    Progress waitForPreview();
    Progress addTable(const QString& table);
    QTreeWidgetItem* findTable(const QString& table, bool* isLoading) const;
    Progress fail(ExitCode code, const QString& message);
    void poll();
    void end();
    void takePicture();

    MainWindow* m_window;  // not owned
    std::deque<Step> m_steps;
    QTimer m_timer;
    QElapsedTimer m_clock;
    const int m_deadlineMs;
    const QString m_pictureFile;  // empty: none is wanted
    const QString m_pictureOf;    // empty: the window
    int m_sourceChanges = 0;
    int m_awaitedChanges = 0;
    int m_runningFetches = 0;
    int m_quietPolls = 0;
    bool m_isTextSettled = false;  ///< SQL text, or a query
    bool m_isTextApplied = false;
    QString m_textError;
    bool m_hasRunEnded = false;
    QString m_openError;
    QString m_runError;
    ExitCode m_exitCode = ExitOk;
    QString m_message;
};

}  // namespace QB::Desk
