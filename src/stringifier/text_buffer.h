#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace QB {

/// A text that grows at its end.
class TextBuffer {
public:
    TextBuffer() : m_text(firstSize, '\0'), m_at(m_text.data()), m_end(m_at + firstSize) {}
    TextBuffer(const TextBuffer&) = delete;
    TextBuffer& operator=(const TextBuffer&) = delete;

    /// In bytes.
    std::size_t size() const { return static_cast<std::size_t>(m_at - m_text.data()); }

    void write(std::string_view text) {
        if (text.empty()) return;
        makeRoom(text.size());
        std::memcpy(m_at, text.data(), text.size());
        m_at += text.size();
    }

    /// A line feed and @p level tabs, none for a negative level.
    void writeNewline(int level) {
        const std::size_t tabs = level > 0 ? static_cast<std::size_t>(level) : 0;
        makeRoom(std::max(1 + tabs, shortLine.size()));
        if (tabs < shortLine.size()) {
            std::memcpy(m_at, shortLine.data(), shortLine.size());  // one store
        } else {
            *m_at = '\n';
            std::memset(m_at + 1, '\t', tabs);
        }
        m_at += 1 + tabs;
    }

    /// The whole; nothing can be written afterwards.
    std::string take() {
        const std::string_view text(m_text.data(), size());
        if (text.size() < m_text.size() / 2) return std::string(text);  // gives the room back
        m_text.resize(text.size());
        return std::move(m_text);
    }

private:
    static constexpr std::size_t firstSize = 2000;
    static constexpr std::string_view shortLine = "\n\t\t\t\t\t\t\t";

    void makeRoom(std::size_t bytes) {
        if (static_cast<std::size_t>(m_end - m_at) < bytes) grow(bytes);
    }

    void grow(std::size_t bytes) {
        const std::size_t used = size();
        m_text.resize(std::max(2 * m_text.size(), used + bytes));
        m_at = m_text.data() + used;
        m_end = m_text.data() + m_text.size();
    }

    std::string m_text;  // what is behind m_at is room
    char* m_at;          // not owned: in m_text
    char* m_end;         // not owned: of m_text
};

}  // namespace QB
