#pragma once

#include <QString>
#include <string>
#include <string_view>

/// Reading and writing. File names carry bytes, one a character (see main.cpp); "-" is standard
/// input. Every text can hold any bytes.
namespace QB::Cli {

/// The name as it stands in messages.
std::string shownName(const QString& file);

/// Reads all of @p file into @p text; of more than 2 GiB only so much as is needed to see that it
/// is too large.
/// Returns: empty, or why it cannot be read.
QString readText(const QString& file, std::string& text);

/// Replaces what is in @p file: writes beside it and renames, so that at every moment the file is
/// the old or the new one; follows links, keeps permissions.
/// Returns: empty, or why it cannot be written; the file then is as it was.
QString replaceText(const QString& file, const std::string& text);

/// Appends to standard output.
/// Returns: false if that is full or closed; outputError() says why.
bool writeOut(std::string_view text);

/// Hands over what writeOut kept back. Call it at the end: a full disk may show only here.
bool flushOut();
std::string outputError();

/// A line to standard error. @p text ends without a line feed.
void complain(const std::string& text);

}  // namespace QB::Cli
