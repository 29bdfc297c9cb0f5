#pragma once

#include <functional>
#include <optional>
#include <string>

namespace QB::Cli {

/// One command of a script.
struct ScriptLine {
    int number = 0;                    ///< of the command in its file, from 1
    std::string text;                  ///< without blanks around it; never empty
    std::optional<std::string> block;  ///< the lines up to "end", each with its line feed
};

/// Splits a script into commands. Knows lines, comments and blocks, and nothing of commands:
/// a line that begins with # is a comment; a colon at the end of a line begins a block, which goes
/// up to a line that is "end" and nothing else, and in which every line counts as it stands.
class ScriptReader {
public:
    static constexpr std::size_t longestLine = std::size_t(16) << 20;  ///< bytes

    /// Gives the next line, without its line feed, and false at the end.
    using NextLine = std::function<bool(std::string& line)>;

    explicit ScriptReader(NextLine nextLine);

    /// Reads the next command. False at the end.
    /// Errors: a Refusal for what is no text and for a block without end; line.number is set.
    bool next(ScriptLine& line);

private:
    bool readLine(std::string& line);
    std::string readBlock();

    NextLine m_nextLine;
    int m_number = 0;  ///< of the last line that was read
};

}  // namespace QB::Cli
