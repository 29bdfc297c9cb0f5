#include "apps/joinery-sql/file_commands.h"

#include <algorithm>

#include "apps/joinery-sql/comments.h"
#include "apps/joinery-sql/parsed_statement.h"
#include "apps/joinery-sql/range_listing.h"
#include "apps/joinery-sql/text_files.h"
#include "model/dump.h"

namespace QB::Cli {
namespace {

/// "FILE:LINE:COLUMN: ", or "FILE: " where there is no place.
std::string placePrefix(const std::string& name, const std::string& text, int offset) {
    const std::optional<sqlet::TextPosition> place = placeOf(text, offset);
    if (!place) return name + ": ";
    return name + ':' + std::to_string(place->line) + ':' + std::to_string(place->column) + ": ";
}

bool usesCarriageReturns(const std::string& text) {
    const std::size_t lineEnd = text.find('\n');
    return lineEnd != std::string::npos && lineEnd > 0 && text[lineEnd - 1] == '\r';
}

/// One text on its way through a command.
class FileRun {
public:
    FileRun(const CommandLine& options, const QString& file)
        : m_options(options), m_file(file), m_name(shownName(file)) {}

    ExitCode run() {
        try {
            return readAndProcess();
        } catch (...) {
            return refuse(-1, currentExceptionText());
        }
    }

private:
    ExitCode readAndProcess() {
        const QString problem = readText(m_file, m_text);
        if (!problem.isEmpty()) return failIo("cannot read", problem);
        const ParsedStatement parsed(m_text, *m_options.dialect, m_options.schema);
        if (!parsed.outcome().isAccepted())
            return refuse(parsed.outcome().error.location, reasonOf(parsed.outcome()));
        switch (m_options.command) {
            case Command::Format:
                return format(parsed);
            case Command::Dump:
                return print(dumpStatement(parsed.statement()));
            case Command::Ranges:
                return printRanges(parsed.generate());
            case Command::Check:
            case Command::Roundtrip:
            case Command::Script:
                break;
        }
        return ExitOk;
    }

    ExitCode format(const ParsedStatement& parsed) {
        const std::string formatted = replaceStatement(parsed);
        const std::vector<Comment> lost = lostComments(commentsOf(m_text, *m_options.dialect),
                                                       commentsOf(formatted, *m_options.dialect));
        if (!m_options.inPlace) {
            for (const Comment& comment : lost)
                complain(placePrefix(m_name, m_text, comment.offset) +
                         "warning: the comment here is dropped");
            return writeOut(formatted) ? ExitOk : ExitIo;
        }
        if (!lost.empty())
            return refuse(lost.front().offset,
                          "the comment here would be lost; the file stays as it is");
        return replaceFile(formatted, parsed);
    }

    /// All that stands around the statement, such as comments and a semicolon, stays.
    std::string replaceStatement(const ParsedStatement& parsed) const {
        const QBRange range = parsed.outcome().statement;
        std::string text = parsed.generate().text;
        if (usesCarriageReturns(m_text)) text = withCarriageReturns(text, *m_options.dialect);
        std::string result = m_text;
        result.replace(static_cast<std::size_t>(range.location),
                       static_cast<std::size_t>(range.length), text);
        if (result.back() != '\n') result += usesCarriageReturns(m_text) ? "\r\n" : "\n";
        return result;
    }

    /// Writes @p formatted only if reading it again gives the same statement.
    ExitCode replaceFile(const std::string& formatted, const ParsedStatement& parsed) {
        if (formatted == m_text) return ExitOk;
        const ParsedStatement again(formatted, *m_options.dialect, m_options.schema);
        if (!again.outcome().isAccepted() || again.generate().text != parsed.generate().text)
            return refuse(parsed.outcome().statement.location,
                          "the statement changes when it is read again; the file stays as it is");
        const QString problem = replaceText(m_file, formatted);
        return problem.isEmpty() ? ExitOk : failIo("cannot write", problem);
    }

    ExitCode printRanges(const GeneratedText& generated) {
        return print(generated.text + "\n\n" + rangeListing(generated));
    }

    /// Several texts are told apart by a line before each.
    ExitCode print(const std::string& text) {
        const bool isOne = m_options.files.size() == 1;
        return writeOut(isOne ? text : "==> " + m_name + " <==\n" + text) ? ExitOk : ExitIo;
    }

    /// What check finds is its output; for the other commands it is an error.
    ExitCode refuse(int offset, const std::string& reason) const {
        const std::string finding = placePrefix(m_name, m_text, offset) + reason;
        if (m_options.command != Command::Check) {
            complain(finding);
        } else if (!writeOut(finding + '\n')) {
            return ExitIo;
        }
        return ExitRefused;
    }

    ExitCode failIo(const char* what, const QString& reason) const {
        complain("joinery-sql: " + std::string(what) + ' ' + m_name + ": " +
                 reason.toLatin1().toStdString());
        return ExitIo;
    }

    const CommandLine& m_options;
    const QString m_file;
    const std::string m_name;
    std::string m_text;
};

}  // namespace

ExitCode runFileCommand(const CommandLine& options) {
    ExitCode worst = ExitOk;
    for (const QString& file : options.files)
        worst = std::max(worst, FileRun(options, file).run());
    return worst;
}

}  // namespace QB::Cli
