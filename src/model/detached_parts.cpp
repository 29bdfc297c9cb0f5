#include "model/detached_parts.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "model/tree_walks.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

void destroyColumns(ELEMSQLColumnExpr* element) {
    for (SQLAbstractColumnComponent* column : element->columns)
        delete column;
    element->columns.clear();
}

void destroyChain(ELEMSQLConditionExpr* element) {
    delete std::exchange(element->root, nullptr);
}

void destroyOwnClauses(SQLSelectStmtComponent* statement) {
    destroyChain(statement->whereExpr);
    destroyColumns(statement->groupByExpr);
    destroyChain(statement->havingExpr);
    destroyColumns(statement->orderByExpr);
}

using Statements = std::vector<SQLSelectStmtComponent*>;

/// Only a derived table owns a statement, so columns and conditions need no look. The walk hands
/// out const pointers to what the caller owns and may change.
void addStatementOf(const AbstractQueryComponent* component, Statements& statements) {
    const AbstractQueryComponent* owned = component;
    if (const auto* source = ifKind<SQLSubquerySourceComponent>(component))
        owned = source->subquery;
    if (const auto* statement = ifKind<SQLSelectStmtComponent>(owned))
        statements.push_back(const_cast<SQLSelectStmtComponent*>(statement));
}

void addStatementsOf(const SourceNode* tree, Statements& statements) {
    Tools::visitSourceNodes(
        tree, [&statements](const SourceNode* node) { addStatementOf(node->value, statements); });
}

/// Grows @p statements by all that lie deeper.
Statements withNested(Statements statements) {
    for (std::size_t i = 0; i < statements.size(); ++i)
        addStatementsOf(statements[i]->sourceExpr->root, statements);
    return statements;
}

/// Every statement in a part.
Statements statementsIn(const AbstractQueryComponent* root) {
    Statements statements;
    addStatementOf(root, statements);
    return withNested(std::move(statements));
}

Statements statementsIn(const SourceNode* root) {
    Statements statements;
    addStatementsOf(root, statements);
    return withNested(std::move(statements));
}

template <typename Root>
void destroyClausesIn(const Root* root) {
    for (SQLSelectStmtComponent* statement : statementsIn(root))
        destroyOwnClauses(statement);
}

void noteReferences(const AbstractQueryComponent* component,
                    DetachedParts::References& references) {
    const auto* field = ifKind<SQLFieldColumnComponent>(component);
    if (!field) return;
    if (field->source) references.insert(field->source);
    if (field->referencedColumn) references.insert(field->referencedColumn);
}

}  // namespace

void destroyUnownedClauses(AbstractTopLevelQueryComponent* statement) {
    destroyClausesIn(static_cast<const AbstractQueryComponent*>(statement));
}

void StatementDeleter::operator()(SQLSelectStmtComponent* statement) const {
    destroyUnownedClauses(statement);
    delete statement;
}

void swapElements(SQLSelectStmtComponent& a, SQLSelectStmtComponent& b) {
    std::swap(a.selectColumnExpr, b.selectColumnExpr);
    std::swap(a.sourceExpr, b.sourceExpr);
    std::swap(a.whereExpr, b.whereExpr);
    std::swap(a.groupByExpr, b.groupByExpr);
    std::swap(a.havingExpr, b.havingExpr);
    std::swap(a.orderByExpr, b.orderByExpr);
    std::swap(a.limitExpr, b.limitExpr);
}

void collectReferences(const AbstractQueryComponent* root, DetachedParts::References& references) {
    Tools::visitOwnedComponents(root, [&references](const AbstractQueryComponent* component) {
        noteReferences(component, references);
    });
}

DetachedParts::~DetachedParts() {
    for (Part& part : m_parts)
        destroy(part);
}

void DetachedParts::add(std::unique_ptr<SourceNode> tree) {
    if (tree) m_parts.push_back({std::move(tree), nullptr});
}

void DetachedParts::add(std::unique_ptr<AbstractQueryComponent> component) {
    if (component) m_parts.push_back({nullptr, std::move(component)});
}

void DetachedParts::add(DetachedParts&& other) {
    std::move(other.m_parts.begin(), other.m_parts.end(), std::back_inserter(m_parts));
    other.m_parts.clear();
}

void DetachedParts::destroy(Part& part) {
    if (part.tree) destroyClausesIn(part.tree.get());
    if (part.component) destroyClausesIn(part.component.get());
    part.tree.reset();
    part.component.reset();
}

void DetachedParts::freeUnreferenced(References referenced) {
    const auto visitPart = [](const Part& part, const auto& visit) {
        if (part.tree) Tools::visitOwnedComponents(part.tree.get(), visit);
        if (part.component) Tools::visitOwnedComponents(part.component.get(), visit);
    };
    const auto isReferenced = [&](const Part& part) {
        bool found = false;
        visitPart(part, [&](const AbstractQueryComponent* component) {
            found = found || referenced.count(component) > 0;
        });
        return found;
    };
    // A part that stays may refer to another one, which then stays too.
    auto firstFree = m_parts.begin();
    for (auto kept = firstFree;; firstFree = kept) {
        kept = std::stable_partition(firstFree, m_parts.end(), isReferenced);
        if (kept == firstFree) break;
        for (auto part = firstFree; part != kept; ++part) {
            visitPart(*part, [&referenced](const AbstractQueryComponent* component) {
                noteReferences(component, referenced);
            });
        }
    }
    for (auto part = firstFree; part != m_parts.end(); ++part)
        destroy(*part);
    m_parts.erase(firstFree, m_parts.end());
}

}  // namespace QB
