#pragma once

#include <memory>

#include "engine/engine.h"
#include "engine/engine_signal_emitter.h"

namespace QB {

/// The engine that a host creates: turns notifications into Qt signals.
class QB_EXPORT QBEngine_LINUX : public QBEngine {
public:
    QBEngine_LINUX();
    ~QBEngine_LINUX() override;

    /// Owned by the engine, never null.
    QBEngineSignalEmitter* signalEmitter() const { return m_signalEmitter.get(); }

    /// Emits the signal of the name; a refused parse goes to the host's showError instead.
    /// Errors: throws std::exception for an unknown name, std::out_of_range for a parameter that
    /// the name needs and that is missing.
    void notified(std::string name, const QBNotificationParameters* params) override;

private:
    const std::unique_ptr<QBEngineSignalEmitter> m_signalEmitter;
};

}  // namespace QB
