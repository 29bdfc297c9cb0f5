#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/engine_core.h"

namespace QB {

/// One run over the refresh requests that waited together. Copyable, so that it can travel in a
/// closure; holds the core, never the engine.
class CandidateRefresh {
public:
    /// Sends a notification about a node, null for the root. Called on the main thread, inside
    /// runIfAlive with the engine's id.
    using Notify = std::function<void(const std::string& name, QBIdentifierCandidate* ident)>;

    /// Sorts @p requests so that parents are fetched before children, and counts them as running.
    CandidateRefresh(std::shared_ptr<QBEngineCore> core, long engineId,
                     std::vector<QBEngineCore::RefreshRequest> requests, Notify notify);

    /// Works all requests off; ends early when the engine is gone.
    /// Errors: those of QBEngine::refreshRequestedIdentifierCandidateChildren.
    /// Thread: any, subject to callOnMainThread.
    void run() const;

private:
    // Each is false when the engine is gone, so that the run has to end.
    bool refresh(const QBEngineCore::RefreshRequest& request) const;
    bool fetchUnlessFilled(QBIdentifierCandidate* node, bool force) const;
    bool fetch(QBIdentifierCandidate* ident) const;
    bool announceBegun(QBIdentifierCandidate* ident) const;
    bool announceEnded(QBIdentifierCandidate* ident) const;

    void runUpdater(QBIdentifierCandidate* ident) const;

    std::shared_ptr<QBEngineCore> m_core;
    long m_engineId;
    std::vector<QBEngineCore::RefreshRequest> m_requests;
    Notify m_notify;
};

}  // namespace QB
