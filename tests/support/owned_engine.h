#pragma once

#include <memory>
#include <mutex>

#include "engine/engine_core.h"
#include "engine/engine_linux.h"
#include "model/detached_parts.h"

namespace QB::Test {

/// An engine that takes its root statement along when it goes, which the engine alone does not,
/// so that leak checks stay exact.
template <typename Engine = QBEngine_LINUX>
class OwnedEngine {
public:
    OwnedEngine() = default;
    explicit OwnedEngine(DatabaseType type) { m_engine->setDatabaseInfo(type, 1); }
    ~OwnedEngine() { destroy(); }
    OwnedEngine(const OwnedEngine&) = delete;
    OwnedEngine& operator=(const OwnedEngine&) = delete;

    Engine* operator->() const { return m_engine.get(); }
    Engine* get() const { return m_engine.get(); }

    /// First the engine, then the statement, under the mutex: workers may still be reading it.
    void destroy() {
        if (!m_engine) return;
        const auto core = m_engine->core();
        const bool hasLayer = m_engine->currentTopLevelQueryComponentLayer() >= 0;
        auto* const root = hasLayer ? m_engine->topLevelQueryComponent(0) : nullptr;
        m_engine.reset();
        const std::lock_guard lock(core->queryComponentAccessMutex);
        destroyUnownedClauses(root);
        delete root;
    }

private:
    std::unique_ptr<Engine> m_engine = std::make_unique<Engine>();
};

}  // namespace QB::Test
