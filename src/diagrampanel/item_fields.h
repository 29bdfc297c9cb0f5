#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "diagrampanel/diagram_sync.h"
#include "model/components.h"

namespace QB {

class QBLumoDiagramDrawer;
class QBPanelWidget;
struct QBIdentifierCandidate;

/// Gets the items of the diagram their fields: those of a table from the candidates, which may have
/// to be fetched first; of a subquery the names that it yields, looked up on a worker; a free text
/// has none.
///
/// An answer may be late: it is of the component with that id, and only the last question counts.
/// Thread: main.
class ItemFields {
public:
    using Source = Component::SQL::SQLAbstractSourceComponent;
    using Subquery = Component::SQL::SQLSubquerySourceComponent;
    using Sources = std::vector<Source*>;

    /// @p filled is called when items have got fields that they were not given at once. Neither
    /// @p panel, whose engine is meant, nor @p drawer is owned; both outlive this.
    ItemFields(QBPanelWidget* panel, QBLumoDiagramDrawer* drawer, std::function<void()> filled);
    ~ItemFields();
    ItemFields(const ItemFields&) = delete;
    ItemFields& operator=(const ItemFields&) = delete;

    /// Runs @p work, under whatever lock it takes, and sends the questions that it asks afterwards.
    void collectDuring(const std::function<void()>& work);
    /// Known fields are given at once, unless @p force has them loaded anew. The sources stand in
    /// the current statement.
    void ask(const Sources& sources, bool force);
    /// The source with that id is not drawn any more.
    void forget(long id) {
        m_asked.erase(id);
        m_waiting.erase(id);
        m_tables.erase(id);
    }
    /// A load has ended, null stands for the root: the items of a table get what it has now, and
    /// those of subqueries what they yield then.
    void loadEnded(const QBIdentifierCandidate* candidate);
    /// Whether a table that was asked for has no answer yet: its item has not its own height.
    bool isTableAwaited() const { return !m_tables.empty(); }
    /// Answers that are under way are not wanted any more.
    void clear() {
        m_asked.clear();
        m_waiting.clear();
        m_tables.clear();
    }

private:
    void ask(Source* source, bool force);
    void askTable(Component::SQL::SQLIdentifierSourceComponent* table, bool force);
    void askSubquery(const Subquery* subquery);
    void askSubqueries();
    void dropAnswered(const QBIdentifierCandidate* loaded);
    void answer(long id, long number, const std::vector<std::string>& names);
    DiagramParts currentParts() const;
    void send();

    QBPanelWidget* const m_panel;         // not owned
    QBLumoDiagramDrawer* const m_drawer;  // not owned
    const std::function<void()> m_filled;
    const long m_id;                 ///< in the liveness registry, for the answers
    std::map<long, long> m_asked;    ///< the number of the last question, by the id of the source
    std::vector<long> m_subqueries;  ///< ids to be asked for
    std::set<long> m_waiting;        ///< subqueries whose last question has no answer
    std::map<long, std::vector<std::string>> m_tables;  ///< that are awaited: path by source id
    /// By schema and name, the fields with which a table was loaded last.
    std::map<std::pair<std::string, std::string>, std::vector<std::string>> m_loaded;
    bool m_isFetchDue = false;
    bool m_isCollecting = false;
    long m_questions = 0;
};

}  // namespace QB
