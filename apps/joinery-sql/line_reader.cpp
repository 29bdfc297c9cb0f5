#include "apps/joinery-sql/line_reader.h"

#include <cerrno>
#include <new>

namespace QB::Cli {

bool LineReader::next() {
    errno = 0;
    m_isShortOfMemory ? std::string().swap(m_line) : m_line.clear();
    m_isShortOfMemory = false;
    int c = 0;
    while ((c = ::getc_unlocked(m_file)) != EOF && c != '\n')
        append(static_cast<char>(c));
    m_error = c != EOF || std::feof(m_file) ? 0 : errno;
    return c != EOF || !m_line.empty();
}

void LineReader::append(char c) {
    if (m_isShortOfMemory || m_line.size() > m_longest) return;
    try {
        m_line += c;
    } catch (const std::bad_alloc&) {
        m_isShortOfMemory = true;
    }
}

}  // namespace QB::Cli
