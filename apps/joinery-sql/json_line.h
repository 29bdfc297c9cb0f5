#pragma once

#include <QString>
#include <optional>
#include <string>
#include <string_view>

/// Single lines of JSON: what Qt's JSON classes leave to do.
namespace QB::Cli {

/// What Qt's classes can hold, in bytes.
constexpr std::size_t largestLine = std::size_t(1) << 30;

/// The value of the member @p name of the object in @p line, as written there: a number keeps its
/// digits, a string its escapes. Reads as far as the line can be read, so that the value is found
/// in a line that is broken further on. Of several members of that name the last counts.
/// Returns: "null" if there is no such member or its value is not sound.
std::string rawMember(std::string_view line, std::string_view name);

/// @p text as a JSON string with its quotes. Surrogates without a partner become "?".
std::string jsonString(const QString& text);

/// Nothing if @p utf8 is no valid UTF-8.
std::optional<QString> decodeUtf8(const std::string& utf8);

/// Nothing if @p text has a surrogate without its partner, which no UTF-8 can hold.
std::optional<std::string> encodeUtf8(const QString& text);

}  // namespace QB::Cli
