#include "model/liveness.h"

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

namespace QB {
namespace {

/// One entry a thread that is inside a block; recursion gives several entries.
using PinHolders = std::vector<std::thread::id>;

/// A set of ids, 64 to an entry: ids come in a row, and a large query issues them by the million.
class IdSet {
public:
    void insert(long id) { m_words[wordOf(id)] |= bitOf(id); }

    void erase(long id) {
        const auto found = m_words.find(wordOf(id));
        if (found == m_words.end()) return;
        found->second &= ~bitOf(id);
        if (found->second == 0) m_words.erase(found);
    }

    bool contains(long id) const {
        const auto found = m_words.find(wordOf(id));
        return found != m_words.end() && (found->second & bitOf(id)) != 0;
    }

private:
    // Unsigned: any number may be asked for.
    static unsigned long wordOf(long id) { return static_cast<unsigned long>(id) / 64; }
    static std::uint64_t bitOf(long id) {
        return std::uint64_t{1} << (static_cast<unsigned long>(id) % 64);
    }

    std::unordered_map<unsigned long, std::uint64_t> m_words;
};

struct Registry {
    std::mutex mutex;
    std::condition_variable pinReleased;
    long counter = 0;
    IdSet alive;
    std::unordered_map<long, long> furtherBearers;  // of ids that several objects bear
    std::unordered_map<long, PinHolders> pins;

    void removeBearer(long id) {
        const auto further =
            furtherBearers.empty() ? furtherBearers.end() : furtherBearers.find(id);
        if (further == furtherBearers.end()) {
            alive.erase(id);
        } else if (--further->second == 0) {
            furtherBearers.erase(further);
        }
    }

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
        m_alive = registry().alive.contains(id);
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
    Registry& ids = registry();
    const std::lock_guard lock(ids.mutex);
    const long id = ++ids.counter;
    ids.alive.insert(id);
    return id;
}

bool shareId(long id) {
    Registry& ids = registry();
    const std::lock_guard lock(ids.mutex);
    if (id <= 0 || id > ids.counter) return false;
    if (ids.alive.contains(id)) {
        ++ids.furtherBearers[id];
    } else {
        ids.alive.insert(id);
    }
    return true;
}

void retireId(long id) {
    Registry& ids = registry();
    std::unique_lock lock(ids.mutex);
    ids.removeBearer(id);
    const auto here = std::this_thread::get_id();
    ids.pinReleased.wait(lock, [&ids, id, here] { return !ids.isPinnedElsewhere(id, here); });
}

void runIfAlive(long id, const std::function<void(bool)>& block) {
    if (!block) throw std::bad_function_call();
    const Pin pin(id);
    block(pin.isAlive());
}

}  // namespace QB
