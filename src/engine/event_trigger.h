#pragma once

#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "engine/event_listener.h"

namespace QB {

/// One event of an object that outlives its listeners, or not.
///
/// Functions may do anything while they run: destroy their listener, other listeners or the trigger
/// itself, add listeners, fire again.
/// Thread: one, the one of the listeners.
template <typename... Args>
class QBEventTrigger {
public:
    using Function = std::function<void(Args...)>;
    using Owner = std::weak_ptr<QBEventListenerGuarantor>;

    QBEventTrigger() = default;
    virtual ~QBEventTrigger() = default;
    QBEventTrigger(const QBEventTrigger&) = delete;
    QBEventTrigger& operator=(const QBEventTrigger&) = delete;

    /// Calls @p function at every fire, until the owner of @p guarantor is gone. Functions of one
    /// owner are called in the order of adding; the order of owners means nothing.
    void addListener(Function function, const Owner& guarantor) {
        (*m_entries)[guarantor].push_back(std::move(function));
    }

    /// Calls the functions that were there at the start, but none whose owner is gone by then; the
    /// entry of such an owner disappears.
    void fire(Args... args) {
        const std::weak_ptr<Entries> entries = m_entries;
        for (const Owner& owner : owners())
            fireEntry(entries, owner, args...);
    }

private:
    using Entries = std::map<Owner, std::vector<Function>, std::owner_less<Owner>>;

    std::vector<Owner> owners() const {
        std::vector<Owner> result;
        for (const auto& entry : *m_entries)
            result.push_back(entry.first);
        return result;
    }

    /// The functions of @p owner, copied since they may change the entry; none if one is gone.
    static std::vector<Function> functionsOf(const std::weak_ptr<Entries>& entries,
                                             const Owner& owner) {
        const std::shared_ptr<Entries> held = entries.lock();
        if (!held) return {};
        const auto found = held->find(owner);
        if (found == held->end()) return {};
        if (!owner.expired()) return found->second;
        held->erase(found);
        return {};
    }

    static void fireEntry(const std::weak_ptr<Entries>& entries, const Owner& owner, Args... args) {
        for (const Function& function : functionsOf(entries, owner)) {
            // An earlier function may have destroyed the owner or the trigger.
            if (owner.expired() || entries.expired()) return;
            function(args...);
        }
    }

    const std::shared_ptr<Entries> m_entries = std::make_shared<Entries>();
};

}  // namespace QB
