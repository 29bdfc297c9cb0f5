#pragma once

#include <string>

#include "constructs/construct_table.h"
#include "support/round_trip.h"

namespace constructs {

/// @p rebuilt, a text of the cell's entry, as a host of this style is given it: its braces filled.
std::string expectedText(const Cell& cell, const std::string& rebuilt, QB::Test::HostStyle style);

/// A line that the dump of the cell's model is to hold: its braces filled, without quotes.
std::string expectedDumpLine(const Cell& cell, const std::string& line);

/// Every line feed, with the blank before it and the tabs behind it, as one blank.
std::string withoutLayout(const std::string& text);

}  // namespace constructs
