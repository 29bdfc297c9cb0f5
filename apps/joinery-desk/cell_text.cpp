#include "apps/joinery-desk/cell_text.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QLocale>

namespace QB::Desk {
namespace {

constexpr int longestShortText = 256;  // characters; more never fits into a column
constexpr int blobBytesShown = 8;

bool isBlob(const QVariant& value) {
    return value.type() == QVariant::ByteArray;
}

QString plainText(const QVariant& value) {
    // All digits that tell the number from its neighbours, and no more.
    if (value.type() == QVariant::Double)
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    return value.toString();
}

QString shortBlobText(const QByteArray& bytes) {
    const QString size = QCoreApplication::translate("CellText", "%1, binary")
                             .arg(QLocale().formattedDataSize(bytes.size()));
    if (bytes.isEmpty()) return size;
    const QString head = QString::fromLatin1(bytes.left(blobBytesShown).toHex(' '));
    const QString rest = bytes.size() > blobBytesShown ? QStringLiteral(" …") : QString();
    return QStringLiteral("%1: %2%3").arg(size, head, rest);
}

QString onOneLine(QString text) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    for (QChar& character : text) {
        if (character == QLatin1Char('\n') || character == QLatin1Char('\r'))
            character = QChar(0x21B5);
        if (character == QLatin1Char('\t')) character = QChar(0x2192);
        if (character.isNull()) character = QChar(0x2400);
    }
    return text;
}

QString quotedIfNeeded(const QVariant& value) {
    QString text = fullCellText(value);
    const bool isPlain = !text.contains(QLatin1Char('\t')) && !text.contains(QLatin1Char('\n')) &&
                         !text.contains(QLatin1Char('\r')) && !text.contains(QLatin1Char('"'));
    const bool isEmptyText = text.isEmpty() && !value.isNull();
    if (isPlain && !isEmptyText) return text;
    return QLatin1Char('"') + text.replace(QLatin1Char('"'), QLatin1String("\"\"")) +
           QLatin1Char('"');
}

}  // namespace

QString shortCellText(const QVariant& value) {
    if (value.isNull()) return QStringLiteral("NULL");
    if (isBlob(value)) return shortBlobText(value.toByteArray());
    const QString text = plainText(value);
    if (text.size() <= longestShortText) return onOneLine(text);
    return onOneLine(text.left(longestShortText)) + QChar(0x2026);
}

bool isShortened(const QVariant& value) {
    if (value.isNull()) return false;
    if (isBlob(value)) return value.toByteArray().size() > blobBytesShown;
    return value.type() == QVariant::String && value.toString() != shortCellText(value);
}

QString fullCellText(const QVariant& value) {
    if (value.isNull()) return QString();
    if (isBlob(value))
        return QLatin1String("0x") + QString::fromLatin1(value.toByteArray().toHex());
    return plainText(value);
}

QString tabSeparated(int rows, int columns, const std::function<QVariant(int, int)>& valueAt) {
    QString text;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            if (column > 0) text += QLatin1Char('\t');
            text += quotedIfNeeded(valueAt(row, column));
        }
        text += QLatin1Char('\n');
    }
    return text;
}

}  // namespace QB::Desk
