#pragma once

#include <QMap>
#include <QPointer>
#include <QString>
#include <QVariant>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

#include "model/export.h"
#include "model/vocabulary.h"

class QTabWidget;
class QUndoStack;

namespace Ui {
class QBQueryBuilderWidget;
}

namespace QB {

class BuilderLayout;
class QBAbstractQueryPreviewPanelWidget;
class QBCanvasCommands;
class QBEngine_LINUX;
class QBPanelWidget;
class QBQueryHistory;
class QBTopLevelElementPanelWidget;
struct ClauseTab;
namespace Component::SQL {
class SQLAbstractConditionComponent;
}

/// The one widget that a host embeds: object tree, diagram, query preview and clause tabs, bound
/// to one engine, with the buttons that hand the SQL text to the host. Inert until setEngine().
///
/// Keys: Ctrl+PgDown and Ctrl+PgUp turn the tabs that the focus is in, from elsewhere those of the
/// clauses; F6 and Shift+F6 go through object tree, diagram, preview and clauses; Alt+Up leaves a
/// subquery.
///
/// The host destroys it before the engine, though it bears the other order.
/// Texts follow QEvent::LanguageChange, icons a change of palette.
/// Thread: main.
class QB_EXPORT QBQueryBuilderWidget : public QWidget {
    Q_OBJECT

public:
    explicit QBQueryBuilderWidget(QWidget* parent = nullptr);
    ~QBQueryBuilderWidget() override;

    /// Gives @p engine to every panel and sets up the tabs for its family. Null is ignored. Another
    /// engine takes the place of the earlier one, to which all connections are cut.
    /// Ownership: stays with the caller.
    void setEngine(QBEngine_LINUX* engine);
    /// Null before setEngine() and after the engine was destroyed.
    QBEngine_LINUX* engine() const;

    void localizeControls();
    void updateButtonIcons();
    /// Goes back to the first tab.
    void resetUi();
    /// Sets the tabs for the engine's present family and version. A panel that loses its tab is
    /// kept for the time when the tab comes back.
    void renewPanelsIfNeeded();

    /// The tabs of the middle of the diagram area, for a host that has pages of its own to show
    /// beside the diagram, which is the first page. Without this call there are no such tabs.
    QTabWidget* obtainDiagramTabs();

    /// Makes the tab of that clause the current one; nothing if there is none.
    void selectPanel(TopLevelQueryComponentElementEnum element);
    /// Calls @p visit for every panel, also for one that is in no tab.
    void enumeratePanelWidgets(const std::function<void(QBPanelWidget*)>& visit);
    /// Whether a panel, or a layer that no panel shows, has components that would make the query
    /// fail. A host asks before it uses the text of okDialogButtonClicked().
    bool needShowBuildWarning() const;

    /// Shows or hides the button that builds and runs.
    void setSupportBuildAndRun(bool isSupported);
    bool isDialogButtonBoxVisible() const;
    void setDialogButtonBoxVisible(bool isVisible);

    /// @name What a host keeps between uses
    /// Two texts and a map. What cannot be read changes nothing; a value of a wrong kind counts as
    /// missing. The formats are in docs/layout-files.md.
    /// @{

    /// Where the window and the panes are, as a JSON object.
    QString obtainWidgetLayoutJsonString() const;
    void loadWidgetLayoutJsonString(const QString& text);
    /// Where the items of each layer are, as a JSON array. Loaded before or after the query that it
    /// belongs to; what fits no layer waits for the next parse.
    QString obtainDiagramLayoutJsonString() const;
    void loadDiagramLayoutJsonString(const QString& text);
    /// "RelationMode": "1" or "2".
    QMap<QString, QVariant> obtainGlobalPreferences() const;
    void loadGlobalPreferences(const QMap<QString, QVariant>& preferences);

    /// @}

    /// One history over all that the builder edits. Never null; owned by the builder.
    QBQueryHistory* history() const;
    /// The same as history()->undoStack(), for a host's menu.
    QUndoStack* undoStack() const;
    /// For a host's View menu. Never null; owned by the builder.
    QBCanvasCommands* canvasCommands() const;

    QBAbstractQueryPreviewPanelWidget* queryPreviewPanel() const { return m_previewPanel; }
    /// Shows @p panel instead of the present preview, which is destroyed. Null and the present one
    /// are ignored.
    /// Ownership: passes to the builder.
    void setQueryPreviewPanel(QBAbstractQueryPreviewPanelWidget* panel);

Q_SIGNALS:
    /// The user wants the text of the whole statement; @p run: and its rows.
    void okDialogButtonClicked(const QString& query, bool run);
    void cancelDialogButtonClicked();
    /// The widget closes: fetch now what is to be kept.
    void aboutToClose();

protected:
    /// With other tabs than the library's.
    QBQueryBuilderWidget(std::vector<ClauseTab> clauseTabs, QWidget* parent);

    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void setupUi();
    void setUpShortcuts();
    void connectDiagram();
    void connectPaneButtons();
    void connectDialogButtons();
    void connectEngine();
    void addTab(const ClauseTab& clauseTab, QBTopLevelElementPanelWidget* panel);
    void markTab(QBTopLevelElementPanelWidget* panel);
    QBTopLevelElementPanelWidget* obtainPanel(std::size_t tabIndex);
    /// Those in the tabs and no others: a popup of one may hold a panel for another clause.
    std::vector<QBTopLevelElementPanelWidget*> tabPanels() const;
    QBTopLevelElementPanelWidget* findPanel(TopLevelQueryComponentElementEnum element) const;
    void excludeInvalidComponent(Component::SQL::SQLAbstractConditionComponent** componentRef);
    void deactivatePanels(const QWidget* current);
    void goToLayer(int layer);
    void rebuildNavigationBar();
    void buildQuery(bool run);
    void arrangeTabOrder();
    void focusClause();
    void turnTab(int step);
    void goToPane(int step);
    bool focusPane(QWidget* pane);

    const std::unique_ptr<Ui::QBQueryBuilderWidget> ui;
    QBEngine_LINUX* m_engine = nullptr;  // not owned: m_emitter tells whether it still lives
    QPointer<QObject> m_emitter;         // not owned: the engine's signal emitter
    QBAbstractQueryPreviewPanelWidget* m_previewPanel = nullptr;  // not owned: a child
    bool m_supportsBuildAndRun = true;
    QBQueryHistory* m_history = nullptr;  // not owned: a child
    QTabWidget* m_diagramTabs = nullptr;  // not owned: a child; null until asked for
    BuilderLayout* m_layout = nullptr;    // not owned: a child
    const std::vector<ClauseTab> m_clauseTabs;
    /// By tab; null until the tab was needed.
    std::vector<QBTopLevelElementPanelWidget*> m_clausePanels;  // not owned: children
};

}  // namespace QB
