#include "diagrampanel/sliced_work.h"

#include <QScopedValueRollback>
#include <utility>

namespace QB {

SlicedWork::SlicedWork(Step step) : m_step(std::move(step)) {
    m_timer.setInterval(0);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { slice(true); });
}

void SlicedWork::run() {
    if (m_isInSlice) return;
    m_timer.start();
    slice(false);
}

void SlicedWork::slice(bool isFromEventLoop) {
    const QScopedValueRollback<bool> guard(m_isInSlice, true);
    QElapsedTimer elapsed;
    elapsed.start();
    m_isFresh = isFromEventLoop;
    m_isEnding = false;
    while (m_step()) {
        m_isFresh = false;
        if (m_isEnding || elapsed.nsecsElapsed() > sliceBudget * 1'000'000) return;
    }
    m_timer.stop();
}

}  // namespace QB
