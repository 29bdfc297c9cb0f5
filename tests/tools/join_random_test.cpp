#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "join_fixture.h"
#include "layouts/components_list_layout.h"
#include "model/dump.h"
#include "parser/query_parser.h"
#include "support/long_runs.h"
#include "tools/identifier_tools.h"

namespace QB::Test {

using namespace Component::SQL;

namespace {

using Names = std::vector<std::string>;
using Source = SQLAbstractSourceComponent;
using Join = SQLJoinSourceNodeComponent;
using Compare = SQLCompareConditionComponent;
using Condition = SQLAbstractConditionComponent;
using Sources = std::vector<Source*>;

class Dice {
public:
    explicit Dice(int seed) : m_random(static_cast<unsigned>(seed)) {}
    int pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }
    bool isOneIn(int count) { return pick(count) == 0; }
    template <typename List>
    auto pickFrom(const List& list) {
        return list[static_cast<std::size_t>(pick(static_cast<int>(list.size())))];
    }

private:
    std::mt19937 m_random;
};

/// FROM clauses of any shape that a server would read.
class FromWriter {
public:
    explicit FromWriter(Dice& dice) : m_dice(dice) {}

    std::string list(int depth, Names& names) {
        std::string text = group(depth, names);
        for (int more = m_dice.pick(2); more > 0; --more)
            text += ", " + group(depth, names);
        return text;
    }

private:
    std::string operand(int depth, Names& names) {
        const int kind = m_dice.pick(depth > 0 ? 8 : 6);
        if (kind > 5) return "(" + list(depth - 1, names) + ")";
        names.push_back("t" + std::to_string(++m_count));
        const std::string& name = names.back();
        if (kind == 5) return "(SELECT 1 AS x, 2 AS y FROM t1) AS " + name;
        return kind == 4 ? "shop." + name + " AS " + name : name;
    }

    std::string group(int depth, Names& names) {
        Names own;
        std::string text = operand(depth, own);
        for (int more = m_dice.pick(3); more > 0; --more) {
            const std::string kind =
                m_dice.pickFrom(Names{"INNER", "LEFT", "RIGHT", "FULL", "CROSS"});
            Names right;
            text += " " + kind + " JOIN ";
            const bool isNested = depth > 0 && kind != "CROSS" && m_dice.isOneIn(3);
            text += isNested ? group(depth - 1, right) : operand(depth, right);
            if (kind != "CROSS") text += condition(own, right);
            own.insert(own.end(), right.begin(), right.end());
        }
        names.insert(names.end(), own.begin(), own.end());
        return text;
    }

    std::string condition(const Names& left, const Names& right) {
        if (m_dice.isOneIn(6)) return " USING (x)";
        std::string text = comparison(left, right);
        if (m_dice.isOneIn(4))
            text += " AND (" + comparison(left, right) + " OR " + comparison(right, left) + ")";
        return " ON " + text;
    }

    std::string comparison(const Names& left, const Names& right) {
        return m_dice.pickFrom(left) + ".x = " + m_dice.pickFrom(right) + ".y";
    }

    Dice& m_dice;
    int m_count = 1;
};

/// The sources below @p node in text order, with null for each comma outside of brackets.
void readSources(const SourceNode* node, bool isInBracket, Sources& sources) {
    if (!node) return;
    const std::string word = wordOf(node->value);
    const bool isOperand = !node->left && word != "[";
    if (isOperand) sources.push_back(node->value);
    readSources(node->left, isInBracket || word == "[", sources);
    if (word == "C" && !isInBracket) sources.push_back(nullptr);
    readSources(node->right, isInBracket, sources);
}

/// What the condition of a join may name, by plain recursion and in the order that panels list it.
Sources inSight(const SourceNode* join) {
    Sources left;
    Sources right;
    readSources(join->left, false, left);
    readSources(join->right, false, right);
    Sources sources;
    if (wordOf(join->value) != "C") {
        const auto comma = std::find(left.rbegin(), left.rend(), nullptr);
        sources.assign(left.rbegin(), comma);
    }
    std::remove_copy(right.begin(), right.end(), std::back_inserter(sources), nullptr);
    return sources;
}

bool holds(const Sources& sources, const SQLAbstractSourceComponent* source) {
    return std::find(sources.begin(), sources.end(), source) != sources.end();
}

/// A comparison in the condition of a join.
struct Comparison {
    Join* join;
    Compare* condition;
    Sources named;
};

/// The clause before an edit, to compare with what it is after.
struct Picture {
    std::string dump;
    std::multiset<long> operands;
    std::map<long, SQLJoinType> joins;       // by id
    std::map<long, Comparison> comparisons;  // by id
};

template <typename Map>
std::set<long> idsOnlyIn(const Map& map, const Map& other) {
    std::set<long> ids;
    for (const auto& [id, value] : map) {
        if (other.count(id) == 0) ids.insert(id);
    }
    return ids;
}

class RandomJoins : public JoinFixture {
protected:
    void start(int seed) {
        m_dice = std::make_unique<Dice>(seed);
        Names names;
        const std::string text =
            "SELECT * FROM " + FromWriter(*m_dice).list(1 + m_dice->pick(2), names);
        m_log = "\n" + text;
        const auto outcome =
            QBQueryParser::parseStatement(statement(), text, DatabaseTypePostgreSQL, "shop");
        ASSERT_TRUE(outcome.isAccepted()) << text << outcome.message;
        check();
    }

    void step() {
        const Picture before = picture();
        m_notifications = 0;
        const int kind = m_dice->pick(10);
        if (kind < 4) link(before);
        if (kind == 4 || kind == 5) unlink(before);
        if (kind == 6) add();
        if (kind > 6) editRows();
        m_log += "\n  " + m_action + ": " + tree() + " " + conditions(*root());
        if (kind < 6) {
            EXPECT_EQ(picture().operands, before.operands);
            EXPECT_EQ(m_notifications, picture().dump == before.dump ? 0 : 1);
        }
        check();
    }

    std::string m_log;
    int m_reread = 0;

private:
    template <typename Kind>
    std::vector<Kind*> all() const {
        std::vector<Kind*> found;
        for (const SourceTree::Place& place : SourceTree::flatten(root())) {
            auto* component = dynamic_cast<Kind*>(place.component);
            if (component && place.slot) found.push_back(component);
        }
        return found;
    }

    Sources linkable() const {
        Sources sources;
        for (auto* source : all<Source>()) {
            if (Tools::SQL::hasFields(source)) sources.push_back(source);
        }
        return sources;
    }

    const SourceNode* nodeOf(const Source* value) const {
        return *SourceTree::pathToValue(root(), value).back();
    }

    static void readComparisons(Join* join, const Condition* chain, Picture& picture) {
        for (; chain; chain = chain->next) {
            if (const auto* bracket = dynamic_cast<const SQLBracketedConditionComponent*>(chain)) {
                readComparisons(join, bracket->inner, picture);
            } else if (const auto* compare = dynamic_cast<const Compare*>(chain)) {
                picture.comparisons[compare->id()] = {
                    join,
                    const_cast<Compare*>(compare),
                    {fieldOf(compare->leftValue)->source, fieldOf(compare->rightValue)->source}};
            }
        }
    }

    Picture picture() const {
        Picture picture;
        picture.dump = dumpStatement(statement()) + tree();
        for (Source* source : all<Source>()) {
            auto* join = dynamic_cast<Join*>(source);
            if (!join) picture.operands.insert(source->id());
            if (!join) continue;
            picture.joins[join->id()] = join->joinType;
            readComparisons(join, join->condition, picture);
        }
        return picture;
    }

    // ---- edits ------------------------------------------------------------------------------

    void link(const Picture& before) {
        const Sources sources = linkable();
        if (sources.empty()) return;
        Source* a = m_dice->pickFrom(sources);
        Source* b = m_dice->pickFrom(sources);
        const Names fields = m_dice->isOneIn(15) ? Names{"", ""} : Names{"x", "y"};
        const std::string f = m_dice->pickFrom(fields);
        const std::string g = f.empty() ? f : m_dice->pickFrom(fields);
        m_action = "link " + wordOf(a) + "." + f + " " + wordOf(b) + "." + g;
        const std::size_t errors = m_host.errors.size();
        Tools::SQL::makeJoinLinkIfNecessary(m_engine.get(), this, a, f, b, g);

        const Picture after = picture();
        const auto added = idsOnlyIn(after.comparisons, before.comparisons);
        EXPECT_TRUE(idsOnlyIn(before.comparisons, after.comparisons).empty());
        expectKinds(before, after, SQLJoinTypeComma, SQLJoinTypeInner);
        const bool isRefused = m_host.errors.size() > errors;
        if (a == b) {
            EXPECT_EQ(after.dump, before.dump);
        } else {
            EXPECT_EQ(added.empty(), f.empty() || expectJoined(a, b)->isUsing);
            EXPECT_EQ(isRefused, f != g && expectJoined(a, b)->isUsing);
        }
        if (added.empty()) return;
        const Comparison& comparison = after.comparisons.at(*added.begin());
        EXPECT_EQ(added.size(), 1u);
        EXPECT_TRUE(holds(comparison.named, a) && holds(comparison.named, b));
        EXPECT_EQ(comparison.condition->next, nullptr);
        linkAgain(a, b, after);
    }

    /// The shape stays, the same join gets one comparison more.
    void linkAgain(Source* a, Source* b, const Picture& before) {
        if (!m_dice->isOneIn(4)) return;
        const std::string shape = tree();
        Tools::SQL::makeJoinLinkIfNecessary(m_engine.get(), this, a, "x", b, "x");
        --m_notifications;
        EXPECT_EQ(tree(), shape);
        EXPECT_EQ(picture().comparisons.size(), before.comparisons.size() + 1);
    }

    /// The innermost join that holds both; it is no comma.
    const Join* expectJoined(const Source* a, const Source* b) const {
        const Join* innermost = nullptr;
        std::size_t rows = 0;
        for (const Join* join : all<Join>()) {
            Sources below;
            readSources(nodeOf(join), true, below);
            const std::size_t count =
                SourceTree::flatten(SourceTree::pathToValue(root(), join).back()).size();
            const bool isCloser = !innermost || count < rows;
            if (!isCloser || !holds(below, a) || !holds(below, b)) continue;
            innermost = join;
            rows = count;
        }
        EXPECT_NE(innermost->joinType, SQLJoinTypeComma);
        return innermost;
    }

    /// All joins are there, and at most one of them changed from one kind to another.
    static void expectKinds(const Picture& before, const Picture& after, SQLJoinType from,
                            SQLJoinType to) {
        int changes = 0;
        ASSERT_EQ(after.joins.size(), before.joins.size());
        for (const auto& [id, kind] : after.joins) {
            const SQLJoinType earlier = before.joins.at(id);
            if (kind == earlier) continue;
            ++changes;
            EXPECT_TRUE((from == earlier || from == SQLJoinTypeCustom) && kind == to);
        }
        EXPECT_LE(changes, 1);
    }

    void unlink(const Picture& before) {
        const auto joins = all<Join>();
        if (joins.empty()) return;
        Join* join = m_dice->pickFrom(joins);
        std::vector<Comparison> own;
        for (const auto& [id, comparison] : before.comparisons) {
            if (comparison.join == join) own.push_back(comparison);
        }
        Compare* one =
            own.empty() || m_dice->isOneIn(3) ? nullptr : m_dice->pickFrom(own).condition;
        m_action = "unlink " + wordOf(join) + " of " + tree() + (one ? " by one" : "");
        const long id = one ? one->id() : 0;
        // Only the first pair counts.
        Tools::SQL::removeJoins(m_engine.get(), this, {{join, one}, {join, nullptr}});

        const Picture after = picture();
        expectKinds(before, after, SQLJoinTypeCustom, SQLJoinTypeComma);
        for (const long gone : idsOnlyIn(before.comparisons, after.comparisons)) {
            const Comparison& comparison = before.comparisons.at(gone);
            const Sources sight = inSight(nodeOf(comparison.join));
            const bool isBlind =
                !holds(sight, comparison.named[0]) || !holds(sight, comparison.named[1]);
            EXPECT_TRUE(one ? gone == id : comparison.join == join || isBlind);
        }
        EXPECT_EQ(after.comparisons.count(id), 0u);
        EXPECT_TRUE(one || (join->joinType == SQLJoinTypeComma && !join->condition));
    }

    void add() {
        m_action = "add";
        std::unique_ptr<Source> table(makeTable("n" + std::to_string(++m_names)));
        Tools::Identifier::addSourceComponentToExpression(m_engine.get(), this, std::move(table));
    }

    /// As the FROM panel does: by rows, and without what sees its sources no more afterwards.
    void editRows() {
        QBComponentsListLayout layout(std::make_unique<SourceTreeLayout>(root()));
        layout.implementation()->rebuildItems();
        layout.implementation()->updateItemFlags();
        const int count = static_cast<int>(layout.items().size());
        const int first = m_dice->pick(count);
        const int last = std::min(count - 1, first + 2 * m_dice->pick(2));
        const Items rows(layout.items().begin() + first, layout.items().begin() + last + 1);
        const int kind = m_dice->pick(4);
        m_action = "rows " + std::to_string(kind) + " at " + std::to_string(first);
        if (kind == 0) insert(layout, first);
        if (kind == 1) layout.removeItems(m_engine.get(), ElementSource, this, {rows.front()});
        if (kind == 2) layout.groupItemsByBracket(m_engine.get(), ElementSource, this, rows, 0);
        if (kind == 3)
            layout.ungroupItemsByBracket(m_engine.get(), ElementSource, this, {rows.front()});
        removeBlind(layout);
    }

    void insert(QBComponentsListLayout& layout, int index) {
        Source* table = makeTable("n" + std::to_string(++m_names));
        const Items rows = layout.insertItem(m_engine.get(), ElementSource, this, table, index);
        for (const Item* row : rows) {
            auto* join = dynamic_cast<Join*>(row->component);
            if (join && join->joinType == SQLJoinTypeCustom) join->joinType = SQLJoinTypeCross;
        }
    }

    void removeBlind(QBComponentsListLayout& layout) {
        for (std::size_t row = 0; row < layout.items().size(); ++row) {
            auto* join = dynamic_cast<Join*>(layout.items()[row]->component);
            for (Condition* blind :
                 Tools::Validation::invalidateJoinConditions(&layout, row, m_engine.get())) {
                Tools::SQL::removeJoins(m_engine.get(), this,
                                        {{join, dynamic_cast<Compare*>(blind)}});
            }
        }
    }

    // ---- what always holds ------------------------------------------------------------------

    void check() {
        for (const auto& [id, comparison] : picture().comparisons) {
            const Sources sight = inSight(nodeOf(comparison.join));
            for (const Source* source : comparison.named)
                EXPECT_TRUE(holds(sight, source)) << wordOf(source) << " is out of sight";
        }
        QBComponentsListLayout layout(std::make_unique<SourceTreeLayout>(root()));
        layout.implementation()->rebuildItems();
        checkRow(layout,
                 static_cast<std::size_t>(m_dice->pick(static_cast<int>(layout.items().size()))));
        if (m_dice->isOneIn(5)) reread();
    }

    void checkRow(QBComponentsListLayout& layout, std::size_t row) {
        const auto* join = dynamic_cast<Join*>(layout.items()[row]->component);
        EXPECT_TRUE(
            Tools::Validation::invalidateJoinConditions(&layout, row, m_engine.get()).empty());
        if (!join) return;
        const std::unique_ptr<Sources> related(
            Tools::SQL::joinConditionRelatedSources(&layout, static_cast<int>(row)));
        EXPECT_EQ(*related, inSight(nodeOf(join)));
        Sources right;
        readSources(nodeOf(join)->right, false, right);
        EXPECT_FALSE(join->hasCondition() && holds(right, nullptr)) << "ON after a comma";
    }

    /// The text binds every condition to the same join and every field to the same source. Left out
    /// where a join without its condition would take that of another one.
    void reread() {
        for (const Join* join : all<Join>()) {
            if (join->needsCondition() && !join->hasCondition()) return;
        }
        if (tree().find('_') != std::string::npos) return;
        const std::string text = m_engine->buildQuery();
        const OwnedStatement other(new SQLSelectStmtComponent);
        const auto outcome =
            QBQueryParser::parseStatement(other.get(), text, DatabaseTypePostgreSQL, "shop");
        ASSERT_TRUE(outcome.isAccepted()) << text << outcome.message;
        EXPECT_EQ(conditions(other->sourceExpr->root), conditions(*root())) << text;
        ++m_reread;
    }

    std::unique_ptr<Dice> m_dice;
    int m_names = 0;
    std::string m_action;
};

}  // namespace

TEST_F(RandomJoins, LoseNothingAndReadAsTheyAre) {
    const int seeds = repetitions(500);
    for (int seed = 1; seed <= seeds; ++seed) {
        start(seed);
        for (int i = 0; i < 30 && !HasFailure(); ++i)
            step();
        ASSERT_FALSE(HasFailure()) << "seed " << seed << m_log;
    }
    EXPECT_GT(m_reread, seeds) << "hardly any text is read again";
}

}  // namespace QB::Test
