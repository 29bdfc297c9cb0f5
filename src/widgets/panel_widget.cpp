#include "widgets/panel_widget.h"

#include <QEvent>
#include <QIcon>
#include <algorithm>

#include "engine/engine_linux.h"
#include "engine/engine_signal_emitter.h"
#include "widgets/visible_edges.h"

namespace QB {
namespace {

// A sender is any object's address: it is looked up among the widgets, never dereferenced.
bool isWidgetInside(const QWidget* ancestor, const void* sender) {
    const auto isOrHolds = [sender](const QObject* child) {
        const auto* widget = qobject_cast<const QWidget*>(child);
        return widget != nullptr &&
               (static_cast<const void*>(widget) == sender || isWidgetInside(widget, sender));
    };
    const QObjectList& children = ancestor->children();
    return std::any_of(children.begin(), children.end(), isOrHolds);
}

bool haveCommonElement(const QSet<TopLevelQueryComponentElementEnum>& a,
                       const QSet<TopLevelQueryComponentElementEnum>& b) {
    const auto& smaller = a.size() < b.size() ? a : b;
    const auto& larger = a.size() < b.size() ? b : a;
    return std::any_of(smaller.begin(), smaller.end(),
                       [&larger](auto element) { return larger.contains(element); });
}

}  // namespace

QBPanelWidget::QBPanelWidget(QWidget* parent) : QWidget(parent) {}

QBPanelWidget::~QBPanelWidget() = default;

void QBPanelWidget::setEngine(QBEngine_LINUX* engine) {
    if (engine == nullptr) return;
    if (m_emitter) m_emitter->disconnect(this);
    m_engine = engine;
    m_emitter = engine->signalEmitter();
    Q_EMIT engineSet();
}

QBEngine_LINUX* QBPanelWidget::engine() const {
    return m_emitter ? m_engine : nullptr;
}

bool QBPanelWidget::event(QEvent* event) {
    if (event->type() == QEvent::Show || event->type() == QEvent::PaletteChange) showEdges(this);
    return QWidget::event(event);
}

QBTopLevelElementPanelWidget::QBTopLevelElementPanelWidget(QWidget* parent)
    : QBPanelWidget(parent) {
    connect(this, &QBPanelWidget::engineSet, this, &QBTopLevelElementPanelWidget::connectEngine);
}

QBTopLevelElementPanelWidget::~QBTopLevelElementPanelWidget() = default;

QSet<TopLevelQueryComponentElementEnum> QBTopLevelElementPanelWidget::relatedElements() const {
    return m_relatedElements;
}

void QBTopLevelElementPanelWidget::setRelatedElements(
    const QSet<TopLevelQueryComponentElementEnum>& elements) {
    m_relatedElements = elements;
}

QIcon QBTopLevelElementPanelWidget::tabIcon() const {
    return hasInvalidComponents() ? QIcon(":/images/OV_Query_Builder_Warning.png") : QIcon();
}

bool QBTopLevelElementPanelWidget::hasInvalidComponents() const {
    return false;
}

void QBTopLevelElementPanelWidget::panelBecomeInactive() {}

int QBTopLevelElementPanelWidget::firstRelatedElement() const {
    // A QSet has no order of its own; the lowest clause makes the answer the same in every run.
    const auto first = std::min_element(m_relatedElements.begin(), m_relatedElements.end());
    return first == m_relatedElements.end() ? -1 : *first;
}

void QBTopLevelElementPanelWidget::connectEngine() {
    const QBEngineSignalEmitter* emitter = engine()->signalEmitter();
    connect(
        emitter, &QBEngineSignalEmitter::topLevelQueryComponentLayerChanged, this,
        [this](QBEngine* sendingEngine, Component::AbstractTopLevelQueryComponent* poppedLayer) {
            if (sendingEngine == engine()) topLevelQueryComponentLayerChanged(poppedLayer);
        });
    connect(emitter, &QBEngineSignalEmitter::topLevelQueryComponentElementModified, this,
            [this](QBEngine* sendingEngine, const QSet<TopLevelQueryComponentElementEnum>& elements,
                   int layer, void* sender) {
                if (concernsThisPanel(sendingEngine, elements, layer, sender))
                    relatedElementModified(sender, elements);
            });
}

bool QBTopLevelElementPanelWidget::concernsThisPanel(
    const QBEngine* sendingEngine, const QSet<TopLevelQueryComponentElementEnum>& elements,
    int layer, void* sender) const {
    if (sendingEngine != engine()) return false;
    if (layer != sendingEngine->currentTopLevelQueryComponentLayer()) return false;
    if (!haveCommonElement(relatedElements(), elements)) return false;
    return sender == nullptr || !isWidgetInside(this, sender);
}

}  // namespace QB
