#pragma once

#include <QPointer>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "canvas/drawer/diagram_drawer.h"
#include "model/components.h"
#include "model/vocabulary.h"
#include "tools/join_ends.h"

class QRect;
class QWidget;

namespace QB {

class DiagramPopups;
class ItemFields;
class QBDiagramPanelWidget;
class QBEngine_LINUX;

/// What the user does on the canvas, done to the query: one function for each field of
/// QBLumoDiagramDrawer::Callbacks. They change the query alone, with the panel as the sender; the
/// canvas changes when the engine's announcement comes back.
///
/// While a text is parsed, without a statement, and for a component that no longer stands in the
/// current layer nothing is done; what the canvas shows already, a tick, is set back.
/// The functions may be called as long as this object exists; what they do may destroy it.
/// Thread: main.
class DiagramCallbacks {
public:
    using Callbacks = QBLumoDiagramDrawer::Callbacks;
    using Source = Component::SQL::SQLAbstractSourceComponent;
    using Join = Component::SQL::SQLJoinSourceNodeComponent;

    /// Neither is owned; both outlive this.
    DiagramCallbacks(QBDiagramPanelWidget* panel, ItemFields* fields);
    ~DiagramCallbacks();
    DiagramCallbacks(const DiagramCallbacks&) = delete;
    DiagramCallbacks& operator=(const DiagramCallbacks&) = delete;

    /// Where popups open. Set before the first call of a function, and to null before @p view goes.
    void setView(QWidget* view);

    /// All of them; diagramEmptyChanged is left to the drawer.
    Callbacks callbacks() const;

    /// Runs @p draw, who asks for the ends of many links while the FROM clause stays as it is: the
    /// caller has locked the statement, and nobody edits it.
    void withFixedSources(const std::function<void()>& draw);

    // Each does what the field of its name says.

    decltype(Callbacks::requestRemoveComponents) requestRemoveComponentsCallback() const;
    decltype(Callbacks::changeComponentSelection) changeComponentSelectionCallback() const;
    decltype(Callbacks::findNeighbouringItemSourceComponentOfJoinComponent)
    findNeighbouringItemSourceComponentOfJoinComponentCallback() const;
    decltype(Callbacks::requestEditComponentAlias) requestEditComponentAliasCallback() const;
    decltype(Callbacks::requestJumpIntoSubqueryComponent) requestJumpIntoSubqueryComponentCallback()
        const;
    decltype(Callbacks::stringifySubqueryComponent) stringifySubqueryComponentCallback() const;
    decltype(Callbacks::requestEditSubquery) requestEditSubqueryCallback() const;
    decltype(Callbacks::changeItemComponentFieldSelection)
    changeItemComponentFieldSelectionCallback() const;
    decltype(Callbacks::requestAddWhereComparison) requestAddWhereComparisonCallback() const;
    decltype(Callbacks::requestAddGroupByItemField) requestAddGroupByItemFieldCallback() const;
    decltype(Callbacks::requestAddOrderByItemField) requestAddOrderByItemFieldCallback() const;
    decltype(Callbacks::requestRefreshItemComponentField) requestRefreshItemComponentFieldCallback()
        const;
    decltype(Callbacks::findParentItemComponentOfJoinConditionFieldComponent)
    findParentItemComponentOfJoinConditionFieldComponentCallback() const;
    decltype(Callbacks::makeJoinLinkIfNecessary) makeJoinLinkIfNecessaryCallback() const;
    decltype(Callbacks::requestEditJoin) requestEditJoinCallback() const;
    decltype(Callbacks::requestRemoveJoins) requestRemoveJoinsCallback() const;
    decltype(Callbacks::checkItemComponentsSideOnJoinComponent)
    checkItemComponentsSideOnJoinComponentCallback() const;

private:
    QBEngine_LINUX* engine() const;
    Component::SQL::SQLSelectStmtComponent* statement() const;
    /// Gives @p ask the ends of the links of the current statement, locked; of none without one.
    void askEnds(const std::function<void(const Tools::SQL::JoinEnds&)>& ask) const;
    /// Whether it stands in the current layer, and is what is drawn for that address.
    bool isCurrent(const Source* component) const;
    bool mayEdit(const Source* component) const;
    /// Runs @p edit, and brings the panel of that clause to the front if this is still there.
    void editAndShow(TopLevelQueryComponentElementEnum element,
                     const std::function<void()>& edit) const;
    void openLayer(long subqueryId) const;
    void makeStatement(const Component::SQL::SQLSubquerySourceComponent* subquery) const;
    void addWhereComparison(Source* source, const std::string& field, CompareOp op) const;
    void addColumn(TopLevelQueryComponentElementEnum element, Source* source,
                   const std::string& field, OrderDirection direction) const;

    QBDiagramPanelWidget* const m_panel;  // not owned
    ItemFields* const m_fields;           // not owned
    const long m_id;                      ///< in the liveness registry, for what is posted
    std::unique_ptr<DiagramPopups> m_popups;
    const Tools::SQL::JoinEnds* m_fixedEnds = nullptr;  // not owned: of withFixedSources()
};

}  // namespace QB
