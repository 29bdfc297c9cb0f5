#include "apps/joinery-desk/sql_checker.h"

#include <QPointer>
#include <algorithm>
#include <utility>
#include <vector>

#include "hostkit/threads.h"

namespace QB::Desk {
namespace {

/// The position of a byte of the text in its document.
int documentPosition(const std::string& text, int offset) {
    const std::vector<TextSpan> before = documentSpans(text, {{0, offset}});
    return before.empty() ? 0 : before.front().length;
}

TextSpan documentPlace(const std::string& text, QBRange range) {
    if (range.location < 0) return {-1, 0};
    const int start = documentPosition(text, range.location);
    const std::vector<TextSpan> spans = documentSpans(text, {range});
    return {start, spans.empty() ? 0 : spans.front().length};
}

SqlCheckResult resultOf(const SqlChecker::Check& check, const SqlCheckRequest& request) {
    SqlCheckResult result;
    result.outcome = check(request);
    if (!result.isAccepted()) result.place = documentPlace(request.text, result.outcome.error);
    return result;
}

SqlCheckResult brokenCheck() {
    SqlCheckResult result;
    result.outcome.verdict = QBParseOutcome::Verdict::CannotBeRepresented;
    result.outcome.message = SqlChecker::tr("The text could not be checked.").toStdString();
    return result;
}

}  // namespace

SqlChecker::SqlChecker(Check check, QObject* parent) : QObject(parent), m_check(std::move(check)) {}

void SqlChecker::start(const SqlCheckRequest& request) {
    ++m_generation;
    m_isAwaited = true;
    if (m_isWorking) {
        m_next = request;
        return;
    }
    post(request);
}

void SqlChecker::cancel() {
    ++m_generation;
    m_isAwaited = false;
    m_next.reset();
}

void SqlChecker::post(SqlCheckRequest request) {
    m_isWorking = true;
    HostKit::postToWorker([checker = QPointer(this), generation = m_generation, check = m_check,
                           request = std::move(request)] {
        const auto deliver = [&](SqlCheckResult result) {
            HostKit::postToMainThread([checker, generation, result = std::move(result)] {
                if (checker) checker->finish(generation, result);
            });
        };
        SqlCheckResult result;
        try {
            result = resultOf(check, request);
        } catch (...) {
            // Its thread tells what was thrown, but nobody must wait for the answer forever.
            deliver(brokenCheck());
            throw;
        }
        deliver(std::move(result));
    });
}

void SqlChecker::finish(int generation, const SqlCheckResult& result) {
    m_isWorking = false;
    if (m_next) {
        post(*std::exchange(m_next, std::nullopt));
        return;
    }
    if (generation != m_generation || !m_isAwaited) return;
    m_isAwaited = false;
    Q_EMIT checked(result);
}

}  // namespace QB::Desk
