#include "engine/candidate_refresh.h"

#include <QScopeGuard>
#include <algorithm>
#include <utility>

#include "engine/main_thread_call.h"
#include "engine/protocol_error.h"
#include "model/notification_names.h"

namespace QB {

CandidateRefresh::CandidateRefresh(std::shared_ptr<QBEngineCore> core, long engineId,
                                   std::vector<QBEngineCore::RefreshRequest> requests,
                                   Notify notify)
    : m_core(std::move(core))
    , m_engineId(engineId)
    , m_requests(std::move(requests))
    , m_notify(std::move(notify)) {
    using Request = QBEngineCore::RefreshRequest;
    std::stable_sort(m_requests.begin(), m_requests.end(), [](const Request& a, const Request& b) {
        return a.first.size() < b.first.size();
    });
    m_core->runningRefreshes.add(static_cast<int>(m_requests.size()));
}

void CandidateRefresh::run() const {
    auto waiting = static_cast<int>(m_requests.size());
    // Requests that a throwing updater or the engine's end leaves over are no longer running.
    const auto dropRest = qScopeGuard([&] { m_core->runningRefreshes.add(-waiting); });
    for (const QBEngineCore::RefreshRequest& request : m_requests) {
        const std::lock_guard lock(m_core->identifierTreeMutex);
        if (!isAlive(m_engineId)) return;
        --waiting;
        if (!refresh(request)) return;
    }
}

bool CandidateRefresh::refresh(const QBEngineCore::RefreshRequest& request) const {
    QBIdentifierCandidate* node = nullptr;  // the root
    for (const std::string& name : request.first) {
        if (!fetchUnlessFilled(node, false)) return false;
        node = m_core->candidates.findChild(node, name);
        if (!node) return true;  // the object is gone; the other requests go on
    }
    return fetchUnlessFilled(node, request.second);
}

bool CandidateRefresh::fetchUnlessFilled(QBIdentifierCandidate* node, bool force) const {
    if (!force && m_core->candidates.hasChildren(node)) return true;
    return fetch(node);
}

bool CandidateRefresh::fetch(QBIdentifierCandidate* ident) const {
    if (!announceBegun(ident)) return false;
    try {
        runUpdater(ident);
    } catch (...) {
        announceEnded(ident);  // or wait indicators would turn for ever
        throw;
    }
    return announceEnded(ident);
}

void CandidateRefresh::runUpdater(QBIdentifierCandidate* ident) const {
    const QBCandidateChildrenUpdater updater = m_core->updater();
    if (!updater) throwProtocolError("identCand: Updater not set");
    QBEngineIdentifierCandidateAccessor accessor(m_core);
    updater(&accessor, ident);
}

bool CandidateRefresh::announceBegun(QBIdentifierCandidate* ident) const {
    return callOnMainThread(m_engineId, [notify = m_notify, ident] {
        notify(Notification::identifierCandidateChildrenUpdateBegun, ident);
    });
}

bool CandidateRefresh::announceEnded(QBIdentifierCandidate* ident) const {
    return callOnMainThread(m_engineId, [notify = m_notify, core = m_core, ident] {
        notify(Notification::identifierCandidateChildrenUpdateEnded, ident);
        core->runningRefreshes.add(-1);
    });
}

}  // namespace QB
