#include "hostkit/statement_runner.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QPointer>
#include <QSqlRecord>
#include <QTimerEvent>
#include <condition_variable>
#include <mutex>
#include <optional>

#include "hostkit/connection_pool.h"
#include "hostkit/threads.h"
#include "platform/tolk/tolk.h"

namespace QB::HostKit {
namespace {

constexpr int maxWaitingRows = 4096;    // a worker that is further ahead waits
constexpr int maxRowsPerSignal = 1000;  // what a slot is asked to take in one go
constexpr int pauseMs = 5;              // between two deliveries, for input and painting

QEvent::Type wakeType() {
    static const int type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(type);
}

/// How a run came to its end.
struct Outcome {
    enum Kind { Finished, Failed, Stopped };
    Kind kind = Finished;
    StatementSummary summary;
    QString message;
    int position = -1;
};

/// What waits to be delivered.
struct Delivery {
    std::optional<QStringList> columns;
    QVector<QVariantList> rows;
    std::optional<Outcome> outcome;

    bool isEmpty() const { return !columns && rows.isEmpty() && !outcome; }
};

/// The box between the worker and the runner of one run, with a bare event to announce that
/// something lies in it.
class ResultBox {
public:
    explicit ResultBox(QObject* receiver) : m_receiver(receiver) {}

    // The worker's side.

    void putColumns(const QStringList& names) {
        const std::lock_guard lock(m_mutex);
        m_content.columns = names;
        wake();
    }

    /// Waits while the receiver is far behind; returns at once after a stop.
    void putRow(QVariantList row, const StopToken& token) {
        std::unique_lock lock(m_mutex);
        m_taken.wait(lock, [this, &token] {
            return m_content.rows.size() < maxWaitingRows || token.isStopped();
        });
        m_content.rows.push_back(std::move(row));
        wake();
    }

    void putOutcome(Outcome outcome) {
        const std::lock_guard lock(m_mutex);
        m_content.outcome = std::move(outcome);
        wake();
    }

    /// Wakes a worker in putRow after its token was stopped.
    void wakeWorker() {
        // Taken so that the worker is either before its test or already waiting.
        { const std::lock_guard lock(m_mutex); }
        m_taken.notify_all();
    }

    // The receiver's side.

    void forgetReceiver() {
        const std::lock_guard lock(m_mutex);
        m_receiver = nullptr;
    }

    /// Takes what there is, of the rows a share, and the outcome only after the last row. After an
    /// empty delivery the next content is announced by an event again.
    Delivery take() {
        Delivery delivery;
        const std::lock_guard lock(m_mutex);
        std::swap(delivery.columns, m_content.columns);
        if (m_content.rows.size() <= maxRowsPerSignal) {
            std::swap(delivery.rows, m_content.rows);
            std::swap(delivery.outcome, m_content.outcome);
        } else {
            delivery.rows = m_content.rows.mid(0, maxRowsPerSignal);
            m_content.rows.remove(0, maxRowsPerSignal);
        }
        if (delivery.isEmpty()) m_isAnnounced = false;
        m_taken.notify_all();
        return delivery;
    }

private:
    void wake() {
        if (!m_receiver || m_isAnnounced) return;
        m_isAnnounced = true;
        QCoreApplication::postEvent(m_receiver, new QEvent(wakeType()));
    }

    std::mutex m_mutex;
    std::condition_variable m_taken;
    // All below guarded by m_mutex.
    QObject* m_receiver;  // not owned: null once the runner has no interest any more
    bool m_isAnnounced = false;
    Delivery m_content;
};

/// NULL is the null QVariant and nothing else is: the driver gives typed nulls, and an empty blob
/// as a null byte array.
QVariant normalized(const QVariant& value) {
    if (value.type() == QVariant::ByteArray && value.toByteArray().isNull())
        return QByteArray("", 0);
    return value.isNull() ? QVariant() : value;
}

/// One run on its worker thread.
class StatementRun {
public:
    StatementRun(std::shared_ptr<ResultBox> box, std::shared_ptr<StopToken> token, QString sql,
                 StatementOptions options)
        : m_box(std::move(box))
        , m_token(std::move(token))
        , m_sql(std::move(sql))
        , m_options(options) {
        m_clock.start();
    }

    void execute(const std::shared_ptr<ConnectionPool>& pool) {
        Outcome outcome = outcomeOn(pool);
        const bool isCutShort = m_token->isStopped() && outcome.kind != Outcome::Finished;
        if (isCutShort && pool && pool->isClosed())
            outcome = failure(Tolk::localize(Tolk::TextDatabaseClosed));
        else if (isCutShort)
            outcome.kind = Outcome::Stopped;
        outcome.summary.elapsedMs = m_clock.elapsed();
        m_box->putOutcome(std::move(outcome));
    }

private:
    static Outcome failure(const QString& message, int position = -1) {
        Outcome outcome;
        outcome.kind = Outcome::Failed;
        outcome.message = message;
        outcome.position = position;
        return outcome;
    }

    Outcome outcomeOn(const std::shared_ptr<ConnectionPool>& pool) {
        if (!pool) return failure(Tolk::localize(Tolk::TextDatabaseClosed));
        if (m_sql.trimmed().isEmpty()) return failure(Tolk::localize(Tolk::TextNoStatement));
        const StatementScope scope(*pool, m_token);
        if (!scope.connection()) return failure(scope.error());
        ThreadConnection& connection = *scope.connection();
        Outcome outcome = fetchAll(*pool, connection);
        const auto isInTransaction = connection.description().isInTransaction;
        if (!isInTransaction || !isInTransaction(connection.handle())) return outcome;
        // The next statement may run on another connection: it would wait for this one for ever.
        QSqlQuery(connection.database()).exec(QStringLiteral("ROLLBACK"));
        if (outcome.kind != Outcome::Finished) return outcome;
        return failure(Tolk::localize(Tolk::TextTransactionLeftOpen));
    }

    Outcome fetchAll(ConnectionPool& pool, ThreadConnection& connection) {
        QSqlQuery query(connection.database());
        query.setForwardOnly(true);
        if (m_token->isStopped()) return failure(QString());
        if (!query.prepare(m_sql)) return serverFailure(pool, connection, query);
        m_box->putColumns(columnNames(connection, query));
        if (!query.exec()) return serverFailure(pool, connection, query);
        Outcome outcome;
        if (!query.isSelect()) {
            outcome.summary.rowsAffected = query.numRowsAffected();
            return outcome;
        }
        fetchRows(query, outcome.summary);
        if (query.lastError().isValid()) return serverFailure(pool, connection, query);
        if (m_token->isStopped() && !outcome.summary.capped) outcome.kind = Outcome::Stopped;
        return outcome;
    }

    void fetchRows(QSqlQuery& query, StatementSummary& summary) {
        while (!m_token->isStopped() && query.next()) {
            if (m_options.rowCap > 0 && summary.rows >= m_options.rowCap) {
                summary.capped = true;
                return;
            }
            m_box->putRow(rowOf(query), *m_token);
            ++summary.rows;
        }
    }

    static QVariantList rowOf(const QSqlQuery& query) {
        QVariantList row;
        const int columns = query.record().count();
        row.reserve(columns);
        for (int column = 0; column < columns; ++column)
            row << normalized(query.value(column));
        return row;
    }

    static QStringList columnNames(const ThreadConnection& connection, const QSqlQuery& query) {
        if (const auto names = connection.description().columnNames) return names(query);
        QStringList names;
        for (int column = 0; column < query.record().count(); ++column)
            names << query.record().fieldName(column);
        return names;
    }

    Outcome serverFailure(const ConnectionPool& pool, const ThreadConnection& connection,
                          const QSqlQuery& query) const {
        const auto position = connection.description().errorPosition;
        return failure(pool.messageOf(query.lastError()),
                       position ? position(connection.handle(), m_sql) : -1);
    }

    const std::shared_ptr<ResultBox> m_box;
    const std::shared_ptr<StopToken> m_token;
    const QString m_sql;
    const StatementOptions m_options;
    QElapsedTimer m_clock;
};

/// A token whose stop wakes a worker that waits at the box.
std::shared_ptr<StopToken> tokenFor(const std::shared_ptr<ResultBox>& box) {
    return std::make_shared<StopToken>([weakBox = std::weak_ptr<ResultBox>(box)] {
        if (const auto alive = weakBox.lock()) alive->wakeWorker();
    });
}

/// Emits the one signal that ends a run. @p timeoutMs: 0 if the run was not out of time.
void conclude(StatementRunner& runner, const Outcome& outcome, int timeoutMs) {
    if (outcome.kind == Outcome::Finished) return runner.finished(outcome.summary);
    if (outcome.kind == Outcome::Failed) return runner.failed(outcome.message, outcome.position);
    if (timeoutMs == 0) return runner.cancelled();
    runner.failed(Tolk::localizeWithArgs(Tolk::TextStatementTimedOut, timeoutMs), -1);
}

}  // namespace

struct StatementRunner::Private {
    Database database;
    std::shared_ptr<ResultBox> box;    // null: nothing runs
    std::shared_ptr<StopToken> token;  // of the run whose box this is
    StatementOptions options;
    bool isTimedOut = false;
    int timeoutTimer = 0;   // 0: none
    int deliveryTimer = 0;  // 0: none

    /// Lets go of the run; its worker goes on to its stop by itself.
    void abandonRun() {
        if (!box) return;
        box->forgetReceiver();
        box.reset();
        token->stop();
    }
};

StatementRunner::StatementRunner(const Database& database, QObject* parent)
    : QObject(parent), m(std::make_unique<Private>()) {
    qRegisterMetaType<StatementSummary>();
    m->database = database;
}

StatementRunner::~StatementRunner() {
    m->abandonRun();
}

void StatementRunner::run(const QString& sql, const StatementOptions& options) {
    m->abandonRun();
    stopTimers();
    m->box = std::make_shared<ResultBox>(this);
    m->token = tokenFor(m->box);
    m->options = options;
    m->isTimedOut = false;
    if (options.timeoutMs > 0) m->timeoutTimer = startTimer(options.timeoutMs);
    const auto work = std::make_shared<StatementRun>(m->box, m->token, sql, options);
    postToWorker([work, pool = m->database.connections()] { work->execute(pool); });
}

void StatementRunner::cancel() {
    if (m->box) m->token->stop();
}

bool StatementRunner::isRunning() const {
    return m->box != nullptr;
}

bool StatementRunner::event(QEvent* event) {
    if (event->type() != wakeType()) return QObject::event(event);
    // An event of an abandoned run finds the box of the next one, which is no harm.
    if (m->box && !m->deliveryTimer) deliver();
    return true;
}

void StatementRunner::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m->deliveryTimer) return deliver();
    if (event->timerId() != m->timeoutTimer) return QObject::timerEvent(event);
    stopTimer(m->timeoutTimer);
    m->isTimedOut = true;
    m->token->stop();
}

/// Emits a share of what has come. The timer then brings the next share, so that input and
/// painting have their turn even while rows come faster than they can be shown.
void StatementRunner::deliver() {
    const std::shared_ptr<ResultBox> box = m->box;
    const QPointer<StatementRunner> self(this);
    const auto isStillWanted = [&] {
        return self && m->box == box;
    };
    Delivery delivery = box->take();
    if (delivery.isEmpty()) return stopTimer(m->deliveryTimer);
    if (!m->deliveryTimer) m->deliveryTimer = startTimer(pauseMs);
    if (delivery.columns) Q_EMIT columnsReady(*delivery.columns);
    if (!isStillWanted()) return;
    if (!delivery.rows.isEmpty()) Q_EMIT rowsReady(delivery.rows);
    if (!isStillWanted() || !delivery.outcome) return;
    m->box.reset();
    stopTimers();
    conclude(*this, *delivery.outcome, m->isTimedOut ? m->options.timeoutMs : 0);
}

void StatementRunner::stopTimer(int& timer) {
    if (timer) killTimer(timer);
    timer = 0;
}

void StatementRunner::stopTimers() {
    stopTimer(m->timeoutTimer);
    stopTimer(m->deliveryTimer);
}

}  // namespace QB::HostKit
