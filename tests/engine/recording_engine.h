#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"

namespace QB::Test {

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

    std::vector<std::string> takeNames() {
        std::vector<std::string> names;
        for (const Notice& notice : notices)
            names.push_back(notice.name);
        notices.clear();
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

using Names = std::vector<std::string>;

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

    /// Makes a table the FROM clause, in place of whatever stood there before (null here).
    Component::SQL::SQLIdentifierSourceComponent* setTable(const std::string& name) {
        auto* table = new Component::SQL::SQLIdentifierSourceComponent;
        table->name = name;
        engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
            ElementSource, 0,
            [table](ELEMSQLSourceExpr* element) {
                element->root = new Component::SQL::SourceNode;
                element->root->value = table;
                return true;
            },
            nullptr);
        return table;
    }
};

}  // namespace QB::Test
