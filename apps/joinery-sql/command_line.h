#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <string>

#include "model/vocabulary.h"

namespace QB::Cli {

/// How the program ends; `--help` tells the user. The greatest that applies wins.
enum ExitCode {
    ExitOk = 0,
    ExitRefused = 1,  ///< a text, or a command of a script, was refused
    ExitUsage = 2,    ///< the command line makes no sense; nothing was done
    ExitIo = 3,       ///< a file could not be read, or the output not be written
};

enum class Command { Format, Check, Dump, Ranges, Roundtrip, Script };

/// What the user asked for.
struct CommandLine {
    Command command = Command::Check;
    /// None only for Roundtrip and Script, whose lines then have to name theirs.
    std::optional<DatabaseType> dialect;
    /// Where unqualified names are found; empty: not known.
    std::string schema;
    QStringList files;       ///< "-" is standard input; never empty but for Roundtrip
    bool inPlace = false;    ///< Format: write into the files
    bool details = false;    ///< Roundtrip: tell more of every line
    bool keepGoing = false;  ///< Script: go on behind a refused command
};

/// A command line, or what to print instead of running it.
struct CommandLineResult {
    std::optional<CommandLine> options;
    QString message;      ///< what is wrong, or the help that was asked for
    bool isHelp = false;  ///< the message is help, not an error
};

/// Reads the arguments, the program's name left out. Texts are English, as are all of the
/// program's: what it prints is read by other programs too.
/// The strings carry bytes, one a character (see main.cpp).
/// Needs the application object.
CommandLineResult parseCommandLine(const QStringList& arguments);

}  // namespace QB::Cli
