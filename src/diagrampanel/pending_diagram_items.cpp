#include "diagrampanel/pending_diagram_items.h"

#include <algorithm>
#include <utility>

#include "diagrampanel/candidate_loads.h"
#include "engine/engine.h"
#include "engine/engine_core.h"

namespace QB {
namespace {

/// The index of the layer whose statement has that id; -1 if it is not open.
int openLayer(const QBEngine& engine, long statementId) {
    for (int layer = engine.currentTopLevelQueryComponentLayer(); layer >= 0; --layer) {
        const auto* statement = engine.topLevelQueryComponent(layer);
        if (statement && statement->id() == statementId) return layer;
    }
    return -1;
}

}  // namespace

PendingDiagramItems::PendingDiagramItems(Deliver deliver) : m_deliver(std::move(deliver)) {}

PendingDiagramItems::~PendingDiagramItems() = default;

void PendingDiagramItems::add(const QBEngine& engine, const QBIdentifierCandidate* candidate,
                              Source source, QPoint dropPoint) {
    Item item;
    item.source = std::move(source);
    item.path = engine.candidatePath(candidate);
    item.layerId = engine.currentTopLevelQueryComponent()->id();
    item.dropPoint = dropPoint;
    m_items.push_back(std::move(item));
}

void PendingDiagramItems::loadEnded(const QBEngine& engine,
                                    const QBIdentifierCandidate* candidate) {
    if (m_items.empty()) return;
    for (Item& item : m_items)
        item.isReady = item.isReady || isLoadDecided(engine, item.path, candidate);
    deliverReady(engine);
}

void PendingDiagramItems::deliverReady(const QBEngine& engine) {
    dropOrphans(engine);
    // The text that is being read takes the place of all that its layer holds.
    while (!engine.isParsingQuery()) {
        const auto isDue = [&engine](const Item& item) {
            return item.isReady && openLayer(engine, item.layerId) >= 0;
        };
        const auto due = std::find_if(m_items.begin(), m_items.end(), isDue);
        if (due == m_items.end()) return;
        // Delivery notifies others, who may add items, reset or change the layer.
        Item item = std::move(*due);
        m_items.erase(due);
        m_deliver(std::move(item.source), openLayer(engine, item.layerId), item.dropPoint);
    }
}

void PendingDiagramItems::dropOrphans(const QBEngine& engine) {
    const auto isOrphan = [&engine](const Item& item) {
        return !engine.core()->withLiveComponent(item.layerId, [] {});
    };
    m_items.erase(std::remove_if(m_items.begin(), m_items.end(), isOrphan), m_items.end());
}

}  // namespace QB
