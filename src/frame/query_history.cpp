#include "frame/query_history.h"

#include <QEvent>
#include <QPointer>
#include <QScopedValueRollback>
#include <QUndoStack>
#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include "canvas/drawer/diagram_drawer_linux.h"
#include "canvas/view/canvas_commands.h"
#include "canvas/view/lumo_ui_view.h"
#include "diagrampanel/diagram_panel_widget.h"
#include "engine/engine_linux.h"
#include "frame/query_step.h"
#include "frame/step_names.h"
#include "model/notification_names.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"

namespace QB {
namespace {

using Elements = std::set<TopLevelQueryComponentElementEnum>;

Elements elementsOf(const QBNotificationParameters& params) {
    Elements elements;
    const int size = params.at("elements.size").toInt();
    for (int i = 0; i < size; ++i) {
        const int element = params.at("elements[" + std::to_string(i) + "]").toInt();
        elements.insert(static_cast<TopLevelQueryComponentElementEnum>(element));
    }
    return elements;
}

/// Whether all items of @p part have a place in @p whole.
bool isCovered(const DiagramArrangement& part, const DiagramArrangement& whole) {
    std::set<long> ids;
    for (const DiagramArrangement::Entry& entry : whole.entries)
        ids.insert(entry.componentId);
    return std::all_of(part.entries.begin(), part.entries.end(),
                       [&ids](const auto& entry) { return ids.count(entry.componentId) > 0; });
}

/// Of equal bytes, those of @p former are the ones to keep.
void keepOnce(QByteArray& bytes, const QByteArray& former) {
    if (bytes == former) bytes = former;
}

/// What the user may do on the canvas next, by a key that is a menu's, too; or has stopped doing
/// there.
bool isBeginOrEndOfUse(QEvent::Type type) {
    return type == QEvent::MouseButtonPress || type == QEvent::KeyPress ||
           type == QEvent::ShortcutOverride || type == QEvent::Leave || type == QEvent::FocusOut;
}

}  // namespace

/// The stack tells of a new index when it has it: the steps themselves do nothing, and goTo() goes
/// where the stack is, or takes the stack back.
class QBQueryHistory::Private {
public:
    Private(QBQueryHistory* history, QBDiagramPanelWidget* panel) : q(history), diagram(panel) {}

    QBEngine_LINUX* engine() const { return m_emitter ? m_engine : nullptr; }

    void leaveEngine();
    void listenTo(QBEngine_LINUX* engine);

    void startAnew();
    void rememberArrangement();
    void synchronised();
    void arranged(const QString& name, bool isRepeatable);
    void goTo(int index);
    std::size_t memoryUse() const;

    QBQueryHistory* const q;
    const QPointer<QBDiagramPanelWidget> diagram;  // not owned; null: nothing is arranged
    QUndoStack stack;
    QString nextName;
    bool isStackOurs = false;  ///< we change the index of the stack

private:
    void modified(const QBNotificationParameters& params);
    void followed(std::string record, const QueryOutline& outline);
    void layerChanged();
    long rootId() const;

    void takeModification(std::string record, const QueryOutline& outline, const QString& name,
                          std::vector<long> layerPath);
    void push(const QString& name, QueryPlace before, QueryPlace after, bool isRepeatable);
    bool isPartOfLastStep(const QBNotificationParameters& params) const;
    QString nameOf(const QBNotificationParameters& params, const QueryOutline& outline) const;
    QueryOutline outline() const { return outlineOf(engine()->topLevelQueryComponent(0)); }
    QueryOutline outlineAfter(const Elements& changed) const;

    QueryStep* step(int index) const;
    QueryStep* lastStep() const;
    DiagramArrangement standing() const;
    void keepPlace(const QueryPlace& here);
    void keepPlaceHere();
    bool continuesLastStep(const QString& name, const QByteArray& before) const;

    int takeUnannounced(int wantedIndex);
    void setStackIndex(int index);
    void restore(const std::string& record, const QueryPlace& place);
    void lookAround();

    QBEngine_LINUX* m_engine = nullptr;  // not owned: m_emitter tells whether it still lives
    QPointer<QObject> m_emitter;         // not owned
    std::vector<std::pair<std::string, long>> m_listeners;
    long m_rootId = 0;

    int m_position = 0;    ///< the index at which the query is
    std::string m_record;  ///< of the query as the steps say that it is at m_position
    /// Of the query as it was last seen: after an undo, other repairs may follow than those that
    /// are part of the step. As long as there is something to redo, they are not of the history.
    std::string m_seen;
    QueryOutline m_outline;  ///< of m_seen
    std::vector<long> m_layerPath;
    DiagramArrangement m_arranged;   ///< before the user touched the diagram, or as it was drawn
    bool m_isDiagramBehind = false;  ///< it has not shown yet what was restored
    bool m_isRestoring = false;
};

// ---- the engine ---------------------------------------------------------------------------------

void QBQueryHistory::Private::leaveEngine() {
    for (const auto& [name, token] : std::exchange(m_listeners, {}))
        if (engine()) m_engine->unregisterNotifyChangeListener(name, token);
    if (m_emitter) m_emitter->disconnect(q);
    m_emitter = nullptr;
}

void QBQueryHistory::Private::listenTo(QBEngine_LINUX* engine) {
    leaveEngine();
    m_engine = engine;
    m_emitter = engine ? engine->signalEmitter() : nullptr;
    if (!engine) return;
    const auto listen = [this](const std::string& name, QBEngine::Listener listener) {
        m_listeners.emplace_back(name, m_engine->registerNotifyChangeListener(name, listener));
    };
    // Before the panels hear of it: the diagram still shows what was.
    listen(Notification::topLevelQueryComponentElementModified,
           [this](const std::string&, const auto* params) { modified(*params); });
    listen(Notification::topLevelQueryComponentLayerChanged,
           [this](const std::string&, const auto*) { layerChanged(); });
    connect(m_emitter, &QObject::destroyed, q, &QBQueryHistory::clear);
}

long QBQueryHistory::Private::rootId() const {
    const bool hasLayer = engine() && engine()->currentTopLevelQueryComponentLayer() >= 0;
    const auto* root = hasLayer ? engine()->topLevelQueryComponent(0) : nullptr;
    return root ? root->id() : 0;
}

void QBQueryHistory::Private::modified(const QBNotificationParameters& params) {
    if (m_isRestoring || rootId() != m_rootId) return;
    std::string record = engine()->recordQuery();
    // Seen with a step before it, perhaps, of which only the other clause was announced.
    const QueryOutline present = outlineAfter(elementsOf(params));
    if (record == m_seen) m_outline = present;
    if (isPartOfLastStep(params)) return followed(std::move(record), present);
    const QString given = std::exchange(nextName, QString());
    if (record == m_seen) return;
    takeModification(std::move(record), present, given.isEmpty() ? nameOf(params, present) : given,
                     engine()->layerPath());
}

/// What a change of the other clauses leaves as it was.
QueryOutline QBQueryHistory::Private::outlineAfter(const Elements& changed) const {
    const bool isOther = changed.count(ElementSource) + changed.count(ElementSelectColumn) > 0;
    return isOther ? outline() : m_outline;
}

/// What comes late is a step of its own when the user has gone on.
bool QBQueryHistory::Private::isPartOfLastStep(const QBNotificationParameters& params) const {
    const auto followsUp = params.find("followsUp");
    if (followsUp == params.end()) return false;
    return followsUp->second.toInt() != 0;
}

QString QBQueryHistory::Private::nameOf(const QBNotificationParameters& params,
                                        const QueryOutline& outline) const {
    const void* const parser = static_cast<QBEngine*>(m_engine);
    if (params.at("sender").toPointer() == parser) return Tolk::localize(Tolk::TextStepApplyText);
    return stepName(m_outline, outline, elementsOf(params));
}

/// A repair belongs to the step that made it necessary, or to where the steps begin.
void QBQueryHistory::Private::followed(std::string record, const QueryOutline& outline) {
    if (record == m_seen) return;
    m_seen = std::move(record);
    m_outline = outline;
    if (stack.index() < stack.count()) return;
    if (QueryStep* const last = lastStep()) {
        last->record = TextDifference(last->record.reverted(m_record), m_seen);
        if (stack.isClean()) stack.resetClean();
    }
    m_record = m_seen;
}

void QBQueryHistory::Private::layerChanged() {
    if (m_isRestoring) return;
    if (rootId() != m_rootId) return q->clear();
    std::string record = engine()->recordQuery();
    if (record != m_seen)
        takeModification(std::move(record), outline(), Tolk::localize(Tolk::TextStepChangeQuery),
                         m_layerPath);
    keepPlaceHere();
    m_layerPath = engine()->layerPath();
    m_arranged = {};
}

// ---- taking steps -------------------------------------------------------------------------------

void QBQueryHistory::Private::takeModification(std::string record, const QueryOutline& outline,
                                               const QString& name, std::vector<long> layerPath) {
    const QueryPlace before = {m_layerPath, encodeArrangement(standing())};
    m_seen = std::move(record);
    m_outline = outline;
    m_layerPath = std::move(layerPath);
    push(name, before, {m_layerPath, before.arrangement}, false);
}

void QBQueryHistory::Private::push(const QString& name, QueryPlace before, QueryPlace after,
                                   bool isRepeatable) {
    keepPlace(before);
    if (m_position > 0) keepOnce(before.arrangement, step(m_position - 1)->placeAfter.arrangement);
    keepOnce(after.arrangement, before.arrangement);
    auto taken = std::make_unique<QueryStep>(name, TextDifference(m_record, m_seen),
                                             std::move(before), std::move(after));
    taken->isRepeatable = isRepeatable;
    m_record = m_seen;
    {
        const QScopedValueRollback<bool> guard(isStackOurs, true);
        stack.push(taken.release());
        m_position = stack.index();
    }
    Q_EMIT q->changed();
}

QueryStep* QBQueryHistory::Private::step(int index) const {
    return const_cast<QueryStep*>(static_cast<const QueryStep*>(stack.command(index)));
}

/// Null if the last step has been undone.
QueryStep* QBQueryHistory::Private::lastStep() const {
    const bool isThere = m_position > 0 && m_position == stack.count();
    return isThere ? step(m_position - 1) : nullptr;
}

/// How the diagram stood before the change that has just been announced. When the user deletes
/// items they are gone by now; and what he drags is nowhere yet.
DiagramArrangement QBQueryHistory::Private::standing() const {
    if (!diagram) return {};
    if (diagram->isGestureUnderWay()) return m_arranged;
    DiagramArrangement present = diagram->arrangement();
    return isCovered(m_arranged, present) ? present : m_arranged;
}

/// Steps lead to how everything stood when that place was left: items take the size of fields that
/// come late, users scroll and select, hosts load layouts.
void QBQueryHistory::Private::keepPlace(const QueryPlace& here) {
    const auto keep = [&here](QueryPlace& place) {
        const bool isHere = place.layerPath == here.layerPath;
        if (isHere && place.arrangement != here.arrangement) place.arrangement = here.arrangement;
    };
    if (m_position > 0) keep(step(m_position - 1)->placeAfter);
    if (m_position < stack.count()) keep(step(m_position)->placeBefore);
}

void QBQueryHistory::Private::keepPlaceHere() {
    if (diagram && !m_isDiagramBehind) keepPlace({m_layerPath, encodeArrangement(standing())});
}

/// Items that are gone by now are those of a change that has not been announced yet.
void QBQueryHistory::Private::rememberArrangement() {
    if (diagram && !m_isRestoring) m_arranged = standing();
}

void QBQueryHistory::Private::synchronised() {
    m_isDiagramBehind = false;
    if (!m_isRestoring && !diagram->isGestureUnderWay()) m_arranged = diagram->arrangement();
}

void QBQueryHistory::Private::arranged(const QString& name, bool isRepeatable) {
    if (m_isRestoring || !engine()) return;
    const QByteArray before = encodeArrangement(m_arranged);
    m_arranged = diagram->arrangement();
    const QByteArray after = encodeArrangement(m_arranged);
    if (isRepeatable && continuesLastStep(name, before)) {
        lastStep()->placeAfter.arrangement = after;
        return Q_EMIT q->changed();
    }
    push(name, {m_layerPath, before}, {m_layerPath, after}, isRepeatable);
}

bool QBQueryHistory::Private::continuesLastStep(const QString& name,
                                                const QByteArray& before) const {
    const QueryStep* const last = lastStep();
    return last && last->isRepeatable && last->text() == name && !stack.isClean() &&
           last->placeAfter.arrangement == before && last->placeAfter.layerPath == m_layerPath;
}

// ---- back and forth -----------------------------------------------------------------------------

void QBQueryHistory::Private::startAnew() {
    {
        const QScopedValueRollback<bool> guard(isStackOurs, true);
        stack.clear();
    }
    m_position = 0;
    nextName.clear();
    m_rootId = rootId();
    lookAround();
    m_record = m_seen;
}

/// Takes notice of how everything is.
void QBQueryHistory::Private::lookAround() {
    m_seen = engine() ? engine()->recordQuery() : std::string();
    m_outline = m_rootId ? outline() : QueryOutline();
    m_layerPath = engine() ? engine()->layerPath() : std::vector<long>();
    m_arranged = diagram ? diagram->arrangement() : DiagramArrangement();
}

void QBQueryHistory::Private::goTo(int index) {
    if (index == m_position || isStackOurs) return;
    if (stack.count() == 0) return q->clear();  // the host has emptied it
    if (!engine() || m_rootId == 0 || q->isBusy()) return setStackIndex(m_position);
    index = takeUnannounced(index);
    keepPlaceHere();
    std::string record = m_record;
    QueryPlace place;
    for (; m_position > index; --m_position) {
        record = step(m_position - 1)->record.reverted(record);
        place = step(m_position - 1)->placeBefore;
    }
    for (; m_position < index; ++m_position) {
        record = step(m_position)->record.applied(record);
        place = step(m_position)->placeAfter;
    }
    setStackIndex(m_position);
    restore(record, place);
    Q_EMIT q->changed();
}

/// What the host has not announced yet is a step, too, and the last one: it is the one to be
/// undone, and after it there is nothing to redo. Gives the index to go to.
int QBQueryHistory::Private::takeUnannounced(int wantedIndex) {
    std::string record = engine()->recordQuery();
    if (record == m_seen) return wantedIndex;
    const int former = m_position;
    setStackIndex(former);
    takeModification(std::move(record), outline(), Tolk::localize(Tolk::TextStepChangeQuery),
                     engine()->layerPath());
    if (wantedIndex > former) return m_position;
    return wantedIndex == former - 1 ? former : wantedIndex;
}

void QBQueryHistory::Private::setStackIndex(int index) {
    const QScopedValueRollback<bool> guard(isStackOurs, true);
    stack.setIndex(index);
}

void QBQueryHistory::Private::restore(const std::string& record, const QueryPlace& place) {
    m_record = record;
    const bool isQueryThere = record == m_seen && place.layerPath == m_layerPath;
    {
        const QScopedValueRollback<bool> guard(m_isRestoring, true);
        m_isDiagramBehind = !isQueryThere;
        if (!isQueryThere && !engine()->restoreQuery(record, place.layerPath, q)) return q->clear();
        if (!engine()) return;  // who was told has ended it
        if (diagram) diagram->setArrangement(decodeArrangement(place.arrangement));
    }
    lookAround();
}

std::size_t QBQueryHistory::Private::memoryUse() const {
    std::size_t size = 0;
    for (int i = 0; i < stack.count(); ++i)
        size += step(i)->memoryUse(i > 0 ? step(i - 1) : nullptr);
    return size;
}

// ---- the history --------------------------------------------------------------------------------

QBQueryHistory::QBQueryHistory(QBDiagramPanelWidget* diagram, QObject* parent)
    : QObject(parent), d(std::make_unique<Private>(this, diagram)) {
    connect(&d->stack, &QUndoStack::indexChanged, this, [this](int index) { d->goTo(index); });
    if (!diagram) return;
    connect(diagram, &QBDiagramPanelWidget::signalSynchronised, this,
            [this] { d->synchronised(); });
    connect(diagram->commands(), &QBCanvasCommands::aboutToArrange, this,
            [this] { d->rememberArrangement(); });
    connect(diagram, &QBDiagramPanelWidget::signalArranged, this,
            [this](const QString& name, bool isRepeatable) { d->arranged(name, isRepeatable); });
    auto* const view = diagram->drawer()->getView();
    view->installEventFilter(this);
    view->viewport()->installEventFilter(this);
}

QBQueryHistory::~QBQueryHistory() {
    d->stack.disconnect(this);
    d->leaveEngine();
}

void QBQueryHistory::setEngine(QBEngine_LINUX* engine) {
    d->listenTo(engine);
    clear();
}

QUndoStack* QBQueryHistory::undoStack() const {
    return &d->stack;
}

void QBQueryHistory::nameNextStep(const QString& name) {
    d->nextName = name;
}

void QBQueryHistory::clear() {
    d->startAnew();
    Q_EMIT changed();
}

std::size_t QBQueryHistory::memoryUse() const {
    return d->memoryUse();
}

bool QBQueryHistory::isBusy() const {
    const bool isParsing = d->engine() && d->engine()->isParsingQuery();
    return isParsing || (d->diagram && d->diagram->isGestureUnderWay());
}

bool QBQueryHistory::eventFilter(QObject* watched, QEvent* event) {
    if (isBeginOrEndOfUse(event->type())) d->rememberArrangement();
    return QObject::eventFilter(watched, event);
}

}  // namespace QB
