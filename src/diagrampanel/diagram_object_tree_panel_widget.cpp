#include "diagrampanel/diagram_object_tree_panel_widget.h"

#include <QKeyEvent>
#include <QMenu>
#include <QPointer>
#include <QShortcut>
#include <utility>

#include "diagrampanel/diagram_object_tree_item_delegate.h"
#include "diagrampanel/diagram_panel_widget.h"
#include "diagrampanel/object_tree_rows.h"
#include "engine/engine_linux.h"
#include "platform/tolk/tolk.h"
#include "ui_diagram_object_tree_panel_widget.h"

namespace QB {
namespace {

/// A pause in typing after which the filter looks.
constexpr int filterDelay = 150;  // ms

}  // namespace

QBDiagramObjectTreePanelWidget::QBDiagramObjectTreePanelWidget(QWidget* parent)
    : QBPanelWidget(parent)
    , ui(std::make_unique<Ui::QBDiagramObjectTreePanelWidget>())
    , m_filterDelay(new QTimer(this)) {
    ui->setupUi(this);
    setUpTree();
    setUpFilterLine();
    setUpShortcuts();
    retranslate();
    connect(this, &QBPanelWidget::engineSet, this, &QBDiagramObjectTreePanelWidget::connectEngine);
}

QBDiagramObjectTreePanelWidget::~QBDiagramObjectTreePanelWidget() = default;

void QBDiagramObjectTreePanelWidget::setUpTree() {
    QTreeWidget* tree = ui->diagramPaneObjectTreeWidget;
    tree->setItemDelegate(new QBDiagramObjectTreeItemDelegate(this));
    tree->installEventFilter(this);
    connect(tree, &QWidget::customContextMenuRequested, this,
            &QBDiagramObjectTreePanelWidget::showCellContextMenu);
    ui->noMatchLabel->setAttribute(Qt::WA_TransparentForMouseEvents);
    ui->noMatchLabel->hide();
    ui->overlayLoadingWidget->hide();

    m_rows = std::make_unique<ObjectTreeRows>(
        tree,
        [this](const auto* candidate, auto first, auto count) {
            return engine() ? engine()->childrenSnapshot(candidate, first, count)
                            : ObjectTreeBuilder::Records();
        },
        [this](const auto& candidates) { loadMissing(candidates); });
    connect(m_rows.get(), &ObjectTreeRows::topLevelCreated, this,
            [this] { setLoadingWholeTree(false); });
    connect(m_rows.get(), &ObjectTreeRows::wholeTreeCreated, this,
            &QBDiagramObjectTreePanelWidget::showCurrentSchema);
    connect(m_rows.get(), &ObjectTreeRows::settled, this, [this] {
        ui->noMatchLabel->setVisible(m_rows->isFilterWithoutMatch());
        followKeys();
        Q_EMIT signalTreeSettled();
    });
}

void QBDiagramObjectTreePanelWidget::setUpFilterLine() {
    ui->filterLineEdit->installEventFilter(this);
    m_filterDelay->setSingleShot(true);
    m_filterDelay->setInterval(filterDelay);
    connect(ui->filterLineEdit, &QLineEdit::textChanged, m_filterDelay,
            qOverload<>(&QTimer::start));
    connect(ui->filterLineEdit, &QLineEdit::textChanged, this, [this] { m_keysAhead.clear(); });
    connect(m_filterDelay, &QTimer::timeout, this, &QBDiagramObjectTreePanelWidget::applyFilter);
}

void QBDiagramObjectTreePanelWidget::setUpShortcuts() {
    addShortcut(this, QKeySequence(Qt::Key_F5), [this] { refreshCurrentOrAll(); });
    addShortcut(this, QKeySequence::Find, [this] { find(); });
}

/// Anywhere in @p where, which owns the result.
QShortcut* QBDiagramObjectTreePanelWidget::addShortcut(QWidget* where, const QKeySequence& keys,
                                                       const std::function<void()>& action) {
    auto* shortcut = new QShortcut(keys, where);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, this, action);
    return shortcut;
}

void QBDiagramObjectTreePanelWidget::find() {
    ui->filterLineEdit->setFocus(Qt::ShortcutFocusReason);
    ui->filterLineEdit->selectAll();
}

void QBDiagramObjectTreePanelWidget::retranslate() {
    ui->diagramPaneObjectTreeWidget->setAccessibleName(Tolk::localize(Tolk::TextObjectTree));
    ui->filterLineEdit->setAccessibleName(Tolk::localize(Tolk::TextFilterObjects));
    ui->filterLineEdit->setPlaceholderText(Tolk::localize(Tolk::TextFilterObjects));
    ui->filterLineEdit->setToolTip(Tolk::localize(Tolk::TextFilterObjectsHint));
    ui->noMatchLabel->setText(Tolk::localize(Tolk::TextNoMatchingObject));
}

void QBDiagramObjectTreePanelWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LanguageChange) retranslate();
    QBPanelWidget::changeEvent(event);
}

// ---- engine ---------------------------------------------------------------------------------

void QBDiagramObjectTreePanelWidget::connectEngine() {
    const QBEngineSignalEmitter* emitter = engine()->signalEmitter();
    using Emitter = QBEngineSignalEmitter;
    connect(emitter, &Emitter::identifierCandidateChildrenUpdateBegun, this,
            [this](QBEngine*, QBIdentifierCandidate* candidate) {
                startProcessingItem(engine(), candidate);
            });
    connect(emitter, &Emitter::identifierCandidateChildrenUpdateEnded, this,
            [this](QBEngine*, QBIdentifierCandidate* candidate) {
                reloadItemSubtree(engine(), candidate);
            });
    connect(emitter, &Emitter::currentSchemaChanged, this,
            [this] { ui->diagramPaneObjectTreeWidget->viewport()->update(); });
    connect(emitter, &Emitter::databaseTypeChanged, this,
            [this] { m_rows->setDatabaseType(engine()->databaseType()); });
    // A load that was running will not report its end any more.
    connect(emitter, &QObject::destroyed, this, [this] { setLoadingWholeTree(false); });

    m_rows->setDatabaseType(engine()->databaseType());
    m_rows->forgetAll();
    setLoadingWholeTree(false);
    reloadItemSubtree(engine(), nullptr);
}

void QBDiagramObjectTreePanelWidget::startProcessingItem(QBEngine_LINUX* engine,
                                                         QBIdentifierCandidate* candidate) {
    if (!engine || engine != this->engine()) return;
    const QString key = obtainIdentifierCandidateKey(candidate);
    if (key.isEmpty()) setLoadingWholeTree(true);
    m_rows->loadBegun(key);
}

void QBDiagramObjectTreePanelWidget::reloadItemSubtree(QBEngine_LINUX* engine,
                                                       QBIdentifierCandidate* candidate) {
    if (!engine || engine != this->engine()) return;
    const QString key = obtainIdentifierCandidateKey(candidate);
    m_rows->loadEnded(key, key.isEmpty() ? nullptr : candidate);
}

QString QBDiagramObjectTreePanelWidget::obtainIdentifierCandidateKey(
    QBIdentifierCandidate* candidate) {
    QString key;
    if (!engine()) return key;
    for (const std::string& name : engine()->candidatePath(candidate))
        key = objectTreeKey(key, QString::fromStdString(name));
    return key;
}

bool QBDiagramObjectTreePanelWidget::isSettled() const {
    return m_rows->isSettled() && !m_filterDelay->isActive();
}

void QBDiagramObjectTreePanelWidget::setLoadingWholeTree(bool isLoading) {
    ui->overlayLoadingWidget->setVisible(isLoading);
    if (isLoading == !isEnabled()) return;
    if (isLoading) {
        QWidget* focused = window()->focusWidget();
        m_focusedBefore = focused && isAncestorOf(focused) ? focused : nullptr;
        setEnabled(false);
        m_focusMeanwhile = window()->focusWidget();
        return;
    }
    setEnabled(true);
    // A disabled widget loses the focus; it gets it back unless the user has gone elsewhere.
    if (!m_focusedBefore || window()->focusWidget() != m_focusMeanwhile) return;
    if (m_focusedBefore == ui->diagramPaneObjectTreeWidget) return m_rows->focusTree();
    m_focusedBefore->setFocus();
}

void QBDiagramObjectTreePanelWidget::showCurrentSchema() {
    if (!engine()) return;
    const QString schema = QString::fromStdString(engine()->currentSchema());
    const ObjectTreeItem* row = m_rows->find(objectTreeKey(QString(), schema));
    if (row && row->treeWidget()) ui->diagramPaneObjectTreeWidget->scrollToItem(row);
}

void QBDiagramObjectTreePanelWidget::loadMissing(
    const std::vector<QBIdentifierCandidate*>& candidates) {
    for (QBIdentifierCandidate* candidate : candidates)
        requestChildren(candidate, false);
    if (engine()) engine()->refreshRequestedIdentifierCandidateChildren(true);
}

void QBDiagramObjectTreePanelWidget::requestChildren(QBIdentifierCandidate* candidate, bool force) {
    if (!engine() || !engine()->isCandidateInTree(candidate)) return;
    engine()->addRefreshIdentifierCandidateChildrenRequest(candidate, force);
}

void QBDiagramObjectTreePanelWidget::slotRefreshSelectedItem() {
    const QTreeWidgetItem* current = ui->diagramPaneObjectTreeWidget->currentItem();
    if (!current || !engine()) return;
    requestChildren(candidateAddress(current), true);
    engine()->refreshRequestedIdentifierCandidateChildren(true);
}

void QBDiagramObjectTreePanelWidget::refreshCurrentOrAll() {
    if (ui->diagramPaneObjectTreeWidget->currentItem()) return slotRefreshSelectedItem();
    if (!engine()) return;
    engine()->addRefreshRootIdentifierCandidateChildrenRequest(true);
    engine()->refreshRequestedIdentifierCandidateChildren(true);
}

// ---- diagram --------------------------------------------------------------------------------

void QBDiagramObjectTreePanelWidget::setPartnerDiagram(QBDiagramPanelWidget* diagram) {
    m_partnerDiagram = diagram;
    delete m_findFromDiagram;
    if (diagram) m_findFromDiagram = addShortcut(diagram, QKeySequence::Find, [this] { find(); });
}

QBDiagramPanelWidget* QBDiagramObjectTreePanelWidget::partnerDiagram() const {
    return m_partnerDiagram;
}

void QBDiagramObjectTreePanelWidget::on_diagramPaneObjectTreeWidget_itemDoubleClicked(
    QTreeWidgetItem* item, int) {
    if (!item) return;
    if (canAddToDiagram(item)) return addToDiagram(item);
    // What cannot be added opens and closes.
    const bool canOpen =
        item->childCount() > 0 || item->childIndicatorPolicy() == QTreeWidgetItem::ShowIndicator;
    if (canOpen) item->setExpanded(!item->isExpanded());
}

bool QBDiagramObjectTreePanelWidget::canAddToDiagram(const QTreeWidgetItem* item) const {
    QBIdentifierCandidate* candidate = candidateAddress(item);
    return candidate && engine() && engine()->isCandidateInTree(candidate) &&
           isTableLike(engine()->candidateSnapshot(candidate).type);
}

void QBDiagramObjectTreePanelWidget::addToDiagram(const QTreeWidgetItem* item) {
    if (m_partnerDiagram && canAddToDiagram(item))
        m_partnerDiagram->addIdentifierCandidateToDiagram(candidateAddress(item));
}

void QBDiagramObjectTreePanelWidget::showCellContextMenu(const QPoint& position) {
    QTreeWidget* tree = ui->diagramPaneObjectTreeWidget;
    const bool hasOneRow = tree->selectionModel()->selectedRows().size() == 1;
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* refresh = menu->addAction(Tolk::localize(Tolk::TextRefresh), this,
                                       &QBDiagramObjectTreePanelWidget::slotRefreshSelectedItem);
    refresh->setEnabled(hasOneRow);
    QAction* add = menu->addAction(Tolk::localize(Tolk::TextAddToQuery), this,
                                   [this, tree] { addToDiagram(tree->currentItem()); });
    add->setEnabled(hasOneRow && m_partnerDiagram && canAddToDiagram(tree->currentItem()));
    menu->popup(tree->viewport()->mapToGlobal(position));
}

// ---- keyboard -------------------------------------------------------------------------------

bool QBDiagramObjectTreePanelWidget::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto* press = static_cast<QKeyEvent*>(event);
        const bool isPlain = !(press->modifiers() & ~Qt::KeypadModifier);
        if (watched == ui->diagramPaneObjectTreeWidget && treeKeyPressed(press->key(), isPlain))
            return true;
        if (watched == ui->filterLineEdit && isPlain && filterKeyPressed(press->key())) return true;
    }
    return QBPanelWidget::eventFilter(watched, event);
}

bool QBDiagramObjectTreePanelWidget::treeKeyPressed(int key, bool isPlain) {
    QTreeWidgetItem* current = ui->diagramPaneObjectTreeWidget->currentItem();
    // Of itself the tree would open, and so load, every row below the current one.
    if (key == Qt::Key_Asterisk) {
        if (current) current->setExpanded(true);
        return true;
    }
    if (!isPlain || (key != Qt::Key_Return && key != Qt::Key_Enter)) return false;
    on_diagramPaneObjectTreeWidget_itemDoubleClicked(current, 0);
    return true;
}

bool QBDiagramObjectTreePanelWidget::filterKeyPressed(int key) {
    switch (key) {
        case Qt::Key_Escape:
            m_keysAhead.clear();
            // Without a text the key belongs to the window, which may want to close.
            if (ui->filterLineEdit->text().isEmpty()) return false;
            ui->filterLineEdit->clear();
            applyFilter();
            return true;
        case Qt::Key_Down:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            m_keysAhead.push_back(key);
            applyFilter();
            followKeys();
            return true;
        default:
            return false;
    }
}

void QBDiagramObjectTreePanelWidget::applyFilter() {
    m_filterDelay->stop();
    const QString text = ui->filterLineEdit->text();
    if (text == m_appliedFilter) return;
    m_appliedFilter = text;
    m_rows->setFilter(text);
}

/// The first key leaves the filter line, the others mean the row that it leads to: so all wait
/// until the filter has found that. What the user turns to meanwhile comes before them.
void QBDiagramObjectTreePanelWidget::followKeys() {
    if (m_keysAhead.empty() || !isSettled()) return;
    const std::vector<int> keys = std::exchange(m_keysAhead, {});
    if (window()->focusWidget() != ui->filterLineEdit) return;
    leaveFilterLine();
    const QPointer<QTreeWidget> tree(ui->diagramPaneObjectTreeWidget);
    for (std::size_t i = 1; i < keys.size() && tree; ++i) {
        QKeyEvent press(QEvent::KeyPress, keys[i], Qt::NoModifier);
        QCoreApplication::sendEvent(tree, &press);
    }
}

void QBDiagramObjectTreePanelWidget::leaveFilterLine() {
    QTreeWidget* tree = ui->diagramPaneObjectTreeWidget;
    tree->setFocus(Qt::TabFocusReason);
    tree->setCurrentItem(rowAfterFilterLine());
    if (tree->currentItem()) tree->currentItem()->setSelected(true);
}

/// The current row, or the first one found if the filter did not find that. Null without rows.
QTreeWidgetItem* QBDiagramObjectTreePanelWidget::rowAfterFilterLine() const {
    const QTreeWidget* tree = ui->diagramPaneObjectTreeWidget;
    const auto isFound = [this](const QTreeWidgetItem* row) {
        return row && row->text(0).contains(m_appliedFilter, Qt::CaseInsensitive);
    };
    if (isFound(tree->currentItem())) return tree->currentItem();
    for (QTreeWidgetItem* row = tree->topLevelItem(0); row; row = tree->itemBelow(row))
        if (isFound(row)) return row;
    return tree->currentItem() ? tree->currentItem() : tree->topLevelItem(0);
}

}  // namespace QB
