#include "apps/joinery-desk/command_line.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include "apps/joinery-desk/query_file.h"
#include "apps/joinery-desk/sql_file.h"

namespace QB::Desk {
namespace {

constexpr int smallestSide = 100;
constexpr int largestSide = 10000;

class Parser {
public:
    Parser() {
        m_parser.setApplicationDescription(text(QT_TRANSLATE_NOOP(
            "CommandLine",
            "Composes SQL queries on a SQLite database: pick tables, watch the text grow, run "
            "it.\n\nWithout a database it opens the one used last, or else a sample database. "
            "Databases are only read, never written.\n\nExit codes: 0 all went well, 1 wrong "
            "command line, 2 the database could not be opened, 3 no such table, 4 the query "
            "failed, 5 the deadline has passed, 6 the picture could not be written, 7 the query or "
            "the SQL text could not be read or was refused.")));
        m_parser.addPositionalArgument(
            QStringLiteral("FILE"),
            text(QT_TRANSLATE_NOOP("CommandLine",
                                   "A SQLite database, and a saved query "
                                   "(*.joinery) or SQL text (*.sql).")),
            QStringLiteral("[FILE...]"));
        m_parser.addOptions({m_sample, m_sql, m_add, m_run, m_tab, m_canvasDemo, m_screenshot,
                             m_part, m_size, m_scale, m_theme, m_language, m_settings, m_deadline});
        m_help.append(m_parser.addHelpOption().names());
        m_version.append(m_parser.addVersionOption().names());
    }

    CommandLineResult parse(const QStringList& arguments) {
        if (!m_parser.parse(arguments)) return failure(m_parser.errorText());
        if (m_parser.isSet(m_help.first()) || m_parser.isSet(QStringLiteral("help-all")))
            return answer(m_parser.helpText());
        if (m_parser.isSet(m_version.first())) return answer(versionText());
        CommandLineResult result;
        result.message = read(result.options);
        return result;
    }

private:
    static QString text(const char* source) {
        return QCoreApplication::translate("CommandLine", source);
    }

    static CommandLineResult failure(const QString& message) {
        CommandLineResult result;
        result.message = message;
        return result;
    }

    static CommandLineResult answer(const QString& message) {
        CommandLineResult result = failure(message);
        result.isHelp = true;
        return result;
    }

    static QString versionText() {
        return QStringLiteral("joinery-desk %1\n").arg(QLatin1String(JOINERY_VERSION));
    }

    /// Returns: empty, or what is wrong.
    QString read(CommandLine& options) const {
        QStringList databases;
        QStringList texts = m_parser.values(m_sql);
        QStringList queries;
        for (const QString& file : m_parser.positionalArguments())
            (isQueryFileName(file) ? queries
             : isSqlFileName(file) ? texts
                                   : databases)
                .append(file);
        if (databases.size() > 1)
            return text(QT_TRANSLATE_NOOP("CommandLine", "Only one database can be opened."));
        if (texts.size() + queries.size() > 1)
            return text(
                QT_TRANSLATE_NOOP("CommandLine", "Only one query or SQL text can be opened."));
        options.file = databases.value(0);
        options.sqlFile = texts.value(0);
        options.queryFile = queries.value(0);
        options.wantsSample = m_parser.isSet(m_sample);
        options.tables = m_parser.values(m_add);
        options.run = m_parser.isSet(m_run);
        options.tabs = m_parser.values(m_tab);
        options.canvasDemo = m_parser.isSet(m_canvasDemo);
        options.screenshot = m_parser.value(m_screenshot);
        options.part = m_parser.value(m_part);
        options.theme = m_parser.value(m_theme);
        options.language = m_parser.value(m_language);
        options.settingsFile = m_parser.value(m_settings);
        return readChecked(options);
    }

    QString readChecked(CommandLine& options) const {
        if (options.wantsSample && !options.file.isEmpty())
            return text(
                QT_TRANSLATE_NOOP("CommandLine", "Give either --sample or a file, not both."));
        if (options.canvasDemo && wantsQuery(options))
            return text(QT_TRANSLATE_NOOP(
                "CommandLine", "--canvas-demo takes neither a database nor a query nor --part."));
        const QStringList themes = {QStringLiteral("system"), QStringLiteral("light"),
                                    QStringLiteral("dark")};
        if (m_parser.isSet(m_theme) && !themes.contains(options.theme)) return wrongValue(m_theme);
        if (m_parser.isSet(m_sql) && options.sqlFile.isEmpty()) return wrongValue(m_sql);
        if (m_parser.isSet(m_screenshot) && options.screenshot.isEmpty())
            return wrongValue(m_screenshot);
        if (m_parser.isSet(m_size)) options.size = parseSize(m_parser.value(m_size));
        if (m_parser.isSet(m_size) && !options.size.isValid()) return wrongValue(m_size);
        if (m_parser.isSet(m_scale) && !isScale(m_parser.value(m_scale)))
            return wrongValue(m_scale);
        return m_parser.isSet(m_deadline) ? readDeadline(options) : QString();
    }

    static bool wantsQuery(const CommandLine& options) {
        return options.wantsSample || !options.file.isEmpty() || !options.sqlFile.isEmpty() ||
               !options.queryFile.isEmpty() || !options.tables.isEmpty() || options.run ||
               !options.tabs.isEmpty() || !options.part.isEmpty();
    }

    QString readDeadline(CommandLine& options) const {
        bool isNumber = false;
        const int seconds = m_parser.value(m_deadline).toInt(&isNumber);
        if (!isNumber || seconds < 1 || seconds > 86400) return wrongValue(m_deadline);
        options.deadlineMs = seconds * 1000;
        return QString();
    }

    static bool isScale(const QString& value) {
        bool isNumber = false;
        const double scale = value.toDouble(&isNumber);
        return isNumber && scale >= 0.5 && scale <= 8;
    }

    QString wrongValue(const QCommandLineOption& option) const {
        return text(QT_TRANSLATE_NOOP("CommandLine", "--%1 does not take \"%2\"."))
            .arg(option.names().last(), m_parser.value(option));
    }

    QCommandLineParser m_parser;
    QStringList m_help;
    QStringList m_version;
    const QCommandLineOption m_sample{
        QStringLiteral("sample"),
        text(QT_TRANSLATE_NOOP("CommandLine", "Open the sample database."))};
    const QCommandLineOption m_sql{
        QStringLiteral("sql"),
        text(QT_TRANSLATE_NOOP("CommandLine",
                               "Open SQL text in the SQL tab, and load it into the builder if it "
                               "is accepted.")),
        QStringLiteral("FILE")};
    const QCommandLineOption m_add{
        QStringLiteral("add"),
        text(QT_TRANSLATE_NOOP("CommandLine",
                               "Put a table or view into the query, named TABLE or "
                               "SCHEMA.TABLE; may be given several times.")),
        QStringLiteral("TABLE")};
    const QCommandLineOption m_run{QStringLiteral("run"),
                                   text(QT_TRANSLATE_NOOP("CommandLine", "Run the query."))};
    const QCommandLineOption m_tab{
        QStringLiteral("tab"),
        text(QT_TRANSLATE_NOOP("CommandLine",
                               "Bring up a clause, such as WHERE or \"GROUP BY\", or DIAGRAM; may "
                               "be given several times.")),
        QStringLiteral("NAME")};
    const QCommandLineOption m_canvasDemo{
        QStringLiteral("canvas-demo"),
        text(QT_TRANSLATE_NOOP("CommandLine",
                               "Instead of a database show a diagram of 200 items and 300 links to "
                               "play with."))};
    const QCommandLineOption m_screenshot{
        QStringLiteral("screenshot"),
        text(QT_TRANSLATE_NOOP("CommandLine",
                               "Render the window into a picture FILE when all of that is done, "
                               "and end. Needs no display with QT_QPA_PLATFORM=offscreen.")),
        QStringLiteral("FILE")};
    const QCommandLineOption m_part{
        QStringLiteral("part"),
        text(QT_TRANSLATE_NOOP("CommandLine",
                               "Of the window, picture only the widget with that object name, such "
                               "as tabWidget for the clauses or diagramPanel.")),
        QStringLiteral("NAME")};
    const QCommandLineOption m_size{
        QStringLiteral("size"),
        text(QT_TRANSLATE_NOOP("CommandLine", "The size of the window, such as 1200x800.")),
        QStringLiteral("WxH")};
    const QCommandLineOption m_scale{
        QStringLiteral("scale"),
        text(QT_TRANSLATE_NOOP("CommandLine", "Pixels for each logical pixel, such as 2.")),
        QStringLiteral("N")};
    const QCommandLineOption m_theme{
        QStringLiteral("theme"), text(QT_TRANSLATE_NOOP("CommandLine", "system, light or dark.")),
        QStringLiteral("NAME")};
    const QCommandLineOption m_language{
        QStringLiteral("language"),
        text(QT_TRANSLATE_NOOP("CommandLine", "The language of the texts, such as de.")),
        QStringLiteral("CODE")};
    const QCommandLineOption m_settings{
        QStringLiteral("settings"),
        text(QT_TRANSLATE_NOOP("CommandLine",
                               "Keep settings, and the sample database beside them, "
                               "in FILE instead of the user's folders.")),
        QStringLiteral("FILE")};
    const QCommandLineOption m_deadline{
        QStringLiteral("deadline"),
        text(QT_TRANSLATE_NOOP(
            "CommandLine",
            "How long --sql, --add, --run and --screenshot may take; 30 if not given.")),
        QStringLiteral("SECONDS")};
};

}  // namespace

CommandLineResult parseCommandLine(const QStringList& arguments) {
    return Parser().parse(arguments);
}

EarlyOptions readEarlyOptions(const QStringList& arguments) {
    const QStringList asking = {QStringLiteral("-h"), QStringLiteral("--help"),
                                QStringLiteral("-v"), QStringLiteral("--version"),
                                QStringLiteral("--help-all")};
    const QString scale = QStringLiteral("--scale");
    EarlyOptions early;
    for (int i = 1; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        early.wantsText = early.wantsText || asking.contains(argument);
        if (argument == scale) early.scale = arguments.value(i + 1);
        if (argument.startsWith(scale + QLatin1Char('=')))
            early.scale = argument.mid(scale.size() + 1);
    }
    return early;
}

QSize parseSize(const QString& text) {
    const QStringList sides = text.split(QLatin1Char('x'));
    if (sides.size() != 2) return QSize();
    const auto side = [](const QString& digits) {
        const int length = digits.toInt();
        return length >= smallestSide && length <= largestSide ? length : -1;
    };
    const QSize size(side(sides[0]), side(sides[1]));
    return size.isValid() ? size : QSize();
}

}  // namespace QB::Desk
