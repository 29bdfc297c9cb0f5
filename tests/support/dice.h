#pragma once

#include <cstddef>
#include <random>

namespace QB::Test {

/// The choices of a random test: the same for the same seed.
class Dice {
public:
    explicit Dice(int seed) : m_random(static_cast<unsigned>(seed)) {}

    /// From 0 to @p count - 1.
    int pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }
    bool isOneIn(int count) { return pick(count) == 0; }
    /// @p list is not empty.
    template <typename List>
    auto pickFrom(const List& list) {
        return list[static_cast<std::size_t>(pick(static_cast<int>(list.size())))];
    }

private:
    std::mt19937 m_random;
};

}  // namespace QB::Test
