#include "model/liveness.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace QB {
namespace {

/// One entry a thread that is inside a block; recursion gives several entries.
using PinHolders = std::vector<std::thread::id>;

struct Registry {
    std::mutex mutex;
    std::condition_variable pinReleased;
    long counter = 0;
    std::unordered_set<long> alive;
    std::unordered_map<long, PinHolders> pins;

    bool isPinnedElsewhere(long id, std::thread::id here) const {
        const auto found = pins.find(id);
        if (found == pins.end()) return false;
        return std::any_of(found->second.begin(), found->second.end(),
                           [here](std::thread::id holder) { return holder != here; });
    }
};

/// Never destroyed: components with static lifetime retire their ids at exit.
Registry& registry() {
    static auto* const instance = new Registry;
    return *instance;
}

/// Holds one id for the length of a block, if it is alive.
class Pin {
public:
    explicit Pin(long id) : m_id(id) {
        const std::lock_guard lock(registry().mutex);
        m_alive = registry().alive.count(id) > 0;
        if (m_alive) registry().pins[id].push_back(std::this_thread::get_id());
    }

    ~Pin() {
        if (!m_alive) return;
        const std::lock_guard lock(registry().mutex);
        PinHolders& holders = registry().pins[m_id];
        holders.erase(std::find(holders.begin(), holders.end(), std::this_thread::get_id()));
        if (holders.empty()) registry().pins.erase(m_id);
        registry().pinReleased.notify_all();
    }

    Pin(const Pin&) = delete;
    Pin& operator=(const Pin&) = delete;

    bool isAlive() const { return m_alive; }

private:
    long m_id;
    bool m_alive = false;
};

}  // namespace

long issueId() {
    const std::lock_guard lock(registry().mutex);
    const long id = ++registry().counter;
    registry().alive.insert(id);
    return id;
}

void retireId(long id) {
    std::unique_lock lock(registry().mutex);
    registry().alive.erase(id);
    const auto here = std::this_thread::get_id();
    registry().pinReleased.wait(lock,
                                [id, here] { return !registry().isPinnedElsewhere(id, here); });
}

void runIfAlive(long id, const std::function<void(bool)>& block) {
    if (!block) throw std::bad_function_call();
    const Pin pin(id);
    block(pin.isAlive());
}

}  // namespace QB
