#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <stdexcept>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "engine/main_thread_call.h"
#include "model/notification_names.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"

namespace QB::Test {

using Names = std::vector<std::string>;

/// An engine that writes down what it is notified of.
class RecordingEngine : public QBEngine {
public:
    struct Notice {
        std::string name;
        bool hasParameters;
        QBNotificationParameters parameters;
    };

    ~RecordingEngine() override { endLife(); }

    void notified(std::string name, const QBNotificationParameters* params) override {
        notices.push_back({name, params != nullptr, params ? *params : QBNotificationParameters()});
    }

    Names takeNames() {
        Names names;
        for (const Notice& notice : std::exchange(notices, {}))
            names.push_back(notice.name);
        return names;
    }

    std::vector<Notice> notices;
};

/// The text of the std::runtime_error* that @p call throws; "" if it throws none.
inline std::string protocolErrorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (std::runtime_error* error) {
        const std::unique_ptr<std::runtime_error> owner(error);
        return error->what();
    }
    return "";
}

/// Whether another thread could take @p mutex now.
inline bool isFree(std::recursive_mutex& mutex) {
    return std::async(std::launch::async,
                      [&mutex] { return std::unique_lock(mutex, std::try_to_lock).owns_lock(); })
        .get();
}

/// Gives every test of an engine the host's side and an engine.
class EngineTest : public ::testing::Test {
protected:
    HostCallbacks host;
    OwnedEngine<RecordingEngine> engine;
};

/// The same with an empty MySQL statement; nothing is recorded yet.
class StatementTest : public EngineTest {
protected:
    StatementTest() {
        engine->setDatabaseInfo(DatabaseTypeMySQL, 80036);
        engine->notices.clear();
    }

    Component::SQL::SQLSelectStmtComponent* root() const {
        return static_cast<Component::SQL::SQLSelectStmtComponent*>(
            engine->topLevelQueryComponent(0));
    }

    template <typename Element>
    using Block = std::common_type_t<std::function<bool(Element*)>>;  // not deduced

    template <typename Element = void>
    void modify(TopLevelQueryComponentElementEnum which, const Block<Element>& block, int layer = 0,
                void* sender = nullptr) {
        engine->modifyInTopLevelQueryComponentElement<Element*>(which, layer, block, sender);
    }

    /// Makes @p source the FROM clause, in place of whatever stood there before (null here).
    template <typename Source>
    Source* setSource(Source* source) {
        modify<ELEMSQLSourceExpr>(ElementSource, [source](ELEMSQLSourceExpr* element) {
            element->root = new Component::SQL::SourceNode;
            element->root->value = source;
            return true;
        });
        return source;
    }

    auto* setTable(const std::string& name) {
        auto* table = new Component::SQL::SQLIdentifierSourceComponent;
        table->name = name;
        return setSource(table);
    }

    /// A derived table whose WHERE clause nobody but the engine frees; gives the inner statement.
    auto* setSubquery() {
        auto* inner = new Component::SQL::SQLSelectStmtComponent;
        inner->whereExpr->root = new Component::SQL::SQLConditionValueComponent;
        auto* derived = new Component::SQL::SQLSubquerySourceComponent;
        derived->alias = "derived";
        derived->subquery = inner;
        setSource(derived);
        return inner;
    }
};

}  // namespace QB::Test
