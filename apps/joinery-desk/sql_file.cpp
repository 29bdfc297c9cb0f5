#include "apps/joinery-desk/sql_file.h"

#include <QFileInfo>

#include "apps/joinery-desk/text_file.h"
#include "frame/text_spans.h"

namespace QB::Desk {
namespace {

const char byteOrderMark[] = "\xef\xbb\xbf";

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
    QByteArray bytes;
    const QString error = readTextFile(file.path, largestSqlFile, bytes);
    if (!error.isEmpty()) return error;
    file.hasByteOrderMark = bytes.startsWith(byteOrderMark);
    if (file.hasByteOrderMark) bytes.remove(0, 3);
    readLines(file, bytes);
    file.lastModified = QFileInfo(file.path).lastModified();
    return QString();
}

QString writeSqlFile(SqlFile& file) {
    const std::string content = encodedText(file.text, file.hasCarriageReturns);
    const QByteArray mark = file.hasByteOrderMark ? byteOrderMark : "";
    const QString error = writeTextFile(file.path, mark + QByteArray::fromStdString(content));
    if (error.isEmpty()) file.lastModified = QFileInfo(file.path).lastModified();
    return error;
}

std::string encodedText(const QString& text, bool hasCarriageReturns) {
    if (!hasCarriageReturns) return text.toStdString();
    QString lines = text;
    return lines.replace(QLatin1Char('\n'), QLatin1String("\r\n")).toStdString();
}

}  // namespace QB::Desk
