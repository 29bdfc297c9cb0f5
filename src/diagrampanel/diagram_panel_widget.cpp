#include "diagrampanel/diagram_panel_widget.h"

#include <QButtonGroup>
#include <QDropEvent>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <cmath>
#include <utility>

#include "canvas/drawer/diagram_hint_widget.h"
#include "diagrampanel/object_tree_item.h"
#include "diagrampanel/pending_diagram_items.h"
#include "engine/engine_linux.h"
#include "platform/tolk/tolk.h"
#include "tools/identifier_tools.h"
#include "ui_diagram_panel_widget.h"

namespace QB {
namespace {

constexpr QPoint noDropPoint(-1, -1);

/// Half goes away from zero.
QPoint rounded(const QPointF& position) {
    return {static_cast<int>(std::lround(position.x())),
            static_cast<int>(std::lround(position.y()))};
}

}  // namespace

QBDiagramPanelWidget::QBDiagramPanelWidget(QWidget* parent)
    : QBPanelWidget(parent)
    , ui(std::make_unique<Ui::QBDiagramPanelWidget>())
    , m_relationGroup(new QButtonGroup(this))
    , m_pendingItems(
          std::make_unique<PendingDiagramItems>([this](auto source, int layer, QPoint point) {
              addSource(std::move(source), layer, point);
          })) {
    ui->setupUi(this);
    m_hintOverlay = new QBDiagramHintWidget(ui->diagram);
    auto* layout = new QVBoxLayout(ui->diagram);
    layout->addWidget(m_hintOverlay);
    m_relationGroup->addButton(ui->tableRelRadioButton);
    m_relationGroup->addButton(ui->fieldRelRadioButton);
    ui->bar->hide();  // until there are links to draw one way or the other
    retranslate();
    connect(this, &QBPanelWidget::engineSet, this, &QBDiagramPanelWidget::connectEngine);
}

QBDiagramPanelWidget::~QBDiagramPanelWidget() = default;

void QBDiagramPanelWidget::retranslate() {
    ui->tableRelRadioButton->setText(Tolk::localize(Tolk::TextTableRelation));
    ui->fieldRelRadioButton->setText(Tolk::localize(Tolk::TextFieldRelation));
    setAccessibleName(Tolk::localize(Tolk::TextDiagram));
}

void QBDiagramPanelWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::LanguageChange) retranslate();
    QBPanelWidget::changeEvent(event);
}

void QBDiagramPanelWidget::connectEngine() {
    m_pendingItems->clear();
    const QBEngineSignalEmitter* emitter = engine()->signalEmitter();
    using Emitter = QBEngineSignalEmitter;
    connect(emitter, &Emitter::identifierCandidateChildrenUpdateEnded, this,
            [this](QBEngine*, const QBIdentifierCandidate* candidate) {
                m_pendingItems->loadEnded(*engine(), candidate);
            });
    connect(emitter, &Emitter::topLevelQueryComponentLayerChanged, this,
            [this] { m_pendingItems->deliverReady(*engine()); });
    connect(emitter, &Emitter::uiReset, this, [this] { m_pendingItems->clear(); });
}

// ---- drops ----------------------------------------------------------------------------------

bool QBDiagramPanelWidget::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::DragEnter:
            if (dragEntered(static_cast<QDropEvent*>(event))) return true;
            break;
        case QEvent::DragLeave:
            m_hintOverlay->setTakesDrop(false);
            break;
        case QEvent::Drop:
            m_hintOverlay->setTakesDrop(false);
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
    m_hintOverlay->setTakesDrop(true);
    return true;
}

bool QBDiagramPanelWidget::dropped(QDropEvent* event) {
    const auto* tree = qobject_cast<QTreeWidget*>(dragSource(event));
    if (!tree || !tree->currentItem()) return false;
    event->acceptProposedAction();
    m_dropPoint = rounded(event->posF());
    addIdentifierCandidateToDiagram(candidateAddress(tree->currentItem()));
    m_dropPoint = noDropPoint;
    return true;
}

// ---- sources --------------------------------------------------------------------------------

void QBDiagramPanelWidget::addIdentifierCandidateToDiagram(QBIdentifierCandidate* candidate) {
    QBEngine_LINUX* const target = engine();
    if (!target || !candidate || !target->isCandidateInTree(candidate)) return;
    const QBIdentifierCandidateSnapshot record = target->candidateSnapshot(candidate);
    if (!isTableLike(record.type) || !target->currentTopLevelQueryComponent()) return;
    auto source = Tools::Identifier::makeIdentifierComponent(target, candidate);
    if (record.hasChildren)
        return addSource(std::move(source), target->currentTopLevelQueryComponentLayer(),
                         m_dropPoint);
    m_pendingItems->add(*target, candidate, std::move(source), m_dropPoint);
    target->addRefreshIdentifierCandidateChildrenRequest(candidate, false);
    target->refreshRequestedIdentifierCandidateChildren(true);
}

void QBDiagramPanelWidget::addSource(
    std::unique_ptr<Component::SQL::SQLIdentifierSourceComponent> source, int layer,
    QPoint dropPoint) {
    m_dropPoint = dropPoint;
    Tools::Identifier::addSourceComponentToExpression(engine(), this, std::move(source), layer);
    m_dropPoint = noDropPoint;
}

int QBDiagramPanelWidget::pendingItemCount() const {
    return static_cast<int>(m_pendingItems->size());
}

}  // namespace QB
