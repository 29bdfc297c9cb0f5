#pragma once

#include <QString>
#include <QWidget>
#include <memory>

#include "hostkit/statement_runner.h"

class QComboBox;
class QLabel;
class QPushButton;
class QStatusBar;
class QTableView;

namespace QB::Desk {

class MessageBar;
class ResultModel;

/// Runs a statement and shows its rows as they come, with their number, the time, and a button that
/// stops it; what went wrong stands above the rows. Hidden, but for the foot line, until a
/// statement runs on the present database. Main thread.
class ResultGrid : public QWidget {
    Q_OBJECT

public:
    explicit ResultGrid(QWidget* parent = nullptr);
    ~ResultGrid() override;

    /// Statements run on @p database from now on. What runs is cancelled, the rows go.
    void setDatabase(const HostKit::Database& database);

    /// Runs @p sql, instead of what may be running.
    void run(const QString& sql);
    void cancel();
    bool isRunning() const;

    /// Rows after which fetching ends; 0: no limit.
    int rowLimit() const;
    void setRowLimit(int limit);

    ResultModel* model() const { return m_model; }
    MessageBar* messageBar() const { return m_messageBar; }
    /// The line with number, time, limit and stop button, and a place for passing notes. A window
    /// may take it as its own.
    QStatusBar* footLine() const { return m_foot; }

    /// Puts the selected cells on the clipboard as tab-separated text.
    void copySelection(bool withHeaders) const;
    bool hasSelection() const;

Q_SIGNALS:
    void runningChanged(bool isRunning);
    /// After each run, however it ended; @p error is empty unless it failed.
    void ended(const QString& error);

protected:
    void changeEvent(QEvent* event) override;

private:
    void setUpView();
    void setUpFootLine();
    void connectRunner();
    void retranslate();
    void showStatus();
    void showColumns(const QStringList& names);
    void showRows(const QVector<QVariantList>& rows);
    void end(const QString& error);
    void fitColumns();
    QString statusText() const;
    QString rowsText(qint64 count) const;

    enum class State { Idle, Running, Finished, Failed, Cancelled };

    State m_state = State::Idle;
    HostKit::StatementSummary m_summary;
    QString m_sql;
    ResultModel* m_model;      // owned by the widget
    MessageBar* m_messageBar;  // owned by the widget
    QTableView* m_view;        // owned by the widget
    QStatusBar* m_foot;        // owned by the widget, or by the window that took it
    QLabel* m_status;          // owned by the widget
    QLabel* m_limitLabel;      // owned by the widget
    QComboBox* m_limit;        // owned by the widget
    QPushButton* m_cancel;     // owned by the widget
    bool m_areColumnsFitted = false;
    std::unique_ptr<HostKit::StatementRunner> m_runner;  // null before setDatabase()
};

}  // namespace QB::Desk
