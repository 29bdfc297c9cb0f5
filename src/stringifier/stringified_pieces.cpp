#include "stringifier/stringified_pieces.h"

#include <algorithm>
#include <utility>

namespace QB {
namespace {

// In pieces. The first block holds all of a short statement.
constexpr std::size_t firstBlockSize = 32;
constexpr std::size_t largestBlockSize = 4096;

}  // namespace

void StringifiedPieces::addBlock() {
    const std::size_t size =
        m_blocks.size() < 4 ? firstBlockSize : std::min(2 * m_blockSize, largestBlockSize);
    // Not by make_unique, which would write zeroes into all of it.
    m_blocks.emplace_back(new StringifiedPiece[size]);
    m_blockSize = size;
    m_unused = m_blocks.back().get();
    m_end = m_unused + size;
}

std::string_view StringifiedPieces::keep(std::string text) {
    return m_texts.emplace_front(std::move(text));
}

void StringifiedPieces::clear() {
    m_texts.clear();
    m_blocks.clear();
    m_unused = m_end = m_recycled = nullptr;
}

}  // namespace QB
