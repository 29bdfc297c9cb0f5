#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/sqlet/token.h"

/// The words of all families and of the grammar, found by one look.
namespace sqlet {

/// Families are numbered from 1, as in words.h; dialect N is family N, and MariaDB's is 1.
constexpr int familyCount = 6;
constexpr int dialectCount = 5;

struct TableWord {
    std::string text;  ///< in upper case
    Keyword keyword = Keyword::None;
    /// Bits of SqletWordFlag, by family - 1.
    std::array<std::uint8_t, familyCount> familyFlags = {};
    /// The same by dialect - 1. In dialect 1 a word is RESERVED or NO_BARE_ALIAS only if it is so
    /// in MySQL and in MariaDB, since a text of either is read by it.
    std::array<std::uint8_t, dialectCount> dialectFlags = {};
};

/// What tells words apart at one look: the first and the last eight bytes, without case.
struct WordKey {
    std::uint64_t head = 0;
    std::uint64_t tail = 0;
    std::uint64_t length = 0;

    bool isWhole() const { return length <= 16; }
    bool operator==(const WordKey& other) const {
        return head == other.head && tail == other.tail && length == other.length;
    }
};

class WordTable {
public:
    /// Made when first asked for. Thread: any.
    static const WordTable& instance();

    /// @p text, a name without control characters, in any case; null if it is no word of any
    /// family.
    const TableWord* find(std::string_view text) const;

    /// Word @p index of @p family in alphabetical order; null behind the last.
    const TableWord* at(int family, std::size_t index) const;

private:
    WordTable();
    void enter(std::uint16_t word);

    std::vector<TableWord> m_words;  // in alphabetical order
    std::vector<WordKey> m_keys;     // of m_words
    std::array<std::vector<std::uint16_t>, familyCount> m_byFamily;
    /// Open addressing: what lies where its hash says, or behind it.
    struct Slot {
        std::uint32_t hash = 0;
        std::uint16_t word = 0;  // index + 1; 0: empty
    };
    static constexpr std::uint32_t slotCount = 8192;
    std::vector<Slot> m_slots;
};

}  // namespace sqlet
