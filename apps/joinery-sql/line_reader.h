#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace QB::Cli {

/// Lines of any length and content, each at once when it is there.
class LineReader {
public:
    /// @p file is not owned: open as long as the reader is used.
    /// @p longest what of a line is kept at most, in bytes, and one byte more.
    LineReader(std::FILE* file, std::size_t longest) : m_file(file), m_longest(longest) {}

    /// Reads the next line without its line feed; the last one may have none. False at the end.
    bool next();

    /// It lives until the next call of next(). What is longer than the longest, or than memory,
    /// ends somewhere behind that.
    std::string_view line() const { return m_line; }
    bool isShortOfMemory() const { return m_isShortOfMemory; }

    /// Why next() said false; 0 at the end of the input.
    int error() const { return m_error; }

private:
    void append(char c);

    std::FILE* const m_file;  // not owned
    const std::size_t m_longest;
    std::string m_line;
    bool m_isShortOfMemory = false;
    int m_error = 0;
};

}  // namespace QB::Cli
