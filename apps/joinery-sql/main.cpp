// joinery-sql: statements through the query model, on the command line.

#include <fcntl.h>
#include <unistd.h>
#include <QCoreApplication>
#include <QTextCodec>
#include <cstdlib>

#include "apps/joinery-sql/command_line.h"
#include "apps/joinery-sql/file_commands.h"
#include "apps/joinery-sql/roundtrip.h"
#include "apps/joinery-sql/script_runner.h"
#include "apps/joinery-sql/text_files.h"
#include "hostkit/quoting.h"
#include "model/callbacks.h"

using namespace QB::Cli;

namespace {

/// Arguments, file names and the system's messages are bytes in whatever encoding the user has;
/// Qt keeps them in strings. As Latin-1 every byte is one character, so that nothing is lost in any
/// locale: a UTF-8 name reaches the system as it was typed, under LANG=C, too.
void carryBytesInStrings() {
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
}

/// A standard stream that the caller closed stays unusable, rather than that the next file opened
/// takes its number and is read or written in its place.
void occupyStandardStreams() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) != -1) continue;
        const int wrongWay = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        if (::open("/dev/null", wrongWay) != descriptor) std::_Exit(ExitIo);
    }
}

QStringList argumentList(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLatin1(argv[i]));
    return arguments;
}

ExitCode run(const CommandLineResult& commandLine) {
    if (commandLine.isHelp) {
        writeOut(commandLine.message.toLatin1().toStdString());
        return ExitOk;
    }
    if (!commandLine.options) {
        complain("joinery-sql: " + commandLine.message.toLatin1().toStdString() +
                 "\nTry joinery-sql --help.");
        return ExitUsage;
    }
    const CommandLine& options = *commandLine.options;
    switch (options.command) {
        case Command::Roundtrip:
            return runRoundtrip(options);
        case Command::Script:
            return runScripts(options);
        default:
            return runFileCommand(options);
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    occupyStandardStreams();
    carryBytesInStrings();
    // Help names the program by its first argument, which is a path.
    int count = 1;
    char name[] = "joinery-sql";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(count, arguments);
    QB::Callback::formatIdentifier = QB::HostKit::formatIdentifier;
    const ExitCode code = run(parseCommandLine(argumentList(argc, argv)));
    if (flushOut()) return code;
    complain("joinery-sql: cannot write to standard output: " + outputError());
    return ExitIo;
}
