#pragma once

#include <vector>

namespace QB {

/// One T for each layer of the query; a panel keeps there what belongs to a layer while subqueries
/// are open above it.
template <typename T>
class PerLayer {
public:
    /// Drops what lies above @p currentLayer and adds empty ones up to it; -1 leaves none.
    void adjustTo(int currentLayer) {
        m_layers.resize(static_cast<std::size_t>(currentLayer + 1));
        m_none = T();
    }

    /// That of the current layer; without any layer one that adjustTo() drops.
    T& top() { return m_layers.empty() ? m_none : m_layers.back(); }
    const T& top() const { return m_layers.empty() ? m_none : m_layers.back(); }

    std::size_t size() const { return m_layers.size(); }
    void clear() {
        m_layers.clear();
        m_none = T();
    }

private:
    std::vector<T> m_layers;
    T m_none{};
};

}  // namespace QB
