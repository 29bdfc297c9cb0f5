#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <random>
#include <sstream>

#include "layouts/source_tree_layout.h"
#include "support/long_runs.h"
#include "support/tree_notation.h"

namespace QB::Test {

using namespace Component::SQL;

namespace {

using Words = std::vector<std::string>;

/// True if the right side of a join other than a comma holds some of the rows from @p first to
/// @p last, others not, and is not wholly among them: no bracket around these rows leaves the text
/// as it is. @p row counts the rows up to @p node.
bool isCut(const SourceNode* node, std::size_t first, std::size_t last, std::size_t& row) {
    const std::string word = node ? wordOf(node->value) : "_";
    if (word == "[") {
        ++row;
        const bool isContentCut = isCut(node->left, first, last, row);
        ++row;
        return isContentCut;
    }
    const bool isJoin = node && node->left;
    if (!isJoin) {
        ++row;
        return false;
    }
    const bool isLeftCut = isCut(node->left, first, last, row);
    const std::size_t start = ++row;
    const bool isRightCut = isCut(node->right, first, last, row);
    const std::size_t end = row - 1;
    const bool isApart = end < first || last < start;
    const bool isNested = (first <= start && end <= last) || (start <= first && last <= end);
    return isLeftCut || isRightCut || (word != "C" && !isApart && !isNested);
}

/// True if the words from @p first to @p last are whole operands of one group with their joins.
bool areOperands(const Words& words, std::size_t first, std::size_t last) {
    const auto isOneOf = [&](std::size_t at, const std::string& letters) {
        return words[at].size() == 1 && letters.find(words[at]) != std::string::npos;
    };
    if (isOneOf(first, "_]" + joinLetters) || isOneOf(last, "_[" + joinLetters)) return false;
    int depth = 0;
    for (std::size_t i = first; i <= last; ++i) {
        depth += words[i] == "[" ? 1 : words[i] == "]" ? -1 : 0;
        if (depth < 0) return false;
    }
    return depth == 0;
}

/// Random edits of random join trees, checked against what they must leave behind.
class RandomEdits {
public:
    explicit RandomEdits(int seed)
        : m_random(static_cast<unsigned>(seed)), m_edit(makeTree(pick(7))) {}

    void step() {
        m_before = words();
        const std::string tree = m_edit.tree();
        noteRows();
        const int kind = pick(6);
        if (kind == 0) insert(false);
        if (kind == 1) insert(true);
        if (kind == 2) remove();
        if (kind == 3 || kind == 4) group();
        if (kind == 5) ungroup();
        m_edit.layout.updateItemFlags();
        m_log << "\n  " << m_action << ": " << tree << " to " << m_edit.tree();
        expectInStep(m_edit.layout, m_edit.root());
        expectRowsKept();
        expectWholeJoins(*m_edit.root());
        EXPECT_EQ(words(), m_expected) << "text order after " << m_action;
    }

    std::string log() const { return m_log.str(); }
    int groupings() const { return m_groupings; }

private:
    int pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }
    std::size_t pickRow() {
        return static_cast<std::size_t>(pick(static_cast<int>(m_edit.layout.items().size())));
    }
    std::string newName() { return "t" + std::to_string(++m_names); }

    /// Splits the operands anywhere: trees that lean left, right, or neither way.
    SourceNode* makeTree(int operands) {
        if (operands == 0) return nullptr;
        if (pick(5) == 0) {
            return makeNode(new SQLBracketedSourceNodeComponent, makeTree(pick(operands + 1)))
                .release();
        }
        if (operands == 1) return makeNode(makeTable(newName())).release();
        const int left = 1 + pick(operands - 1);
        SourceNode* first = makeTree(left);
        SourceNode* second = makeTree(operands - left);
        return makeJoin(pickJoinType(), first, second).release();
    }

    SQLJoinType pickJoinType() {
        return pick(2) == 0 ? SQLJoinTypeComma : static_cast<SQLJoinType>(pick(7));
    }

    Words words() const {
        std::istringstream text(m_edit.words());
        return {std::istream_iterator<std::string>(text), {}};
    }

    void insert(bool isAdding) {
        const int index = pick(static_cast<int>(m_edit.layout.items().size()) + 3) - 1;
        m_action = (isAdding ? "add at " : "insert at ") + std::to_string(index);
        std::unique_ptr<SQLAbstractSourceComponent> source(makeTable(newName()));
        if (pick(4) == 0) source = std::make_unique<SQLBracketedSourceNodeComponent>();
        const Items rows = isAdding ? m_edit.layout.addItem(source.get(), index)
                                    : m_edit.layout.insertItem(source.get(), index);
        ASSERT_FALSE(rows.empty());
        static_cast<void>(source.release());
        expectInserted(rows, isAdding, index);
        if (isJoinRow(rows.front())) expectBindsAllBefore(rows);
        for (const Item* row : rows) {
            auto* join = dynamic_cast<SQLJoinSourceNodeComponent*>(row->component);
            if (join) join->joinType = pickJoinType();
        }
        m_expected = words();
    }

    /// A join that came before its source takes all of its group that stands to its left: else the
    /// text would bind it to the last operand alone.
    void expectBindsAllBefore(const Items& rows) {
        const std::size_t behind = m_edit.layout.indexOfItem(rows.back()) + 1;
        Item* next = behind < m_edit.layout.items().size() ? m_edit.row(behind) : nullptr;
        SourceNode** slot = m_edit.root();
        if (next) slot = &(*m_edit.layout.slotOf(next->component ? next : next->partnerItem))->left;
        EXPECT_EQ(m_edit.layout.slotOf(rows.front()), slot);
    }

    static bool isJoinRow(const Item* row) {
        return dynamic_cast<SQLJoinSourceNodeComponent*>(row->component) != nullptr;
    }

    /// All other words as before, the new ones together, and where they were asked for.
    void expectInserted(const Items& rows, bool isAdding, int index) {
        Words rest = words();
        const auto first = static_cast<std::ptrdiff_t>(m_edit.layout.indexOfItem(rows.front()));
        const auto count = static_cast<std::ptrdiff_t>(rows.size());
        rest.erase(rest.begin() + first, rest.begin() + first + count);
        const auto isPlaceholder = [&](std::ptrdiff_t at) {
            return at >= 0 && at < static_cast<std::ptrdiff_t>(m_before.size()) &&
                   m_before[static_cast<std::size_t>(at)] == "_";
        };
        if (rest.size() < m_before.size()) {
            ASSERT_TRUE(isPlaceholder(first));
            rest.insert(rest.begin() + first, "_");
        }
        EXPECT_EQ(rest, m_before);
        const auto end = static_cast<std::ptrdiff_t>(m_before.size());
        if (isAdding || index < 0 || index > end) return;
        // A whole operand or a join with its operand, so the row asked for is at most one operand
        // further down.
        EXPECT_LE(first, index);
        EXPECT_GE(first, index - 1);
    }

    void remove() {
        const std::size_t index = pickRow();
        m_action = "remove " + std::to_string(index);
        m_expected = wordsWithout(index);
        m_edit.layout.removeItem_internal(m_edit.row(index));
    }

    /// The words that a removal leaves, from the text alone: the operand goes with the join that
    /// the tree has right above it.
    Words wordsWithout(std::size_t index) {
        if (m_before[index] == "_") return m_before;
        Item* row = m_edit.row(index);
        if (isJoinRow(row)) row = m_edit.row(++index);
        if (row->partnerItem) index = m_edit.layout.indexOfItem(row->partnerItem);
        std::size_t end = index + 1;
        if (m_before[index] == "[") {
            while (m_edit.row(end)->partnerItem != m_edit.row(index))
                ++end;
            ++end;
        }
        const SourceNode* operand = *m_edit.layout.slotOf(m_edit.row(index));
        const auto isParent = [&](std::size_t at) {
            if (at >= m_before.size() || !isJoinRow(m_edit.row(at))) return false;
            const SourceNode* join = *m_edit.layout.slotOf(m_edit.row(at));
            return join->left == operand || join->right == operand;
        };
        Words left = m_before;
        const bool isJoinBefore = index > 0 && isParent(index - 1);
        const bool isJoinBehind = !isJoinBefore && isParent(end);
        left.erase(left.begin() + static_cast<std::ptrdiff_t>(index) - (isJoinBefore ? 1 : 0),
                   left.begin() + static_cast<std::ptrdiff_t>(end) + (isJoinBehind ? 1 : 0));
        if (!isJoinBefore && !isJoinBehind) {
            left.insert(left.begin() + static_cast<std::ptrdiff_t>(index), "_");
        }
        return left;
    }

    void group() {
        std::size_t first = pickRow();
        std::size_t last = pick(2) == 0 ? first : pickRow();
        if (first > last) std::swap(first, last);
        m_action = "group " + std::to_string(first) + ".." + std::to_string(last);
        Items rows = m_edit.rows(first, last);
        m_expected = m_before;
        const bool isPossible = m_edit.layout.canGroupItemsByBracket(rows);
        if (rows.size() > 1) expectPossible(isPossible, first, last);
        if (isPossible) {
            ++m_groupings;
            m_edit.layout.obtainGroupItemsByBracket(rows);
            if (rows.size() > 1 && rows.front()->partnerItem)
                std::reverse(rows.begin(), rows.end());
            first = m_edit.layout.indexOfItem(rows.front());
            last = m_edit.layout.indexOfItem(rows.back());
            m_expected.insert(m_expected.begin() + static_cast<std::ptrdiff_t>(last) + 1, "]");
            m_expected.insert(m_expected.begin() + static_cast<std::ptrdiff_t>(first), "[");
        }
        m_edit.layout.groupItemsByBracket(rows, 0);
    }

    void expectPossible(bool isPossible, std::size_t first, std::size_t last) {
        std::size_t row = 0;
        const bool isUncut = !isCut(*m_edit.root(), first, last, row);
        EXPECT_EQ(isPossible, areOperands(m_before, first, last) && isUncut) << m_action;
    }

    void ungroup() {
        const std::size_t index = pickRow();
        m_action = "ungroup " + std::to_string(index);
        Items rows = {m_edit.row(index)};
        m_expected = m_before;
        if (m_edit.layout.canUngroupItemsByBracket(rows)) {
            m_edit.layout.obtainUngroupItemsByBracket(rows);
            const auto at = [&](const Item* row) {
                return m_expected.begin() +
                       static_cast<std::ptrdiff_t>(m_edit.layout.indexOfItem(row));
            };
            m_expected.erase(at(rows.back()));
            m_expected.erase(at(rows.front()));
        }
        m_edit.layout.ungroupItemsByBracket({m_edit.row(index)});
    }

    void noteRows() {
        m_rows.clear();
        for (Item* row : m_edit.layout.items()) {
            if (row->component) m_rows[row->component->id()] = row;
        }
    }

    /// A row whose component is still there is still the same record.
    void expectRowsKept() const {
        for (Item* row : m_edit.layout.items()) {
            const auto earlier = m_rows.find(row->component ? row->component->id() : 0);
            EXPECT_TRUE(earlier == m_rows.end() || earlier->second == row);
        }
    }

    static void expectWholeJoins(const SourceNode* node) {
        if (!node) return;
        const bool isJoin = dynamic_cast<SQLJoinSourceNodeComponent*>(node->value);
        EXPECT_EQ(isJoin, node->left && node->right);
        expectWholeJoins(node->left);
        expectWholeJoins(node->right);
    }

    std::mt19937 m_random;
    int m_names = 0;
    int m_groupings = 0;
    TreeUnderEdit m_edit;
    Words m_before;
    Words m_expected;
    std::map<long, Item*> m_rows;
    std::string m_action;
    std::ostringstream m_log;
};

}  // namespace

TEST(SourceTreeRandom, RowsAndTreeStayInStepThroughAnyEdits) {
    int groupings = 0;
    for (int seed = 1; seed <= repetitions(4000); ++seed) {
        RandomEdits run(seed);
        for (int i = 0; i < 30 && !HasFailure(); ++i)
            run.step();
        groupings += run.groupings();
        ASSERT_FALSE(HasFailure()) << "seed " << seed << run.log();
    }
    EXPECT_GT(groupings, 10000) << "the runs hardly group anything";
}

}  // namespace QB::Test
