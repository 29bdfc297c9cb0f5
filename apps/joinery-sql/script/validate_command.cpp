// The marks that panels show on what has lost its source, its field or its value.

#include "apps/joinery-sql/script/clause_rows.h"
#include "apps/joinery-sql/script/commands.h"
#include "layouts/condition_list_layout.h"
#include "tools/validation.h"

namespace QB::Cli {

using namespace Component::SQL;
namespace Validation = Tools::Validation;
using QBComponentsListLayout_Private::ConditionListLayout;

namespace {

std::string reasonText(int reason) {
    switch (reason) {
        case Validation::InvalidReferencedColumn:
            return "the column that it means is no longer in the SELECT list";
        case Validation::InvalidSource:
            return "its source is no longer in FROM";
        case Validation::InvalidPath:
            return "no source has the path that it names";
        case Validation::InvalidField:
            return "its source has no such field";
        case Validation::InvalidColumnOfUnnamed:
            return "its source is a subquery without a name";
        case Validation::InvalidUnnamedSubquery:
            return "a subquery needs a name";
        case Validation::InvalidMissingValue:
            return "a value is missing";
    }
    return "unknown";
}

/// Collects the marks of all clauses as lines.
class Marks {
public:
    explicit Marks(Session& session) : m_session(session) {}

    std::string take() {
        addColumns({"select", ElementSelectColumn});
        addSources();
        addConditions({"where", ElementWhere}, &m_session.statement()->whereExpr->root);
        addColumns({"group", ElementGroupBy});
        addConditions({"having", ElementHaving}, &m_session.statement()->havingExpr->root);
        addColumns({"order", ElementOrderBy});
        return m_lines;
    }

private:
    QBEngine* engine() const { return m_session.engine(); }

    void addLine(const Clause& clause, std::size_t row, const char* side, int reason) {
        m_lines += clause.name + " row " + std::to_string(row) + side + ": " + reasonText(reason) +
                   " (" + std::to_string(reason) + ")\n";
    }

    /// Marks the rows of @p clause whose component is a key of @p invalid.
    template <typename Key>
    void addRows(const Clause& clause, const std::map<Key*, int>& invalid) {
        ClauseRows rows(m_session, clause);
        const ClauseRows::Items& items = rows.layout().items();
        for (std::size_t i = 0; i < items.size(); ++i) {
            const auto found = invalid.find(dynamic_cast<Key*>(items[i]->component));
            if (found != invalid.end()) addLine(clause, i, "", found->second);
        }
    }

    void addColumns(const Clause& clause) {
        const bool isSelect = clause.element == ElementSelectColumn;
        const auto check = isSelect ? Validation::invalidateRefComponents_selectColumn
                                    : Validation::invalidateRefComponents_column;
        addRows(clause, check(clause.element, engine(), &m_session, nullptr));
    }

    void addSources() {
        const Clause from{"from", ElementSource};
        addRows(from, Validation::invalidateSourceComponents(engine(), &m_session));
        ClauseRows rows(m_session, from);
        const ClauseRows::Items& items = rows.layout().items();
        for (std::size_t i = 0; i < items.size(); ++i) {
            auto* const join = dynamic_cast<SQLJoinSourceNodeComponent*>(items[i]->component);
            if (join && !join->isUsing)
                addConditions({"on " + std::to_string(i), ElementSource, join}, &join->condition);
        }
    }

    void addConditions(const Clause& clause, SQLAbstractConditionComponent** root) {
        const auto invalid =
            Validation::invalidateConditionComponents(root, clause.element, engine(), &m_session);
        ConditionListLayout layout(root);
        layout.rebuildItems();
        for (std::size_t i = 0; i < layout.items().size(); ++i) {
            QBComponentsListLayoutItem* const row = layout.items()[i];
            if (!row->component) continue;
            addSlot(clause, i, "", invalid, layout.slotOf(row));
            auto* const comparison = dynamic_cast<SQLCompareConditionComponent*>(row->component);
            if (!comparison) continue;
            addSlot(clause, i, " left", invalid, &comparison->leftValue);
            addSlot(clause, i, " right", invalid, &comparison->rightValue);
        }
    }

    void addSlot(const Clause& clause, std::size_t row, const char* side,
                 const Validation::InvalidConditions& invalid,
                 SQLAbstractConditionComponent** slot) {
        const auto found = invalid.find(slot);
        if (found != invalid.end()) addLine(clause, row, side, found->second);
    }

    Session& m_session;
    std::string m_lines;
};

}  // namespace

std::string validate(Call& call) {
    return Marks(call.session).take();
}

}  // namespace QB::Cli
