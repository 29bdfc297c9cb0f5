#pragma once

#include <QObject>
#include <functional>
#include <optional>

#include "apps/joinery-desk/query_parsing.h"
#include "frame/text_spans.h"

namespace QB::Desk {

struct SqlCheckResult {
    QBParseOutcome outcome;
    /// Where the error is, in positions of the document that holds the text; start -1: nowhere.
    TextSpan place{-1, 0};

    bool isAccepted() const { return outcome.isAccepted(); }
};

/// Checks texts on a worker, one at a time; of those that wait only the newest is ever checked.
/// Main thread. Needs installCallbacks().
class SqlChecker : public QObject {
    Q_OBJECT

public:
    using Check = std::function<QBParseOutcome(const SqlCheckRequest&)>;

    /// @param check runs on the worker, on copies alone; it may outlive the checker.
    explicit SqlChecker(Check check, QObject* parent = nullptr);

    /// checked() follows, unless another start() or cancel() comes before it.
    void start(const SqlCheckRequest& request);
    /// The result of what was started is dropped.
    void cancel();
    /// True from start() to checked() or cancel().
    bool isChecking() const { return m_isAwaited; }

Q_SIGNALS:
    /// Of the request that was started last. A check that threw counts as refused.
    void checked(const QB::Desk::SqlCheckResult& result);

private:
    void post(SqlCheckRequest request);
    void finish(int generation, const SqlCheckResult& result);

    const Check m_check;
    std::optional<SqlCheckRequest> m_next;  // waits for the worker
    int m_generation = 0;                   ///< of the request that was started last
    bool m_isWorking = false;
    bool m_isAwaited = false;
};

}  // namespace QB::Desk
