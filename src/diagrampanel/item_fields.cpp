#include "diagrampanel/item_fields.h"

#include <QScopedValueRollback>
#include <iterator>
#include <set>
#include <utility>

#include "canvas/drawer/diagram_drawer.h"
#include "diagrampanel/candidate_loads.h"
#include "diagrampanel/diagram_sync.h"
#include "diagrampanel/object_tree_item.h"
#include "engine/engine_linux.h"
#include "model/liveness.h"
#include "tools/identifier_tools.h"
#include "tools/subquery_fields.h"
#include "tools/validation_scope.h"
#include "widgets/panel_widget.h"

namespace QB {

using namespace Component::SQL;

namespace {

std::vector<std::string> fieldsOf(const QBEngine* engine, const QBIdentifierCandidate* table) {
    std::vector<std::string> names;
    for (QBIdentifierCandidateSnapshot& field : engine->childrenSnapshot(table))
        names.push_back(std::move(field.name));
    return names;
}

}  // namespace

ItemFields::ItemFields(QBPanelWidget* panel, QBLumoDiagramDrawer* drawer,
                       std::function<void()> filled)
    : m_panel(panel), m_drawer(drawer), m_filled(std::move(filled)), m_id(issueId()) {}

ItemFields::~ItemFields() {
    retireId(m_id);
}

void ItemFields::collectDuring(const std::function<void()>& work) {
    if (m_isCollecting) return work();
    {
        const QScopedValueRollback<bool> collecting(m_isCollecting, true);
        work();
    }
    send();
}

void ItemFields::ask(const Sources& sources, bool force) {
    if (!m_panel->engine()) return;
    collectDuring([&] {
        for (Source* source : sources)
            ask(source, force);
    });
}

void ItemFields::ask(Source* source, bool force) {
    m_asked[source->id()] = ++m_questions;
    m_tables.erase(source->id());
    if (auto* table = dynamic_cast<SQLIdentifierSourceComponent*>(source))
        return askTable(table, force);
    if (dynamic_cast<Subquery*>(source)) return m_subqueries.push_back(source->id());
    m_drawer->setItemFields(source, {});
}

void ItemFields::askTable(SQLIdentifierSourceComponent* table, bool force) {
    QBEngine* const engine = m_panel->engine();
    const auto found = Tools::Identifier::findTargetIdentifierCandidate(table, engine, true);
    const bool isKnown = found.candidate && engine->candidateSnapshot(found.candidate).hasChildren;
    if (isKnown && !force) return m_drawer->setItemFields(table, fieldsOf(engine, found.candidate));
    // By its path: the schema itself may not be known yet.
    const auto path =
        Tools::Identifier::tablePath(table->path, table->name, engine->currentSchema());
    engine->addRefreshIdentifierCandidateChildrenRequest(path, force);
    if (!isKnown) m_tables[table->id()] = path;
    m_isFetchDue = true;
}

void ItemFields::send() {
    QBEngine* const engine = m_panel->engine();
    const std::vector<long> subqueries = std::exchange(m_subqueries, {});
    const bool isFetchDue = std::exchange(m_isFetchDue, false);
    if (!engine) return;
    const std::set<long> wanted(subqueries.begin(), subqueries.end());
    for (const DiagramPart& part : wanted.empty() ? DiagramParts() : currentParts()) {
        if (wanted.count(part.id) > 0) askSubquery(static_cast<Subquery*>(part.component));
    }
    if (isFetchDue) engine->refreshRequestedIdentifierCandidateChildren(true);
}

DiagramParts ItemFields::currentParts() const {
    QBEngine* const engine = m_panel->engine();
    const auto* statement = engine ? Tools::Validation::currentStatement(engine) : nullptr;
    return statement ? diagramPartsOf(statement->sourceExpr->root) : DiagramParts();
}

void ItemFields::askSubquery(const Subquery* subquery) {
    const long number = m_asked[subquery->id()];
    m_waiting.insert(subquery->id());
    Tools::obtainAndFetchSubqueryFieldList(
        m_panel->engine(), subquery,
        [this, own = m_id, id = subquery->id(), number](const Subquery*, const auto& names) {
            bool isThere = false;
            runIfAlive(own, [&isThere](bool alive) { isThere = alive; });
            if (isThere) answer(id, number, names);
        });
}

void ItemFields::answer(long id, long number, const std::vector<std::string>& names) {
    const auto asked = m_asked.find(id);
    if (asked == m_asked.end() || asked->second != number) return;
    m_waiting.erase(id);
    for (const DiagramPart& part : currentParts()) {
        if (part.id == id) m_drawer->setItemFields(part.component, names);
    }
    m_filled();
}

void ItemFields::loadEnded(const QBIdentifierCandidate* candidate) {
    dropAnswered(candidate);
    if (!candidate) return;
    const QBEngine* const engine = m_panel->engine();
    const QBIdentifierCandidateSnapshot record = engine->candidateSnapshot(candidate);
    if (!record.parent || !isTableLike(record.type)) return;
    const std::string schema = engine->candidateSnapshot(record.parent).name;
    const std::vector<std::string> fields = fieldsOf(engine, candidate);
    m_drawer->updateAllComponentsUsingIdentifier({schema, record.name}, engine->currentSchema(),
                                                 fields);
    const auto [former, isNew] = m_loaded.emplace(std::pair(schema, record.name), fields);
    // A first load may be one that they wait for.
    const bool mayYieldMore = isNew ? m_waiting.empty() : former->second != fields;
    former->second = fields;
    if (mayYieldMore) askSubqueries();
    m_filled();
}

void ItemFields::dropAnswered(const QBIdentifierCandidate* loaded) {
    for (auto table = m_tables.begin(); table != m_tables.end();) {
        const bool isAnswered = isLoadDecided(*m_panel->engine(), table->second, loaded);
        table = isAnswered ? m_tables.erase(table) : std::next(table);
    }
}

/// What they yield may come from a table that has other fields now.
void ItemFields::askSubqueries() {
    Sources subqueries;
    for (const DiagramPart& part : currentParts()) {
        auto* const source = dynamic_cast<Subquery*>(part.component);
        if (source) subqueries.push_back(source);
    }
    ask(subqueries, false);
}

}  // namespace QB
