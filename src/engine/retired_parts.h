#pragma once

#include <functional>
#include <mutex>
#include <set>
#include <vector>

#include "model/detached_parts.h"

namespace QB {

/// What modifications took out of the statements, kept until the notification of the modification
/// was delivered and nothing refers to it any more.
///
/// Modifications are numbered. A part is tagged with the modification that retired it, and waits
/// while that one is announced but not delivered, whatever other notifications arrive in between.
/// Thread: any; the mutex inside is innermost. Callers of add and sweep hold
/// queryComponentAccessMutex.
class RetiredParts {
public:
    using Number = unsigned long;
    using CollectReferences = std::function<DetachedParts::References()>;

    /// One modification block: numbered at construction, closed when it leaves its scope.
    class Modification {
    public:
        explicit Modification(RetiredParts& parts);
        ~Modification();
        Modification(const Modification&) = delete;
        Modification& operator=(const Modification&) = delete;

        /// The notification will follow: markDelivered is to be called with this number.
        Number announce();
        /// True inside the block of another modification.
        bool isNested() const;

    private:
        RetiredParts& m_parts;
        const Number m_number;
        bool m_isAnnounced = false;
    };

    /// Keeps @p parts until the innermost open modification was delivered; outside of any, until
    /// the next delivery.
    void add(DetachedParts&& parts);

    /// Notes that all listeners know of the modification. True if sweep may now find something.
    bool markDelivered(Number number);

    /// Frees what was delivered and is in none of the references; does nothing while a modification
    /// is open (a block may still hold what an inner one retired).
    void sweep(const CollectReferences& collect);

    /// Calls @p look with all that is kept, in several lists.
    void visit(const std::function<void(const DetachedParts&)>& look) const;

    /// How many parts are kept.
    std::size_t size() const;

private:
    struct Batch {
        Number number;
        DetachedParts parts;
    };

    Number open();
    void close(Number number, bool isAnnounced);
    bool isOutermost(Number number) const;
    void takeDelivered();

    mutable std::mutex m_mutex;
    Number m_lastNumber = 0;
    std::vector<Number> m_open;      // innermost last
    std::set<Number> m_undelivered;  // open or announced
    std::vector<Batch> m_waiting;    // for delivery
    DetachedParts m_delivered;       // referred to when last looked at, or not looked at yet
    bool m_isSweepDue = false;
};

}  // namespace QB
