#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "engine/engine_core.h"
#include "model/tree_walks.h"
#include "parser/query_parser.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"

namespace QB::Test {

/// An engine whose server has a few tables, of which nothing is fetched yet. Dispatched work runs
/// when workOff is called, on this thread; names are written without quotes.
class ShopTest : public testing::Test {
protected:
    using Names = std::vector<std::string>;

    ShopTest() {
        jobs().clear();
        Callback::runOperationOnDispatchedThread = [](std::function<void()> job) {
            jobs().push_back(std::move(job));
        };
        Callback::formatIdentifier = [](const std::string& name, DatabaseType, int) {
            return name;
        };
        engine->setCurrentSchema("shop");
        engine->registerIdentifierCandidateChildrenUpdater([this](auto* accessor, auto* node) {
            const Names path = engine->candidatePath(node);
            const std::string name = path.empty() ? "root" : path.back();
            fetched += (fetched.empty() ? "" : " ") + name;
            if (name == "broken") throw std::string("permission denied");
            for (const std::string& child : childrenOf(name))
                accessor->setName(accessor->addChild(node), child);
        });
    }

    static Names childrenOf(const std::string& name) {
        if (name == "root") return {"shop", "archive"};
        if (name == "shop") return {"orders", "items", "empty", "broken"};
        if (name == "archive") return {"years"};
        if (name == "orders") return {"id", "total"};
        if (name == "items") return {"price", "id"};
        return name == "years" ? Names{"year"} : Names();
    }

    void fetch(const Names& path) {
        engine->addRefreshIdentifierCandidateChildrenRequest(path, false);
        engine->refreshRequestedIdentifierCandidateChildren(false);
    }

    static void workOff() {
        for (const auto& job : std::exchange(jobs(), {}))
            job();
    }

    Component::SQL::SQLSelectStmtComponent* root() const {
        return dynamic_cast<Component::SQL::SQLSelectStmtComponent*>(
            engine->topLevelQueryComponent(0));
    }

    void open(const std::string& text) {
        const auto outcome =
            QBQueryParser::parseStatement(root(), text, DatabaseTypePostgreSQL, "shop");
        ASSERT_TRUE(outcome.isAccepted()) << text << ": " << outcome.message;
    }

    /// The source at that place of the FROM clause, joins left out.
    Component::SQL::SQLAbstractSourceComponent* source(std::size_t index) const {
        std::vector<Component::SQL::SQLAbstractSourceComponent*> sources;
        Tools::visitSourceNodes(root()->sourceExpr->root, [&](const auto* node) {
            const bool isLeaf = !node->left && !node->right;
            if (isLeaf) sources.push_back(node->value);
        });
        return sources.at(index);
    }

    HostCallbacks host;
    OwnedEngine<> engine{DatabaseTypePostgreSQL};
    std::string fetched;  ///< the nodes in order, by name

private:
    static std::vector<std::function<void()>>& jobs() {
        static std::vector<std::function<void()>> list;
        return list;
    }
};

}  // namespace QB::Test
