#pragma once

#include <gtest/gtest.h>

#include <sstream>

#include "layouts/source_tree_surgery.h"
#include "support/host_callbacks.h"
#include "support/owned_engine.h"
#include "support/tree_notation.h"
#include "tools/join_sight.h"
#include "tools/join_tools.h"

namespace QB::Test {

/// A FROM clause in an engine, with links drawn and removed as a diagram would.
class JoinFixture : public testing::Test {
protected:
    using Source = Component::SQL::SQLAbstractSourceComponent;
    using Join = Component::SQL::SQLJoinSourceNodeComponent;
    using Compare = Component::SQL::SQLCompareConditionComponent;
    using Condition = Component::SQL::SQLAbstractConditionComponent;

    JoinFixture() {
        m_engine->setDatabaseInfo(DatabaseTypePostgreSQL, 150000);
        m_engine->registerNotifyChangeListener(
            "TopLevelQueryComponentElementModifiedNotification",
            [this](const std::string&, const QBNotificationParameters*) { ++m_notifications; });
    }

    Component::SQL::SQLSelectStmtComponent* statement() const {
        return dynamic_cast<Component::SQL::SQLSelectStmtComponent*>(
            m_engine->currentTopLevelQueryComponent());
    }
    SourceNode** root() const { return &statement()->sourceExpr->root; }
    std::string tree() const { return writeTree(*root()); }

    void setTree(const std::string& text) {
        delete *root();
        const char* at = text.c_str();
        *root() = readTree(at);
        m_notifications = 0;
    }

    /// The first source or join that reads as @p word.
    template <typename Kind = Source>
    Kind* find(const std::string& word) const {
        for (const SourceTree::Place& place : SourceTree::flatten(root())) {
            const bool isIt = place.slot && place.component && wordOf(place.component) == word;
            if (isIt) return dynamic_cast<Kind*>(place.component);
        }
        return nullptr;
    }

    void link(const std::string& a, const std::string& b,
              const std::vector<Tools::SQL::FieldPair>& fields) {
        Tools::SQL::makeJoinLinkIfNecessary(m_engine.get(), this, find(a), find(b), fields);
    }

    /// Links as "a-b", by the fields x of both. Removals: "~L" of all that binds the first left
    /// join,
    /// "~L1" of its second comparison.
    void run(const std::string& steps) {
        std::istringstream words(steps);
        for (std::string step; words >> step;) {
            if (step[0] == '~') {
                unlink(step.substr(1, 1), step.size() > 2 ? std::stoi(step.substr(2)) : -1);
            } else {
                link(step.substr(0, 1), step.substr(2, 1), {{"x", "x"}});
            }
        }
    }

    void unlink(const std::string& word, int index) {
        auto* join = find<Join>(word);
        Condition* condition = index < 0 ? nullptr : join->condition;
        while (index-- > 0)
            condition = condition->next;
        Tools::SQL::removeJoins(m_engine.get(), this, {{join, dynamic_cast<Compare*>(condition)}});
    }

    using Field = Component::SQL::SQLFieldColumnComponent;
    using SourceOfField = std::map<Field*, Source*>;

    /// The field that an operand is; null for another operand.
    static Field* fieldOf(const Condition* operand) {
        const auto* value =
            dynamic_cast<const Component::SQL::SQLConditionValueComponent*>(operand);
        return value ? dynamic_cast<Field*>(value->firstValue()) : nullptr;
    }

    static std::string chain(const Condition* condition, const SourceOfField& sources) {
        using namespace Component::SQL;
        const auto word = [&sources](const Condition* operand) {
            const auto found = sources.find(fieldOf(operand));
            return found == sources.end() ? "?" : wordOf(found->second);
        };
        std::string text;
        for (; condition; condition = condition->next) {
            text += text.empty() ? "" : "&";
            if (const auto* compare = dynamic_cast<const Compare*>(condition)) {
                text += word(compare->leftValue) + "=" + word(compare->rightValue);
            } else if (const auto* bracket =
                           dynamic_cast<const SQLBracketedConditionComponent*>(condition)) {
                text += "(" + chain(bracket->inner, sources) + ")";
            } else {
                text += word(condition);
            }
        }
        return text;
    }

    /// The USING list of a join, or its chain; "-" where none is written.
    static std::string condition(const SourceNode* node) {
        using namespace Component::SQL;
        const auto* join = dynamic_cast<const Join*>(node->value);
        if (!join->condition || !join->needsCondition()) return "-";
        SourceOfField sources;
        Tools::SQL::findParentItemComponentOfJoinConditionFieldComponent(node, sources);
        if (!join->isUsing) return chain(join->condition, sources);
        const auto* list = dynamic_cast<const SQLConditionValueComponent*>(join->condition);
        return dynamic_cast<const SQLAnyExpressionColumnComponent*>(list->firstValue())->expression;
    }

    /// The conditions of the joins in text order.
    static std::string conditions(SourceNode* tree) {
        std::string text;
        for (const SourceTree::Place& place : SourceTree::flatten(&tree)) {
            if (SourceTree::isJoin(place.component))
                text += (text.empty() ? "" : " ") + condition(*place.slot);
        }
        return text;
    }
    std::string conditions() const { return conditions(*root()); }

    HostCallbacks m_host;
    OwnedEngine<> m_engine;
    int m_notifications = 0;
};

}  // namespace QB::Test
