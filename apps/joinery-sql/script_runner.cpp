#include "apps/joinery-sql/script_runner.h"

#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "apps/joinery-sql/line_reader.h"
#include "apps/joinery-sql/parsed_statement.h"
#include "apps/joinery-sql/script/background_work.h"
#include "apps/joinery-sql/script/commands.h"
#include "apps/joinery-sql/script/refusal.h"
#include "apps/joinery-sql/script/script_reader.h"
#include "apps/joinery-sql/text_files.h"

namespace QB::Cli {
namespace {

struct CloseFile {
    void operator()(std::FILE* file) const {
        if (file != stdin) std::fclose(file);
    }
};

bool isStandardInput(const QString& file) {
    return file == QLatin1String("-");
}

std::FILE* openScript(const QString& file) {
    return isStandardInput(file) ? stdin : std::fopen(file.toLatin1().constData(), "r");
}

/// One script on its way through a session of its own.
class ScriptRun {
public:
    ScriptRun(const CommandLine& options, const QString& file)
        : m_isKeptGoing(options.keepGoing)
        , m_name(shownName(file))
        , m_session(options.dialect, options.schema,
                    isStandardInput(file) ? QString() : QFileInfo(file).path())
        , m_file(openScript(file)) {}

    ExitCode run() {
        if (!m_file) return failToRead(errno);
        LineReader lines(m_file.get(), ScriptReader::longestLine);
        ScriptReader reader([&lines](std::string& line) {
            if (!lines.next()) return false;
            line = lines.line();
            return true;
        });
        while (runNext(reader) && (m_code == ExitOk || m_isKeptGoing)) {
        }
        return lines.error() == 0 ? m_code : failToRead(lines.error());
    }

private:
    /// False at the end.
    bool runNext(ScriptReader& reader) {
        ScriptLine line;
        try {
            if (!reader.next(line)) return false;
            return print(runCommand(m_session, line.text, line.block));
        } catch (const Refusal& refusal) {
            refuse(line.number, refusal.what());
        } catch (...) {
            refuse(line.number, currentExceptionText());
        }
        return true;
    }

    /// At once: a script may be typed, or come through a pipe from a program that waits.
    bool print(const std::string& text) {
        if (text.empty() || (writeOut(text) && flushOut())) return true;
        m_code = ExitIo;
        return false;
    }

    void refuse(int line, const std::string& reason) {
        complain(m_name + ':' + std::to_string(line) + ": " + reason);
        m_code = std::max(m_code, ExitRefused);
    }

    ExitCode failToRead(int error) const {
        complain("joinery-sql: cannot read " + m_name + ": " + std::strerror(error));
        return ExitIo;
    }

    const bool m_isKeptGoing;
    const std::string m_name;
    Session m_session;
    const std::unique_ptr<std::FILE, CloseFile> m_file;
    ExitCode m_code = ExitOk;
};

}  // namespace

ExitCode runScripts(const CommandLine& options) {
    startBackgroundWork();
    ExitCode worst = ExitOk;
    for (const QString& file : options.files)
        worst = std::max(worst, ScriptRun(options, file).run());
    return worst;
}

}  // namespace QB::Cli
