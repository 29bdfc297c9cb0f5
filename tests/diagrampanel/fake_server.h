#pragma once

#include <QStringList>
#include <QTimer>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "engine/engine_linux.h"
#include "model/tree_walks.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"

namespace QB::Test {

/// The host's side: callbacks whose main-thread work runs from the event loop.
class EventLoopHost : public HostCallbacks {
public:
    EventLoopHost() {
        QObject::connect(&m_pump, &QTimer::timeout, [this] { runPending(); });
        m_pump.start(0);
    }
    ~EventLoopHost() { finishWorkers(); }

private:
    QTimer m_pump;
};

/// The objects of a server, by path ("", "main", "main.city"), and the updater that hands them out.
/// While held, answers wait: a server that takes its time, without a clock.
class FakeServer {
public:
    using Objects = std::vector<std::pair<std::string, IdentifierType>>;

    ~FakeServer() { release(); }

    void set(const std::string& path, Objects objects) {
        const std::lock_guard lock(m_mutex);
        m_objects[path] = std::move(objects);
    }
    void setTables(const std::string& path, int count, const std::string& prefix = "table") {
        Objects tables;
        for (int i = 0; i < count; ++i)
            tables.emplace_back(prefix + std::to_string(i), IdentifierTypeTable);
        set(path, std::move(tables));
    }

    void hold() {
        const std::lock_guard lock(m_mutex);
        m_isHeld = true;
    }
    void release() {
        {
            const std::lock_guard lock(m_mutex);
            m_isHeld = false;
        }
        m_changed.notify_all();
    }
    int fetchCount() const {
        const std::lock_guard lock(m_mutex);
        return m_fetchCount;
    }

    auto updater() {
        return [this](IQBIdentifierCandidateAccessor* accessor, QBIdentifierCandidate* node) {
            fill(accessor, node);
        };
    }

private:
    static std::string pathOf(IQBIdentifierCandidateAccessor* accessor,
                              QBIdentifierCandidate* node) {
        std::string path;
        for (; node; node = accessor->parent(node))
            path = accessor->name(node) + (path.empty() ? "" : "." + path);
        return path;
    }

    void fill(IQBIdentifierCandidateAccessor* accessor, QBIdentifierCandidate* node) {
        const std::string path = pathOf(accessor, node);
        std::unique_lock lock(m_mutex);
        ++m_fetchCount;
        m_changed.wait(lock, [this] { return !m_isHeld; });
        accessor->clearChildren(node);
        for (const auto& [name, type] : m_objects[path]) {
            QBIdentifierCandidate* child = accessor->addChild(node);
            accessor->setName(child, name);
            accessor->setType(child, type);
        }
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isHeld = false;
    int m_fetchCount = 0;
    std::map<std::string, Objects> m_objects;
};

/// An engine over a fake server with the schemas main and other; main has the tables city and
/// country and the view places.
struct ServedEngine {
    ServedEngine() {
        server.set("", {{"main", IdentifierTypeSchema}, {"other", IdentifierTypeSchema}});
        server.set("main", {{"city", IdentifierTypeTable},
                            {"country", IdentifierTypeTable},
                            {"places", IdentifierTypeView}});
        server.set("main.city", {{"id", IdentifierTypeField}, {"name", IdentifierTypeField}});
        server.set("main.country", {{"code", IdentifierTypeField}});
        engine->registerIdentifierCandidateChildrenUpdater(server.updater());
    }
    ~ServedEngine() {
        server.release();
        host.finishWorkers();
    }

    void refresh(const std::vector<std::string>& path) {
        engine->addRefreshIdentifierCandidateChildrenRequest(path, true);
        engine->refreshRequestedIdentifierCandidateChildren(true);
    }
    void refreshAndWait(const std::vector<std::string>& path) {
        refresh(path);
        host.finishWorkers();
    }
    QBIdentifierCandidate* candidate(const std::vector<std::string>& path) {
        QBIdentifierCandidate* node = nullptr;
        for (const std::string& name : path)
            node = engine->findChildCandidate(node, name);
        return node;
    }

    /// The sources of a layer as "schema.name", in text order.
    QStringList sources(int layer = 0) {
        using namespace Component::SQL;
        auto* from =
            dynamic_cast<ELEMSQLSourceExpr*>(engine->modify_obtainElement(ElementSource, layer));
        QStringList names;
        Tools::visitSourceNodes(from->root, [&names](const SourceNode* node) {
            const auto* source = dynamic_cast<SQLIdentifierSourceComponent*>(node->value);
            if (source)
                names.append(QString::fromStdString(source->path.at(0) + "." + source->name));
        });
        return names;
    }

    EventLoopHost host;
    FakeServer server;
    OwnedEngine<> engine{DatabaseTypeSQLite};
};

}  // namespace QB::Test
