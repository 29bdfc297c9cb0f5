#include "frame/abstract_query_preview_panel_widget.h"

#include <iterator>
#include <set>
#include <utility>

#include "engine/engine_core.h"
#include "engine/engine_linux.h"
#include "model/callbacks.h"
#include "model/liveness.h"
#include "stringifier/query_component_stringifier.h"
#include "widgets/loading_indicator_widget.h"
#include "widgets/overlap_layout.h"

namespace QB {
namespace {

constexpr int updateInterval = 500;    // milliseconds
constexpr int unpaintedLoading = 150;  // milliseconds

constexpr long noComponent = -1;

}  // namespace

/// What a generation needs on its worker. The panel is looked at on the main thread only.
struct QBAbstractQueryPreviewPanelWidget::Generation {
    long engineId;
    std::shared_ptr<QBEngineCore> core;
    Component::AbstractTopLevelQueryComponent* statement;  // not owned: asked for by its id
    long statementId;
    QBDatabaseInfo databaseInfo;
    std::string currentSchema;
    QPointer<QBAbstractQueryPreviewPanelWidget> panel;
};

struct QBAbstractQueryPreviewPanelWidget::Result {
    /// False if the statement was gone, or the host's quoting threw.
    bool isComplete = false;
    std::string text;
    ComponentRanges ranges;
    ComponentIds ids;
};

QBAbstractQueryPreviewPanelWidget::QBAbstractQueryPreviewPanelWidget(QWidget* parent)
    : QBPanelWidget(parent), m_loadingWidget(new QBLoadingIndicatorWidget(this)) {
    m_loadingWidget->setObjectName(QStringLiteral("loadingWidget"));
    m_loadingWidget->hide();
    auto* overlap = new QBOverlapLayout(this);
    overlap->setObjectName(QStringLiteral("overlapLayout"));
    overlap->addWidget(m_loadingWidget);

    m_timer.setInterval(updateInterval);
    connect(&m_timer, &QTimer::timeout, this,
            &QBAbstractQueryPreviewPanelWidget::updatePreviewQuery);
    m_unpaintedTimer.setInterval(unpaintedLoading);
    m_unpaintedTimer.setSingleShot(true);
    connect(&m_unpaintedTimer, &QTimer::timeout, this, [this] { setUpdatesEnabled(true); });
    connect(this, &QBPanelWidget::engineSet, this,
            &QBAbstractQueryPreviewPanelWidget::connectEngine);
}

QBAbstractQueryPreviewPanelWidget::~QBAbstractQueryPreviewPanelWidget() = default;

void QBAbstractQueryPreviewPanelWidget::setContent(QWidget* content) {
    layout()->addWidget(content);
    m_loadingWidget->raise();
}

void QBAbstractQueryPreviewPanelWidget::connectEngine() {
    const QBEngineSignalEmitter* emitter = engine()->signalEmitter();
    const auto setDirty = [this] {
        m_needsUpdateQuery = true;
    };
    connect(emitter, &QBEngineSignalEmitter::databaseTypeChanged, this, setDirty);
    connect(emitter, &QBEngineSignalEmitter::currentSchemaChanged, this, setDirty);
    connect(emitter, &QBEngineSignalEmitter::topLevelQueryComponentElementModified, this, setDirty);
    connect(emitter, &QBEngineSignalEmitter::uiReset, this,
            &QBAbstractQueryPreviewPanelWidget::forgetFocus);
    connect(emitter, &QBEngineSignalEmitter::topLevelQueryComponentLayerChanged, this,
            [this](QBEngine* sendingEngine, Component::AbstractTopLevelQueryComponent* popped) {
                if (sendingEngine != engine()) return;
                forgetFocus();
                topLevelQueryComponentLayerChanged(popped);
            });
    connect(emitter, &QBEngineSignalEmitter::componentFocusChanged, this,
            [this](QBEngine* sendingEngine, Component::AbstractQueryComponent* component,
                   bool focused) {
                if (sendingEngine == engine()) markFocusedComponent(component, focused);
            });
    forgetFocus();
    m_needsUpdateQuery = true;
}

void QBAbstractQueryPreviewPanelWidget::topLevelQueryComponentLayerChanged(
    Component::AbstractTopLevelQueryComponent*) {
    m_needsUpdateQuery = true;
}

void QBAbstractQueryPreviewPanelWidget::forgetFocus() {
    m_focusedIds.clear();
    highlightAllFocusedComponent();
}

void QBAbstractQueryPreviewPanelWidget::markFocusedComponent(
    Component::AbstractQueryComponent* component, bool focused) {
    if (focused)
        m_focusedIds[component] = component->id();
    else
        forgetFocusOf(component);
    highlightAllFocusedComponent();
}

/// It may be gone, so its id is the one that it had in the text, or when it got the focus.
void QBAbstractQueryPreviewPanelWidget::forgetFocusOf(
    const Component::AbstractQueryComponent* component) {
    const auto shown = m_componentIds.find(component);
    const auto focused = m_focusedIds.find(component);
    if (shown == m_componentIds.end() && focused == m_focusedIds.end()) return;
    const long id = shown != m_componentIds.end() ? shown->second : focused->second;
    for (auto each = m_focusedIds.begin(); each != m_focusedIds.end();)
        each = each->second == id ? m_focusedIds.erase(each) : std::next(each);
}

void QBAbstractQueryPreviewPanelWidget::highlightAllFocusedComponent() {
    std::vector<QBRange> ranges;
    std::set<long> focused;
    for (const auto& [component, id] : m_focusedIds)
        focused.insert(id);
    for (const auto& [component, range] : m_componentRanges)
        if (focused.count(m_componentIds.at(component)) > 0) ranges.push_back(range);
    highlightText(HighlightTypeFocusedComponent, std::move(ranges));
}

void QBAbstractQueryPreviewPanelWidget::setShowsCurrentLayerOnly(bool currentLayerOnly) {
    m_showsCurrentLayerOnly = currentLayerOnly;
    m_needsUpdateQuery = true;
    updatePreviewQuery();
}

Component::AbstractTopLevelQueryComponent* QBAbstractQueryPreviewPanelWidget::shownStatement()
    const {
    if (engine()->currentTopLevelQueryComponentLayer() < 0) return nullptr;
    return m_showsCurrentLayerOnly ? engine()->currentTopLevelQueryComponent()
                                   : engine()->topLevelQueryComponent(0);
}

void QBAbstractQueryPreviewPanelWidget::updatePreviewQuery() {
    // A change during a run keeps the flag set, and the timer comes back.
    if (!m_needsUpdateQuery || m_isGenerating || engine() == nullptr) return;
    m_needsUpdateQuery = false;
    m_isGenerating = true;
    setLoading(true);

    Component::AbstractTopLevelQueryComponent* statement = shownStatement();
    const Generation generation{engine()->id(),
                                engine()->core(),
                                statement,
                                statement == nullptr ? noComponent : statement->id(),
                                engine()->databaseInfo(),
                                engine()->currentSchema(),
                                this};
    Callback::runOperationOnDispatchedThread([generation] { run(generation); });
}

void QBAbstractQueryPreviewPanelWidget::run(const Generation& generation) {
    auto result = std::make_shared<Result>();
    const auto deliver = [&generation, &result] {
        Callback::runOperationOnMainThread([generation, result] {
            runIfAlive(generation.engineId, [&](bool isEngineAlive) {
                if (generation.panel)
                    generation.panel->finishGeneration(generation, isEngineAlive, *result);
            });
        });
    };
    try {
        generateText(generation, *result);
    } catch (...) {
        // The host's function threw: its thread hears of it, but the panel must not wait forever.
        deliver();
        throw;
    }
    deliver();
}

void QBAbstractQueryPreviewPanelWidget::generateText(const Generation& generation, Result& result) {
    const auto stringifier =
        QBQueryComponentStringifier::createStringifier(generation.databaseInfo);
    if (stringifier == nullptr || generation.statement == nullptr) {
        result.isComplete = true;  // there is nothing to show
        return;
    }
    stringifier->setCurrentSchema(generation.currentSchema);
    result.isComplete = generation.core->withLiveComponent(generation.statementId, [&] {
        result.text = stringifier->stringifyQuery(
            generation.core->addressNow(generation.statement, generation.statementId));
        const auto ranges = stringifier->componentRanges();
        result.ranges = ComponentRanges(ranges.begin(), ranges.end());
        for (const auto& [component, range] : result.ranges)
            result.ids.emplace(component, component->id());
    });
}

void QBAbstractQueryPreviewPanelWidget::finishGeneration(const Generation& generation,
                                                         bool isEngineAlive, const Result& result) {
    m_isGenerating = false;
    const bool isForThisEngine =
        isEngineAlive && engine() != nullptr && engine()->id() == generation.engineId;
    if (isForThisEngine && result.isComplete) {
        m_componentRanges = result.ranges;
        m_componentIds = result.ids;
        setPreviewQuery(result.text);
        highlightAllFocusedComponent();
    }
    setLoading(false);
}

void QBAbstractQueryPreviewPanelWidget::setLoading(bool loading) {
    if (loading && isEnabled()) {
        rememberFocus();
        if (isVisible()) {
            setUpdatesEnabled(false);
            m_unpaintedTimer.start();
        }
    }
    setEnabled(!loading);
    if (auto* ring = findChild<QBLoadingIndicatorWidget*>()) ring->setVisible(loading);
    if (loading) return;
    m_unpaintedTimer.stop();
    setUpdatesEnabled(true);
    giveFocusBack();
}

// Qt takes the focus from a widget that is disabled together with its parent, and gives it to none.
void QBAbstractQueryPreviewPanelWidget::rememberFocus() {
    QWidget* focused = window()->focusWidget();
    if (focused != nullptr && isAncestorOf(focused)) m_focusedBeforeLoading = focused;
}

void QBAbstractQueryPreviewPanelWidget::giveFocusBack() {
    if (m_focusedBeforeLoading && window()->focusWidget() == nullptr)
        m_focusedBeforeLoading->setFocus(Qt::OtherFocusReason);
    m_focusedBeforeLoading = nullptr;
}

void QBAbstractQueryPreviewPanelWidget::showEvent(QShowEvent* event) {
    QBPanelWidget::showEvent(event);
    m_timer.start();
}

void QBAbstractQueryPreviewPanelWidget::hideEvent(QHideEvent* event) {
    QBPanelWidget::hideEvent(event);
    m_timer.stop();
}

}  // namespace QB
