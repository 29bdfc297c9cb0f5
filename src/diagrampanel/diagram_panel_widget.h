#pragma once

#include <QPoint>
#include <QSet>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "canvas/drawer/diagram_arrangement.h"
#include "canvas/drawer/diagram_drawer.h"
#include "model/vocabulary.h"
#include "widgets/panel_widget.h"

class QButtonGroup;
class QDropEvent;

namespace Ui {
class QBDiagramPanelWidget;
}

namespace QB {

class DiagramCallbacks;
class ItemFields;
class PendingDiagramItems;
class QBCanvasCommands;
class QBEngine;
class QBLumoDiagramDrawer_LINUX;
struct QBIdentifierCandidate;
namespace Component {
class AbstractQueryComponent;
}
namespace Component::SQL {
class SQLAbstractConditionComponent;
class SQLIdentifierSourceComponent;
class SQLSelectStmtComponent;
}  // namespace Component::SQL

/// The panel of the diagram. What the user does on the canvas changes the query through the engine,
/// and every change of the query, whoever made it, comes back from the engine and is drawn: the
/// canvas has one writer, synchronise(). Takes tables and views from the object tree, by drop or by
/// addIdentifierCandidateToDiagram().
///
/// A bar above has the table or field relation switch: how links are drawn.
/// Thread: main.
class QBDiagramPanelWidget : public QBPanelWidget {
    Q_OBJECT

public:
    explicit QBDiagramPanelWidget(QWidget* parent = nullptr);
    ~QBDiagramPanelWidget() override;

    /// Adds a table or view to the current layer, with this panel as the sender.
    ///
    /// If its fields are not known yet they are loaded first and the source is added when the load
    /// has ended, also when it brought no fields. It then goes to the layer that was current at the
    /// time of the call; if that layer has been left, as soon as it is entered again.
    /// A candidate that is not in the engine's tree, or is no table or view, is ignored: any
    /// address may be given. So is every one while a text is parsed.
    /// Once added, the table is linked by the foreign keys that the host knows.
    void addIdentifierCandidateToDiagram(QBIdentifierCandidate* candidate);

    /// How many sources wait for their fields.
    int pendingItemCount() const;

    /// Never null; owned by the panel.
    QBLumoDiagramDrawer_LINUX* drawer() const;
    /// What a View menu does with the diagram. Never null; owned by the view.
    QBCanvasCommands* commands() const;

    /// @name Layouts
    /// @{

    using LayerPaths = std::map<std::uint64_t, std::vector<std::string>>;
    /// The layers of the query, by the ids of their statements, with the aliases of the subqueries
    /// on the way down; none below a subquery without alias. Empty without engine or statement.
    LayerPaths layerPaths() const;
    /// Of all layers, the one on screen as it stands now.
    std::string saveLayout();
    /// Takes the layouts for the layers that are there, at once for the one on screen, and for
    /// those that come later, as by a parse under way, when they come.
    void restoreLayout(const std::string& text);
    /// "1" for table, "2" for field relations.
    QString relationMode() const;
    /// Any other text changes nothing.
    void setRelationMode(const QString& mode);
    /// Of the layer on screen, exactly; and back.
    DiagramArrangement arrangement() const;
    void setArrangement(const DiagramArrangement& arrangement);
    /// True while a mouse gesture or a resize by keys goes on.
    bool isGestureUnderWay() const;

    /// @}

    /// Shows what the statement holds once the event that goes on is over: for what the canvas has
    /// changed already and the query did not take.
    void synchroniseLater();

public Q_SLOTS:
    /// The fields of @p identifier were loaded: if it is a table, items that show it get them.
    void updateAllComponentsUsingIdentifier(QBIdentifierCandidate* identifier);

Q_SIGNALS:
    /// A condition that the diagram has just made is not finished yet; panels shall not mark it.
    void signalExcludeInvalidConditionComponent(
        QB::Component::SQL::SQLAbstractConditionComponent** componentRef);
    /// The user's action on the diagram changed that clause.
    void signalJumpToPanel(QB::TopLevelQueryComponentElementEnum element);
    /// The user has moved, resized or arranged items; @p stepName is for a history, in the user's
    /// language, and @p isRepeatable true for steps by key, of which a row may count as one.
    void signalArranged(const QString& stepName, bool isRepeatable);
    /// The diagram shows the statement as it is now: after each change, and each layer.
    void signalSynchronised();

protected:
    void changeEvent(QEvent* event) override;
    /// Takes drags from a QTreeWidget before the usual handling.
    bool event(QEvent* event) override;
    /// The widget that a drag comes from; null if it comes from another program.
    virtual QObject* dragSource(const QDropEvent* event) const;

private:
    using Elements = QSet<TopLevelQueryComponentElementEnum>;
    static constexpr long noLayer = -1;

    void setUpDiagram();
    void retranslate();
    void connectEngine();
    bool dragEntered(QDropEvent* event);
    bool dropped(QDropEvent* event);
    void add(QBIdentifierCandidate* candidate, QPoint dropPoint);
    void addSource(std::unique_ptr<Component::SQL::SQLIdentifierSourceComponent> source, int layer,
                   QPoint dropPoint);
    Component::SQL::SQLSelectStmtComponent* statement() const;

    void elementsModified(const QBEngine* sendingEngine, const Elements& elements, int layer,
                          const void* sender);
    void candidateLoaded(QBIdentifierCandidate* candidate);
    void askForFields();
    void takeFocus(const Component::AbstractQueryComponent* component, bool isFocused,
                   const void* sender);
    /// Another layer, or the same once more, on a canvas that is cleared first.
    void showLayer();
    void showParsedText();
    bool isShown(const Component::SQL::SQLSelectStmtComponent* statement) const;
    void synchroniseDiagramWithModel(const Elements& elements);
    void synchroniseParts(const Component::SQL::SQLSelectStmtComponent* statement);
    void synchroniseTicks();
    void fieldsFilled();
    QPoint takeDropPoint(long sourceId);
    void saveShownLayer();
    void turnToLayer(long id);
    void placeItems();
    void arrangeByRealHeights();
    bool hasItems() const;

    const std::unique_ptr<Ui::QBDiagramPanelWidget> ui;
    QButtonGroup* m_relationGroup;  // owned by the widget
    const std::unique_ptr<QBLumoDiagramDrawer_LINUX> m_drawer;
    const std::unique_ptr<PendingDiagramItems> m_pendingItems;
    /// Where sources that are not drawn yet were dropped, by their ids; in pixels of the view.
    std::map<long, QPoint> m_dropPoints;
    long m_shownLayerId = noLayer;   ///< of the statement that is on the canvas
    std::map<long, double> m_zooms;  ///< of layers that were left, by the ids of their statements
    /// A layout was loaded for the text that is being parsed: what the canvas shows now is another
    /// query's.
    bool m_isLayoutForNextText = false;
    /// How items were arranged while fields were to come that decide about heights.
    std::optional<DiagramArrangement> m_firstArrangement;
    const std::unique_ptr<ItemFields> m_fields;
    const std::unique_ptr<DiagramCallbacks> m_callbacks;  // last: its popups go first
};

}  // namespace QB
