#include "apps/joinery-sql/command_line.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include "apps/joinery-sql/dialect_names.h"
#include "apps/joinery-sql/script/commands.h"

namespace QB::Cli {
namespace {

struct CommandDescription {
    const char* name;
    Command command;
    const char* summary;
    const char* explanation;
};

constexpr CommandDescription commands[] = {
    {"format", Command::Format, "Write statements anew, in the layout of the query builder.",
     "Reads a SELECT statement into the query model and writes it from the model. What stands "
     "before\nand behind the statement stays as it is. A comment inside the statement that the "
     "model has no\nplace for is dropped from the output, with a warning; --in-place leaves such a "
     "file alone."},
    {"check", Command::Check, "Tell whether texts are accepted, and why not.",
     "Prints nothing for a text that the query model can hold. For every other text prints\n"
     "FILE:LINE:COLUMN: and the reason. Lines and columns count from 1, columns in characters."},
    {"dump", Command::Dump, "Show the query model of a text.",
     "Prints the query model as an indented tree, one component a line."},
    {"ranges", Command::Ranges, "Show where each component stands in the text written.",
     "Prints the text that format writes and behind it, one component a line and separated by "
     "tabs:\nlocation and length in bytes, kind, and the text itself."},
    {"roundtrip", Command::Roundtrip, "Answer JSON Lines, for programs that check the builder.",
     "Reads lines {\"id\", \"dialect\", \"schema\", \"sql\"} from standard input and answers each "
     "with one line,\nin the same order and at once:\n"
     "  {\"id\", \"status\": \"ok\", \"sql\"}             the statement as format writes it\n"
     "  {\"id\", \"status\": \"rejected\", \"message\"}   why not\n"
     "A schema of null is no schema. A line that cannot be read is answered as rejected; it does "
     "not\nchange the exit status."},
    {"script", Command::Script, "Build queries by commands, one a line.",
     "Runs scripts that do to a query what the windows of the query builder do: add tables, link "
     "and tick\nfields, edit conditions row by row; and that compare what becomes of it with what "
     "they expect.\nA script ends at the first command that is refused, with FILE:LINE: and the "
     "reason.\n\nA line is a command, or a comment that begins with #. Names are quoted as in the "
     "dialect. A colon at\nthe end of a line begins a block of lines, up to a line that is "
     "\"end\".\n"},
};

constexpr const char* exitStatusText =
    "Exit status: 0 all went well, 1 a text or a script's command was refused, 2 wrong command "
    "line,\n"
    "3 a file could not be read or written.";

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

const CommandDescription* findCommand(const QString& name) {
    for (const CommandDescription& description : commands)
        if (name == QLatin1String(description.name)) return &description;
    return nullptr;
}

QCommandLineOption option(const QStringList& names, const QString& description,
                          const char* valueName = "") {
    return QCommandLineOption(names, description, text(valueName));
}

CommandLineResult failure(const QString& message) {
    CommandLineResult result;
    result.message = message;
    return result;
}

CommandLineResult answer(const QString& message) {
    CommandLineResult result = failure(message);
    result.isHelp = true;
    return result;
}

/// The arguments of one command.
class CommandParser {
public:
    explicit CommandParser(const CommandDescription& description) : m_description(description) {
        m_parser.addOptions({m_dialect, m_schema});
        if (isRoundtrip()) {
            m_parser.addOption(m_details);
        } else {
            m_parser.addPositionalArgument(
                text("FILE"),
                text(isScript() ? "A script; standard input if there is none, or for -."
                                : "A text; standard input if there is none, or for -."),
                text("[FILE...]"));
        }
        if (isFormat()) m_parser.addOption(m_inPlace);
        if (isScript()) m_parser.addOption(m_keepGoing);
        m_parser.addOption(m_help);
        m_parser.setApplicationDescription(text(description.explanation) + lists() + text("\n\n") +
                                           text(exitStatusText));
    }

    /// @p arguments begin with the command's name, where the parser looks for the program's.
    CommandLineResult parse(const QStringList& arguments) {
        if (!m_parser.parse(arguments)) return wrong(m_parser.errorText());
        if (m_parser.isSet(m_help)) return answer(helpText());
        CommandLine options;
        const QString problem = read(options);
        if (!problem.isEmpty()) return wrong(problem);
        CommandLineResult result;
        result.options = options;
        return result;
    }

private:
    bool isFormat() const { return m_description.command == Command::Format; }
    bool isRoundtrip() const { return m_description.command == Command::Roundtrip; }
    bool isScript() const { return m_description.command == Command::Script; }
    /// The lines that are read may tell the dialect.
    bool needsDialect() const { return !isRoundtrip() && !isScript(); }

    QString lists() const {
        if (!isScript()) return QString();
        return QString::fromStdString("\nCommands:\n" + commandList() +
                                      "\nEdits of the rows of a clause, numbered as show rows "
                                      "does, from 0:\n" +
                                      clauseEditList())
            .chopped(1);
    }

    QString helpText() const {
        const QString program = QCoreApplication::arguments().first();
        const QString usage = text("Usage: ") + program;
        return usage + text(" ") + text(m_description.name) + m_parser.helpText().mid(usage.size());
    }

    CommandLineResult wrong(const QString& problem) const {
        return failure(text(m_description.name) + text(": ") + problem);
    }

    /// Returns: empty, or what is wrong.
    QString read(CommandLine& options) const {
        options.command = m_description.command;
        options.schema = m_parser.value(m_schema).toLatin1().toStdString();
        options.files = m_parser.positionalArguments();
        options.inPlace = isFormat() && m_parser.isSet(m_inPlace);
        options.details = isRoundtrip() && m_parser.isSet(m_details);
        options.keepGoing = isScript() && m_parser.isSet(m_keepGoing);
        const QString problem = readDialect(options);
        return problem.isEmpty() ? readFiles(options) : problem;
    }

    QString readDialect(CommandLine& options) const {
        const QString names = QString::fromStdString(dialectNames());
        if (!m_parser.isSet(m_dialect))
            return needsDialect() ? text("--dialect is missing: one of ") + names : QString();
        const QString name = m_parser.value(m_dialect);
        options.dialect = dialectOfName(name.toLatin1().toStdString());
        if (options.dialect) return QString();
        return text("--dialect does not know \"%1\": one of %2").arg(name, names);
    }

    QString readFiles(CommandLine& options) const {
        if (isRoundtrip())
            return options.files.isEmpty() ? QString()
                                           : text("takes no files: it reads standard input");
        if (options.files.contains(QString())) return text("a file has to have a name");
        if (options.inPlace && (options.files.isEmpty() || options.files.contains(text("-"))))
            return text("--in-place needs files, not standard input");
        if (options.files.isEmpty()) options.files.append(text("-"));
        return QString();
    }

    const CommandDescription& m_description;
    QCommandLineParser m_parser;
    const QCommandLineOption m_dialect =
        option({text("d"), text("dialect")},
               text("The server family: %1.").arg(QString::fromStdString(dialectNames())), "NAME");
    const QCommandLineOption m_schema =
        option({text("s"), text("schema")},
               text("The schema in which unqualified names are found."), "NAME");
    const QCommandLineOption m_inPlace =
        option({text("i"), text("in-place")},
               text("Write into the files. A file whose text is refused stays as it is."));
    const QCommandLineOption m_details =
        option({text("details")},
               text("Add to each answer \"verdict\", \"line\", \"column\" and \"components\", as "
                    "\"details\": true does in a line."));
    const QCommandLineOption m_keepGoing =
        option({text("k"), text("keep-going")},
               text("Go on behind a command that was refused; the exit status is 1 all the same."));
    const QCommandLineOption m_help = option({text("h"), text("help")}, text("Show this help."));
};

/// What stands before the command.
class ProgramParser {
public:
    ProgramParser() {
        m_parser.setOptionsAfterPositionalArgumentsMode(
            QCommandLineParser::ParseAsPositionalArguments);
        m_parser.addOptions({m_help, m_version});
        m_parser.addPositionalArgument(text("COMMAND"),
                                       text("See above; COMMAND --help tells more."),
                                       text("COMMAND [ARGUMENT...]"));
        m_parser.setApplicationDescription(description());
    }

    CommandLineResult parse(const QStringList& arguments) {
        if (!m_parser.parse(QStringList(QString()) + arguments))
            return failure(m_parser.errorText());
        if (m_parser.isSet(m_help)) return answer(m_parser.helpText());
        if (m_parser.isSet(m_version)) return answer(text("joinery-sql " JOINERY_VERSION "\n"));
        const QStringList rest = m_parser.positionalArguments();
        if (rest.isEmpty()) return failure(text("A command is missing."));
        const CommandDescription* const command = findCommand(rest.first());
        if (!command) return failure(text("There is no command \"%1\".").arg(rest.first()));
        return CommandParser(*command).parse(rest);
    }

private:
    static QString description() {
        QString lines = text(
            "Reads SELECT statements into the query model of Joinery, and writes them from it.\n\n"
            "Commands:\n");
        for (const CommandDescription& command : commands)
            lines += text("  %1  %2\n").arg(text(command.name), -10).arg(text(command.summary));
        return lines + text("\n") + text(exitStatusText);
    }

    QCommandLineParser m_parser;
    const QCommandLineOption m_help = option({text("h"), text("help")}, text("Show this help."));
    const QCommandLineOption m_version =
        option({text("v"), text("version")}, text("Show the version."));
};

}  // namespace

CommandLineResult parseCommandLine(const QStringList& arguments) {
    return ProgramParser().parse(arguments);
}

}  // namespace QB::Cli
