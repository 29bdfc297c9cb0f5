#include "model/statement_check.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "model/detached_parts.h"
#include "model/element_expressions.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

std::string kindOf(const AbstractQueryComponent* component) {
    if (const auto* c = dynamic_cast<const SQLIdentifierSourceComponent*>(component))
        return "table \"" + c->name + "\"";
    if (const auto* c = dynamic_cast<const SQLSubquerySourceComponent*>(component))
        return "derived table \"" + c->alias + "\"";
    if (const auto* c = dynamic_cast<const SQLAnyExpressionSourceComponent*>(component))
        return "source expression \"" + c->expression + "\"";
    if (const auto* c = dynamic_cast<const SQLJoinSourceNodeComponent*>(component))
        return "join " + joinTypeText(c->joinType);
    if (dynamic_cast<const SQLBracketedSourceNodeComponent*>(component)) return "source bracket";
    if (const auto* c = dynamic_cast<const SQLFieldColumnComponent*>(component))
        return c->isAsterisk ? "field *" : "field \"" + c->fieldName + "\"";
    if (const auto* c = dynamic_cast<const SQLAnyExpressionColumnComponent*>(component))
        return "expression \"" + c->expression + "\"";
    if (dynamic_cast<const SQLCompareConditionComponent*>(component)) return "comparison";
    if (dynamic_cast<const SQLBracketedConditionComponent*>(component)) return "condition bracket";
    if (dynamic_cast<const SQLConditionValueComponent*>(component)) return "value";
    return dynamic_cast<const AbstractTopLevelQueryComponent*>(component) ? "statement"
                                                                          : "component";
}

std::string nameOf(const AbstractQueryComponent* component) {
    return kindOf(component) + " #" + std::to_string(component->id());
}

bool isBetween(const SQLAbstractConditionComponent* first) {
    return first->next->logicGate == SQLLogicGateAnd && !first->next->next;
}

constexpr std::size_t toldFaults = 20;

}  // namespace

/// Reaches all there is, with what is still to be looked at on a stack of its own.
class StatementCheck::Walk {
public:
    void addRoot(const AbstractTopLevelQueryComponent* root) {
        push(root, {nullptr, "statement"});
        run();
    }

    void addDetached(const DetachedParts& parts) {
        m_isDetached = true;
        parts.visitParts([this](const SourceNode* tree, const AbstractQueryComponent* component) {
            push(tree, {nullptr, "parts taken out"});
            push(component, {nullptr, "parts taken out"});
        });
        run();
        m_isDetached = false;
    }

    void addLayers(const std::vector<const AbstractTopLevelQueryComponent*>& layers) {
        const AbstractQueryComponent* below = nullptr;
        for (std::size_t i = 0; i < layers.size(); below = layers[i++]) {
            if (!layers[i]) continue;
            const Reached* const layer = find(layers[i]);
            const bool isOpen = layer && (layer->isDetached || layer->statement == below);
            if (!isOpen) addFault("layer " + std::to_string(i) + " is no part of the layer before");
        }
    }

    std::string faults() const {
        std::vector<std::string> lines = m_faults;
        for (const Reference& reference : m_references)
            addReferenceFaults(reference, lines);
        std::string text;
        for (std::size_t i = 0; i < std::min(lines.size(), toldFaults); ++i)
            text += lines[i] + "\n";
        if (lines.size() > toldFaults)
            text += "and " + std::to_string(lines.size() - toldFaults) + " more\n";
        return text;
    }

    std::size_t size() const { return m_reached.size(); }

private:
    /// Where something stands: the statement, null for the root itself, and the clause.
    struct Place {
        const SQLSelectStmtComponent* statement;
        const char* clause;
        bool isSelectList = false;
    };
    struct Reached {
        const SQLSelectStmtComponent* statement;
        bool isReferable;  ///< by the fields of its statement
        bool isDetached;
    };
    struct Pending {
        const SourceNode* node;
        const AbstractQueryComponent* component;
        Place place;
    };
    struct Reference {
        const SQLFieldColumnComponent* field;
        Place place;
    };

    void push(const SourceNode* node, Place place) {
        if (node) m_pending.push_back({node, nullptr, place});
    }
    void push(const AbstractQueryComponent* component, Place place) {
        if (component) m_pending.push_back({nullptr, component, place});
    }

    void run() {
        while (!m_pending.empty()) {
            const Pending next = m_pending.back();
            m_pending.pop_back();
            if (next.node)
                lookAtNode(next.node, next.place);
            else
                lookAt(next.component, next.place);
        }
    }

    const Reached* find(const void* address) const {
        const auto found = m_reached.find(address);
        return found == m_reached.end() ? nullptr : &found->second;
    }

    /// False, with a fault, if it was there before. @p name tells what it is.
    template <typename Name>
    bool reach(const void* address, Place place, const Name& name) {
        const auto [entry, isNew] =
            m_reached.insert({address, {place.statement, false, m_isDetached}});
        if (isNew) return true;
        const bool isBoth = m_isDetached && !entry->second.isDetached;
        addFault(isBoth ? name() + " was taken out and still stands in the statement"
                        : name() + " is reached twice",
                 place);
        return false;
    }

    void addFault(const std::string& fault) { m_faults.push_back(fault); }
    void addFault(const std::string& fault, Place place) {
        addFault(std::string(place.clause) + ": " + fault);
    }
    /// The shape of what was taken out does not count.
    void require(bool isMet, const AbstractQueryComponent* component, const char* fault,
                 Place place) {
        if (!isMet && !m_isDetached) addFault(nameOf(component) + " " + fault, place);
    }

    // ---- FROM ---------------------------------------------------------------------------------

    void lookAtNode(const SourceNode* node, Place place) {
        const auto name = [node] {
            return "the node of " + (node->value ? nameOf(node->value) : std::string("nothing"));
        };
        if (!reach(node, place, name)) return;
        push(node->left, place);
        push(node->right, place);
        if (!node->value) {
            if (!m_isDetached) addFault("a node has no value", place);
            return;
        }
        require(node->ownsValue, node->value, "is not owned by its node", place);
        checkShape(node, place);
        push(node->value, place);
    }

    void checkShape(const SourceNode* node, Place place) {
        const SQLAbstractSourceComponent* const value = node->value;
        if (dynamic_cast<const SQLJoinSourceNodeComponent*>(value)) {
            require(node->left && node->right, value, "lacks a child", place);
        } else if (dynamic_cast<const SQLBracketedSourceNodeComponent*>(value)) {
            require(!node->right, value, "has a right child", place);
        } else {
            require(!node->left && !node->right, value, "has a child", place);
        }
    }

    void lookAtSource(const SQLAbstractSourceComponent* source, Place place) {
        if (const auto* join = dynamic_cast<const SQLJoinSourceNodeComponent*>(source)) {
            const bool isList = !join->condition ||
                                dynamic_cast<const SQLConditionValueComponent*>(join->condition);
            require(!join->isUsing || isList, join, "has a condition that is no USING list", place);
            return push(join->condition, {place.statement, "ON"});
        }
        m_reached[source].isReferable = true;
        if (const auto* derived = dynamic_cast<const SQLSubquerySourceComponent*>(source)) {
            require(derived->subquery, derived, "has no statement", place);
            push(derived->subquery, place);
        }
    }

    // ---- everything else ----------------------------------------------------------------------

    void lookAt(const AbstractQueryComponent* component, Place place) {
        if (!reach(component, place, [component] { return nameOf(component); })) return;
        if (const auto* condition = dynamic_cast<const SQLAbstractConditionComponent*>(component))
            return lookAtCondition(condition, place);
        if (const auto* column = dynamic_cast<const SQLAbstractColumnComponent*>(component))
            return lookAtColumn(column, place);
        if (const auto* source = dynamic_cast<const SQLAbstractSourceComponent*>(component))
            return lookAtSource(source, place);
        if (const auto* statement = dynamic_cast<const SQLSelectStmtComponent*>(component))
            return lookAtStatement(statement);
    }

    void lookAtStatement(const SQLSelectStmtComponent* s) {
        const auto has = [&](const ELEMAbstractTopLevelQueryExpr* element, const char* clause) {
            if (!element) addFault("has no element", {s, clause});
            return element != nullptr;
        };
        if (has(s->selectColumnExpr, "SELECT"))
            addColumns(s->selectColumnExpr->columns, {s, "SELECT", true});
        if (has(s->sourceExpr, "FROM")) push(s->sourceExpr->root, {s, "FROM"});
        if (has(s->whereExpr, "WHERE")) push(s->whereExpr->root, {s, "WHERE"});
        if (has(s->groupByExpr, "GROUP BY")) addSorted(s->groupByExpr->columns, {s, "GROUP BY"});
        if (has(s->havingExpr, "HAVING")) push(s->havingExpr->root, {s, "HAVING"});
        if (has(s->orderByExpr, "ORDER BY")) addSorted(s->orderByExpr->columns, {s, "ORDER BY"});
        has(s->limitExpr, "LIMIT");
    }

    void addColumns(const std::vector<SQLAbstractColumnComponent*>& columns, Place place) {
        for (const SQLAbstractColumnComponent* column : columns) {
            if (!column && !m_isDetached) addFault("a column of the list is null", place);
            push(column, place);
        }
    }

    void addSorted(const std::vector<SQLAbstractColumnComponent*>& columns, Place place) {
        using Direction = SQLAbstractColumnComponent::ExtraDataOrderDirection;
        addColumns(columns, place);
        for (const SQLAbstractColumnComponent* column : columns) {
            const bool isSorted = !column || dynamic_cast<const Direction*>(column->extraData);
            require(isSorted, column, "carries no direction", place);
        }
    }

    void lookAtColumn(const SQLAbstractColumnComponent* column, Place place) {
        m_reached[column].isReferable = place.isSelectList;
        if (column->extraData)
            reach(column->extraData, place,
                  [column] { return "the extra data of " + nameOf(column); });
        const auto* field = dynamic_cast<const SQLFieldColumnComponent*>(column);
        const bool hasReference = field && (field->source || field->referencedColumn);
        if (hasReference && !m_isDetached) m_references.push_back({field, place});
    }

    void lookAtCondition(const SQLAbstractConditionComponent* condition, Place place) {
        push(condition->next, place);
        if (const auto* value = dynamic_cast<const SQLConditionValueComponent*>(condition)) {
            for (const SQLAbstractColumnComponent* item : value->values)
                push(item, place);
        } else if (const auto* compare =
                       dynamic_cast<const SQLCompareConditionComponent*>(condition)) {
            checkOperands(compare, place);
            push(compare->leftValue, place);
            push(compare->rightValue, place);
        } else if (const auto* bracket =
                       dynamic_cast<const SQLBracketedConditionComponent*>(condition)) {
            push(bracket->inner, place);
        }
    }

    void checkOperands(const SQLCompareConditionComponent* compare, Place place) {
        const auto* left = compare->leftValue;
        const auto* right = compare->rightValue;
        require(!left || !left->next, compare, "has a chain for its left operand", place);
        require(!right || !right->next || isBetween(right), compare,
                "has a chain for its right operand that is no pair of bounds", place);
    }

    // ---- references ---------------------------------------------------------------------------

    /// Compares what @p field refers to with what was reached; it may be gone.
    void addReferenceFaults(const Reference& reference, std::vector<std::string>& lines) const {
        const auto [field, place] = reference;
        const auto add = [&lines, field = field, place = place](const char* what) {
            lines.push_back(std::string(place.clause) + ": " + nameOf(field) + " " + what);
        };
        if (field->source && !canReferTo(place.statement, field->source))
            add("belongs to a source that is not in its statement");
        if (field->referencedColumn && !canReferTo(place.statement, field->referencedColumn))
            add("refers to a column that is not in the SELECT list of its statement");
    }

    /// A source of @p statement, a column of its SELECT list, or something that was taken out.
    bool canReferTo(const SQLSelectStmtComponent* statement, const void* target) const {
        const Reached* const found = find(target);
        if (!found) return false;
        return found->isDetached || (found->isReferable && found->statement == statement);
    }

    std::vector<Pending> m_pending;
    std::unordered_map<const void*, Reached> m_reached;
    std::vector<Reference> m_references;
    std::vector<std::string> m_faults;
    bool m_isDetached = false;  ///< what is being walked was taken out
};

StatementCheck::StatementCheck(const AbstractTopLevelQueryComponent* root)
    : m_walk(std::make_unique<Walk>()) {
    m_walk->addRoot(root);
}

StatementCheck::~StatementCheck() = default;

void StatementCheck::addDetached(const DetachedParts& parts) {
    m_walk->addDetached(parts);
}

void StatementCheck::addLayers(const std::vector<const AbstractTopLevelQueryComponent*>& layers) {
    m_walk->addLayers(layers);
}

std::string StatementCheck::faults() const {
    return m_walk->faults();
}

std::size_t StatementCheck::size() const {
    return m_walk->size();
}

std::string findStatementFaults(const AbstractTopLevelQueryComponent* root,
                                const std::vector<const AbstractTopLevelQueryComponent*>& layers) {
    StatementCheck check(root);
    check.addLayers(layers);
    return check.faults();
}

}  // namespace QB
