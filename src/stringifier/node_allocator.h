#pragma once

#include <cassert>
#include <cstddef>
#include <memory>
#include <memory_resource>
#include <new>
#include <type_traits>

namespace QB {

/// What the copies of an allocator share.
struct NodeBlocks {
    // In the place of a node: all nodes of a container are of one type.
    struct Erased {
        Erased* next;
    };

    std::pmr::monotonic_buffer_resource memory;
    Erased* erased = nullptr;  // not owned: a list in memory
};

/// Gives the nodes of one list, set or map memory from a few large blocks, which go when the
/// container goes; a node that is erased is used again. For containers that are made as a whole,
/// where asking the heap for each node is most of the work.
///
/// A copy of a container has blocks of its own. Thread: as the container; one that was moved from
/// shares its blocks with the one it was moved to, so it is not used on another thread.
template <typename T>
class NodeAllocator {
public:
    using value_type = T;
    using propagate_on_container_move_assignment = std::true_type;
    using propagate_on_container_swap = std::true_type;

    NodeAllocator() : m_blocks(std::make_shared<NodeBlocks>()) {}
    // Copied also where it could be moved: a container that was moved from can be filled again.
    NodeAllocator(const NodeAllocator&) noexcept = default;
    NodeAllocator& operator=(const NodeAllocator&) noexcept = default;
    ~NodeAllocator() = default;
    template <typename Other>
    NodeAllocator(const NodeAllocator<Other>& other) noexcept : m_blocks(other.m_blocks) {}

    NodeAllocator select_on_container_copy_construction() const { return {}; }

    T* allocate(std::size_t count) {
        assert(count == 1 && sizeof(T) >= sizeof(NodeBlocks::Erased));
        NodeBlocks::Erased* const erased = m_blocks->erased;
        if (!erased)
            return static_cast<T*>(m_blocks->memory.allocate(count * sizeof(T), alignof(T)));
        m_blocks->erased = erased->next;
        return reinterpret_cast<T*>(erased);
    }

    void deallocate(T* node, std::size_t) noexcept {
        m_blocks->erased = new (static_cast<void*>(node)) NodeBlocks::Erased{m_blocks->erased};
    }

    friend bool operator==(const NodeAllocator& a, const NodeAllocator& b) {
        return a.m_blocks == b.m_blocks;
    }
    friend bool operator!=(const NodeAllocator& a, const NodeAllocator& b) { return !(a == b); }

private:
    template <typename Other>
    friend class NodeAllocator;
    std::shared_ptr<NodeBlocks> m_blocks;
};

}  // namespace QB
