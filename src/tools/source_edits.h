#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "layouts/source_tree_layout.h"
#include "model/components.h"
#include "model/detached_parts.h"
#include "tools/free_text.h"

namespace QB {

/// The kind of a join, and the words of a custom one.
struct SourceJoinChoice {
    SQLJoinType type = SQLJoinTypeComma;
    std::string text;
};

/// Where a new source goes, seen from a row: before it, or to the end of the group it is in.
enum class SourcePlace { Before, GroupEnd };

/// What a list of sources does to the FROM clause of the current layer. Each edit is one
/// modification; what it takes out is retired.
///
/// A comma binds weaker than other joins, and a bracket hides what is in it: an edit can put
/// tables out of sight of a condition. Behind a comma such a condition is removed, since some
/// servers would read it as another one. After a change of brackets it stays, to be mended or
/// brought back into sight. Both are told; what only named a source that was removed is not.
///
/// @p rows are over that clause and in step with it; so they are afterwards, some with new records.
/// Thread: main; not inside a modification.
class SourceEdits {
public:
    using Source = Component::SQL::SQLAbstractSourceComponent;
    using Join = Component::SQL::SQLJoinSourceNodeComponent;
    using Condition = Component::SQL::SQLAbstractConditionComponent;
    using Rows = QBComponentsListLayout_Private::SourceTreeLayout;
    using Items = Rows::Items;
    using Slot = Rows::Slot;

    SourceEdits(QBEngine* engine, Rows* rows, void* sender)
        : m_engine(engine), m_rows(rows), m_sender(sender) {}

    /// Adds a table, free text, subquery or an empty bracket. Without @p join, and where nothing
    /// stands before it, it is joined by a comma.
    /// Returns its row; -1 if it does not belong there: it is destroyed then.
    int add(std::unique_ptr<Source> source, int row, SourcePlace place,
            const std::optional<SourceJoinChoice>& join);
    /// Removes a source, or a bracket with all in it, and the join that bound it. Of a join only
    /// what it binds: it becomes a comma.
    void remove(int row);
    /// Removes sources in one modification, with brackets that lose all they hold. What is not in
    /// the clause is skipped; addresses are compared, not read.
    void remove(const std::vector<Source*>& sources);
    /// Puts another source in the place of a table, free text or subquery. It takes over the fields
    /// and, unless it has an alias, that of the old source. A table without one gives its name,
    /// where an alias is sure to be understood and no other source goes by it. Destroyed where it
    /// does not fit.
    void replace(int row, std::unique_ptr<Source> replacement);
    /// A comma keeps the condition, unwritten, for the case that it becomes another join again.
    /// Nothing where the join is that already.
    void setJoin(int row, const SourceJoinChoice& choice);
    /// ON becomes USING and the other way round; the condition goes.
    void changeConditionForm(int row);
    /// Null: none.
    void setUsingList(int row, std::unique_ptr<Condition> list);
    /// Fields follow, and texts that name the source, where it is sure that they do: others are
    /// told.
    void setAlias(int row, const std::string& alias);
    void setTable(int row, const std::vector<std::string>& path, const std::string& name);
    void setExpression(int row, const std::string& text);
    /// An empty @p alias leaves that of the subquery.
    void setStatement(int row, OwnedStatement statement, const std::string& alias = {});
    void group(const Items& items);
    void ungroup(const Items& items);

    /// Tells the user (showError) what the edits so far did to conditions and texts, if anything.
    /// To be called last: the host may end all of this.
    void tellConditions() const;

private:
    using Conditions = std::set<const Condition*>;
    enum class Fate { Stays, Removed };

    void modify(const std::function<void(Slot root)>& change);
    void modifyWithConditions(Fate fate, const std::function<void(Slot root)>& change);
    template <typename Kind>
    void change(int row, const std::function<void(Kind*)>& edit);
    template <typename Kind>
    Kind* at(int row) const;
    int rowOf(const Source* source) const;
    void removeOperand(int row);

    /// Gives the group of @p component the shape that its text is read in.
    void settleGroup(Slot root, const Source* component);
    void bind(Slot root, Join* join, const SourceJoinChoice& choice);
    std::string aliasAfter(const Source* old, const Source* replacement) const;
    void takeOverFields(const Source* old, Source* replacement) const;

    static Conditions blindConditionsOf(Slot root);
    void removeBlind(Slot root, const Conditions& before, const std::set<const Source*>& gone);
    void tellBlind(Slot root, const Conditions& before);
    QString textOf(const Condition* condition) const;
    SourceName nameOf(const Source* source) const;
    void rename(const Source* source, const std::function<void()>& edit);
    void renameInTexts(const SourceName& former, const SourceName& now);

    QBEngine* const m_engine;  // not owned
    Rows* const m_rows;        // not owned
    void* const m_sender;      // not owned: compared only
    // A line for each condition.
    QStringList m_removed;
    QStringList m_blind;
    QStringList m_stale;                 // texts that name what has another name now
    std::vector<std::string> m_natural;  // see NaturalJoinWatch
};

/// The source or join of that id in the FROM clause of the current layer; null if it is not there,
/// or for a null engine.
Component::SQL::SQLAbstractSourceComponent* findSource(const QBEngine* engine, long id);

/// Runs @p edit, for one edit from outside a list of rows, with the row of that source or join, and
/// tells what it did to conditions. Nothing where it is not there. Who is notified may destroy the
/// engine: the caller does not touch it after this.
void editSource(QBEngine* engine, void* sender, long id,
                const std::function<void(SourceEdits&, int row)>& edit);

/// The alias that a table needs to stand in the clause in @p root: none where nothing there goes by
/// its name, or else the first of name_2, name_3 ... that is free. @p haveCase as in model/names.h.
/// Thread: may read the statement.
std::string freeAlias(const Component::SQL::SourceNode* root,
                      const Component::SQL::SQLIdentifierSourceComponent& table, bool haveCase);

/// Why that source of the current layer cannot have @p alias, to the user: another one goes by it.
/// Empty where it can; an empty alias is always free.
QString aliasFault(const QBEngine* engine, long id, const std::string& alias);

}  // namespace QB
