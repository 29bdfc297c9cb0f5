#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

namespace QB::Desk {

/// How the program ends; `--help` tells the user.
enum ExitCode {
    ExitOk = 0,
    ExitUsage = 1,       ///< the command line makes no sense
    ExitNoDatabase = 2,  ///< the database could not be opened
    ExitNoTable = 3,     ///< a table to add is not there
    ExitQueryFailed = 4,
    ExitDeadline = 5,  ///< the scripted start took too long
    ExitNoImage = 6,   ///< the picture could not be written
    ExitNoText = 7,    ///< the query or the SQL text could not be read, or was refused
};

struct CommandLine {
    QString file;       ///< a database
    QString sqlFile;    ///< to open in the SQL tab
    QString queryFile;  ///< a saved query
    bool wantsSample = false;
    QStringList tables;  ///< to add: "table" or "schema.table"
    bool run = false;
    QStringList tabs;  ///< to bring up: the texts of clause tabs, or "DIAGRAM"
    bool canvasDemo = false;
    QString screenshot;  ///< empty: an ordinary start
    QString part;        ///< the object name of the widget to picture; empty: the window
    QSize size;          ///< empty: as the window was left
    QString theme;       ///< "system", "light", "dark"; empty: as set in the program
    QString language;    ///< a code such as "de"; empty: as set in the program
    QString settingsFile;
    int deadlineMs = 30000;

    /// True if the query is to be opened on the database that it names.
    bool opensOwnDatabase() const { return !queryFile.isEmpty() && file.isEmpty() && !wantsSample; }
    bool isScripted() const {
        return !tables.isEmpty() || !sqlFile.isEmpty() || !queryFile.isEmpty() || run ||
               !tabs.isEmpty() || !screenshot.isEmpty();
    }
};

struct CommandLineResult {
    CommandLine options;
    QString message;      ///< for the user, to be printed before the end
    bool isHelp = false;  ///< the message is what the user asked for
    bool isComplete() const { return message.isEmpty(); }
};

/// Reads the arguments, the program's name first. Needs an application object for the help text.
CommandLineResult parseCommandLine(const QStringList& arguments);

/// What must be known before there is an application object.
struct EarlyOptions {
    bool wantsText = false;  ///< help or version: to be answered without a display
    QString scale;           ///< the value of --scale, empty when not given
};
EarlyOptions readEarlyOptions(const QStringList& arguments);

/// "1200x800" as a size; an invalid size for anything else, and beyond 100 to 10,000 either way.
QSize parseSize(const QString& text);

}  // namespace QB::Desk
