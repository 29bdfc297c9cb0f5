#pragma once

#include <QPointer>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

#include "model/export.h"
#include "widgets/panel_widget.h"

class QKeySequence;
class QPoint;
class QShortcut;
class QTimer;
class QTreeWidgetItem;

namespace Ui {
class QBDiagramObjectTreePanelWidget;
}

namespace QB {

class ObjectTreeRows;
class QBDiagramPanelWidget;
struct QBIdentifierCandidate;

/// The tree of database objects that the host has given the engine, with a filter line above it.
///
/// Rows load when the user opens them. A row of the QTreeWidget "diagramPaneObjectTreeWidget" holds
/// in column 0: the name, the icon, role 257 (the QBIdentifierCandidate* as a 64-bit integer) and
/// role 258 (true while the row loads). Rows are created, filtered and destroyed in slices of a few
/// milliseconds between events, whatever their number; signalTreeSettled() tells the end. What is
/// expanded, the current row and the scroll position survive a reload, by name.
///
/// Mouse and keyboard: a double click, Enter or Return hands a table or view to the partner
/// diagram, as does dragging it there; F5 refreshes the current row, or everything if there is
/// none; the menu key opens the row's menu; Ctrl+F, in the diagram too, goes to the filter line,
/// from which Escape clears the text, and Down or Enter goes on to the first row found, as soon as
/// it is found. Thread: main.
class QB_EXPORT QBDiagramObjectTreePanelWidget : public QBPanelWidget {
    Q_OBJECT

public:
    explicit QBDiagramObjectTreePanelWidget(QWidget* parent = nullptr);
    ~QBDiagramObjectTreePanelWidget() override;

    /// The diagram that takes the objects; null for none, and after it was destroyed.
    /// Ownership: stays with the caller.
    void setPartnerDiagram(QBDiagramPanelWidget* diagram);
    QBDiagramPanelWidget* partnerDiagram() const;

    /// Loading of @p candidate's children has begun; null stands for the root. Its rows go. For the
    /// root the panel is disabled under the loading overlay until the load has ended.
    void startProcessingItem(QBEngine_LINUX* engine, QBIdentifierCandidate* candidate);

    /// Loading has ended: creates the rows of @p candidate's children, and of theirs, anew. Returns
    /// after a few milliseconds; many rows go on arriving afterwards. Null stands for the root.
    void reloadItemSubtree(QBEngine_LINUX* engine, QBIdentifierCandidate* candidate);

    /// The names from the outermost down to @p candidate, each followed by U+001F; empty for the
    /// root. Equal for candidates at the same place, also when one replaced the other.
    QString obtainIdentifierCandidateKey(QBIdentifierCandidate* candidate);

    /// True while no rows wait to be created or filtered, and no typing to filter by.
    bool isSettled() const;

public Q_SLOTS:
    /// Loads the children of the current row again; nothing without a current row.
    void slotRefreshSelectedItem();
    /// @p position is in coordinates of the tree's viewport.
    void showCellContextMenu(const QPoint& position);
    void on_diagramPaneObjectTreeWidget_itemDoubleClicked(QTreeWidgetItem* item, int column);

Q_SIGNALS:
    /// All rows that are known exist, filtered and expanded as they should be. Fires after each
    /// reload and after each change of the filter.
    void signalTreeSettled();

protected:
    void changeEvent(QEvent* event) override;
    /// Watches the keys of the tree and of the filter line.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setUpTree();
    void setUpFilterLine();
    void setUpShortcuts();
    QShortcut* addShortcut(QWidget* where, const QKeySequence& keys,
                           const std::function<void()>& action);
    void find();
    void retranslate();
    void connectEngine();
    void setLoadingWholeTree(bool isLoading);
    void showCurrentSchema();
    void loadMissing(const std::vector<QBIdentifierCandidate*>& candidates);
    void requestChildren(QBIdentifierCandidate* candidate, bool force);
    void refreshCurrentOrAll();
    bool canAddToDiagram(const QTreeWidgetItem* item) const;
    void addToDiagram(const QTreeWidgetItem* item);
    bool treeKeyPressed(int key, bool isPlain);
    bool filterKeyPressed(int key);
    void applyFilter();
    void followKeys();
    void leaveFilterLine();
    QTreeWidgetItem* rowAfterFilterLine() const;

    const std::unique_ptr<Ui::QBDiagramObjectTreePanelWidget> ui;
    QPointer<QBDiagramPanelWidget> m_partnerDiagram;  // not owned: cleared when it is destroyed
    QPointer<QShortcut> m_findFromDiagram;            // owned by the partner
    std::unique_ptr<ObjectTreeRows> m_rows;
    QTimer* m_filterDelay;  // owned by the widget
    QString m_appliedFilter;
    std::vector<int> m_keysAhead;       ///< pressed in the filter line before it has found its rows
    QPointer<QWidget> m_focusedBefore;  // not owned; had the focus when the panel was disabled
    QPointer<QWidget> m_focusMeanwhile;  // not owned; what got the focus then
};

}  // namespace QB
