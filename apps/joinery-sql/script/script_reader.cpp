#include "apps/joinery-sql/script/script_reader.h"

#include <utility>

#include "apps/joinery-sql/script/refusal.h"
#include "platform/sqlet/names.h"

namespace QB::Cli {
namespace {

constexpr const char* blanks = " \t\r\n\f\v";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string trimmed(const std::string& text) {
    const std::size_t start = text.find_first_not_of(blanks);
    if (start == std::string::npos) return {};
    return text.substr(start, text.find_last_not_of(blanks) + 1 - start);
}

}  // namespace

ScriptReader::ScriptReader(NextLine nextLine) : m_nextLine(std::move(nextLine)) {}

bool ScriptReader::next(ScriptLine& line) {
    std::string read;
    while (line.number = m_number + 1, readLine(read)) {
        line.block.reset();
        line.text = trimmed(read);
        if (line.text.empty() || line.text.front() == '#') continue;
        if (line.text.back() == ':') {
            line.text.pop_back();
            line.text = trimmed(line.text);
            if (line.text.empty()) throw Refusal("there is no command before the colon");
            line.block = readBlock();
        }
        return true;
    }
    return false;
}

bool ScriptReader::readLine(std::string& line) {
    if (!m_nextLine(line)) return false;
    ++m_number;
    if (m_number == 1 && line.compare(0, byteOrderMark.size(), byteOrderMark) == 0)
        line.erase(0, byteOrderMark.size());
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const std::string place = "line " + std::to_string(m_number) + " is ";
    if (line.size() > longestLine) throw Refusal(place + "longer than 16 MiB");
    if (!sqlet::isValidUtf8(line)) throw Refusal(place + "not valid UTF-8");
    if (line.find('\0') != std::string::npos) throw Refusal(place + "no text: it holds a NUL");
    return true;
}

std::string ScriptReader::readBlock() {
    std::string block;
    for (std::string line; readLine(line);) {
        if (line == "end") return block;
        block += line + '\n';
    }
    throw Refusal("the block has no end: a line with nothing but \"end\"");
}

}  // namespace QB::Cli
