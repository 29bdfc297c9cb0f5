#include <QApplication>
#include <QFileInfo>
#include <QIcon>
#include <QPointer>
#include <QSettings>
#include <cstdio>
#include <memory>

#include "apps/joinery-desk/canvas_demo_window.h"
#include "apps/joinery-desk/command_line.h"
#include "apps/joinery-desk/language.h"
#include "apps/joinery-desk/main_window.h"
#include "apps/joinery-desk/message_bar.h"
#include "apps/joinery-desk/sample_database.h"
#include "apps/joinery-desk/scripted_start.h"
#include "hostkit/threads.h"

using namespace QB::Desk;

namespace {

int say(const CommandLineResult& result) {
    std::FILE* const stream = result.isHelp ? stdout : stderr;
    std::fprintf(stream, "%s%s", qUtf8Printable(result.message),
                 result.message.endsWith(QLatin1Char('\n')) ? "" : "\n");
    return result.isHelp ? ExitOk : ExitUsage;
}

QStringList argumentList(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

bool hasPlatform(const QStringList& arguments) {
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (!qEnvironmentVariableIsEmpty(variable)) return true;
    return arguments.contains(QLatin1String("-platform"));
}

/// Without a display Qt would abort with a text that helps nobody.
bool choosePlatform(const QStringList& arguments) {
    if (hasPlatform(arguments)) return true;
    for (const QString& argument : arguments) {
        if (!argument.startsWith(QLatin1String("--screenshot"))) continue;
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return true;
    }
    std::fputs(
        "There is no display here. To see the window all the same: "
        "joinery-desk --screenshot FILE.png\n",
        stderr);
    return false;
}

void nameApplication() {
    QCoreApplication::setOrganizationName(QStringLiteral("Joinery"));
    QCoreApplication::setApplicationName(QStringLiteral("joinery-desk"));
}

QIcon programIcon() {
    QIcon icon;
    for (const int side : {16, 32, 64, 128})
        icon.addFile(QStringLiteral(":/desk/icon-%1.png").arg(side));
    return icon;
}

std::unique_ptr<QSettings> openSettings(const QString& file) {
    if (file.isEmpty()) return std::make_unique<QSettings>();
    return std::make_unique<QSettings>(QFileInfo(file).absoluteFilePath(), QSettings::IniFormat);
}

void applyLooks(MainWindow& window, const CommandLine& options) {
    if (!options.theme.isEmpty()) window.setTheme(themeOfName(options.theme));
    if (!options.language.isEmpty()) window.setLanguage(options.language);
    if (options.size.isValid()) window.setGivenSize(options.size);
}

void openDatabase(MainWindow& window, const CommandLine& options) {
    if (options.wantsSample) return window.openSample();
    if (options.opensOwnDatabase()) return window.openQueryFile(options.queryFile);
    if (options.file.isEmpty()) return window.openLast();
    window.openFile(options.file);
}

/// With a picture to take the program ends with the script; otherwise the user carries on.
void startScript(MainWindow& window, const CommandLine& options) {
    auto* script = new ScriptedStart(&window, options);
    script->setParent(&window);
    QObject::connect(
        script, &ScriptedStart::finished, &window,
        [&window, isOver = !options.screenshot.isEmpty()](int code, const QString& message) {
            if (code != ExitOk) std::fprintf(stderr, "joinery-desk: %s\n", qUtf8Printable(message));
            if (isOver) return QCoreApplication::exit(code);
            if (code == ExitNoTable || code == ExitDeadline)
                window.messageBar()->show(MessageBar::Kind::Error, message);
        });
}

}  // namespace

int main(int argc, char* argv[]) {
    const QStringList given = argumentList(argc, argv);
    const EarlyOptions early = readEarlyOptions(given);
    nameApplication();
    if (early.wantsText) {
        const QCoreApplication application(argc, argv);
        applyLanguage(QString());
        return say(parseCommandLine(given));
    }
    if (!choosePlatform(given)) return ExitUsage;
    if (early.scale.toDouble() > 0) qputenv("QT_SCALE_FACTOR", early.scale.toLatin1());
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QApplication application(argc, argv);
    applyLanguage(QString());
    const CommandLineResult commandLine = parseCommandLine(QCoreApplication::arguments());
    if (!commandLine.isComplete()) return say(commandLine);

    const CommandLine& options = commandLine.options;
    QApplication::setWindowIcon(programIcon());
    QB::HostKit::installCallbacks();
    if (options.canvasDemo) return runCanvasDemo(options);
    const std::unique_ptr<QSettings> settings = openSettings(options.settingsFile);
    MainWindow window(settings.get(), sampleDatabaseFile(options.settingsFile));
    applyLooks(window, options);
    window.show();
    if (options.isScripted()) startScript(window, options);
    openDatabase(window, options);
    // Nobody would answer while a picture is taken.
    if (options.screenshot.isEmpty()) window.offerLeftJournals();
    return QApplication::exec();
}
