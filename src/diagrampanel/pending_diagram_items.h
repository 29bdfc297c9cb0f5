#pragma once

#include <QPoint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "model/components.h"

namespace QB {

class QBEngine;
struct QBIdentifierCandidate;

/// Sources that wait until the fields of their table have been fetched.
///
/// An entry knows its table by names and its layer by the statement's id, since candidates are
/// replaced by others and layers close. It is ready when the load has ended, whatever came of it:
/// with fields, without, or with the table gone. A ready source is handed over if its layer is
/// open, the current one or one below it. If the user has left the layer, a subquery, meanwhile, it
/// waits until they enter it again; if the layer's statement is destroyed, the source goes with it.
/// Thread: main.
class PendingDiagramItems {
public:
    using Source = std::unique_ptr<Component::SQL::SQLIdentifierSourceComponent>;
    /// Adds a source to the layer of that index.
    using Deliver = std::function<void(Source source, int layer, QPoint dropPoint)>;

    explicit PendingDiagramItems(Deliver deliver);
    ~PendingDiagramItems();

    /// @p candidate is in the engine's tree, and there is a current statement.
    void add(const QBEngine& engine, const QBIdentifierCandidate* candidate, Source source,
             QPoint dropPoint);
    /// A load of @p candidate's children has ended; null stands for the root.
    void loadEnded(const QBEngine& engine, const QBIdentifierCandidate* candidate);
    /// Hands over what is ready for the layers that are open; nothing while a text is parsed.
    void deliverReady(const QBEngine& engine);
    void clear() { m_items.clear(); }
    std::size_t size() const { return m_items.size(); }

private:
    struct Item {
        Source source;
        std::vector<std::string> path;  ///< of the candidate, outermost name first
        long layerId;                   ///< the id of the layer's statement
        QPoint dropPoint;
        bool isReady = false;
    };

    void dropOrphans(const QBEngine& engine);

    const Deliver m_deliver;
    std::vector<Item> m_items;
};

}  // namespace QB
