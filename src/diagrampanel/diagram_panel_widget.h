#pragma once

#include <QPoint>
#include <memory>

#include "model/vocabulary.h"
#include "widgets/panel_widget.h"

class QButtonGroup;
class QDropEvent;

namespace Ui {
class QBDiagramPanelWidget;
}

namespace QB {

class PendingDiagramItems;
class QBDiagramHintWidget;
struct QBIdentifierCandidate;
namespace Component::SQL {
class SQLAbstractConditionComponent;
class SQLIdentifierSourceComponent;
}  // namespace Component::SQL

/// The panel of the diagram: takes tables and views from the object tree, by drop or by
/// addIdentifierCandidateToDiagram(), and adds them to the query.
///
/// The form has a bar with the table or field relation switch, which says how the diagram's links
/// are drawn; it is hidden while there is no canvas to draw them on.
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
    /// address may be given.
    void addIdentifierCandidateToDiagram(QBIdentifierCandidate* candidate);

    /// Where the source that is being added was dropped, in the panel's coordinates; (-1, -1) when
    /// it was not dropped. Valid while the engine announces the source.
    QPoint dropPoint() const { return m_dropPoint; }

    /// How many sources wait for their fields.
    int pendingItemCount() const;

Q_SIGNALS:
    /// A condition that the diagram has just made is not finished yet; panels shall not mark it.
    void signalExcludeInvalidConditionComponent(
        QB::Component::SQL::SQLAbstractConditionComponent** componentRef);
    /// The user's action on the diagram changed that clause.
    void signalJumpToPanel(QB::TopLevelQueryComponentElementEnum element);

protected:
    void changeEvent(QEvent* event) override;
    /// Takes drags from a QTreeWidget before the usual handling.
    bool event(QEvent* event) override;
    /// The widget that a drag comes from; null if it comes from another program.
    virtual QObject* dragSource(const QDropEvent* event) const;

private:
    void retranslate();
    void connectEngine();
    bool dragEntered(QDropEvent* event);
    bool dropped(QDropEvent* event);
    void addSource(std::unique_ptr<Component::SQL::SQLIdentifierSourceComponent> source, int layer,
                   QPoint dropPoint);

    const std::unique_ptr<Ui::QBDiagramPanelWidget> ui;
    QButtonGroup* m_relationGroup;       // owned by the widget
    QBDiagramHintWidget* m_hintOverlay;  // owned by the widget
    QPoint m_dropPoint{-1, -1};
    const std::unique_ptr<PendingDiagramItems> m_pendingItems;
};

}  // namespace QB
