#pragma once

#include <QString>
#include <QVariant>
#include <functional>

namespace QB::Desk {

/// How a value of a result looks. A null QVariant is NULL, a QByteArray a blob.

/// On one line and no longer than a cell needs: line breaks and tabs become signs, a long text
/// ends in an ellipsis, a blob shows its size and its first bytes.
QString shortCellText(const QVariant& value);

/// True if shortCellText leaves something out.
bool isShortened(const QVariant& value);

/// The value for the clipboard: whole; NULL as the empty text, a blob as "0x" and its bytes.
QString fullCellText(const QVariant& value);

/// The fields of a rectangle as tab-separated lines. A field with a tab, a line break or a quote is
/// quoted, with quotes doubled, and so is an empty text: NULL alone is an empty field.
QString tabSeparated(int rows, int columns, const std::function<QVariant(int, int)>& valueAt);

}  // namespace QB::Desk
