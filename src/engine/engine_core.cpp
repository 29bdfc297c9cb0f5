#include "engine/engine_core.h"

#include <algorithm>

#include "engine/main_thread_call.h"

namespace QB {
namespace {

using FieldPathPair = QBForeignKeyConstraint::value_type;

bool isOfSameTable(const QBIdentifierFieldPath& a, const QBIdentifierFieldPath& b) {
    return a.schema == b.schema && a.object == b.object;
}

/// A field stands in a key once.
bool takesPair(const QBForeignKeyConstraint& key, const FieldPathPair& pair) {
    if (!isOfSameTable(key.front().first, pair.first)) return false;
    if (!isOfSameTable(key.front().second, pair.second)) return false;
    return std::none_of(key.begin(), key.end(), [&pair](const FieldPathPair& earlier) {
        return earlier.first == pair.first || earlier.second == pair.second;
    });
}

/// The keys come in the order of their first pairs, since the pairs come in order.
std::vector<QBForeignKeyConstraint> groupedIntoKeys(const QBForeignKeys& pairs) {
    std::vector<QBForeignKeyConstraint> keys;
    for (const FieldPathPair& pair : pairs) {
        const auto key = std::find_if(keys.begin(), keys.end(), [&pair](const auto& earlier) {
            return takesPair(earlier, pair);
        });
        if (key == keys.end()) {
            keys.push_back({pair});
        } else {
            key->push_back(pair);
        }
    }
    return keys;
}

/// A host may name a key twice, as one of the object and as one of the others.
std::vector<QBForeignKeyConstraint> inOrderAndOnce(std::vector<QBForeignKeyConstraint> keys) {
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    if (!keys.empty() && keys.front().empty()) keys.erase(keys.begin());
    return keys;
}

}  // namespace

QBEngineCore::~QBEngineCore() = default;

bool QBEngineCore::withLiveComponent(long componentId, const std::function<void()>& read) {
    // The mutex comes first: whoever destroys the component has it, so the answer stays true.
    const std::lock_guard lock(queryComponentAccessMutex);
    if (!isAlive(componentId)) return false;
    read();
    return true;
}

void QBEngineCore::noteReplaced(const std::vector<Component::AbstractQueryComponent*>& layers) {
    m_replaced.clear();
    for (Component::AbstractQueryComponent* layer : layers)
        m_replaced.emplace(layer->id(), layer);
}

void QBEngineCore::setUpdater(const QBCandidateChildrenUpdater& updater) {
    const std::lock_guard lock(m_callbackMutex);
    m_updater = updater;
}

QBCandidateChildrenUpdater QBEngineCore::updater() const {
    const std::lock_guard lock(m_callbackMutex);
    return m_updater;
}

void QBEngineCore::setSearcher(const QBForeignKeySearcher& searcher) {
    const std::lock_guard lock(m_callbackMutex);
    m_searcher = searcher;
}

QBForeignKeySearcher QBEngineCore::searcher() const {
    const std::lock_guard lock(m_callbackMutex);
    return m_searcher;
}

void QBEngineCore::setConstraintSearcher(const QBForeignKeyConstraintSearcher& searcher) {
    const std::lock_guard lock(m_callbackMutex);
    m_constraintSearcher = searcher;
}

QBForeignKeyConstraintSearcher QBEngineCore::constraintSearcher() const {
    const std::lock_guard lock(m_callbackMutex);
    return m_constraintSearcher;
}

std::vector<QBForeignKeyConstraint> QBEngineCore::foreignKeys(
    const QBIdentifierObjectPath& object, const std::set<QBIdentifierObjectPath>& others) const {
    if (const auto searchKeys = constraintSearcher())
        return inOrderAndOnce(searchKeys(object, others));
    const QBForeignKeySearcher searchPairs = searcher();
    return searchPairs ? groupedIntoKeys(searchPairs(object, others))
                       : std::vector<QBForeignKeyConstraint>();
}

void QBEngineCore::addRequest(RefreshRequest request) {
    const std::lock_guard lock(m_requestMutex);
    m_requests.push_back(std::move(request));
}

std::vector<QBEngineCore::RefreshRequest> QBEngineCore::takeRequests() {
    const std::lock_guard lock(m_requestMutex);
    return std::exchange(m_requests, {});
}

}  // namespace QB
