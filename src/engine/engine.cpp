#include "engine/engine.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "engine/candidate_refresh.h"
#include "engine/engine_core.h"
#include "engine/main_thread_call.h"
#include "engine/protocol_error.h"
#include "model/detached_parts.h"
#include "model/liveness.h"
#include "model/names.h"
#include "model/notification_names.h"
#include "platform/tolk/tolk.h"
#include "stringifier/query_component_stringifier.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

/// A listener, shared by the table and the calls that are under way. Its address is the token.
struct QBEngine::ListenerEntry {
    Listener listener;
    bool isRegistered = true;

    long token() const { return static_cast<long>(reinterpret_cast<std::intptr_t>(this)); }
};

QBEngine::QBEngine() : m_id(issueId()), m_core(std::make_shared<QBEngineCore>()) {}

QBEngine::~QBEngine() {
    endLife();
}

void QBEngine::endLife() {
    retireId(m_id);
}

std::recursive_mutex& QBEngine::queryComponentAccessMutex() {
    return m_core->queryComponentAccessMutex;
}

// ---- server ---------------------------------------------------------------------------------

QBDatabaseInfo QBEngine::databaseInfo() const {
    const std::lock_guard lock(m_stateMutex);
    return m_databaseInfo;
}

DatabaseType QBEngine::databaseType() const {
    return databaseInfo().databaseType;
}

int QBEngine::databaseVersion() const {
    return databaseInfo().databaseVersion;
}

void QBEngine::setDatabaseInfo(DatabaseType type, int version) {
    const QBDatabaseInfo earlier = databaseInfo();
    const bool isTypeChanged = type != earlier.databaseType;
    const bool isVersionChanged = version != earlier.databaseVersion;
    if (!isTypeChanged && !isVersionChanged) return;
    {
        const std::lock_guard lock(m_stateMutex);
        m_databaseInfo = {type, version};
    }
    m_core->candidates.setNamesHaveCase(namesHaveCase(type));
    const long id = m_id;
    dbInfoChanged();
    if (!isAlive(id)) return;
    const QBNotificationParameters params = {{"dbTypeChanged", int(isTypeChanged)},
                                             {"dbVersionChanged", int(isVersionChanged)}};
    notifyChange(Notification::databaseServerChanged, &params);
}

std::string QBEngine::currentSchema() const {
    const std::lock_guard lock(m_stateMutex);
    return m_currentSchema;
}

void QBEngine::setCurrentSchema(const std::string& schema) {
    if (schema == currentSchema()) return;
    {
        const std::lock_guard lock(m_stateMutex);
        m_currentSchema = schema;
    }
    notifyChange(Notification::currentSchemaChanged, nullptr);
}

void QBEngine::dbInfoChanged() {
    replaceRootStatement();
    notifyChange(Notification::topLevelQueryComponentLayerChanged, nullptr);
}

/// Other threads find the old stack or the new one, never an empty one.
void QBEngine::replaceRootStatement() {
    const Layer root = {createTopLevelQueryComponentForCurrentDatabase(), {}, true};
    const std::lock_guard statements(m_core->queryComponentAccessMutex);
    std::vector<Layer> replaced = {root};
    {
        const std::lock_guard lock(m_stateMutex);
        m_layers.swap(replaced);
    }
    m_layerNames.clear();
    if (replaced.empty()) return;
    // The statements of deeper layers are part of this one.
    destroyUnownedClauses(replaced.front().statement);
    delete replaced.front().statement;
}

// ---- layers ---------------------------------------------------------------------------------

AbstractTopLevelQueryComponent* QBEngine::createTopLevelQueryComponentForCurrentDatabase() const {
    return hasStatementModel(databaseType()) ? new SQLSelectStmtComponent : nullptr;
}

std::string QBEngine::generateTopLevelQueryComponentRootLayerName() const {
    if (!hasStatementModel(databaseType())) return "(Root)";
    return "(" + Tolk::localize(Tolk::TextMainQuery).toStdString() + ")";
}

std::vector<AbstractTopLevelQueryComponent*> QBEngine::layerStatements() const {
    const std::lock_guard lock(m_stateMutex);
    std::vector<Statement*> statements;
    for (const Layer& layer : m_layers)
        statements.push_back(layer.statement);
    return statements;
}

/// Null for a layer outside the stack.
AbstractTopLevelQueryComponent* QBEngine::findStatement(int layer) const {
    const std::lock_guard lock(m_stateMutex);
    const bool isLayer = layer >= 0 && layer < static_cast<int>(m_layers.size());
    return isLayer ? m_layers[static_cast<std::size_t>(layer)].statement : nullptr;
}

int QBEngine::currentTopLevelQueryComponentLayer() const {
    const std::lock_guard lock(m_stateMutex);
    return static_cast<int>(m_layers.size()) - 1;
}

AbstractTopLevelQueryComponent* QBEngine::currentTopLevelQueryComponent() const {
    const std::lock_guard lock(m_stateMutex);
    return m_layers.empty() ? nullptr : m_layers.back().statement;
}

AbstractTopLevelQueryComponent* QBEngine::topLevelQueryComponent(int layer) const {
    const std::lock_guard lock(m_stateMutex);
    if (layer < 0 && layer >= static_cast<int>(m_layers.size())) {
        throwProtocolError("topLevelQueryComponent: Out of bound");
    }
    return m_layers[static_cast<std::size_t>(layer)].statement;
}

std::string QBEngine::topLevelQueryComponentLayerName(int layer) const {
    std::unique_lock lock(m_stateMutex);
    if (layer < 0 && layer >= static_cast<int>(m_layers.size())) {
        throwProtocolError("topLevelQueryComponentLayerName: Out of bound");
    }
    const Layer entry = m_layers[static_cast<std::size_t>(layer)];
    lock.unlock();
    return entry.hasRootName ? generateTopLevelQueryComponentRootLayerName() : entry.name;
}

void QBEngine::pushNewLayerTopLevelQueryComponent(AbstractTopLevelQueryComponent* statement,
                                                  const std::string& name) {
    {
        const std::lock_guard lock(m_stateMutex);
        m_layers.push_back({statement, name, false});
    }
    if (statement) m_layerNames[statement->id()] = name;
    notifyChange(Notification::topLevelQueryComponentLayerChanged, nullptr);
}

void QBEngine::popCurrentLayerTopLevelQueryComponent() {
    Statement* popped = nullptr;
    {
        const std::lock_guard lock(m_stateMutex);
        if (m_layers.size() <= 1) {
            throwProtocolError(
                "popCurrentLayerTopLevelQueryComponent: You cannot pop the root layer");
        }
        popped = m_layers.back().statement;
        m_layers.pop_back();
    }
    const QBNotificationParameters params = {{"poppedLayer", static_cast<void*>(popped)}};
    notifyChange(Notification::topLevelQueryComponentLayerChanged, &params);
}

void QBEngine::resetUi() {
    const long id = m_id;
    while (currentTopLevelQueryComponentLayer() > 0) {
        popCurrentLayerTopLevelQueryComponent();
        if (!isAlive(id)) return;
    }
    notifyChange(Notification::uiReset, nullptr);
}

// ---- statements -----------------------------------------------------------------------------

ELEMAbstractTopLevelQueryExpr* QBEngine::modify_obtainElement(
    TopLevelQueryComponentElementEnum element, int layer) const {
    Statement* const statement = findStatement(layer);
    return statement ? statement->element(element) : nullptr;
}

void QBEngine::runModification(TopLevelQueryComponentElementEnum element, int layer,
                               const UntypedBlock& block, void* sender) {
    if (!block) throwProtocolError("No modification block");
    RetiredParts::Number number = 0;
    {
        const std::lock_guard lock(m_core->queryComponentAccessMutex);
        RetiredParts::Modification modification(m_core->retired);
        ELEMAbstractTopLevelQueryExpr* const expression = modify_obtainElement(element, layer);
        const BlockOutcome outcome = expression ? block(expression) : BlockOutcome::Inconsistent;
        if (outcome == BlockOutcome::Inconsistent) std::perror("Inconsistent component requested");
        if (!modification.isNested()) checkStatements(element, layer);
        if (outcome != BlockOutcome::Changed) return;
        number = modification.announce();
    }
    postModified(element, layer, sender, [this, number] { sweepRetired(number); });
}

/// What a block leaves behind must be whole, whether it says that it changed something or not.
void QBEngine::checkStatements(TopLevelQueryComponentElementEnum element, int layer) const {
    if constexpr (checksModifications) {
        const std::vector<Statement*> layers = layerStatements();
        m_core->modificationCheck.run({element, layer, databaseType(), currentSchema()},
                                      {layers.begin(), layers.end()}, m_core->retired);
    }
}

void QBEngine::modify_notify(TopLevelQueryComponentElementEnum element, int layer, void* sender) {
    postModified(element, layer, sender, nullptr);
}

/// @p delivered runs after all listeners, if the engine is still there.
void QBEngine::postModified(TopLevelQueryComponentElementEnum element, int layer, void* sender,
                            std::function<void()> delivered) {
    QBNotificationParameters params = modifiedParameters({element}, layer, sender);
    if (const FollowUp* const followUp = FollowUp::innermostFor(m_core.get()))
        params["followsUp"] = followUp->m_isNext;
    else
        ++m_core->userModificationCount;
    postToMainThread(
        m_id, [this, id = m_id, params = std::move(params), delivered = std::move(delivered)] {
            notifyChange(Notification::topLevelQueryComponentElementModified, &params);
            if (delivered && isAlive(id)) delivered();
        });
}

QBNotificationParameters QBEngine::modifiedParameters(
    const std::set<TopLevelQueryComponentElementEnum>& elements, int layer, void* sender) {
    QBNotificationParameters params = {
        {"layer", layer}, {"sender", sender}, {"elements.size", static_cast<int>(elements.size())}};
    int index = 0;
    for (const TopLevelQueryComponentElementEnum element : elements)
        params["elements[" + std::to_string(index++) + "]"] = static_cast<int>(element);
    return params;
}

void QBEngine::retire(DetachedParts&& parts) {
    m_core->retired.add(std::move(parts));
}

/// Reads the statements only if there is something to free.
void QBEngine::sweepRetired(unsigned long modification) {
    if (!m_core->retired.markDelivered(modification)) return;
    const std::lock_guard lock(m_core->queryComponentAccessMutex);
    m_core->retired.sweep([this] {
        DetachedParts::References references;
        for (const Statement* statement : layerStatements()) {
            if (statement) references.insert(statement);
            collectReferences(statement, references);
        }
        return references;
    });
}

std::string QBEngine::buildQuery() const {
    const auto stringifier = QBQueryComponentStringifier::createStringifier(databaseInfo());
    if (!stringifier) return {};
    stringifier->setCurrentSchema(currentSchema());
    return stringifier->stringifyQuery(findStatement(0));
}

// ---- listeners ------------------------------------------------------------------------------

void QBEngine::notifyChange(const std::string& name, const QBNotificationParameters* params) {
    const long id = m_id;
    const auto entries = m_listeners[name];
    for (const auto& entry : entries) {
        if (!entry->isRegistered) continue;
        entry->listener(name, params);
        if (!isAlive(id)) return;
    }
    notified(name, params);
}

long QBEngine::registerNotifyChangeListener(const std::string& name, const Listener& listener) {
    const auto entry = std::make_shared<ListenerEntry>();
    entry->listener = listener;
    m_listeners[name].push_back(entry);
    return entry->token();
}

void QBEngine::unregisterNotifyChangeListener(const std::string& name, long token) {
    auto& entries = m_listeners[name];
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [token](const auto& entry) { return entry->token() == token; });
    if (found == entries.end()) return;
    (*found)->isRegistered = false;
    entries.erase(found);
}

}  // namespace QB
