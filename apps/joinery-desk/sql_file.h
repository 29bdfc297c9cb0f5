#pragma once

#include <QDateTime>
#include <QString>
#include <string>

namespace QB::Desk {

/// A text and how it lies in its file, so that saving changes nothing but what was edited.
struct SqlFile {
    QString path;                     ///< absolute; empty for a text that was never saved
    QString text;                     ///< with "\n" at the end of lines
    bool hasCarriageReturns = false;  ///< lines end with "\r\n"
    bool areLineEndsMixed = false;    ///< they did not all end alike; they do now, with "\n"
    bool hasByteOrderMark = false;
    QDateTime lastModified;  ///< of the file when it was read or written
};

/// Files above this are refused: no statement that a person reads comes near it.
constexpr qint64 largestSqlFile = 8 * 1024 * 1024;

/// True for a name that ends in ".sql".
bool isSqlFileName(const QString& path);

/// Reads @p file.path, in UTF-8, into @p file.
/// Returns: empty on success, otherwise the text for the user; @p file is as it was then.
/// Thread: any; blocks for as long as the disk takes.
[[nodiscard]] QString readSqlFile(SqlFile& file);

/// Writes the whole file or leaves the old one as it is. The same otherwise.
[[nodiscard]] QString writeSqlFile(SqlFile& file);

/// The text as the file and the server have it, in UTF-8.
std::string encodedText(const QString& text, bool hasCarriageReturns);

}  // namespace QB::Desk
