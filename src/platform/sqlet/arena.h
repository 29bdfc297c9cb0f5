#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace sqlet {

/// Memory that is given out piece by piece and freed at once, with the arena. What lies in it is
/// never destroyed, so it holds trivially destructible things only.
class Arena {
public:
    Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    template <typename T, typename... Args>
    T* make(Args&&... args) {
        static_assert(std::is_trivially_destructible_v<T>);
        return new (allocate(sizeof(T), alignof(T))) T{std::forward<Args>(args)...};
    }

    /// A copy of the elements, or null for none.
    template <typename T>
    T* copy(const T* from, std::size_t count) {
        static_assert(std::is_trivially_copyable_v<T>);
        if (count == 0) return nullptr;
        void* place = allocate(sizeof(T) * count, alignof(T));
        std::memcpy(place, from, sizeof(T) * count);
        return static_cast<T*>(place);
    }

    /// A copy of @p text with a NUL behind it.
    const char* copyText(std::string_view text) {
        char* place = static_cast<char*>(allocate(text.size() + 1, 1));
        if (!text.empty()) std::memcpy(place, text.data(), text.size());
        place[text.size()] = '\0';
        return place;
    }

    void* allocate(std::size_t size, std::size_t alignment) {
        const std::size_t begin = (m_used + alignment - 1) & ~(alignment - 1);
        if (begin + size > m_capacity) return allocateInNewChunk(size);
        m_used = begin + size;
        return m_chunk + begin;
    }

private:
    static constexpr std::size_t firstChunkSize = 4 * 1024;
    static constexpr std::size_t chunkSize = 64 * 1024;

    void* allocateInNewChunk(std::size_t size) {
        const std::size_t usual = m_chunks.empty() ? firstChunkSize : chunkSize;
        const bool isLarge = size > usual / 2;
        m_chunks.emplace_back(new char[isLarge ? size : usual]);
        char* chunk = m_chunks.back().get();
        if (isLarge) return chunk;  // the chunk in use goes on
        m_chunk = chunk;
        m_capacity = usual;
        m_used = size;
        return chunk;
    }

    std::vector<std::unique_ptr<char[]>> m_chunks;
    char* m_chunk = nullptr;
    std::size_t m_capacity = 0;
    std::size_t m_used = 0;
};

}  // namespace sqlet
