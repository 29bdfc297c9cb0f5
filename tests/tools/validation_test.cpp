#include "tools/validation.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <regex>
#include <set>

#include "layouts/column_vector_layout.h"
#include "layouts/components_list_layout.h"
#include "layouts/source_tree_layout.h"
#include "model/dump.h"
#include "model/notification_names.h"
#include "model/tree_walks.h"
#include "parser/query_parser.h"
#include "stringifier/statement_builder.h"
#include "support/host_callbacks.h"
#include "support/long_runs.h"
#include "support/owned_engine.h"
#include "tools/source_field_lists.h"

namespace QB::Test {

using namespace Tools::Validation;
using Names = std::vector<std::string>;

namespace {

/// An engine that knows t(id, x), u(id) and, not yet fetched, v in the schema main.
class Validator {
public:
    using Slot = SQLAbstractConditionComponent**;
    struct Found {
        std::map<Slot, InvalidConditions> conditions;  ///< by the root slot
        std::map<int, InvalidColumns> columns;         ///< by the element
        InvalidSources sources;
    };

    explicit Validator(const std::string& text, DatabaseType family = DatabaseTypeSQLite) {
        engine->setDatabaseInfo(family, 1);
        engine->setCurrentSchema("main");
        QBIdentifierCandidate* schema = candidate(nullptr, "main");
        QBIdentifierCandidate* t = candidate(schema, "t");
        candidate(t, "id");
        candidate(t, "x");
        candidate(candidate(schema, "u"), "id");
        candidate(schema, "v");
        engine->registerNotifyChangeListener(
            Notification::topLevelQueryComponentElementModified,
            [this](const std::string&, const QBNotificationParameters*) { ++notifications; });
        const auto outcome =
            QBQueryParser::parseStatement(statement(), text, family, engine->currentSchema());
        EXPECT_TRUE(outcome.isAccepted()) << text << "\n" << outcome.message;
    }

    SQLSelectStmtComponent* statement() const {
        return dynamic_cast<SQLSelectStmtComponent*>(engine->currentTopLevelQueryComponent());
    }
    std::string dump() const { return dumpStatement(statement()); }

    std::vector<SQLAbstractSourceComponent*> sources() const {
        std::vector<SQLAbstractSourceComponent*> all;
        Tools::visitSourceNodes(statement()->sourceExpr->root,
                                [&](const SourceNode* node) { all.push_back(node->value); });
        return all;
    }
    SQLAbstractSourceComponent* source(const std::string& alias) const {
        for (auto* each : sources()) {
            if (each->alias == alias) return each;
        }
        return nullptr;
    }

    void removeSource(const SQLAbstractSourceComponent* source) {
        using Layout = QBComponentsListLayout_Private::SourceTreeLayout;
        removeRow(std::make_unique<Layout>(&statement()->sourceExpr->root), ElementSource, source);
    }
    void removeSelected(std::size_t index) {
        auto& columns = statement()->selectColumnExpr->columns;
        using Layout = QBComponentsListLayout_Private::ColumnVectorLayout;
        removeRow(std::make_unique<Layout>(&columns), ElementSelectColumn, columns[index]);
    }

    /// The chains of the statement with their elements.
    std::map<Slot, int> roots() const {
        std::map<Slot, int> all = {{&statement()->whereExpr->root, ElementWhere},
                                   {&statement()->havingExpr->root, ElementHaving}};
        for (auto* each : sources()) {
            auto* join = dynamic_cast<SQLJoinSourceNodeComponent*>(each);
            if (join) all[&join->condition] = ElementSource;
        }
        return all;
    }

    /// Checks all clauses, with the maps in @p known, or with none.
    Found check(Found* known) {
        Found found;
        for (const auto& [root, element] : roots())
            found.conditions[root] = invalidateConditionComponents(
                root, element, engine.get(), this, known ? &known->conditions[root] : nullptr);
        for (const int element : {ElementSelectColumn, ElementGroupBy, ElementOrderBy}) {
            const auto function = element == ElementSelectColumn
                                      ? &invalidateRefComponents_selectColumn
                                      : &invalidateRefComponents_column;
            found.columns[element] =
                function(element, engine.get(), this, known ? &known->columns[element] : nullptr);
        }
        found.sources = invalidateSourceComponents(engine.get(), this);
        return found;
    }

    /// Each fault as "element:what=reason", sorted.
    std::string faults(const Found& found) const {
        std::multiset<std::string> words;
        const auto add = [&words](int element, const std::string& what, int reason) {
            words.insert(std::to_string(element) + ":" + what + "=" + std::to_string(reason) + " ");
        };
        for (const auto& [root, map] : found.conditions) {
            for (const auto& [slot, reason] : map)
                add(roots().at(root), wordOf(*slot), reason);
        }
        for (const auto& [element, map] : found.columns) {
            for (const auto& [column, reason] : map)
                add(element, wordOf(column), reason);
        }
        for (const auto& [derived, reason] : found.sources)
            add(ElementSource, derived->alias, reason);
        return std::accumulate(words.begin(), words.end(), std::string());
    }

    HostCallbacks callbacks;
    OwnedEngine<> engine;
    int notifications = 0;

private:
    void removeRow(std::unique_ptr<QBComponentsListLayout::Impl> rows,
                   TopLevelQueryComponentElementEnum element, const void* component) {
        rows->rebuildItems();
        QBComponentsListLayout layout(std::move(rows));
        for (auto* row : layout.items()) {
            if (dynamic_cast<void*>(row->component) == component)
                return layout.removeItems(engine.get(), element, nullptr, {row});
        }
    }
    QBIdentifierCandidate* candidate(QBIdentifierCandidate* parent, const std::string& name) {
        QBEngineIdentifierCandidateAccessor accessor(engine->core());
        QBIdentifierCandidate* child = accessor.addChild(parent);
        accessor.setName(child, name);
        return child;
    }
    static std::string wordOf(const SQLAbstractColumnComponent* column) {
        if (!column) return "null";
        const auto* field = dynamic_cast<const SQLFieldColumnComponent*>(column);
        return !field ? "text" : field->isAsterisk ? "*" : field->fieldName;
    }
    static std::string wordOf(const SQLAbstractConditionComponent* condition) {
        const auto* value = dynamic_cast<const SQLConditionValueComponent*>(condition);
        if (!value) return condition ? "condition" : "null";
        std::string all;
        for (const auto* item : value->values)
            all += (all.empty() ? "" : ",") + wordOf(item);
        return all;
    }
};

void remove(Validator& v, const std::string& alias) {
    v.removeSource(v.source(alias));
}

/// What @p dump says apart from references.
std::string withoutReferences(const std::string& dump) {
    return std::regex_replace(dump, std::regex(" (source|column)=\\w+"), "");
}

struct Case {
    const char* text;
    void (*edit)(Validator&);
    const char* first;
    const char* second = nullptr;  ///< null: the same, but for fields that now are without source
};

void nothing(Validator&) {}

/// The fields without source get the schema into their path, as the diagram writes it.
void qualify(Validator& v) {
    for (auto* column : v.statement()->selectColumnExpr->columns) {
        auto* field = dynamic_cast<SQLFieldColumnComponent*>(column);
        if (!field->source) field->parentPath.insert(field->parentPath.begin(), "main");
    }
}

/// Gives the comparisons of WHERE, which have a value each, other right sides.
void replaceOperands(Validator& v) {
    auto* link = v.statement()->whereExpr->root;
    const auto next = [&link](SQLAbstractConditionComponent* right, CompareOp op) {
        auto* comparison = dynamic_cast<SQLCompareConditionComponent*>(link);
        delete std::exchange(comparison->rightValue, right);
        comparison->compareOp = op;
        link = link->next;
    };
    for (const CompareOp op :
         {CompareOpNone, CompareOpIsNull, CompareOpIsNotEmpty, CompareOpNotEndsWith})
        next(nullptr, op);
    next(value({}), CompareOpLess);
    next(value({nullptr, nullptr}), CompareOpIn);
    next(value({expression("1"), expression(""), nullptr}), CompareOpIn);
    next(value({expression(""), expression("2")}), CompareOpBetween);
    next(value({expression("1"), nullptr}), CompareOpNotBetween);
    next(value({expression("one")}), CompareOpBetween);
    next(chain(SQLLogicGateAnd, {value({expression("1")}), value({nullptr})}), CompareOpBetween);
    auto* nested = new SQLCompareConditionComponent;
    nested->leftValue = value({expression("1")});
    std::swap(nested->leftValue, dynamic_cast<SQLCompareConditionComponent*>(link)->leftValue);
    next(nested, CompareOpEqual);
    remove(v, "gone");
}

const Case cases[] = {
    // Fields that tables have and have not; 0 is SELECT, 1 FROM, 2 WHERE, 3 GROUP BY and so on.
    {"SELECT a.id, a.no, b.*, a.*, count(*), free + 1, id FROM t a, unknown b "
     "WHERE b.any = a.no AND a.x = 1 AND v.id = 2 AND sum(a.no) IS NULL",
     nothing, "0:no=3 2:id=2 2:no=3 2:no=3 "},
    {"SELECT v.id, v.* FROM v GROUP BY v.id", nothing, "0:id=3 3:id=3 "},
    {"SELECT t.x, t.no, b.no FROM t a, t b", nothing, "0:no=2 0:no=3 0:x=2 "},
    {"SELECT t.x, t.no, b.no FROM t a, t b", qualify, "0:no=3 0:no=3 "},
    {"SELECT a.id FROM t a JOIN u b ON a.no = b.no JOIN v ON a.id = b.id", nothing,
     "1:no=3 1:no=3 "},
    {"SELECT 1 FROM t WHERE t.x BETWEEN t.no AND 2 AND t.x NOT BETWEEN 1 AND t.no", nothing,
     "2:no=3 2:text=3 "},
    // What goes takes its references along.
    {"SELECT a.id, b.id, a.* FROM t a JOIN u b ON a.id = b.id JOIN t c ON c.id = a.id "
     "WHERE (a.x = 1 OR (b.id IN (1, a.x))) AND a.id GROUP BY a.id ORDER BY b.id, a.x",
     [](Validator& v) { remove(v, "a"); },
     "0:*=1 0:id=1 1:id=1 2:id=1 2:text,x=1 2:x=1 3:id=1 5:x=1 "},
    {"SELECT t.id, c.id FROM t, t c", [](Validator& v) { v.removeSource(v.sources()[0]); },
     "0:id=1 ", ""},
    {"SELECT count(*) AS n, t.id AS i FROM t GROUP BY i ORDER BY n, i",
     [](Validator& v) { v.removeSelected(0); }, "5:n=0 ", ""},
    // Brackets and derived tables are named by their alias.
    {"SELECT j.id, s.id FROM (t a JOIN u b ON a.id = b.id) AS j, (SELECT t.no FROM t) s", nothing,
     ""},
    {"SELECT j.id, s.id FROM (t a JOIN u b ON a.id = b.id) AS j, (SELECT t.no FROM t) s",
     [](Validator& v) { v.source("j")->alias = v.source("s")->alias = ""; }, "0:id=1 0:id=4 1:=5 "},
    {"SELECT 1 FROM t, t gone WHERE t.x = 1 AND t.x = 2 AND t.x = 3 AND t.x = 4 AND t.x = 5 AND "
     "t.x = 6 AND t.x = 7 AND t.x = 8 AND t.x = 9 AND t.x = 10 AND t.x = 11 AND gone.x = 12",
     replaceOperands,
     "2:=6 2:condition=6 2:null,null=6 2:null=6 2:null=6 2:text,null=6 2:text,text,null=6 "
     "2:text,text=6 2:text=6 2:text=6 2:x=1 "},
};

}  // namespace

TEST(Validation, EachFaultIsFoundOnceRepairedAndAnnouncedOnlyAsNews) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        Validator v(c.text);
        c.edit(v);
        const std::string before = v.dump();
        v.notifications = 0;
        auto found = v.check(nullptr);
        EXPECT_EQ(v.faults(found), c.first);
        EXPECT_EQ(v.notifications > 0, std::regex_search(c.first, std::regex("=[012] ")));
        const std::string repaired = v.dump();
        EXPECT_EQ(withoutReferences(repaired), withoutReferences(before));

        v.notifications = 0;
        const std::string second =
            c.second ? c.second : std::regex_replace(c.first, std::regex("=1 "), "=2 ");
        for (int i = 0; i < 2; ++i) {
            found = v.check(&found);
            EXPECT_EQ(v.faults(found), second);
        }
        EXPECT_EQ(v.notifications, 0);
        v.check(nullptr);
        EXPECT_EQ(v.notifications > 0, std::regex_search(second, std::regex("=2 ")));
        EXPECT_EQ(v.dump(), repaired);
    }
}

// Bare, or by an alias that another source has got, it would be read as a field of that.
TEST(Validation, AColumnWhoseSourceIsGoneKeepsItsQualifier) {
    Validator v("SELECT s.id, b.id FROM t a, (SELECT t.id FROM t) s, u b");
    const auto path = [&v](std::size_t column) -> std::vector<std::string>& {
        return dynamic_cast<SQLFieldColumnComponent*>(
                   v.statement()->selectColumnExpr->columns[column])
            ->parentPath;
    };
    path(0).clear();  // as a tick makes it
    v.source("b")->alias.clear();
    v.removeSource(v.source("s"));
    v.removeSource(v.source(""));
    EXPECT_EQ(v.faults(v.check(nullptr)), "0:id=1 0:id=1 ");
    EXPECT_EQ(path(0), std::vector<std::string>{"s"});
    EXPECT_EQ(path(1), (std::vector<std::string>{"main", "u"}));
    EXPECT_EQ(v.faults(v.check(nullptr)), "0:id=2 0:id=2 ");
    v.source("a")->alias = "s";
    EXPECT_EQ(v.faults(v.check(nullptr)), "0:id=2 ");
}

TEST(Validation, NothingIsFoundWithoutEngineStatementOrFittingElement) {
    Validator v("SELECT t.no FROM t WHERE t.no = 1 GROUP BY t.no");
    auto** const root = &v.statement()->whereExpr->root;
    const OwnedEngine<> empty;
    QBEngine* const none = nullptr;
    for (QBEngine* engine : {none, static_cast<QBEngine*>(empty.get())}) {
        EXPECT_TRUE(invalidateConditionComponents(root, ElementWhere, engine, &v).empty());
        EXPECT_TRUE(invalidateRefComponents_selectColumn(0, engine, &v).empty());
        EXPECT_TRUE(invalidateRefComponents_column(ElementGroupBy, engine, &v).empty());
        EXPECT_TRUE(invalidateSourceComponents(engine, &v).empty());
    }
    QBEngine* const engine = v.engine.get();
    EXPECT_TRUE(invalidateConditionComponents(root, 7, engine, &v).empty());
    EXPECT_TRUE(invalidateRefComponents_selectColumn(ElementGroupBy, engine, &v).empty());
    EXPECT_TRUE(invalidateRefComponents_column(ElementSelectColumn, engine, &v).empty());
}

TEST(Validation, AFieldMayNameASourceAroundItsSubqueryWhereTheServerLooksThere) {
    const auto faultsInside = [](const std::string& join) {
        Validator v("SELECT s.x FROM t o " + join +
                        " (SELECT o.x, o.no FROM u WHERE u.id = o.id AND o.no = gone.id) s",
                    DatabaseTypeSQLServer);
        auto* subquery = dynamic_cast<SQLSubquerySourceComponent*>(v.source("s"));
        v.engine->pushNewLayerTopLevelQueryComponent(subquery->subquery, "s");
        return v.faults(v.check(nullptr));
    };
    EXPECT_EQ(faultsInside("CROSS APPLY"), "0:no=3 2:id=2 2:no=3 ");
    EXPECT_EQ(faultsInside(","), "0:no=2 0:x=2 2:id=2 2:id=2 2:no=2 ");
}

TEST(Validation, ACaseThatTheServerDoesNotKnowIsNoFault) {
    const std::string text = "SELECT a.\"ID\" FROM t a WHERE a.\"X\" = 1 ORDER BY a.\"NO\"";
    for (const auto& [family, faults] :
         {std::pair(DatabaseTypeSQLite, "5:NO=3 "), std::pair(DatabaseTypeSQLServer, "5:NO=3 "),
          std::pair(DatabaseTypePostgreSQL, "0:ID=3 2:X=3 5:NO=3 ")}) {
        Validator v(text, family);
        EXPECT_EQ(v.faults(v.check(nullptr)), faults);
    }
}

/// A join is marked for what its condition lacks or names; a query for what another layer has.
TEST(Validation, JoinsAndOtherLayersAreLookedAtWithoutAChange) {
    struct Line {
        const char* from;  ///< a comparison with "missing" loses its right side
        DatabaseType family;
        const char* joins;  ///< the reasons of the joins in text order
        bool isFaultBelow;  ///< as a subquery
    };
    const Line lines[] = {
        {"t INNER JOIN u ON t.id = u.id", DatabaseTypePostgreSQL, "- ", false},
        {"t INNER JOIN u ON t.id = missing", DatabaseTypeSQLite, "6 ", true},
        {"t LEFT JOIN u ON (u.id = 1 OR t.id = missing)", DatabaseTypeMySQL, "6 ", true},
        {"t INNER JOIN u ON t.no = u.id", DatabaseTypeSQLite, "3 ", false},
        {"t CROSS JOIN u", DatabaseTypeSQLServer, "- ", false},
        {"t INNER JOIN u", DatabaseTypeMySQL, "6 ", true},
        {"t NATURAL LEFT JOIN u", DatabaseTypeMySQL, "- ", false},
        {"t, u INNER JOIN v ON v.id = t.id", DatabaseTypePostgreSQL, "- 1 ", true},
        {"t INNER JOIN u USING (id)", DatabaseTypeMySQL, "- ", false},
        {"t, (SELECT 1)", DatabaseTypeSQLite, "- ", true},
        {"t WHERE t.x = missing", DatabaseTypeSQLite, "", true},
        {"t GROUP BY t.x HAVING t.x = missing ORDER BY t.no", DatabaseTypeSQLite, "", true},
        {"t ORDER BY t.no", DatabaseTypeSQLite, "", false},
    };
    for (const Line& line : lines) {
        SCOPED_TRACE(line.from);
        Validator v(std::string("SELECT 1 FROM (SELECT t.id FROM ") + line.from + ") AS s",
                    line.family);
        auto* const inner = dynamic_cast<SQLSubquerySourceComponent*>(v.source("s"))->subquery;
        Tools::visitOwnedComponents(inner, [](const Component::AbstractQueryComponent* part) {
            const auto* compare = dynamic_cast<const SQLCompareConditionComponent*>(part);
            const auto* value =
                compare ? dynamic_cast<const SQLConditionValueComponent*>(compare->rightValue)
                        : nullptr;
            const auto* field =
                value ? dynamic_cast<const SQLFieldColumnComponent*>(value->firstValue()) : nullptr;
            if (field && field->fieldName == "missing")
                delete std::exchange(const_cast<SQLConditionValueComponent*>(value)->values[0],
                                     nullptr);
        });
        const std::string before = v.dump();
        EXPECT_EQ(hasFaultsInOtherLayers(v.engine.get()), line.isFaultBelow);
        v.engine->pushNewLayerTopLevelQueryComponent(inner, "s");
        EXPECT_FALSE(hasFaultsInOtherLayers(v.engine.get()));
        const InvalidSources found = invalidateJoins(v.engine.get());
        std::string joins;
        for (auto* each : v.sources()) {
            if (!dynamic_cast<SQLJoinSourceNodeComponent*>(each)) continue;
            const auto fault = found.find(each);
            joins += fault == found.end() ? "- " : std::to_string(fault->second) + " ";
        }
        EXPECT_EQ(joins, line.joins);
        v.engine->popCurrentLayerTopLevelQueryComponent();
        EXPECT_EQ(v.dump(), before);
        EXPECT_EQ(v.notifications, 0);
    }
    EXPECT_FALSE(hasFaultsInOtherLayers(nullptr));
}

TEST(Validation, ChainsAndBracketsOfAnyLengthAreWalked) {
    Validator v("SELECT 1 FROM t");
    auto** slot = &v.statement()->whereExpr->root;
    for (int i = 0; i < 100'000; ++i) {
        auto* bracket = new SQLBracketedConditionComponent;
        *slot = bracket;
        bracket->next = new SQLConditionValueComponent;
        slot = i < 50'000 ? &bracket->inner : &bracket->next->next;
    }
    EXPECT_EQ(v.check(nullptr).conditions[&v.statement()->whereExpr->root].size(), 100'000U);
}

// ---- random removals --------------------------------------------------------------------------

namespace {

class RandomRemovals {
public:
    explicit RandomRemovals(int seed) : m_random(static_cast<unsigned>(seed)), m_validator(text()) {
        if (pick(2) == 0) qualify(m_validator);
    }

    void step() {
        SCOPED_TRACE(m_validator.dump());
        removeSomething();
        const std::string before = words();
        auto found = m_validator.check(&m_found);
        expectKeysInside(found);
        EXPECT_EQ(words(), before);

        const std::string repaired = m_validator.dump();
        m_validator.notifications = 0;
        m_found = m_validator.check(&found);
        EXPECT_EQ(m_validator.notifications, 0);
        EXPECT_EQ(m_validator.dump(), repaired);
        EXPECT_EQ(repaired.find("elsewhere"), std::string::npos) << "not in the statement";
    }

private:
    int pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }
    std::string oneOf(const Names& words) { return words[std::size_t(pick(int(words.size())))]; }

    /// The text; an alias that nothing refers to any more is a name like others, in quotes.
    std::string words() {
        return std::regex_replace(m_validator.engine->buildQuery(), std::regex("\""), "");
    }
    std::string field() {
        return oneOf({"a", "b", "c", "d", "t"}) + "." + oneOf({"id", "x", "no"});
    }
    std::string list() { return pick(3) > 0 ? field() : field() + ", " + list(); }
    std::string condition() {
        const std::string comparison =
            field() + oneOf({" = " + field(), " IS NULL", " BETWEEN 1 AND " + field(),
                             " IN (" + list() + ")", ""});
        return pick(3) > 0 ? comparison : "(" + condition() + " OR NOT " + comparison + ")";
    }
    std::string source(const std::string& alias) {
        return oneOf({"t", "u", "v", "(SELECT t.id FROM t)"}) + " " + alias;
    }
    std::string text() {
        return "SELECT " + field() + " AS s0, " + list() + " FROM " + source("a") +
               oneOf({", ", " JOIN "}) + source("b") + ", (" + source("c") + " LEFT JOIN " +
               source("d") + " ON " + condition() + ") e WHERE " + condition() + " AND " +
               condition() + " GROUP BY " + list() + ", s0 HAVING " + condition() +
               " ORDER BY s0, " + list();
    }

    void removeSomething() {
        const auto sources = m_validator.sources();
        const auto& columns = m_validator.statement()->selectColumnExpr->columns;
        if (pick(2) == 0 && !columns.empty())
            return m_validator.removeSelected(std::size_t(pick(int(columns.size()))));
        if (sources.empty()) return;
        auto* source = sources[std::size_t(pick(int(sources.size())))];
        if (pick(3) == 0)
            source->alias.clear();
        else
            m_validator.removeSource(source);
    }

    void expectKeysInside(const Validator::Found& found) {
        std::set<const Component::AbstractQueryComponent*> inside = {nullptr};
        Tools::visitOwnedComponents(m_validator.statement(),
                                    [&](const auto* component) { inside.insert(component); });
        for (const auto& root : found.conditions) {
            for (const auto& fault : root.second)
                EXPECT_EQ(inside.count(*fault.first), 1U);
        }
        for (const auto& element : found.columns) {
            for (const auto& fault : element.second)
                EXPECT_EQ(inside.count(fault.first), 1U);
        }
    }

    std::mt19937 m_random;
    Validator m_validator;
    Validator::Found m_found;
};

}  // namespace

TEST(Validation, RandomRemovalsAreRepairedAndTheNextCheckChangesNothing) {
    for (int seed = 0; seed < repetitions(100) && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomRemovals run(seed);
        for (int i = 0; i < 8; ++i)
            run.step();
    }
}

}  // namespace QB::Test
