#include "rows/row_list_panel_widget.h"

#include <QEvent>
#include <QMenu>
#include <QMetaMethod>
#include <QScopedValueRollback>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "engine/engine_linux.h"
#include "engine/engine_signal_emitter.h"
#include "layouts/components_list_layout_impl.h"
#include "model/notification_names.h"
#include "rows/nested_list_row_widget.h"
#include "rows/row_interfaces.h"
#include "widgets/menu_search.h"
#include "widgets/visible_edges.h"

namespace QB {
namespace {

using Component::AbstractQueryComponent;
using Item = QBRowListPanelWidget::Item;
using Items = QBRowListPanelWidget::Items;
using Elements = QSet<TopLevelQueryComponentElementEnum>;

template <typename Capability>
bool has(QBNestedListRowWidget* widget) {
    return dynamic_cast<Capability*>(widget) != nullptr;
}

/// What a row can do, the signal that asks for it, and what the panel then does.
struct Capability {
    bool (*isIn)(QBNestedListRowWidget*);
    const char* signal;
    void (QBRowListPanelWidget::*slot)();
};

const Capability capabilities[] = {
    {has<IQBNestedListRowWidgetAddRowSupported>, "addRowButtonClicked()",
     &QBRowListPanelWidget::slotAddRow},
    {has<IQBNestedListRowWidgetAddBracketSupported>, "addBracketButtonClicked()",
     &QBRowListPanelWidget::slotAddBracketRow},
    {has<IQBNestedListRowWidgetDeleteSupported>, "deleteButtonClicked()",
     &QBRowListPanelWidget::slotRemoveSelectedRow},
    {has<IQBNestedListRowWidgetEditAliasSupported>, "aliasLabelClicked()",
     &QBRowListPanelWidget::slotEditSelectedRowAlias},
    {has<IQBNestedListRowWidgetNegateSupported>, "negateToggleTriggered()",
     &QBRowListPanelWidget::slotEditSelectedRowNegator},
    {has<IQBNestedListRowWidgetEditLogicGateSupported>, "logicGateLabelClicked()",
     &QBRowListPanelWidget::slotEditSelectedRowOperator},
};

/// Compares addresses only: those of @p shown may be those of components that are gone.
bool isSameRow(const Item& shown, const Item& fresh) {
    return shown.component == fresh.component && shown.level == fresh.level &&
           shown.isPlaceholder == fresh.isPlaceholder &&
           (shown.partnerItem == nullptr) == (fresh.partnerItem == nullptr);
}

bool haveSameRows(const Items& shown, const Items& fresh) {
    return std::equal(shown.begin(), shown.end(), fresh.begin(), fresh.end(),
                      [](const Item* a, const Item* b) { return isSameRow(*a, *b); });
}

/// The key of the row at @p row of @p items, whose components exist.
QBRowKey keyOf(const Items& items, std::size_t row) {
    const Item& item = *items[row];
    if (item.component != nullptr) return {QBRowKey::Component, item.component->id()};
    if (!item.isPlaceholder) return {QBRowKey::CloseBracket, item.partnerItem->component->id()};
    const AbstractQueryComponent* bracket = row > 0 ? items[row - 1]->component : nullptr;
    return {QBRowKey::Placeholder, bracket == nullptr ? -1 : bracket->id()};
}

}  // namespace

class QBRowListPanelWidget::Private {
public:
    explicit Private(QBRowListPanelWidget* owner) : q(owner) {}

    void connectEngine();
    void engineGone();
    void changeLayer();
    void catchUp(const std::function<int()>& rowAfter);
    bool check();
    void renewLayout();
    bool isOfStatement() const;
    bool isLayoutCurrent() const;
    void adopt(std::unique_ptr<QBComponentsListLayout::Impl> layout);
    void letRowsGo();
    void refreshWhenShown(bool rebuildLayout);
    void closeWhatHasGone();
    AbstractQueryComponent* findComponent(QBRowKey key) const;
    void tellFocus(int row);
    void hideFocus();
    void tell(AbstractQueryComponent* component, bool isFocused);
    void takeFocus(AbstractQueryComponent* component);

    QBRowListPanelWidget* const q;
    bool isStale = false;  // the rows were let go while the panel was hidden
    bool isChecking = false;
    int rowToSelect = -1;
    QBRowKey focused;           // what tellFocus() told last, or took
    bool isFocusTaken = false;  // from another panel
    // The statement that the rows are of; compared, never dereferenced.
    const void* statement = nullptr;
    long statementId = -1;
    QPointer<QMenu> menu;
    QTimer candidateTimer;

    // What notifications came during an edit of the panel.
    bool isNotified = false;
    bool isForeign = false;
    bool isLayerChanged = false;
    Elements elements;
};

// Keeping in step with the engine

void QBRowListPanelWidget::Private::connectEngine() {
    const QBEngineSignalEmitter* emitter = q->engine()->signalEmitter();
    QObject::connect(emitter, &QObject::destroyed, q, [this] { engineGone(); });
    QObject::connect(emitter, &QBEngineSignalEmitter::identifierCandidateChildrenUpdateEnded, q,
                     [this] { candidateTimer.start(0); });
    QObject::connect(emitter, &QBEngineSignalEmitter::currentSchemaChanged, q, [this] {
        if (!check()) return;
        refreshWhenShown(true);
        Q_EMIT q->signalIconNeedsUpdate();
    });
    QObject::connect(
        emitter, &QBEngineSignalEmitter::componentFocusChanged, q,
        [this](QBEngine*, AbstractQueryComponent* component, bool isFocused, void* sender) {
            if (isFocused && sender != q) takeFocus(component);
        });
    changeLayer();
}

void QBRowListPanelWidget::Private::engineGone() {
    q->cancelPopup();
    candidateTimer.stop();
    focused = QBRowKey();
    q->adjustLayers(-1);
    if (!check()) return;
    q->refreshUI(true);
    Q_EMIT q->signalIconNeedsUpdate();
}

void QBRowListPanelWidget::Private::changeLayer() {
    q->cancelPopup();
    focused = QBRowKey();
    q->adjustLayers(q->engine()->currentTopLevelQueryComponentLayer());
    if (!check()) return;
    refreshWhenShown(true);
    q->m_view->ensureCurrentRow();
    Q_EMIT q->signalIconNeedsUpdate();
}

/// A check can repair the statement, and who is told of that destroy the panel: false then.
bool QBRowListPanelWidget::Private::check() {
    if (isChecking) return true;
    const QPointer<QBRowListPanelWidget> self(q);
    isChecking = true;
    q->renewRoot();
    q->checkInvalidComponents();
    if (!self) return false;
    isChecking = false;
    return true;
}

/// Shows what an edit of the panel has changed, told of or not.
void QBRowListPanelWidget::Private::catchUp(const std::function<int()>& rowAfter) {
    const bool wasNotified = std::exchange(isNotified, false);
    const bool wasForeign = std::exchange(isForeign, false);
    const Elements changed = wasNotified ? std::exchange(elements, {}) : Elements{q->element()};
    const bool needsCheck = q->needsCheck(wasForeign ? nullptr : q, changed);
    q->m_isModifying = false;
    if (std::exchange(isLayerChanged, false)) return changeLayer();
    if (wasForeign) renewLayout();
    rowToSelect = rowAfter ? rowAfter() : -1;
    if (needsCheck && !check()) return;
    q->refreshUI(false);
    Q_EMIT q->signalIconNeedsUpdate();
}

void QBRowListPanelWidget::Private::adopt(std::unique_ptr<QBComponentsListLayout::Impl> layout) {
    const QBEngine* engine = q->engine();
    const auto* current = engine == nullptr ? nullptr : engine->currentTopLevelQueryComponent();
    statement = current;
    statementId = current == nullptr ? -1 : current->id();
    q->m_layout.setImplementation(std::move(layout));
}

void QBRowListPanelWidget::Private::renewLayout() {
    q->renewRoot();
    adopt(q->createLayout());
}

/// Else the components of the rows may have gone with their statement.
bool QBRowListPanelWidget::Private::isOfStatement() const {
    const QBEngine* engine = q->engine();
    const auto* current = engine == nullptr ? nullptr : engine->currentTopLevelQueryComponent();
    return current != nullptr && statement == current && statementId == current->id();
}

/// A host that notifies later leaves rows of components that an edit has replaced.
bool QBRowListPanelWidget::Private::isLayoutCurrent() const {
    if (isStale || !isOfStatement()) return false;
    q->renewRoot();
    const auto layout = q->createLayout();
    if (layout == nullptr || !haveSameRows(q->m_layout.items(), layout->items())) return false;
    for (std::size_t row = 0; row < layout->items().size(); ++row) {
        if (keyOf(layout->items(), row) != q->m_view->shownKey(static_cast<int>(row))) return false;
    }
    return true;
}

/// Nobody sees them, or their components may have gone; the next refresh brings them back.
void QBRowListPanelWidget::Private::letRowsGo() {
    isStale = true;
    q->m_view->releaseRows();
    q->m_layout.setImplementation(nullptr);
}

void QBRowListPanelWidget::Private::refreshWhenShown(bool rebuildLayout) {
    if (q->isVisible()) return q->refreshUI(rebuildLayout);
    letRowsGo();
    if (menu && menu->isVisible()) menu->close();
    if (q->isPopupOpen() && q->popupRow().isValid()) q->cancelPopup();
}

void QBRowListPanelWidget::Private::closeWhatHasGone() {
    if (menu && menu->isVisible()) menu->close();
    if (!q->isPopupOpen()) return;
    const QBRowKey key = q->popupRow();
    if (key.isValid() && q->findRow(key) < 0) q->cancelPopup();
}

// The component that has the focus

/// Null also while an edit of the panel is announced, when its rows are not those of the clause.
AbstractQueryComponent* QBRowListPanelWidget::Private::findComponent(QBRowKey key) const {
    if (q->m_isModifying || !isOfStatement()) return nullptr;
    const Item* item = key.part == QBRowKey::Component ? q->itemAt(q->findRow(key)) : nullptr;
    return item == nullptr ? nullptr : item->component;
}

/// Tells that the row has the focus, and which one has not any more. -1: none has.
void QBRowListPanelWidget::Private::tellFocus(int row) {
    if (q->engine() == nullptr) return;
    const QBRowKey earlier = std::exchange(focused, q->m_view->shownKey(row));
    if (earlier == focused) return;
    isFocusTaken = false;
    tell(findComponent(earlier), false);
    tell(findComponent(focused), true);
}

/// What another panel has focused stays so there.
void QBRowListPanelWidget::Private::hideFocus() {
    if (!isFocusTaken) return tellFocus(-1);
    isFocusTaken = false;
    focused = QBRowKey();
}

void QBRowListPanelWidget::Private::tell(AbstractQueryComponent* component, bool isFocused) {
    if (component == nullptr || q->engine() == nullptr) return;
    const QBNotificationParameters parameters = {{"component", static_cast<void*>(component)},
                                                 {"focused", isFocused ? 1 : 0},
                                                 {"sender", static_cast<void*>(q)}};
    q->engine()->notifyChange(Notification::componentFocusChanged, &parameters);
}

/// Another panel has told of the focus; that need not be told again.
void QBRowListPanelWidget::Private::takeFocus(AbstractQueryComponent* component) {
    const Items& items = q->m_layout.items();
    const auto found = std::find_if(items.begin(), items.end(), [component](const Item* item) {
        return component != nullptr && item->component == component;
    });
    if (found == items.end()) return;
    const int row = static_cast<int>(found - items.begin());
    const QBRowKey earlier = std::exchange(focused, q->m_view->shownKey(row));
    q->m_view->selectOnly(row);  // tellFocus() finds nothing new
    if (earlier == focused) return;
    isFocusTaken = true;
    tell(findComponent(earlier), false);
}

// The panel

QBRowListPanelWidget::QBRowListPanelWidget(QWidget* parent)
    : QBTopLevelElementPanelWidget(parent), d(std::make_unique<Private>(this)) {
    d->candidateTimer.setSingleShot(true);
    connect(&d->candidateTimer, &QTimer::timeout, this, &QBRowListPanelWidget::updateMarks);
    connect(this, &QBPanelWidget::engineSet, this, [this] { d->connectEngine(); });
}

QBRowListPanelWidget::~QBRowListPanelWidget() {
    if (m_view != nullptr) m_view->setRowProvider(nullptr);
    // From within one of its own actions the menu has to outlive the panel.
    if (!d->menu) return;
    d->menu->setParent(nullptr, d->menu->windowFlags());
    d->menu->close();
    d->menu->deleteLater();
}

void QBRowListPanelWidget::setupRows(QBNestedListTableView* view) {
    m_view = view;
    view->setRowProvider(this);
    using View = QBNestedListTableView;
    connect(view, &View::addRequested, this, &QBRowListPanelWidget::slotAddRow);
    connect(view, &View::removeRequested, this, &QBRowListPanelWidget::slotRemoveSelectedRow);
    connect(view, &View::moveUpRequested, this, &QBRowListPanelWidget::slotMoveUpSelectedRow);
    connect(view, &View::moveDownRequested, this, &QBRowListPanelWidget::slotMoveDownSelectedRow);
    connect(view, &View::menuRequested, this, &QBRowListPanelWidget::showCellContextMenu);
    connect(view, &View::currentRowChosen, this, [this](int row) { d->tellFocus(row); });
    connect(view, &View::selectionChosen, this, [this] { rowsRefreshed(); });
}

void QBRowListPanelWidget::refreshUI(bool rebuildLayout) {
    d->isStale = false;
    if (rebuildLayout || m_layout.implementation() == nullptr) d->renewLayout();
    m_view->refreshRows(std::exchange(d->rowToSelect, -1));
    d->closeWhatHasGone();
    rowsRefreshed();
}

void QBRowListPanelWidget::relatedElementModified(void* sender, const Elements& elements) {
    if (m_isModifying) {
        d->isNotified = true;
        d->isForeign |= sender != this;
        if (sender != this) d->letRowsGo();
        d->elements |= elements;
        return;
    }
    if (needsCheck(sender, elements) && !d->check()) return;
    // The repair of a check is announced while what set it off is not shown yet.
    d->refreshWhenShown(sender != this || d->isChecking);
    Q_EMIT signalIconNeedsUpdate();
}

void QBRowListPanelWidget::topLevelQueryComponentLayerChanged(
    Component::AbstractTopLevelQueryComponent*) {
    if (m_isModifying) {
        d->isLayerChanged = true;
        d->letRowsGo();
        return;
    }
    d->changeLayer();
}

void QBRowListPanelWidget::panelBecomeInactive() {}

void QBRowListPanelWidget::updateMarks() {
    if (!d->check()) return;
    m_view->updateRowWidgets();
    Q_EMIT signalIconNeedsUpdate();
}

void QBRowListPanelWidget::changeEvent(QEvent* event) {
    QBTopLevelElementPanelWidget::changeEvent(event);
    // The rows read their own texts anew; what the panel says in them comes from here.
    if (event->type() == QEvent::LanguageChange && m_view != nullptr) m_view->updateRowWidgets();
}

void QBRowListPanelWidget::showEvent(QShowEvent* event) {
    QBTopLevelElementPanelWidget::showEvent(event);
    if (d->isStale) refreshUI(true);
    if (!event->spontaneous() && m_view != nullptr) d->tellFocus(m_view->currentRow());
}

void QBRowListPanelWidget::hideEvent(QHideEvent* event) {
    QBTopLevelElementPanelWidget::hideEvent(event);
    if (!event->spontaneous()) d->hideFocus();
}

// Rows

int QBRowListPanelWidget::rowCount() const {
    return static_cast<int>(m_layout.items().size());
}

QBRowKey QBRowListPanelWidget::rowKey(int row) const {
    if (itemAt(row) == nullptr) return {};
    return keyOf(m_layout.items(), static_cast<std::size_t>(row));
}

int QBRowListPanelWidget::findRow(QBRowKey key) const {
    for (int row = 0; row < rowCount(); ++row) {
        if (rowKey(row) == key) return row;
    }
    return -1;
}

void QBRowListPanelWidget::updateRowWidget(QBNestedListRowWidget* widget, int row) {
    const Item* item = itemAt(row);
    if (item == nullptr) return;
    widget->setIndentLevel(item->level);
    // A close bracket shows the bracket that it closes.
    const Item* shown = item->partnerItem != nullptr ? item->partnerItem : item;
    widget->setComponent(shown->component);
    markRow(widget, *item);
}

void QBRowListPanelWidget::rowWidgetCreated(QBNestedListRowWidget* widget) {
    const QMetaObject* panelType = &QBRowListPanelWidget::staticMetaObject;
    const QMetaMethod slot = panelType->method(panelType->indexOfSlot("callSlotOfSender()"));
    for (const Capability& capability : capabilities) {
        if (!capability.isIn(widget)) continue;
        const QMetaObject* type = widget->metaObject();
        connect(widget, type->method(type->indexOfSignal(capability.signal)), this, slot);
    }
}

void QBRowListPanelWidget::callSlotOfSender() {
    const auto* widget = qobject_cast<QBNestedListRowWidget*>(sender());
    if (widget == nullptr) return;
    const QByteArray signal = widget->metaObject()->method(senderSignalIndex()).methodSignature();
    for (const Capability& capability : capabilities) {
        if (signal == capability.signal && chooseRowOf(widget)) return (this->*capability.slot)();
    }
}

bool QBRowListPanelWidget::chooseRowOf(const QWidget* widget) {
    const int row = m_view->rowOf(widget);
    m_view->selectOnly(row);
    return row >= 0;
}

TopLevelQueryComponentElementEnum QBRowListPanelWidget::element() const {
    return static_cast<TopLevelQueryComponentElementEnum>(firstRelatedElement());
}

Item* QBRowListPanelWidget::itemAt(int row) const {
    if (row < 0 || row >= rowCount()) return nullptr;
    return m_layout.items()[static_cast<std::size_t>(row)];
}

Items QBRowListPanelWidget::selectedItems() const {
    Items items;
    for (const int row : m_view->selectedRowNumbers()) {
        if (Item* item = itemAt(row)) items.push_back(item);
    }
    return items;
}

// What the user does

bool QBRowListPanelWidget::mayAct() {
    const QBEngine* const current = engine();
    if (m_isModifying || isPopupOpen() || current == nullptr || current->isParsingQuery())
        return false;
    if (current->currentTopLevelQueryComponent() == nullptr) return false;
    if (!d->isLayoutCurrent()) refreshUI(true);
    return true;
}

void QBRowListPanelWidget::applyOwnEdit(const std::function<void()>& edit,
                                        const std::function<int()>& rowAfter) {
    if (m_isModifying) return;
    const QPointer<QBRowListPanelWidget> self(this);
    m_isModifying = true;
    edit();
    if (!self) return;
    if (engine() != nullptr) return d->catchUp(rowAfter);
    m_isModifying = false;
    d->engineGone();
}

void QBRowListPanelWidget::popupMenu(QMenu* menu, const QPoint& position) {
    if (menu->parentWidget() != this) menu->setParent(this, menu->windowFlags());
    connect(menu, &QMenu::aboutToHide, menu, &QObject::deleteLater);
    d->menu = menu;
    letTypingFindEntries(menu);
    showEdges(menu);
    menu->popup(m_view->viewport()->mapToGlobal(position));
}

}  // namespace QB
