#include "model/tree_walks.h"

#include <set>

#include "model/kind_of.h"

namespace QB::Tools {

using namespace Component;
using namespace Component::SQL;

namespace {

/// Most of what a statement is made of.
bool ownsNothing(const AbstractQueryComponent* component) {
    return ModelKindList<SQLIdentifierSourceComponent, SQLAnyExpressionSourceComponent,
                         SQLBracketedSourceNodeComponent, SQLFieldColumnComponent,
                         SQLAnyExpressionColumnComponent>::holdsClassOf(component);
}

const SQLAbstractConditionComponent* asCondition(const AbstractQueryComponent* component) {
    const bool isOne = ModelKindList<SQLConditionValueComponent, SQLCompareConditionComponent,
                                     SQLBracketedConditionComponent>::holdsClassOf(component);
    return isOne ? static_cast<const SQLAbstractConditionComponent*>(component)
                 : dynamic_cast<const SQLAbstractConditionComponent*>(component);
}

/// What is still to be looked at in a walk over all owned components.
class Walk {
public:
    using Visit = std::function<void(const AbstractQueryComponent*)>;

    explicit Walk(const Visit& visit) : m_visit(visit) {}

    void add(const AbstractQueryComponent* component) {
        if (component) m_pending.push_back(component);
    }

    void add(const SourceNode* tree) {
        visitSourceNodes(tree, [this](const SourceNode* node) { add(node->value); });
    }

    void run() {
        while (!m_pending.empty()) {
            const AbstractQueryComponent* component = m_pending.back();
            m_pending.pop_back();
            m_visit(component);
            addOwnedBy(component);
        }
    }

private:
    template <typename List>
    void addAll(const List& list) {
        for (const auto* component : list)
            add(component);
    }

    void addOwnedBy(const AbstractQueryComponent* component) {
        if (ownsNothing(component)) return;
        if (const auto* condition = asCondition(component)) {
            addOwnedByCondition(condition);
        } else if (const auto* join = ifKind<SQLJoinSourceNodeComponent>(component)) {
            add(join->condition);
        } else if (const auto* derived = ifKind<SQLSubquerySourceComponent>(component)) {
            add(derived->subquery);
        } else if (const auto* statement = ifKind<SQLSelectStmtComponent>(component)) {
            addOwnedByStatement(statement);
        }
    }

    void addOwnedByCondition(const SQLAbstractConditionComponent* condition) {
        add(condition->next);
        if (const auto* value = ifKind<SQLConditionValueComponent>(condition)) {
            addAll(value->values);
        } else if (const auto* compare = ifKind<SQLCompareConditionComponent>(condition)) {
            add(compare->leftValue);
            add(compare->rightValue);
        } else if (const auto* bracket = ifKind<SQLBracketedConditionComponent>(condition)) {
            add(bracket->inner);
        }
    }

    void addOwnedByStatement(const SQLSelectStmtComponent* statement) {
        addAll(statement->selectColumnExpr->columns);
        add(statement->sourceExpr->root);
        add(statement->whereExpr->root);
        addAll(statement->groupByExpr->columns);
        add(statement->havingExpr->root);
        addAll(statement->orderByExpr->columns);
    }

    const Visit& m_visit;
    std::vector<const AbstractQueryComponent*> m_pending;
};

}  // namespace

bool checkMultipleSchemaInvolved(const ELEMSQLSourceExpr* element) {
    if (!element) return false;
    std::set<std::string> schemas;
    visitSourceNodes(element->root, [&schemas](const SourceNode* node) {
        const auto* source = ifKind<SQLIdentifierSourceComponent>(node->value);
        if (source && !source->path.empty()) schemas.insert(source->path.back());
    });
    return schemas.size() > 1;
}

void visitSourceNodes(const SourceNode* root, const std::function<void(const SourceNode*)>& visit) {
    // A step either opens a node or reports it; a bracket is reported as it is opened.
    struct Step {
        const SourceNode* node;
        bool isOpen;
    };
    std::vector<Step> steps = {{root, false}};
    while (!steps.empty()) {
        const Step step = steps.back();
        steps.pop_back();
        if (!step.node || !step.node->value) continue;
        const bool isBracket = ifKind<SQLBracketedSourceNodeComponent>(step.node->value);
        if (step.isOpen || isBracket) visit(step.node);
        if (step.isOpen) continue;
        if (!isBracket) {
            steps.push_back({step.node->right, false});
            steps.push_back({step.node, true});
        }
        steps.push_back({step.node->left, false});
    }
}

void visitOwnedComponents(const AbstractQueryComponent* root,
                          const std::function<void(const AbstractQueryComponent*)>& visit) {
    Walk walk(visit);
    walk.add(root);
    walk.run();
}

void visitOwnedComponents(const SourceNode* tree,
                          const std::function<void(const AbstractQueryComponent*)>& visit) {
    Walk walk(visit);
    walk.add(tree);
    walk.run();
}

}  // namespace QB::Tools
