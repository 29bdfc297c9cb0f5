#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "canvas/drawer/diagram_arrangement.h"
#include "model/components.h"

class LumoControl;
class LumoObject;

namespace QB {

class QBLumoDiagramSaveLoadHandler;

namespace DiagramLumo {
class QBLumoContext;
class QBLumoDiagram;
class QBLumoItem;
class QBLumoJoinLink;
class QBLumoUIView;
}  // namespace DiagramLumo

/// Draws the query on the canvas: an item for each source, links for each join, kept in step by who
/// calls the operations below; and turns what the user does on the canvas into calls of Callbacks.
/// Knows no engine and changes no component: the model changes in the callbacks, and comes back as
/// an update.
///
/// A component is known by its address and its id(): addresses are used again. What the canvas
/// tells is looked up in the maps at that moment; nothing is captured. Components of the maps are
/// never read: between a change and its update they may be gone. Those that an operation is given
/// are alive, unless it says otherwise; one that is not drawn does nothing. No operation calls a
/// callback, but requestRefreshItemComponentField when fields are missing, and what only reads:
/// texts, fields and sides of joins. Ownership: components stay with the statement. Thread: main.
class QBLumoDiagramDrawer {
public:
    using Source = Component::SQL::SQLAbstractSourceComponent;
    using Join = Component::SQL::SQLJoinSourceNodeComponent;
    using Subquery = Component::SQL::SQLSubquerySourceComponent;
    using Compare = Component::SQL::SQLCompareConditionComponent;
    using FieldColumn = Component::SQL::SQLFieldColumnComponent;
    using Sources = std::vector<Source*>;

    /// What the panel does for the canvas. A function that is empty is not asked. Each may change
    /// the model, and so destroy any item or link before it returns. Rectangles and points are in
    /// pixels of the view.
    struct Callbacks {
        std::function<void(bool empty)> diagramEmptyChanged;
        /// The sources count as not drawn from here on; the canvas destroys their items.
        std::function<void(Sources& sources)> requestRemoveComponents;
        std::function<void(Source*, bool selected)> changeComponentSelection;
        std::function<void(Join*, Source*& left, Source*& right)>
            findNeighbouringItemSourceComponentOfJoinComponent;
        std::function<void(Source*, int x, int y, int w, int h)> requestEditComponentAlias;
        std::function<void(Subquery*)> requestJumpIntoSubqueryComponent;
        std::function<std::string(Subquery*)> stringifySubqueryComponent;
        std::function<void(Subquery*, int x, int y, int w, int h)> requestEditSubquery;
        /// The field "" is the wildcard.
        std::function<void(Source*, const std::string& field, bool selected)>
            changeItemComponentFieldSelection;
        std::function<void(Source*, const std::string& field, CompareOp)> requestAddWhereComparison;
        std::function<void(Source*, const std::string& field)> requestAddGroupByItemField;
        std::function<void(Source*, const std::string& field, OrderDirection)>
            requestAddOrderByItemField;
        /// Fields are wanted; they come by setItemFields(). @p force loads known ones anew.
        std::function<void(const Sources&, bool force)> requestRefreshItemComponentField;
        std::function<void(Join*, std::map<FieldColumn*, Source*>&)>
            findParentItemComponentOfJoinConditionFieldComponent;
        std::function<void(Source* a, const std::string& fieldA, Source* b,
                           const std::string& fieldB)>
            makeJoinLinkIfNecessary;
        /// At the middle of the link; @p byUser is what the link told.
        std::function<void(Join*, int x, int y, bool byUser)> requestEditJoin;
        /// A null condition stands for the table link, that is, for the whole join. As with
        /// requestRemoveComponents.
        std::function<void(const std::vector<std::pair<Join*, Compare*>>&)> requestRemoveJoins;
        std::function<void(Join*, const Sources&, Sources& left, Sources& right)>
            checkItemComponentsSideOnJoinComponent;
        /// The columns that a join with USING compares; none for another.
        std::function<void(const Join*, std::vector<std::string>& columns)>
            findUsingColumnsOfJoinComponent;
        /// Some columns of USING lists, by their places there; as requestRemoveJoins.
        std::function<void(const std::map<const Join*, std::set<std::size_t>>&)>
            requestRemoveUsingColumns;
    };

    QBLumoDiagramDrawer();
    virtual ~QBLumoDiagramDrawer();
    QBLumoDiagramDrawer(const QBLumoDiagramDrawer&) = delete;
    QBLumoDiagramDrawer& operator=(const QBLumoDiagramDrawer&) = delete;

    virtual DiagramLumo::QBLumoContext* getContext() const = 0;
    virtual LumoControl* getControl() const = 0;
    virtual DiagramLumo::QBLumoUIView* getView() const = 0;
    /// Null before setupDiagram. Owned.
    DiagramLumo::QBLumoDiagram* diagram() const { return m_diagram.get(); }

    /// Once, before anything else.
    virtual void setupDiagram(const Callbacks& callbacks);
    /// Removes all items and links; the canvas has its first size again.
    virtual void clearDiagram();

    virtual void setTableRelationMode();
    virtual void setFieldRelationMode();
    /// 1 or 2, see DiagramLumo::RelationMode.
    int relationMode() const;
    virtual void applyTheme();
    virtual void scrollToOrigin();

    /// @p x, @p y: where the middle of the title is to stand, in pixels of the view; -1, -1 for a
    /// free place. A join becomes its links; other inner nodes are not drawn.
    virtual void addComponentInDiagram(Source* component, int x, int y);
    /// @p component may be gone.
    virtual void removeComponentFromDiagram(Source* component);
    virtual void updateComponentInDiagram(Source* component);
    /// Sources and joins, each once, in the order of their ids.
    virtual Sources allComponentsInDiagram() const;
    /// As allComponentsInDiagram(), with the id that each had when it was drawn; the pointers may
    /// dangle and are for comparing only.
    struct DrawnComponent {
        Source* component;  // not owned
        long id;
        bool isJoin;
    };
    std::vector<DrawnComponent> drawnComponents() const;
    /// The id that the component at that address had when it was drawn; 0 if there is none. Tells
    /// who finds a component at the address of a callback whether it still is the one that was
    /// meant.
    long drawnId(const Source* component) const;
    /// Components of the same ids lie at other addresses now, as after an undo: items and links of
    /// each first, which may be gone, go on as those of the second; so do the conditions of joins.
    /// All at once: they may have changed places. A second with another id is skipped.
    void rebindComponents(const std::vector<std::pair<Source*, Source*>>& moved);
    /// The links of one batch do not play their prompts, and nothing is scrolled to: for a whole
    /// layer that is drawn.
    class [[nodiscard]] LayerRebuild {
    public:
        explicit LayerRebuild(QBLumoDiagramDrawer* drawer);
        ~LayerRebuild();
        LayerRebuild(const LayerRebuild&) = delete;
        LayerRebuild& operator=(const LayerRebuild&) = delete;

    private:
        QBLumoDiagramDrawer* const m_drawer;  // not owned
    };

    /// Ticks exactly these fields; "" is the wildcard.
    virtual void setItemFieldSelection(Source* component, const std::vector<std::string>& names);
    /// Whether names of tables and fields that differ in case alone are of different ones, as at
    /// the start. Counts for items that are drawn from then on.
    void setNamesHaveCase(bool haveCase) { m_namesHaveCase = haveCase; }
    /// The fields that an item lists, without the wildcard.
    void setItemFields(Source* component, const std::vector<std::string>& fields);
    /// Gives the items of that table these fields; a table without schema is one of
    /// @p currentSchema. Names are compared as setNamesHaveCase() says.
    virtual void updateAllComponentsUsingIdentifier(const QBIdentifierObjectPath& table,
                                                    const std::string& currentSchema,
                                                    const std::vector<std::string>& fields);
    /// Selects the item alone and shows it, or deselects it (false), without telling
    /// changeComponentSelection. One that is selected already stays so, with all others.
    void showComponentFocus(Source* component, bool focused);

    // ---- what the menus do: asks the callbacks; components may be gone ----

    virtual void editAlias(Source* component);
    virtual void editJoin(Join* join, bool byUser);
    virtual void editSubquery(Subquery* subquery);
    virtual void addWhereComparison(Source* item, const std::string& field, CompareOp op);
    virtual void addGroupByField(Source* item, const std::string& field);
    virtual void addOrderByField(Source* item, const std::string& field, OrderDirection direction);

    // ---- layouts; a layer is known by the id of its statement ----

    virtual void saveLayerLayout(std::uint64_t layerId);
    /// False if there is none, or it did not fit in full: then items that were not placed and
    /// overlap have moved to free places. Whatever it says, an item is in sight afterwards.
    virtual bool restoreLayerLayout(std::uint64_t layerId);
    bool hasLayerLayout(std::uint64_t layerId) const;
    virtual std::string exportLayouts(
        const std::map<std::uint64_t, std::vector<std::string>>& layerPaths);
    virtual void importLayouts(const std::string& text,
                               const std::map<std::uint64_t, std::vector<std::string>>& layerPaths);
    /// Gives layers without a layout those of the last import that nobody has taken yet.
    void matchLayouts(const std::map<std::uint64_t, std::vector<std::string>>& layerPaths);
    /// Where everything stands now, exactly; for a history.
    DiagramArrangement arrangement() const;
    /// Puts it back; items that are not in it stay, those that are not there are skipped.
    void setArrangement(const DiagramArrangement& arrangement);
    /// Arranges all items by the automatic layout, without an entry in any history.
    void arrangeAll();

    /// The source of an item, null if there is none; and back.
    Source* componentOf(const DiagramLumo::QBLumoItem* item) const;
    DiagramLumo::QBLumoItem* itemOf(const Source* component) const;

protected:
    virtual void addItemComponentInDiagram(Source* component, int x, int y);
    virtual void updateItemComponentInDiagram(Source* component);
    virtual void addOrUpdateJoinComponentInDiagram(Join* join);

    const Callbacks& callbacks() const { return m_callbacks; }
    /// Before what getContext(), getControl() and getView() give.
    void destroyDiagram();

    /// What a link stands for; ids, which last longer than addresses. All 0: for nothing.
    struct LinkId {
        long join = 0;
        long condition = 0;  // 0 for the table link
    };
    /// 0 for an item that is not in the map.
    long idOf(const DiagramLumo::QBLumoItem* item) const;
    LinkId idOf(const DiagramLumo::QBLumoJoinLink* link) const;
    /// Null if there is none by now.
    Source* sourceWithId(long id) const;
    Join* joinWithId(long id) const;
    DiagramLumo::QBLumoJoinLink* linkWithId(LinkId id) const;
    /// Null for another kind of source.
    Subquery* subqueryOf(const Source* source) const;

private:
    // Maps go by address alone, which is not followed.
    struct ItemEntry {
        DiagramLumo::QBLumoItem* item;  // not owned: a child of the diagram
        long id;
        Subquery* subquery;  // the component as what it is; null for another kind
    };
    struct LinkEntry {
        Join* join;
        long joinId;
        Compare* condition;  // not owned; null for the table link and columns of USING
        long conditionId;    // 0 for the table link; -1, -2 ... for columns of USING
        DiagramLumo::QBLumoJoinLink* link;  // not owned: a child of the diagram
    };
    using LinkMap = std::multimap<Source*, LinkEntry, std::less<>>;  // by the join
    class JoinDrawing;                                               // diagram_links.cpp

    void listenToItems();
    void listenToLinks();
    void itemsWillBeDeleted(const std::vector<DiagramLumo::QBLumoItem*>& items);
    void joinLinksWillBeDeleted(const std::vector<DiagramLumo::QBLumoJoinLink*>& links);
    std::unique_ptr<DiagramLumo::QBLumoItem> makeItem(Source* component);
    bool showComponent(const Source* component, DiagramLumo::QBLumoItem* item) const;
    void putTitleAt(DiagramLumo::QBLumoItem* item, int x, int y);
    void showInView(const DiagramLumo::QBLumoItem* item);
    void lookAtSomething();
    void requestFields(Source* component) const;
    const ItemEntry* entryOf(const Source* component) const;
    const ItemEntry* entryOfLive(const Source* component) const;
    LumoRect rectInView(const DiagramLumo::QBLumoItem* item) const;

    void placeItem(DiagramLumo::QBLumoItem* item, const DiagramArrangement::Entry& entry);

    void destroyChild(LumoObject* child);
    LinkMap::iterator removeLink(LinkMap::iterator link);
    void removeLinks(const Source* join);
    void rebindConditions(const Join* join);
    bool showsUsingColumns(const Source* join) const;
    const LinkEntry* entryOf(const DiagramLumo::QBLumoJoinLink* link) const;
    const LinkEntry* shownLinkOf(const Source* join) const;
    void askToEdit(const LinkEntry& link, bool byUser) const;

    std::map<Source*, ItemEntry, std::less<>> m_items;
    LinkMap m_joinLinks;
    Callbacks m_callbacks;
    std::unique_ptr<QBLumoDiagramSaveLoadHandler> m_saveLoadHandler;
    std::unique_ptr<DiagramLumo::QBLumoDiagram> m_diagram;
    LumoSize m_firstCanvas;
    int m_layerRebuilds = 0;
    bool m_namesHaveCase = true;
    bool m_isFocusMuted = false;
};

}  // namespace QB
