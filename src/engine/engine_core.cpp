#include "engine/engine_core.h"

#include "engine/main_thread_call.h"

namespace QB {

QBEngineCore::~QBEngineCore() = default;

bool QBEngineCore::withLiveComponent(long componentId, const std::function<void()>& read) {
    // The mutex comes first: whoever destroys the component has it, so the answer stays true.
    const std::lock_guard lock(queryComponentAccessMutex);
    if (!isAlive(componentId)) return false;
    read();
    return true;
}

void QBEngineCore::setUpdater(const QBCandidateChildrenUpdater& updater) {
    const std::lock_guard lock(m_callbackMutex);
    m_updater = updater;
}

QBCandidateChildrenUpdater QBEngineCore::updater() const {
    const std::lock_guard lock(m_callbackMutex);
    return m_updater;
}

void QBEngineCore::setSearcher(const QBForeignKeySearcher& searcher) {
    const std::lock_guard lock(m_callbackMutex);
    m_searcher = searcher;
}

QBForeignKeySearcher QBEngineCore::searcher() const {
    const std::lock_guard lock(m_callbackMutex);
    return m_searcher;
}

void QBEngineCore::addRequest(RefreshRequest request) {
    const std::lock_guard lock(m_requestMutex);
    m_requests.push_back(std::move(request));
}

std::vector<QBEngineCore::RefreshRequest> QBEngineCore::takeRequests() {
    const std::lock_guard lock(m_requestMutex);
    return std::exchange(m_requests, {});
}

}  // namespace QB
