#include "tools/validation.h"

#include <algorithm>
#include <set>
#include <unordered_set>
#include <utility>

#include "model/element_expressions.h"
#include "model/tree_walks.h"
#include "tools/join_lack.h"
#include "tools/join_marks.h"
#include "tools/validation_scope.h"

namespace QB::Tools::Validation {

using namespace Component;
using namespace Component::SQL;

namespace {

/// Whether fields are looked for in their tables; these may not have been fetched in another layer.
enum class Fields { Checked, Trusted };

/// The faults of one check, and whether listeners have to hear of it. The first fault of a key
/// stays; unknown fields are found at the end.
template <typename Key>
class Findings {
public:
    using Map = std::map<Key, int>;

    Findings(QBEngine* engine, const Map* known)
        : m_scope(engine, currentLayers(engine)), m_known(known), m_fields(engine) {}
    /// Only looks at a statement of those layers, the last one.
    Findings(QBEngine* engine, const ValidationScope::Layers& layers, Fields fields)
        : m_isRepairing(false)
        , m_looksForFields(fields == Fields::Checked)
        , m_scope(engine, layers)
        , m_known(nullptr)
        , m_fields(engine) {}

    void add(Key key, InvalidReason reason) {
        m_map.emplace(key, reason);
        if (reason == InvalidPath && !isKnownWithoutSource(key)) m_isNews = true;
    }

    void checkField(SQLFieldColumnComponent* field, Key key) {
        const SQLAbstractSourceComponent* const source = m_scope.sourceOf(field);
        if (const auto fault = m_scope.findFault(field, source)) {
            if (fault == InvalidSource && m_isRepairing) {
                m_scope.keepName(field);
                repair(field->source);
            }
            return add(key, *fault);
        }
        if (!m_looksForFields) return;
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

    const bool m_isRepairing = true;
    const bool m_looksForFields = true;
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

/// Walks chains of conditions with all that is nested in them, by a loop. Tells its @p Sink what to
/// add() and checkField() for the slot of a value.
template <typename Sink>
class ConditionCheck {
public:
    using Slot = SQLAbstractConditionComponent**;

    explicit ConditionCheck(Sink& findings) : m_findings(findings) {}

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

    Sink& m_findings;
    std::vector<Slot> m_chains;  ///< still to be walked
};

// ---- joins ------------------------------------------------------------------------------------

/// Takes the faults of the slots in its condition for those of a join.
struct JoinSink {
    using Slot = SQLAbstractConditionComponent**;

    void add(Slot, InvalidReason reason) { findings.add(join, reason); }
    void checkField(SQLFieldColumnComponent* field, Slot) { findings.checkField(field, join); }

    Findings<SQLAbstractSourceComponent*>& findings;
    SQLJoinSourceNodeComponent* join;
};

/// The list of USING is a text.
void checkJoin(SQLJoinSourceNodeComponent* join, DatabaseType type,
               Findings<SQLAbstractSourceComponent*>& findings) {
    if (SQL::lackOf(join, type) != SQL::JoinLack::None) findings.add(join, InvalidMissingValue);
    if (!join->needsCondition()) return;
    JoinSink sink = {findings, join};
    ConditionCheck<JoinSink>(sink).run(&join->condition);
}

InvalidSources faultyJoins(QBEngine* engine, const ValidationScope::Layers& layers, Fields fields) {
    Findings<SQLAbstractSourceComponent*> findings(engine, layers, fields);
    const DatabaseType type = engine->databaseType();
    const std::set<long> blind = SQL::joinsOutOfSight(layers.back(), type);
    visitSourceNodes(layers.back()->sourceExpr->root, [&](const SourceNode* node) {
        auto* const join = dynamic_cast<SQLJoinSourceNodeComponent*>(node->value);
        if (!join) return;
        if (blind.count(join->id()) > 0) findings.add(join, InvalidSource);
        checkJoin(join, type, findings);
    });
    return findings.finish();
}

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

InvalidSources invalidateJoins(QBEngine* engine) {
    if (!currentStatement(engine)) return {};
    return faultyJoins(engine, currentLayers(engine), Fields::Checked);
}

// ---- other layers -----------------------------------------------------------------------------

namespace {

using Layers = ValidationScope::Layers;

bool hasFaultyConditions(QBEngine* engine, const Layers& layers,
                         SQLAbstractConditionComponent** root) {
    Findings<SQLAbstractConditionComponent**> findings(engine, layers, Fields::Trusted);
    ConditionCheck(findings).run(root);
    return !findings.finish().empty();
}

bool hasFaultyColumns(QBEngine* engine, const Layers& layers) {
    const SQLSelectStmtComponent* const statement = layers.back();
    const Columns& selected = statement->selectColumnExpr->columns;
    ColumnFindings findings(engine, layers, Fields::Trusted);
    checkSelected(selected, findings);
    for (const auto* list : {statement->groupByExpr, statement->orderByExpr})
        checkFields(list->columns, [&](SQLFieldColumnComponent* field) {
            if (!field->referencedColumn) findings.checkField(field, field);
        });
    return !findings.finish().empty();
}

bool hasUnnamedSubquery(const SQLSelectStmtComponent* statement) {
    bool isFound = false;
    visitSourceNodes(statement->sourceExpr->root, [&isFound](const SourceNode* node) {
        isFound = isFound || isUnnamedSubquery(node->value);
    });
    return isFound;
}

bool hasFaults(QBEngine* engine, const Layers& layers) {
    const SQLSelectStmtComponent* const statement = layers.back();
    return hasUnnamedSubquery(statement) || hasFaultyColumns(engine, layers) ||
           hasFaultyConditions(engine, layers, &statement->whereExpr->root) ||
           hasFaultyConditions(engine, layers, &statement->havingExpr->root) ||
           !faultyJoins(engine, layers, Fields::Trusted).empty();
}

/// A statement with the number of the one around it.
struct NestedStatement {
    const SQLSelectStmtComponent* statement;
    std::size_t around;
};

/// The statements of the query, each behind the one around it; the first is its own.
std::vector<NestedStatement> statementsOf(const SQLSelectStmtComponent* root) {
    std::vector<NestedStatement> all = {{root, 0}};
    for (std::size_t i = 0; i < all.size(); ++i)
        visitSourceNodes(all[i].statement->sourceExpr->root, [&all, i](const SourceNode* node) {
            const auto* derived = dynamic_cast<const SQLSubquerySourceComponent*>(node->value);
            const auto* inner =
                derived ? dynamic_cast<const SQLSelectStmtComponent*>(derived->subquery) : nullptr;
            if (inner) all.push_back({inner, i});
        });
    return all;
}

Layers layersDownTo(const std::vector<NestedStatement>& all, std::size_t index) {
    Layers layers = {all[index].statement};
    for (; index > 0; index = all[index].around)
        layers.push_back(all[all[index].around].statement);
    std::reverse(layers.begin(), layers.end());
    return layers;
}

}  // namespace

bool hasFaultsInOtherLayers(QBEngine* engine) {
    if (!currentStatement(engine)) return false;
    const auto* root =
        dynamic_cast<const SQLSelectStmtComponent*>(engine->topLevelQueryComponent(0));
    if (!root) return false;
    const std::vector<NestedStatement> all = statementsOf(root);
    for (std::size_t i = 0; i < all.size(); ++i) {
        const bool isShown = all[i].statement == currentStatement(engine);
        if (!isShown && hasFaults(engine, layersDownTo(all, i))) return true;
    }
    return false;
}

}  // namespace QB::Tools::Validation
