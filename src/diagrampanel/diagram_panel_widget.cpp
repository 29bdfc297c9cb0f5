#include "diagrampanel/diagram_panel_widget.h"

#include <QButtonGroup>
#include <QDropEvent>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <mutex>
#include <utility>

#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/drawer/diagram_drawer_linux.h"
#include "canvas/drawer/diagram_hint_widget.h"
#include "canvas/view/lumo_ui_view.h"
#include "diagrampanel/diagram_callbacks.h"
#include "diagrampanel/diagram_sync.h"
#include "diagrampanel/item_fields.h"
#include "diagrampanel/object_tree_item.h"
#include "diagrampanel/pending_diagram_items.h"
#include "engine/engine_linux.h"
#include "layouts/source_tree_surgery.h"
#include "model/names.h"
#include "platform/lumo/lumo_control.h"
#include "platform/tolk/tolk.h"
#include "tools/foreign_key_joins.h"
#include "tools/identifier_tools.h"
#include "tools/selection_tools.h"
#include "tools/source_edits.h"
#include "tools/source_field_lists.h"
#include "tools/validation_scope.h"
#include "ui_diagram_panel_widget.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;
using DiagramLumo::QBLumoContext;
using Lock = std::lock_guard<std::recursive_mutex>;

namespace {

constexpr QPoint noDropPoint(-1, -1);
constexpr int tableRelation = 1;
constexpr int fieldRelation = 2;

/// Half goes away from zero.
QPoint rounded(const QPointF& position) {
    return {static_cast<int>(std::lround(position.x())),
            static_cast<int>(std::lround(position.y()))};
}

bool isInStatement(SQLSelectStmtComponent* statement, const SQLAbstractSourceComponent* source,
                   long id) {
    return statement && !SourceTree::pathToValue(&statement->sourceExpr->root, source).empty() &&
           source->id() == id;
}

DiagramParts drawnParts(const QBLumoDiagramDrawer& drawer) {
    DiagramParts parts;
    for (const auto& drawn : drawer.drawnComponents())
        parts.push_back({drawn.component, drawn.id, drawn.isJoin});
    return parts;
}

/// The same items at the same places, none of which the user has given a size.
bool standsAsIn(const DiagramArrangement& first, const DiagramArrangement& now) {
    std::map<long, LumoPoint> places;
    for (const DiagramArrangement::Entry& entry : first.entries)
        places[entry.componentId] = entry.rect.origin;
    const auto stands = [&places](const DiagramArrangement::Entry& entry) {
        const auto found = places.find(entry.componentId);
        return found != places.end() && found->second == entry.rect.origin && !entry.isSizedByUser;
    };
    return first.entries.size() == now.entries.size() &&
           std::all_of(now.entries.begin(), now.entries.end(), stands);
}

QString stepName(QBLumoContext::Arrangement how) {
    switch (how) {
        case QBLumoContext::Arrangement::Resized:
            return Tolk::localize(Tolk::TextStepResized);
        case QBLumoContext::Arrangement::LaidOut:
            return Tolk::localize(Tolk::TextStepArranged);
        default:
            return Tolk::localize(Tolk::TextStepMoved);
    }
}

}  // namespace

// ---- construction -----------------------------------------------------------------------------

QBDiagramPanelWidget::QBDiagramPanelWidget(QWidget* parent)
    : QBPanelWidget(parent)
    , ui(std::make_unique<Ui::QBDiagramPanelWidget>())
    , m_relationGroup(new QButtonGroup(this))
    , m_drawer(std::make_unique<QBLumoDiagramDrawer_LINUX>())
    , m_pendingItems(
          std::make_unique<PendingDiagramItems>([this](auto source, int layer, QPoint point) {
              addSource(std::move(source), layer, point);
          }))
    , m_fields(std::make_unique<ItemFields>(this, m_drawer.get(), [this] { fieldsFilled(); }))
    , m_callbacks(std::make_unique<DiagramCallbacks>(this, m_fields.get())) {
    ui->setupUi(this);
    m_relationGroup->addButton(ui->tableRelRadioButton, tableRelation);
    m_relationGroup->addButton(ui->fieldRelRadioButton, fieldRelation);
    connect(m_relationGroup, &QButtonGroup::idClicked, this,
            [this](int mode) { setRelationMode(QString::number(mode)); });
    setUpDiagram();
    retranslate();
    connect(this, &QBPanelWidget::engineSet, this, &QBDiagramPanelWidget::connectEngine);
}

QBDiagramPanelWidget::~QBDiagramPanelWidget() {
    m_callbacks->setView(nullptr);
    m_drawer->clearDiagram();  // which tells nobody, while those who could be told are there
}

void QBDiagramPanelWidget::setUpDiagram() {
    QWidget* canvas = nullptr;
    m_drawer->setupDiagram(&canvas, m_callbacks->callbacks());
    auto* const layout = new QVBoxLayout(ui->diagram);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(canvas);
    m_callbacks->setView(m_drawer->getView());
    m_drawer->getContext()->setItemsArranged([this](QBLumoContext::Arrangement how) {
        Q_EMIT signalArranged(stepName(how), how == QBLumoContext::Arrangement::MovedByKey);
    });
    setTabOrder(ui->fieldRelRadioButton, m_drawer->getView());
}

void QBDiagramPanelWidget::retranslate() {
    ui->tableRelRadioButton->setText(Tolk::localize(Tolk::TextTableRelation));
    ui->fieldRelRadioButton->setText(Tolk::localize(Tolk::TextFieldRelation));
    setAccessibleName(Tolk::localize(Tolk::TextDiagram));
    ui->bar->setAccessibleName(Tolk::localize(Tolk::TextLinksShown));
}

void QBDiagramPanelWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LanguageChange) retranslate();
    const bool isOtherLook =
        event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange;
    if (isOtherLook) m_drawer->applyTheme();
    QBPanelWidget::changeEvent(event);
}

void QBDiagramPanelWidget::connectEngine() {
    m_pendingItems->clear();
    m_isLayoutForNextText = false;
    const QBEngineSignalEmitter* emitter = engine()->signalEmitter();
    using Emitter = QBEngineSignalEmitter;
    connect(emitter, &Emitter::identifierCandidateChildrenUpdateEnded, this,
            [this](QBEngine*, QBIdentifierCandidate* candidate) { candidateLoaded(candidate); });
    connect(emitter, &Emitter::topLevelQueryComponentElementModified, this,
            &QBDiagramPanelWidget::elementsModified);
    connect(emitter, &Emitter::topLevelQueryComponentLayerChanged, this, [this] { showLayer(); });
    connect(emitter, &Emitter::uiReset, this, [this] {
        m_pendingItems->clear();
        showLayer();
    });
    connect(emitter, &Emitter::componentFocusChanged, this,
            [this](QBEngine*, AbstractQueryComponent* component, bool isFocused, void* sender) {
                takeFocus(component, isFocused, sender);
            });
    connect(emitter, &Emitter::currentSchemaChanged, this, [this] { askForFields(); });
    connect(emitter, &Emitter::databaseTypeChanged, this, [this] { showLayer(); });
    connect(emitter, &QObject::destroyed, this, [this] { showLayer(); });
    showLayer();
}

QBLumoDiagramDrawer_LINUX* QBDiagramPanelWidget::drawer() const {
    return m_drawer.get();
}

QBCanvasCommands* QBDiagramPanelWidget::commands() const {
    return m_drawer->commands();
}

SQLSelectStmtComponent* QBDiagramPanelWidget::statement() const {
    return engine() ? Tools::Validation::currentStatement(engine()) : nullptr;
}

// ---- drops ------------------------------------------------------------------------------------

bool QBDiagramPanelWidget::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::DragEnter:
            if (dragEntered(static_cast<QDropEvent*>(event))) return true;
            break;
        case QEvent::DragLeave:
            m_drawer->hintWidget()->setTakesDrop(false);
            break;
        case QEvent::Drop:
            m_drawer->hintWidget()->setTakesDrop(false);
            if (dropped(static_cast<QDropEvent*>(event))) return true;
            break;
        default:
            break;
    }
    return QBPanelWidget::event(event);
}

QObject* QBDiagramPanelWidget::dragSource(const QDropEvent* event) const {
    return event->source();
}

bool QBDiagramPanelWidget::dragEntered(QDropEvent* event) {
    if (!qobject_cast<QTreeWidget*>(dragSource(event))) return false;
    event->acceptProposedAction();
    m_drawer->hintWidget()->setTakesDrop(true);
    return true;
}

bool QBDiagramPanelWidget::dropped(QDropEvent* event) {
    const auto* tree = qobject_cast<QTreeWidget*>(dragSource(event));
    if (!tree || !tree->currentItem()) return false;
    event->acceptProposedAction();
    add(candidateAddress(tree->currentItem()),
        m_drawer->getView()->viewport()->mapFrom(this, rounded(event->posF())));
    return true;
}

// ---- sources ----------------------------------------------------------------------------------

void QBDiagramPanelWidget::addIdentifierCandidateToDiagram(QBIdentifierCandidate* candidate) {
    add(candidate, noDropPoint);
}

void QBDiagramPanelWidget::add(QBIdentifierCandidate* candidate, QPoint dropPoint) {
    QBEngine_LINUX* const target = engine();
    if (!target || !candidate || !target->isCandidateInTree(candidate)) return;
    const QBIdentifierCandidateSnapshot record = target->candidateSnapshot(candidate);
    if (!isTableLike(record.type) || !statement() || target->isParsingQuery()) return;
    auto source = Tools::Identifier::makeIdentifierComponent(target, candidate);
    if (record.hasChildren)
        return addSource(std::move(source), target->currentTopLevelQueryComponentLayer(),
                         dropPoint);
    m_pendingItems->add(*target, candidate, std::move(source), dropPoint);
    target->addRefreshIdentifierCandidateChildrenRequest(candidate, false);
    target->refreshRequestedIdentifierCandidateChildren(true);
}

void QBDiagramPanelWidget::addSource(std::unique_ptr<SQLIdentifierSourceComponent> source,
                                     int layer, QPoint dropPoint) {
    const auto* target =
        dynamic_cast<const SQLSelectStmtComponent*>(engine()->topLevelQueryComponent(layer));
    if (target)
        source->alias =
            freeAlias(target->sourceExpr->root, *source, namesHaveCase(engine()->databaseType()));
    SQLIdentifierSourceComponent* const added = source.get();
    const long id = added->id();
    m_dropPoints[id] = dropPoint;
    Tools::Identifier::addSourceComponentToExpression(engine(), this, std::move(source), layer);
    // Announced by now, if the host is one that does so at once; who heard of it may have done
    // anything.
    const bool isCurrent = engine() && engine()->currentTopLevelQueryComponentLayer() == layer;
    if (isCurrent && isInStatement(statement(), added, id))
        Tools::SQL::makeJoinLinkByForeignKeyIfNecessary(engine(), this, added);
}

int QBDiagramPanelWidget::pendingItemCount() const {
    return static_cast<int>(m_pendingItems->size());
}

// ---- what the engine tells --------------------------------------------------------------------

void QBDiagramPanelWidget::candidateLoaded(QBIdentifierCandidate* candidate) {
    m_fields->loadEnded(candidate);
    arrangeByRealHeights();
    m_pendingItems->loadEnded(*engine(), candidate);
}

void QBDiagramPanelWidget::updateAllComponentsUsingIdentifier(QBIdentifierCandidate* identifier) {
    if (engine() && identifier) m_fields->loadEnded(identifier);
}

void QBDiagramPanelWidget::elementsModified(const QBEngine* sendingEngine, const Elements& elements,
                                            int layer, const void* sender) {
    if (sendingEngine != engine() || layer != engine()->currentTopLevelQueryComponentLayer())
        return;
    const bool isParsed = sender == sendingEngine;
    isParsed ? showParsedText() : synchroniseDiagramWithModel(elements);
    Q_EMIT signalSynchronised();
    if (isParsed && engine()) m_pendingItems->deliverReady(*engine());
}

/// A name without a schema may be another table now.
void QBDiagramPanelWidget::askForFields() {
    synchroniseDiagramWithModel({ElementSource});
    if (!isShown(statement())) return;
    std::vector<SQLAbstractSourceComponent*> sources;
    for (const DiagramPart& part : diagramPartsOf(statement()->sourceExpr->root)) {
        if (!part.isJoin) sources.push_back(part.component);
    }
    m_fields->ask(sources, false);
    synchroniseTicks();
}

/// Another panel has told of the focus; that need not be told again.
void QBDiagramPanelWidget::takeFocus(const AbstractQueryComponent* component, bool isFocused,
                                     const void* sender) {
    if (sender == this) return;
    for (const auto& drawn : m_drawer->drawnComponents()) {
        if (!drawn.isJoin && drawn.component == component)
            return m_drawer->showComponentFocus(drawn.component, isFocused);
    }
}

// ---- synchronisation: the one writer of the canvas --------------------------------------------

void QBDiagramPanelWidget::showLayer() {
    saveShownLayer();
    m_fields->clear();
    {
        const QBLumoDiagramDrawer::LayerRebuild rebuild(m_drawer.get());
        m_drawer->clearDiagram();
        m_drawer->setNamesHaveCase(!engine() || namesHaveCase(engine()->databaseType()));
        turnToLayer(statement() ? statement()->id() : noLayer);
        synchroniseDiagramWithModel({ElementSource, ElementSelectColumn});
        m_drawer->scrollToOrigin();
        placeItems();
    }
    Q_EMIT signalSynchronised();
    if (engine()) m_pendingItems->deliverReady(*engine());
}

/// Each layer keeps its zoom; one that was made small to see a large diagram does not make another
/// small.
void QBDiagramPanelWidget::turnToLayer(long id) {
    if (id == m_shownLayerId) return;
    LumoControl* const control = m_drawer->getControl();
    const double zoom = control->getZoom();
    m_zooms[m_shownLayerId] = zoom;
    m_shownLayerId = id;
    const auto found = m_zooms.find(id);
    control->setZoom(found == m_zooms.end() ? std::max(zoom, 1.0) : found->second, {0, 0});
}

/// A text replaces all that the statement held. What it names again stays where it was.
void QBDiagramPanelWidget::showParsedText() {
    saveShownLayer();
    m_isLayoutForNextText = false;
    const QBLumoDiagramDrawer::LayerRebuild rebuild(m_drawer.get());
    synchroniseDiagramWithModel({ElementSource, ElementSelectColumn});
    placeItems();
}

bool QBDiagramPanelWidget::isShown(const SQLSelectStmtComponent* statement) const {
    return statement && statement->id() == m_shownLayerId;
}

void QBDiagramPanelWidget::synchroniseDiagramWithModel(const Elements& elements) {
    if (!elements.intersects({ElementSource, ElementSelectColumn})) return;
    const SQLSelectStmtComponent* const present = statement();
    if (!isShown(present)) return m_drawer->clearDiagram();
    if (elements.contains(ElementSource)) {
        m_fields->collectDuring([&] {
            const Lock lock(engine()->queryComponentAccessMutex());
            m_callbacks->withFixedSources([&] { synchroniseParts(present); });
        });
    }
    synchroniseTicks();
}

void QBDiagramPanelWidget::synchroniseParts(const SQLSelectStmtComponent* statement) {
    const DiagramParts wanted = diagramPartsOf(statement->sourceExpr->root);
    const DiagramDifference difference = diagramDifference(drawnParts(*m_drawer), wanted);
    for (const DiagramPart& part : difference.removed) {
        m_drawer->removeComponentFromDiagram(part.component);
        m_fields->forget(part.id);
    }
    std::vector<std::pair<SQLAbstractSourceComponent*, SQLAbstractSourceComponent*>> moved;
    for (const DiagramRebind& rebind : difference.rebound)
        moved.emplace_back(rebind.former, rebind.now);
    if (!moved.empty()) m_drawer->rebindComponents(moved);
    // The joins come last: their links need the items.
    for (const DiagramPart& part : difference.added) {
        const QPoint place = part.isJoin ? noDropPoint : takeDropPoint(part.id);
        if (!part.isJoin) m_drawer->addComponentInDiagram(part.component, place.x(), place.y());
    }
    for (const DiagramPart& part : difference.updated)
        m_drawer->updateComponentInDiagram(part.component);
    for (const DiagramPart& part : difference.added) {
        if (part.isJoin)
            m_drawer->addComponentInDiagram(part.component, noDropPoint.x(), noDropPoint.y());
    }
}

/// Which source a column of USING comes from can be told by its fields alone.
void QBDiagramPanelWidget::fieldsFilled() {
    const SQLSelectStmtComponent* const present = statement();
    if (!isShown(present)) return;
    for (const DiagramPart& part : diagramPartsOf(present->sourceExpr->root)) {
        const auto* join = dynamic_cast<const SQLJoinSourceNodeComponent*>(part.component);
        const bool isDrawn = m_drawer->drawnId(part.component) == part.id;
        if (isDrawn && join && join->isUsing) m_drawer->updateComponentInDiagram(part.component);
    }
    synchroniseTicks();
}

QPoint QBDiagramPanelWidget::takeDropPoint(long sourceId) {
    const auto found = m_dropPoints.find(sourceId);
    if (found == m_dropPoints.end()) return noDropPoint;
    const QPoint point = found->second;
    m_dropPoints.erase(found);
    return point;
}

void QBDiagramPanelWidget::synchroniseTicks() {
    const SQLSelectStmtComponent* const present = statement();
    if (!isShown(present)) return;
    const Lock lock(engine()->queryComponentAccessMutex());
    Tools::SQL::SelectedFields selected = Tools::SQL::selectedFields(engine(), present);
    for (const DiagramPart& part : diagramPartsOf(present->sourceExpr->root)) {
        if (!part.isJoin) m_drawer->setItemFieldSelection(part.component, selected[part.component]);
    }
}

void QBDiagramPanelWidget::synchroniseLater() {
    const auto synchronise = [this] {
        synchroniseDiagramWithModel({ElementSource});
    };
    QMetaObject::invokeMethod(this, synchronise, Qt::QueuedConnection);
}

// ---- layouts ----------------------------------------------------------------------------------

bool QBDiagramPanelWidget::hasItems() const {
    return !m_drawer->drawnComponents().empty();
}

/// Not that of an empty canvas: after a slip in the text all items may come back.
void QBDiagramPanelWidget::saveShownLayer() {
    if (m_shownLayerId != noLayer && hasItems() && !m_isLayoutForNextText)
        m_drawer->saveLayerLayout(static_cast<std::uint64_t>(m_shownLayerId));
}

/// Items that have just been drawn go where a layout has them; if none has any of them they are
/// arranged.
void QBDiagramPanelWidget::placeItems() {
    m_firstArrangement.reset();
    if (!hasItems()) return;
    m_drawer->matchLayouts(layerPaths());
    const auto layer = static_cast<std::uint64_t>(m_shownLayerId);
    const DiagramArrangement before = m_drawer->arrangement();
    const bool isCovered = m_drawer->hasLayerLayout(layer) && m_drawer->restoreLayerLayout(layer);
    const DiagramArrangement after = m_drawer->arrangement();
    if (isCovered || after.entries != before.entries) return;
    m_drawer->scrollToOrigin();  // where nothing of the layout fits, neither does where it looked
    if (after.entries.size() < 2) return;
    m_drawer->arrangeAll();
    if (m_fields->isTableAwaited()) m_firstArrangement = m_drawer->arrangement();
}

/// Once more when all fields have come, unless anything was moved, added or taken away meanwhile.
void QBDiagramPanelWidget::arrangeByRealHeights() {
    if (!m_firstArrangement || m_fields->isTableAwaited()) return;
    const DiagramArrangement first = *std::exchange(m_firstArrangement, std::nullopt);
    if (!isGestureUnderWay() && standsAsIn(first, m_drawer->arrangement())) m_drawer->arrangeAll();
}

QBDiagramPanelWidget::LayerPaths QBDiagramPanelWidget::layerPaths() const {
    if (!engine() || engine()->currentTopLevelQueryComponentLayer() < 0) return {};
    const Lock lock(engine()->queryComponentAccessMutex());
    LayerPaths paths;
    for (auto& [layer, path] :
         Tools::collectSourceFieldLists(engine()->topLevelQueryComponent(0), {}))
        paths.emplace(static_cast<std::uint64_t>(layer->id()), path);
    return paths;
}

std::string QBDiagramPanelWidget::saveLayout() {
    saveShownLayer();
    return m_drawer->exportLayouts(layerPaths());
}

void QBDiagramPanelWidget::restoreLayout(const std::string& text) {
    m_firstArrangement.reset();
    m_drawer->importLayouts(text, layerPaths());
    m_isLayoutForNextText = engine() && engine()->isParsingQuery();
    if (m_isLayoutForNextText || !hasItems()) return;
    m_drawer->restoreLayerLayout(static_cast<std::uint64_t>(m_shownLayerId));
}

QString QBDiagramPanelWidget::relationMode() const {
    return QString::number(m_drawer->relationMode());
}

void QBDiagramPanelWidget::setRelationMode(const QString& mode) {
    if (mode == QString::number(tableRelation)) m_drawer->setTableRelationMode();
    if (mode == QString::number(fieldRelation)) m_drawer->setFieldRelationMode();
    m_relationGroup->button(m_drawer->relationMode())->setChecked(true);
}

DiagramArrangement QBDiagramPanelWidget::arrangement() const {
    return m_drawer->arrangement();
}

void QBDiagramPanelWidget::setArrangement(const DiagramArrangement& arrangement) {
    m_firstArrangement.reset();
    m_drawer->setArrangement(arrangement);
}

bool QBDiagramPanelWidget::isGestureUnderWay() const {
    const auto* diagram = m_drawer->diagram();
    return diagram->draggedItem() || diagram->isLinkDragActive() || diagram->isResizingByKeys();
}

}  // namespace QB
