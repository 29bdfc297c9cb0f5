#pragma once

#include <QObject>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <memory>

#include "hostkit/database.h"

namespace QB::HostKit {

struct StatementOptions {
    int rowCap = 10000;  ///< rows after which fetching ends; 0: no cap
    int timeoutMs = 0;   ///< after which the statement is stopped; 0: never
};

struct StatementSummary {
    qint64 rows = 0;           ///< rows handed over
    bool capped = false;       ///< there were more rows than the cap
    qint64 elapsedMs = 0;      ///< from run() to the last row
    qint64 rowsAffected = -1;  ///< of a statement that gives no rows; -1 where it has no meaning
};

/// Runs statements off the main thread, one at a time, and hands the rows over while they come.
///
/// Signals come on the runner's thread: for each run columnsReady (also with no columns, for a
/// statement that gives no rows), rowsReady any number of times, then exactly one of finished,
/// failed and cancelled. A statement that cannot be prepared fails without columnsReady. A second
/// run() cancels the first, of which no signal arrives any more. Signals never come from within
/// run() or cancel(). A slot may start the next run or destroy the runner.
/// A worker that is far ahead of the receiver waits for it, so memory stays bounded.
/// Destroying the runner cancels what runs and does not wait for it.
/// A statement that leaves a transaction open fails and is rolled back: the next one may run on
/// another connection, and would wait for this one for ever.
/// Thread: the runner lives on a thread with an event loop. Needs installCallbacks().
class QB_EXPORT StatementRunner : public QObject {
    Q_OBJECT

public:
    explicit StatementRunner(const Database& database, QObject* parent = nullptr);
    ~StatementRunner() override;

    /// Starts @p sql; a closed database fails the run.
    void run(const QString& sql, const StatementOptions& options = StatementOptions());

    /// Stops the running statement; cancelled() follows, or what the statement came to if that was
    /// quicker. No effect when nothing runs.
    void cancel();

    bool isRunning() const;

Q_SIGNALS:
    void columnsReady(const QStringList& names);
    /// Each row has a value for each column: a null QVariant for NULL, QByteArray for a blob.
    void rowsReady(const QVector<QVariantList>& rows);
    void finished(const QB::HostKit::StatementSummary& summary);
    /// @p position counts characters of the statement from 0; -1 if the server does not say.
    void failed(const QString& serverMessage, int position);
    void cancelled();

protected:
    bool event(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void deliver();
    void stopTimer(int& timer);
    void stopTimers();

    struct Private;
    std::unique_ptr<Private> m;
};

}  // namespace QB::HostKit

Q_DECLARE_METATYPE(QB::HostKit::StatementSummary)
