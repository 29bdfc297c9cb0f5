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
    OwnedStatement content;                       ///< what is to stand in the statement below
    SQLSelectStmtComponent* statement = nullptr;  // not owned: with statementId alone
    long statementId = 0;
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
    /// False if the engine has gone.
    bool parse(ParseResult& result) const {
        const std::lock_guard lock(m_core->queryComponentAccessMutex);
        DatabaseType type = DatabaseTypeNone;
        std::string schema;
        const auto look = [&] {
            type = m_engine->databaseType();
            schema = m_engine->currentSchema();
            auto* const current = m_engine->currentTopLevelQueryComponent();
            result.statement = dynamic_cast<SQLSelectStmtComponent*>(current);
            result.statementId = current ? current->id() : 0;
        };
        if (!withEngine(look)) return false;
        result.content.reset(result.statement ? new SQLSelectStmtComponent : nullptr);
        try {
            QBQueryParser::parse(result.content.get(), m_text, type, schema, &result.changed,
                                 &result.message, &result.range);
        } catch (std::runtime_error* error) {
            result.message = std::unique_ptr<std::runtime_error>(error)->what();
        } catch (const std::exception& error) {
            result.message = error.what();  // short of memory, most likely
        }
        return true;
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

/// Puts the content into the statement at one stroke, here, since panels read it on this thread
/// without a lock. Gives the number of the modification, or 0 if the statement has gone.
unsigned long QBEngine::takeOver(const ParseResult& result) {
    RetiredParts::Number number = 0;
    m_core->withLiveComponent(result.statementId, [&] {
        auto* const statement = m_core->addressNow(result.statement, result.statementId);
        if (!statement) return;
        RetiredParts::Modification modification(m_core->retired);
        auto earlier = std::make_unique<SQLSelectStmtComponent>();
        swapElements(*earlier, *statement);
        swapElements(*statement, *result.content);
        DetachedParts parts;
        parts.add(std::move(earlier));
        m_core->retired.add(std::move(parts));
        number = modification.announce();
        checkStatements(ElementSource, currentTopLevelQueryComponentLayer());
    });
    return number;
}

/// Any of those who are told may destroy the engine.
void QBEngine::deliver(const ParseResult& result, Parse& parse) {
    const long id = m_id;
    const RetiredParts::Number modification = takeOver(result);
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
    if (modification != 0) sweepRetired(modification);
}

}  // namespace QB
