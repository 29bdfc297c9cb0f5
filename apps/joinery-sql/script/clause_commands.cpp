// The rows of a clause, and every edit that a list of rows can ask for: what the panels do.

#include <algorithm>
#include <array>

#include "apps/joinery-sql/script/clause_rows.h"
#include "apps/joinery-sql/script/commands.h"
#include "apps/joinery-sql/script/refusal.h"
#include "apps/joinery-sql/script/sources.h"
#include "apps/joinery-sql/script/sql_fragment.h"

namespace QB::Cli {

using namespace Component::SQL;
using Component::AbstractQueryComponent;

namespace {

/// An edit of the rows of one clause.
struct Edit {
    Session& session;
    Words& words;
    ClauseRows& rows;
};

using Parts = std::vector<std::unique_ptr<AbstractQueryComponent>>;

template <typename T>
Parts partsOf(std::vector<std::unique_ptr<T>> components) {
    return Parts(std::make_move_iterator(components.begin()),
                 std::make_move_iterator(components.end()));
}

/// A comparison as a panel adds it, with nothing on either side.
std::unique_ptr<Condition> makeEmptyComparison() {
    auto comparison = std::make_unique<SQLCompareConditionComponent>();
    comparison->leftValue = new SQLConditionValueComponent;
    comparison->rightValue = new SQLConditionValueComponent;
    return comparison;
}

Parts takeConditions(Edit& edit) {
    const bool isOr = edit.words.skip("or");
    if (!isOr) edit.words.skip("and");
    const std::string text = edit.words.rest();
    std::vector<std::unique_ptr<Condition>> links;
    if (text.empty()) {
        links.push_back(makeEmptyComparison());
    } else if (text == "()") {
        links.push_back(std::make_unique<SQLBracketedConditionComponent>());
    } else {
        links = readConditions(edit.session, edit.rows.clause().element, text);
    }
    links.front()->logicGate = isOr ? SQLLogicGateOr : SQLLogicGateAnd;
    return partsOf(std::move(links));
}

Parts takeComponents(Edit& edit) {
    const Clause& clause = edit.rows.clause();
    if (clause.hasConditions()) return takeConditions(edit);
    if (clause.element != ElementSource)
        return partsOf(readColumns(edit.session, clause.element, edit.words.rest("a column")));
    Parts parts;
    parts.push_back(takeNewSource(edit.session, edit.words));
    edit.words.end();
    return parts;
}

/// One after the other, in the order in which they stand in the script.
void putAll(Edit& edit, ClauseRows::Place place, int row) {
    for (std::unique_ptr<AbstractQueryComponent>& part : takeComponents(edit)) {
        const std::size_t before = edit.rows.layout().items().size();
        edit.rows.put(place, row, std::move(part));
        const auto added = static_cast<int>(edit.rows.layout().items().size() - before);
        if (place == ClauseRows::Place::Before) row += added;
    }
}

void add(Edit& edit) {
    putAll(edit, ClauseRows::Place::GroupOf, -1);
}

void append(Edit& edit) {
    const int row = edit.words.number("a row of the group");
    edit.rows.row(row);
    putAll(edit, ClauseRows::Place::GroupOf, row);
}

void insert(Edit& edit) {
    const int row = edit.words.number("the row before which it goes");
    edit.rows.row(row);
    putAll(edit, ClauseRows::Place::Before, row);
}

void replace(Edit& edit) {
    const int row = edit.words.number("a row");
    edit.rows.row(row);
    Parts parts = takeComponents(edit);
    if (parts.size() != 1) throw Refusal("a row is replaced by one thing");
    const auto* const old = dynamic_cast<const Condition*>(edit.rows.row(row)->component);
    if (old) static_cast<Condition&>(*parts.front()).logicGate = old->logicGate;
    edit.rows.replace(row, std::move(parts.front()));
}

/// The last words of an edit.
std::vector<int> takeRows(Edit& edit, const char* what) {
    const std::vector<int> rows = edit.words.numbers(what);
    edit.words.end();
    return rows;
}

void removeRows(Edit& edit) {
    edit.rows.remove(takeRows(edit, "a row"));
}

void move(Edit& edit) {
    const int row = edit.words.number("a row");
    edit.words.skip("to");
    const int target = edit.words.number("the row before which it goes");
    edit.words.end();
    edit.rows.move(row, target);
}

void moveBy(Edit& edit, int (QBComponentsListLayout::*offset)(ClauseRows::Item*) const) {
    const int row = edit.words.number("a row");
    edit.words.end();
    const QBComponentsListLayout& layout = edit.rows.layout();
    const int target = row + (layout.*offset)(edit.rows.row(row));
    edit.rows.move(row, std::clamp(target, 0, static_cast<int>(layout.items().size())));
}

void moveUp(Edit& edit) {
    moveBy(edit, &QBComponentsListLayout::moveUpOffset);
}

void moveDown(Edit& edit) {
    moveBy(edit, &QBComponentsListLayout::moveDownOffset);
}

void bracket(Edit& edit) {
    edit.rows.group(takeRows(edit, "the rows"));
}

void unbracket(Edit& edit) {
    edit.rows.ungroup(takeRows(edit, "the rows of a bracket"));
}

void negate(Edit& edit) {
    auto* const condition =
        edit.rows.componentAt<Condition>(edit.words.number("a row"), "condition");
    edit.words.end();
    edit.rows.modify([&] { condition->negated = !condition->negated; });
}

void setGate(Edit& edit) {
    auto* const condition =
        edit.rows.componentAt<Condition>(edit.words.number("a row"), "condition");
    const bool isOr = edit.words.skip("or");
    if (!isOr && !edit.words.skip("and")) throw Refusal("a gate is AND or OR");
    edit.words.end();
    edit.rows.modify([&] { condition->logicGate = isOr ? SQLLogicGateOr : SQLLogicGateAnd; });
}

/// The operators in the order of their numbers.
constexpr std::array<const char*, 22> operatorNames = {"=",           "<>",
                                                       "<",           "<=",
                                                       ">",           ">=",
                                                       "like",        "not like",
                                                       "contains",    "not contains",
                                                       "begins with", "not begins with",
                                                       "ends with",   "not ends with",
                                                       "is null",     "is not null",
                                                       "is empty",    "is not empty",
                                                       "between",     "not between",
                                                       "in",          "not in"};

void setOperator(Edit& edit) {
    auto* const comparison = edit.rows.componentAt<SQLCompareConditionComponent>(
        edit.words.number("a row"), "comparison");
    const std::string name = edit.words.rest("an operator");
    const auto* const found = std::find_if(operatorNames.begin(), operatorNames.end(),
                                           [&](const char* known) { return name == known; });
    if (found == operatorNames.end()) throw Refusal("there is no operator " + name);
    const auto chosen = static_cast<CompareOp>(found - operatorNames.begin());
    edit.rows.modify([&] { comparison->compareOp = chosen; });
}

void setColumnAlias(Edit& edit) {
    auto* const column = edit.rows.componentAt<Column>(edit.words.number("a row"), "column");
    const std::string alias = edit.words.isAtEnd() ? std::string() : edit.words.name("an alias");
    edit.words.end();
    edit.rows.modify([&] { column->alias = alias; });
}

enum Clauses : unsigned {
    Selected = 1,    ///< SELECT
    Sorted = 2,      ///< GROUP BY, ORDER BY
    Columns = 3,     ///< both
    Sources = 4,     ///< FROM
    Conditions = 8,  ///< WHERE, HAVING, the condition of a join
};

struct EditDescription {
    const char* name;
    const char* arguments;
    const char* summary;
    unsigned clauses;
    void (*run)(Edit& edit);
};

constexpr EditDescription edits[] = {
    {"add", "WHAT", "puts it at the end", Columns | Sources | Conditions, add},
    {"append", "ROW WHAT", "puts it at the end of the group that holds the row",
     Columns | Sources | Conditions, append},
    {"insert", "ROW WHAT", "puts it before the row", Columns | Sources | Conditions, insert},
    {"replace", "ROW WHAT", "puts it in the place of the row", Columns | Sources | Conditions,
     replace},
    {"remove", "ROWS", "removes rows; a bracket with its content", Columns | Sources | Conditions,
     removeRows},
    {"move", "ROW to ROW", "moves before a row, or to the end", Columns | Conditions, move},
    {"up", "ROW", "moves up by one place", Columns | Conditions, moveUp},
    {"down", "ROW", "moves down by one place", Columns | Conditions, moveDown},
    {"bracket", "ROWS", "puts rows into a bracket", Sources | Conditions, bracket},
    {"unbracket", "ROWS", "takes a bracket away", Sources | Conditions, unbracket},
    {"negate", "ROW", "puts NOT before it, or takes it away", Conditions, negate},
    {"gate", "ROW and|or", "how it goes on from the one before", Conditions, setGate},
    {"operator", "ROW NAME", "such as =, like, contains, is null", Conditions, setOperator},
    {"alias", "ROW [NAME]", "calls a column NAME", Selected, setColumnAlias},
};

unsigned kindOf(const Clause& clause) {
    if (clause.hasConditions()) return Conditions;
    if (clause.element == ElementSource) return Sources;
    return clause.element == ElementSelectColumn ? Selected : Sorted;
}

/// Those that the rows of @p clause know, each after a blank.
std::string editNames(const Clause& clause) {
    std::string names;
    for (const EditDescription& edit : edits)
        if (edit.clauses & kindOf(clause)) names += std::string(" ") + edit.name;
    return names;
}

std::string editClause(Call& call, const char* clauseName) {
    const Clause clause = clauseOf(call.session, clauseName, call.words);
    // One that a change to CROSS JOIN has left behind can be taken away.
    if (clause.join && !clause.join->needsCondition() && !clause.join->hasCondition())
        throw Refusal("the join in that row takes no condition");
    if (clause.join && clause.join->isUsing)
        throw Refusal("the join in that row has a list of columns and no condition");
    const std::string name = call.words.keyword("an edit such as add or remove");
    const auto* const edit = std::find_if(std::begin(edits), std::end(edits),
                                          [&](const auto& known) { return name == known.name; });
    if (edit == std::end(edits))
        throw Refusal("there is no edit \"" + name + "\" of rows: one of" + editNames(clause));
    if (!(edit->clauses & kindOf(clause)))
        throw Refusal("the rows of " + clause.name + " know no \"" + name + '"');
    ClauseRows rows(call.session, clause);
    Edit run{call.session, call.words, rows};
    edit->run(run);
    return {};
}

}  // namespace

std::string editSelect(Call& call) {
    return editClause(call, "select");
}

std::string editFrom(Call& call) {
    return editClause(call, "from");
}

std::string editJoinCondition(Call& call) {
    return editClause(call, "on");
}

std::string editWhere(Call& call) {
    return editClause(call, "where");
}

std::string editGroup(Call& call) {
    return editClause(call, "group");
}

std::string editHaving(Call& call) {
    return editClause(call, "having");
}

std::string editOrder(Call& call) {
    return editClause(call, "order");
}

std::string clauseEditList() {
    std::string list;
    for (const EditDescription& edit : edits) {
        std::string line = std::string("  ") + edit.name + ' ' + edit.arguments;
        line.resize(24, ' ');
        list += line + edit.summary + '\n';
    }
    return list;
}

}  // namespace QB::Cli
