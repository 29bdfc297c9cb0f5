#include "apps/joinery-sql/text_files.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>

namespace QB::Cli {
namespace {

constexpr std::size_t tooLarge = static_cast<std::size_t>(std::numeric_limits<int>::max()) + 1;

bool isStandardInput(const QString& file) {
    return file == QLatin1String("-");
}

int firstOutputError = 0;

bool noteOutput(bool succeeded) {
    if (!succeeded && firstOutputError == 0) firstOutputError = errno;
    return succeeded;
}

}  // namespace

std::string shownName(const QString& file) {
    return isStandardInput(file) ? "<stdin>" : file.toLatin1().toStdString();
}

QString readText(const QString& file, std::string& text) {
    text.clear();
    QFile source(file);
    const bool isOpen = isStandardInput(file) ? source.open(stdin, QIODevice::ReadOnly)
                                              : source.open(QIODevice::ReadOnly);
    if (!isOpen) return source.errorString();
    QByteArray piece(1 << 20, Qt::Uninitialized);
    while (text.size() < tooLarge) {
        const qint64 length = source.read(piece.data(), piece.size());
        if (length < 0) return source.errorString();
        if (length == 0) break;
        text.append(piece.constData(), static_cast<std::size_t>(length));
    }
    return QString();
}

QString replaceText(const QString& file, const std::string& text) {
    // A pipe or a device would be renamed over.
    if (!QFileInfo(file).isFile()) return QStringLiteral("not a regular file");
    QSaveFile target(file);
    const auto size = static_cast<qint64>(text.size());
    // What a buffer holds back, commit() would write without looking: on a full disk, nothing.
    const bool isReplaced = target.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                            target.write(text.data(), size) == size && target.commit();
    return isReplaced ? QString() : target.errorString();
}

bool writeOut(std::string_view text) {
    return noteOutput(std::fwrite(text.data(), 1, text.size(), stdout) == text.size());
}

bool flushOut() {
    return noteOutput(std::fflush(stdout) == 0 && std::ferror(stdout) == 0);
}

std::string outputError() {
    return std::strerror(firstOutputError);
}

void complain(const std::string& text) {
    const std::string line = text + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace QB::Cli
