#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <sstream>

#include "condition_notation.h"
#include "layouts/components_list_layout.h"
#include "model/element_expressions.h"
#include "model/liveness.h"
#include "model/notification_names.h"
#include "model/tree_walks.h"
#include "support/host_callbacks.h"
#include "support/long_runs.h"
#include "support/owned_engine.h"

namespace QB::Test {

namespace {

using Words = std::vector<std::string>;
using Indices = std::set<std::size_t>;
using Ids = std::set<long>;

// The oracle: rows as words, and edits of words as the user thinks of them.

bool isOpenWord(const std::string& word) {
    return word.back() == '[';
}

/// The first and the last row of the bracket that a row opens or closes, or twice the row.
std::pair<std::size_t, std::size_t> span(const Words& words, std::size_t i) {
    std::size_t other = i;
    for (int depth = 0;; words[i] == "]" ? --other : ++other) {
        depth += isOpenWord(words[other]) ? 1 : words[other] == "]" ? -1 : 0;
        if (depth == 0) return std::minmax(i, other);
    }
}

/// All rows of the links that @p rows stand for.
Indices spans(const Words& words, const Indices& rows) {
    Indices all;
    for (const std::size_t row : rows) {
        for (std::size_t i = span(words, row).first; i <= span(words, row).second; ++i) {
            if (words[row] != "_") all.insert(i);
        }
    }
    return all;
}

/// The rows to group; none if @p rows are not whole links.
Indices wholeLinks(const Words& words, const Indices& rows) {
    if (rows.size() == 1) return spans(words, rows);
    Indices starts;
    for (const std::size_t row : rows) {
        if (words[row] != "]") starts.insert(row);
    }
    return spans(words, starts) == rows ? rows : Indices();
}

Words wordsAt(const Words& words, const Indices& rows) {
    Words result;
    for (const std::size_t row : rows)
        result.push_back(words[row]);
    return result;
}

/// Without some rows, and with new words before a row; one that goes itself stands for the next
/// that does not. Placeholders show where a bracket or all is empty.
Words edited(const Words& words, const Indices& gone, std::size_t index, const Words& added) {
    while (gone.count(index) > 0)
        ++index;
    Words result;
    const auto append = [&result](const std::string& word) {
        if (word == "]" && isOpenWord(result.back())) result.emplace_back("_");
        if (word != "_") result.push_back(word);
    };
    for (std::size_t i = 0; i <= words.size(); ++i) {
        if (i == std::min(index, words.size())) std::for_each(added.begin(), added.end(), append);
        if (i < words.size() && gone.count(i) == 0) append(words[i]);
    }
    return result.empty() ? Words{"_"} : result;
}

/// Random edits of a WHERE clause through an engine, checked against what they must leave behind.
class RandomConditionEdits {
public:
    explicit RandomConditionEdits(int seed) : m_random(static_cast<unsigned>(seed)) {
        m_engine->registerNotifyChangeListener(
            Notification::topLevelQueryComponentElementModified,
            [this](const std::string&, const QBNotificationParameters*) { ++m_notifications; });
        *root() = makeChain(pick(6));
        auto layout = std::make_unique<ConditionListLayout>(root());
        layout->rebuildItems();
        layout->updateItemFlags();
        m_layout.setImplementation(std::move(layout));
    }

    void step() {
        m_words = words();
        m_ids = idsOf(*root());
        const std::map<long, Item*> rows = rowsById();
        m_notifications = 0;
        const Words expected = edit(pick(7), pickRow());
        std::copy(m_words.begin(), m_words.end(), std::ostream_iterator<std::string>(m_log, " "));
        expectInStep(dynamic_cast<ConditionListLayout&>(*m_layout.implementation()), root());
        EXPECT_EQ(words(), expected);
        EXPECT_LE(m_notifications, 1);
        EXPECT_TRUE(m_notifications == 1 || words() == m_words) << "nobody was told";
        expectAliveOrFreed();
        for (const auto& [id, row] : rowsById()) {
            const auto earlier = rows.find(id);
            EXPECT_TRUE(earlier == rows.end() || earlier->second == row) << "another record";
        }
    }

    std::string log() const { return m_log.str(); }

private:
    int pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }
    std::size_t pickRow() { return static_cast<std::size_t>(pick(count())); }
    int count() const { return static_cast<int>(m_layout.items().size()); }
    Words words() const { return wordsOf(m_layout.items(), conditionWord); }

    Condition** root() {
        auto* element = m_engine->modify_obtainElement(ElementWhere, 0);
        return &dynamic_cast<ELEMSQLConditionExpr*>(element)->root;
    }

    Condition* makeLink(int size) {
        Condition* link = makeValue("t" + std::to_string(++m_names));
        if (pick(4) == 0) link = makeCompare(link);
        link->logicGate = SQLLogicGateAnd;
        if (pick(4) == 0) link = makeBracket(pick(2) == 0 ? link : (delete link, makeChain(size)));
        link->logicGate = static_cast<SQLLogicGate>(pick(2));
        link->negated = pick(4) == 0;
        return link;
    }

    Condition* makeChain(int size) {
        if (size == 0) return nullptr;
        Condition* link = makeLink(pick(size));
        link->next = makeChain(size - 1);
        return link;
    }

    static Ids idsOf(const Condition* chain) {
        Ids ids;
        for (const Condition* link = chain; link; link = link->next) {
            Tools::visitOwnedComponents(link, [&ids](const auto* part) { ids.insert(part->id()); });
        }
        return ids;
    }

    /// What was there or came is either there now or freed.
    void expectAliveOrFreed() {
        const Ids left = idsOf(*root());
        m_ids.insert(left.begin(), left.end());
        for (const long id : m_ids) {
            runIfAlive(id, [&](bool isAlive) { EXPECT_EQ(isAlive, left.count(id) > 0) << id; });
        }
    }

    std::map<long, Item*> rowsById() const {
        std::map<long, Item*> rows;
        for (Item* row : m_layout.items()) {
            if (row->component) rows[row->component->id()] = row;
            if (row->partnerItem) rows[-row->partnerItem->component->id()] = row;
        }
        return rows;
    }

    /// Makes an edit and returns the words that it must leave.
    Words edit(int kind, std::size_t index) {
        m_log << "\n  edit " << kind << " at " << index << ": ";
        if (kind == 0) return insert(index);
        if (kind == 1) return replace(index);
        if (kind == 2) return ungroup(index);
        if (kind == 3) return move(index, static_cast<std::size_t>(pick(count() + 2)));
        Indices rows = {index, pickRow(), pickRow()};
        if (kind == 4) return remove(rows);
        if (pick(3) > 0) rows = spans(m_words, pick(2) == 0 ? rows : Indices{index});
        return group(rows, pick(2) == 0 ? -1 : pick(count() + 2));
    }

    /// Before a row, or at the end of its group.
    Words insert(std::size_t index) {
        const bool isAdding = pick(2) == 0;
        Condition* link = makeLink(pick(3));
        ChainUnderEdit alone(link);
        const Words added = wordsOf(alone.layout.items(), conditionWord);
        alone.root() = nullptr;
        const int row = static_cast<int>(index);
        const Items rows = isAdding
                               ? m_layout.addItem(m_engine.get(), ElementWhere, this, link, row)
                               : m_layout.insertItem(m_engine.get(), ElementWhere, this, link, row);
        EXPECT_EQ(wordsOf(rows, conditionWord), added);
        for (bool isEnd = !isAdding; !isEnd;) {
            index = span(m_words, index).second + 1;
            isEnd = index == m_words.size() || m_words[index] == "]";
        }
        return edited(m_words, {}, index, added);
    }

    Words remove(const Indices& rows) {
        Items items = rowsAt(m_layout, rows);
        std::shuffle(items.begin(), items.end(), m_random);
        m_layout.removeItems(m_engine.get(), ElementWhere, this, items);
        return edited(m_words, spans(m_words, rows), 0, {});
    }

    Words move(std::size_t index, std::size_t target) {
        m_layout.moveItem(m_engine.get(), ElementWhere, this, m_layout.items()[index], target);
        const Indices rows = spans(m_words, {index});
        return edited(m_words, rows, target, wordsAt(m_words, rows));
    }

    Words group(const Indices& rows, int index) {
        const Indices links = wholeLinks(m_words, rows);
        EXPECT_EQ(m_layout.canGroupItemsByBracket(rowsAt(m_layout, rows)), !links.empty());
        m_layout.groupItemsByBracket(m_engine.get(), ElementWhere, this, rowsAt(m_layout, rows),
                                     index);
        if (links.empty()) return m_words;
        Words bracket = wordsAt(m_words, links);
        bracket.insert(bracket.begin(), "&[");
        bracket.push_back("]");
        return edited(m_words, links, index < 0 ? *links.begin() : std::size_t(index), bracket);
    }

    Words ungroup(std::size_t index) {
        const auto [open, close] = span(m_words, index);
        const bool isPossible = open < close && m_words[open + 1] != "_";
        EXPECT_EQ(m_layout.canUngroupItemsByBracket(rowsAt(m_layout, Indices{index})), isPossible);
        m_layout.ungroupItemsByBracket(m_engine.get(), ElementWhere, this,
                                       rowsAt(m_layout, Indices{index}));
        if (!isPossible) return m_words;
        const auto isNegated = [this](std::size_t row) {
            return m_words[row].find('!') != std::string::npos;
        };
        const std::string first = m_words[open + 1];
        const std::string start = m_words[open].substr(0, 1);
        return edited(m_words, {open, open + 1, close}, open,
                      {start + (isNegated(open) != isNegated(open + 1) ? "!" : "") +
                       first.substr(first.find_first_not_of("&|!"))});
    }

    /// A value becomes the left operand of a compare, a compare gives way to its left operand, an
    /// empty bracket to a full one.
    Words replace(std::size_t index) {
        Item* row = m_layout.items()[index];
        auto* compare = dynamic_cast<SQLCompareConditionComponent*>(row->component);
        auto* value = dynamic_cast<SQLConditionValueComponent*>(row->component);
        Condition* link = nullptr;
        if (compare) link = std::exchange(compare->leftValue, nullptr);
        if (value) link = makeCompare(value);
        if (value) value->negated = false;
        if (value) value->logicGate = SQLLogicGateNone;
        if (!link) link = makeBracket(chainOf("&r"));
        link->logicGate = SQLLogicGateOr;
        Words added = {conditionWord(link)};
        if (!compare && !value) added.insert(added.end(), {"&r", "]"});
        const bool isRefused = !row->component;
        m_layout.replaceItemComponent(m_engine.get(), ElementWhere, this, row, link, !value);
        if (isRefused) delete link;
        return isRefused ? m_words : edited(m_words, spans(m_words, {index}), index, added);
    }

    std::mt19937 m_random;
    HostCallbacks m_callbacks;
    OwnedEngine<> m_engine{DatabaseTypeSQLite};
    QBComponentsListLayout m_layout;
    Words m_words;  // before the edit
    Ids m_ids;
    int m_names = 0;
    int m_notifications = 0;
    std::ostringstream m_log;
};

}  // namespace

TEST(ConditionRandom, RowsAndChainStayInStepThroughAnyEdits) {
    for (int seed = 1; seed <= repetitions(500); ++seed) {
        RandomConditionEdits run(seed);
        for (int i = 0; i < 30 && !HasFailure(); ++i)
            run.step();
        ASSERT_FALSE(HasFailure()) << "seed " << seed << run.log();
    }
}

}  // namespace QB::Test
