#include "apps/joinery-desk/sql_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QSaveFile>
#include <QTextCodec>

#include "frame/text_spans.h"

namespace QB::Desk {
namespace {

const char byteOrderMark[] = "\xef\xbb\xbf";

QString text(const char* source) {
    return QCoreApplication::translate("SqlFile", source);
}

QString shownPath(const SqlFile& file) {
    return QDir::toNativeSeparators(file.path);
}

QString tooLarge(const SqlFile& file, qint64 size) {
    return text(QT_TRANSLATE_NOOP("SqlFile",
                                  "\"%1\" is too large: it has %2, and at most %3 are opened."))
        .arg(shownPath(file), QLocale().formattedDataSize(size),
             QLocale().formattedDataSize(largestSqlFile));
}

/// Why a file cannot be read as a text of ours, before it is opened; empty if it can.
QString obstacle(const SqlFile& file) {
    const QFileInfo info(file.path);
    if (!info.exists())
        return text(QT_TRANSLATE_NOOP("SqlFile", "There is no file \"%1\".")).arg(shownPath(file));
    if (info.isDir())
        return text(QT_TRANSLATE_NOOP("SqlFile", "\"%1\" is a folder, not a file with SQL text."))
            .arg(shownPath(file));
    // A pipe or a device might never come to an end.
    if (!info.isFile())
        return text(QT_TRANSLATE_NOOP("SqlFile", "\"%1\" is not a regular file."))
            .arg(shownPath(file));
    return info.size() > largestSqlFile ? tooLarge(file, info.size()) : QString();
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

void readLines(SqlFile& file, const QByteArray& bytes) {
    const std::string content(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    file.text = documentText(content);
    file.hasCarriageReturns = encodedText(file.text, true) == content && bytes.contains('\r');
    file.areLineEndsMixed = !file.hasCarriageReturns && encodedText(file.text, false) != content;
}

}  // namespace

bool isSqlFileName(const QString& path) {
    return QFileInfo(path).suffix().compare(QLatin1String("sql"), Qt::CaseInsensitive) == 0;
}

QString readSqlFile(SqlFile& file) {
    const QString reason = obstacle(file);
    if (!reason.isEmpty()) return reason;
    QFile source(file.path);
    if (!source.open(QIODevice::ReadOnly))
        return text(QT_TRANSLATE_NOOP("SqlFile", "\"%1\" cannot be read: %2"))
            .arg(shownPath(file), source.errorString());
    // It may have grown since it was looked at.
    QByteArray bytes = source.read(largestSqlFile + 1);
    if (bytes.size() > largestSqlFile) return tooLarge(file, source.size());
    const int brokenLine = findBrokenLine(bytes);
    if (brokenLine > 0)
        return text(QT_TRANSLATE_NOOP(
                        "SqlFile",
                        "\"%1\" is not UTF-8: in line %2 there are bytes that are no character."))
            .arg(shownPath(file))
            .arg(brokenLine);
    file.hasByteOrderMark = bytes.startsWith(byteOrderMark);
    if (file.hasByteOrderMark) bytes.remove(0, 3);
    readLines(file, bytes);
    file.lastModified = QFileInfo(source).lastModified();
    return QString();
}

QString writeSqlFile(SqlFile& file) {
    QSaveFile target(file.path);
    const std::string content = encodedText(file.text, file.hasCarriageReturns);
    bool isWritten = target.open(QIODevice::WriteOnly);
    if (isWritten && file.hasByteOrderMark) isWritten = target.write(byteOrderMark) == 3;
    const auto length = static_cast<qint64>(content.size());
    isWritten = isWritten && target.write(content.data(), length) == length && target.commit();
    if (!isWritten)
        return text(QT_TRANSLATE_NOOP("SqlFile", "\"%1\" cannot be written: %2"))
            .arg(shownPath(file), target.errorString());
    file.lastModified = QFileInfo(file.path).lastModified();
    return QString();
}

std::string encodedText(const QString& text, bool hasCarriageReturns) {
    if (!hasCarriageReturns) return text.toStdString();
    QString lines = text;
    return lines.replace(QLatin1Char('\n'), QLatin1String("\r\n")).toStdString();
}

}  // namespace QB::Desk
