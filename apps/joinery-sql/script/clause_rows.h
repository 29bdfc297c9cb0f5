#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/joinery-sql/script/refusal.h"
#include "apps/joinery-sql/script/session.h"
#include "apps/joinery-sql/script/words.h"
#include "layouts/components_list_layout.h"
#include "model/components.h"

namespace QB::Cli {

/// A clause of the current statement whose content is a list of rows.
struct Clause {
    std::string name;  ///< as the script has it, such as "where" or "on 1"
    TopLevelQueryComponentElementEnum element;
    /// The join whose condition it is; null for all others.
    Component::SQL::SQLJoinSourceNodeComponent* join = nullptr;  // not owned: the statement's

    bool hasConditions() const;
};

/// The rows of one clause, built for one command, with the edits that panels make on them.
class ClauseRows {
public:
    using Item = QBComponentsListLayoutItem;
    using Items = std::vector<Item*>;

    ClauseRows(Session& session, const Clause& clause);

    const Clause& clause() const { return m_clause; }
    QBComponentsListLayout& layout() { return m_layout; }
    std::string dump() const;

    /// Errors: a Refusal if there is no such row.
    Item* row(int number) const;
    Items rows(const std::vector<int>& numbers) const;
    /// The component of a row. Errors: a Refusal if the row is no @p what.
    template <typename T>
    T* componentAt(int number, const char* what) const {
        T* const component = dynamic_cast<T*>(row(number)->component);
        if (!component) refuseKind(number, what);
        return component;
    }

    /// Where a new component goes.
    enum class Place { Before, GroupOf };
    /// @p number -1: the end. Errors: a Refusal if the component does not fit there.
    void put(Place place, int number, std::unique_ptr<Component::AbstractQueryComponent> component);
    void replace(int number, std::unique_ptr<Component::AbstractQueryComponent> component);
    void remove(const std::vector<int>& numbers);
    void move(int number, int target);
    void group(const std::vector<int>& numbers);
    void ungroup(const std::vector<int>& numbers);
    /// Runs @p change in one modification of the clause.
    void modify(const std::function<void()>& change) { m_session.modify(m_clause.element, change); }

private:
    [[noreturn]] void refuseKind(int number, const char* what) const;

    Session& m_session;
    const Clause m_clause;
    QBComponentsListLayout m_layout;
};

/// The clause called @p name; for "on" the number of a join's row in FROM is taken from @p words.
/// Errors: a Refusal if there is none.
Clause clauseOf(Session& session, const std::string& name, Words& words);

}  // namespace QB::Cli
