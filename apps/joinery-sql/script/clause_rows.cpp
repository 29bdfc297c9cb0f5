#include "apps/joinery-sql/script/clause_rows.h"

#include "layouts/column_vector_layout.h"
#include "layouts/condition_list_layout.h"
#include "layouts/row_dump.h"
#include "layouts/source_tree_layout.h"

namespace QB::Cli {

using namespace Component::SQL;
using namespace QBComponentsListLayout_Private;

namespace {

using Impl = std::unique_ptr<BasicQBComponentsListLayoutImpl>;

/// Null for the limit, which has no rows.
Impl makeImplementation(SQLSelectStmtComponent* statement, const Clause& clause) {
    if (clause.join) return std::make_unique<ConditionListLayout>(&clause.join->condition);
    switch (clause.element) {
        case ElementSelectColumn:
            return std::make_unique<ColumnVectorLayout>(&statement->selectColumnExpr->columns);
        case ElementSource:
            return std::make_unique<SourceTreeLayout>(&statement->sourceExpr->root);
        case ElementWhere:
            return std::make_unique<ConditionListLayout>(&statement->whereExpr->root);
        case ElementGroupBy:
            return std::make_unique<ColumnVectorLayout>(&statement->groupByExpr->columns);
        case ElementHaving:
            return std::make_unique<ConditionListLayout>(&statement->havingExpr->root);
        case ElementOrderBy:
            return std::make_unique<ColumnVectorLayout>(&statement->orderByExpr->columns);
        case ElementLimit:
            break;
    }
    return nullptr;
}

}  // namespace

bool Clause::hasConditions() const {
    return join || element == ElementWhere || element == ElementHaving;
}

ClauseRows::ClauseRows(Session& session, const Clause& clause)
    : m_session(session), m_clause(clause) {
    Impl implementation = makeImplementation(session.statement(), clause);
    implementation->rebuildItems();
    implementation->updateItemFlags();
    m_layout.setImplementation(std::move(implementation));
}

std::string ClauseRows::dump() const {
    return dumpRows(*m_layout.implementation());
}

ClauseRows::Item* ClauseRows::row(int number) const {
    const Items& items = m_layout.items();
    if (static_cast<std::size_t>(number) < items.size())
        return items[static_cast<std::size_t>(number)];
    throw Refusal(m_clause.name + " has no row " + std::to_string(number) + ", only 0 to " +
                  std::to_string(items.size() - 1));
}

ClauseRows::Items ClauseRows::rows(const std::vector<int>& numbers) const {
    Items items;
    for (const int number : numbers)
        items.push_back(row(number));
    return items;
}

void ClauseRows::put(Place place, int number,
                     std::unique_ptr<Component::AbstractQueryComponent> component) {
    if (number >= 0) row(number);
    const auto edit = place == Place::Before ? &QBComponentsListLayout::insertItem
                                             : &QBComponentsListLayout::addItem;
    const Items added =
        (m_layout.*edit)(m_session.engine(), m_clause.element, &m_session, component.get(), number);
    if (added.empty()) throw Refusal("that does not fit into " + m_clause.name);
    static_cast<void>(component.release());  // is the statement's now
}

void ClauseRows::replace(int number, std::unique_ptr<Component::AbstractQueryComponent> component) {
    Item* const item = row(number);
    m_layout.replaceItemComponent(m_session.engine(), m_clause.element, &m_session, item,
                                  component.get(), true);
    if (item->component != component.get())
        throw Refusal("that cannot take the place of row " + std::to_string(number) + " of " +
                      m_clause.name);
    static_cast<void>(component.release());  // is the statement's now
}

void ClauseRows::remove(const std::vector<int>& numbers) {
    m_layout.removeItems(m_session.engine(), m_clause.element, &m_session, rows(numbers));
}

void ClauseRows::move(int number, int target) {
    Item* const item = row(number);
    if (target < 0 || static_cast<std::size_t>(target) > m_layout.items().size()) row(target);
    m_layout.moveItem(m_session.engine(), m_clause.element, &m_session, item,
                      static_cast<unsigned long>(target));
}

void ClauseRows::group(const std::vector<int>& numbers) {
    const Items items = rows(numbers);
    if (!m_layout.canGroupItemsByBracket(items))
        throw Refusal("these rows of " + m_clause.name + " cannot be put into a bracket");
    m_layout.groupItemsByBracket(m_session.engine(), m_clause.element, &m_session, items, -1);
}

void ClauseRows::ungroup(const std::vector<int>& numbers) {
    const Items items = rows(numbers);
    if (!m_layout.canUngroupItemsByBracket(items))
        throw Refusal("these rows of " + m_clause.name + " are no bracket with content");
    m_layout.ungroupItemsByBracket(m_session.engine(), m_clause.element, &m_session, items);
}

void ClauseRows::refuseKind(int number, const char* what) const {
    throw Refusal("row " + std::to_string(number) + " of " + m_clause.name + " is no " + what);
}

Clause clauseOf(Session& session, const std::string& name, Words& words) {
    if (name == "on") {
        const int number = words.number("the row of a join in FROM");
        const ClauseRows sources(session, {"from", ElementSource});
        auto* const join = sources.componentAt<SQLJoinSourceNodeComponent>(number, "join");
        return {"on " + std::to_string(number), ElementSource, join};
    }
    for (const auto element : {ElementSelectColumn, ElementSource, ElementWhere, ElementGroupBy,
                               ElementHaving, ElementOrderBy})
        if (elementName(element) == name) return {name, element};
    throw Refusal("there is no clause \"" + name +
                  "\": one of select, from, on ROW, where, group, having, order");
}

}  // namespace QB::Cli
