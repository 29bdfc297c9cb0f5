// The parse of QBEngine: the worker's side and what the main thread is told.

#include <memory>
#include <stdexcept>
#include <utility>

#include "engine/engine.h"
#include "engine/engine_core.h"
#include "engine/main_thread_call.h"
#include "model/callbacks.h"
#include "model/detached_parts.h"
#include "model/liveness.h"
#include "model/notification_names.h"
#include "parser/query_parser.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

struct QBEngine::ParseResult {
    std::set<TopLevelQueryComponentElementEnum> changed;
    std::string message;  ///< empty: success
    QBRange range{-1, 0};
    RetiredParts::Number modification = 0;  ///< 0: nothing was replaced
};

/// One call of parseQuery. Counts as running until it is delivered, or dropped by the host.
class QBEngine::Parse : public std::enable_shared_from_this<QBEngine::Parse> {
public:
    Parse(QBEngine* engine, std::string text, std::function<void(bool, QBRange)> completion)
        : m_engine(engine)
        , m_engineId(engine->id())
        , m_core(engine->core())
        , m_text(std::move(text))
        , m_completion(std::move(completion)) {
        ++m_core->runningParseCount;
    }
    ~Parse() { endRunning(); }
    Parse(const Parse&) = delete;
    Parse& operator=(const Parse&) = delete;

    /// On the dispatched thread.
    void run() {
        auto result = std::make_shared<ParseResult>();
        if (!parse(*result)) return;
        const auto deliver = [self = shared_from_this(), result] {
            self->m_engine->deliver(*result, *self);
        };
        if (callOnMainThread(m_engineId, deliver)) fetchFields();
    }

    /// On the main thread.
    void complete(bool isRead, QBRange range) const {
        if (m_completion) m_completion(isRead, range);
    }
    void endRunning() {
        if (std::exchange(m_isRunning, false)) --m_core->runningParseCount;
    }

private:
    struct Target {
        AbstractTopLevelQueryComponent* statement = nullptr;  // not owned
        DatabaseType type = DatabaseTypeNone;
        std::string schema;
    };

    /// False if the engine has gone. While the mutex is held the statement stays, since who
    /// destroys it after the engine takes the mutex first.
    bool parse(ParseResult& result) const {
        const std::lock_guard lock(m_core->queryComponentAccessMutex);
        Target target;
        if (!withEngine([&] {
                target = {m_engine->currentTopLevelQueryComponent(), m_engine->databaseType(),
                          m_engine->currentSchema()};
            }))
            return false;
        // Read into a statement of its own, so that the live one changes at one stroke.
        const OwnedStatement content(new SQLSelectStmtComponent);
        try {
            QBQueryParser::parse(content.get(), m_text, target.type, target.schema, &result.changed,
                                 &result.message, &result.range);
        } catch (std::runtime_error* error) {
            result.message = std::unique_ptr<std::runtime_error>(error)->what();
            return true;
        }
        replaceContent(target.statement, *content, result);
        return true;
    }

    void replaceContent(AbstractTopLevelQueryComponent* target, SQLSelectStmtComponent& content,
                        ParseResult& result) const {
        auto* const statement = dynamic_cast<SQLSelectStmtComponent*>(target);
        if (!statement) return;
        RetiredParts::Modification modification(m_core->retired);
        auto earlier = std::make_unique<SQLSelectStmtComponent>();
        swapElements(*earlier, *statement);
        swapElements(*statement, content);
        DetachedParts parts;
        parts.add(std::move(earlier));
        m_core->retired.add(std::move(parts));
        result.modification = modification.announce();
    }

    void fetchFields() const {
        std::vector<std::vector<std::string>> paths;
        {
            // In this order: nobody who has the mutex waits for the engine's end.
            const std::lock_guard lock(m_core->queryComponentAccessMutex);
            withEngine(
                [&] { paths = m_engine->findAllIdentifierRefreshPathInCurrentQueryLevel(); });
        }
        withEngine([&] {
            for (const std::vector<std::string>& path : paths)
                m_engine->addRefreshIdentifierCandidateChildrenRequest(path, false);
            m_engine->refreshRequestedIdentifierCandidateChildren(true);
        });
    }

    /// True if @p use ran, that is, the engine exists; it stays for that long.
    bool withEngine(const std::function<void()>& use) const {
        bool isThere = false;
        runIfAlive(m_engineId, [&](bool alive) {
            if (alive) use();
            isThere = alive;
        });
        return isThere;
    }

    QBEngine* const m_engine;  // not owned: used inside runIfAlive alone
    const long m_engineId;
    const std::shared_ptr<QBEngineCore> m_core;
    const std::string m_text;
    const std::function<void(bool, QBRange)> m_completion;
    bool m_isRunning = true;
};

void QBEngine::parseQuery(const std::string& text, std::function<void(bool, QBRange)> completion) {
    const auto parse = std::make_shared<Parse>(this, text, std::move(completion));
    Callback::runOperationOnDispatchedThread([parse] { parse->run(); });
}

bool QBEngine::isParsingQuery() const {
    return m_core->runningParseCount.load() > 0;
}

/// Any of those who are told may destroy the engine.
void QBEngine::deliver(const ParseResult& result, Parse& parse) {
    const long id = m_id;
    parse.complete(result.message.empty(), result.range);
    parse.endRunning();
    if (!isAlive(id)) return;
    const QBNotificationParameters modified = modifiedParameters(
        result.changed, currentTopLevelQueryComponentLayer(), static_cast<void*>(this));
    notifyChange(Notification::topLevelQueryComponentElementModified, &modified);
    if (!isAlive(id)) return;
    if (!result.message.empty()) {
        const QBNotificationParameters unsupported = {{"message", result.message}};
        notifyChange(Notification::parsingQueryUnsupported, &unsupported);
        if (!isAlive(id)) return;
    }
    if (result.modification != 0) sweepRetired(result.modification);
}

}  // namespace QB
