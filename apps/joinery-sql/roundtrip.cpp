#include "apps/joinery-sql/roundtrip.h"

#include <sys/resource.h>
#include <unistd.h>
#include <QJsonDocument>
#include <QJsonObject>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <new>

#include "apps/joinery-sql/dialect_names.h"
#include "apps/joinery-sql/json_line.h"
#include "apps/joinery-sql/line_reader.h"
#include "apps/joinery-sql/parsed_statement.h"
#include "apps/joinery-sql/statement_shape.h"
#include "apps/joinery-sql/text_files.h"

namespace QB::Cli {
namespace {

/// One line as it was understood.
struct Request {
    DatabaseType dialect = DatabaseTypeNone;
    std::string schema;
    std::string sql;
    bool details = false;
};

/// What there is to say about a line. Details that do not apply stay "null".
struct Answer {
    bool isAccepted = false;
    QString text;  ///< the statement written anew, or the reason of the refusal
    const char* verdict = "invalid_line";
    std::optional<sqlet::TextPosition> place;
    std::string components = "null";
};

const char* verdictName(QBParseOutcome::Verdict verdict) {
    using Verdict = QBParseOutcome::Verdict;
    switch (verdict) {
        case Verdict::Accepted:
            return "accepted";
        case Verdict::SyntaxError:
            return "syntax_error";
        case Verdict::Unsupported:
            return "unsupported";
        case Verdict::TooLarge:
            return "too_large";
        case Verdict::SeveralStatements:
            return "several_statements";
        case Verdict::NotSelect:
            return "not_select";
        case Verdict::CannotBeRepresented:
            return "cannot_be_represented";
    }
    return "unknown";
}

/// The object in a line, member by member.
class RequestReader {
public:
    /// @p line is borrowed.
    explicit RequestReader(std::string_view line) {
        if (line.size() > largestLine) {
            m_problem = "the line is longer than 1 GiB";
            return;
        }
        QJsonParseError error;
        const QByteArray bytes =
            QByteArray::fromRawData(line.data(), static_cast<int>(line.size()));
        const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
        if (error.error != QJsonParseError::NoError) {
            m_problem = "the line is not a JSON object: " + error.errorString().toStdString() +
                        " at byte " + std::to_string(error.offset);
        } else if (!document.isObject()) {
            m_problem = "the line is not a JSON object";
        }
        m_object = document.object();
    }

    /// Reads as much as can be read; what the line leaves out is as in @p defaults.
    Request read(const CommandLine& defaults) {
        Request request;
        request.details = readFlag("details", defaults.details);
        request.dialect = readDialect(defaults.dialect);
        request.schema = has("schema") ? readText("schema") : defaults.schema;
        request.sql = readText("sql");
        return request;
    }

    /// The first thing wrong with the line; empty if nothing is.
    const std::string& problem() const { return m_problem; }

private:
    QJsonValue value(const char* key) const { return m_object.value(QLatin1String(key)); }

    bool has(const char* key) const { return !value(key).isUndefined() && !value(key).isNull(); }

    void complainOf(const char* key, const std::string& reason) {
        if (m_problem.empty()) m_problem = '"' + std::string(key) + "\" " + reason;
    }

    std::string readText(const char* key) {
        if (!value(key).isString()) {
            complainOf(key, has(key) ? "is not a string" : "is missing");
            return {};
        }
        const std::optional<std::string> text = encodeUtf8(value(key).toString());
        if (!text) complainOf(key, "holds a surrogate without its partner");
        return text.value_or(std::string());
    }

    bool readFlag(const char* key, bool preset) {
        if (has(key) && !value(key).isBool()) complainOf(key, "is neither true nor false");
        return value(key).toBool(preset);
    }

    DatabaseType readDialect(std::optional<DatabaseType> preset) {
        if (!has("dialect") && preset) return *preset;
        const std::optional<DatabaseType> dialect = dialectOfName(readText("dialect"));
        if (!dialect) complainOf("dialect", "is none of " + dialectNames());
        return dialect.value_or(DatabaseTypeNone);
    }

    QJsonObject m_object;
    std::string m_problem;
};

std::string componentsJson(const Component::SQL::SQLSelectStmtComponent* statement) {
    const auto word = [](bool value) {
        return value ? "true" : "false";
    };
    return std::string("{\"from\":") + word(hasOnlyComponentsInFrom(statement)) +
           ",\"where\":" + word(hasOnlyComponentsInWhere(statement)) + '}';
}

Answer rejected(const std::string& reason) {
    Answer answer;
    answer.text = QString::fromStdString(reason);
    return answer;
}

Answer answerRequest(const Request& request) {
    const ParsedStatement parsed(request.sql, request.dialect, request.schema);
    const QBParseOutcome& outcome = parsed.outcome();
    Answer answer;
    answer.verdict = verdictName(outcome.verdict);
    answer.isAccepted = outcome.isAccepted();
    if (!answer.isAccepted) {
        answer.text = QString::fromStdString(outcome.message);
        answer.place = placeOf(request.sql, outcome.error.location);
        return answer;
    }
    const std::optional<QString> sql = decodeUtf8(parsed.generate().text);
    if (!sql) return rejected("internal error: the statement written is not valid UTF-8");
    answer.text = *sql;
    answer.components = componentsJson(parsed.statement());
    return answer;
}

std::string detailsJson(const Answer& answer) {
    const std::string place = answer.place
                                  ? ",\"line\":" + std::to_string(answer.place->line) +
                                        ",\"column\":" + std::to_string(answer.place->column)
                                  : ",\"line\":null,\"column\":null";
    return ",\"verdict\":\"" + std::string(answer.verdict) + '"' + place +
           ",\"components\":" + answer.components;
}

std::string answerJson(const std::string& id, const Answer& answer, bool details) {
    return "{\"id\":" + id +
           (answer.isAccepted ? ",\"status\":\"ok\",\"sql\":"
                              : ",\"status\":\"rejected\",\"message\":") +
           jsonString(answer.text) + (details ? detailsJson(answer) : std::string()) + '}';
}

std::size_t addressSpaceInUse() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

/// Takes at most half of the machine's memory, so that a line that needs more is answered, where
/// the system would end the process. Leaves alone what lives in a larger space from the start, as
/// under a sanitizer.
void limitMemory() {
    const auto half = static_cast<rlim_t>(::sysconf(_SC_PHYS_PAGES)) / 2 *
                      static_cast<rlim_t>(::sysconf(_SC_PAGESIZE));
    rlimit limit{};
    if (::getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur <= half) return;
    if (addressSpaceInUse() >= half) return;
    limit.rlim_cur = half;
    ::setrlimit(RLIMIT_AS, &limit);
}

}  // namespace

std::string answerLine(std::string_view line, const CommandLine& options, bool isWhole) {
    std::string id = "null";
    bool details = options.details;
    try {
        id = rawMember(line, "id");
        if (!isWhole) throw std::bad_alloc();
        RequestReader reader(line);
        const Request request = reader.read(options);
        details = request.details;
        const Answer answer =
            reader.problem().empty() ? answerRequest(request) : rejected(reader.problem());
        return answerJson(id, answer, details);
    } catch (...) {
        Answer answer = rejected(currentExceptionText());
        answer.verdict = "internal_error";
        return answerJson(id, answer, details);
    }
}

ExitCode runRoundtrip(const CommandLine& options) {
    limitMemory();
    LineReader input(stdin, largestLine);
    while (input.next()) {
        const std::string answer = answerLine(input.line(), options, !input.isShortOfMemory());
        if (!writeOut(answer + '\n') || !flushOut()) return ExitIo;
    }
    if (input.error() == 0) return ExitOk;
    complain("joinery-sql: cannot read <stdin>: " + std::string(std::strerror(input.error())));
    return ExitIo;
}

}  // namespace QB::Cli
