#include "diagrampanel/diagram_callbacks.h"

#include <QPointer>
#include <QRect>
#include <QScopedValueRollback>
#include <algorithm>
#include <mutex>

#include "canvas/drawer/diagram_drawer_linux.h"
#include "diagrampanel/diagram_panel_widget.h"
#include "diagrampanel/diagram_popups.h"
#include "diagrampanel/item_fields.h"
#include "engine/engine_linux.h"
#include "layouts/column_vector_layout.h"
#include "layouts/components_list_layout.h"
#include "layouts/condition_list_layout.h"
#include "layouts/source_tree_layout.h"
#include "layouts/source_tree_surgery.h"
#include "model/callbacks.h"
#include "model/liveness.h"
#include "model/notification_names.h"
#include "model/tree_walks.h"
#include "platform/tolk/tolk.h"
#include "tools/join_tools.h"
#include "tools/selection_tools.h"
#include "tools/source_edits.h"
#include "tools/subquery_conversion.h"
#include "tools/using_list.h"
#include "tools/validation_scope.h"

namespace QB {

using namespace Component::SQL;
using namespace QBComponentsListLayout_Private;
using Lock = std::lock_guard<std::recursive_mutex>;

namespace {

/// Rows over a clause as it is now.
template <typename Rows, typename Root>
std::unique_ptr<Rows> rowsOf(Root root) {
    auto rows = std::make_unique<Rows>(root);
    rows->rebuildItems();
    rows->updateItemFlags();
    return rows;
}

/// Adds @p component at the end of a clause; destroys it if it cannot be added.
template <typename Rows, typename Root>
void append(QBEngine* engine, TopLevelQueryComponentElementEnum element, void* sender, Root root,
            std::unique_ptr<Component::AbstractQueryComponent> component) {
    QBComponentsListLayout layout(rowsOf<Rows>(root));
    const auto rows = layout.addItem(engine, element, sender, component.get(), -1);
    if (!rows.empty()) static_cast<void>(component.release());  // the statement's
}

/// The place of a source among those of its FROM clause, from 1.
int numberOf(const SQLSelectStmtComponent* statement, const SQLAbstractSourceComponent* source) {
    int number = 0;
    int found = 0;
    Tools::visitSourceNodes(statement->sourceExpr->root, [&](const SourceNode* node) {
        if (SourceTree::isLeaf(node->value)) ++number;
        if (node->value == source) found = number;
    });
    return found;
}

std::string layerName(const SQLSelectStmtComponent* statement,
                      const SQLSubquerySourceComponent* subquery) {
    if (!subquery->alias.empty()) return subquery->alias;
    const int number = numberOf(statement, subquery);
    return '(' + Tolk::localizeWithArgs(Tolk::TextNumberedSubquery, number).toStdString() + ')';
}

/// @p field as the value of a WHERE condition, bound by AND.
std::unique_ptr<SQLConditionValueComponent> makeValue(SQLAbstractSourceComponent* source,
                                                      const std::string& field) {
    auto value = std::make_unique<SQLConditionValueComponent>();
    value->logicGate = SQLLogicGateAnd;
    value->values.push_back(Tools::SQL::makeFieldColumn(source, field).release());
    return value;
}

}  // namespace

DiagramCallbacks::DiagramCallbacks(QBDiagramPanelWidget* panel, ItemFields* fields)
    : m_panel(panel), m_fields(fields), m_id(issueId()) {}

DiagramCallbacks::~DiagramCallbacks() {
    retireId(m_id);
}

void DiagramCallbacks::setView(QWidget* view) {
    m_popups = view ? std::make_unique<DiagramPopups>(m_panel, view) : nullptr;
}

QBLumoDiagramDrawer::Callbacks DiagramCallbacks::callbacks() const {
    Callbacks all;
    all.requestRemoveComponents = requestRemoveComponentsCallback();
    all.changeComponentSelection = changeComponentSelectionCallback();
    all.findNeighbouringItemSourceComponentOfJoinComponent =
        findNeighbouringItemSourceComponentOfJoinComponentCallback();
    all.requestEditComponentAlias = requestEditComponentAliasCallback();
    all.requestJumpIntoSubqueryComponent = requestJumpIntoSubqueryComponentCallback();
    all.stringifySubqueryComponent = stringifySubqueryComponentCallback();
    all.requestEditSubquery = requestEditSubqueryCallback();
    all.changeItemComponentFieldSelection = changeItemComponentFieldSelectionCallback();
    all.requestAddWhereComparison = requestAddWhereComparisonCallback();
    all.requestAddGroupByItemField = requestAddGroupByItemFieldCallback();
    all.requestAddOrderByItemField = requestAddOrderByItemFieldCallback();
    all.requestRefreshItemComponentField = requestRefreshItemComponentFieldCallback();
    all.findParentItemComponentOfJoinConditionFieldComponent =
        findParentItemComponentOfJoinConditionFieldComponentCallback();
    all.makeJoinLinkIfNecessary = makeJoinLinkIfNecessaryCallback();
    all.requestEditJoin = requestEditJoinCallback();
    all.requestRemoveJoins = requestRemoveJoinsCallback();
    all.checkItemComponentsSideOnJoinComponent = checkItemComponentsSideOnJoinComponentCallback();
    all.findUsingColumnsOfJoinComponent = [](const Join* join, std::vector<std::string>& columns) {
        columns = Tools::SQL::usingColumns(join);
    };
    all.requestRemoveUsingColumns = [this](const Tools::SQL::UsingColumns& columns) {
        m_panel->synchroniseLater();
        if (!statement() || engine()->isParsingQuery()) return;
        Tools::SQL::removeUsingColumns(engine(), m_panel, columns);
    };
    return all;
}

// ---- what may be done -------------------------------------------------------------------------

QBEngine_LINUX* DiagramCallbacks::engine() const {
    return m_panel->engine();
}

SQLSelectStmtComponent* DiagramCallbacks::statement() const {
    return engine() ? Tools::Validation::currentStatement(engine()) : nullptr;
}

void DiagramCallbacks::withFixedSources(const std::function<void()>& draw) {
    auto* const present = statement();
    const Tools::SQL::JoinEnds ends(present ? present->sourceExpr->root : nullptr);
    const QScopedValueRollback<const Tools::SQL::JoinEnds*> held(m_fixedEnds, &ends);
    draw();
}

void DiagramCallbacks::askEnds(const std::function<void(const Tools::SQL::JoinEnds&)>& ask) const {
    if (m_fixedEnds) return ask(*m_fixedEnds);
    auto* const present = statement();
    if (!present) return ask(Tools::SQL::JoinEnds(nullptr));
    const Lock lock(engine()->queryComponentAccessMutex());
    ask(Tools::SQL::JoinEnds(present->sourceExpr->root));
}

/// The address is compared before anything else: what lay there when it was drawn may be gone, and
/// something else lie there.
bool DiagramCallbacks::isCurrent(const Source* component) const {
    auto* const present = statement();
    if (!present || SourceTree::pathToValue(&present->sourceExpr->root, component).empty())
        return false;
    return m_panel->drawer()->drawnId(component) == component->id();
}

bool DiagramCallbacks::mayEdit(const Source* component) const {
    return engine() && !engine()->isParsingQuery() && isCurrent(component);
}

void DiagramCallbacks::editAndShow(TopLevelQueryComponentElementEnum element,
                                   const std::function<void()>& edit) const {
    const QPointer<QBDiagramPanelWidget> panel(m_panel);
    edit();
    if (panel) Q_EMIT panel->signalJumpToPanel(element);
}

// ---- items ------------------------------------------------------------------------------------

// The canvas destroys what the user deletes, whatever comes of it: what stays in the query, during
// a parse, is drawn again.

decltype(DiagramCallbacks::Callbacks::requestRemoveComponents)
DiagramCallbacks::requestRemoveComponentsCallback() const {
    return [this](std::vector<Source*>& sources) {
        auto* const present = statement();
        if (!present || engine()->isParsingQuery()) return m_panel->synchroniseLater();
        const auto rows = rowsOf<SourceTreeLayout>(&present->sourceExpr->root);
        SourceEdits edits(engine(), rows.get(), m_panel);
        edits.remove(sources);
        edits.tellConditions();
    };
}

decltype(DiagramCallbacks::Callbacks::changeComponentSelection)
DiagramCallbacks::changeComponentSelectionCallback() const {
    return [this](Source* source, bool isSelected) {
        if (!isCurrent(source)) return;
        const QBNotificationParameters parameters = {{"component", static_cast<void*>(source)},
                                                     {"focused", isSelected ? 1 : 0},
                                                     {"sender", static_cast<void*>(m_panel)}};
        engine()->notifyChange(Notification::componentFocusChanged, &parameters);
    };
}

decltype(DiagramCallbacks::Callbacks::requestEditComponentAlias)
DiagramCallbacks::requestEditComponentAliasCallback() const {
    return [this](Source* source, int x, int y, int w, int h) {
        if (mayEdit(source)) m_popups->editAlias(source, QRect(x, y, w, h));
    };
}

decltype(DiagramCallbacks::Callbacks::changeItemComponentFieldSelection)
DiagramCallbacks::changeItemComponentFieldSelectionCallback() const {
    return [this](Source* source, const std::string& field, bool isSelected) {
        // The box is ticked already. Later, since it is the one that calls.
        if (!mayEdit(source)) return m_panel->synchroniseLater();
        editAndShow(ElementSelectColumn, [&] {
            Tools::SQL::changeItemComponentFieldSelection(engine(), m_panel, source, field,
                                                          isSelected);
        });
    };
}

decltype(DiagramCallbacks::Callbacks::requestRefreshItemComponentField)
DiagramCallbacks::requestRefreshItemComponentFieldCallback() const {
    return [this](const std::vector<Source*>& sources, bool force) {
        std::vector<Source*> current;
        std::copy_if(sources.begin(), sources.end(), std::back_inserter(current),
                     [this](const Source* source) { return isCurrent(source); });
        m_fields->ask(current, force);
    };
}

// ---- subqueries -------------------------------------------------------------------------------

decltype(DiagramCallbacks::Callbacks::requestJumpIntoSubqueryComponent)
DiagramCallbacks::requestJumpIntoSubqueryComponentCallback() const {
    return [this](SQLSubquerySourceComponent* subquery) {
        if (!mayEdit(subquery)) return;
        // The layer that opens destroys the item that is being clicked.
        Callback::runOperationOnMainThread([this, own = m_id, id = subquery->id()] {
            bool isThere = false;
            runIfAlive(own, [&isThere](bool alive) { isThere = alive; });
            if (isThere) openLayer(id);
        });
    };
}

void DiagramCallbacks::openLayer(long subqueryId) const {
    auto* const present = statement();
    if (!present || engine()->isParsingQuery()) return;
    SQLSubquerySourceComponent* opened = nullptr;
    Tools::visitSourceNodes(present->sourceExpr->root, [&](const SourceNode* node) {
        if (node->value->id() == subqueryId)
            opened = dynamic_cast<SQLSubquerySourceComponent*>(node->value);
    });
    if (!opened) return;
    const QPointer<QBDiagramPanelWidget> panel(m_panel);
    if (!opened->subquery) makeStatement(opened);
    if (!panel || !mayEdit(opened) || opened->id() != subqueryId || !opened->subquery) return;
    engine()->pushNewLayerTopLevelQueryComponent(opened->subquery, layerName(statement(), opened));
}

/// An empty one, for a subquery that has none yet.
void DiagramCallbacks::makeStatement(const SQLSubquerySourceComponent* subquery) const {
    const auto rows = rowsOf<SourceTreeLayout>(&statement()->sourceExpr->root);
    const auto& items = rows->items();
    const auto row = std::find_if(items.begin(), items.end(), [subquery](const auto* item) {
        return item->component == subquery;
    });
    auto* const made = engine()->createTopLevelQueryComponentForCurrentDatabase();
    SourceEdits(engine(), rows.get(), m_panel)
        .setStatement(static_cast<int>(row - items.begin()),
                      OwnedStatement(dynamic_cast<SQLSelectStmtComponent*>(made)));
}

decltype(DiagramCallbacks::Callbacks::stringifySubqueryComponent)
DiagramCallbacks::stringifySubqueryComponentCallback() const {
    return [this](SQLSubquerySourceComponent* subquery) {
        if (!engine()) return std::string();
        const Lock lock(engine()->queryComponentAccessMutex());
        return subqueryText(subquery->subquery,
                            {engine()->databaseInfo(), engine()->currentSchema()});
    };
}

decltype(DiagramCallbacks::Callbacks::requestEditSubquery)
DiagramCallbacks::requestEditSubqueryCallback() const {
    return [this](SQLSubquerySourceComponent* subquery, int x, int y, int w, int h) {
        if (mayEdit(subquery)) m_popups->editSubqueryText(subquery, QRect(x, y, w, h));
    };
}

// ---- fields in other clauses ------------------------------------------------------------------

decltype(DiagramCallbacks::Callbacks::requestAddWhereComparison)
DiagramCallbacks::requestAddWhereComparisonCallback() const {
    return [this](Source* source, const std::string& field, CompareOp op) {
        if (field.empty() || !mayEdit(source)) return;
        editAndShow(ElementWhere, [&] { addWhereComparison(source, field, op); });
    };
}

void DiagramCallbacks::addWhereComparison(Source* source, const std::string& field,
                                          CompareOp op) const {
    std::unique_ptr<SQLAbstractConditionComponent> condition = makeValue(source, field);
    SQLAbstractConditionComponent** stillEmpty = nullptr;
    if (op != CompareOpNone) {
        auto compare = std::make_unique<SQLCompareConditionComponent>();
        compare->logicGate = SQLLogicGateAnd;
        compare->compareOp = op;
        compare->leftValue = condition.release();
        compare->rightValue = new SQLConditionValueComponent;
        stillEmpty = &compare->rightValue;
        condition = std::move(compare);
    }
    const QPointer<QBDiagramPanelWidget> panel(m_panel);
    append<ConditionListLayout>(engine(), ElementWhere, m_panel, &statement()->whereExpr->root,
                                std::move(condition));
    // Only now: who hears it looks for the place among the conditions of the clause.
    if (panel && stillEmpty) Q_EMIT panel->signalExcludeInvalidConditionComponent(stillEmpty);
}

void DiagramCallbacks::addColumn(TopLevelQueryComponentElementEnum element, Source* source,
                                 const std::string& field, OrderDirection direction) const {
    auto* const clause =
        element == ElementGroupBy ? statement()->groupByExpr : statement()->orderByExpr;
    auto extra = std::make_unique<SQLAbstractColumnComponent::ExtraDataOrderDirection>();
    extra->direction = direction;
    auto column = Tools::SQL::makeFieldColumn(source, field);
    column->extraData = extra.release();
    append<ColumnVectorLayout>(engine(), element, m_panel, &clause->columns, std::move(column));
}

decltype(DiagramCallbacks::Callbacks::requestAddGroupByItemField)
DiagramCallbacks::requestAddGroupByItemFieldCallback() const {
    return [this](Source* source, const std::string& field) {
        if (field.empty() || !mayEdit(source)) return;
        editAndShow(ElementGroupBy,
                    [&] { addColumn(ElementGroupBy, source, field, OrderDirectionNone); });
    };
}

decltype(DiagramCallbacks::Callbacks::requestAddOrderByItemField)
DiagramCallbacks::requestAddOrderByItemFieldCallback() const {
    return [this](Source* source, const std::string& field, OrderDirection direction) {
        if (field.empty() || !mayEdit(source)) return;
        editAndShow(ElementOrderBy, [&] { addColumn(ElementOrderBy, source, field, direction); });
    };
}

// ---- joins ------------------------------------------------------------------------------------

decltype(DiagramCallbacks::Callbacks::findNeighbouringItemSourceComponentOfJoinComponent)
DiagramCallbacks::findNeighbouringItemSourceComponentOfJoinComponentCallback() const {
    return [this](Join* join, Source*& left, Source*& right) {
        askEnds([&](const auto& ends) {
            const auto found = ends.neighboursOf(join);
            left = found.left;
            right = found.right;
        });
    };
}

decltype(DiagramCallbacks::Callbacks::findParentItemComponentOfJoinConditionFieldComponent)
DiagramCallbacks::findParentItemComponentOfJoinConditionFieldComponentCallback() const {
    return [this](Join* join, std::map<SQLFieldColumnComponent*, Source*>& parents) {
        askEnds([&](const auto& ends) { parents = ends.sourcesOfFields(join); });
    };
}

decltype(DiagramCallbacks::Callbacks::checkItemComponentsSideOnJoinComponent)
DiagramCallbacks::checkItemComponentsSideOnJoinComponentCallback() const {
    return [this](Join* join, const std::vector<Source*>& items, std::vector<Source*>& left,
                  std::vector<Source*>& right) {
        askEnds([&](const auto& ends) {
            auto sides = ends.sidesOf(join, items);
            left = std::move(sides.left);
            right = std::move(sides.right);
        });
    };
}

decltype(DiagramCallbacks::Callbacks::makeJoinLinkIfNecessary)
DiagramCallbacks::makeJoinLinkIfNecessaryCallback() const {
    return [this](Source* a, const std::string& fieldA, Source* b, const std::string& fieldB) {
        if (!mayEdit(a) || !mayEdit(b)) return;
        editAndShow(ElementSource, [&] {
            Tools::SQL::makeJoinLinkIfNecessary(engine(), m_panel, a, fieldA, b, fieldB);
        });
    };
}

decltype(DiagramCallbacks::Callbacks::requestEditJoin) DiagramCallbacks::requestEditJoinCallback()
    const {
    return [this](Join* join, int x, int y, bool) {
        if (!mayEdit(join)) return;
        Tools::SQL::JoinEnds::Neighbours ends;
        askEnds([&](const auto& all) { ends = all.neighboursOf(join); });
        m_popups->editJoin(join, ends.left, ends.right, QPoint(x, y));
    };
}

decltype(DiagramCallbacks::Callbacks::requestRemoveJoins)
DiagramCallbacks::requestRemoveJoinsCallback() const {
    return [this](const std::vector<std::pair<Join*, SQLCompareConditionComponent*>>& joins) {
        m_panel->synchroniseLater();
        if (!statement() || engine()->isParsingQuery()) return;
        Tools::SQL::removeJoins(engine(), m_panel, joins);
    };
}

}  // namespace QB
