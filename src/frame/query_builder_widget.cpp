#include "frame/query_builder_widget.h"

#include <QApplication>
#include <QCloseEvent>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTabBar>
#include <QTimer>
#include <algorithm>
#include <array>
#include <utility>

#include "engine/engine_linux.h"
#include "frame/builder_layout.h"
#include "frame/clause_tabs.h"
#include "frame/query_history.h"
#include "frame/simple_query_preview_panel_widget.h"
#include "model/callbacks.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"
#include "rows/row_list_panel_widget.h"
#include "tools/validation.h"
#include "ui_query_builder_widget.h"
#include "widgets/invalid_excluder.h"
#include "widgets/panel_widget.h"

namespace QB {
namespace {

constexpr int diagramIndex = 1;

QIcon paneIcon(const QString& direction, bool isPaneHidden) {
    QString path = QStringLiteral(":/images/TB_Expand_") + direction;
    if (!isPaneHidden) path += QLatin1String("_Selected");
    if (Callback::isDarkTheme())
        path += isPaneHidden ? QLatin1String("_White") : QLatin1String("_LB");
    return QIcon(path + QLatin1String(".png"));
}

void describe(QWidget* widget, Tolk::TextId text) {
    widget->setAccessibleName(Tolk::localize(text));
    widget->setToolTip(Tolk::localize(text));
}

bool isTabStop(const QWidget* widget) {
    return (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->focusProxy() == nullptr;
}

bool isReachable(const QWidget* widget) {
    return isTabStop(widget) && widget->isVisible() && widget->isEnabled();
}

/// Keys in a popup are for the popup, though it is a child of a panel.
bool isPopupInFront() {
    return QApplication::activePopupWidget() != nullptr;
}

bool hasFocusIn(const QWidget* area) {
    const QWidget* focus = QApplication::focusWidget();
    return area != nullptr && focus != nullptr && (area == focus || area->isAncestorOf(focus));
}

/// The tabs of the popup or the window that the focus is in; null if it is in none.
QTabWidget* tabsAroundFocus() {
    for (QWidget* widget = QApplication::focusWidget(); widget; widget = widget->parentWidget()) {
        if (auto* tabs = qobject_cast<QTabWidget*>(widget)) return tabs;
        if (widget->isWindow()) return nullptr;
    }
    return nullptr;
}

}  // namespace

QBQueryBuilderWidget::QBQueryBuilderWidget(QWidget* parent)
    : QBQueryBuilderWidget(allClauseTabs(), parent) {}

QBQueryBuilderWidget::QBQueryBuilderWidget(std::vector<ClauseTab> clauseTabs, QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::QBQueryBuilderWidget>())
    , m_clauseTabs(std::move(clauseTabs))
    , m_clausePanels(m_clauseTabs.size(), nullptr) {
    ui->setupUi(this);
    setupUi();
}

/// The history first: it looks at the diagram when events come to it, and some do while it goes.
QBQueryBuilderWidget::~QBQueryBuilderWidget() {
    delete m_history;
}

void QBQueryBuilderWidget::setupUi() {
    localizeControls();
    ui->objectTreePanel->setPartnerDiagram(ui->diagramPanel);
    m_history = new QBQueryHistory(ui->diagramPanel, this);
    connectDiagram();
    updateButtonIcons();
    m_layout = new BuilderLayout(this, ui.get());
    connectPaneButtons();
    connect(ui->tabWidget, &QTabWidget::currentChanged, this, [this] {
        deactivatePanels(ui->tabWidget->currentWidget());
        if (hasFocusIn(ui->tabWidget->currentWidget())) focusClause();
    });
    connect(ui->navigationBar, &QBNavigationBar::layerClicked, this,
            &QBQueryBuilderWidget::goToLayer);
    setQueryPreviewPanel(new QBSimpleQueryPreviewPanelWidget);
    connectDialogButtons();
    setUpShortcuts();
    rebuildNavigationBar();
    renewPanelsIfNeeded();
}

void QBQueryBuilderWidget::setUpShortcuts() {
    const auto add = [this](const QKeySequence& keys, const std::function<void()>& act) {
        auto* shortcut = new QShortcut(keys, this);
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, act);
    };
    add(Qt::CTRL + Qt::Key_PageDown, [this] { turnTab(1); });
    add(Qt::CTRL + Qt::Key_PageUp, [this] { turnTab(-1); });
    add(Qt::Key_F6, [this] { goToPane(1); });
    add(Qt::SHIFT + Qt::Key_F6, [this] { goToPane(-1); });
    add(Qt::ALT + Qt::Key_Up, [this] {
        if (!isPopupInFront() && engine() != nullptr)
            goToLayer(std::max(0, engine()->currentTopLevelQueryComponentLayer() - 1));
    });
}

void QBQueryBuilderWidget::connectDiagram() {
    connect(ui->diagramPanel, &QBDiagramPanelWidget::signalExcludeInvalidConditionComponent, this,
            &QBQueryBuilderWidget::excludeInvalidComponent);
    connect(ui->diagramPanel, &QBDiagramPanelWidget::signalJumpToPanel, this,
            &QBQueryBuilderWidget::selectPanel);
}

void QBQueryBuilderWidget::connectPaneButtons() {
    const std::array<std::pair<QToolButton*, QWidget*>, 2> panes = {
        {{ui->objectTreeButton, ui->objectTreePanel}, {ui->previewButton, ui->previewContainer}}};
    for (const auto& [button, pane] : panes)
        connect(button, &QToolButton::clicked, this, [this, pane = pane] {
            m_layout->togglePane(pane);
            updateButtonIcons();
        });
}

void QBQueryBuilderWidget::connectDialogButtons() {
    const auto button = [this](QDialogButtonBox::StandardButton which) {
        return ui->buttonBox->button(which);
    };
    connect(button(QDialogButtonBox::Yes), &QPushButton::clicked, this,
            [this] { buildQuery(true); });
    connect(button(QDialogButtonBox::Ok), &QPushButton::clicked, this,
            [this] { buildQuery(false); });
    connect(button(QDialogButtonBox::Cancel), &QPushButton::clicked, this,
            &QBQueryBuilderWidget::cancelDialogButtonClicked);
}

void QBQueryBuilderWidget::localizeControls() {
    using Box = QDialogButtonBox;
    ui->buttonBox->button(Box::Yes)->setText(Tolk::localize(Tolk::TextBuildAndRun));
    ui->buttonBox->button(Box::Ok)->setText(Tolk::localize(Tolk::TextBuild));
    ui->buttonBox->button(Box::Cancel)->setText(Tolk::localize(Tolk::TextCancel));
    describe(ui->objectTreeButton, Tolk::TextToggleObjectTree);
    describe(ui->previewButton, Tolk::TextTogglePreview);
    ui->tabWidget->setAccessibleName(Tolk::localize(Tolk::TextClauses));
    if (m_diagramTabs != nullptr) m_diagramTabs->setTabText(0, Tolk::localize(Tolk::TextDiagram));
    for (QBTopLevelElementPanelWidget* panel : tabPanels())
        markTab(panel);
}

void QBQueryBuilderWidget::updateButtonIcons() {
    ui->objectTreeButton->setIcon(
        paneIcon(QStringLiteral("Left"), ui->objectTreePanel->isHidden()));
    ui->previewButton->setIcon(paneIcon(QStringLiteral("Right"), ui->previewContainer->isHidden()));
}

void QBQueryBuilderWidget::setEngine(QBEngine_LINUX* engine) {
    if (engine == nullptr) return;
    if (m_emitter) m_emitter->disconnect(this);
    m_engine = engine;
    m_emitter = engine->signalEmitter();
    enumeratePanelWidgets([engine](QBPanelWidget* panel) { panel->setEngine(engine); });
    renewPanelsIfNeeded();
    connectEngine();
    rebuildNavigationBar();
    m_history->setEngine(engine);
}

QBQueryHistory* QBQueryBuilderWidget::history() const {
    return m_history;
}

QUndoStack* QBQueryBuilderWidget::undoStack() const {
    return m_history->undoStack();
}

QBCanvasCommands* QBQueryBuilderWidget::canvasCommands() const {
    return ui->diagramPanel->commands();
}

QBEngine_LINUX* QBQueryBuilderWidget::engine() const {
    return m_emitter ? m_engine : nullptr;
}

void QBQueryBuilderWidget::connectEngine() {
    const QBEngineSignalEmitter* emitter = m_engine->signalEmitter();
    connect(emitter, &QBEngineSignalEmitter::uiReset, this, &QBQueryBuilderWidget::resetUi);
    connect(emitter, &QBEngineSignalEmitter::databaseTypeChanged, this,
            &QBQueryBuilderWidget::renewPanelsIfNeeded);
    connect(emitter, &QBEngineSignalEmitter::topLevelQueryComponentLayerChanged, this,
            &QBQueryBuilderWidget::rebuildNavigationBar);
}

void QBQueryBuilderWidget::resetUi() {
    if (ui->tabWidget->count() > 0) ui->tabWidget->setCurrentIndex(0);
}

void QBQueryBuilderWidget::renewPanelsIfNeeded() {
    deactivatePanels(nullptr);  // one that loses its tab must have no popup left
    // The tabs come and go one by one: that is no change of tab by the user.
    const QSignalBlocker blocker(ui->tabWidget);
    ui->tabWidget->clear();
    const QBDatabaseInfo info = engine() != nullptr ? engine()->databaseInfo() : QBDatabaseInfo();
    for (std::size_t i = 0; i < m_clauseTabs.size(); ++i) {
        if (hasClause(info, m_clauseTabs[i].element)) addTab(m_clauseTabs[i], obtainPanel(i));
    }
    enumeratePanelWidgets([this](QBPanelWidget* panel) {
        if (panel->engine() == nullptr) panel->setEngine(engine());
    });
    ui->tabWidget->setVisible(ui->tabWidget->count() > 0);
}

QBTopLevelElementPanelWidget* QBQueryBuilderWidget::obtainPanel(std::size_t tabIndex) {
    QBTopLevelElementPanelWidget*& panel = m_clausePanels[tabIndex];
    if (panel != nullptr) return panel;
    panel = m_clauseTabs[tabIndex].createPanel(ui->tabWidget);
    panel->setRelatedElements({m_clauseTabs[tabIndex].element});
    panel->setAccessibleName(QString::fromLatin1(m_clauseTabs[tabIndex].text));
    connect(panel, &QBTopLevelElementPanelWidget::signalIconNeedsUpdate, this,
            [this, panel] { markTab(panel); });
    return panel;
}

void QBQueryBuilderWidget::addTab(const ClauseTab& clauseTab, QBTopLevelElementPanelWidget* panel) {
    ui->tabWidget->addTab(panel, QString::fromLatin1(clauseTab.text));
    markTab(panel);
}

void QBQueryBuilderWidget::markTab(QBTopLevelElementPanelWidget* panel) {
    const int index = ui->tabWidget->indexOf(panel);
    if (index < 0) return;
    const QString warning =
        panel->hasInvalidComponents() ? Tolk::localize(Tolk::TextClauseHasProblems) : QString();
    const QString text = ui->tabWidget->tabText(index);
    ui->tabWidget->setTabIcon(index, panel->tabIcon());
    ui->tabWidget->setTabToolTip(index, warning);
    ui->tabWidget->tabBar()->setAccessibleTabName(
        index, warning.isEmpty() ? text : text + QLatin1String(": ") + warning);
}

std::vector<QBTopLevelElementPanelWidget*> QBQueryBuilderWidget::tabPanels() const {
    std::vector<QBTopLevelElementPanelWidget*> panels;
    for (int i = 0; i < ui->tabWidget->count(); ++i)
        panels.push_back(static_cast<QBTopLevelElementPanelWidget*>(ui->tabWidget->widget(i)));
    return panels;
}

QBTopLevelElementPanelWidget* QBQueryBuilderWidget::findPanel(
    TopLevelQueryComponentElementEnum element) const {
    for (QBTopLevelElementPanelWidget* panel : tabPanels())
        if (panel->firstRelatedElement() == element) return panel;
    return nullptr;
}

QTabWidget* QBQueryBuilderWidget::obtainDiagramTabs() {
    if (m_diagramTabs != nullptr) return m_diagramTabs;
    const QList<int> widths = ui->horizontalSplitter->sizes();
    m_diagramTabs = new QTabWidget;
    m_diagramTabs->setObjectName(QStringLiteral("diagramTabs"));
    m_diagramTabs->setDocumentMode(true);
    m_diagramTabs->setSizePolicy(ui->diagramPanel->sizePolicy());
    ui->horizontalSplitter->replaceWidget(ui->horizontalSplitter->indexOf(ui->diagramPanel),
                                          m_diagramTabs);
    m_diagramTabs->addTab(ui->diagramPanel, QString());
    m_diagramTabs->show();
    ui->horizontalSplitter->setSizes(widths);
    localizeControls();
    return m_diagramTabs;
}

void QBQueryBuilderWidget::selectPanel(TopLevelQueryComponentElementEnum element) {
    if (QWidget* panel = findPanel(element)) ui->tabWidget->setCurrentWidget(panel);
}

void QBQueryBuilderWidget::enumeratePanelWidgets(const std::function<void(QBPanelWidget*)>& visit) {
    const auto panels = findChildren<QBPanelWidget*>();
    for (QBPanelWidget* panel : panels)
        visit(panel);
}

bool QBQueryBuilderWidget::needShowBuildWarning() const {
    // Panels know of the layer that they show.
    if (Tools::Validation::hasFaultsInOtherLayers(engine())) return true;
    const auto panels = tabPanels();
    return std::any_of(panels.begin(), panels.end(), [](const QBTopLevelElementPanelWidget* panel) {
        return panel->hasInvalidComponents();
    });
}

void QBQueryBuilderWidget::excludeInvalidComponent(
    Component::SQL::SQLAbstractConditionComponent** componentRef) {
    auto* excluder = dynamic_cast<IQBInvalidExcluder*>(findPanel(ElementWhere));
    if (excluder != nullptr) excluder->excludeInvalidComponent(componentRef);
}

void QBQueryBuilderWidget::deactivatePanels(const QWidget* current) {
    for (QBTopLevelElementPanelWidget* panel : tabPanels())
        if (panel != current) panel->panelBecomeInactive();
}

void QBQueryBuilderWidget::goToLayer(int layer) {
    while (engine() != nullptr && layer < engine()->currentTopLevelQueryComponentLayer())
        engine()->popCurrentLayerTopLevelQueryComponent();
}

void QBQueryBuilderWidget::rebuildNavigationBar() {
    const int current = engine() != nullptr ? engine()->currentTopLevelQueryComponentLayer() : -1;
    QStringList names;
    for (int layer = 0; layer <= current; ++layer)
        names.append(QString::fromStdString(engine()->topLevelQueryComponentLayerName(layer)));
    const bool hadFocus = hasFocusIn(ui->navigationBar);
    ui->navigationBar->setLayerNames(names);
    ui->navigationBar->setHidden(current <= 0);
    if (hadFocus) focusClause();
}

// ---- keyboard

void QBQueryBuilderWidget::focusClause() {
    QWidget* panel = ui->tabWidget->currentWidget();
    if (panel == nullptr) return;
    auto* rows = qobject_cast<QBRowListPanelWidget*>(panel);
    (rows != nullptr ? rows->rowView() : panel)->setFocus(Qt::ShortcutFocusReason);
}

/// Turns the tabs that the focus is in; from elsewhere those of the clauses.
void QBQueryBuilderWidget::turnTab(int step) {
    QTabWidget* tabs = tabsAroundFocus();
    if (tabs == nullptr && !isPopupInFront()) tabs = ui->tabWidget;
    if (tabs == nullptr || tabs->count() == 0) return;
    tabs->setCurrentIndex((tabs->currentIndex() + step + tabs->count()) % tabs->count());
    if (tabs == ui->tabWidget) focusClause();
}

void QBQueryBuilderWidget::goToPane(int step) {
    if (isPopupInFront()) return;
    std::vector<QWidget*> panes = {ui->objectTreePanel, ui->diagramPanel, ui->previewContainer,
                                   ui->tabWidget};
    if (m_diagramTabs != nullptr) panes[diagramIndex] = m_diagramTabs;
    const int count = static_cast<int>(panes.size());
    const auto present = std::find_if(panes.begin(), panes.end(), hasFocusIn);
    int index = present == panes.end() ? (step > 0 ? -1 : 0)
                                       : static_cast<int>(std::distance(panes.begin(), present));
    for (int tried = 0; tried < count; ++tried) {
        index = (index + step + count) % count;
        if (focusPane(panes[static_cast<std::size_t>(index)])) return;
    }
}

/// Puts the focus where it was last in @p pane. False if nothing in it takes the focus.
bool QBQueryBuilderWidget::focusPane(QWidget* pane) {
    if (pane == ui->tabWidget) {
        focusClause();
        return hasFocusIn(pane);
    }
    QWidget* receiver = pane->focusWidget();
    if (receiver == nullptr || !isReachable(receiver)) {
        const auto inside = pane->findChildren<QWidget*>();
        const auto first = std::find_if(inside.begin(), inside.end(), isReachable);
        receiver = first == inside.end() ? nullptr : *first;
    }
    if (receiver != nullptr) receiver->setFocus(Qt::ShortcutFocusReason);
    return receiver != nullptr;
}

void QBQueryBuilderWidget::setSupportBuildAndRun(bool isSupported) {
    m_supportsBuildAndRun = isSupported;
    ui->buttonBox->button(QDialogButtonBox::Yes)->setVisible(isSupported);
}

bool QBQueryBuilderWidget::isDialogButtonBoxVisible() const {
    return !ui->buttonBox->isHidden();
}

void QBQueryBuilderWidget::setDialogButtonBoxVisible(bool isVisible) {
    ui->buttonBox->setVisible(isVisible);
}

void QBQueryBuilderWidget::setQueryPreviewPanel(QBAbstractQueryPreviewPanelWidget* panel) {
    if (panel == nullptr || panel == m_previewPanel) return;
    const std::unique_ptr<QWidget> replaced(std::exchange(m_previewPanel, panel));
    ui->previewLayout->addWidget(panel);
    panel->setEngine(engine());
}

void QBQueryBuilderWidget::buildQuery(bool run) {
    if (engine() == nullptr) return;
    Q_EMIT okDialogButtonClicked(QString::fromStdString(engine()->buildQuery()), run);
}

void QBQueryBuilderWidget::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    if (event->isAccepted()) Q_EMIT aboutToClose();
}

bool QBQueryBuilderWidget::event(QEvent* event) {
    const bool isHandled = QWidget::event(event);
    // The button box sets its own texts when the change of language comes to it, a moment ago.
    if (event->type() == QEvent::LanguageChange) {
        localizeControls();
        rebuildNavigationBar();
    }
    // A button box shows all of its buttons when it takes another style, which may be after this.
    if (event->type() == QEvent::StyleChange)
        QTimer::singleShot(0, this, [this] { setSupportBuildAndRun(m_supportsBuildAndRun); });
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        updateButtonIcons();
    return isHandled;
}

bool QBQueryBuilderWidget::focusNextPrevChild(bool next) {
    // Panels make widgets at any time, and Qt puts each new one at the end.
    arrangeTabOrder();
    return QWidget::focusNextPrevChild(next);
}

void QBQueryBuilderWidget::arrangeTabOrder() {
    QWidget* middle = ui->diagramPanel;
    if (m_diagramTabs != nullptr) middle = m_diagramTabs;
    const std::array<QWidget*, 8> areas = {ui->objectTreePanel,  middle,
                                           ui->previewContainer, ui->objectTreeButton,
                                           ui->navigationBar,    ui->previewButton,
                                           ui->tabWidget,        ui->buttonBox};
    std::array<std::vector<QWidget*>, 8> stops;
    for (QWidget* widget = nextInFocusChain(); widget != this;
         widget = widget->nextInFocusChain()) {
        if (!isTabStop(widget)) continue;
        for (std::size_t i = 0; i < areas.size(); ++i)
            if (areas[i] == widget || areas[i]->isAncestorOf(widget)) stops[i].push_back(widget);
    }
    QWidget* previous = nullptr;
    for (const std::vector<QWidget*>& area : stops)
        for (QWidget* widget : area) {
            if (previous != nullptr) setTabOrder(previous, widget);
            previous = widget;
        }
}

}  // namespace QB
