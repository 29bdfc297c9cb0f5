#include "tools/validation.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "model/element_expressions.h"
#include "model/tree_walks.h"
#include "tools/validation_scope.h"

namespace QB::Tools::Validation {

using namespace Component;
using namespace Component::SQL;

namespace {

/// The faults of one check, and whether listeners have to hear of it. The first fault of a key
/// stays; unknown fields are found at the end.
template <typename Key>
class Findings {
public:
    using Map = std::map<Key, int>;

    Findings(QBEngine* engine, const Map* known)
        : m_scope(engine), m_known(known), m_fields(engine) {}

    void add(Key key, InvalidReason reason) {
        m_map.emplace(key, reason);
        if (reason == InvalidPath && !isKnownWithoutSource(key)) m_isNews = true;
    }

    void checkField(SQLFieldColumnComponent* field, Key key) {
        const SQLAbstractSourceComponent* const source = m_scope.sourceOf(field);
        if (const auto fault = m_scope.findFault(field, source)) {
            if (fault == InvalidSource) m_scope.keepAlias(field);
            if (fault == InvalidSource) repair(field->source);
            return add(key, *fault);
        }
        const QBIdentifierCandidate* const table =
            source && !field->isAsterisk ? m_scope.tableOf(source) : nullptr;
        if (!table) return;
        m_fields.add(table, field->fieldName);
        m_lookedUp.push_back({key, table, field});
    }

    void checkReferencedColumn(SQLFieldColumnComponent* field, Key key,
                               const std::unordered_set<const SQLAbstractColumnComponent*>& valid) {
        if (valid.count(field->referencedColumn) > 0) return;
        repair(field->referencedColumn);
        add(key, InvalidReferencedColumn);
    }

    /// The last call but isNews.
    Map finish() {
        m_fields.run();
        for (const LookedUp& each : m_lookedUp) {
            if (m_fields.isMissing(each.table, each.field->fieldName)) add(each.key, InvalidField);
        }
        return std::move(m_map);
    }

    bool isNews() const { return m_isNews; }

private:
    /// Without a source it is since the check that took the source away, which was announced, too.
    /// What stands for the key now need not be this fault: a value list can have several.
    bool isKnownWithoutSource(Key key) const {
        if (!m_known) return false;
        const auto known = m_known->find(key);
        if (known == m_known->end()) return false;
        return known->second == InvalidSource || known->second == m_map.at(key);
    }

    template <typename Component>
    void repair(Component*& reference) {
        reference = nullptr;
        m_isNews = true;
    }

    struct LookedUp {
        Key key;
        const QBIdentifierCandidate* table;
        const SQLFieldColumnComponent* field;
    };

    ValidationScope m_scope;
    const Map* const m_known;  // not owned: the caller's; null: there is none
    Map m_map;
    bool m_isNews = false;
    FieldLookup m_fields;
    std::vector<LookedUp> m_lookedUp;  ///< in m_fields
};

// ---- conditions -------------------------------------------------------------------------------

bool hasRightSide(CompareOp op) {
    return op != CompareOpNone && (op < CompareOpIsNull || op > CompareOpIsNotEmpty);
}

bool isBetween(CompareOp op) {
    return op == CompareOpBetween || op == CompareOpNotBetween;
}

/// Walks chains of conditions with all that is nested in them, by a loop.
class ConditionCheck {
public:
    using Slot = SQLAbstractConditionComponent**;

    explicit ConditionCheck(Findings<Slot>& findings) : m_findings(findings) {}

    void run(Slot root) {
        m_chains = {root};
        while (!m_chains.empty()) {
            Slot slot = m_chains.back();
            m_chains.pop_back();
            for (; *slot; slot = &(*slot)->next)
                checkLink(slot);
        }
    }

private:
    void checkLink(Slot slot) {
        if (auto* bracket = dynamic_cast<SQLBracketedConditionComponent*>(*slot)) {
            m_chains.push_back(&bracket->inner);
        } else if (auto* compare = dynamic_cast<SQLCompareConditionComponent*>(*slot)) {
            checkCompare(compare);
        } else {
            checkValue(slot, slot);
        }
    }

    void checkCompare(SQLCompareConditionComponent* compare) {
        checkValue(&compare->leftValue, &compare->leftValue);
        if (!hasRightSide(compare->compareOp)) return;
        checkValue(&compare->rightValue, &compare->rightValue);
        if (isBetween(compare->compareOp)) checkUpperBound(&compare->rightValue);
    }

    /// The upper bound is the second item of the value, or else the next link of its chain. Its
    /// faults are those of the right side.
    void checkUpperBound(Slot right) {
        auto* lower = dynamic_cast<SQLConditionValueComponent*>(*right);
        if (!lower) return;
        const bool isList = lower->values.size() > 1;
        const bool isChain = !isList && lower->next && lower->next->logicGate == SQLLogicGateAnd;
        if (isChain) return checkValue(&lower->next, right);
        if (!isList || !lower->values[0] || !lower->values[1])
            m_findings.add(right, InvalidMissingValue);
    }

    /// @p key is the side that the value belongs to.
    void checkValue(Slot slot, Slot key) {
        auto* value = dynamic_cast<SQLConditionValueComponent*>(*slot);
        if (!value || isEmpty(value)) m_findings.add(key, InvalidMissingValue);
        if (!value) {
            // No value can be seen in a condition in a value's place, but it has fields to repair.
            m_chains.push_back(slot);
            return;
        }
        for (SQLAbstractColumnComponent* item : value->values)
            checkItem(item, key);
    }

    static bool isEmpty(const SQLConditionValueComponent* value) {
        return std::all_of(value->values.begin(), value->values.end(),
                           [](const SQLAbstractColumnComponent* item) { return !item; });
    }

    void checkItem(SQLAbstractColumnComponent* item, Slot key) {
        if (auto* field = dynamic_cast<SQLFieldColumnComponent*>(item)) {
            m_findings.checkField(field, key);
        } else if (auto* text = dynamic_cast<SQLAnyExpressionColumnComponent*>(item)) {
            if (text->expression.empty()) m_findings.add(key, InvalidMissingValue);
        }
    }

    Findings<Slot>& m_findings;
    std::vector<Slot> m_chains;  ///< still to be walked
};

// ---- columns ----------------------------------------------------------------------------------

using Columns = std::vector<SQLAbstractColumnComponent*>;
using ColumnFindings = Findings<SQLAbstractColumnComponent*>;

template <typename Check>
void checkFields(const Columns& columns, const Check& check) {
    for (SQLAbstractColumnComponent* column : columns) {
        if (auto* field = dynamic_cast<SQLFieldColumnComponent*>(column)) check(field);
    }
}

void checkSelected(const Columns& columns, ColumnFindings& findings) {
    checkFields(columns,
                [&](SQLFieldColumnComponent* field) { findings.checkField(field, field); });
}

void checkGroupedOrOrdered(const Columns& columns, const Columns& selected,
                           ColumnFindings& findings) {
    const std::unordered_set<const SQLAbstractColumnComponent*> valid(selected.begin(),
                                                                      selected.end());
    checkFields(columns, [&](SQLFieldColumnComponent* field) {
        if (!field->referencedColumn) return findings.checkField(field, field);
        findings.checkReferencedColumn(field, field, valid);
    });
}

// ---- modifications ----------------------------------------------------------------------------

/// Runs @p check(element, findings) in a modification of the current layer, which has a statement.
template <typename Element, typename Map, typename Check>
Map findInModification(int element, QBEngine* engine, void* sender, const Map* known,
                       const Check& check) {
    Map found;
    const QBEngine::FollowUp followUp(engine);
    engine->modifyInTopLevelQueryComponentElement<Element*>(
        static_cast<TopLevelQueryComponentElementEnum>(element),
        engine->currentTopLevelQueryComponentLayer(),
        [&](Element* expression) {
            Findings<typename Map::key_type> findings(engine, known);
            check(expression, findings);
            found = findings.finish();
            return findings.isNews();
        },
        sender);
    return found;
}

bool isElement(int element) {
    return element >= ElementSelectColumn && element <= ElementLimit;
}

}  // namespace

InvalidConditions invalidateConditionComponents(SQLAbstractConditionComponent** root, int element,
                                                QBEngine* engine, void* sender,
                                                const InvalidConditions* known) {
    if (!root || !currentStatement(engine) || !isElement(element)) return {};
    return findInModification<ELEMAbstractTopLevelQueryExpr>(
        element, engine, sender, known,
        [root](auto*, auto& findings) { ConditionCheck(findings).run(root); });
}

InvalidColumns invalidateRefComponents_selectColumn(int element, QBEngine* engine, void* sender,
                                                    const InvalidColumns* known) {
    if (element != ElementSelectColumn || !currentStatement(engine)) return {};
    return findInModification<ELEMSQLSelectColumnExpr>(
        element, engine, sender, known,
        [](auto* list, auto& findings) { checkSelected(list->columns, findings); });
}

InvalidColumns invalidateRefComponents_column(int element, QBEngine* engine, void* sender,
                                              const InvalidColumns* known) {
    const bool isColumnList = element == ElementGroupBy || element == ElementOrderBy;
    if (!isColumnList || !currentStatement(engine)) return {};
    return findInModification<ELEMSQLColumnExpr>(
        element, engine, sender, known, [engine](auto* list, auto& findings) {
            const Columns& selected = currentStatement(engine)->selectColumnExpr->columns;
            checkGroupedOrOrdered(list->columns, selected, findings);
        });
}

InvalidSources invalidateSourceComponents(QBEngine* engine, void*) {
    InvalidSources found;
    const SQLSelectStmtComponent* const statement = currentStatement(engine);
    if (!statement) return found;
    visitSourceNodes(statement->sourceExpr->root, [&found](const SourceNode* node) {
        if (isUnnamedSubquery(node->value)) found.emplace(node->value, InvalidUnnamedSubquery);
    });
    return found;
}

}  // namespace QB::Tools::Validation
