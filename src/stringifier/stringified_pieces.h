#pragma once

#include <cstddef>
#include <forward_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace QB {

class QBQueryComponentStringifier;
struct StringifiedNode;

/// One step of writing text, in a list of what is still to be written.
///
/// The fields that a kind does not name are not set.
struct StringifiedPiece {
    enum Kind {
        Text,      ///< subject (const char*), size
        Line,      ///< as Text, then a line feed and level tabs
        Name,      ///< subject (const std::string*), to be quoted by the host
        Deferred,  ///< subject, operation, level: what the operation returns for them
        Open,      ///< subject (StringifiedPiece*): the start of what ends with that Close
        Close,     ///< subject (const AbstractQueryComponent*): its range, from size on
    };
    using Operation = StringifiedNode (*)(QBQueryComponentStringifier& stringifier,
                                          const void* object, int level);

    StringifiedPiece* next;  // not owned: of the same pieces
    const void* subject;     // not owned: static, of the model or of the same pieces
    union {
        std::size_t size;     ///< in bytes; of a Close, where its component starts
        Operation operation;  ///< never null
    };
    int level;
    Kind kind;
};

/// The pieces of one run, and the texts that are made for it. A piece that is written is used
/// again, so there are as many as wait at one time.
class StringifiedPieces {
public:
    StringifiedPieces() = default;
    StringifiedPieces(const StringifiedPieces&) = delete;
    StringifiedPieces& operator=(const StringifiedPieces&) = delete;

    /// With no field set. Ownership: stays here; valid until recycled or cleared.
    StringifiedPiece* take() {
        if (!m_recycled) return takeNew();
        StringifiedPiece* piece = m_recycled;
        m_recycled = piece->next;
        return piece;
    }

    void recycle(StringifiedPiece* piece) {
        piece->next = m_recycled;
        m_recycled = piece;
    }

    /// @p text, which then lives as long as the run.
    std::string_view keep(std::string text);

    /// Drops all pieces and texts.
    void clear();

private:
    StringifiedPiece* takeNew() {
        if (m_unused == m_end) addBlock();
        return m_unused++;
    }
    void addBlock();

    std::vector<std::unique_ptr<StringifiedPiece[]>> m_blocks;
    std::size_t m_blockSize = 0;             // of the last block, in pieces
    StringifiedPiece* m_unused = nullptr;    // not owned: in the last block
    StringifiedPiece* m_end = nullptr;       // not owned: of the last block
    StringifiedPiece* m_recycled = nullptr;  // not owned: a list
    std::forward_list<std::string> m_texts;
};

}  // namespace QB
