#include "engine/retired_parts.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace QB {

RetiredParts::Modification::Modification(RetiredParts& parts)
    : m_parts(parts), m_number(parts.open()) {}

RetiredParts::Modification::~Modification() {
    m_parts.close(m_number, m_isAnnounced);
}

RetiredParts::Number RetiredParts::Modification::announce() {
    m_isAnnounced = true;
    return m_number;
}

bool RetiredParts::Modification::isNested() const {
    return !m_parts.isOutermost(m_number);
}

RetiredParts::Number RetiredParts::open() {
    const std::lock_guard lock(m_mutex);
    m_open.push_back(++m_lastNumber);
    m_undelivered.insert(m_lastNumber);
    return m_lastNumber;
}

void RetiredParts::close(Number number, bool isAnnounced) {
    const std::lock_guard lock(m_mutex);
    m_open.pop_back();
    // What a block retires without a change to announce waits for the next delivery.
    if (!isAnnounced) m_undelivered.erase(number);
}

bool RetiredParts::isOutermost(Number number) const {
    const std::lock_guard lock(m_mutex);
    return m_open.front() == number;
}

void RetiredParts::add(DetachedParts&& parts) {
    if (parts.isEmpty()) return;
    const std::lock_guard lock(m_mutex);
    m_waiting.push_back({m_open.empty() ? 0 : m_open.back(), std::move(parts)});
}

bool RetiredParts::markDelivered(Number number) {
    const std::lock_guard lock(m_mutex);
    m_undelivered.erase(number);
    takeDelivered();
    return m_isSweepDue;
}

void RetiredParts::takeDelivered() {
    const auto isWaiting = [this](const Batch& batch) {
        return m_undelivered.count(batch.number) > 0;
    };
    const auto delivered = std::stable_partition(m_waiting.begin(), m_waiting.end(), isWaiting);
    for (auto batch = delivered; batch != m_waiting.end(); ++batch) {
        m_delivered.add(std::move(batch->parts));
        m_isSweepDue = true;
    }
    m_waiting.erase(delivered, m_waiting.end());
}

void RetiredParts::sweep(const CollectReferences& collect) {
    const std::lock_guard lock(m_mutex);
    if (!m_open.empty()) return;
    m_delivered.freeUnreferenced(collect());
    m_isSweepDue = false;
}

void RetiredParts::visit(const std::function<void(const DetachedParts&)>& look) const {
    const std::lock_guard lock(m_mutex);
    look(m_delivered);
    for (const Batch& batch : m_waiting)
        look(batch.parts);
}

std::size_t RetiredParts::size() const {
    const std::lock_guard lock(m_mutex);
    std::size_t count = m_delivered.size();
    for (const Batch& batch : m_waiting)
        count += batch.parts.size();
    return count;
}

}  // namespace QB
