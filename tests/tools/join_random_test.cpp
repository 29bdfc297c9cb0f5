#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "join_fixture.h"
#include "layouts/components_list_layout.h"
#include "model/dump.h"
#include "parser/query_parser.h"
#include "support/dice.h"
#include "support/from_clause.h"
#include "support/long_runs.h"
#include "support/text_check.h"

namespace QB::Test {

using namespace Component::SQL;

namespace {

using Source = SQLAbstractSourceComponent;
using Sources = std::vector<Source*>;
using Names = std::vector<std::string>;

const Names texts = {
    "a, b LEFT JOIN c ON b.x = c.x, d, e INNER JOIN f ON e.y = f.x",
    "a INNER JOIN b INNER JOIN (c, d) ON b.x = c.x AND (b.y = d.y OR c.x = d.y) ON a.x = d.x",
    "(a RIGHT JOIN b USING (x), (SELECT 1 AS x) AS c) FULL JOIN (d AS d CROSS JOIN e) ON b.x = e.x",
    "s.a LEFT JOIN s.b ON a.x = b.x FULL JOIN c LEFT JOIN d ON c.x = d.y ON a.x = d.x, (f), e",
    "a CROSS JOIN b INNER JOIN (c INNER JOIN (d LEFT JOIN e ON d.x = e.x, f) ON c.x = f.x) ON a.x "
    "= "
    "d.x AND b.x = f.x"};

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
        sources.assign(left.rbegin(), std::find(left.rbegin(), left.rend(), nullptr));
    }
    std::remove_copy(right.begin(), right.end(), std::back_inserter(sources), nullptr);
    return sources;
}

bool holds(const Sources& sources, const Source* source) {
    return std::find(sources.begin(), sources.end(), source) != sources.end();
}

class RandomJoins : public JoinFixture {
protected:
    void start(int seed) {
        m_dice = std::make_unique<Dice>(seed);
        parse(statement(), "SELECT * FROM " + m_dice->pickFrom(texts));
        m_log = "\n  " + tree();
    }

    void step() {
        const Picture before = picture();
        m_notifications = 0;
        const int kind = m_dice->pick(10);
        if (kind < 4) link(before);
        if (kind == 4 || kind == 5) unlink(before);
        if (kind == 6) addTable(m_engine.get(), {}, m_action = "n" + std::to_string(++m_names));
        if (kind > 6) editRows();
        m_log += "\n  " + m_action + ": " + tree() + " " + conditions();
        if (kind < 6) {
            EXPECT_EQ(picture().operands, before.operands);
            EXPECT_EQ(m_notifications, picture().dump == before.dump ? 0 : 1);
        }
        check();
    }

    std::string m_log;
    int m_reread = 0;

private:
    struct Comparison {
        Join* join;
        Compare* condition;
        Sources named;
    };
    /// The clause before an edit, to compare with what it is after.
    struct Picture {
        std::string dump;
        std::multiset<long> operands;            // without brackets, which links may bring
        std::map<long, Comparison> comparisons;  // by id

        std::set<long> idsNotIn(const Picture& other) const {
            std::set<long> ids;
            for (const auto& [id, comparison] : comparisons) {
                if (other.comparisons.count(id) == 0) ids.insert(id);
            }
            return ids;
        }
    };

    static void parse(SQLSelectStmtComponent* into, const std::string& text) {
        const auto outcome =
            QBQueryParser::parseStatement(into, text, DatabaseTypePostgreSQL, "shop");
        ASSERT_TRUE(outcome.isAccepted()) << text << outcome.message;
    }

    template <typename Kind>
    std::vector<Kind*> all() const {
        std::vector<Kind*> found;
        for (const SourceTree::Place& place : SourceTree::flatten(root())) {
            auto* component = dynamic_cast<Kind*>(place.component);
            if (component && place.slot) found.push_back(component);
        }
        return found;
    }

    SourceTree::Slot slotOf(const Source* value) const {
        return SourceTree::pathToValue(root(), value).back();
    }

    static void readComparisons(Join* join, Condition* chain, Picture& picture) {
        for (; chain; chain = chain->next) {
            if (const auto* bracket = dynamic_cast<SQLBracketedConditionComponent*>(chain)) {
                readComparisons(join, bracket->inner, picture);
            } else if (auto* compare = dynamic_cast<Compare*>(chain)) {
                const Sources named = {fieldOf(compare->leftValue)->source,
                                       fieldOf(compare->rightValue)->source};
                picture.comparisons[compare->id()] = {join, compare, named};
            }
        }
    }

    Picture picture() const {
        Picture picture;
        picture.dump = dumpStatement(statement()) + tree();
        for (Source* source : all<Source>()) {
            auto* join = dynamic_cast<Join*>(source);
            if (join) readComparisons(join, join->condition, picture);
            if (SourceTree::isLeaf(source)) picture.operands.insert(source->id());
        }
        return picture;
    }

    // ---- edits ------------------------------------------------------------------------------

    void link(const Picture& before) {
        Sources sources = all<Source>();
        const auto isOther = [](const Source* source) {
            return !Tools::SQL::hasFields(source);
        };
        sources.erase(std::remove_if(sources.begin(), sources.end(), isOther), sources.end());
        if (sources.empty()) return;
        Source* a = m_dice->pickFrom(sources);
        Source* b = m_dice->pickFrom(sources);
        const Names fields = m_dice->pick(15) == 0 ? Names{"", ""} : Names{"x", "y"};
        const std::string f = m_dice->pickFrom(fields);
        const std::string g = m_dice->pickFrom(fields);
        m_action = "link " + wordOf(a) + "." + f + " " + wordOf(b) + "." + g;
        m_host.errors.clear();
        Tools::SQL::makeJoinLinkIfNecessary(m_engine.get(), this, a, f, b, g);

        const Picture after = picture();
        const std::set<long> added = after.idsNotIn(before);
        EXPECT_TRUE(before.idsNotIn(after).empty());
        EXPECT_EQ(added.empty(), a == b || f.empty() || joinOf(a, b)->isUsing);
        EXPECT_EQ(!m_host.errors.empty(), a != b && !f.empty() && isToldOf(joinOf(a, b), f == g));
        EXPECT_TRUE(a != b || after.dump == before.dump);
        if (added.empty()) return;
        const Comparison& comparison = after.comparisons.at(*added.begin());
        EXPECT_TRUE(added.size() == 1 && !comparison.condition->next);
        EXPECT_TRUE(holds(comparison.named, a) && holds(comparison.named, b));
        if (m_dice->pick(4) == 0) linkAgain(a, b);
    }

    /// A link that the text does not show.
    static bool isToldOf(const Join* join, bool areSameNames) {
        return join->joinType == SQLJoinTypeCross || (join->isUsing && !areSameNames);
    }

    /// The shape stays, and there is one comparison more.
    void linkAgain(Source* a, Source* b) {
        const std::string shape = tree();
        const std::size_t count = picture().comparisons.size();
        Tools::SQL::makeJoinLinkIfNecessary(m_engine.get(), this, a, "x", b, "x");
        --m_notifications;
        EXPECT_EQ(tree(), shape);
        EXPECT_EQ(picture().comparisons.size(), count + 1);
    }

    /// The join at which two linked sources meet: no comma, and to find it moves nothing.
    const Join* joinOf(const Source* a, const Source* b) const {
        const auto meeting = SourceTree::bringTogether(root(), a, b);
        const auto* join = dynamic_cast<const Join*>((*meeting->join)->value);
        EXPECT_TRUE(!meeting->isMoved && join->joinType != SQLJoinTypeComma);
        return join;
    }

    void unlink(const Picture& before) {
        const auto joins = all<Join>();
        if (joins.empty()) return;
        Join* join = m_dice->pickFrom(joins);
        std::vector<Compare*> own = {nullptr};
        for (const auto& [id, comparison] : before.comparisons) {
            if (comparison.join == join) own.push_back(comparison.condition);
        }
        Compare* one = m_dice->pickFrom(own);
        const long id = one ? one->id() : 0;
        m_action = "unlink " + wordOf(join) + std::to_string(id);
        // Only the first pair counts.
        Tools::SQL::removeJoins(m_engine.get(), this, {{join, one}, {join, nullptr}});

        const Picture after = picture();
        for (const long gone : before.idsNotIn(after)) {
            const Comparison& comparison = before.comparisons.at(gone);
            const Sources sight = inSight(*slotOf(comparison.join));
            const bool isBlind =
                !holds(sight, comparison.named[0]) || !holds(sight, comparison.named[1]);
            EXPECT_TRUE(one ? gone == id : comparison.join == join || isBlind);
        }
        EXPECT_EQ(after.comparisons.count(id), 0u);
        EXPECT_TRUE(one || (join->joinType == SQLJoinTypeComma && !join->condition));
    }

    /// By rows, and without what sees its sources no more afterwards, as a panel does.
    void editRows() {
        QBComponentsListLayout layout(std::make_unique<SourceTreeLayout>(root()));
        layout.implementation()->rebuildItems();
        layout.implementation()->updateItemFlags();
        const int count = static_cast<int>(layout.items().size());
        const int first = m_dice->pick(count);
        const int end = std::min(count, first + 1 + 2 * m_dice->pick(2));
        const Items rows(layout.items().begin() + first, layout.items().begin() + end);
        const int kind = m_dice->pick(3);
        QBEngine* engine = m_engine.get();
        m_action = "rows " + std::to_string(kind) + " at " + std::to_string(first);
        if (kind == 0) layout.removeItems(engine, ElementSource, this, {rows.front()});
        if (kind == 1) layout.groupItemsByBracket(engine, ElementSource, this, rows, 0);
        if (kind == 2) layout.ungroupItemsByBracket(engine, ElementSource, this, {rows.front()});
        for (std::size_t row = 0; row < layout.items().size(); ++row) {
            auto* join = dynamic_cast<Join*>(layout.items()[row]->component);
            for (auto* blind : Tools::Validation::invalidateJoinConditions(&layout, row, engine))
                Tools::SQL::removeJoins(engine, this, {{join, dynamic_cast<Compare*>(blind)}});
        }
    }

    // ---- what always holds ------------------------------------------------------------------

    void check() {
        for (const auto& [id, comparison] : picture().comparisons) {
            for (const Source* source : comparison.named)
                EXPECT_TRUE(holds(inSight(*slotOf(comparison.join)), source)) << wordOf(source);
        }
        QBComponentsListLayout layout(std::make_unique<SourceTreeLayout>(root()));
        layout.implementation()->rebuildItems();
        const auto row =
            static_cast<std::size_t>(m_dice->pick(static_cast<int>(layout.items().size())));
        QBEngine* engine = m_engine.get();
        EXPECT_TRUE(Tools::Validation::invalidateJoinConditions(&layout, row, engine).empty());
        if (m_dice->pick(5) == 0) reread();
        const auto* join = dynamic_cast<Join*>(layout.items()[row]->component);
        if (!join) return;
        const std::unique_ptr<Sources> related(
            Tools::SQL::joinConditionRelatedSources(&layout, static_cast<int>(row)));
        EXPECT_EQ(*related, inSight(*slotOf(join)));
        Sources right;
        readSources((*slotOf(join))->right, false, right);
        EXPECT_FALSE(join->hasCondition() && holds(right, nullptr)) << "ON after a comma";
    }

    /// The text binds every condition to the same join and every field to the same source. Left out
    /// where a join without its condition would take that of another one.
    void reread() {
        for (const Join* join : all<Join>()) {
            if (join->needsCondition() && !join->hasCondition()) return;
        }
        if (tree().find('_') != std::string::npos) return;
        const OwnedStatement other(new SQLSelectStmtComponent);
        parse(other.get(), m_engine->buildQuery());
        EXPECT_EQ(conditions(other->sourceExpr->root), conditions()) << m_engine->buildQuery();
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
        const auto textCheck = seed % 10 == 0 ? std::make_unique<TextCheck>() : nullptr;
        start(seed);
        for (int i = 0; i < 30 && !HasFailure(); ++i)
            step();
        ASSERT_FALSE(HasFailure()) << "seed " << seed << m_log;
    }
    EXPECT_GT(m_reread, seeds) << "hardly any text is read again";
}

}  // namespace QB::Test
