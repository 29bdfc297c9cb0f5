#include "tools/join_tools.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

#include "layouts/condition_chain_surgery.h"
#include "layouts/source_tree_surgery.h"
#include "model/callbacks.h"
#include "model/detached_parts.h"
#include "model/tree_walks.h"
#include "platform/tolk/tolk.h"
#include "tools/join_edits.h"
#include "tools/join_lack.h"
#include "tools/join_sight.h"
#include "tools/selection_tools.h"
#include "tools/using_list.h"

namespace QB::Tools::SQL {

using namespace Component;
using namespace Component::SQL;
using SourceTree::PlaceKind;
using SourceTree::Slot;

namespace {

/// Runs @p edit on the FROM clause of the current layer; it returns true if it changed something.
void modifySources(QBEngine* engine, void* sender,
                   const std::function<bool(ELEMSQLSourceExpr*)>& edit) {
    engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
        ElementSource, engine->currentTopLevelQueryComponentLayer(), edit, sender);
}

// ---- linking ----------------------------------------------------------------------------------

/// One end of a condition: a field of a source.
struct End {
    SQLAbstractSourceComponent* source;
    std::string field;
};

/// Without a field name the operand stays empty, to be chosen by the user.
std::unique_ptr<SQLConditionValueComponent> makeOperand(const End& end) {
    auto value = std::make_unique<SQLConditionValueComponent>();
    if (end.field.empty()) return value;
    value->values.push_back(makeFieldColumn(end.source, end.field).release());
    return value;
}

std::unique_ptr<SQLCompareConditionComponent> makeComparison(const End& left, const End& right) {
    auto comparison = std::make_unique<SQLCompareConditionComponent>();
    comparison->logicGate = SQLLogicGateAnd;
    comparison->compareOp = CompareOpEqual;
    comparison->leftValue = makeOperand(left).release();
    comparison->rightValue = makeOperand(right).release();
    return comparison;
}

ConditionChain::Slot endOfChain(SQLJoinSourceNodeComponent* join) {
    ConditionChain::Slot end = &join->condition;
    while (*end)
        end = &(*end)->next;
    return end;
}

/// What is to be linked: two sources, and the fields that are to be equal.
struct Link {
    SQLAbstractSourceComponent* a;
    SQLAbstractSourceComponent* b;
    std::vector<FieldPair> fields;

    bool hasSameNames() const {
        return std::all_of(fields.begin(), fields.end(),
                           [](const FieldPair& pair) { return pair.first == pair.second; });
    }
};

/// The source in the tree below @p root at that address, if it can be linked. The pointer is not
/// read before it is found there.
bool isLinkable(Slot root, const SQLAbstractSourceComponent* source) {
    return !SourceTree::pathToValue(root, source).empty() && hasFields(source);
}

void appendComparisons(SQLJoinSourceNodeComponent* join, const Link& link, bool isInOrder) {
    ConditionChain::Slot end = endOfChain(join);
    for (const FieldPair& pair : link.fields) {
        const End a = {link.a, pair.first};
        const End b = {link.b, pair.second};
        *end = (isInOrder ? makeComparison(a, b) : makeComparison(b, a)).release();
        end = &(*end)->next;
    }
}

/// Links in the block of a modification.
class LinkMaker {
public:
    LinkMaker(const QBEngine* engine, const Link& link) : m_engine(engine), m_link(link) {}

    /// Returns true if something changed.
    bool makeIn(Slot root) {
        if (!isLinkable(root, m_link.a) || !isLinkable(root, m_link.b)) return false;
        const auto meeting = SourceTree::bringTogether(root, m_link.a, m_link.b);
        if (!meeting) return false;
        auto* join = dynamic_cast<SQLJoinSourceNodeComponent*>((*meeting->join)->value);
        const bool isConverted = convertComma(join);
        if (isConverted) bracketRightSide(root, *meeting->join);
        const bool hasGrown = addCondition(join, meeting->isInOrder);
        return meeting->isMoved || isConverted || hasGrown;
    }

    /// Why the text does not show the link; none if it does.
    std::optional<Tolk::TextId> notice() const { return m_notice; }

private:
    /// A custom join that has no words yet is written as a comma, too.
    static bool convertComma(SQLJoinSourceNodeComponent* join) {
        const bool lacksWords = join->joinType == SQLJoinTypeCustom && join->joinText.empty();
        if (join->joinType != SQLJoinTypeComma && !lacksWords) return false;
        join->joinType = SQLJoinTypeInner;
        join->joinText.clear();
        return true;
    }

    /// Where joins stand on the right, as they are read: without brackets the new one would come
    /// before them, and the list of sources could not show which it binds.
    static void bracketRightSide(Slot root, SourceNode* join) {
        if (SourceTree::isJoin(join->right->value))
            SourceTree::wrap(root, &join->right, &join->right);
    }

    /// What a comparison more comes to where it is not what was drawn.
    static std::optional<Tolk::TextId> noticeOfComparison(const SQLJoinSourceNodeComponent* join) {
        if (!join->needsCondition()) return Tolk::TextCrossLinkKept;
        if (!saysNatural(join) || join->hasCondition()) return {};
        const bool isCustom = join->joinType == SQLJoinTypeCustom;
        return isCustom ? Tolk::TextNaturalTakesNoCondition : Tolk::TextNaturalReplaced;
    }

    bool addCondition(SQLJoinSourceNodeComponent* join, bool isInOrder) {
        if (m_link.fields.empty()) return false;
        m_notice = noticeOfComparison(join);
        if (join->isUsing) return addToUsing(join);
        appendComparisons(join, m_link, isInOrder);
        return true;
    }

    /// A comparison beside a USING list is never written, and the list written as comparisons would
    /// no longer merge its columns, which other clauses may name bare.
    bool addToUsing(SQLJoinSourceNodeComponent* join) {
        const bool isFitting = m_link.hasSameNames() && canBeUsingList(join);
        if (!isFitting) m_notice = Tolk::TextUsingLinkRefused;
        bool hasGrown = false;
        for (std::size_t i = 0; i < m_link.fields.size() && isFitting; ++i) {
            const std::string& name = m_link.fields[i].first;
            const QBDatabaseInfo info = m_engine->databaseInfo();
            const std::string quoted =
                Callback::formatIdentifier(name, info.databaseType, info.databaseVersion);
            hasGrown = addToUsingList(join, name, quoted) || hasGrown;
        }
        return hasGrown;
    }

    const QBEngine* m_engine;
    const Link& m_link;
    std::optional<Tolk::TextId> m_notice;
};

// ---- unlinking --------------------------------------------------------------------------------

using Condition = SQLAbstractConditionComponent;

/// Unlinks in the block of a modification.
class JoinRemover {
public:
    using Pair = std::pair<SQLJoinSourceNodeComponent*, SQLCompareConditionComponent*>;

    /// Of several pairs with one join the first one says whether the join goes or conditions of it.
    JoinRemover(Slot root, const std::vector<Pair>& joins) : m_root(root) {
        for (const auto& [join, condition] : joins) {
            const auto [wanted, isFirst] = m_wanted.try_emplace(join);
            if (condition && (isFirst || !wanted->second.empty())) wanted->second.insert(condition);
        }
    }

    /// Returns true if something changed.
    bool remove() {
        removeWanted();
        // The rows stay: text order does.
        for (const Slot group : m_looseGroups)
            m_hasChanged = SourceTree::sinkJoinsBelowCommas(group) || m_hasChanged;
        if (!m_found.empty()) cleanUp();
        return m_hasChanged;
    }

    DetachedParts takeDetachedParts() { return std::move(m_taken); }

private:
    void removeWanted() {
        std::vector<Slot> groups = {m_root};
        const auto places = SourceTree::flatten(m_root);
        for (std::size_t row = 0; row < places.size(); ++row) {
            const SourceTree::Place& place = places[row];
            auto* join = dynamic_cast<SQLJoinSourceNodeComponent*>(place.component);
            if (place.kind == PlaceKind::Close) {
                groups.pop_back();
            } else if (place.kind == PlaceKind::Open) {
                groups.push_back(&(*place.slot)->left);
            } else if (join) {
                removeAt(row, join, groups.back());
            }
        }
    }

    void removeAt(std::size_t row, SQLJoinSourceNodeComponent* join, Slot group) {
        const auto wanted = m_wanted.find(join);
        if (wanted == m_wanted.end()) return;
        const bool isLoose = wanted->second.empty();
        m_found.push_back({row, isLoose});
        if (isLoose) m_looseGroups.insert(group);
        isLoose ? becomeComma(join) : take(join, wanted->second);
    }

    void becomeComma(SQLJoinSourceNodeComponent* join) {
        if (SourceTree::isComma(join) && !join->condition) return;
        m_hasChanged = true;
        m_taken.add(unbind(join));
    }

    void take(SQLJoinSourceNodeComponent* join, const std::set<const Condition*>& doomed) {
        DetachedParts taken = takeConditions(&join->condition, doomed);
        m_hasChanged = m_hasChanged || !taken.isEmpty();
        m_taken.add(std::move(taken));
    }

    /// Takes the conditions that no longer see their sources out of the joins that may have lost
    /// some: those behind each join found, up to the next comma, and where that join became a
    /// comma itself those before it, too.
    void cleanUp() {
        const JoinSight sight(m_root);
        const std::map<std::size_t, std::size_t> dirtyBehind = dirtyRuns(sight);
        for (std::size_t row = 0; row < sight.places().size(); ++row) {
            SQLJoinSourceNodeComponent* join = sight.joinAt(row);
            if (!join || SourceTree::isComma(join)) continue;
            const auto dirty = dirtyBehind.find(sight.runOf(row));
            if (dirty == dirtyBehind.end() || row <= dirty->second) continue;
            const std::vector<Condition*> blind = sight.blindConditions(row);
            if (!blind.empty()) take(join, {blind.begin(), blind.end()});
        }
    }

    /// The runs to clean, each with the row behind which it is to be cleaned.
    std::map<std::size_t, std::size_t> dirtyRuns(const JoinSight& sight) const {
        std::map<std::size_t, std::size_t> dirty;
        for (const Found& found : m_found) {
            const bool isComma = SourceTree::isComma(sight.places()[found.row].component);
            if (isComma) dirty[sight.runOf(found.row + 1)] = 0;
            if (isComma && found.isLoose) dirty[sight.runOf(found.row)] = 0;
            if (!isComma) dirty.emplace(sight.runOf(found.row), found.row);
        }
        return dirty;
    }

    struct Found {
        std::size_t row;
        bool isLoose;  ///< the join was to become a comma
    };

    const Slot m_root;
    /// No conditions: the whole join.
    std::unordered_map<const SQLJoinSourceNodeComponent*, std::set<const Condition*>> m_wanted;
    std::vector<Found> m_found;  // in row order
    std::set<Slot> m_looseGroups;
    DetachedParts m_taken;
    bool m_hasChanged = false;
};

}  // namespace

void makeJoinLinkIfNecessary(QBEngine* engine, void* sender, SQLAbstractSourceComponent* sourceA,
                             const std::string& fieldA, SQLAbstractSourceComponent* sourceB,
                             const std::string& fieldB) {
    makeJoinLinkIfNecessary(engine, sender, sourceA, sourceB, {{fieldA, fieldB}});
}

void makeJoinLinkIfNecessary(QBEngine* engine, void* sender, SQLAbstractSourceComponent* sourceA,
                             SQLAbstractSourceComponent* sourceB,
                             const std::vector<FieldPair>& fields) {
    if (!engine || !sourceA || !sourceB || sourceA == sourceB) return;
    Link link = {sourceA, sourceB, {}};
    std::copy_if(fields.begin(), fields.end(), std::back_inserter(link.fields),
                 [](const FieldPair& pair) { return !pair.first.empty() || !pair.second.empty(); });
    LinkMaker maker(engine, link);
    modifySources(engine, sender,
                  [&](ELEMSQLSourceExpr* element) { return maker.makeIn(&element->root); });
    if (const auto notice = maker.notice())
        Callback::showError(Tolk::localize(*notice).toStdString());
}

void removeJoins(
    QBEngine* engine, void* sender,
    const std::vector<std::pair<SQLJoinSourceNodeComponent*, SQLCompareConditionComponent*>>&
        joins) {
    if (!engine || joins.empty()) return;
    std::vector<std::string> natural;
    modifySources(engine, sender, [&](ELEMSQLSourceExpr* element) {
        const NaturalJoinWatch watch(element->root, engine->databaseType());
        JoinRemover remover(&element->root, joins);
        const bool hasChanged = remover.remove();
        engine->retire(remover.takeDetachedParts());
        natural = watch.newlyNatural(element->root);
        return hasChanged;
    });
    tellNaturalJoins(natural);
}

void removeUsingColumns(QBEngine* engine, void* sender, const UsingColumns& columns) {
    if (!engine || columns.empty()) return;
    modifySources(engine, sender, [&](ELEMSQLSourceExpr* element) {
        bool hasChanged = false;
        visitSourceNodes(element->root, [&](const SourceNode* node) {
            auto* const join = dynamic_cast<SQLJoinSourceNodeComponent*>(node->value);
            const auto found = join ? columns.find(join) : columns.end();
            if (found == columns.end()) return;
            hasChanged = removeFromUsingList(join, found->second) || hasChanged;
        });
        return hasChanged;
    });
}

}  // namespace QB::Tools::SQL
