#include "apps/joinery-desk/text_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QSaveFile>
#include <QTextCodec>

namespace QB::Desk {
namespace {

QString text(const char* source) {
    return QCoreApplication::translate("TextFile", source);
}

QString tooLarge(const QString& path, qint64 size, qint64 limit) {
    return text(QT_TRANSLATE_NOOP("TextFile",
                                  "\"%1\" is too large: it has %2, and at most %3 are opened."))
        .arg(QDir::toNativeSeparators(path), QLocale().formattedDataSize(size),
             QLocale().formattedDataSize(limit));
}

/// Why a file cannot be read as a text, before it is opened; empty if it can.
QString obstacle(const QString& path, qint64 limit) {
    const QFileInfo info(path);
    const QString shown = QDir::toNativeSeparators(path);
    if (!info.exists())
        return text(QT_TRANSLATE_NOOP("TextFile", "There is no file \"%1\".")).arg(shown);
    if (info.isDir())
        return text(QT_TRANSLATE_NOOP("TextFile", "\"%1\" is a folder, not a file.")).arg(shown);
    // A pipe or a device might never come to an end.
    if (!info.isFile())
        return text(QT_TRANSLATE_NOOP("TextFile", "\"%1\" is not a regular file.")).arg(shown);
    return info.size() > limit ? tooLarge(path, info.size(), limit) : QString();
}

bool isUtf8(const QByteArray& bytes) {
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

/// The first line with bytes that are no UTF-8, from 1; 0 if there is none.
int findBrokenLine(const QByteArray& bytes) {
    if (isUtf8(bytes)) return 0;
    // No character but the line feed has its byte, so lines can be tried alone.
    int number = 1;
    for (const QByteArray& line : bytes.split('\n')) {
        if (!isUtf8(line)) return number;
        ++number;
    }
    return 1;
}

}  // namespace

QString readTextFile(const QString& path, qint64 limit, QByteArray& bytes) {
    const QString reason = obstacle(path, limit);
    if (!reason.isEmpty()) return reason;
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly))
        return text(QT_TRANSLATE_NOOP("TextFile", "\"%1\" cannot be read: %2"))
            .arg(QDir::toNativeSeparators(path), source.errorString());
    // It may have grown since it was looked at.
    QByteArray content = source.read(limit + 1);
    if (content.size() > limit) return tooLarge(path, source.size(), limit);
    const int brokenLine = findBrokenLine(content);
    if (brokenLine > 0)
        return text(QT_TRANSLATE_NOOP(
                        "TextFile",
                        "\"%1\" is not UTF-8: in line %2 there are bytes that are no character."))
            .arg(QDir::toNativeSeparators(path))
            .arg(brokenLine);
    bytes = std::move(content);
    return QString();
}

QString writeTextFile(const QString& path, const QByteArray& bytes) {
    QSaveFile target(path);
    // What a buffer holds back, commit() would write without looking: on a full disk, nothing.
    if (target.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
        target.write(bytes) == bytes.size() && target.commit())
        return QString();
    return text(QT_TRANSLATE_NOOP("TextFile", "\"%1\" cannot be written: %2"))
        .arg(QDir::toNativeSeparators(path), target.errorString());
}

}  // namespace QB::Desk
